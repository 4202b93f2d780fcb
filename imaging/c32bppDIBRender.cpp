// Drawing a surface: Render with its argument rules and its choice among the
// system's AlphaBlend, GDI+ and the surface's own blend; the drop shadow; and
// text drawn into the pixels.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "imaging/HandBlend.h"
#include "imaging/c32bppDIB.h"
#include "imaging/cGDIPlus.h"
#include "platform/Text.h"
#include "platform/User.h"
#include "server/StdFont.h"

namespace vantor::imaging {

namespace {

// The system's own blend: the surface, selected into a DC, blended onto the
// destination DC with a constant alpha, stretching as the DC's mode says.
class AlphaBlendPath : public IRenderPath {
 public:
  bool Draw(const RenderJob& job) override {
    if (job.sourceDC == nullptr || job.target.dc == nullptr || job.Mirrored() || job.rotated) {
      return false;
    }
    HDC dc = job.target.dc;
    int previousMode = 0;
    if (job.halfTone && (job.capabilities & c32bppDIB::kNTFamily) != 0) {
      previousMode = SetStretchBltMode(dc, HALFTONE);
    }
    BLENDFUNCTION blend{};
    blend.BlendOp = AC_SRC_OVER;
    blend.SourceConstantAlpha = static_cast<BYTE>(job.ConstantAlpha());
    blend.AlphaFormat = job.blend && job.alpha > Alpha_None ? AC_SRC_ALPHA : 0;
    const BOOL ok =
        AlphaBlend(dc, job.destX, job.destY, job.destWidth, job.destHeight, job.sourceDC, job.srcX,
                   job.srcY, job.srcWidth, job.srcHeight, blend);
    if (previousMode != 0) SetStretchBltMode(dc, previousMode);
    return ok != 0;
  }
};

// A top-down DIB section in a memory DC, for text masks.
class MaskDC {
 public:
  MaskDC(int32_t width, int32_t height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap_ == nullptr || bits == nullptr) return;
    dc_ = CreateCompatibleDC(nullptr);
    if (dc_ == nullptr) return;
    previous_ = SelectObject(dc_, bitmap_);
    bits_ = static_cast<const uint8_t*>(bits);
  }
  ~MaskDC() {
    if (dc_ != nullptr) {
      if (previousFont_ != nullptr) SelectObject(dc_, previousFont_);
      if (previous_ != nullptr) SelectObject(dc_, previous_);
      DeleteDC(dc_);
    }
    if (bitmap_ != nullptr) DeleteObject(bitmap_);
  }
  MaskDC(const MaskDC&) = delete;
  MaskDC& operator=(const MaskDC&) = delete;

  bool Ok() const { return bits_ != nullptr; }
  HDC dc() const { return dc_; }
  const uint8_t* bits() const { return bits_; }
  void SelectFont(HFONT font) { previousFont_ = SelectObject(dc_, font); }

 private:
  HBITMAP bitmap_ = nullptr;
  HDC dc_ = nullptr;
  HGDIOBJ previous_ = nullptr;
  HGDIOBJ previousFont_ = nullptr;
  const uint8_t* bits_ = nullptr;
};

// Box blur of one alpha plane over `radius` pixels each way, horizontally
// then vertically, with a running sum.
void BlurAlpha(std::vector<uint8_t>& plane, int32_t width, int32_t height, int32_t radius) {
  if (radius <= 0) return;
  std::vector<uint8_t> temp(plane.size());
  const int32_t span = 2 * radius + 1;
  auto pass = [&](const std::vector<uint8_t>& in, std::vector<uint8_t>& out, int32_t lines,
                  int32_t length, size_t step, size_t lineStep) {
    for (int32_t l = 0; l < lines; ++l) {
      const size_t base = static_cast<size_t>(l) * lineStep;
      auto at = [&](int32_t i) -> uint32_t {
        return i < 0 || i >= length ? 0u : in[base + static_cast<size_t>(i) * step];
      };
      uint32_t sum = 0;
      for (int32_t i = -radius; i <= radius; ++i) sum += at(i);
      for (int32_t i = 0; i < length; ++i) {
        out[base + static_cast<size_t>(i) * step] = static_cast<uint8_t>(sum / span);
        sum += at(i + radius + 1);
        sum -= at(i - radius);
      }
    }
  };
  pass(plane, temp, height, width, 1, static_cast<size_t>(width));
  pass(temp, plane, width, height, static_cast<size_t>(width), 1);
}

}  // namespace

bool c32bppDIB::Render(HDC destinationDC, int32_t DestX, int32_t DestY, int32_t DestWidth,
                       int32_t DestHeight, int32_t srcX, int32_t srcY, int32_t srcwidth,
                       int32_t srcheight, int32_t Opacity, bool Blend, bool SetHalfTone,
                       c32bppDIB* destHostDIB, int32_t grayScale, float LightAdjustment,
                       float Angle, bool CenterOnDestXY) {
  if (Opacity < 1) return bits_ != nullptr;
  if (bits_ == nullptr) return false;
  if (destinationDC == nullptr && destHostDIB == nullptr) return false;
  if (destHostDIB != nullptr && (destHostDIB == this || destHostDIB->bits_ == nullptr)) {
    return false;
  }

  int64_t destWidth = DestWidth == 0 ? width_ : DestWidth;
  int64_t destHeight = DestHeight == 0 ? height_ : DestHeight;
  srcX = std::max(srcX, 0);
  srcY = std::max(srcY, 0);
  int64_t srcWidth = srcwidth == 0 ? width_ : srcwidth;
  int64_t srcHeight = srcheight == 0 ? height_ : srcheight;
  if (srcWidth < 0) {
    srcWidth = -srcWidth;
    destWidth = -destWidth;
  }
  if (srcHeight < 0) {
    srcHeight = -srcHeight;
    destHeight = -destHeight;
  }
  if (srcX >= width_ || srcY >= height_) return false;
  srcWidth = std::min<int64_t>(srcWidth, width_ - srcX);
  srcHeight = std::min<int64_t>(srcHeight, height_ - srcY);
  const bool rotated = std::isfinite(Angle) && std::fmod(Angle, 360.0f) != 0.0f;
  int32_t opacity = (Opacity < 0 ? -Opacity : Opacity) % 100;
  if (opacity == 0) opacity = 100;
  if (!(LightAdjustment >= -100.0f && LightAdjustment <= 100.0f)) LightAdjustment = 0;
  const int64_t absWidth = std::llabs(destWidth), absHeight = std::llabs(destHeight);
  if (absWidth > std::numeric_limits<int32_t>::max() ||
      absHeight > std::numeric_limits<int32_t>::max()) {
    return false;
  }
  int64_t x = DestX, y = DestY;
  if (CenterOnDestXY) {
    x -= absWidth / 2;
    y -= absHeight / 2;
  }
  if (x < std::numeric_limits<int32_t>::min() || y < std::numeric_limits<int32_t>::min()) {
    return false;
  }

  RenderJob job;
  job.source = View();
  job.alpha = alpha_;
  job.destX = static_cast<int32_t>(x);
  job.destY = static_cast<int32_t>(y);
  job.destWidth = static_cast<int32_t>(absWidth);
  job.destHeight = static_cast<int32_t>(absHeight);
  job.mirrorX = destWidth <= 0;
  job.mirrorY = destHeight < 0;
  job.srcX = srcX;
  job.srcY = srcY;
  job.srcWidth = static_cast<int32_t>(srcWidth);
  job.srcHeight = static_cast<int32_t>(srcHeight);
  job.opacity = opacity;
  job.blend = Blend;
  job.halfTone = SetHalfTone;
  job.grayScale = grayScale;
  job.light = LightAdjustment;
  job.rotated = rotated;
  job.angle = Angle;
  job.highQuality = highQuality_;
  job.capabilities = capabilities_;

  RenderRoute route;
  if (rotated) {
    route = get_isGDIplusEnabled() ? RenderRoute::GdiPlus : RenderRoute::HandBlend;
  } else {
    RouteInputs in;
    in.keepGdiPlusActive = keepGdiPlus_;
    in.gdiPlusEnabled = get_isGDIplusEnabled();
    in.hasToken = gdiToken_ != 0;
    in.alphaBlendFriendly = get_isAlphaBlendFriendly();
    in.mirrored = job.Mirrored();
    in.grayScale = grayScale;
    in.light = LightAdjustment;
    in.stretched = job.Stretched();
    in.highQuality = highQuality_;
    route = ChooseRoute(in);
  }

  // The target: a host surface is worked on in memory by our own blend and
  // selected into its DC for the others.
  bool hostSelectedHere = false;
  if (destHostDIB != nullptr) {
    job.target.bits = destHostDIB->bits_;
    job.target.width = destHostDIB->width_;
    job.target.height = destHostDIB->height_;
    if (route != RenderRoute::HandBlend) {
      hostSelectedHere = destHostDIB->previousBitmap_ == nullptr;
      job.target.dc = destHostDIB->LoadDIBinDC(true);
    }
  } else {
    job.target.dc = destinationDC;
  }

  bool drawn = false;
  try {
    switch (route) {
      case RenderRoute::AlphaBlend: {
        HDC sourceDC = nullptr;
        HGDIOBJ previous = nullptr;
        bool temporary = false;
        if (SelectIntoDC(sourceDC, previous, temporary)) {
          job.sourceDC = sourceDC;
          drawn = AlphaBlendPath().Draw(job);
          UnselectFromDC(sourceDC, previous, temporary);
        }
        break;
      }
      case RenderRoute::GdiPlus: {
        if (!gdiPlus_) gdiPlus_ = std::make_unique<cGDIPlus>();
        drawn = gdiPlus_->Draw(job);
        if (!keepGdiPlus_) gdiPlus_.reset();
        break;
      }
      case RenderRoute::HandBlend:
        drawn = HandBlendPath().Draw(job);
        break;
    }
  } catch (const std::exception&) {
    drawn = false;  // out of memory in a scaler's tables: nothing drawn
  }
  if (hostSelectedHere) destHostDIB->LoadDIBinDC(false);
  return drawn;
}

bool c32bppDIB::RenderDropShadow_JIT(HDC destinationDC, int32_t DestX, int32_t DestY,
                                     int32_t ShadowDepth, OLE_COLOR Color, int32_t Opacity,
                                     int32_t DestWidth, int32_t DestHeight, float Angle,
                                     bool CenterOnDestXY, c32bppDIB* destHostDIB) {
  if (bits_ == nullptr) return false;
  if (Opacity < 1) return true;
  // The shape at its drawn size, widened by the depth on every side so that
  // the blur has room to fade out.
  const int64_t w = DestWidth == 0 ? width_ : std::llabs(int64_t{DestWidth});
  const int64_t h = DestHeight == 0 ? height_ : std::llabs(int64_t{DestHeight});
  const int32_t depth = std::clamp(ShadowDepth, 0, 64);
  const int64_t sw = w + 2 * depth, sh = h + 2 * depth;
  if (sw * sh > (int64_t{1} << 26)) return false;
  try {
    std::vector<uint32_t> scaled(static_cast<size_t>(w * h));
    ScaleRequest request;
    request.source = View();
    request.srcWidth = width_;
    request.srcHeight = height_;
    request.destWidth = request.windowWidth = static_cast<int32_t>(w);
    request.destHeight = request.windowHeight = static_cast<int32_t>(h);
    request.mirrorX = DestWidth < 0;
    request.mirrorY = DestHeight < 0;
    request.bilinear = highQuality_;
    if (!ScaleWindow(request, scaled.data(), static_cast<size_t>(w))) return false;
    std::vector<uint8_t> plane(static_cast<size_t>(sw * sh), 0);
    for (int64_t yy = 0; yy < h; ++yy) {
      for (int64_t xx = 0; xx < w; ++xx) {
        plane[static_cast<size_t>((yy + depth) * sw + xx + depth)] =
            static_cast<uint8_t>(scaled[static_cast<size_t>(yy * w + xx)] >> 24);
      }
    }
    scaled = {};
    BlurAlpha(plane, static_cast<int32_t>(sw), static_cast<int32_t>(sh), depth);

    COLORREF c = 0;
    if (OleTranslateColor(Color, nullptr, &c) != S_OK) c = Color & 0xFFFFFF;
    c32bppDIB shadow(OsVersion{});
    shadow.capabilities_ = capabilities_;
    shadow.highQuality_ = highQuality_;
    if (!shadow.InitializeDIB(static_cast<int32_t>(sw), static_cast<int32_t>(sh))) return false;
    const uint32_t channel[3] = {GetBValue(c), GetGValue(c), GetRValue(c)};
    for (int64_t yy = 0; yy < sh; ++yy) {
      uint8_t* row = const_cast<uint8_t*>(shadow.View().Row(static_cast<int32_t>(yy)));
      for (int64_t xx = 0; xx < sw; ++xx) {
        const uint32_t a = plane[static_cast<size_t>(yy * sw + xx)];
        uint8_t* p = row + xx * 4;
        for (int k = 0; k < 3; ++k) p[k] = static_cast<uint8_t>(channel[k] * a / 255);
        p[3] = static_cast<uint8_t>(a);
      }
    }
    shadow.alpha_ = Alpha_Complex;
    const int32_t x = CenterOnDestXY ? DestX : DestX - depth;
    const int32_t y = CenterOnDestXY ? DestY : DestY - depth;
    return shadow.Render(destinationDC, x, y, 0, 0, 0, 0, 0, 0, Opacity, true, true, destHostDIB,
                         -1, 0, Angle, CenterOnDestXY);
  } catch (const std::exception&) {
    return false;
  }
}

bool c32bppDIB::DrawText_hFont(StringView Text, RECT DestRect, OLE_COLOR Color, HFONT Font,
                               UINT Format) {
  if (bits_ == nullptr || Text.empty()) return false;
  const int32_t left = std::max<int32_t>(DestRect.left, 0);
  const int32_t top = std::max<int32_t>(DestRect.top, 0);
  const int32_t right = std::min<int32_t>(DestRect.right, width_);
  const int32_t bottom = std::min<int32_t>(DestRect.bottom, height_);
  if (left >= right || top >= bottom) return false;
  // The text is drawn white on black into a mask the size of the whole
  // rectangle (so that alignment sees the caller's rectangle); its lightness
  // is the coverage, which becomes the alpha of the colour laid on.
  const int32_t mw = DestRect.right - DestRect.left, mh = DestRect.bottom - DestRect.top;
  if (int64_t{mw} * mh > (int64_t{1} << 26)) return false;
  MaskDC mask(mw, mh);
  if (!mask.Ok()) return false;
  if (Font != nullptr) mask.SelectFont(Font);
  SetTextColor(mask.dc(), RGB(255, 255, 255));
  SetBkMode(mask.dc(), TRANSPARENT);
  RECT r{0, 0, mw, mh};
  if (DrawTextW(mask.dc(), Text.data(), static_cast<int>(Text.size()), &r, Format & ~DT_CALCRECT) ==
      0) {
    return false;
  }
  COLORREF c = 0;
  if (OleTranslateColor(Color, nullptr, &c) != S_OK) c = Color & 0xFFFFFF;
  const uint32_t channel[3] = {GetBValue(c), GetGValue(c), GetRValue(c)};
  for (int32_t yy = top; yy < bottom; ++yy) {
    const uint8_t* m = mask.bits() + (static_cast<size_t>(yy - DestRect.top) * mw +
                                      static_cast<size_t>(left - DestRect.left)) *
                                         4;
    uint8_t* d = const_cast<uint8_t*>(View().Row(yy)) + static_cast<size_t>(left) * 4;
    for (int32_t xx = left; xx < right; ++xx, m += 4, d += 4) {
      const uint32_t cover = std::max({m[0], m[1], m[2]});
      if (cover == 0) continue;
      const uint32_t inv = 255 - cover;
      for (int k = 0; k < 3; ++k) {
        d[k] = static_cast<uint8_t>(DivideBy255(channel[k] * cover) + DivideBy255(d[k] * inv));
      }
      d[3] = static_cast<uint8_t>(cover + DivideBy255(d[3] * inv));
    }
  }
  RescanAlpha();
  return true;
}

bool c32bppDIB::DrawText_stdFont(StringView Text, RECT DestRect, OLE_COLOR Color,
                                 const server::StdFont& Font, UINT Format) {
  HFONT font = Font.CreateHFont();
  if (font == nullptr) return false;
  const bool ok = DrawText_hFont(Text, DestRect, Color, font, Format);
  DeleteObject(font);
  return ok;
}

}  // namespace vantor::imaging
