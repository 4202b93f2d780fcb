// The surface's state, capability bits, pixel and byte access, regions,
// copies, trimming, tiling, size computation and in-place effects.
#include "imaging/c32bppDIB.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "imaging/HandBlend.h"
#include "tests/platform/GdiTestSupport.h"

namespace vantor::imaging {
namespace {

using platform::test::RegionArt;

// A surface whose pixel (x, y) (top-down) is f(x, y) as 0xAARRGGBB,
// pre-multiplied.
void Fill(c32bppDIB& s, int32_t w, int32_t h, const std::function<uint32_t(int, int)>& f) {
  ASSERT_TRUE(s.InitializeDIB(w, h));
  for (int y = 0; y < h; ++y) {
    auto* row = reinterpret_cast<uint32_t*>(const_cast<uint8_t*>(s.View().Row(y)));
    for (int x = 0; x < w; ++x) row[x] = f(x, y);
  }
}

uint32_t At(const c32bppDIB& s, int x, int y) {
  uint32_t p;
  std::memcpy(&p, s.View().Row(y) + x * 4, 4);
  return p;
}

// Text art of where alpha is above 0.
std::string AlphaArt(const c32bppDIB& s) {
  std::string out;
  for (int y = 0; y < s.get_Height(); ++y) {
    for (int x = 0; x < s.get_Width(); ++x) out += (At(s, x, y) >> 24) ? '#' : '.';
    out += '\n';
  }
  return out;
}

// A 7 x 7 ring: opaque border of a 5 x 5 square at (1, 1), hole in the middle.
void Ring(c32bppDIB& s) {
  Fill(s, 7, 7, [](int x, int y) {
    const bool inSquare = x >= 1 && x <= 5 && y >= 1 && y <= 5;
    const bool inHole = x >= 2 && x <= 4 && y >= 2 && y <= 4;
    return inSquare && !inHole ? 0xFF102030u : 0u;
  });
  s.put_Alpha(Alpha_Simple);
}

// ---------------------------------------------------------------- capability bits

TEST(c32bppDIBCapabilities, FollowTheOperatingSystem) {
  struct Case {
    OsVersion os;
    uint32_t bits;
  } cases[] = {
      {{2, 5, 0, 0}, 73},                       // 2000
      {{2, 6, 1, 1}, 73},                       // 7, and this system
      {{2, 10, 0, 0}, 73}, {{2, 4, 0, 5}, 96},  // NT 4 before its sixth service pack: no GDI+
      {{2, 4, 0, 6}, 64},                       // NT 4 SP6
      {{1, 4, 0, 0}, 32},                       // 95
      {{1, 4, 10, 0}, 16},                      // 98
      {{1, 4, 90, 0}, 16},                      // Me
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c32bppDIB::CapabilitiesFor(c.os), c.bits)
        << c.os.platform << " " << c.os.major << "." << c.os.minor << " sp" << c.os.servicePack;
  }
}

TEST(c32bppDIBCapabilities, ANewSurfaceOnThisSystem) {
  c32bppDIB s;
  EXPECT_EQ(s.Capabilities(), 73u);
  EXPECT_TRUE(s.get_isAlphaBlendFriendly());
  EXPECT_FALSE(s.get_isGDIplusEnabled());  // no GDI+ here
  EXPECT_FALSE(s.get_HighQualityInterpolation());
  EXPECT_EQ(s.get_ImageType(), Image_Error);
  EXPECT_EQ(s.get_Handle(), nullptr);
  EXPECT_EQ(s.get_Width(), 0);
  EXPECT_EQ(s.get_Alpha(), Alpha_None);
}

TEST(c32bppDIBCapabilities, AlphaBlendFriendlyNeedsAReliableAlphaBlend) {
  c32bppDIB nt(OsVersion{2, 5, 0, 0});
  nt.put_isAlphaBlendFriendly(false);
  EXPECT_FALSE(nt.get_isAlphaBlendFriendly());
  EXPECT_EQ(nt.Capabilities(), 72u);
  nt.put_isAlphaBlendFriendly(true);
  EXPECT_TRUE(nt.get_isAlphaBlendFriendly());

  c32bppDIB win98(OsVersion{1, 4, 10, 0});
  EXPECT_FALSE(win98.get_isAlphaBlendFriendly());
  win98.put_isAlphaBlendFriendly(true);
  EXPECT_TRUE(win98.get_isAlphaBlendFriendly());
  EXPECT_EQ(win98.Capabilities(), 17u);

  c32bppDIB win95(OsVersion{1, 4, 0, 0});
  win95.put_isAlphaBlendFriendly(true);
  EXPECT_FALSE(win95.get_isAlphaBlendFriendly());
  EXPECT_EQ(win95.Capabilities(), 32u);
}

TEST(c32bppDIBCapabilities, GdiPlusProbeFailsHereAndLeavesTheOtherBits) {
  for (const OsVersion& os : {OsVersion{2, 6, 1, 1}, OsVersion{1, 4, 0, 0}}) {
    c32bppDIB s(os);
    const uint32_t before = s.Capabilities();
    s.put_isGDIplusEnabled(true);
    EXPECT_FALSE(s.get_isGDIplusEnabled());
    s.put_isGDIplusEnabled(false);
    EXPECT_EQ(s.Capabilities(), before);
  }
  c32bppDIB s;
  EXPECT_FALSE(s.CreateGDIplusToken());
  EXPECT_EQ(s.get_gdiToken(), 0u);
  s.put_gdiToken(1234);  // borrowed: destroying it is its lender's business
  s.DestroyGDIplusToken();
  EXPECT_EQ(s.get_gdiToken(), 0u);
}

// ---------------------------------------------------------------- life

TEST(c32bppDIBLife, InitializeMakesABottomUpTransparentDIBSection) {
  c32bppDIB s;
  ASSERT_TRUE(s.InitializeDIB(5, -3));  // the absolute height is taken
  EXPECT_EQ(s.get_Width(), 5);
  EXPECT_EQ(s.get_Height(), 3);
  EXPECT_EQ(s.get_scanWidth(), 20);
  EXPECT_EQ(s.get_ImageType(), Image_None);
  EXPECT_EQ(s.get_Alpha(), Alpha_Simple);
  DIBSECTION ds{};
  ASSERT_EQ(GetObjectW(s.get_Handle(), sizeof ds, &ds), static_cast<int>(sizeof ds));
  EXPECT_EQ(ds.dsBm.bmBits, s.get_BitsPointer());
  EXPECT_GT(ds.dsBmih.biHeight, 0);  // bottom-up
  EXPECT_EQ(ds.dsBmih.biBitCount, 32);
  for (int i = 0; i < 60; ++i) EXPECT_EQ(s.get_BitsPointer()[i], 0);
  // Pixel (x, y) lies at x * 4 + (Height - y - 1) * scanWidth.
  ASSERT_TRUE(s.SetPixel(1, 0, 0x0000FF, 255));
  EXPECT_EQ(s.get_BitsPointer()[1 * 4 + 2 * 20 + 2], 255);
  // and a DC sees it at (1, 0).
  HDC dc = s.LoadDIBinDC(true);
  ASSERT_NE(dc, nullptr);
  EXPECT_EQ(::GetPixel(dc, 1, 0), 0x0000FFu);
  s.LoadDIBinDC(false);
}

TEST(c32bppDIBLife, RefusesNoSizeAndDestroysWhatWasThere) {
  c32bppDIB s;
  ASSERT_TRUE(s.InitializeDIB(2, 2));
  EXPECT_FALSE(s.InitializeDIB(0, 5));
  EXPECT_EQ(s.get_Handle(), nullptr);
  EXPECT_EQ(s.get_ImageType(), Image_Error);
  EXPECT_FALSE(s.InitializeDIB(5, 0));
  EXPECT_FALSE(s.InitializeDIB(-5, 5));
  EXPECT_FALSE(s.InitializeDIB(65536, 65536));  // more than a picture may take
}

TEST(c32bppDIBLife, DestroyAndErase) {
  c32bppDIB s;
  Fill(s, 2, 2, [](int, int) { return 0xFFFFFFFFu; });
  s.put_Alpha(Alpha_None);
  s.put_ImageType(Image_PNG);
  s.EraseDIB();
  EXPECT_EQ(At(s, 1, 1), 0u);
  EXPECT_EQ(s.get_ImageType(), Image_None);
  EXPECT_EQ(s.get_Alpha(), Alpha_Simple);
  s.DestroyDIB();
  EXPECT_EQ(s.get_Handle(), nullptr);
  EXPECT_EQ(s.get_BitsPointer(), nullptr);
  EXPECT_EQ(s.get_Width(), 0);
  EXPECT_EQ(s.get_Height(), 0);
  EXPECT_EQ(s.get_Alpha(), Alpha_None);
  EXPECT_EQ(s.get_ImageType(), Image_Error);
}

TEST(c32bppDIBLife, LoadDIBinDCSelectsAndReleases) {
  c32bppDIB s;
  EXPECT_EQ(s.LoadDIBinDC(true), nullptr);  // nothing to select
  ASSERT_TRUE(s.InitializeDIB(3, 3));
  HDC dc = s.LoadDIBinDC(true);
  ASSERT_NE(dc, nullptr);
  EXPECT_EQ(GetCurrentObject(dc, OBJ_BITMAP), s.get_Handle());
  EXPECT_EQ(s.LoadDIBinDC(true), dc);  // selecting again changes nothing
  EXPECT_EQ(s.LoadDIBinDC(false), nullptr);
  EXPECT_EQ(GetObjectType(dc), 0u);  // deleted: the surface does not manage a DC

  s.put_ManageOwnDC(true);
  HDC own = s.LoadDIBinDC(true);
  ASSERT_NE(own, nullptr);
  s.LoadDIBinDC(false);
  EXPECT_EQ(GetObjectType(own), static_cast<DWORD>(OBJ_MEMDC));  // kept
  EXPECT_NE(GetCurrentObject(own, OBJ_BITMAP), s.get_Handle());
  s.put_ManageOwnDC(false);  // idle: deleted now
  EXPECT_EQ(GetObjectType(own), 0u);
}

TEST(c32bppDIBLife, AdoptsAReadersPixelsAndHandsThemBack) {
  Pixels p;
  ASSERT_TRUE(p.Allocate(3, 2));
  for (size_t i = 0; i < p.bytes.size(); ++i) p.bytes[i] = static_cast<uint8_t>(i * 7);
  for (size_t i = 3; i < p.bytes.size(); i += 4) p.bytes[i] = 255;
  p.alpha = Alpha_None;
  p.format = Image_PNG;
  const std::vector<uint8_t> expected = p.bytes;
  c32bppDIB s;
  ASSERT_TRUE(s.AdoptPixels(std::move(p)));
  EXPECT_TRUE(p.Empty());
  EXPECT_EQ(s.get_ImageType(), Image_PNG);
  EXPECT_EQ(s.get_Alpha(), Alpha_None);
  EXPECT_EQ(std::memcmp(s.get_BitsPointer(), expected.data(), expected.size()), 0);
  Pixels back;
  ASSERT_TRUE(s.CopyToPixels(back));
  EXPECT_EQ(back.bytes, expected);
  EXPECT_EQ(back.format, Image_PNG);
  Pixels bad;
  EXPECT_FALSE(s.AdoptPixels(std::move(bad)));
  EXPECT_EQ(s.get_Handle(), nullptr);
}

// ---------------------------------------------------------------- pixels

TEST(c32bppDIBPixels, GetPixelOutsideIsMinusOne) {
  c32bppDIB s;
  EXPECT_EQ(s.GetPixel(0, 0), -1);
  ASSERT_TRUE(s.InitializeDIB(4, 3));
  for (auto [x, y] : {std::pair{-1, 0}, {0, -1}, {4, 0}, {0, 3}}) {
    EXPECT_EQ(s.GetPixel(x, y), -1) << x << "," << y;
    EXPECT_FALSE(s.SetPixel(x, y, 0, 255));
  }
}

TEST(c32bppDIBPixels, SetAndGetWithAndWithoutPremultiplication) {
  c32bppDIB s;
  ASSERT_TRUE(s.InitializeDIB(4, 4));
  s.put_Alpha(Alpha_None);
  // Straight colour in, pre-multiplied stored.
  ASSERT_TRUE(s.SetPixel(2, 1, RGB(200, 100, 50), 128));
  EXPECT_EQ(At(s, 2, 1), (128u << 24) | (100u << 16) | (50u << 8) | 25u);
  EXPECT_EQ(s.get_Alpha(), Alpha_Complex);
  int32_t a = 0;
  EXPECT_EQ(s.GetPixel(2, 1, &a, true), static_cast<int32_t>(RGB(100, 50, 25)));
  EXPECT_EQ(a, 128);
  EXPECT_EQ(s.GetPixel(2, 1, &a, false), static_cast<int32_t>(RGB(199, 99, 49)));
  // Alpha 0 and 255 need no division.
  ASSERT_TRUE(s.SetPixel(0, 0, RGB(1, 2, 3), 255));
  EXPECT_EQ(s.GetPixel(0, 0, &a), static_cast<int32_t>(RGB(1, 2, 3)));
  EXPECT_EQ(a, 255);
  ASSERT_TRUE(s.SetPixel(1, 0, RGB(1, 2, 3), 0));
  EXPECT_EQ(s.GetPixel(1, 0, &a), 0);
  EXPECT_EQ(a, 0);
  // A pre-multiplied colour above its alpha is held to it.
  ASSERT_TRUE(s.SetPixel(3, 3, RGB(255, 10, 255), 100, true));
  EXPECT_EQ(s.GetPixel(3, 3, nullptr, true), static_cast<int32_t>(RGB(100, 10, 100)));
}

TEST(c32bppDIBPixels, SetPixelRaisesTheAlphaKindOnly) {
  c32bppDIB s;
  ASSERT_TRUE(s.InitializeDIB(2, 2));
  s.put_Alpha(Alpha_None);
  s.SetPixel(0, 0, 0, 255);
  EXPECT_EQ(s.get_Alpha(), Alpha_None);
  s.SetPixel(0, 0, 0, 0);
  EXPECT_EQ(s.get_Alpha(), Alpha_Simple);
  s.SetPixel(0, 0, 0, 7);
  EXPECT_EQ(s.get_Alpha(), Alpha_Complex);
  s.SetPixel(0, 0, 0, 0);
  EXPECT_EQ(s.get_Alpha(), Alpha_Complex);
}

TEST(c32bppDIBPixels, GetDIBbitsShapes) {
  c32bppDIB s;
  // 3 x 2: pixel (x, y) = blue x, green y, red 9, alpha 255 or 128 at (2, 1).
  Fill(s, 3, 2, [](int x, int y) {
    if (x == 2 && y == 1) return 0x80000000u | (9u / 2 << 16) | (0u << 8) | 1u;
    return 0xFF000000u | (9u << 16) | (static_cast<uint32_t>(y) << 8) | static_cast<uint32_t>(x);
  });
  std::vector<uint8_t> bytes;
  int32_t row = 0;
  // Default: BGRA, bottom-up, pre-multiplied, unpadded.
  ASSERT_TRUE(s.GetDIBbits(bytes, row));
  EXPECT_EQ(row, 12);
  ASSERT_EQ(bytes.size(), 24u);
  EXPECT_EQ(std::memcmp(bytes.data(), s.get_BitsPointer(), 24), 0);
  // Three bytes, red first, top-down, padded as in a file.
  ASSERT_TRUE(s.GetDIBbits(bytes, row, false, false, false, true, true));
  EXPECT_EQ(row, 12);  // 9 rounded up to 12
  ASSERT_EQ(bytes.size(), 24u);
  EXPECT_EQ(bytes[0], 9);           // red of (0, 0)
  EXPECT_EQ(bytes[1], 0);           // green: y
  EXPECT_EQ(bytes[5], 1);           // blue of (1, 0)
  EXPECT_EQ(bytes[9], 0);           // padding
  EXPECT_EQ(bytes[12 + 3 + 1], 1);  // green of (1, 1)
  // Un-multiplied: (2, 1) had alpha 128.
  ASSERT_TRUE(s.GetDIBbits(bytes, row, true, true, false, false));
  EXPECT_EQ(row, 12);
  EXPECT_EQ(bytes[12 + 8 + 0], 1 * 255 / 128);
  EXPECT_EQ(bytes[12 + 8 + 2], 4 * 255 / 128);
  EXPECT_EQ(bytes[12 + 8 + 3], 128);
  // A rectangle cut at the edge.
  ASSERT_TRUE(s.GetDIBbits(bytes, row, false, true, false, true, false, 1, 1, 10, 10));
  EXPECT_EQ(row, 8);
  EXPECT_EQ(bytes.size(), 8u);
  EXPECT_EQ(bytes[0], 1);
  EXPECT_FALSE(s.GetDIBbits(bytes, row, false, true, true, true, false, 3, 0));
  EXPECT_TRUE(bytes.empty());
}

TEST(c32bppDIBPixels, SetDIBbitsReadsWhatGetDIBbitsWrites) {
  c32bppDIB a;
  Fill(a, 5, 3, [](int x, int y) {
    const uint32_t alpha = static_cast<uint32_t>(40 * x + 50);
    return (alpha << 24) | ((alpha * y / 3) << 16) | ((alpha / 2) << 8) | (alpha / 5);
  });
  a.put_Alpha(Alpha_Complex);
  for (bool bgr : {true, false}) {
    for (bool bottomUp : {true, false}) {
      for (bool file : {true, false}) {
        std::vector<uint8_t> bytes;
        int32_t row = 0;
        ASSERT_TRUE(a.GetDIBbits(bytes, row, false, bgr, bottomUp, true, file));
        c32bppDIB b;
        ASSERT_TRUE(b.SetDIBbits(bytes, 5, 3, bgr, bottomUp, true, file));
        for (int y = 0; y < 3; ++y) {
          for (int x = 0; x < 5; ++x) {
            if (bgr) {
              EXPECT_EQ(At(b, x, y), At(a, x, y));
            } else {
              EXPECT_EQ(At(b, x, y), At(a, x, y) | 0xFF000000u);
            }
          }
        }
        EXPECT_EQ(b.get_Alpha(), bgr ? Alpha_Complex : Alpha_None);
      }
    }
  }
  c32bppDIB c;
  EXPECT_FALSE(c.SetDIBbits(std::vector<uint8_t>(10), 2, 2));  // too few bytes
}

// ---------------------------------------------------------------- regions

TEST(c32bppDIBRegion, EachStyleOnARing) {
  c32bppDIB s;
  Ring(s);
  struct Case {
    int32_t style;
    const char* art;
  } cases[] = {
      {Region_Bounds, ".......\n.#####.\n.#####.\n.#####.\n.#####.\n.#####.\n.......\n"},
      {Region_Enclosed, ".......\n.#####.\n.#####.\n.#####.\n.#####.\n.#####.\n.......\n"},
      {Region_Shaped, ".......\n.#####.\n.#...#.\n.#...#.\n.#...#.\n.#####.\n.......\n"},
  };
  for (const Case& c : cases) {
    HRGN r = s.CreateRegion(c.style);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(RegionArt(r, 7, 7), c.art) << c.style;
    DeleteObject(r);
  }
  // A triangle tells bounds and enclosed apart.
  c32bppDIB t;
  Fill(t, 4, 3, [](int x, int y) { return x <= y ? 0xFF000000u : 0u; });
  t.put_Alpha(Alpha_Simple);
  HRGN bounds = t.CreateRegion(Region_Bounds), enclosed = t.CreateRegion(Region_Enclosed);
  EXPECT_EQ(RegionArt(bounds, 4, 3), "###.\n###.\n###.\n");
  EXPECT_EQ(RegionArt(enclosed, 4, 3), "#...\n##..\n###.\n");
  DeleteObject(bounds);
  DeleteObject(enclosed);
}

TEST(c32bppDIBRegion, OffsetOpaqueAndRefusals) {
  c32bppDIB s;
  Ring(s);
  HRGN r = s.CreateRegion(Region_Shaped, 10, 20);
  RECT box{};
  GetRgnBox(r, &box);
  EXPECT_EQ(box.left, 11);
  EXPECT_EQ(box.top, 21);
  EXPECT_EQ(box.right, 16);
  EXPECT_EQ(box.bottom, 26);
  DeleteObject(r);
  // An opaque picture is its rectangle, whatever the style.
  s.put_Alpha(Alpha_None);
  r = s.CreateRegion(Region_Shaped);
  GetRgnBox(r, &box);
  EXPECT_EQ(box.right, 7);
  EXPECT_EQ(PtInRegion(r, 3, 3), TRUE);
  DeleteObject(r);
  EXPECT_EQ(s.CreateRegion(3), nullptr);
  EXPECT_EQ(s.CreateRegion(-1), nullptr);
  c32bppDIB empty;
  EXPECT_EQ(empty.CreateRegion(Region_Bounds), nullptr);
  // Nothing visible: an empty region, still the caller's to delete.
  c32bppDIB clear;
  ASSERT_TRUE(clear.InitializeDIB(3, 3));
  r = clear.CreateRegion(Region_Shaped);
  ASSERT_NE(r, nullptr);
  EXPECT_EQ(GetRgnBox(r, &box), NULLREGION);
  DeleteObject(r);
}

TEST(c32bppDIBRegion, ManyRunsGoInBatches) {
  // Every other pixel: 60 x 100 = 3000 one-pixel runs, more than a batch.
  c32bppDIB s;
  Fill(s, 120, 100, [](int x, int y) { return (x + y) % 2 ? 0xFF000000u : 0u; });
  s.put_Alpha(Alpha_Simple);
  HRGN r = s.CreateRegion(Region_Shaped);
  ASSERT_NE(r, nullptr);
  for (int y = 0; y < 100; y += 7) {
    for (int x = 0; x < 120; x += 3) {
      EXPECT_EQ(PtInRegion(r, x, y) != 0, (x + y) % 2 == 1) << x << "," << y;
    }
  }
  DeleteObject(r);
}

// ---------------------------------------------------------------- copies

TEST(c32bppDIBCopy, SameSizeCopiesAndANewTargetInherits) {
  c32bppDIB s;
  Fill(s, 4, 3, [](int x, int y) { return 0xFF000000u | static_cast<uint32_t>(x * 16 + y); });
  s.put_Alpha(Alpha_None);
  s.put_ImageType(Image_Bitmap);
  s.put_HighQualityInterpolation(true);
  s.put_gdiToken(77);
  std::unique_ptr<c32bppDIB> target;
  ASSERT_TRUE(s.CopyImageTo(target));
  ASSERT_TRUE(target);
  EXPECT_EQ(target->get_Width(), 4);
  EXPECT_EQ(std::memcmp(target->get_BitsPointer(), s.get_BitsPointer(), 48), 0);
  EXPECT_EQ(target->get_Alpha(), Alpha_None);
  EXPECT_EQ(target->get_ImageType(), Image_Bitmap);
  EXPECT_TRUE(target->get_HighQualityInterpolation());
  EXPECT_EQ(target->get_gdiToken(), 77u);
  EXPECT_FALSE(s.CopyImageTo(s));
}

TEST(c32bppDIBCopy, ScaledCopyDrawsWithOurOwnBlend) {
  c32bppDIB s;
  // 2 x 2 of four colours, one half transparent.
  const uint32_t colors[4] = {0xFF0000FFu, 0xFF00FF00u, 0xFFFF0000u, 0x80404040u};
  Fill(s, 2, 2, [&](int x, int y) { return colors[y * 2 + x]; });
  s.put_Alpha(Alpha_Complex);
  c32bppDIB t;
  ASSERT_TRUE(s.CopyImageTo(t, -4, 4));  // sizes are taken absolute
  ASSERT_EQ(t.get_Width(), 4);
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 4; ++x) EXPECT_EQ(At(t, x, y), colors[(y / 2) * 2 + x / 2]) << x << y;
  }
  EXPECT_EQ(t.get_Alpha(), Alpha_Complex);
  EXPECT_TRUE(s.get_isAlphaBlendFriendly());  // switched back after the copy
}

TEST(c32bppDIBCopy, ResizeKeepsTheSurfacesSettings) {
  c32bppDIB s;
  Fill(s, 2, 1, [](int x, int) { return x ? 0xFFFFFFFFu : 0xFF000000u; });
  s.put_Alpha(Alpha_None);
  s.put_Tag(Variant(String(u"marca")));
  s.put_gdiToken(5);
  ASSERT_TRUE(s.Resize(4, 2));
  EXPECT_EQ(s.get_Width(), 4);
  EXPECT_EQ(s.get_Height(), 2);
  EXPECT_EQ(At(s, 0, 1), 0xFF000000u);
  EXPECT_EQ(At(s, 3, 0), 0xFFFFFFFFu);
  EXPECT_EQ(s.get_Alpha(), Alpha_None);
  EXPECT_EQ(s.get_gdiToken(), 5u);
  EXPECT_EQ(s.get_Tag().TypeName(), u"String");
  EXPECT_FALSE(s.Resize(0, 3));
}

// ---------------------------------------------------------------- trim and tile

TEST(c32bppDIBTrim, EdgesByOption) {
  c32bppDIB s;
  // Visible pixels at (2, 1) and (4, 3) of an 8 x 6 picture.
  Fill(s, 8, 6,
       [](int x, int y) { return (x == 2 && y == 1) || (x == 4 && y == 3) ? 0xFF000000u : 0u; });
  struct Case {
    int32_t options;
    int32_t x, y, w, h;
  } cases[] = {
      {Trim_All, 2, 1, 3, 3},
      {15, 2, 1, 3, 3},
      {Trim_Left, 2, 0, 6, 6},
      {Trim_Top, 0, 1, 8, 5},
      {Trim_Right, 0, 0, 5, 6},
      {Trim_Bottom, 0, 0, 8, 4},
      {Trim_Left | Trim_Top, 2, 1, 6, 5},
  };
  for (const Case& c : cases) {
    int32_t x, y, w, h;
    ASSERT_TRUE(s.TrimImage(false, c.options, x, y, w, h));
    EXPECT_EQ(x, c.x) << c.options;
    EXPECT_EQ(y, c.y) << c.options;
    EXPECT_EQ(w, c.w) << c.options;
    EXPECT_EQ(h, c.h) << c.options;
  }
  EXPECT_EQ(s.get_Width(), 8);
  int32_t x, y, w, h;
  ASSERT_TRUE(s.TrimImage(true, Trim_All, x, y, w, h));
  EXPECT_EQ(s.get_Width(), 3);
  EXPECT_EQ(s.get_Height(), 3);
  EXPECT_EQ(AlphaArt(s), "#..\n...\n..#\n");
}

TEST(c32bppDIBTrim, AllTransparentGivesZerosAndFalse) {
  c32bppDIB s;
  ASSERT_TRUE(s.InitializeDIB(5, 5));
  int32_t x = 9, y = 9, w = 9, h = 9;
  EXPECT_FALSE(s.TrimImage(true, Trim_All, x, y, w, h));
  EXPECT_EQ(x + y + w + h, 0);
  EXPECT_EQ(s.get_Width(), 5);
}

TEST(c32bppDIBTile, RepeatsFromTheAreasCorner) {
  c32bppDIB tile;
  Fill(tile, 2, 2, [](int x, int y) { return (x + y) % 2 ? 0xFF000000u : 0u; });
  c32bppDIB target;
  ASSERT_TRUE(target.InitializeDIB(6, 4));
  ASSERT_TRUE(tile.TileImage(target, RECT{1, 1, 6, 4}));
  EXPECT_EQ(AlphaArt(target), "......\n..#.#.\n.#.#.#\n..#.#.\n");
  EXPECT_EQ(target.get_Alpha(), Alpha_Simple);
  ASSERT_TRUE(tile.TileImage(target, RECT{}));  // the whole
  EXPECT_EQ(AlphaArt(target), ".#.#.#\n#.#.#.\n.#.#.#\n#.#.#.\n");
  c32bppDIB empty;
  EXPECT_FALSE(tile.TileImage(empty, RECT{}));
}

// ---------------------------------------------------------------- size computation

TEST(c32bppDIBScale, ScaleImageCases) {
  c32bppDIB s;
  ASSERT_TRUE(s.InitializeDIB(200, 100));
  struct Case {
    int32_t dw, dh, option, w, h;
  } cases[] = {
      {100, 100, Scale_To_Size, 100, 50},
      {400, 400, Scale_To_Size, 400, 200},  // to size enlarges
      {300, 50, Scale_To_Size, 100, 50},
      {400, 400, Scale_Down_As_Needed, 200, 100},  // never enlarges
      {400, 80, Scale_Down_As_Needed, 160, 80},
      {100, 400, Scale_Down_As_Needed, 100, 50},
      {250, 100, Scale_Down_As_Needed, 200, 100},  // one ratio of 1 is not exceeded
      {333, 77, Scale_Stretched, 333, 77},
      {7, 3, Scale_To_Size, 6, 3},  // floors
      {50, 50, 9, 200, 100},        // unknown option: own size
  };
  for (const Case& c : cases) {
    int32_t w = -1, h = -1;
    s.ScaleImage(c.dw, c.dh, w, h, c.option);
    EXPECT_EQ(w, c.w) << c.dw << "x" << c.dh << " option " << c.option;
    EXPECT_EQ(h, c.h) << c.dw << "x" << c.dh << " option " << c.option;
  }
  c32bppDIB empty;
  int32_t w = -1, h = -1;
  empty.ScaleImage(10, 10, w, h, Scale_Stretched);
  EXPECT_EQ(w, 0);
  EXPECT_EQ(h, 0);
}

// ---------------------------------------------------------------- effects

TEST(c32bppDIBEffects, GrayFormulaTable) {
  struct Case {
    int32_t formula;
    int32_t r, g, b;
  } cases[] = {
      {-1, 1000, 1000, 1000}, {0, 299, 587, 114}, {1, 213, 715, 72},   {2, 333, 334, 333},
      {3, 800, 100, 100},     {4, 100, 800, 100}, {5, 100, 100, 800},  {6, 450, 450, 100},
      {7, 100, 450, 450},     {8, 299, 587, 114}, {-2, 299, 587, 114}, {99, 299, 587, 114},
  };
  for (const Case& c : cases) {
    const GrayWeights w = GrayFormula(c.formula);
    EXPECT_EQ(w.red, c.r) << c.formula;
    EXPECT_EQ(w.green, c.g) << c.formula;
    EXPECT_EQ(w.blue, c.b) << c.formula;
  }
}

TEST(c32bppDIBEffects, MakeGrayScaleWritesTheTruncatedSum) {
  struct Case {
    int32_t formula;
    uint8_t r, g, b, gray;
  } cases[] = {
      {0, 255, 255, 255, 255},  // the coefficients sum to exactly 1
      {0, 200, 100, 50, 124},   // 59.8 + 58.7 + 5.7 = 124.2
      {1, 200, 100, 50, 117},   // 42.6 + 71.5 + 3.6 = 117.7
      {2, 10, 20, 30, 20},      // 3.33 + 6.68 + 9.99 = 20.0
      {3, 100, 0, 0, 80},      {6, 100, 100, 0, 90}, {42, 200, 100, 50, 124},  // unknown: NTSC/PAL
  };
  for (const Case& c : cases) {
    c32bppDIB s;
    Fill(s, 2, 1, [&](int x, int) {
      return x ? 0u : 0xFF000000u | (uint32_t{c.r} << 16) | (uint32_t{c.g} << 8) | c.b;
    });
    ASSERT_TRUE(s.MakeGrayScale(c.formula));
    const uint32_t g = c.gray;
    EXPECT_EQ(At(s, 0, 0), 0xFF000000u | (g << 16) | (g << 8) | g) << c.formula;
    EXPECT_EQ(At(s, 1, 0), 0u);  // alpha 0 untouched
  }
  c32bppDIB s;
  Fill(s, 1, 1, [](int, int) { return 0xFF112233u; });
  EXPECT_FALSE(s.MakeGrayScale(GrayScale_None));
  EXPECT_EQ(At(s, 0, 0), 0xFF112233u);
  c32bppDIB empty;
  EXPECT_FALSE(empty.MakeGrayScale(0));
}

TEST(c32bppDIBEffects, InverseIsPremultipliedAndUndoesItself) {
  c32bppDIB s;
  Fill(s, 3, 1, [](int x, int) {
    const uint32_t px[3] = {0xFF102030u, 0x80102030u, 0u};
    return px[x];
  });
  ASSERT_TRUE(s.MakeImageInverse());
  EXPECT_EQ(At(s, 0, 0), 0xFFEFDFCFu);
  EXPECT_EQ(At(s, 1, 0), 0x80706050u);
  EXPECT_EQ(At(s, 2, 0), 0u);
  ASSERT_TRUE(s.MakeImageInverse());
  EXPECT_EQ(At(s, 0, 0), 0xFF102030u);
  EXPECT_EQ(At(s, 1, 0), 0x80102030u);
}

TEST(c32bppDIBEffects, MakeTransparentClearsTheColour) {
  c32bppDIB s;
  Fill(s, 3, 1, [](int x, int) {
    const uint32_t px[3] = {0xFFFF00FFu, 0xFF00FF00u, 0x80800080u};
    return px[x];
  });
  s.put_Alpha(Alpha_Complex);
  ASSERT_TRUE(s.MakeTransparent(RGB(255, 0, 255)));
  EXPECT_EQ(At(s, 0, 0), 0u);
  EXPECT_EQ(At(s, 1, 0), 0xFF00FF00u);
  EXPECT_EQ(At(s, 2, 0), 0u);  // magenta at half alpha is magenta too
  c32bppDIB opaque;
  Fill(opaque, 1, 1, [](int, int) { return 0xFF000000u; });
  opaque.put_Alpha(Alpha_None);
  ASSERT_TRUE(opaque.MakeTransparent(0));
  EXPECT_EQ(opaque.get_Alpha(), Alpha_Simple);
}

TEST(c32bppDIBEffects, LighterDarkerStaysWithinAlpha) {
  struct Case {
    float percent;
    uint32_t in, out;
  } cases[] = {
      {50, 0xFF102030u, 0xFF8F9FAFu},   // + trunc(255 * 127.5) / 255 = 127
      {-50, 0xFF102030u, 0xFF000000u},  // below 0 stays 0
      {100, 0x80102030u, 0x80808080u},  // + 128, held at alpha 128
      {10, 0x80102030u, 0x801C2C3Cu},   // + trunc(128 * 25.5) / 255 = 12
      {-100, 0x80102030u, 0x80000000u},
  };
  for (const Case& c : cases) {
    c32bppDIB s;
    Fill(s, 2, 1, [&](int x, int) { return x ? 0u : c.in; });
    ASSERT_TRUE(s.MakeLighterDarker(c.percent));
    EXPECT_EQ(At(s, 1, 0), 0u);
    EXPECT_EQ(At(s, 0, 0), c.out) << c.percent;
  }
  c32bppDIB s;
  Fill(s, 1, 1, [](int, int) { return 0xFF102030u; });
  EXPECT_FALSE(s.MakeLighterDarker(100.5f));
  EXPECT_EQ(At(s, 0, 0), 0xFF102030u);
}

TEST(c32bppDIBEffects, BlendToColorMixesStraightColours) {
  c32bppDIB s;
  Fill(s, 3, 1, [](int x, int) {
    const uint32_t px[3] = {0xFF000000u, 0x80000000u, 0u};
    return px[x];
  });
  ASSERT_TRUE(s.BlendToColor(RGB(200, 100, 0), 50));
  EXPECT_EQ(At(s, 0, 0), 0xFF643200u);  // half of 200, 100, 0
  // (0 * 50 + 200 * 50) * 128 / 25500 = 50
  EXPECT_EQ(At(s, 1, 0), 0x80321900u);
  EXPECT_EQ(At(s, 2, 0), 0u);
  ASSERT_TRUE(s.BlendToColor(RGB(10, 20, 30), 0));  // out of range: 100
  EXPECT_EQ(At(s, 0, 0), 0xFF0A141Eu);
}

TEST(c32bppDIBEffects, CheckerBoard) {
  c32bppDIB s;
  ASSERT_TRUE(s.CreateCheckerBoard(2, RGB(255, 255, 255), RGB(0, 0, 0), 5, 3));
  EXPECT_EQ(s.get_ImageType(), Image_Checker_Board);
  EXPECT_EQ(s.get_Alpha(), Alpha_None);
  std::string art;
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 5; ++x) art += At(s, x, y) == 0xFFFFFFFFu ? 'w' : 'b';
    art += '\n';
  }
  EXPECT_EQ(art, "wwbbw\nwwbbw\nbbwwb\n");
  c32bppDIB empty;
  EXPECT_FALSE(empty.CreateCheckerBoard());
}

}  // namespace
}  // namespace vantor::imaging
