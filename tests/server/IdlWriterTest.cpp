#include "server/IdlWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "server/NameUuid.h"
#include "server/TableBuilder.h"
#include "server/TypeLibrary.h"

namespace vantor::server {
namespace {

// A library of the test's own with every shape the writer meets, so that the
// IDL is checked without leaning on what the real tables hold.
const TypeLibrary& SampleLibrary() {
  static const TypeLibrary lib = [] {
    TableBuilder b;
    b.Class("Sample", ClassKind::Control)
        .Method("About")
        .Property("Caption", td::Str)
        .ReadOnly("hwnd", td::Long)
        .WriteOnly("Secret", td::Str)
        .Property("Picture", td::Picture)
        .Property("Item", td::Str, {P("Index", td::Long)})
        .Property("Theme", td::Enum("ENUM_SAMPLE"))
        .Function("Sum", td::Long,
                  {P("a", td::Long), Opt("b", td::Long, 10), Opt("c", td::Double, 0.5),
                   Opt("d", td::Single, 2)})
        .Method("Swap", {Ref("Left", td::Str), OptRef("Right", td::Str, u"r")})
        .Function(
            "Pick", td::Var,
            {Opt("Key", td::Var), Opt("Mode", td::Enum("ENUM_SAMPLE"), 1),
             Opt("Back", td::Color, static_cast<int32_t>(0x8000000F)), Opt("Flag", td::Bool, true),
             Opt("Title", td::Str, u"ação"), Opt("Quote", td::Str, u"say \"hi\""),
             Opt("Owner", td::Class("Helper")), Opt("When", td::Date)})
        .Function("Bytes", td::Bytes,
                  {P("Pictures", td::ArrayOf(td::Picture)), P("Info", td::Record("REC"))})
        .Function("Parent", td::Class("Helper"))
        .Function("Money", td::Cur,
                  {P("Font", td::Font), P("Any", td::Obj), P("Small", td::Int), P("B", td::Byte)})
        .Event("Click")
        .Event("KeyPress", {Ref("KeyAscii", td::Int)});
    b.Class("Helper", ClassKind::Service).Method("Run");
    b.Enum("ENUM_SAMPLE", {{"First One", 0}, {"Second", 1}});
    b.Enum("ENUM_OTHER", {{"second", 5}, {"long", 6}, {"a/b", 7}, {"a-b", 8}, {"Helper", -1}});
    b.Record("REC", {{"Name", td::Str}, {"Data", td::Bytes}, {"Owner", td::Class("Sample")}});
    return TypeLibrary(std::move(b.classes), std::move(b.enums), std::move(b.records));
  }();
  return lib;
}

// The text with every run of blanks and line ends made one blank, so that
// checks do not depend on how long lines are broken.
std::string Flat(const std::string& text) {
  std::string flat;
  for (char c : text) {
    const bool blank = c == ' ' || c == '\n';
    if (blank && (flat.empty() || flat.back() == ' ')) continue;
    flat += blank ? ' ' : c;
  }
  return flat;
}

size_t Count(const std::string& text, const std::string& what) {
  size_t n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

TEST(IdlWriter, MapsEveryTypeToItsIdlName) {
  struct Case {
    TypeRef type;
    const char* idl;
  } cases[] = {
      {td::Void, "void"},
      {td::Bool, "VARIANT_BOOL"},
      {td::Byte, "unsigned char"},
      {td::Int, "short"},
      {td::Long, "long"},
      {td::Single, "float"},
      {td::Double, "double"},
      {td::Cur, "CURRENCY"},
      {td::Date, "DATE"},
      {td::Str, "BSTR"},
      {td::Var, "VARIANT"},
      {td::Obj, "IDispatch*"},
      {td::Color, "OLE_COLOR"},
      {td::Font, "IFontDisp*"},
      {td::Picture, "IPictureDisp*"},
      {td::Enum("ENUM_THEME"), "ENUM_THEME"},
      {td::Record("REC"), "REC"},
      {td::Class("USButton"), "_USButton*"},
      {td::Bytes, "SAFEARRAY(unsigned char)"},
      {td::ArrayOf(td::Str), "SAFEARRAY(BSTR)"},
      {td::ArrayOf(td::Picture), "SAFEARRAY(IPictureDisp)"},
      {td::ArrayOf(td::Class("Nodes")), "SAFEARRAY(_Nodes)"},
  };
  for (const auto& c : cases) EXPECT_EQ(IdlType(c.type), c.idl) << c.type.Text();
}

TEST(IdlWriter, GivesEnumerationConstantsUniqueIdentifiers) {
  const auto ids = EnumIdentifiers(SampleLibrary());
  const std::vector<std::vector<std::string>> expected = {
      {"First_One", "ENUM_SAMPLE_Second"},
      // "second" meets "Second" without regard to case; "long" is a keyword
      // and "Helper" a class; "a/b" and "a-b" read alike within one.
      {"ENUM_OTHER_second", "ENUM_OTHER_long", "a_b", "a_b_2", "ENUM_OTHER_Helper"},
  };
  EXPECT_EQ(ids, expected);
}

TEST(IdlWriter, WritesTheLibraryHeaderEnumerationsAndRecords) {
  const std::string idl = Flat(WriteIdl(SampleLibrary()));
  const std::vector<std::string> expected = {
      "import \"oaidl.idl\"; import \"ocidl.idl\";",
      "[ uuid(" + TypeLibGuid("library", "Vantor2014").Text() + "), version(1.0),",
      "library Vantor2014 { importlib(\"stdole2.tlb\");",
      "dispinterface _Sample; dispinterface __Sample; dispinterface _Helper;",
      "typedef [uuid(" + TypeLibGuid("enum", "ENUM_SAMPLE").Text() + ")] enum ENUM_SAMPLE {",
      "First_One = 0, // \"First One\" ENUM_SAMPLE_Second = 1 // \"Second\" } ENUM_SAMPLE;",
      "ENUM_OTHER_second = 5, // \"second\" ENUM_OTHER_long = 6, // \"long\" a_b = 7, // \"a/b\" "
      "a_b_2 = 8, // \"a-b\" ENUM_OTHER_Helper = -1 // \"Helper\" } ENUM_OTHER;",
      "typedef [uuid(" + TypeLibGuid("record", "REC").Text() +
          ")] struct REC { BSTR Name; SAFEARRAY(unsigned char) Data; _Sample* Owner; } REC;",
  };
  for (const std::string& e : expected) EXPECT_NE(idl.find(e), std::string::npos) << e;
}

TEST(IdlWriter, WritesDispatchInterfacesWithIdsAndPropertyAccessors) {
  const std::string idl = Flat(WriteIdl(SampleLibrary()));
  struct Case {
    std::string line;
    size_t times;
  } cases[] = {
      {"[ uuid(" + TypeLibGuid("interface", "_Sample").Text() +
           "), helpstring(\"The default interface of Sample\"), hidden ] dispinterface _Sample { "
           "properties: methods:",
       1},
      {"[id(0xfffffdd8)] void About();", 1},
      {"[id(0x00000000), propget] BSTR Caption();", 1},
      {"[id(0x00000000), propput] void Caption([in] BSTR rhs);", 1},
      {"[id(0x00000001), propget] long hwnd();", 1},
      {"hwnd([in]", 0},
      {"[id(0x00000002), propput] void Secret([in] BSTR rhs);", 1},
      {"Secret();", 0},
      {"[id(0x00000003), propget] IPictureDisp* Picture();", 1},
      {"[id(0x00000003), propputref] void Picture([in] IPictureDisp* rhs);", 1},
      {"propput] void Picture", 0},
      {"[id(0x00000004), propget] BSTR Item([in] long Index);", 1},
      {"[id(0x00000004), propput] void Item([in] long Index, [in] BSTR rhs);", 1},
      {"[id(0x00000005), propput] void Theme([in] ENUM_SAMPLE rhs);", 1},
      {"[id(0x00000006)] long Sum([in] long a, [in, optional, defaultvalue(10)] long b, "
       "[in, optional] double c, [in, optional, defaultvalue(2)] float d);",
       1},
      // By reference: a pointer, in and out, and no default.
      {"[id(0x00000007)] void Swap([in, out] BSTR* Left, [in, out, optional] BSTR* Right);", 1},
      {"[id(0x00000008)] VARIANT Pick([in, optional] VARIANT Key, "
       "[in, optional, defaultvalue(ENUM_SAMPLE_Second)] ENUM_SAMPLE Mode, "
       "[in, optional, defaultvalue(0x8000000f)] OLE_COLOR Back, "
       "[in, optional, defaultvalue(-1)] VARIANT_BOOL Flag, "
       "[in, optional, defaultvalue(\"a\xe7\xe3o\")] BSTR Title, [in, optional] BSTR Quote, "
       "[in, optional, defaultvalue(0)] _Helper* Owner, [in, optional, defaultvalue(0)] DATE "
       "When);",
       1},
      {"[id(0x00000009)] SAFEARRAY(unsigned char) Bytes([in] SAFEARRAY(IPictureDisp) Pictures, "
       "[in] REC Info);",
       1},
      {"[id(0x0000000a)] _Helper* Parent();", 1},
      {"[id(0x0000000b)] CURRENCY Money([in] IFontDisp* Font, [in] IDispatch* Any, [in] short "
       "Small, "
       "[in] unsigned char B);",
       1},
      {"[ uuid(" + TypeLibGuid("interface", "__Sample").Text() +
           "), helpstring(\"The events of Sample\") ] dispinterface __Sample { properties: "
           "methods: "
           "[id(0x00000001)] void Click(); "
           "[id(0x00000002)] void KeyPress([in, out] short* KeyAscii); };",
       1},
      {"[ uuid(" + TypeLibGuid("class", "Sample").Text() +
           "), control ] coclass Sample { [default] dispinterface _Sample; "
           "[default, source] dispinterface __Sample; };",
       1},
      {"[ uuid(" + TypeLibGuid("class", "Helper").Text() +
           ") ] coclass Helper { [default] dispinterface _Helper; };",
       1},
      {"dispinterface __Helper", 0},
  };
  for (const auto& c : cases) EXPECT_EQ(Count(idl, c.line), c.times) << c.line;
}

TEST(IdlWriter, WritesTheSameTextEveryTime) {
  EXPECT_EQ(WriteIdl(SampleLibrary()), WriteIdl(SampleLibrary()));
  EXPECT_EQ(WriteIdl(TypeLibrary::Get()), WriteIdl(TypeLibrary::Get()));
}

TEST(IdlWriter, DescribesEveryClassOfTheRealLibrary) {
  const TypeLibrary& lib = TypeLibrary::Get();
  const std::string idl = Flat(WriteIdl(lib));
  EXPECT_EQ(Count(idl, "coclass "), lib.Classes().size());
  EXPECT_EQ(Count(idl, "[default] dispinterface "), lib.Classes().size());
  size_t interfaces = 0, abouts = 0;
  for (const ClassInfo& c : lib.Classes()) {
    const std::string coclass = "coclass " + std::string(c.name) + " {";
    EXPECT_EQ(Count(idl, coclass), 1u) << c.name;
    EXPECT_EQ(Count(idl, "uuid(" + TypeLibGuid("class", c.name).Text() + ")"), 1u) << c.name;
    for (const InterfaceInfo* itf : {&c.dispatch, &c.events}) {
      if (itf->members.empty() && itf == &c.events) continue;
      ++interfaces;
      const size_t begin = idl.find("dispinterface " + itf->name + " {");
      ASSERT_NE(begin, std::string::npos) << itf->name;
      const std::string body = idl.substr(begin, idl.find("};", begin) - begin);
      for (const MemberInfo& m : itf->members) {
        char id[32];
        std::snprintf(id, sizeof id, "[id(0x%08x)", static_cast<uint32_t>(m.dispid));
        EXPECT_NE(
            body.find(std::string(id) + (m.kind == MemberKind::Method || m.kind == MemberKind::Event
                                             ? "] "
                                             : ", prop")),
            std::string::npos)
            << itf->name << "." << m.name;
        EXPECT_NE(body.find(" " + std::string(m.name) + "("), std::string::npos) << m.name;
        if (m.name == "About") {
          ++abouts;
          EXPECT_NE(body.find("[id(0xfffffdd8)] void About();"), std::string::npos) << c.name;
        }
      }
    }
  }
  EXPECT_EQ(interfaces, lib.InterfaceCount());
  EXPECT_GT(abouts, 0u);
}

// The compiler the Windows build uses, when this machine has it: widl with
// the platform's IDL imports and the standard OLE type library.
struct Widl {
  std::string program, includes, libraries;
};

bool Exists(const std::filesystem::path& p) {
  std::error_code ec;
  return std::filesystem::exists(p, ec);
}

std::string FindWidl(std::string& missing) {
  Widl w;
  const char* path = std::getenv("PATH");
  std::string dirs = path ? path : "/usr/bin";
  for (const char* name : {"x86_64-w64-mingw32-widl", "i686-w64-mingw32-widl", "widl"}) {
    size_t start = 0;
    while (w.program.empty() && start <= dirs.size()) {
      const size_t end = std::min(dirs.find(':', start), dirs.size());
      const std::filesystem::path candidate =
          std::filesystem::path(dirs.substr(start, end - start)) / name;
      if (!dirs.substr(start, end - start).empty() && Exists(candidate))
        w.program = candidate.string();
      start = end + 1;
    }
  }
  for (const char* dir : {"/usr/include/wine/wine/windows", "/usr/include/wine/windows",
                          "/usr/share/mingw-w64/include", "/usr/x86_64-w64-mingw32/include"}) {
    if (w.includes.empty() && Exists(std::filesystem::path(dir) / "oaidl.idl")) w.includes = dir;
  }
  for (const char* dir :
       {"/usr/lib/x86_64-linux-gnu/wine/x86_64-windows",
        "/usr/lib/x86_64-linux-gnu/wine/i386-windows", "/usr/lib/wine/x86_64-windows",
        "/usr/lib/wine/i386-windows", "/usr/lib64/wine/x86_64-windows",
        "/usr/lib/i386-linux-gnu/wine/i386-windows"}) {
    if (w.libraries.empty() && Exists(std::filesystem::path(dir) / "stdole2.tlb"))
      w.libraries = dir;
  }
  if (w.program.empty())
    missing = "widl (mingw-w64-tools)";
  else if (w.includes.empty())
    missing = "oaidl.idl (libwine-dev)";
  else if (w.libraries.empty())
    missing = "stdole2.tlb (wine)";
  if (!missing.empty()) return {};
  return w.program + " -I " + w.includes + " -L " + w.libraries;
}

void CompileWithWidl(const TypeLibrary& lib, const std::string& name) {
  std::string missing;
  const std::string widl = FindWidl(missing);
  if (widl.empty()) GTEST_SKIP() << "no " << missing << " on this machine";
  const std::filesystem::path dir =
      std::filesystem::path(testing::TempDir()) / ("vantor-idl-" + name);
  std::filesystem::create_directories(dir);
  const std::filesystem::path idl = dir / (name + ".idl"), tlb = dir / (name + ".tlb"),
                              log = dir / (name + ".log");
  std::filesystem::remove(tlb);
  std::ofstream(idl, std::ios::binary) << WriteIdl(lib);
  const std::string command =
      widl + " -t -o " + tlb.string() + " " + idl.string() + " > " + log.string() + " 2>&1";
  const int status = std::system(command.c_str());
  std::ifstream in(log);
  const std::string output((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_EQ(status, 0) << command << "\n" << output;
  EXPECT_TRUE(Exists(tlb));
  if (Exists(tlb)) {
    EXPECT_GT(std::filesystem::file_size(tlb), 1000u);
  }
}

TEST(IdlWriter, WidlCompilesTheRealLibrary) {
  CompileWithWidl(TypeLibrary::Get(), "Vantor2014");
}

TEST(IdlWriter, WidlCompilesEveryShapeOfMember) {
  CompileWithWidl(SampleLibrary(), "Sample");
}

}  // namespace
}  // namespace vantor::server
