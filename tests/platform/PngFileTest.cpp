// The screenshot encoder, read back twice: by the tests' own reader and, when
// the machine has it, by libpng itself (loaded at run time so that the library
// never links it).
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <filesystem>
#include <vector>

#include "platform/PngFile.h"
#include "tests/platform/GoldenPng.h"

namespace vantor::platform {
namespace {

using test::DecodePng;
using test::GoldenImage;

struct Pixels {
  std::vector<uint32_t> data;
  Surface surface;
  Pixels(int w, int h, bool bottomUp = false) : data(static_cast<size_t>(w) * h) {
    surface.width = w;
    surface.height = h;
    if (bottomUp) {
      surface.pixels = data.data() + static_cast<ptrdiff_t>(h - 1) * w;
      surface.stride = -w;
    } else {
      surface.pixels = data.data();
      surface.stride = w;
    }
  }
};

// A pattern with every byte position varying, so a swapped channel or a
// wrong filter reconstruction shows.
uint32_t Pattern(int x, int y) {
  return 0xFF000000u | static_cast<uint32_t>((x * 37 + y * 11) & 0xFF) << 16 |
         static_cast<uint32_t>((x * 5 + y * 91) & 0xFF) << 8 |
         static_cast<uint32_t>((x ^ y) & 0xFF);
}

TEST(PngFile, RgbRoundTripKeepsEveryPixel) {
  Pixels p(67, 41);
  for (int y = 0; y < 41; ++y)
    for (int x = 0; x < 67; ++x)
      p.surface.At(x, y) = Pattern(x, y) & 0x00FFFFFF;  // alpha 0 as GDI leaves it
  const GoldenImage img = DecodePng(PngFile::Encode(p.surface));
  ASSERT_EQ(img.width, 67);
  ASSERT_EQ(img.height, 41);
  for (int y = 0; y < 41; ++y)
    for (int x = 0; x < 67; ++x) ASSERT_EQ(img.At(x, y), Pattern(x, y)) << x << "," << y;
}

TEST(PngFile, BottomUpSurfaceIsWrittenTopRowFirst) {
  Pixels p(3, 2, true);
  p.surface.At(0, 0) = 0x00FF0000;  // red at the top left
  p.surface.At(2, 1) = 0x000000FF;  // blue at the bottom right
  const GoldenImage img = DecodePng(PngFile::Encode(p.surface));
  ASSERT_EQ(img.height, 2);
  EXPECT_EQ(img.At(0, 0), 0xFFFF0000u);
  EXPECT_EQ(img.At(2, 1), 0xFF0000FFu);
  EXPECT_EQ(img.At(1, 0), 0xFF000000u);
  // In memory the bottom row comes first.
  EXPECT_EQ(p.data[2], 0x000000FFu);
}

TEST(PngFile, RgbaUndoesPremultipliedAlpha) {
  Pixels p(4, 1);
  p.surface.At(0, 0) = 0xFF102030;
  p.surface.At(1, 0) = 0x80408000;  // half-covered: 0x40 of 0x80 is a half intensity red
  p.surface.At(2, 0) = 0x00123456;  // fully transparent: colour means nothing
  p.surface.At(3, 0) = 0x01010101;
  const GoldenImage img = DecodePng(PngFile::Encode(p.surface, PngFile::Channels::kRgba));
  ASSERT_EQ(img.width, 4);
  EXPECT_EQ(img.At(0, 0), 0xFF102030u);
  EXPECT_EQ(img.At(1, 0), 0x8080FF00u);
  EXPECT_EQ(img.At(2, 0), 0x00000000u);
  EXPECT_EQ(img.At(3, 0), 0x01FFFFFFu);
}

TEST(PngFile, HeaderAndChunksAreWellFormed) {
  Pixels p(2, 3);
  const std::vector<uint8_t> png = PngFile::Encode(p.surface);
  ASSERT_GT(png.size(), 8u + 25 + 12 + 12);
  EXPECT_EQ(png[0], 0x89);
  EXPECT_EQ(std::string(png.begin() + 12, png.begin() + 16), "IHDR");
  EXPECT_EQ(png[19], 2);  // width, big-endian
  EXPECT_EQ(png[23], 3);  // height
  EXPECT_EQ(png[25], 2);  // colour type RGB
  EXPECT_EQ(std::string(png.end() - 8, png.end() - 4), "IEND");
}

TEST(PngFile, BadSurfacesGiveNothing) {
  Surface none;
  EXPECT_TRUE(PngFile::Encode(none).empty());
  std::vector<uint32_t> one(1);
  Surface negative{one.data(), -1, 1, 1};
  EXPECT_TRUE(PngFile::Encode(negative).empty());
  Surface zero{one.data(), 1, 0, 1};
  EXPECT_TRUE(PngFile::Encode(zero).empty());
  Surface huge{one.data(), 1 << 20, 1, 1};  // refused before a pixel is read
  EXPECT_TRUE(PngFile::Encode(huge).empty());
  EXPECT_FALSE(PngFile::Save(none, "/tmp/never.png"));
  Surface ok{one.data(), 1, 1, 1};
  EXPECT_FALSE(PngFile::Save(ok, ""));
  EXPECT_FALSE(PngFile::Save(ok, "/nonexistent-folder/x.png"));
}

TEST(PngFile, SaveWritesTheEncodedBytes) {
  Pixels p(5, 5);
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 5; ++x) p.surface.At(x, y) = Pattern(x, y);
  const auto path = std::filesystem::temp_directory_path() / "vantor-pngfile-test.png";
  ASSERT_TRUE(PngFile::Save(p.surface, path.string()));
  const GoldenImage img = test::ReadPng(path.string());
  std::filesystem::remove(path);
  ASSERT_EQ(img.width, 5);
  EXPECT_EQ(img.At(4, 4), Pattern(4, 4));
}

TEST(GoldenPng, RefusesDamagedFiles) {
  Pixels p(3, 3);
  std::vector<uint8_t> png = PngFile::Encode(p.surface);
  ASSERT_FALSE(DecodePng(png).Empty());
  std::vector<uint8_t> bad = png;
  bad[30] ^= 1;  // inside IHDR: CRC fails
  EXPECT_TRUE(DecodePng(bad).Empty());
  EXPECT_TRUE(DecodePng(std::vector<uint8_t>(png.begin(), png.begin() + 20)).Empty());
  EXPECT_TRUE(DecodePng({}).Empty());
}

// libpng as an independent reader: if our filters or CRCs were wrong in a way
// our own reader shares, libpng would still refuse or differ.
TEST(PngFile, LibpngReadsWhatWeWrite) {
  void* lib = dlopen("libpng16.so.16", RTLD_NOW | RTLD_LOCAL);
  if (lib == nullptr) GTEST_SKIP() << "libpng16 is not installed";
  auto begin = reinterpret_cast<decltype(&png_image_begin_read_from_memory)>(
      dlsym(lib, "png_image_begin_read_from_memory"));
  auto finish =
      reinterpret_cast<decltype(&png_image_finish_read)>(dlsym(lib, "png_image_finish_read"));
  auto release = reinterpret_cast<decltype(&png_image_free)>(dlsym(lib, "png_image_free"));
  ASSERT_TRUE(begin != nullptr && finish != nullptr && release != nullptr);

  for (const auto channels : {PngFile::Channels::kRgb, PngFile::Channels::kRgba}) {
    Pixels p(29, 17);
    for (int y = 0; y < 17; ++y)
      for (int x = 0; x < 29; ++x) p.surface.At(x, y) = Pattern(x, y);
    const std::vector<uint8_t> png = PngFile::Encode(p.surface, channels);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    ASSERT_NE(begin(&image, png.data(), png.size()), 0) << image.message;
    image.format = PNG_FORMAT_BGRA;
    std::vector<uint32_t> out(static_cast<size_t>(image.width) * image.height);
    ASSERT_NE(finish(&image, nullptr, out.data(), 0, nullptr), 0) << image.message;
    ASSERT_EQ(image.width, 29u);
    ASSERT_EQ(image.height, 17u);
    for (int y = 0; y < 17; ++y)
      for (int x = 0; x < 29; ++x) ASSERT_EQ(out[y * 29 + x], Pattern(x, y)) << x << "," << y;
    release(&image);
  }
  dlclose(lib);
}

}  // namespace
}  // namespace vantor::platform
