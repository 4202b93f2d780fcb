// The first-frame reader against giflib's decoding of files giflib wrote, and
// our writer against giflib's reading of what it wrote.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "imaging/GifLzw.h"
#include "imaging/cGIFparser.h"
#include "tests/imaging/GifOracle.h"

namespace vantor::imaging {
namespace {

using namespace gif_oracle;

// The picture our reader should make of giflib's first frame.
std::vector<uint8_t> Expected(const Decoded& d) {
  return FramePixels(d.frames.at(0));
}

TEST(GifRead, EveryDepthInterlaceAndTransparencyAsGiflibDecodes) {
  std::mt19937 rng(7);
  for (int bits = 1; bits <= 8; ++bits) {
    for (bool interlace : {false, true}) {
      for (int transparent : {-1, 0, (1 << bits) - 1}) {
        const int colours = 1 << bits;
        FileSpec spec;
        spec.width = 37;
        spec.height = 23;
        spec.global = RandomPalette(static_cast<size_t>(colours), rng);
        FrameSpec f;
        f.width = spec.width;
        f.height = spec.height;
        f.interlace = interlace;
        f.transparent = transparent;
        f.indexes = RandomIndexes(size_t(f.width * f.height), colours, rng);
        spec.frames.push_back(f);
        const auto file = GiflibWrite(spec);
        ASSERT_FALSE(file.empty());
        const Decoded d = GiflibRead(file);
        ASSERT_TRUE(d.ok);
        ASSERT_EQ(d.frames[0].indexes, f.indexes) << "giflib round trip";

        Pixels p;
        ASSERT_TRUE(cGIFparser().LoadStream(file, p)) << bits << interlace << transparent;
        EXPECT_EQ(p.width, 37);
        EXPECT_EQ(p.height, 23);
        EXPECT_EQ(p.format, Image_GIF);
        EXPECT_EQ(p.alpha, transparent < 0 ? Alpha_None : Alpha_Simple);
        EXPECT_EQ(TopDown(p), Expected(d)) << bits << " bits, interlace " << interlace;
      }
    }
  }
}

TEST(GifRead, LargePicturesThroughFullTables) {
  // Noise fills the 4096-code table quickly; a smooth picture makes long
  // strings. Both must come out as giflib reads them.
  std::mt19937 rng(11);
  for (int kind = 0; kind < 2; ++kind) {
    FileSpec spec;
    spec.width = 613;
    spec.height = 401;
    spec.global = RandomPalette(256, rng);
    FrameSpec f;
    f.width = spec.width;
    f.height = spec.height;
    f.interlace = kind == 1;
    f.indexes.resize(size_t(f.width * f.height));
    for (int y = 0; y < f.height; ++y) {
      for (int x = 0; x < f.width; ++x) {
        f.indexes[size_t(y * f.width + x)] =
            kind == 0 ? static_cast<uint8_t>(rng()) : static_cast<uint8_t>((x / 50 + y / 40) % 7);
      }
    }
    spec.frames.push_back(f);
    const auto file = GiflibWrite(spec);
    const Decoded d = GiflibRead(file);
    ASSERT_TRUE(d.ok);
    Pixels p;
    ASSERT_TRUE(cGIFparser().LoadStream(file, p));
    EXPECT_EQ(TopDown(p), Expected(d));
  }
}

TEST(GifRead, FrameSmallerThanScreenAndLocalTable) {
  std::mt19937 rng(3);
  FileSpec spec;
  spec.width = 50;
  spec.height = 40;
  spec.global = RandomPalette(4, rng);
  FrameSpec f;
  f.left = 5;
  f.top = 7;
  f.width = 20;
  f.height = 10;
  f.local = RandomPalette(16, rng);
  f.indexes = RandomIndexes(200, 16, rng);
  spec.frames.push_back(f);
  const auto file = GiflibWrite(spec);
  const Decoded d = GiflibRead(file);
  Pixels p;
  ASSERT_TRUE(cGIFparser().LoadStream(file, p));
  EXPECT_EQ(p.width, 20);  // the frame fills the picture
  EXPECT_EQ(p.height, 10);
  EXPECT_EQ(TopDown(p), Expected(d));
}

TEST(GifRead, OnlyTheFirstFrameAndStartLength) {
  std::mt19937 rng(5);
  FileSpec spec;
  spec.width = 8;
  spec.height = 8;
  spec.global = RandomPalette(8, rng);
  for (int i = 0; i < 3; ++i) {
    FrameSpec f;
    f.width = f.height = 8;
    f.indexes = RandomIndexes(64, 8, rng);
    spec.frames.push_back(f);
  }
  const auto file = GiflibWrite(spec);
  const Decoded d = GiflibRead(file);
  std::vector<uint8_t> wrapped(7 + file.size() + 5, 0xEE);
  std::copy(file.begin(), file.end(), wrapped.begin() + 7);
  Pixels p;
  ASSERT_TRUE(cGIFparser().LoadStream(wrapped, p, 7, file.size()));
  EXPECT_EQ(TopDown(p), Expected(d));
  EXPECT_FALSE(cGIFparser().LoadStream(wrapped, p, 6, file.size()));
  EXPECT_TRUE(p.Empty());
}

TEST(GifRead, SignatureIsCaseBlind) {
  std::mt19937 rng(1);
  FileSpec spec{4, 4, RandomPalette(2, rng), {}, {}};
  FrameSpec f;
  f.width = f.height = 4;
  f.indexes = RandomIndexes(16, 2, rng);
  spec.frames.push_back(f);
  auto file = GiflibWrite(spec);
  Pixels p;
  file[5] = 'A';  // "GIF89A"
  EXPECT_TRUE(cGIFparser().LoadStream(file, p));
  file[3] = '8', file[4] = '7', file[5] = 'a';
  EXPECT_TRUE(cGIFparser().LoadStream(file, p));
  file[4] = '8';  // "GIF88a"
  EXPECT_FALSE(cGIFparser().LoadStream(file, p));
  EXPECT_TRUE(p.Empty());
}

TEST(GifRead, RefusesWhatIsNoPicture) {
  // Header and global table, then the trailer: no image.
  std::vector<uint8_t> noImage = {'G',  'I', 'F', '8', '9', 'a', 2,   0,   2,   0,
                                  0x80, 0,   0,   0,   0,   0,   255, 255, 255, 0x3B};
  Pixels p;
  EXPECT_FALSE(cGIFparser().LoadStream(noImage, p));
  EXPECT_TRUE(p.Empty());
  EXPECT_FALSE(cGIFparser().LoadStream(std::vector<uint8_t>{'G', 'I', 'F'}, p));
  EXPECT_FALSE(cGIFparser().LoadStream(std::vector<uint8_t>{}, p));
  // A global table that runs past the end.
  std::vector<uint8_t> cut(noImage.begin(), noImage.begin() + 15);
  EXPECT_FALSE(cGIFparser().LoadStream(cut, p));
}

TEST(GifRead, TruncatedDataLeavesTheRestClear) {
  std::mt19937 rng(9);
  FileSpec spec{64, 64, RandomPalette(256, rng), {}, {}};
  FrameSpec f;
  f.width = f.height = 64;
  f.indexes = RandomIndexes(64 * 64, 256, rng);
  spec.frames.push_back(f);
  auto file = GiflibWrite(spec);
  file.resize(file.size() / 2);
  Pixels p;
  ASSERT_TRUE(cGIFparser().LoadStream(file, p));
  EXPECT_EQ(p.alpha, Alpha_Simple);
  EXPECT_EQ(p.Row(0)[3], 255);  // the top came through
  EXPECT_EQ(p.Row(63)[3], 0);   // the bottom never did
  const Rgb c = spec.global[f.indexes[0]];
  EXPECT_EQ(p.Row(0)[2], c.r);
}

// ---------------------------------------------------------------- writing

// A picture of `colours` distinct opaque colours, some pixels fully clear
// when `clear`.
Pixels MakePicture(int width, int height, int colours, bool clear, std::mt19937& rng) {
  const auto palette = RandomPalette(size_t(colours), rng);
  Pixels p;
  p.Allocate(width, height);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      uint8_t* px = p.Row(y) + x * 4;
      if (clear && rng() % 5 == 0) continue;
      // Every colour appears at least once.
      const size_t k =
          size_t(y * width + x) < size_t(colours) ? size_t(y * width + x) : rng() % size_t(colours);
      px[0] = palette[k].b;
      px[1] = palette[k].g;
      px[2] = palette[k].r;
      px[3] = 255;
    }
  }
  p.alpha = p.ScanAlpha();
  return p;
}

TEST(GifWrite, GiflibReadsExactlyWhatWeWrote) {
  std::mt19937 rng(21);
  struct Case {
    int w, h, colours;
    bool clear;
  } cases[] = {{1, 1, 1, false},    {1, 1, 1, true},      {7, 3, 2, false},
               {16, 16, 3, true},   {33, 17, 16, false},  {64, 48, 200, true},
               {61, 59, 255, true}, {90, 70, 256, false}, {640, 480, 256, false},
               {300, 2, 5, true}};
  for (const Case& c : cases) {
    for (bool adaptive : {false, true}) {
      const Pixels p = MakePicture(c.w, c.h, c.colours, c.clear, rng);
      std::vector<uint8_t> file;
      ASSERT_TRUE(cGIFparser().SaveAsGIF(p, file, adaptive));
      const Decoded d = GiflibRead(file);
      ASSERT_TRUE(d.ok) << c.w << "x" << c.h;
      ASSERT_EQ(d.frames.size(), 1u);
      EXPECT_EQ(d.width, c.w);
      EXPECT_EQ(FramePixels(d.frames[0]), TopDown(p)) << c.w << "x" << c.h << " " << c.colours;
      // And ours reads it the same.
      Pixels back;
      ASSERT_TRUE(cGIFparser().LoadStream(file, back));
      EXPECT_EQ(TopDown(back), TopDown(p));
    }
  }
}

TEST(GifWrite, HeaderBlocksAndPaletteSize) {
  std::mt19937 rng(2);
  const Pixels p = MakePicture(10, 10, 5, true, rng);
  std::vector<uint8_t> f;
  ASSERT_TRUE(cGIFparser().SaveAsGIF(p, f));
  EXPECT_EQ(std::string(f.begin(), f.begin() + 6), "GIF89a");
  EXPECT_EQ(f[10] & 0x87, 0x82);  // global table of 8 entries: 5 colours and the clear one
  EXPECT_EQ(f[13 + 24], 0x21);    // the control extension follows the table
  EXPECT_EQ(f[13 + 24 + 1], 0xF9);
  EXPECT_EQ(f[13 + 24 + 3] & 1, 1);
  EXPECT_EQ(f[13 + 24 + 6], 5);  // the clear entry comes after the colours
  EXPECT_EQ(f[13 + 24 + 8], 0x2C);
  EXPECT_EQ(f.back(), 0x3B);
  // Sub-blocks of at most 254 bytes.
  const Pixels big = MakePicture(200, 200, 256, false, rng);
  ASSERT_TRUE(cGIFparser().SaveAsGIF(big, f));
  size_t pos = 13 + 768 + 10 + 1;
  size_t blocks = 0;
  while (f[pos] != 0) {
    EXPECT_LE(f[pos], 254);
    pos += f[pos] + 1u;
    ++blocks;
  }
  EXPECT_GT(blocks, 10u);
  EXPECT_EQ(pos + 2, f.size());
}

// A picture with far more than 256 colours: smooth gradients and a little
// structure, as a photograph has.
Pixels Photo(int w, int h) {
  Pixels p;
  p.Allocate(w, h);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      uint8_t* px = p.Row(y) + x * 4;
      px[2] = static_cast<uint8_t>(x * 255 / (w - 1));
      px[1] = static_cast<uint8_t>(y * 255 / (h - 1));
      px[0] = static_cast<uint8_t>(128 + 100 * std::sin((x + y) / 9.0));
      px[3] = 255;
    }
  }
  return p;
}

double MeanError(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b, int* worst) {
  double sum = 0;
  *worst = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    const int e = std::abs(int(a[i]) - int(b[i]));
    sum += e;
    *worst = std::max(*worst, e);
  }
  return sum / double(a.size());
}

// giflib's own median cut on the same picture, as the yardstick.
double GiflibQuantizerError(const Pixels& p) {
  const size_t n = size_t(p.width) * size_t(p.height);
  std::vector<GifByteType> r(n), g(n), b(n), out(n);
  const auto px = TopDown(p);
  for (size_t i = 0; i < n; ++i) {
    b[i] = px[i * 4];
    g[i] = px[i * 4 + 1];
    r[i] = px[i * 4 + 2];
  }
  int size = 256;
  std::vector<GifColorType> map(256);
  if (GifQuantizeBuffer(unsigned(p.width), unsigned(p.height), &size, r.data(), g.data(), b.data(),
                        out.data(), map.data()) != GIF_OK) {
    return -1;
  }
  double sum = 0;
  for (size_t i = 0; i < n; ++i) {
    const GifColorType c = map[out[i]];
    sum += std::abs(c.Blue - b[i]) + std::abs(c.Green - g[i]) + std::abs(c.Red - r[i]);
  }
  return sum / double(n * 4);  // over four bytes a pixel, as MeanError counts
}

TEST(GifWrite, ManyColoursAdaptiveOrFixed) {
  for (const Pixels& p : {Photo(160, 120), Photo(320, 200)}) {
    int worst = 0;
    std::vector<uint8_t> adaptive, fixed;
    ASSERT_TRUE(cGIFparser().SaveAsGIF(p, adaptive, true));
    ASSERT_TRUE(cGIFparser().SaveAsGIF(p, fixed, false));
    const Decoded a = GiflibRead(adaptive), f = GiflibRead(fixed);
    ASSERT_TRUE(a.ok && f.ok);
    const double adaptiveError = MeanError(FramePixels(a.frames[0]), TopDown(p), &worst);
    const double peer = GiflibQuantizerError(p);
    ASSERT_GT(peer, 0);
    EXPECT_LE(adaptiveError, peer * 1.05) << "giflib's median cut: " << peer;
    const double fixedError = MeanError(FramePixels(f.frames[0]), TopDown(p), &worst);
    EXPECT_LE(worst, 26);  // half a step of the 6-level cube
    EXPECT_LT(adaptiveError, fixedError);
    std::set<uint8_t> used(a.frames[0].indexes.begin(), a.frames[0].indexes.end());
    EXPECT_GT(used.size(), 200u);  // the palette is put to use
  }
}

TEST(GifWrite, ToleranceAndFill) {
  Pixels p;
  p.Allocate(4, 1);
  // Pre-multiplied: a half-transparent pure red, opaque green, alpha 127, clear.
  const uint8_t px[16] = {0, 0, 128, 128, 0, 255, 0, 255, 0, 0, 127, 127, 0, 0, 0, 0};
  std::memcpy(p.bytes.data(), px, 16);
  p.alpha = Alpha_Complex;
  std::vector<uint8_t> f;
  ASSERT_TRUE(cGIFparser().SaveAsGIF(p, f, true, 128));
  Decoded d = GiflibRead(f);
  auto out = FramePixels(d.frames[0]);
  EXPECT_EQ(out[3], 255);  // alpha 128 is kept...
  EXPECT_EQ(out[2], 255);  // ...at its straight colour
  EXPECT_EQ(out[11], 0);   // alpha 127 is not
  EXPECT_EQ(out[15], 0);
  // Laid over white instead.
  ASSERT_TRUE(cGIFparser().SaveAsGIF(p, f, true, 128, 0xFFFFFFu));
  d = GiflibRead(f);
  out = FramePixels(d.frames[0]);
  EXPECT_EQ(out[2], 255);
  EXPECT_EQ(out[1], 127);  // 255 x (255 - 128) / 255
  // A tolerance of 1 keeps all but the clear pixel.
  ASSERT_TRUE(cGIFparser().SaveAsGIF(p, f, true, 1));
  d = GiflibRead(f);
  out = FramePixels(d.frames[0]);
  EXPECT_EQ(out[11], 255);
  EXPECT_EQ(out[15], 0);
}

TEST(GifWrite, FilesAndRefusals) {
  std::mt19937 rng(4);
  const Pixels p = MakePicture(12, 9, 30, true, rng);
  EXPECT_FALSE(cGIFparser().SaveAsGIF(p, String()));
  std::vector<uint8_t> f;
  EXPECT_FALSE(cGIFparser().SaveAsGIF(Pixels{}, f));
  const auto dir = std::filesystem::temp_directory_path() / "vantor_gif_test";
  std::filesystem::create_directories(dir);
  const auto path = dir / "out.gif";
  ASSERT_TRUE(cGIFparser().SaveAsGIF(p, FromUtf8(path.string())));
  std::ifstream in(path, std::ios::binary);
  std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), {});
  ASSERT_TRUE(cGIFparser().SaveAsGIF(p, f));
  EXPECT_EQ(bytes, f);
  EXPECT_FALSE(cGIFparser().SaveAsGIF(p, FromUtf8((dir / "no/such/dir/x.gif").string())));
  std::filesystem::remove_all(dir);
}

TEST(GifLzw, InterlacedRowOrder) {
  // Rows sent: 0 8 16 | 4 12 | 2 6 10 14 | 1 3 5 ... for a height of 17.
  std::vector<int32_t> rows;
  for (int32_t r = 0; r < 17; ++r) rows.push_back(GifRowOf(r, 17, true));
  EXPECT_EQ(rows, (std::vector<int32_t>{0, 8, 16, 4, 12, 2, 6, 10, 14, 1, 3, 5, 7, 9, 11, 13, 15}));
  for (int32_t h = 1; h < 40; ++h) {
    std::set<int32_t> seen;
    for (int32_t r = 0; r < h; ++r) seen.insert(GifRowOf(r, h, true));
    EXPECT_EQ(seen.size(), size_t(h));
    EXPECT_EQ(*seen.rbegin(), h - 1);
  }
}

TEST(GifLzw, BrokenStreamsStopCleanly) {
  std::vector<uint8_t> idx;
  // Root size out of range, a code from nowhere, no data at all.
  EXPECT_EQ(DecodeGifImage(std::vector<uint8_t>{9, 1, 0xFF, 0}, 0, 4, 4, false, idx), 0u);
  EXPECT_EQ(DecodeGifImage(std::vector<uint8_t>{2, 1, 0x07, 0}, 0, 4, 4, false, idx), 0u);
  EXPECT_EQ(DecodeGifImage(std::vector<uint8_t>{2}, 0, 4, 4, false, idx), 0u);
  EXPECT_EQ(idx.size(), 16u);
}

}  // namespace
}  // namespace vantor::imaging
