#include "platform/Region.h"

#include <pixman.h>

#include <algorithm>
#include <new>

namespace vantor::platform {

static_assert(sizeof(pixman_region32_t) <= 4 * sizeof(int32_t) + sizeof(void*),
              "Region's storage must hold a pixman_region32_t");
static_assert(alignof(pixman_region32_t) <= alignof(void*), "Region's storage alignment");

namespace {

pixman_region32_t* P(void* storage) {
  return std::launder(reinterpret_cast<pixman_region32_t*>(storage));
}
const pixman_region32_t* P(const void* storage) {
  return std::launder(reinterpret_cast<const pixman_region32_t*>(storage));
}

LONG Clamp(LONG v) {
  return std::clamp(v, -Region::kMaxCoord, Region::kMaxCoord);
}

// The clamped box, or nothing when the rectangle is empty.
bool ToBox(LONG left, LONG top, LONG right, LONG bottom, pixman_box32_t* box) {
  box->x1 = Clamp(left);
  box->y1 = Clamp(top);
  box->x2 = Clamp(right);
  box->y2 = Clamp(bottom);
  return box->x1 < box->x2 && box->y1 < box->y2;
}

void InitRect(pixman_region32_t* r, LONG left, LONG top, LONG right, LONG bottom) {
  pixman_box32_t box;
  if (ToBox(left, top, right, bottom, &box)) {
    pixman_region32_init_with_extents(r, &box);
  } else {
    pixman_region32_init(r);
  }
}

}  // namespace

Region::Region() {
  pixman_region32_init(new (storage_) pixman_region32_t);
}

Region::Region(LONG left, LONG top, LONG right, LONG bottom) {
  InitRect(new (storage_) pixman_region32_t, left, top, right, bottom);
}

Region::Region(const RECT& rect) : Region(rect.left, rect.top, rect.right, rect.bottom) {}

Region::Region(const Region& other) {
  pixman_region32_t* r = new (storage_) pixman_region32_t;
  pixman_region32_init(r);
  pixman_region32_copy(r, P(other.storage_));
}

Region::Region(Region&& other) noexcept {
  // A move leaves the source empty; pixman has no move, so steal the fields.
  pixman_region32_t* r = new (storage_) pixman_region32_t;
  *r = *P(other.storage_);
  pixman_region32_init(P(other.storage_));
}

Region& Region::operator=(const Region& other) {
  if (this != &other) pixman_region32_copy(P(storage_), P(other.storage_));
  return *this;
}

Region& Region::operator=(Region&& other) noexcept {
  if (this != &other) {
    pixman_region32_fini(P(storage_));
    *P(storage_) = *P(other.storage_);
    pixman_region32_init(P(other.storage_));
  }
  return *this;
}

Region::~Region() {
  pixman_region32_fini(P(storage_));
}

Region Region::FromRects(const RECT* rects, size_t count) {
  Region result;
  if (rects == nullptr) return result;
  std::vector<pixman_box32_t> boxes;
  boxes.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    pixman_box32_t box;
    if (ToBox(rects[i].left, rects[i].top, rects[i].right, rects[i].bottom, &box)) {
      boxes.push_back(box);
    }
  }
  if (boxes.empty()) return result;
  // init_rects needs bands without overlap to be valid; building by unions of
  // sorted rows keeps that true for any input.
  std::sort(boxes.begin(), boxes.end(), [](const pixman_box32_t& a, const pixman_box32_t& b) {
    return a.y1 != b.y1 ? a.y1 < b.y1 : a.x1 < b.x1;
  });
  pixman_region32_t* r = P(result.storage_);
  pixman_region32_fini(r);
  if (!pixman_region32_init_rects(r, boxes.data(), static_cast<int>(boxes.size()))) {
    pixman_region32_init(r);
  }
  return result;
}

void Region::SetEmpty() {
  pixman_region32_fini(P(storage_));
  pixman_region32_init(P(storage_));
}

void Region::SetRect(LONG left, LONG top, LONG right, LONG bottom) {
  pixman_region32_fini(P(storage_));
  InitRect(P(storage_), left, top, right, bottom);
}

void Region::SetRect(const RECT& rect) {
  SetRect(rect.left, rect.top, rect.right, rect.bottom);
}

void Region::Union(const Region& other) {
  pixman_region32_union(P(storage_), P(storage_), P(other.storage_));
}

void Region::Union(const RECT& rect) {
  Union(Region(rect));
}

void Region::Intersect(const Region& other) {
  pixman_region32_intersect(P(storage_), P(storage_), P(other.storage_));
}

void Region::Intersect(const RECT& rect) {
  Intersect(Region(rect));
}

void Region::Subtract(const Region& other) {
  pixman_region32_subtract(P(storage_), P(storage_), P(other.storage_));
}

void Region::Subtract(const RECT& rect) {
  Subtract(Region(rect));
}

void Region::Xor(const Region& other) {
  // (A - B) + (B - A)
  Region a_only(*this);
  a_only.Subtract(other);
  Region b_only(other);
  b_only.Subtract(*this);
  a_only.Union(b_only);
  *this = std::move(a_only);
}

void Region::Offset(LONG dx, LONG dy) {
  if (Empty()) return;
  dx = std::clamp(dx, -4 * kMaxCoord, 4 * kMaxCoord);
  dy = std::clamp(dy, -4 * kMaxCoord, 4 * kMaxCoord);
  pixman_region32_translate(P(storage_), dx, dy);
  const RECT box = Box();
  if (box.left < -kMaxCoord || box.top < -kMaxCoord || box.right > kMaxCoord ||
      box.bottom > kMaxCoord) {
    Intersect(Region(-kMaxCoord, -kMaxCoord, kMaxCoord, kMaxCoord));
  }
}

bool Region::Empty() const {
  return !pixman_region32_not_empty(P(storage_));
}

bool Region::Contains(LONG x, LONG y) const {
  return pixman_region32_contains_point(P(storage_), x, y, nullptr) != 0;
}

bool Region::Overlaps(const RECT& rect) const {
  pixman_box32_t box;
  if (!ToBox(rect.left, rect.top, rect.right, rect.bottom, &box)) return false;
  return pixman_region32_contains_rectangle(P(storage_), &box) != PIXMAN_REGION_OUT;
}

bool Region::ContainsRect(const RECT& rect) const {
  pixman_box32_t box;
  if (!ToBox(rect.left, rect.top, rect.right, rect.bottom, &box)) return false;
  return pixman_region32_contains_rectangle(P(storage_), &box) == PIXMAN_REGION_IN;
}

RECT Region::Box() const {
  if (Empty()) return RECT{0, 0, 0, 0};
  const pixman_box32_t* e = pixman_region32_extents(P(storage_));
  return RECT{e->x1, e->y1, e->x2, e->y2};
}

std::vector<RECT> Region::Rects() const {
  int n = 0;
  const pixman_box32_t* boxes = pixman_region32_rectangles(P(storage_), &n);
  std::vector<RECT> out;
  out.reserve(static_cast<size_t>(std::max(n, 0)));
  for (int i = 0; i < n; ++i)
    out.push_back(RECT{boxes[i].x1, boxes[i].y1, boxes[i].x2, boxes[i].y2});
  return out;
}

size_t Region::RectCount() const {
  return static_cast<size_t>(std::max(pixman_region32_n_rects(P(storage_)), 0));
}

int Region::Complexity() const {
  const size_t n = RectCount();
  return n == 0 ? 1 : n == 1 ? 2 : 3;
}

bool Region::operator==(const Region& other) const {
  if (Empty() && other.Empty()) return true;
  return pixman_region32_equal(P(storage_), P(other.storage_)) != 0;
}

}  // namespace vantor::platform
