#include "runtime/Conversion.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include "runtime/Error.h"
#include "runtime/NumberText.h"

namespace vantor {

// The coercions live with the Variant, which applies the same rules wherever a
// value changes type; the language's functions are their public names.
int16_t CInt(const Variant& value) {
  return value.ToInteger();
}
int32_t CLng(const Variant& value) {
  return value.ToLong();
}
uint8_t CByte(const Variant& value) {
  return value.ToByte();
}
double CDbl(const Variant& value) {
  return value.ToDouble();
}
float CSng(const Variant& value) {
  return value.ToSingle();
}
Currency CCur(const Variant& value) {
  return value.ToCurrency();
}
bool CBool(const Variant& value) {
  return value.ToBoolean();
}
Date CDate(const Variant& value) {
  return value.ToDate();
}
String CStr(const Variant& value) {
  return value.ToString();
}

namespace {

int DigitValue(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  return -1;
}

// Val's "&H" and "&O": 16-bit patterns wrap to an Integer, 32-bit ones to a
// Long, and a "&" type suffix asks for the Long ("&HFFFF&" is 65535).
double ValRadix(const std::u16string& s, size_t i) {
  int base = 0;
  if (i < s.size() && (s[i] == u'H' || s[i] == u'h')) base = 16;
  if (i < s.size() && (s[i] == u'O' || s[i] == u'o')) base = 8;
  if (base == 0) return 0.0;
  ++i;
  uint64_t value = 0;
  for (; i < s.size(); ++i) {
    const int d = DigitValue(s[i]);
    if (d < 0 || d >= base) break;
    value = value * static_cast<uint64_t>(base) + static_cast<uint64_t>(d);
    if (value > 0xFFFFFFFFull) {
      Err().Set(errOverflow);
      return 0.0;
    }
  }
  const bool asLong = i < s.size() && s[i] == u'&';
  if (value <= 0xFFFF && !asLong) return static_cast<double>(static_cast<int16_t>(value));
  return static_cast<double>(static_cast<int32_t>(static_cast<uint32_t>(value)));
}

// The value as a bit pattern for Hex and Oct, or false with the error object
// set. Integer and Boolean keep their 16 bits.
bool RadixBits(const Variant& value, uint32_t& bits, int depth = 0) {
  const Variant& v = value.Deref();
  switch (v.Type()) {
    case vbEmpty:
      bits = 0;
      return true;
    case vbInteger:
      bits = static_cast<uint16_t>(*v.As<int16_t>());
      return true;
    case vbBoolean:
      bits = *v.As<bool>() ? 0xFFFFu : 0u;
      return true;
    case vbByte:
      bits = *v.As<uint8_t>();
      return true;
    case vbLong:
      bits = static_cast<uint32_t>(*v.As<int32_t>());
      return true;
    case vbObject: {
      Variant inner;
      const ObjectPtr* object = v.ObjectRef();
      if (depth < 8 && object != nullptr && *object && (*object)->DefaultValue(inner)) {
        return RadixBits(inner, bits, depth + 1);
      }
      break;
    }
    default:
      break;
  }
  if (!v.CanChangeType(vbLong)) {
    (void)v.ToLong();  // records why: 13, 6 or 94
    if (!Err()) Err().Set(errTypeMismatch);
    return false;
  }
  bits = static_cast<uint32_t>(v.ToLong());
  return true;
}

String Radix(const Variant& value, unsigned base) {
  if (value.IsNull()) return {};
  uint32_t bits = 0;
  if (!RadixBits(value, bits)) return {};
  std::string text(16, '\0');
  auto result = std::to_chars(text.data(), text.data() + text.size(), bits, static_cast<int>(base));
  text.resize(static_cast<size_t>(result.ptr - text.data()));
  String out;
  for (char c : text) {
    out.push_back(static_cast<char16_t>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c));
  }
  return out;
}

bool IsNumericValue(const Variant& value, int depth) {
  const Variant& v = value.Deref();
  switch (v.Type()) {
    case vbEmpty:
    case vbInteger:
    case vbLong:
    case vbSingle:
    case vbDouble:
    case vbCurrency:
    case vbDecimal:
    case vbByte:
    case vbBoolean:
      return true;
    case vbString:
      return NumberText::Parse(*v.As<String>()).has_value();
    case vbObject: {
      Variant inner;
      const ObjectPtr* object = v.ObjectRef();
      return depth < 8 && object != nullptr && *object && (*object)->DefaultValue(inner) &&
             IsNumericValue(inner, depth + 1);
    }
    default:
      return false;
  }
}

}  // namespace

double Val(StringView text) {
  // Blanks, tabs and line feeds are dropped wherever they stand: "1 2 3" is 123.
  std::u16string s;
  s.reserve(text.size());
  for (char16_t c : text) {
    if (c != u' ' && c != u'\t' && c != u'\n') s.push_back(c);
  }
  size_t i = 0;
  if (i < s.size() && s[i] == u'&') return ValRadix(s, i + 1);

  bool negative = false;
  if (i < s.size() && (s[i] == u'+' || s[i] == u'-')) {
    negative = s[i] == u'-';
    ++i;
  }
  std::string number;
  bool any = false;
  for (; i < s.size() && s[i] >= u'0' && s[i] <= u'9'; ++i) {
    number.push_back(static_cast<char>(s[i]));
    any = true;
  }
  if (i < s.size() && s[i] == u'.') {
    number.push_back('.');
    for (++i; i < s.size() && s[i] >= u'0' && s[i] <= u'9'; ++i) {
      number.push_back(static_cast<char>(s[i]));
      any = true;
    }
  }
  if (!any) return 0.0;
  if (i < s.size() && (s[i] == u'E' || s[i] == u'e' || s[i] == u'D' || s[i] == u'd')) {
    size_t j = i + 1;
    std::string exponent = "e";
    if (j < s.size() && (s[j] == u'+' || s[j] == u'-'))
      exponent.push_back(static_cast<char>(s[j++]));
    bool digits = false;
    int magnitude = 0;
    for (; j < s.size() && s[j] >= u'0' && s[j] <= u'9'; ++j) {
      // A huge exponent needs no more digits to overflow or vanish.
      if (magnitude < 100000) {
        magnitude = magnitude * 10 + (s[j] - u'0');
        exponent.push_back(static_cast<char>(s[j]));
      }
      digits = true;
    }
    if (digits) number += exponent;  // "1E" alone reads as 1
  }
  double value = 0.0;
  auto [ptr, ec] = std::from_chars(number.data(), number.data() + number.size(), value);
  (void)ptr;
  if (ec == std::errc::result_out_of_range) {
    // Underflow reads as zero; overflow is the platform's error 6.
    const bool tiny = number.find("e-") != std::string::npos;
    if (!tiny) Err().Set(errOverflow);
    return 0.0;
  }
  if (ec != std::errc() || std::isinf(value)) {
    Err().Set(errOverflow);
    return 0.0;
  }
  if (value == 0.0) return 0.0;
  return negative ? -value : value;
}

bool IsNumeric(const Variant& value) {
  return IsNumericValue(value, 0);
}

String Hex(const Variant& value) {
  return Radix(value, 16);
}
String Oct(const Variant& value) {
  return Radix(value, 8);
}

double Int(double value) {
  return std::floor(value);
}
double Fix(double value) {
  return std::trunc(value);
}

double Round(double value, int decimals) {
  if (decimals < 0) {
    Err().Set(errInvalidProcedureCall);
    return 0.0;
  }
  if (!std::isfinite(value) || value == 0.0) return value == 0.0 ? 0.0 : value;
  // Past the last digit a double can hold there is nothing left to round.
  if (decimals > 340) return value;
  // The C library prints the exact decimal value of the double rounded ties to
  // even, which is the platform's rule on the value as stored: 2.675 is
  // 2.67499999... and rounds to 2.67, while 0.125 is a true tie and gives 0.12.
  const int length = std::snprintf(nullptr, 0, "%.*f", decimals, value);
  if (length <= 0) return value;
  std::vector<char> buffer(static_cast<size_t>(length) + 1);
  std::snprintf(buffer.data(), buffer.size(), "%.*f", decimals, value);
  // The printed point follows LC_NUMERIC; from_chars wants ".".
  for (char& c : buffer) {
    if (c == ',') c = '.';
  }
  double rounded = 0.0;
  std::from_chars(buffer.data(), buffer.data() + length, rounded);
  return rounded == 0.0 ? 0.0 : rounded;
}

int32_t RoundToInt(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 2147483647.0) return std::numeric_limits<int32_t>::max();
  if (value <= -2147483648.0) return std::numeric_limits<int32_t>::min();
  double whole = std::floor(value);
  const double fraction = value - whole;
  if (fraction > 0.5 || (fraction == 0.5 && std::fmod(whole, 2.0) != 0.0)) whole += 1.0;
  return static_cast<int32_t>(whole);
}

}  // namespace vantor
