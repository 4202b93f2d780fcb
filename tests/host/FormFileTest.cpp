// Saving and loading forms: the text, the round trip of every kind of value,
// loading in either mode, and files that must be refused whole.
#include "host/FormFile.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "Probe.h"
#include "host/Form.h"
#include "platform/User.h"
#include "runtime/Error.h"

namespace vantor::host::test {
namespace {

using FormFileTest = HostTest;

constexpr char kHeader[] = "Vantor Form 1\nBegin Form Form1\n";

TEST_F(FormFileTest, WritesReadableText) {
  Form form;
  Probe& p = dynamic_cast<Probe&>(*form.Add("HostProbe", u"Button1", 120, 120, 1200, 375));
  p.put_Caption(u"Ok");
  p.put_Data({0x01, 0xAB, 0xFF});
  ASSERT_NE(form.Add("HostProbe", u"Plain", 0, 600), nullptr);
  const std::string expected =
      "Vantor Form 1\n"
      "Begin Form Form1\n"
      "  Caption = String \"Form1\"\n"
      "  ScaleMode = Integer 1\n"
      "  ClientWidth = Long 320\n"
      "  ClientHeight = Long 240\n"
      "  BackColor = Long -2147483633\n"
      "  ForeColor = Long -2147483630\n"
      "  Font = Font {Name \"MS Sans Serif\"; Size 8.25; Bold 0; Weight 400; Italic 0; "
      "Underline 0; Strikethrough 0; Charset 0}\n"
      "  Begin HostProbe Button1\n"
      "    Left = Single 120\n"
      "    Top = Single 120\n"
      "    Width = Single 1200\n"
      "    Height = Single 375\n"
      "    TabIndex = Integer 0\n"
      "    TabStop = Boolean -1\n"
      "    Visible = Boolean -1\n"
      "    Enabled = Boolean -1\n"
      "    Begin Properties\n"
      "      Caption = String \"Ok\"\n"
      "      Data = Bytes 3 01ABFF\n"
      "    End\n"
      "  End\n"
      "  Begin HostProbe Plain\n"
      "    Left = Single 0\n"
      "    Top = Single 600\n"
      "    Width = Single 1200\n"
      "    Height = Single 375\n"
      "    TabIndex = Integer 1\n"
      "    TabStop = Boolean -1\n"
      "    Visible = Boolean -1\n"
      "    Enabled = Boolean -1\n"
      "  End\n"
      "End\n";
  EXPECT_EQ(form.Save(), expected);
  // Saving asks each control for a fresh bag.
  EXPECT_EQ(JournalOf("Button1").back(), "WriteProperties");
}

TEST_F(FormFileTest, ControlDesignedThenLoadedInRunModeKeepsEveryValue) {
  auto designed = std::make_shared<Form>(400, 300, u"Cadastro");
  ASSERT_FALSE(designed->UserMode());
  designed->SetCaption(u"Cadastro de clientes \u2014 a\u00e7\u00e3o");
  ASSERT_TRUE(designed->SetScaleMode(server::vbPixels));
  server::StdFont formFont;
  formFont.put_Name(u"Tahoma");
  designed->SetFont(formFont);
  designed->SetBackColor(0x00F0E0D0);
  server::UserControl* frame = designed->Add("HostProbe", u"Frame1", 10, 10, 300, 200);
  Probe& p = dynamic_cast<Probe&>(*designed->Add("HostProbe", u"Save1", 8, 16, 100, 33, u"Frame1"));
  ASSERT_NE(frame, nullptr);
  // Every property set through the object model, as a designer's property list does.
  auto font = std::make_shared<server::StdFont>();
  font->put_Name(u"Segoe UI");
  font->put_Size(Currency::FromRaw(97500));
  font->put_Bold(true);
  font->put_Italic(true);
  font->put_Charset(1);
  struct Put {
    const char* name;
    Variant value;
  } puts[] = {
      {"Caption", Variant(String(u"&Salvar \"já\"\n"))},
      {"Value", Variant(int32_t{-42})},
      {"Ratio", Variant(0.1)},
      {"Checked", Variant(true)},
      {"BackColor", Variant(int32_t{0x00C0FFEE})},
      {"Font", Variant(ObjectPtr(font))},
      {"Data", Variant(std::vector<uint8_t>{0, 1, 2, 0x7F, 0x80, 0xFF})},
      {"Amount", Variant(Currency::FromRaw(123456))},
      {"Stamp", Variant(Date(45000.75))},
      {"Style", Variant(int16_t{-3})},
  };
  for (Put& put : puts) {
    std::vector<Variant> args = {put.value};
    const auto kind =
        put.value.IsObject() ? server::InvokeKind::PropertyPutRef : server::InvokeKind::PropertyPut;
    ASSERT_TRUE(p.Invoke(put.name, kind, args)) << put.name << ": " << ToUtf8(Err().Description());
  }
  EXPECT_EQ(p.AccessKeys(), u"S");
  frame->GetExtender()->SetEnabled(false);
  ASSERT_NE(designed->Add("HostProbe", u"Hidden"), nullptr);
  designed->Site(u"Hidden")->SetVisible(false);
  designed->Site(u"Hidden")->SetTabStop(false);
  ASSERT_TRUE(designed->SetTabIndex(u"Hidden", 0));
  const std::string text = designed->Save();

  auto running = std::make_shared<Form>();
  ASSERT_TRUE(running->Load(text, true)) << ToUtf8(Err().Description());
  EXPECT_TRUE(running->UserMode());
  EXPECT_EQ(running->Name(), u"Cadastro");
  EXPECT_EQ(running->Caption(), designed->Caption());
  EXPECT_EQ(running->ScaleMode(), server::vbPixels);
  EXPECT_EQ(running->ClientWidth(), 400);
  EXPECT_EQ(running->ClientHeight(), 300);
  EXPECT_EQ(running->BackColor(), 0x00F0E0D0u);
  EXPECT_EQ(*running->Font(), formFont);
  ASSERT_EQ(running->Count(), 3u);

  Probe& q = ProbeOf(*running, u"Save1");
  EXPECT_EQ(ExpectSameProperties(p, q), 10);
  EXPECT_TRUE(q.get_UserModeSeen());
  EXPECT_EQ(q.AccessKeys(), u"S");
  EXPECT_EQ(*q.get_Font(), *font);
  for (const char16_t* name : {u"Frame1", u"Save1", u"Hidden"}) {
    const FormSite& a = *designed->Site(name);
    const FormSite& b = *running->Site(name);
    EXPECT_EQ(a.Left(), b.Left()) << ToUtf8(name);
    EXPECT_EQ(a.Top(), b.Top());
    EXPECT_EQ(a.Width(), b.Width());
    EXPECT_EQ(a.Height(), b.Height());
    EXPECT_EQ(a.TabIndex(), b.TabIndex());
    EXPECT_EQ(a.TabStop(), b.TabStop());
    EXPECT_EQ(a.Visible(), b.Visible());
    EXPECT_EQ(a.Enabled(), b.Enabled());
    EXPECT_EQ(b.Control().ScaleWidth(), a.Control().ScaleWidth());
  }
  EXPECT_EQ(GetParent(q.hWnd()), running->Control(u"Frame1")->hWnd());
  EXPECT_EQ(running->TabOrder(), designed->TabOrder());
  // Saved again, the text is the same to the byte.
  EXPECT_EQ(running->Save(), text);
  // Non-ASCII text is escaped: the file is plain ASCII, and so UTF-8.
  EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; }));
}

TEST_F(FormFileTest, ControlFromABagWithoutKeysIsANewControl) {
  Form designed;
  ASSERT_NE(designed.Add("HostProbe", u"Fresh", 0, 0), nullptr);
  Form loaded;
  const std::string text = std::string(kHeader) + "  Begin HostProbe Fresh\n  End\nEnd\n";
  ASSERT_TRUE(loaded.Load(text, false)) << ToUtf8(Err().Description());
  Probe& fresh = ProbeOf(designed, u"Fresh");
  Probe& read = ProbeOf(loaded, u"Fresh");
  EXPECT_EQ(ExpectSameProperties(fresh, read), 10);
  EXPECT_EQ(JournalOf("Fresh"),
            (std::vector<std::string>{"Initialize", "InitProperties", "Resize 80x25", "Initialize",
                                      "ReadProperties", "Resize 80x25"}));
  // A new control writes nothing but what differs from its defaults: nothing.
  EXPECT_EQ(designed.Save().find("Begin Properties"), std::string::npos);
  // The form's own keys take their defaults too.
  EXPECT_EQ(loaded.Caption(), u"Form1");
  EXPECT_EQ(loaded.ScaleMode(), server::vbTwips);
  EXPECT_EQ(loaded.ClientWidth(), 320);
  EXPECT_EQ(*loaded.Font(), server::StdFont());
}

TEST_F(FormFileTest, LoadsInTheModeAsked) {
  Form designed;
  ASSERT_NE(designed.Add("HostProbe", u"A"), nullptr);
  const std::string text = designed.Save();
  for (bool userMode : {false, true}) {
    Form form;
    form.SetUserMode(!userMode);
    ASSERT_TRUE(form.Load(text, userMode));
    EXPECT_EQ(form.UserMode(), userMode);
    EXPECT_EQ(ProbeOf(form, u"A").get_UserModeSeen(), userMode);
    EXPECT_EQ(ProbeOf(form, u"A").Ambient().UserMode, userMode);
  }
}

TEST_F(FormFileTest, LoadReplacesTheControlsOfAShownForm) {
  Form form(320, 240);
  form.SetUserMode(true);
  ASSERT_NE(form.Add("HostProbe", u"Old"), nullptr);
  form.Show();
  const std::string text = std::string(kHeader) +
                           "  Begin HostProbe New\n    Visible = Boolean 0\n  End\n"
                           "  Begin HostProbe Seen\n  End\nEnd\n";
  Journal().clear();
  ASSERT_TRUE(form.Load(text, true));
  EXPECT_EQ(Journal(), (std::vector<std::string>{
                           "New: Initialize", "New: ReadProperties", "New: Resize 80x25",
                           "Seen: Initialize", "Seen: ReadProperties", "Seen: Resize 80x25",
                           "Old: Terminate", "Seen: Show", "Seen: GotFocus"}));
  EXPECT_EQ(form.Control(u"Old"), nullptr);
  EXPECT_FALSE(IsWindowVisible(form.Control(u"New")->hWnd()));
  EXPECT_TRUE(IsWindowVisible(form.Control(u"Seen")->hWnd()));
  EXPECT_FALSE(form.Changed());
  // Shown later, it has its Show then.
  Journal().clear();
  form.Site(u"New")->SetVisible(true);
  EXPECT_EQ(Journal(), (std::vector<std::string>{"New: Show"}));
}

TEST_F(FormFileTest, MalformedFilesAreRefusedWholeWithTheLineNamed) {
  const std::string good =
      "  Begin HostProbe Good\n    Begin Properties\n      Value = Long 7\n"
      "    End\n  End\n";  // lines 3 to 7
  struct Case {
    std::string text;
    int line;
    const char* mention;
  } cases[] = {
      {"", 1, "empty file"},
      {"Hello\n", 1, "not a form file: expected 'Vantor Form 1'"},
      {"Vantor Form 2\nBegin Form F\nEnd\n", 1, "version '2'"},
      {"Vantor Form 1\n", 2, "expected 'Begin Form <name>'"},
      {"Vantor Form 1\nBegin Frm F\nEnd\n", 2, "expected 'Begin Form <name>'"},
      {"Vantor Form 1\n\nBegin Form 9F\nEnd\n", 3, "'9F' is not a valid name"},
      {kHeader + good + "  Begin Bogus B1\n  End\nEnd\n", 8, "unknown class 'Bogus'"},
      {kHeader + good + "  Begin HostService S\n  End\nEnd\n", 8, "'HostService' is not a control"},
      {kHeader + good + "  Begin HostImpostor I\n  End\nEnd\n", 8, "derived from UserControl"},
      {kHeader + good + "  Begin HostProbe A\n    Left 120\n  End\nEnd\n", 9, "missing '='"},
      {kHeader + good + "  Begin HostProbe A\n    Left = Single\n  End\nEnd\n", 9, ""},
      {kHeader + good + "  Begin HostProbe A\n    Left = String \"x\"\n  End\nEnd\n", 9,
       "Left must be a number, not String"},
      {kHeader + good + "  Begin HostProbe A\n    Width = Single -5\n  End\nEnd\n", 9,
       "Width is out of range"},
      {kHeader + good + "  Begin HostProbe A\n    TabIndex = Integer -1\n  End\nEnd\n", 9,
       "TabIndex must be a whole number from 0 to 32767"},
      {kHeader + good + "  Begin HostProbe A\n    Visible = Long 1\n  End\nEnd\n", 9,
       "Visible must be Boolean, not Long"},
      {kHeader + good +
           "  Begin HostProbe A\n    Left = Single 1\n    left = Single 2\n  End\nEnd\n",
       10, "'left' is given twice (also on line 9)"},
      {kHeader + good + "  Begin HostProbe A\n    Caption = String \"x\"\n  End\nEnd\n", 9,
       "unknown key 'Caption' for A; the control's own properties belong in its Properties block"},
      {kHeader + good +
           "  Begin HostProbe A\n    Begin Properties\n      Caption = String \"x\n"
           "    End\n  End\nEnd\n",
       10, ""},
      {kHeader + good +
           "  Begin HostProbe A\n    Begin Properties\n      V = Long 1\n"
           "      v = Long 2\n    End\n  End\nEnd\n",
       11, "'v' is given twice (also on line 10)"},
      {kHeader + good +
           "  Begin HostProbe A\n    Begin Properties\n    End\n    Begin Properties\n"
           "    End\n  End\nEnd\n",
       11, "a second Properties block for A (the first is on line 9)"},
      {kHeader + good + "  Begin HostProbe A\n    Begin Properties\n      Begin HostProbe B\n", 10,
       "'Begin' inside a Properties block"},
      {kHeader + good + "  Begin Properties\n  End\nEnd\n", 8,
       "'Begin Properties' belongs inside a control's block"},
      {kHeader + good + "  Begin HostProbe good\n  End\nEnd\n", 8,
       "a control named 'good' is already on the form (line 3)"},
      {kHeader + good + "  Begin HostProbe A\n    Begin HostProbe good\n    End\n  End\nEnd\n", 9,
       "a control named 'good' is already on the form"},
      {kHeader + good + "  Begin HostProbe\n  End\nEnd\n", 8, "expected 'Begin <class> <name>'"},
      {kHeader + good + "  Begin Host-Probe A\n  End\nEnd\n", 8,
       "'Host-Probe' is not a class name"},
      {kHeader + good + "  Begin HostProbe A\n  End\n", 9,
       "the file ends inside the block begun on line 2 ('Begin Form Form1'): 'End' is missing"},
      {kHeader + good + "  Begin HostProbe A\n\n", 9, "begun on line 8 ('Begin HostProbe A')"},
      {kHeader + good + "End\nEnd\n", 9, "text after the form's closing 'End'"},
      {kHeader + good + "  End Sub\nEnd\n", 8, "unexpected text after 'End'"},
      {kHeader + std::string("  ScaleMode = Integer 2\nEnd\n"), 3,
       "ScaleMode must be 1 (twips) or 3"},
      {kHeader + std::string("  ClientWidth = Long 0\nEnd\n"), 3, "ClientWidth must be a whole"},
      {kHeader + std::string("  Font = String \"Arial\"\nEnd\n"), 3,
       "Font must be Font, not String"},
      {kHeader + std::string("  Caption = Long 1\nEnd\n"), 3, "Caption must be String"},
      {kHeader + std::string("  Colour = Long 1\nEnd\n"), 3, "unknown key 'Colour' for the form"},
  };
  auto form = std::make_shared<Form>(300, 200, u"Antes");
  form->SetCaption(u"Antes de carregar");
  form->SetUserMode(true);
  Probe& kept = dynamic_cast<Probe&>(*form->Add("HostProbe", u"Keep"));
  kept.put_Caption(u"kept");
  const HWND keptWindow = kept.hWnd();
  const std::string before = form->Save();
  const size_t windowsBefore = [&] {
    size_t n = 0;
    for (HWND h = GetWindow(form->hWnd(), GW_CHILD); h; h = GetWindow(h, GW_HWNDNEXT)) ++n;
    return n;
  }();
  for (const Case& c : cases) {
    Err().Clear();
    Journal().clear();
    EXPECT_FALSE(form->Load(c.text, false)) << c.text;
    const std::string what = ToUtf8(Err().Description());
    EXPECT_EQ(Err().Number(), errBadFileFormat) << what;
    EXPECT_EQ(what.rfind("line " + std::to_string(c.line) + ": ", 0), 0u) << what;
    EXPECT_NE(what.find(c.mention), std::string::npos) << what;
    // The form is as it was: the same control, window, settings and mode.
    EXPECT_EQ(form->Save(), before) << c.text;
    EXPECT_EQ(form->Control(u"Keep"), &kept);
    EXPECT_EQ(kept.hWnd(), keptWindow);
    EXPECT_TRUE(form->UserMode());
    EXPECT_TRUE(JournalOf("Keep") == std::vector<std::string>{"WriteProperties"}) << c.text;
    size_t windows = 0;
    for (HWND h = GetWindow(form->hWnd(), GW_CHILD); h; h = GetWindow(h, GW_HWNDNEXT)) ++windows;
    EXPECT_EQ(windows, windowsBefore);
  }
  // The control made before the impostor was met went again, and was told so.
  Journal().clear();
  EXPECT_FALSE(form->Load(cases[8].text, true));
  EXPECT_EQ(JournalOf("Good"), (std::vector<std::string>{"Initialize", "ReadProperties",
                                                         "Resize 80x25", "Terminate"}));
}

TEST_F(FormFileTest, FilesOnDisk) {
  const std::string path = ::testing::TempDir() + "host_form_test.vfm";
  Form form;
  ASSERT_NE(form.Add("HostProbe", u"A"), nullptr);
  ProbeOf(form, u"A").put_Caption(u"Ol\u00e1, &mundo");
  ASSERT_TRUE(form.SaveFile(path));
  Form again;
  ASSERT_TRUE(again.LoadFile(path, true)) << ToUtf8(Err().Description());
  EXPECT_EQ(ProbeOf(again, u"A").get_Caption(), u"Ol\u00e1, &mundo");
  EXPECT_EQ(ProbeOf(again, u"A").AccessKeys(), u"m");
  {
    std::ofstream bad(path, std::ios::binary | std::ios::trunc);
    bad << "Vantor Form 1\nBegin Form F\n  Begin Nope N\n  End\nEnd\n";
  }
  EXPECT_FALSE(again.LoadFile(path, true));
  EXPECT_EQ(ToUtf8(Err().Description()), path + ": line 3: unknown class 'Nope'");
  EXPECT_NE(again.Control(u"A"), nullptr);
  std::remove(path.c_str());
  EXPECT_FALSE(again.LoadFile(path, true));
  EXPECT_EQ(Err().Number(), errFileNotFound);
  EXPECT_FALSE(form.SaveFile(::testing::TempDir() + "no/such/folder/x.vfm"));
  EXPECT_EQ(Err().Number(), errFileAccess);
}

TEST_F(FormFileTest, ReaderAcceptsWhatWritersVary) {
  // A byte-order mark, CRLF line ends, blank lines, tabs and keys in any case.
  const std::string text =
      "\xEF\xBB\xBFVantor Form 1\r\n\r\nBegin Form F\r\n\tclientwidth = Integer 200\r\n"
      "\tBegin HostProbe A\r\n\t\tTOP = Long 30\r\n\r\n\t\tBegin Properties\r\n"
      "\t\t\tValue = Long 5\r\n\t\tEnd\r\n\tEnd\r\nEnd\r\n\r\n";
  String error;
  std::optional<FormDescription> d = FormFile::Read(text, &error);
  ASSERT_TRUE(d) << ToUtf8(error);
  EXPECT_EQ(d->name, u"F");
  EXPECT_EQ(d->clientWidth, 200);
  ASSERT_EQ(d->controls.size(), 1u);
  EXPECT_EQ(d->controls[0].top, 30.0f);
  EXPECT_EQ(d->controls[0].line, 5u);
  EXPECT_EQ(d->controls[0].width, -1.0f);
  EXPECT_EQ(d->controls[0].properties.ReadProperty(u"Value").ToLong(), 5);
  // A key may be called Begin or End; it has its '='.
  d = FormFile::Read(
      "Vantor Form 1\nBegin Form F\n  Begin HostProbe A\n    Begin Properties\n"
      "      End = Long 1\n      Begin = Long 2\n    End\n  End\nEnd\n",
      &error);
  ASSERT_TRUE(d) << ToUtf8(error);
  EXPECT_EQ(d->controls[0].properties.ReadProperty(u"Begin").ToLong(), 2);
  for (const char16_t* name : {u"A", u"a_1", u"Z9"}) EXPECT_TRUE(FormFile::IsValidName(name));
  for (const char16_t* name : {u"", u"_a", u"9a", u"a b", u"a-b", u"\u00e7a"})
    EXPECT_FALSE(FormFile::IsValidName(name)) << ToUtf8(name);
  EXPECT_FALSE(FormFile::IsValidName(String(41, u'a')));
}

}  // namespace
}  // namespace vantor::host::test
