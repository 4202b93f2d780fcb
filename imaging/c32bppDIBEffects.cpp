// Changes a surface makes to its own pixels in place (grey, inverse, a colour
// made transparent, lightness, a blend towards a colour, a checker board),
// and the size computation of ScaleImage.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "imaging/HandBlend.h"
#include "imaging/c32bppDIB.h"
#include "platform/User.h"

namespace vantor::imaging {

namespace {

COLORREF Translate(OLE_COLOR color) {
  COLORREF c = 0;
  if (OleTranslateColor(color, nullptr, &c) != S_OK) c = color & 0xFFFFFF;
  return c;
}

size_t PixelCount(int32_t width, int32_t height) {
  return static_cast<size_t>(width) * static_cast<size_t>(height);
}

}  // namespace

void c32bppDIB::ScaleImage(int32_t desiredWidth, int32_t desiredHeight, int32_t& outWidth,
                           int32_t& outHeight, int32_t ScaleOptions) const {
  outWidth = width_;
  outHeight = height_;
  if (bits_ == nullptr) return;
  switch (ScaleOptions) {
    case Scale_Stretched:
      outWidth = desiredWidth;
      outHeight = desiredHeight;
      return;
    case Scale_To_Size:
    case Scale_Down_As_Needed: {
      double xRatio = static_cast<double>(desiredWidth) / width_;
      double yRatio = static_cast<double>(desiredHeight) / height_;
      if (ScaleOptions == Scale_Down_As_Needed && xRatio > 1 && yRatio > 1) xRatio = yRatio = 1;
      const double ratio = std::min(xRatio, yRatio);
      outWidth = static_cast<int32_t>(std::floor(ratio * width_));
      outHeight = static_cast<int32_t>(std::floor(ratio * height_));
      return;
    }
    default:
      return;
  }
}

bool c32bppDIB::CreateCheckerBoard(int32_t SquareSize, OLE_COLOR Color1, OLE_COLOR Color2,
                                   int32_t Width, int32_t Height) {
  if (Width > 0 && Height > 0) {
    if (!InitializeDIB(Width, Height)) return false;
  } else if (bits_ == nullptr) {
    return false;
  }
  if (SquareSize < 1) SquareSize = 8;
  const COLORREF colors[2] = {Translate(Color1), Translate(Color2)};
  uint32_t pixel[2];
  for (int i = 0; i < 2; ++i) {
    pixel[i] = 0xFF000000u | (uint32_t{GetRValue(colors[i])} << 16) |
               (uint32_t{GetGValue(colors[i])} << 8) | GetBValue(colors[i]);
  }
  for (int32_t y = 0; y < height_; ++y) {
    auto* row = reinterpret_cast<uint32_t*>(const_cast<uint8_t*>(View().Row(y)));
    for (int32_t x = 0; x < width_; ++x) row[x] = pixel[(x / SquareSize + y / SquareSize) & 1];
  }
  alpha_ = Alpha_None;
  imageType_ = Image_Checker_Board;
  return true;
}

bool c32bppDIB::MakeGrayScale(int32_t Formula) {
  if (bits_ == nullptr || Formula == GrayScale_None) return false;
  GrayRow(bits_, PixelCount(width_, height_), GrayFormula(Formula));
  return true;
}

bool c32bppDIB::MakeImageInverse() {
  if (bits_ == nullptr) return false;
  InverseRow(bits_, PixelCount(width_, height_));
  return true;
}

bool c32bppDIB::MakeTransparent(OLE_COLOR TransparentColor) {
  if (bits_ == nullptr) return false;
  const COLORREF c = Translate(TransparentColor);
  const uint32_t want[3] = {GetBValue(c), GetGValue(c), GetRValue(c)};
  bool changed = false;
  const size_t n = PixelCount(width_, height_);
  for (size_t i = 0; i < n; ++i) {
    uint8_t* p = bits_ + i * 4;
    const uint32_t a = p[3];
    if (a == 0) continue;
    // The colour compares as the readers store it: pre-multiplied by the
    // pixel's own alpha.
    bool match = true;
    for (int k = 0; k < 3 && match; ++k) match = p[k] == want[k] * a / 255;
    if (!match) continue;
    std::memset(p, 0, 4);
    changed = true;
  }
  if (changed && alpha_ == Alpha_None) alpha_ = Alpha_Simple;
  return true;
}

bool c32bppDIB::MakeLighterDarker(float LightAdjustment) {
  if (bits_ == nullptr || !(LightAdjustment >= -100.0f && LightAdjustment <= 100.0f)) {
    return false;
  }
  if (LightAdjustment != 0) {
    LightTable(LightAdjustment).ApplyRow(bits_, PixelCount(width_, height_));
  }
  return true;
}

bool c32bppDIB::BlendToColor(OLE_COLOR Color, int32_t BlendPercent) {
  if (bits_ == nullptr) return false;
  if (BlendPercent < 1 || BlendPercent > 100) BlendPercent = 100;
  const COLORREF c = Translate(Color);
  const uint32_t target[3] = {GetBValue(c), GetGValue(c), GetRValue(c)};
  const auto p = static_cast<uint32_t>(BlendPercent);
  // For each straight channel value, the mix times 100; with the alpha that
  // re-multiplies it the whole is scaled by 255 x 100.
  uint32_t table[3][256];
  for (int k = 0; k < 3; ++k) {
    for (uint32_t v = 0; v < 256; ++v) table[k][v] = v * (100 - p) + target[k] * p;
  }
  const size_t n = PixelCount(width_, height_);
  for (size_t i = 0; i < n; ++i) {
    uint8_t* px = bits_ + i * 4;
    const uint32_t a = px[3];
    if (a == 0) continue;
    for (int k = 0; k < 3; ++k) {
      const uint32_t straight = a == 255 ? px[k] : std::min(px[k] * 255 / a, 255u);
      px[k] = static_cast<uint8_t>(table[k][straight] * a / 25500);
    }
  }
  return true;
}

}  // namespace vantor::imaging
