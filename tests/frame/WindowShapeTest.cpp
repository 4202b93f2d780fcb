// The button's outline: the region for each shape read back with
// PtInRegion, the region a window ends up with, and the corner pixels.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "frame/ThemeEnums.h"
#include "frame/WindowShape.h"
#include "platform/GdiObject.h"
#include "tests/platform/GdiTestSupport.h"
#include "tests/platform/UserTestSupport.h"

namespace vantor::frame {
namespace {

using platform::test::Canvas;
using platform::test::RegionArt;

struct ShapeCase {
  int32_t shape;
  const char* art;  // a 10 x 8 button over 11 x 9 pixels
};

constexpr const char* kRound =
    ".########..\n"
    "##########.\n"
    "##########.\n"
    "##########.\n"
    "##########.\n"
    "##########.\n"
    "##########.\n"
    ".########..\n"
    "...........\n";

const ShapeCase kShapes[] = {
    {Cut_None, kRound},
    {Cut_Left,
     "#########..\n"
     "##########.\n"
     "##########.\n"
     "##########.\n"
     "##########.\n"
     "##########.\n"
     "##########.\n"
     "#########..\n"
     "#####......\n"},
    {Cut_Right,
     ".##########\n"
     "###########\n"
     "###########\n"
     "###########\n"
     "###########\n"
     "###########\n"
     "###########\n"
     ".##########\n"
     ".....######\n"},
    {Cut_Sides,
     "###########\n"
     "###########\n"
     "###########\n"
     "###########\n"
     "###########\n"
     "###########\n"
     "###########\n"
     "###########\n"
     "###########\n"},
    {7, kRound},  // not a shape: nothing is squared
};

void PrintTo(const ShapeCase& c, std::ostream* out) {
  *out << "shape " << c.shape;
}

class WindowShapeRegion : public ::testing::TestWithParam<ShapeCase> {};

TEST_P(WindowShapeRegion, CutsSquareTheChosenSides) {
  const WindowShape::Region region = WindowShape::CreateRegion(10, 8, GetParam().shape);
  ASSERT_TRUE(region);
  EXPECT_EQ(RegionArt(region.get(), 11, 9), GetParam().art);
}

INSTANTIATE_TEST_SUITE_P(Shapes, WindowShapeRegion, ::testing::ValuesIn(kShapes),
                         [](const auto& p) { return "Shape" + std::to_string(p.index); });

TEST(WindowShape, TheSidesMeetAtHalfTheWidthRoundedToEven) {
  // Below the round rectangle only the cut rectangles reach, so the last row
  // shows where the left one ends and the right one begins.
  const struct {
    int32_t width, middle;
  } cases[] = {{9, 4}, {10, 5}, {11, 6}, {13, 6}, {15, 8}, {16, 8}, {1, 0}, {2, 1}};
  for (const auto& c : cases) {
    const auto left = WindowShape::CreateRegion(c.width, 6, Cut_Left);
    const auto right = WindowShape::CreateRegion(c.width, 6, Cut_Right);
    for (int x = 0; x <= c.width; ++x) {
      EXPECT_EQ(PtInRegion(left.get(), x, 6) != 0, x < c.middle) << c.width << " at " << x;
      EXPECT_EQ(PtInRegion(right.get(), x, 6) != 0, x >= c.middle) << c.width << " at " << x;
    }
  }
}

TEST(WindowShape, CornerPixelsGoWhereTheCornersStayRound) {
  const COLORREF border = 0x4BB062;
  const struct {
    int32_t shape;
    bool left, right;
  } cases[] = {{Cut_None, true, true},    {Cut_Left, false, true}, {Cut_Right, true, false},
               {Cut_Sides, false, false}, {-1, true, true},        {4, true, true}};
  for (const auto& c : cases) {
    Canvas canvas(12, 9);
    WindowShape::DrawCorners(canvas.dc(), 12, 9, c.shape, border);
    std::string want;
    for (int y = 0; y < 9; ++y) want += "............\n";
    if (c.left) want[1 * 13 + 1] = want[7 * 13 + 1] = '#';
    if (c.right) want[1 * 13 + 10] = want[7 * 13 + 10] = '#';
    EXPECT_EQ(canvas.Art(), want) << "shape " << c.shape;
    EXPECT_EQ(GetPixel(canvas.dc(), 1, 7), c.left ? border : 0xFFFFFFu);
    EXPECT_EQ(GetPixel(canvas.dc(), 10, 1), c.right ? border : 0xFFFFFFu);
  }
}

TEST(WindowShape, ARoundCornerStaysClosedInsideTheRegion) {
  // The border drawn as the button draws it, then the corner pixels: at each
  // round corner the region hides the border's corner pixel, and the one
  // diagonally inside carries the border instead.
  const int w = 16, h = 11;
  const COLORREF border = 0x808080;
  Canvas canvas(w, h);
  HPEN pen = CreatePen(PS_SOLID, 1, border);
  HGDIOBJ old_pen = SelectObject(canvas.dc(), pen);
  HGDIOBJ old_brush = SelectObject(canvas.dc(), GetStockObject(NULL_BRUSH));
  Rectangle(canvas.dc(), 0, 0, w, h);
  SelectObject(canvas.dc(), old_brush);
  DeleteObject(SelectObject(canvas.dc(), old_pen));
  WindowShape::DrawCorners(canvas.dc(), w, h, Cut_None, border);
  const auto region = WindowShape::CreateRegion(w, h, Cut_None);
  const POINT corners[][2] = {{{0, 0}, {1, 1}},
                              {{w - 1, 0}, {w - 2, 1}},
                              {{0, h - 1}, {1, h - 2}},
                              {{w - 1, h - 1}, {w - 2, h - 2}}};
  for (const auto& c : corners) {
    EXPECT_FALSE(PtInRegion(region.get(), c[0].x, c[0].y));
    EXPECT_TRUE(PtInRegion(region.get(), c[1].x, c[1].y));
    EXPECT_EQ(GetPixel(canvas.dc(), c[1].x, c[1].y), border);
  }
  EXPECT_EQ(GetPixel(canvas.dc(), 2, 2), 0xFFFFFFu);
}

class WindowShapeApply : public platform::test::UserTest {};

TEST_F(WindowShapeApply, TheWindowTakesTheRegionAndNoObjectIsLeft) {
  HWND parent = Top(0, 0, 100, 60);
  HWND button = Child(parent, 10, 10, 40, 20);
  const size_t objects = platform::GdiTable::Count();
  for (int32_t shape : {Cut_None, Cut_Left, Cut_Right, Cut_Sides}) {
    ASSERT_TRUE(WindowShape::Apply(button, 40, 20, shape));
    HRGN copy = CreateRectRgn(0, 0, 0, 0);
    EXPECT_NE(GetWindowRgn(button, copy), ERROR);
    const auto want = WindowShape::CreateRegion(40, 20, shape);
    EXPECT_TRUE(EqualRgn(copy, want.get())) << shape;
    DeleteObject(copy);
  }
  EXPECT_EQ(platform::GdiTable::Count(), objects);
  DestroyWindow(button);
  EXPECT_FALSE(WindowShape::Apply(button, 40, 20, Cut_None));
  EXPECT_EQ(platform::GdiTable::Count(), objects);
}

}  // namespace
}  // namespace vantor::frame
