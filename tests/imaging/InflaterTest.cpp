// Our inflater against zlib: whatever zlib's deflate writes, at every level
// and strategy, wrapped or raw, comes back the same whether it is taken whole
// or in small portions across many pieces; and streams written by hand show
// that bad data fails instead of being guessed at.
#include "imaging/Inflater.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <string>
#include <vector>

namespace vantor::imaging {
namespace {

std::vector<uint8_t> Deflate(const std::vector<uint8_t>& data, int level, int strategy, bool raw) {
  z_stream z{};
  EXPECT_EQ(deflateInit2(&z, level, Z_DEFLATED, raw ? -15 : 15, 8, strategy), Z_OK);
  std::vector<uint8_t> out(deflateBound(&z, static_cast<uLong>(data.size())) + 16);
  z.next_in = const_cast<Bytef*>(data.data());
  z.avail_in = static_cast<uInt>(data.size());
  z.next_out = out.data();
  z.avail_out = static_cast<uInt>(out.size());
  EXPECT_EQ(deflate(&z, Z_FINISH), Z_STREAM_END);
  out.resize(z.total_out);
  deflateEnd(&z);
  return out;
}

// Samples of what images and files hold: noise, text, runs, short repeats.
std::vector<std::pair<std::string, std::vector<uint8_t>>> Samples() {
  std::mt19937 rng(42);
  std::vector<std::pair<std::string, std::vector<uint8_t>>> out;
  out.emplace_back("empty", std::vector<uint8_t>{});
  out.emplace_back("one byte", std::vector<uint8_t>{7});
  std::vector<uint8_t> noise(70000);
  for (auto& b : noise) b = static_cast<uint8_t>(rng());
  out.emplace_back("noise", noise);
  std::string text;
  const char* words[] = {"imagem ", "pixel ", "cor ", "alfa ", "linha\n", "PNG ", "zlib "};
  while (text.size() < 200000) text += words[rng() % 7];
  out.emplace_back("text", std::vector<uint8_t>(text.begin(), text.end()));
  std::vector<uint8_t> runs;
  while (runs.size() < 100000)
    runs.insert(runs.end(), 1 + rng() % 600, static_cast<uint8_t>(rng() % 4));
  out.emplace_back("runs", runs);
  std::vector<uint8_t> periods;
  while (periods.size() < 100000) {
    const size_t period = 1 + rng() % 9, length = 3 + rng() % 400;
    for (size_t i = 0; i < length; ++i)
      periods.push_back(i < period ? static_cast<uint8_t>(rng())
                                   : periods[periods.size() - period]);
  }
  out.emplace_back("short periods", periods);
  std::vector<uint8_t> gradient(150000);
  for (size_t i = 0; i < gradient.size(); ++i)
    gradient[i] = static_cast<uint8_t>((i % 1200) / 5 + (rng() % 3));
  out.emplace_back("gradient", gradient);
  std::vector<uint8_t> repeated(30000);
  for (auto& b : repeated) b = static_cast<uint8_t>(rng());
  const std::vector<uint8_t> block = repeated;
  repeated.insert(repeated.end(), block.begin(), block.end());
  repeated.insert(repeated.end(), block.begin(), block.end());
  out.emplace_back("far repeats", repeated);
  return out;
}

// The stream read back in portions of `portion` bytes from `pieces`.
std::vector<uint8_t> Stream(const std::vector<std::span<const uint8_t>>& pieces, size_t portion,
                            Inflater::Wrapper wrapper, bool checkAdler, bool& ok) {
  Inflater inflater;
  inflater.Start(pieces, wrapper, checkAdler);
  std::vector<uint8_t> out;
  std::vector<uint8_t> buffer(portion);
  for (;;) {
    const size_t n = inflater.Read(buffer.data(), portion);
    out.insert(out.end(), buffer.begin(), buffer.begin() + static_cast<ptrdiff_t>(n));
    if (n < portion) break;
  }
  ok = inflater.Finished() && !inflater.Failed();
  return out;
}

// Cuts `data` at random places, empty pieces included.
std::vector<std::span<const uint8_t>> Cut(const std::vector<uint8_t>& data, std::mt19937& rng,
                                          size_t meanPiece) {
  std::vector<std::span<const uint8_t>> pieces;
  size_t pos = 0;
  while (pos < data.size()) {
    const size_t n = std::min(data.size() - pos, static_cast<size_t>(rng() % (2 * meanPiece + 1)));
    pieces.emplace_back(data.data() + pos, n);
    pos += n;
  }
  pieces.emplace_back();
  return pieces;
}

TEST(Inflater, MatchesZlibAtEveryLevelAndStrategy) {
  const int strategies[] = {Z_DEFAULT_STRATEGY, Z_FILTERED, Z_HUFFMAN_ONLY, Z_RLE, Z_FIXED};
  std::mt19937 rng(5);
  int streams = 0;
  for (const auto& [name, data] : Samples()) {
    for (int level : {0, 1, 6, 9}) {
      for (int strategy : strategies) {
        for (bool raw : {false, true}) {
          SCOPED_TRACE(name + " level " + std::to_string(level) + " strategy " +
                       std::to_string(strategy) + (raw ? " raw" : " zlib"));
          const std::vector<uint8_t> packed = Deflate(data, level, strategy, raw);
          const auto wrapper = raw ? Inflater::Wrapper::Raw : Inflater::Wrapper::Zlib;
          std::vector<uint8_t> whole;
          ASSERT_TRUE(Inflater::Uncompress(packed, whole, data.size(), wrapper, true));
          EXPECT_TRUE(whole == data);
          // Streamed, in awkward portions and pieces.
          const size_t portion = std::vector<size_t>{5, 7, 4096, 1 << 20}[streams % 4];
          bool ok = false;
          const std::vector<uint8_t> streamed =
              Stream(Cut(packed, rng, streams % 2 ? 3 : 5000), portion, wrapper, true, ok);
          EXPECT_TRUE(ok);
          EXPECT_TRUE(streamed == data) << "portion " << portion;
          ++streams;
        }
      }
    }
  }
  EXPECT_EQ(streams, 8 * 4 * 5 * 2);
}

TEST(Inflater, OutputLimit) {
  std::vector<uint8_t> data(1000, 'a');
  const std::vector<uint8_t> packed = Deflate(data, 9, Z_DEFAULT_STRATEGY, false);
  std::vector<uint8_t> out;
  EXPECT_TRUE(Inflater::Uncompress(packed, out, 1000));
  EXPECT_EQ(out.size(), 1000u);
  EXPECT_FALSE(Inflater::Uncompress(packed, out, 999));
  EXPECT_TRUE(out.empty());
}

TEST(Inflater, EveryTruncationFails) {
  std::vector<uint8_t> data;
  for (int i = 0; i < 3000; ++i) data.push_back(static_cast<uint8_t>(i * i % 251));
  for (int level : {0, 1, 9}) {
    const std::vector<uint8_t> packed = Deflate(data, level, Z_DEFAULT_STRATEGY, false);
    for (size_t n = 0; n < packed.size(); ++n) {
      std::vector<uint8_t> out;
      const std::vector<uint8_t> prefix(packed.begin(), packed.begin() + static_cast<ptrdiff_t>(n));
      EXPECT_FALSE(Inflater::Uncompress(prefix, out, 1 << 20))
          << "level " << level << " cut at " << n;
      bool ok = true;
      Stream({prefix}, 100, Inflater::Wrapper::Zlib, true, ok);
      EXPECT_FALSE(ok);
    }
    // Without the checksum test the stream ends with its final block.
    std::vector<uint8_t> out;
    const std::vector<uint8_t> noTrailer(packed.begin(), packed.end() - 4);
    EXPECT_TRUE(Inflater::Uncompress(noTrailer, out, 1 << 20, Inflater::Wrapper::Zlib, false));
    EXPECT_TRUE(out == data);
  }
}

// Deflate's bit order: fields from the low bit up, Huffman codes from their
// high bit.
class BitWriter {
 public:
  void Bits(uint32_t value, int n) {
    for (int i = 0; i < n; ++i) Bit((value >> i) & 1u);
  }
  void Code(uint32_t code, int length) {
    for (int i = length - 1; i >= 0; --i) Bit((code >> i) & 1u);
  }
  // A symbol of the fixed literal/length code.
  void Fixed(uint32_t symbol) {
    if (symbol < 144)
      Code(0x30 + symbol, 8);
    else if (symbol < 256)
      Code(0x190 + symbol - 144, 9);
    else if (symbol < 280)
      Code(symbol - 256, 7);
    else
      Code(0xC0 + symbol - 280, 8);
  }
  void AlignToByte() {
    while (used_ != 0) Bit(0);
  }
  void Byte(uint8_t b) { Bits(b, 8); }
  std::vector<uint8_t> bytes;

 private:
  void Bit(uint32_t b) {
    if (used_ == 0) bytes.push_back(0);
    bytes.back() = static_cast<uint8_t>(bytes.back() | b << used_);
    used_ = (used_ + 1) % 8;
  }
  int used_ = 0;
};

bool RawInflate(const std::vector<uint8_t>& stream, std::vector<uint8_t>& out) {
  return Inflater::Uncompress(stream, out, 1 << 24, Inflater::Wrapper::Raw, false);
}

bool ZlibAgrees(const std::vector<uint8_t>& stream, bool expectOk) {
  z_stream z{};
  inflateInit2(&z, -15);
  std::vector<uint8_t> out(1 << 20);
  z.next_in = const_cast<Bytef*>(stream.data());
  z.avail_in = static_cast<uInt>(stream.size());
  z.next_out = out.data();
  z.avail_out = static_cast<uInt>(out.size());
  const int r = inflate(&z, Z_FINISH);
  inflateEnd(&z);
  return (r == Z_STREAM_END) == expectOk;
}

TEST(Inflater, HandWrittenBadStreamsFail) {
  std::vector<std::pair<std::string, BitWriter>> cases;
  {
    BitWriter w;  // block type 3
    w.Bits(1, 1), w.Bits(3, 2);
    cases.emplace_back("reserved block type", w);
  }
  {
    BitWriter w;  // stored length and its complement disagree
    w.Bits(1, 1), w.Bits(0, 2), w.AlignToByte();
    w.Bits(5, 16), w.Bits(0xFFFA ^ 1, 16);
    for (int i = 0; i < 5; ++i) w.Byte('x');
    cases.emplace_back("stored length complement", w);
  }
  {
    BitWriter w;  // a match two bytes back after one literal
    w.Bits(1, 1), w.Bits(1, 2), w.Fixed('a'), w.Fixed(257), w.Code(1, 5), w.Fixed(256);
    cases.emplace_back("distance too far back", w);
  }
  {
    BitWriter w;
    w.Bits(1, 1), w.Bits(1, 2), w.Fixed(286);
    cases.emplace_back("literal/length symbol 286", w);
  }
  {
    BitWriter w;
    w.Bits(1, 1), w.Bits(1, 2), w.Fixed('a'), w.Fixed(257), w.Code(30, 5), w.Fixed(256);
    cases.emplace_back("distance symbol 30", w);
  }
  {
    BitWriter w;  // dynamic header with 287 literal/length codes
    w.Bits(1, 1), w.Bits(2, 2), w.Bits(30, 5), w.Bits(0, 5), w.Bits(15, 4);
    for (int i = 0; i < 19; ++i) w.Bits(4, 3);
    cases.emplace_back("too many literal codes", w);
  }
  {
    BitWriter w;  // code-length code over-subscribed: three codes of length 1
    w.Bits(1, 1), w.Bits(2, 2), w.Bits(0, 5), w.Bits(0, 5), w.Bits(0, 4);
    w.Bits(1, 3), w.Bits(1, 3), w.Bits(1, 3), w.Bits(0, 3);
    cases.emplace_back("over-subscribed code lengths", w);
  }
  {
    BitWriter w;  // code-length code incomplete: one code of length 2
    w.Bits(1, 1), w.Bits(2, 2), w.Bits(0, 5), w.Bits(0, 5), w.Bits(0, 4);
    w.Bits(2, 3), w.Bits(0, 3), w.Bits(0, 3), w.Bits(0, 3);
    cases.emplace_back("incomplete code-length code", w);
  }
  // A dynamic block header whose code lengths are given as code-length
  // symbols with their extra bits. The code-length code gives 4 bits to each
  // of 0 to 14 and to 16, which makes a complete code of 16 symbols.
  auto dynamic = [](const std::vector<std::pair<int, int>>& codeLengthSymbols, int hlit,
                    int hdist) {
    BitWriter w;
    w.Bits(1, 1), w.Bits(2, 2), w.Bits(static_cast<uint32_t>(hlit - 257), 5),
        w.Bits(static_cast<uint32_t>(hdist - 1), 5), w.Bits(15, 4);
    const int order[19] = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};
    for (int i = 0; i < 19; ++i) {
      const int s = order[i];
      w.Bits((s <= 14 || s == 16) ? 4 : 0, 3);
    }
    // Canonical codes of length 4: symbols 0..14 get 0..14, symbol 16 gets 15.
    for (const auto& [symbol, extra] : codeLengthSymbols) {
      w.Code(symbol == 16 ? 15 : static_cast<uint32_t>(symbol), 4);
      if (symbol == 16) w.Bits(static_cast<uint32_t>(extra), 2);
    }
    return w;
  };
  {
    // A repeat with nothing before it.
    cases.emplace_back("repeat of no length", dynamic({{16, 0}}, 257, 1));
  }
  {
    // All 258 lengths zero but symbol 256's: no code for the end of block.
    std::vector<std::pair<int, int>> symbols(258, {0, 0});
    symbols[0] = {1, 0};
    cases.emplace_back("no end-of-block code", dynamic(symbols, 257, 1));
  }
  {
    // Literal/length code incomplete: only 'a' and 256, with lengths 2.
    std::vector<std::pair<int, int>> symbols(258, {0, 0});
    symbols['a'] = {2, 0};
    symbols[256] = {2, 0};
    cases.emplace_back("incomplete literal code", dynamic(symbols, 257, 1));
  }
  {
    // Repeat running past the number of lengths.
    std::vector<std::pair<int, int>> symbols(256, {0, 0});
    symbols.push_back({1, 0});
    symbols.push_back({16, 3});
    cases.emplace_back("repeat past the end", dynamic(symbols, 257, 1));
  }
  {
    BitWriter w;  // a non-final block with nothing after it
    w.Bits(0, 1), w.Bits(1, 2), w.Fixed('a'), w.Fixed(256);
    cases.emplace_back("no final block", w);
  }
  for (const auto& [what, w] : cases) {
    std::vector<uint8_t> out;
    EXPECT_FALSE(RawInflate(w.bytes, out)) << what;
    EXPECT_TRUE(out.empty()) << what;
    EXPECT_TRUE(ZlibAgrees(w.bytes, false)) << what;
  }
}

TEST(Inflater, HandWrittenGoodStreams) {
  {
    // A run made by a match one byte back.
    BitWriter w;
    w.Bits(1, 1), w.Bits(1, 2), w.Fixed('x'), w.Fixed(258), w.Code(0, 5), w.Fixed(256);
    std::vector<uint8_t> out;
    ASSERT_TRUE(RawInflate(w.bytes, out));
    EXPECT_EQ(out, std::vector<uint8_t>(5, 'x'));
  }
  {
    // Matches reaching exactly 32 KiB back, across the streaming window's
    // refills: stored data first, then long matches at distance 32768.
    std::mt19937 rng(3);
    std::vector<uint8_t> expected;
    BitWriter w;
    for (int block = 0; block < 4; ++block) {
      w.Bits(0, 1), w.Bits(0, 2), w.AlignToByte();
      w.Bits(50000, 16), w.Bits(0xFFFF ^ 50000, 16);
      for (int i = 0; i < 50000; ++i) {
        const uint8_t b = static_cast<uint8_t>(rng());
        w.Byte(b);
        expected.push_back(b);
      }
    }
    w.Bits(1, 1), w.Bits(1, 2);
    for (int i = 0; i < 1000; ++i) {
      w.Fixed(285);                     // length 258
      w.Code(29, 5), w.Bits(8191, 13);  // distance 24577 + 8191 = 32768
      for (int k = 0; k < 258; ++k) expected.push_back(expected[expected.size() - 32768]);
    }
    w.Fixed(256);
    std::vector<uint8_t> out;
    ASSERT_TRUE(RawInflate(w.bytes, out));
    EXPECT_TRUE(out == expected);
    for (size_t portion : {size_t{1000}, size_t{65536}, size_t{333333}}) {
      bool ok = false;
      const std::vector<uint8_t> streamed =
          Stream({std::span<const uint8_t>(w.bytes)}, portion, Inflater::Wrapper::Raw, false, ok);
      EXPECT_TRUE(ok);
      EXPECT_TRUE(streamed == expected) << portion;
    }
    EXPECT_TRUE(ZlibAgrees(w.bytes, true));
  }
}

TEST(Inflater, ZlibHeaderAndChecksum) {
  const std::vector<uint8_t> data(500, 'q');
  const std::vector<uint8_t> good = Deflate(data, 6, Z_DEFAULT_STRATEGY, false);
  std::vector<uint8_t> out;
  ASSERT_TRUE(Inflater::Uncompress(good, out, 1000));
  std::vector<uint8_t> bad = good;
  bad.back() ^= 1;  // Adler-32
  EXPECT_FALSE(Inflater::Uncompress(bad, out, 1000, Inflater::Wrapper::Zlib, true));
  EXPECT_TRUE(Inflater::Uncompress(bad, out, 1000, Inflater::Wrapper::Zlib, false));
  bad = good;
  bad[0] = 0x77;  // method 7
  EXPECT_FALSE(Inflater::Uncompress(bad, out, 1000));
  bad = good;
  bad[1] ^= 1;  // header check
  EXPECT_FALSE(Inflater::Uncompress(bad, out, 1000));
  bad = good;
  bad[0] = 0x78, bad[1] = 0xBB;  // preset dictionary
  EXPECT_FALSE(Inflater::Uncompress(bad, out, 1000));
  bad = good;
  bad[0] = 0x88, bad[1] = 0x1C;  // a window larger than 32 KiB
  ASSERT_EQ((0x88 * 256 + 0x1C) % 31, 0);
  EXPECT_FALSE(Inflater::Uncompress(bad, out, 1000));
}

TEST(Inflater, ReadAfterTheEndGivesNothing) {
  const std::vector<uint8_t> data = {1, 2, 3};
  const std::vector<uint8_t> packed = Deflate(data, 6, Z_DEFAULT_STRATEGY, false);
  Inflater inflater;
  inflater.Start(packed);
  uint8_t buffer[8];
  EXPECT_EQ(inflater.Read(buffer, 2), 2u);
  EXPECT_FALSE(inflater.Finished());
  EXPECT_EQ(inflater.Read(buffer, 8), 1u);
  EXPECT_TRUE(inflater.Finished());
  EXPECT_EQ(inflater.Read(buffer, 8), 0u);
  EXPECT_FALSE(inflater.Failed());
  // A new stream on the same object.
  inflater.Start(packed);
  EXPECT_EQ(inflater.Read(buffer, 8), 3u);
  EXPECT_TRUE(inflater.Finished());
}

}  // namespace
}  // namespace vantor::imaging
