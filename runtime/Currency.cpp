#include "runtime/Currency.h"

#include <cmath>
#include <limits>

namespace vantor {

namespace {

// __extension__ keeps -Wpedantic quiet about the compilers' 128-bit integers.
__extension__ typedef __int128 Wide;
__extension__ typedef unsigned __int128 UWide;

constexpr Wide kMin = std::numeric_limits<int64_t>::min();
constexpr Wide kMax = std::numeric_limits<int64_t>::max();

std::optional<Currency> Narrow(Wide raw) {
  if (raw < kMin || raw > kMax) return std::nullopt;
  return Currency::FromRaw(static_cast<int64_t>(raw));
}

// numerator / denominator to the nearest integer, ties to even; denominator > 0.
Wide DivideToEven(Wide numerator, Wide denominator) {
  const bool negative = numerator < 0;
  const UWide n = negative ? static_cast<UWide>(0) - static_cast<UWide>(numerator)
                           : static_cast<UWide>(numerator);
  const UWide d = static_cast<UWide>(denominator);
  UWide q = n / d;
  const UWide r = n % d;
  const UWide twice = r * 2;
  if (twice > d || (twice == d && (q & 1) != 0)) ++q;
  const Wide result = static_cast<Wide>(q);
  return negative ? -result : result;
}

}  // namespace

std::optional<Currency> Currency::FromDouble(double value) {
  if (!std::isfinite(value)) return std::nullopt;
  if (std::fabs(value) >= 1e15) return std::nullopt;  // past 922 trillion for sure
  if (value == 0.0) return Currency();
  // The decision is taken on the double's exact value times 10000, not on a
  // product already rounded to 53 bits: 0.00005 is a hair above the tie and
  // goes up, 0.03125 is an exact tie and goes to even.
  int exponent = 0;
  const double mantissa = std::frexp(std::fabs(value), &exponent);   // [0.5, 1)
  const auto bits = static_cast<int64_t>(std::ldexp(mantissa, 53));  // exact
  exponent -= 53;                                                    // |value| = bits * 2^exponent
  UWide scaled = static_cast<UWide>(bits) * static_cast<UWide>(kScale);
  UWide whole = 0;
  if (exponent >= 0) {
    // |value| < 1e15 keeps exponent below 0 here; kept for safety.
    if (exponent > 40) return std::nullopt;
    whole = scaled << exponent;
  } else if (-exponent >= 127) {
    whole = 0;  // far below half a ten-thousandth
  } else {
    const int shift = -exponent;
    whole = scaled >> shift;
    const UWide remainder = scaled - (whole << shift);
    const UWide half = static_cast<UWide>(1) << (shift - 1);
    if (remainder > half || (remainder == half && (whole & 1) != 0)) ++whole;
  }
  const Wide signedWhole = value < 0 ? -static_cast<Wide>(whole) : static_cast<Wide>(whole);
  return Narrow(signedWhole);
}

std::optional<Currency> Currency::Add(Currency a, Currency b) {
  return Narrow(static_cast<Wide>(a.raw_) + b.raw_);
}

std::optional<Currency> Currency::Subtract(Currency a, Currency b) {
  return Narrow(static_cast<Wide>(a.raw_) - b.raw_);
}

std::optional<Currency> Currency::Multiply(Currency a, Currency b) {
  // Both carry four decimals, so the product carries eight; round back to four.
  return Narrow(DivideToEven(static_cast<Wide>(a.raw_) * b.raw_, kScale));
}

std::optional<Currency> Currency::Divide(Currency a, Currency b) {
  if (b.raw_ == 0) return std::nullopt;
  Wide numerator = static_cast<Wide>(a.raw_) * kScale;
  Wide denominator = b.raw_;
  if (denominator < 0) {
    numerator = -numerator;
    denominator = -denominator;
  }
  return Narrow(DivideToEven(numerator, denominator));
}

}  // namespace vantor
