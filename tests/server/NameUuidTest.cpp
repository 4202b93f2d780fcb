#include "server/NameUuid.h"

#include <gtest/gtest.h>

#include <string>

namespace vantor::server {
namespace {

std::string Hex(const Sha1::Digest& d) {
  static const char digits[] = "0123456789abcdef";
  std::string s;
  for (uint8_t b : d) {
    s += digits[b >> 4];
    s += digits[b & 0xF];
  }
  return s;
}

TEST(Sha1, MatchesTheStandardsVectors) {
  struct Case {
    std::string message;
    const char* digest;
  } cases[] = {
      {"abc", "a9993e364706816aba3e25717850c26c9cd0d89d"},
      {"", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
       "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
      {"abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmn"
       "opq"
       "rsmnopqrstnopqrstu",
       "a49b2446a02c645bf419f995b67091253a04a259"},
      {std::string(1000000, 'a'), "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
      // Lengths around the block's last eight bytes, where the padding spills
      // into a second block or does not.
      {std::string(55, 'a'), "c1c8bbdc22796e28c0e15163d20899b65621d65a"},
      {std::string(56, 'a'), "c2db330f6083854c99d4b5bfb6e8f29f201be699"},
      {std::string(63, 'a'), "03f09f5b158a7a8cdad920bddc29b81c18a551f5"},
      {std::string(64, 'a'), "0098ba824b5c16427bd7a1122a5a442a25ec644d"},
  };
  for (const auto& c : cases) EXPECT_EQ(Hex(Sha1::Of(c.message)), c.digest) << c.message.size();
}

TEST(Sha1, GivesTheSameDigestWhateverTheChunks) {
  const std::string message(1000, 'q');
  const std::string whole = Hex(Sha1::Of(message));
  for (size_t chunk : {1u, 3u, 63u, 64u, 65u, 999u}) {
    Sha1 sha;
    for (size_t i = 0; i < message.size(); i += chunk)
      sha.Update(std::string_view(message).substr(i, chunk));
    EXPECT_EQ(Hex(sha.Final()), whole) << chunk;
  }
  // Final starts the object over.
  Sha1 sha;
  sha.Update("junk");
  sha.Final();
  sha.Update("abc");
  EXPECT_EQ(Hex(sha.Final()), "a9993e364706816aba3e25717850c26c9cd0d89d");
}

TEST(NameUuid, MatchesPublishedVersion5Examples) {
  const Uuid dns = *Uuid::Parse("6ba7b810-9dad-11d1-80b4-00c04fd430c8");
  struct Case {
    const char* name;
    const char* uuid;
  } cases[] = {
      {"python.org", "886313e1-3b8a-5372-9b90-0c9aee199e5d"},
      {"www.example.com", "2ed6657d-e927-568b-95e1-2665a8aea6a2"},
  };
  for (const auto& c : cases) {
    const Uuid u = NameUuid(dns, c.name);
    EXPECT_EQ(u.Text(), c.uuid);
    EXPECT_EQ(u.Version(), 5);
  }
}

TEST(NameUuid, ParsesAndWritesTheTextForm) {
  struct Case {
    const char* text;
    const char* canonical;  // nullptr: refused
  } cases[] = {
      {"886313e1-3b8a-5372-9b90-0c9aee199e5d", "886313e1-3b8a-5372-9b90-0c9aee199e5d"},
      {"{886313E1-3B8A-5372-9B90-0C9AEE199E5D}", "886313e1-3b8a-5372-9b90-0c9aee199e5d"},
      {"886313e1-3b8a-5372-9b90-0c9aee199e5", nullptr},
      {"886313e1-3b8a-5372-9b90_0c9aee199e5d", nullptr},
      {"886313e1-3b8a-5372-9b90-0c9aee199e5g", nullptr},
      {"{886313e1-3b8a-5372-9b90-0c9aee199e5d", nullptr},
      {"", nullptr},
  };
  for (const auto& c : cases) {
    const auto u = Uuid::Parse(c.text);
    if (c.canonical) {
      ASSERT_TRUE(u.has_value()) << c.text;
      EXPECT_EQ(u->Text(), c.canonical);
    } else {
      EXPECT_FALSE(u.has_value()) << c.text;
    }
  }
}

TEST(NameUuid, TheLibrarysGuidsAreStableAndDistinct) {
  // Registered hosts depend on these never moving.
  EXPECT_EQ(LibraryNamespace().Text(), "8396563a-9fe9-4fa5-aee2-07938c30bf40");
  EXPECT_EQ(TypeLibGuid("library", "Vantor2014").Text(), "737b25c2-d592-5f93-b39e-5198aadc62e5");
  EXPECT_EQ(TypeLibGuid("class", "USButton").Text(), "b80c4ade-f393-5dc0-aa1d-1e83d0557c27");
  EXPECT_NE(TypeLibGuid("class", "USButton"), TypeLibGuid("interface", "USButton"));
  EXPECT_NE(TypeLibGuid("interface", "_USButton"), TypeLibGuid("interface", "__USButton"));
  EXPECT_EQ(TypeLibGuid("enum", "ENUM_THEME"), TypeLibGuid("enum", "ENUM_THEME"));
}

}  // namespace
}  // namespace vantor::server
