#include <gtest/gtest.h>

#include <vector>

#include "platform/Blend.h"
#include "platform/Gdi.h"
#include "tests/platform/GdiTestSupport.h"

namespace {

using vantor::platform::test::Canvas;

// Each pixel a distinct value: 0x00YYXX11 style.
void Pattern(Canvas& c, int w, int h) {
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) c.At(x, y) = static_cast<uint32_t>((y << 16) | (x << 8) | 0x11);
  }
}

TEST(GdiBlit, RopsBetweenDcs) {
  struct Case {
    DWORD rop;
    uint32_t expected;
  };
  const uint32_t s = 0x00F0F00F, d = 0x00CC33AA;
  const Case cases[] = {
      {SRCCOPY, s},          {SRCPAINT, s | d},
      {SRCAND, s & d},       {SRCINVERT, s ^ d},
      {NOTSRCCOPY, ~s},      {DSTINVERT, ~d},
      {BLACKNESS, 0},        {WHITENESS, 0xFFFFFFFF},
      {PATCOPY, 0x00FF0000}, {PATINVERT, 0x00FF0000 ^ d},
      {SRCERASE, s & ~d},    {MERGEPAINT, ~s | d},
  };
  for (const Case& k : cases) {
    Canvas src(2, 2, s), dst(2, 2, d);
    HBRUSH red = CreateSolidBrush(RGB(255, 0, 0));
    HGDIOBJ old = SelectObject(dst.dc(), red);
    EXPECT_TRUE(BitBlt(dst.dc(), 0, 0, 2, 2, src.dc(), 0, 0, k.rop)) << std::hex << k.rop;
    EXPECT_EQ(dst.At(1, 1), k.expected) << std::hex << k.rop;
    SelectObject(dst.dc(), old);
    DeleteObject(red);
  }
}

TEST(GdiBlit, CopyKeepsAlphaAndClipsToTheSource) {
  Canvas src(3, 3, 0x80112233), dst(5, 5, 0);
  EXPECT_TRUE(BitBlt(dst.dc(), 1, 1, 4, 4, src.dc(), 1, 1, SRCCOPY));
  EXPECT_EQ(dst.At(1, 1), 0x80112233u);
  EXPECT_EQ(dst.At(2, 2), 0x80112233u);
  // Past the source's edge nothing is copied.
  EXPECT_EQ(dst.At(3, 3), 0u);
  EXPECT_EQ(dst.At(0, 0), 0u);
}

TEST(GdiBlit, ScrollingWithinOneDcReadsTheOldPixels) {
  Canvas c(6, 1);
  Pattern(c, 6, 1);
  EXPECT_TRUE(BitBlt(c.dc(), 1, 0, 5, 1, c.dc(), 0, 0, SRCCOPY));
  EXPECT_EQ(c.At(1, 0), 0x00000011u);
  EXPECT_EQ(c.At(5, 0), 0x00000411u);
  Pattern(c, 6, 1);
  BitBlt(c.dc(), 0, 0, 5, 1, c.dc(), 1, 0, SRCCOPY);
  EXPECT_EQ(c.At(0, 0), 0x00000111u);
  EXPECT_EQ(c.At(4, 0), 0x00000511u);
}

TEST(GdiBlit, StretchNearestRepeatsAndDropsAsTheErrorTermSays) {
  Canvas src(4, 1), big(8, 1), small(2, 1), odd(3, 1);
  Pattern(src, 4, 1);
  SetStretchBltMode(big.dc(), COLORONCOLOR);
  SetStretchBltMode(small.dc(), COLORONCOLOR);
  SetStretchBltMode(odd.dc(), COLORONCOLOR);
  StretchBlt(big.dc(), 0, 0, 8, 1, src.dc(), 0, 0, 4, 1, SRCCOPY);
  for (int x = 0; x < 8; ++x) EXPECT_EQ(big.At(x, 0) >> 8, static_cast<uint32_t>(x / 2)) << x;
  // Shrinking takes the pixel half a pixel before the end of each span:
  // 4 -> 2 takes 1 and 3, 4 -> 3 takes 0 (at 0.83), 2 (at 2.17) and 3.
  StretchBlt(small.dc(), 0, 0, 2, 1, src.dc(), 0, 0, 4, 1, SRCCOPY);
  EXPECT_EQ(small.At(0, 0) >> 8, 1u);
  EXPECT_EQ(small.At(1, 0) >> 8, 3u);
  StretchBlt(odd.dc(), 0, 0, 3, 1, src.dc(), 0, 0, 4, 1, SRCCOPY);
  EXPECT_EQ(odd.At(0, 0) >> 8, 0u);
  EXPECT_EQ(odd.At(1, 0) >> 8, 2u);
  EXPECT_EQ(odd.At(2, 0) >> 8, 3u);
  // Growing takes the pixel under the centre: 2 -> 7 gives 0 0 0 1 1 1 1
  // (the centre of pixel 3 falls at 1.0 exactly and goes down).
  Canvas two(2, 1), seven(7, 1);
  Pattern(two, 2, 1);
  SetStretchBltMode(seven.dc(), COLORONCOLOR);
  StretchBlt(seven.dc(), 0, 0, 7, 1, two.dc(), 0, 0, 2, 1, SRCCOPY);
  const uint32_t grown[] = {0, 0, 0, 0, 1, 1, 1};
  for (int x = 0; x < 7; ++x) EXPECT_EQ(seven.At(x, 0) >> 8, grown[x]) << x;
  // Rows shrink from the bottom up: 4 -> 3 takes rows 0, 1 and 3.
  Canvas column(1, 4), short_column(1, 3);
  for (int y = 0; y < 4; ++y) column.At(0, y) = static_cast<uint32_t>(y);
  SetStretchBltMode(short_column.dc(), COLORONCOLOR);
  StretchBlt(short_column.dc(), 0, 0, 1, 3, column.dc(), 0, 0, 1, 4, SRCCOPY);
  EXPECT_EQ(short_column.At(0, 0), 0u);
  EXPECT_EQ(short_column.At(0, 1), 1u);
  EXPECT_EQ(short_column.At(0, 2), 3u);
}

TEST(GdiBlit, StretchMirrorsOnOppositeSigns) {
  Canvas src(4, 1), dst(4, 1);
  Pattern(src, 4, 1);
  // A negative width runs left from the starting pixel, which it includes.
  StretchBlt(dst.dc(), 3, 0, -4, 1, src.dc(), 0, 0, 4, 1, SRCCOPY);
  EXPECT_EQ(dst.At(0, 0) >> 8, 3u);
  EXPECT_EQ(dst.At(3, 0) >> 8, 0u);
}

TEST(GdiBlit, HalftoneAveragesAndAndScansMerge) {
  Canvas src(2, 2, 0), dst(1, 1);
  src.At(0, 0) = 0x00FF0000;
  src.At(1, 0) = 0x0000FF00;
  src.At(0, 1) = 0x000000FF;
  src.At(1, 1) = 0x00FFFFFF;
  // HALFTONE interpolates at positions stepped by the ratio: 2 -> 1 lands
  // on the first pixel exactly.
  SetStretchBltMode(dst.dc(), HALFTONE);
  StretchBlt(dst.dc(), 0, 0, 1, 1, src.dc(), 0, 0, 2, 2, SRCCOPY);
  EXPECT_EQ(dst.At(0, 0), 0x00FF0000u);
  // 2 -> 5 along a row: positions 0, 0.4, 0.8, 1.2 (past the last pixel:
  // held), 1.6; each channel rounded.
  Canvas row(2, 1, 0), wide(5, 1, 0);
  row.At(0, 0) = 0x00000000;
  row.At(1, 0) = 0x00FF6401;
  SetStretchBltMode(wide.dc(), HALFTONE);
  StretchBlt(wide.dc(), 0, 0, 5, 1, row.dc(), 0, 0, 2, 1, SRCCOPY);
  EXPECT_EQ(wide.At(0, 0), 0x00000000u);
  EXPECT_EQ(wide.At(1, 0), 0x00662800u);  // 102, 40, 0.4 -> 0
  EXPECT_EQ(wide.At(2, 0), 0x00CC5001u);  // 204, 80, 0.8 -> 1
  EXPECT_EQ(wide.At(3, 0), 0x00FF6401u);
  EXPECT_EQ(wide.At(4, 0), 0x00FF6401u);
  SetStretchBltMode(dst.dc(), BLACKONWHITE);
  StretchBlt(dst.dc(), 0, 0, 1, 1, src.dc(), 0, 0, 2, 2, SRCCOPY);
  EXPECT_EQ(dst.At(0, 0), 0u);
  SetStretchBltMode(dst.dc(), WHITEONBLACK);
  StretchBlt(dst.dc(), 0, 0, 1, 1, src.dc(), 0, 0, 2, 2, SRCCOPY);
  EXPECT_EQ(dst.At(0, 0), 0x00FFFFFFu);
  EXPECT_EQ(SetStretchBltMode(dst.dc(), 0), 0);
  EXPECT_EQ(GetStretchBltMode(dst.dc()), WHITEONBLACK);
}

TEST(GdiBlit, StretchDibitsReadsBottomUpRowsAndColourTables) {
  Canvas dst(2, 2, 0);
  struct {
    BITMAPINFOHEADER h;
    RGBQUAD colors[2];
  } info{};
  info.h.biSize = sizeof(BITMAPINFOHEADER);
  info.h.biWidth = 2;
  info.h.biHeight = 2;  // bottom-up
  info.h.biPlanes = 1;
  info.h.biBitCount = 1;
  info.colors[0] = RGBQUAD{0, 0, 255, 0};                 // red
  info.colors[1] = RGBQUAD{255, 0, 0, 0};                 // blue
  const uint8_t bits[] = {0x40, 0, 0, 0, 0x80, 0, 0, 0};  // bottom row: 0 1; top row: 1 0
  const int lines = StretchDIBits(dst.dc(), 0, 0, 2, 2, 0, 0, 2, 2, bits,
                                  reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS, SRCCOPY);
  EXPECT_EQ(lines, 2);
  EXPECT_EQ(dst.At(0, 0), 0x000000FFu);
  EXPECT_EQ(dst.At(1, 0), 0x00FF0000u);
  EXPECT_EQ(dst.At(0, 1), 0x00FF0000u);
  EXPECT_EQ(dst.At(1, 1), 0x000000FFu);
  // 24 bits, one row of the source, enlarged.
  BITMAPINFO i24{};
  i24.bmiHeader = BITMAPINFOHEADER{sizeof(BITMAPINFOHEADER), 1, -1, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  const uint8_t px[] = {1, 2, 3, 0};
  EXPECT_EQ(StretchDIBits(dst.dc(), 0, 0, 2, 2, 0, 0, 1, 1, px, &i24, DIB_RGB_COLORS, SRCCOPY), 1);
  EXPECT_EQ(dst.At(1, 1), 0x00030201u);
  EXPECT_EQ(StretchDIBits(dst.dc(), 0, 0, 2, 2, 0, 0, 1, 1, nullptr, &i24, DIB_RGB_COLORS, SRCCOPY),
            0);
  i24.bmiHeader.biBitCount = 7;
  EXPECT_EQ(StretchDIBits(dst.dc(), 0, 0, 2, 2, 0, 0, 1, 1, px, &i24, DIB_RGB_COLORS, SRCCOPY), 0);
}

TEST(GdiBlit, SetDibitsToDeviceCopiesOneToOne) {
  Canvas dst(3, 3, 0);
  BITMAPINFO info{};
  info.bmiHeader = BITMAPINFOHEADER{sizeof(BITMAPINFOHEADER), 2, 2, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const uint32_t bits[] = {0x000000AA, 0x000000BB, 0x000000CC, 0x000000DD};  // bottom row first
  EXPECT_EQ(SetDIBitsToDevice(dst.dc(), 1, 1, 2, 2, 0, 0, 0, 2, bits, &info, DIB_RGB_COLORS), 2);
  EXPECT_EQ(dst.At(1, 1), 0xCCu);
  EXPECT_EQ(dst.At(2, 2), 0xBBu);
}

TEST(GdiBlit, Div255MatchesRoundedDivisionEverywhere) {
  for (uint32_t v = 0; v <= 255 * 255; ++v) {
    ASSERT_EQ(vantor::platform::Div255(v), (v + 127) / 255) << v;
  }
}

// The platform's arithmetic, one channel at a time.
uint32_t OverReference(uint32_t d, uint32_t s, uint32_t constant) {
  uint32_t out = 0;
  uint32_t sa = ((s >> 24) * constant + 127) / 255;
  for (int shift = 0; shift < 32; shift += 8) {
    const uint32_t sc = (((s >> shift) & 0xFF) * constant + 127) / 255;
    const uint32_t dc = (d >> shift) & 0xFF;
    out |= std::min<uint32_t>(sc + (dc * (255 - sa) + 127) / 255, 255) << shift;
  }
  return out;
}

TEST(GdiBlit, BlendKernelsMatchThePlatformArithmetic) {
  std::vector<uint32_t> src, dst;
  uint32_t seed = 12345;
  auto next = [&] {
    seed = seed * 1103515245 + 12345;
    return seed >> 8;
  };
  for (int i = 0; i < 4099; ++i) {
    const uint32_t a = (i % 7 == 0) ? 255 : (i % 11 == 0) ? 0 : next() & 0xFF;
    const uint32_t r = a == 0 ? 0 : next() % (a + 1), g = a == 0 ? 0 : next() % (a + 1),
                   b = a == 0 ? 0 : next() % (a + 1);
    src.push_back((a << 24) | (r << 16) | (g << 8) | b);
    dst.push_back(next());
  }
  for (uint32_t constant : {255u, 200u, 128u, 1u, 0u}) {
    std::vector<uint32_t> out = dst;
    vantor::platform::BlendPremultipliedConstant(out.data(), src.data(), out.size(), constant);
    for (size_t i = 0; i < out.size(); ++i) {
      ASSERT_EQ(out[i], OverReference(dst[i], src[i], constant)) << i << " " << constant;
    }
    out = dst;
    vantor::platform::BlendConstant(out.data(), src.data(), out.size(), constant);
    for (size_t i = 0; i < out.size(); ++i) {
      uint32_t expected = 0;
      for (int shift = 0; shift < 32; shift += 8) {
        expected |= ((((src[i] >> shift) & 0xFF) * constant +
                      ((dst[i] >> shift) & 0xFF) * (255 - constant) + 127) /
                     255)
                    << shift;
      }
      ASSERT_EQ(out[i], expected) << i << " " << constant;
    }
  }
}

TEST(GdiBlit, AlphaBlendConstantAndPerPixel) {
  Canvas src(2, 1, 0x00FF0000), dst(2, 1, 0x000000FF);
  BLENDFUNCTION half{AC_SRC_OVER, 0, 128, 0};
  EXPECT_TRUE(AlphaBlend(dst.dc(), 0, 0, 2, 1, src.dc(), 0, 0, 2, 1, half));
  // red: (255*128 + 127)/255 = 128; blue: (255*127 + 127)/255 = 127
  EXPECT_EQ(dst.At(0, 0), 0x0080007Fu);
  src.At(0, 0) = 0x80800000;  // half-transparent red, premultiplied
  dst.Fill(0x000000FF);
  BLENDFUNCTION per{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
  EXPECT_TRUE(AlphaBlend(dst.dc(), 0, 0, 1, 1, src.dc(), 0, 0, 1, 1, per));
  // blue: (255 * 127 + 127) / 255 = 127; alpha 0x80 + 0
  EXPECT_EQ(dst.At(0, 0), 0x8080007Fu);
  EXPECT_EQ(dst.At(1, 0), 0x000000FFu);
  // Stretching picks pixels as StretchBlt does.
  Canvas wide(4, 1, 0);
  src.At(0, 0) = 0xFF010203;
  src.At(1, 0) = 0xFF040506;
  EXPECT_TRUE(AlphaBlend(wide.dc(), 0, 0, 4, 1, src.dc(), 0, 0, 2, 1, per));
  EXPECT_EQ(wide.At(1, 0), 0xFF010203u);
  EXPECT_EQ(wide.At(2, 0), 0xFF040506u);
}

TEST(GdiBlit, AlphaBlendRefusesWhatThePlatformRefuses) {
  Canvas src(2, 2), dst(2, 2);
  BLENDFUNCTION ok{AC_SRC_OVER, 0, 255, 0};
  EXPECT_FALSE(AlphaBlend(dst.dc(), 0, 0, 2, 2, src.dc(), 1, 1, 2, 2, ok));
  EXPECT_FALSE(AlphaBlend(dst.dc(), 0, 0, -2, 2, src.dc(), 0, 0, 2, 2, ok));
  EXPECT_FALSE(AlphaBlend(dst.dc(), 0, 0, 2, 2, nullptr, 0, 0, 2, 2, ok));
  BLENDFUNCTION bad_op{1, 0, 255, 0};
  EXPECT_FALSE(AlphaBlend(dst.dc(), 0, 0, 2, 2, src.dc(), 0, 0, 2, 2, bad_op));
  BLENDFUNCTION bad_format{AC_SRC_OVER, 0, 255, 2};
  EXPECT_FALSE(AlphaBlend(dst.dc(), 0, 0, 2, 2, src.dc(), 0, 0, 2, 2, bad_format));
  EXPECT_FALSE(AlphaBlend(dst.dc(), 0, 0, 2, 2, dst.dc(), 0, 0, 2, 2, ok));
}

TEST(GdiBlit, GradientFillHorizontalAndVertical) {
  Canvas c(256, 4, 0);
  TRIVERTEX v[2] = {{0, 0, 0, 0, 0, 0}, {256, 2, 0xFF00, 0x8000, 0, 0xFF00}};
  GRADIENT_RECT r{0, 1};
  EXPECT_TRUE(GradientFill(c.dc(), v, 2, &r, 1, GRADIENT_FILL_RECT_H));
  // channel = (c0 * (len - pos) + c1 * pos) / len / 256
  EXPECT_EQ(c.At(0, 0), 0u);
  EXPECT_EQ(c.At(255, 1), 0xFEFE7F00u);
  EXPECT_EQ(c.At(128, 0), 0x7F7F4000u);
  EXPECT_EQ(c.At(128, 2), 0u);  // the bottom row is left out
  // The vertices may come in any order.
  Canvas vert(1, 4, 0);
  TRIVERTEX w[2] = {{1, 4, 0, 0, 0xFF00, 0}, {0, 0, 0, 0, 0, 0}};
  EXPECT_TRUE(GradientFill(vert.dc(), w, 2, &r, 1, GRADIENT_FILL_RECT_V));
  EXPECT_EQ(vert.At(0, 0), 0u);
  EXPECT_EQ(vert.At(0, 3), 0x000000BFu);  // 0xFF00 * 3 / 4 / 256
  GRADIENT_RECT bad{0, 5};
  EXPECT_FALSE(GradientFill(c.dc(), v, 2, &bad, 1, GRADIENT_FILL_RECT_H));
  EXPECT_FALSE(GradientFill(c.dc(), v, 2, &r, 1, GRADIENT_FILL_TRIANGLE + 1));
  EXPECT_FALSE(GradientFill(c.dc(), nullptr, 2, &r, 1, GRADIENT_FILL_RECT_H));
}

TEST(GdiBlit, TransparentBltSkipsTheKeyColour) {
  Canvas src(2, 1, 0x00FF00FF), dst(2, 1, 0x00123456);
  src.At(1, 0) = 0x00010203;
  EXPECT_TRUE(TransparentBlt(dst.dc(), 0, 0, 2, 1, src.dc(), 0, 0, 2, 1, RGB(255, 0, 255)));
  EXPECT_EQ(dst.At(0, 0), 0x00123456u);
  EXPECT_EQ(dst.At(1, 0), 0x00010203u);
  EXPECT_FALSE(TransparentBlt(dst.dc(), 0, 0, -2, 1, src.dc(), 0, 0, 2, 1, 0));
}

TEST(GdiBlit, GarbageSizesFailQuietly) {
  Canvas a(2, 2), b(2, 2);
  EXPECT_FALSE(BitBlt(a.dc(), 0, 0, 2000000000, 2, b.dc(), 0, 0, SRCCOPY));
  EXPECT_FALSE(BitBlt(a.dc(), 0, 0, 2, 2, nullptr, 0, 0, SRCCOPY));
  EXPECT_TRUE(BitBlt(a.dc(), 0, 0, 2, 2, nullptr, 0, 0, BLACKNESS));
  EXPECT_FALSE(StretchBlt(a.dc(), 0, 0, 2, 2, b.dc(), 0, 0, 0, 2, SRCCOPY));
  EXPECT_TRUE(BitBlt(a.dc(), -1000000, -1000000, 100, 100, b.dc(), 5000, 5000, SRCCOPY));
  EXPECT_FALSE(PatBlt(nullptr, 0, 0, 1, 1, PATCOPY));
  EXPECT_FALSE(PatBlt(a.dc(), 0, 0, 1, 1, SRCCOPY));
}

}  // namespace

namespace {

TEST(GdiBlit, ScrollingUnderAComplexClipReadsTheOldPixels) {
  for (int dy : {-1, 1}) {
    Canvas c(4, 4);
    Pattern(c, 4, 4);
    Canvas expected(4, 4);
    Pattern(expected, 4, 4);
    HRGN clip = CreateRectRgn(0, 0, 2, 4);
    HRGN right = CreateRectRgn(3, 0, 4, 4);
    CombineRgn(clip, clip, right, RGN_OR);
    SelectClipRgn(c.dc(), clip);
    BitBlt(c.dc(), 1, dy, 3, 4, c.dc(), 0, 0, SRCCOPY);
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 4; ++x) {
        const int sx = x - 1, sy = y - dy;
        const bool drawn = x != 2 && sx >= 0 && sy >= 0 && sy < 4 && x >= 1;
        const uint32_t want = drawn ? expected.At(sx, sy) : expected.At(x, y);
        EXPECT_EQ(c.At(x, y), want) << x << "," << y << " dy " << dy;
      }
    }
    DeleteObject(clip);
    DeleteObject(right);
  }
}

}  // namespace

namespace {

TEST(GdiBlit, HalftoneMirroredReadsTheSourceBackwards) {
  Canvas src(2, 1, 0), dst(5, 1, 0);
  src.At(1, 0) = 0x00FF6401;
  SetStretchBltMode(dst.dc(), HALFTONE);
  // Starting at pixel 4 and running left, over the source read right to left.
  StretchBlt(dst.dc(), 4, 0, -5, 1, src.dc(), 0, 0, 2, 1, SRCCOPY);
  EXPECT_EQ(dst.At(0, 0), 0x00FF6401u);
  EXPECT_EQ(dst.At(1, 0), 0x00993C01u);  // 255 - 102, 100 - 40, 1 - 0.4 -> 1
  EXPECT_EQ(dst.At(4, 0), 0x00000000u);
}

TEST(GdiBlit, TransparentBltShrinksWithTheDcStretchMode) {
  // Two rows into one: BLACKONWHITE (the default) merges them with AND, so
  // red over black gives black, and the key is compared after merging.
  Canvas src(2, 2, 0x00FF00FF), dst(2, 1, 0x00123456);
  src.At(0, 0) = 0x00C80000;
  src.At(0, 1) = 0x00000000;
  EXPECT_TRUE(TransparentBlt(dst.dc(), 0, 0, 2, 1, src.dc(), 0, 0, 2, 2, RGB(255, 0, 255)));
  EXPECT_EQ(dst.At(0, 0), 0u);
  EXPECT_EQ(dst.At(1, 0), 0x00123456u);
  SetStretchBltMode(dst.dc(), COLORONCOLOR);
  dst.Fill(0x00123456);
  TransparentBlt(dst.dc(), 0, 0, 2, 1, src.dc(), 0, 0, 2, 2, RGB(255, 0, 255));
  EXPECT_EQ(dst.At(0, 0), 0x00C80000u);  // rows shrink from the bottom: row 0 kept
}

}  // namespace
