#include <gtest/gtest.h>

#include "platform/DeviceContext.h"
#include "platform/Gdi.h"
#include "platform/GdiObject.h"
#include "platform/Raster.h"
#include "tests/platform/GdiTestSupport.h"

namespace {

using vantor::platform::test::Canvas;

constexpr uint32_t kWhite = 0x00FFFFFF;
constexpr uint32_t kBlack = 0x00000000;

TEST(GdiDraw, LineLeavesOutItsLastPixel) {
  Canvas c(6, 4);
  MoveToEx(c.dc(), 1, 1, nullptr);
  LineTo(c.dc(), 5, 1);
  LineTo(c.dc(), 5, 3);
  EXPECT_EQ(c.Art(),
            "......\n"
            ".#####\n"
            ".....#\n"
            "......\n");
  POINT p;
  GetCurrentPositionEx(c.dc(), &p);
  EXPECT_EQ(p.x, 5);
  EXPECT_EQ(p.y, 3);
}

TEST(GdiDraw, LineAndItsReverseCoverTheSamePixels) {
  struct Case {
    POINT a, b;
  };
  const Case cases[] = {{{0, 0}, {8, 4}}, {{0, 0}, {4, 8}}, {{0, 4}, {8, 0}},
                        {{1, 0}, {7, 3}}, {{0, 0}, {6, 2}}, {{2, 7}, {6, 1}}};
  for (const Case& k : cases) {
    Canvas f(10, 10), r(10, 10);
    MoveToEx(f.dc(), k.a.x, k.a.y, nullptr);
    LineTo(f.dc(), k.b.x, k.b.y);
    SetPixel(f.dc(), k.b.x, k.b.y, 0);
    MoveToEx(r.dc(), k.b.x, k.b.y, nullptr);
    LineTo(r.dc(), k.a.x, k.a.y);
    SetPixel(r.dc(), k.a.x, k.a.y, 0);
    EXPECT_EQ(f.Art(), r.Art()) << k.a.x << "," << k.a.y << " " << k.b.x << "," << k.b.y;
  }
}

TEST(GdiDraw, ShallowLineStepsAtTheMidpoint) {
  Canvas c(5, 3);
  MoveToEx(c.dc(), 0, 0, nullptr);
  LineTo(c.dc(), 4, 2);
  EXPECT_EQ(c.Art(),
            "##...\n"
            "..##.\n"
            ".....\n");
}

TEST(GdiDraw, DottedPenAndOpaqueGaps) {
  Canvas c(8, 1);
  HPEN dot = CreatePen(PS_DOT, 1, RGB(255, 0, 0));
  HGDIOBJ old = SelectObject(c.dc(), dot);
  SetBkColor(c.dc(), RGB(0, 0, 255));
  MoveToEx(c.dc(), 0, 0, nullptr);
  LineTo(c.dc(), 8, 0);
  EXPECT_EQ(c.At(0, 0), 0x00FF0000u);
  EXPECT_EQ(c.At(2, 0), 0x00FF0000u);
  EXPECT_EQ(c.At(3, 0), 0x000000FFu);
  EXPECT_EQ(c.At(6, 0), 0x00FF0000u);
  SelectObject(c.dc(), old);
  DeleteObject(dot);
}

TEST(GdiDraw, RectangleOutlinesWithThePenAndFillsWithTheBrush) {
  Canvas c(6, 5);
  HBRUSH gray = CreateSolidBrush(RGB(128, 128, 128));
  HGDIOBJ old = SelectObject(c.dc(), gray);
  Rectangle(c.dc(), 1, 1, 5, 5);
  EXPECT_EQ(c.At(1, 1), kBlack);
  EXPECT_EQ(c.At(4, 4), kBlack);
  EXPECT_EQ(c.At(2, 2), 0x00808080u);
  EXPECT_EQ(c.At(3, 3), 0x00808080u);
  EXPECT_EQ(c.At(5, 4), kWhite);
  // Without a pen the figure loses its right column and bottom row.
  c.Fill(kWhite);
  SelectObject(c.dc(), GetStockObject(NULL_PEN));
  Rectangle(c.dc(), 1, 1, 5, 5);
  EXPECT_EQ(c.Art(),
            "......\n"
            ".###..\n"
            ".###..\n"
            ".###..\n"
            "......\n");
  SelectObject(c.dc(), old);
  SelectObject(c.dc(), GetStockObject(BLACK_PEN));
  DeleteObject(gray);
}

// Three pixels wide, the pen is centred on the one-pixel outline and its
// round nib leaves the outer corner pixels out.
TEST(GdiDraw, WidePenRectangleGrowsOutwardsAndInwards) {
  Canvas c(10, 10);
  HPEN wide = CreatePen(PS_SOLID, 3, 0);
  SelectObject(c.dc(), wide);
  SelectObject(c.dc(), GetStockObject(NULL_BRUSH));
  Rectangle(c.dc(), 2, 2, 8, 8);
  EXPECT_EQ(c.Art(),
            "..........\n"
            "..######..\n"
            ".########.\n"
            ".########.\n"
            ".###..###.\n"
            ".###..###.\n"
            ".########.\n"
            ".########.\n"
            "..######..\n"
            "..........\n");
  SelectObject(c.dc(), GetStockObject(BLACK_PEN));
  DeleteObject(wide);
}

TEST(GdiDraw, FillRectLeavesOutRightAndBottomAndTakesSystemColourIndexes) {
  Canvas c(5, 4);
  RECT r{1, 1, 4, 3};
  HBRUSH b = CreateSolidBrush(RGB(1, 2, 3));
  EXPECT_EQ(FillRect(c.dc(), &r, b), 1);
  EXPECT_EQ(c.At(1, 1), 0x00010203u);
  EXPECT_EQ(c.At(3, 2), 0x00010203u);
  EXPECT_EQ(c.At(4, 2), kWhite);
  EXPECT_EQ(c.At(3, 3), kWhite);
  // Upside down, the rectangle runs back from its first corner, which it
  // includes, as PatBlt's negative extents do.
  RECT flipped{3, 2, 1, 1};
  c.Fill(kWhite);
  FillRect(c.dc(), &flipped, b);
  EXPECT_EQ(c.At(1, 1), kWhite);
  EXPECT_EQ(c.At(2, 2), 0x00010203u);
  EXPECT_EQ(c.At(3, 2), 0x00010203u);
  EXPECT_EQ(c.At(2, 3), kWhite);
  EXPECT_EQ(c.At(4, 2), kWhite);
  // (HBRUSH)(COLOR_BTNFACE + 1)
  FillRect(c.dc(), &r, reinterpret_cast<HBRUSH>(static_cast<uintptr_t>(15 + 1)));
  EXPECT_EQ(c.At(2, 2), vantor::platform::ColorToPixel(GetSysColor(15)));
  DeleteObject(b);
}

TEST(GdiDraw, FrameRectAndInvertRect) {
  Canvas c(5, 5);
  RECT r{0, 0, 4, 4};
  FrameRect(c.dc(), &r, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  EXPECT_EQ(c.Art(),
            "####.\n"
            "#..#.\n"
            "#..#.\n"
            "####.\n"
            ".....\n");
  // Inverting takes every bit, the alpha byte's too.
  InvertRect(c.dc(), &r);
  EXPECT_EQ(c.At(0, 0), 0xFFFFFFFFu);
  EXPECT_EQ(c.At(1, 1), 0xFF000000u);
  EXPECT_EQ(c.At(4, 4), 0x00FFFFFFu);
}

TEST(GdiDraw, EllipseAndRoundRectMatchTheirRegions) {
  // A figure without a pen covers what the region of the same arguments does.
  struct Case {
    int l, t, r, b, w, h;
  };
  const Case cases[] = {{0, 0, 11, 9, 3, 3}, {1, 1, 12, 10, 5, 4}, {0, 0, 9, 7, 9, 7}};
  for (const Case& k : cases) {
    Canvas c(14, 12);
    SelectObject(c.dc(), GetStockObject(NULL_PEN));
    SelectObject(c.dc(), GetStockObject(BLACK_BRUSH));
    RoundRect(c.dc(), k.l, k.t, k.r, k.b, k.w, k.h);
    HRGN rgn = CreateRoundRectRgn(k.l, k.t, k.r, k.b, k.w, k.h);
    EXPECT_EQ(c.Art(), vantor::platform::test::RegionArt(rgn, 14, 12));
    DeleteObject(rgn);
    SelectObject(c.dc(), GetStockObject(BLACK_PEN));
  }
}

TEST(GdiDraw, EllipseOutlineIsOnePixelAroundTheFill) {
  Canvas c(8, 8);
  HBRUSH red = CreateSolidBrush(RGB(255, 0, 0));
  SelectObject(c.dc(), red);
  Ellipse(c.dc(), 0, 0, 8, 8);
  EXPECT_EQ(c.At(0, 0), kWhite);
  EXPECT_EQ(c.At(0, 3), kBlack);
  EXPECT_EQ(c.At(7, 4), kBlack);
  EXPECT_EQ(c.At(3, 0), kBlack);
  EXPECT_EQ(c.At(4, 4), 0x00FF0000u);
  EXPECT_EQ(c.At(1, 3), 0x00FF0000u);
  SelectObject(c.dc(), GetStockObject(WHITE_BRUSH));
  DeleteObject(red);
}

TEST(GdiDraw, PolygonFillsAndOutlines) {
  Canvas c(6, 6);
  SelectObject(c.dc(), GetStockObject(BLACK_BRUSH));
  SelectObject(c.dc(), GetStockObject(NULL_PEN));
  const POINT pts[] = {{1, 1}, {5, 1}, {5, 5}, {1, 5}};
  EXPECT_TRUE(Polygon(c.dc(), pts, 4));
  EXPECT_EQ(c.Art(),
            "......\n"
            ".####.\n"
            ".####.\n"
            ".####.\n"
            ".####.\n"
            "......\n");
  SelectObject(c.dc(), GetStockObject(BLACK_PEN));
  c.Fill(kWhite);
  SelectObject(c.dc(), GetStockObject(WHITE_BRUSH));
  Polygon(c.dc(), pts, 4);
  EXPECT_EQ(c.Art(),
            "......\n"
            ".#####\n"
            ".#...#\n"
            ".#...#\n"
            ".#...#\n"
            ".#####\n");
  EXPECT_FALSE(Polygon(c.dc(), pts, 1));
  EXPECT_FALSE(Polyline(c.dc(), nullptr, 3));
}

TEST(GdiDraw, XorPenDrawnTwiceRestores) {
  Canvas c(6, 6, 0x00123456);
  SetROP2(c.dc(), R2_XORPEN);
  HPEN p = CreatePen(PS_SOLID, 1, RGB(255, 255, 255));
  SelectObject(c.dc(), p);
  SelectObject(c.dc(), GetStockObject(NULL_BRUSH));
  Rectangle(c.dc(), 0, 0, 5, 5);
  EXPECT_EQ(c.At(0, 0), 0x00EDCBA9u);
  Rectangle(c.dc(), 0, 0, 5, 5);
  EXPECT_EQ(c.At(0, 0), 0x00123456u);
  EXPECT_EQ(SetROP2(c.dc(), R2_NOTXORPEN), R2_XORPEN);
  EXPECT_EQ(SetROP2(c.dc(), 0), 0);
  EXPECT_EQ(SetROP2(c.dc(), 17), 0);
  SelectObject(c.dc(), GetStockObject(BLACK_PEN));
  DeleteObject(p);
}

TEST(GdiDraw, PixelsInsideAndOutside) {
  Canvas c(4, 4);
  EXPECT_EQ(SetPixel(c.dc(), 1, 2, RGB(10, 20, 30)), RGB(10, 20, 30));
  EXPECT_EQ(c.At(1, 2), 0x000A141Eu);
  EXPECT_EQ(GetPixel(c.dc(), 1, 2), RGB(10, 20, 30));
  EXPECT_EQ(SetPixel(c.dc(), 4, 0, 0), CLR_INVALID);
  EXPECT_EQ(GetPixel(c.dc(), -1, 0), CLR_INVALID);
  EXPECT_FALSE(SetPixelV(c.dc(), 0, 100, 0));
  EXPECT_TRUE(SetPixelV(c.dc(), 0, 0, 0));
}

TEST(GdiDraw, ClippingRegionsInDeviceCoordinates) {
  Canvas c(8, 4);
  HRGN clip = CreateRectRgn(2, 0, 4, 4);
  EXPECT_EQ(SelectClipRgn(c.dc(), clip), SIMPLEREGION);
  // The DC keeps its own copy.
  SetRectRgn(clip, 0, 0, 1, 1);
  RECT all{0, 0, 8, 4};
  FillRect(c.dc(), &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  EXPECT_EQ(c.Art(),
            "..##....\n"
            "..##....\n"
            "..##....\n"
            "..##....\n");
  RECT box;
  EXPECT_EQ(GetClipBox(c.dc(), &box), SIMPLEREGION);
  EXPECT_EQ(box.left, 2);
  EXPECT_EQ(box.right, 4);
  EXPECT_EQ(ExcludeClipRect(c.dc(), 3, 1, 4, 3), COMPLEXREGION);
  EXPECT_EQ(IntersectClipRect(c.dc(), 0, 0, 8, 1), SIMPLEREGION);
  EXPECT_EQ(GetClipRgn(c.dc(), clip), 1);
  EXPECT_EQ(SelectClipRgn(c.dc(), nullptr), SIMPLEREGION);
  EXPECT_EQ(GetClipRgn(c.dc(), clip), 0);
  EXPECT_EQ(ExtSelectClipRgn(c.dc(), nullptr, RGN_AND), ERROR);
  // A viewport origin moves drawing but not the clip.
  SetRectRgn(clip, 0, 0, 2, 2);
  SelectClipRgn(c.dc(), clip);
  SetViewportOrgEx(c.dc(), 1, 1, nullptr);
  c.Fill(kWhite);
  FillRect(c.dc(), &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  EXPECT_EQ(c.Art(),
            "........\n"
            ".#......\n"
            "........\n"
            "........\n");
  EXPECT_EQ(GetClipBox(c.dc(), &box), SIMPLEREGION);
  EXPECT_EQ(box.left, -1);
  POINT org;
  OffsetViewportOrgEx(c.dc(), 2, 3, &org);
  EXPECT_EQ(org.x, 1);
  GetViewportOrgEx(c.dc(), &org);
  EXPECT_EQ(org.y, 4);
  DeleteObject(clip);
}

TEST(GdiDraw, SaveAndRestoreBringBackObjectsModesAndClip) {
  Canvas c(4, 4);
  const int level = SaveDC(c.dc());
  EXPECT_EQ(level, 1);
  HPEN p = CreatePen(PS_SOLID, 1, RGB(1, 1, 1));
  SelectObject(c.dc(), p);
  SetTextColor(c.dc(), RGB(9, 9, 9));
  IntersectClipRect(c.dc(), 0, 0, 1, 1);
  EXPECT_EQ(SaveDC(c.dc()), 2);
  SetBkMode(c.dc(), TRANSPARENT);
  EXPECT_TRUE(RestoreDC(c.dc(), -1));
  EXPECT_EQ(GetBkMode(c.dc()), OPAQUE);
  EXPECT_EQ(GetTextColor(c.dc()), RGB(9, 9, 9));
  EXPECT_FALSE(RestoreDC(c.dc(), 2));
  EXPECT_TRUE(RestoreDC(c.dc(), 1));
  EXPECT_EQ(GetTextColor(c.dc()), 0u);
  EXPECT_EQ(GetCurrentObject(c.dc(), OBJ_PEN), GetStockObject(BLACK_PEN));
  RECT box;
  GetClipBox(c.dc(), &box);
  EXPECT_EQ(box.right, 4);
  // The pen is free again.
  EXPECT_TRUE(DeleteObject(p));
  EXPECT_FALSE(RestoreDC(c.dc(), -1));
  EXPECT_FALSE(RestoreDC(c.dc(), 0));
}

TEST(GdiDraw, FocusRectIsADottedInversionThatUndoesItself) {
  Canvas c(8, 6, 0x00808080);
  RECT r{1, 1, 7, 5};
  EXPECT_TRUE(DrawFocusRect(c.dc(), &r));
  EXPECT_EQ(c.Art(0x00808080),
            "........\n"
            "..#.#.#.\n"
            ".#......\n"
            "......#.\n"
            ".#.#.#..\n"
            "........\n");
  DrawFocusRect(c.dc(), &r);
  EXPECT_EQ(c.Art(0x00808080), Canvas(8, 6, 0x00808080).Art(0x00808080));
}

TEST(GdiDraw, FocusRectOnePixelThinIsWalkedThereAndBack) {
  // The dotted path runs anticlockwise from the top-right pixel; a thin
  // rectangle is walked out and back, and only the dots met once remain:
  // here both ends of the five-pixel column, the ends of the row.
  Canvas c(8, 8, 0x00808080);
  RECT tall{1, 2, 2, 7};
  EXPECT_TRUE(DrawFocusRect(c.dc(), &tall));
  RECT wide{3, 1, 8, 2};
  EXPECT_TRUE(DrawFocusRect(c.dc(), &wide));
  EXPECT_EQ(c.Art(0x00808080),
            "........\n"
            "...#...#\n"
            ".#......\n"
            "........\n"
            "........\n"
            "........\n"
            ".#......\n"
            "........\n");
}

TEST(GdiDraw, WidePenLinesEndAndJoinRound) {
  Canvas c(12, 8);
  HPEN two = CreatePen(PS_SOLID, 2, RGB(0, 0, 0));
  HGDIOBJ old = SelectObject(c.dc(), two);
  MoveToEx(c.dc(), 2, 2, nullptr);
  LineTo(c.dc(), 3, 2);  // the body's one column and a 2x2 nib at each end
  MoveToEx(c.dc(), 7, 2, nullptr);
  LineTo(c.dc(), 7, 2);  // an empty line still leaves its nib
  HPEN three = CreatePen(PS_SOLID, 3, RGB(0, 0, 0));
  SelectObject(c.dc(), three);
  MoveToEx(c.dc(), 10, 5, nullptr);
  LineTo(c.dc(), 10, 5);  // a plus
  SelectObject(c.dc(), old);
  DeleteObject(two);
  DeleteObject(three);
  EXPECT_EQ(c.Art(),
            "............\n"
            ".###..##....\n"
            ".###..##....\n"
            "............\n"
            "..........#.\n"
            ".........###\n"
            "..........#.\n"
            "............\n");
}

TEST(GdiDraw, WidePolylineThroughXorPaintsItsJoinsOnce) {
  Canvas c(10, 10, 0x00123456);
  SetROP2(c.dc(), R2_XORPEN);
  HPEN p = CreatePen(PS_SOLID, 3, RGB(255, 255, 255));
  HGDIOBJ old = SelectObject(c.dc(), p);
  const POINT corner[] = {{2, 2}, {7, 2}, {7, 7}};
  Polyline(c.dc(), corner, 3);
  EXPECT_EQ(c.At(7, 2), 0x00EDCBA9u);  // the join, inverted once
  EXPECT_EQ(c.At(8, 2), 0x00EDCBA9u);  // its round nib
  EXPECT_EQ(c.At(8, 1), 0x00123456u);  // but no square corner
  EXPECT_EQ(c.At(1, 2), 0x00EDCBA9u);  // the round start
  EXPECT_EQ(c.At(1, 1), 0x00123456u);
  Polyline(c.dc(), corner, 3);
  EXPECT_EQ(c.Art(0x00123456), Canvas(10, 10, 0x00123456).Art(0x00123456));
  SelectObject(c.dc(), old);
  DeleteObject(p);
}

TEST(GdiDraw, FrameControlCheckBoxAndPushButton) {
  Canvas c(13, 13, 0);
  RECT r{0, 0, 13, 13};
  EXPECT_TRUE(DrawFrameControl(c.dc(), &r, DFC_BUTTON, DFCS_BUTTONCHECK | DFCS_CHECKED));
  auto px = [](int index) { return vantor::platform::ColorToPixel(GetSysColor(index)); };
  EXPECT_EQ(c.At(0, 0), px(16));    // shadow, top-left outer
  EXPECT_EQ(c.At(12, 0), px(20));   // highlight, top-right corner
  EXPECT_EQ(c.At(1, 1), px(21));    // dark shadow inner
  EXPECT_EQ(c.At(11, 11), px(22));  // light inner bottom-right
  EXPECT_EQ(c.At(2, 2), px(5));     // window colour inside
  EXPECT_EQ(c.At(3, 5), px(5));     // the tick's first column: rows 6 to 8
  EXPECT_EQ(c.At(3, 6), px(8));
  EXPECT_EQ(c.At(3, 8), px(8));
  EXPECT_EQ(c.At(4, 6), px(5));  // the second: rows 7 to 9
  EXPECT_EQ(c.At(4, 9), px(8));
  EXPECT_EQ(c.At(9, 3), px(8));  // its last column
  EXPECT_TRUE(DrawFrameControl(c.dc(), &r, DFC_BUTTON, DFCS_BUTTONPUSH | DFCS_ADJUSTRECT));
  EXPECT_EQ(c.At(0, 0), px(20));
  EXPECT_EQ(c.At(12, 0), px(21));
  EXPECT_EQ(c.At(1, 1), px(22));
  EXPECT_EQ(c.At(11, 11), px(16));
  EXPECT_EQ(c.At(6, 6), px(15));
  EXPECT_EQ(r.left, 2);
  EXPECT_EQ(r.bottom, 11);
  // Checked push buttons show a dithered face; flat ones a shadow line and
  // a face-coloured one inside it.
  RECT p{0, 0, 13, 13};
  DrawFrameControl(c.dc(), &p, DFC_BUTTON, DFCS_BUTTONPUSH | DFCS_CHECKED);
  EXPECT_EQ(c.At(0, 0), px(21));
  EXPECT_EQ(c.At(2, 2), px(15));
  EXPECT_EQ(c.At(3, 2), px(20));
  DrawFrameControl(c.dc(), &p, DFC_BUTTON, DFCS_BUTTONCHECK | DFCS_FLAT);
  EXPECT_EQ(c.At(0, 0), px(16));
  EXPECT_EQ(c.At(1, 1), px(15));
  EXPECT_EQ(c.At(2, 2), px(5));
  EXPECT_FALSE(DrawFrameControl(c.dc(), &r, DFC_CAPTION, 0));
  EXPECT_FALSE(DrawFrameControl(c.dc(), nullptr, DFC_BUTTON, 0));
}

TEST(GdiDraw, SurfaceDcDrawsAtItsOriginInsideItsVisiblePart) {
  std::vector<uint32_t> pixels(10 * 6, kWhite);
  vantor::platform::Surface s{pixels.data(), 10, 6, 10};
  vantor::platform::Region visible(2, 1, 7, 5);
  visible.Subtract(RECT{4, 2, 5, 3});
  HDC dc = vantor::platform::CreateSurfaceDC(s, POINT{2, 1}, visible, nullptr);
  ASSERT_NE(dc, nullptr);
  EXPECT_EQ(GetObjectType(dc), static_cast<DWORD>(OBJ_DC));
  RECT all{-5, -5, 50, 50};
  FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  std::string art;
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 10; ++x)
      art += pixels[static_cast<size_t>(y * 10 + x)] == kWhite ? '.' : '#';
    art += '\n';
  }
  EXPECT_EQ(art,
            "..........\n"
            "..#####...\n"
            "..##.##...\n"
            "..#####...\n"
            "..#####...\n"
            "..........\n");
  // Memory DCs hold bitmaps; window DCs do not.
  HBITMAP b = CreateCompatibleBitmap(dc, 2, 2);
  EXPECT_EQ(SelectObject(dc, b), nullptr);
  DeleteObject(b);
  // Mask blending in the text colour's way.
  std::fill(pixels.begin(), pixels.end(), kWhite);
  const uint8_t mask[] = {255, 128, 0, 64};
  auto* d = vantor::platform::DcFromHandle(dc);
  vantor::platform::BlendMask(*d, 0, 0, mask, 2, 2, 2, RGB(0, 0, 0));
  EXPECT_EQ(pixels[12], 0u);
  EXPECT_EQ(pixels[13], 0x007F7F7Fu);  // (255 * 127 + 127) / 255
  EXPECT_EQ(pixels[22], kWhite);
  EXPECT_EQ(pixels[23], 0x00BFBFBFu);  // (255 * 191 + 127) / 255
  vantor::platform::FillSolidRect(*d, RECT{0, 0, 1, 1}, RGB(255, 0, 0));
  EXPECT_EQ(pixels[12], 0x00FF0000u);
  EXPECT_TRUE(DeleteDC(dc));
  EXPECT_FALSE(DeleteDC(dc));
}

TEST(GdiDraw, BadHandlesDrawNothingAndFail) {
  HDC none = nullptr;
  HDC junk = reinterpret_cast<HDC>(static_cast<uintptr_t>(0x12345678));
  RECT r{0, 0, 10, 10};
  const POINT pts[] = {{0, 0}, {5, 5}, {0, 5}};
  for (HDC dc : {none, junk}) {
    EXPECT_FALSE(MoveToEx(dc, 0, 0, nullptr));
    EXPECT_FALSE(LineTo(dc, 1, 1));
    EXPECT_FALSE(Rectangle(dc, 0, 0, 5, 5));
    EXPECT_FALSE(RoundRect(dc, 0, 0, 5, 5, 2, 2));
    EXPECT_FALSE(Ellipse(dc, 0, 0, 5, 5));
    EXPECT_FALSE(Polygon(dc, pts, 3));
    EXPECT_FALSE(Polyline(dc, pts, 3));
    EXPECT_EQ(FillRect(dc, &r, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH))), 0);
    EXPECT_EQ(FrameRect(dc, &r, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH))), 0);
    EXPECT_FALSE(InvertRect(dc, &r));
    EXPECT_EQ(GetPixel(dc, 0, 0), CLR_INVALID);
    EXPECT_FALSE(DrawFocusRect(dc, &r));
    EXPECT_EQ(SetTextColor(dc, 0), CLR_INVALID);
    EXPECT_EQ(SetBkMode(dc, OPAQUE), 0);
    EXPECT_EQ(SelectClipRgn(dc, nullptr), ERROR);
    EXPECT_EQ(SaveDC(dc), 0);
    EXPECT_EQ(SelectObject(dc, GetStockObject(BLACK_PEN)), nullptr);
  }
  Canvas c(4, 4);
  EXPECT_EQ(FillRect(c.dc(), nullptr, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH))), 0);
  EXPECT_EQ(FillRect(c.dc(), &r, nullptr), 0);
  // Figures far outside the surface are clipped away, not walked forever.
  EXPECT_TRUE(Rectangle(c.dc(), -2000000000, -2000000000, 2000000000, 2000000000));
  MoveToEx(c.dc(), -2000000000, -2000000000, nullptr);
  EXPECT_TRUE(LineTo(c.dc(), 2000000000, 2000000000));
  EXPECT_TRUE(Ellipse(c.dc(), -100000, -100000, 100000, 100000));
  HPEN huge = CreatePen(PS_SOLID, 1000000, 0);
  SelectObject(c.dc(), huge);
  MoveToEx(c.dc(), 0, 0, nullptr);
  EXPECT_TRUE(LineTo(c.dc(), 3, 3));
  SelectObject(c.dc(), GetStockObject(BLACK_PEN));
  DeleteObject(huge);
}

}  // namespace
