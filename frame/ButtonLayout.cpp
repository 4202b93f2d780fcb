#include "frame/ButtonLayout.h"

namespace vantor::frame {

namespace {

void Offset(RECT& r, int32_t dx, int32_t dy) {
  r.left += dx, r.right += dx, r.top += dy, r.bottom += dy;
}
// Moves the rectangle so its left (or top) is at the value, keeping its size.
void MoveLeft(RECT& r, int32_t left) { Offset(r, left - r.left, 0); }
void MoveTop(RECT& r, int32_t top) { Offset(r, 0, top - r.top); }
int32_t W(const RECT& r) { return r.right - r.left; }
int32_t H(const RECT& r) { return r.bottom - r.top; }
void CentreX(RECT& r, int32_t width) { MoveLeft(r, (width - W(r)) / 2); }
void CentreY(RECT& r, int32_t height) { MoveTop(r, (height - H(r)) / 2); }

}  // namespace

ButtonLayout::Result ButtonLayout::Compute(int32_t width, int32_t height, const RECT* measured,
                                           bool hasPicture, int32_t pictureWidth,
                                           int32_t pictureHeight, int32_t alignment,
                                           int32_t marginX, int32_t marginY) {
  Result out;
  RECT t{};
  if (measured != nullptr) {
    t = *measured;
    Offset(t, (width - t.right) / 2, (height - t.bottom) / 2);
    out.caption = t;
  }
  if (!hasPicture) return out;
  RECT p{0, 0, pictureWidth, pictureHeight};
  const int32_t gap = measured != nullptr ? 2 : 0;
  const int32_t mx = marginX, my = marginY;
  switch (alignment) {
    case Picture_BehindText:
      CentreX(p, width);
      CentreY(p, height);
      break;
    case Picture_BottomEdge:
    case Picture_BottomOfCaption:
      CentreX(p, width);
      MoveTop(t, 0);
      if (alignment == Picture_BottomEdge) {
        MoveTop(p, height - H(p) - my);
        if (gap > 0) {
          Offset(t, 0, p.top - t.bottom);
          const int32_t d = t.top - my;
          if (d > 1) Offset(t, 0, -(d / 2));
        }
      } else if (gap == 0) {
        CentreY(p, height);
      } else {
        MoveTop(p, t.bottom);
        const int32_t d = (height - p.bottom) / 2;
        Offset(p, 0, d);
        Offset(t, 0, d);
      }
      break;
    case Picture_LeftEdge:
    case Picture_LeftOfCaption:
      CentreY(p, height);
      MoveLeft(t, 0);
      if (alignment == Picture_LeftEdge) {
        MoveLeft(p, mx);
        if (gap > 0) {
          Offset(t, p.right + gap, 0);
          const int32_t d = width - mx - t.right;
          if (d > 1) Offset(t, d / 2, 0);
        }
      } else if (gap == 0) {
        CentreX(p, width);
      } else {
        Offset(t, p.right + gap, 0);
        const int32_t d = (width - t.right) / 2;
        Offset(t, d, 0);
        Offset(p, d, 0);
      }
      break;
    case Picture_RightEdge:
    case Picture_RightOfCaption:
      CentreY(p, height);
      MoveLeft(t, 0);
      if (alignment == Picture_RightEdge) {
        MoveLeft(p, width - W(p) - mx);
        if (gap > 0) {
          Offset(t, p.left - t.right - gap, 0);
          const int32_t d = t.left - mx;
          if (d > 1) Offset(t, -(d / 2), 0);
        }
      } else if (gap == 0) {
        CentreX(p, width);
      } else {
        Offset(p, t.right + gap, 0);
        const int32_t d = (width - p.right) / 2;
        Offset(p, d, 0);
        Offset(t, d, 0);
      }
      break;
    case Picture_TopEdge:
    case Picture_TopOfCaption:
      CentreX(p, width);
      MoveTop(t, 0);
      if (alignment == Picture_TopEdge) {
        Offset(p, 0, my);
        if (gap > 0) {
          Offset(t, 0, p.bottom);
          const int32_t d = height - t.bottom - my;
          if (d > 1) Offset(t, 0, d / 2);
        }
      } else if (gap == 0) {
        CentreY(p, height);
      } else {
        Offset(t, 0, p.bottom);
        const int32_t d = (height - t.bottom) / 2;
        Offset(t, 0, d);
        Offset(p, 0, d);
      }
      break;
    default:
      break;
  }
  out.picture = p;
  if (measured != nullptr) out.caption = t;
  return out;
}

}  // namespace vantor::frame
