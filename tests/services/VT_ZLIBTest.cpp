#include "services/VT_ZLIB.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "server/Registry.h"

namespace vantor::services {
namespace {

std::vector<uint8_t> Pattern(size_t n, int seed = 1) {
  std::vector<uint8_t> v(n);
  // Text-like bytes with repeats, so that compression has something to find.
  for (size_t i = 0; i < n; ++i)
    v[i] = static_cast<uint8_t>("abcabcxyz 0123"[(i * seed + i / 7) % 14]);
  return v;
}

std::vector<uint8_t> Noise(size_t n) {
  std::vector<uint8_t> v(n);
  uint32_t x = 2463534242u;
  for (auto& b : v) {
    x ^= x << 13, x ^= x >> 17, x ^= x << 5;
    b = static_cast<uint8_t>(x);
  }
  return v;
}

class VTZlib : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = std::filesystem::temp_directory_path() /
           ("vt_zlib_" + std::to_string(::getpid()) + "_" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(dir_);
  }
  void TearDown() override {
    VT_ZLIB::ForceLibraryAbsent(false);
    std::filesystem::remove_all(dir_);
  }
  String PathOf(const std::string& name) const { return FromUtf8((dir_ / name).string()); }
  String Write(const std::string& name, const std::vector<uint8_t>& bytes) const {
    std::ofstream out(dir_ / name, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    return PathOf(name);
  }
  std::vector<uint8_t> Read(const std::string& name) const {
    std::ifstream in(dir_ / name, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
  }
  bool Exists(const std::string& name) const { return std::filesystem::exists(dir_ / name); }

  std::filesystem::path dir_;
};

TEST_F(VTZlib, ByteArraysRoundTripAtEveryLevel) {
  const struct {
    std::vector<uint8_t> data;
    COMPRESSION_LEVEL level;
  } cases[] = {
      {{}, DEFAULT_COMPRESSION},
      {{42}, DEFAULT_COMPRESSION},
      {Pattern(1000), DEFAULT_COMPRESSION},
      {Pattern(1000), NO_COMPRESSION},
      {Pattern(1000), BEST_SPEED},
      {Pattern(1000), BEST_COMPRESSION},
      {Pattern(300000, 3), BEST_COMPRESSION},
      {Noise(5000), DEFAULT_COMPRESSION},
      {Noise(70000), NO_COMPRESSION},
      {Pattern(777), static_cast<COMPRESSION_LEVEL>(5)},
  };
  for (const auto& c : cases) {
    VT_ZLIB z;
    std::vector<uint8_t> data = c.data;
    ASSERT_EQ(z.CompressByteArray(data, c.level), ZLIB_OK) << c.data.size();
    EXPECT_EQ(z.get_OriginalSize(), static_cast<int32_t>(c.data.size()));
    EXPECT_EQ(z.get_CompressedSize(), static_cast<int32_t>(data.size()));
    ASSERT_GE(data.size(), 2u);
    EXPECT_EQ(data[0], 0x78);  // a zlib stream, deflate with a 32 KiB window
    EXPECT_EQ((data[0] << 8 | data[1]) % 31, 0);
    if (c.data.size() > 500 && c.level != NO_COMPRESSION && c.data != Noise(c.data.size())) {
      EXPECT_LT(data.size(), c.data.size() / 2);
    }
    ASSERT_EQ(z.DecompressByteArray(data, static_cast<int32_t>(c.data.size())), ZLIB_OK);
    EXPECT_EQ(data, c.data);
    EXPECT_EQ(z.get_OriginalSize(), static_cast<int32_t>(c.data.size()));
  }
}

TEST_F(VTZlib, ReadsStreamsItDidNotWrite) {
  VT_ZLIB z;
  // Written by another zlib: "hello", and the empty stream.
  std::vector<uint8_t> hello = {0x78, 0x9c, 0xcb, 0x48, 0xcd, 0xc9, 0xc9,
                                0x07, 0x00, 0x06, 0x2c, 0x02, 0x15};
  EXPECT_EQ(z.DecompressByteArray(hello, 5), ZLIB_OK);
  EXPECT_EQ(hello, (std::vector<uint8_t>{'h', 'e', 'l', 'l', 'o'}));
  EXPECT_EQ(z.get_CompressedSize(), 13);
  std::vector<uint8_t> empty = {0x78, 0x9c, 0x03, 0x00, 0x00, 0x00, 0x00, 0x01};
  EXPECT_EQ(z.DecompressByteArray(empty, 0), ZLIB_OK);
  EXPECT_TRUE(empty.empty());
}

TEST_F(VTZlib, FailuresLeaveTheDataAsItWas) {
  std::vector<uint8_t> packed = Pattern(5000);
  {
    VT_ZLIB z;
    ASSERT_EQ(z.CompressByteArray(packed), ZLIB_OK);
  }
  std::vector<uint8_t> truncated(packed.begin(),
                                 packed.begin() + static_cast<long>(packed.size() / 2));
  std::vector<uint8_t> corrupt = packed;
  corrupt.back() ^= 0xFF;  // the Adler-32 check no longer matches
  const struct {
    const char* what;
    std::vector<uint8_t> data;
    int32_t size;
    ZLIB_ERROR expected;
  } cases[] = {
      {"size too small", packed, 100, ZLIB_BUF_ERROR},
      {"negative size", packed, -1, ZLIB_BUF_ERROR},
      {"truncated", truncated, 5000, ZLIB_DATA_ERROR},
      {"corrupt", corrupt, 5000, ZLIB_DATA_ERROR},
      {"not zlib", Pattern(64), 1000, ZLIB_DATA_ERROR},
      {"empty", {}, 1000, ZLIB_DATA_ERROR},
      {"header only", {0x78, 0x9c}, 10, ZLIB_DATA_ERROR},
  };
  for (const auto& c : cases) {
    VT_ZLIB z;
    std::vector<uint8_t> data = c.data;
    EXPECT_EQ(z.DecompressByteArray(data, c.size), c.expected) << c.what;
    EXPECT_EQ(data, c.data) << c.what;
  }
  VT_ZLIB z;
  std::vector<uint8_t> data = Pattern(100);
  EXPECT_EQ(z.CompressByteArray(data, static_cast<COMPRESSION_LEVEL>(42)), ZLIB_STREAM_ERROR);
  EXPECT_EQ(data, Pattern(100));
  EXPECT_EQ(z.CompressByteArray(data, static_cast<COMPRESSION_LEVEL>(-2)), ZLIB_STREAM_ERROR);
  EXPECT_EQ(data, Pattern(100));
}

TEST_F(VTZlib, ADeclaredSizeLargerThanTheDataIsOnlyRoom) {
  VT_ZLIB z;
  std::vector<uint8_t> data = Pattern(1000);
  ASSERT_EQ(z.CompressByteArray(data), ZLIB_OK);
  // Far beyond what the stream holds: no gigabyte buffer, the real length back.
  EXPECT_EQ(z.DecompressByteArray(data, 2147483647), ZLIB_OK);
  EXPECT_EQ(data, Pattern(1000));
  EXPECT_EQ(z.get_OriginalSize(), 1000);
}

TEST_F(VTZlib, StringsTravelAsTheirAnsiBytes) {
  const String cases[] = {
      u"",
      u"Olá, mundo! Ação, coração, São Paulo. ",
      String(5000, u'a') + u"ç€",
      u"bytes altos: \u0081\u008D\u008F\u0090\u009D ÿ",
  };
  for (const String& text : cases) {
    VT_ZLIB z;
    String s = text;
    ASSERT_EQ(z.CompressString(s), ZLIB_OK);
    EXPECT_EQ(z.get_OriginalSize(), static_cast<int32_t>(text.size()));
    EXPECT_EQ(z.get_CompressedSize(), static_cast<int32_t>(s.size()));
    ASSERT_FALSE(s.empty());
    EXPECT_EQ(s[0], u'x');  // the stream's first byte, 0x78, as a character
    ASSERT_EQ(z.DecompressString(s, static_cast<int32_t>(text.size())), ZLIB_OK);
    EXPECT_EQ(s, text);
  }
  // Every byte value survives the trip through text.
  String all;
  for (int b = 0; b < 256; ++b) all.push_back(AnsiToChar(static_cast<uint8_t>(b)));
  VT_ZLIB z;
  String s = all;
  ASSERT_EQ(z.CompressString(s, BEST_COMPRESSION), ZLIB_OK);
  ASSERT_EQ(z.DecompressString(s, 256), ZLIB_OK);
  EXPECT_EQ(s, all);
  // Characters outside the code page become "?".
  s = u"中文";
  ASSERT_EQ(z.CompressString(s), ZLIB_OK);
  ASSERT_EQ(z.DecompressString(s, 2), ZLIB_OK);
  EXPECT_EQ(s, u"??");
  String garbage = u"isto não é zlib";
  EXPECT_EQ(z.DecompressString(garbage, 100), ZLIB_DATA_ERROR);
  EXPECT_EQ(garbage, u"isto não é zlib");
}

TEST_F(VTZlib, FilesCarryTheirOriginalSizeFirst) {
  for (const auto& original :
       {std::vector<uint8_t>{}, Pattern(1), Pattern(100000, 5), Noise(70000)}) {
    VT_ZLIB z;
    const String in = Write("entrada.bin", original);
    ASSERT_EQ(z.CompressFile(in, PathOf("saida.z"), BEST_COMPRESSION), ZLIB_OK);
    const std::vector<uint8_t> packed = Read("saida.z");
    ASSERT_GE(packed.size(), 4u + 8u);
    const uint32_t size =
        packed[0] | packed[1] << 8 | packed[2] << 16 | static_cast<uint32_t>(packed[3]) << 24;
    EXPECT_EQ(size, original.size());
    EXPECT_EQ(packed[4], 0x78);
    EXPECT_EQ(z.get_CompressedSize(), static_cast<int32_t>(packed.size() - 4));
    ASSERT_EQ(z.DecompressFile(PathOf("saida.z"), PathOf("volta.bin")), ZLIB_OK);
    EXPECT_EQ(Read("volta.bin"), original);
  }
  // Windows separators name the same files.
  VT_ZLIB z;
  Write("texto.txt", Pattern(300));
  String in = PathOf("texto.txt"), out = PathOf("texto.z");
  for (String* p : {&in, &out}) {
    for (char16_t& c : *p) {
      if (c == u'/') c = u'\\';
    }
  }
  ASSERT_EQ(z.CompressFile(in, out), ZLIB_OK);
  EXPECT_TRUE(Exists("texto.z"));
}

TEST_F(VTZlib, BadFilesAreRefused) {
  VT_ZLIB z;
  const String missing = PathOf("nao-existe.bin");
  EXPECT_EQ(z.CompressFile(missing, PathOf("a.z")), ZLIB_ERRNO);
  EXPECT_FALSE(Exists("a.z"));
  EXPECT_EQ(z.DecompressFile(missing, PathOf("a.bin")), ZLIB_ERRNO);
  EXPECT_FALSE(Exists("a.bin"));
  EXPECT_EQ(z.CompressFile(u"", PathOf("a.z")), ZLIB_ERRNO);
  EXPECT_EQ(z.CompressFile(FromUtf8(dir_.string()), PathOf("a.z")), ZLIB_ERRNO);
  const String in = Write("ok.bin", Pattern(100));
  EXPECT_EQ(z.CompressFile(in, PathOf("sem/pasta/a.z")), ZLIB_ERRNO);
  EXPECT_EQ(z.CompressFile(in, u""), ZLIB_ERRNO);

  std::vector<uint8_t> packed = Pattern(2000);
  ASSERT_EQ(z.CompressByteArray(packed), ZLIB_OK);
  auto withSize = [&](int32_t size, const std::vector<uint8_t>& body) {
    const auto u = static_cast<uint32_t>(size);
    std::vector<uint8_t> f = {static_cast<uint8_t>(u), static_cast<uint8_t>(u >> 8),
                              static_cast<uint8_t>(u >> 16), static_cast<uint8_t>(u >> 24)};
    f.insert(f.end(), body.begin(), body.end());
    return f;
  };
  const struct {
    const char* what;
    std::vector<uint8_t> file;
    ZLIB_ERROR expected;
  } cases[] = {
      {"empty file", {}, ZLIB_DATA_ERROR},
      {"three bytes", {1, 0, 0}, ZLIB_DATA_ERROR},
      {"size only", withSize(10, {}), ZLIB_DATA_ERROR},
      {"negative size", withSize(-5, packed), ZLIB_DATA_ERROR},
      {"size too small", withSize(10, packed), ZLIB_BUF_ERROR},
      {"not zlib", withSize(2000, Pattern(50)), ZLIB_DATA_ERROR},
      {"right", withSize(2000, packed), ZLIB_OK},
      {"generous size", withSize(1 << 30, packed), ZLIB_OK},
  };
  for (const auto& c : cases) {
    std::filesystem::remove(dir_ / "out.bin");
    const String path = Write("in.z", c.file);
    EXPECT_EQ(z.DecompressFile(path, PathOf("out.bin")), c.expected) << c.what;
    EXPECT_EQ(Exists("out.bin"), c.expected == ZLIB_OK) << c.what;
    if (c.expected == ZLIB_OK) {
      EXPECT_EQ(Read("out.bin"), Pattern(2000)) << c.what;
    }
  }
}

TEST_F(VTZlib, WithoutTheLibraryNothingIsTouched) {
  VT_ZLIB z;
  std::vector<uint8_t> seed = Pattern(500);
  ASSERT_EQ(z.CompressByteArray(seed), ZLIB_OK);
  const int32_t compressed = z.get_CompressedSize(), original = z.get_OriginalSize();
  const String in = Write("in.bin", Pattern(500));
  const String packedFile = Write("in.z", seed);

  VT_ZLIB::ForceLibraryAbsent(true);
  EXPECT_FALSE(VT_ZLIB::LibraryPresent());
  std::vector<uint8_t> bytes = Pattern(500);
  EXPECT_EQ(z.CompressByteArray(bytes), ZLIB_ERRNO);
  EXPECT_EQ(bytes, Pattern(500));
  bytes = seed;
  EXPECT_EQ(z.DecompressByteArray(bytes, 500), ZLIB_ERRNO);
  EXPECT_EQ(bytes, seed);
  String text = u"Ação sem zlib";
  EXPECT_EQ(z.CompressString(text, BEST_SPEED), ZLIB_ERRNO);
  EXPECT_EQ(text, u"Ação sem zlib");
  EXPECT_EQ(z.DecompressString(text, 100), ZLIB_ERRNO);
  EXPECT_EQ(text, u"Ação sem zlib");
  EXPECT_EQ(z.CompressFile(in, PathOf("out.z")), ZLIB_ERRNO);
  EXPECT_FALSE(Exists("out.z"));
  EXPECT_EQ(z.DecompressFile(packedFile, PathOf("out.bin")), ZLIB_ERRNO);
  EXPECT_FALSE(Exists("out.bin"));
  EXPECT_EQ(Read("in.bin"), Pattern(500));
  EXPECT_EQ(z.get_CompressedSize(), compressed);
  EXPECT_EQ(z.get_OriginalSize(), original);

  VT_ZLIB::ForceLibraryAbsent(false);
  EXPECT_TRUE(VT_ZLIB::LibraryPresent());
  EXPECT_EQ(z.CompressByteArray(bytes), ZLIB_OK);
}

TEST_F(VTZlib, LateBoundWithDataByReference) {
  VT_ZLIB::Register();
  server::DispatchPtr z = server::Registry::Instance().Create("Vantor2014.VT_ZLIB");
  ASSERT_NE(z, nullptr);
  for (const auto& m : z->Info().dispatch.members) {
    const bool property = m.name == "CompressedSize" || m.name == "OriginalSize";
    EXPECT_TRUE(z->Implements(
        m.name, property ? server::InvokeKind::PropertyGet : server::InvokeKind::Method))
        << m.name;
  }
  Variant data(Pattern(4000));
  Variant args[] = {Variant::ByRef(&data)};  // level omitted
  Variant result;
  ASSERT_TRUE(z->Invoke("CompressByteArray", server::InvokeKind::Method, args, &result));
  EXPECT_EQ(result.ToLong(), ZLIB_OK);
  ASSERT_NE(data.Array(), nullptr);
  const size_t packed = data.Array()->Bytes().size();
  EXPECT_LT(packed, 4000u);
  Variant size;
  ASSERT_TRUE(z->Invoke("CompressedSize", server::InvokeKind::PropertyGet, {}, &size));
  EXPECT_EQ(size.ToLong(), static_cast<int32_t>(packed));
  Variant back[] = {Variant::ByRef(&data), Variant(4000)};
  ASSERT_TRUE(z->Invoke("DecompressByteArray", server::InvokeKind::Method, back, &result));
  EXPECT_EQ(result.ToLong(), ZLIB_OK);
  EXPECT_EQ(data.Array()->Bytes(), Pattern(4000));

  Variant text(String(u"texto texto texto texto texto texto"));
  Variant sargs[] = {Variant::ByRef(&text), Variant(BEST_COMPRESSION)};
  ASSERT_TRUE(z->Invoke("CompressString", server::InvokeKind::Method, sargs, &result));
  EXPECT_EQ(result.ToLong(), ZLIB_OK);
  EXPECT_NE(text.ToString(), u"texto texto texto texto texto texto");
  EXPECT_EQ(server::Call(*z, "DecompressFile", String(u"/nao/existe"), PathOf("x")).ToLong(),
            ZLIB_ERRNO);
}

}  // namespace
}  // namespace vantor::services
