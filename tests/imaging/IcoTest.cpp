// Icon and cursor files built here entry by entry: DIB entries of every depth
// with their AND masks, and PNG entries that libpng writes.
#include <gtest/gtest.h>
#include <png.h>

#include <cstring>
#include <random>

#include "imaging/cICOparser.h"
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

// A picture to put in an entry: straight B, G, R, A, top row first, and for
// palette depths the indexes and palette behind it.
struct Art {
  int32_t w = 0, h = 0;
  std::vector<uint8_t> bgra;
  std::vector<uint8_t> indexes;
  std::vector<uint32_t> palette;  // B, G, R words
  std::vector<bool> clear;        // the AND mask, top row first
};

Art MakeArt(int32_t w, int32_t h, int bits, bool alpha, bool masked, std::mt19937& rng) {
  Art a;
  a.w = w;
  a.h = h;
  const size_t n = size_t(w * h);
  a.bgra.assign(n * 4, 0);
  a.clear.assign(n, false);
  if (bits <= 8) {
    for (int i = 0; i < (1 << bits); ++i) a.palette.push_back(uint32_t(rng()) & 0xFFFFFF);
  }
  for (size_t i = 0; i < n; ++i) {
    uint32_t c = uint32_t(rng()) & 0xFFFFFF;
    if (bits <= 8) {
      a.indexes.push_back(uint8_t(rng() % a.palette.size()));
      c = a.palette[a.indexes.back()];
    } else if (bits == 16) {
      // Colours that 5 bits a channel hold exactly.
      auto five = [](uint32_t v) { return ((v & 31) * 255 + 15) / 31; };
      const uint32_t v = uint32_t(rng());
      c = five(v) | five(v >> 5) << 8 | five(v >> 10) << 16;
      a.indexes.push_back(uint8_t(v));
      a.indexes.push_back(uint8_t((v >> 8) & 0x7F));
    }
    a.bgra[i * 4] = uint8_t(c);
    a.bgra[i * 4 + 1] = uint8_t(c >> 8);
    a.bgra[i * 4 + 2] = uint8_t(c >> 16);
    a.bgra[i * 4 + 3] = alpha ? uint8_t(rng() % 4 == 0 ? 0 : rng() % 2 ? 255 : rng()) : 0;
    a.clear[i] = masked && rng() % 3 == 0;
  }
  return a;
}

std::vector<uint8_t> DibEntry(const Art& a, int bits, bool withMask = true) {
  std::vector<uint8_t> e;
  const size_t stride = size_t((a.w * bits + 31) / 32 * 4);
  const size_t maskStride = size_t((a.w + 31) / 32 * 4);
  Put32(e, 40);
  Put32(e, uint32_t(a.w));
  Put32(e, uint32_t(a.h * 2));
  Put16(e, 1);
  Put16(e, uint32_t(bits));
  Put32(e, 0);
  Put32(e, uint32_t((stride + maskStride) * size_t(a.h)));
  for (int i = 0; i < 4; ++i) Put32(e, 0);
  for (uint32_t c : a.palette) Put32(e, c);
  for (int32_t y = a.h - 1; y >= 0; --y) {
    std::vector<uint8_t> row(stride, 0);
    for (int32_t x = 0; x < a.w; ++x) {
      const size_t i = size_t(y * a.w + x);
      if (bits <= 8) {
        const int perByte = 8 / bits, shift = 8 - bits * (x % perByte + 1);
        row[size_t(x / perByte)] |= uint8_t(a.indexes[i] << shift);
      } else if (bits == 16) {
        row[size_t(x) * 2] = a.indexes[i * 2];
        row[size_t(x) * 2 + 1] = a.indexes[i * 2 + 1];
      } else {
        std::memcpy(&row[size_t(x * bits / 8)], &a.bgra[i * 4], size_t(bits / 8));
      }
    }
    e.insert(e.end(), row.begin(), row.end());
  }
  if (withMask) {
    for (int32_t y = a.h - 1; y >= 0; --y) {
      std::vector<uint8_t> row(maskStride, 0);
      for (int32_t x = 0; x < a.w; ++x) {
        if (a.clear[size_t(y * a.w + x)]) row[size_t(x / 8)] |= uint8_t(0x80 >> (x % 8));
      }
      e.insert(e.end(), row.begin(), row.end());
    }
  }
  return e;
}

std::vector<uint8_t> PngEntry(const Art& a) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = png_uint_32(a.w);
  image.height = png_uint_32(a.h);
  image.format = PNG_FORMAT_BGRA;
  png_alloc_size_t size = 0;
  png_image_write_to_memory(&image, nullptr, &size, 0, a.bgra.data(), 0, nullptr);
  std::vector<uint8_t> out(size);
  EXPECT_TRUE(png_image_write_to_memory(&image, out.data(), &size, 0, a.bgra.data(), 0, nullptr));
  out.resize(size);
  return out;
}

struct Entry {
  std::vector<uint8_t> bytes;
  uint8_t width = 0, height = 0, colours = 0;
  uint16_t planes = 1, bitCount = 32;
};

std::vector<uint8_t> IconFile(const std::vector<Entry>& entries, uint16_t type = 1) {
  std::vector<uint8_t> f;
  Put16(f, 0);
  Put16(f, type);
  Put16(f, uint32_t(entries.size()));
  uint32_t offset = uint32_t(6 + 16 * entries.size());
  for (const Entry& e : entries) {
    f.push_back(e.width);
    f.push_back(e.height);
    f.push_back(e.colours);
    f.push_back(0);
    Put16(f, e.planes);
    Put16(f, e.bitCount);
    Put32(f, uint32_t(e.bytes.size()));
    Put32(f, offset);
    offset += uint32_t(e.bytes.size());
  }
  for (const Entry& e : entries) f.insert(f.end(), e.bytes.begin(), e.bytes.end());
  return f;
}

Entry Dib(const Art& a, int bits, bool withMask = true) {
  return {DibEntry(a, bits, withMask),
          uint8_t(a.w),
          uint8_t(a.h),
          uint8_t(bits <= 8 ? (1 << bits) & 0xFF : 0),
          1,
          uint16_t(bits)};
}

std::vector<uint8_t> TopDown(const Pixels& p) {
  std::vector<uint8_t> out;
  for (int32_t y = 0; y < p.height; ++y) out.insert(out.end(), p.Row(y), p.Row(y) + p.Stride());
  return out;
}

// What a masked entry shows: opaque colours, clear (and black) where the mask
// is set.
std::vector<uint8_t> Masked(const Art& a) {
  std::vector<uint8_t> px = a.bgra;
  for (size_t i = 0; i < a.clear.size(); ++i) {
    px[i * 4 + 3] = 255;
    if (a.clear[i]) std::memset(&px[i * 4], 0, 4);
  }
  return px;
}

std::vector<uint8_t> Premultiplied(const Art& a) {
  std::vector<uint8_t> px = a.bgra;
  for (size_t i = 0; i < px.size(); i += 4) {
    for (int k = 0; k < 3; ++k) px[i + k] = uint8_t(px[i + k] * px[i + 3] / 255);
  }
  return px;
}

TEST(IcoChoice, TheRule) {
  using C = cICOparser::Candidate;
  struct Case {
    const char* what;
    std::vector<C> entries;
    int32_t w, h, d;
    int32_t expected;
  } cases[] = {
      {"one entry", {{16, 16, 4}}, 48, 48, 32, 0},
      {"smaller wanted: the closest larger", {{32, 32, 32}, {48, 48, 32}}, 16, 16, 32, 0},
      {"larger wanted: the closest smaller", {{32, 32, 32}, {48, 48, 32}}, 64, 64, 32, 1},
      {"exact size and depth stops", {{48, 48, 8}, {32, 32, 32}, {32, 32, 32}}, 32, 32, 32, 1},
      {"depth counts", {{32, 32, 4}, {32, 32, 8}, {32, 32, 24}}, 32, 32, 8, 1},
      {"no depth wanted means 32", {{32, 32, 8}, {32, 32, 32}}, 32, 32, 0, 1},
      {"no size wanted: the largest", {{16, 16, 32}, {256, 256, 32}, {48, 48, 32}}, 0, 0, 0, 1},
      {"ties keep the earlier", {{40, 40, 32}, {40, 40, 32}}, 32, 32, 32, 0},
      {"second run: ties keep the later", {{16, 16, 32}, {16, 16, 32}}, 64, 64, 32, 1},
      {"second run: the size and the distance from 32 bits",
       {{40, 40, 32}, {44, 44, 4}},
       64,
       64,
       32,
       1},
      {"depth 0 is passed over", {{32, 32, 0}, {48, 48, 32}}, 32, 32, 32, 1},
      {"more than 32 bits never wins the first run", {{32, 32, 64}, {48, 48, 32}}, 32, 32, 32, 1},
      {"nothing usable: the first", {{32, 32, 0}, {48, 48, 0}}, 32, 32, 32, 0},
      // A wider but shorter entry can score exactly 0 and stop the search.
      {"the sum of the terms", {{64, 16, 32}, {32, 32, 32}}, 48, 24, 32, 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(cICOparser::ChooseEntry(c.entries, c.w, c.h, c.d), c.expected) << c.what;
  }
  EXPECT_EQ(cICOparser::ChooseEntry({}, 16, 16, 32), -1);
  // Sizes and depths no honest header gives still score without overflow.
  const int32_t big = INT32_MAX, small = INT32_MIN;
  EXPECT_EQ(
      cICOparser::ChooseEntry({{big, big, 32}, {small, small, small}, {big, 16, 8}}, big, 1, 32),
      2);
  EXPECT_EQ(cICOparser::ChooseEntry({{small, small, big}, {small, 1, 32}}, big, big, 1), 0);
}

TEST(IcoRead, DirectoryCorrectedFromTheEntries) {
  std::mt19937 rng(1);
  Entry e16 = Dib(MakeArt(16, 16, 4, false, true, rng), 4);
  e16.width = 99;  // wrong in the directory; the header says 16
  e16.bitCount = 0;
  Entry e32 = Dib(MakeArt(32, 32, 8, false, true, rng), 8);
  Entry big{PngEntry(MakeArt(256, 256, 32, true, false, rng)), 0, 0, 0, 1, 32};
  const auto file = IconFile({e16, e32, big});
  cICOparser ico;
  ASSERT_TRUE(ico.ReadDirectory(file));
  ASSERT_EQ(ico.IconCount(), 3);
  EXPECT_EQ(ico.IconType(), 1);
  EXPECT_EQ(ico.Width(0), 16);
  EXPECT_EQ(ico.Height(0), 16);  // the DIB's doubled height, halved
  EXPECT_EQ(ico.bitDepth(0), 4);
  EXPECT_EQ(ico.ColorCount(0), 16);
  EXPECT_EQ(ico.Entry(0).width, 99);  // the raw record stays as the file has it
  EXPECT_FALSE(ico.IsIconPNG(0));
  EXPECT_EQ(ico.Width(1), 32);
  EXPECT_EQ(ico.bitDepth(1), 8);
  EXPECT_EQ(ico.ColorCount(1), 256);
  EXPECT_EQ(ico.Width(2), 256);  // width byte 0
  EXPECT_EQ(ico.Height(2), 256);
  EXPECT_TRUE(ico.IsIconPNG(2));
  EXPECT_EQ(ico.bitDepth(2), 32);
  EXPECT_EQ(ico.ColorCount(2), 0);
  EXPECT_EQ(ico.ColorByteOffset(0), 6 + 3 * 16);
  EXPECT_EQ(ico.ColorByteOffset(1), int32_t(6 + 3 * 16 + e16.bytes.size()));
  EXPECT_EQ(ico.Width(3), 0);  // no such entry
  EXPECT_FALSE(ico.IsIconPNG(-1));
}

TEST(IcoRead, EveryDibDepthWithItsMask) {
  std::mt19937 rng(2);
  for (int bits : {1, 4, 8, 16, 24}) {
    for (bool masked : {true, false}) {
      const Art a = MakeArt(bits == 1 ? 35 : 13, 9, bits, false, masked, rng);
      Pixels p;
      ASSERT_TRUE(cICOparser().LoadStream(IconFile({Dib(a, bits)}), p)) << bits;
      EXPECT_EQ(p.format, Image_Icon);
      EXPECT_EQ(p.alpha, masked ? Alpha_Simple : Alpha_None);
      EXPECT_EQ(TopDown(p), Masked(a)) << bits << " bits";
    }
  }
}

TEST(IcoRead, ThirtyTwoBitsAlphaOrMask) {
  std::mt19937 rng(3);
  const Art alpha = MakeArt(20, 20, 32, true, true, rng);
  Pixels p;
  ASSERT_TRUE(cICOparser().LoadStream(IconFile({Dib(alpha, 32)}), p));
  EXPECT_EQ(p.format, Image_Icon_ARGB);
  EXPECT_EQ(p.alpha, Alpha_Complex);
  EXPECT_EQ(TopDown(p), Premultiplied(alpha));  // the mask is not looked at
  // All alpha 0: the mask rules.
  const Art none = MakeArt(20, 20, 32, false, true, rng);
  ASSERT_TRUE(cICOparser().LoadStream(IconFile({Dib(none, 32)}), p));
  EXPECT_EQ(p.format, Image_Icon);
  EXPECT_EQ(p.alpha, Alpha_Simple);
  EXPECT_EQ(TopDown(p), Masked(none));
  // And with no mask in the entry at all, opaque.
  ASSERT_TRUE(cICOparser().LoadStream(IconFile({Dib(none, 32, false)}), p));
  EXPECT_EQ(p.alpha, Alpha_None);
}

TEST(IcoRead, Cursors) {
  std::mt19937 rng(4);
  const Art mono = MakeArt(32, 32, 1, false, true, rng);
  Entry e = Dib(mono, 1);
  e.planes = 5;    // hot spot x
  e.bitCount = 7;  // hot spot y
  Pixels p;
  ASSERT_TRUE(cICOparser().LoadStream(IconFile({e}, 2), p));
  EXPECT_EQ(p.format, Image_Cursor);
  EXPECT_EQ(TopDown(p), Masked(mono));
  const Art colour = MakeArt(32, 32, 32, true, false, rng);
  ASSERT_TRUE(cICOparser().LoadStream(IconFile({Dib(colour, 32)}, 2), p));
  EXPECT_EQ(p.format, Image_Cursor_ARGB);
}

TEST(IcoRead, PngEntries) {
  std::mt19937 rng(5);
  Art a = MakeArt(40, 30, 32, true, false, rng);
  // Only 0 and 255, so that no rounding of the pre-multiplication is in play.
  for (size_t i = 3; i < a.bgra.size(); i += 4) a.bgra[i] = a.bgra[i] < 128 ? 0 : 255;
  Entry png{PngEntry(a), 40, 30, 0, 1, 32};
  Pixels p;
  ASSERT_TRUE(cICOparser().LoadStream(IconFile({png}), p));
  EXPECT_EQ(p.format, Image_PNG_Icon);
  EXPECT_EQ(TopDown(p), Premultiplied(a));
  // A PNG that is broken inside fails the load, not the process.
  png.bytes[40] ^= 0xFF;
  png.bytes.resize(png.bytes.size() - 20);
  EXPECT_FALSE(cICOparser().LoadStream(IconFile({png}), p));
  EXPECT_TRUE(p.Empty());
}

TEST(IcoRead, TheWantedEntryIsDecoded) {
  std::mt19937 rng(6);
  const Art a16 = MakeArt(16, 16, 8, false, true, rng);
  const Art a32 = MakeArt(32, 32, 32, true, false, rng);
  const Art a48 = MakeArt(48, 48, 32, true, false, rng);
  Art a256 = MakeArt(256, 256, 32, true, false, rng);
  const auto file =
      IconFile({Dib(a16, 8), Dib(a32, 32), Dib(a48, 32), Entry{PngEntry(a256), 0, 0, 0, 1, 32}});
  struct Case {
    int32_t w, h, d, entry, size;
  } cases[] = {{16, 16, 8, 0, 16},   {16, 16, 32, 0, 16}, {24, 24, 32, 1, 32},   {40, 40, 0, 2, 48},
               {64, 64, 32, 3, 256}, {0, 0, 0, 3, 256},   {512, 512, 32, 3, 256}};
  for (const Case& c : cases) {
    cICOparser ico;
    Pixels p;
    ASSERT_TRUE(ico.LoadStream(file, p, 0, 0, c.w, c.h, c.d)) << c.w;
    EXPECT_EQ(ico.ChosenEntry(), c.entry) << c.w << "x" << c.h << "x" << c.d;
    EXPECT_EQ(p.width, c.size);
  }
  // Inside a larger array.
  std::vector<uint8_t> wrapped(11 + file.size(), 0);
  std::copy(file.begin(), file.end(), wrapped.begin() + 11);
  Pixels p;
  ASSERT_TRUE(cICOparser().LoadStream(wrapped, p, 11, file.size(), 48, 48, 32));
  EXPECT_EQ(TopDown(p), Premultiplied(a48));
}

TEST(IcoRead, BadPaletteIndexIsReadAsItStands) {
  Art a;
  a.w = 2;
  a.h = 1;
  a.palette = {0x102030, 0x405060};
  a.indexes = {1, 200};
  a.clear = {false, false};
  auto e = DibEntry(a, 8);
  e[32] = 2;  // colours used: 2, so index 200 has no entry
  Pixels p;
  ASSERT_TRUE(cICOparser().LoadStream(IconFile({Entry{e, 2, 1, 2, 1, 8}}), p));
  EXPECT_EQ(TopDown(p), (std::vector<uint8_t>{0x60, 0x50, 0x40, 255, 0, 0, 0, 255}));
}

TEST(IcoRead, Refusals) {
  std::mt19937 rng(7);
  const auto good = IconFile(
      {Dib(MakeArt(8, 8, 4, false, true, rng), 4), Dib(MakeArt(16, 16, 8, false, true, rng), 8)});
  struct Case {
    const char* what;
    std::function<void(std::vector<uint8_t>&)> spoil;
  } cases[] = {
      {"reserved word", [](auto& f) { f[0] = 1; }},
      {"type 3", [](auto& f) { f[2] = 3; }},
      {"no entries", [](auto& f) { f[4] = 0; }},
      {"directory cut", [](auto& f) { f.resize(30); }},
      {"entry past the end", [](auto& f) { f[6 + 16 + 12 + 2] = 1; }},
      {"entry size past the end", [](auto& f) { f[6 + 8 + 2] = 1; }},
      {"entry neither DIB nor PNG", [](auto& f) { f[6 + 32] = 41; }},
      {"second entry neither", [](auto& f) { f[f[6 + 16 + 12] + 256 * f[6 + 16 + 13]] = 12; }},
      {"BMP file", [](auto& f) { f[0] = 'B', f[1] = 'M'; }},
  };
  for (const Case& c : cases) {
    auto f = good;
    Pixels p;
    ASSERT_TRUE(cICOparser().LoadStream(f, p));
    c.spoil(f);
    cICOparser ico;
    EXPECT_FALSE(ico.LoadStream(f, p)) << c.what;
    EXPECT_TRUE(p.Empty()) << c.what;
    EXPECT_EQ(ico.IconCount(), 0) << c.what;
  }
  // The chosen DIB's pixels cut short.
  auto f = good;
  f.resize(f.size() - 200);
  const size_t left = f.size() - size_t(f[6 + 16 + 12] + 256 * f[6 + 16 + 13]);
  f[6 + 16 + 8] = uint8_t(left);
  f[6 + 16 + 9] = uint8_t(left >> 8);
  Pixels p;
  EXPECT_FALSE(cICOparser().LoadStream(f, p, 0, 0, 16, 16, 8));
  EXPECT_TRUE(p.Empty());
}

TEST(IcoRead, HostileSizesInAHeader) {
  // Found by fuzzing: an entry whose header claims a width and height near
  // the 32-bit limits once overflowed the choice's arithmetic.
  std::mt19937 rng(8);
  auto e0 = DibEntry(MakeArt(8, 8, 8, false, true, rng), 8);
  const uint8_t size[8] = {0x61, 0x60, 0x00, 0x3D, 0x4D, 0xA6, 0x01, 0x47};
  std::memcpy(&e0[4], size, 8);
  const auto file =
      IconFile({Entry{e0, 8, 8, 0, 1, 8}, Dib(MakeArt(8, 8, 8, false, true, rng), 8)});
  cICOparser ico;
  ASSERT_TRUE(ico.ReadDirectory(file));
  EXPECT_EQ(ico.Width(0), 0x3D006061);
  EXPECT_EQ(ico.Height(0), 0x4701A64D / 2);
  Pixels p;
  EXPECT_FALSE(ico.LoadStream(file, p));  // the largest is chosen, and cannot be read
  EXPECT_TRUE(p.Empty());
  EXPECT_TRUE(ico.LoadStream(file, p, 0, 0, 8, 8, 8));
  EXPECT_EQ(ico.ChosenEntry(), 1);
}

TEST(IcoHandle, ColourAndMaskBitmaps) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = 2;
  info.bmiHeader.biHeight = -1;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  HBITMAP colour = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  ASSERT_NE(colour, nullptr);
  const uint8_t px[8] = {10, 20, 30, 0, 40, 50, 60, 0};
  std::memcpy(bits, px, 8);
  const uint8_t maskBits[2] = {0x40, 0};  // x 1 clear
  HBITMAP mask = CreateBitmap(2, 1, 1, 1, maskBits);
  Pixels p;
  ASSERT_TRUE(cICOparser().ConvertstdPicTo32bpp(colour, mask, p));
  EXPECT_EQ(p.format, Image_Icon);
  EXPECT_EQ(p.alpha, Alpha_Simple);
  EXPECT_EQ(TopDown(p), (std::vector<uint8_t>{10, 20, 30, 255, 0, 0, 0, 0}));
  // With alpha of its own the mask is not looked at.
  static_cast<uint8_t*>(bits)[3] = 255;
  ASSERT_TRUE(cICOparser().ConvertstdPicTo32bpp(colour, mask, p, true));
  EXPECT_EQ(p.format, Image_Cursor_ARGB);
  // A monochrome cursor: AND on top, XOR below.
  const uint8_t mono[4] = {0x80, 0, 0x40, 0};  // AND: x 0 clear; XOR: x 1 white
  HBITMAP bw = CreateBitmap(2, 2, 1, 1, mono);
  ASSERT_TRUE(cICOparser().ConvertstdPicTo32bpp(nullptr, bw, p, true));
  EXPECT_EQ(p.format, Image_Cursor);
  EXPECT_EQ(TopDown(p), (std::vector<uint8_t>{0, 0, 0, 0, 255, 255, 255, 255}));
  DeleteObject(colour);
  DeleteObject(mask);
  DeleteObject(bw);
  EXPECT_FALSE(cICOparser().ConvertstdPicTo32bpp(nullptr, nullptr, p));
}

}  // namespace
}  // namespace vantor::imaging
