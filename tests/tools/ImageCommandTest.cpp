#include "tools/vantor/ImageCommand.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "imaging/Pixels.h"
#include "imaging/c32bppDIB.h"

namespace vantor::tools {
namespace {

namespace fs = std::filesystem;
using imaging::c32bppDIB;

struct Outcome {
  int status = 0;
  std::string out, err;
};

Outcome Image(std::vector<std::string> args) {
  std::ostringstream out, err;
  Outcome r;
  r.status = RunImage(args, out, err);
  r.out = out.str();
  r.err = err.str();
  return r;
}

std::vector<uint8_t> ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class ImageCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() /
           (std::string("vantor_image_command_") +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::create_directories(dir_);
    // A 40 x 30 picture with soft colours and a transparent corner.
    imaging::Pixels p;
    ASSERT_TRUE(p.Allocate(40, 30));
    for (int y = 0; y < 30; ++y) {
      uint8_t* row = p.Row(y);
      for (int x = 0; x < 40; ++x) {
        const bool clear = x < 5 && y < 5;
        row[x * 4 + 0] = clear ? 0 : static_cast<uint8_t>(x * 6);
        row[x * 4 + 1] = clear ? 0 : static_cast<uint8_t>(y * 8);
        row[x * 4 + 2] = clear ? 0 : static_cast<uint8_t>(200 - x * 2);
        row[x * 4 + 3] = clear ? 0 : 255;
      }
    }
    p.alpha = imaging::Alpha_Simple;
    c32bppDIB s;
    ASSERT_TRUE(s.AdoptPixels(std::move(p)));
    ASSERT_TRUE(s.SaveToFile_PNG(FromUtf8(Path("source.png"))));
  }
  void TearDown() override { fs::remove_all(dir_); }
  std::string Path(const std::string& name) const { return (dir_ / name).string(); }

  fs::path dir_;
};

TEST_F(ImageCommand, InfoNamesTheKindAndAlpha) {
  const Outcome r = Image({"info", Path("source.png")});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "Width: 40\nHeight: 30\nImageType: Image PNG\nAlpha: Alpha Simple\n");
  EXPECT_TRUE(r.err.empty());
}

TEST_F(ImageCommand, ConvertsToEveryFormat) {
  struct Case {
    const char* name;
    const char* type;  // how info's ImageType begins; empty when it cannot be read back
    std::vector<uint8_t> magic;
  };
  for (const Case& c : {Case{"out.png", "Image PNG", {0x89, 'P', 'N', 'G'}},
                        Case{"out.bmp", "Image Bitmap", {'B', 'M'}},
                        Case{"OUT.GIF", "Image GIF", {'G', 'I', 'F', '8'}},
                        Case{"out.jpg", "", {0xFF, 0xD8, 0xFF, 0xE0}},
                        Case{"out.jpeg", "", {0xFF, 0xD8, 0xFF, 0xE0}}}) {
    const Outcome r = Image({"convert", Path("source.png"), Path(c.name)});
    EXPECT_EQ(r.status, 0) << c.name << ": " << r.err;
    EXPECT_EQ(r.out, "wrote " + Path(c.name) + " (40 x 30)\n");
    const std::vector<uint8_t> bytes = ReadAll(dir_ / c.name);
    ASSERT_GE(bytes.size(), c.magic.size()) << c.name;
    EXPECT_TRUE(std::equal(c.magic.begin(), c.magic.end(), bytes.begin())) << c.name;
    const Outcome info = Image({"info", Path(c.name)});
    if (*c.type != '\0') {
      EXPECT_EQ(info.status, 0) << c.name;
      EXPECT_NE(info.out.find("Width: 40\nHeight: 30\nImageType: " + std::string(c.type)),
                std::string::npos)
          << info.out;
    } else {
      // JPEG is read through GDI+ alone.
      EXPECT_EQ(info.status, 1);
      EXPECT_NE(info.err.find("a JPEG needs GDI+, which is not here"), std::string::npos)
          << info.err;
    }
  }
}

TEST_F(ImageCommand, TransparencyTravels) {
  ASSERT_EQ(Image({"convert", Path("source.png"), Path("a.bmp")}).status, 0);
  const Outcome r = Image({"info", Path("a.bmp")});
  EXPECT_NE(r.out.find("Alpha: Alpha Simple"), std::string::npos) << r.out;
}

TEST_F(ImageCommand, QualityAndFilterOptions) {
  ASSERT_EQ(Image({"convert", "--quality", "10", Path("source.png"), Path("low.jpg")}).status, 0);
  ASSERT_EQ(Image({"convert", Path("source.png"), Path("high.jpg"), "--quality", "100"}).status, 0);
  EXPECT_LT(ReadAll(dir_ / "low.jpg").size(), ReadAll(dir_ / "high.jpg").size());
  ASSERT_EQ(Image({"convert", Path("source.png"), Path("default.jpg")}).status, 0);
  const size_t standard = ReadAll(dir_ / "default.jpg").size();
  EXPECT_LT(ReadAll(dir_ / "low.jpg").size(), standard);
  EXPECT_GT(ReadAll(dir_ / "high.jpg").size(), standard);

  for (const char* method : {"0", "1", "5", "6"}) {
    const Outcome r = Image({"convert", "--filter", method, Path("source.png"), Path("f.png")});
    EXPECT_EQ(r.status, 0) << method << ": " << r.err;
    EXPECT_EQ(Image({"info", Path("f.png")}).status, 0);
  }
}

TEST_F(ImageCommand, BadInputSaysWhyInOneLine) {
  std::ofstream(dir_ / "text.png") << "This is not a picture, though it is long enough to be "
                                      "read whole by the surface's file routine.";
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string message;
  };
  const std::vector<Case> cases = {
      {{"info", Path("missing.png")}, 1, "cannot open '" + Path("missing.png") + "': no such file"},
      {{"info", dir_.string()}, 1, "it is a folder"},
      {{"info", Path("text.png")}, 1, "is not a picture this build reads"},
      {{"convert", Path("missing.png"), Path("x.bmp")}, 1, "no such file"},
      {{"convert", Path("source.png"), Path("x.tif")}, 2, "unknown extension '.tif'"},
      {{"convert", Path("source.png"), Path("noextension")}, 2, "unknown extension ''"},
      {{"convert", Path("source.png"), Path("no/such/folder/x.png")}, 1, "cannot write"},
      {{"convert", "--quality", "0", Path("source.png"), Path("x.jpg")}, 2, "from 1 to 100"},
      {{"convert", "--quality", "abc", Path("source.png"), Path("x.jpg")}, 2, "from 1 to 100"},
      {{"convert", Path("source.png"), Path("x.jpg"), "--quality"}, 2, "from 1 to 100"},
      {{"convert", "--filter", "7", Path("source.png"), Path("x.png")}, 2, "from 0 to 6"},
      {{"convert", "--quality", "50", Path("source.png"), Path("x.png")}, 2, ".jpg output only"},
      {{"convert", "--filter", "1", Path("source.png"), Path("x.jpg")}, 2, ".png output only"},
      {{"convert", "--size", "3", Path("source.png"), Path("x.png")}, 2, "unknown option"},
      {{"convert", Path("source.png")}, 2, "an input and an output file"},
      {{"info"}, 2, "info takes one file"},
      {{"resize", Path("source.png")}, 2, "unknown subcommand 'resize'"},
      {{}, 2, "no subcommand"},
  };
  for (const Case& c : cases) {
    const Outcome r = Image(c.args);
    EXPECT_EQ(r.status, c.status) << c.message;
    EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
    EXPECT_TRUE(r.err.starts_with("vantor image: ")) << r.err;
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    EXPECT_TRUE(r.out.empty()) << r.out;
  }
  EXPECT_FALSE(fs::exists(dir_ / "x.png"));
  EXPECT_FALSE(fs::exists(dir_ / "x.jpg"));
}

}  // namespace
}  // namespace vantor::tools
