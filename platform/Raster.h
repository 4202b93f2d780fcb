#pragma once
// The pixel work shared by every drawing call: colours to pixels, the binary
// raster operations, and filling surface areas through a DC's clip with a
// colour or a brush.
#include <algorithm>
#include <cstdint>

#include "platform/Brush.h"
#include "platform/DeviceContext.h"

namespace vantor::platform {

// COLORREF 0x00BBGGRR to a pixel 0x00RRGGBB (alpha 0, as GDI writes it).
constexpr uint32_t ColorToPixel(COLORREF c) {
  return ((c & 0xFF) << 16) | (c & 0xFF00) | ((c >> 16) & 0xFF);
}
constexpr COLORREF PixelToColor(uint32_t p) {
  return ((p >> 16) & 0xFF) | (p & 0xFF00) | ((p & 0xFF) << 16);
}

// A binary raster operation with a fixed pen pixel, as dest = (dest & keep) ^ flip.
struct Rop2Mask {
  uint32_t keep;
  uint32_t flip;
  uint32_t Apply(uint32_t d) const { return (d & keep) ^ flip; }
};
Rop2Mask MakeRop2(int rop2, uint32_t pen);

// A ternary raster operation (the ROP code's middle byte) on one pixel.
uint32_t ApplyRop3(uint8_t rop, uint32_t pattern, uint32_t source, uint32_t dest);

// Calls fn(RECT) for each clip rectangle inside `area` (surface coordinates).
template <class Fn>
void ForEachClipRect(const DeviceContext& dc, const RECT& area, Fn&& fn) {
  if (area.left >= area.right || area.top >= area.bottom) return;
  const Region& clip = dc.Clip();
  if (clip.RectCount() == 1) {
    const RECT c = clip.Box();
    const RECT r{std::max(c.left, area.left), std::max(c.top, area.top),
                 std::min(c.right, area.right), std::min(c.bottom, area.bottom)};
    if (r.left < r.right && r.top < r.bottom) fn(r);
    return;
  }
  Region part(area);
  part.Intersect(clip);
  for (const RECT& r : part.Rects()) fn(r);
}

// Copies a pixel over a surface rectangle through the clip.
void FillSurfaceRect(DeviceContext& dc, const RECT& area, uint32_t pixel);
// Applies a colour with a binary raster operation over a region (surface
// coordinates) through the clip.
void PaintSurfaceRegion(DeviceContext& dc, const Region& area, uint32_t pixel, int rop2);
// Fills a region (surface coordinates) with a brush through the clip. A null
// or missing brush draws nothing.
void BrushSurfaceRegion(DeviceContext& dc, const Region& area, const Brush* brush, int rop2);
// The brush's pixel at a surface position (pattern brushes), and whether the
// pixel is drawn at all (hatch background in TRANSPARENT mode).
bool BrushPixel(const DeviceContext& dc, const Brush& brush, LONG x, LONG y, uint32_t* pixel);

// Selects the stock objects a new DC starts with.
void InitDefaultObjects(DeviceContext& dc);

}  // namespace vantor::platform
