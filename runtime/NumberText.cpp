#include "runtime/NumberText.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <system_error>

namespace vantor {

namespace {

// The blanks the platform's number reader skips around a number.
bool IsBlank(char16_t c) {
  return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u'\u00A0';
}

bool IsDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  return -1;
}

bool StartsWith(StringView text, size_t at, StringView prefix) {
  return !prefix.empty() && text.size() - at >= prefix.size() &&
         text.substr(at, prefix.size()) == prefix;
}

// "&H" and "&O" texts keep the width of the smallest integer that holds their
// bit pattern, so "&HFFFF" is the Integer -1 and "&HFFFFFFFF" the Long -1.
std::optional<double> ParseRadix(StringView text, size_t i) {
  const size_t n = text.size();
  if (i + 1 >= n) return std::nullopt;
  const char16_t kind = text[i + 1];
  int base = 0;
  if (kind == u'H' || kind == u'h') base = 16;
  if (kind == u'O' || kind == u'o') base = 8;
  if (base == 0) return std::nullopt;
  i += 2;
  uint64_t value = 0;
  size_t digits = 0;
  while (i < n) {
    const int d = HexDigit(text[i]);
    if (d < 0 || d >= base) break;
    value = value * static_cast<uint64_t>(base) + static_cast<uint64_t>(d);
    if (value > 0xFFFFFFFFull) return std::nullopt;  // the platform overflows here
    ++digits;
    ++i;
  }
  while (i < n && IsBlank(text[i])) ++i;
  if (digits == 0 || i != n) return std::nullopt;
  if (value <= 0xFFFF) return static_cast<double>(static_cast<int16_t>(value));
  return static_cast<double>(static_cast<int32_t>(static_cast<uint32_t>(value)));
}

// digits (ASCII, any leading zeros) times ten to exponent10, correctly rounded.
std::optional<double> FromDecimal(std::string digits, int64_t exponent10) {
  size_t first = digits.find_first_not_of('0');
  if (first == std::string::npos) return 0.0;
  digits.erase(0, first);
  // Past a few hundred digits only whether anything non-zero follows matters
  // for the rounding; keep a sticky digit in its place.
  constexpr size_t kKeep = 780;
  if (digits.size() > kKeep) {
    const bool sticky = digits.find_first_not_of('0', kKeep) != std::string::npos;
    exponent10 += static_cast<int64_t>(digits.size() - kKeep);
    digits.resize(kKeep);
    if (sticky) {
      digits.push_back('1');
      exponent10 -= 1;
    }
  }
  const int64_t magnitude = static_cast<int64_t>(digits.size()) + exponent10;
  if (magnitude > 310) return std::nullopt;  // overflow
  if (magnitude < -330) return 0.0;
  digits += 'e';
  digits += std::to_string(exponent10);
  double value = 0.0;
  auto [ptr, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (ec == std::errc::result_out_of_range) {
    if (magnitude > 0) return std::nullopt;
    return 0.0;
  }
  if (ec != std::errc() || std::isinf(value)) return std::nullopt;
  return value;
}

// 15 (or 7) significant digits of |value| and the decimal exponent of the
// first: 1234.5 gives "123450000000000" and 3.
void SignificantDigits(double value, int precision, std::string& digits, int& exponent10) {
  char buffer[64];
  auto result = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value),
                              std::chars_format::scientific, precision - 1);
  digits.clear();
  const char* p = buffer;
  for (; p < result.ptr && *p != 'e'; ++p) {
    if (*p >= '0' && *p <= '9') digits.push_back(*p);
  }
  exponent10 = 0;
  if (p < result.ptr) {
    ++p;  // 'e'
    std::from_chars(*p == '+' ? p + 1 : p, result.ptr, exponent10);
  }
}

String GeneralText(double value, int precision, const Locale& locale) {
  if (std::isnan(value)) return String(u"-1") + locale.DecimalSeparator() + u"#IND";
  if (std::isinf(value)) {
    return String(value < 0 ? u"-1" : u"1") + locale.DecimalSeparator() + u"#INF";
  }
  if (value == 0.0) return u"0";
  std::string digits;
  int exponent10 = 0;
  SignificantDigits(value, precision, digits, exponent10);
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();

  String out;
  if (value < 0) out.push_back(u'-');
  auto put = [&out](char c) { out.push_back(static_cast<char16_t>(c)); };
  if (exponent10 >= precision || exponent10 < -4) {
    put(digits[0]);
    if (digits.size() > 1) {
      out.push_back(locale.DecimalSeparator());
      for (size_t k = 1; k < digits.size(); ++k) put(digits[k]);
    }
    out.push_back(u'E');
    out.push_back(exponent10 < 0 ? u'-' : u'+');
    const std::string e = std::to_string(exponent10 < 0 ? -exponent10 : exponent10);
    if (e.size() < 2) out.push_back(u'0');
    for (char c : e) put(c);
    return out;
  }
  if (exponent10 < 0) {
    out += u"0";
    out.push_back(locale.DecimalSeparator());
    for (int k = -1; k > exponent10; --k) out.push_back(u'0');
    for (char c : digits) put(c);
    return out;
  }
  const size_t whole = static_cast<size_t>(exponent10) + 1;
  for (size_t k = 0; k < whole; ++k) put(k < digits.size() ? digits[k] : '0');
  if (digits.size() > whole) {
    out.push_back(locale.DecimalSeparator());
    for (size_t k = whole; k < digits.size(); ++k) put(digits[k]);
  }
  return out;
}

}  // namespace

std::optional<double> NumberText::Parse(StringView text, const Locale& locale) {
  const size_t n = text.size();
  const StringView currency = locale.CurrencySymbol();
  const char16_t decimal = locale.DecimalSeparator();
  const char16_t thousands = locale.ThousandsSeparator();
  size_t i = 0;
  bool negative = false, sign = false, symbol = false, open = false;

  // Blanks, one sign, one currency symbol and one "(" may lead, in any order.
  while (i < n) {
    const char16_t c = text[i];
    if (IsBlank(c)) {
      ++i;
    } else if (!sign && !open && (c == u'+' || c == u'-')) {
      sign = true;
      negative = c == u'-';
      ++i;
    } else if (!symbol && StartsWith(text, i, currency)) {
      symbol = true;
      i += currency.size();
    } else if (!open && !sign && c == u'(') {
      open = true;
      ++i;
    } else {
      break;
    }
  }
  if (i < n && text[i] == u'&') {
    if (sign || symbol || open) return std::nullopt;
    return ParseRadix(text, i);
  }

  std::string digits;
  int64_t fraction = 0;
  bool any = false;
  while (i < n) {
    const char16_t c = text[i];
    if (IsDigit(c)) {
      digits.push_back(static_cast<char>(c));
      any = true;
    } else if (c != thousands || !any) {
      // The platform takes thousands separators anywhere after the first digit
      // of the whole part, without checking the groups of three: in pt-BR
      // "1.5" is 15.
      break;
    }
    ++i;
  }
  if (i < n && text[i] == decimal) {
    ++i;
    while (i < n && IsDigit(text[i])) {
      digits.push_back(static_cast<char>(text[i]));
      ++fraction;
      any = true;
      ++i;
    }
  }
  if (!any) return std::nullopt;

  int64_t exponent = 0;
  if (i < n && (text[i] == u'E' || text[i] == u'e' || text[i] == u'D' || text[i] == u'd')) {
    ++i;
    bool expNegative = false;
    if (i < n && (text[i] == u'+' || text[i] == u'-')) {
      expNegative = text[i] == u'-';
      ++i;
    }
    if (i >= n || !IsDigit(text[i])) return std::nullopt;
    while (i < n && IsDigit(text[i])) {
      if (exponent < 100000) exponent = exponent * 10 + (text[i] - u'0');
      ++i;
    }
    if (expNegative) exponent = -exponent;
  }

  bool closed = false;
  while (i < n) {
    const char16_t c = text[i];
    if (IsBlank(c)) {
      ++i;
    } else if (!sign && !open && (c == u'+' || c == u'-')) {
      sign = true;
      negative = c == u'-';
      ++i;
    } else if (!symbol && StartsWith(text, i, currency)) {
      symbol = true;
      i += currency.size();
    } else if (open && !closed && c == u')') {
      closed = true;
      ++i;
    } else {
      break;
    }
  }
  if (i != n || open != closed) return std::nullopt;

  auto value = FromDecimal(std::move(digits), exponent - fraction);
  if (!value) return std::nullopt;
  if (*value == 0.0) return 0.0;
  return (negative || open) ? -*value : *value;
}

String NumberText::General(double value, const Locale& locale) {
  return GeneralText(value, 15, locale);
}

String NumberText::GeneralSingle(float value, const Locale& locale) {
  return GeneralText(static_cast<double>(value), 7, locale);
}

String NumberText::FromCurrency(int64_t raw, const Locale& locale) {
  const bool negative = raw < 0;
  const uint64_t magnitude =
      negative ? static_cast<uint64_t>(0) - static_cast<uint64_t>(raw) : static_cast<uint64_t>(raw);
  const uint64_t whole = magnitude / 10000;
  uint64_t fraction = magnitude % 10000;
  String out;
  if (negative) out.push_back(u'-');
  for (char c : std::to_string(whole)) out.push_back(static_cast<char16_t>(c));
  if (fraction != 0) {
    std::string f = std::to_string(fraction);
    f.insert(0, 4 - f.size(), '0');
    while (f.back() == '0') f.pop_back();
    out.push_back(locale.DecimalSeparator());
    for (char c : f) out.push_back(static_cast<char16_t>(c));
  }
  return out;
}

}  // namespace vantor
