#include "frame/pcMemDC.h"

#include "platform/User.h"

namespace vantor::frame {

pcMemDC::~pcMemDC() {
  Free();
}

void pcMemDC::put_Width(int32_t value) {
  if (value <= width_) return;
  width_ = value;
  Build();
}

void pcMemDC::put_Height(int32_t value) {
  if (value <= height_) return;
  height_ = value;
  Build();
}

void pcMemDC::Build() {
  Free();
  if (width_ <= 0 || height_ <= 0) return;
  // Like the display, so that what is drawn here copies to a window as it is.
  HDC screen = GetDC(nullptr);
  HDC dc = CreateCompatibleDC(screen);
  HBITMAP bitmap = dc ? CreateCompatibleBitmap(screen, width_, height_) : nullptr;
  ReleaseDC(nullptr, screen);
  if (bitmap == nullptr) {
    if (dc) DeleteDC(dc);
    return;
  }
  dc_ = dc;
  bitmap_ = bitmap;
  oldBitmap_ = SelectObject(dc_, bitmap_);
}

void pcMemDC::Free() {
  if (dc_) {
    SelectObject(dc_, oldBitmap_);
    DeleteDC(dc_);
  }
  if (bitmap_) DeleteObject(bitmap_);
  dc_ = nullptr;
  bitmap_ = nullptr;
  oldBitmap_ = nullptr;
}

}  // namespace vantor::frame
