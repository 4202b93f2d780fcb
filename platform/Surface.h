#pragma once
// Pixels that GDI draws on: 32 bits each, blue in the lowest byte then green,
// red and alpha, as in a 32-bit DIB. Row 0 is the top row on screen; a
// bottom-up DIB has a negative stride.
#include <cstddef>
#include <cstdint>

namespace vantor::platform {

struct Surface {
  uint32_t* pixels = nullptr;
  int width = 0;
  int height = 0;
  ptrdiff_t stride = 0;  // pixels from one row to the one below it

  bool Empty() const { return pixels == nullptr || width <= 0 || height <= 0; }
  uint32_t* Row(int y) const { return pixels + static_cast<ptrdiff_t>(y) * stride; }
  uint32_t& At(int x, int y) const { return Row(y)[x]; }
};

}  // namespace vantor::platform
