#include "tools/vantor/CallArguments.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace vantor::tools {
namespace {

std::string TempFile(const std::string& name, const std::string& bytes) {
  const std::filesystem::path path = std::filesystem::path(testing::TempDir()) / name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path.string();
}

std::string Describe(const Variant& v) {
  return ToUtf8(v.TypeName()) + " " + ToUtf8(v.ToString());
}

TEST(CallArguments, TypesEachArgumentByItsText) {
  const std::string file = TempFile("vantor-call-args.bin", std::string("\x01\x02\xff", 3));
  struct Case {
    std::string text;
    bool forceString;
    Variant expected;
  } cases[] = {
      {"12", false, Variant(12)},
      {"-7", false, Variant(-7)},
      {"+3", false, Variant(3)},
      {"0", false, Variant(0)},
      {"2147483647", false, Variant(2147483647)},
      {"-2147483648", false, Variant(static_cast<int32_t>(-2147483647 - 1))},
      // Beyond a Long: a Double, as the platform's literals widen.
      {"2147483648", false, Variant(2147483648.0)},
      {"123456789012345678901234", false, Variant(123456789012345678901234.0)},
      {"1.5", false, Variant(1.5)},
      {"-0.25", false, Variant(-0.25)},
      {".5", false, Variant(0.5)},
      {"2.", false, Variant(2.0)},
      {"1.5e3", false, Variant(1500.0)},
      {"1,5", false, Variant(String(u"1,5"))},  // the locale's comma is text here
      {"1e5", false, Variant(String(u"1e5"))},
      {"1.2.3", false, Variant(String(u"1.2.3"))},
      {".", false, Variant(String(u"."))},
      {"-", false, Variant(String(u"-"))},
      {"true", false, Variant(true)},
      {"False", false, Variant(false)},
      {"TRUE", false, Variant(true)},
      {"truth", false, Variant(String(u"truth"))},
      {"Olá", false, Variant(String(u"Olá"))},
      {"", false, Variant(String())},
      {"@" + file, false, Variant(std::vector<uint8_t>{1, 2, 255})},
      {"12", true, Variant(String(u"12"))},
      {"true", true, Variant(String(u"true"))},
      {"@" + file, true, Variant(FromUtf8("@" + file))},
  };
  for (const auto& c : cases) {
    Variant v;
    std::string error;
    ParseStatus status = ParseStatus::Ok;
    ASSERT_TRUE(ArgumentValue(c.text, c.forceString, v, error, status)) << c.text << ": " << error;
    EXPECT_TRUE(v.SameAs(c.expected))
        << c.text << " gave " << Describe(v) << ", not " << Describe(c.expected);
  }
}

TEST(CallArguments, ReadsTargetsOptionsAndNamedArguments) {
  struct Case {
    std::vector<std::string> args;
    std::string className, member;
    bool assign;
    std::vector<Variant> values;
    std::vector<std::string> names;
    std::string outFile;
  } cases[] = {
      {{"VT.VT_ZeroEsquerda", "abc", "5"},
       "VT",
       "VT_ZeroEsquerda",
       false,
       {Variant(String(u"abc")), Variant(5)},
       {},
       ""},
      {{"Vantor2014.VT.VT_CalcularIdade"}, "Vantor2014.VT", "VT_CalcularIdade", false, {}, {}, ""},
      {{"--out", "x.bin", "VT_ZLIB.Compress", "abc"},
       "VT_ZLIB",
       "Compress",
       false,
       {Variant(String(u"abc"))},
       {},
       "x.bin"},
      {{"S.Sum", "1", "c:=0.5", "B:=--"},
       "S",
       "Sum",
       false,
       {Variant(1), Variant(0.5), Variant(String(u"--"))},
       {"c", "B"},
       ""},
      {{"S.Sum", "--str", "1", "--str", "c:=2"},
       "S",
       "Sum",
       false,
       {Variant(String(u"1")), Variant(String(u"2"))},
       {"c"},
       ""},
      // ":=" after something that is not a name is plain text.
      {{"S.Echo", "a b:=1", ":=2"},
       "S",
       "Echo",
       false,
       {Variant(String(u"a b:=1")), Variant(String(u":=2"))},
       {},
       ""},
      {{"S.Echo", "--str", "--str"}, "S", "Echo", false, {Variant(String(u"--str"))}, {}, ""},
      {{"S.Echo", "--out"}, "S", "Echo", false, {Variant(String(u"--out"))}, {}, ""},
      // Assignment: the value is the last positional argument.
      {{"S.Caption=", "Olá"}, "S", "Caption", true, {Variant(String(u"Olá"))}, {}, ""},
      {{"S.Caption=Olá"}, "S", "Caption", true, {Variant(String(u"Olá"))}, {}, ""},
      {{"S.Caption=12"}, "S", "Caption", true, {Variant(12)}, {}, ""},
      {{"S.Item=", "1", "B"}, "S", "Item", true, {Variant(1), Variant(String(u"B"))}, {}, ""},
      {{"S.Item=B", "1"}, "S", "Item", true, {Variant(1), Variant(String(u"B"))}, {}, ""},
      {{"S.Item=", "B", "Index:=1"},
       "S",
       "Item",
       true,
       {Variant(String(u"B")), Variant(1)},
       {"Index"},
       ""},
      {{"S.Caption=", "--str", "12"}, "S", "Caption", true, {Variant(String(u"12"))}, {}, ""},
  };
  for (const auto& c : cases) {
    std::string line;
    for (const auto& a : c.args) line += a + " ";
    const CallParse p = ParseCallArguments(c.args);
    ASSERT_EQ(p.status, ParseStatus::Ok) << line << ": " << p.error;
    EXPECT_EQ(p.request.className, c.className) << line;
    EXPECT_EQ(p.request.member, c.member) << line;
    EXPECT_EQ(p.request.assign, c.assign) << line;
    EXPECT_EQ(p.request.names, c.names) << line;
    EXPECT_EQ(p.request.outFile, c.outFile) << line;
    ASSERT_EQ(p.request.args.size(), c.values.size()) << line;
    for (size_t i = 0; i < c.values.size(); ++i)
      EXPECT_TRUE(p.request.args[i].SameAs(c.values[i]))
          << line << "#" << i << ": " << Describe(p.request.args[i]);
  }
}

TEST(CallArguments, RefusesMalformedCommandLinesWithTheirReason) {
  struct Case {
    std::vector<std::string> args;
    ParseStatus status;
    std::string mention;
  } cases[] = {
      {{}, ParseStatus::Usage, "no Class.Member to call"},
      {{"--out", "f"}, ParseStatus::Usage, "no Class.Member to call"},
      {{"--out"}, ParseStatus::Usage, "--out needs a file name"},
      {{"--verbose", "S.M"}, ParseStatus::Usage, "unknown option '--verbose'"},
      {{"USButton"}, ParseStatus::Usage, "malformed target 'USButton'"},
      {{".Caption"}, ParseStatus::Usage, "malformed target '.Caption'"},
      {{"USButton."}, ParseStatus::Usage, "malformed target 'USButton.'"},
      {{"US Button.Caption"}, ParseStatus::Usage, "malformed target"},
      {{"a.b.c.d"}, ParseStatus::Usage, "malformed target 'a.b.c.d'"},
      {{"S.1st"}, ParseStatus::Usage, "malformed target"},
      {{"S.Caption="}, ParseStatus::Usage, "no value to assign to S.Caption"},
      {{"S.Caption=", "Index:=1"}, ParseStatus::Usage, "no value to assign"},
      {{"S.Sum", "a:=1", "2"},
       ParseStatus::Usage,
       "the positional argument '2' follows a named one"},
      {{"S.Sum", "1", "--str"}, ParseStatus::Usage, "--str needs an argument after it"},
      {{"S.Sum", "@"}, ParseStatus::Usage, "no file name after '@'"},
      {{"S.Sum", "@/nonexistent/file.bin"},
       ParseStatus::Failure,
       "cannot read the file '/nonexistent/file.bin'"},
      {{"S.Caption=@/nonexistent/file.bin"}, ParseStatus::Failure, "cannot read the file"},
      {{"S.Sum", "@" + testing::TempDir()}, ParseStatus::Failure, "cannot read the file"},
  };
  for (const auto& c : cases) {
    std::string line;
    for (const auto& a : c.args) line += a + " ";
    const CallParse p = ParseCallArguments(c.args);
    EXPECT_EQ(p.status, c.status) << line;
    EXPECT_NE(p.error.find(c.mention), std::string::npos) << line << ": " << p.error;
    EXPECT_TRUE(p.request.args.empty()) << line;
  }
}

}  // namespace
}  // namespace vantor::tools
