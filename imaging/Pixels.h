#pragma once
// A picture in the surface's own layout, passed between the readers, the
// writers and the surface: Width x Height pixels of 4 bytes (blue, green,
// red, alpha), red, green and blue pre-multiplied by alpha, rows stored
// bottom-up with no padding, so that logical row y (0 at the top) starts at
// byte (Height - 1 - y) * Width * 4. Readers fill one, writers read one, and
// the surface adopts one without a copy of the decoder's making.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vantor::imaging {

enum ENUM_ALPHA_TYPE : int32_t { Alpha_None = 0, Alpha_Simple = 1, Alpha_Complex = 2 };

enum ENUM_IMAGE_FORMAT : int32_t {
  Image_Error = -1,
  Image_None = 0,
  Image_Bitmap = 1,
  Image_WMF = 2,
  Image_Icon = 3,
  Image_EMF = 4,
  Image_Cursor = 5,
  Image_Bitmap_ARGB = 6,
  Image_Bitmap_PARGB = 7,
  Image_Icon_ARGB = 8,
  Image_GIF = 9,
  Image_PNG = 10,
  Image_PNG_Icon = 11,
  Image_Cursor_ARGB = 12,
  Image_Checker_Board = 64,
};

struct Pixels {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> bytes;  // width * height * 4
  ENUM_ALPHA_TYPE alpha = Alpha_None;
  ENUM_IMAGE_FORMAT format = Image_None;

  bool Empty() const { return width <= 0 || height <= 0 || bytes.empty(); }
  size_t Stride() const { return static_cast<size_t>(width) * 4; }
  // Logical row y, 0 at the top.
  uint8_t* Row(int32_t y) { return bytes.data() + static_cast<size_t>(height - 1 - y) * Stride(); }
  const uint8_t* Row(int32_t y) const {
    return bytes.data() + static_cast<size_t>(height - 1 - y) * Stride();
  }
  // A transparent picture of the given size; false (and empty) for a size
  // that is not positive or whose bytes would not fit in memory's reach.
  bool Allocate(int32_t w, int32_t h);
  void Clear();
  // Scans the alpha channel: none when all 255, simple when only 0 and 255.
  ENUM_ALPHA_TYPE ScanAlpha() const;
};

}  // namespace vantor::imaging
