// Render through memory DCs: the system's AlphaBlend and our own blend on the
// same pixels, the argument rules (opacity, mirroring, centring, rotation,
// light, grey), scaling, the host-surface target, text, the drop shadow, and
// the GDI+ gateway's plain logic.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <random>

#include "imaging/HandBlend.h"
#include "imaging/c32bppDIB.h"
#include "imaging/cGDIPlus.h"
#include "tests/platform/GdiTestSupport.h"

namespace vantor::imaging {
namespace {

using platform::test::Canvas;

void Fill(c32bppDIB& s, int32_t w, int32_t h, const std::function<uint32_t(int, int)>& f,
          ENUM_ALPHA_TYPE kind = Alpha_Complex) {
  ASSERT_TRUE(s.InitializeDIB(w, h));
  for (int y = 0; y < h; ++y) {
    auto* row = reinterpret_cast<uint32_t*>(const_cast<uint8_t*>(s.View().Row(y)));
    for (int x = 0; x < w; ++x) row[x] = f(x, y);
  }
  s.put_Alpha(kind);
}

uint32_t At(const c32bppDIB& s, int x, int y) {
  uint32_t p;
  std::memcpy(&p, s.View().Row(y) + x * 4, 4);
  return p;
}

// A pre-multiplied pixel from a straight colour and alpha.
uint32_t Pre(uint32_t rgb, uint32_t a) {
  uint32_t out = a << 24;
  for (int k = 0; k < 3; ++k) out |= (((rgb >> (8 * k)) & 0xFF) * a / 255) << (8 * k);
  return out;
}

int MaxChannelDifference(uint32_t a, uint32_t b) {
  int worst = 0;
  for (int k = 0; k < 4; ++k) {
    worst = std::max(worst, std::abs(static_cast<int>((a >> (8 * k)) & 0xFF) -
                                     static_cast<int>((b >> (8 * k)) & 0xFF)));
  }
  return worst;
}

// A random picture with every kind of alpha, and a random background.
void RandomPicture(c32bppDIB& s, int w, int h, unsigned seed) {
  std::mt19937 rng(seed);
  Fill(s, w, h, [&](int, int) {
    const uint32_t kind = rng() % 4;
    const uint32_t a = kind == 0 ? 0 : kind == 1 ? 255 : rng() % 256;
    return Pre(rng() & 0xFFFFFF, a);
  });
}

void RandomBackground(Canvas& c, int w, int h, unsigned seed) {
  std::mt19937 rng(seed);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) c.At(x, y) = 0xFF000000u | (rng() & 0xFFFFFF);
  }
}

bool SameCanvas(const Canvas& a, const Canvas& b, int w, int h) {
  return std::memcmp(a.bits(), b.bits(), static_cast<size_t>(w * h * 4)) == 0;
}

// ---------------------------------------------------------------- paths

TEST(c32bppDIBRender, AlphaBlendAndHandBlendAgree) {
  constexpr int W = 40, H = 30;
  c32bppDIB s;
  RandomPicture(s, 23, 17, 1);
  for (int32_t opacity : {100, 75, 50, 1}) {
    Canvas system(W, H), hand(W, H);
    RandomBackground(system, W, H, 2);
    RandomBackground(hand, W, H, 2);
    s.put_isAlphaBlendFriendly(true);
    ASSERT_TRUE(s.Render(system.dc(), 5, 4, 0, 0, 0, 0, 0, 0, opacity));
    s.put_isAlphaBlendFriendly(false);
    ASSERT_TRUE(s.Render(hand.dc(), 5, 4, 0, 0, 0, 0, 0, 0, opacity));
    int worst = 0;
    for (int y = 0; y < H; ++y) {
      for (int x = 0; x < W; ++x) {
        worst = std::max(worst, MaxChannelDifference(system.At(x, y), hand.At(x, y)));
      }
    }
    // The system rounds each product to nearest, our blend truncates.
    EXPECT_LE(worst, 2) << opacity;
  }
}

TEST(c32bppDIBRender, HandBlendFormula) {
  // One source pixel (alpha 200) over one background at opacity 50: k = 127,
  // a' = 200 * 127 / 255 = 99, channel = (d * 156 + s * 127) / 255.
  c32bppDIB s;
  Fill(s, 1, 1, [](int, int) { return 0xC8643214u; });
  s.put_isAlphaBlendFriendly(false);
  Canvas c(1, 1, 0xFF808080u);
  ASSERT_TRUE(s.Render(c.dc(), 0, 0, 0, 0, 0, 0, 0, 0, 50));
  auto mix = [](uint32_t d, uint32_t src) { return (d * 156 + src * 127) / 255; };
  const uint32_t expected =
      (mix(0xFF, 0xC8) << 24) | (mix(0x80, 0x64) << 16) | (mix(0x80, 0x32) << 8) | mix(0x80, 0x14);
  EXPECT_EQ(c.At(0, 0), expected);
}

TEST(c32bppDIBRender, OpacityRules) {
  c32bppDIB s;
  RandomPicture(s, 9, 7, 3);
  s.put_isAlphaBlendFriendly(false);
  struct Case {
    int32_t given, same;
  } cases[] = {{200, 100}, {150, 50}, {101, 1}, {-50, 50}, {300, 100}};
  for (const Case& c : cases) {
    Canvas a(12, 10), b(12, 10);
    RandomBackground(a, 12, 10, 4);
    RandomBackground(b, 12, 10, 4);
    if (c.given < 1) {
      // Below 1 nothing is drawn, and a loaded surface still says yes.
      EXPECT_TRUE(s.Render(a.dc(), 1, 1, 0, 0, 0, 0, 0, 0, c.given));
      EXPECT_TRUE(SameCanvas(a, b, 12, 10)) << c.given;
      continue;
    }
    ASSERT_TRUE(s.Render(a.dc(), 1, 1, 0, 0, 0, 0, 0, 0, c.given));
    ASSERT_TRUE(s.Render(b.dc(), 1, 1, 0, 0, 0, 0, 0, 0, c.same));
    EXPECT_TRUE(SameCanvas(a, b, 12, 10)) << c.given;
  }
  Canvas a(12, 10), b(12, 10);
  EXPECT_TRUE(s.Render(a.dc(), 0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_TRUE(SameCanvas(a, b, 12, 10));
  c32bppDIB empty;
  EXPECT_FALSE(empty.Render(a.dc(), 0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_FALSE(empty.Render(a.dc(), 0, 0));
  EXPECT_FALSE(s.Render(nullptr, 0, 0));  // no DC and no host surface
}

TEST(c32bppDIBRender, MirroringByNegativeSizes) {
  c32bppDIB s;
  // 3 x 2 opaque, every pixel its own colour.
  Fill(
      s, 3, 2, [](int x, int y) { return 0xFF000000u | static_cast<uint32_t>(y * 16 + x + 1); },
      Alpha_None);
  struct Case {
    int32_t dw, dh, sw, sh;
    bool flipX, flipY;
  } cases[] = {
      {0, 0, -3, 0, true, false},  // a negative source width mirrors
      {-3, 0, 0, 0, true, false},  // so does a negative destination width
      {0, -2, 0, 0, false, true}, {0, 0, 0, -2, false, true},
      {0, 0, -3, -2, true, true}, {-3, 0, -3, 0, false, false},  // two negatives cancel
  };
  for (bool friendly : {true, false}) {
    s.put_isAlphaBlendFriendly(friendly);
    for (const Case& c : cases) {
      Canvas canvas(6, 5);
      ASSERT_TRUE(s.Render(canvas.dc(), 1, 1, c.dw, c.dh, 0, 0, c.sw, c.sh));
      for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
          const int sx = c.flipX ? 2 - x : x, sy = c.flipY ? 1 - y : y;
          EXPECT_EQ(canvas.At(1 + x, 1 + y), At(s, sx, sy))
              << c.dw << " " << c.dh << " " << c.sw << " " << c.sh << " at " << x << "," << y;
        }
      }
      EXPECT_EQ(canvas.At(0, 0), 0x00FFFFFFu);
      EXPECT_EQ(canvas.At(4, 1), 0x00FFFFFFu);
    }
  }
}

TEST(c32bppDIBRender, SourceRectangleIsCutAtTheEdge) {
  c32bppDIB s;
  Fill(
      s, 4, 4, [](int x, int y) { return 0xFF000000u | static_cast<uint32_t>(y * 16 + x + 1); },
      Alpha_None);
  Canvas canvas(10, 10);
  // From (2, 1), asking for 5 x 5: 2 x 3 remain and are drawn 1:1.
  ASSERT_TRUE(s.Render(canvas.dc(), 0, 0, 2, 3, 2, 1, 5, 5));
  EXPECT_EQ(canvas.At(0, 0), At(s, 2, 1));
  EXPECT_EQ(canvas.At(1, 2), At(s, 3, 3));
  EXPECT_EQ(canvas.At(2, 0), 0x00FFFFFFu);
  EXPECT_FALSE(s.Render(canvas.dc(), 0, 0, 0, 0, 4, 0));         // nothing left of the source
  ASSERT_TRUE(s.Render(canvas.dc(), 5, 5, 1, 1, -3, -3, 1, 1));  // negatives start at 0
  EXPECT_EQ(canvas.At(5, 5), At(s, 0, 0));
}

TEST(c32bppDIBRender, CenterOnDestXY) {
  c32bppDIB s;
  Fill(
      s, 4, 6, [](int, int) { return 0xFF0000FFu; }, Alpha_None);
  for (bool friendly : {true, false}) {
    s.put_isAlphaBlendFriendly(friendly);
    Canvas canvas(20, 20);
    ASSERT_TRUE(
        s.Render(canvas.dc(), 10, 10, 0, 0, 0, 0, 0, 0, 100, true, true, nullptr, -1, 0, 0, true));
    for (int y = 0; y < 20; ++y) {
      for (int x = 0; x < 20; ++x) {
        const bool inside = x >= 8 && x < 12 && y >= 7 && y < 13;
        EXPECT_EQ(canvas.At(x, y) == 0xFF0000FFu, inside) << x << "," << y;
      }
    }
    // A mirrored width centres by its absolute value.
    Canvas mirrored(20, 20);
    ASSERT_TRUE(s.Render(mirrored.dc(), 10, 10, -4, 0, 0, 0, 0, 0, 100, true, true, nullptr, -1, 0,
                         0, true));
    EXPECT_EQ(mirrored.At(8, 7), 0xFF0000FFu);
    EXPECT_EQ(mirrored.At(7, 7), 0x00FFFFFFu);
  }
}

// ---------------------------------------------------------------- rotation

TEST(c32bppDIBRender, RotationTurnsClockwiseAboutTheCentre) {
  c32bppDIB s;
  // 4 x 4 blue with a red top-left corner.
  Fill(
      s, 4, 4, [](int x, int y) { return x == 0 && y == 0 ? 0xFFFF0000u : 0xFF0000FFu; },
      Alpha_None);
  Canvas canvas(30, 30);
  ASSERT_TRUE(s.Render(canvas.dc(), 10, 10, 0, 0, 0, 0, 0, 0, 100, true, true, nullptr, -1, 0, 90));
  for (int y = 0; y < 30; ++y) {
    for (int x = 0; x < 30; ++x) {
      const bool inside = x >= 10 && x < 14 && y >= 10 && y < 14;
      const uint32_t expected = !inside                ? 0x00FFFFFFu
                                : (x == 13 && y == 10) ? 0xFFFF0000u
                                                       : 0xFF0000FFu;
      EXPECT_EQ(canvas.At(x, y), expected) << x << "," << y;
    }
  }
}

TEST(c32bppDIBRender, RotationKeepsTheCentre) {
  c32bppDIB s;
  Fill(
      s, 10, 6, [](int, int) { return 0xFF00FF00u; }, Alpha_None);
  for (float angle : {45.0f, 30.0f, 200.0f, -70.0f}) {
    Canvas canvas(40, 40, 0);
    ASSERT_TRUE(s.Render(canvas.dc(), 20, 20, 0, 0, 0, 0, 0, 0, 100, true, true, nullptr, -1, 0,
                         angle, true));
    double sum = 0, sx = 0, sy = 0;
    for (int y = 0; y < 40; ++y) {
      for (int x = 0; x < 40; ++x) {
        if (canvas.At(x, y) == 0) continue;
        sum += 1;
        sx += x + 0.5;
        sy += y + 0.5;
      }
    }
    ASSERT_GT(sum, 40) << angle;
    EXPECT_NEAR(sx / sum, 20.0, 0.5) << angle;
    EXPECT_NEAR(sy / sum, 20.0, 0.5) << angle;
    EXPECT_NEAR(sum, 60.0, 8.0) << angle;  // the area survives the turn
  }
}

TEST(c32bppDIBRender, WholeTurnsAreNotRotations) {
  // A pixel where the system's rounding and ours differ tells the paths apart.
  c32bppDIB s;
  Fill(s, 3, 3, [](int, int) { return 0x80402010u; });
  Canvas plain(10, 10, 0xFF336699u), hand(10, 10, 0xFF336699u);
  ASSERT_TRUE(s.Render(plain.dc(), 2, 2, 0, 0, 0, 0, 0, 0, 70));
  s.put_isAlphaBlendFriendly(false);
  ASSERT_TRUE(s.Render(hand.dc(), 2, 2, 0, 0, 0, 0, 0, 0, 70));
  s.put_isAlphaBlendFriendly(true);
  ASSERT_FALSE(SameCanvas(plain, hand, 10, 10));
  for (float angle : {0.0f, 360.0f, -720.0f}) {
    Canvas c(10, 10, 0xFF336699u);
    ASSERT_TRUE(s.Render(c.dc(), 2, 2, 0, 0, 0, 0, 0, 0, 70, true, true, nullptr, -1, 0, angle));
    EXPECT_TRUE(SameCanvas(c, plain, 10, 10)) << angle;
  }
  // 360.5 is a rotation (by a whole turn): our own blend draws it.
  Canvas c(10, 10, 0xFF336699u);
  ASSERT_TRUE(s.Render(c.dc(), 2, 2, 0, 0, 0, 0, 0, 0, 70, true, true, nullptr, -1, 0, 360.5f));
  EXPECT_TRUE(SameCanvas(c, hand, 10, 10));
}

// ---------------------------------------------------------------- light and grey

TEST(c32bppDIBRender, LightAdjustmentLimits) {
  c32bppDIB s;
  Fill(
      s, 2, 2, [](int, int) { return 0xFF102030u; }, Alpha_None);
  Canvas c(4, 4);
  ASSERT_TRUE(s.Render(c.dc(), 0, 0, 0, 0, 0, 0, 0, 0, 100, true, true, nullptr, -1, 100.0f));
  EXPECT_EQ(c.At(0, 0), 0xFFFFFFFFu);  // applied, up to the alpha
  ASSERT_TRUE(s.Render(c.dc(), 0, 0, 0, 0, 0, 0, 0, 0, 100, true, true, nullptr, -1, 100.5f));
  EXPECT_EQ(c.At(0, 0), 0xFF102030u);  // ignored
  ASSERT_TRUE(s.Render(c.dc(), 0, 0, 0, 0, 0, 0, 0, 0, 100, true, true, nullptr, -1, -10.0f));
  EXPECT_EQ(c.At(0, 0), 0xFF000717u);   // - 25, held at 0
  EXPECT_EQ(At(s, 0, 0), 0xFF102030u);  // on a copy
}

TEST(c32bppDIBRender, GrayFormulaWhileDrawing) {
  c32bppDIB s;
  Fill(
      s, 1, 1, [](int, int) { return 0xFFC86432u; }, Alpha_None);  // 200, 100, 50
  struct Case {
    int32_t formula;
    uint32_t gray;
  } cases[] = {{0, 124}, {1, 117}, {2, 116}, {3, 175}, {7, 87}, {12, 124}};
  for (const Case& c : cases) {
    Canvas canvas(1, 1);
    ASSERT_TRUE(s.Render(canvas.dc(), 0, 0, 0, 0, 0, 0, 0, 0, 100, true, true, nullptr, c.formula));
    EXPECT_EQ(canvas.At(0, 0), 0xFF000000u | c.gray * 0x010101u) << c.formula;
  }
  EXPECT_EQ(At(s, 0, 0), 0xFFC86432u);
}

TEST(c32bppDIBRender, BlendOffIgnoresAlpha) {
  c32bppDIB s;
  Fill(s, 1, 1, [](int, int) { return 0x80402010u; });
  for (bool friendly : {true, false}) {
    s.put_isAlphaBlendFriendly(friendly);
    Canvas c(1, 1, 0xFFFFFFFFu);
    ASSERT_TRUE(s.Render(c.dc(), 0, 0, 0, 0, 0, 0, 0, 0, 100, false));
    EXPECT_EQ(c.At(0, 0) & 0xFFFFFF, 0x402010u) << friendly;
  }
}

// ---------------------------------------------------------------- scaling

TEST(c32bppDIBRender, NearestEnlargementMakesBlocks) {
  c32bppDIB s;
  Fill(
      s, 3, 2, [](int x, int y) { return 0xFF000000u | static_cast<uint32_t>(y * 16 + x + 1); },
      Alpha_None);
  for (bool friendly : {true, false}) {
    s.put_isAlphaBlendFriendly(friendly);
    Canvas c(9, 6);
    ASSERT_TRUE(s.Render(c.dc(), 0, 0, 9, 6));
    for (int y = 0; y < 6; ++y) {
      for (int x = 0; x < 9; ++x) EXPECT_EQ(c.At(x, y), At(s, x / 3, y / 3)) << x << "," << y;
    }
  }
}

TEST(c32bppDIBRender, BilinearWeighsTheNeighbours) {
  c32bppDIB s;
  Fill(
      s, 2, 1, [](int x, int) { return x ? 0xFFFFFFFFu : 0xFF000000u; }, Alpha_None);
  s.put_HighQualityInterpolation(true);  // stretched with quality: our own scaler
  Canvas c(4, 1);
  ASSERT_TRUE(s.Render(c.dc(), 0, 0, 4, 1));
  const uint32_t expected[4] = {0, 64, 191, 255};
  for (int x = 0; x < 4; ++x) EXPECT_EQ(c.At(x, 0), 0xFF000000u | expected[x] * 0x010101u) << x;
  // A reduction by a large factor still reads only neighbours.
  c32bppDIB big;
  Fill(
      big, 1000, 1, [](int x, int) { return x % 2 ? 0xFFFFFFFFu : 0xFF000000u; }, Alpha_None);
  big.put_HighQualityInterpolation(true);
  Canvas small(10, 1);
  ASSERT_TRUE(big.Render(small.dc(), 0, 0, 10, 1));
  for (int x = 0; x < 10; ++x) {
    // Centres fall at 100x + 49.5: half of each neighbour.
    EXPECT_EQ(small.At(x, 0), 0xFF808080u) << x;
  }
}

TEST(c32bppDIBRender, ClippedAndHugeDestinations) {
  c32bppDIB s;
  Fill(
      s, 4, 4, [](int, int) { return 0xFFFF0000u; }, Alpha_None);
  s.put_isAlphaBlendFriendly(false);
  Canvas c(5, 5);
  ASSERT_TRUE(s.Render(c.dc(), -2, -2));
  EXPECT_EQ(c.At(0, 0), 0xFFFF0000u);
  EXPECT_EQ(c.At(1, 1), 0xFFFF0000u);
  EXPECT_EQ(c.At(2, 2), 0x00FFFFFFu);
  // Only what the DC shows is worked on.
  ASSERT_TRUE(s.Render(c.dc(), -1000000, -1000000, 2000000000, 2000000000));
  EXPECT_EQ(c.At(4, 4), 0xFFFF0000u);
  ASSERT_TRUE(s.Render(c.dc(), 100, 100));  // wholly outside: nothing to do
}

TEST(c32bppDIBRender, ClipRegionsAndViewportOrigins) {
  // Our blend writes a memory DC's bitmap directly unless its user clipped
  // it; either way the DC's clip and origin are what decide.
  c32bppDIB s;
  RandomPicture(s, 8, 8, 11);
  s.put_isAlphaBlendFriendly(false);
  Canvas open(10, 10), clippedWhole(10, 10);
  RandomBackground(open, 10, 10, 12);
  RandomBackground(clippedWhole, 10, 10, 12);
  HRGN whole = CreateRectRgn(0, 0, 10, 10);
  SelectClipRgn(clippedWhole.dc(), whole);
  DeleteObject(whole);
  ASSERT_TRUE(s.Render(open.dc(), 1, 1));
  ASSERT_TRUE(s.Render(clippedWhole.dc(), 1, 1));
  EXPECT_TRUE(SameCanvas(open, clippedWhole, 10, 10));

  Canvas clipped(10, 10, 0), moved(10, 10, 0);
  HRGN part = CreateRectRgn(2, 3, 5, 7);
  SelectClipRgn(clipped.dc(), part);
  DeleteObject(part);
  ASSERT_TRUE(s.Render(clipped.dc(), 0, 0));
  SetViewportOrgEx(moved.dc(), 3, 1, nullptr);
  ASSERT_TRUE(s.Render(moved.dc(), 0, 0));
  for (int y = 0; y < 10; ++y) {
    for (int x = 0; x < 10; ++x) {
      const bool inClip = x >= 2 && x < 5 && y >= 3 && y < 7;
      EXPECT_EQ(clipped.At(x, y), inClip ? At(s, x, y) : 0u) << x << "," << y;
      const bool inMoved = x >= 3 && x < 11 && y >= 1 && y < 9;
      EXPECT_EQ(moved.At(x, y), inMoved ? At(s, x - 3, y - 1) : 0u) << x << "," << y;
    }
  }
}

TEST(c32bppDIBRender, ReadBackInBands) {
  // A clipped DC is read back a band of rows at a time; a tall, narrow
  // picture crosses many bands.
  c32bppDIB s;
  RandomPicture(s, 3, 70000, 13);
  s.put_isAlphaBlendFriendly(false);
  Canvas plain(3, 70000), clipped(3, 70000);
  RandomBackground(plain, 3, 70000, 14);
  RandomBackground(clipped, 3, 70000, 14);
  HRGN whole = CreateRectRgn(0, 0, 3, 70000);
  SelectClipRgn(clipped.dc(), whole);
  DeleteObject(whole);
  ASSERT_TRUE(s.Render(plain.dc(), 0, 0, 0, 0, 0, 0, 0, 0, 60));
  ASSERT_TRUE(s.Render(clipped.dc(), 0, 0, 0, 0, 0, 0, 0, 0, 60));
  EXPECT_TRUE(SameCanvas(plain, clipped, 3, 70000));
}

// ---------------------------------------------------------------- targets

TEST(c32bppDIBRender, IntoAHostSurface) {
  c32bppDIB s;
  RandomPicture(s, 6, 5, 7);
  for (bool friendly : {true, false}) {
    s.put_isAlphaBlendFriendly(friendly);
    c32bppDIB host;
    Fill(host, 10, 8, [](int x, int y) { return 0xFF000000u | static_cast<uint32_t>(x * 20 + y); });
    Canvas reference(10, 8);
    for (int y = 0; y < 8; ++y) {
      for (int x = 0; x < 10; ++x) reference.At(x, y) = At(host, x, y);
    }
    ASSERT_TRUE(s.Render(nullptr, 2, 1, 0, 0, 0, 0, 0, 0, 100, true, true, &host));
    ASSERT_TRUE(s.Render(reference.dc(), 2, 1));
    for (int y = 0; y < 8; ++y) {
      for (int x = 0; x < 10; ++x) {
        EXPECT_LE(MaxChannelDifference(At(host, x, y), reference.At(x, y)), 1) << x << "," << y;
      }
    }
  }
  c32bppDIB empty;
  EXPECT_FALSE(s.Render(nullptr, 0, 0, 0, 0, 0, 0, 0, 0, 100, true, true, &empty));
  EXPECT_FALSE(s.Render(nullptr, 0, 0, 0, 0, 0, 0, 0, 0, 100, true, true, &s));
}

TEST(c32bppDIBRender, ASelectedSurfaceStaysSelected) {
  c32bppDIB s;
  Fill(
      s, 2, 2, [](int, int) { return 0xFF00FF00u; }, Alpha_None);
  HDC own = s.LoadDIBinDC(true);
  Canvas c(3, 3);
  ASSERT_TRUE(s.Render(c.dc(), 0, 0));
  EXPECT_EQ(c.At(1, 1), 0xFF00FF00u);
  EXPECT_EQ(GetCurrentObject(own, OBJ_BITMAP), s.get_Handle());
  s.LoadDIBinDC(false);
}

TEST(c32bppDIBRender, HalfToneIsSetOnlyForTheCall) {
  c32bppDIB s;
  Fill(
      s, 2, 2, [](int, int) { return 0xFF00FF00u; }, Alpha_None);
  Canvas c(8, 8);
  SetStretchBltMode(c.dc(), COLORONCOLOR);
  ASSERT_TRUE(s.Render(c.dc(), 0, 0, 8, 8));
  EXPECT_EQ(GetStretchBltMode(c.dc()), COLORONCOLOR);
}

TEST(c32bppDIBRender, RouteChoice) {
  RouteInputs base;
  base.alphaBlendFriendly = true;
  EXPECT_EQ(ChooseRoute(base), RenderRoute::AlphaBlend);
  struct Case {
    std::function<void(RouteInputs&)> change;
    RenderRoute route;
  } cases[] = {
      {[](RouteInputs& i) { i.alphaBlendFriendly = false; }, RenderRoute::HandBlend},
      {[](RouteInputs& i) { i.mirrored = true; }, RenderRoute::HandBlend},
      {[](RouteInputs& i) { i.grayScale = 0; }, RenderRoute::HandBlend},
      {[](RouteInputs& i) { i.light = 0.5f; }, RenderRoute::HandBlend},
      {[](RouteInputs& i) { i.stretched = true; }, RenderRoute::AlphaBlend},
      {[](RouteInputs& i) { i.highQuality = true; }, RenderRoute::AlphaBlend},
      {[](RouteInputs& i) { i.stretched = i.highQuality = true; }, RenderRoute::HandBlend},
      {[](RouteInputs& i) { i.keepGdiPlusActive = true; }, RenderRoute::HandBlend},
      {[](RouteInputs& i) { i.gdiPlusEnabled = true; }, RenderRoute::AlphaBlend},
      {[](RouteInputs& i) { i.gdiPlusEnabled = i.hasToken = true; }, RenderRoute::GdiPlus},
      {[](RouteInputs& i) { i.gdiPlusEnabled = i.mirrored = true; }, RenderRoute::GdiPlus},
      {[](RouteInputs& i) { i.hasToken = true; }, RenderRoute::AlphaBlend},
  };
  int n = 0;
  for (const Case& c : cases) {
    RouteInputs in = base;
    c.change(in);
    EXPECT_EQ(ChooseRoute(in), c.route) << "case " << n++;
  }
}

// ---------------------------------------------------------------- text and shadow

TEST(c32bppDIBRender, TextBecomesCoverage) {
  c32bppDIB s;
  ASSERT_TRUE(s.InitializeDIB(80, 24));
  ASSERT_TRUE(s.DrawText_hFont(u"Olá, mundo", RECT{2, 2, 78, 22}, RGB(200, 0, 0), nullptr,
                               DT_LEFT | DT_SINGLELINE));
  int covered = 0;
  for (int y = 0; y < 24; ++y) {
    for (int x = 0; x < 80; ++x) {
      const uint32_t p = At(s, x, y);
      const uint32_t a = p >> 24, r = (p >> 16) & 0xFF, g = (p >> 8) & 0xFF, b = p & 0xFF;
      if (a == 0) continue;
      ++covered;
      EXPECT_LE(r, a);
      EXPECT_EQ(g, 0u);
      EXPECT_EQ(b, 0u);
      EXPECT_TRUE(x >= 2 && x < 78 && y >= 2 && y < 22);
    }
  }
  EXPECT_GT(covered, 40);
  EXPECT_NE(s.get_Alpha(), Alpha_None);
  c32bppDIB empty;
  EXPECT_FALSE(empty.DrawText_hFont(u"x", RECT{0, 0, 5, 5}, 0, nullptr));
}

TEST(c32bppDIBRender, DropShadow) {
  c32bppDIB s;
  Fill(
      s, 4, 4, [](int, int) { return 0xFFFF0000u; }, Alpha_None);
  Canvas sharp(20, 20);
  ASSERT_TRUE(s.RenderDropShadow_JIT(sharp.dc(), 10, 10, 0, RGB(0, 0, 0), 100));
  EXPECT_EQ(sharp.At(10, 10), 0xFF000000u);
  EXPECT_EQ(sharp.At(13, 13), 0xFF000000u);
  EXPECT_EQ(sharp.At(14, 14), 0x00FFFFFFu);
  Canvas soft(20, 20);
  ASSERT_TRUE(s.RenderDropShadow_JIT(soft.dc(), 10, 10, 2, RGB(0, 0, 0), 100));
  const uint32_t edge = soft.At(9, 11) & 0xFF, inside = soft.At(11, 11) & 0xFF;
  EXPECT_LT(inside, edge);  // darker inside
  EXPECT_LT(edge, 255u);    // and spread past the shape
  EXPECT_EQ(soft.At(0, 0), 0x00FFFFFFu);
  Canvas none(20, 20);
  EXPECT_TRUE(s.RenderDropShadow_JIT(none.dc(), 10, 10, 2, 0, 0));
  EXPECT_EQ(none.At(11, 11), 0x00FFFFFFu);
}

// ---------------------------------------------------------------- the GDI+ gateway

TEST(c32bppDIBGdiPlus, AbsentHere) {
  EXPECT_FALSE(cGDIPlus::LibraryPresent());
  cGDIPlus g;
  EXPECT_FALSE(g.isGDIplusOk(true));
  EXPECT_EQ(g.Token(), 0u);
  EXPECT_EQ(cGDIPlus::CreateToken(), 0u);
  RenderJob job;
  EXPECT_FALSE(g.Draw(job));
  Pixels p;
  EXPECT_FALSE(g.LoadPicture(std::vector<uint8_t>(100, 1), p));
  std::vector<uint8_t> out{1};
  EXPECT_FALSE(g.SavePicture(p, "image/png", 0, out));
  EXPECT_TRUE(out.empty());
}

TEST(c32bppDIBGdiPlus, ColorMatrix) {
  const cGDIPlus::ColorMatrix plain = cGDIPlus::BuildColorMatrix(-1, 0, 100);
  for (size_t r = 0; r < 5; ++r) {
    for (size_t c = 0; c < 5; ++c) EXPECT_EQ(plain[r][c], r == c ? 1.0f : 0.0f) << r << c;
  }
  EXPECT_FALSE(cGDIPlus::NeedsColorMatrix(-1, 0, 100));
  EXPECT_TRUE(cGDIPlus::NeedsColorMatrix(0, 0, 100));
  EXPECT_TRUE(cGDIPlus::NeedsColorMatrix(-1, -5, 100));
  EXPECT_TRUE(cGDIPlus::NeedsColorMatrix(-1, 0, 99));
  const cGDIPlus::ColorMatrix m = cGDIPlus::BuildColorMatrix(0, 50, 40);
  for (size_t c = 0; c < 3; ++c) {
    EXPECT_FLOAT_EQ(m[0][c], 0.299f);
    EXPECT_FLOAT_EQ(m[1][c], 0.587f);
    EXPECT_FLOAT_EQ(m[2][c], 0.114f);
    EXPECT_FLOAT_EQ(m[4][c], 0.5f);
  }
  EXPECT_FLOAT_EQ(m[3][3], 0.4f);
  EXPECT_FLOAT_EQ(m[4][4], 1.0f);
  EXPECT_EQ(cGDIPlus::InterpolationMode(true), 7);
  EXPECT_EQ(cGDIPlus::InterpolationMode(false), 5);
  EXPECT_EQ(cGDIPlus::kPixelFormat32bppPARGB, 925707);
}

TEST(c32bppDIBGdiPlus, FlipsOnlyAsFarAsNeeded) {
  struct Case {
    bool ax, ay, wx, wy;
    int32_t flip;
  } cases[] = {
      {false, false, false, false, 0}, {false, false, true, false, 4},
      {false, false, false, true, 6},  {false, false, true, true, 2},
      {true, false, true, false, 0},   {true, false, false, false, 4},
      {true, false, true, true, 6},    {true, true, false, false, 2},
      {true, true, true, false, 6},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(cGDIPlus::FlipToApply(c.ax, c.ay, c.wx, c.wy), c.flip)
        << c.ax << c.ay << c.wx << c.wy;
  }
}

}  // namespace
}  // namespace vantor::imaging
