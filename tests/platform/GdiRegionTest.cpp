#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "platform/Gdi.h"
#include "tests/platform/GdiTestSupport.h"

namespace {

using vantor::platform::test::RegionArt;

// Deletes the regions it holds at scope end.
struct Rgns {
  std::vector<HRGN> list;
  HRGN operator()(HRGN r) {
    list.push_back(r);
    return r;
  }
  ~Rgns() {
    for (HRGN r : list) DeleteObject(r);
  }
};

TEST(GdiRegion, RectRegionLeavesOutRightAndBottom) {
  Rgns k;
  HRGN r = k(CreateRectRgn(1, 1, 4, 3));
  EXPECT_EQ(RegionArt(r, 5, 4),
            ".....\n"
            ".###.\n"
            ".###.\n"
            ".....\n");
  RECT box;
  EXPECT_EQ(GetRgnBox(r, &box), SIMPLEREGION);
  EXPECT_EQ(box.left, 1);
  EXPECT_EQ(box.right, 4);
  // Corners in any order.
  HRGN swapped = k(CreateRectRgn(4, 3, 1, 1));
  EXPECT_TRUE(EqualRgn(r, swapped));
}

TEST(GdiRegion, EmptyRegionsReportNullRegionAndZeroBox) {
  Rgns k;
  HRGN r = k(CreateRectRgn(5, 5, 5, 9));
  RECT box{1, 2, 3, 4};
  EXPECT_EQ(GetRgnBox(r, &box), NULLREGION);
  EXPECT_EQ(box.left + box.top + box.right + box.bottom, 0);
  EXPECT_FALSE(PtInRegion(r, 5, 5));
}

TEST(GdiRegion, RoundRectOfAButtonCutsOnePixelAtEachCorner) {
  Rgns k;
  // A 10 x 8 button asks for its size plus one, as the platform wants.
  HRGN r = k(CreateRoundRectRgn(0, 0, 11, 9, 3, 3));
  EXPECT_EQ(RegionArt(r, 11, 9),
            ".########..\n"
            "##########.\n"
            "##########.\n"
            "##########.\n"
            "##########.\n"
            "##########.\n"
            "##########.\n"
            ".########..\n"
            "...........\n");
  EXPECT_EQ(CombineRgn(r, r, nullptr, RGN_COPY), COMPLEXREGION);
}

TEST(GdiRegion, RoundRectWithSmallCornersIsARectangle) {
  Rgns k;
  HRGN a = k(CreateRoundRectRgn(0, 0, 6, 6, 1, 1));
  HRGN b = k(CreateRectRgn(0, 0, 5, 5));
  EXPECT_TRUE(EqualRgn(a, b));
}

TEST(GdiRegion, EllipseIsSymmetricAndInsideItsBox) {
  Rgns k;
  HRGN r = k(CreateEllipticRgn(0, 0, 9, 7));
  EXPECT_EQ(RegionArt(r, 9, 7),
            "..####...\n"
            ".######..\n"
            "########.\n"
            "########.\n"
            ".######..\n"
            "..####...\n"
            ".........\n");
}

TEST(GdiRegion, PolygonOfARectangleEqualsTheRectangle) {
  Rgns k;
  const POINT pts[] = {{2, 1}, {7, 1}, {7, 5}, {2, 5}};
  HRGN p = k(CreatePolygonRgn(pts, 4, ALTERNATE));
  HRGN r = k(CreateRectRgn(2, 1, 7, 5));
  EXPECT_TRUE(EqualRgn(p, r));
}

TEST(GdiRegion, PolygonTriangleTakesLeftEdgesAndLeavesRightOnes) {
  Rgns k;
  const POINT pts[] = {{0, 0}, {4, 4}, {0, 4}};
  HRGN p = k(CreatePolygonRgn(pts, 3, ALTERNATE));
  EXPECT_EQ(RegionArt(p, 5, 5),
            ".....\n"
            "#....\n"
            "##...\n"
            "###..\n"
            ".....\n");
}

TEST(GdiRegion, WindingFillsTheMiddleOfAStarAndAlternateDoesNot) {
  Rgns k;
  const POINT star[] = {{10, 0}, {16, 19}, {0, 7}, {20, 7}, {4, 19}};
  HRGN alt = k(CreatePolygonRgn(star, 5, ALTERNATE));
  HRGN wind = k(CreatePolygonRgn(star, 5, WINDING));
  EXPECT_FALSE(PtInRegion(alt, 10, 10));
  EXPECT_TRUE(PtInRegion(wind, 10, 10));
  EXPECT_TRUE(PtInRegion(alt, 10, 3));
  EXPECT_TRUE(PtInRegion(wind, 10, 3));
}

TEST(GdiRegion, CombineEveryModeAndItsResult) {
  Rgns k;
  HRGN a = k(CreateRectRgn(0, 0, 10, 10));
  HRGN b = k(CreateRectRgn(5, 0, 15, 10));
  HRGN far = k(CreateRectRgn(20, 20, 30, 30));
  HRGN d = k(CreateRectRgn(0, 0, 0, 0));
  struct Case {
    HRGN x, y;
    int mode, result;
    RECT box;
  };
  const Case cases[] = {
      {a, b, RGN_AND, SIMPLEREGION, {5, 0, 10, 10}},
      {a, b, RGN_OR, SIMPLEREGION, {0, 0, 15, 10}},
      {a, b, RGN_XOR, COMPLEXREGION, {0, 0, 15, 10}},
      {a, b, RGN_DIFF, SIMPLEREGION, {0, 0, 5, 10}},
      {a, nullptr, RGN_COPY, SIMPLEREGION, {0, 0, 10, 10}},
      {a, far, RGN_AND, NULLREGION, {0, 0, 0, 0}},
      {a, far, RGN_OR, COMPLEXREGION, {0, 0, 30, 30}},
      {a, a, RGN_DIFF, NULLREGION, {0, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(CombineRgn(d, c.x, c.y, c.mode), c.result) << c.mode;
    RECT box;
    GetRgnBox(d, &box);
    EXPECT_TRUE(EqualRect(&box, &c.box)) << c.mode;
  }
  EXPECT_EQ(CombineRgn(d, a, nullptr, RGN_AND), ERROR);
  EXPECT_EQ(CombineRgn(d, a, b, 0), ERROR);
  EXPECT_EQ(CombineRgn(d, a, b, 6), ERROR);
  EXPECT_EQ(CombineRgn(nullptr, a, b, RGN_OR), ERROR);
  // The destination may be a source.
  EXPECT_EQ(CombineRgn(a, a, b, RGN_OR), SIMPLEREGION);
  EXPECT_TRUE(PtInRegion(a, 14, 9));
}

TEST(GdiRegion, QueriesAndOffsets) {
  Rgns k;
  HRGN r = k(CreateRectRgn(0, 0, 10, 10));
  EXPECT_TRUE(PtInRegion(r, 9, 9));
  EXPECT_FALSE(PtInRegion(r, 10, 9));
  const RECT inside{9, 9, 20, 20}, outside{10, 0, 20, 10}, flipped{20, 20, 9, 9};
  EXPECT_TRUE(RectInRegion(r, &inside));
  EXPECT_FALSE(RectInRegion(r, &outside));
  EXPECT_TRUE(RectInRegion(r, &flipped));
  EXPECT_EQ(OffsetRgn(r, -5, 3), SIMPLEREGION);
  RECT box;
  GetRgnBox(r, &box);
  EXPECT_EQ(box.left, -5);
  EXPECT_EQ(box.bottom, 13);
  EXPECT_TRUE(SetRectRgn(r, 3, 3, 1, 1));
  GetRgnBox(r, &box);
  EXPECT_EQ(box.left, 1);
  EXPECT_EQ(box.right, 3);
  // Offsets far outside do not wrap around.
  EXPECT_NE(OffsetRgn(r, 2000000000, 2000000000), ERROR);
  EXPECT_FALSE(PtInRegion(r, 1, 1));
}

TEST(GdiRegion, RegionDataRoundTrip) {
  Rgns k;
  HRGN a = k(CreateRectRgn(0, 0, 10, 10));
  HRGN b = k(CreateRectRgn(20, 5, 30, 15));
  CombineRgn(a, a, b, RGN_OR);
  const DWORD size = GetRegionData(a, 0, nullptr);
  // Three bands: one rectangle, two side by side, one.
  EXPECT_EQ(size, sizeof(RGNDATAHEADER) + 4 * sizeof(RECT));
  std::vector<char> buffer(size);
  auto* data = reinterpret_cast<RGNDATA*>(buffer.data());
  EXPECT_EQ(GetRegionData(a, size - 1, data), 0u);
  EXPECT_EQ(GetRegionData(a, size, data), size);
  EXPECT_EQ(data->rdh.nCount, 4u);
  EXPECT_EQ(data->rdh.iType, RDH_RECTANGLES);
  EXPECT_EQ(data->rdh.rcBound.right, 30);
  HRGN c = k(ExtCreateRegion(nullptr, size, data));
  ASSERT_NE(c, nullptr);
  EXPECT_TRUE(EqualRgn(a, c));
  XFORM move{1, 0, 0, 1, 100, 0};
  HRGN moved = k(ExtCreateRegion(&move, size, data));
  EXPECT_TRUE(PtInRegion(moved, 100, 0));
  XFORM rotate{0, 1, -1, 0, 0, 0};
  EXPECT_EQ(ExtCreateRegion(&rotate, size, data), nullptr);
}

TEST(GdiRegion, BadInputFailsQuietly) {
  EXPECT_EQ(ExtCreateRegion(nullptr, 0, nullptr), nullptr);
  RGNDATAHEADER h{sizeof(RGNDATAHEADER), RDH_RECTANGLES, 1000000, 0, {0, 0, 0, 0}};
  EXPECT_EQ(ExtCreateRegion(nullptr, sizeof(h), reinterpret_cast<RGNDATA*>(&h)), nullptr);
  h.nCount = 0;
  h.iType = 7;
  EXPECT_EQ(ExtCreateRegion(nullptr, sizeof(h), reinterpret_cast<RGNDATA*>(&h)), nullptr);
  EXPECT_EQ(CreatePolygonRgn(nullptr, 3, ALTERNATE), nullptr);
  const POINT one[] = {{0, 0}};
  EXPECT_EQ(CreatePolygonRgn(one, 1, ALTERNATE), nullptr);
  EXPECT_EQ(CreatePolygonRgn(one, 1, 9), nullptr);
  const POINT huge[] = {{-2000000000, -2000000000}, {2000000000, 0}, {0, 2000000000}};
  HRGN r = CreatePolygonRgn(huge, 3, WINDING);
  EXPECT_NE(r, nullptr);
  DeleteObject(r);
  HRGN big = CreateRoundRectRgn(-2000000000, -2000000000, 2000000000, 2000000000, 5, 5);
  EXPECT_NE(big, nullptr);
  DeleteObject(big);
  HRGN dead = CreateRectRgn(0, 0, 1, 1);
  DeleteObject(dead);
  RECT box;
  EXPECT_EQ(GetRgnBox(dead, &box), ERROR);
  EXPECT_EQ(OffsetRgn(dead, 1, 1), ERROR);
  EXPECT_FALSE(PtInRegion(dead, 0, 0));
  EXPECT_FALSE(SetRectRgn(dead, 0, 0, 1, 1));
  EXPECT_EQ(GetRegionData(dead, 0, nullptr), 0u);
  EXPECT_FALSE(DeleteObject(dead));
}

}  // namespace
