#include "frame/GradientPainter.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "platform/Gdi.h"

namespace vantor::frame {
namespace {

struct Channels {
  int64_t r, g, b;
};

// Red is the low byte of an OLE colour; whatever sits above the 24 colour
// bits (a system colour's flag) is dropped, as the fill has no palette.
Channels Split(OLE_COLOR color) {
  const uint32_t c = color & 0xFFFFFFu;
  return {c & 0xFFu, (c >> 8) & 0xFFu, (c >> 16) & 0xFFu};
}

uint32_t Pack(int64_t r, int64_t g, int64_t b) {
  return static_cast<uint32_t>(b + g * 256 + r * 65536);
}

}  // namespace

std::vector<uint32_t> GradientPainter::Ramp(OLE_COLOR color1, OLE_COLOR color2, int64_t n) {
  const Channels a = Split(color1);
  const Channels z = Split(color2);
  if (n <= 0) return {Pack(a.r / 2 + z.r / 2, a.g / 2 + z.g / 2, a.b / 2 + z.b / 2)};
  const int64_t dr = z.r - a.r;
  const int64_t dg = z.g - a.g;
  const int64_t db = z.b - a.b;
  std::vector<uint32_t> ramp(static_cast<size_t>(n) + 1);
  // Truncation toward zero, not floor: a falling channel then lags behind
  // toward colour 1 exactly as a rising one does.
  for (int64_t i = 0; i <= n; ++i) {
    ramp[static_cast<size_t>(i)] = Pack(a.r + i * dr / n, a.g + i * dg / n, a.b + i * db / n);
  }
  return ramp;
}

std::vector<uint32_t> GradientPainter::Pixels(int32_t width, int32_t height, OLE_COLOR color1,
                                              OLE_COLOR color2, int32_t direction) {
  if (width < 1 || height < 1) return {};
  if (int64_t{width} * height > kMaxPixels) return {};
  int64_t n = 0;
  switch (direction) {
    case Gradient_Horizontal:
      n = int64_t{width} - 1;
      break;
    case Gradient_Vertical:
      n = int64_t{height} - 1;
      break;
    case Gradient_DiagonalDown:
    case Gradient_DiagonalUp:
      n = int64_t{width} + height - 2;
      break;
    default:
      return {};
  }
  const std::vector<uint32_t> ramp = Ramp(color1, color2, n);
  const auto w = static_cast<size_t>(width);
  const auto h = static_cast<size_t>(height);
  std::vector<uint32_t> pixels(w * h);
  // Buffer row k is image row h - 1 - k: the DIB is bottom-up.
  for (size_t k = 0; k < h; ++k) {
    uint32_t* row = pixels.data() + k * w;
    switch (direction) {
      case Gradient_Horizontal:
        std::copy_n(ramp.begin(), w, row);
        break;
      case Gradient_Vertical:
        std::fill_n(row, w, ramp[h - 1 - k]);
        break;
      case Gradient_DiagonalDown:
        // Image row r takes ramp entries r + x, r counted from the top.
        std::copy_n(ramp.begin() + static_cast<ptrdiff_t>(h - 1 - k), w, row);
        break;
      default:
        // Counted from the bottom instead, r is the buffer row itself.
        std::copy_n(ramp.begin() + static_cast<ptrdiff_t>(k), w, row);
        break;
    }
  }
  return pixels;
}

bool GradientPainter::Paint(HDC hDC, int32_t x, int32_t y, int32_t width, int32_t height,
                            OLE_COLOR color1, OLE_COLOR color2, int32_t direction) {
  std::vector<uint32_t> pixels;
  try {
    pixels = Pixels(width, height, color1, color2, direction);
  } catch (const std::bad_alloc&) {
    return false;
  }
  if (pixels.empty()) return false;
  BITMAPINFO info{};
  static_assert(sizeof(BITMAPINFOHEADER) == 40);
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = height;  // positive: bottom-up, as the buffer is laid out
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  return StretchDIBits(hDC, x, y, width, height, 0, 0, width, height, pixels.data(), &info,
                       DIB_RGB_COLORS, SRCCOPY) != 0;
}

}  // namespace vantor::frame
