#pragma once
// A 32-bit top-down DIB section in a memory DC, the canvas of the GDI tests,
// and a way to read an area as text art for shape comparisons.
#include <cstdint>
#include <string>

#include "platform/Gdi.h"

namespace vantor::platform::test {

class Canvas {
 public:
  Canvas(int width, int height, uint32_t fill = 0x00FFFFFF) : width_(width), height_(height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    dc_ = CreateCompatibleDC(nullptr);
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    bits_ = static_cast<uint32_t*>(bits);
    old_ = SelectObject(dc_, bitmap_);
    Fill(fill);
  }
  ~Canvas() {
    SelectObject(dc_, old_);
    DeleteDC(dc_);
    DeleteObject(bitmap_);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  HDC dc() const { return dc_; }
  HBITMAP bitmap() const { return bitmap_; }
  uint32_t* bits() const { return bits_; }
  uint32_t& At(int x, int y) const { return bits_[y * width_ + x]; }
  void Fill(uint32_t pixel) {
    for (int i = 0; i < width_ * height_; ++i) bits_[i] = pixel;
  }
  // Rows of the canvas as text: '.' for `background`, '#' for anything else.
  std::string Art(uint32_t background = 0x00FFFFFF) const {
    std::string out;
    for (int y = 0; y < height_; ++y) {
      for (int x = 0; x < width_; ++x) out += At(x, y) == background ? '.' : '#';
      out += '\n';
    }
    return out;
  }

 private:
  int width_, height_;
  HDC dc_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ old_ = nullptr;
  uint32_t* bits_ = nullptr;
};

// Text art of a region over a w x h area.
inline std::string RegionArt(HRGN region, int width, int height) {
  std::string out;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) out += PtInRegion(region, x, y) ? '#' : '.';
    out += '\n';
  }
  return out;
}

}  // namespace vantor::platform::test
