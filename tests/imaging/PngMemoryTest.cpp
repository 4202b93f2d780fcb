// How much memory decoding takes beyond the file's own bytes: the picture
// itself (W x H x 4) and little else, since the rows are inflated one at a
// time. Measured as the growth of the process's resident peak (VmHWM), after
// freed heap pages are handed back and the peak is reset, so that every page
// the decoder touches counts, whichever allocator gave it.
#include <gtest/gtest.h>
#include <malloc.h>
#include <png.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "imaging/cPNGparser.h"

#if defined(__SANITIZE_ADDRESS__)
#define VANTOR_PNG_MEMORY_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VANTOR_PNG_MEMORY_SANITIZED 1
#endif
#endif
#ifndef VANTOR_PNG_MEMORY_SANITIZED
#define VANTOR_PNG_MEMORY_SANITIZED 0
#endif

namespace vantor::imaging {
namespace {

long StatusKb(const char* field) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind(field, 0) == 0) return std::stol(line.substr(std::strlen(field)));
  return -1;
}

// The resident peak's growth while `work` runs, in bytes; -1 when the system
// cannot reset the peak.
long PeakGrowth(const std::function<void()>& work) {
  malloc_trim(0);
  {
    std::ofstream reset("/proc/self/clear_refs");
    reset << "5";
    reset.close();
    if (!reset) return -1;
  }
  const long base = StatusKb("VmRSS:");
  work();
  const long peak = StatusKb("VmHWM:");
  if (base < 0 || peak < 0) return -1;
  return (peak - base) * 1024;
}

void WriteToVector(png_structp png, png_bytep data, png_size_t size) {
  auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  out->insert(out->end(), data, data + size);
}
void FlushNothing(png_structp) {}

// Noise, so that nothing compresses and the file is as large as it gets.
std::vector<uint8_t> NoisePng(int width, int height, int colorType, int depth, int interlace) {
  std::mt19937 rng(9);
  const int channels = colorType == 6 ? 4 : colorType == 2 ? 3 : 1;
  const size_t rowBytes = (static_cast<size_t>(width) * channels * depth + 7) / 8;
  std::vector<uint8_t> pixels(rowBytes * static_cast<size_t>(height));
  for (auto& b : pixels) b = static_cast<uint8_t>(rng());
  std::vector<uint8_t> out;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    return {};
  }
  png_set_write_fn(png, &out, WriteToVector, FlushNothing);
  png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), depth,
               colorType, interlace, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_compression_level(png, 1);
  png_set_filter(png, 0, PNG_FILTER_NONE);
  if (colorType == 3) {
    std::vector<png_color> palette(static_cast<size_t>(1) << depth);
    for (auto& c : palette) c = {static_cast<uint8_t>(rng()), static_cast<uint8_t>(rng()), 9};
    png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
  }
  png_write_info(png, info);
  std::vector<png_bytep> rows;
  for (int y = 0; y < height; ++y)
    rows.push_back(pixels.data() + rowBytes * static_cast<size_t>(y));
  png_write_image(png, rows.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return out;
}

TEST(PngMemory, DecodingPeaksWellUnderThreeTimesThePicture) {
  if (VANTOR_PNG_MEMORY_SANITIZED)
    GTEST_SKIP() << "the sanitizers' shadow memory and quarantine make resident size meaningless";
  constexpr int kWidth = 1024, kHeight = 768;
  constexpr long kPicture = long{kWidth} * kHeight * 4;
  const struct {
    const char* what;
    int colorType, depth, interlace;
  } cases[] = {{"RGBA 16-bit", 6, 16, 0},
               {"RGBA 16-bit interlaced", 6, 16, 1},
               {"RGB 8-bit interlaced", 2, 8, 1},
               {"palette 1-bit", 3, 1, 0}};
  for (const auto& c : cases) {
    const std::vector<uint8_t> file = NoisePng(kWidth, kHeight, c.colorType, c.depth, c.interlace);
    ASSERT_FALSE(file.empty());
    for (bool withoutZlib : {false, true}) {
      cPNGparser::SimulateZlibAbsent(withoutZlib);
      bool ok = false;
      const long growth = PeakGrowth([&] {
        Pixels picture;
        cPNGparser parser;
        ok = parser.LoadStream(file, picture);
      });
      cPNGparser::SimulateZlibAbsent(false);
      if (growth < 0) GTEST_SKIP() << "the resident peak cannot be reset here";
      ASSERT_TRUE(ok) << c.what;
      std::printf("[ memory   ] %-24s %-12s file %8zu bytes, peak %8ld bytes = %.2f x W x H x 4\n",
                  c.what, withoutZlib ? "own inflate" : "zlib", file.size(), growth,
                  static_cast<double>(growth) / kPicture);
      EXPECT_LT(growth, 3 * kPicture) << c.what;
      // What the design allows: the picture, two rows and the inflate window.
      EXPECT_LT(growth, kPicture + 1024 * 1024) << c.what;
    }
  }

  // The file form holds the file's bytes once and nothing else of size.
  const std::vector<uint8_t> file = NoisePng(kWidth, kHeight, 6, 16, 0);
  const auto path = std::filesystem::temp_directory_path() / "vantor_png_memory_test.png";
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  bool ok = false;
  const long growth = PeakGrowth([&] {
    Pixels picture;
    cPNGparser parser;
    ok = parser.LoadFile(path.u16string(), picture);
  });
  std::filesystem::remove(path);
  ASSERT_TRUE(ok);
  const long beyondFile = growth - static_cast<long>(file.size());
  std::printf(
      "[ memory   ] %-24s %-12s file %8zu bytes, peak beyond it %8ld bytes = %.2f x W x H x 4\n",
      "RGBA 16-bit", "from a file", file.size(), beyondFile,
      static_cast<double>(beyondFile) / kPicture);
  EXPECT_LT(beyondFile, 3 * kPicture);
}

}  // namespace
}  // namespace vantor::imaging
