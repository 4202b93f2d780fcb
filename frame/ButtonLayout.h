#pragma once
// Where a button puts its caption and its picture. The caption rectangle is
// the wrapped text's measured box centred in the client area; the picture
// then takes its place by the alignment, pushing the caption aside (sides,
// with a gap of 2) or stacking with it (top and bottom, no gap). All halves
// truncate toward zero, which is what keeps odd sizes one pixel to the left
// and top.
#include <cstdint>

#include "platform/WinTypes.h"

namespace vantor::frame {

enum ENUM_PIC_ALIGNMENTS : int32_t {
  Picture_BehindText = 0,
  Picture_BottomEdge = 1,
  Picture_BottomOfCaption = 2,
  Picture_LeftEdge = 3,
  Picture_LeftOfCaption = 4,
  Picture_RightEdge = 5,
  Picture_RightOfCaption = 6,
  Picture_TopEdge = 7,
  Picture_TopOfCaption = 8,
};

class ButtonLayout {
 public:
  struct Result {
    RECT caption{};  // empty when there is no caption
    RECT picture{};  // empty when there is no picture
  };
  // `measured` is the caption's wrapped box from (0, 0) (DT_CALCRECT), or
  // null for an empty caption; pictureWidth x pictureHeight is the picture's
  // box, or hasPicture false. Margins are the button's inner distances.
  static Result Compute(int32_t width, int32_t height, const RECT* measured, bool hasPicture,
                        int32_t pictureWidth, int32_t pictureHeight, int32_t alignment,
                        int32_t marginX = 4, int32_t marginY = 4);
};

}  // namespace vantor::frame
