#include "services/Skipjack.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <random>

namespace vantor::services {
namespace {

TEST(Skipjack, FTableIsAPermutationWithThePublishedEnds) {
  std::array<int, 256> seen{};
  for (int i = 0; i < 256; ++i) ++seen[Skipjack::F(static_cast<uint8_t>(i))];
  for (int v = 0; v < 256; ++v) EXPECT_EQ(seen[static_cast<size_t>(v)], 1) << "value " << v;
  const struct {
    int index;
    uint8_t value;
  } cases[] = {{0x00, 0xA3}, {0x01, 0xD7}, {0x02, 0x09}, {0x03, 0x83}, {0x57, 0xE0}, {0x2E, 0x3D},
               {0x7A, 0xD6}, {0xFC, 0x05}, {0xFD, 0x59}, {0xFE, 0x2A}, {0xFF, 0x46}};
  for (const auto& c : cases)
    EXPECT_EQ(Skipjack::F(static_cast<uint8_t>(c.index)), c.value) << c.index;
}

// The codebook example of the cipher's declassified definition.
TEST(Skipjack, PublishedTestVector) {
  const Skipjack cipher({0x00, 0x99, 0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11});
  const Skipjack::Block plain = {0x3322, 0x1100, 0xDDCC, 0xBBAA};
  const Skipjack::Block expected = {0x2587, 0xCAE2, 0x7A12, 0xD300};
  EXPECT_EQ(cipher.Encrypt(plain), expected);
  EXPECT_EQ(cipher.Decrypt(expected), plain);
}

TEST(Skipjack, DecryptUndoesEncryptForAnyKeyAndBlock) {
  std::mt19937 rng(20240601);
  for (int round = 0; round < 500; ++round) {
    Skipjack::Key key;
    for (auto& b : key) b = static_cast<uint8_t>(rng());
    Skipjack::Block block;
    for (auto& w : block) w = static_cast<uint16_t>(rng());
    const Skipjack cipher(key);
    const Skipjack::Block sealed = cipher.Encrypt(block);
    EXPECT_NE(sealed, block);
    EXPECT_EQ(cipher.Decrypt(sealed), block) << "round " << round;
  }
}

TEST(Skipjack, EveryKeyByteAndEveryWordCounts) {
  const Skipjack::Key base = {0x00, 0x99, 0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11};
  const Skipjack::Block plain = {0x3322, 0x1100, 0xDDCC, 0xBBAA};
  const Skipjack::Block reference = Skipjack(base).Encrypt(plain);
  for (size_t i = 0; i < base.size(); ++i) {
    Skipjack::Key key = base;
    key[i] ^= 0x01;
    EXPECT_NE(Skipjack(key).Encrypt(plain), reference) << "key byte " << i;
  }
  for (size_t i = 0; i < plain.size(); ++i) {
    Skipjack::Block changed = plain;
    changed[i] ^= 0x8000;
    EXPECT_NE(Skipjack(base).Encrypt(changed), reference) << "word " << i;
  }
}

}  // namespace
}  // namespace vantor::services
