// The PNG reader against libpng: libpng writes pictures in every colour type,
// depth and interlacing, with and without transparency, and reads them back
// as 8-bit RGBA; our reader must give the same pixels once they are
// pre-multiplied, by either inflate route.
#include <gtest/gtest.h>
#include <png.h>
#include <zlib.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "imaging/cPNGparser.h"

namespace vantor::imaging {
namespace {

// Makes the reader behave as where zlib is missing, for one scope.
class WithoutZlib {
 public:
  explicit WithoutZlib(bool absent = true) { cPNGparser::SimulateZlibAbsent(absent); }
  ~WithoutZlib() { cPNGparser::SimulateZlibAbsent(false); }
};

struct PngCase {
  int width = 8, height = 8;
  int colorType = 6, bitDepth = 8;
  int interlace = 0;
  bool trns = false;
  int level = 6;
  int strategy = Z_DEFAULT_STRATEGY;
  size_t idatSize = 8192;  // libpng's IDAT chunk size
  bool gamma = false;
  uint32_t seed = 1;
};

std::string Describe(const PngCase& s) {
  char buf[160];
  std::snprintf(buf, sizeof buf, "%dx%d type %d depth %d interlace %d trns %d level %d strategy %d",
                s.width, s.height, s.colorType, s.bitDepth, s.interlace, s.trns, s.level,
                s.strategy);
  return buf;
}

int Channels(int colorType) {
  return colorType == 2 ? 3 : colorType == 4 ? 2 : colorType == 6 ? 4 : 1;
}

void WriteToVector(png_structp png, png_bytep data, png_size_t size) {
  auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  out->insert(out->end(), data, data + size);
}
void FlushNothing(png_structp) {}

// A picture of random samples in the layout libpng writes, with a key
// colour planted where the picture has one.
std::vector<uint8_t> MakePng(const PngCase& s) {
  std::mt19937 rng(s.seed);
  const int channels = Channels(s.colorType);
  const size_t rowBytes = (static_cast<size_t>(s.width) * channels * s.bitDepth + 7) / 8;
  std::vector<std::vector<uint8_t>> rows(s.height, std::vector<uint8_t>(rowBytes));
  const bool wide = s.bitDepth == 16;
  // With a key on 16-bit samples, libpng compares all 16 bits and we compare
  // the high byte; samples whose bytes are equal keep the two in agreement.
  const bool equalBytes = wide && s.trns;
  for (auto& row : rows) {
    for (size_t i = 0; i < row.size(); ++i) {
      row[i] = static_cast<uint8_t>(rng());
      if (equalBytes && (i & 1)) row[i] = row[i - 1];
    }
  }
  int paletteSize = 0;
  if (s.colorType == 3) {
    // Fewer entries than the depth allows, with indexes kept inside.
    paletteSize = std::max(1, (1 << s.bitDepth) - 1 - static_cast<int>(rng() % 3));
    for (auto& row : rows) {
      for (int x = 0; x < s.width; ++x) {
        const int bit = x * s.bitDepth;
        const int shift = 8 - s.bitDepth - bit % 8;
        const int index = static_cast<int>(rng() % static_cast<uint32_t>(paletteSize));
        uint8_t& b = row[bit / 8];
        b = static_cast<uint8_t>((b & ~(((1 << s.bitDepth) - 1) << shift)) | index << shift);
      }
    }
  }
  png_color_16 key{};
  if (s.trns && (s.colorType == 0 || s.colorType == 2)) {
    // The key is the first pixel's colour, so that some pixels match it, and
    // it is planted on a few more.
    const size_t pixelBytes = std::max<size_t>(1, static_cast<size_t>(channels) * s.bitDepth / 8);
    if (s.bitDepth < 8) {
      const uint16_t v = static_cast<uint16_t>(rows[0][0] >> (8 - s.bitDepth));
      key.gray = v;
      for (auto& row : rows)
        row[0] =
            static_cast<uint8_t>((row[0] & ((1 << (8 - s.bitDepth)) - 1)) | v << (8 - s.bitDepth));
    } else {
      for (int k = 1; k < s.height; k += 2) std::memcpy(rows[k].data(), rows[0].data(), pixelBytes);
      auto sample = [&](int c) {
        return wide ? static_cast<uint16_t>(rows[0][2 * c] << 8 | rows[0][2 * c + 1])
                    : static_cast<uint16_t>(rows[0][c]);
      };
      if (s.colorType == 0) {
        key.gray = sample(0);
      } else {
        key.red = sample(0);
        key.green = sample(1);
        key.blue = sample(2);
      }
    }
  }

  std::vector<uint8_t> out;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    ADD_FAILURE() << "libpng could not write " << Describe(s);
    return {};
  }
  png_set_write_fn(png, &out, WriteToVector, FlushNothing);
  png_set_IHDR(png, info, static_cast<png_uint_32>(s.width), static_cast<png_uint_32>(s.height),
               s.bitDepth, s.colorType, s.interlace ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_compression_level(png, s.level);
  png_set_compression_strategy(png, s.strategy);
  png_set_compression_buffer_size(png, s.idatSize);
  png_set_filter(png, 0, PNG_ALL_FILTERS);
  if (s.gamma) png_set_gAMA(png, info, 0.2);
  std::vector<png_color> palette;
  std::vector<uint8_t> alphas;
  if (s.colorType == 3) {
    for (int i = 0; i < paletteSize; ++i)
      palette.push_back(
          {static_cast<uint8_t>(rng()), static_cast<uint8_t>(rng()), static_cast<uint8_t>(rng())});
    png_set_PLTE(png, info, palette.data(), paletteSize);
    if (s.trns) {
      alphas.resize(1 + rng() % static_cast<uint32_t>(paletteSize));
      for (auto& a : alphas) {
        const auto r = rng() % 3;
        a = r == 0 ? 0 : r == 1 ? 255 : static_cast<uint8_t>(rng());
      }
      png_set_tRNS(png, info, alphas.data(), static_cast<int>(alphas.size()), nullptr);
    }
  } else if (s.trns && (s.colorType == 0 || s.colorType == 2)) {
    png_set_tRNS(png, info, nullptr, 0, &key);
  }
  png_write_info(png, info);
  std::vector<png_bytep> pointers;
  for (auto& row : rows) pointers.push_back(row.data());
  png_write_image(png, pointers.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return out;
}

struct Reader {
  const std::vector<uint8_t>* data;
  size_t pos = 0;
};
void ReadFromVector(png_structp png, png_bytep out, png_size_t size) {
  auto* r = static_cast<Reader*>(png_get_io_ptr(png));
  if (r->pos + size > r->data->size()) png_error(png, "past the end");
  std::memcpy(out, r->data->data() + r->pos, size);
  r->pos += size;
}

// libpng's pixels as 8-bit RGBA, rows top-down.
bool LibpngRgba(const std::vector<uint8_t>& file, int& width, int& height,
                std::vector<uint8_t>& rgba) {
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  Reader reader{&file};
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_read_struct(&png, &info, nullptr);
    return false;
  }
  png_set_read_fn(png, &reader, ReadFromVector);
  png_read_info(png, info);
  png_set_expand(png);
  png_set_strip_16(png);
  png_set_gray_to_rgb(png);
  png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
  png_set_interlace_handling(png);
  png_read_update_info(png, info);
  width = static_cast<int>(png_get_image_width(png, info));
  height = static_cast<int>(png_get_image_height(png, info));
  rgba.assign(static_cast<size_t>(width) * height * 4, 0);
  std::vector<png_bytep> rows;
  for (int y = 0; y < height; ++y) rows.push_back(rgba.data() + static_cast<size_t>(y) * width * 4);
  png_read_image(png, rows.data());
  png_read_end(png, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
  return true;
}

// What the reader must give for libpng's straight RGBA.
Pixels Expected(int width, int height, const std::vector<uint8_t>& rgba) {
  Pixels p;
  p.Allocate(width, height);
  bool opaque = true, partial = false;
  for (int y = 0; y < height; ++y) {
    uint8_t* d = p.Row(y);
    const uint8_t* s = rgba.data() + static_cast<size_t>(y) * width * 4;
    for (int x = 0; x < width; ++x, d += 4, s += 4) {
      const unsigned a = s[3];
      d[0] = static_cast<uint8_t>(s[2] * a / 255);
      d[1] = static_cast<uint8_t>(s[1] * a / 255);
      d[2] = static_cast<uint8_t>(s[0] * a / 255);
      d[3] = static_cast<uint8_t>(a);
      opaque &= a == 255;
      partial |= a != 0 && a != 255;
    }
  }
  p.alpha = opaque ? Alpha_None : partial ? Alpha_Complex : Alpha_Simple;
  p.format = Image_PNG;
  return p;
}

// Where two pictures first differ, or "" when they are the same.
std::string Difference(const Pixels& a, const Pixels& b) {
  if (a.width != b.width || a.height != b.height) return "size differs";
  if (a.alpha != b.alpha)
    return "alpha kind " + std::to_string(a.alpha) + " vs " + std::to_string(b.alpha);
  if (a.format != b.format) return "format differs";
  for (int y = 0; y < a.height; ++y) {
    for (int x = 0; x < a.width; ++x) {
      const uint8_t* p = a.Row(y) + 4 * x;
      const uint8_t* q = b.Row(y) + 4 * x;
      if (std::memcmp(p, q, 4) != 0) {
        char buf[128];
        std::snprintf(buf, sizeof buf, "pixel (%d,%d): %02x%02x%02x%02x vs %02x%02x%02x%02x", x, y,
                      p[0], p[1], p[2], p[3], q[0], q[1], q[2], q[3]);
        return buf;
      }
    }
  }
  return "";
}

void CheckAgainstLibpng(const PngCase& s) {
  SCOPED_TRACE(Describe(s));
  const std::vector<uint8_t> file = MakePng(s);
  ASSERT_FALSE(file.empty());
  int w = 0, h = 0;
  std::vector<uint8_t> rgba;
  ASSERT_TRUE(LibpngRgba(file, w, h, rgba));
  const Pixels expected = Expected(w, h, rgba);
  for (bool absent : {false, true}) {
    WithoutZlib route(absent);
    Pixels got;
    cPNGparser parser;
    ASSERT_TRUE(parser.LoadStream(file, got)) << (absent ? "own inflater" : "zlib");
    EXPECT_EQ(Difference(got, expected), "") << (absent ? "own inflater" : "zlib");
  }
}

TEST(PngReader, EveryColourTypeDepthAndInterlaceMatchesLibpng) {
  const std::pair<int, std::vector<int>> kinds[] = {
      {0, {1, 2, 4, 8, 16}}, {2, {8, 16}}, {3, {1, 2, 4, 8}}, {4, {8, 16}}, {6, {8, 16}}};
  const std::pair<int, int> sizes[] = {{37, 23}, {1, 9}, {9, 1}, {1, 1}, {70, 3}};
  uint32_t seed = 1;
  int cases = 0;
  for (const auto& [type, depths] : kinds) {
    for (int depth : depths) {
      for (int interlace : {0, 1}) {
        for (bool trns : {false, true}) {
          if (trns && (type == 4 || type == 6)) continue;
          for (const auto& [w, h] : sizes) {
            PngCase s;
            s.width = w, s.height = h, s.colorType = type, s.bitDepth = depth;
            s.interlace = interlace, s.trns = trns, s.seed = seed++;
            CheckAgainstLibpng(s);
            ++cases;
          }
        }
      }
    }
  }
  EXPECT_EQ(cases, 5 * 2 * (15 + 11));  // every allowed form, keyed where it can be
}

TEST(PngReader, EveryDeflateBlockKindAndManyIdatChunks) {
  // Level 0 gives stored blocks, Z_FIXED fixed codes, the rest dynamic ones;
  // a small IDAT size splits the stream across many chunks.
  const struct {
    int level, strategy;
    size_t idat;
  } cases[] = {{0, Z_DEFAULT_STRATEGY, 8192},
               {0, Z_DEFAULT_STRATEGY, 37},
               {1, Z_FIXED, 8192},
               {9, Z_FIXED, 100},
               {9, Z_DEFAULT_STRATEGY, 6},
               {6, Z_HUFFMAN_ONLY, 512},
               {6, Z_RLE, 8192},
               {6, Z_FILTERED, 64}};
  uint32_t seed = 1000;
  for (const auto& c : cases) {
    for (int type : {0, 2, 3, 6}) {
      PngCase s;
      s.width = 300, s.height = 40, s.colorType = type, s.bitDepth = type == 0 ? 16 : 8;
      s.level = c.level, s.strategy = c.strategy, s.idatSize = c.idat, s.seed = seed++;
      s.interlace = type == 3;
      CheckAgainstLibpng(s);
    }
  }
}

TEST(PngReader, GammaBeforeThePaletteIsSkippedAndNotApplied) {
  PngCase s;
  s.width = 20, s.height = 20, s.colorType = 3, s.bitDepth = 4, s.gamma = true;
  const std::vector<uint8_t> file = MakePng(s);
  // libpng puts gAMA ahead of PLTE.
  const std::string text(file.begin(), file.end());
  ASSERT_NE(text.find("gAMA"), std::string::npos);
  ASSERT_LT(text.find("gAMA"), text.find("PLTE"));
  CheckAgainstLibpng(s);
}

// --- Hand-made files ---------------------------------------------------------

void AppendBe32(std::vector<uint8_t>& v, uint32_t x) {
  for (int shift = 24; shift >= 0; shift -= 8) v.push_back(static_cast<uint8_t>(x >> shift));
}

void AppendChunk(std::vector<uint8_t>& file, const char* type, const std::vector<uint8_t>& body) {
  AppendBe32(file, static_cast<uint32_t>(body.size()));
  std::vector<uint8_t> typed(type, type + 4);
  typed.insert(typed.end(), body.begin(), body.end());
  file.insert(file.end(), typed.begin(), typed.end());
  AppendBe32(file, static_cast<uint32_t>(crc32(0, typed.data(), static_cast<uInt>(typed.size()))));
}

std::vector<uint8_t> Header(uint32_t w, uint32_t h, uint8_t depth, uint8_t type,
                            uint8_t interlace = 0) {
  std::vector<uint8_t> b;
  AppendBe32(b, w);
  AppendBe32(b, h);
  b.insert(b.end(), {depth, type, 0, 0, interlace});
  return b;
}

std::vector<uint8_t> Deflate(const std::vector<uint8_t>& raw) {
  uLongf size = compressBound(static_cast<uLong>(raw.size()));
  std::vector<uint8_t> out(size);
  compress2(out.data(), &size, raw.data(), static_cast<uLong>(raw.size()), 9);
  out.resize(size);
  return out;
}

const std::vector<uint8_t> kSignature = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};

// A file of the given chunks: IHDR, then `before` (each type and body), IDAT
// holding `raw` compressed, IEND.
std::vector<uint8_t> Build(const std::vector<uint8_t>& ihdr,
                           const std::vector<std::pair<const char*, std::vector<uint8_t>>>& before,
                           const std::vector<uint8_t>& raw) {
  std::vector<uint8_t> file = kSignature;
  AppendChunk(file, "IHDR", ihdr);
  for (const auto& [type, body] : before) AppendChunk(file, type, body);
  AppendChunk(file, "IDAT", Deflate(raw));
  AppendChunk(file, "IEND", {});
  return file;
}

bool LoadBoth(const std::vector<uint8_t>& file, Pixels& zlibOut, Pixels& ownOut) {
  cPNGparser parser;
  const bool a = parser.LoadStream(file, zlibOut);
  WithoutZlib route;
  const bool b = parser.LoadStream(file, ownOut);
  EXPECT_EQ(a, b);
  EXPECT_EQ(Difference(zlibOut, ownOut), "");
  return a && b;
}

TEST(PngReader, TransparencyOnAlphaTypesIsIgnored) {
  // Grey with alpha and RGBA, each with a tRNS that would key out its pixel.
  for (uint8_t type : {uint8_t{4}, uint8_t{6}}) {
    const std::vector<uint8_t> raw = type == 4
                                         ? std::vector<uint8_t>{0, 10, 255, 20, 128}
                                         : std::vector<uint8_t>{0, 10, 20, 30, 255, 1, 2, 3, 64};
    const std::vector<uint8_t> trns = {0, 10, 0, 20, 0, 30};
    Pixels with, without, own;
    ASSERT_TRUE(LoadBoth(Build(Header(2, 1, 8, type), {{"tRNS", trns}}, raw), with, own));
    ASSERT_TRUE(LoadBoth(Build(Header(2, 1, 8, type), {}, raw), without, own));
    EXPECT_EQ(Difference(with, without), "");
    EXPECT_EQ(with.Row(0)[3], 255);
    EXPECT_EQ(with.alpha, Alpha_Complex);
  }
}

TEST(PngReader, OnePaletteTransparencyEntryLeavesTheOthersOpaque) {
  // 1-bit palette of two colours; tRNS gives entry 0 alpha 0 and says
  // nothing of entry 1.
  const std::vector<uint8_t> plte = {255, 0, 0, 0, 0, 255};
  const std::vector<uint8_t> raw = {0, 0b01000000};  // pixels 0, 1
  Pixels p, own;
  ASSERT_TRUE(LoadBoth(Build(Header(2, 1, 1, 3), {{"PLTE", plte}, {"tRNS", {0}}}, raw), p, own));
  const uint8_t* row = p.Row(0);
  EXPECT_EQ(std::vector<uint8_t>(row, row + 8), (std::vector<uint8_t>{0, 0, 0, 0, 255, 0, 0, 255}));
  EXPECT_EQ(p.alpha, Alpha_Simple);
}

TEST(PngReader, PaletteIndexBeyondThePaletteIsOpaqueBlack) {
  const std::vector<uint8_t> plte = {10, 20, 30};
  Pixels p, own;
  ASSERT_TRUE(LoadBoth(Build(Header(2, 1, 8, 3), {{"PLTE", plte}}, {0, 0, 7}), p, own));
  const uint8_t* row = p.Row(0);
  EXPECT_EQ(std::vector<uint8_t>(row, row + 8),
            (std::vector<uint8_t>{30, 20, 10, 255, 0, 0, 0, 255}));
  EXPECT_EQ(p.alpha, Alpha_None);
}

TEST(PngReader, SixteenBitKeyIsComparedOnTheHighByte) {
  // Grey 16: the key 0x1234 takes out 0x12FF too, as the samples are cut to
  // their high byte before the comparison; 0x1334 stays.
  const std::vector<uint8_t> raw = {0, 0x12, 0x34, 0x12, 0xFF, 0x13, 0x34};
  Pixels p, own;
  ASSERT_TRUE(LoadBoth(Build(Header(3, 1, 16, 0), {{"tRNS", {0x12, 0x34}}}, raw), p, own));
  EXPECT_EQ(p.Row(0)[3], 0);
  EXPECT_EQ(p.Row(0)[7], 0);
  EXPECT_EQ(p.Row(0)[11], 255);
  EXPECT_EQ(p.Row(0)[8], 0x13);
  // True colour 16 the same way.
  const std::vector<uint8_t> rgb = {0, 1, 0, 2, 0, 3, 0, 1, 9, 2, 9, 3, 9, 1, 0, 2, 0, 4, 0};
  ASSERT_TRUE(LoadBoth(Build(Header(3, 1, 16, 2), {{"tRNS", {1, 0, 2, 0, 3, 0}}}, rgb), p, own));
  EXPECT_EQ(p.Row(0)[3], 0);
  EXPECT_EQ(p.Row(0)[7], 0);
  EXPECT_EQ(p.Row(0)[11], 255);
}

TEST(PngReader, KeyWiderThanTheDepthMatchesNothing) {
  // 2-bit grey keyed on 5, a value no 2-bit sample holds.
  Pixels p, own;
  ASSERT_TRUE(LoadBoth(Build(Header(4, 1, 2, 0), {{"tRNS", {0, 5}}}, {0, 0b00011011}), p, own));
  EXPECT_EQ(p.alpha, Alpha_None);
  const uint8_t greys[] = {0, 85, 170, 255};
  for (int x = 0; x < 4; ++x) EXPECT_EQ(p.Row(0)[4 * x], greys[x]);
}

TEST(PngReader, PartialAlphaIsPremultipliedAndComplex) {
  const std::vector<uint8_t> raw = {0, 200, 100, 50, 128, 255, 255, 255, 0};
  Pixels p, own;
  ASSERT_TRUE(LoadBoth(Build(Header(2, 1, 8, 6), {}, raw), p, own));
  const uint8_t* row = p.Row(0);
  EXPECT_EQ(
      std::vector<uint8_t>(row, row + 8),
      (std::vector<uint8_t>{50 * 128 / 255, 100 * 128 / 255, 200 * 128 / 255, 128, 0, 0, 0, 0}));
  EXPECT_EQ(p.alpha, Alpha_Complex);
  EXPECT_EQ(p.format, Image_PNG);
}

TEST(PngReader, BadCrcLoadsOnlyWithoutZlib) {
  PngCase s;
  s.width = 16, s.height = 16, s.colorType = 2;
  const std::vector<uint8_t> good = MakePng(s);
  // Spoil the CRC of IHDR, then separately that of the first IDAT.
  for (const char* type : {"IHDR", "IDAT"}) {
    std::vector<uint8_t> file = good;
    const size_t at = std::string(file.begin(), file.end()).find(type);
    ASSERT_NE(at, std::string::npos);
    const uint32_t length =
        uint32_t{file[at - 4]} << 24 | file[at - 3] << 16 | file[at - 2] << 8 | file[at - 1];
    file[at + 4 + length] ^= 0x01;
    Pixels withZlib, withoutZlib;
    cPNGparser parser;
    EXPECT_FALSE(parser.LoadStream(file, withZlib)) << type;
    EXPECT_TRUE(withZlib.Empty());
    WithoutZlib route;
    EXPECT_TRUE(parser.LoadStream(file, withoutZlib)) << type;
    Pixels reference;
    EXPECT_TRUE(parser.LoadStream(good, reference));
    EXPECT_EQ(Difference(withoutZlib, reference), "");
  }
}

TEST(PngReader, AncillaryChunksAreNotCrcChecked) {
  // A text chunk with a wrong CRC is skipped unread, zlib or not.
  std::vector<uint8_t> file = kSignature;
  AppendChunk(file, "IHDR", Header(1, 1, 8, 0));
  AppendChunk(file, "tEXt", {'a', 0, 'b'});
  file[file.size() - 1] ^= 0xFF;
  AppendChunk(file, "IDAT", Deflate({0, 77}));
  AppendChunk(file, "IEND", {});
  Pixels p;
  cPNGparser parser;
  ASSERT_TRUE(parser.LoadStream(file, p));
  EXPECT_EQ(p.Row(0)[0], 77);
}

TEST(PngReader, BadFilesFailAndLeaveThePictureEmpty) {
  const std::vector<uint8_t> ihdr = Header(2, 2, 8, 0);
  const std::vector<uint8_t> raw = {0, 1, 2, 1, 3, 4};
  const std::vector<uint8_t> good = Build(ihdr, {}, raw);
  auto without = [](std::vector<uint8_t> file, const char* type) {
    const size_t at = std::string(file.begin(), file.end()).find(type);
    const uint32_t length =
        uint32_t{file[at - 4]} << 24 | file[at - 3] << 16 | file[at - 2] << 8 | file[at - 1];
    file.erase(file.begin() + static_cast<ptrdiff_t>(at - 4),
               file.begin() + static_cast<ptrdiff_t>(at + 8 + length));
    return file;
  };
  auto header = [&](uint32_t w, uint32_t h, uint8_t depth, uint8_t type, uint8_t c, uint8_t f,
                    uint8_t i) {
    std::vector<uint8_t> b;
    AppendBe32(b, w);
    AppendBe32(b, h);
    b.insert(b.end(), {depth, type, c, f, i});
    return Build(b, {}, raw);
  };
  std::vector<uint8_t> longChunk = good;
  longChunk[8 + 25 + 3] = 0xF0;  // IDAT's length past the end
  std::vector<uint8_t> badSignature = good;
  badSignature[1] = 'p';
  const struct {
    const char* what;
    std::vector<uint8_t> file;
  } cases[] = {
      {"empty", {}},
      {"signature only", kSignature},
      {"bad signature", badSignature},
      {"no IEND", std::vector<uint8_t>(good.begin(), good.end() - 12)},
      {"IEND without CRC", std::vector<uint8_t>(good.begin(), good.end() - 4)},
      {"no IHDR", without(good, "IHDR")},
      {"no IDAT", without(good, "IDAT")},
      {"chunk longer than the rest", longChunk},
      {"width 0", header(0, 2, 8, 0, 0, 0, 0)},
      {"height 0", header(2, 0, 8, 0, 0, 0, 0)},
      {"width above 2^31", header(0x80000000u, 2, 8, 0, 0, 0, 0)},
      {"compression 1", header(2, 2, 8, 0, 1, 0, 0)},
      {"filter 1", header(2, 2, 8, 0, 0, 1, 0)},
      {"interlace 2", header(2, 2, 8, 0, 0, 0, 2)},
      {"colour type 1", header(2, 2, 8, 1, 0, 0, 0)},
      {"colour type 7", header(2, 2, 8, 7, 0, 0, 0)},
      {"depth 3", header(2, 2, 3, 0, 0, 0, 0)},
      {"depth 32", header(2, 2, 32, 0, 0, 0, 0)},
      {"RGB at depth 4", header(2, 2, 4, 2, 0, 0, 0)},
      {"palette at depth 16", header(2, 2, 16, 3, 0, 0, 0)},
      {"palette missing", header(2, 2, 8, 3, 0, 0, 0)},
      {"IHDR of 12 bytes", Build({0, 0, 0, 2, 0, 0, 0, 2, 8, 0, 0, 0}, {}, raw)},
      {"filter byte 5", Build(ihdr, {}, {0, 1, 2, 5, 3, 4})},
      {"too little data", Build(ihdr, {}, {0, 1, 2, 1, 3})},
      {"too much data", Build(ihdr, {}, {0, 1, 2, 1, 3, 4, 9})},
      {"data not deflate",
       [&] {
         std::vector<uint8_t> f = kSignature;
         AppendChunk(f, "IHDR", ihdr);
         AppendChunk(f, "IDAT", {1, 2, 3, 4, 5, 6, 7, 8});
         AppendChunk(f, "IEND", {});
         return f;
       }()},
      {"header asks far more than the data can give", header(4000, 4000, 8, 0, 0, 0, 0)},
  };
  for (const auto& c : cases) {
    for (bool absent : {false, true}) {
      WithoutZlib route(absent);
      Pixels p;
      ASSERT_TRUE(p.Allocate(3, 3));  // whatever was there goes
      cPNGparser parser;
      EXPECT_FALSE(parser.LoadStream(c.file, p)) << c.what << (absent ? " (own inflater)" : "");
      EXPECT_TRUE(p.Empty()) << c.what;
      EXPECT_EQ(p.width, 0);
      EXPECT_TRUE(p.bytes.empty());
    }
  }
  Pixels p;
  cPNGparser parser;
  EXPECT_TRUE(parser.LoadStream(good, p));
}

// Found by fuzzing under the undefined-behaviour sanitizer: a 1-bit grey
// picture whose rows use the Sub filter, where the first byte's "left"
// neighbour was reached by an index that wrapped around.
TEST(PngReader, FilteredFirstBytesOfSubByteRows) {
  const std::vector<uint8_t> file = {
      0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49,
      0x48, 0x44, 0x52, 0x00, 0x00, 0x00, 0x09, 0x00, 0x00, 0x00, 0x04, 0x01, 0x00,
      0x00, 0x00, 0x00, 0x74, 0x74, 0x28, 0x63, 0x00, 0x00, 0x00, 0x14, 0x49, 0x44,
      0x41, 0x54, 0x08, 0xd7, 0x63, 0x64, 0x66, 0x64, 0x91, 0x61, 0x67, 0x91, 0x63,
      0x67, 0x51, 0xe0, 0x02, 0x00, 0x02, 0x98, 0x00, 0x84, 0x96, 0xa7, 0x65, 0x05,
      0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};
  int w = 0, h = 0;
  std::vector<uint8_t> rgba;
  ASSERT_TRUE(LibpngRgba(file, w, h, rgba));
  Pixels zlibOut, ownOut;
  ASSERT_TRUE(LoadBoth(file, zlibOut, ownOut));
  EXPECT_EQ(Difference(zlibOut, Expected(w, h, rgba)), "");
}

TEST(PngReader, AStartAndLengthPickTheFileOutOfLargerBytes) {
  PngCase s;
  s.width = 5, s.height = 4, s.colorType = 6;
  const std::vector<uint8_t> file = MakePng(s);
  std::vector<uint8_t> padded(13, 0xAA);
  padded.insert(padded.end(), file.begin(), file.end());
  padded.insert(padded.end(), 7, 0xBB);
  Pixels a, b;
  cPNGparser parser;
  ASSERT_TRUE(parser.LoadStream(file, a));
  ASSERT_TRUE(parser.LoadStream(padded, b, 13, file.size()));
  EXPECT_EQ(Difference(a, b), "");
  ASSERT_TRUE(parser.LoadStream(padded, b, 13));  // to the end: IEND comes first
  EXPECT_FALSE(parser.LoadStream(padded, b, 12, file.size()));
  EXPECT_FALSE(parser.LoadStream(padded, b, padded.size() + 1));
  EXPECT_FALSE(parser.LoadStream(padded, b, 13, file.size() - 1));
}

TEST(PngReader, FilesOfFiftySixBytesOrFewerAreNotLookedAt) {
  const auto dir = std::filesystem::temp_directory_path() / "vantor_png_reader_test";
  std::filesystem::create_directories(dir);
  PngCase s;
  s.width = 6, s.height = 6, s.colorType = 2;
  const std::vector<uint8_t> file = MakePng(s);
  auto write = [&](const char* name, const std::vector<uint8_t>& bytes) {
    const auto path = dir / name;
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    return String(path.u16string());
  };
  cPNGparser parser;
  Pixels fromFile, fromStream;
  ASSERT_TRUE(parser.LoadFile(write("whole.png", file), fromFile));
  ASSERT_TRUE(parser.LoadStream(file, fromStream));
  EXPECT_EQ(Difference(fromFile, fromStream), "");
  EXPECT_FALSE(parser.LoadFile(
      write("short.png", std::vector<uint8_t>(file.begin(), file.begin() + 56)), fromFile));
  EXPECT_TRUE(fromFile.Empty());
  EXPECT_FALSE(parser.LoadFile(
      write("57.png", std::vector<uint8_t>(file.begin(), file.begin() + 57)), fromFile));
  EXPECT_FALSE(parser.LoadFile((dir / "missing.png").u16string(), fromFile));
  EXPECT_FALSE(parser.LoadFile(u"", fromFile));
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace vantor::imaging
