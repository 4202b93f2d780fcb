#pragma once
// The geometry of GDI's figures, as pixel sets: lines as the platform's
// Bresenham walks them, ellipses and rounded corners, polygons under both fill
// modes. Drawing and region code share them so a region and a filled figure
// of the same arguments cover the same pixels.
#include <vector>

#include "platform/Region.h"
#include "platform/WinTypes.h"

namespace vantor::platform {

// One row of a figure: pixels left <= x < right.
struct Span {
  LONG left;
  LONG right;
};

// The pixels of a line from (x0, y0) towards (x1, y1), the end excluded.
std::vector<POINT> LinePixels(LONG x0, LONG y0, LONG x1, LONG y1);

// The rows of a rounded rectangle filling a width x height pixel box whose
// corners are quarters of an ellipse of corner_width x corner_height pixels
// (an ellipse when they equal the box). Row i is the box's row i.
std::vector<Span> RoundRectSpans(LONG width, LONG height, LONG corner_width, LONG corner_height);

// The region of rows placed with the box's top-left corner at (x, y).
Region SpansRegion(const std::vector<Span>& spans, LONG x, LONG y);

// The pixels of a region with a 4-neighbour outside it: its one-pixel outline.
Region OutlineOf(const std::vector<Span>& spans, LONG x, LONG y);

// The interior of a polygon: a pixel (x, y) is inside when the point (x, y)
// is, edges on the left and top counting as inside, as the platform fills.
// fill_mode is ALTERNATE (1) or WINDING (2).
Region PolygonRegion(const POINT* points, size_t count, int fill_mode);

}  // namespace vantor::platform
