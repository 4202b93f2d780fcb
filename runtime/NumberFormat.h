#pragma once
// User-defined number formats: up to four sections separated by ";" (positive,
// negative, zero, Null); "0" and "#" digit placeholders, "." decimal point and
// "," thousands separator (written with the locale's characters), "%" scales
// by 100, "E+", "E-", "e+", "e-" exponents, quoted text and "\" escapes.
// Rounding is half away from zero on the 15 significant digits of the value, as
// the platform's Format does (unlike CInt).
#include "runtime/Locale.h"
#include "runtime/String.h"

namespace vantor {

class NumberFormat {
 public:
  static String Apply(double value, StringView format, const Locale& locale = Locale::Current());
  // A Null value: the fourth section, or an empty text.
  static String ApplyNull(StringView format, const Locale& locale = Locale::Current());
};

}  // namespace vantor
