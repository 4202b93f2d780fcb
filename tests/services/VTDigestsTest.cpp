#include <gtest/gtest.h>

#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <string>

#include "server/Registry.h"
#include "services/Crc32.h"
#include "services/Skipjack.h"
#include "services/VT.h"
#include "services/VT_ZLIB.h"

namespace vantor::services {
namespace {

const String kKey = u"00998877665544332211";

// The cipher text the framing must give for one block of six characters,
// worked out with the cipher alone.
String OneBlock(const Skipjack::Key& key, const char (&six)[7]) {
  auto b = [&](int i) { return static_cast<uint8_t>(six[i]); };
  const Skipjack::Block sealed = Skipjack(key).Encrypt(
      {static_cast<uint16_t>(b(0) << 8 | b(1)), static_cast<uint16_t>(b(2) << 8 | b(3)),
       static_cast<uint16_t>(b(4) << 8 | b(5)), 0});
  char buf[17];
  std::snprintf(buf, sizeof buf, "%04X%04X%04X%04X", sealed[0], sealed[1], sealed[2], sealed[3]);
  return FromUtf8(buf);
}

bool IsUpperHex(const String& s) {
  for (char16_t c : s) {
    if (!((c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F'))) return false;
  }
  return true;
}

TEST(VTCipher, FramingPutsSixCharactersInThreeWords) {
  const VT vt;
  const Skipjack::Key key = {0x00, 0x99, 0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11};
  EXPECT_EQ(vt.VT_Criptografar(u"abcdef", kKey), OneBlock(key, "abcdef"));
  // The last block is padded with blanks.
  EXPECT_EQ(vt.VT_Criptografar(u"abc", kKey), OneBlock(key, "abc   "));
  EXPECT_EQ(vt.VT_Criptografar(u"abcdefg", kKey),
            OneBlock(key, "abcdef") + OneBlock(key, "g     "));
  // An omitted key is the empty key: ten zero bytes.
  EXPECT_EQ(vt.VT_Criptografar(u"senha1", u""), OneBlock({}, "senha1"));
}

// The published example block, read back through the text framing: its
// bytes 33 22 11 00 ... come back as three characters, cut at the NUL.
TEST(VTCipher, PublishedVectorThroughTheFraming) {
  const VT vt;
  EXPECT_EQ(vt.VT_Decriptografar(u"2587CAE27A12D300", kKey), String(u"3\"\u0011"));
  EXPECT_EQ(vt.VT_Decriptografar(u"2587cae27a12d300", kKey), String(u"3\"\u0011"));
}

TEST(VTCipher, LengthsOfTheCipherText) {
  const VT vt;
  const struct {
    String text;
    size_t digits;
  } cases[] = {{u"", 0},
               {u"a", 16},
               {u"abcdef", 16},
               {u"abcdefg", 32},
               {u"abcdefghijkl", 32},
               {u"abcdefghijklm", 48},
               {String(600, u'x'), 1600}};
  for (const auto& c : cases) {
    const String sealed = vt.VT_Criptografar(c.text, kKey);
    EXPECT_EQ(sealed.size(), c.digits) << ToUtf8(c.text);
    EXPECT_TRUE(IsUpperHex(sealed));
  }
}

TEST(VTCipher, RoundTripsAndWhatTheFormatLoses) {
  const VT vt;
  const struct {
    String plain;
    String key;
    String back;
  } cases[] = {
      {u"Olá, mundo!", kKey, u"Olá, mundo!"},
      {u"Ação e coração: ç ã õ é ü €", kKey, u"Ação e coração: ç ã õ é ü €"},
      {u"abcdef", u"", u"abcdef"},                            // omitted key
      {u"abcdef", u"1234", u"abcdef"},                        // short key
      {u"abcdef", u"00998877665544332211FFFF", u"abcdef"},    // digits past 20 ignored
      {u"texto com brancos   ", kKey, u"texto com brancos"},  // trailing blanks lost
      {u"   à esquerda", kKey, u"à esquerda"},                // leading blanks lost
      {u"      ", kKey, u""},                                 // only blanks
      {u"antes\u0000depois", kKey, u"antes"},                 // cut at the NUL of its block
      {u"abcdef\u0000ghi", kKey, u"abcdef"},                  // "abcdef" then a cut block
      {u"中文", kKey, u"??"},                                 // no ANSI form
      {u"\U0001F600", kKey, u"??"},                           // each half of a pair
      {u"tab\there", kKey, u"tab\there"},
  };
  for (const auto& c : cases) {
    const String sealed = vt.VT_Criptografar(c.plain, c.key);
    EXPECT_EQ(vt.VT_Decriptografar(sealed, c.key), c.back) << ToUtf8(c.plain);
  }
}

TEST(VTCipher, KeysAreReadByPosition) {
  const VT vt;
  // Lower-case digits are the same key; a short key is the long one with
  // zero bytes after it.
  EXPECT_EQ(vt.VT_Criptografar(u"abcdef", u"00AABBCCDDEEFF112233"),
            vt.VT_Criptografar(u"abcdef", u"00aabbccddeeff112233"));
  EXPECT_EQ(vt.VT_Criptografar(u"abcdef", u"1234"),
            vt.VT_Criptografar(u"abcdef", u"12340000000000000000"));
  // A lone last digit is a byte of its own value.
  EXPECT_EQ(vt.VT_Criptografar(u"abcdef", u"123"),
            vt.VT_Criptografar(u"abcdef", u"12030000000000000000"));
  // A character that is no digit counts as 0.
  EXPECT_EQ(vt.VT_Criptografar(u"abcdef", u"1G"), vt.VT_Criptografar(u"abcdef", u"10"));
  EXPECT_NE(vt.VT_Criptografar(u"abcdef", u"01"), vt.VT_Criptografar(u"abcdef", u"10"));
}

TEST(VTCipher, BadCipherTextGivesGarbageOrNothingButNeverFails) {
  const VT vt;
  const String sealed = vt.VT_Criptografar(u"segredo123", kKey);
  const struct {
    String text;
    String key;
  } cases[] = {
      {u"", kKey},
      {u"0123456789ABCDE", kKey},  // fewer than 16 digits
      {u"ZZZZZZZZZZZZZZZZ", kKey},
      {u"não é hexadecimal, não mesmo!!", kKey},
      {sealed, u"FFFFFFFFFFFFFFFFFFFF"},  // another key
      {sealed + u"ABC", kKey},            // a tail shorter than a block
      {String(100000, u'F'), kKey},
      {String(16, u'\0'), u""},
  };
  for (const auto& c : cases) {
    const String plain = vt.VT_Decriptografar(c.text, c.key);
    EXPECT_LE(plain.size(), c.text.size() / 16 * 8) << ToUtf8(c.text.substr(0, 40));
  }
  EXPECT_EQ(vt.VT_Decriptografar(u"0123456789ABCDE", kKey), u"");
  // Non-digits read as zeros.
  EXPECT_EQ(vt.VT_Decriptografar(u"ZZZZZZZZZZZZZZZZ", kKey),
            vt.VT_Decriptografar(u"0000000000000000", kKey));
  EXPECT_EQ(vt.VT_Decriptografar(sealed + u"ABC", kKey), u"segredo123");
  EXPECT_NE(vt.VT_Decriptografar(sealed, u"FFFFFFFFFFFFFFFFFFFF"), u"segredo123");
}

TEST(VTCrc32, HexWithoutLeadingZeros) {
  const VT vt;
  const struct {
    String text;
    String crc;
  } cases[] = {
      {u"", u"0"},
      {u"a", u"E8B7BE43"},
      {u"123456789", u"CBF43926"},
      {u"c", u"6B9DF6F"},  // 0x06B9DF6F: no leading zero
      {u"The quick brown fox jumps over the lazy dog", u"414FA339"},
      {u"\u0141", u"D3D99E8B"},  // only the low byte, 0x41 ("A"), is taken
  };
  for (const auto& c : cases) {
    EXPECT_EQ(vt.VT_CRC32(c.text), c.crc) << ToUtf8(c.text);
  }
  const uint8_t c1 = 0xC1;
  char buf[9];
  std::snprintf(buf, sizeof buf, "%X", Crc32::Of({&c1, 1}));
  EXPECT_EQ(vt.VT_CRC32(u"\u00C1"), FromUtf8(buf));
  EXPECT_LE(vt.VT_CRC32(String(100000, u'x')).size(), 8u);
}

TEST(VTMd5, RfcSuiteThroughTheMemberAndTheAnsiBytes) {
  const VT vt;
  const struct {
    String text;
    String digest;
  } cases[] = {
      {u"", u"d41d8cd98f00b204e9800998ecf8427e"},
      {u"a", u"0cc175b9c0f1b6a831c399e269772661"},
      {u"abc", u"900150983cd24fb0d6963f7d28e17f72"},
      {u"message digest", u"f96b697d7cb7938d525a2f31aaf161d0"},
      {u"abcdefghijklmnopqrstuvwxyz", u"c3fcd3d76192e4007dfb496cca67e13b"},
      {u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
       u"d174ab98d277d9f5a5611c2c9f419d9f"},
      {u"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       u"57edf4a22be3c955ac49da2e2107b67a"},
      {String(1000000, u'a'), u"7707d6ae4e027c70eea2a935c2296f21"},
      {u"Ação", u"daf4aafc372034ac811a65ef08fb86e0"},          // Windows-1252 bytes
      {u"中", u"d1457b72c3fb323a2671125aef3eab5d"},            // no ANSI form: "?"
      {u"x\U0001F600y", u"fe04b5cfb4bc0265ca6e9a57fb5c0fd9"},  // a pair is one "?"
  };
  for (const auto& c : cases)
    EXPECT_EQ(vt.VT_MD5(c.text), c.digest) << ToUtf8(c.text.substr(0, 30));
}

class VTFileCrc32 : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = std::filesystem::temp_directory_path() /
           ("vt_crc_" + std::to_string(::getpid()) + "_" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(dir_);
  }
  void TearDown() override {
    VT_ZLIB::ForceLibraryAbsent(false);
    std::filesystem::remove_all(dir_);
  }
  String Write(const std::string& name, const std::string& bytes) {
    const auto p = dir_ / name;
    std::ofstream(p, std::ios::binary) << bytes;
    return FromUtf8(p.string());
  }
  std::filesystem::path dir_;
};

TEST_F(VTFileCrc32, ChecksumsFilesOfEverySize) {
  const VT vt;
  std::string big(200000, '\0');
  for (size_t i = 0; i < big.size(); ++i) big[i] = static_cast<char>((i * 7 + 3) % 251);
  std::string exact(65536, 'z');
  const struct {
    std::string name, bytes;
    String crc;
  } cases[] = {
      {"vazio.bin", "", u"0"},
      {"ola.txt", "Ola, mundo!\n", u"CC73FE71"},
      {"nove.txt", "123456789", u"CBF43926"},
      {"c.txt", "c", u"6B9DF6F"},
      {"grande.bin", big, u"195DBBA6"},  // several 64 KiB blocks and a part
      {"exato.bin", exact, String()},
  };
  for (const auto& c : cases) {
    const String path = Write(c.name, c.bytes);
    String expected = c.crc;
    if (expected.empty()) {
      char buf[9];
      std::snprintf(buf, sizeof buf, "%X",
                    Crc32::Of({reinterpret_cast<const uint8_t*>(c.bytes.data()), c.bytes.size()}));
      expected = FromUtf8(buf);
    }
    EXPECT_EQ(vt.VT_ArquivoCRC32(path), expected) << c.name;
  }
}

TEST_F(VTFileCrc32, MissingFilesFoldersAndLibraryGiveNothing) {
  const VT vt;
  const String path = Write("arquivo.txt", "123456789");
  EXPECT_EQ(vt.VT_ArquivoCRC32(u""), u"");
  EXPECT_EQ(vt.VT_ArquivoCRC32(path + u".nao-existe"), u"");
  EXPECT_EQ(vt.VT_ArquivoCRC32(FromUtf8(dir_.string())), u"");
  // A Windows path names the same file.
  String windows = path;
  for (char16_t& c : windows) {
    if (c == u'/') c = u'\\';
  }
  EXPECT_EQ(vt.VT_ArquivoCRC32(windows), u"CBF43926");
  VT_ZLIB::ForceLibraryAbsent(true);
  EXPECT_EQ(vt.VT_ArquivoCRC32(path), u"");
  VT_ZLIB::ForceLibraryAbsent(false);
  EXPECT_EQ(vt.VT_ArquivoCRC32(path), u"CBF43926");
}

TEST(VTDigestsDispatch, MembersAnswerLateBound) {
  VT::Register();
  server::DispatchPtr vt = server::Registry::Instance().Create("VT");
  ASSERT_NE(vt, nullptr);
  EXPECT_EQ(server::Call(*vt, "VT_MD5", String(u"abc")).ToString(),
            u"900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(server::Call(*vt, "VT_CRC32", 123456789).ToString(), u"CBF43926");  // a number as text
  const Variant sealed = server::Call(*vt, "VT_Criptografar", String(u"Olá"));  // key omitted
  EXPECT_EQ(sealed.ToString().size(), 16u);
  EXPECT_EQ(server::Call(*vt, "VT_Decriptografar", sealed).ToString(), u"Olá");
  EXPECT_EQ(server::Call(*vt, "vt_decriptografar", String(u"2587CAE27A12D300"), kKey).ToString(),
            String(u"3\"\u0011"));
  EXPECT_EQ(server::Call(*vt, "VT_ArquivoCRC32", String(u"/nao/existe")).ToString(), u"");
}

}  // namespace
}  // namespace vantor::services
