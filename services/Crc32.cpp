#include "services/Crc32.h"

#include <array>

namespace vantor::services {

namespace {

// Table 0 holds each byte value run through eight shifts of the reflected
// register; table k advances that by k more zero bytes, which lets the loop
// below take eight bytes a step ("slicing by eight") with the same result as
// one byte at a time.
constexpr std::array<std::array<uint32_t, 256>, 8> kTables = [] {
  std::array<std::array<uint32_t, 256>, 8> t{};
  for (uint32_t n = 0; n < 256; ++n) {
    uint32_t c = n;
    for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
    t[0][n] = c;
  }
  for (size_t k = 1; k < 8; ++k) {
    for (size_t n = 0; n < 256; ++n) t[k][n] = (t[k - 1][n] >> 8) ^ t[0][t[k - 1][n] & 0xFF];
  }
  return t;
}();

}  // namespace

uint32_t Crc32::Update(uint32_t reg, uint8_t byte) {
  return kTables[0][(reg ^ byte) & 0xFF] ^ (reg >> 8);
}

uint32_t Crc32::Update(uint32_t reg, std::span<const uint8_t> bytes) {
  const uint8_t* p = bytes.data();
  size_t left = bytes.size();
  for (; left >= 8; p += 8, left -= 8) {
    const uint32_t lo =
        reg ^ (static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
               static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24);
    reg = kTables[7][lo & 0xFF] ^ kTables[6][(lo >> 8) & 0xFF] ^ kTables[5][(lo >> 16) & 0xFF] ^
          kTables[4][lo >> 24] ^ kTables[3][p[4]] ^ kTables[2][p[5]] ^ kTables[1][p[6]] ^
          kTables[0][p[7]];
  }
  for (; left > 0; ++p, --left) reg = kTables[0][(reg ^ *p) & 0xFF] ^ (reg >> 8);
  return reg;
}

}  // namespace vantor::services
