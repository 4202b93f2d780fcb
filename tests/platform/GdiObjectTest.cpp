#include <gtest/gtest.h>

#include "platform/Gdi.h"
#include "platform/GdiObject.h"
#include "tests/platform/GdiTestSupport.h"

namespace {

using vantor::platform::GdiTable;
using vantor::platform::test::Canvas;

TEST(GdiObject, PensAndBrushesDescribeThemselves) {
  HPEN pen = CreatePen(PS_DASH, 0, RGB(1, 2, 3));
  EXPECT_EQ(GetObjectType(pen), static_cast<DWORD>(OBJ_PEN));
  LOGPEN lp{};
  EXPECT_EQ(GetObjectW(pen, 0, nullptr), static_cast<int>(sizeof(LOGPEN)));
  EXPECT_EQ(GetObjectW(pen, sizeof(lp), &lp), static_cast<int>(sizeof(LOGPEN)));
  EXPECT_EQ(lp.lopnStyle, static_cast<UINT>(PS_DASH));
  EXPECT_EQ(lp.lopnColor, RGB(1, 2, 3));
  EXPECT_EQ(GetObjectW(pen, 2, &lp), 0);
  HBRUSH brush = CreateSolidBrush(RGB(4, 5, 6));
  LOGBRUSH lb{};
  EXPECT_EQ(GetObjectA(brush, sizeof(lb), &lb), static_cast<int>(sizeof(LOGBRUSH)));
  EXPECT_EQ(lb.lbStyle, BS_SOLID);
  EXPECT_EQ(lb.lbColor, RGB(4, 5, 6));
  const LOGBRUSH hatch{BS_HATCHED, RGB(0, 0, 0), HS_CROSS};
  HBRUSH hb = CreateBrushIndirect(&hatch);
  EXPECT_EQ(GetObjectType(hb), static_cast<DWORD>(OBJ_BRUSH));
  EXPECT_EQ(CreatePen(PS_USERSTYLE, 1, 0), nullptr);
  EXPECT_EQ(CreatePen(PS_ALTERNATE + 1, 1, 0), nullptr);
  EXPECT_TRUE(DeleteObject(pen));
  EXPECT_TRUE(DeleteObject(brush));
  EXPECT_TRUE(DeleteObject(hb));
  EXPECT_FALSE(DeleteObject(pen));
  EXPECT_EQ(GetObjectType(pen), 0u);
}

TEST(GdiObject, HatchedBrushDrawsLinesOnTheBackground) {
  Canvas c(8, 8, 0x00123456);
  HBRUSH hb = CreateHatchBrush(HS_HORIZONTAL, RGB(255, 0, 0));
  RECT r{0, 0, 8, 8};
  SetBkColor(c.dc(), RGB(0, 0, 255));
  FillRect(c.dc(), &r, hb);
  EXPECT_EQ(c.At(3, 7), 0x00FF0000u);
  EXPECT_EQ(c.At(3, 6), 0x000000FFu);
  c.Fill(0x00123456);
  SetBkMode(c.dc(), TRANSPARENT);
  FillRect(c.dc(), &r, hb);
  EXPECT_EQ(c.At(3, 6), 0x00123456u);
  DeleteObject(hb);
}

TEST(GdiObject, StockObjectsSurviveDeletion) {
  for (int id : {WHITE_BRUSH, LTGRAY_BRUSH, GRAY_BRUSH, DKGRAY_BRUSH, BLACK_BRUSH, NULL_BRUSH,
                 WHITE_PEN, BLACK_PEN, NULL_PEN, DC_BRUSH, DC_PEN}) {
    HGDIOBJ o = GetStockObject(id);
    ASSERT_NE(o, nullptr) << id;
    EXPECT_TRUE(DeleteObject(o));
    EXPECT_EQ(GetStockObject(id), o);
    EXPECT_NE(GetObjectType(o), 0u);
  }
  LOGBRUSH lb{};
  GetObjectW(GetStockObject(LTGRAY_BRUSH), sizeof(lb), &lb);
  EXPECT_EQ(lb.lbColor, RGB(192, 192, 192));
  EXPECT_EQ(GetStockObject(-1), nullptr);
  EXPECT_EQ(GetStockObject(9), nullptr);
  EXPECT_EQ(GetStockObject(1000), nullptr);
}

TEST(GdiObject, SelectedObjectsCannotBeDeleted) {
  Canvas c(2, 2);
  HPEN pen = CreatePen(PS_SOLID, 1, 0);
  HGDIOBJ old = SelectObject(c.dc(), pen);
  EXPECT_EQ(old, GetStockObject(BLACK_PEN));
  EXPECT_FALSE(DeleteObject(pen));
  EXPECT_EQ(GetCurrentObject(c.dc(), OBJ_PEN), pen);
  EXPECT_EQ(SelectObject(c.dc(), old), pen);
  EXPECT_TRUE(DeleteObject(pen));
  // A DC is not an object DeleteObject takes.
  EXPECT_FALSE(DeleteObject(c.dc()));
}

TEST(GdiObject, MemoryDcStartsWithTheOneByOneBitmap) {
  HDC dc = CreateCompatibleDC(nullptr);
  EXPECT_EQ(GetObjectType(dc), static_cast<DWORD>(OBJ_MEMDC));
  HGDIOBJ stock = GetCurrentObject(dc, OBJ_BITMAP);
  BITMAP bm{};
  EXPECT_EQ(GetObjectW(stock, sizeof(bm), &bm), static_cast<int>(sizeof(BITMAP)));
  EXPECT_EQ(bm.bmWidth, 1);
  EXPECT_EQ(bm.bmHeight, 1);
  EXPECT_EQ(bm.bmBitsPixel, 1);
  EXPECT_EQ(GetCurrentObject(dc, OBJ_BRUSH), GetStockObject(WHITE_BRUSH));
  EXPECT_EQ(GetBkColor(dc), RGB(255, 255, 255));
  EXPECT_EQ(GetBkMode(dc), OPAQUE);
  EXPECT_EQ(GetROP2(dc), R2_COPYPEN);
  EXPECT_EQ(GetDeviceCaps(dc, LOGPIXELSY), 96);
  EXPECT_EQ(GetDeviceCaps(dc, BITSPIXEL), 32);
  // Zero-sized compatible bitmaps are that same stock bitmap.
  EXPECT_EQ(CreateCompatibleBitmap(dc, 0, 5), stock);
  EXPECT_EQ(CreateCompatibleBitmap(dc, -1, 5), nullptr);
  EXPECT_TRUE(DeleteDC(dc));
  EXPECT_EQ(CreateCompatibleDC(reinterpret_cast<HDC>(static_cast<uintptr_t>(0x777))), nullptr);
}

TEST(GdiObject, ABitmapLivesInOneDcAtATime) {
  HDC a = CreateCompatibleDC(nullptr);
  HDC b = CreateCompatibleDC(nullptr);
  HBITMAP bmp = CreateCompatibleBitmap(a, 4, 4);
  HGDIOBJ old = SelectObject(a, bmp);
  EXPECT_NE(old, nullptr);
  EXPECT_EQ(SelectObject(b, bmp), nullptr);
  EXPECT_FALSE(DeleteObject(bmp));
  SelectObject(a, old);
  EXPECT_NE(SelectObject(b, bmp), nullptr);
  DeleteDC(b);  // deleting the DC frees the bitmap's selection
  EXPECT_TRUE(DeleteObject(bmp));
  DeleteDC(a);
}

TEST(GdiObject, DibSectionsBothWaysUp) {
  for (LONG height : {LONG{3}, LONG{-3}}) {
    BITMAPINFO info{};
    info.bmiHeader =
        BITMAPINFOHEADER{sizeof(BITMAPINFOHEADER), 2, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HBITMAP bmp = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    ASSERT_NE(bmp, nullptr);
    ASSERT_NE(bits, nullptr);
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(dc, bmp);
    SetPixel(dc, 1, 0, RGB(0xAA, 0xBB, 0xCC));
    // Bottom-up DIBs keep the top row last in memory.
    const size_t at = height > 0 ? 2 * 2 + 1 : 1;
    EXPECT_EQ(static_cast<uint32_t*>(bits)[at], 0x00AABBCCu) << height;
    DIBSECTION ds{};
    EXPECT_EQ(GetObjectW(bmp, sizeof(ds), &ds), static_cast<int>(sizeof(DIBSECTION)));
    EXPECT_EQ(ds.dsBm.bmBits, bits);
    EXPECT_EQ(ds.dsBm.bmWidthBytes, 8);
    EXPECT_EQ(ds.dsBmih.biHeight, height);
    EXPECT_EQ(ds.dsBmih.biSizeImage, 24u);
    // GetDIBits in the same orientation gives back the same bytes.
    BITMAPINFO query{};
    query.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    EXPECT_EQ(GetDIBits(dc, bmp, 0, 0, nullptr, &query, DIB_RGB_COLORS), 1);
    EXPECT_EQ(query.bmiHeader.biWidth, 2);
    EXPECT_EQ(query.bmiHeader.biHeight, 3);
    query.bmiHeader.biHeight = height;
    uint32_t copy[6] = {};
    EXPECT_EQ(GetDIBits(dc, bmp, 0, 3, copy, &query, DIB_RGB_COLORS), 3);
    EXPECT_EQ(copy[at], 0x00AABBCCu);
    SelectObject(dc, old);
    DeleteDC(dc);
    DeleteObject(bmp);
  }
}

TEST(GdiObject, BadBitmapRequestsFail) {
  BITMAPINFO info{};
  info.bmiHeader = BITMAPINFOHEADER{sizeof(BITMAPINFOHEADER), 0, 3, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = reinterpret_cast<void*>(1);
  EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0), nullptr);
  EXPECT_EQ(bits, nullptr);
  info.bmiHeader.biWidth = 1000000;
  info.bmiHeader.biHeight = 1000000;
  EXPECT_EQ(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0), nullptr);
  EXPECT_EQ(CreateDIBSection(nullptr, nullptr, DIB_RGB_COLORS, &bits, nullptr, 0), nullptr);
  EXPECT_EQ(CreateBitmap(4, 4, 2, 1, nullptr), nullptr);
  EXPECT_EQ(CreateBitmap(-4, 4, 1, 1, nullptr), nullptr);
  const uint8_t mono[] = {0x80, 0, 0x40, 0};
  HBITMAP b = CreateBitmap(2, 2, 1, 1, mono);
  HDC dc = CreateCompatibleDC(nullptr);
  SelectObject(dc, b);
  EXPECT_EQ(GetPixel(dc, 0, 0), RGB(255, 255, 255));
  EXPECT_EQ(GetPixel(dc, 1, 0), 0u);
  EXPECT_EQ(GetPixel(dc, 1, 1), RGB(255, 255, 255));
  DeleteDC(dc);
  DeleteObject(b);
  EXPECT_EQ(GetObjectW(nullptr, 10, nullptr), 0);
  EXPECT_EQ(GetObjectType(nullptr), 0u);
}

TEST(GdiObject, SystemColourBrushesAreStock) {
  HBRUSH face = GetSysColorBrush(15);
  ASSERT_NE(face, nullptr);
  EXPECT_EQ(GetSysColorBrush(15), face);
  EXPECT_TRUE(DeleteObject(face));
  LOGBRUSH lb{};
  GetObjectW(face, sizeof(lb), &lb);
  EXPECT_EQ(lb.lbColor, GetSysColor(15));
  EXPECT_EQ(GetSysColorBrush(-1), nullptr);
  EXPECT_EQ(GetSysColorBrush(400), nullptr);
}

TEST(GdiObject, NothingLeaks) {
  // Stock objects are made on first use and live on; make them before counting,
  // so the test means the same run alone or after others.
  { Canvas warm(1, 1); }
  const size_t before = GdiTable::Count();
  {
    Canvas c(10, 10);
    HRGN r = CreateRectRgn(0, 0, 5, 5);
    SelectClipRgn(c.dc(), r);
    DeleteObject(r);
    Rectangle(c.dc(), 0, 0, 5, 5);
  }
  EXPECT_EQ(GdiTable::Count(), before);
}

TEST(GdiObject, ThemesAreNeverActive) {
  EXPECT_FALSE(IsThemeActive());
  EXPECT_EQ(OpenThemeData(nullptr, u"BUTTON"), nullptr);
  EXPECT_LT(DrawThemeBackground(nullptr, nullptr, 1, 1, nullptr, nullptr), 0);
  EXPECT_EQ(CloseThemeData(nullptr), 0);
}

TEST(GdiRect, Helpers) {
  RECT r;
  SetRect(&r, 1, 2, 5, 7);
  EXPECT_FALSE(IsRectEmpty(&r));
  OffsetRect(&r, 1, -2);
  EXPECT_EQ(r.left, 2);
  EXPECT_EQ(r.top, 0);
  InflateRect(&r, 1, 2);
  EXPECT_EQ(r.left, 1);
  EXPECT_EQ(r.bottom, 7);
  EXPECT_TRUE(PtInRect(&r, POINT{1, -2}));
  EXPECT_FALSE(PtInRect(&r, POINT{7, 0}));
  EXPECT_FALSE(PtInRect(&r, POINT{1, 7}));
  struct Case {
    RECT a, b;
    BOOL meets;
    RECT both, either;
  };
  const Case cases[] = {
      {{0, 0, 10, 10}, {5, 5, 15, 15}, TRUE, {5, 5, 10, 10}, {0, 0, 15, 15}},
      {{0, 0, 10, 10}, {10, 0, 20, 10}, FALSE, {0, 0, 0, 0}, {0, 0, 20, 10}},
      {{0, 0, 0, 10}, {1, 1, 2, 2}, FALSE, {0, 0, 0, 0}, {1, 1, 2, 2}},
      {{5, 5, 1, 1}, {5, 5, 1, 1}, FALSE, {0, 0, 0, 0}, {0, 0, 0, 0}},
  };
  for (const Case& k : cases) {
    RECT out{9, 9, 9, 9};
    EXPECT_EQ(IntersectRect(&out, &k.a, &k.b), k.meets);
    EXPECT_TRUE(EqualRect(&out, &k.both));
    UnionRect(&out, &k.a, &k.b);
    EXPECT_TRUE(EqualRect(&out, &k.either));
  }
  RECT a{0, 0, 10, 10}, top{0, 0, 10, 4}, mid{2, 2, 4, 4}, out;
  EXPECT_TRUE(SubtractRect(&out, &a, &top));
  EXPECT_EQ(out.top, 4);
  EXPECT_TRUE(SubtractRect(&out, &a, &mid));
  EXPECT_TRUE(EqualRect(&out, &a));
  SetRectEmpty(&r);
  EXPECT_TRUE(IsRectEmpty(&r));
  EXPECT_TRUE(IsRectEmpty(nullptr));
  EXPECT_FALSE(SetRect(nullptr, 0, 0, 1, 1));
  EXPECT_FALSE(CopyRect(&r, nullptr));
  EXPECT_FALSE(EqualRect(nullptr, &r));
  EXPECT_FALSE(IntersectRect(nullptr, &r, &r));
}

}  // namespace
