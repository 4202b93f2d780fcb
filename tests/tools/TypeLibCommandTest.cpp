#include "tools/vantor/TypeLibCommand.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "server/IdlWriter.h"
#include "server/TableBuilder.h"

namespace vantor::tools {
namespace {

using namespace server;

const TypeLibrary& SampleLibrary() {
  static const TypeLibrary lib = [] {
    TableBuilder b;
    b.Class("Sample", ClassKind::Control)
        .Method("About")
        .Property("Caption", td::Str)
        .ReadOnly("Item", td::Var, {P("Index", td::Long)})
        .WriteOnly("Secret", td::Str)
        .Function("Sum", td::Long,
                  {P("a", td::Long), Opt("b", td::Long, 10), Opt("c", td::Double, 0.5),
                   OptRef("d", td::Var)})
        .Method("Paint", {Opt("Theme", td::Enum("ENUM_SAMPLE"), 1),
                          Opt("Back", td::Color, static_cast<int32_t>(0x8000000F)),
                          Opt("Flag", td::Bool, true), Opt("Title", td::Str, u"say \"hi\""),
                          Opt("Nul", td::Str, String(1, u'\0')), Opt("Pic", td::Picture)})
        .Function("Data", td::Bytes, {Ref("Owner", td::Class("Sample"))})
        .Event("Click")
        .Event("KeyPress", {Ref("KeyAscii", td::Int)});
    b.Class("Helper", ClassKind::Service).Method("Outcome");
    b.Enum("ENUM_SAMPLE", {{"First One", 0}, {"Second", 1}, {"Last", -100}});
    b.Record("REC", {{"Name", td::Str}, {"Data", td::Bytes}});
    return TypeLibrary(std::move(b.classes), std::move(b.enums), std::move(b.records));
  }();
  return lib;
}

struct Outcome {
  int status;
  std::string out, err;
};

Outcome TypeLib(std::vector<std::string> args, const TypeLibrary& lib = SampleLibrary()) {
  std::ostringstream out, err;
  const int status = RunTypeLib(args, out, err, lib);
  return {status, out.str(), err.str()};
}

const char kSampleClass[] =
    "Sample  (control; _Sample, __Sample)\n"
    "  _Sample\n"
    "      -552  method      About()\n"
    "         0  property    Caption As String\n"
    "         1  read-only   Item(Index As Long) As Variant\n"
    "         2  write-only  Secret As String\n"
    "         3  method      Sum(a As Long, Optional b As Long = 10, Optional c As Double = 0.5, "
    "Optional ByRef d As Variant) As Long\n"
    "         4  method      Paint(Optional Theme As ENUM_SAMPLE = Second, Optional Back As "
    "OLE_COLOR = "
    "&H8000000F&, Optional Flag As Boolean = True, Optional Title As String = \"say \"\"hi\"\"\", "
    "Optional Nul As String = Chr(0), Optional Pic As StdPicture)\n"
    "         5  method      Data(ByRef Owner As Sample) As Byte()\n"
    "  __Sample\n"
    "         1  event       Click()\n"
    "         2  event       KeyPress(ByRef KeyAscii As Integer)\n";

TEST(TypeLibCommand, ListsClassesMembersEnumerationsAndRecords) {
  const Outcome r = TypeLib({});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "");
  const std::string expected =
      std::string(
          "Vantor2014: 2 classes, 3 interfaces, 1 enumerations, 1 records\n"
          "\n"
          "Classes\n"
          "\n") +
      kSampleClass +
      "\n"
      "Helper  (service; _Helper)\n"
      "  _Helper\n"
      "         1  method      Outcome()\n"
      "\n"
      "Enumerations\n"
      "\n"
      "ENUM_SAMPLE\n"
      "       0  First One\n"
      "       1  Second\n"
      "    -100  Last\n"
      "\n"
      "Records\n"
      "\n"
      "REC\n"
      "    Name As String\n"
      "    Data As Byte()\n";
  EXPECT_EQ(r.out, expected);
}

TEST(TypeLibCommand, ListsOneClassByNameOrProgramIdentifier) {
  for (const char* name : {"Sample", "sample", "Vantor2014.Sample"}) {
    const Outcome r = TypeLib({name});
    EXPECT_EQ(r.status, 0) << name;
    EXPECT_EQ(r.out, kSampleClass) << name;
  }
}

TEST(TypeLibCommand, WritesTheIdl) {
  const Outcome r = TypeLib({"--idl"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, WriteIdl(SampleLibrary()));
  EXPECT_EQ(TypeLib({"--idl", "-"}).out, r.out);

  const std::string path =
      (std::filesystem::path(testing::TempDir()) / "vantor-typelib.idl").string();
  std::filesystem::remove(path);
  const Outcome toFile = TypeLib({"--idl", path});
  EXPECT_EQ(toFile.status, 0);
  EXPECT_EQ(toFile.out, "");
  std::ifstream in(path, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), r.out);
}

TEST(TypeLibCommand, RefusesWhatItCannotDo) {
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string err;
  } cases[] = {
      {{"Nope"}, 1, "vantor typelib: the type library has no class named 'Nope'\n"},
      {{"--idl", "/nonexistent/dir/x.idl"},
       1,
       "vantor typelib: cannot write '/nonexistent/dir/x.idl'\n"},
      {{"--idl", "a", "b"}, 2, "vantor typelib: --idl takes at most one file name\n"},
      {{"Sample", "Helper"}, 2, "vantor typelib: expected [CLASS] or --idl [FILE], got 'Helper'\n"},
      {{"--html"}, 2, "vantor typelib: expected [CLASS] or --idl [FILE], got '--html'\n"},
  };
  for (const auto& c : cases) {
    const Outcome r = TypeLib(c.args);
    EXPECT_EQ(r.status, c.status) << c.err;
    EXPECT_EQ(r.err, c.err);
    EXPECT_EQ(r.out, "");
  }
}

TEST(TypeLibCommand, ListsEveryClassOfTheRealLibrary) {
  const TypeLibrary& lib = TypeLibrary::Get();
  const Outcome r = TypeLib({}, lib);
  EXPECT_EQ(r.status, 0);
  const std::string summary = "Vantor2014: " + std::to_string(lib.Classes().size()) + " classes, " +
                              std::to_string(lib.InterfaceCount()) + " interfaces, ";
  EXPECT_EQ(r.out.rfind(summary, 0), 0u) << r.out.substr(0, 100);
  for (const ClassInfo& c : lib.Classes()) {
    EXPECT_NE(r.out.find("\n" + std::string(c.name) + "  ("), std::string::npos) << c.name;
    const Outcome one = TypeLib({std::string(c.name)}, lib);
    EXPECT_EQ(one.status, 0) << c.name;
    EXPECT_NE(r.out.find(one.out), std::string::npos) << c.name;
  }
  for (const EnumInfo& e : lib.Enums())
    EXPECT_NE(r.out.find("\n" + std::string(e.name) + "\n"), std::string::npos) << e.name;
}

}  // namespace
}  // namespace vantor::tools
