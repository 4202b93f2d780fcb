#include "server/StdPicture.h"

#include <gtest/gtest.h>

#include <vector>

#include "runtime/Error.h"
#include "tests/platform/GdiTestSupport.h"

namespace vantor::server {
namespace {

using vantor::platform::test::Canvas;

TEST(StdPicture, HiMetricSizes) {
  struct Case {
    int32_t pixels;
    int dpi;
    int32_t himetric;
  };
  const Case cases[] = {{16, 96, 423},   {1, 96, 26},    {32, 96, 847},  {100, 96, 2646},
                        {0, 96, 0},      {96, 96, 2540}, {16, 120, 339}, {3, 96, 79},
                        {-16, 96, -423}, {48, 96, 1270}};
  for (const auto& c : cases) {
    EXPECT_EQ(StdPicture::PixelsToHiMetric(c.pixels, c.dpi), c.himetric) << c.pixels;
    if (c.dpi == 96) {
      EXPECT_EQ(StdPicture::HiMetricToPixels(c.himetric), c.pixels) << c.pixels;
    }
  }
  auto p = StdPicture::FromPixels(16, 32, std::vector<uint32_t>(16 * 32));
  ASSERT_TRUE(p);
  EXPECT_EQ(p->get_Width(), 423);
  EXPECT_EQ(p->get_Height(), 847);
  EXPECT_EQ(p->get_Type(), PictureType::Bitmap);
  EXPECT_EQ(p->ClassName(), u"StdPicture");
  EXPECT_NE(p->get_Handle(), nullptr);
}

TEST(StdPicture, RefusesBadShapes) {
  struct Case {
    int32_t w, h;
    size_t n;
    PictureType type;
  };
  const Case cases[] = {
      {0, 1, 0, PictureType::Bitmap},         {2, 2, 3, PictureType::Bitmap},
      {-1, -1, 1, PictureType::Bitmap},       {1, 1, 1, PictureType::None},
      {40000, 1, 40000, PictureType::Bitmap}, {1, 1, 1, static_cast<PictureType>(2)}};
  for (const auto& c : cases) {
    Err().Clear();
    EXPECT_FALSE(StdPicture::FromPixels(c.w, c.h, std::vector<uint32_t>(c.n), c.type)) << c.w;
    EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  }
  Err().Clear();
  StdPicture empty;
  EXPECT_EQ(empty.get_Type(), PictureType::None);
  EXPECT_EQ(empty.get_Width(), 0);
  Canvas canvas(2, 2);
  EXPECT_FALSE(empty.Render(canvas.dc(), 0, 0, 2, 2, 0, 0, 0, 0));
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  Err().Clear();
}

// A 2x2 picture: A B on top, C D below.
constexpr uint32_t A = 0x00110000, B = 0x00002200, C = 0x00000033, D = 0x00444444;

std::shared_ptr<StdPicture> Quad() {
  return StdPicture::FromPixels(2, 2, std::vector<uint32_t>{A, B, C, D});
}

TEST(StdPicture, RenderUprightFlippedStretchedAndPart) {
  auto p = Quad();
  ASSERT_TRUE(p);
  const int32_t w = p->get_Width(), h = p->get_Height();  // 53 x 53
  struct Case {
    const char* what;
    int32_t cx, cy, xSrc, ySrc, cxSrc, cySrc;
    std::vector<uint32_t> expected;  // 4x4 canvas, row by row
  };
  const uint32_t W = 0x00FFFFFF;
  const Case cases[] = {
      {"upright", 2, 2, 0, h, w, -h, {A, B, W, W, C, D, W, W, W, W, W, W, W, W, W, W}},
      {"flipped", 2, 2, 0, 0, w, h, {C, D, W, W, A, B, W, W, W, W, W, W, W, W, W, W}},
      {"stretched", 4, 4, 0, h, w, -h, {A, A, B, B, A, A, B, B, C, C, D, D, C, C, D, D}},
      {"right column", 1, 2, w / 2, h, w / 2, -h, {B, W, W, W, D, W, W, W, W, W, W, W, W, W, W, W}},
      {"bottom row", 2, 1, 0, h / 2, w, -h / 2, {C, D, W, W, W, W, W, W, W, W, W, W, W, W, W, W}},
  };
  for (const auto& c : cases) {
    Canvas canvas(4, 4);
    ASSERT_TRUE(p->Render(canvas.dc(), 0, 0, c.cx, c.cy, c.xSrc, c.ySrc, c.cxSrc, c.cySrc))
        << c.what;
    std::vector<uint32_t> got;
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 4; ++x) got.push_back(canvas.At(x, y) & 0x00FFFFFF);
    EXPECT_EQ(got, c.expected) << c.what;
  }
}

TEST(StdPicture, PixelsCloneAndHandleDrawing) {
  auto p = Quad();
  ASSERT_TRUE(p);
  EXPECT_EQ(p->Pixels(), (std::vector<uint32_t>{A, B, C, D}));
  auto copy = p->Clone();
  ASSERT_TRUE(copy);
  EXPECT_TRUE(copy->SameAs(*p));
  EXPECT_NE(copy->get_Handle(), p->get_Handle());
  // Drawing into the handle is what the picture then holds.
  HDC dc = CreateCompatibleDC(nullptr);
  HGDIOBJ old = SelectObject(dc, p->get_Handle());
  SetPixelV(dc, 1, 1, 0x000000FF);
  SelectObject(dc, old);
  DeleteDC(dc);
  EXPECT_EQ(p->Pixels()[3] & 0x00FFFFFF, 0x00FF0000u);
  EXPECT_FALSE(copy->SameAs(*p));
  auto icon = StdPicture::FromPixels(2, 2, std::vector<uint32_t>{A, B, C, D}, PictureType::Icon);
  EXPECT_FALSE(icon->SameAs(*Quad()));
  Variant v;
  EXPECT_TRUE(p->DefaultValue(v));
  EXPECT_EQ(v.Type(), vbLong);
}

}  // namespace
}  // namespace vantor::server
