#include "server/StdPicture.h"

#include <cstring>

#include "runtime/Error.h"
#include "server/MulDiv.h"

namespace vantor::server {

namespace {

int32_t Clamp32(int64_t v) {
  if (v > INT32_MAX) return INT32_MAX;
  if (v < INT32_MIN) return INT32_MIN;
  return static_cast<int32_t>(v);
}

// The largest side we make a bitmap for; a saved form never holds more.
constexpr int32_t kMaxSide = 32768;

}  // namespace

StdPicture::~StdPicture() {
  if (bitmap_) DeleteObject(bitmap_);
}

int32_t StdPicture::PixelsToHiMetric(int32_t pixels, int dpi) {
  if (dpi <= 0) return 0;
  return Clamp32(MulDivRound(pixels, 2540, dpi));
}

int32_t StdPicture::HiMetricToPixels(int32_t himetric, int dpi) {
  return Clamp32(MulDivRound(himetric, dpi, 2540));
}

std::shared_ptr<StdPicture> StdPicture::FromPixels(int32_t width, int32_t height,
                                                   std::span<const uint32_t> pixels,
                                                   PictureType type) {
  if (type == PictureType::None) {
    if (width != 0 || height != 0 || !pixels.empty()) {
      Err().Set(errInvalidProcedureCall, u"StdPicture");
      return nullptr;
    }
    return std::make_shared<StdPicture>();
  }
  if (width <= 0 || height <= 0 || width > kMaxSide || height > kMaxSide ||
      pixels.size() != static_cast<size_t>(width) * static_cast<size_t>(height) ||
      (type != PictureType::Bitmap && type != PictureType::Icon)) {
    Err().Set(errInvalidProcedureCall, u"StdPicture");
    return nullptr;
  }
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // top-down, as the pixels come
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (!bitmap || !bits) {
    if (bitmap) DeleteObject(bitmap);
    Err().Set(errOutOfMemory, u"StdPicture");
    return nullptr;
  }
  auto picture = std::make_shared<StdPicture>();
  picture->type_ = type;
  picture->width_ = width;
  picture->height_ = height;
  picture->bitmap_ = bitmap;
  picture->bits_ = static_cast<uint32_t*>(bits);
  std::memcpy(bits, pixels.data(), pixels.size_bytes());
  return picture;
}

bool StdPicture::DefaultValue(Variant& out) const {
  out = Variant(static_cast<int32_t>(reinterpret_cast<uintptr_t>(bitmap_)));
  return true;
}

std::vector<uint32_t> StdPicture::Pixels() const {
  if (!bits_) return {};
  const size_t n = static_cast<size_t>(width_) * static_cast<size_t>(height_);
  return std::vector<uint32_t>(bits_, bits_ + n);
}

bool StdPicture::Render(HDC dc, int32_t x, int32_t y, int32_t cx, int32_t cy, int32_t xSrc,
                        int32_t ySrc, int32_t cxSrc, int32_t cySrc) const {
  if (!dc || !bitmap_) {
    Err().Set(errInvalidProcedureCall, u"StdPicture");
    return false;
  }
  const int64_t hmWidth = get_Width(), hmHeight = get_Height();
  // HiMetric to source pixels; the source's y axis points up from the bottom.
  const int64_t px = MulDivRound(xSrc, width_, hmWidth);
  const int64_t pcx = MulDivRound(cxSrc, width_, hmWidth);
  const int64_t py = MulDivRound(hmHeight - static_cast<int64_t>(ySrc), height_, hmHeight);
  const int64_t pcy = MulDivRound(-static_cast<int64_t>(cySrc), height_, hmHeight);
  // A source running upward (positive cySrc) is drawn upside down. Mirroring
  // through a negative source height is where blitters differ by a row, so the
  // rows are turned over here and the blit itself always runs top-down.
  int64_t top = py, rows = pcy;
  const bool flip = rows < 0;
  if (flip) {
    top += rows;
    rows = -rows;
  }
  const uint32_t* source = bits_;
  std::vector<uint32_t> turned;
  if (flip) {
    turned.resize(static_cast<size_t>(width_) * static_cast<size_t>(height_));
    for (int32_t r = 0; r < height_; ++r) {
      std::memcpy(&turned[static_cast<size_t>(r) * static_cast<size_t>(width_)],
                  bits_ + static_cast<size_t>(height_ - 1 - r) * static_cast<size_t>(width_),
                  static_cast<size_t>(width_) * 4);
    }
    source = turned.data();
    top = height_ - top - rows;
  }
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = width_;
  info.bmiHeader.biHeight = -height_;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  const int ok = StretchDIBits(dc, x, y, cx, cy, Clamp32(px), Clamp32(top), Clamp32(pcx),
                               Clamp32(rows), source, &info, DIB_RGB_COLORS, SRCCOPY);
  return ok != 0;
}

std::shared_ptr<StdPicture> StdPicture::Clone() const {
  if (type_ == PictureType::None) return std::make_shared<StdPicture>();
  const std::vector<uint32_t> pixels = Pixels();
  return FromPixels(width_, height_, pixels, type_);
}

bool StdPicture::SameAs(const StdPicture& other) const {
  if (type_ != other.type_ || width_ != other.width_ || height_ != other.height_) return false;
  if (!bits_ || !other.bits_) return bits_ == other.bits_;
  return std::memcmp(bits_, other.bits_,
                     static_cast<size_t>(width_) * static_cast<size_t>(height_) * 4) == 0;
}

}  // namespace vantor::server
