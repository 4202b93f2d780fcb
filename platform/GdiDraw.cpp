// Lines, figures, area fills and single pixels.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

#include "platform/Brush.h"
#include "platform/DeviceContext.h"
#include "platform/Gdi.h"
#include "platform/Pen.h"
#include "platform/Raster.h"
#include "platform/RegionObject.h"
#include "platform/Shapes.h"

using vantor::platform::Brush;
using vantor::platform::ColorToPixel;
using vantor::platform::DcFromHandle;
using vantor::platform::DeviceContext;
using vantor::platform::GdiTable;
using vantor::platform::Pen;
using vantor::platform::PixelToColor;
using vantor::platform::Region;
using vantor::platform::RegionObject;
using vantor::platform::Span;

namespace {

constexpr int kMaxPenWidth = 1 << 12;

Pen* CurrentPen(const DeviceContext& dc) {
  return GdiTable::Get<Pen>(dc.state.pen, OBJ_PEN);
}
Brush* CurrentBrush(const DeviceContext& dc) {
  return GdiTable::Get<Brush>(dc.state.brush, OBJ_BRUSH);
}

// FillRect and friends also take a system colour index plus one.
Brush* BrushArg(HBRUSH brush) {
  const auto value = reinterpret_cast<uintptr_t>(brush);
  if (value >= 1 && value <= 31) brush = GetSysColorBrush(static_cast<int>(value - 1));
  return GdiTable::Get<Brush>(brush, OBJ_BRUSH);
}

bool DrawsOutline(const Pen* pen) {
  return pen != nullptr && pen->Style() != PS_NULL;
}

Region LogicalRegion(const DeviceContext& dc, const Region& logical) {
  Region r(logical);
  r.Offset(dc.SurfaceX(0), dc.SurfaceY(0));
  return r;
}

// The on/off lengths of the styled cosmetic pens.
const std::vector<int>* DashPattern(int style) {
  static const std::array<std::vector<int>, 5> patterns = {
      std::vector<int>{18, 6}, std::vector<int>{3, 3}, std::vector<int>{9, 6, 3, 6},
      std::vector<int>{9, 3, 3, 3, 3, 3}, std::vector<int>{1, 1}};
  switch (style) {
    case PS_DASH:
      return &patterns[0];
    case PS_DOT:
      return &patterns[1];
    case PS_DASHDOT:
      return &patterns[2];
    case PS_DASHDOTDOT:
      return &patterns[3];
    case PS_ALTERNATE:
      return &patterns[4];
    default:
      return nullptr;
  }
}

// The nib a wide pen puts at the ends and joins of its lines: the pixels of
// an elliptic region of the pen's width, centred on the point with the odd
// pixel of an even width up and left.
std::vector<RECT> Nib(int width) {
  std::vector<RECT> nib;
  const LONG lo = width / 2;
  const std::vector<Span> rows = vantor::platform::RoundRectSpans(width, width, width, width);
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].left >= rows[i].right) continue;
    const LONG y = static_cast<LONG>(i) - lo;
    nib.push_back(RECT{rows[i].left - lo, y, rows[i].right - lo, y + 1});
  }
  return nib;
}

void AddNib(std::vector<RECT>& rects, const std::vector<RECT>& nib, POINT p) {
  for (const RECT& n : nib) {
    rects.push_back(RECT{p.x + n.left, p.y + n.top, p.x + n.right, p.y + n.bottom});
  }
}

LONG RoundHalfUp(double v) {
  return static_cast<LONG>(std::floor(v + 0.5));
}

// The body of one wide segment, without its ends. Level and upright ones are
// rectangles of the pen's width; slanted ones are four-sided polygons whose
// corners lie the pen's half width either side of the ends, rounded to whole
// pixels, the larger half on the right.
void AddSegmentBody(Region& out, std::vector<RECT>& rects, POINT a, POINT b, int width) {
  const int64_t dx = int64_t{b.x} - a.x, dy = int64_t{b.y} - a.y;
  if (dx == 0 && dy == 0) return;
  if (dy == 0) {
    const LONG top = a.y - width / 2;
    rects.push_back(RECT{std::min(a.x, b.x), top, std::max(a.x, b.x), top + width});
    return;
  }
  if (dx == 0) {
    const LONG left = a.x - width / 2;
    rects.push_back(RECT{left, std::min(a.y, b.y), left + width, std::max(a.y, b.y)});
    return;
  }
  const double length = std::hypot(static_cast<double>(dx), static_cast<double>(dy));
  const double across_x = width * static_cast<double>(std::llabs(dy)) / length;
  const double across_y = width * static_cast<double>(std::llabs(dx)) / length;
  const LONG narrow_x = RoundHalfUp(across_x / 2), narrow_y = RoundHalfUp(across_y / 2);
  const LONG wide_x = RoundHalfUp((across_x + 1) / 2), wide_y = RoundHalfUp((across_y + 1) / 2);
  // Perpendicular to the segment, the right-hand side rises when the segment
  // runs down-right or up-left, and falls otherwise.
  const LONG rise = (dx > 0) == (dy > 0) ? -1 : 1;
  const POINT wide{wide_x, rise * wide_y}, narrow{-narrow_x, -rise * narrow_y};
  const POINT corners[4] = {POINT{a.x + narrow.x, a.y + narrow.y},
                            POINT{a.x + wide.x, a.y + wide.y}, POINT{b.x + wide.x, b.y + wide.y},
                            POINT{b.x + narrow.x, b.y + narrow.y}};
  out.Union(vantor::platform::PolygonRegion(corners, 4, ALTERNATE));
}

// Pixels of a wide solid pen along a path: the body of every segment and a
// round nib at every point, so its ends and joins are round. Empty segments
// at either end of a longer path are dropped; a lone point still leaves its
// nib.
Region WideStroke(std::vector<POINT> path, bool closed, int width) {
  while (path.size() > 2 && path[0].x == path[1].x && path[0].y == path[1].y) {
    path.erase(path.begin());
  }
  while (path.size() > 2 && path[path.size() - 1].x == path[path.size() - 2].x &&
         path[path.size() - 1].y == path[path.size() - 2].y) {
    path.pop_back();
  }
  Region out;
  if (path.empty()) return out;
  const std::vector<RECT> nib = Nib(width);
  std::vector<RECT> rects;
  for (size_t i = 0; i < path.size(); ++i) {
    AddNib(rects, nib, path[i]);
    if (i + 1 < path.size()) {
      AddSegmentBody(out, rects, path[i], path[i + 1], width);
    } else if (closed) {
      AddSegmentBody(out, rects, path[i], path[0], width);
    }
  }
  out.Union(Region::FromRects(rects.data(), rects.size()));
  return out;
}

// A wide pen around the one-pixel outline of a rounded figure: the nib at
// every outline pixel, and the slanted body between diagonal neighbours that
// the outline steps between directly (no pixel of it touches both).
Region WideOutline(const Region& ring, int width) {
  std::vector<POINT> pixels;
  for (const RECT& r : ring.Rects()) {
    for (LONG py = r.top; py < r.bottom; ++py) {
      for (LONG px = r.left; px < r.right; ++px) pixels.push_back(POINT{px, py});
    }
  }
  const std::vector<RECT> nib = Nib(width);
  std::vector<RECT> rects;
  Region out;
  for (const POINT& p : pixels) {
    AddNib(rects, nib, p);
    for (const LONG step : {-1, 1}) {
      const POINT q{p.x + step, p.y + 1};
      if (ring.Contains(q.x, q.y) && !ring.Contains(q.x, p.y) && !ring.Contains(p.x, q.y)) {
        AddSegmentBody(out, rects, p, q, width);
      }
    }
  }
  out.Union(Region::FromRects(rects.data(), rects.size()));
  return out;
}

Region PixelsRegion(const std::vector<POINT>& pixels) {
  std::vector<RECT> rects;
  rects.reserve(pixels.size());
  for (const POINT& p : pixels) rects.push_back(RECT{p.x, p.y, p.x + 1, p.y + 1});
  return Region::FromRects(rects.data(), rects.size());
}

// Draws one segment in surface coordinates; `dash_pos` carries a styled
// pen's position in its pattern from segment to segment.
void StrokeSegment(DeviceContext& dc, const Pen& pen, POINT a, POINT b, size_t* dash_pos) {
  const int rop2 = dc.state.rop2;
  const uint32_t color = ColorToPixel(pen.log.lopnColor);
  const std::vector<POINT> pixels = vantor::platform::LinePixels(a.x, a.y, b.x, b.y);
  const std::vector<int>* dash = DashPattern(pen.Style());
  if (dash == nullptr) {
    vantor::platform::PaintSurfaceRegion(dc, PixelsRegion(pixels), color, rop2);
    return;
  }
  int total = 0;
  for (int n : *dash) total += n;
  std::vector<POINT> on, off;
  for (const POINT& p : pixels) {
    int pos = static_cast<int>(*dash_pos % static_cast<size_t>(total));
    size_t k = 0;
    while (pos >= (*dash)[k]) pos -= (*dash)[k++];
    ((k % 2 == 0) ? on : off).push_back(p);
    ++*dash_pos;
  }
  vantor::platform::PaintSurfaceRegion(dc, PixelsRegion(on), color, rop2);
  // Gaps take the background colour unless the background is transparent.
  if (dc.state.bk_mode == OPAQUE) {
    vantor::platform::PaintSurfaceRegion(dc, PixelsRegion(off), ColorToPixel(dc.state.bk_color),
                                         rop2);
  }
}

POINT ToSurface(const DeviceContext& dc, POINT p) {
  const LONG lim = Region::kMaxCoord;
  return POINT{std::clamp(dc.SurfaceX(p.x), -lim, lim), std::clamp(dc.SurfaceY(p.y), -lim, lim)};
}

void StrokePath(DeviceContext& dc, const POINT* points, size_t count, bool closed) {
  Pen* pen = CurrentPen(dc);
  if (!DrawsOutline(pen) || count < 2) return;
  if (pen->Width() > 1) {
    // The whole path is one region, so joins are painted once.
    std::vector<POINT> path(count);
    for (size_t i = 0; i < count; ++i) path[i] = ToSurface(dc, points[i]);
    vantor::platform::PaintSurfaceRegion(
        dc, WideStroke(std::move(path), closed, std::min(pen->Width(), kMaxPenWidth)),
        ColorToPixel(pen->log.lopnColor), dc.state.rop2);
    return;
  }
  size_t dash = 0;
  for (size_t i = 0; i + 1 < count; ++i) {
    StrokeSegment(dc, *pen, ToSurface(dc, points[i]), ToSurface(dc, points[i + 1]), &dash);
  }
  if (closed) {
    StrokeSegment(dc, *pen, ToSurface(dc, points[count - 1]), ToSurface(dc, points[0]), &dash);
  }
}

struct Box {
  LONG left, top, right, bottom;
};

Box Normalize(int left, int top, int right, int bottom) {
  return Box{std::min(left, right), std::min(top, bottom), std::max(left, right),
             std::max(top, bottom)};
}

// Ellipses and rounded rectangles: the outline of the pen around the box,
// the inside with the brush; without a pen the figure is one pixel smaller.
void DrawRounded(DeviceContext& dc, Box b, LONG corner_w, LONG corner_h) {
  Pen* pen = CurrentPen(dc);
  Brush* brush = CurrentBrush(dc);
  const LONG x = dc.SurfaceX(b.left), y = dc.SurfaceY(b.top);
  const bool outline = DrawsOutline(pen);
  const LONG w = b.right - b.left - (outline ? 0 : 1);
  const LONG h = b.bottom - b.top - (outline ? 0 : 1);
  const std::vector<Span> spans = vantor::platform::RoundRectSpans(w, h, corner_w, corner_h);
  if (spans.empty()) return;
  Region inside = vantor::platform::SpansRegion(spans, x, y);
  if (!outline) {
    vantor::platform::BrushSurfaceRegion(dc, inside, brush, dc.state.rop2);
    return;
  }
  Region ring = vantor::platform::OutlineOf(spans, x, y);
  if (pen->Width() > 1) ring = WideOutline(ring, std::min(pen->Width(), kMaxPenWidth));
  inside.Subtract(ring);
  vantor::platform::BrushSurfaceRegion(dc, inside, brush, dc.state.rop2);
  vantor::platform::PaintSurfaceRegion(dc, ring, ColorToPixel(pen->log.lopnColor), dc.state.rop2);
}

}  // namespace

BOOL MoveToEx(HDC dc, int x, int y, LPPOINT previous) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return FALSE;
  if (previous != nullptr) *previous = d->state.position;
  d->state.position = POINT{x, y};
  return TRUE;
}

BOOL GetCurrentPositionEx(HDC dc, LPPOINT position) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || position == nullptr) return FALSE;
  *position = d->state.position;
  return TRUE;
}

BOOL LineTo(HDC dc, int x, int y) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return FALSE;
  const POINT path[2] = {d->state.position, POINT{x, y}};
  StrokePath(*d, path, 2, false);
  d->state.position = path[1];
  return TRUE;
}

BOOL Polyline(HDC dc, const POINT* points, int count) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || points == nullptr || count < 2) return FALSE;
  StrokePath(*d, points, static_cast<size_t>(count), false);
  return TRUE;
}

BOOL Polygon(HDC dc, const POINT* points, int count) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || points == nullptr || count < 2) return FALSE;
  std::vector<POINT> surface(points, points + count);
  for (POINT& p : surface) p = ToSurface(*d, p);
  const Region inside = vantor::platform::PolygonRegion(surface.data(), surface.size(), ALTERNATE);
  vantor::platform::BrushSurfaceRegion(*d, inside, CurrentBrush(*d), d->state.rop2);
  StrokePath(*d, points, static_cast<size_t>(count), true);
  return TRUE;
}

BOOL Rectangle(HDC dc, int left, int top, int right, int bottom) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return FALSE;
  const Box b = Normalize(left, top, right, bottom);
  const RECT s = d->SurfaceRect(RECT{b.left, b.top, b.right, b.bottom});
  Pen* pen = CurrentPen(*d);
  Brush* brush = CurrentBrush(*d);
  if (!DrawsOutline(pen)) {
    vantor::platform::BrushSurfaceRegion(*d, Region(s.left, s.top, s.right - 1, s.bottom - 1),
                                         brush, d->state.rop2);
    return TRUE;
  }
  const LONG w = std::min(pen->Width(), kMaxPenWidth);
  RECT outer, inner;
  if (pen->Style() == PS_INSIDEFRAME) {
    outer = s;
    inner = RECT{s.left + w, s.top + w, s.right - w, s.bottom - w};
  } else {
    // A wide pen is centred on the one-pixel outline, the extra pixel of an
    // even width going up and left.
    const LONG lo = w / 2, hi = (w - 1) / 2;
    outer = RECT{s.left - lo, s.top - lo, s.right + hi, s.bottom + hi};
    inner = RECT{s.left + 1 + hi, s.top + 1 + hi, s.right - 1 - lo, s.bottom - 1 - lo};
  }
  Region ring(outer);
  const Region hole(inner);
  ring.Subtract(hole);
  if (w > 2 && pen->Style() != PS_INSIDEFRAME) {
    // Wide pens join round: the nib travels the one-pixel outline.
    Region path(s);
    path.Subtract(RECT{s.left + 1, s.top + 1, s.right - 1, s.bottom - 1});
    ring = WideOutline(path, static_cast<int>(w));
    ring.Subtract(hole);
  }
  vantor::platform::BrushSurfaceRegion(*d, hole, brush, d->state.rop2);
  vantor::platform::PaintSurfaceRegion(*d, ring, ColorToPixel(pen->log.lopnColor), d->state.rop2);
  return TRUE;
}

BOOL RoundRect(HDC dc, int left, int top, int right, int bottom, int width, int height) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return FALSE;
  DrawRounded(*d, Normalize(left, top, right, bottom), width, height);
  return TRUE;
}

BOOL Ellipse(HDC dc, int left, int top, int right, int bottom) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return FALSE;
  const Box b = Normalize(left, top, right, bottom);
  DrawRounded(*d, b, b.right - b.left, b.bottom - b.top);
  return TRUE;
}

int FillRect(HDC dc, const RECT* rect, HBRUSH brush) {
  DeviceContext* d = DcFromHandle(dc);
  Brush* b = BrushArg(brush);
  if (d == nullptr || rect == nullptr || b == nullptr) return 0;
  // FillRect is a PatBlt of the rectangle's extents: a negative one runs
  // back from its starting pixel, which it includes.
  auto run = [](LONG from, LONG to, LONG* lo, LONG* hi) {
    if (to >= from) {
      *lo = from, *hi = to;
    } else {
      *lo = to + 1, *hi = from + 1;
    }
  };
  RECT n;
  run(rect->left, rect->right, &n.left, &n.right);
  run(rect->top, rect->bottom, &n.top, &n.bottom);
  const RECT s = d->SurfaceRect(n);
  if (b->tile.empty() && !b->IsNull()) {
    vantor::platform::FillSurfaceRect(*d, s, ColorToPixel(b->log.lbColor));
  } else {
    vantor::platform::BrushSurfaceRegion(*d, Region(s), b, R2_COPYPEN);
  }
  return 1;
}

int FrameRect(HDC dc, const RECT* rect, HBRUSH brush) {
  DeviceContext* d = DcFromHandle(dc);
  Brush* b = BrushArg(brush);
  if (d == nullptr || rect == nullptr || b == nullptr) return 0;
  const RECT s = d->SurfaceRect(*rect);
  if (s.right <= s.left || s.bottom <= s.top) return 1;
  Region ring(s);
  ring.Subtract(RECT{s.left + 1, s.top + 1, s.right - 1, s.bottom - 1});
  vantor::platform::BrushSurfaceRegion(*d, ring, b, R2_COPYPEN);
  return 1;
}

BOOL InvertRect(HDC dc, const RECT* rect) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || rect == nullptr) return FALSE;
  vantor::platform::PaintSurfaceRegion(*d, Region(d->SurfaceRect(*rect)), 0, R2_NOT);
  return TRUE;
}

BOOL FillRgn(HDC dc, HRGN region, HBRUSH brush) {
  DeviceContext* d = DcFromHandle(dc);
  auto* r = GdiTable::Get<RegionObject>(region, OBJ_REGION);
  Brush* b = BrushArg(brush);
  if (d == nullptr || r == nullptr || b == nullptr) return FALSE;
  vantor::platform::BrushSurfaceRegion(*d, LogicalRegion(*d, r->region), b, d->state.rop2);
  return TRUE;
}

BOOL PaintRgn(HDC dc, HRGN region) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return FALSE;
  return FillRgn(dc, region, d->state.brush);
}

BOOL InvertRgn(HDC dc, HRGN region) {
  DeviceContext* d = DcFromHandle(dc);
  auto* r = GdiTable::Get<RegionObject>(region, OBJ_REGION);
  if (d == nullptr || r == nullptr) return FALSE;
  vantor::platform::PaintSurfaceRegion(*d, LogicalRegion(*d, r->region), 0, R2_NOT);
  return TRUE;
}

BOOL FrameRgn(HDC dc, HRGN region, HBRUSH brush, int width, int height) {
  DeviceContext* d = DcFromHandle(dc);
  auto* r = GdiTable::Get<RegionObject>(region, OBJ_REGION);
  Brush* b = BrushArg(brush);
  if (d == nullptr || r == nullptr || b == nullptr || width < 0 || height < 0) return FALSE;
  width = std::min(width, kMaxPenWidth);
  height = std::min(height, kMaxPenWidth);
  // The frame is what the region loses when shrunk by width and height.
  Region inner(r->region);
  for (const POINT shift :
       {POINT{width, 0}, POINT{-width, 0}, POINT{0, height}, POINT{0, -height}}) {
    Region moved(r->region);
    moved.Offset(shift.x, shift.y);
    inner.Intersect(moved);
  }
  Region frame(r->region);
  frame.Subtract(inner);
  vantor::platform::BrushSurfaceRegion(*d, LogicalRegion(*d, frame), b, d->state.rop2);
  return TRUE;
}

COLORREF SetPixel(HDC dc, int x, int y, COLORREF color) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return CLR_INVALID;
  const LONG sx = d->SurfaceX(x), sy = d->SurfaceY(y);
  if (!d->Clip().Contains(sx, sy)) return CLR_INVALID;
  d->Target().At(sx, sy) = ColorToPixel(color);
  return color & 0x00FFFFFF;
}

BOOL SetPixelV(HDC dc, int x, int y, COLORREF color) {
  return SetPixel(dc, x, y, color) == CLR_INVALID ? FALSE : TRUE;
}

COLORREF GetPixel(HDC dc, int x, int y) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return CLR_INVALID;
  const LONG sx = d->SurfaceX(x), sy = d->SurfaceY(y);
  if (!d->Clip().Contains(sx, sy)) return CLR_INVALID;
  return PixelToColor(d->Target().At(sx, sy));
}
