#include "server/PropertyBag.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>

#include "runtime/Error.h"
#include "server/StdFont.h"
#include "server/StdPicture.h"

namespace vantor::server {

namespace {

constexpr int kMaxDepth = 16;
constexpr char kHex[] = "0123456789ABCDEF";

const StdFont* AsFont(const Variant& v) {
  const ObjectPtr* o = v.ObjectRef();
  return o && *o ? dynamic_cast<const StdFont*>(o->get()) : nullptr;
}

const StdPicture* AsPicture(const Variant& v) {
  const ObjectPtr* o = v.ObjectRef();
  return o && *o ? dynamic_cast<const StdPicture*>(o->get()) : nullptr;
}

// Fonts and pictures are copied in and out so that a control changing the
// object it read cannot change what the bag holds.
Variant Detached(const Variant& v) {
  if (const StdFont* f = AsFont(v)) return Variant(ObjectPtr(f->Clone()));
  if (const StdPicture* p = AsPicture(v)) {
    if (auto copy = p->Clone()) return Variant(ObjectPtr(std::move(copy)));
  }
  return v.Deref();
}

bool Storable(const Variant& value, int depth) {
  const Variant& v = value.Deref();
  if (const SafeArray* a = v.Array()) {
    if (depth >= kMaxDepth || a->Dimensions() != 1) return false;
    if (a->ElementType() == vbByte) return true;
    for (const Variant& item : a->Items()) {
      if (item.IsObject() || !Storable(item, depth + 1)) return false;
    }
    return true;
  }
  if (v.IsObject()) {
    const ObjectPtr* o = v.ObjectRef();
    return !*o || AsFont(v) || AsPicture(v);
  }
  return true;
}

// ---- writing ----------------------------------------------------------------

void PutHexBytes(std::string& out, const uint8_t* p, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    out += kHex[p[i] >> 4];
    out += kHex[p[i] & 15];
  }
}

void PutQuoted(std::string& out, StringView s) {
  out += '"';
  for (char16_t c : s) {
    switch (c) {
      case u'"':
        out += "\\\"";
        break;
      case u'\\':
        out += "\\\\";
        break;
      case u'\r':
        out += "\\r";
        break;
      case u'\n':
        out += "\\n";
        break;
      case u'\t':
        out += "\\t";
        break;
      default:
        if (c >= 0x20 && c < 0x7F) {
          out += static_cast<char>(c);
        } else {
          out += "\\u";
          for (int shift = 12; shift >= 0; shift -= 4) out += kHex[(c >> shift) & 15];
        }
    }
  }
  out += '"';
}

template <class F>
void PutFloat(std::string& out, F value) {
  if (!std::isfinite(value)) {
    // No decimal names these exactly (NaNs carry payloads), so write the bits.
    using Bits = std::conditional_t<sizeof(F) == 4, uint32_t, uint64_t>;
    Bits bits;
    std::memcpy(&bits, &value, sizeof bits);
    out += '#';
    for (int shift = static_cast<int>(sizeof(Bits) * 8) - 4; shift >= 0; shift -= 4)
      out += kHex[(bits >> shift) & 15];
    return;
  }
  char buf[64];
  const auto r = std::to_chars(buf, buf + sizeof buf, value);
  out.append(buf, r.ptr);
}

void PutCurrency(std::string& out, Currency c) {
  const int64_t raw = c.Raw();
  uint64_t magnitude = raw < 0 ? 0 - static_cast<uint64_t>(raw) : static_cast<uint64_t>(raw);
  if (raw < 0) out += '-';
  out += std::to_string(magnitude / 10000);
  uint64_t frac = magnitude % 10000;
  if (frac != 0) {
    std::string digits = std::to_string(frac);
    digits.insert(0, 4 - digits.size(), '0');
    while (digits.back() == '0') digits.pop_back();
    out += '.';
    out += digits;
  }
}

const char* ScalarTypeName(VbVarType t) {
  switch (t) {
    case vbEmpty:
      return "Empty";
    case vbNull:
      return "Null";
    case vbInteger:
      return "Integer";
    case vbLong:
      return "Long";
    case vbSingle:
      return "Single";
    case vbDouble:
      return "Double";
    case vbCurrency:
      return "Currency";
    case vbDate:
      return "Date";
    case vbString:
      return "String";
    case vbError:
      return "Error";
    case vbBoolean:
      return "Boolean";
    case vbVariant:
      return "Variant";
    case vbByte:
      return "Byte";
    default:
      return nullptr;
  }
}

void PutFont(std::string& out, const StdFont& f) {
  out += "Font {Name ";
  PutQuoted(out, f.get_Name());
  out += "; Size ";
  PutCurrency(out, f.get_Size());
  out += "; Bold ";
  out += f.get_Bold() ? "-1" : "0";
  out += "; Weight " + std::to_string(f.get_Weight());
  out += "; Italic ";
  out += f.get_Italic() ? "-1" : "0";
  out += "; Underline ";
  out += f.get_Underline() ? "-1" : "0";
  out += "; Strikethrough ";
  out += f.get_Strikethrough() ? "-1" : "0";
  out += "; Charset " + std::to_string(f.get_Charset()) + "}";
}

void PutPicture(std::string& out, const StdPicture& p) {
  if (p.get_Type() == PictureType::None) {
    out += "Picture None";
    return;
  }
  out += p.get_Type() == PictureType::Icon ? "Picture Icon " : "Picture ";
  out += std::to_string(p.PixelWidth()) + " " + std::to_string(p.PixelHeight()) + " ";
  const std::vector<uint32_t> px = p.Pixels();
  for (uint32_t v : px) {
    // Bytes in memory order: B, G, R, A.
    const uint8_t b[4] = {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8),
                          static_cast<uint8_t>(v >> 16), static_cast<uint8_t>(v >> 24)};
    PutHexBytes(out, b, 4);
  }
}

void PutValue(std::string& out, const Variant& value) {
  const Variant& v = value.Deref();
  if (const SafeArray* a = v.Array()) {
    const int32_t lower = a->LBound(1);
    if (a->ElementType() == vbByte) {
      const auto& bytes = a->Bytes();
      out += "Bytes " + std::to_string(bytes.size());
      if (!bytes.empty()) out += ' ';
      PutHexBytes(out, bytes.data(), bytes.size());
      if (lower != 0) out += " @" + std::to_string(lower);
      return;
    }
    out += "Array ";
    out += ScalarTypeName(a->ElementType());
    out += " " + std::to_string(lower) + " " + std::to_string(a->Items().size()) + " {";
    bool first = true;
    for (const Variant& item : a->Items()) {
      if (!first) out += "; ";
      first = false;
      PutValue(out, item);
    }
    out += '}';
    return;
  }
  switch (v.Type()) {
    case vbEmpty:
      out += "Empty";
      return;
    case vbNull:
      out += "Null";
      return;
    case vbInteger:
      out += "Integer " + std::to_string(*v.As<int16_t>());
      return;
    case vbLong:
      out += "Long " + std::to_string(*v.As<int32_t>());
      return;
    case vbSingle:
      out += "Single ";
      PutFloat(out, *v.As<float>());
      return;
    case vbDouble:
      out += "Double ";
      PutFloat(out, *v.As<double>());
      return;
    case vbCurrency:
      out += "Currency ";
      PutCurrency(out, *v.As<Currency>());
      return;
    case vbDate:
      out += "Date ";
      PutFloat(out, v.As<Date>()->Serial());
      return;
    case vbString:
      out += "String ";
      PutQuoted(out, *v.As<String>());
      return;
    case vbError:
      out += "Error " + std::to_string(v.As<ErrorValue>()->scode);
      return;
    case vbBoolean:
      out += *v.As<bool>() ? "Boolean -1" : "Boolean 0";
      return;
    case vbByte:
      out += "Byte " + std::to_string(*v.As<uint8_t>());
      return;
    case vbObject:
      if (const StdFont* f = AsFont(v)) {
        PutFont(out, *f);
      } else if (const StdPicture* p = AsPicture(v)) {
        PutPicture(out, *p);
      } else {
        out += "Nothing";
      }
      return;
    default:
      out += "Empty";
      return;
  }
}

bool BareNameChar(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
         c == u'_' || c == u'.' || c == u'(' || c == u')' || c == u'[' || c == u']' || c == u'$' ||
         c == u'-';
}

// ---- reading ----------------------------------------------------------------

class Reader {
 public:
  explicit Reader(StringView line) : s_(line) {}

  std::string error;

  bool Fail(std::string what) {
    if (error.empty()) error = std::move(what);
    return false;
  }
  void Skip() {
    while (i_ < s_.size() && (s_[i_] == u' ' || s_[i_] == u'\t')) ++i_;
  }
  bool AtEnd() {
    Skip();
    return i_ >= s_.size();
  }
  bool Eat(char16_t c) {
    Skip();
    if (i_ < s_.size() && s_[i_] == c) {
      ++i_;
      return true;
    }
    return false;
  }
  // A run of characters that can make a word or number.
  std::string Token() {
    Skip();
    std::string t;
    while (i_ < s_.size()) {
      const char16_t c = s_[i_];
      const bool ok = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
                      (c >= u'0' && c <= u'9') || c == u'.' || c == u'-' || c == u'+' ||
                      c == u'#' || c == u'_' || c == u'@';
      if (!ok) break;
      t += static_cast<char>(c);
      ++i_;
    }
    return t;
  }
  bool Name(String& out) {
    Skip();
    // Quoted names may be anything the bag was given, the empty name included.
    if (i_ < s_.size() && s_[i_] == u'"') return Quoted(out);
    const size_t start = i_;
    while (i_ < s_.size() && BareNameChar(s_[i_])) ++i_;
    if (i_ == start) return Fail("missing name");
    out.assign(s_.substr(start, i_ - start));
    return true;
  }
  bool Quoted(String& out) {
    Skip();
    if (i_ >= s_.size() || s_[i_] != u'"') return Fail("expected a quoted string");
    ++i_;
    out.clear();
    while (true) {
      if (i_ >= s_.size()) return Fail("unterminated string");
      const char16_t c = s_[i_++];
      if (c == u'"') return true;
      if (c < 0x20 && c != u'\t') return Fail("control character in string");
      if (c != u'\\') {
        out += c;
        continue;
      }
      if (i_ >= s_.size()) return Fail("unterminated string");
      const char16_t e = s_[i_++];
      switch (e) {
        case u'"':
          out += u'"';
          break;
        case u'\\':
          out += u'\\';
          break;
        case u'r':
          out += u'\r';
          break;
        case u'n':
          out += u'\n';
          break;
        case u't':
          out += u'\t';
          break;
        case u'u': {
          if (s_.size() - i_ < 4) return Fail("bad \\u escape");
          uint32_t code = 0;
          for (int k = 0; k < 4; ++k) {
            const int d = HexDigit(s_[i_++]);
            if (d < 0) return Fail("bad \\u escape");
            code = code * 16 + static_cast<uint32_t>(d);
          }
          out += static_cast<char16_t>(code);
          break;
        }
        default:
          return Fail("bad escape in string");
      }
    }
  }

  static int HexDigit(char16_t c) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (c >= u'A' && c <= u'F') return c - u'A' + 10;
    if (c >= u'a' && c <= u'f') return c - u'a' + 10;
    return -1;
  }

  bool Integer(int64_t lo, int64_t hi, int64_t& out) {
    const std::string t = Token();
    if (t.empty()) return Fail("missing number");
    const char* b = t.data();
    const char* e = b + t.size();
    const auto r = std::from_chars(b, e, out);
    if (r.ec != std::errc() || r.ptr != e) return Fail("bad number '" + t + "'");
    if (out < lo || out > hi) return Fail("number out of range '" + t + "'");
    return true;
  }

  template <class F>
  bool Float(F& out) {
    const std::string t = Token();
    if (t.empty()) return Fail("missing number");
    if (t[0] == '#') {
      using Bits = std::conditional_t<sizeof(F) == 4, uint32_t, uint64_t>;
      if (t.size() != 1 + sizeof(Bits) * 2) return Fail("bad number '" + t + "'");
      Bits bits = 0;
      for (size_t k = 1; k < t.size(); ++k) {
        const int d = HexDigit(static_cast<char16_t>(t[k]));
        if (d < 0) return Fail("bad number '" + t + "'");
        bits = static_cast<Bits>(bits * 16 + static_cast<Bits>(d));
      }
      std::memcpy(&out, &bits, sizeof out);
      return true;
    }
    // Only plain decimals: from_chars would also take "inf" and "nan".
    const size_t digitAt = t[0] == '-' ? 1 : 0;
    if (digitAt >= t.size() || t[digitAt] < '0' || t[digitAt] > '9')
      return Fail("bad number '" + t + "'");
    const char* b = t.data();
    const char* e = b + t.size();
    const auto r = std::from_chars(b, e, out);
    if (r.ec != std::errc() || r.ptr != e) return Fail("bad number '" + t + "'");
    return true;
  }

  bool ReadCurrency(Currency& out) {
    const std::string t = Token();
    size_t k = 0;
    const bool negative = !t.empty() && t[0] == '-';
    if (negative) ++k;
    uint64_t whole = 0;
    const size_t wholeStart = k;
    while (k < t.size() && t[k] >= '0' && t[k] <= '9') {
      if (whole > 922337203685477ULL) return Fail("number out of range '" + t + "'");
      whole = whole * 10 + static_cast<uint64_t>(t[k++] - '0');
    }
    if (k == wholeStart) return Fail("bad number '" + t + "'");
    uint64_t frac = 0;
    if (k < t.size() && t[k] == '.') {
      ++k;
      int digits = 0;
      while (k < t.size() && t[k] >= '0' && t[k] <= '9' && digits < 4) {
        frac = frac * 10 + static_cast<uint64_t>(t[k++] - '0');
        ++digits;
      }
      if (digits == 0) return Fail("bad number '" + t + "'");
      for (; digits < 4; ++digits) frac *= 10;
    }
    if (k != t.size()) return Fail("bad number '" + t + "'");
    if (whole > 922337203685477ULL) return Fail("number out of range '" + t + "'");
    const uint64_t magnitude = whole * 10000 + frac;
    const uint64_t limit = negative ? 9223372036854775808ULL : 9223372036854775807ULL;
    if (magnitude > limit) return Fail("number out of range '" + t + "'");
    out = Currency::FromRaw(negative ? static_cast<int64_t>(0 - magnitude)
                                     : static_cast<int64_t>(magnitude));
    return true;
  }

  bool Bool(bool& out) {
    int64_t n = 0;
    if (!Integer(-1, 0, n)) return false;
    out = n != 0;
    return true;
  }

  // Hex of exactly n bytes; the length is checked before anything is kept.
  bool HexBytes(size_t n, std::vector<uint8_t>& out) {
    Skip();
    size_t end = i_;
    while (end < s_.size() && HexDigit(s_[end]) >= 0) ++end;
    const size_t digits = end - i_;
    if (digits % 2 != 0) return Fail("odd number of hex digits");
    if (digits / 2 != n) return Fail("byte count does not match the hex");
    out.resize(n);
    for (size_t k = 0; k < n; ++k) {
      out[k] = static_cast<uint8_t>(HexDigit(s_[i_]) * 16 + HexDigit(s_[i_ + 1]));
      i_ += 2;
    }
    if (i_ < s_.size() && s_[i_] != u' ' && s_[i_] != u'\t' && s_[i_] != u';' && s_[i_] != u'}')
      return Fail("bad hex digit");
    return true;
  }

  bool Value(Variant& out, int depth) {
    if (depth > kMaxDepth) return Fail("arrays nested too deeply");
    const std::string type = Token();
    if (type.empty()) return Fail("missing type");
    int64_t n = 0;
    if (type == "Empty") {
      out = Variant();
    } else if (type == "Null") {
      out = Variant(Null);
    } else if (type == "Nothing") {
      out = Variant(ObjectPtr());
    } else if (type == "Integer") {
      if (!Integer(INT16_MIN, INT16_MAX, n)) return false;
      out = Variant(static_cast<int16_t>(n));
    } else if (type == "Long") {
      if (!Integer(INT32_MIN, INT32_MAX, n)) return false;
      out = Variant(static_cast<int32_t>(n));
    } else if (type == "Error") {
      if (!Integer(INT32_MIN, INT32_MAX, n)) return false;
      out = Variant(ErrorValue{static_cast<int32_t>(n)});
    } else if (type == "Byte") {
      if (!Integer(0, 255, n)) return false;
      out = Variant(static_cast<uint8_t>(n));
    } else if (type == "Boolean") {
      bool b = false;
      if (!Bool(b)) return false;
      out = Variant(b);
    } else if (type == "Single") {
      float f = 0;
      if (!Float(f)) return false;
      out = Variant(f);
    } else if (type == "Double") {
      double d = 0;
      if (!Float(d)) return false;
      out = Variant(d);
    } else if (type == "Date") {
      double d = 0;
      if (!Float(d)) return false;
      out = Variant(Date(d));
    } else if (type == "Currency") {
      Currency c;
      if (!ReadCurrency(c)) return false;
      out = Variant(c);
    } else if (type == "String") {
      String s;
      if (!Quoted(s)) return false;
      out = Variant(std::move(s));
    } else if (type == "Bytes") {
      return ReadBytes(out);
    } else if (type == "Array") {
      return ReadArray(out, depth);
    } else if (type == "Font") {
      return ReadFont(out);
    } else if (type == "Picture") {
      return ReadPicture(out);
    } else {
      return Fail("unknown type '" + type + "'");
    }
    return true;
  }

  bool ReadBytes(Variant& out) {
    int64_t n = 0;
    if (!Integer(0, INT32_MAX, n)) return false;
    std::vector<uint8_t> bytes;
    if (!HexBytes(static_cast<size_t>(n), bytes)) return false;
    int64_t lower = 0;
    if (Eat(u'@')) {
      if (!Integer(INT32_MIN, INT32_MAX, lower)) return false;
      if (lower + n - 1 > INT32_MAX) return Fail("array bounds out of range");
    }
    out = Variant(SafeArray::FromBytes(std::move(bytes), static_cast<int32_t>(lower)));
    return true;
  }

  bool ReadArray(Variant& out, int depth) {
    const std::string typeName = Token();
    VbVarType element = vbEmpty;
    for (VbVarType t : {vbInteger, vbLong, vbSingle, vbDouble, vbCurrency, vbDate, vbString,
                        vbError, vbBoolean, vbVariant}) {
      if (typeName == ScalarTypeName(t)) element = t;
    }
    if (element == vbEmpty) return Fail("unknown array element type '" + typeName + "'");
    int64_t lower = 0, count = 0;
    if (!Integer(INT32_MIN, INT32_MAX, lower) || !Integer(0, INT32_MAX, count)) return false;
    if (lower + count - 1 > INT32_MAX) return Fail("array bounds out of range");
    if (!Eat(u'{')) return Fail("expected '{'");
    std::vector<Variant> items;
    if (!Eat(u'}')) {
      do {
        Variant item;
        if (!Value(item, depth + 1)) return false;
        if (item.IsObject()) return Fail("objects cannot be array elements");
        if (element != vbVariant && item.Type() != element)
          return Fail("array element of the wrong type");
        items.push_back(std::move(item));
      } while (Eat(u';'));
      if (!Eat(u'}')) return Fail("expected '}'");
    }
    if (static_cast<int64_t>(items.size()) != count)
      return Fail("element count does not match the array");
    if (element == vbVariant) {
      out = Variant(SafeArray::FromVariants(std::move(items), static_cast<int32_t>(lower)));
    } else {
      SafeArray a(element,
                  {SafeArray::Bound{static_cast<int32_t>(lower), static_cast<int32_t>(count)}});
      a.Items() = std::move(items);
      out = Variant(std::move(a));
    }
    return true;
  }

  bool ReadFont(Variant& out) {
    if (!Eat(u'{')) return Fail("expected '{' after Font");
    auto font = std::make_shared<StdFont>();
    unsigned seen = 0;
    int64_t weight = -1;
    if (!Eat(u'}')) {
      do {
        const std::string field = Token();
        static const char* const kFields[] = {"Name",   "Size",      "Bold",    "Weight",
                                              "Italic", "Underline", "Charset", "Strikethrough"};
        unsigned bit = 0;
        for (unsigned k = 0; k < 8; ++k) {
          if (field == kFields[k]) bit = 1u << k;
        }
        if (bit == 0) return Fail("unknown font field '" + field + "'");
        if (seen & bit) return Fail("font field given twice '" + field + "'");
        seen |= bit;
        bool b = false;
        int64_t n = 0;
        if (field == "Name") {
          String name;
          if (!Quoted(name)) return false;
          font->put_Name(name);
        } else if (field == "Size") {
          Currency c;
          if (!ReadCurrency(c)) return false;
          if (c.Raw() <= 0) return Fail("font size must be above zero");
          font->put_Size(c);
        } else if (field == "Weight") {
          if (!Integer(0, 1000, weight)) return false;
        } else if (field == "Charset") {
          if (!Integer(INT16_MIN, INT16_MAX, n)) return false;
          font->put_Charset(static_cast<int16_t>(n));
        } else {
          if (!Bool(b)) return false;
          if (field == "Bold") font->put_Bold(b);
          if (field == "Italic") font->put_Italic(b);
          if (field == "Underline") font->put_Underline(b);
          if (field == "Strikethrough") font->put_Strikethrough(b);
        }
      } while (Eat(u';'));
      if (!Eat(u'}')) return Fail("expected '}' after the font's fields");
    }
    // Weight is the finer of the two, so it wins when both are given.
    if (weight >= 0) font->put_Weight(static_cast<int16_t>(weight));
    out = Variant(ObjectPtr(std::move(font)));
    return true;
  }

  bool ReadPicture(Variant& out) {
    Skip();
    const size_t mark = i_;
    std::string word = Token();
    PictureType type = PictureType::Bitmap;
    if (word == "None") {
      out = Variant(ObjectPtr(std::make_shared<StdPicture>()));
      return true;
    }
    if (word == "Icon") {
      type = PictureType::Icon;
    } else {
      i_ = mark;
    }
    int64_t w = 0, h = 0;
    if (!Integer(1, 32768, w) || !Integer(1, 32768, h)) return false;
    std::vector<uint8_t> bytes;
    const size_t count = static_cast<size_t>(w) * static_cast<size_t>(h);
    if (!HexBytes(count * 4, bytes)) return false;
    std::vector<uint32_t> pixels(count);
    for (size_t k = 0; k < count; ++k) {
      pixels[k] = static_cast<uint32_t>(bytes[4 * k]) |
                  static_cast<uint32_t>(bytes[4 * k + 1]) << 8 |
                  static_cast<uint32_t>(bytes[4 * k + 2]) << 16 |
                  static_cast<uint32_t>(bytes[4 * k + 3]) << 24;
    }
    auto picture =
        StdPicture::FromPixels(static_cast<int32_t>(w), static_cast<int32_t>(h), pixels, type);
    if (!picture) return Fail("picture could not be made");
    out = Variant(ObjectPtr(std::move(picture)));
    return true;
  }

 private:
  StringView s_;
  size_t i_ = 0;
};

}  // namespace

String PropertyBag::Fold(StringView name) {
  // The platform's bag ignores case; ASCII and Latin-1 letters cover the keys
  // controls use.
  String folded(name);
  for (char16_t& c : folded) {
    if ((c >= u'A' && c <= u'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7)) c += 0x20;
  }
  return folded;
}

void PropertyBag::Reindex() {
  index_.clear();
  for (size_t k = 0; k < entries_.size(); ++k) index_[Fold(entries_[k].first)] = k;
}

bool PropertyBag::SameValue(const Variant& a, const Variant& b) {
  const Variant& x = a.Deref();
  const Variant& y = b.Deref();
  if (x.IsObject() && y.IsObject()) {
    const StdFont* fx = AsFont(x);
    const StdFont* fy = AsFont(y);
    if (fx || fy) return fx && fy && *fx == *fy;
    const StdPicture* px = AsPicture(x);
    const StdPicture* py = AsPicture(y);
    if (px || py) return px && py && px->SameAs(*py);
  }
  return x.SameAs(y);
}

bool PropertyBag::CanStore(const Variant& value) {
  return Storable(value, 0);
}

Variant PropertyBag::ReadProperty(StringView name, const Variant& defaultValue) const {
  const auto it = index_.find(Fold(name));
  if (it == index_.end()) return defaultValue;
  return Detached(entries_[it->second].second);
}

void PropertyBag::WriteProperty(StringView name, const Variant& value,
                                const Variant& defaultValue) {
  if (!CanStore(value)) {
    Err().Set(errTypeMismatch, u"PropertyBag");
    return;
  }
  if (SameValue(value, defaultValue)) {
    Remove(name);
    return;
  }
  const String key = Fold(name);
  const auto it = index_.find(key);
  if (it != index_.end()) {
    entries_[it->second].second = Detached(value);
    return;
  }
  index_.emplace(key, entries_.size());
  entries_.emplace_back(String(name), Detached(value));
}

bool PropertyBag::Contains(StringView name) const {
  return index_.count(Fold(name)) != 0;
}

bool PropertyBag::Remove(StringView name) {
  const auto it = index_.find(Fold(name));
  if (it == index_.end()) return false;
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(it->second));
  Reindex();
  return true;
}

std::vector<String> PropertyBag::Names() const {
  std::vector<String> names;
  names.reserve(entries_.size());
  for (const auto& e : entries_) names.push_back(e.first);
  return names;
}

void PropertyBag::Clear() {
  entries_.clear();
  index_.clear();
}

String PropertyBag::ToText() const {
  std::string out;
  for (const auto& [name, value] : entries_) {
    bool bare = !name.empty();
    for (char16_t c : name) bare = bare && BareNameChar(c);
    if (bare) {
      for (char16_t c : name) out += static_cast<char>(c);
    } else {
      PutQuoted(out, name);
    }
    out += " = ";
    PutValue(out, value);
    out += '\n';
  }
  return FromUtf8(out);
}

std::optional<PropertyBag> PropertyBag::FromText(StringView text, String* error) {
  PropertyBag bag;
  size_t lineNumber = 0;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find(u'\n', start);
    if (end == StringView::npos) end = text.size();
    StringView line = text.substr(start, end - start);
    start = end + 1;
    ++lineNumber;
    if (!line.empty() && line.back() == u'\r') line.remove_suffix(1);
    Reader r(line);
    if (r.AtEnd()) continue;
    String name;
    Variant value;
    bool ok = r.Name(name);
    if (ok && !r.Eat(u'=')) ok = r.Fail("missing '=' after the name");
    if (ok) ok = r.Value(value, 0);
    if (ok && !r.AtEnd()) ok = r.Fail("unexpected text after the value");
    if (ok && bag.Contains(name)) ok = r.Fail("key given twice");
    if (!ok) {
      if (error) *error = FromUtf8("line " + std::to_string(lineNumber) + ": " + r.error);
      return std::nullopt;
    }
    bag.index_.emplace(Fold(name), bag.entries_.size());
    bag.entries_.emplace_back(std::move(name), std::move(value));
  }
  if (error) error->clear();
  return bag;
}

}  // namespace vantor::server
