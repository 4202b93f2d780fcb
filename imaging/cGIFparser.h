#pragma once
// GIF in both directions for the surface: the first frame of a file becomes a
// picture (an animation's later frames are GifAnimation's), and a picture
// becomes a one-frame GIF89a with at most 256 colours, one of them given to
// transparency when the picture has any.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "imaging/Pixels.h"
#include "platform/WinTypes.h"
#include "runtime/String.h"

namespace vantor::imaging {

class cGIFparser {
 public:
  // Reads the GIF that occupies `length` bytes (0: all the rest) from byte
  // `start` of `bytes`. On failure returns false with `out` empty.
  bool LoadStream(std::span<const uint8_t> bytes, Pixels& out, size_t start = 0, size_t length = 0);

  // Pixels whose alpha is at least `opaquenessTolerance` are kept, the others
  // become the transparent entry. A kept pixel that is not wholly opaque is
  // laid over `fillColor` when one is given, and otherwise shown at its
  // straight colour. With more colours than the palette holds, the
  // palette follows the picture (`useAdaptivePalette`) or is a fixed cube.
  bool SaveAsGIF(const Pixels& in, std::vector<uint8_t>& out, bool useAdaptivePalette = true,
                 int32_t opaquenessTolerance = 128, std::optional<OLE_COLOR> fillColor = {});
  // The same, written to a file; an empty name is refused.
  bool SaveAsGIF(const Pixels& in, const String& fileName, bool useAdaptivePalette = true,
                 int32_t opaquenessTolerance = 128, std::optional<OLE_COLOR> fillColor = {});
};

}  // namespace vantor::imaging
