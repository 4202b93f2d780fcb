#pragma once
// Numbers to and from text under a locale: the parsing that CDbl and
// IsNumeric share and the general number-to-text conversion of CStr.
#include <optional>

#include "runtime/Locale.h"
#include "runtime/String.h"

namespace vantor {

class NumberText {
 public:
  // The platform's reading of a numeric text: blanks around; a sign before or
  // after, or parentheses; the locale's thousands separator in the whole part;
  // the locale's decimal separator; an exponent "E" or "D"; the locale's
  // currency symbol before or after; "&H" (hexadecimal) and "&O" (octal),
  // whose 16- and 32-bit patterns wrap negative. Nothing when the text is no
  // number.
  static std::optional<double> Parse(StringView text, const Locale& locale = Locale::Current());

  // The general conversion: up to 15 significant digits, trailing zeros
  // dropped, exponent form at and above 1E+15 and below 1E-04, the locale's
  // decimal separator.
  static String General(double value, const Locale& locale = Locale::Current());
  // The same for Single, with 7 significant digits.
  static String GeneralSingle(float value, const Locale& locale = Locale::Current());
  // Currency: up to four decimals, trailing zeros dropped.
  static String FromCurrency(int64_t raw, const Locale& locale = Locale::Current());
};

}  // namespace vantor
