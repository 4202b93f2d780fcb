#include "frame/WindowShape.h"

#include <algorithm>
#include <cstdint>

#include "frame/ThemeEnums.h"
#include "platform/Gdi.h"
#include "platform/User.h"
#include "runtime/Conversion.h"

namespace vantor::frame {

void WindowShape::RegionDeleter::operator()(HRGN region) const {
  DeleteObject(region);
}

bool WindowShape::SquaresLeft(int32_t shape) {
  return shape == Cut_Left || shape == Cut_Sides;
}

bool WindowShape::SquaresRight(int32_t shape) {
  return shape == Cut_Right || shape == Cut_Sides;
}

WindowShape::Region WindowShape::CreateRegion(int32_t width, int32_t height, int32_t shape) {
  // Plain int arithmetic would overflow at the extremes; the platform then
  // gets the saturated edge, which it clips like any other.
  const auto right = static_cast<int>(std::min<int64_t>(int64_t{width} + 1, INT32_MAX));
  const auto bottom = static_cast<int>(std::min<int64_t>(int64_t{height} + 1, INT32_MAX));
  Region region(CreateRoundRectRgn(0, 0, right, bottom, 3, 3));
  if (!region) return region;
  // The halves meet at the middle rounded to even, as the fill's seam does;
  // for Cut_Sides the two halves together cover the whole rectangle.
  const int32_t middle = RoundToInt(width / 2.0);
  if (SquaresLeft(shape)) {
    Region cut(CreateRectRgn(0, 0, middle, bottom));
    if (cut) CombineRgn(region.get(), region.get(), cut.get(), RGN_OR);
  }
  if (SquaresRight(shape)) {
    Region cut(CreateRectRgn(middle, 0, right, bottom));
    if (cut) CombineRgn(region.get(), region.get(), cut.get(), RGN_OR);
  }
  return region;
}

bool WindowShape::Apply(HWND hwnd, int32_t width, int32_t height, int32_t shape) {
  Region region = CreateRegion(width, height, shape);
  if (!region) return false;
  // Redraw is the host's True, -1, as the control passes it.
  return SetWindowRgn(hwnd, region.get(), -1) != 0;
}

void WindowShape::DrawCorners(HDC hDC, int32_t width, int32_t height, int32_t shape,
                              OLE_COLOR borderColor) {
  // A window without area shows nothing, and width - 2 must not wrap.
  if (width < 1 || height < 1) return;
  if (!SquaresLeft(shape)) {
    SetPixelV(hDC, 1, 1, borderColor);
    SetPixelV(hDC, 1, height - 2, borderColor);
  }
  if (!SquaresRight(shape)) {
    SetPixelV(hDC, width - 2, 1, borderColor);
    SetPixelV(hDC, width - 2, height - 2, borderColor);
  }
}

}  // namespace vantor::frame
