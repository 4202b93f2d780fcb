#pragma once
// The three ways a surface reaches a device context (the system's AlphaBlend,
// GDI+ and the surface's own per-pixel blend) take the same prepared request,
// so that Render decides once and each way only draws.
#include <cstdint>

#include "imaging/Pixels.h"
#include "imaging/Scaler.h"
#include "platform/WinTypes.h"

namespace vantor::imaging {

// Where a picture goes: a device context, or memory in the surface's layout
// (bottom-up BGRA rows of width * 4 bytes), which skips the read-back.
struct RenderTarget {
  HDC dc = nullptr;
  uint8_t* bits = nullptr;
  int32_t width = 0;
  int32_t height = 0;
};

// A render with Render's argument rules already applied: sizes positive,
// mirroring as flags, the source rectangle inside the picture, opacity 1 to
// 100, light within -100 to 100 (0 when none).
struct RenderJob {
  PixelView source;
  ENUM_ALPHA_TYPE alpha = Alpha_None;
  HDC sourceDC = nullptr;  // the surface selected into a DC, for the paths that blit
  RenderTarget target;
  int32_t destX = 0, destY = 0, destWidth = 0, destHeight = 0;
  bool mirrorX = false, mirrorY = false;
  int32_t srcX = 0, srcY = 0, srcWidth = 0, srcHeight = 0;
  int32_t opacity = 100;
  bool blend = true;  // false: the picture's alpha is ignored, as if it were opaque
  bool halfTone = true;
  int32_t grayScale = -1;
  float light = 0;
  bool rotated = false;
  float angle = 0;
  bool highQuality = false;
  uint32_t capabilities = 0;

  bool Stretched() const { return destWidth != srcWidth || destHeight != srcHeight; }
  bool Mirrored() const { return mirrorX || mirrorY; }
  // Constant alpha of the blend, 0 to 255.
  uint32_t ConstantAlpha() const { return static_cast<uint32_t>(opacity * 255 / 100); }
};

class IRenderPath {
 public:
  virtual ~IRenderPath() = default;
  // True when the picture was drawn.
  virtual bool Draw(const RenderJob& job) = 0;
};

enum class RenderRoute { AlphaBlend, GdiPlus, HandBlend };

// The choice of route for an unrotated picture.
struct RouteInputs {
  bool keepGdiPlusActive = false;
  bool gdiPlusEnabled = false;
  bool hasToken = false;
  bool alphaBlendFriendly = false;
  bool mirrored = false;
  int32_t grayScale = -1;
  float light = 0;
  bool stretched = false;
  bool highQuality = false;
};

inline RenderRoute ChooseRoute(const RouteInputs& in) {
  if (!in.keepGdiPlusActive && !(in.gdiPlusEnabled && in.hasToken) && in.alphaBlendFriendly &&
      !in.mirrored && in.grayScale == -1 && in.light == 0 && (!in.stretched || !in.highQuality)) {
    return RenderRoute::AlphaBlend;
  }
  return in.gdiPlusEnabled ? RenderRoute::GdiPlus : RenderRoute::HandBlend;
}

}  // namespace vantor::imaging
