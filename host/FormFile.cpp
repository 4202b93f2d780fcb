#include "host/FormFile.h"

#include <cmath>
#include <map>

#include "runtime/Strings.h"

namespace vantor::host {

namespace {

// The furthest a place or size may go: a window's coordinates are 16-bit in
// its messages, so 32767 pixels of 15 twips.
constexpr double kMaxTwips = 32767.0 * 15.0;
constexpr int32_t kMaxClient = 16384;

std::string Indent(int depth) {
  return std::string(static_cast<size_t>(depth) * 2, ' ');
}

// The bag's text, one key a line, at the block's depth.
void PutLines(std::string& out, const server::PropertyBag& bag, int depth) {
  const std::string text = ToUtf8(bag.ToText());
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    out += Indent(depth);
    out.append(text, start, end - start);
    out += '\n';
    start = end + 1;
  }
}

void WriteControl(std::string& out, const ControlDescription& c, int depth) {
  out += Indent(depth) + "Begin " + ToUtf8(c.className) + " " + ToUtf8(c.name) + "\n";
  server::PropertyBag keys;
  keys.WriteProperty(u"Left", Variant(c.left));
  keys.WriteProperty(u"Top", Variant(c.top));
  if (c.width >= 0) keys.WriteProperty(u"Width", Variant(c.width));
  if (c.height >= 0) keys.WriteProperty(u"Height", Variant(c.height));
  if (c.tabIndex >= 0) keys.WriteProperty(u"TabIndex", Variant(c.tabIndex));
  keys.WriteProperty(u"TabStop", Variant(c.tabStop));
  keys.WriteProperty(u"Visible", Variant(c.visible));
  keys.WriteProperty(u"Enabled", Variant(c.enabled));
  PutLines(out, keys, depth + 1);
  if (c.properties.Count() > 0) {
    out += Indent(depth + 1) + "Begin Properties\n";
    PutLines(out, c.properties, depth + 2);
    out += Indent(depth + 1) + "End\n";
  }
  for (const ControlDescription& child : c.controls) WriteControl(out, child, depth + 1);
  out += Indent(depth) + "End\n";
}

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r';
}

StringView Trim(StringView s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
  return s;
}

std::vector<String> Words(StringView s) {
  std::vector<String> words;
  size_t i = 0;
  while (i < s.size()) {
    while (i < s.size() && IsBlank(s[i])) ++i;
    const size_t start = i;
    while (i < s.size() && !IsBlank(s[i])) ++i;
    if (i > start) words.emplace_back(s.substr(start, i - start));
  }
  return words;
}

bool IsAsciiLetter(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}
bool IsAsciiDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

// Class names may carry the library's prefix ("Vantor2014.USButton").
bool IsClassName(StringView s) {
  if (s.empty() || !(IsAsciiLetter(s[0]) || s[0] == u'_')) return false;
  for (char16_t c : s) {
    if (!(IsAsciiLetter(c) || IsAsciiDigit(c) || c == u'_' || c == u'.')) return false;
  }
  return true;
}

std::optional<double> NumberOf(const Variant& v) {
  switch (v.Type()) {
    case vbInteger:
    case vbLong:
    case vbSingle:
    case vbDouble:
    case vbByte:
    case vbCurrency:
      return v.ToDouble();
    default:
      return std::nullopt;
  }
}

class Reader {
 public:
  explicit Reader(std::string_view utf8) {
    String text = FromUtf8(utf8);
    if (!text.empty() && text.front() == u'\xFEFF') text.erase(0, 1);
    size_t start = 0;
    while (start <= text.size()) {
      size_t end = text.find(u'\n', start);
      if (end == String::npos) end = text.size();
      lines_.emplace_back(text.substr(start, end - start));
      start = end + 1;
    }
    // A final newline ends the last line; it does not begin another.
    if (!lines_.empty() && lines_.back().empty()) lines_.pop_back();
  }

  std::optional<FormDescription> Run(String* error) {
    const bool ok = Header() && Body();
    if (error) *error = ok ? String() : FromUtf8(error_);
    if (!ok) return std::nullopt;
    return std::move(form_);
  }

 private:
  enum class Kind { Form, Control, Properties };
  struct Block {
    Block(Kind k, size_t n, ControlDescription* c = nullptr) : kind(k), line(n), control(c) {}
    Kind kind;
    size_t line;
    ControlDescription* control;
    std::map<String, size_t> keys;  // folded key name -> line
    String bagText;                 // of a Properties block
    size_t propertiesLine = 0;      // of a control's Properties block, once seen
  };

  bool Fail(size_t line, const std::string& what) {
    error_ = "line " + std::to_string(line) + ": " + what;
    return false;
  }

  // The next line that is not blank; false at the end.
  bool Next(StringView& text, size_t& number) {
    while (next_ < lines_.size()) {
      const StringView t = Trim(lines_[next_]);
      number = ++next_;
      if (!t.empty()) {
        text = t;
        return true;
      }
    }
    number = lines_.size();
    return false;
  }

  bool Header() {
    StringView text;
    size_t n = 0;
    const std::string expected =
        std::string(FormFile::kMagic) + " " + std::to_string(FormFile::kVersion);
    if (!Next(text, n)) return Fail(1, "empty file; a form file begins with '" + expected + "'");
    const std::vector<String> w = Words(text);
    if (w.size() == 3 && ToUtf8(w[0] + u" " + w[1]) == FormFile::kMagic) {
      if (ToUtf8(w[2]) == std::to_string(FormFile::kVersion)) return true;
      return Fail(n, "form file version '" + ToUtf8(w[2]) + "' is not one this library reads (" +
                         expected + ")");
    }
    return Fail(n, "not a form file: expected '" + expected + "'");
  }

  bool Body() {
    StringView text;
    size_t n = 0;
    if (!Next(text, n)) return Fail(n + 1, "expected 'Begin Form <name>' after the header");
    const std::vector<String> w = Words(text);
    if (w.size() != 3 || w[0] != u"Begin" || w[1] != u"Form")
      return Fail(n, "expected 'Begin Form <name>', not '" + ToUtf8(text) + "'");
    if (!FormFile::IsValidName(w[2])) return Fail(n, BadName(w[2]));
    form_.name = w[2];
    blocks_.emplace_back(Kind::Form, n);

    while (!blocks_.empty()) {
      if (!Next(text, n)) {
        const Block& open = blocks_.back();
        return Fail(n, "the file ends inside the block begun on line " + std::to_string(open.line) +
                           " ('" + ToUtf8(Trim(lines_[open.line - 1])) + "'): 'End' is missing");
      }
      const std::vector<String> words = Words(text);
      const bool structural = words.size() < 2 || words[1].front() != u'=';
      bool ok = true;
      if (words[0] == u"Begin" && structural) {
        ok = Begin(words, n);
      } else if (words[0] == u"End" && structural) {
        ok = words.size() == 1 ? End() : Fail(n, "unexpected text after 'End'");
      } else {
        ok = Key(text, n);
      }
      if (!ok) return false;
    }
    if (Next(text, n)) return Fail(n, "text after the form's closing 'End'");
    return true;
  }

  static std::string BadName(StringView name) {
    return "'" + ToUtf8(name) +
           "' is not a valid name (a letter, then letters, digits or '_', at most " +
           std::to_string(FormFile::kMaxName) + " characters)";
  }

  bool Begin(const std::vector<String>& w, size_t n) {
    Block& outer = blocks_.back();
    if (outer.kind == Kind::Properties)
      return Fail(n, "'Begin' inside a Properties block; close it with 'End' first");
    if (w.size() == 2 && w[1] == u"Properties") {
      if (outer.kind != Kind::Control)
        return Fail(n, "'Begin Properties' belongs inside a control's block");
      if (outer.propertiesLine != 0)
        return Fail(n, "a second Properties block for " + ToUtf8(outer.control->name) +
                           " (the first is on line " + std::to_string(outer.propertiesLine) + ")");
      outer.propertiesLine = n;
      ControlDescription* const control = outer.control;
      blocks_.emplace_back(Kind::Properties, n, control);
      return true;
    }
    if (w.size() != 3) return Fail(n, "expected 'Begin <class> <name>' or 'Begin Properties'");
    if (!IsClassName(w[1])) return Fail(n, "'" + ToUtf8(w[1]) + "' is not a class name");
    if (!FormFile::IsValidName(w[2])) return Fail(n, BadName(w[2]));
    const String folded = LCase(w[2]);
    if (auto it = names_.find(folded); it != names_.end())
      return Fail(n, "a control named '" + ToUtf8(w[2]) + "' is already on the form (line " +
                         std::to_string(it->second) + ")");
    names_.emplace(folded, n);
    std::vector<ControlDescription>& siblings =
        outer.kind == Kind::Form ? form_.controls : outer.control->controls;
    ControlDescription& c = siblings.emplace_back();
    c.className = w[1];
    c.name = w[2];
    c.line = n;
    blocks_.emplace_back(Kind::Control, n, &c);
    return true;
  }

  bool End() {
    Block& b = blocks_.back();
    if (b.kind == Kind::Properties) {
      // Each line was read on its own already; read together they make the bag.
      String why;
      std::optional<server::PropertyBag> bag = server::PropertyBag::FromText(b.bagText, &why);
      if (!bag) return Fail(b.line, "the Properties block cannot be read: " + ToUtf8(why));
      b.control->properties = std::move(*bag);
    }
    blocks_.pop_back();
    return true;
  }

  bool Key(StringView text, size_t n) {
    String why;
    std::optional<server::PropertyBag> one = server::PropertyBag::FromText(text, &why);
    if (!one) {
      std::string what = ToUtf8(why);
      // The bag numbers its own lines; here the file's number is the one that helps.
      if (what.rfind("line 1: ", 0) == 0) what.erase(0, 8);
      return Fail(n, what);
    }
    const String name = one->Names().front();
    const Variant value = one->ReadProperty(name);
    Block& b = blocks_.back();
    const String folded = LCase(name);
    if (auto it = b.keys.find(folded); it != b.keys.end())
      return Fail(n, "'" + ToUtf8(name) + "' is given twice (also on line " +
                         std::to_string(it->second) + ")");
    b.keys.emplace(folded, n);
    switch (b.kind) {
      case Kind::Form:
        return FormKey(folded, name, value, n);
      case Kind::Control:
        return ControlKey(*b.control, folded, name, value, n);
      case Kind::Properties:
        b.bagText.append(text);
        b.bagText += u'\n';
        return true;
    }
    return true;
  }

  bool Mismatch(size_t n, const String& name, const char* wanted, const Variant& v) {
    return Fail(n, ToUtf8(name) + " must be " + wanted + ", not " + ToUtf8(v.TypeName()));
  }

  bool Whole(size_t n, const String& name, const Variant& v, double lo, double hi, double& out) {
    const std::optional<double> d = NumberOf(v);
    if (!d) return Mismatch(n, name, "a number", v);
    if (std::floor(*d) != *d || *d < lo || *d > hi)
      return Fail(n, ToUtf8(name) + " must be a whole number from " +
                         std::to_string(static_cast<int64_t>(lo)) + " to " +
                         std::to_string(static_cast<int64_t>(hi)));
    out = *d;
    return true;
  }

  bool Twips(size_t n, const String& name, const Variant& v, double lo, float& out) {
    const std::optional<double> d = NumberOf(v);
    if (!d) return Mismatch(n, name, "a number", v);
    if (!std::isfinite(*d) || *d < lo || *d > kMaxTwips)
      return Fail(n, ToUtf8(name) + " is out of range");
    out = static_cast<float>(*d);
    return true;
  }

  bool Flag(size_t n, const String& name, const Variant& v, bool& out) {
    if (v.Type() != vbBoolean) return Mismatch(n, name, "Boolean", v);
    out = v.ToBoolean();
    return true;
  }

  bool Colour(size_t n, const String& name, const Variant& v, uint32_t& out) {
    double d = 0;
    if (!Whole(n, name, v, -2147483648.0, 4294967295.0, d)) return false;
    out = static_cast<uint32_t>(static_cast<int64_t>(d));
    return true;
  }

  bool FormKey(const String& key, const String& name, const Variant& v, size_t n) {
    double d = 0;
    if (key == u"caption") {
      if (v.Type() != vbString) return Mismatch(n, name, "String", v);
      form_.caption = v.ToString();
      return true;
    }
    if (key == u"scalemode") {
      if (!Whole(n, name, v, 0, 32767, d)) return false;
      const int mode = static_cast<int>(d);
      if (mode != server::vbTwips && mode != server::vbPixels)
        return Fail(n, "ScaleMode must be 1 (twips) or 3 (pixels)");
      form_.scaleMode = static_cast<int16_t>(d);
      return true;
    }
    if (key == u"clientwidth" || key == u"clientheight") {
      if (!Whole(n, name, v, 1, kMaxClient, d)) return false;
      (key == u"clientwidth" ? form_.clientWidth : form_.clientHeight) = static_cast<int32_t>(d);
      return true;
    }
    if (key == u"backcolor") return Colour(n, name, v, form_.backColor);
    if (key == u"forecolor") return Colour(n, name, v, form_.foreColor);
    if (key == u"font") {
      const ObjectPtr* p = v.ObjectRef();
      auto font = p ? std::dynamic_pointer_cast<server::StdFont>(*p) : nullptr;
      if (!font) return Mismatch(n, name, "Font", v);
      form_.font = font;
      return true;
    }
    return Fail(n, "unknown key '" + ToUtf8(name) + "' for the form");
  }

  bool ControlKey(ControlDescription& c, const String& key, const String& name, const Variant& v,
                  size_t n) {
    double d = 0;
    if (key == u"left") return Twips(n, name, v, -kMaxTwips, c.left);
    if (key == u"top") return Twips(n, name, v, -kMaxTwips, c.top);
    if (key == u"width") return Twips(n, name, v, 0, c.width);
    if (key == u"height") return Twips(n, name, v, 0, c.height);
    if (key == u"tabindex") {
      if (!Whole(n, name, v, 0, 32767, d)) return false;
      c.tabIndex = static_cast<int16_t>(d);
      return true;
    }
    if (key == u"tabstop") return Flag(n, name, v, c.tabStop);
    if (key == u"visible") return Flag(n, name, v, c.visible);
    if (key == u"enabled") return Flag(n, name, v, c.enabled);
    return Fail(n, "unknown key '" + ToUtf8(name) + "' for " + ToUtf8(c.name) +
                       "; the control's own properties belong in its Properties block");
  }

  std::vector<String> lines_;
  size_t next_ = 0;
  std::string error_;
  FormDescription form_;
  std::vector<Block> blocks_;
  std::map<String, size_t> names_;  // folded control name -> line
};

}  // namespace

bool FormFile::IsValidName(StringView name) {
  if (name.empty() || name.size() > kMaxName || !IsAsciiLetter(name[0])) return false;
  for (char16_t c : name) {
    if (!(IsAsciiLetter(c) || IsAsciiDigit(c) || c == u'_')) return false;
  }
  return true;
}

std::string FormFile::Write(const FormDescription& form) {
  std::string out = std::string(kMagic) + " " + std::to_string(kVersion) + "\n";
  out += "Begin Form " + ToUtf8(form.name) + "\n";
  server::PropertyBag keys;
  keys.WriteProperty(u"Caption", Variant(form.caption.value_or(form.name)));
  keys.WriteProperty(u"ScaleMode", Variant(form.scaleMode));
  keys.WriteProperty(u"ClientWidth", Variant(form.clientWidth));
  keys.WriteProperty(u"ClientHeight", Variant(form.clientHeight));
  keys.WriteProperty(u"BackColor", Variant(static_cast<int32_t>(form.backColor)));
  keys.WriteProperty(u"ForeColor", Variant(static_cast<int32_t>(form.foreColor)));
  if (form.font) keys.WriteProperty(u"Font", Variant(ObjectPtr(form.font)));
  PutLines(out, keys, 1);
  for (const ControlDescription& c : form.controls) WriteControl(out, c, 1);
  out += "End\n";
  return out;
}

std::optional<FormDescription> FormFile::Read(std::string_view utf8, String* error) {
  return Reader(utf8).Run(error);
}

}  // namespace vantor::host
