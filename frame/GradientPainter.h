#pragma once
// Two-colour linear gradients drawn from a ramp of our own arithmetic through
// one StretchDIBits, instead of GradientFill: the controls' fills must come
// out the same on every machine, and GradientFill's interpolation is the
// driver's business, not ours.
#include <cstdint>
#include <vector>

#include "platform/WinTypes.h"

namespace vantor::frame {

enum GradientDirection : int32_t {
  Gradient_Horizontal = 0,    // colour 1 at the left
  Gradient_Vertical = 1,      // colour 1 at the top
  Gradient_DiagonalDown = 2,  // colour 1 at the top left, falling to the bottom right
  Gradient_DiagonalUp = 3,    // colour 1 at the bottom left, rising to the top right
};

class GradientPainter {
 public:
  // Pixels in one call's buffer at most; a larger area is refused rather
  // than left to fail half-way in the allocator.
  static constexpr int64_t kMaxPixels = int64_t{1} << 26;

  // The n + 1 steps from colour 1 to colour 2 as 0x00RRGGBB pixels, each
  // channel c1 + i * (c2 - c1) / n truncated toward zero; with n 0 the one
  // step is the channel-wise mean c1 / 2 + c2 / 2. Only the low 24 bits of a
  // colour count: a system colour must be resolved by the caller.
  static std::vector<uint32_t> Ramp(OLE_COLOR color1, OLE_COLOR color2, int64_t n);

  // The whole picture as the DIB holds it, width * height pixels with the
  // bottom row first; empty for a size below 1, a size beyond kMaxPixels or
  // an unknown direction.
  static std::vector<uint32_t> Pixels(int32_t width, int32_t height, OLE_COLOR color1,
                                      OLE_COLOR color2, int32_t direction);

  // Draws the gradient at (x, y) with the raster operation SRCCOPY. False
  // when nothing was drawn: an empty or oversized area, an unknown direction
  // (bad arguments do nothing), or a device context that refused the bits.
  static bool Paint(HDC hDC, int32_t x, int32_t y, int32_t width, int32_t height, OLE_COLOR color1,
                    OLE_COLOR color2, int32_t direction);
};

}  // namespace vantor::frame
