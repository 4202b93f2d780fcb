// The hover tracker driven by a user's mouse through the headless presenter:
// which events come, with which numbers, and what the window itself still gets.
#include "frame/clsMouseEvents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/Desktop.h"
#include "platform/HeadlessPresenter.h"
#include "server/Registry.h"

namespace vantor::frame {
namespace {

using platform::MouseButton;

std::vector<UINT> g_own;  // what reached the window's own procedure

LRESULT CALLBACK OwnProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  g_own.push_back(msg);
  return DefWindowProcW(hwnd, msg, wparam, lparam);
}

int32_t Long(HWND hwnd) {
  return static_cast<int32_t>(reinterpret_cast<uintptr_t>(hwnd));
}

class MouseEvents : public ::testing::Test {
 protected:
  void SetUp() override {
    platform::ResetDesktop();
    g_own.clear();
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.lpfnWndProc = OwnProc;
    wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    wc.lpszClassName = u"HoverTest";
    ASSERT_NE(RegisterClassExW(&wc), 0);
    // 100 x 40 at (50, 50).
    w = CreateWindowExW(0, u"HoverTest", u"", WS_POPUP | WS_VISIBLE, 50, 50, 100, 40, nullptr,
                        nullptr, nullptr, nullptr);
    auto log = [this](std::string s) { return [this, s](auto... a) { Note(s, {a...}); }; };
    m.MouseIn.Connect(log("In"));
    m.MouseOut.Connect(log("Out"));
    m.MouseMove.Connect(log("Move"));
    m.MouseWheel.Connect(log("Wheel"));
    m.MouseVScrollEx.Connect(log("VScroll"));
    m.MouseHScrollEx.Connect(log("HScroll"));
    m.MouseBackButtonClick.Connect(log("Back"));
    m.MouseForwardButtonClick.Connect(log("Forward"));
  }
  void TearDown() override {
    m.Attach(0);
    platform::ResetDesktop();
  }
  void Note(const std::string& name, std::vector<int32_t> args) {
    std::string s = name;
    for (int32_t a : args) s += " " + std::to_string(a);
    events.push_back(s);
  }
  // The events by name only, and the last one of a kind with its numbers.
  std::vector<std::string> Names() const {
    std::vector<std::string> out;
    for (const auto& e : events) out.push_back(e.substr(0, e.find(' ')));
    return out;
  }
  std::string Last(const std::string& name) const {
    for (auto it = events.rbegin(); it != events.rend(); ++it) {
      if (it->rfind(name, 0) == 0) return *it;
    }
    return "";
  }
  bool OwnGot(UINT msg) const { return std::count(g_own.begin(), g_own.end(), msg) > 0; }

  platform::HeadlessPresenter screen{400, 300};
  HWND w = nullptr;
  clsMouseEvents m;
  std::vector<std::string> events;
};

TEST_F(MouseEvents, EnterLeaveAndEnterAgain) {
  screen.MoveTo(10, 10);
  m.Attach(Long(w));
  screen.Pump();
  // The mouse was elsewhere: the leave notice comes at once and sets outside.
  EXPECT_EQ(Names(), std::vector<std::string>{"Out"});
  events.clear();
  screen.MoveTo(60, 70);
  EXPECT_EQ(events, (std::vector<std::string>{"In", "Move 0 1310730 0 0 10 20"}));
  screen.MoveTo(10, 10);
  screen.MoveTo(70, 60);
  screen.MoveTo(71, 60);
  EXPECT_EQ(Names(), (std::vector<std::string>{"In", "Move", "Out", "In", "Move", "Move"}));
  EXPECT_TRUE(OwnGot(WM_MOUSEMOVE));
  EXPECT_FALSE(OwnGot(WM_MOUSELEAVE));  // answered by the tracker
}

TEST_F(MouseEvents, AMouseAlreadyInsideAtAttachGetsNoMouseIn) {
  screen.MoveTo(60, 60);
  m.Attach(Long(w));
  screen.MoveTo(61, 60);
  screen.MoveTo(62, 61);
  EXPECT_EQ(Names(), (std::vector<std::string>{"Move", "Move"}));
  screen.MoveTo(300, 200);
  EXPECT_EQ(Names().back(), "Out");
}

TEST_F(MouseEvents, WheelAndScrollMessagesAreReportedAndStillReachTheWindow) {
  screen.MoveTo(60, 60);
  m.Attach(Long(w));
  screen.Wheel(1);
  EXPECT_EQ(Last("Wheel"),
            "Wheel " + std::to_string(120 << 16) + " " + std::to_string(MAKELPARAM(60, 60)));
  screen.Wheel(-1);
  EXPECT_EQ(Last("Wheel"),
            "Wheel " + std::to_string(-120 * 65536) + " " + std::to_string(MAKELPARAM(60, 60)));
  screen.Wheel(1, true);
  EXPECT_EQ(Names().back(), "Wheel");
  EXPECT_TRUE(OwnGot(WM_MOUSEWHEEL) && OwnGot(WM_MOUSEHWHEEL));
  SendMessageW(w, WM_VSCROLL, 5, 0);
  SendMessageW(w, WM_HSCROLL, 6, 7);
  EXPECT_EQ(Last("VScroll"), "VScroll 5 0");
  EXPECT_EQ(Last("HScroll"), "HScroll 6 7");
  EXPECT_TRUE(OwnGot(WM_VSCROLL) && OwnGot(WM_HSCROLL));
}

TEST_F(MouseEvents, ButtonsAndShiftComeFromTheKeyFlags) {
  screen.MoveTo(60, 60);
  m.Attach(Long(w));
  struct Case {
    std::vector<MouseButton> buttons;
    std::vector<int> keys;
    const char* tail;  // Button Shift X Y
  };
  const Case cases[] = {
      {{MouseButton::Left}, {}, "1 0 11 10"},
      {{MouseButton::Right}, {}, "2 0 11 10"},
      {{MouseButton::Middle}, {}, "4 0 11 10"},
      {{MouseButton::Left, MouseButton::Right}, {VK_SHIFT}, "3 1 11 10"},
      {{}, {VK_CONTROL}, "0 2 11 10"},
      {{MouseButton::Middle}, {VK_SHIFT, VK_CONTROL}, "4 3 11 10"},
  };
  for (const Case& c : cases) {
    for (int k : c.keys) screen.KeyDown(k);
    for (MouseButton b : c.buttons) screen.Press(b);
    screen.MoveTo(61, 60);
    const std::string move = Last("Move");
    EXPECT_EQ(move.substr(move.size() - std::string(c.tail).size()), c.tail) << move;
    for (MouseButton b : c.buttons) screen.Release(b);
    for (int k : c.keys) screen.KeyUp(k);
    screen.MoveTo(60, 60);
  }
}

TEST_F(MouseEvents, BackAndForwardButtons) {
  screen.MoveTo(60, 65);
  m.Attach(Long(w));
  screen.KeyDown(VK_SHIFT);
  screen.Press(MouseButton::X1);
  screen.Release(MouseButton::X1);
  screen.KeyUp(VK_SHIFT);
  screen.Press(MouseButton::X2);
  screen.Release(MouseButton::X2);
  EXPECT_EQ(Last("Back"), "Back 1 10 15");
  EXPECT_EQ(Last("Forward"), "Forward 0 10 15");
  EXPECT_TRUE(OwnGot(WM_XBUTTONDOWN));
}

TEST_F(MouseEvents, ACapturedMouseLeftOfTheWindowReportsALargeX) {
  screen.MoveTo(60, 60);
  m.Attach(Long(w));
  screen.Press();
  SetCapture(w);
  screen.MoveTo(45, 60);
  EXPECT_EQ(Last("Move").substr(Last("Move").rfind(" 1 0 ")), " 1 0 65531 10");
  // Above the window Y is negative, divided with the truncation of a signed
  // division: -10 with X 5 comes out as -9.
  screen.MoveTo(55, 40);
  EXPECT_EQ(Last("Move").substr(Last("Move").rfind(" 1 0 ")), " 1 0 5 -9");
  ReleaseCapture();
  screen.Release();
}

TEST_F(MouseEvents, TheCursorIdIsShownWhileInsideAndNeverReachesTheWindowAsAQuestion) {
  screen.MoveTo(60, 60);
  m.SetCursorId(32649);  // IDC_HAND
  m.Attach(Long(w));
  g_own.clear();
  screen.MoveTo(61, 60);
  EXPECT_EQ(platform::CurrentCursorId(), 32649);
  EXPECT_FALSE(OwnGot(WM_SETCURSOR));
  m.SetCursorId(0);
  screen.MoveTo(62, 60);
  EXPECT_EQ(platform::CurrentCursorId(), 32512);  // the class's arrow
  EXPECT_TRUE(OwnGot(WM_SETCURSOR));
}

TEST_F(MouseEvents, AttachZeroEndsTrackingAndTheWindowGetsItsMessagesAsBefore) {
  const LONG_PTR own = GetWindowLongPtrW(w, GWL_WNDPROC);
  screen.MoveTo(60, 60);
  m.Attach(Long(w));
  EXPECT_NE(GetWindowLongPtrW(w, GWL_WNDPROC), own);
  m.Attach(0);
  EXPECT_EQ(GetWindowLongPtrW(w, GWL_WNDPROC), own);
  EXPECT_EQ(m.TrackedWindow(), nullptr);
  TRACKMOUSEEVENT query{sizeof query, TME_QUERY, nullptr, 0};
  ASSERT_TRUE(TrackMouseEvent(&query));
  EXPECT_EQ(query.hwndTrack, nullptr);
  g_own.clear();
  screen.MoveTo(61, 60);
  screen.MoveTo(300, 200);
  EXPECT_TRUE(events.empty());
  EXPECT_TRUE(OwnGot(WM_MOUSEMOVE) && OwnGot(WM_SETCURSOR));
  EXPECT_FALSE(OwnGot(WM_MOUSELEAVE));
}

TEST_F(MouseEvents, AttachingAnotherWindowLetsTheFirstGo) {
  HWND other = CreateWindowExW(0, u"HoverTest", u"", WS_POPUP | WS_VISIBLE, 200, 50, 50, 50,
                               nullptr, nullptr, nullptr, nullptr);
  const LONG_PTR own = GetWindowLongPtrW(w, GWL_WNDPROC);
  m.Attach(Long(w));
  m.Attach(Long(other));
  EXPECT_EQ(GetWindowLongPtrW(w, GWL_WNDPROC), own);
  EXPECT_EQ(m.TrackedWindow(), other);
  m.Attach(12345);  // no such window: nothing is tracked
  EXPECT_EQ(m.TrackedWindow(), nullptr);
  EXPECT_EQ(GetWindowLongPtrW(other, GWL_WNDPROC), own);
}

TEST_F(MouseEvents, LateBoundAttachAndEventsThroughTheObjectModel) {
  clsMouseEvents::Register();
  auto object = server::Registry::Instance().Create("clsMouseEvents");
  ASSERT_NE(object, nullptr);
  std::vector<std::string> names;
  object->Events().Advise([&](const server::MemberInfo& e, std::span<Variant> args) {
    names.push_back(std::string(e.name) + " " + std::to_string(args.size()));
  });
  screen.MoveTo(10, 10);
  server::Call(*object, "Attach", Long(w));
  screen.Pump();
  screen.MoveTo(60, 60);
  EXPECT_EQ(names, (std::vector<std::string>{"MouseOut 0", "MouseIn 0", "MouseMove 6"}));
  server::Call(*object, "Attach", int32_t{0});
}

TEST_F(MouseEvents, AHandlerMayDetachWhileItsEventIsRaised) {
  screen.MoveTo(10, 10);
  m.Attach(Long(w));
  m.MouseIn.Connect([this] { m.Attach(0); });
  screen.MoveTo(60, 60);
  screen.MoveTo(10, 10);
  EXPECT_EQ(Names(), (std::vector<std::string>{"Out", "In", "Move"}));
}

}  // namespace
}  // namespace vantor::frame
