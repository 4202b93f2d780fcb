#pragma once
// The surface's own way of drawing: a per-pixel blend of pre-multiplied BGRA
// with a constant alpha, grey formulas, lightness, and the rotation by
// inverse mapping. The row kernels work on plain memory; HandBlendPath puts
// them behind the render interface, reading the destination back from the
// device context where it has to.
#include <cstddef>
#include <cstdint>

#include "imaging/RenderPath.h"

namespace vantor::imaging {

// A grey formula's coefficients for red, green and blue, in thousandths: each
// has three decimals, so the truncated sum is exact in integers.
struct GrayWeights {
  int32_t red = 0, green = 0, blue = 0;
};

// The weights of an ENUM_GRAY_SCALE_FORMULAS value; -1 gives 1, 1, 1 and any
// value that is not a formula counts as NTSC/PAL.
GrayWeights GrayFormula(int32_t formula);

// trunc(red * r + green * g + blue * b) of one pixel's (pre-multiplied) colour.
inline uint32_t GrayOf(const uint8_t* bgra, const GrayWeights& w) {
  return static_cast<uint32_t>(bgra[2] * w.red + bgra[1] * w.green + bgra[0] * w.blue) / 1000u;
}

// floor(v / 255) for any 16-bit v.
constexpr uint32_t DivideBy255(uint32_t v) {
  return (v * 0x8081u) >> 23;
}

// For each pixel whose alpha a is above 0, with a' = a * k / 255:
// channel = (destination * (255 - a') + source * k) / 255, alpha included.
// With k and a both 255 that is the source itself.
void BlendRow(uint8_t* dst, const uint8_t* src, size_t count, uint32_t k);
// The same with the source colour first replaced by its grey.
void BlendRowGray(uint8_t* dst, const uint8_t* src, size_t count, uint32_t k,
                  const GrayWeights& weights);

// Lightness: percent p of -100 to 100 adds trunc(a * p / 100 * 255) / 255 to
// each colour channel of a pixel of alpha a, held within 0 and a.
class LightTable {
 public:
  explicit LightTable(double percent);
  void ApplyRow(uint8_t* bgra, size_t count) const;

 private:
  int32_t amount_[256];
};

// Writes grey into the colour channels of every pixel with alpha above 0.
void GrayRow(uint8_t* bgra, size_t count, const GrayWeights& weights);
// Pre-multiplied inverse: each colour channel becomes alpha minus itself.
void InverseRow(uint8_t* bgra, size_t count);

class HandBlendPath : public IRenderPath {
 public:
  bool Draw(const RenderJob& job) override;

 private:
  bool DrawRotated(const RenderJob& job);
};

}  // namespace vantor::imaging
