// The plain-memory kernels under the surface's own drawing: the blend rows
// against the formula written out per pixel, the exact division, lightness,
// and the scaler's windows.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "imaging/HandBlend.h"
#include "imaging/Scaler.h"

namespace vantor::imaging {
namespace {

// The hand blend as it is stated, one pixel at a time.
void Reference(uint8_t* d, const uint8_t* s, uint32_t k) {
  const uint32_t a = s[3];
  if (a == 0) return;
  if (k == 255 && a == 255) {
    std::memcpy(d, s, 4);
    return;
  }
  const uint32_t aa = a * k / 255, inv = 255 - aa;
  for (int c = 0; c < 4; ++c)
    d[c] = static_cast<uint8_t>(std::min((d[c] * inv + s[c] * k) / 255, 255u));
}

std::vector<uint8_t> RandomPixels(size_t count, std::mt19937& rng, bool premultiplied) {
  std::vector<uint8_t> px(count * 4);
  for (size_t i = 0; i < count; ++i) {
    const auto kind = static_cast<uint32_t>(rng() % 5);
    const uint32_t a = kind == 0 ? 0 : kind == 1 ? 255 : static_cast<uint32_t>(rng() % 256);
    px[i * 4 + 3] = static_cast<uint8_t>(a);
    for (int c = 0; c < 3; ++c) {
      px[i * 4 + c] = static_cast<uint8_t>(premultiplied ? (a == 0 ? 0 : rng() % (a + 1)) : rng());
    }
  }
  return px;
}

TEST(c32bppDIBBlend, DivisionBy255IsExactForEvery16BitValue) {
  for (uint32_t v = 0; v < 65536; ++v) ASSERT_EQ(DivideBy255(v), v / 255) << v;
}

TEST(c32bppDIBBlend, RowsMatchTheFormula) {
  std::mt19937 rng(5);
  for (uint32_t k : {255u, 254u, 200u, 128u, 127u, 64u, 2u, 1u}) {
    for (size_t count : {1u, 3u, 4u, 5u, 16u, 37u, 1000u}) {
      for (bool premultiplied : {true, false}) {
        const std::vector<uint8_t> src = RandomPixels(count, rng, premultiplied);
        std::vector<uint8_t> dst = RandomPixels(count, rng, true), expected = dst;
        for (size_t i = 0; i < count; ++i) Reference(&expected[i * 4], &src[i * 4], k);
        BlendRow(dst.data(), src.data(), count, k);
        ASSERT_EQ(dst, expected) << "k " << k << " count " << count << " pre " << premultiplied;
      }
    }
  }
}

TEST(c32bppDIBBlend, RunsOfTransparentAndOpaquePixels) {
  std::vector<uint8_t> dst(64, 0x55), src(64, 0);
  BlendRow(dst.data(), src.data(), 16, 255);
  EXPECT_EQ(dst, std::vector<uint8_t>(64, 0x55));
  for (size_t i = 0; i < 64; i += 4) {
    src[i] = 1;
    src[i + 1] = 2;
    src[i + 2] = 3;
    src[i + 3] = 255;
  }
  BlendRow(dst.data(), src.data(), 16, 0);  // nothing at opacity 0
  EXPECT_EQ(dst, std::vector<uint8_t>(64, 0x55));
  BlendRow(dst.data(), src.data(), 16, 255);
  EXPECT_EQ(dst, src);
}

TEST(c32bppDIBBlend, GrayRowsUseTheGreyAsSource) {
  std::mt19937 rng(6);
  const GrayWeights w = GrayFormula(1);
  const std::vector<uint8_t> src = RandomPixels(50, rng, true);
  std::vector<uint8_t> dst = RandomPixels(50, rng, true), expected = dst;
  for (size_t i = 0; i < 50; ++i) {
    const uint8_t* s = &src[i * 4];
    if (s[3] == 0) continue;
    const auto g = static_cast<uint8_t>(GrayOf(s, w));
    const uint8_t grey[4] = {g, g, g, s[3]};
    const uint32_t inv = 255 - s[3] * 180u / 255;
    for (int c = 0; c < 4; ++c) {
      expected[i * 4 + c] =
          static_cast<uint8_t>(std::min((expected[i * 4 + c] * inv + grey[c] * 180u) / 255, 255u));
    }
  }
  BlendRowGray(dst.data(), src.data(), 50, 180, w);
  EXPECT_EQ(dst, expected);
}

TEST(c32bppDIBBlend, LightTableAmounts) {
  struct Case {
    double percent;
    uint8_t alpha;
    int32_t amount;
  } cases[] = {
      {100, 255, 255}, {50, 255, 127}, {-50, 255, -127}, {1, 255, 2},
      {1, 100, 1},     {10, 128, 12},  {-10, 128, -12},  {0.5, 255, 1},
  };
  for (const Case& c : cases) {
    const LightTable table(c.percent);
    uint8_t px[4] = {100, 0, 200, c.alpha};
    for (int k = 0; k < 3; ++k) px[k] = std::min<uint8_t>(px[k], c.alpha);
    const uint8_t before[3] = {px[0], px[1], px[2]};
    table.ApplyRow(px, 1);
    for (int k = 0; k < 3; ++k) {
      EXPECT_EQ(px[k], std::clamp<int32_t>(before[k] + c.amount, 0, c.alpha))
          << c.percent << " alpha " << int{c.alpha};
    }
    EXPECT_EQ(px[3], c.alpha);
  }
}

// ---------------------------------------------------------------- scaler

struct Source {
  std::vector<uint8_t> bytes;
  PixelView view;
  Source(int32_t w, int32_t h) : bytes(static_cast<size_t>(w * h * 4)) {
    for (int32_t y = 0; y < h; ++y) {
      for (int32_t x = 0; x < w; ++x) {
        uint8_t* p = bytes.data() + static_cast<size_t>((h - 1 - y) * w + x) * 4;
        p[0] = static_cast<uint8_t>(x * 9);
        p[1] = static_cast<uint8_t>(y * 7);
        p[2] = static_cast<uint8_t>((x * y) % 256);
        p[3] = 255;
      }
    }
    view = PixelView{bytes.data(), w, h};
  }
};

TEST(c32bppDIBScaler, AWindowIsPartOfTheWhole) {
  Source src(13, 9);
  for (bool bilinear : {false, true}) {
    for (bool mirror : {false, true}) {
      ScaleRequest whole;
      whole.source = src.view;
      whole.srcX = 2;
      whole.srcY = 1;
      whole.srcWidth = 10;
      whole.srcHeight = 7;
      whole.destWidth = 31;
      whole.destHeight = 17;
      whole.mirrorX = mirror;
      whole.mirrorY = !mirror;
      whole.bilinear = bilinear;
      whole.windowWidth = 31;
      whole.windowHeight = 17;
      std::vector<uint32_t> all(31 * 17);
      ASSERT_TRUE(ScaleWindow(whole, all.data(), 31));
      ScaleRequest part = whole;
      part.windowX = 5;
      part.windowY = 3;
      part.windowWidth = 20;
      part.windowHeight = 11;
      std::vector<uint32_t> some(20 * 11);
      ASSERT_TRUE(ScaleWindow(part, some.data(), 20));
      for (int y = 0; y < 11; ++y) {
        for (int x = 0; x < 20; ++x) {
          ASSERT_EQ(some[static_cast<size_t>(y * 20 + x)],
                    all[static_cast<size_t>((y + 3) * 31 + x + 5)])
              << bilinear << mirror << " " << x << "," << y;
        }
      }
    }
  }
}

TEST(c32bppDIBScaler, OneToOneIsACopyAndMirrorsTurnOver) {
  Source src(6, 4);
  for (bool bilinear : {false, true}) {
    ScaleRequest r;
    r.source = src.view;
    r.srcWidth = r.destWidth = r.windowWidth = 6;
    r.srcHeight = r.destHeight = r.windowHeight = 4;
    r.bilinear = bilinear;
    r.mirrorX = true;
    std::vector<uint32_t> out(24);
    ASSERT_TRUE(ScaleWindow(r, out.data(), 6));
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 6; ++x) {
        uint32_t expected;
        std::memcpy(&expected, src.view.Row(y) + (5 - x) * 4, 4);
        EXPECT_EQ(out[static_cast<size_t>(y * 6 + x)], expected) << bilinear << x << "," << y;
      }
    }
  }
}

TEST(c32bppDIBScaler, NearestTruncates) {
  Source src(5, 1);
  ScaleRequest r;
  r.source = src.view;
  r.srcWidth = 5;
  r.srcHeight = 1;
  r.destWidth = r.windowWidth = 3;
  r.destHeight = r.windowHeight = 1;
  std::vector<uint32_t> out(3);
  ASSERT_TRUE(ScaleWindow(r, out.data(), 3));
  // 5 / 3 per step: source columns 0, 1 (1.67) and 3 (3.33).
  EXPECT_EQ(out[0] & 0xFF, 0u);
  EXPECT_EQ(out[1] & 0xFF, 9u);
  EXPECT_EQ(out[2] & 0xFF, 27u);
}

TEST(c32bppDIBScaler, RefusesWhatDoesNotHoldTogether) {
  Source src(4, 4);
  ScaleRequest good;
  good.source = src.view;
  good.srcWidth = good.srcHeight = 4;
  good.destWidth = good.destHeight = good.windowWidth = good.windowHeight = 8;
  std::vector<uint32_t> out(64);
  ASSERT_TRUE(ScaleWindow(good, out.data(), 8));
  EXPECT_FALSE(ScaleWindow(good, nullptr, 8));
  EXPECT_FALSE(ScaleWindow(good, out.data(), 7));
  auto bad = [&](auto change) {
    ScaleRequest r = good;
    change(r);
    return !ScaleWindow(r, out.data(), 8);
  };
  EXPECT_TRUE(bad([](ScaleRequest& r) { r.srcX = 1; }));  // past the source's edge
  EXPECT_TRUE(bad([](ScaleRequest& r) { r.srcWidth = 0; }));
  EXPECT_TRUE(bad([](ScaleRequest& r) { r.destHeight = 0; }));
  EXPECT_TRUE(bad([](ScaleRequest& r) { r.windowX = 1; }));  // past the destination's
  EXPECT_TRUE(bad([](ScaleRequest& r) { r.windowY = -1; }));
  EXPECT_TRUE(bad([](ScaleRequest& r) { r.source = PixelView{}; }));
}

}  // namespace
}  // namespace vantor::imaging
