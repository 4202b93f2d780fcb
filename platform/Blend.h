#pragma once
// The row kernels of AlphaBlend, with the platform's rounding: every product
// of a channel and an alpha is divided by 255 rounding to nearest
// ((v + 127) / 255), and a premultiplied source adds to the destination
// scaled by 255 minus its alpha.
#include <cstddef>
#include <cstdint>

namespace vantor::platform {

// dst = src + dst * (255 - src.alpha) / 255, per channel (alpha included).
void BlendPremultiplied(uint32_t* dst, const uint32_t* src, size_t count);
// The same after scaling the source by a constant alpha.
void BlendPremultipliedConstant(uint32_t* dst, const uint32_t* src, size_t count, uint32_t alpha);
// dst = (src * alpha + dst * (255 - alpha)) / 255, per channel, one alpha.
void BlendConstant(uint32_t* dst, const uint32_t* src, size_t count, uint32_t alpha);

// v / 255 rounded to nearest, for 0 <= v <= 255 * 255, without a division.
constexpr uint32_t Div255(uint32_t v) {
  const uint32_t t = v + 128;
  return (t + (t >> 8)) >> 8;
}

}  // namespace vantor::platform
