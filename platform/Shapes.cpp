#include "platform/Shapes.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace vantor::platform {

std::vector<POINT> LinePixels(LONG x0, LONG y0, LONG x1, LONG y1) {
  std::vector<POINT> out;
  const int64_t dx = int64_t{x1} - x0, dy = int64_t{y1} - y0;
  const int64_t adx = std::llabs(dx), ady = std::llabs(dy);
  const bool x_major = adx > ady;
  const int64_t length = x_major ? adx : ady;
  if (length == 0) return out;
  // Far beyond any surface nothing is visible anyway; keep the walk bounded.
  constexpr int64_t kMaxLength = int64_t{1} << 24;
  if (length > kMaxLength) return out;
  out.reserve(static_cast<size_t>(length));
  // On a tie the platform steps the minor axis in one octant of each pair of
  // opposite octants only, so that a line and its reverse cover the same
  // pixels. Octants are numbered clockwise on screen from right-down, x major
  // (1); the ones that step on a tie are 3, 5, 6 and 8.
  int octant;
  if (dy > 0) {
    octant = dx > 0 ? (dx > dy ? 1 : 2) : (-dx > dy ? 4 : 3);
  } else {
    octant = dx < 0 ? (-dx > -dy ? 5 : 6) : (dx > -dy ? 8 : 7);
  }
  const int64_t bias = (octant == 3 || octant == 5 || octant == 6 || octant == 8) ? 1 : 0;
  const int64_t major = x_major ? adx : ady, minor = x_major ? ady : adx;
  const LONG step_x = dx > 0 ? 1 : -1, step_y = dy > 0 ? 1 : -1;
  int64_t err = 2 * minor - major;
  LONG x = x0, y = y0;
  for (int64_t i = 0; i < length; ++i) {
    out.push_back(POINT{x, y});
    if (err + bias > 0) {
      if (x_major)
        y += step_y;
      else
        x += step_x;
      err += 2 * (minor - major);
    } else {
      err += 2 * minor;
    }
    if (x_major)
      x += step_x;
    else
      y += step_y;
  }
  return out;
}

namespace {

// The rows of an ellipse filling a w x h box: the left- and rightmost pixel
// of its outline on each row, walking the outline with integer error terms
// (A. Zingl's rasterisation of an ellipse inscribed in a rectangle).
std::vector<Span> EllipseSpans(int64_t w, int64_t h) {
  std::vector<Span> rows(static_cast<size_t>(h), Span{static_cast<LONG>(w), -1});
  auto plot = [&](int64_t x, int64_t y) {
    if (y < 0 || y >= h) return;
    Span& s = rows[static_cast<size_t>(y)];
    s.left = std::min<LONG>(s.left, static_cast<LONG>(x));
    s.right = std::max<LONG>(s.right, static_cast<LONG>(x + 1));
  };
  int64_t x0 = 0, x1 = w - 1, y0 = 0, y1 = h - 1;
  int64_t a = x1 - x0, b = y1 - y0;
  const int64_t b1 = b & 1;
  int64_t dx = 4 * (1 - a) * b * b;
  int64_t dy = 4 * (b1 + 1) * a * a;
  int64_t err = dx + dy + b1 * a * a;
  y0 += (b + 1) / 2;
  y1 = y0 - b1;
  const int64_t step_a = 8 * a * a, step_b = 8 * b * b;
  do {
    plot(x1, y0);
    plot(x0, y0);
    plot(x0, y1);
    plot(x1, y1);
    const int64_t e2 = 2 * err;
    if (e2 <= dy) {
      ++y0;
      --y1;
      dy += step_a;
      err += dy;
    }
    if (e2 >= dx || 2 * err > dy) {
      ++x0;
      --x1;
      dx += step_b;
      err += dx;
    }
  } while (x0 <= x1);
  // Very flat ellipses stop early: finish the tips.
  while (y0 - y1 <= b) {
    plot(x0 - 1, y0);
    plot(x1 + 1, y0++);
    plot(x0 - 1, y1);
    plot(x1 + 1, y1--);
  }
  for (Span& s : rows) {
    if (s.right < s.left) s = Span{0, static_cast<LONG>(w)};
    s.left = std::max<LONG>(s.left, 0);
    s.right = std::min<LONG>(s.right, static_cast<LONG>(w));
  }
  return rows;
}

}  // namespace

std::vector<Span> RoundRectSpans(LONG width, LONG height, LONG cw, LONG ch) {
  std::vector<Span> rows;
  constexpr LONG kMax = 1 << 16;
  if (width <= 0 || height <= 0 || width > kMax || height > kMax) return rows;
  cw = std::min(std::abs(cw), width);
  ch = std::min(std::abs(ch), height);
  rows.assign(static_cast<size_t>(height), Span{0, width});
  if (cw < 2 || ch < 2) return rows;
  const std::vector<Span> e = EllipseSpans(cw, ch);
  const LONG half = ch / 2;
  for (LONG i = 0; i < half; ++i) {
    const Span& top = e[static_cast<size_t>(i)];
    const Span& bottom = e[static_cast<size_t>(ch - 1 - i)];
    rows[static_cast<size_t>(i)] = Span{top.left, width - cw + top.right};
    rows[static_cast<size_t>(height - 1 - i)] = Span{bottom.left, width - cw + bottom.right};
  }
  return rows;
}

Region SpansRegion(const std::vector<Span>& spans, LONG x, LONG y) {
  std::vector<RECT> rects;
  rects.reserve(spans.size());
  for (size_t i = 0; i < spans.size(); ++i) {
    const LONG row = y + static_cast<LONG>(i);
    if (spans[i].left < spans[i].right) {
      rects.push_back(RECT{x + spans[i].left, row, x + spans[i].right, row + 1});
    }
  }
  return Region::FromRects(rects.data(), rects.size());
}

Region OutlineOf(const std::vector<Span>& spans, LONG x, LONG y) {
  std::vector<RECT> rects;
  const size_t n = spans.size();
  for (size_t i = 0; i < n; ++i) {
    const Span s = spans[i];
    if (s.left >= s.right) continue;
    const LONG row = y + static_cast<LONG>(i);
    // The row's pixels not covered by both neighbours are on the outline,
    // and so are its two ends.
    LONG inner_left = s.left + 1, inner_right = s.right - 1;
    if (i == 0 || i + 1 == n) {
      inner_left = inner_right = s.left;
    } else {
      const Span up = spans[i - 1], down = spans[i + 1];
      inner_left = std::max({inner_left, up.left, down.left});
      inner_right = std::min({inner_right, up.right, down.right});
    }
    if (inner_left >= inner_right) {
      rects.push_back(RECT{x + s.left, row, x + s.right, row + 1});
    } else {
      rects.push_back(RECT{x + s.left, row, x + inner_left, row + 1});
      rects.push_back(RECT{x + inner_right, row, x + s.right, row + 1});
    }
  }
  return Region::FromRects(rects.data(), rects.size());
}

Region PolygonRegion(const POINT* points, size_t count, int fill_mode) {
  if (points == nullptr || count < 3) return Region();
  struct Edge {
    int64_t x0, y0, x1, y1;
    int dir;
  };
  std::vector<Edge> edges;
  int64_t top = INT64_MAX, bottom = INT64_MIN;
  for (size_t i = 0; i < count; ++i) {
    const POINT a = points[i], b = points[(i + 1) % count];
    const int64_t ax = std::clamp<int64_t>(a.x, -Region::kMaxCoord, Region::kMaxCoord);
    const int64_t ay = std::clamp<int64_t>(a.y, -Region::kMaxCoord, Region::kMaxCoord);
    const int64_t bx = std::clamp<int64_t>(b.x, -Region::kMaxCoord, Region::kMaxCoord);
    const int64_t by = std::clamp<int64_t>(b.y, -Region::kMaxCoord, Region::kMaxCoord);
    if (ay == by) continue;
    if (ay < by)
      edges.push_back(Edge{ax, ay, bx, by, 1});
    else
      edges.push_back(Edge{bx, by, ax, ay, -1});
    top = std::min({top, ay, by});
    bottom = std::max({bottom, ay, by});
  }
  if (edges.empty()) return Region();
  // Rows are walked one by one; keep that bounded for garbage input.
  constexpr int64_t kMaxRows = 1 << 16;
  if (bottom - top > kMaxRows) bottom = top + kMaxRows;
  std::vector<RECT> rects;
  struct Cross {
    int64_t x;  // first pixel at or right of the crossing
    int dir;
  };
  std::vector<Cross> crossings;
  for (int64_t y = top; y < bottom; ++y) {
    crossings.clear();
    for (const Edge& e : edges) {
      if (y < e.y0 || y >= e.y1) continue;
      // x = x0 + (y - y0) * (x1 - x0) / (y1 - y0), rounded up to a pixel.
      const int64_t num = (y - e.y0) * (e.x1 - e.x0);
      const int64_t den = e.y1 - e.y0;
      int64_t q = num / den;
      if (num % den != 0 && num > 0) ++q;
      crossings.push_back(Cross{e.x0 + q, e.dir});
    }
    std::sort(crossings.begin(), crossings.end(),
              [](const Cross& a, const Cross& b) { return a.x < b.x; });
    const LONG row = static_cast<LONG>(y);
    if (fill_mode == 2) {
      int winding = 0;
      for (size_t i = 0; i + 1 < crossings.size(); ++i) {
        winding += crossings[i].dir;
        if (winding != 0 && crossings[i].x < crossings[i + 1].x) {
          rects.push_back(RECT{static_cast<LONG>(crossings[i].x), row,
                               static_cast<LONG>(crossings[i + 1].x), row + 1});
        }
      }
    } else {
      for (size_t i = 0; i + 1 < crossings.size(); i += 2) {
        if (crossings[i].x < crossings[i + 1].x) {
          rects.push_back(RECT{static_cast<LONG>(crossings[i].x), row,
                               static_cast<LONG>(crossings[i + 1].x), row + 1});
        }
      }
    }
  }
  if (fill_mode == 2) return Region::FromRects(rects.data(), rects.size());
  // Alternate: overlapping spans of one row cancel pairwise, which the
  // pairing above already did; rows never overlap each other.
  return Region::FromRects(rects.data(), rects.size());
}

}  // namespace vantor::platform
