#include "frame/GradientSplit.h"

#include "frame/GradientPainter.h"
#include "frame/ThemeEnums.h"
#include "runtime/Conversion.h"

namespace vantor::frame {

int32_t GradientSplit::Seam(int32_t height) {
  return RoundToInt(height / 2.0);
}

bool GradientSplit::Paint(HDC hDC, int32_t width, int32_t height, int32_t gradientColors,
                          OLE_COLOR color1, OLE_COLOR color2, OLE_COLOR color3, OLE_COLOR color4) {
  if (gradientColors != Four_Colors) {
    return GradientPainter::Paint(hDC, 0, 0, width, height, color1, color2, Gradient_Vertical);
  }
  const int32_t half = Seam(height);
  // Both halves are tried even when the first fails, as the fill of a
  // half-drawn state still beats a blank one.
  const bool upper =
      GradientPainter::Paint(hDC, 0, 0, width, half, color1, color2, Gradient_Vertical);
  const bool lower =
      GradientPainter::Paint(hDC, 0, half, width, half, color3, color4, Gradient_Vertical);
  return upper && lower;
}

}  // namespace vantor::frame
