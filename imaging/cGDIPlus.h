#pragma once
// The surface's gateway to GDI+. GDI+ is a library of one operating system,
// loaded at run time when present; where it is absent (every build that is
// not for Windows, and so this one) the probe fails and every operation
// answers false, so that the surface keeps to AlphaBlend and its own blend and
// `isGDIplusEnabled` stays false. What the gateway decides without calling
// GDI+ (the colour matrix, the flip to apply to a cached bitmap, the modes) is
// plain logic and lives here on every system.
#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/Pixels.h"
#include "imaging/RenderPath.h"

namespace vantor::imaging {

class cGDIPlus : public IRenderPath {
 public:
  // GDI+'s own values, as the gateway hands them over.
  static constexpr int32_t kPixelFormat32bppPARGB = 925707;
  static constexpr int32_t kInterpolationHighQualityBicubic = 7;
  static constexpr int32_t kInterpolationNearestNeighbor = 5;
  static constexpr int32_t kUnitPixel = 2;
  // RotateFlipType values.
  static constexpr int32_t kRotateNoneFlipNone = 0;
  static constexpr int32_t kRotateNoneFlipXY = 2;
  static constexpr int32_t kRotateNoneFlipX = 4;
  static constexpr int32_t kRotateNoneFlipY = 6;

  cGDIPlus() = default;
  // Shuts its own token down, disposing any cached image.
  ~cGDIPlus() override;
  cGDIPlus(const cGDIPlus&) = delete;
  cGDIPlus& operator=(const cGDIPlus&) = delete;

  // Whether the library can be loaded and exports "GdiplusStartup".
  static bool LibraryPresent();
  // The probe: usable when this object holds a token, or when the library
  // is present and a test startup with version 1 succeeds. Without
  // `keepToken` the test token is shut down at once.
  bool isGDIplusOk(bool keepToken = false);
  uintptr_t Token() const { return token_; }
  // A token for the caller to hold; 0 where GDI+ cannot start.
  static uintptr_t CreateToken();
  static bool DestroyToken(uintptr_t token);

  // Draws through GDI+ (rotation included); false where GDI+ is absent.
  bool Draw(const RenderJob& job) override;
  // Reads any format GDI+ knows into pixels drawn at the picture's own size.
  bool LoadPicture(std::span<const uint8_t> bytes, Pixels& out);
  // Writes pixels with the encoder of a MIME type ("image/png",
  // "image/jpeg"); quality applies to JPEG.
  bool SavePicture(const Pixels& pixels, const char* mimeType, int32_t quality,
                   std::vector<uint8_t>& out);
  // Drops a cached bitmap (the one kept while KeepGDIplusActive holds).
  void DisposeCachedImage();

  // The 5 x 5 colour matrix of a draw with a grey formula (-1 for none), a
  // light adjustment (-100 to 100) and an opacity (1 to 100); row-major, GDI+
  // multiplies a row vector by it.
  using ColorMatrix = std::array<std::array<float, 5>, 5>;
  static ColorMatrix BuildColorMatrix(int32_t grayScale, float light, int32_t opacity);
  // Whether a draw needs the matrix at all.
  static bool NeedsColorMatrix(int32_t grayScale, float light, int32_t opacity) {
    return grayScale != -1 || light != 0 || opacity < 100;
  }
  // The RotateFlipType that brings a bitmap flipped as `applied` to `wanted`,
  // so that a cached bitmap is only turned as far as needed.
  static int32_t FlipToApply(bool appliedX, bool appliedY, bool wantedX, bool wantedY);
  static int32_t InterpolationMode(bool highQuality) {
    return highQuality ? kInterpolationHighQualityBicubic : kInterpolationNearestNeighbor;
  }

 private:
  uintptr_t token_ = 0;
  bool flippedX_ = false, flippedY_ = false;
};

}  // namespace vantor::imaging
