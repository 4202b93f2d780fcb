#pragma once
// The object behind an HBITMAP: device-dependent bitmaps and DIB sections.
// Pixels are always kept as 32-bit BGRA so every DC draws the same way; the
// bits a DIB section hands out are those very pixels (bottom-up DIBs through
// a negative stride).
#include <cstdint>
#include <vector>

#include "platform/GdiObject.h"
#include "platform/Surface.h"

namespace vantor::platform {

class Bitmap : public GdiObject {
 public:
  Bitmap() : GdiObject(OBJ_BITMAP) {}
  // A bitmap of the given size with zeroed pixels; false when too large.
  bool Allocate(int width, int height, bool bottom_up);

  Surface surface;
  std::vector<uint32_t> storage;
  int bits_per_pixel = 32;  // what GetObject reports
  bool dib = false;         // a DIB section
  bool bottom_up = false;
  BITMAPINFOHEADER header{};  // DIB sections: the header they were made with
  void* Bits() const;         // the first byte in memory (lowest address)
};

}  // namespace vantor::platform
