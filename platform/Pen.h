#pragma once
// A pen: how lines and shape outlines are drawn.
#include "platform/GdiObject.h"

namespace vantor::platform {

class Pen : public GdiObject {
 public:
  explicit Pen(const LOGPEN& pen) : GdiObject(OBJ_PEN), log(pen) {}
  LOGPEN log;
  // The style without end cap, join and type bits.
  int Style() const { return static_cast<int>(log.lopnStyle & 0xF); }
  // Pixels across; a width of 0 draws one pixel, as a cosmetic pen.
  int Width() const { return log.lopnWidth.x < 1 ? 1 : log.lopnWidth.x; }
};

}  // namespace vantor::platform
