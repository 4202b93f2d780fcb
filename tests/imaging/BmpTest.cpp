// Bitmaps of every depth and compression, written here header by header as
// the format describes them, must read back as the pixels put in; and what
// the saver writes must read back too.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include "imaging/cBMPparser.h"
#include "platform/Gdi.h"

namespace vantor::imaging {
namespace {

void Put16(std::vector<uint8_t>& o, uint32_t v) {
  o.push_back(uint8_t(v));
  o.push_back(uint8_t(v >> 8));
}
void Put32(std::vector<uint8_t>& o, uint32_t v) {
  Put16(o, v & 0xFFFF);
  Put16(o, v >> 16);
}

struct Bmp {
  int32_t width = 0, height = 0;  // negative height: top-down
  uint16_t bits = 24;
  uint32_t compression = 0;
  uint32_t headerSize = 40;
  std::vector<uint32_t> palette;  // B, G, R words
  std::vector<uint32_t> masks;    // after a 40-byte header, or inside a larger one
  std::vector<uint8_t> data;
  std::optional<uint32_t> offset;  // as written in the file header
  uint32_t used = 0;
};

std::vector<uint8_t> Write(const Bmp& b) {
  std::vector<uint8_t> h;
  const bool core = b.headerSize == 12;
  Put32(h, b.headerSize);
  if (core) {
    Put16(h, uint32_t(b.width));
    Put16(h, uint32_t(b.height));
    Put16(h, 1);
    Put16(h, b.bits);
  } else {
    Put32(h, uint32_t(b.width));
    Put32(h, uint32_t(b.height));
    Put16(h, 1);
    Put16(h, b.bits);
    Put32(h, b.compression);
    Put32(h, uint32_t(b.data.size()));
    Put32(h, 2835);
    Put32(h, 2835);
    Put32(h, b.used);
    Put32(h, 0);
    for (size_t i = 0; h.size() < b.headerSize; ++i) {
      Put32(h, b.headerSize > 40 && i < b.masks.size() ? b.masks[i] : 0);
    }
    if (b.headerSize == 40) {
      for (uint32_t m : b.masks) Put32(h, m);
    }
  }
  for (uint32_t c : b.palette) {
    Put16(h, c & 0xFFFF);
    if (core) {
      h.push_back(uint8_t(c >> 16));
    } else {
      Put16(h, c >> 16);
    }
  }
  std::vector<uint8_t> f = {'B', 'M'};
  Put32(f, uint32_t(14 + h.size() + b.data.size()));
  Put32(f, 0);
  Put32(f, b.offset.value_or(uint32_t(14 + h.size())));
  f.insert(f.end(), h.begin(), h.end());
  f.insert(f.end(), b.data.begin(), b.data.end());
  return f;
}

// Expected pictures are B, G, R, A, top row first.
std::vector<uint8_t> TopDown(const Pixels& p) {
  std::vector<uint8_t> out;
  for (int32_t y = 0; y < p.height; ++y) out.insert(out.end(), p.Row(y), p.Row(y) + p.Stride());
  return out;
}

void PutPixel(std::vector<uint8_t>& img, size_t i, uint32_t bgr, uint8_t a = 255) {
  img[i * 4] = uint8_t(bgr);
  img[i * 4 + 1] = uint8_t(bgr >> 8);
  img[i * 4 + 2] = uint8_t(bgr >> 16);
  img[i * 4 + 3] = a;
}

size_t Stride(int32_t width, int bits) {
  return size_t((width * bits + 31) / 32 * 4);
}

TEST(BmpRead, PaletteDepthsBothWaysUp) {
  std::mt19937 rng(1);
  for (uint16_t bits : {uint16_t{1}, uint16_t{2}, uint16_t{4}, uint16_t{8}}) {
    for (bool topDown : {false, true}) {
      for (uint32_t used : {0u, 3u}) {
        const int32_t w = 13, h = 7;
        const uint32_t entries = used ? std::min(used, 1u << bits) : 1u << bits;
        Bmp b;
        b.width = w;
        b.height = topDown ? -h : h;
        b.bits = bits;
        b.used = used ? entries : 0;
        for (uint32_t i = 0; i < entries; ++i) b.palette.push_back(rng() & 0xFFFFFF);
        const size_t stride = Stride(w, bits);
        b.data.assign(stride * h, 0);
        std::vector<uint8_t> expected(size_t(w * h) * 4);
        for (int32_t y = 0; y < h; ++y) {
          const int32_t fileRow = topDown ? y : h - 1 - y;
          for (int32_t x = 0; x < w; ++x) {
            const auto index = uint32_t(rng() % entries);
            const int perByte = 8 / bits;
            const int shift = 8 - bits * (x % perByte + 1);
            b.data[size_t(fileRow) * stride + size_t(x / perByte)] |= uint8_t(index << shift);
            PutPixel(expected, size_t(y * w + x), b.palette[index]);
          }
        }
        Pixels p;
        ASSERT_TRUE(cBMPparser().LoadStream(Write(b), p)) << bits;
        EXPECT_EQ(p.width, w);
        EXPECT_EQ(p.height, h);
        EXPECT_EQ(p.alpha, Alpha_None);
        EXPECT_EQ(p.format, Image_Bitmap);
        EXPECT_EQ(TopDown(p), expected) << bits << " bits, top-down " << topDown;
      }
    }
  }
}

TEST(BmpRead, IndexPastTheShortPaletteIsBlack) {
  Bmp b;
  b.width = 2;
  b.height = 1;
  b.bits = 8;
  b.used = 2;
  b.palette = {0x112233, 0x445566};
  b.data = {1, 200, 0, 0};
  Pixels p;
  ASSERT_TRUE(cBMPparser().LoadStream(Write(b), p));
  EXPECT_EQ(TopDown(p), (std::vector<uint8_t>{0x66, 0x55, 0x44, 255, 0, 0, 0, 255}));
}

TEST(BmpRead, TrueColourAndBitFields) {
  std::mt19937 rng(2);
  struct Case {
    const char* what;
    uint16_t bits;
    uint32_t compression, headerSize;
    std::vector<uint32_t> masks;
  } cases[] = {
      {"24", 24, 0, 40, {}},
      {"16 as 5-5-5", 16, 0, 40, {}},
      {"16 as 5-6-5", 16, 3, 40, {0xF800, 0x07E0, 0x001F}},
      {"16 as 4-4-4-4 in a V4 header", 16, 3, 108, {0x0F00, 0x00F0, 0x000F, 0xF000}},
      {"32 in R, G, B byte order", 32, 3, 40, {0x0000FF, 0x00FF00, 0xFF0000}},
      {"32 as 10-10-10", 32, 3, 124, {0x3FF00000, 0x000FFC00, 0x000003FF}},
      {"32 as 8-8-8 after the header", 32, 6, 40, {0xFF0000, 0xFF00, 0xFF, 0}},
  };
  // Large enough for the 16-bit table too.
  for (const Case& c : cases) {
    for (auto [w, h] : {std::pair<int32_t, int32_t>{5, 3}, {160, 110}}) {
      Bmp b;
      b.width = w;
      b.height = h;
      b.bits = c.bits;
      b.compression = c.compression;
      b.headerSize = c.headerSize;
      b.masks = c.masks;
      std::vector<uint32_t> masks = c.masks;
      if (masks.empty()) {
        masks = c.bits == 16 ? std::vector<uint32_t>{0x7C00, 0x3E0, 0x1F}
                             : std::vector<uint32_t>{0xFF0000, 0xFF00, 0xFF};
      }
      const size_t stride = Stride(w, c.bits);
      b.data.assign(stride * h, 0);
      std::vector<uint8_t> expected(size_t(w * h) * 4);
      bool anyAlpha = false;
      for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) {
          uint8_t* at = &b.data[size_t(h - 1 - y) * stride + size_t(x * c.bits / 8)];
          const auto v = uint32_t(rng());
          uint8_t channel[4] = {0, 0, 0, 255};
          for (size_t m = 0; m < masks.size(); ++m) {
            const uint32_t mask = masks[m];
            if (mask == 0) continue;
            const int shift = __builtin_ctz(mask);
            const uint32_t top = mask >> shift;
            const int n = 32 - __builtin_clz(top);
            const uint32_t field = (v >> shift) & top;
            channel[m] = uint8_t(n >= 8 ? field >> (n - 8) : (field * 255 + top / 2) / top);
          }
          const uint32_t value =
              v & (masks[0] | masks[1] | masks[2] | (masks.size() > 3 ? masks[3] : 0));
          for (int k = 0; k < c.bits / 8; ++k) at[k] = uint8_t(value >> (8 * k));
          if (masks.size() > 3 && masks[3]) anyAlpha = anyAlpha || channel[3] != 0;
          const size_t i = size_t(y * w + x);
          expected[i * 4] = channel[2];
          expected[i * 4 + 1] = channel[1];
          expected[i * 4 + 2] = channel[0];
          expected[i * 4 + 3] = channel[3];
        }
      }
      if (anyAlpha) {
        // Straight colours with alpha: pre-multiplied on the way in.
        for (size_t i = 0; i < expected.size(); i += 4) {
          for (int k = 0; k < 3; ++k)
            expected[i + k] = uint8_t(expected[i + k] * expected[i + 3] / 255);
        }
      }
      Pixels p;
      ASSERT_TRUE(cBMPparser().LoadStream(Write(b), p)) << c.what;
      EXPECT_EQ(TopDown(p), expected) << c.what << " " << w << "x" << h;
    }
  }
}

// A 32-bit picture whose fourth bytes are `alpha`, colours `colour`.
std::vector<uint8_t> Bmp32(const std::vector<uint8_t>& bgra, int32_t w, int32_t h) {
  Bmp b;
  b.width = w;
  b.height = h;
  b.bits = 32;
  // Rows bottom-up: the given pixels are top row first.
  for (int32_t y = h - 1; y >= 0; --y) {
    b.data.insert(b.data.end(), bgra.begin() + y * w * 4, bgra.begin() + (y + 1) * w * 4);
  }
  return Write(b);
}

TEST(BmpRead, TheAlphaDecision) {
  Pixels p;
  // All alpha 0: no alpha at all, and opaque rather than invisible.
  ASSERT_TRUE(cBMPparser().LoadStream(Bmp32({10, 20, 30, 0, 40, 50, 60, 0}, 2, 1), p));
  EXPECT_EQ(TopDown(p), (std::vector<uint8_t>{10, 20, 30, 255, 40, 50, 60, 255}));
  EXPECT_EQ(p.alpha, Alpha_None);
  EXPECT_EQ(p.format, Image_Bitmap);
  // No colour above its alpha: already pre-multiplied, kept as it is.
  ASSERT_TRUE(cBMPparser().LoadStream(Bmp32({10, 20, 30, 128, 0, 0, 0, 0}, 2, 1), p));
  EXPECT_EQ(TopDown(p), (std::vector<uint8_t>{10, 20, 30, 128, 0, 0, 0, 0}));
  EXPECT_EQ(p.alpha, Alpha_Complex);
  EXPECT_EQ(p.format, Image_Bitmap_PARGB);
  // A colour above its alpha: straight, pre-multiplied here (x a / 255).
  ASSERT_TRUE(cBMPparser().LoadStream(Bmp32({200, 100, 50, 128, 9, 9, 9, 0}, 2, 1), p));
  EXPECT_EQ(TopDown(p), (std::vector<uint8_t>{100, 50, 25, 128, 0, 0, 0, 0}));
  EXPECT_EQ(p.format, Image_Bitmap_ARGB);
  // Only 0 and 255.
  ASSERT_TRUE(cBMPparser().LoadStream(Bmp32({1, 2, 3, 255, 0, 0, 0, 0}, 2, 1), p));
  EXPECT_EQ(p.alpha, Alpha_Simple);
  EXPECT_EQ(p.format, Image_Bitmap_PARGB);
}

TEST(BmpRead, OldOs2Header) {
  Bmp b;
  b.headerSize = 12;
  b.width = 3;
  b.height = 2;
  b.bits = 8;
  b.palette = {0x010203, 0x040506, 0x070809};
  b.palette.resize(256);
  b.data = {0, 1, 2, 0, 2, 1, 0, 0};  // bottom row first
  Pixels p;
  ASSERT_TRUE(cBMPparser().LoadStream(Write(b), p));
  EXPECT_EQ(TopDown(p), (std::vector<uint8_t>{9, 8, 7, 255, 6, 5, 4, 255, 3, 2, 1, 255,  //
                                              3, 2, 1, 255, 6, 5, 4, 255, 9, 8, 7, 255}));
}

// The run-length model: a grid of indexes, -1 where the data never wrote.
struct RleCase {
  const char* what;
  uint16_t bits;
  int32_t w, h;
  std::vector<uint8_t> data;
  std::vector<int> indexes;  // top row first
};

TEST(BmpRead, RunLengthEncodings) {
  const RleCase cases[] = {
      {"RLE8 runs, a literal with padding, end of line, jump, end",
       8,
       6,
       4,
       {3, 1, 0, 3, 2, 3, 4, 0,  // bottom row: 1 1 1, literal 2 3 4 (+ pad)
        0, 0,                    // end of line
        2, 5, 0, 2, 2, 1,        // row 1: 5 5, then jump 2 right 1 up
        1, 7,                    // row 2 from x 4: one 7
        0, 1},                   // end of picture
       {-1, -1, -1, -1, -1, -1,  // row 3 never reached
        -1, -1, -1, -1, 7,  -1,  //
        5,  5,  -1, -1, -1, -1,  //
        1,  1,  1,  2,  3,  4}},
      {"RLE4 alternating runs and an odd literal",
       4,
       7,
       2,
       {5, 0x12, 0, 0,            // bottom row: 1 2 1 2 1
        0, 3, 0x34, 0x50, 0, 1},  // top row: literal 3 4 5, padded to a word; end
       {3, 4, 5, -1, -1, -1, -1,  //
        1, 2, 1, 2, 1, -1, -1}},
      {"RLE8 runs cut at the row's end", 8, 3, 1, {9, 6, 0, 1}, {6, 6, 6}},
  };
  std::vector<uint32_t> palette(256);
  for (uint32_t i = 0; i < 256; ++i) palette[i] = i * 0x010101u + 0x000100u;
  for (const RleCase& c : cases) {
    Bmp b;
    b.width = c.w;
    b.height = c.h;
    b.bits = c.bits;
    b.compression = c.bits == 8 ? 1 : 2;
    b.palette.assign(palette.begin(), palette.begin() + (1 << c.bits));
    b.data = c.data;
    std::vector<uint8_t> expected(size_t(c.w * c.h) * 4, 0);
    for (size_t i = 0; i < c.indexes.size(); ++i) {
      // Pixels the runs never reached stay black, and all are opaque.
      PutPixel(expected, i, c.indexes[i] < 0 ? 0 : palette[size_t(c.indexes[i])]);
    }
    Pixels p;
    ASSERT_TRUE(cBMPparser().LoadStream(Write(b), p)) << c.what;
    EXPECT_EQ(p.alpha, Alpha_None);
    EXPECT_EQ(TopDown(p), expected) << c.what;
  }
}

TEST(BmpRead, DataOffsetFallbacks) {
  Bmp b;
  b.width = 2;
  b.height = 2;
  b.bits = 24;
  b.data = {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0};
  const std::vector<uint8_t> expected = {7, 8, 9, 255, 10, 11, 12, 255, 1, 2, 3, 255, 4, 5, 6, 255};
  for (uint32_t offset : {0u, 5000u, 54u}) {
    b.offset = offset;
    Pixels p;
    ASSERT_TRUE(cBMPparser().LoadStream(Write(b), p)) << offset;
    EXPECT_EQ(TopDown(p), expected) << offset;
  }
  // Some padding between the header and the data, with the offset lost:
  // the data is taken from the end.
  auto f = Write(b);
  f.insert(f.begin() + 54, 6, 0xAA);
  f[10] = f[11] = f[12] = f[13] = 0;
  Pixels p;
  ASSERT_TRUE(cBMPparser().LoadStream(f, p));
  EXPECT_EQ(TopDown(p), expected);
  // The last row's padding may be missing.
  b.offset.reset();
  f = Write(b);
  f.resize(f.size() - 2);
  ASSERT_TRUE(cBMPparser().LoadStream(f, p));
  EXPECT_EQ(TopDown(p), expected);
  // Start and length place the file inside a larger array.
  f = Write(b);
  std::vector<uint8_t> wrapped(3 + f.size() + 1, 0x55);
  std::copy(f.begin(), f.end(), wrapped.begin() + 3);
  ASSERT_TRUE(cBMPparser().LoadStream(wrapped, p, 3, f.size()));
  EXPECT_EQ(TopDown(p), expected);
}

TEST(BmpRead, Refusals) {
  Bmp good;
  good.width = 4;
  good.height = 4;
  good.bits = 24;
  good.data.assign(48, 7);
  struct Case {
    const char* what;
    std::function<void(std::vector<uint8_t>&)> spoil;
  } cases[] = {
      {"signature", [](auto& f) { f[1] = 'N'; }},
      {"header size", [](auto& f) { f[14] = 5; }},
      {"width 0", [](auto& f) { f[18] = 0; }},
      {"negative width", [](auto& f) { f[21] = 0xFF; }},
      {"height 0", [](auto& f) { f[22] = 0; }},
      {"3 bits", [](auto& f) { f[28] = 3; }},
      {"JPEG inside", [](auto& f) { f[30] = 4; }},
      {"RLE8 on 24 bits", [](auto& f) { f[30] = 1; }},
      {"data cut", [](auto& f) { f.erase(f.end() - 13, f.end()); }},
      {"header cut", [](auto& f) { f.erase(f.begin() + 30, f.end()); }},
      {"huge", [](auto& f) { f[21] = 0x7F, f[25] = 0x7F; }},
      {"bit fields on 24 bits", [](auto& f) { f[30] = 3; }},
  };
  for (const Case& c : cases) {
    auto f = Write(good);
    Pixels p;
    ASSERT_TRUE(cBMPparser().LoadStream(f, p));
    c.spoil(f);
    EXPECT_FALSE(cBMPparser().LoadStream(f, p)) << c.what;
    EXPECT_TRUE(p.Empty()) << c.what;
  }
  Pixels p;
  EXPECT_FALSE(cBMPparser().LoadStream(std::vector<uint8_t>{}, p));
  EXPECT_FALSE(cBMPparser().LoadStream(Write(good), p, 1));
  // A run-length picture far larger than its data could ever cover.
  Bmp rle;
  rle.width = 30000;
  rle.height = 30000;
  rle.bits = 8;
  rle.compression = 1;
  rle.palette.resize(256);
  rle.data = {0, 1};
  EXPECT_FALSE(cBMPparser().LoadStream(Write(rle), p));
}

// ---------------------------------------------------------------- saving

Pixels Picture(int32_t w, int32_t h, bool withAlpha, std::mt19937& rng) {
  Pixels p;
  p.Allocate(w, h);
  for (size_t i = 0; i < p.bytes.size(); i += 4) {
    const uint8_t a = withAlpha ? uint8_t(rng() % 3 == 0 ? 0 : rng() % 2 ? 255 : rng()) : 255;
    for (int k = 0; k < 3; ++k) p.bytes[i + k] = uint8_t(uint8_t(rng()) * a / 255);
    p.bytes[i + 3] = a;
  }
  p.alpha = p.ScanAlpha();
  return p;
}

TEST(BmpWrite, ReadsBackAsWritten) {
  std::mt19937 rng(5);
  for (auto [w, h] : {std::pair{1, 1}, {3, 5}, {17, 9}, {64, 2}}) {
    // Opaque: 24 bits, rows padded to 4 bytes.
    Pixels opaque = Picture(w, h, false, rng);
    std::vector<uint8_t> f;
    ASSERT_TRUE(cBMPparser().SaveAsBMP(opaque, f));
    EXPECT_EQ(f[28], 24);
    EXPECT_EQ(f.size(), 54 + Stride(w, 24) * size_t(h));
    Pixels back;
    ASSERT_TRUE(cBMPparser().LoadStream(f, back));
    EXPECT_EQ(back.bytes, opaque.bytes);
    EXPECT_EQ(back.alpha, Alpha_None);

    // With alpha: straight 32 bits, which read back to the same bytes.
    Pixels clear = Picture(w, h, true, rng);
    clear.bytes[3] = 100;  // at least one pixel in between
    clear.bytes[0] = clear.bytes[1] = 50;
    clear.bytes[2] = 99;
    clear.alpha = clear.ScanAlpha();
    ASSERT_TRUE(cBMPparser().SaveAsBMP(clear, f));
    EXPECT_EQ(f[28], 32);
    ASSERT_TRUE(cBMPparser().LoadStream(f, back));
    EXPECT_EQ(back.bytes, clear.bytes) << w << "x" << h;
    EXPECT_EQ(back.alpha, clear.alpha);

    // Kept pre-multiplied: the bytes as they stand.
    ASSERT_TRUE(cBMPparser().SaveAsBMP(clear, f, true));
    EXPECT_TRUE(std::equal(clear.bytes.begin(), clear.bytes.end(), f.begin() + 54));
    ASSERT_TRUE(cBMPparser().LoadStream(f, back));
    EXPECT_EQ(back.bytes, clear.bytes);
    EXPECT_EQ(back.format, Image_Bitmap_PARGB);
  }
}

TEST(BmpWrite, HeadersAndFill) {
  Pixels p;
  p.Allocate(2, 1);
  const uint8_t px[8] = {0, 0, 128, 128, 10, 20, 30, 255};  // half-clear red, opaque
  std::memcpy(p.bytes.data(), px, 8);
  p.alpha = Alpha_Complex;
  std::vector<uint8_t> f;
  ASSERT_TRUE(cBMPparser().SaveAsBMP(p, f, false, 0x00FF0000u));  // over blue
  ASSERT_EQ(f.size(), 54u + 8u);
  EXPECT_EQ(f[0], 'B');
  EXPECT_EQ(f[1], 'M');
  EXPECT_EQ(f[2], 62);
  EXPECT_EQ(f[10], 54);
  EXPECT_EQ(f[14], 40);
  EXPECT_EQ(f[26], 1);   // one plane
  EXPECT_EQ(f[28], 24);  // the fill makes it opaque
  // Blue 255 x (255 - 128) / 255 = 127 under the red.
  EXPECT_EQ(std::vector<uint8_t>(f.begin() + 54, f.end()),
            (std::vector<uint8_t>{127, 0, 128, 10, 20, 30, 0, 0}));
  // A system colour is translated first: COLOR_WINDOW (5) is white here.
  ASSERT_TRUE(cBMPparser().SaveAsBMP(p, f, false, 0x80000005u));
  EXPECT_EQ(f[54], 127);
  EXPECT_EQ(f[55], 127);
  EXPECT_FALSE(cBMPparser().SaveAsBMP(Pixels{}, f));
  EXPECT_TRUE(f.empty());
}

TEST(BmpWrite, Files) {
  std::mt19937 rng(6);
  const Pixels p = Picture(6, 4, true, rng);
  EXPECT_FALSE(cBMPparser().SaveAsBMP(p, String()));
  const auto dir = std::filesystem::temp_directory_path() / "vantor_bmp_test";
  std::filesystem::create_directories(dir);
  const auto path = dir / "out.bmp";
  ASSERT_TRUE(cBMPparser().SaveAsBMP(p, FromUtf8(path.string())));
  std::ifstream in(path, std::ios::binary);
  std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), {});
  std::vector<uint8_t> f;
  ASSERT_TRUE(cBMPparser().SaveAsBMP(p, f));
  EXPECT_EQ(bytes, f);
  EXPECT_FALSE(cBMPparser().SaveAsBMP(p, FromUtf8((dir / "none/x.bmp").string())));
  std::filesystem::remove_all(dir);
}

// ---------------------------------------------------------------- handles

TEST(BmpHandle, ThirtyTwoBitsJudgedOthersOpaque) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = 2;
  info.bmiHeader.biHeight = 2;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  HBITMAP dib = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  ASSERT_NE(dib, nullptr);
  const uint8_t straight[16] = {200, 100, 50, 128, 0, 0, 0, 0, 1, 2, 3, 255, 4, 5, 6, 255};
  std::memcpy(bits, straight, 16);
  Pixels p;
  ASSERT_TRUE(cBMPparser().ConvertstdPicTo32bpp(dib, p));
  EXPECT_EQ(p.format, Image_Bitmap_ARGB);
  EXPECT_EQ(p.bytes,
            (std::vector<uint8_t>{100, 50, 25, 128, 0, 0, 0, 0, 1, 2, 3, 255, 4, 5, 6, 255}));
  std::memset(bits, 0, 16);
  static_cast<uint8_t*>(bits)[0] = 9;
  ASSERT_TRUE(cBMPparser().ConvertstdPicTo32bpp(dib, p));
  EXPECT_EQ(p.alpha, Alpha_None);
  EXPECT_EQ(p.bytes[0], 9);
  EXPECT_EQ(p.bytes[3], 255);
  DeleteObject(dib);

  const uint8_t mono[4] = {0x80, 0, 0x40, 0};  // rows of 16 bits: white at x 0, then x 1
  HBITMAP bw = CreateBitmap(2, 2, 1, 1, mono);
  ASSERT_NE(bw, nullptr);
  ASSERT_TRUE(cBMPparser().ConvertstdPicTo32bpp(bw, p));
  EXPECT_EQ(p.alpha, Alpha_None);
  EXPECT_EQ(p.format, Image_Bitmap);
  EXPECT_EQ(p.Row(0)[0], 255);
  EXPECT_EQ(p.Row(0)[4], 0);
  EXPECT_EQ(p.Row(1)[4], 255);
  EXPECT_EQ(p.Row(0)[7], 255);
  DeleteObject(bw);
  EXPECT_FALSE(cBMPparser().ConvertstdPicTo32bpp(nullptr, p));
  EXPECT_TRUE(p.Empty());
}

}  // namespace
}  // namespace vantor::imaging
