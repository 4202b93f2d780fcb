#pragma once
// A state's background: one vertical gradient over the whole client area, or
// two stacked ones that meet at the middle, as ENUM_GRADIENT_COLORS says.
#include <cstdint>

#include "platform/WinTypes.h"

namespace vantor::frame {

class GradientSplit {
 public:
  // Where the second half of a four-colour fill starts, and how tall each
  // half is: height / 2 rounded to the nearest integer, ties to even. The
  // halves are equal on purpose, so an odd height either leaves the last row
  // to whatever was there (25 gives 12) or lets the lower half run one row
  // past the bottom (27 gives 14).
  static int32_t Seam(int32_t height);

  // Fills (0, 0, width, height) from colour 1 at the top; with Four_Colors
  // colours 1 to 2 above the seam and 3 to 4 below it, any other value is
  // taken as Two_Colors and uses colours 1 and 2 only. True when every
  // gradient it asked for was drawn.
  static bool Paint(HDC hDC, int32_t width, int32_t height, int32_t gradientColors,
                    OLE_COLOR color1, OLE_COLOR color2, OLE_COLOR color3, OLE_COLOR color4);
};

}  // namespace vantor::frame
