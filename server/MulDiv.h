#pragma once
// The platform's MulDiv rounding (half away from zero) on 64-bit values, for
// the unit conversions of fonts and pictures: points to pixels, pixels to
// HiMetric and back.
#include <cstdint>

namespace vantor::server {

// a x b / c rounded half away from zero; -1 when c is 0, as MulDiv answers.
inline int64_t MulDivRound(int64_t a, int64_t b, int64_t c) {
  if (c == 0) return -1;
  const bool negative = ((a < 0) != (b < 0)) != (c < 0);
  const auto magnitude = [](int64_t v) {
    return v < 0 ? static_cast<uint64_t>(0) - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
  };
  const uint64_t uc = magnitude(c);
  const auto q = static_cast<int64_t>((magnitude(a) * magnitude(b) + uc / 2) / uc);
  return negative ? -q : q;
}

}  // namespace vantor::server
