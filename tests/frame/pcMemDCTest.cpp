// The off-screen surface: made when both sides are known, like the screen,
// rebuilt only to grow, and every GDI object given back.
#include "frame/pcMemDC.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/User.h"

namespace vantor::frame {
namespace {

using platform::GdiTable;

SIZE BitmapSize(HDC dc) {
  BITMAP bm{};
  GetObjectW(GetCurrentObject(dc, OBJ_BITMAP), sizeof bm, &bm);
  return SIZE{bm.bmWidth, bm.bmHeight};
}

TEST(pcMemDC, NoSurfaceUntilBothSidesArePositive) {
  pcMemDC s;
  EXPECT_EQ(s.get_hDC(), nullptr);
  s.put_Width(30);
  EXPECT_EQ(s.get_hDC(), nullptr);
  s.put_Height(-4);
  EXPECT_EQ(s.get_Height(), 0);
  s.put_Height(20);
  ASSERT_NE(s.get_hDC(), nullptr);
  EXPECT_EQ(GetObjectType(s.get_hDC()), OBJ_MEMDC);
  EXPECT_EQ(BitmapSize(s.get_hDC()).cx, 30);
  EXPECT_EQ(BitmapSize(s.get_hDC()).cy, 20);
  HDC screen = GetDC(nullptr);
  EXPECT_EQ(GetDeviceCaps(s.get_hDC(), BITSPIXEL), GetDeviceCaps(screen, BITSPIXEL));
  ReleaseDC(nullptr, screen);
}

TEST(pcMemDC, OnlyALargerSizeRebuildsAndLosesTheContents) {
  pcMemDC s;
  s.put_Width(10);
  s.put_Height(10);
  SetPixelV(s.get_hDC(), 3, 4, RGB(200, 10, 20));
  for (int32_t smaller : {10, 9, 0, -1}) {
    s.put_Width(smaller);
    s.put_Height(smaller);
  }
  EXPECT_EQ(s.get_Width(), 10);
  EXPECT_EQ(GetPixel(s.get_hDC(), 3, 4), RGB(200, 10, 20));
  s.put_Height(12);
  EXPECT_EQ(BitmapSize(s.get_hDC()).cy, 12);
  EXPECT_EQ(BitmapSize(s.get_hDC()).cx, 10);
  EXPECT_EQ(GetPixel(s.get_hDC(), 3, 4), RGB(0, 0, 0));
}

TEST(pcMemDC, EveryObjectGoesWithTheSurface) {
  // The stock objects are made at the first use of a DC; count after them.
  {
    pcMemDC warm;
    warm.put_Width(1);
    warm.put_Height(1);
  }
  const size_t before = GdiTable::Count();
  std::optional<pcMemDC> s(std::in_place);
  s->put_Width(8);
  s->put_Height(8);
  s->put_Width(16);
  s->put_Height(16);
  const HDC dc = s->get_hDC();
  EXPECT_EQ(GdiTable::Count(), before + 2);  // one DC and one bitmap
  s.reset();
  EXPECT_EQ(GetObjectType(dc), 0u);
  EXPECT_EQ(GdiTable::Count(), before);
}

}  // namespace
}  // namespace vantor::frame
