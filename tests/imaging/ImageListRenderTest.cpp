// Drawing images of a list through memory DCs: Render against the surface's
// own Render of the same picture alone, the source rectangle kept inside the
// image's slot, RenderRange, the delay-loaded list's first use, and icons
// from ExtractIcon and ExtractIconEx read back pixel by pixel.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/imaging/ImageListTestSupport.h"
#include "tests/platform/GdiTestSupport.h"

namespace vantor::imaging::test {
namespace {

using platform::test::Canvas;

constexpr int W = 6, H = 4;
constexpr const char* kBadKeyOrIndex = "Invalid Key or Index";

// Three images: opaque marked ones at 1 and 3, one of mixed alpha at 2.
PixelRule ImageRule(int n) {
  if (n == 2) {
    return [](int x, int y) {
      const uint32_t a = static_cast<uint32_t>((x * 40 + y * 60) % 256);
      return Pre(0x3080F0, a);
    };
  }
  return Marked(static_cast<uint32_t>(n * 50));
}

struct Fixture {
  std::shared_ptr<cImageLists> lists = std::make_shared<cImageLists>();
  std::shared_ptr<cListImages> images;
  Fixture() {
    images = lists->Add(W, H, u"L")->get_Images();
    for (int n = 1; n <= 3; ++n) {
      AddPainted(*images, ImageRule(n), u"k" + FromUtf8(std::to_string(n)));
    }
  }
};

// The picture of image n alone, the oracle of what Render draws.
void Alone(c32bppDIB& s, int n) {
  Paint(s, W, H, ImageRule(n));
}

void Background(Canvas& c, int w, int h) {
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) c.At(x, y) = 0xFF000000u | static_cast<uint32_t>(x * 9 + y * 1000);
  }
}

bool Same(const Canvas& a, const Canvas& b, int w, int h) {
  return std::memcmp(a.bits(), b.bits(), static_cast<size_t>(w * h * 4)) == 0;
}

TEST(ImageListRender, DrawsTheImageAsTheSurfaceDrawsItAlone) {
  Fixture f;
  struct Case {
    const char* name;
    int n, x, y, dw, dh, sx, sy, sw, sh, opacity, gray;
    float light, angle;
    bool centre;
  } cases[] = {
      {"plain", 1, 3, 2, 0, 0, 0, 0, 0, 0, 100, -1, 0, 0, false},
      {"alpha", 2, 0, 0, 0, 0, 0, 0, 0, 0, 100, -1, 0, 0, false},
      {"last", 3, 5, 5, 0, 0, 0, 0, 0, 0, 100, -1, 0, 0, false},
      {"part", 1, 1, 1, 3, 2, 2, 1, 3, 2, 100, -1, 0, 0, false},
      {"stretched", 3, 0, 0, 12, 8, 0, 0, 0, 0, 100, -1, 0, 0, false},
      {"mirrored", 1, 2, 2, 0, 0, 0, 0, -W, 0, 100, -1, 0, 0, false},
      {"flipped", 2, 2, 2, 0, 0, 0, 0, 0, -H, 100, -1, 0, 0, false},
      {"half", 2, 1, 1, 0, 0, 0, 0, 0, 0, 50, -1, 0, 0, false},
      {"grey", 3, 1, 1, 0, 0, 0, 0, 0, 0, 100, 0, 0, 0, false},
      {"lighter", 1, 1, 1, 0, 0, 0, 0, 0, 0, 100, -1, 40, 0, false},
      {"centred", 1, 8, 8, 0, 0, 0, 0, 0, 0, 100, -1, 0, 0, true},
      {"turned", 2, 8, 8, 0, 0, 0, 0, 0, 0, 100, -1, 0, 90, true},
  };
  constexpr int CW = 20, CH = 16;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Canvas got(CW, CH), want(CW, CH);
    Background(got, CW, CH);
    Background(want, CW, CH);
    ASSERT_TRUE(f.images->Render(Variant(c.n), LongOf(got.dc()), c.x, c.y, c.dw, c.dh, c.sx, c.sy,
                                 c.sw, c.sh, c.opacity, c.gray, c.light, c.angle, c.centre));
    c32bppDIB alone;
    Alone(alone, c.n);
    ASSERT_TRUE(alone.Render(want.dc(), c.x, c.y, c.dw, c.dh, c.sx, c.sy, c.sw, c.sh, c.opacity,
                             true, true, nullptr, c.gray, c.light, c.angle, c.centre));
    EXPECT_TRUE(Same(got, want, CW, CH));
  }
}

TEST(ImageListRender, OpaquePixelsLandWhereTheyShould) {
  Fixture f;
  constexpr int CW = 16, CH = 10;
  Canvas c(CW, CH, 0xFF123456u);
  ASSERT_TRUE(f.images->Render(Variant(u"k3"), LongOf(c.dc()), 4, 3));
  const PixelRule rule = ImageRule(3);
  for (int y = 0; y < CH; ++y) {
    for (int x = 0; x < CW; ++x) {
      const bool inside = x >= 4 && x < 4 + W && y >= 3 && y < 3 + H;
      EXPECT_EQ(c.At(x, y), inside ? rule(x - 4, y - 3) : 0xFF123456u) << x << "," << y;
    }
  }
}

TEST(ImageListRender, TheSourceStaysInsideTheSlot) {
  Fixture f;
  constexpr int CW = 16, CH = 10;
  // A source running past the slot's right edge is cut there: nothing of the
  // next image shows.
  Canvas c(CW, CH, 0xFF000000u);
  ASSERT_TRUE(f.images->Render(Variant(1), LongOf(c.dc()), 0, 0, 4, 4, 3, 0, 20, 4));
  const uint32_t next = ImageRule(2)(0, 0);
  const PixelRule first = ImageRule(1);
  for (int y = 0; y < CH; ++y) {
    for (int x = 0; x < CW; ++x) {
      EXPECT_NE(c.At(x, y), next);
      if (x < 4 && y < 4) {
        // Three source columns (3, 4, 5) over four destination columns.
        const uint32_t p = c.At(x, y);
        EXPECT_TRUE(p == first(3, y) || p == first(4, y) || p == first(5, y)) << x << "," << y;
      }
    }
  }
  // A source that starts outside the slot draws nothing.
  Canvas d(CW, CH, 0xFF000000u);
  EXPECT_FALSE(f.images->Render(Variant(1), LongOf(d.dc()), 0, 0, 0, 0, W, 0, 0, 0));
  for (int i = 0; i < CW * CH; ++i) EXPECT_EQ(d.bits()[i], 0xFF000000u);
}

TEST(ImageListRender, ABadIndexRaises) {
  Fixture f;
  Canvas c(8, 8);
  EXPECT_RAISES(f.images->Render(Variant(0), LongOf(c.dc()), 0, 0), 1962, kBadKeyOrIndex,
                "Images.Render");
  EXPECT_RAISES(f.images->Render(Variant(4), LongOf(c.dc()), 0, 0), 1962, kBadKeyOrIndex,
                "Images.Render");
  EXPECT_RAISES(f.images->Render(Variant(u"K1"), LongOf(c.dc()), 0, 0), 1962, kBadKeyOrIndex,
                "Images.Render");
  // Opacity below 1 draws nothing and reports success, as the surface does.
  EXPECT_TRUE(f.images->Render(Variant(1), LongOf(c.dc()), 0, 0, 0, 0, 0, 0, 0, 0, 0));
  // No DC, nothing drawn.
  EXPECT_FALSE(f.images->Render(Variant(1), 0, 0, 0));
}

TEST(ImageListRender, RenderRangeDrawsARow) {
  Fixture f;
  constexpr int CW = 3 * W + 4, CH = H + 2;
  for (const bool backwards : {false, true}) {
    Canvas got(CW, CH), want(CW, CH);
    Background(got, CW, CH);
    Background(want, CW, CH);
    const Variant first = backwards ? Variant(u"k3") : Variant(1);
    const Variant last = backwards ? Variant(1) : Variant(u"k3");
    ASSERT_TRUE(f.images->RenderRange(first, last, LongOf(got.dc()), 2, 1, 100, -1, 0));
    for (int i = 0; i < 3; ++i) {
      const int n = backwards ? 3 - i : i + 1;
      c32bppDIB alone;
      Alone(alone, n);
      ASSERT_TRUE(alone.Render(want.dc(), 2 + i * W, 1));
    }
    EXPECT_TRUE(Same(got, want, CW, CH)) << backwards;
  }
  // Opacity, grey and light go to every image.
  Canvas got(CW, CH), want(CW, CH);
  ASSERT_TRUE(f.images->RenderRange(Variant(2), Variant(3), LongOf(got.dc()), 0, 0, 60, 1, -20));
  for (int n = 2; n <= 3; ++n) {
    c32bppDIB alone;
    Alone(alone, n);
    ASSERT_TRUE(
        alone.Render(want.dc(), (n - 2) * W, 0, 0, 0, 0, 0, 0, 0, 60, true, true, nullptr, 1, -20));
  }
  EXPECT_TRUE(Same(got, want, CW, CH));
  // An index that names nothing: nothing drawn, no error.
  Canvas none(CW, CH, 0xFF000000u);
  EXPECT_FALSE(f.images->RenderRange(Variant(0), Variant(2), LongOf(none.dc()), 0, 0));
  EXPECT_FALSE(f.images->RenderRange(Variant(1), Variant(u"x"), LongOf(none.dc()), 0, 0));
  for (int i = 0; i < CW * CH; ++i) EXPECT_EQ(none.bits()[i], 0xFF000000u);
}

TEST(ImageListRender, ADelayLoadedListUnpacksOnFirstUse) {
  Fixture f;
  f.images->put_DelayLoaded(true);
  std::vector<uint8_t> stream;
  f.lists->ExportImageList(Variant(1), stream);
  auto other = std::make_shared<cImageLists>();
  auto images = other->ImportImageList(stream, u"")->get_Images();
  ASSERT_TRUE(images->IsWaiting());
  EXPECT_EQ(images->get_Count(), 3);
  EXPECT_EQ(images->get_Item(Variant(2))->get_Width(), W);
  EXPECT_EQ(images->IsKeyAssigned(u"k2"), 2);
  EXPECT_TRUE(images->IsWaiting());
  constexpr int CW = 10, CH = 8;
  Canvas got(CW, CH), want(CW, CH);
  // Image 3 is opaque, so PNG keeps it exactly.
  ASSERT_TRUE(images->Render(Variant(3), LongOf(got.dc()), 1, 1));
  EXPECT_FALSE(images->IsWaiting());
  c32bppDIB alone;
  Alone(alone, 3);
  ASSERT_TRUE(alone.Render(want.dc(), 1, 1));
  EXPECT_TRUE(Same(got, want, CW, CH));
  // Turning DelayLoaded off unpacks a waiting list at once; adding to one
  // unpacks it first.
  auto again = other->ImportImageList(stream, u"")->get_Images();
  ASSERT_TRUE(again->IsWaiting());
  again->put_DelayLoaded(false);
  EXPECT_FALSE(again->IsWaiting());
  auto third = other->ImportImageList(stream, u"")->get_Images();
  ASSERT_TRUE(AddPainted(*third, Marked(9), u"", u"", Variant(1)));
  EXPECT_TRUE(SlotIs(*third, 1, Marked(9)));
  EXPECT_TRUE(SlotIs(*third, 2, ImageRule(1)));
}

// The pixels of an icon handle, read back through the surface's loader.
bool ReadIcon(int32_t handle, c32bppDIB& out) {
  auto* object = reinterpret_cast<HGDIOBJ>(static_cast<uintptr_t>(static_cast<uint32_t>(handle)));
  if (GetObjectType(object) != OBJ_BITMAP) return false;
  const bool ok = out.LoadPicture_ByHandle(object);
  DeleteObject(object);
  return ok;
}

TEST(ImageListRender, ExtractIconGivesTheImage) {
  Fixture f;
  for (int n = 1; n <= 3; ++n) {
    int32_t depth = 0;
    const int32_t icon = f.images->ExtractIcon(Variant(n), depth);
    ASSERT_NE(icon, 0);
    EXPECT_EQ(depth, 32);
    c32bppDIB read;
    ASSERT_TRUE(ReadIcon(icon, read));
    ASSERT_EQ(read.get_Width(), W);
    ASSERT_EQ(read.get_Height(), H);
    const PixelRule rule = ImageRule(n);
    for (int y = 0; y < H; ++y) {
      for (int x = 0; x < W; ++x) {
        const uint32_t want = rule(x, y);
        // The mask: what is transparent has no colour either.
        EXPECT_EQ(PixelAt(read, x, y), (want >> 24) == 0 ? 0u : want) << n << ":" << x << "," << y;
      }
    }
  }
  int32_t depth = 0;
  EXPECT_RAISES(f.images->ExtractIcon(Variant(0), depth), 1962, kBadKeyOrIndex,
                "Images.ExtractIcon");
  EXPECT_RAISES(f.images->ExtractIcon(Variant(u"nada"), depth), 1962, kBadKeyOrIndex,
                "Images.ExtractIcon");
  EXPECT_EQ(depth, 0);
}

TEST(ImageListRender, ExtractIconExDrawsWithItsOptions) {
  Fixture f;
  struct Case {
    const char* name;
    bool mx, my;
    int opacity, gray;
    float light;
    std::function<uint32_t(int, int)> expected;
  } cases[] = {
      {"as is", false, false, 100, -1, 0, ImageRule(1)},
      {"mirror x", true, false, 100, -1, 0,
       [](int x, int y) { return ImageRule(1)(W - 1 - x, y); }},
      {"mirror y", false, true, 100, -1, 0,
       [](int x, int y) { return ImageRule(1)(x, H - 1 - y); }},
      {"both", true, true, 100, -1, 0,
       [](int x, int y) { return ImageRule(1)(W - 1 - x, H - 1 - y); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    int32_t w = 0, h = 0, depth = 0;
    const int32_t icon =
        f.images->ExtractIconEx(Variant(1), c.mx, c.my, c.opacity, c.gray, c.light, 0, w, h, depth);
    ASSERT_NE(icon, 0);
    EXPECT_EQ(w, W);
    EXPECT_EQ(h, H);
    EXPECT_EQ(depth, 32);
    c32bppDIB read;
    ASSERT_TRUE(ReadIcon(icon, read));
    for (int y = 0; y < H; ++y) {
      for (int x = 0; x < W; ++x) EXPECT_EQ(PixelAt(read, x, y), c.expected(x, y)) << x << "," << y;
    }
  }

  // Opacity, grey and light: as the surface draws the picture alone into a
  // transparent one.
  int32_t w = 0, h = 0, depth = 0;
  const int32_t faded =
      f.images->ExtractIconEx(Variant(2), false, false, 40, 0, 30, 0, w, h, depth);
  c32bppDIB read, want, alone;
  ASSERT_TRUE(ReadIcon(faded, read));
  Alone(alone, 2);
  ASSERT_TRUE(want.InitializeDIB(W, H));
  ASSERT_TRUE(alone.Render(nullptr, 0, 0, W, H, 0, 0, W, H, 40, true, true, &want, 0, 30));
  for (int y = 0; y < H; ++y) {
    for (int x = 0; x < W; ++x) {
      const uint32_t p = PixelAt(want, x, y);
      EXPECT_EQ(PixelAt(read, x, y), (p >> 24) == 0 ? 0u : p) << x << "," << y;
    }
  }

  // Turned, the icon is a square as wide as the image's diagonal, the
  // picture about its centre.
  const int32_t turned =
      f.images->ExtractIconEx(Variant(3), false, false, 100, -1, 0, 90, w, h, depth);
  const int side = static_cast<int>(std::sqrt(W * W + H * H));
  EXPECT_EQ(w, side);
  EXPECT_EQ(h, side);
  c32bppDIB square;
  ASSERT_TRUE(ReadIcon(turned, square));
  EXPECT_EQ(square.get_Width(), side);
  // A quarter turn: the opaque block is H wide and W high about the centre.
  int opaque = 0;
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) opaque += (PixelAt(square, x, y) >> 24) == 255 ? 1 : 0;
  }
  EXPECT_NEAR(opaque, W * H, W + H);

  EXPECT_RAISES(f.images->ExtractIconEx(Variant(9), false, false, 100, -1, 0, 0, w, h, depth), 1962,
                kBadKeyOrIndex, "Images.ExtractIconEx");
}

}  // namespace
}  // namespace vantor::imaging::test
