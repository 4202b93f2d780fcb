#include "tools/vantor/CallCommand.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "runtime/DateTime.h"
#include "runtime/Locale.h"
#include "server/Bindings.h"
#include "server/Dispatch.h"
#include "server/Registry.h"
#include "server/TableBuilder.h"
#include "server/TypeLibrary.h"

namespace vantor::tools {
namespace {

using namespace server;

// A class of the test's own, registered with the factory, so that the
// command's successful calls are tested whatever the library's classes
// implement so far.
const TypeLibrary& SampleLibrary() {
  static const TypeLibrary lib = [] {
    TableBuilder b;
    b.Class("CliSample", ClassKind::Service)
        .Property("Caption", td::Str)
        .Property("Item", td::Str, {P("Index", td::Long)})
        .ReadOnly("Count", td::Long)
        .Function("Sum", td::Long, {P("a", td::Long), Opt("b", td::Long, 10)})
        .Function("Half", td::Double, {P("x", td::Double)})
        .Function("IsEven", td::Bool, {P("n", td::Long)})
        .Function("Describe", td::Str, {Opt("Key", td::Var)})
        .Function("Bytes", td::Bytes, {P("Text", td::Str)})
        .Function("Length", td::Long, {P("Data", td::Bytes)})
        .Function("Self", td::Obj)
        .Function("Nobody", td::Obj)
        .Function("Blank", td::Var)
        .Function("When", td::Date)
        .Method("Swap", {Ref("Left", td::Str), Ref("Right", td::Str)})
        .Function("Bump", td::Long, {Ref("n", td::Long), OptRef("m", td::Long, 0)})
        .Method("NotYet");
    return TypeLibrary(std::move(b.classes));
  }();
  return lib;
}

class CliSample : public Dispatch {
 public:
  CliSample() : Dispatch(*SampleLibrary().FindClass("CliSample")) {}

  String get_Caption() const { return caption_; }
  void put_Caption(String v) { caption_ = std::move(v); }
  String get_Item(int32_t i) const { return items_.at(static_cast<size_t>(i)); }
  void put_Item(int32_t i, String v) { items_.at(static_cast<size_t>(i)) = std::move(v); }
  int32_t get_Count() const { return static_cast<int32_t>(items_.size()); }
  int32_t Sum(int32_t a, int32_t b) const { return a + b; }
  double Half(double x) const { return x / 2; }
  bool IsEven(int32_t n) const { return n % 2 == 0; }
  String Describe(const Variant& key) const {
    return key.IsMissing() ? u"Missing" : key.TypeName();
  }
  std::vector<uint8_t> Bytes(const String& text) const {
    const std::string utf8 = ToUtf8(text);
    return {utf8.begin(), utf8.end()};
  }
  int32_t Length(const std::vector<uint8_t>& data) const {
    return static_cast<int32_t>(data.size());
  }
  ObjectPtr Self() { return shared_from_this(); }
  ObjectPtr Nobody() const { return nullptr; }
  Variant Blank() const { return {}; }
  Date When() const { return DateSerial(2024, 1, 31); }
  void Swap(String& l, String& r) const { std::swap(l, r); }
  int32_t Bump(int32_t& n, int32_t& m) const {
    n += 1;
    m += 10;
    return n + m;
  }

 protected:
  const Bindings* Bound() const override {
    static const Bindings bindings =
        Binder<CliSample>(Info())
            .Property("Caption", &CliSample::get_Caption, &CliSample::put_Caption)
            .Property("Item", &CliSample::get_Item, &CliSample::put_Item)
            .Get("Count", &CliSample::get_Count)
            .Method("Sum", &CliSample::Sum)
            .Method("Half", &CliSample::Half)
            .Method("IsEven", &CliSample::IsEven)
            .Method("Describe", &CliSample::Describe)
            .Method("Bytes", &CliSample::Bytes)
            .Method("Length", &CliSample::Length)
            .Method("Self", &CliSample::Self)
            .Method("Nobody", &CliSample::Nobody)
            .Method("Blank", &CliSample::Blank)
            .Method("When", &CliSample::When)
            .Method("Swap", &CliSample::Swap)
            .Method("Bump", &CliSample::Bump)
            .Done();
    return &bindings;
  }

 private:
  String caption_ = u"Sample1";
  std::vector<String> items_ = {u"a", u"b", u"c"};
};

struct Outcome {
  int status;
  std::string out, err;
};

Outcome Call(std::vector<std::string> args) {
  std::ostringstream out, err;
  const int status = RunCall(args, out, err);
  return {status, out.str(), err.str()};
}

std::string Line(const std::vector<std::string>& args) {
  std::string line = "vantor call";
  for (const auto& a : args) line += " " + a;
  return line;
}

std::string TempPath(const std::string& name) {
  return (std::filesystem::path(testing::TempDir()) / name).string();
}

class CallCommand : public testing::Test {
 protected:
  void SetUp() override {
    Registry::Instance().Register(*SampleLibrary().FindClass("CliSample"),
                                  [] { return std::make_shared<CliSample>(); });
    Locale::Set(Locale::Id::ptBR);
  }
  void TearDown() override {
    Registry::Instance().Unregister("CliSample");
    Locale::FromEnvironment();
  }
};

TEST_F(CallCommand, PrintsResultsAndByReferenceArguments) {
  const std::string file = TempPath("vantor-call-data.bin");
  std::ofstream(file, std::ios::binary) << "abcde";
  struct Case {
    std::vector<std::string> args;
    std::string out;
  } cases[] = {
      {{"CliSample.Sum", "1"}, "11\n"},
      {{"CliSample.Sum", "1", "2"}, "3\n"},
      {{"CliSample.Sum", "b:=5", "a:=1"}, "6\n"},
      {{"Vantor2014.CliSample.Sum", "1", "--str", "2"}, "3\n"},
      {{"clisample.sum", "1"}, "11\n"},
      {{"CliSample.Half", "2.5"}, "1,25\n"},
      {{"CliSample.IsEven", "4"}, "Verdadeiro\n"},
      {{"CliSample.IsEven", "3"}, "Falso\n"},
      {{"CliSample.Caption"}, "Sample1\n"},
      {{"CliSample.Item", "1"}, "b\n"},
      {{"CliSample.Describe"}, "Missing\n"},
      {{"CliSample.Describe", "12"}, "Long\n"},
      {{"CliSample.Describe", "3000000000"}, "Double\n"},
      {{"CliSample.Describe", "1.5"}, "Double\n"},
      {{"CliSample.Describe", "true"}, "Boolean\n"},
      {{"CliSample.Describe", "--str", "12"}, "String\n"},
      {{"CliSample.Describe", "Key:=x"}, "String\n"},
      {{"CliSample.Describe", "@" + file}, "Byte()\n"},
      {{"CliSample.Length", "@" + file}, "5\n"},
      {{"CliSample.Bytes", "Olá"}, "4F6CC3A1\n"},
      {{"CliSample.Self"}, "CliSample\n"},
      {{"CliSample.Nobody"}, "Nothing\n"},
      {{"CliSample.Blank"}, ""},
      {{"CliSample.When"}, "31/01/2024\n"},
      // By-reference parameters after the result, those given only.
      {{"CliSample.Swap", "L", "R"}, "Left = R\nRight = L\n"},
      {{"CliSample.Bump", "5"}, "16\nn = 6\n"},
      {{"CliSample.Bump", "5", "m:=1"}, "17\nn = 6\nm = 11\n"},
      {{"CliSample.Bump", "m:=1", "n:=5"}, "17\nn = 6\nm = 11\n"},
      // Assignment, then the property as read back.
      {{"CliSample.Caption=", "Olá"}, "Olá\n"},
      {{"CliSample.Caption=12"}, "12\n"},
      {{"CliSample.Item=", "2", "C"}, "C\n"},
      {{"CliSample.Item=", "C", "Index:=0"}, "C\n"},
  };
  for (const auto& c : cases) {
    const Outcome r = Call(c.args);
    EXPECT_EQ(r.status, kCallDone) << Line(c.args) << ": " << r.err;
    EXPECT_EQ(r.out, c.out) << Line(c.args);
    EXPECT_EQ(r.err, "") << Line(c.args);
  }
}

TEST_F(CallCommand, PrintsInTheLocaleInForce) {
  Locale::Set(Locale::Id::enUS);
  EXPECT_EQ(Call({"CliSample.Half", "2.5"}).out, "1.25\n");
  EXPECT_EQ(Call({"CliSample.IsEven", "2"}).out, "True\n");
  EXPECT_EQ(Call({"CliSample.When"}).out, "1/31/2024\n");
}

TEST_F(CallCommand, WritesTheResultToAFileWhenAsked) {
  const std::string path = TempPath("vantor-call-out.bin");
  std::filesystem::remove(path);
  const Outcome r = Call({"--out", path, "CliSample.Bytes", "Olá"});
  EXPECT_EQ(r.status, kCallDone) << r.err;
  EXPECT_EQ(r.out, "");
  std::ifstream in(path, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "Olá");

  // Not bytes: the text, as it would have printed.
  const Outcome text = Call({"--out", path, "CliSample.Half", "3"});
  EXPECT_EQ(text.status, kCallDone);
  std::ifstream again(path, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(again), {}), "1,5\n");

  const Outcome bad = Call({"--out", "/nonexistent/dir/x.bin", "CliSample.Bytes", "x"});
  EXPECT_EQ(bad.status, kCallFailed);
  EXPECT_EQ(bad.err, "vantor call: cannot write the file '/nonexistent/dir/x.bin'\n");
}

TEST_F(CallCommand, RefusesBadCallsWithOneLineAndItsStatus) {
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string err;
  } cases[] = {
      {{"NoSuchClass.Foo"},
       kCallFailed,
       "vantor call: Cannot create object: no class named 'NoSuchClass' (error 429)\n"},
      {{"CliSample.Nope"},
       kCallFailed,
       "vantor call: CliSample has no member 'Nope' (error 438)\n"},
      {{"CliSample.NotYet"},
       kCallFailed,
       "vantor call: CliSample.NotYet is not implemented yet (error 445)\n"},
      {{"CliSample.Sum"},
       kCallFailed,
       "vantor call: Argument not optional: 'a' of CliSample.Sum (error 449)\n"},
      {{"CliSample.Sum", "1", "2", "3"},
       kCallFailed,
       "vantor call: Wrong number of arguments: CliSample.Sum takes at most 2, 3 given (error "
       "450)\n"},
      {{"CliSample.Sum", "abc"},
       kCallFailed,
       "vantor call: Type mismatch: argument 'a' of CliSample.Sum is Long, not String (error "
       "13)\n"},
      {{"CliSample.Length", "abc"},
       kCallFailed,
       "vantor call: Type mismatch: argument 'Data' of CliSample.Length is Byte(), not String "
       "(error "
       "13)\n"},
      {{"CliSample.Sum", "1", "z:=2"},
       kCallFailed,
       "vantor call: Named argument not found: CliSample.Sum has no argument 'z' (error 448)\n"},
      {{"CliSample.Count=", "3"},
       kCallFailed,
       "vantor call: CliSample.Count is read-only (error 383)\n"},
      {{"CliSample.Sum=", "3"},
       kCallFailed,
       "vantor call: CliSample.Sum is a method and cannot be assigned (error 450)\n"},
      {{"CliSample.Length", "@/nonexistent/file.bin"},
       kCallFailed,
       "vantor call: cannot read the file '/nonexistent/file.bin'\n"},
      {{}, kCallUsage, "vantor call: no Class.Member to call\n"},
      {{"CliSample"},
       kCallUsage,
       "vantor call: malformed target 'CliSample': expected Class.Member or Class.Property=\n"},
      {{"CliSample.Caption="},
       kCallUsage,
       "vantor call: no value to assign to CliSample.Caption\n"},
      {{"CliSample.Sum", "a:=1", "2"},
       kCallUsage,
       "vantor call: the positional argument '2' follows a named one; named arguments go last\n"},
  };
  for (const auto& c : cases) {
    const Outcome r = Call(c.args);
    EXPECT_EQ(r.status, c.status) << Line(c.args);
    EXPECT_EQ(r.err, c.err) << Line(c.args);
    EXPECT_EQ(r.out, "") << Line(c.args);
  }
}

TEST(DisplayText, ShowsEachKindOfValue) {
  Locale::Set(Locale::Id::ptBR);
  struct Case {
    Variant value;
    std::string text;
  } cases[] = {
      {Variant(), ""},
      {Variant(Null), "Null"},
      {Variant(String(u"texto")), "texto"},
      {Variant(int16_t{-3}), "-3"},
      {Variant(1234567), "1234567"},
      {Variant(0.1), "0,1"},
      {Variant(1e20), "1E+20"},
      {Variant(true), "Verdadeiro"},
      {Variant(std::vector<uint8_t>{0x00, 0x0f, 0xa0, 0xff}), "000FA0FF"},
      {Variant(std::vector<uint8_t>{}), ""},
      {Variant(SafeArray::FromVariants({Variant(1.5), Variant(String(u"a"))})), "{1,5; a}"},
      {Variant(ObjectPtr()), "Nothing"},
      {Variant::Missing(), "Missing"},
  };
  for (const auto& c : cases) EXPECT_EQ(DisplayText(c.value), c.text) << c.text;
  Locale::FromEnvironment();
}

}  // namespace
}  // namespace vantor::tools
