// The rectangle helpers. Rectangles are half open: right and bottom are
// outside; a rectangle with right <= left or bottom <= top is empty.
#include <algorithm>

#include "platform/Gdi.h"

BOOL SetRect(LPRECT rect, int left, int top, int right, int bottom) {
  if (rect == nullptr) return FALSE;
  *rect = RECT{left, top, right, bottom};
  return TRUE;
}

BOOL SetRectEmpty(LPRECT rect) {
  return SetRect(rect, 0, 0, 0, 0);
}

BOOL CopyRect(LPRECT dest, const RECT* src) {
  if (dest == nullptr || src == nullptr) return FALSE;
  *dest = *src;
  return TRUE;
}

BOOL OffsetRect(LPRECT rect, int dx, int dy) {
  if (rect == nullptr) return FALSE;
  rect->left += dx;
  rect->right += dx;
  rect->top += dy;
  rect->bottom += dy;
  return TRUE;
}

BOOL InflateRect(LPRECT rect, int dx, int dy) {
  if (rect == nullptr) return FALSE;
  rect->left -= dx;
  rect->right += dx;
  rect->top -= dy;
  rect->bottom += dy;
  return TRUE;
}

BOOL IsRectEmpty(const RECT* rect) {
  return rect == nullptr || rect->right <= rect->left || rect->bottom <= rect->top;
}

BOOL IntersectRect(LPRECT dest, const RECT* a, const RECT* b) {
  if (dest == nullptr) return FALSE;
  if (IsRectEmpty(a) || IsRectEmpty(b) || a->left >= b->right || b->left >= a->right ||
      a->top >= b->bottom || b->top >= a->bottom) {
    SetRectEmpty(dest);
    return FALSE;
  }
  *dest = RECT{std::max(a->left, b->left), std::max(a->top, b->top), std::min(a->right, b->right),
               std::min(a->bottom, b->bottom)};
  return TRUE;
}

BOOL UnionRect(LPRECT dest, const RECT* a, const RECT* b) {
  if (dest == nullptr) return FALSE;
  const bool empty_a = IsRectEmpty(a), empty_b = IsRectEmpty(b);
  if (empty_a && empty_b) {
    SetRectEmpty(dest);
    return FALSE;
  }
  if (empty_a) {
    *dest = *b;
  } else if (empty_b) {
    *dest = *a;
  } else {
    *dest = RECT{std::min(a->left, b->left), std::min(a->top, b->top), std::max(a->right, b->right),
                 std::max(a->bottom, b->bottom)};
  }
  return TRUE;
}

BOOL SubtractRect(LPRECT dest, const RECT* a, const RECT* b) {
  if (dest == nullptr || a == nullptr) return FALSE;
  // Only a cut across a whole side leaves a rectangle; otherwise `a` stays.
  RECT r = *a;
  if (IsRectEmpty(&r)) {
    SetRectEmpty(dest);
    return FALSE;
  }
  RECT cut;
  if (b != nullptr && IntersectRect(&cut, a, b)) {
    if (cut.left == r.left && cut.right == r.right) {
      if (cut.top == r.top)
        r.top = cut.bottom;
      else if (cut.bottom == r.bottom)
        r.bottom = cut.top;
    } else if (cut.top == r.top && cut.bottom == r.bottom) {
      if (cut.left == r.left)
        r.left = cut.right;
      else if (cut.right == r.right)
        r.right = cut.left;
    }
  }
  if (IsRectEmpty(&r)) {
    SetRectEmpty(dest);
    return FALSE;
  }
  *dest = r;
  return TRUE;
}

BOOL PtInRect(const RECT* rect, POINT p) {
  return rect != nullptr && p.x >= rect->left && p.x < rect->right && p.y >= rect->top &&
         p.y < rect->bottom;
}

BOOL EqualRect(const RECT* a, const RECT* b) {
  if (a == nullptr || b == nullptr) return FALSE;
  return a->left == b->left && a->top == b->top && a->right == b->right && a->bottom == b->bottom;
}
