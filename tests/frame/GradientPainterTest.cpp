// The painter read back pixel by pixel through GetPixel against the ramp
// worked out here on its own: the step index of each pixel from its
// position, and each channel from floating-point division cut toward zero.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>

#include "frame/GradientPainter.h"
#include "tests/platform/GdiTestSupport.h"

namespace vantor::frame {
namespace {

using platform::test::Canvas;

constexpr uint32_t kUntouched = 0x00A5A5A5;

int64_t Channel(OLE_COLOR c1, OLE_COLOR c2, int shift, int64_t i, int64_t n) {
  const auto a = static_cast<int64_t>((c1 >> shift) & 0xFF);
  const auto z = static_cast<int64_t>((c2 >> shift) & 0xFF);
  if (n == 0) return a / 2 + z / 2;
  return a + static_cast<int64_t>(std::trunc(static_cast<double>(i * (z - a)) / double(n)));
}

// The colour GetPixel should report at (x, y) of a w x h gradient.
COLORREF Expected(int x, int y, int w, int h, OLE_COLOR c1, OLE_COLOR c2, int direction) {
  int64_t i = 0, n = 0;
  if (direction == 0) {
    i = x;
    n = w - 1;
  } else if (direction == 1) {
    i = y;
    n = h - 1;
  } else {
    i = direction == 2 ? x + y : x + (h - 1 - y);
    n = w + h - 2;
  }
  const int64_t r = Channel(c1, c2, 0, i, n);
  const int64_t g = Channel(c1, c2, 8, i, n);
  const int64_t b = Channel(c1, c2, 16, i, n);
  return static_cast<COLORREF>(r | g << 8 | b << 16);
}

struct Case {
  int width, height;
};

const Case kSizes[] = {{1, 1},   {1, 2},    {2, 1},    {2, 2},   {1, 9},  {9, 1},
                       {3, 3},   {7, 5},    {5, 7},    {13, 2},  {2, 13}, {255, 3},
                       {3, 256}, {300, 41}, {41, 300}, {513, 17}};

const OLE_COLOR kPairs[][2] = {
    {0x000000, 0xFFFFFF},    // every channel rising
    {0xFFFFFF, 0x000000},    // every channel falling: truncation toward zero shows
    {0x4BB062, 0xE2A981},    // mixed: red and blue rise, green falls
    {0x80000011, 0x123456},  // a system colour's flag is dropped, its index read as red
    {0xFFEFE3, 0xFFE3CE},    // a small step over a long run
};

class GradientPainterDirection : public ::testing::TestWithParam<int> {};

TEST_P(GradientPainterDirection, EveryPixelIsTheRampFormula) {
  const int direction = GetParam();
  for (const Case& size : kSizes) {
    for (const auto& pair : kPairs) {
      // Drawn at an offset inside a larger canvas, so that a pixel outside
      // the rectangle would show as well.
      const int ox = 3, oy = 2;
      Canvas canvas(size.width + 6, size.height + 5, kUntouched);
      ASSERT_TRUE(GradientPainter::Paint(canvas.dc(), ox, oy, size.width, size.height, pair[0],
                                         pair[1], direction));
      int wrong = 0;
      for (int y = 0; y < size.height + 5; ++y) {
        for (int x = 0; x < size.width + 6; ++x) {
          const bool inside = x >= ox && x < ox + size.width && y >= oy && y < oy + size.height;
          const COLORREF want = inside ? Expected(x - ox, y - oy, size.width, size.height, pair[0],
                                                  pair[1], direction)
                                       : kUntouched;
          if (GetPixel(canvas.dc(), x, y) != want && ++wrong <= 3) {
            ADD_FAILURE() << size.width << "x" << size.height << " colours " << std::hex << pair[0]
                          << "->" << pair[1] << " at (" << std::dec << x << ", " << y
                          << "): " << std::hex << GetPixel(canvas.dc(), x, y) << " not " << want;
          }
        }
      }
    }
  }
}

std::string DirectionName(const ::testing::TestParamInfo<int>& info) {
  static const char* const kNames[] = {"Horizontal", "Vertical", "DiagonalDown", "DiagonalUp"};
  return kNames[info.param];
}

INSTANTIATE_TEST_SUITE_P(AllFour, GradientPainterDirection, ::testing::Values(0, 1, 2, 3),
                         DirectionName);

// Worked by hand, without the helper above.
TEST(GradientPainter, ThreeStepsRoundTowardTheFirstColourBothWays) {
  Canvas canvas(3, 1);
  GradientPainter::Paint(canvas.dc(), 0, 0, 3, 1, 0x000000, 0x0000FF, Gradient_Horizontal);
  EXPECT_EQ(GetPixel(canvas.dc(), 1, 0), 0x00007Fu);  // 255 / 2 = 127
  GradientPainter::Paint(canvas.dc(), 0, 0, 3, 1, 0x0000FF, 0x000000, Gradient_Horizontal);
  EXPECT_EQ(GetPixel(canvas.dc(), 1, 0), 0x000080u);  // 255 - 127, not 255 - 128
  EXPECT_EQ(GetPixel(canvas.dc(), 2, 0), 0x000000u);
}

TEST(GradientPainter, OneStepIsTheMeanOfHalves) {
  // White and white average to FEFEFE: each half is taken before the sum.
  for (int direction = 0; direction < 4; ++direction) {
    Canvas canvas(1, 1);
    ASSERT_TRUE(GradientPainter::Paint(canvas.dc(), 0, 0, 1, 1, 0xFFFFFF, 0xFFFFFF, direction));
    EXPECT_EQ(GetPixel(canvas.dc(), 0, 0), 0xFEFEFEu) << direction;
  }
  // A column of width 1 drawn left to right is that mean all the way down.
  Canvas column(1, 4);
  GradientPainter::Paint(column.dc(), 0, 0, 1, 4, 0x0A0B0C, 0x030405, Gradient_Horizontal);
  for (int y = 0; y < 4; ++y) EXPECT_EQ(GetPixel(column.dc(), 0, y), 0x060708u);
  // And a row of height 1 drawn top to bottom likewise.
  Canvas row(4, 1);
  GradientPainter::Paint(row.dc(), 0, 0, 4, 1, 0x0A0B0C, 0x030405, Gradient_Vertical);
  for (int x = 0; x < 4; ++x) EXPECT_EQ(GetPixel(row.dc(), x, 0), 0x060708u);
}

TEST(GradientPainter, DiagonalsStartAtTheirCorners) {
  Canvas canvas(4, 3);
  GradientPainter::Paint(canvas.dc(), 0, 0, 4, 3, 0x000000, 0x0000FF, Gradient_DiagonalDown);
  EXPECT_EQ(GetPixel(canvas.dc(), 0, 0), 0x000000u);
  EXPECT_EQ(GetPixel(canvas.dc(), 3, 2), 0x0000FFu);
  EXPECT_EQ(GetPixel(canvas.dc(), 1, 1), 0x000066u);  // step 2 of 5: 510 / 5
  EXPECT_EQ(GetPixel(canvas.dc(), 2, 0), 0x000066u);
  GradientPainter::Paint(canvas.dc(), 0, 0, 4, 3, 0x000000, 0x0000FF, Gradient_DiagonalUp);
  EXPECT_EQ(GetPixel(canvas.dc(), 0, 2), 0x000000u);
  EXPECT_EQ(GetPixel(canvas.dc(), 3, 0), 0x0000FFu);
  EXPECT_EQ(GetPixel(canvas.dc(), 0, 0), 0x000066u);
}

TEST(GradientPainter, BadArgumentsDrawNothing) {
  const struct {
    int width, height, direction;
  } bad[] = {{0, 5, 0}, {5, 0, 1}, {-1, 5, 2}, {5, -3, 3},
             {0, 0, 0}, {5, 5, 4}, {5, 5, -1}, {1 << 14, 1 << 14, 0}};
  for (const auto& b : bad) {
    Canvas canvas(6, 6, kUntouched);
    EXPECT_FALSE(
        GradientPainter::Paint(canvas.dc(), 0, 0, b.width, b.height, 0, 0xFFFFFF, b.direction));
    EXPECT_EQ(canvas.Art(kUntouched).find('#'), std::string::npos);
  }
  EXPECT_FALSE(GradientPainter::Paint(nullptr, 0, 0, 4, 4, 0, 0xFFFFFF, 0));
}

TEST(GradientPainter, AnAreaPartlyOutsideShowsItsVisiblePart) {
  Canvas canvas(10, 10, kUntouched);
  ASSERT_TRUE(GradientPainter::Paint(canvas.dc(), -5, -2, 12, 6, 0x102030, 0xF0E0D0,
                                     Gradient_DiagonalDown));
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 7; ++x) {
      EXPECT_EQ(GetPixel(canvas.dc(), x, y),
                Expected(x + 5, y + 2, 12, 6, 0x102030, 0xF0E0D0, Gradient_DiagonalDown));
    }
  }
  EXPECT_EQ(GetPixel(canvas.dc(), 7, 0), kUntouched);
  EXPECT_EQ(GetPixel(canvas.dc(), 0, 4), kUntouched);
}

TEST(GradientPainter, PixelsAreBottomUpAndRampHasNPlusOneSteps) {
  // Vertical 1 x 3 from black to red: the buffer's first pixel is the bottom.
  EXPECT_EQ(GradientPainter::Pixels(1, 3, 0x000000, 0x0000FF, Gradient_Vertical),
            (std::vector<uint32_t>{0xFF0000, 0x7F0000, 0x000000}));
  EXPECT_EQ(GradientPainter::Ramp(0x000000, 0xFF0000, 3),
            (std::vector<uint32_t>{0x000000, 0x000055, 0x0000AA, 0x0000FF}));
  EXPECT_TRUE(GradientPainter::Pixels(2, 2, 0, 0, 7).empty());
}

}  // namespace
}  // namespace vantor::frame
