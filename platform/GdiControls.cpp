// The pieces of classic controls drawn by the system: focus rectangles, push
// buttons and check boxes in the colours of the system scheme. No visual
// style is ever active, so controls take these paths.
#include <algorithm>
#include <vector>

#include "platform/DeviceContext.h"
#include "platform/Gdi.h"
#include "platform/Raster.h"
#include "platform/Shapes.h"

using vantor::platform::ColorToPixel;
using vantor::platform::DcFromHandle;
using vantor::platform::DeviceContext;
using vantor::platform::Region;

namespace {

// System colour indexes (the window code names them COLOR_*).
constexpr int kWindow = 5;
constexpr int kWindowText = 8;
constexpr int kBtnFace = 15;
constexpr int kBtnShadow = 16;
constexpr int kBtnHighlight = 20;
constexpr int kDkShadow = 21;
constexpr int kLight = 22;

uint32_t Sys(int index) {
  return ColorToPixel(GetSysColor(index));
}

void Fill(DeviceContext& dc, const RECT& s, uint32_t pixel) {
  vantor::platform::FillSurfaceRect(dc, s, pixel);
}

// One ring of a 3-D edge on surface rectangle `s`: the top and left in one
// colour, the bottom and right (with the top-right and bottom-left corner
// pixels) in the other.
void Ring(DeviceContext& dc, const RECT& s, uint32_t top_left, uint32_t bottom_right) {
  if (s.right - s.left < 1 || s.bottom - s.top < 1) return;
  Fill(dc, RECT{s.left, s.top, s.right - 1, s.top + 1}, top_left);
  Fill(dc, RECT{s.left, s.top, s.left + 1, s.bottom - 1}, top_left);
  Fill(dc, RECT{s.right - 1, s.top, s.right, s.bottom}, bottom_right);
  Fill(dc, RECT{s.left, s.bottom - 1, s.right, s.bottom}, bottom_right);
}

RECT Deflate(const RECT& r, LONG by) {
  return RECT{r.left + by, r.top + by, r.right - by, r.bottom - by};
}

// A checked button's face: the face colour and the highlight in a
// checkerboard aligned on the device origin.
void Dither(DeviceContext& dc, const RECT& s) {
  const uint32_t face = Sys(kBtnFace), light = Sys(kBtnHighlight);
  const vantor::platform::Surface& t = dc.Target();
  vantor::platform::ForEachClipRect(dc, s, [&](const RECT& r) {
    for (LONG y = r.top; y < r.bottom; ++y) {
      for (LONG x = r.left; x < r.right; ++x) {
        t.At(x, y) = (((x - dc.origin.x) + (y - dc.origin.y)) & 1) ? light : face;
      }
    }
  });
}

void PushButton(DeviceContext& dc, const RECT& s, UINT state) {
  if (state & DFCS_FLAT) {
    Ring(dc, s, Sys(kBtnShadow), Sys(kBtnShadow));
    Ring(dc, Deflate(s, 1), Sys(kBtnFace), Sys(kBtnFace));
  } else if (state & (DFCS_PUSHED | DFCS_CHECKED)) {
    Ring(dc, s, Sys(kDkShadow), Sys(kBtnHighlight));
    Ring(dc, Deflate(s, 1), Sys(kBtnShadow), Sys(kLight));
  } else {
    Ring(dc, s, Sys(kBtnHighlight), Sys(kDkShadow));
    Ring(dc, Deflate(s, 1), Sys(kLight), Sys(kBtnShadow));
  }
  if (state & DFCS_CHECKED) {
    Dither(dc, Deflate(s, 2));
  } else {
    Fill(dc, Deflate(s, 2), Sys(kBtnFace));
  }
}

void CheckBox(DeviceContext& dc, const RECT& s, UINT state) {
  // The box is the largest square centred in the rectangle.
  const LONG side = std::min(s.right - s.left, s.bottom - s.top);
  if (side <= 0) return;
  const LONG x = s.left + (s.right - s.left - side) / 2;
  const LONG y = s.top + (s.bottom - s.top - side) / 2;
  const RECT box{x, y, x + side, y + side};
  const bool grey = (state & (DFCS_PUSHED | DFCS_INACTIVE)) != 0;
  const uint32_t inside = grey ? Sys(kBtnFace) : Sys(kWindow);
  if (state & DFCS_FLAT) {
    Ring(dc, box, Sys(kBtnShadow), Sys(kBtnShadow));
    Ring(dc, Deflate(box, 1), Sys(kBtnFace), Sys(kBtnFace));
    Fill(dc, Deflate(box, 2), inside);
  } else {
    Ring(dc, box, Sys(kBtnShadow), Sys(kBtnHighlight));
    Ring(dc, Deflate(box, 1), Sys(kDkShadow), Sys(kLight));
    Fill(dc, Deflate(box, 2), inside);
  }
  if ((state & DFCS_CHECKED) == 0) return;
  // The classic tick: seven columns, each three pixels tall, going down one
  // row, staying, then up four.
  static constexpr int kTop[7] = {3, 4, 4, 3, 2, 1, 0};
  const uint32_t ink = (state & DFCS_INACTIVE) ? Sys(kBtnShadow) : Sys(kWindowText);
  const LONG cx = x + (side - 7) / 2, cy = y + (side - 7) / 2;
  for (LONG i = 0; i < 7; ++i) {
    Fill(dc, RECT{cx + i, cy + kTop[i], cx + i + 1, cy + kTop[i] + 3}, ink);
  }
}

}  // namespace

BOOL DrawFocusRect(HDC dc, const RECT* rect) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || rect == nullptr) return FALSE;
  const RECT s = d->SurfaceRect(*rect);
  if (s.right <= s.left || s.bottom <= s.top) return TRUE;
  // The platform draws it as a rectangle outlined by an alternate-dot pen
  // through XOR: the path starts at the top-right pixel with a dot and goes
  // anticlockwise, the dots counted along it. A rectangle one pixel wide or
  // high is walked down and back up again, so most of its dots cancel; a
  // pixel is inverted when the walk dots it an odd number of times.
  const LONG l = s.left, t = s.top, r = s.right - 1, b = s.bottom - 1;
  const POINT corners[5] = {{r, t}, {l, t}, {l, b}, {r, b}, {r, t}};
  std::vector<RECT> dots;
  size_t position = 0;
  for (int i = 0; i < 4; ++i) {
    for (const POINT& p : vantor::platform::LinePixels(corners[i].x, corners[i].y, corners[i + 1].x,
                                                       corners[i + 1].y)) {
      if (position++ % 2 == 0) dots.push_back(RECT{p.x, p.y, p.x + 1, p.y + 1});
    }
  }
  std::sort(dots.begin(), dots.end(), [](const RECT& a, const RECT& c) {
    return a.top != c.top ? a.top < c.top : a.left < c.left;
  });
  std::vector<RECT> odd;
  for (size_t i = 0; i < dots.size();) {
    size_t j = i;
    while (j < dots.size() && dots[j].left == dots[i].left && dots[j].top == dots[i].top) ++j;
    if ((j - i) % 2 == 1) odd.push_back(dots[i]);
    i = j;
  }
  Region ring = Region::FromRects(odd.data(), odd.size());
  ring.Intersect(d->Clip());
  const vantor::platform::Surface& target = d->Target();
  for (const RECT& box : ring.Rects()) {
    for (LONG y = box.top; y < box.bottom; ++y) {
      for (LONG x = box.left; x < box.right; ++x) target.At(x, y) ^= 0x00FFFFFFu;
    }
  }
  return TRUE;
}

BOOL DrawFrameControl(HDC dc, LPRECT rect, UINT type, UINT state) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || rect == nullptr || type != DFC_BUTTON) return FALSE;
  const RECT s = d->SurfaceRect(*rect);
  if ((state & 0xFF) == DFCS_BUTTONPUSH) {
    PushButton(*d, s, state);
    if (state & DFCS_ADJUSTRECT) InflateRect(rect, -2, -2);
    return TRUE;
  }
  if ((state & 0xFF) == DFCS_BUTTONCHECK) {
    CheckBox(*d, s, state);
    return TRUE;
  }
  return FALSE;
}

HTHEME OpenThemeData(HWND, LPCWSTR) {
  return nullptr;
}

HRESULT CloseThemeData(HTHEME) {
  return 0;
}

HRESULT DrawThemeBackground(HTHEME, HDC, int, int, const RECT*, const RECT*) {
  return static_cast<HRESULT>(0x80004005u);  // E_FAIL
}

BOOL IsThemeActive() {
  return FALSE;
}
