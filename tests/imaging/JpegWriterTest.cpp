// The JPEG writer's own rules, read off its files byte by byte: the quality
// rule for the tables, the zig-zag walk, the fitted Huffman tables, the marker
// order and contents, byte stuffing, and what it refuses. Whether a decoder
// agrees is JpegOracleTest's business.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <random>
#include <vector>

#include "imaging/Pixels.h"
#include "imaging/cJPGWriter.h"

namespace vantor::imaging {
namespace {

constexpr uint8_t kLuminanceZigZag16[16] = {16, 11, 12, 14, 12, 10, 16, 14,
                                            13, 14, 18, 17, 16, 19, 24, 40};

// Annex K's tables in row order, to check the rule against.
constexpr uint8_t kLuminanceRows[64] = {
    16, 11, 10, 16, 24,  40,  51,  61,  12, 12, 14, 19, 26,  58,  60,  55,
    14, 13, 16, 24, 40,  57,  69,  56,  14, 17, 22, 29, 51,  87,  80,  62,
    18, 22, 37, 56, 68,  109, 103, 77,  24, 35, 55, 64, 81,  104, 113, 92,
    49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};

Pixels Solid(int w, int h, uint8_t r, uint8_t g, uint8_t b, uint8_t a = 255) {
  Pixels p;
  EXPECT_TRUE(p.Allocate(w, h));
  for (size_t i = 0; i < p.bytes.size(); i += 4) {
    p.bytes[i] = b;
    p.bytes[i + 1] = g;
    p.bytes[i + 2] = r;
    p.bytes[i + 3] = a;
  }
  p.alpha = a == 255 ? Alpha_None : Alpha_Complex;
  return p;
}

Pixels Noise(int w, int h, uint32_t seed) {
  Pixels p;
  EXPECT_TRUE(p.Allocate(w, h));
  std::mt19937 rng(seed);
  for (size_t i = 0; i < p.bytes.size(); i += 4) {
    for (size_t c = 0; c < 3; ++c) p.bytes[i + c] = static_cast<uint8_t>(rng());
    p.bytes[i + 3] = 255;
  }
  p.alpha = Alpha_None;
  return p;
}

struct Segment {
  uint8_t marker = 0;
  std::vector<uint8_t> body;  // without the length
};

// The file's markers up to SOS, then the entropy-coded bytes, then what
// follows them. Fails the test on anything malformed.
struct Parsed {
  std::vector<Segment> segments;
  std::vector<uint8_t> entropy;
  std::vector<uint8_t> tail;
};

Parsed Parse(const std::vector<uint8_t>& f) {
  Parsed out;
  EXPECT_GE(f.size(), 4u);
  if (f.size() < 4) return out;
  EXPECT_EQ(f[0], 0xFF);
  EXPECT_EQ(f[1], 0xD8);
  out.segments.push_back({0xD8, {}});
  size_t pos = 2;
  while (pos + 4 <= f.size()) {
    EXPECT_EQ(f[pos], 0xFF) << "at " << pos;
    const uint8_t marker = f[pos + 1];
    const size_t length = size_t{f[pos + 2]} << 8 | f[pos + 3];
    EXPECT_GE(length, 2u);
    EXPECT_LE(pos + 2 + length, f.size());
    if (length < 2 || pos + 2 + length > f.size()) return out;
    out.segments.push_back(
        {marker, std::vector<uint8_t>(f.begin() + static_cast<ptrdiff_t>(pos + 4),
                                      f.begin() + static_cast<ptrdiff_t>(pos + 2 + length))});
    pos += 2 + length;
    if (marker == 0xDA) break;
  }
  // Entropy data runs to the first 0xFF not followed by a stuffed 0x00.
  while (pos < f.size()) {
    if (f[pos] == 0xFF && pos + 1 < f.size() && f[pos + 1] != 0x00) break;
    out.entropy.push_back(f[pos]);
    ++pos;
  }
  out.tail.assign(f.begin() + static_cast<ptrdiff_t>(pos), f.end());
  return out;
}

std::vector<uint8_t> Write(const Pixels& p, int quality = 75, OLE_COLOR fill = 0xFFFFFF) {
  cJPGWriter w;
  std::vector<uint8_t> out;
  EXPECT_TRUE(w.Save(p, out, quality, fill));
  return out;
}

// --- Tables ------------------------------------------------------------------

TEST(JpegWriterTables, ZigZagWalk) {
  const cJPGWriter w;
  const auto& zz = w.ZigZag();
  const uint8_t start[10] = {0, 1, 8, 16, 9, 2, 3, 10, 17, 24};
  for (size_t k = 0; k < 10; ++k) EXPECT_EQ(zz[k], start[k]) << k;
  EXPECT_EQ(zz[62], 62);
  EXPECT_EQ(zz[63], 63);
  std::vector<int> seen(zz.begin(), zz.end());
  std::sort(seen.begin(), seen.end());
  for (int k = 0; k < 64; ++k) EXPECT_EQ(seen[static_cast<size_t>(k)], k);
}

TEST(JpegWriterTables, QualityFiftyKeepsTheBaseTables) {
  cJPGWriter w;
  w.put_Quality(50);
  for (size_t k = 0; k < 16; ++k) EXPECT_EQ(w.QuantizationTable(0)[k], kLuminanceZigZag16[k]);
  for (size_t k = 0; k < 64; ++k)
    EXPECT_EQ(w.QuantizationTable(0)[k], kLuminanceRows[w.ZigZag()[k]]) << k;
  // The chrominance table in zig-zag order begins 17, 18, 18, 24, 21, 24.
  const uint8_t chroma[6] = {17, 18, 18, 24, 21, 24};
  for (size_t k = 0; k < 6; ++k) EXPECT_EQ(w.QuantizationTable(1)[k], chroma[k]);
  EXPECT_EQ(w.QuantizationTable(1)[63], 99);
}

TEST(JpegWriterTables, QualityHundredIsAllOnes) {
  cJPGWriter w;
  w.put_Quality(100);
  for (size_t t = 0; t < 2; ++t)
    for (uint8_t v : w.QuantizationTable(static_cast<int>(t))) EXPECT_EQ(v, 1);
}

TEST(JpegWriterTables, TheQualityRule) {
  struct Case {
    int quality;
    int scale;
  };
  // Below 50: 5000 / quality truncated; from 50: 200 - 2 x quality.
  for (const Case c : {Case{1, 5000}, Case{10, 500}, Case{30, 166}, Case{49, 102}, Case{75, 50},
                       Case{90, 20}, Case{99, 2}}) {
    cJPGWriter w;
    w.put_Quality(c.quality);
    EXPECT_EQ(w.get_Quality(), c.quality);
    for (size_t k = 0; k < 64; ++k) {
      const int want = std::clamp((kLuminanceRows[w.ZigZag()[k]] * c.scale + 50) / 100, 1, 255);
      ASSERT_EQ(w.QuantizationTable(0)[k], want) << "quality " << c.quality << " entry " << k;
    }
  }
  cJPGWriter w;
  w.put_Quality(75);
  EXPECT_EQ(w.QuantizationTable(0)[0], 8);    // (16 x 50 + 50) / 100
  EXPECT_EQ(w.QuantizationTable(1)[63], 50);  // (99 x 50 + 50) / 100
}

TEST(JpegWriterTables, QualityOutOfRangeIsHeldAtTheEnds) {
  cJPGWriter w;
  EXPECT_EQ(w.get_Quality(), 75);
  w.put_Quality(0);
  EXPECT_EQ(w.get_Quality(), 1);
  EXPECT_EQ(w.QuantizationTable(0)[0], 255);  // 16 x 5000 is far beyond a byte
  w.put_Quality(-40);
  EXPECT_EQ(w.get_Quality(), 1);
  w.put_Quality(250);
  EXPECT_EQ(w.get_Quality(), 100);
  EXPECT_EQ(w.QuantizationTable(0)[0], 1);
}

// --- Huffman tables ------------------------------------------------------------

struct Fitted {
  std::array<uint8_t, 17> bits{};
  std::vector<uint8_t> values;
  // Code length by symbol, as the codes are handed out in order.
  std::array<int, 256> length{};
};

Fitted Fit(const cJPGWriter::Frequencies& f) {
  Fitted out;
  cJPGWriter::FitHuffmanTable(f, out.bits, out.values);
  size_t k = 0;
  for (int n = 1; n <= 16; ++n)
    for (int i = 0; i < out.bits[static_cast<size_t>(n)]; ++i) out.length[out.values.at(k++)] = n;
  EXPECT_EQ(k, out.values.size());
  return out;
}

// Kraft's sum in units of 2^-16: below 65536 means no code is all ones.
uint32_t Kraft(const Fitted& t) {
  uint32_t sum = 0;
  for (int n = 1; n <= 16; ++n) sum += uint32_t{t.bits[static_cast<size_t>(n)]} << (16 - n);
  return sum;
}

TEST(JpegWriterHuffman, EveryUsedSymbolGetsOneCodeAndNoneIsAllOnes) {
  cJPGWriter::Frequencies f{};
  f[0] = 1000;
  f[1] = 10;
  f[0x11] = 3;
  f[0xF0] = 1;
  const Fitted t = Fit(f);
  ASSERT_EQ(t.values.size(), 4u);
  EXPECT_LT(Kraft(t), 65536u);
  // With the reserved symbol the five have lengths 1, 2, 3, 4, 4, and the
  // reserved one takes one of the longest.
  EXPECT_EQ(t.length[0], 1);
  EXPECT_EQ(t.length[1], 2);
  EXPECT_EQ(t.length[0x11], 3);
  EXPECT_EQ(t.length[0xF0], 4);
  EXPECT_EQ(std::count(t.values.begin(), t.values.end(), uint8_t{0x11}), 1);
}

TEST(JpegWriterHuffman, OneSymbolStillGetsACode) {
  cJPGWriter::Frequencies f{};
  f[5] = 42;
  const Fitted t = Fit(f);
  ASSERT_EQ(t.values, std::vector<uint8_t>{5});
  EXPECT_EQ(t.bits[1], 1);
  EXPECT_EQ(Kraft(t), 32768u);
}

TEST(JpegWriterHuffman, NothingCountedGivesAnEmptyTable) {
  const Fitted t = Fit(cJPGWriter::Frequencies{});
  EXPECT_TRUE(t.values.empty());
  EXPECT_EQ(Kraft(t), 0u);
}

TEST(JpegWriterHuffman, LengthsAreHeldToSixteen) {
  // Fibonacci counts make the deepest tree Huffman's rule can build: 30
  // symbols would want codes of up to 30 bits.
  cJPGWriter::Frequencies f{};
  uint32_t a = 1, b = 1;
  for (size_t s = 0; s < 30; ++s) {
    f[s] = a;
    const uint32_t next = a + b;
    a = b;
    b = next;
  }
  const Fitted t = Fit(f);
  EXPECT_EQ(t.values.size(), 30u);
  EXPECT_LT(Kraft(t), 65536u);
  for (size_t s = 0; s < 30; ++s) {
    EXPECT_GE(t.length[s], 1);
    EXPECT_LE(t.length[s], 16);
  }
  // A more frequent symbol never has a longer code.
  for (size_t s = 1; s < 30; ++s) {
    if (f[s] > f[s - 1]) {
      EXPECT_LE(t.length[s], t.length[s - 1]) << s;
    }
  }
}

TEST(JpegWriterHuffman, AllSymbolsUsed) {
  cJPGWriter::Frequencies f{};
  std::mt19937 rng(7);
  for (size_t s = 0; s < 256; ++s) f[s] = 1 + static_cast<uint32_t>(rng() % 100000);
  const Fitted t = Fit(f);
  EXPECT_EQ(t.values.size(), 256u);
  EXPECT_LT(Kraft(t), 65536u);
  std::vector<uint8_t> sorted = t.values;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end());
}

TEST(JpegWriterHuffman, MatchesTheOptimalCostWhenNoLimitBites) {
  // Without the length limit the procedure is Huffman's: no other prefix code
  // over the same symbols (plus the reserved one) costs less. Checked against
  // a plain Huffman cost by repeated merging.
  cJPGWriter::Frequencies f{};
  const uint32_t counts[] = {400, 230, 230, 100, 90, 40, 40, 12, 7, 3, 1};
  for (size_t s = 0; s < std::size(counts); ++s) f[s * 3] = counts[s];
  const Fitted t = Fit(f);
  uint64_t fitted = 0;
  for (size_t s = 0; s < std::size(counts); ++s)
    fitted += uint64_t{counts[s]} * static_cast<uint64_t>(t.length[s * 3]);
  std::vector<uint64_t> heap(std::begin(counts), std::end(counts));
  heap.push_back(1);  // the reserved symbol
  uint64_t optimal = 0;
  while (heap.size() > 1) {
    std::sort(heap.begin(), heap.end(), std::greater<>());
    const uint64_t joined = heap.back() + heap[heap.size() - 2];
    heap.resize(heap.size() - 2);
    heap.push_back(joined);
    optimal += joined;
  }
  // The reserved symbol's share: its length times its count of 1 is at most
  // the longest code's length.
  const int longest = *std::max_element(t.length.begin(), t.length.end());
  EXPECT_LE(fitted, optimal);
  EXPECT_GE(fitted + static_cast<uint64_t>(longest), optimal);
}

// --- The file --------------------------------------------------------------------

TEST(JpegWriterFile, MarkersInOrder) {
  const std::vector<uint8_t> file = Write(Noise(40, 24, 1), 75);
  const Parsed p = Parse(file);
  std::vector<uint8_t> order;
  for (const Segment& s : p.segments) order.push_back(s.marker);
  const std::vector<uint8_t> want = {0xD8, 0xE0, 0xDB, 0xDB, 0xC0, 0xC4, 0xC4, 0xC4, 0xC4, 0xDA};
  EXPECT_EQ(order, want);
  EXPECT_EQ(p.tail, (std::vector<uint8_t>{0xFF, 0xD9}));
  EXPECT_FALSE(p.entropy.empty());
}

TEST(JpegWriterFile, SegmentContents) {
  const std::vector<uint8_t> file = Write(Noise(40, 24, 2), 60);
  const Parsed p = Parse(file);
  ASSERT_EQ(p.segments.size(), 10u);
  // APP0: JFIF 1.1, no units, 1 x 1, no thumbnail.
  EXPECT_EQ(p.segments[1].body,
            (std::vector<uint8_t>{'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0}));
  // DQT: 8-bit precision, tables 0 and 1, as the quality gives them.
  cJPGWriter w;
  w.put_Quality(60);
  for (size_t t = 0; t < 2; ++t) {
    const std::vector<uint8_t>& body = p.segments[2 + t].body;
    ASSERT_EQ(body.size(), 65u);
    EXPECT_EQ(body[0], t);
    EXPECT_TRUE(
        std::equal(body.begin() + 1, body.end(), w.QuantizationTable(static_cast<int>(t)).begin()));
  }
  // SOF0: precision 8, height, width, three components with ids 1 to 3;
  // the luminance at twice the chrominance's resolution each way.
  EXPECT_EQ(p.segments[4].body,
            (std::vector<uint8_t>{8, 0, 24, 0, 40, 3, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1}));
  // DHT: DC tables, then AC tables.
  const uint8_t classes[4] = {0x00, 0x01, 0x10, 0x11};
  for (size_t i = 0; i < 4; ++i) {
    const std::vector<uint8_t>& body = p.segments[5 + i].body;
    ASSERT_GE(body.size(), 17u);
    EXPECT_EQ(body[0], classes[i]);
    size_t count = 0;
    uint32_t kraft = 0;
    for (size_t n = 1; n <= 16; ++n) {
      count += body[n];
      kraft += uint32_t{body[n]} << (16 - n);
    }
    EXPECT_EQ(body.size(), 17 + count);
    EXPECT_GT(count, 0u);
    EXPECT_LT(kraft, 65536u) << "a code of all ones in table " << i;
  }
  // SOS: all three components, spectral range 0 to 63, no approximation.
  EXPECT_EQ(p.segments[9].body, (std::vector<uint8_t>{3, 1, 0x00, 2, 0x11, 3, 0x11, 0, 63, 0}));
}

TEST(JpegWriterFile, SamplingCanBeChanged) {
  cJPGWriter w;
  EXPECT_FALSE(w.SetLuminanceSampling(3, 1));
  EXPECT_FALSE(w.SetLuminanceSampling(1, 0));
  ASSERT_TRUE(w.SetLuminanceSampling(2, 1));
  std::vector<uint8_t> out;
  ASSERT_TRUE(w.Save(Noise(17, 9, 3), out));
  const Parsed p = Parse(out);
  ASSERT_EQ(p.segments.size(), 10u);
  EXPECT_EQ(p.segments[4].body[7], 0x21);
  ASSERT_TRUE(w.SetLuminanceSampling(1, 1));
  ASSERT_TRUE(w.Save(Noise(17, 9, 3), out));
  EXPECT_EQ(Parse(out).segments[4].body[7], 0x11);
}

TEST(JpegWriterFile, FFInTheDataIsStuffed) {
  // Noise at quality 100 makes long, varied codes: 0xFF bytes are certain.
  const std::vector<uint8_t> file = Write(Noise(64, 64, 4), 100);
  const Parsed p = Parse(file);
  EXPECT_EQ(p.tail, (std::vector<uint8_t>{0xFF, 0xD9}));
  size_t stuffed = 0;
  for (size_t i = 0; i < p.entropy.size(); ++i) {
    if (p.entropy[i] != 0xFF) continue;
    ASSERT_LT(i + 1, p.entropy.size());
    EXPECT_EQ(p.entropy[i + 1], 0x00);
    ++stuffed;
    ++i;
  }
  EXPECT_GT(stuffed, 0u);
}

TEST(JpegWriterFile, LastByteIsPaddedWithOnes) {
  // Flat mid-grey in one 16 x 16 unit: four luminance and two chrominance
  // blocks, all coefficients 0. Each table then holds one symbol (DC
  // category 0, or end of block) beside the reserved one, so each symbol's
  // code is the single bit 0.
  const std::vector<uint8_t> file = Write(Solid(16, 16, 128, 128, 128));
  const Parsed p = Parse(file);
  ASSERT_EQ(p.entropy.size(), 2u);
  // Six blocks of DC "0" and end of block "0": twelve zero bits, then four
  // one bits of padding.
  EXPECT_EQ(p.entropy[0], 0x00);
  EXPECT_EQ(p.entropy[1], 0x0F);
}

TEST(JpegWriterFile, OnePixel) {
  const std::vector<uint8_t> file = Write(Solid(1, 1, 200, 30, 90));
  const Parsed p = Parse(file);
  ASSERT_EQ(p.segments.size(), 10u);
  EXPECT_EQ(p.segments[4].body[1], 0);
  EXPECT_EQ(p.segments[4].body[2], 1);
  EXPECT_EQ(p.segments[4].body[4], 1);
  EXPECT_EQ(p.tail, (std::vector<uint8_t>{0xFF, 0xD9}));
}

TEST(JpegWriterFile, RefusesWhatItCannotWrite) {
  cJPGWriter w;
  std::vector<uint8_t> out{1, 2, 3};
  EXPECT_FALSE(w.Save(Pixels{}, out));
  EXPECT_TRUE(out.empty());
  Pixels wrongSize = Solid(4, 4, 1, 2, 3);
  wrongSize.bytes.resize(10);
  out = {1};
  EXPECT_FALSE(w.Save(wrongSize, out));
  EXPECT_TRUE(out.empty());
  // A frame says its size in 16 bits.
  Pixels wide = Solid(65536, 1, 0, 0, 0);
  out = {1};
  EXPECT_FALSE(w.Save(wide, out));
  EXPECT_TRUE(out.empty());
  EXPECT_TRUE(w.Save(Solid(65535, 1, 0, 0, 0), out));
  EXPECT_FALSE(out.empty());
}

TEST(JpegWriterFile, FileFormWritesTheSameBytes) {
  const auto dir = std::filesystem::temp_directory_path() / "vantor_jpeg_writer_test";
  std::filesystem::create_directories(dir);
  const Pixels p = Noise(21, 13, 5);
  cJPGWriter w;
  std::vector<uint8_t> bytes;
  ASSERT_TRUE(w.Save(p, bytes, 80));
  const auto path = dir / "noise.jpg";
  ASSERT_TRUE(w.Save(p, FromUtf8(path.string()), 80));
  std::ifstream in(path, std::ios::binary);
  const std::vector<uint8_t> read((std::istreambuf_iterator<char>(in)),
                                  std::istreambuf_iterator<char>());
  EXPECT_EQ(read, bytes);
  EXPECT_FALSE(w.Save(p, FromUtf8((dir / "no" / "such" / "folder.jpg").string())));
  EXPECT_FALSE(w.Save(p, String()));
  EXPECT_FALSE(w.Save(Pixels{}, FromUtf8(path.string())));
  std::filesystem::remove_all(dir);
}

class PlainLoops {
 public:
  PlainLoops() { cJPGWriter::UsePlainLoopsForTesting(true); }
  ~PlainLoops() { cJPGWriter::UsePlainLoopsForTesting(false); }
};

TEST(JpegWriterFile, PlainLoopsWriteTheSameBytes) {
  // Every width from 1 to 40 meets every split between the pixels read in
  // place and the padded copy; part of the picture is see-through.
  for (int w = 1; w <= 40; ++w) {
    for (int h : {1, 9, 17}) {
      Pixels p = Noise(w, h, static_cast<uint32_t>(w * 100 + h));
      for (size_t i = 3; i < p.bytes.size(); i += 28) {
        p.bytes[i] = static_cast<uint8_t>(i % 256);
        for (size_t c = 1; c <= 3; ++c) p.bytes[i - c] = std::min(p.bytes[i - c], p.bytes[i]);
      }
      for (int sampling : {1, 2}) {
        for (int quality : {10, 75, 100}) {
          cJPGWriter fast;
          ASSERT_TRUE(fast.SetLuminanceSampling(sampling, sampling));
          std::vector<uint8_t> a, b;
          ASSERT_TRUE(fast.Save(p, a, quality, 0x3366CC));
          {
            const PlainLoops plain;
            ASSERT_TRUE(fast.Save(p, b, quality, 0x3366CC));
          }
          ASSERT_EQ(a, b) << w << " x " << h << " sampling " << sampling << " quality " << quality;
        }
      }
    }
  }
}

TEST(JpegWriterFile, SameInputSameBytes) {
  const Pixels p = Noise(33, 33, 6);
  cJPGWriter w;
  std::vector<uint8_t> a, b;
  ASSERT_TRUE(w.Save(p, a, 75));
  ASSERT_TRUE(w.Save(p, b, 75));
  EXPECT_EQ(a, b);
  cJPGWriter other;
  ASSERT_TRUE(other.Save(p, b, 75));
  EXPECT_EQ(a, b);
}

}  // namespace
}  // namespace vantor::imaging
