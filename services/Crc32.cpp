#include "services/Crc32.h"

#include <array>

namespace vantor::services {

namespace {

// One entry for each byte value: that byte run through eight shifts of the
// reflected register.
constexpr std::array<uint32_t, 256> kTable = [] {
  std::array<uint32_t, 256> t{};
  for (uint32_t n = 0; n < 256; ++n) {
    uint32_t c = n;
    for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
    t[n] = c;
  }
  return t;
}();

}  // namespace

uint32_t Crc32::Update(uint32_t reg, uint8_t byte) {
  return kTable[(reg ^ byte) & 0xFF] ^ (reg >> 8);
}

uint32_t Crc32::Update(uint32_t reg, std::span<const uint8_t> bytes) {
  for (const uint8_t b : bytes) reg = kTable[(reg ^ b) & 0xFF] ^ (reg >> 8);
  return reg;
}

}  // namespace vantor::services
