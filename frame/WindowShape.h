#pragma once
// The outline of a button: a window region with 3 x 3 rounded corners, the
// sides that ENUM_BUTTON_SHAPES squares, and the pixels that make a square
// border look round where the region keeps a corner.
#include <cstdint>
#include <memory>
#include <type_traits>

#include "platform/WinTypes.h"

namespace vantor::frame {

class WindowShape {
 public:
  struct RegionDeleter {
    void operator()(HRGN region) const;
  };
  using Region = std::unique_ptr<std::remove_pointer_t<HRGN>, RegionDeleter>;

  // The region of a width x height window, in window coordinates. It asks
  // for one pixel more each way because the platform's round rectangle stops
  // one short of its right and bottom; the squared sides reach that extra
  // pixel too, which the window clips away. Null if the platform refuses.
  static Region CreateRegion(int32_t width, int32_t height, int32_t shape);

  // Gives the window that region and has it redrawn. The region handle is
  // deleted here either way: the platform has taken its own copy on success,
  // and on failure nothing else holds it.
  static bool Apply(HWND hwnd, int32_t width, int32_t height, int32_t shape);

  // Run after the border rectangle. Where the region rounds a corner it
  // hides the border's corner pixel and leaves a notch; the border colour on
  // the pixel diagonally inside fills the notch from within, so the corner
  // reads as a curve. Sides that the shape squares keep their border corner
  // and get nothing.
  static void DrawCorners(HDC hDC, int32_t width, int32_t height, int32_t shape,
                          OLE_COLOR borderColor);

  // Whether the shape squares the left or the right side; an unknown shape
  // squares neither.
  static bool SquaresLeft(int32_t shape);
  static bool SquaresRight(int32_t shape);
};

}  // namespace vantor::frame
