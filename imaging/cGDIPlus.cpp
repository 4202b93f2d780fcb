#include "imaging/cGDIPlus.h"

#include "imaging/HandBlend.h"

namespace vantor::imaging {

cGDIPlus::~cGDIPlus() {
  DisposeCachedImage();
  if (token_ != 0) DestroyToken(token_);
}

// This build has no gdiplus.dll to load: the probe fails, and so every
// operation that would need the library does.
bool cGDIPlus::LibraryPresent() {
  return false;
}

bool cGDIPlus::isGDIplusOk(bool keepToken) {
  if (token_ != 0) return true;
  if (!LibraryPresent()) return false;
  const uintptr_t token = CreateToken();
  if (token == 0) return false;
  if (keepToken) {
    token_ = token;
  } else {
    DestroyToken(token);
  }
  return true;
}

uintptr_t cGDIPlus::CreateToken() {
  return 0;
}

bool cGDIPlus::DestroyToken(uintptr_t token) {
  return token != 0 && LibraryPresent();
}

bool cGDIPlus::Draw(const RenderJob&) {
  return false;
}

bool cGDIPlus::LoadPicture(std::span<const uint8_t>, Pixels& out) {
  out.Clear();
  return false;
}

bool cGDIPlus::SavePicture(const Pixels&, const char*, int32_t, std::vector<uint8_t>& out) {
  out.clear();
  return false;
}

void cGDIPlus::DisposeCachedImage() {
  flippedX_ = flippedY_ = false;
}

cGDIPlus::ColorMatrix cGDIPlus::BuildColorMatrix(int32_t grayScale, float light, int32_t opacity) {
  ColorMatrix m{};
  // Without a formula each colour keeps its own channel: the identity.
  if (grayScale == -1) {
    for (int i = 0; i < 3; ++i) m[static_cast<size_t>(i)][static_cast<size_t>(i)] = 1.0f;
  } else {
    const GrayWeights w = GrayFormula(grayScale);
    // Rows are the inputs red, green, blue; every output colour takes the
    // same weighted sum, which is the grey.
    const float weights[3] = {static_cast<float>(w.red) / 1000.0f,
                              static_cast<float>(w.green) / 1000.0f,
                              static_cast<float>(w.blue) / 1000.0f};
    for (size_t row = 0; row < 3; ++row) {
      for (size_t col = 0; col < 3; ++col) m[row][col] = weights[row];
    }
  }
  m[3][3] = static_cast<float>(opacity) / 100.0f;
  for (size_t col = 0; col < 3; ++col) m[4][col] = light / 100.0f;
  m[4][4] = 1.0f;
  return m;
}

int32_t cGDIPlus::FlipToApply(bool appliedX, bool appliedY, bool wantedX, bool wantedY) {
  const bool x = appliedX != wantedX, y = appliedY != wantedY;
  if (x && y) return kRotateNoneFlipXY;
  if (x) return kRotateNoneFlipX;
  if (y) return kRotateNoneFlipY;
  return kRotateNoneFlipNone;
}

}  // namespace vantor::imaging
