#pragma once
// The conversion functions of the platform's language. Each takes any value,
// as the language's do; failures set the error object (13 type mismatch,
// 6 overflow, 94 invalid use of Null, 5 invalid argument) and return the zero
// of the result type, never throwing.
#include <cstdint>

#include "runtime/Variant.h"

namespace vantor {

// Fractions round to the nearest integer, ties to even: CInt(2.5) is 2,
// CInt(3.5) is 4, CInt(-2.5) is -2.
int16_t CInt(const Variant& value);
int32_t CLng(const Variant& value);
uint8_t CByte(const Variant& value);
double CDbl(const Variant& value);
float CSng(const Variant& value);
Currency CCur(const Variant& value);
// Numbers are true when not zero; texts "True"/"False" in English or in the
// locale's words, or any numeric text.
bool CBool(const Variant& value);
Date CDate(const Variant& value);
// Numbers with up to 15 significant digits (7 for Single) and the locale's
// decimal separator, exponent form from 1E+15 and below 1E-04 ("1E+15",
// "1,5E-05"); Booleans as the locale's words; dates by the locale's short
// date and long time, dropping a zero part.
String CStr(const Variant& value);

// Reads the longest number at the head of the text, skipping blanks, tabs and
// line feeds anywhere; "." is always the decimal point; "&H" and "&O" prefixes
// for hexadecimal and octal (16-bit values wrap negative, as the platform's
// do); "E" or "D" exponents. Anything unreadable gives 0.
double Val(StringView text);

// Whether CDbl would succeed: numbers, Booleans, Empty, numeric texts in the
// locale (blanks around, sign before or after, thousands separators, the
// currency symbol, parentheses, "&H" and "&O"). Null, dates and objects are not.
bool IsNumeric(const Variant& value);

// Upper-case hexadecimal and octal of the value rounded to a Long (an Integer
// input keeps 16 bits: Hex(CInt(-1)) is "FFFF"). Null gives Null text "".
String Hex(const Variant& value);
String Oct(const Variant& value);

// Int rounds down, Fix toward zero.
double Int(double value);
double Fix(double value);
// Round to that many decimals, ties to even, as the platform's Round.
double Round(double value, int decimals = 0);
// The float-to-integer conversion the platform's compiled code uses: nearest,
// ties to even, saturating instead of failing (for pixel arithmetic).
int32_t RoundToInt(double value);

}  // namespace vantor
