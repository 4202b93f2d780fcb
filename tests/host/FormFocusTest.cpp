// Focus, tab order and access keys, played through the headless screen as a
// person's keys and clicks.
#include <algorithm>

#include "Probe.h"
#include "host/Form.h"
#include "platform/User.h"

namespace vantor::host::test {
namespace {

class FormFocusTest : public HostTest {
 protected:
  void SetUp() override {
    HostTest::SetUp();
    form_ = std::make_unique<Form>(480, 120);
    form_->SetUserMode(true);
    const struct {
      const char16_t* name;
      const char16_t* caption;
    } controls[] = {{u"A", u"&Salvar"},
                    {u"B", u"&Cancelar"},
                    {u"C", u"Sai&r"},
                    {u"D", u"&Sim"},
                    {u"E", u"E&xcluir && sair"}};
    float left = 0;
    for (const auto& c : controls) {
      server::UserControl* p = form_->Add("HostProbe", c.name, left, 300, 1200, 375);
      ASSERT_NE(p, nullptr);
      dynamic_cast<Probe*>(p)->put_Caption(c.caption);
      left += 1500;
    }
    // Tab order C, A, E, B, D.
    ASSERT_TRUE(form_->SetTabIndex(u"C", 0));
    ASSERT_TRUE(form_->SetTabIndex(u"E", 2));
    ASSERT_EQ(form_->TabOrder(), (std::vector<String>{u"C", u"A", u"E", u"B", u"D"}));
  }
  void TearDown() override {
    form_.reset();
    HostTest::TearDown();
  }

  // The name of the control whose window has the focus, or "" for none.
  String Focused() const {
    for (server::UserControl* c : form_->Controls()) {
      if (c->hWnd() == GetFocus()) return c->GetExtender()->Name();
    }
    return GetFocus() == form_->hWnd() ? u"(form)" : u"";
  }
  std::string Walk(const std::vector<bool>& backwards) {
    std::string seen = ToUtf8(Focused());
    for (bool back : backwards) {
      if (back) {
        screen_.KeyChord({VK_SHIFT, VK_TAB});
      } else {
        screen_.Key(VK_TAB);
      }
      seen += " " + ToUtf8(Focused());
    }
    return seen;
  }
  void AltKey(int vkey, bool shift = false) {
    if (shift) {
      screen_.KeyChord({VK_MENU, VK_SHIFT, vkey});
    } else {
      screen_.KeyChord({VK_MENU, vkey});
    }
  }

  std::unique_ptr<Form> form_;
};

TEST_F(FormFocusTest, ShowingTheFormFocusesTheFirstControlInTabOrder) {
  form_->Show();
  EXPECT_EQ(Focused(), u"C");
  EXPECT_EQ(form_->ActiveControl(), form_->Control(u"C"));
  EXPECT_EQ(JournalOf("C").back(), "GotFocus");
}

TEST_F(FormFocusTest, TabAndShiftTabSkipDisabledAndHiddenControlsAndWrap) {
  form_->Site(u"B")->SetEnabled(false);
  form_->Site(u"D")->SetVisible(false);
  form_->Show();
  EXPECT_EQ(Walk({false, false, false, false}), "C A E C A");
  EXPECT_EQ(Walk({true, true, true, true}), "A C E A C");
  // Enabled again, B takes its turn; a control that is no tab stop is passed.
  form_->Site(u"B")->SetEnabled(true);
  form_->Site(u"A")->SetTabStop(false);
  EXPECT_EQ(Walk({false, false, false, false}), "C E B C E");
  EXPECT_EQ(form_->ActiveControl(), form_->Control(u"E"));
  // A control hidden inside a visible container is passed too.
  ASSERT_NE(form_->Add("HostProbe", u"Inner", 15, 15, 300, 150, u"E"), nullptr);
  form_->Site(u"E")->SetVisible(false);  // hidden with the focus: it moves on
  EXPECT_EQ(Focused(), u"B");
  EXPECT_EQ(Walk({false, false}), "B C B");
  // The Tab characters were the form's: no control was given one.
  for (const std::string& e : Journal()) EXPECT_EQ(e.find("KeyPress 9"), std::string::npos) << e;
}

TEST_F(FormFocusTest, ALoneControlKeepsTheFocusAndNoControlMeansNoTab) {
  for (const char16_t* n : {u"A", u"B", u"C", u"D"}) form_->Site(n)->SetVisible(false);
  form_->Show();
  EXPECT_EQ(Focused(), u"E");
  Journal().clear();
  screen_.Key(VK_TAB);
  EXPECT_EQ(Focused(), u"E");
  EXPECT_TRUE(Journal().empty());  // no LostFocus and GotFocus for staying put
  form_->Site(u"E")->SetEnabled(false);
  EXPECT_FALSE(form_->TabKey(false));
  EXPECT_FALSE(form_->TabKey(true));
}

TEST_F(FormFocusTest, AltAndAKeyReachTheControlWithThatAccessKey) {
  form_->Show();
  ASSERT_EQ(Focused(), u"C");
  Journal().clear();
  AltKey('S');  // "&Salvar" and "&Sim" share it: the next from the focus on
  EXPECT_EQ(Focused(), u"A");
  EXPECT_EQ(JournalOf("A"), (std::vector<std::string>{"GotFocus", "AccessKeyPress 115"}));
  AltKey('S');
  EXPECT_EQ(Focused(), u"D");
  AltKey('S');
  EXPECT_EQ(Focused(), u"A");
  AltKey('R');
  EXPECT_EQ(Focused(), u"C");
  AltKey('X', true);  // a capital finds the key without regard to case
  EXPECT_EQ(Focused(), u"E");
  EXPECT_EQ(JournalOf("E").back(), "AccessKeyPress 88");

  // A key no control has is not taken: the focus stays and nobody hears of it.
  Journal().clear();
  AltKey('Z');
  EXPECT_EQ(Focused(), u"E");
  EXPECT_FALSE(form_->AccessKey(u'z'));
  // "&&" is no access key; nor is a disabled control reached by its own.
  form_->Site(u"B")->SetEnabled(false);
  AltKey('C');
  EXPECT_EQ(Focused(), u"E");
  for (const std::string& e : Journal())
    EXPECT_EQ(e.find("AccessKeyPress"), std::string::npos) << e;
}

TEST_F(FormFocusTest, AClickGivesTheFocusAndTheFormFollowsIt) {
  form_->Show();
  RECT r;
  GetWindowRect(form_->Control(u"B")->hWnd(), &r);
  screen_.Click((r.left + r.right) / 2, (r.top + r.bottom) / 2);
  EXPECT_EQ(Focused(), u"B");
  EXPECT_EQ(form_->ActiveControl(), form_->Control(u"B"));
  EXPECT_EQ(JournalOf("C"),
            (std::vector<std::string>{"Initialize", "InitProperties", "Resize 80x25", "Show",
                                      "GotFocus", "LostFocus"}));
  ASSERT_TRUE(form_->SetFocusTo(u"d"));
  EXPECT_EQ(Focused(), u"D");
  // A form that was hidden and shown again gives the focus back where it was.
  form_->Hide();
  form_->Show();
  screen_.Key(VK_TAB);
  EXPECT_EQ(Focused(), u"C");  // after D, round to the first
  form_->Site(u"A")->SetVisible(false);
  EXPECT_FALSE(form_->SetFocusTo(u"A"));
  // When the focused control goes, the focus goes on to the first that can have it.
  ASSERT_TRUE(form_->Remove(u"C"));
  EXPECT_EQ(Focused(), u"E");
  EXPECT_EQ(form_->ActiveControl(), form_->Control(u"E"));
}

}  // namespace
}  // namespace vantor::host::test
