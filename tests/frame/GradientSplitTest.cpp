// The two- and four-colour fills of a state, and where the seam falls.
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>

#include "frame/GradientSplit.h"
#include "frame/ThemeEnums.h"
#include "tests/platform/GdiTestSupport.h"

namespace vantor::frame {
namespace {

using platform::test::Canvas;

constexpr uint32_t kUntouched = 0x00A5A5A5;

// Red only, so that a row's colour is the step itself: c1 + i * (c2 - c1) / n.
COLORREF Step(int c1, int c2, int i, int n) {
  return static_cast<COLORREF>(n == 0 ? c1 / 2 + c2 / 2 : c1 + i * (c2 - c1) / n);
}

TEST(GradientSplit, SeamIsHalfTheHeightRoundedToEven) {
  const struct {
    int32_t height, seam;
  } cases[] = {{0, 0},
               {1, 0},
               {2, 1},
               {3, 2},
               {4, 2},
               {5, 2},
               {6, 3},
               {7, 4},
               {24, 12},
               {25, 12},
               {26, 13},
               {27, 14},
               {29, 14},
               {31, 16},
               {-3, -2},
               {-5, -2},
               {INT32_MAX, 1073741824}};
  for (const auto& c : cases) EXPECT_EQ(GradientSplit::Seam(c.height), c.seam) << c.height;
}

TEST(GradientSplit, TwoColoursIsOneVerticalGradientOverTheWholeArea) {
  for (int32_t mode : {int32_t{Two_Colors}, 2, -1}) {
    Canvas canvas(6, 20, kUntouched);
    EXPECT_TRUE(GradientSplit::Paint(canvas.dc(), 5, 19, mode, 10, 200, 0x0000FF, 0x0000FF));
    for (int y = 0; y < 19; ++y) {
      for (int x = 0; x < 5; ++x) EXPECT_EQ(GetPixel(canvas.dc(), x, y), Step(10, 200, y, 18));
      EXPECT_EQ(GetPixel(canvas.dc(), 5, y), kUntouched);
    }
    EXPECT_EQ(GetPixel(canvas.dc(), 0, 19), kUntouched);
  }
}

// Height, the rows of each half, and the first row left untouched below the
// fill (in a canvas a few rows taller than the control).
struct FourCase {
  int32_t height, half;
};

void PrintTo(const FourCase& c, std::ostream* out) {
  *out << "height " << c.height;
}

class GradientSplitFour : public ::testing::TestWithParam<FourCase> {};

TEST_P(GradientSplitFour, HalvesMeetAtTheRoundedMiddle) {
  const FourCase c = GetParam();
  Canvas canvas(4, c.height + 3, kUntouched);
  EXPECT_TRUE(GradientSplit::Paint(canvas.dc(), 4, c.height, Four_Colors, 0, 90, 120, 240));
  ASSERT_EQ(GradientSplit::Seam(c.height), c.half);
  for (int y = 0; y < c.height + 3; ++y) {
    COLORREF want = kUntouched;
    if (y < c.half) {
      want = Step(0, 90, y, c.half - 1);
    } else if (y < 2 * c.half) {
      want = Step(120, 240, y - c.half, c.half - 1);
    }
    for (int x = 0; x < 4; ++x) EXPECT_EQ(GetPixel(canvas.dc(), x, y), want) << "row " << y;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Heights, GradientSplitFour,
    ::testing::Values(FourCase{2, 1}, FourCase{3, 2}, FourCase{4, 2}, FourCase{24, 12},
                      FourCase{25, 12},  // the last row stays as it was
                      FourCase{27, 14},  // the lower half runs one row past the bottom
                      FourCase{32, 16}, FourCase{101, 50}),
    [](const auto& p) { return "Height" + std::to_string(p.param.height); });

TEST(GradientSplit, AHeightOfOneHasNoRoomForEitherHalf) {
  Canvas canvas(4, 3, kUntouched);
  EXPECT_FALSE(GradientSplit::Paint(canvas.dc(), 4, 1, Four_Colors, 0, 90, 120, 240));
  EXPECT_EQ(canvas.Art(kUntouched).find('#'), std::string::npos);
  // Two colours on the same row is the mean of both.
  EXPECT_TRUE(GradientSplit::Paint(canvas.dc(), 4, 1, Two_Colors, 0, 91, 120, 240));
  EXPECT_EQ(GetPixel(canvas.dc(), 0, 0), 45u);
}

}  // namespace
}  // namespace vantor::frame
