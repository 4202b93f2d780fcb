// Region objects: creation in every shape, combination, queries.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/Gdi.h"
#include "platform/RegionObject.h"
#include "platform/Shapes.h"

using vantor::platform::GdiTable;
using vantor::platform::Region;
using vantor::platform::RegionObject;

namespace {

RegionObject* Rgn(HRGN handle) {
  return GdiTable::Get<RegionObject>(handle, OBJ_REGION);
}

HRGN Add(Region r) {
  return static_cast<HRGN>(GdiTable::Add(std::make_shared<RegionObject>(std::move(r))));
}

// Rectangle regions take their corners in any order.
Region Normalized(int left, int top, int right, int bottom) {
  return Region(std::min(left, right), std::min(top, bottom), std::max(left, right),
                std::max(top, bottom));
}

}  // namespace

HRGN CreateRectRgn(int left, int top, int right, int bottom) {
  return Add(Normalized(left, top, right, bottom));
}

HRGN CreateRectRgnIndirect(const RECT* rect) {
  if (rect == nullptr) return nullptr;
  return CreateRectRgn(rect->left, rect->top, rect->right, rect->bottom);
}

HRGN CreateRoundRectRgn(int left, int top, int right, int bottom, int width, int height) {
  const LONG l = std::min(left, right), r = std::max(left, right);
  const LONG t = std::min(top, bottom), b = std::max(top, bottom);
  // The platform's region leaves out one pixel on the right and at the
  // bottom, which is why buttons pass their size plus one.
  const int64_t w = int64_t{r} - l - 1, h = int64_t{b} - t - 1;
  if (w <= 0 || h <= 0) return Add(Region());
  constexpr int64_t kMax = 1 << 16;
  const int ew = std::abs(std::clamp(width, -65536, 65536));
  const int eh = std::abs(std::clamp(height, -65536, 65536));
  if (w > kMax || h > kMax || ew < 2 || eh < 2) {
    return Add(Region(l, t, static_cast<LONG>(l + w), static_cast<LONG>(t + h)));
  }
  const auto spans =
      vantor::platform::RoundRectSpans(static_cast<LONG>(w), static_cast<LONG>(h), ew, eh);
  return Add(vantor::platform::SpansRegion(spans, l, t));
}

HRGN CreateEllipticRgn(int left, int top, int right, int bottom) {
  const int64_t w = std::abs(int64_t{right} - left), h = std::abs(int64_t{bottom} - top);
  if (w > 65536 || h > 65536) return CreateRectRgn(left, top, right, bottom);
  return CreateRoundRectRgn(left, top, right, bottom, static_cast<int>(w), static_cast<int>(h));
}

HRGN CreateEllipticRgnIndirect(const RECT* rect) {
  if (rect == nullptr) return nullptr;
  return CreateEllipticRgn(rect->left, rect->top, rect->right, rect->bottom);
}

HRGN CreatePolygonRgn(const POINT* points, int count, int fill_mode) {
  if (points == nullptr || count < 0 || (fill_mode != ALTERNATE && fill_mode != WINDING)) {
    return nullptr;
  }
  // The platform refuses fewer than two points and gives an empty region
  // for a polygon without area.
  if (count < 2) return nullptr;
  return Add(vantor::platform::PolygonRegion(points, static_cast<size_t>(count), fill_mode));
}

HRGN ExtCreateRegion(const XFORM* transform, DWORD size, const RGNDATA* data) {
  if (data == nullptr || size < sizeof(RGNDATAHEADER)) return nullptr;
  const RGNDATAHEADER& h = data->rdh;
  if (h.dwSize < sizeof(RGNDATAHEADER) || h.iType != RDH_RECTANGLES) return nullptr;
  const uint64_t needed = uint64_t{h.dwSize} + uint64_t{h.nCount} * sizeof(RECT);
  if (needed > size) return nullptr;
  std::vector<RECT> rects(h.nCount);
  if (h.nCount > 0) {
    std::memcpy(rects.data(), reinterpret_cast<const char*>(data) + h.dwSize,
                rects.size() * sizeof(RECT));
  }
  if (transform != nullptr) {
    const XFORM& x = *transform;
    // Rotation and shear cannot keep rectangles; scaling and moving can.
    if (x.eM12 != 0.0f || x.eM21 != 0.0f) return nullptr;
    if (!std::isfinite(x.eM11) || !std::isfinite(x.eM22) || !std::isfinite(x.eDx) ||
        !std::isfinite(x.eDy)) {
      return nullptr;
    }
    auto map = [](double v) {
      const double lim = Region::kMaxCoord;
      return static_cast<LONG>(std::lround(std::clamp(v, -lim, lim)));
    };
    for (RECT& r : rects) {
      const LONG l = map(r.left * double{x.eM11} + x.eDx);
      const LONG rr = map(r.right * double{x.eM11} + x.eDx);
      const LONG t = map(r.top * double{x.eM22} + x.eDy);
      const LONG b = map(r.bottom * double{x.eM22} + x.eDy);
      r = RECT{std::min(l, rr), std::min(t, b), std::max(l, rr), std::max(t, b)};
    }
  }
  // Rectangles given upside down count as their normalised selves.
  for (RECT& r : rects) {
    if (r.left > r.right) std::swap(r.left, r.right);
    if (r.top > r.bottom) std::swap(r.top, r.bottom);
  }
  return Add(Region::FromRects(rects.data(), rects.size()));
}

DWORD GetRegionData(HRGN region, DWORD size, RGNDATA* data) {
  RegionObject* r = Rgn(region);
  if (r == nullptr) return 0;
  const std::vector<RECT> rects = r->region.Rects();
  const size_t needed = sizeof(RGNDATAHEADER) + rects.size() * sizeof(RECT);
  if (data == nullptr) return static_cast<DWORD>(needed);
  if (size < needed) return 0;
  RGNDATAHEADER h{};
  h.dwSize = sizeof(RGNDATAHEADER);
  h.iType = RDH_RECTANGLES;
  h.nCount = static_cast<DWORD>(rects.size());
  h.nRgnSize = static_cast<DWORD>(rects.size() * sizeof(RECT));
  h.rcBound = r->region.Box();
  std::memcpy(&data->rdh, &h, sizeof(h));
  if (!rects.empty()) {
    std::memcpy(reinterpret_cast<char*>(data) + sizeof(RGNDATAHEADER), rects.data(),
                rects.size() * sizeof(RECT));
  }
  return size;
}

int CombineRgn(HRGN dest, HRGN src1, HRGN src2, int mode) {
  RegionObject* d = Rgn(dest);
  RegionObject* a = Rgn(src1);
  if (d == nullptr || a == nullptr || mode < RGN_AND || mode > RGN_COPY) return ERROR;
  if (mode == RGN_COPY) {
    d->region = a->region;
    return d->region.Complexity();
  }
  RegionObject* b = Rgn(src2);
  if (b == nullptr) return ERROR;
  Region result = a->region;
  switch (mode) {
    case RGN_AND:
      result.Intersect(b->region);
      break;
    case RGN_OR:
      result.Union(b->region);
      break;
    case RGN_XOR:
      result.Xor(b->region);
      break;
    default:
      result.Subtract(b->region);
      break;
  }
  d->region = std::move(result);
  return d->region.Complexity();
}

int OffsetRgn(HRGN region, int dx, int dy) {
  RegionObject* r = Rgn(region);
  if (r == nullptr) return ERROR;
  r->region.Offset(dx, dy);
  return r->region.Complexity();
}

int GetRgnBox(HRGN region, LPRECT rect) {
  RegionObject* r = Rgn(region);
  if (r == nullptr || rect == nullptr) return ERROR;
  *rect = r->region.Box();
  return r->region.Complexity();
}

BOOL PtInRegion(HRGN region, int x, int y) {
  RegionObject* r = Rgn(region);
  return r != nullptr && r->region.Contains(x, y) ? TRUE : FALSE;
}

BOOL RectInRegion(HRGN region, const RECT* rect) {
  RegionObject* r = Rgn(region);
  if (r == nullptr || rect == nullptr) return FALSE;
  const RECT n{std::min(rect->left, rect->right), std::min(rect->top, rect->bottom),
               std::max(rect->left, rect->right), std::max(rect->top, rect->bottom)};
  return r->region.Overlaps(n) ? TRUE : FALSE;
}

BOOL EqualRgn(HRGN a, HRGN b) {
  RegionObject* ra = Rgn(a);
  RegionObject* rb = Rgn(b);
  if (ra == nullptr || rb == nullptr) return ERROR;
  return ra->region == rb->region ? TRUE : FALSE;
}

BOOL SetRectRgn(HRGN region, int left, int top, int right, int bottom) {
  RegionObject* r = Rgn(region);
  if (r == nullptr) return FALSE;
  r->region = Normalized(left, top, right, bottom);
  return TRUE;
}
