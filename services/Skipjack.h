#pragma once
// The Skipjack block cipher as its 1998 declassified definition gives it: an
// 80-bit key, 64-bit blocks seen as four 16-bit words, 32 steps alternating
// eight of rule A and eight of rule B, and the keyed G permutation built on
// the F-table. Only the codebook (ECB) form is here; the text framing around
// it belongs to VT_Criptografar and VT_Decriptografar.
#include <array>
#include <cstdint>

namespace vantor::services {

class Skipjack {
 public:
  // w1 first, as the definition numbers the words; w1 is the block's high word.
  using Block = std::array<uint16_t, 4>;
  using Key = std::array<uint8_t, 10>;

  explicit Skipjack(const Key& key) : key_(key) {}

  Block Encrypt(Block block) const;
  Block Decrypt(Block block) const;

  // The F-table: the cipher's fixed byte permutation.
  static uint8_t F(uint8_t value);

 private:
  // G^k and its inverse for step k (0-based): a four-round Feistel network on
  // the word's two bytes, keyed by schedule bytes 4k to 4k+3 (mod 10).
  uint16_t G(int step, uint16_t word) const;
  uint16_t GInverse(int step, uint16_t word) const;

  Key key_;
};

}  // namespace vantor::services
