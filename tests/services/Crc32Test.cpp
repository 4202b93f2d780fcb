#include "services/Crc32.h"

#include <gtest/gtest.h>

#include <string_view>

namespace vantor::services {
namespace {

std::span<const uint8_t> Bytes(std::string_view s) {
  return {reinterpret_cast<const uint8_t*>(s.data()), s.size()};
}

TEST(Crc32, KnownChecksums) {
  const struct {
    std::string_view text;
    uint32_t crc;
  } cases[] = {
      {"", 0x00000000u},
      {"a", 0xE8B7BE43u},
      {"abc", 0x352441C2u},
      {"123456789", 0xCBF43926u},  // the check value of the CRC-32 catalogue
      {"The quick brown fox jumps over the lazy dog", 0x414FA339u},
      {"c", 0x06B9DF6Fu},
  };
  for (const auto& c : cases) EXPECT_EQ(Crc32::Of(Bytes(c.text)), c.crc) << c.text;
}

TEST(Crc32, ByteAtATimeMatchesTheWhole) {
  const std::string_view text = "The quick brown fox jumps over the lazy dog";
  uint32_t reg = Crc32::Start();
  for (const char c : text) reg = Crc32::Update(reg, static_cast<uint8_t>(c));
  EXPECT_EQ(Crc32::Finish(reg), Crc32::Of(Bytes(text)));
  reg = Crc32::Update(Crc32::Start(), Bytes(text.substr(0, 10)));
  reg = Crc32::Update(reg, Bytes(text.substr(10)));
  EXPECT_EQ(Crc32::Finish(reg), 0x414FA339u);
}

}  // namespace
}  // namespace vantor::services
