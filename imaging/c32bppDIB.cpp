// The surface's life, its properties, and the work on its pixels that is
// neither loading, saving, effects nor drawing: pixel and byte access, the
// region from alpha, copies, trimming and tiling.
#include "imaging/c32bppDIB.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "imaging/cGDIPlus.h"
#include "platform/User.h"

namespace vantor::imaging {

namespace {

// The largest picture a surface makes: 1 GiB of pixels, as for readers.
constexpr uint64_t kMaxBytes = uint64_t{1} << 30;

// ExtCreateRegion takes the rectangles of a shaped picture in batches of
// this many, so that one call never needs an unbounded block.
constexpr size_t kRegionBatch = 2000;

ENUM_ALPHA_TYPE ScanAlphaOf(const uint8_t* bits, size_t pixels) {
  ENUM_ALPHA_TYPE kind = Alpha_None;
  for (size_t i = 0; i < pixels; ++i) {
    const uint8_t a = bits[i * 4 + 3];
    if (a == 255) continue;
    if (a != 0) return Alpha_Complex;
    kind = Alpha_Simple;
  }
  return kind;
}

COLORREF Translate(OLE_COLOR color) {
  COLORREF c = 0;
  if (OleTranslateColor(color, nullptr, &c) != S_OK) c = color & 0xFFFFFF;
  return c;
}

// Joins rectangles into one region, a batch at a time.
class RegionBuilder {
 public:
  RegionBuilder() = default;
  ~RegionBuilder() {
    if (region_ != nullptr) DeleteObject(region_);
  }
  RegionBuilder(const RegionBuilder&) = delete;
  RegionBuilder& operator=(const RegionBuilder&) = delete;

  void Add(LONG left, LONG top, LONG right, LONG bottom) {
    rects_.push_back(RECT{left, top, right, bottom});
    if (rects_.size() == kRegionBatch) Flush();
  }
  // The region, which the caller then owns.
  HRGN Finish() {
    Flush();
    if (failed_) return nullptr;
    return region_ != nullptr ? std::exchange(region_, nullptr) : CreateRectRgn(0, 0, 0, 0);
  }

 private:
  void Flush() {
    if (rects_.empty() || failed_) return;
    std::vector<uint8_t> block(sizeof(RGNDATAHEADER) + rects_.size() * sizeof(RECT));
    RGNDATAHEADER header{};
    header.dwSize = sizeof(RGNDATAHEADER);
    header.iType = RDH_RECTANGLES;
    header.nCount = static_cast<DWORD>(rects_.size());
    header.nRgnSize = static_cast<DWORD>(rects_.size() * sizeof(RECT));
    std::memcpy(block.data(), &header, sizeof header);
    std::memcpy(block.data() + sizeof header, rects_.data(), rects_.size() * sizeof(RECT));
    rects_.clear();
    HRGN batch = ExtCreateRegion(nullptr, static_cast<DWORD>(block.size()),
                                 reinterpret_cast<const RGNDATA*>(block.data()));
    if (batch == nullptr) {
      failed_ = true;
      return;
    }
    if (region_ == nullptr) {
      region_ = batch;
      return;
    }
    if (CombineRgn(region_, region_, batch, RGN_OR) == ERROR) failed_ = true;
    DeleteObject(batch);
  }

  std::vector<RECT> rects_;
  HRGN region_ = nullptr;
  bool failed_ = false;
};

}  // namespace

// ------------------------------------------------------------------ capability bits

uint32_t c32bppDIB::CapabilitiesFor(const OsVersion& os) {
  uint32_t bits = 0;
  if (os.platform == 2) {
    bits |= kNTFamily;
    if (os.major >= 5) {
      bits |= kAlphaBlendFriendly | kAlphaBlendReliableNT;
    } else if (os.servicePack < 6) {
      bits |= kGdiPlusForbidden;
    }
  } else if (os.platform == 1) {
    bits |= os.minor != 0 ? kAlphaBlendReliable9x : kGdiPlusForbidden;
  }
  return bits;
}

// Our platform layer implements the NT family's calls (wide characters,
// half-tone stretching, a reliable AlphaBlend), so this system answers as
// that family does.
OsVersion c32bppDIB::HostOsVersion() {
  return OsVersion{};
}

c32bppDIB::c32bppDIB() : c32bppDIB(HostOsVersion()) {}

c32bppDIB::c32bppDIB(const OsVersion& os) : capabilities_(CapabilitiesFor(os)) {
  put_isGDIplusEnabled(true);
  if (get_isGDIplusEnabled()) highQuality_ = true;
  imageType_ = Image_Error;
}

c32bppDIB::~c32bppDIB() {
  DestroyDIB();
}

void c32bppDIB::put_isAlphaBlendFriendly(bool v) {
  if (!v) {
    capabilities_ &= ~kAlphaBlendFriendly;
  } else if ((capabilities_ & (kAlphaBlendReliableNT | kAlphaBlendReliable9x)) != 0) {
    capabilities_ |= kAlphaBlendFriendly;
  }
}

void c32bppDIB::put_isGDIplusEnabled(bool v) {
  if (v == get_isGDIplusEnabled()) return;
  capabilities_ &= ~kGdiPlusEnabled;
  if (!v || (capabilities_ & kGdiPlusForbidden) != 0) return;
  bool ok;
  if (gdiPlus_) {
    ok = gdiPlus_->isGDIplusOk(false);
  } else {
    cGDIPlus probe;
    ok = probe.isGDIplusOk(false);
  }
  if (ok) capabilities_ |= kGdiPlusEnabled;
}

void c32bppDIB::put_KeepGDIplusActive(bool v) {
  keepGdiPlus_ = v;
  if (!v) gdiPlus_.reset();
}

void c32bppDIB::put_ManageOwnDC(bool v) {
  manageOwnDC_ = v;
  if (!v) {
    if (dc_ != nullptr && previousBitmap_ == nullptr) {
      DeleteDC(dc_);
      dc_ = nullptr;
    }
  } else if (handle_ != nullptr && dc_ == nullptr) {
    dc_ = CreateCompatibleDC(nullptr);
  }
}

// ------------------------------------------------------------------ life

bool c32bppDIB::InitializeDIB(int32_t Width, int32_t Height) {
  DestroyDIB();
  const int64_t height = std::llabs(int64_t{Height});
  if (Width <= 0 || height <= 0 || height > INT32_MAX) return false;
  if (static_cast<uint64_t>(Width) * static_cast<uint64_t>(height) * 4 > kMaxBytes) return false;
  BITMAPINFO info{};
  info.bmiHeader.biSize = 40;
  info.bmiHeader.biWidth = Width;
  info.bmiHeader.biHeight = static_cast<LONG>(height);  // bottom-up
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  info.bmiHeader.biSizeImage = static_cast<DWORD>(static_cast<uint64_t>(Width) * height * 4);
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap == nullptr || bits == nullptr) {
    if (bitmap != nullptr) DeleteObject(bitmap);
    return false;
  }
  handle_ = bitmap;
  bits_ = static_cast<uint8_t*>(bits);
  width_ = Width;
  height_ = static_cast<int32_t>(height);
  if (manageOwnDC_) dc_ = CreateCompatibleDC(nullptr);
  EraseDIB();
  return true;
}

void c32bppDIB::DestroyDIB() {
  gdiPlus_.reset();
  if (dc_ != nullptr) {
    if (previousBitmap_ != nullptr) SelectObject(dc_, previousBitmap_);
    DeleteDC(dc_);
  }
  dc_ = nullptr;
  previousBitmap_ = nullptr;
  if (handle_ != nullptr) DeleteObject(handle_);
  handle_ = nullptr;
  source_.clear();
  source_.shrink_to_fit();
  width_ = height_ = 0;
  alpha_ = Alpha_None;
  bits_ = nullptr;
  imageType_ = Image_Error;
}

void c32bppDIB::EraseDIB() {
  if (bits_ == nullptr) return;
  std::memset(bits_, 0, static_cast<size_t>(width_) * static_cast<size_t>(height_) * 4);
  imageType_ = Image_None;
  alpha_ = Alpha_Simple;
}

bool c32bppDIB::AdoptPixels(Pixels&& pixels) {
  if (pixels.Empty() ||
      pixels.bytes.size() != pixels.Stride() * static_cast<size_t>(pixels.height)) {
    DestroyDIB();
    pixels.Clear();
    return false;
  }
  if (!InitializeDIB(pixels.width, pixels.height)) {
    pixels.Clear();
    return false;
  }
  std::memcpy(bits_, pixels.bytes.data(), pixels.bytes.size());
  alpha_ = pixels.alpha;
  imageType_ = pixels.format;
  pixels.Clear();
  return true;
}

bool c32bppDIB::CopyToPixels(Pixels& out) const {
  if (bits_ == nullptr || !out.Allocate(width_, height_)) {
    out.Clear();
    return false;
  }
  std::memcpy(out.bytes.data(), bits_, out.bytes.size());
  out.alpha = alpha_;
  out.format = imageType_;
  return true;
}

HDC c32bppDIB::LoadDIBinDC(bool selectDIB) {
  if (selectDIB) {
    if (handle_ == nullptr) return nullptr;
    if (dc_ == nullptr) dc_ = CreateCompatibleDC(nullptr);
    if (dc_ == nullptr) return nullptr;
    if (previousBitmap_ == nullptr) previousBitmap_ = SelectObject(dc_, handle_);
    return dc_;
  }
  if (dc_ != nullptr && previousBitmap_ != nullptr) {
    SelectObject(dc_, previousBitmap_);
    previousBitmap_ = nullptr;
  }
  if (dc_ != nullptr && !manageOwnDC_) {
    DeleteDC(dc_);
    dc_ = nullptr;
  }
  return nullptr;
}

bool c32bppDIB::SelectIntoDC(HDC& dc, HGDIOBJ& previous, bool& temporary) {
  temporary = false;
  previous = nullptr;
  if (handle_ == nullptr) return false;
  if (previousBitmap_ != nullptr) {  // already selected: use it as it stands
    dc = dc_;
    return true;
  }
  if (dc_ != nullptr) {
    dc = dc_;
  } else {
    dc = CreateCompatibleDC(nullptr);
    if (dc == nullptr) return false;
    temporary = true;
  }
  previous = SelectObject(dc, handle_);
  return true;
}

void c32bppDIB::UnselectFromDC(HDC dc, HGDIOBJ previous, bool temporary) {
  if (dc == nullptr) return;
  if (previous != nullptr) SelectObject(dc, previous);
  if (temporary) DeleteDC(dc);
}

void c32bppDIB::RescanAlpha() {
  if (bits_ != nullptr) {
    alpha_ = ScanAlphaOf(bits_, static_cast<size_t>(width_) * static_cast<size_t>(height_));
  }
}

// ------------------------------------------------------------------ pixel access

int32_t c32bppDIB::GetPixel(int32_t X, int32_t Y, int32_t* Alpha, bool asPremultiplied) const {
  if (bits_ == nullptr || X < 0 || Y < 0 || X >= width_ || Y >= height_) return -1;
  const uint8_t* p = View().Row(Y) + static_cast<size_t>(X) * 4;
  const uint32_t a = p[3];
  uint32_t b = p[0], g = p[1], r = p[2];
  if (!asPremultiplied && a != 0 && a != 255) {
    b = std::min(b * 255 / a, 255u);
    g = std::min(g * 255 / a, 255u);
    r = std::min(r * 255 / a, 255u);
  }
  if (Alpha != nullptr) *Alpha = static_cast<int32_t>(a);
  return static_cast<int32_t>(r | (g << 8) | (b << 16));
}

bool c32bppDIB::SetPixel(int32_t X, int32_t Y, OLE_COLOR Color, int32_t Alpha,
                         bool isPremultiplied) {
  if (bits_ == nullptr || X < 0 || Y < 0 || X >= width_ || Y >= height_) return false;
  const COLORREF c = Translate(Color);
  const uint32_t a = static_cast<uint32_t>(std::clamp(Alpha, 0, 255));
  uint32_t channel[3] = {GetBValue(c), GetGValue(c), GetRValue(c)};
  for (uint32_t& v : channel) v = isPremultiplied ? std::min(v, a) : v * a / 255;
  uint8_t* p = const_cast<uint8_t*>(View().Row(Y)) + static_cast<size_t>(X) * 4;
  p[0] = static_cast<uint8_t>(channel[0]);
  p[1] = static_cast<uint8_t>(channel[1]);
  p[2] = static_cast<uint8_t>(channel[2]);
  p[3] = static_cast<uint8_t>(a);
  if (a == 0 && alpha_ == Alpha_None) alpha_ = Alpha_Simple;
  if (a != 0 && a != 255) alpha_ = Alpha_Complex;
  return true;
}

bool c32bppDIB::GetDIBbits(std::vector<uint8_t>& outBytes, int32_t& rowBytes, bool, bool asBGR,
                           bool asBottomUp, bool asPremultiplied, bool asFileFormat, int32_t srcX,
                           int32_t srcY, int32_t srcWidth, int32_t srcHeight) const {
  outBytes.clear();
  rowBytes = 0;
  if (bits_ == nullptr || srcX < 0 || srcY < 0 || srcX >= width_ || srcY >= height_ ||
      srcWidth < 0 || srcHeight < 0) {
    return false;
  }
  const int32_t w = std::min(srcWidth == 0 ? width_ : srcWidth, width_ - srcX);
  const int32_t h = std::min(srcHeight == 0 ? height_ : srcHeight, height_ - srcY);
  const size_t bpp = asBGR ? 4 : 3;
  size_t row = static_cast<size_t>(w) * bpp;
  if (asFileFormat) row = (row + 3) & ~size_t{3};
  try {
    outBytes.assign(row * static_cast<size_t>(h), 0);
  } catch (const std::exception&) {
    return false;
  }
  rowBytes = static_cast<int32_t>(row);
  const PixelView v = View();
  for (int32_t y = 0; y < h; ++y) {
    const uint8_t* s = v.Row(srcY + y) + static_cast<size_t>(srcX) * 4;
    uint8_t* d = outBytes.data() + row * static_cast<size_t>(asBottomUp ? h - 1 - y : y);
    for (int32_t x = 0; x < w; ++x, s += 4, d += bpp) {
      uint32_t b = s[0], g = s[1], r = s[2];
      const uint32_t a = s[3];
      if (!asPremultiplied && a != 0 && a != 255) {
        b = std::min(b * 255 / a, 255u);
        g = std::min(g * 255 / a, 255u);
        r = std::min(r * 255 / a, 255u);
      }
      if (asBGR) {
        d[0] = static_cast<uint8_t>(b);
        d[1] = static_cast<uint8_t>(g);
        d[2] = static_cast<uint8_t>(r);
        d[3] = static_cast<uint8_t>(a);
      } else {
        d[0] = static_cast<uint8_t>(r);
        d[1] = static_cast<uint8_t>(g);
        d[2] = static_cast<uint8_t>(b);
      }
    }
  }
  return true;
}

bool c32bppDIB::SetDIBbits(std::span<const uint8_t> inBytes, int32_t Width, int32_t Height,
                           bool asBGR, bool asBottomUp, bool isPremultiplied, bool asFileFormat) {
  if (Width <= 0 || Height <= 0) return false;
  const size_t bpp = asBGR ? 4 : 3;
  size_t row = static_cast<size_t>(Width) * bpp;
  if (asFileFormat) row = (row + 3) & ~size_t{3};
  if (inBytes.size() / row < static_cast<size_t>(Height)) return false;
  if (!InitializeDIB(Width, Height)) return false;
  for (int32_t y = 0; y < Height; ++y) {
    const uint8_t* s = inBytes.data() + row * static_cast<size_t>(asBottomUp ? Height - 1 - y : y);
    uint8_t* d = const_cast<uint8_t*>(View().Row(y));
    for (int32_t x = 0; x < Width; ++x, s += bpp, d += 4) {
      if (!asBGR) {
        d[0] = s[2];
        d[1] = s[1];
        d[2] = s[0];
        d[3] = 255;
        continue;
      }
      const uint32_t a = s[3];
      for (int c = 0; c < 3; ++c) {
        d[c] = static_cast<uint8_t>(isPremultiplied ? std::min<uint32_t>(s[c], a) : s[c] * a / 255);
      }
      d[3] = static_cast<uint8_t>(a);
    }
  }
  RescanAlpha();
  imageType_ = !asBGR ? Image_Bitmap : isPremultiplied ? Image_Bitmap_PARGB : Image_Bitmap_ARGB;
  return true;
}

// ------------------------------------------------------------------ region

HRGN c32bppDIB::CreateRegion(int32_t RegionStyle, int32_t xOffset, int32_t yOffset) const {
  if (RegionStyle < Region_Bounds || RegionStyle > Region_Shaped || bits_ == nullptr) {
    return nullptr;
  }
  try {
    return RegionOf(RegionStyle, xOffset, yOffset);
  } catch (const std::exception&) {
    return nullptr;
  }
}

HRGN c32bppDIB::RegionOf(int32_t RegionStyle, int32_t xOffset, int32_t yOffset) const {
  HRGN region = nullptr;
  const PixelView v = View();
  if (alpha_ == Alpha_None) {
    region = CreateRectRgn(0, 0, width_, height_);
  } else if (RegionStyle == Region_Bounds) {
    int32_t left = width_, top = height_, right = -1, bottom = -1;
    for (int32_t y = 0; y < height_; ++y) {
      const uint8_t* row = v.Row(y);
      for (int32_t x = 0; x < width_; ++x) {
        if (row[x * 4 + 3] == 0) continue;
        left = std::min(left, x);
        right = std::max(right, x);
        top = std::min(top, y);
        bottom = y;
      }
    }
    region =
        right < 0 ? CreateRectRgn(0, 0, 0, 0) : CreateRectRgn(left, top, right + 1, bottom + 1);
  } else {
    RegionBuilder builder;
    for (int32_t y = 0; y < height_; ++y) {
      const uint8_t* row = v.Row(y);
      if (RegionStyle == Region_Enclosed) {
        int32_t first = 0, last = width_ - 1;
        while (first < width_ && row[first * 4 + 3] == 0) ++first;
        if (first == width_) continue;
        while (row[last * 4 + 3] == 0) --last;
        builder.Add(first, y, last + 1, y + 1);
        continue;
      }
      for (int32_t x = 0; x < width_;) {
        while (x < width_ && row[x * 4 + 3] == 0) ++x;
        if (x == width_) break;
        const int32_t start = x;
        while (x < width_ && row[x * 4 + 3] != 0) ++x;
        builder.Add(start, y, x, y + 1);
      }
    }
    region = builder.Finish();
  }
  if (region != nullptr && (xOffset != 0 || yOffset != 0)) OffsetRgn(region, xOffset, yOffset);
  return region;
}

// ------------------------------------------------------------------ copies

bool c32bppDIB::CopyImageTo(std::unique_ptr<c32bppDIB>& cHost, int32_t newWidth, int32_t newHeight,
                            bool CopyOriginalFormat) {
  if (bits_ == nullptr) return false;
  if (!cHost) {
    cHost = std::make_unique<c32bppDIB>();
    cHost->gdiToken_ = gdiToken_;
    cHost->put_isGDIplusEnabled(get_isGDIplusEnabled());
    cHost->highQuality_ = highQuality_;
  }
  return CopyImageTo(*cHost, newWidth, newHeight, CopyOriginalFormat);
}

bool c32bppDIB::CopyImageTo(c32bppDIB& cHost, int32_t newWidth, int32_t newHeight,
                            bool CopyOriginalFormat) {
  if (bits_ == nullptr || &cHost == this) return false;
  const int64_t w = newWidth == 0 ? width_ : std::llabs(int64_t{newWidth});
  const int64_t h = newHeight == 0 ? height_ : std::llabs(int64_t{newHeight});
  if (w > INT32_MAX || h > INT32_MAX) return false;
  if (!CopyInto(cHost, static_cast<int32_t>(w), static_cast<int32_t>(h))) return false;
  if (CopyOriginalFormat) cHost.source_ = source_;
  return true;
}

bool c32bppDIB::CopyInto(c32bppDIB& target, int32_t width, int32_t height) {
  if (!target.InitializeDIB(width, height)) return false;
  bool ok;
  if (width == width_ && height == height_) {
    std::memcpy(target.bits_, bits_,
                static_cast<size_t>(width_) * static_cast<size_t>(height_) * 4);
    ok = true;
  } else {
    ok = false;
    if (get_isGDIplusEnabled() && highQuality_) {
      if (!gdiPlus_) gdiPlus_ = std::make_unique<cGDIPlus>();
      RenderJob job;
      job.source = View();
      job.alpha = alpha_;
      job.target = RenderTarget{nullptr, target.bits_, target.width_, target.height_};
      job.destWidth = width;
      job.destHeight = height;
      job.srcWidth = width_;
      job.srcHeight = height_;
      job.highQuality = true;
      ok = gdiPlus_->Draw(job);
      if (!keepGdiPlus_) gdiPlus_.reset();
    }
    if (!ok) {
      // Not the system's blend: the copy must not depend on what a DC does
      // with the alpha channel.
      const uint32_t saved = capabilities_;
      capabilities_ &= ~kAlphaBlendFriendly;
      ok = Render(nullptr, 0, 0, width, height, 0, 0, 0, 0, 100, true, true, &target);
      capabilities_ = saved;
    }
  }
  if (!ok) {
    target.DestroyDIB();
    return false;
  }
  target.alpha_ = alpha_;
  target.imageType_ = imageType_;
  return true;
}

bool c32bppDIB::Resize(int32_t newWidth, int32_t newHeight) {
  if (bits_ == nullptr || newWidth <= 0 || newHeight <= 0) return false;
  if (newWidth == width_ && newHeight == height_) return true;
  c32bppDIB copy(OsVersion{});
  copy.capabilities_ = capabilities_;
  copy.gdiToken_ = gdiToken_;
  copy.highQuality_ = highQuality_;
  if (!CopyInto(copy, newWidth, newHeight)) return false;
  const ENUM_ALPHA_TYPE alpha = alpha_;
  TakePixelsOf(copy);
  alpha_ = alpha;
  return true;
}

void c32bppDIB::TakePixelsOf(c32bppDIB& other) {
  other.LoadDIBinDC(false);
  DestroyDIB();
  handle_ = std::exchange(other.handle_, nullptr);
  bits_ = std::exchange(other.bits_, nullptr);
  width_ = std::exchange(other.width_, 0);
  height_ = std::exchange(other.height_, 0);
  alpha_ = other.alpha_;
  imageType_ = other.imageType_;
  other.DestroyDIB();
  if (manageOwnDC_) dc_ = CreateCompatibleDC(nullptr);
}

bool c32bppDIB::TrimImage(bool UpdateImage, int32_t TrimOptions, int32_t& X, int32_t& Y,
                          int32_t& Width, int32_t& Height) {
  X = Y = Width = Height = 0;
  if (bits_ == nullptr) return false;
  const int32_t flags = TrimOptions == Trim_All ? 15 : (TrimOptions & 15);
  const PixelView v = View();
  auto rowClear = [&](int32_t y, int32_t from, int32_t to) {
    const uint8_t* row = v.Row(y);
    for (int32_t x = from; x <= to; ++x) {
      if (row[x * 4 + 3] != 0) return false;
    }
    return true;
  };
  auto columnClear = [&](int32_t x, int32_t from, int32_t to) {
    for (int32_t y = from; y <= to; ++y) {
      if (v.Row(y)[x * 4 + 3] != 0) return false;
    }
    return true;
  };
  // A picture with nothing visible has no edges to find.
  bool any = false;
  for (int32_t y = 0; y < height_ && !any; ++y) any = !rowClear(y, 0, width_ - 1);
  if (!any) return false;

  int32_t top = 0, bottom = height_ - 1, left = 0, right = width_ - 1;
  if (flags & Trim_Top) {
    while (top < bottom && rowClear(top, left, right)) ++top;
  }
  if (flags & Trim_Bottom) {
    while (bottom > top && rowClear(bottom, left, right)) --bottom;
  }
  if (flags & Trim_Left) {
    while (left < right && columnClear(left, top, bottom)) ++left;
  }
  if (flags & Trim_Right) {
    while (right > left && columnClear(right, top, bottom)) --right;
  }
  X = left;
  Y = top;
  Width = right - left + 1;
  Height = bottom - top + 1;
  if (UpdateImage && (Width != width_ || Height != height_)) {
    c32bppDIB trimmed(OsVersion{});
    if (!trimmed.InitializeDIB(Width, Height)) return false;
    for (int32_t y = 0; y < Height; ++y) {
      std::memcpy(const_cast<uint8_t*>(trimmed.View().Row(y)),
                  v.Row(top + y) + static_cast<size_t>(left) * 4, static_cast<size_t>(Width) * 4);
    }
    trimmed.alpha_ = alpha_;
    trimmed.imageType_ = imageType_;
    TakePixelsOf(trimmed);
  }
  return true;
}

bool c32bppDIB::TileImage(c32bppDIB& target, const RECT& area) {
  if (bits_ == nullptr || target.bits_ == nullptr || &target == this) return false;
  RECT r = area;
  if (r.right <= r.left || r.bottom <= r.top) r = RECT{0, 0, target.width_, target.height_};
  const int32_t left = std::max<int32_t>(r.left, 0), top = std::max<int32_t>(r.top, 0);
  const int32_t right = std::min<int32_t>(r.right, target.width_);
  const int32_t bottom = std::min<int32_t>(r.bottom, target.height_);
  if (left >= right || top >= bottom) return false;
  const PixelView source = View();
  for (int32_t y = top; y < bottom; ++y) {
    // Tiles start at the area's corner, even where the target cuts it.
    const int32_t sy = static_cast<int32_t>((int64_t{y} - r.top) % height_);
    const auto* s = reinterpret_cast<const uint32_t*>(source.Row(sy));
    auto* d = reinterpret_cast<uint32_t*>(const_cast<uint8_t*>(target.View().Row(y)));
    int32_t sx = static_cast<int32_t>((int64_t{left} - r.left) % width_);
    for (int32_t x = left; x < right;) {
      const int32_t run = std::min(right - x, width_ - sx);
      std::memcpy(d + x, s + sx, static_cast<size_t>(run) * 4);
      x += run;
      sx = 0;
    }
  }
  target.RescanAlpha();
  return true;
}

}  // namespace vantor::imaging
