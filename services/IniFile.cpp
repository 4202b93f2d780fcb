#include "services/IniFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "runtime/Strings.h"

namespace vantor::services {
namespace {

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\v' || c == u'\f';
}

// The profile functions trim tabs as well as blanks, unlike the language's Trim.
StringView TrimBlanks(StringView s) {
  size_t b = 0;
  size_t e = s.size();
  while (b < e && IsBlank(s[b])) ++b;
  while (e > b && IsBlank(s[e - 1])) --e;
  return s.substr(b, e - b);
}

String Lowered(StringView s) {
  return LCase(TrimBlanks(s));
}

bool ValidUtf8(std::string_view bytes) {
  size_t i = 0;
  while (i < bytes.size()) {
    const auto b = static_cast<unsigned char>(bytes[i]);
    if (b < 0x80) {
      ++i;
      continue;
    }
    size_t extra;
    uint32_t cp;
    if ((b & 0xE0) == 0xC0) {
      extra = 1;
      cp = b & 0x1Fu;
    } else if ((b & 0xF0) == 0xE0) {
      extra = 2;
      cp = b & 0x0Fu;
    } else if ((b & 0xF8) == 0xF0) {
      extra = 3;
      cp = b & 0x07u;
    } else {
      return false;
    }
    if (i + extra >= bytes.size()) return false;
    for (size_t k = 1; k <= extra; ++k) {
      const auto c = static_cast<unsigned char>(bytes[i + k]);
      if ((c & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (c & 0x3Fu);
    }
    // Overlong forms, surrogates and values past the last code point are
    // what a code page's bytes look like by accident, not UTF-8.
    static constexpr uint32_t kMin[] = {0, 0x80, 0x800, 0x10000};
    if (cp < kMin[extra] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    i += extra + 1;
  }
  return true;
}

String FromUtf16(std::string_view bytes, bool bigEndian) {
  String out;
  out.reserve(bytes.size() / 2);
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto a = static_cast<unsigned char>(bytes[i]);
    const auto b = static_cast<unsigned char>(bytes[i + 1]);
    out.push_back(static_cast<char16_t>(bigEndian ? (a << 8) | b : (b << 8) | a));
  }
  return out;
}

std::string ToUtf16(StringView text, bool bigEndian) {
  std::string out;
  out.reserve(2 + text.size() * 2);
  out += bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (char16_t c : text) {
    const auto hi = static_cast<char>(c >> 8);
    const auto lo = static_cast<char>(c & 0xFF);
    out.push_back(bigEndian ? hi : lo);
    out.push_back(bigEndian ? lo : hi);
  }
  return out;
}

bool IsLineBreakOrNul(char16_t c) {
  return c == u'\0' || c == u'\r' || c == u'\n';
}

}  // namespace

IniFile IniFile::FromBytes(std::string_view bytes) {
  IniFile ini;
  ini.exists_ = true;
  String text;
  if (bytes.starts_with("\xEF\xBB\xBF")) {
    ini.encoding_ = Encoding::Utf8Bom;
    text = FromUtf8(bytes.substr(3));
  } else if (bytes.starts_with("\xFF\xFE")) {
    ini.encoding_ = Encoding::Utf16Le;
    text = FromUtf16(bytes.substr(2), false);
  } else if (bytes.starts_with("\xFE\xFF")) {
    ini.encoding_ = Encoding::Utf16Be;
    text = FromUtf16(bytes.substr(2), true);
  } else if (ValidUtf8(bytes)) {
    ini.encoding_ = Encoding::Utf8;
    text = FromUtf8(bytes);
  } else {
    ini.encoding_ = Encoding::Ansi;
    text = FromAnsi(bytes);
  }

  const size_t firstBreak = text.find(u'\n');
  if (firstBreak != String::npos && firstBreak > 0 && text[firstBreak - 1] == u'\r') {
    ini.newline_ = u"\r\n";
  }
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find(u'\n', start);
    const bool last = end == String::npos;
    if (last) end = text.size();
    size_t cut = end;
    if (cut > start && text[cut - 1] == u'\r') --cut;
    ini.lines_.emplace_back(text, start, cut - start);
    start = last ? text.size() : end + 1;
  }
  ini.finalNewline_ = text.empty() || text.back() == u'\n';
  return ini;
}

IniFile IniFile::Load(const std::string& path) {
  // Non-blocking, so that a path naming a pipe cannot hang the caller; only
  // a regular file is read.
  const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return IniFile();
  struct stat st {};
  std::string bytes;
  bool ok = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  if (ok) {
    char buffer[65536];
    for (;;) {
      const ssize_t n = ::read(fd, buffer, sizeof buffer);
      if (n > 0) {
        bytes.append(buffer, static_cast<size_t>(n));
      } else if (n == 0) {
        break;
      } else if (errno != EINTR) {
        ok = false;
        break;
      }
    }
  }
  ::close(fd);
  return ok ? FromBytes(bytes) : IniFile();
}

bool IniFile::Save(const std::string& path) const {
  const std::string bytes = Bytes();
  struct stat st {};
  if (::stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode)) return false;
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  bool ok = true;
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n > 0) {
      done += static_cast<size_t>(n);
    } else if (n < 0 && errno == EINTR) {
      continue;
    } else {
      ok = false;
      break;
    }
  }
  if (::close(fd) != 0) ok = false;
  return ok;
}

IniFile::Parsed IniFile::Parse(StringView line) {
  Parsed p;
  const StringView t = TrimBlanks(line);
  if (t.empty() || t.front() == u';' || t.front() == u'#') return p;
  if (t.front() == u'[') {
    const size_t close = t.rfind(u']');
    if (close != StringView::npos) {
      p.kind = LineKind::Section;
      p.name = String(TrimBlanks(t.substr(1, close - 1)));
      return p;
    }
    // Without its "]" the line is no header; the platform reads it as a key.
  }
  p.kind = LineKind::Key;
  const size_t eq = t.find(u'=');
  if (eq == StringView::npos) {
    p.name = String(t);
    return p;
  }
  p.name = String(TrimBlanks(t.substr(0, eq)));
  p.value = String(TrimBlanks(t.substr(eq + 1)));
  p.hasValue = true;
  return p;
}

size_t IniFile::FindSection(StringView lowered) const {
  for (size_t i = 0; i < lines_.size(); ++i) {
    const Parsed p = Parse(lines_[i]);
    if (p.kind == LineKind::Section && LCase(p.name) == lowered) return i;
  }
  return String::npos;
}

size_t IniFile::SectionEnd(size_t header) const {
  size_t i = header + 1;
  while (i < lines_.size() && Parse(lines_[i]).kind != LineKind::Section) ++i;
  return i;
}

std::optional<String> IniFile::Get(StringView section, StringView key) const {
  const String s = Lowered(section);
  const String k = Lowered(key);
  if (s.empty() || k.empty()) return std::nullopt;
  const size_t header = FindSection(s);
  if (header == String::npos) return std::nullopt;
  const size_t end = SectionEnd(header);
  for (size_t i = header + 1; i < end; ++i) {
    Parsed p = Parse(lines_[i]);
    if (p.kind != LineKind::Key || LCase(p.name) != k) continue;
    if (!p.hasValue) return std::nullopt;
    String v = std::move(p.value);
    if (v.size() >= 2 && (v.front() == u'"' || v.front() == u'\'') && v.back() == v.front()) {
      v = v.substr(1, v.size() - 2);
    }
    const size_t nul = v.find(u'\0');
    if (nul != String::npos) v.resize(nul);
    return v;
  }
  return std::nullopt;
}

bool IniFile::Set(StringView section, StringView key, StringView value) {
  const StringView s = TrimBlanks(section);
  const StringView k = TrimBlanks(key);
  if (s.empty() || k.empty()) return false;
  for (char16_t c : s) {
    if (IsLineBreakOrNul(c) || c == u']') return false;
  }
  for (char16_t c : k) {
    if (IsLineBreakOrNul(c) || c == u'=') return false;
  }
  if (k.front() == u'[' || k.front() == u';' || k.front() == u'#') return false;
  size_t cut = 0;
  while (cut < value.size() && !IsLineBreakOrNul(value[cut])) ++cut;
  const StringView v = value.substr(0, cut);

  finalNewline_ = true;
  const size_t header = FindSection(LCase(s));
  if (header == String::npos) {
    if (!lines_.empty() && !TrimBlanks(lines_.back()).empty()) lines_.emplace_back();
    lines_.push_back(u"[" + String(s) + u"]");
    lines_.push_back(String(k) + u"=" + String(v));
    return true;
  }
  const size_t end = SectionEnd(header);
  const String lowered = LCase(k);
  size_t after = header + 1;
  for (size_t i = header + 1; i < end; ++i) {
    const Parsed p = Parse(lines_[i]);
    if (p.kind == LineKind::Key && LCase(p.name) == lowered) {
      // The key keeps the spelling the file gave it.
      lines_[i] = p.name + u"=" + String(v);
      return true;
    }
    if (!TrimBlanks(lines_[i]).empty()) after = i + 1;
  }
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(after), String(k) + u"=" + String(v));
  return true;
}

String IniFile::Text() const {
  String out;
  for (size_t i = 0; i < lines_.size(); ++i) {
    if (i > 0) out += newline_;
    out += lines_[i];
  }
  if (finalNewline_ && !lines_.empty()) out += newline_;
  return out;
}

std::string IniFile::Bytes() const {
  const String text = Text();
  switch (encoding_) {
    case Encoding::Utf8Bom:
      return "\xEF\xBB\xBF" + ToUtf8(text);
    case Encoding::Ansi:
      return ToAnsi(text);
    case Encoding::Utf16Le:
      return ToUtf16(text, false);
    case Encoding::Utf16Be:
      return ToUtf16(text, true);
    case Encoding::Utf8:
      break;
  }
  return ToUtf8(text);
}

}  // namespace vantor::services
