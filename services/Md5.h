#pragma once
// The MD5 message digest of RFC 1321, fed in pieces or all at once. Kept for
// the digests that hosts already store; nothing here should be taken for
// protection against a deliberate forger.
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vantor::services {

class Md5 {
 public:
  using Digest = std::array<uint8_t, 16>;

  Md5();
  void Update(std::span<const uint8_t> bytes);
  // Pads, appends the bit length and gives the digest; the object is spent.
  Digest Final();

  static Digest Of(std::span<const uint8_t> bytes);

 private:
  void Transform(const uint8_t* block);

  std::array<uint32_t, 4> state_;
  std::array<uint8_t, 64> buffer_{};
  uint64_t length_ = 0;  // bytes fed so far
};

}  // namespace vantor::services
