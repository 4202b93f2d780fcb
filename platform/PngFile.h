#pragma once
// Screenshots as PNG files: the presenter saves windows and the screen with
// it, and the GDI oracle turns Windows' pixels into committed goldens. It only
// writes (8-bit RGB or RGBA, no interlace); reading belongs to the tests.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/Surface.h"

namespace vantor::platform {

class PngFile {
 public:
  enum class Channels {
    kRgb,   // the surface's alpha byte is dropped: GDI leaves it meaningless
    kRgba,  // straight (not pre-multiplied) alpha, as PNG wants it
  };

  // The PNG bytes of the surface; empty for an empty surface or when zlib
  // refuses. With kRgba the surface is taken as pre-multiplied (what
  // AlphaBlend and layered windows use) and divided back out.
  static std::vector<uint8_t> Encode(const Surface& surface, Channels channels = Channels::kRgb);

  // Encodes and writes the file (UTF-8 path); false when either step fails.
  static bool Save(const Surface& surface, const std::string& path,
                   Channels channels = Channels::kRgb);
};

}  // namespace vantor::platform
