#include "runtime/Strings.h"

#include <algorithm>
#include <new>
#include <string_view>

#include "runtime/Error.h"

namespace vantor {

namespace {

// The longest text the functions build. The platform runs out of string space
// long before a 32-bit length would; past this size a result is error 7
// rather than an allocation that takes the process down.
constexpr size_t kMaxResult = size_t{1} << 28;

bool TooLong(size_t length) {
  if (length <= kMaxResult) return false;
  Err().Set(errOutOfMemory);
  return true;
}

bool IsHighSurrogate(char16_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}
bool IsLowSurrogate(char16_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}

// Case mapping, one UTF-16 unit to one. The system's non-linguistic tables map
// dotless i up to "I" and dotted capital I down to "i"; long s, sharp s, micro
// sign and the Latin-1 letters whose partners lie outside the code page keep
// their form, so a round trip through the "ANSI" code page never changes a
// letter's case.
char16_t UpperUnit(char16_t c) {
  if (c < 0x80) return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
  if (c < 0x100) {
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return static_cast<char16_t>(c - 32);
    return c == 0xFF ? char16_t{0x178} : c;
  }
  if (c < 0x180) {
    if (c == 0x131) return u'I';
    if ((c < 0x130 || (c >= 0x132 && c <= 0x137) || (c >= 0x14A && c <= 0x177)) && (c & 1))
      return static_cast<char16_t>(c - 1);
    if (((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) && !(c & 1))
      return static_cast<char16_t>(c - 1);
    return c;
  }
  if (c >= 0x370 && c < 0x400) {
    if (c == 0x3C2) return 0x3A3;  // final sigma
    if (c >= 0x3B1 && c <= 0x3CB) return static_cast<char16_t>(c - 32);
    if (c == 0x3AC) return 0x386;
    if (c >= 0x3AD && c <= 0x3AF) return static_cast<char16_t>(c - 37);
    if (c == 0x3CC) return 0x38C;
    if (c == 0x3CD || c == 0x3CE) return static_cast<char16_t>(c - 63);
    return c;
  }
  if (c >= 0x400 && c < 0x530) {
    if (c >= 0x430 && c <= 0x44F) return static_cast<char16_t>(c - 32);
    if (c >= 0x450 && c <= 0x45F) return static_cast<char16_t>(c - 80);
    if (c == 0x4CF) return 0x4C0;
    if (((c >= 0x460 && c <= 0x481) || (c >= 0x48A && c <= 0x4BF) || c >= 0x4D0) && (c & 1))
      return static_cast<char16_t>(c - 1);
    if (c >= 0x4C1 && c <= 0x4CE && !(c & 1)) return static_cast<char16_t>(c - 1);
    return c;
  }
  return c;
}

char16_t LowerUnit(char16_t c) {
  if (c < 0x80) return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
  if (c < 0x100) {
    return c >= 0xC0 && c <= 0xDE && c != 0xD7 ? static_cast<char16_t>(c + 32) : c;
  }
  if (c < 0x180) {
    if (c == 0x130) return u'i';
    if (c == 0x178) return 0xFF;
    if ((c < 0x130 || (c >= 0x132 && c <= 0x137) || (c >= 0x14A && c <= 0x177)) && !(c & 1))
      return static_cast<char16_t>(c + 1);
    if (((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) && (c & 1))
      return static_cast<char16_t>(c + 1);
    return c;
  }
  if (c >= 0x370 && c < 0x400) {
    if (c >= 0x391 && c <= 0x3AB && c != 0x3A2) return static_cast<char16_t>(c + 32);
    if (c == 0x386) return 0x3AC;
    if (c >= 0x388 && c <= 0x38A) return static_cast<char16_t>(c + 37);
    if (c == 0x38C) return 0x3CC;
    if (c == 0x38E || c == 0x38F) return static_cast<char16_t>(c + 63);
    return c;
  }
  if (c >= 0x400 && c < 0x530) {
    if (c >= 0x410 && c <= 0x42F) return static_cast<char16_t>(c + 32);
    if (c >= 0x400 && c <= 0x40F) return static_cast<char16_t>(c + 80);
    if (c == 0x4C0) return 0x4CF;
    if (((c >= 0x460 && c <= 0x481) || (c >= 0x48A && c <= 0x4BF) || c >= 0x4D0) && !(c & 1))
      return static_cast<char16_t>(c + 1);
    if (c >= 0x4C1 && c <= 0x4CE && (c & 1)) return static_cast<char16_t>(c + 1);
    return c;
  }
  return c;
}

// Text comparison folds through upper case and back so that every spelling of
// a letter (I, i, dotless i, dotted I; Σ, σ, ς) lands on one unit.
char16_t FoldUnit(char16_t c) {
  return LowerUnit(UpperUnit(c));
}

String Folded(StringView s) {
  String out(s);
  for (char16_t& c : out) c = FoldUnit(c);
  return out;
}

// The text being searched and the text searched for, folded when the
// comparison is textual; positions stay those of the original, since folding
// maps unit to unit.
struct SearchPair {
  String foldedText, foldedFind;
  StringView text, find;
  SearchPair(StringView t, StringView f, VbCompareMethod compare) : text(t), find(f) {
    if (compare == vbTextCompare) {
      foldedText = Folded(t);
      foldedFind = Folded(f);
      text = foldedText;
      find = foldedFind;
    }
  }
  SearchPair(const SearchPair&) = delete;
  SearchPair& operator=(const SearchPair&) = delete;
};

// --- Sort keys of text comparison -----------------------------------------
// The locale's order, reduced to what the library's texts hold: controls,
// then blanks and punctuation, then digits, then Latin letters by base letter
// (accents only break ties between otherwise equal texts), then Greek, then
// Cyrillic, then everything else by code.

// Base letter and accent of U+00C0..U+017F, lower case; "{" is thorn, which
// sorts after z, and "-" marks the two signs of the block.
constexpr std::u16string_view kLatinBase =
    u"aaaaaaaceeeeiiiidnooooo-ouuuuy{s"   // U+00C0
    u"aaaaaaaceeeeiiiidnooooo-ouuuuy{y"   // U+00E0
    u"aaaaaaccccccccddddeeeeeeeeeegggg"   // U+0100
    u"gggghhhhiiiiiiiiiiiijjkkklllllll"   // U+0120
    u"lllnnnnnnnnnoooooooorrrrrrssssss"   // U+0140
    u"ssttttttuuuuuuuuuuuuwwyyyzzzzzzs";  // U+0160
// Accents by letter code: acute, grave, breve, circumflex, caron (v), ring,
// diaeresis, double acute (h), tilde, dot (o), cedilla (z), ogonek (q),
// macron, stroke, middle dot (p), ligature, eth, dotless, kra, apostrophe (n),
// sharp s (x), eng (w), long s (f).
constexpr std::u16string_view kLatinMark =
    u"gactdrlzgacdgacdetgactd.sgacda.x"   // U+00C0
    u"gactdrlzgacdgacdetgactd.sgacda.d"   // U+00E0
    u"mmbbqqaaccoovvvvssmmbbooqqvvccbb"   // U+0100
    u"oozzccssttmmbbqqoillcczzkaazzvvp"   // U+0120
    u"pssaazzvvnwwmmbbhhllaazzvvaacczz"   // U+0140
    u"vvzzvvssttmmbbrrhhqqccccdaaoovvf";  // U+0160
constexpr std::u16string_view kMarkOrder = u".agbcvrdhtozqmsplejknxwf";

constexpr uint32_t kMarkSuperscript = 30;

enum Group : uint32_t {
  kControl = 0,
  kSymbol = 1,
  kDigit = 2,
  kLatin = 3,
  kGreek = 4,
  kCyrillic = 5,
  kOther = 6
};

struct SortKey {
  uint32_t primary;
  uint32_t secondary;
};

constexpr uint32_t Primary(Group g, uint32_t key) {
  return (static_cast<uint32_t>(g) << 20) | key;
}

uint32_t MarkRank(char16_t code) {
  const size_t at = kMarkOrder.find(code);
  return at == std::u16string_view::npos ? 0 : static_cast<uint32_t>(at);
}

bool IsSymbol(char16_t c) {
  return (c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c < 0xC0) || c == 0xD7 || c == 0xF7 ||
         (c >= 0x2000 && c < 0x2C00) || (c >= 0x3000 && c < 0x3040);
}

// Takes a folded (lower-case) unit.
SortKey KeyOf(char16_t c) {
  if (c >= u'0' && c <= u'9') return {Primary(kDigit, c - u'0'), 0};
  if (c == 0xB9) return {Primary(kDigit, 1), kMarkSuperscript};
  if (c == 0xB2 || c == 0xB3) return {Primary(kDigit, c - 0xB0u), kMarkSuperscript};
  if (c >= u'a' && c <= u'z') return {Primary(kLatin, c - u'a' + 1u), 0};
  if (c >= 0xC0 && c < 0x180 && kLatinBase[c - 0xC0] != u'-') {
    return {Primary(kLatin, kLatinBase[c - 0xC0] - u'a' + 1u), MarkRank(kLatinMark[c - 0xC0])};
  }
  if (c < 0x20 || c == 0x7F || (c >= 0x80 && c < 0xA0)) return {Primary(kControl, c), 0};
  if (IsSymbol(c)) return {Primary(kSymbol, c), 0};
  if (c >= 0x386 && c <= 0x3CE) {
    // Greek letters with tonos or dialytika sort with their bare letter.
    switch (c) {
      case 0x3AC:
        return {Primary(kGreek, 0x3B1), MarkRank(u'a')};
      case 0x3AD:
        return {Primary(kGreek, 0x3B5), MarkRank(u'a')};
      case 0x3AE:
        return {Primary(kGreek, 0x3B7), MarkRank(u'a')};
      case 0x3AF:
        return {Primary(kGreek, 0x3B9), MarkRank(u'a')};
      case 0x3CC:
        return {Primary(kGreek, 0x3BF), MarkRank(u'a')};
      case 0x3CD:
        return {Primary(kGreek, 0x3C5), MarkRank(u'a')};
      case 0x3CE:
        return {Primary(kGreek, 0x3C9), MarkRank(u'a')};
      case 0x3CA:
        return {Primary(kGreek, 0x3B9), MarkRank(u'd')};
      case 0x3CB:
        return {Primary(kGreek, 0x3C5), MarkRank(u'd')};
      case 0x390:
        return {Primary(kGreek, 0x3B9), MarkRank(u'd') + 1};
      case 0x3B0:
        return {Primary(kGreek, 0x3C5), MarkRank(u'd') + 1};
      default:
        return {Primary(kGreek, c), 0};
    }
  }
  if (c >= 0x400 && c < 0x530) {
    if (c == 0x451) return {Primary(kCyrillic, 0x435), MarkRank(u'd')};  // ё with е
    return {Primary(kCyrillic, c), 0};
  }
  return {Primary(kOther, c), 0};
}

int32_t Sign(int64_t v) {
  return v < 0 ? -1 : (v > 0 ? 1 : 0);
}

int32_t CompareText(StringView a, StringView b) {
  const String fa = Folded(a);
  const String fb = Folded(b);
  const size_t n = std::min(fa.size(), fb.size());
  // Base letters of the whole texts first, then accents; case never counts.
  for (size_t i = 0; i < n; ++i) {
    const uint32_t pa = KeyOf(fa[i]).primary;
    const uint32_t pb = KeyOf(fb[i]).primary;
    if (pa != pb) return pa < pb ? -1 : 1;
  }
  if (fa.size() != fb.size()) return fa.size() < fb.size() ? -1 : 1;
  for (size_t i = 0; i < n; ++i) {
    const uint32_t sa = KeyOf(fa[i]).secondary;
    const uint32_t sb = KeyOf(fb[i]).secondary;
    if (sa != sb) return sa < sb ? -1 : 1;
  }
  // Distinct folded texts never compare equal.
  return Sign(fa.compare(fb));
}

String Repeat(size_t count, char16_t ch) {
  if (TooLong(count)) return {};
  try {
    return String(count, ch);
  } catch (const std::bad_alloc&) {
    Err().Set(errOutOfMemory);
    return {};
  }
}

int32_t Length32(size_t n) {
  return static_cast<int32_t>(std::min<size_t>(n, INT32_MAX));
}

}  // namespace

int32_t Len(StringView s) {
  return Length32(s.size());
}

int32_t InStr(int32_t start, StringView s, StringView find, VbCompareMethod compare) {
  if (start < 1) {
    Err().Set(errInvalidProcedureCall);
    return 0;
  }
  if (s.empty()) return 0;
  const size_t from = static_cast<size_t>(start) - 1;
  if (find.empty()) return from <= s.size() ? start : 0;
  if (from >= s.size()) return 0;
  const SearchPair p(s, find, compare);
  const size_t at = p.text.find(p.find, from);
  return at == StringView::npos ? 0 : Length32(at + 1);
}

int32_t InStr(StringView s, StringView find, VbCompareMethod compare) {
  return InStr(1, s, find, compare);
}

int32_t InStrRev(StringView s, StringView find, int32_t start, VbCompareMethod compare) {
  if (start == 0 || start < -1) {
    Err().Set(errInvalidProcedureCall);
    return 0;
  }
  if (s.empty()) return 0;
  const size_t len = s.size();
  if (start == -1) start = Length32(len);
  if (static_cast<size_t>(start) > len) return 0;
  if (find.empty()) return start;
  if (find.size() > static_cast<size_t>(start)) return 0;
  const SearchPair p(s, find, compare);
  // The match must end at or before start.
  const size_t at = p.text.rfind(p.find, static_cast<size_t>(start) - find.size());
  return at == StringView::npos ? 0 : Length32(at + 1);
}

String Mid(StringView s, int32_t start, int32_t length) {
  if (start < 1 || length < -1) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  const size_t from = static_cast<size_t>(start) - 1;
  if (from >= s.size()) return {};
  return String(length == -1 ? s.substr(from) : s.substr(from, static_cast<size_t>(length)));
}

String Left(StringView s, int32_t length) {
  if (length < 0) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  return String(s.substr(0, static_cast<size_t>(length)));
}

String Right(StringView s, int32_t length) {
  if (length < 0) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  const size_t n = std::min(s.size(), static_cast<size_t>(length));
  return String(s.substr(s.size() - n));
}

String LTrim(StringView s) {
  const size_t at = s.find_first_not_of(u' ');
  return at == StringView::npos ? String() : String(s.substr(at));
}

String RTrim(StringView s) {
  const size_t at = s.find_last_not_of(u' ');
  return at == StringView::npos ? String() : String(s.substr(0, at + 1));
}

String Trim(StringView s) {
  const size_t first = s.find_first_not_of(u' ');
  if (first == StringView::npos) return {};
  const size_t last = s.find_last_not_of(u' ');
  return String(s.substr(first, last - first + 1));
}

String LCase(StringView s) {
  String out(s);
  for (char16_t& c : out) c = LowerUnit(c);
  return out;
}

String UCase(StringView s) {
  String out(s);
  for (char16_t& c : out) c = UpperUnit(c);
  return out;
}

String Replace(StringView expression, StringView find, StringView replaceWith, int32_t start,
               int32_t count, VbCompareMethod compare) {
  if (start < 1 || count < -1) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  const size_t from = static_cast<size_t>(start) - 1;
  if (from >= expression.size()) return {};
  const StringView tail = expression.substr(from);
  if (find.empty() || count == 0) return String(tail);

  const SearchPair p(tail, find, compare);
  std::vector<size_t> hits;
  for (size_t at = p.text.find(p.find); at != StringView::npos;
       at = p.text.find(p.find, at + find.size())) {
    hits.push_back(at);
    if (count != -1 && hits.size() == static_cast<size_t>(count)) break;
  }
  // Sizes are at most 2^31 each, so the product cannot wrap 64 bits.
  const size_t total = tail.size() - hits.size() * find.size() + hits.size() * replaceWith.size();
  if (TooLong(total)) return {};
  String out;
  out.reserve(total);
  size_t pos = 0;
  for (size_t at : hits) {
    out.append(tail.substr(pos, at - pos));
    out.append(replaceWith);
    pos = at + find.size();
  }
  out.append(tail.substr(pos));
  return out;
}

std::vector<String> Split(StringView expression, StringView delimiter, int32_t limit,
                          VbCompareMethod compare) {
  if (limit < -1) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  if (expression.empty() || limit == 0) return {};
  if (delimiter.empty() || limit == 1) return {String(expression)};
  const SearchPair p(expression, delimiter, compare);
  std::vector<String> parts;
  size_t pos = 0;
  while (limit == -1 || parts.size() + 1 < static_cast<size_t>(limit)) {
    const size_t at = p.text.find(p.find, pos);
    if (at == StringView::npos) break;
    parts.emplace_back(expression.substr(pos, at - pos));
    pos = at + delimiter.size();
  }
  parts.emplace_back(expression.substr(pos));
  return parts;
}

String Join(const std::vector<String>& parts, StringView delimiter) {
  if (parts.empty()) return {};
  size_t total = delimiter.size() * (parts.size() - 1);
  for (const String& part : parts) {
    total += part.size();
    if (TooLong(total)) return {};
  }
  if (TooLong(total)) return {};
  String out;
  out.reserve(total);
  for (size_t i = 0; i < parts.size(); ++i) {
    if (i) out.append(delimiter);
    out.append(parts[i]);
  }
  return out;
}

int32_t StrComp(StringView a, StringView b, VbCompareMethod compare) {
  if (compare == vbTextCompare) return CompareText(a, b);
  return Sign(a.compare(b));
}

String Space(int32_t count) {
  if (count < 0) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  return Repeat(static_cast<size_t>(count), u' ');
}

String StringOf(int32_t count, char16_t character) {
  if (count < 0) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  return Repeat(static_cast<size_t>(count), character);
}

String StrReverse(StringView s) {
  String out;
  out.reserve(s.size());
  // Walking back from the end, a surrogate pair is one character and keeps
  // its two halves in order.
  for (size_t i = s.size(); i > 0; --i) {
    if (i >= 2 && IsLowSurrogate(s[i - 1]) && IsHighSurrogate(s[i - 2])) {
      out.push_back(s[i - 2]);
      out.push_back(s[i - 1]);
      --i;
    } else {
      out.push_back(s[i - 1]);
    }
  }
  return out;
}

String Chr(int32_t code) {
  if (code < 0 || code > 255) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  return String(1, AnsiToChar(static_cast<uint8_t>(code)));
}

String ChrW(int32_t code) {
  if (code < -32768 || code > 65535) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  return String(1, static_cast<char16_t>(code < 0 ? code + 65536 : code));
}

int32_t Asc(StringView s) {
  if (s.empty()) {
    Err().Set(errInvalidProcedureCall);
    return 0;
  }
  const int b = CharToAnsi(s[0]);
  return b < 0 ? '?' : b;
}

int32_t AscW(StringView s) {
  if (s.empty()) {
    Err().Set(errInvalidProcedureCall);
    return 0;
  }
  // The platform's AscW is an Integer: units from U+8000 up come out negative.
  return static_cast<int16_t>(s[0]);
}

}  // namespace vantor
