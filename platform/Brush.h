#pragma once
// A brush: how areas are filled. Hatched and pattern brushes repeat an 8x8
// (or bitmap-sized) tile aligned on the device origin and the brush origin.
#include <cstdint>
#include <vector>

#include "platform/GdiObject.h"

namespace vantor::platform {

class Brush : public GdiObject {
 public:
  explicit Brush(const LOGBRUSH& brush) : GdiObject(OBJ_BRUSH), log(brush) {}
  LOGBRUSH log;
  // Pattern brushes: the tile in surface pixel format. Hatched brushes: a
  // tile where 1 marks hatch lines (drawn in the brush colour) and 0 the
  // background (bk colour when OPAQUE, untouched when TRANSPARENT).
  std::vector<uint32_t> tile;
  int tile_width = 0;
  int tile_height = 0;
  bool IsNull() const { return log.lbStyle == 1; }
};

}  // namespace vantor::platform
