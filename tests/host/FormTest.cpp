// The form as a container: making controls by class name, naming, placing
// them in twips or pixels, the ambient properties they read, modes,
// contained controls and removal.
#include "host/Form.h"

#include "Probe.h"
#include "platform/User.h"
#include "runtime/Error.h"
#include "server/Registry.h"

namespace vantor::host::test {
namespace {

using FormTest = HostTest;

// The control's window rectangle in its parent's client coordinates.
RECT PlacedAt(HWND hwnd) {
  RECT r;
  GetWindowRect(hwnd, &r);
  MapWindowPoints(nullptr, GetParent(hwnd), reinterpret_cast<POINT*>(&r), 2);
  return r;
}

TEST_F(FormTest, MakesControlsByClassNameWithNamesOfTheirOwn) {
  auto form = std::make_shared<Form>();
  ASSERT_NE(form->hWnd(), nullptr);
  EXPECT_FALSE(form->UserMode());
  EXPECT_EQ(form->Caption(), u"Form1");
  EXPECT_EQ(form->ClientWidth(), 320);
  EXPECT_EQ(form->ClientHeight(), 240);
  RECT client;
  GetClientRect(form->hWnd(), &client);
  EXPECT_EQ(client.right, 320);
  EXPECT_EQ(client.bottom, 240);
  EXPECT_NE(GetWindowLongW(form->hWnd(), GWL_STYLE) & static_cast<LONG>(WS_CAPTION), 0);

  server::UserControl* first = form->Add("HostProbe");
  server::UserControl* second = form->Add("hostprobe");
  server::UserControl* named = form->Add("Vantor2014.HostProbe", u"Ok");
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  ASSERT_NE(named, nullptr);
  EXPECT_EQ(form->Count(), 3u);
  EXPECT_EQ(first->GetExtender()->Name(), u"HostProbe1");
  EXPECT_EQ(second->GetExtender()->Name(), u"HostProbe2");
  EXPECT_EQ(form->Control(u"OK"), named);
  // A new control takes its name for its caption (ambient DisplayName).
  EXPECT_EQ(dynamic_cast<Probe*>(first)->get_Caption(), u"HostProbe1");
  EXPECT_EQ(dynamic_cast<Probe*>(named)->get_Caption(), u"Ok");
  EXPECT_EQ(GetParent(named->hWnd()), form->hWnd());
  // The first free number is taken again once its control is gone.
  ASSERT_TRUE(form->Remove(u"HostProbe1"));
  server::UserControl* again = form->Add("HostProbe");
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(again->GetExtender()->Name(), u"HostProbe1");
  EXPECT_EQ(form->Controls().back(), again);
  // The extender's parent is the form.
  EXPECT_EQ(named->GetExtender()->Parent(), form);
}

TEST_F(FormTest, RefusesWhatCannotBePlacedAndSaysWhy) {
  Form form;
  ASSERT_NE(form.Add("HostProbe", u"Ok"), nullptr);
  struct Case {
    const char* className;
    const char16_t* name;
    const char16_t* container;
    int32_t error;
    const char* mention;
  } cases[] = {
      {"NoSuchClass", u"", u"", errFormCannotCreate, "unknown class 'NoSuchClass'"},
      {"HostService", u"", u"", errFormCannotCreate, "'HostService' is not a control"},
      {"HostImpostor", u"", u"", errFormCannotCreate, "only classes derived from UserControl"},
      {"VT", u"", u"", errFormCannotCreate, "'VT' is not a control"},
      {"HostProbe", u"OK", u"", errNameInUse, "already a control named 'OK' on Form1"},
      {"HostProbe", u"1abc", u"", errInvalidPropertyValue, "'1abc' is not a valid control name"},
      {"HostProbe", u"two words", u"", errInvalidPropertyValue, "not a valid control name"},
      {"HostProbe", u"Inner", u"Nope", errControlNotFound, "no control named 'Nope'"},
  };
  for (const Case& c : cases) {
    Err().Clear();
    EXPECT_EQ(form.Add(c.className, c.name, 0, 0, -1, -1, c.container), nullptr) << c.className;
    EXPECT_EQ(Err().Number(), c.error) << c.className;
    EXPECT_NE(ToUtf8(Err().Description()).find(c.mention), std::string::npos)
        << ToUtf8(Err().Description());
    EXPECT_EQ(form.Count(), 1u);
  }
  // A control the library lists but has not built yet is refused as such.
  for (const server::ClassInfo& info : server::TypeLibrary::Get().Classes()) {
    if (info.kind != server::ClassKind::Control ||
        server::Registry::Instance().IsImplemented(info.name))
      continue;
    EXPECT_EQ(form.Add(info.name), nullptr);
    EXPECT_NE(ToUtf8(Err().Description()).find("not built into this library yet"),
              std::string::npos);
    break;
  }
  EXPECT_FALSE(form.Remove(u"Nope"));
  EXPECT_EQ(Err().Number(), errControlNotFound);
}

TEST_F(FormTest, PlacesInTheScaleModeAndTellsTheControlTwips) {
  struct Case {
    int16_t scaleMode;
    float left, top, width, height;  // in the form's units
    RECT pixels;                     // where the window lands
    float twipsLeft, twipsWidth;     // what the extender says
  } cases[] = {
      {server::vbTwips, 120, 120, 1200, 375, {8, 8, 88, 33}, 120, 1200},
      {server::vbPixels, 8, 8, 80, 25, {8, 8, 88, 33}, 120, 1200},
      {server::vbTwips, 0, 1500, 1207, 22, {0, 100, 80, 101}, 0, 1207},   // rounded to the pixel
      {server::vbPixels, 1.5f, 0, 0.5f, 10, {2, 0, 2, 10}, 22.5f, 7.5f},  // halves go to even
  };
  for (const Case& c : cases) {
    Form form;
    ASSERT_TRUE(form.SetScaleMode(c.scaleMode));
    server::UserControl* p = form.Add("HostProbe", u"P", c.left, c.top, c.width, c.height);
    ASSERT_NE(p, nullptr);
    const RECT r = PlacedAt(p->hWnd());
    EXPECT_EQ(r.left, c.pixels.left) << c.scaleMode << " " << c.left;
    EXPECT_EQ(r.top, c.pixels.top);
    EXPECT_EQ(r.right, c.pixels.right);
    EXPECT_EQ(r.bottom, c.pixels.bottom);
    EXPECT_EQ(p->ScaleWidth(), c.pixels.right - c.pixels.left);
    EXPECT_FLOAT_EQ(p->GetExtender()->Left(), c.twipsLeft);
    EXPECT_FLOAT_EQ(p->GetExtender()->Width(), c.twipsWidth);
    EXPECT_FLOAT_EQ(p->GetExtender()->Top(), form.ToTwips(c.top));
  }
  Form form;
  EXPECT_FLOAT_EQ(form.ScaleWidth(), 320 * 15.0f);
  ASSERT_TRUE(form.SetScaleMode(server::vbPixels));
  EXPECT_FLOAT_EQ(form.ScaleWidth(), 320.0f);
  EXPECT_FALSE(form.SetScaleMode(2));
  EXPECT_EQ(Err().Number(), errInvalidPropertyValue);
  EXPECT_EQ(form.ScaleMode(), server::vbPixels);

  // Without a size, 1200 x 375 twips; the control moving itself moves its window.
  server::UserControl* p = form.Add("HostProbe");
  ASSERT_NE(p, nullptr);
  EXPECT_FLOAT_EQ(p->GetExtender()->Width(), 1200);
  EXPECT_FLOAT_EQ(p->GetExtender()->Height(), 375);
  p->GetExtender()->SetWidth(1500);
  EXPECT_EQ(p->ScaleWidth(), 100);
  ASSERT_TRUE(form.Move(u"HostProbe1", 10, 20, 30, 40));
  EXPECT_EQ(PlacedAt(p->hWnd()).top, 20);
  EXPECT_FLOAT_EQ(p->GetExtender()->Top(), 300);
  EXPECT_EQ(p->ScaleHeight(), 40);
}

TEST_F(FormTest, EachControlHasItsOwnCopyOfTheAmbientFont) {
  Form form;
  Probe& a = dynamic_cast<Probe&>(*form.Add("HostProbe", u"A"));
  Probe& b = dynamic_cast<Probe&>(*form.Add("HostProbe", u"B"));
  EXPECT_EQ(form.Font()->get_Name(), u"MS Sans Serif");
  EXPECT_EQ(a.get_Font()->get_Name(), u"MS Sans Serif");
  EXPECT_EQ(*a.get_Font(), *form.Font());
  EXPECT_NE(a.get_Font(), form.Font());
  EXPECT_NE(a.get_Font(), b.get_Font());
  a.get_Font()->put_Bold(true);
  a.get_Font()->put_Size(Currency::FromRaw(120000));
  EXPECT_FALSE(form.Font()->get_Bold());
  EXPECT_FALSE(b.get_Font()->get_Bold());
  EXPECT_EQ(*b.get_Font(), *form.Font());

  const server::AmbientProperties ambient = a.Ambient();
  EXPECT_EQ(ambient.DisplayName, u"A");
  EXPECT_EQ(ambient.BackColor, form.BackColor());
  EXPECT_EQ(ambient.ForeColor, form.ForeColor());
  EXPECT_EQ(ambient.ScaleMode, server::vbTwips);
  EXPECT_FALSE(ambient.UserMode);
}

TEST_F(FormTest, ChangingAmbientPropertiesTellsEveryControl) {
  Form form;
  ASSERT_NE(form.Add("HostProbe", u"A"), nullptr);
  ASSERT_NE(form.Add("HostProbe", u"B"), nullptr);
  Journal().clear();
  form.SetUserMode(true);
  form.SetUserMode(true);  // no change, nothing told
  EXPECT_TRUE(ProbeOf(form, u"A").Ambient().UserMode);
  server::StdFont tahoma;
  tahoma.put_Name(u"Tahoma");
  form.SetFont(tahoma);
  form.SetBackColor(0x00FFFFFF);
  form.SetScaleMode(server::vbPixels);
  form.SetUserMode(false);
  const std::vector<std::string> expected = {
      "A: AmbientChanged UserMode",  "B: AmbientChanged UserMode",  "A: AmbientChanged Font",
      "B: AmbientChanged Font",      "A: AmbientChanged BackColor", "B: AmbientChanged BackColor",
      "A: AmbientChanged ScaleMode", "B: AmbientChanged ScaleMode", "A: AmbientChanged UserMode",
      "B: AmbientChanged UserMode"};
  EXPECT_EQ(Journal(), expected);
  EXPECT_EQ(ProbeOf(form, u"B").Ambient().Font->get_Name(), u"Tahoma");
  EXPECT_FALSE(ProbeOf(form, u"B").Ambient().UserMode);
  // Renaming a control changes the name it is shown by.
  ASSERT_TRUE(form.Rename(u"A", u"Alpha"));
  EXPECT_EQ(Journal().back(), "Alpha: AmbientChanged DisplayName");
  EXPECT_EQ(ProbeOf(form, u"Alpha").Ambient().DisplayName, u"Alpha");
  EXPECT_FALSE(form.Rename(u"Alpha", u"b"));
  EXPECT_EQ(Err().Number(), errNameInUse);
}

TEST_F(FormTest, ContainersHoldControlsAndGoWithThem) {
  Form form;
  server::UserControl* frame = form.Add("HostProbe", u"Frame1", 60, 60, 3000, 2000);
  server::UserControl* inner = form.Add("HostProbe", u"Inner", 150, 150, 600, 300, u"frame1");
  server::UserControl* deeper = form.Add("HostProbe", u"Deeper", 15, 15, 150, 150, u"Inner");
  ASSERT_NE(inner, nullptr);
  ASSERT_NE(deeper, nullptr);
  EXPECT_EQ(GetParent(inner->hWnd()), frame->hWnd());
  EXPECT_EQ(PlacedAt(inner->hWnd()).left, 10);  // relative to the container
  const std::vector<ObjectPtr> held = frame->ContainedControls();
  ASSERT_EQ(held.size(), 1u);
  EXPECT_EQ(held[0].get(), inner);
  EXPECT_TRUE(deeper->ContainedControls().empty());
  ASSERT_NE(form.Add("HostProbe", u"Outside"), nullptr);

  Journal().clear();
  ASSERT_TRUE(form.Remove(u"FRAME1"));
  const std::vector<std::string> expected = {"Deeper: Terminate", "Inner: Terminate",
                                             "Frame1: Terminate"};
  EXPECT_EQ(Journal(), expected);
  EXPECT_EQ(form.Count(), 1u);
  EXPECT_EQ(form.TabIndex(u"Outside"), 0);
  EXPECT_EQ(form.Control(u"Inner"), nullptr);
}

TEST_F(FormTest, ChangesAreNoticed) {
  Form form;
  EXPECT_FALSE(form.Changed());
  Probe& p = dynamic_cast<Probe&>(*form.Add("HostProbe"));
  EXPECT_TRUE(form.Changed());
  form.Save();
  EXPECT_FALSE(form.Changed());
  p.put_Value(3);  // the control reports it (PropertyChanged)
  EXPECT_TRUE(form.Changed());
  form.Save();
  p.put_Value(3);  // no change, no report
  EXPECT_FALSE(form.Changed());
  p.GetExtender()->SetVisible(false);
  EXPECT_TRUE(form.Changed());
}

TEST_F(FormTest, TabIndexesStayAPermutation) {
  Form form;
  for (const char16_t* n : {u"A", u"B", u"C", u"D"}) ASSERT_NE(form.Add("HostProbe", n), nullptr);
  EXPECT_EQ(form.TabOrder(), (std::vector<String>{u"A", u"B", u"C", u"D"}));
  ASSERT_TRUE(form.SetTabIndex(u"D", 0));
  EXPECT_EQ(form.TabOrder(), (std::vector<String>{u"D", u"A", u"B", u"C"}));
  ASSERT_TRUE(form.SetTabIndex(u"D", 99));  // past the end: the last place
  EXPECT_EQ(form.TabOrder(), (std::vector<String>{u"A", u"B", u"C", u"D"}));
  ASSERT_TRUE(form.SetTabIndex(u"A", 2));
  EXPECT_EQ(form.TabOrder(), (std::vector<String>{u"B", u"C", u"A", u"D"}));
  EXPECT_EQ(form.TabIndex(u"A"), 2);
  ASSERT_TRUE(form.Remove(u"C"));
  EXPECT_EQ(form.TabIndex(u"A"), 1);
  EXPECT_EQ(form.TabIndex(u"D"), 2);
  EXPECT_EQ(form.TabIndex(u"C"), -1);
  EXPECT_FALSE(form.SetTabIndex(u"A", -1));
}

}  // namespace
}  // namespace vantor::host::test
