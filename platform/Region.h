#pragma once
// A set of pixels made of rectangles, as GDI's regions are: the clip of a
// device context, the window region, the invalid part of a window. Rectangles
// are half open (right and bottom edges excluded), coordinates are integers.
// It keeps pixman's banded representation without exposing pixman to users:
// the native region lives inside the object, so copies cost no allocation
// when the region is a single rectangle.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/WinTypes.h"

namespace vantor::platform {

class Region {
 public:
  // Coordinates are kept inside this range so that offsets and unions never
  // overflow; the platform's own limit is of the same order.
  static constexpr LONG kMaxCoord = 1 << 27;

  Region();  // empty
  Region(LONG left, LONG top, LONG right, LONG bottom);
  explicit Region(const RECT& rect);
  Region(const Region& other);
  Region(Region&& other) noexcept;
  Region& operator=(const Region& other);
  Region& operator=(Region&& other) noexcept;
  ~Region();

  // The union of the rectangles (empty ones ignored; overlaps allowed).
  static Region FromRects(const RECT* rects, size_t count);

  void SetEmpty();
  void SetRect(const RECT& rect);
  void SetRect(LONG left, LONG top, LONG right, LONG bottom);

  void Union(const Region& other);
  void Union(const RECT& rect);
  void Intersect(const Region& other);
  void Intersect(const RECT& rect);
  void Subtract(const Region& other);
  void Subtract(const RECT& rect);
  void Xor(const Region& other);
  void Offset(LONG dx, LONG dy);

  bool Empty() const;
  bool Contains(LONG x, LONG y) const;
  // True when any pixel of the rectangle is in the region (RectInRegion).
  bool Overlaps(const RECT& rect) const;
  // True when every pixel of the rectangle is in the region.
  bool ContainsRect(const RECT& rect) const;
  // The bounding box; all zero for an empty region, as GetRgnBox reports.
  RECT Box() const;
  // The rectangles in bands, top to bottom and left to right in each band.
  std::vector<RECT> Rects() const;
  size_t RectCount() const;
  // NULLREGION (1), SIMPLEREGION (2) or COMPLEXREGION (3).
  int Complexity() const;

  bool operator==(const Region& other) const;
  bool operator!=(const Region& other) const { return !(*this == other); }

  // The pixman_region32_t inside, for the implementation's own files.
  void* Native() { return storage_; }
  const void* Native() const { return storage_; }

 private:
  // Room for a pixman_region32_t (a box and a data pointer); checked in the
  // implementation.
  alignas(void*) unsigned char storage_[4 * sizeof(int32_t) + sizeof(void*)];
};

}  // namespace vantor::platform
