// The PNG writer: what it writes opens in libpng with the pixels it was given
// (straight colour, each channel x 255 / alpha), in the colour form, filter
// and chunk order the writer's rules call for; and its property store with
// the keyword and text clean-ups.
#include <gtest/gtest.h>
#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "imaging/cPNGparser.h"
#include "imaging/cPNGwriter.h"
#include "platform/User.h"
#include "runtime/DateTime.h"

namespace vantor::imaging {
namespace {

class WriterWithoutZlib {
 public:
  WriterWithoutZlib() { cPNGwriter::SimulateZlibAbsent(true); }
  ~WriterWithoutZlib() { cPNGwriter::SimulateZlibAbsent(false); }
};

struct Chunk {
  std::string type;
  std::vector<uint8_t> body;
};

uint32_t Be32(const uint8_t* p) {
  return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | uint32_t{p[3]};
}

// The chunks of a file, each CRC checked.
std::vector<Chunk> Chunks(const std::vector<uint8_t>& file) {
  std::vector<Chunk> out;
  size_t pos = 8;
  while (pos + 12 <= file.size()) {
    const uint32_t length = Be32(file.data() + pos);
    Chunk c;
    c.type.assign(reinterpret_cast<const char*>(file.data() + pos + 4), 4);
    c.body.assign(file.begin() + static_cast<ptrdiff_t>(pos + 8),
                  file.begin() + static_cast<ptrdiff_t>(pos + 8 + length));
    const uLong crc = crc32(0, file.data() + pos + 4, 4 + length);
    EXPECT_EQ(crc, Be32(file.data() + pos + 8 + length)) << c.type;
    out.push_back(std::move(c));
    pos += 12 + length;
  }
  EXPECT_EQ(pos, file.size());
  return out;
}

std::string Types(const std::vector<Chunk>& chunks) {
  std::string s;
  for (const auto& c : chunks) {
    if (!s.empty()) s += ' ';
    s += c.type;
    if (c.type == "tEXt" || c.type == "zTXt")
      s += ":" + std::string(reinterpret_cast<const char*>(c.body.data()));
  }
  return s;
}

// The body of the first chunk of that type; a missing chunk fails the test.
std::vector<uint8_t> Body(const std::vector<Chunk>& chunks, const char* type) {
  for (const auto& c : chunks)
    if (c.type == type) return c.body;
  ADD_FAILURE() << "no " << type;
  return {};
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

struct Decoded {
  int width = 0, height = 0, colorType = -1, bitDepth = 0;
  std::vector<uint8_t> rgba;  // straight, top-down
  std::vector<std::pair<std::string, std::string>> texts;
};

// libpng's reading of a file: header, 8-bit RGBA pixels and the texts.
bool Libpng(const std::vector<uint8_t>& file, Decoded& d) {
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  Reader reader{&file};
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_read_struct(&png, &info, nullptr);
    return false;
  }
  png_set_read_fn(png, &reader, ReadFromVector);
  png_read_info(png, info);
  d.colorType = png_get_color_type(png, info);
  d.bitDepth = png_get_bit_depth(png, info);
  png_set_expand(png);
  png_set_strip_16(png);
  png_set_gray_to_rgb(png);
  png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
  png_read_update_info(png, info);
  d.width = static_cast<int>(png_get_image_width(png, info));
  d.height = static_cast<int>(png_get_image_height(png, info));
  d.rgba.assign(static_cast<size_t>(d.width) * d.height * 4, 0);
  std::vector<png_bytep> rows;
  for (int y = 0; y < d.height; ++y)
    rows.push_back(d.rgba.data() + static_cast<size_t>(y) * d.width * 4);
  png_read_image(png, rows.data());
  png_read_end(png, info);
  png_textp text = nullptr;
  const int n = png_get_text(png, info, &text, nullptr);
  for (int i = 0; i < n; ++i)
    d.texts.emplace_back(text[i].key, std::string(text[i].text, text[i].text_length));
  png_destroy_read_struct(&png, &info, nullptr);
  return true;
}

// The straight RGBA that a pre-multiplied pixel must come out as.
void StraightOf(const uint8_t* bgra, bool hasAlpha, uint8_t* rgba) {
  const unsigned a = hasAlpha ? bgra[3] : 255;
  for (int c = 0; c < 3; ++c) {
    const unsigned v = bgra[2 - c];
    rgba[c] = static_cast<uint8_t>(a == 0 ? 0 : a == 255 ? v : std::min(255u, v * 255 / a));
  }
  rgba[3] = static_cast<uint8_t>(a);
}

std::string Mismatch(const Pixels& p, const Decoded& d) {
  if (d.width != p.width || d.height != p.height) return "size differs";
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) {
      uint8_t want[4];
      StraightOf(p.Row(y) + 4 * x, p.alpha != Alpha_None, want);
      const uint8_t* got = d.rgba.data() + (static_cast<size_t>(y) * p.width + x) * 4;
      if (std::memcmp(want, got, 4) != 0)
        return "pixel " + std::to_string(x) + "," + std::to_string(y);
    }
  }
  return "";
}

// A picture of `colors` distinct colours (some of them transparent when
// `alpha` is simple, all of any alpha when complex), pre-multiplied.
Pixels Picture(int w, int h, int colors, ENUM_ALPHA_TYPE alpha, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<uint32_t> palette;
  while (static_cast<int>(palette.size()) < colors) {
    uint32_t c = static_cast<uint32_t>(rng()) & 0xFFFFFFu;
    uint32_t a = 255;
    if (alpha == Alpha_Simple && palette.empty()) a = 0, c = 0;
    if (alpha == Alpha_Complex) a = static_cast<uint32_t>(rng()) & 0xFF;
    const uint32_t v = c | a << 24;
    if (std::find(palette.begin(), palette.end(), v) == palette.end()) palette.push_back(v);
  }
  Pixels p;
  p.Allocate(w, h);
  for (int i = 0; i < w * h; ++i) {
    // Every colour appears at least once.
    const uint32_t v =
        i < colors ? palette[static_cast<size_t>(i)] : palette[rng() % palette.size()];
    const uint32_t a = v >> 24;
    uint8_t* d = p.bytes.data() + 4 * static_cast<size_t>(i);
    d[0] = static_cast<uint8_t>((v & 0xFF) * a / 255);
    d[1] = static_cast<uint8_t>(((v >> 8) & 0xFF) * a / 255);
    d[2] = static_cast<uint8_t>(((v >> 16) & 0xFF) * a / 255);
    d[3] = static_cast<uint8_t>(a);
  }
  p.alpha = alpha;
  return p;
}

// The filter bytes of each row of a non-interlaced file.
std::vector<uint8_t> FilterBytes(const std::vector<uint8_t>& file) {
  std::vector<uint8_t> idat;
  int width = 0, height = 0, bits = 0;
  for (const auto& c : Chunks(file)) {
    if (c.type == "IHDR") {
      width = static_cast<int>(Be32(c.body.data()));
      height = static_cast<int>(Be32(c.body.data() + 4));
      const int channels = c.body[9] == 2 ? 3 : c.body[9] == 6 ? 4 : 1;
      bits = channels * c.body[8];
    }
    if (c.type == "IDAT") idat.insert(idat.end(), c.body.begin(), c.body.end());
  }
  const size_t rowBytes = (static_cast<size_t>(width) * bits + 7) / 8;
  uLongf size = static_cast<uLongf>((rowBytes + 1) * height);
  std::vector<uint8_t> raw(size);
  EXPECT_EQ(uncompress(raw.data(), &size, idat.data(), static_cast<uLong>(idat.size())), Z_OK);
  std::vector<uint8_t> filters;
  for (int y = 0; y < height; ++y) filters.push_back(raw[y * (rowBytes + 1)]);
  return filters;
}

std::vector<uint8_t> Save(const cPNGwriter& writer, const Pixels& p) {
  std::vector<uint8_t> out;
  EXPECT_TRUE(writer.Save(p, out));
  return out;
}

TEST(PngWriter, ColourFormFollowsTheColourCountAndAlpha) {
  const struct {
    int colors;
    ENUM_ALPHA_TYPE alpha;
    int colorType, depth;
    bool trns;
  } cases[] = {
      {1, Alpha_None, 3, 1, false},    {2, Alpha_None, 3, 1, false},
      {3, Alpha_None, 3, 2, false},    {4, Alpha_None, 3, 2, false},
      {5, Alpha_None, 3, 4, false},    {16, Alpha_None, 3, 4, false},
      {17, Alpha_None, 3, 8, false},   {256, Alpha_None, 3, 8, false},
      {257, Alpha_None, 2, 8, false},  {2, Alpha_Simple, 3, 1, true},
      {256, Alpha_Simple, 3, 8, true}, {257, Alpha_Simple, 6, 8, false},
      {3, Alpha_Complex, 6, 8, false}, {4000, Alpha_Complex, 6, 8, false},
  };
  uint32_t seed = 1;
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.colors) + " colours, alpha " + std::to_string(c.alpha));
    const Pixels p = Picture(67, 61, c.colors, c.alpha, seed++);
    cPNGwriter writer;
    const std::vector<uint8_t> file = Save(writer, p);
    Decoded d;
    ASSERT_TRUE(Libpng(file, d));
    EXPECT_EQ(d.colorType, c.colorType);
    EXPECT_EQ(d.bitDepth, c.depth);
    EXPECT_EQ(Mismatch(p, d), "");
    bool hasTrns = false;
    for (const auto& chunk : Chunks(file)) hasTrns |= chunk.type == "tRNS";
    EXPECT_EQ(hasTrns, c.trns);
    // Our own reader gives the picture back: exactly where alpha is 0 or 255.
    if (c.alpha != Alpha_Complex) {
      Pixels back;
      cPNGparser parser;
      ASSERT_TRUE(parser.LoadStream(file, back));
      EXPECT_EQ(back.bytes, p.bytes);
      EXPECT_EQ(back.alpha, p.ScanAlpha());
    }
  }
}

TEST(PngWriter, UnpremultipliesEveryAlphaExactly) {
  // Every (colour, alpha) pair that a pre-multiplied pixel can hold.
  Pixels p;
  ASSERT_TRUE(p.Allocate(256, 257));
  for (int a = 0; a < 256; ++a) {
    for (int c = 0; c < 256; ++c) {
      uint8_t* d = p.Row(a) + 4 * c;
      const int v = std::min(c, a);
      d[0] = static_cast<uint8_t>(v), d[1] = static_cast<uint8_t>(v / 2),
      d[2] = static_cast<uint8_t>(a - v);
      d[3] = static_cast<uint8_t>(a);
    }
  }
  for (int c = 0; c < 256; ++c) std::memset(p.Row(256) + 4 * c, 255, 4);
  p.alpha = Alpha_Complex;
  cPNGwriter writer;
  Decoded d;
  ASSERT_TRUE(Libpng(Save(writer, p), d));
  EXPECT_EQ(Mismatch(p, d), "");
}

// The adaptive rule written out plainly, to hold the writer to.
int AdaptiveChoice(const std::vector<uint8_t>& cur, const std::vector<uint8_t>& prev, int bpp) {
  auto at = [](const std::vector<uint8_t>& row, long i) {
    return i < 0 ? 0 : int{row[static_cast<size_t>(i)]};
  };
  long best = static_cast<long>(cur.size()) * 254;
  int chosen = 0;
  for (int f = 0; f < 5; ++f) {
    long sum = 0;
    for (long i = 0; i < static_cast<long>(cur.size()); ++i) {
      const int a = at(cur, i - bpp), b = at(prev, i), c = at(prev, i - bpp);
      int predictor = 0;
      if (f == 1) predictor = a;
      if (f == 2) predictor = b;
      if (f == 3) predictor = (a + b) / 2;
      if (f == 4) {
        const int pa = std::abs(b - c), pb = std::abs(a - c), pc = std::abs(a + b - 2 * c);
        predictor = pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
      }
      const int v = (at(cur, i) - predictor) & 0xFF;
      sum += v < 128 ? v : 256 - v;
    }
    if (sum < best) best = sum, chosen = f;
  }
  return chosen;
}

TEST(PngWriter, FilterMethodsGiveTheirFilterBytes) {
  for (ENUM_ALPHA_TYPE alpha : {Alpha_None, Alpha_Complex}) {
    // Smooth gradients with noise: every filter wins somewhere.
    Pixels p;
    ASSERT_TRUE(p.Allocate(90, 40));
    std::mt19937 rng(7);
    for (int y = 0; y < 40; ++y)
      for (int x = 0; x < 90; ++x) {
        uint8_t* d = p.Row(y) + 4 * x;
        const int kind = y % 4;
        d[3] = static_cast<uint8_t>(alpha == Alpha_None ? 255 : 128 + (x + y) % 128);
        for (int c = 0; c < 3; ++c) {
          int v = kind == 0   ? x * 2
                  : kind == 1 ? y * 5
                  : kind == 2 ? (x + y) * 3
                              : static_cast<int>(rng() % 256);
          v = (v + c * 40) % 256;
          d[c] = static_cast<uint8_t>(v * d[3] / 255);
        }
      }
    p.alpha = alpha;
    const int bpp = alpha == Alpha_None ? 3 : 4;
    for (int method : {0, 1, 2, 3, 4, 5, 6, 99, -3}) {
      SCOPED_TRACE("method " + std::to_string(method) + " alpha " + std::to_string(alpha));
      cPNGwriter writer;
      ASSERT_TRUE(writer.Set(Png_FilterMethod, Variant(int32_t{method})));
      const std::vector<uint8_t> file = Save(writer, p);
      Decoded d;
      ASSERT_TRUE(Libpng(file, d));
      EXPECT_EQ(Mismatch(p, d), "");
      const std::vector<uint8_t> filters = FilterBytes(file);
      ASSERT_EQ(filters.size(), 40u);
      if (method == 6) {
        // The writer's choice against the rule, over the straight rows.
        std::vector<uint8_t> prev(90u * bpp, 0), cur(90u * bpp);
        std::set<int> seen;
        for (int y = 0; y < 40; ++y) {
          for (int x = 0; x < 90; ++x) {
            uint8_t rgba[4];
            StraightOf(p.Row(y) + 4 * x, alpha != Alpha_None, rgba);
            std::memcpy(cur.data() + x * bpp, rgba, static_cast<size_t>(bpp));
          }
          EXPECT_EQ(filters[static_cast<size_t>(y)], AdaptiveChoice(cur, prev, bpp)) << "row " << y;
          seen.insert(filters[static_cast<size_t>(y)]);
          prev = cur;
        }
        EXPECT_GE(seen.size(), 3u);
      } else {
        const int expected = method >= 1 && method <= 5 ? method - 1 : 4;
        for (uint8_t f : filters) EXPECT_EQ(f, expected);
      }
    }
  }
}

TEST(PngWriter, FourEqualSumsKeepFilterNone) {
  // 300 colours on the first row force true colour; the rows after are
  // black, so from the third on every filter sums to zero.
  Pixels p;
  ASSERT_TRUE(p.Allocate(300, 4));
  for (int x = 0; x < 300; ++x) {
    uint8_t* d = p.Row(0) + 4 * x;
    d[0] = static_cast<uint8_t>(x), d[1] = static_cast<uint8_t>(x / 256), d[2] = 9, d[3] = 255;
  }
  for (int y = 1; y < 4; ++y)
    for (int x = 0; x < 300; ++x) p.Row(y)[4 * x + 3] = 255;
  p.alpha = Alpha_None;
  cPNGwriter writer;
  writer.Set(Png_FilterMethod, Variant(int32_t{Filter_Adaptive}));
  const std::vector<uint8_t> filters = FilterBytes(Save(writer, p));
  ASSERT_EQ(filters.size(), 4u);
  EXPECT_EQ(filters[2], 0);
  EXPECT_EQ(filters[3], 0);
}

TEST(PngWriter, PaletteImagesAreNeverFiltered) {
  const Pixels p = Picture(50, 30, 100, Alpha_None, 3);
  for (int method : {Filter_Adaptive, Filter_Paeth, Filter_AdjLeft}) {
    cPNGwriter writer;
    writer.Set(Png_FilterMethod, Variant(int32_t{method}));
    for (uint8_t f : FilterBytes(Save(writer, p))) EXPECT_EQ(f, 0);
  }
}

TEST(PngWriter, KeywordCleanUp) {
  const struct {
    String in, out;
  } cases[] = {
      {u" title ", u"Title"},
      {u"COMMENT", u"Comment"},
      {u"creation  time", u"Creation Time"},
      {u"  My   own    key  ", u"My own key"},
      {u"a\u00A0b", u"a b"},
      {u"\u00A0\u00A0x\u00A0", u"x"},
      {u"Beleza \u00E7\u00E3o", u"Beleza \u00E7\u00E3o"},
      {u"bell\u0007", u""},
      {u"del\u007F", u""},
      {u"c1\u0085", u""},
      {u"wide\u20AC", u""},
      {u"   ", u""},
      {u"", u""},
      {String(100, u'k'), String(79, u'k')},
      {String(78, u'k') + u" x", String(78, u'k')},  // cut, then trimmed
  };
  for (const auto& c : cases) EXPECT_EQ(cPNGwriter::CleanKeyword(c.in), c.out) << ToUtf8(c.in);
}

TEST(PngWriter, TextCleanUp) {
  EXPECT_EQ(cPNGwriter::CleanText(u"a\r\nb\rc\nd"), u"a\nb\nc\nd");
  EXPECT_EQ(cPNGwriter::CleanText(u"tab\there"), u"tab\there");
  EXPECT_EQ(cPNGwriter::CleanText(u"bell\u0007"), u"");
  EXPECT_EQ(cPNGwriter::CleanText(String(u"nul\0x", 5)), u"");
  EXPECT_EQ(cPNGwriter::CleanText(String(40000, u'x')).size(), 32700u);
  cPNGwriter writer;
  EXPECT_FALSE(writer.Set(Png_Comment, Variant(u"bell\u0007")));
  EXPECT_FALSE(writer.HasProperties());
  EXPECT_TRUE(writer.Set(Png_Comment, Variant(u"with\ttab")));
  EXPECT_EQ(writer.Get(Png_Comment).ToString(), u"with\ttab");
  EXPECT_FALSE(writer.Set(Png_Comment, Variant(u"")));
}

TEST(PngWriter, MiscellaneousKeywordNamingAStandardOneSetsIt) {
  cPNGwriter writer;
  EXPECT_TRUE(writer.Set(Png_Miscellaneous, Variant(u"Meu título"), u" title "));
  EXPECT_EQ(writer.Get(Png_Title).ToString(), u"Meu título");
  EXPECT_EQ(writer.Get(Png_Miscellaneous, u"TITLE").ToString(), u"Meu título");
  EXPECT_EQ(writer.Get(Png_Miscellaneous).ToString(), u"");
  EXPECT_FALSE(writer.Set(Png_Miscellaneous, Variant(u"x")));                // no keyword
  EXPECT_FALSE(writer.Set(Png_Miscellaneous, Variant(u"x"), u"bad\u0001"));  // emptied
}

TEST(PngWriter, PropertyValidityAndDefaults) {
  cPNGwriter writer;
  for (int32_t bad : {0, 3, 5, 96, 129, 255, 257, 16384, -2, 3072})
    EXPECT_FALSE(writer.Set(bad, Variant(u"x"), u"k")) << bad;
  EXPECT_EQ(writer.Get(Png_Title).ToString(), u"");
  EXPECT_EQ(writer.Get(Png_DateTimeModified).ToDate(), Date());
  EXPECT_EQ(writer.Get(Png_DefaultBkgColor).ToLong(), -1);
  EXPECT_EQ(writer.Get(Png_FilterMethod).ToLong(), 0);
  EXPECT_TRUE(writer.Get(3).IsEmpty());

  EXPECT_TRUE(writer.Set(Png_DefaultBkgColor, Variant(int32_t{0x00336699})));
  EXPECT_EQ(writer.Get(Png_DefaultBkgColor).ToLong(), 0x00336699);
  EXPECT_TRUE(writer.Clear(Png_DefaultBkgColor));
  EXPECT_EQ(writer.Get(Png_DefaultBkgColor).ToLong(), -1);

  // The filter method reads back as given, set or cleared.
  EXPECT_TRUE(writer.Set(Png_FilterMethod, Variant(int32_t{99})));
  EXPECT_EQ(writer.Get(Png_FilterMethod).ToLong(), 99);
  EXPECT_TRUE(writer.Clear(Png_FilterMethod));
  EXPECT_EQ(writer.Get(Png_FilterMethod).ToLong(), 0);

  const Date when = DateSerial(2024, 3, 9);
  EXPECT_TRUE(writer.Set(Png_DateTimeModified, Variant(when)));
  EXPECT_EQ(writer.Get(Png_DateTimeModified).ToDate(), when);
  EXPECT_FALSE(writer.Set(Png_DateTimeModified, Variant(u"not a date at all")));
  EXPECT_FALSE(writer.Set(Png_DefaultBkgColor, Variant(u"azul")));
}

TEST(PngWriter, SurfaceFacingSetAndGet) {
  cPNGwriter writer;
  EXPECT_TRUE(writer.PngPropertySet(Png_Author, Variant(u"Ana")));
  EXPECT_TRUE(writer.PngPropertySet(Png_Miscellaneous, Variant(u"v"), u"Chave"));
  EXPECT_EQ(writer.PngPropertyGet(Png_Author).ToString(), u"Ana");
  EXPECT_EQ(writer.PngPropertyGet(Png_Miscellaneous, u"Chave").ToString(), u"v");
  // A missing or empty value clears the one property.
  EXPECT_TRUE(writer.PngPropertySet(Png_Author));
  EXPECT_EQ(writer.PngPropertyGet(Png_Author).ToString(), u"");
  EXPECT_TRUE(writer.HasProperties());
  EXPECT_TRUE(writer.PngPropertySet(Png_Miscellaneous, Variant(), u"Chave"));
  EXPECT_FALSE(writer.HasProperties());
  // -1 clears every one.
  writer.PngPropertySet(Png_Title, Variant(u"t"));
  writer.PngPropertySet(Png_DefaultBkgColor, Variant(int32_t{5}));
  writer.PngPropertySet(Png_FilterMethod, Variant(int32_t{Filter_AdjAvg}));
  EXPECT_TRUE(writer.PngPropertySet(-1));
  EXPECT_FALSE(writer.HasProperties());
  EXPECT_EQ(writer.PngPropertyGet(Png_Title).ToString(), u"");
  EXPECT_EQ(writer.PngPropertyGet(Png_FilterMethod).ToLong(), 0);
  EXPECT_FALSE(writer.PngPropertySet(6, Variant(u"x")));
}

TEST(PngWriter, ClearingMiscellaneousTextsMovesTheLastIntoTheGap) {
  cPNGwriter writer;
  for (const char16_t* k : {u"A", u"B", u"C"})
    ASSERT_TRUE(writer.Set(Png_Miscellaneous, Variant(String(k) + u"!"), k));
  ASSERT_TRUE(writer.Clear(Png_Miscellaneous, u"A"));
  const Pixels p = Picture(3, 3, 2, Alpha_None, 1);
  std::vector<Chunk> chunks = Chunks(Save(writer, p));
  EXPECT_EQ(Types(chunks), "IHDR PLTE IDAT tEXt:C tEXt:B IEND");
  ASSERT_TRUE(writer.Clear(Png_Miscellaneous, u"C"));
  EXPECT_TRUE(writer.HasProperties());
  ASSERT_TRUE(writer.Clear(Png_Miscellaneous, u"B"));
  EXPECT_FALSE(writer.HasProperties());  // the last one takes its flag along
  EXPECT_EQ(writer.Get(Png_Miscellaneous, u"B").ToString(), u"");
  // Setting a keyword again replaces its text.
  writer.Set(Png_Miscellaneous, Variant(u"1"), u"K");
  writer.Set(Png_Miscellaneous, Variant(u"2"), u"K");
  EXPECT_EQ(writer.Get(Png_Miscellaneous, u"K").ToString(), u"2");
  EXPECT_EQ(Types(Chunks(Save(writer, p))), "IHDR PLTE IDAT tEXt:K IEND");
}

TEST(PngWriter, ChunkOrder) {
  cPNGwriter writer;
  const char16_t* names[] = {u"Title",         u"Author",   u"Description", u"Copyright",
                             u"Creation Time", u"Software", u"Disclaimer",  u"Warning",
                             u"Source",        u"Comment"};
  for (int bit = 9; bit >= 0; --bit)  // set in reverse: the order is the writer's
    ASSERT_TRUE(writer.Set(1 << bit, Variant(String(names[bit]) + u" text")));
  const String longText(3000, u'z');
  ASSERT_TRUE(writer.Set(Png_Miscellaneous, Variant(longText), u"Longo"));
  ASSERT_TRUE(writer.Set(Png_Miscellaneous, Variant(String(1024, u'y')), u"Curto"));
  ASSERT_TRUE(writer.Set(Png_DateTimeModified, Variant(Date(DateSerial(2023, 11, 5).Serial() +
                                                            TimeSerial(13, 4, 59).Serial()))));
  // A palette picture with a transparent entry, and the background in it.
  Pixels p = Picture(20, 10, 3, Alpha_Simple, 11);
  const uint8_t* opaque = nullptr;
  for (size_t i = 3; i < p.bytes.size(); i += 4)
    if (p.bytes[i] == 255) opaque = &p.bytes[i - 3];
  ASSERT_NE(opaque, nullptr);
  const int32_t color = opaque[2] | opaque[1] << 8 | opaque[0] << 16;
  ASSERT_TRUE(writer.Set(Png_DefaultBkgColor, Variant(color)));

  const std::vector<uint8_t> file = Save(writer, p);
  const std::vector<Chunk> chunks = Chunks(file);
  EXPECT_EQ(Types(chunks),
            "IHDR tEXt:Description tEXt:Copyright tEXt:Creation Time tEXt:Software "
            "tEXt:Disclaimer tEXt:Warning tEXt:Source tEXt:Comment PLTE bKGD tRNS IDAT tIME "
            "tEXt:Title tEXt:Author zTXt:Longo tEXt:Curto IEND");
  EXPECT_EQ(Body(chunks, "tIME"), (std::vector<uint8_t>{0x07, 0xE7, 11, 5, 13, 4, 59}));
  const std::vector<uint8_t> bkgd = Body(chunks, "bKGD"), plte = Body(chunks, "PLTE");
  ASSERT_EQ(bkgd.size(), 1u);
  const size_t i = bkgd[0];
  ASSERT_LT(3 * i + 2, plte.size());
  EXPECT_EQ(plte[3 * i] | plte[3 * i + 1] << 8 | plte[3 * i + 2] << 16, color);
  EXPECT_EQ(Body(chunks, "tRNS"), std::vector<uint8_t>{0});  // only the transparent entry
  Decoded d;
  ASSERT_TRUE(Libpng(file, d));
  EXPECT_EQ(Mismatch(p, d), "");
  ASSERT_EQ(d.texts.size(), 12u);
  EXPECT_EQ(d.texts[0].first, "Description");
  EXPECT_EQ(d.texts[0].second, "Description text");
  EXPECT_EQ(d.texts[10].first, "Longo");
  EXPECT_EQ(d.texts[10].second, std::string(3000, 'z'));
  EXPECT_EQ(d.texts[11].second, std::string(1024, 'y'));
}

TEST(PngWriter, BackgroundColour) {
  cPNGwriter writer;
  // True colour: red, green and blue as 16-bit values.
  const Pixels rgb = Picture(30, 30, 500, Alpha_None, 5);
  ASSERT_TRUE(writer.Set(Png_DefaultBkgColor, Variant(int32_t{0x00112233})));
  EXPECT_EQ(Body(Chunks(Save(writer, rgb)), "bKGD"),
            (std::vector<uint8_t>{0, 0x33, 0, 0x22, 0, 0x11}));
  // A system colour is translated first.
  ASSERT_TRUE(writer.Set(Png_DefaultBkgColor, Variant(static_cast<int32_t>(0x80000005u))));
  COLORREF window = 0;
  ASSERT_EQ(::OleTranslateColor(0x80000005u, nullptr, &window), S_OK);
  EXPECT_EQ(
      Body(Chunks(Save(writer, rgb)), "bKGD"),
      (std::vector<uint8_t>{0, static_cast<uint8_t>(window), 0, static_cast<uint8_t>(window >> 8),
                            0, static_cast<uint8_t>(window >> 16)}));
  // A palette picture without that colour leaves the chunk out.
  const Pixels few = Picture(8, 8, 4, Alpha_None, 6);
  ASSERT_TRUE(writer.Set(Png_DefaultBkgColor, Variant(int32_t{0x00FFFFFE})));
  EXPECT_EQ(Types(Chunks(Save(writer, few))), "IHDR PLTE IDAT IEND");
}

TEST(PngWriter, TextsGoOutAsLatin1) {
  cPNGwriter writer;
  ASSERT_TRUE(writer.Set(Png_Comment, Variant(u"Ação €")));
  EXPECT_EQ(
      Body(Chunks(Save(writer, Picture(2, 2, 1, Alpha_None, 1))), "tEXt"),
      (std::vector<uint8_t>{'C', 'o', 'm', 'm', 'e', 'n', 't', 0, 'A', 0xE7, 0xE3, 'o', ' ', '?'}));
}

TEST(PngWriter, RefusesWithoutZlibOrPixels) {
  cPNGwriter writer;
  std::vector<uint8_t> out{1, 2, 3};
  EXPECT_FALSE(writer.Save(Pixels(), out));
  EXPECT_TRUE(out.empty());
  WriterWithoutZlib absent;
  EXPECT_FALSE(writer.Save(Picture(4, 4, 2, Alpha_None, 1), out));
}

TEST(PngWriter, SavesToAFileThatReadsBack) {
  const auto dir = std::filesystem::temp_directory_path() / "vantor_png_writer_test";
  std::filesystem::create_directories(dir);
  const String name = (dir / "saída.png").u16string();
  const Pixels p = Picture(33, 17, 1000, Alpha_Simple, 9);
  cPNGwriter writer;
  ASSERT_TRUE(writer.Save(p, name));
  Pixels back;
  cPNGparser parser;
  ASSERT_TRUE(parser.LoadFile(name, back));
  EXPECT_EQ(back.bytes, p.bytes);
  EXPECT_EQ(back.alpha, Alpha_Simple);
  EXPECT_FALSE(writer.Save(p, String()));
  EXPECT_FALSE(writer.Save(p, (dir / "no such folder" / "x.png").u16string()));
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace vantor::imaging
