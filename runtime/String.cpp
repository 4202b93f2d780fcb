#include "runtime/String.h"

#include <algorithm>
#include <array>

namespace vantor {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

// Windows-1252 bytes 0x80..0x9F; the rest of the code page is Latin-1.
constexpr std::array<char16_t, 32> kHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AppendCodePoint(String& out, char32_t cp) {
  if (cp < 0x10000) {
    out.push_back(static_cast<char16_t>(cp));
  } else {
    cp -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
  }
}

}  // namespace

String FromUtf8(std::string_view in) {
  String out;
  out.reserve(in.size());
  size_t i = 0;
  const size_t n = in.size();
  while (i < n) {
    const auto b0 = static_cast<uint8_t>(in[i]);
    if (b0 < 0x80) {
      out.push_back(b0);
      ++i;
      continue;
    }
    int extra;
    char32_t cp;
    char32_t min;
    if ((b0 & 0xE0) == 0xC0) {
      extra = 1, cp = b0 & 0x1F, min = 0x80;
    } else if ((b0 & 0xF0) == 0xE0) {
      extra = 2, cp = b0 & 0x0F, min = 0x800;
    } else if ((b0 & 0xF8) == 0xF0) {
      extra = 3, cp = b0 & 0x07, min = 0x10000;
    } else {
      out.push_back(kReplacement);
      ++i;
      continue;
    }
    size_t j = i + 1;
    bool ok = true;
    for (int k = 0; k < extra; ++k, ++j) {
      if (j >= n || (static_cast<uint8_t>(in[j]) & 0xC0) != 0x80) {
        ok = false;
        break;
      }
      cp = (cp << 6) | (static_cast<uint8_t>(in[j]) & 0x3F);
    }
    // Overlong forms, surrogates and values past U+10FFFF are ill-formed; the
    // bytes read so far are replaced once and reading resumes behind them.
    if (!ok || cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
      out.push_back(kReplacement);
      i = ok ? j : std::max(j, i + 1);
      continue;
    }
    AppendCodePoint(out, cp);
    i = j;
  }
  return out;
}

std::string ToUtf8(StringView in) {
  std::string out;
  out.reserve(in.size());
  for (size_t i = 0; i < in.size(); ++i) {
    char32_t cp = in[i];
    if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < in.size() && in[i + 1] >= 0xDC00 &&
        in[i + 1] <= 0xDFFF) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (in[i + 1] - 0xDC00);
      ++i;
    } else if (cp >= 0xD800 && cp <= 0xDFFF) {
      cp = kReplacement;
    }
    if (cp < 0x80) {
      out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
  }
  return out;
}

char16_t AnsiToChar(uint8_t byte) {
  return byte >= 0x80 && byte < 0xA0 ? kHigh[byte - 0x80] : static_cast<char16_t>(byte);
}

int CharToAnsi(char16_t ch) {
  if (ch < 0x80 || (ch >= 0xA0 && ch <= 0xFF)) return ch;
  for (size_t i = 0; i < kHigh.size(); ++i) {
    if (kHigh[i] == ch) return static_cast<int>(0x80 + i);
  }
  return -1;
}

String FromAnsi(std::string_view in) {
  String out;
  out.reserve(in.size());
  for (char c : in) out.push_back(AnsiToChar(static_cast<uint8_t>(c)));
  return out;
}

std::string ToAnsi(StringView in) {
  std::string out;
  out.reserve(in.size());
  for (size_t i = 0; i < in.size(); ++i) {
    const int b = CharToAnsi(in[i]);
    out.push_back(b < 0 ? '?' : static_cast<char>(b));
    // A surrogate pair is one character and one '?'.
    if (in[i] >= 0xD800 && in[i] <= 0xDBFF && i + 1 < in.size() && in[i + 1] >= 0xDC00 &&
        in[i + 1] <= 0xDFFF)
      ++i;
  }
  return out;
}

}  // namespace vantor
