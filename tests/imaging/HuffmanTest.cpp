// The image lists' own byte compressor: round trips on random, skewed and
// degenerate data (nothing, one value, every value), the stream's layout,
// code lengths that match the counts, and every kind of bad stream refused.
#include "imaging/cHuffman.h"

#include <gtest/gtest.h>

#include <random>

namespace vantor::imaging {
namespace {

std::vector<uint8_t> RoundTrip(const std::vector<uint8_t>& in) {
  std::vector<uint8_t> packed, back;
  EXPECT_TRUE(cHuffman::EncodeByteArray(in, packed));
  EXPECT_TRUE(cHuffman::DecodeByteArray(packed, back));
  EXPECT_EQ(back, in);
  return packed;
}

std::vector<uint8_t> Random(size_t n, unsigned seed, int distinct = 256) {
  std::mt19937 rng(seed);
  std::vector<uint8_t> out(n);
  for (auto& b : out) b = static_cast<uint8_t>(rng() % static_cast<unsigned>(distinct));
  return out;
}

// Bytes whose counts follow the Fibonacci numbers, the shape that makes the
// deepest tree.
std::vector<uint8_t> Fibonacci(int symbols) {
  std::vector<uint8_t> out;
  uint64_t a = 1, b = 1;
  for (int s = 0; s < symbols; ++s) {
    out.insert(out.end(), a, static_cast<uint8_t>(s));
    const uint64_t next = a + b;
    a = b;
    b = next;
  }
  return out;
}

TEST(Huffman, RoundTrips) {
  struct Case {
    const char* name;
    std::vector<uint8_t> data;
  } cases[] = {
      {"empty", {}},
      {"one byte", {42}},
      {"one value", std::vector<uint8_t>(1000, 7)},
      {"two values", {0, 255, 0, 0, 255}},
      {"all 256 once",
       [] {
         std::vector<uint8_t> v(256);
         for (int i = 0; i < 256; ++i) v[static_cast<size_t>(i)] = static_cast<uint8_t>(i);
         return v;
       }()},
      {"all 256 evenly", Random(256 * 200, 1)},
      {"random small", Random(17, 2)},
      {"random", Random(100000, 3)},
      {"few values", Random(50000, 4, 5)},
      {"text",
       [] {
         const std::string t =
             "O rato roeu a roupa do rei de Roma, e a rainha de raiva "
             "resolveu remendar. ";
         std::vector<uint8_t> v;
         for (int i = 0; i < 50; ++i) v.insert(v.end(), t.begin(), t.end());
         return v;
       }()},
      {"deep tree", Fibonacci(20)},
      {"deepest for its size", Fibonacci(27)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    RoundTrip(c.data);
  }
}

TEST(Huffman, TheStreamsLayout) {
  // One value: a single one-bit code, so 1000 bytes take 125.
  std::vector<uint8_t> packed;
  ASSERT_TRUE(cHuffman::EncodeByteArray(std::vector<uint8_t>(1000, 7), packed));
  const std::vector<uint8_t> head = {0xE8, 0x03, 0,   0,  // 1000 bytes
                                     1,    0,             // one code
                                     7,    1,    0x00};   // value 7, one bit: 0
  ASSERT_GE(packed.size(), head.size());
  EXPECT_TRUE(std::equal(head.begin(), head.end(), packed.begin()));
  EXPECT_EQ(packed.size(), head.size() + 125);
  for (size_t i = head.size(); i < packed.size(); ++i) EXPECT_EQ(packed[i], 0);

  // Nothing packs to a header alone.
  ASSERT_TRUE(cHuffman::EncodeByteArray({}, packed));
  EXPECT_EQ(packed, (std::vector<uint8_t>{0, 0, 0, 0, 0, 0}));

  // Two values of equal count: one bit each.
  ASSERT_TRUE(cHuffman::EncodeByteArray(std::vector<uint8_t>{'a', 'b', 'b', 'a'}, packed));
  ASSERT_EQ(packed.size(), 6u + 2 * 3 + 1);
  EXPECT_EQ(packed[6], 'a');
  EXPECT_EQ(packed[7], 1);
  EXPECT_EQ(packed[9], 'b');
  EXPECT_EQ(packed[10], 1);
  EXPECT_NE(packed[8], packed[11]);
}

TEST(Huffman, CodesFollowTheCounts) {
  // A skewed input packs to well under a byte a byte, an even one of all 256
  // values to about a byte a byte, never much more.
  std::vector<uint8_t> skewed;
  for (int i = 0; i < 10000; ++i) skewed.push_back(static_cast<uint8_t>(i % 10 == 0 ? i % 7 : 0));
  EXPECT_LT(RoundTrip(skewed).size(), skewed.size() / 4);
  const auto even = Random(65536, 9);
  const auto packed = RoundTrip(even);
  EXPECT_LT(packed.size(), even.size() + 256 * 3 + 6 + even.size() / 50);

  // The deepest tree of 27 values has a code of 26 bits, stored in 4 bytes.
  const auto deep = RoundTrip(Fibonacci(27));
  size_t at = 6;
  int longest = 0;
  for (int e = 0; e < 27; ++e) {
    longest = std::max<int>(longest, deep[at + 1]);
    at += 2 + static_cast<size_t>((deep[at + 1] + 7) / 8);
  }
  EXPECT_EQ(longest, 26);
}

TEST(Huffman, RefusesBadStreams) {
  const auto good = RoundTrip(Random(300, 5, 12));
  std::vector<uint8_t> out{1, 2, 3};
  auto refuses = [&](std::vector<uint8_t> bad, const char* why) {
    out = {1, 2, 3};
    EXPECT_FALSE(cHuffman::DecodeByteArray(bad, out)) << why;
    EXPECT_TRUE(out.empty()) << why;
  };
  refuses({}, "empty");
  refuses({0, 0, 0}, "short header");
  // Every cut of a good stream.
  for (size_t n = 0; n < good.size(); ++n) {
    refuses(std::vector<uint8_t>(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(n)),
            "cut");
  }
  auto bad = good;
  bad[4] = 0x01;
  bad[5] = 0x01;  // 257 codes
  refuses(bad, "too many codes");
  refuses({1, 0, 0, 0, 0, 0}, "bytes but no codes");
  refuses({5, 0, 0, 0, 1, 0, 'x', 0}, "a code of no bits");
  // Codes that clash: "0" and "01"; the same code twice; a code ending on
  // the way to a longer one.
  refuses({1, 0, 0, 0, 2, 0, 'a', 1, 0x00, 'b', 2, 0x40, 0x00}, "prefix");
  refuses({1, 0, 0, 0, 2, 0, 'a', 2, 0x40, 'b', 1, 0x00, 0x00}, "prefix the other way");
  refuses({1, 0, 0, 0, 2, 0, 'a', 1, 0x80, 'b', 1, 0x80, 0x00}, "same code");
  // A bit stream that leaves the tree: only "0" is a code, the data says 1.
  refuses({1, 0, 0, 0, 1, 0, 'a', 1, 0x00, 0x80}, "off the tree");
  // More bytes than the bits could hold.
  refuses({9, 0, 0, 0, 1, 0, 'a', 1, 0x00, 0x00}, "length beyond the bits");
  refuses({0xFF, 0xFF, 0xFF, 0xFF, 1, 0, 'a', 1, 0x00, 0x00}, "huge length");
  // Long codes that would need more than 511 nodes: three codes of 255
  // bits that part after their first one or two bits.
  {
    std::vector<uint8_t> s = {1, 0, 0, 0, 3, 0};
    for (int v = 0; v < 3; ++v) {
      s.push_back(static_cast<uint8_t>(v));
      s.push_back(255);
      for (int i = 0; i < 32; ++i) s.push_back(i == 0 ? static_cast<uint8_t>(v << 6) : 0);
    }
    s.push_back(0);
    refuses(s, "too many nodes");
  }
  // A long code within bounds still works: one 255-bit code of 'z'.
  {
    std::vector<uint8_t> s = {2, 0, 0, 0, 1, 0, 'z', 255};
    for (int i = 0; i < 32; ++i) s.push_back(0xFF);
    for (int i = 0; i < 64; ++i) s.push_back(0xFF);
    std::vector<uint8_t> back;
    ASSERT_TRUE(cHuffman::DecodeByteArray(s, back));
    EXPECT_EQ(back, (std::vector<uint8_t>{'z', 'z'}));
  }
}

TEST(Huffman, RandomBytesNeverCrash) {
  // Whatever comes in, the decoder answers true or false and keeps within
  // eight bytes out for each byte in.
  std::mt19937 rng(11);
  for (int round = 0; round < 3000; ++round) {
    std::vector<uint8_t> junk =
        Random(static_cast<size_t>(rng() % 200), static_cast<unsigned>(rng()));
    if (junk.size() >= 6 && round % 2 == 0) {
      junk[4] = static_cast<uint8_t>(rng() % 4);
      junk[5] = 0;
    }
    std::vector<uint8_t> out;
    if (cHuffman::DecodeByteArray(junk, out)) {
      EXPECT_LE(out.size(), junk.size() * 8);
    } else {
      EXPECT_TRUE(out.empty());
    }
  }
}

}  // namespace
}  // namespace vantor::imaging
