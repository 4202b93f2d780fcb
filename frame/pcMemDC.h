#pragma once
// An off-screen drawing surface for painting that must not flicker: a memory
// device context like the screen's with a bitmap in it. It only grows, so a
// control that asks for the size it needs on every paint makes a new bitmap
// only when it needs a larger one; growing loses what was drawn.
#include <cstdint>

#include "platform/Gdi.h"
#include "platform/WinTypes.h"

namespace vantor::frame {

class pcMemDC {
 public:
  pcMemDC() = default;
  ~pcMemDC();
  pcMemDC(const pcMemDC&) = delete;
  pcMemDC& operator=(const pcMemDC&) = delete;

  // Null until both sides are positive.
  HDC get_hDC() const { return dc_; }
  int32_t get_Width() const { return width_; }
  int32_t get_Height() const { return height_; }
  // A value not larger than the current one changes nothing.
  void put_Width(int32_t value);
  void put_Height(int32_t value);

 private:
  void Build();
  void Free();

  HDC dc_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ oldBitmap_ = nullptr;
  int32_t width_ = 0;
  int32_t height_ = 0;
};

}  // namespace vantor::frame
