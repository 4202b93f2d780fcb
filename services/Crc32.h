#pragma once
// CRC-32 with the reflected polynomial 0xEDB88320, the checksum of zip, PNG
// and zlib. The register is handed in and out, so a caller can feed it in
// pieces: start with Start(), feed, and Finish() gives the checksum.
#include <cstdint>
#include <span>

namespace vantor::services {

class Crc32 {
 public:
  static constexpr uint32_t Start() { return 0xFFFFFFFFu; }
  static uint32_t Update(uint32_t reg, std::span<const uint8_t> bytes);
  static uint32_t Update(uint32_t reg, uint8_t byte);
  static constexpr uint32_t Finish(uint32_t reg) { return ~reg; }

  static uint32_t Of(std::span<const uint8_t> bytes) { return Finish(Update(Start(), bytes)); }
};

}  // namespace vantor::services
