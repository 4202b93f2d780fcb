#include "server/TypeLibrary.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "server/TableBuilder.h"

namespace vantor::server {
namespace {

TEST(TypeLibrary, TablesAreSound) {
  const auto problems = TypeLibrary::Get().Problems();
  for (const std::string& p : problems) ADD_FAILURE() << p;
}

TEST(TypeLibrary, HoldsEveryCreatableClass) {
  const char* names[] = {
      "USAlphaImage", "USAnimatedImage", "USButton", "USCalendar", "USCheckBox", "USComboBox",
      "USDatePicker", "USFlexGrid", "USForm", "USGroupBox", "USImageList", "USLabel", "USListBox",
      "USMenu", "USOptionButton", "USPictureLCD", "USProgressBar", "USRibbon", "USScrollBar",
      "USStatusBar", "USSysTray", "USTab", "USTextBox", "USTextBoxEx", "USToolBar", "USTreeView",
      "VT", "VT_AJAX", "VT_COMMONDIALOGS", "VT_INFOTIP", "VT_MYSQL", "VT_NTSERVICES", "VT_REGISTRY",
      "VT_TOOLTIP", "VT_ZLIB", "ICrossComm", "IItemData", "Nodes", "TreeNode", "cEnum",
      "cImageList", "cImageLists", "cListImage", "cListImages", "cType", "clsMouseEvents",
      "ppgAlphaImage", "ppgButton", "ppgForm", "ppgGroupBox", "ppgImageList", "ppgLabel",
      "ppgPictureLCD1", "ppgPictureLCD2", "ppgTab", "ppgToolbar", "ppgUSFlexGrid"};
  const TypeLibrary& lib = TypeLibrary::Get();
  std::set<std::string> expected;
  for (const char* n : names) {
    expected.insert(n);
    EXPECT_NE(lib.FindClass(n), nullptr) << n;
  }
  EXPECT_EQ(expected.size(), 57u);
  for (const ClassInfo& c : lib.Classes()) EXPECT_TRUE(expected.count(std::string(c.name))) << c.name;
}

TEST(TypeLibrary, FindsClassesByNameOrProgramIdentifier) {
  const TypeLibrary& lib = TypeLibrary::Get();
  ASSERT_NE(lib.FindClass("ppgTab"), nullptr);
  EXPECT_EQ(lib.FindClass("Vantor2014.ppgTab"), lib.FindClass("ppgTab"));
  EXPECT_EQ(lib.FindClass("vantor2014.PPGTAB"), lib.FindClass("ppgTab"));
  EXPECT_EQ(lib.FindClass("Vantor2014."), nullptr);
  EXPECT_EQ(lib.FindClass("Other.ppgTab"), nullptr);
  EXPECT_EQ(lib.FindClass(""), nullptr);
  EXPECT_EQ(lib.FindClass("ppgTab")->ProgId(), "Vantor2014.ppgTab");
}

// The numbering rule on a small library of its own, so that it does not
// depend on what the real tables hold.
TEST(TypeLibrary, GivesDispatchIdsByTheRule) {
  TableBuilder b;
  b.Class("Sample", ClassKind::Control)
      .Method("Refresh")
      .Method("About")
      .Property("Caption", td::Str)
      .ReadOnly("hwnd", td::Long)
      .Event("Click")
      .Event("KeyPress", {Ref("KeyAscii", td::Int)});
  TypeLibrary lib(std::move(b.classes));
  const ClassInfo& c = *lib.FindClass("Sample");
  EXPECT_EQ(c.dispatch.Find("Refresh")->dispid, 1);
  EXPECT_EQ(c.dispatch.Find("about")->dispid, kDispidAboutBox);
  EXPECT_EQ(c.dispatch.Find("Caption")->dispid, kDispidValue);
  EXPECT_EQ(c.dispatch.Find("hwnd")->dispid, 2);
  EXPECT_EQ(c.events.Find("Click")->dispid, 1);
  EXPECT_EQ(c.events.Find("KeyPress")->dispid, 2);
  EXPECT_EQ(c.dispatch.FindId(2)->name, "hwnd");
  EXPECT_EQ(c.dispatch.FindId(99), nullptr);
  EXPECT_TRUE(lib.Problems().empty());
  EXPECT_EQ(lib.InterfaceCount(), 2u);
}

TEST(TypeLibrary, ACollectionsItemIsItsValue) {
  TableBuilder b;
  b.Class("List", ClassKind::ObjectModel)
      .ReadOnly("Count", td::Long)
      .ReadOnly("Item", td::Var, {P("Index", td::Var)})
      .ReadOnly("xcom_IEnum", td::Obj);
  b.Class("Captioned", ClassKind::Control).Property("Caption", td::Str).ReadOnly("Item", td::Var);
  TypeLibrary lib(std::move(b.classes));
  EXPECT_EQ(lib.FindClass("List")->dispatch.Find("Item")->dispid, kDispidValue);
  EXPECT_EQ(lib.FindClass("List")->dispatch.Find("xcom_IEnum")->dispid, kDispidNewEnum);
  EXPECT_EQ(lib.FindClass("List")->dispatch.Find("Count")->dispid, 1);
  EXPECT_EQ(lib.FindClass("Captioned")->dispatch.Find("Item")->dispid, 1);
}

TEST(TypeLibrary, ReportsUnsoundTables) {
  TableBuilder b;
  b.Class("Broken", ClassKind::Service)
      .Property("Theme", td::Enum("ENUM_MISSING"))
      .Method("Twice")
      .Method("twice")
      .Method("Order", {Opt("a", td::Long, 1), P("b", td::Long)})
      .Method("Fit", {Opt("n", td::Long, String(u"abc"))});
  b.Enum("ENUM_X", {{"A b", 0}, {"a B", 1}});
  TypeLibrary lib(std::move(b.classes), std::move(b.enums));
  const auto problems = lib.Problems();
  auto mentions = [&](const std::string& text) {
    for (const auto& p : problems)
      if (p.find(text) != std::string::npos) return true;
    return false;
  };
  EXPECT_TRUE(mentions("unknown enumeration ENUM_MISSING"));
  EXPECT_TRUE(mentions("duplicate name twice"));
  EXPECT_TRUE(mentions("(b): required after optional"));
  EXPECT_TRUE(mentions("(n): default does not fit the type"));
  EXPECT_TRUE(mentions("ENUM_X: duplicate name a B"));
}

TEST(TypeLibrary, TypeTexts) {
  EXPECT_EQ(td::Bytes.Text(), "Byte()");
  EXPECT_EQ(td::Enum("ENUM_THEME").Text(), "ENUM_THEME");
  EXPECT_EQ(td::ArrayOf(td::Str).Text(), "String()");
  EXPECT_EQ(td::Color.VarType(), vbLong);
  EXPECT_EQ(td::Bytes.VarType(), vbArray | vbByte);
  EXPECT_TRUE(td::Picture.IsObject());
  EXPECT_FALSE(td::Bytes.IsObject());
  EXPECT_EQ((EnumMember{"Office Blue", 0}.Identifier()), "Office_Blue");
  EXPECT_EQ((EnumMember{"16x16", 0}.Identifier()), "_16x16");
}

}  // namespace
}  // namespace vantor::server
