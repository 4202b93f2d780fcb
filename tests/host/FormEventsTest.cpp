// What a control is told by its form and in what order, and the control's
// own events reaching the program through the form.
#include <string>
#include <vector>

#include "Probe.h"
#include "host/Form.h"
#include "platform/User.h"

namespace vantor::host::test {
namespace {

class FormEventsTest : public HostTest {
 protected:
  void ClickOn(server::UserControl* control) {
    RECT r;
    GetWindowRect(control->hWnd(), &r);
    screen_.Click((r.left + r.right) / 2, (r.top + r.bottom) / 2);
  }
  // Each event as "Control Event arg arg...".
  uint32_t Listen(Form& form, std::vector<std::string>& heard) {
    return form.Subscribe(
        [&heard](const String& control, const server::MemberInfo& event, std::span<Variant> args) {
          std::string line = ToUtf8(control) + " " + std::string(event.name);
          for (const Variant& a : args) line += " " + ToUtf8(a.Deref().ToString());
          heard.push_back(line);
        });
  }
};

TEST_F(FormEventsTest, ContainerEventsArriveInTheirOrder) {
  Form form;
  form.SetUserMode(true);
  ASSERT_NE(form.Add("HostProbe", u"A", 0, 0, 1200, 375), nullptr);
  EXPECT_EQ(JournalOf("A"),
            (std::vector<std::string>{"Initialize", "InitProperties", "Resize 80x25"}));
  form.Show();
  EXPECT_EQ(JournalOf("A"), (std::vector<std::string>{"Initialize", "InitProperties",
                                                      "Resize 80x25", "Show", "GotFocus"}));
  // Added to a shown form, a control is shown at once; shown twice, told once.
  ASSERT_NE(form.Add("HostProbe", u"B"), nullptr);
  form.Hide();
  form.Show();
  EXPECT_EQ(JournalOf("B"),
            (std::vector<std::string>{"Initialize", "InitProperties", "Resize 80x25", "Show"}));
  Journal().clear();
  form.Site(u"A")->SetWidth(1500);
  form.Site(u"A")->SetWidth(1500);  // the same size: no Resize
  form.SetUserMode(false);
  form.Save();
  ASSERT_TRUE(form.Remove(u"A"));
  EXPECT_EQ(JournalOf("A"), (std::vector<std::string>{"Resize 100x25", "AmbientChanged UserMode",
                                                      "WriteProperties", "Terminate"}));
}

TEST_F(FormEventsTest, LoadedControlsAreReadNotInitialised) {
  Form designed;
  ASSERT_NE(designed.Add("HostProbe", u"A"), nullptr);
  ASSERT_NE(designed.Add("HostProbe", u"B", 0, 0, -1, -1, u"A"), nullptr);
  const std::string text = designed.Save();
  Journal().clear();
  Form form;
  form.Show();
  ASSERT_TRUE(form.Load(text, true));
  // The container is read before what it holds is made; Show comes once all stand.
  EXPECT_EQ(Journal(),
            (std::vector<std::string>{"A: Initialize", "A: ReadProperties", "A: Resize 80x25",
                                      "B: Initialize", "B: ReadProperties", "B: Resize 80x25",
                                      "A: Show", "B: Show", "A: GotFocus"}));
}

TEST_F(FormEventsTest, EventsReachTheProgramAndByReferenceArgumentsComeBack) {
  Form form;
  form.SetUserMode(true);
  Probe& a = dynamic_cast<Probe&>(*form.Add("HostProbe", u"A", 0, 0));
  Probe& b = dynamic_cast<Probe&>(*form.Add("HostProbe", u"B", 1500, 0));
  form.Show();
  std::vector<std::string> heard;
  const uint32_t cookie = Listen(form, heard);
  // The program turns a small "a" into a capital.
  form.Subscribe([](const String&, const server::MemberInfo& event, std::span<Variant> args) {
    if (event.name == "KeyPress" && args[0].Deref().ToInteger() == 'a')
      args[0].Assign(Variant(int16_t{'A'}));
  });

  ClickOn(&b);
  EXPECT_EQ(heard, (std::vector<std::string>{"B Click"}));
  screen_.Type(u"a");
  EXPECT_EQ(b.LastKey(), 'A');
  screen_.Type(u"b");
  EXPECT_EQ(b.LastKey(), 'b');
  EXPECT_EQ(heard, (std::vector<std::string>{"B Click", "B KeyPress 97", "B KeyPress 98"}));
  // An access key is a click for this control, and the program hears it.
  a.put_Caption(u"&Abrir");
  screen_.KeyChord({VK_MENU, 'A'});
  EXPECT_EQ(heard.back(), "A Click");

  EXPECT_TRUE(form.Unsubscribe(cookie));
  EXPECT_FALSE(form.Unsubscribe(cookie));
  ClickOn(&a);
  EXPECT_EQ(heard.size(), 4u);
  EXPECT_EQ(JournalOf("A").back(), "Click");
}

TEST_F(FormEventsTest, ADesignerRunsNoProgramCode) {
  Form form;
  server::UserControl* a = form.Add("HostProbe", u"A");
  form.Show();
  std::vector<std::string> heard;
  Listen(form, heard);
  ClickOn(a);
  EXPECT_EQ(JournalOf("A").back(), "Click");  // the control had its click
  EXPECT_TRUE(heard.empty());                 // the program did not
  form.SetUserMode(true);
  ClickOn(a);
  EXPECT_EQ(heard, (std::vector<std::string>{"A Click"}));
}

TEST_F(FormEventsTest, TheProgramMayRemoveAControlFromItsOwnEvent) {
  Form form;
  form.SetUserMode(true);
  server::UserControl* a = form.Add("HostProbe", u"A");
  ASSERT_NE(form.Add("HostProbe", u"B", 1500, 0), nullptr);
  form.Show();
  std::vector<std::string> heard;
  form.Subscribe([&](const String& control, const server::MemberInfo&, std::span<Variant>) {
    heard.push_back(ToUtf8(control));
    form.Remove(control);
  });
  Listen(form, heard);  // a later subscriber still hears the event
  ClickOn(a);
  EXPECT_EQ(heard, (std::vector<std::string>{"A", "A Click"}));
  EXPECT_EQ(form.Control(u"A"), nullptr);
  EXPECT_EQ(JournalOf("A").back(), "Terminate");
  EXPECT_EQ(form.Count(), 1u);
}

}  // namespace
}  // namespace vantor::host::test
