#pragma once
// The picture object a host hands to its controls: a 32-bit top-down DIB it
// owns, with its size in HiMetric as the platform's picture reports it.
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/Gdi.h"
#include "runtime/Object.h"
#include "runtime/String.h"
#include "runtime/Variant.h"

namespace vantor::server {

// The platform's picture type codes.
enum class PictureType : int16_t { None = 0, Bitmap = 1, Icon = 3 };

class StdPicture : public Object {
 public:
  // An empty picture (type None, no handle).
  StdPicture() = default;
  ~StdPicture() override;
  StdPicture(const StdPicture&) = delete;
  StdPicture& operator=(const StdPicture&) = delete;

  // A picture of width x height pixels, row by row from the top, each pixel
  // 0xAARRGGBB (BGRA in memory). Nothing, with error 5, when the sizes do not
  // match the pixels or the bitmap cannot be made. An icon is the same bitmap
  // marked as one; its alpha is its mask.
  static std::shared_ptr<StdPicture> FromPixels(int32_t width, int32_t height,
                                                std::span<const uint32_t> pixels,
                                                PictureType type = PictureType::Bitmap);

  String ClassName() const override { return u"StdPicture"; }
  // The handle stands for the picture where a value is wanted.
  bool DefaultValue(Variant& out) const override;

  PictureType get_Type() const { return type_; }
  // HiMetric (1/100 mm) at 96 pixels per inch.
  int32_t get_Width() const { return PixelsToHiMetric(width_); }
  int32_t get_Height() const { return PixelsToHiMetric(height_); }
  HBITMAP get_Handle() const { return bitmap_; }
  int32_t PixelWidth() const { return width_; }
  int32_t PixelHeight() const { return height_; }
  // The current pixels, read from the bitmap so that drawing into the handle
  // is seen.
  std::vector<uint32_t> Pixels() const;

  // Draws the part of the picture given in HiMetric source coordinates into the
  // destination rectangle in the DC's units. The source's y counts up from the
  // picture's bottom edge, so the usual upright call is
  // Render(dc, x, y, cx, cy, 0, Height, Width, -Height); a positive cySrc
  // draws it upside down. False, with error 5, for an empty picture or a null DC.
  bool Render(HDC dc, int32_t x, int32_t y, int32_t cx, int32_t cy, int32_t xSrc, int32_t ySrc,
              int32_t cxSrc, int32_t cySrc) const;

  std::shared_ptr<StdPicture> Clone() const;
  // Same type, size and pixels.
  bool SameAs(const StdPicture& other) const;

  // 2540 HiMetric to the inch, rounded as MulDiv rounds.
  static int32_t PixelsToHiMetric(int32_t pixels, int dpi = 96);
  static int32_t HiMetricToPixels(int32_t himetric, int dpi = 96);

 private:
  PictureType type_ = PictureType::None;
  int32_t width_ = 0;
  int32_t height_ = 0;
  HBITMAP bitmap_ = nullptr;
  uint32_t* bits_ = nullptr;  // the DIB section's memory, owned by bitmap_
};

}  // namespace vantor::server
