#pragma once
// Resampling of a picture without GDI+: nearest pixel by truncation, or
// bilinear between the two neighbours on each axis with weights from a table
// made once per column. Only a window of the destination is produced, so that
// a large stretch that is mostly clipped away costs what is visible; mirroring
// is folded into the same pass, since it is only a different column order.
#include <cstddef>
#include <cstdint>

namespace vantor::imaging {

// Pixels in the surface's layout: bottom-up rows of width * 4 bytes, BGRA,
// pre-multiplied. Row(y) takes logical rows, 0 at the top.
struct PixelView {
  const uint8_t* bits = nullptr;
  int32_t width = 0;
  int32_t height = 0;

  bool Empty() const { return bits == nullptr || width <= 0 || height <= 0; }
  const uint8_t* Row(int32_t y) const {
    return bits + static_cast<size_t>(height - 1 - y) * static_cast<size_t>(width) * 4;
  }
};

struct ScaleRequest {
  PixelView source;
  // The part of the source that is stretched over the destination; it must
  // lie inside the source.
  int32_t srcX = 0, srcY = 0, srcWidth = 0, srcHeight = 0;
  // The whole destination size, positive.
  int32_t destWidth = 0, destHeight = 0;
  bool mirrorX = false, mirrorY = false;
  bool bilinear = false;
  // The window of the destination to produce.
  int32_t windowX = 0, windowY = 0, windowWidth = 0, windowHeight = 0;
};

// Writes the window top-down into `out`, windowWidth pixels a row with
// `outStride` pixels between rows. False for a request that does not hold
// together (nothing is written then).
bool ScaleWindow(const ScaleRequest& request, uint32_t* out, size_t outStride);

}  // namespace vantor::imaging
