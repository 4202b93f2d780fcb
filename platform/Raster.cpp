#include "platform/Raster.h"

#include "platform/Gdi.h"

namespace vantor::platform {

Rop2Mask MakeRop2(int rop2, uint32_t pen) {
  // The codes R2_BLACK (1) .. R2_WHITE (16) minus one are truth tables: bit
  // (2 * pen + dest) gives the result. For each pen bit the result is a
  // function of the dest bit alone, hence the keep/flip form.
  const unsigned v = static_cast<unsigned>(std::clamp(rop2, 1, 16) - 1);
  auto all = [](unsigned bit) { return bit ? 0xFFFFFFFFu : 0u; };
  const uint32_t m0 = all(v & 1), m1 = all(v & 2), m2 = all(v & 4), m3 = all(v & 8);
  return Rop2Mask{(pen & (m3 ^ m2)) | (~pen & (m1 ^ m0)), (pen & m2) | (~pen & m0)};
}

uint32_t ApplyRop3(uint8_t rop, uint32_t p, uint32_t s, uint32_t d) {
  switch (rop) {
    case 0xCC:
      return s;
    case 0xF0:
      return p;
    case 0x00:
      return 0;
    case 0xFF:
      return 0xFFFFFFFF;
    case 0x55:
      return ~d;
    case 0xEE:
      return s | d;
    case 0x88:
      return s & d;
    case 0x66:
      return s ^ d;
    case 0x33:
      return ~s;
    case 0x5A:
      return p ^ d;
    default:
      break;
  }
  uint32_t r = 0;
  for (unsigned i = 0; i < 8; ++i) {
    if (((rop >> i) & 1) == 0) continue;
    const uint32_t tp = (i & 4) ? p : ~p;
    const uint32_t ts = (i & 2) ? s : ~s;
    const uint32_t td = (i & 1) ? d : ~d;
    r |= tp & ts & td;
  }
  return r;
}

void FillSurfaceRect(DeviceContext& dc, const RECT& area, uint32_t pixel) {
  const Surface& s = dc.Target();
  ForEachClipRect(dc, area, [&](const RECT& r) {
    for (LONG y = r.top; y < r.bottom; ++y) {
      uint32_t* row = s.Row(y);
      std::fill(row + r.left, row + r.right, pixel);
    }
  });
}

void PaintSurfaceRegion(DeviceContext& dc, const Region& area, uint32_t pixel, int rop2) {
  if (rop2 == R2_NOP || area.Empty()) return;
  Region part(area);
  part.Intersect(dc.Clip());
  const Surface& s = dc.Target();
  if (rop2 == R2_COPYPEN) {
    for (const RECT& r : part.Rects()) {
      for (LONG y = r.top; y < r.bottom; ++y) {
        uint32_t* row = s.Row(y);
        std::fill(row + r.left, row + r.right, pixel);
      }
    }
    return;
  }
  const Rop2Mask m = MakeRop2(rop2, pixel);
  for (const RECT& r : part.Rects()) {
    for (LONG y = r.top; y < r.bottom; ++y) {
      uint32_t* row = s.Row(y);
      for (LONG x = r.left; x < r.right; ++x) row[x] = m.Apply(row[x]);
    }
  }
}

bool BrushPixel(const DeviceContext& dc, const Brush& brush, LONG x, LONG y, uint32_t* pixel) {
  const uint32_t color = ColorToPixel(brush.log.lbColor);
  if (brush.tile.empty() || brush.tile_width <= 0 || brush.tile_height <= 0) {
    *pixel = color;
    return true;
  }
  // Tiles line up with the device origin shifted by the brush origin.
  const LONG dx = x - dc.origin.x - dc.state.brush_org.x;
  const LONG dy = y - dc.origin.y - dc.state.brush_org.y;
  const LONG tx = ((dx % brush.tile_width) + brush.tile_width) % brush.tile_width;
  const LONG ty = ((dy % brush.tile_height) + brush.tile_height) % brush.tile_height;
  const uint32_t t = brush.tile[static_cast<size_t>(ty * brush.tile_width + tx)];
  if (brush.log.lbStyle == BS_HATCHED) {
    if (t != 0) {
      *pixel = color;
      return true;
    }
    if (dc.state.bk_mode == TRANSPARENT) return false;
    *pixel = ColorToPixel(dc.state.bk_color);
    return true;
  }
  *pixel = t;
  return true;
}

void BrushSurfaceRegion(DeviceContext& dc, const Region& area, const Brush* brush, int rop2) {
  if (brush == nullptr || brush->IsNull()) return;
  if (brush->tile.empty()) {
    PaintSurfaceRegion(dc, area, ColorToPixel(brush->log.lbColor), rop2);
    return;
  }
  if (rop2 == R2_NOP || area.Empty()) return;
  Region part(area);
  part.Intersect(dc.Clip());
  const Surface& s = dc.Target();
  for (const RECT& r : part.Rects()) {
    for (LONG y = r.top; y < r.bottom; ++y) {
      uint32_t* row = s.Row(y);
      for (LONG x = r.left; x < r.right; ++x) {
        uint32_t p;
        if (BrushPixel(dc, *brush, x, y, &p)) row[x] = MakeRop2(rop2, p).Apply(row[x]);
      }
    }
  }
}

void InitDefaultObjects(DeviceContext& dc) {
  dc.Select(GetStockObject(BLACK_PEN), OBJ_PEN);
  dc.Select(GetStockObject(WHITE_BRUSH), OBJ_BRUSH);
  dc.Select(GetStockObject(SYSTEM_FONT), OBJ_FONT);
}

}  // namespace vantor::platform
