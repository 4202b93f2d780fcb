#include "services/Md5.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace vantor::services {
namespace {

std::string Hex(const Md5::Digest& d) {
  std::string out;
  char buf[3];
  for (const uint8_t b : d) {
    std::snprintf(buf, sizeof buf, "%02x", b);
    out += buf;
  }
  return out;
}

std::span<const uint8_t> Bytes(std::string_view s) {
  return {reinterpret_cast<const uint8_t*>(s.data()), s.size()};
}

// RFC 1321, appendix A.5, then lengths on each side of the padding's edges.
TEST(Md5, RfcTestSuiteAndBlockEdges) {
  const struct {
    std::string text;
    const char* digest;
  } cases[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
       "d174ab98d277d9f5a5611c2c9f419d9f"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a"},
      {std::string(55, 'a'), "ef1772b6dff9a122358552954ad0df65"},
      {std::string(56, 'a'), "3b0c8ac703f828b04c6c197006d17218"},
      {std::string(63, 'a'), "b06521f39153d618550606be297466d5"},
      {std::string(64, 'a'), "014842d480b571495a4a0363793f7367"},
      {std::string(65, 'a'), "c743a45e0d2e6a95cb859adae0248435"},
      {std::string(128, 'a'), "e510683b3f5ffe4093d021808bc6ff70"},
      {std::string(1000000, 'a'), "7707d6ae4e027c70eea2a935c2296f21"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Hex(Md5::Of(Bytes(c.text))), c.digest) << "length " << c.text.size();
  }
}

TEST(Md5, PiecesOfAnySizeGiveTheSameDigest) {
  const std::string text(1000, 'x');
  const Md5::Digest whole = Md5::Of(Bytes(text));
  for (size_t piece : {1u, 3u, 63u, 64u, 65u, 200u, 999u}) {
    Md5 md5;
    for (size_t at = 0; at < text.size(); at += piece) {
      md5.Update(Bytes(std::string_view(text).substr(at, piece)));
    }
    EXPECT_EQ(md5.Final(), whole) << "piece " << piece;
  }
}

}  // namespace
}  // namespace vantor::services
