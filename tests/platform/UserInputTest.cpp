// Input: the platform's wParam/lParam packing, routing by hit test and
// capture, activation and focus, double clicks, hover and leave, cursors,
// keys.
#include "UserTestSupport.h"
#include "platform/Gdi.h"

namespace vantor::platform::test {
namespace {

class UserInputTest : public UserTest {
 protected:
  void Click(int x, int y, MouseButton b = MouseButton::Left) {
    InjectMouseMove(x, y);
    InjectMouseButton(b, true);
    InjectMouseButton(b, false);
    RunUntilIdle();
  }
};

TEST_F(UserInputTest, MouseMessagesPackClientCoordinatesAndKeys) {
  HWND w = Top(100, 100, 200, 200);
  HWND c = Child(w, 50, 60, 50, 50);
  RunUntilIdle();
  Clear();
  InjectMouseMove(160, 170);
  RunUntilIdle();
  auto moves = L().Of(WM_MOUSEMOVE);
  ASSERT_EQ(moves.size(), 1u);
  EXPECT_EQ(moves[0].hwnd, c);
  EXPECT_EQ(moves[0].lparam, MAKELPARAM(10, 10));
  EXPECT_EQ(moves[0].wparam, 0u);
  InjectKey(VK_SHIFT, true);
  InjectMouseButton(MouseButton::Left, true);
  RunUntilIdle();
  auto downs = L().Of(WM_LBUTTONDOWN);
  ASSERT_EQ(downs.size(), 1u);
  EXPECT_EQ(downs[0].wparam, MK_LBUTTON | MK_SHIFT);
  // The parent heard of the press first, in its own coordinates.
  auto notify = L().Of(WM_PARENTNOTIFY, w);
  ASSERT_EQ(notify.size(), 1u);
  EXPECT_EQ(LOWORD(notify[0].wparam), WM_LBUTTONDOWN);
  EXPECT_EQ(notify[0].lparam, MAKELPARAM(60, 70));
  InjectMouseButton(MouseButton::Left, false);
  InjectKey(VK_SHIFT, false);
  InjectMouseButton(MouseButton::X2, true);
  RunUntilIdle();
  auto x = L().Of(WM_XBUTTONDOWN);
  ASSERT_EQ(x.size(), 1u);
  EXPECT_EQ(GET_XBUTTON_WPARAM(x[0].wparam), XBUTTON2);
  EXPECT_EQ(GET_KEYSTATE_WPARAM(x[0].wparam), MK_XBUTTON2);
  InjectMouseButton(MouseButton::X2, false);
  RunUntilIdle();
  EXPECT_EQ(GET_XBUTTON_WPARAM(L().Of(WM_XBUTTONUP)[0].wparam), XBUTTON2);
}

TEST_F(UserInputTest, CapturedMouseReportsNegativeCoordinatesAsSigned16Bits) {
  HWND w = Top(100, 100, 100, 100);
  RunUntilIdle();
  InjectMouseMove(150, 150);
  InjectMouseButton(MouseButton::Left, true);
  RunUntilIdle();
  SetCapture(w);
  Clear();
  InjectMouseMove(10, 20);
  RunUntilIdle();
  auto moves = L().Of(WM_MOUSEMOVE);
  ASSERT_EQ(moves.size(), 1u);
  EXPECT_EQ(moves[0].hwnd, w);
  EXPECT_EQ(GET_X_LPARAM(moves[0].lparam), -90);
  EXPECT_EQ(GET_Y_LPARAM(moves[0].lparam), -80);
  // Read unsigned, as the controls' own code does, it is a large number.
  EXPECT_EQ(moves[0].lparam & 0xFFFF, 65536 - 90);
  EXPECT_EQ(moves[0].wparam, MK_LBUTTON);
  // No WM_SETCURSOR while captured.
  EXPECT_TRUE(L().Of(WM_SETCURSOR).empty());
  InjectMouseButton(MouseButton::Left, false);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_LBUTTONUP)[0].hwnd, w);
}

TEST_F(UserInputTest, WheelCarriesDeltaInTheHighWordAndScreenCoordinates) {
  HWND w = Top(100, 100, 100, 100);
  HWND c = Child(w, 10, 10, 50, 50);
  RunUntilIdle();
  InjectMouseMove(120, 130);
  InjectMouseWheel(-WHEEL_DELTA);
  InjectKey(VK_CONTROL, true);
  InjectMouseWheel(240, true);
  RunUntilIdle();
  auto wheel = L().Of(WM_MOUSEWHEEL, c);
  ASSERT_EQ(wheel.size(), 1u);
  EXPECT_EQ(GET_WHEEL_DELTA_WPARAM(wheel[0].wparam), -120);
  EXPECT_EQ(GET_X_LPARAM(wheel[0].lparam), 120);
  EXPECT_EQ(GET_Y_LPARAM(wheel[0].lparam), 130);
  // DefWindowProc hands the wheel on to the parent.
  EXPECT_EQ(L().Of(WM_MOUSEWHEEL, w).size(), 1u);
  auto h = L().Of(WM_MOUSEHWHEEL, c);
  ASSERT_EQ(h.size(), 1u);
  EXPECT_EQ(GET_WHEEL_DELTA_WPARAM(h[0].wparam), 240);
  EXPECT_EQ(GET_KEYSTATE_WPARAM(h[0].wparam), MK_CONTROL);
  InjectKey(VK_CONTROL, false);
  RunUntilIdle();
}

TEST_F(UserInputTest, NonClientAreaGetsNonClientMessages) {
  HWND w = Top(100, 100, 200, 150, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
  RunUntilIdle();
  Clear();
  InjectMouseMove(150, 110);  // on the caption
  RunUntilIdle();
  auto nc = L().Of(WM_NCMOUSEMOVE, w);
  ASSERT_EQ(nc.size(), 1u);
  EXPECT_EQ(nc[0].wparam, static_cast<WPARAM>(HTCAPTION));
  EXPECT_EQ(nc[0].lparam, MAKELPARAM(150, 110));
  struct Case {
    int x, y;
    LRESULT hit;
  };
  const Case cases[] = {{100, 200, HTLEFT},   {299, 200, HTRIGHT},   {200, 100, HTTOP},
                        {200, 249, HTBOTTOM}, {101, 101, HTTOPLEFT}, {298, 248, HTBOTTOMRIGHT},
                        {200, 200, HTCLIENT}, {99, 200, HTNOWHERE},  {300, 200, HTNOWHERE},
                        {290, 110, HTCLOSE}};
  for (const auto& c : cases) {
    const LPARAM at = MAKELPARAM(static_cast<WORD>(c.x), static_cast<WORD>(c.y));
    EXPECT_EQ(SendMessageW(w, WM_NCHITTEST, 0, at), c.hit) << c.x << "," << c.y;
  }
}

TEST_F(UserInputTest, SetCursorAsksTheParentFirstThenUsesTheClassCursor) {
  HWND w = Top(0, 0, 100, 100);
  HWND c = Child(w, 0, 0, 50, 50);
  RunUntilIdle();
  SetCursor(nullptr);
  Clear();
  InjectMouseMove(10, 10);
  RunUntilIdle();
  auto sc = L().Of(WM_SETCURSOR);
  ASSERT_EQ(sc.size(), 2u);
  EXPECT_EQ(sc[0].hwnd, c);
  EXPECT_EQ(sc[1].hwnd, w);  // the child's DefWindowProc asked its parent
  EXPECT_EQ(sc[0].wparam, reinterpret_cast<WPARAM>(c));
  EXPECT_EQ(LOWORD(static_cast<uintptr_t>(sc[0].lparam)), HTCLIENT);
  EXPECT_EQ(HIWORD(static_cast<uintptr_t>(sc[0].lparam)), WM_MOUSEMOVE);
  EXPECT_EQ(CurrentCursorId(), 32512);
  // A parent that answers TRUE keeps its own cursor.
  L().handlers[WM_SETCURSOR] = [w](HWND h, WPARAM, LPARAM, bool* handled) -> LRESULT {
    if (h != w) {
      *handled = false;
      return 0;
    }
    SetCursor(LoadCursorW(nullptr, IDC_HAND));
    return TRUE;
  };
  InjectMouseMove(11, 11);
  RunUntilIdle();
  EXPECT_EQ(CurrentCursorId(), 32649);
}

TEST_F(UserInputTest, HitTestingSkipsTransparentAndDisabledWindowsAndFollowsRegions) {
  HWND w = Top(0, 0, 100, 100);
  HWND a = Child(w, 0, 0, 50, 50, 1);
  HWND b = Child(w, 0, 0, 80, 80, 2);  // under a
  RunUntilIdle();
  EXPECT_EQ(WindowFromPoint(POINT{10, 10}), a);
  EXPECT_EQ(WindowFromPoint(POINT{60, 60}), b);
  EXPECT_EQ(WindowFromPoint(POINT{90, 90}), w);
  EXPECT_EQ(WindowFromPoint(POINT{100, 100}), GetDesktopWindow());
  L().handlers[WM_NCHITTEST] = [a](HWND h, WPARAM, LPARAM, bool* handled) -> LRESULT {
    if (h == a) return HTTRANSPARENT;
    *handled = false;
    return 0;
  };
  EXPECT_EQ(WindowFromPoint(POINT{10, 10}), b);
  L().handlers.clear();
  EnableWindow(b, FALSE);
  EXPECT_EQ(WindowFromPoint(POINT{60, 60}), w);
  // A window region shapes both painting and hit testing.
  HRGN round = CreateEllipticRgn(0, 0, 50, 50);
  EXPECT_NE(SetWindowRgn(a, round, TRUE), 0);
  EXPECT_EQ(WindowFromPoint(POINT{25, 25}), a);
  EXPECT_EQ(WindowFromPoint(POINT{1, 1}), w);  // the corner is cut away, b is disabled
  EXPECT_EQ(SendMessageW(a, WM_NCHITTEST, 0, MAKELPARAM(1, 1)), HTNOWHERE);
  HRGN copy = CreateRectRgn(0, 0, 0, 0);
  EXPECT_EQ(GetWindowRgn(a, copy), COMPLEXREGION);
  EXPECT_TRUE(PtInRegion(copy, 25, 25));
  EXPECT_FALSE(PtInRegion(copy, 0, 0));
  DeleteObject(copy);
  EXPECT_NE(SetWindowRgn(a, nullptr, TRUE), 0);
  EXPECT_EQ(WindowFromPoint(POINT{1, 1}), a);
  // Top-level windows hide the ones under them.
  HWND over = Top(0, 0, 20, 20);
  EXPECT_EQ(WindowFromPoint(POINT{5, 5}), over);
}

TEST_F(UserInputTest, ClickActivatesAndDisabledWindowsGetNothing) {
  HWND a = Top(0, 0, 100, 100);
  HWND b = Top(200, 0, 100, 100);
  RunUntilIdle();
  EXPECT_EQ(GetActiveWindow(), b);  // shown last
  EXPECT_EQ(GetFocus(), b);
  Clear();
  Click(50, 50);
  EXPECT_EQ(GetActiveWindow(), a);
  EXPECT_EQ(GetTopWindow(nullptr), a);
  auto act = L().Of(WM_ACTIVATE, a);
  ASSERT_EQ(act.size(), 1u);
  EXPECT_EQ(LOWORD(act[0].wparam), WA_CLICKACTIVE);
  EXPECT_EQ(L().Of(WM_MOUSEACTIVATE, a).size(), 1u);
  EXPECT_EQ(LOWORD(L().Of(WM_ACTIVATE, b)[0].wparam), WA_INACTIVE);
  EXPECT_EQ(L().Of(WM_LBUTTONDOWN, a).size(), 1u);
  // An eaten activation click never arrives.
  L().handlers[WM_MOUSEACTIVATE] = [](HWND, WPARAM, LPARAM, bool*) -> LRESULT {
    return MA_ACTIVATEANDEAT;
  };
  Clear();
  Click(250, 50);
  EXPECT_EQ(GetActiveWindow(), b);
  EXPECT_TRUE(L().Of(WM_LBUTTONDOWN, b).empty());
  EXPECT_EQ(L().Of(WM_LBUTTONUP, b).size(), 1u);
  L().handlers.clear();
  EnableWindow(a, FALSE);
  Clear();
  Click(50, 50);
  EXPECT_TRUE(L().Of(WM_LBUTTONDOWN).empty());
  EXPECT_EQ(GetActiveWindow(), b);
  ASSERT_FALSE(L().Of(WM_SETCURSOR, a).empty());
  EXPECT_EQ(static_cast<SHORT>(LOWORD(static_cast<uintptr_t>(L().Of(WM_SETCURSOR, a)[0].lparam))),
            HTERROR);
}

TEST_F(UserInputTest, DoubleClicksNeedTheClassStyleTimeAndDistance) {
  HWND w = Top(0, 0, 100, 100);
  RunUntilIdle();
  Clear();
  Click(10, 10);
  Clock::Advance(500);
  Click(12, 8);  // within 2 pixels and 500 ms
  Click(12, 8);  // a third press starts again
  EXPECT_EQ(L().Sequence({WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}, w),
            (std::vector<UINT>{WM_LBUTTONDOWN, WM_LBUTTONDBLCLK, WM_LBUTTONDOWN}));
  Clear();
  Clock::Advance(1000);
  Click(10, 10);
  Clock::Advance(501);
  Click(10, 10);
  Clock::Advance(100);
  Click(13, 10);                      // three pixels away
  Click(13, 10, MouseButton::Right);  // another button
  EXPECT_TRUE(L().Of(WM_LBUTTONDBLCLK).empty());
  EXPECT_TRUE(L().Of(WM_RBUTTONDBLCLK).empty());
  // Without CS_DBLCLKS, two quick clicks are two presses.
  WNDCLASSW wc{};
  wc.lpfnWndProc = LoggingProc;
  wc.lpszClassName = u"NoDouble";
  RegisterClassW(&wc);
  HWND plain = CreateWindowExW(0, u"NoDouble", u"", WS_POPUP | WS_VISIBLE, 300, 0, 50, 50, nullptr,
                               nullptr, nullptr, nullptr);
  RunUntilIdle();
  Clear();
  Click(310, 10);
  Click(310, 10);
  EXPECT_EQ(L().Of(WM_LBUTTONDOWN, plain).size(), 2u);
}

TEST_F(UserInputTest, CaptureRoutesEverythingAndReportsItsLoss) {
  HWND a = Top(0, 0, 100, 100);
  HWND b = Top(200, 0, 100, 100);
  RunUntilIdle();
  EXPECT_EQ(SetCapture(a), nullptr);
  EXPECT_EQ(GetCapture(), a);
  Clear();
  Click(250, 50);
  EXPECT_EQ(L().Of(WM_LBUTTONDOWN, a).size(), 1u);
  EXPECT_EQ(GET_X_LPARAM(L().Of(WM_LBUTTONDOWN, a)[0].lparam), 250);
  EXPECT_TRUE(L().Of(WM_LBUTTONDOWN, b).empty());
  EXPECT_EQ(SetCapture(b), a);
  auto changed = L().Of(WM_CAPTURECHANGED, a);
  ASSERT_EQ(changed.size(), 1u);
  EXPECT_EQ(changed[0].lparam, reinterpret_cast<LPARAM>(b));
  EXPECT_TRUE(ReleaseCapture());
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_EQ(L().Of(WM_CAPTURECHANGED, b).size(), 1u);
  EXPECT_EQ(L().Of(WM_CAPTURECHANGED, b)[0].lparam, 0);
  SetCapture(a);
  DestroyWindow(a);
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_EQ(SetCapture(reinterpret_cast<HWND>(intptr_t{1234})), nullptr);
}

TEST_F(UserInputTest, FocusMovesWithKillThenSetFocus) {
  HWND w = Top(0, 0, 100, 100);
  HWND a = Child(w, 0, 0, 10, 10, 1);
  HWND b = Child(w, 20, 0, 10, 10, 2);
  RunUntilIdle();
  EXPECT_EQ(GetFocus(), w);
  Clear();
  EXPECT_EQ(SetFocus(a), w);
  EXPECT_EQ(SetFocus(b), a);
  std::vector<std::pair<HWND, UINT>> order;
  for (const auto& m : L().messages) {
    if (m.msg == WM_SETFOCUS || m.msg == WM_KILLFOCUS) order.emplace_back(m.hwnd, m.msg);
  }
  const std::vector<std::pair<HWND, UINT>> expected{
      {w, WM_KILLFOCUS}, {a, WM_SETFOCUS}, {a, WM_KILLFOCUS}, {b, WM_SETFOCUS}};
  EXPECT_EQ(order, expected);
  EXPECT_EQ(L().Of(WM_KILLFOCUS, a)[0].wparam, reinterpret_cast<WPARAM>(b));
  EXPECT_EQ(L().Of(WM_SETFOCUS, b)[0].wparam, reinterpret_cast<WPARAM>(a));
  // Keys go to the focus window; TranslateMessage makes the characters.
  Clear();
  InjectKey('A', true);
  InjectKey('A', false);
  InjectKey(VK_SHIFT, true);
  InjectKey('1', true);
  InjectKey('1', false);
  InjectKey(VK_SHIFT, false);
  InjectChar(u'ç');
  RunUntilIdle();
  std::u16string chars;
  for (const auto& m : L().Of(WM_CHAR, b)) chars += static_cast<char16_t>(m.wparam);
  EXPECT_EQ(chars, u"a!ç");
  auto down = L().Of(WM_KEYDOWN, b);
  ASSERT_EQ(down.size(), 3u);
  EXPECT_EQ(down[0].wparam, static_cast<WPARAM>('A'));
  EXPECT_EQ(down[0].lparam, 0x001E0001);  // one press, scan code 0x1E
  auto up = L().Of(WM_KEYUP, b);
  EXPECT_EQ(static_cast<uint32_t>(up[0].lparam), 0xC01E0001u);
  // Destroying the focus gives it to the parent; a top-level window's to
  // the window activated next.
  Clear();
  DestroyWindow(b);
  EXPECT_EQ(GetFocus(), w);
  EXPECT_EQ(L().Of(WM_SETFOCUS, w).size(), 1u);
  HWND other = Top(300, 0, 10, 10);
  SetActiveWindow(w);
  EXPECT_EQ(GetFocus(), w);
  DestroyWindow(w);
  EXPECT_EQ(GetActiveWindow(), other);
  EXPECT_EQ(GetFocus(), other);
  EXPECT_EQ(SetFocus(reinterpret_cast<HWND>(intptr_t{4242})), nullptr);
}

TEST_F(UserInputTest, AltMakesSystemKeysAndKeyStatesFollow) {
  HWND w = Top(0, 0, 100, 100);
  RunUntilIdle();
  Clear();
  InjectKey(VK_MENU, true);
  InjectKey('F', true);
  EXPECT_LT(GetAsyncKeyState(VK_MENU), 0);
  EXPECT_EQ(GetKeyState(VK_MENU), 0);  // not until the messages are taken
  RunUntilIdle();
  EXPECT_LT(GetKeyState(VK_MENU), 0);
  InjectKey('F', false);
  InjectKey(VK_MENU, false);
  RunUntilIdle();
  auto sys = L().Of(WM_SYSKEYDOWN, w);
  ASSERT_EQ(sys.size(), 2u);
  EXPECT_NE(sys[1].lparam & (1 << 29), 0);
  EXPECT_EQ(L().Of(WM_SYSCHAR, w).size(), 1u);
  EXPECT_EQ(L().Of(WM_SYSKEYUP, w).size(), 2u);
  EXPECT_GE(GetKeyState(VK_MENU), 0);
  EXPECT_EQ(GetKeyState(VK_MENU), 1);  // every key toggles, as on the platform
  // Caps Lock toggles the low bit, and with it the case of letters.
  InjectKey(VK_CAPITAL, true);
  InjectKey(VK_CAPITAL, false);
  InjectKey('Q', true);
  RunUntilIdle();
  EXPECT_EQ(GetKeyState(VK_CAPITAL) & 1, 1);
  EXPECT_EQ(L().Of(WM_CHAR, w).back().wparam, static_cast<WPARAM>('Q'));
  InjectKey('Q', true);  // held: a repeat
  RunUntilIdle();
  EXPECT_NE(L().Of(WM_KEYDOWN, w).back().lparam & (1 << 30), 0);
  InjectKey('Q', false);
  // keybd_event goes the same way; Ctrl+C gives the control character.
  keybd_event(VK_CONTROL, 0, 0, 0);
  keybd_event('C', 0, 0, 0);
  keybd_event('C', 0, KEYEVENTF_KEYUP, 0);
  keybd_event(VK_CONTROL, 0, KEYEVENTF_KEYUP, 0);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_CHAR, w).back().wparam, 3u);
  EXPECT_EQ(GetAsyncKeyState(300), 0);
  EXPECT_EQ(GetKeyState(-1), 0);
  // Pressed since the last query.
  GetAsyncKeyState('Z');
  InjectKey('Z', true);
  InjectKey('Z', false);
  EXPECT_EQ(GetAsyncKeyState('Z'), 1);
  EXPECT_EQ(GetAsyncKeyState('Z'), 0);
  RunUntilIdle();
}

TEST_F(UserInputTest, LeaveIsPostedWhenTheMouseGoesAndAtOnceWhenAlreadyOut) {
  HWND a = Top(0, 0, 100, 100);
  HWND b = Top(100, 0, 100, 100);
  RunUntilIdle();
  InjectMouseMove(50, 50);
  RunUntilIdle();
  TRACKMOUSEEVENT t{sizeof t, TME_LEAVE, a, HOVER_DEFAULT};
  EXPECT_TRUE(TrackMouseEvent(&t));
  TRACKMOUSEEVENT q{sizeof q, TME_QUERY, nullptr, 0};
  EXPECT_TRUE(TrackMouseEvent(&q));
  EXPECT_EQ(q.hwndTrack, a);
  EXPECT_EQ(q.dwFlags, TME_LEAVE);
  Clear();
  InjectMouseMove(60, 50);
  RunUntilIdle();
  EXPECT_TRUE(L().Of(WM_MOUSELEAVE).empty());
  InjectMouseMove(150, 50);
  RunUntilIdle();
  ASSERT_EQ(L().Of(WM_MOUSELEAVE, a).size(), 1u);
  // Once: the tracking ends with the leave.
  InjectMouseMove(50, 50);
  InjectMouseMove(150, 50);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_MOUSELEAVE, a).size(), 1u);
  // Tracking a window the mouse is not over posts the leave at once.
  Clear();
  EXPECT_TRUE(TrackMouseEvent(&t));
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_MOUSELEAVE, a).size(), 1u);
  // Cancelled tracking posts nothing.
  TRACKMOUSEEVENT tb{sizeof tb, TME_LEAVE, b, HOVER_DEFAULT};
  EXPECT_TRUE(TrackMouseEvent(&tb));
  TRACKMOUSEEVENT cancel{sizeof cancel, TME_LEAVE | TME_CANCEL, b, 0};
  EXPECT_TRUE(TrackMouseEvent(&cancel));
  Clear();
  InjectMouseMove(50, 50);
  RunUntilIdle();
  EXPECT_TRUE(L().Of(WM_MOUSELEAVE).empty());
  TRACKMOUSEEVENT bad{4, TME_LEAVE, b, 0};
  EXPECT_FALSE(TrackMouseEvent(&bad));
  EXPECT_FALSE(TrackMouseEvent(nullptr));
  TRACKMOUSEEVENT dead{sizeof dead, TME_LEAVE, reinterpret_cast<HWND>(intptr_t{3}), 0};
  EXPECT_FALSE(TrackMouseEvent(&dead));
}

TEST_F(UserInputTest, HoverComesAfterTheHoverTimeWithoutMovingAway) {
  HWND w = Top(0, 0, 100, 100);
  RunUntilIdle();
  InjectMouseMove(50, 50);
  RunUntilIdle();
  TRACKMOUSEEVENT t{sizeof t, TME_HOVER | TME_LEAVE, w, HOVER_DEFAULT};
  EXPECT_TRUE(TrackMouseEvent(&t));
  Clear();
  Clock::Advance(300);
  InjectMouseMove(52, 51);  // small moves keep the hover going
  RunUntilIdle();
  Clock::Advance(99);
  RunUntilIdle();
  EXPECT_TRUE(L().Of(WM_MOUSEHOVER).empty());
  Clock::Advance(1);
  RunUntilIdle();
  auto hover = L().Of(WM_MOUSEHOVER, w);
  ASSERT_EQ(hover.size(), 1u);
  EXPECT_EQ(hover[0].lparam, MAKELPARAM(52, 51));
  Clock::Advance(1000);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_MOUSEHOVER).size(), 1u);  // once
  // Leave tracking survived the hover.
  InjectMouseMove(500, 500);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_MOUSELEAVE, w).size(), 1u);
  // A move beyond the hover rectangle starts the wait again.
  InjectMouseMove(50, 50);
  RunUntilIdle();
  TRACKMOUSEEVENT t2{sizeof t2, TME_HOVER, w, 100};
  TrackMouseEvent(&t2);
  Clock::Advance(60);
  InjectMouseMove(55, 50);
  RunUntilIdle();
  Clock::Advance(60);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_MOUSEHOVER).size(), 1u);
  Clock::Advance(40);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_MOUSEHOVER).size(), 2u);
}

TEST_F(UserInputTest, CaptionDragMovesTheWindow) {
  HWND w = Top(100, 100, 200, 150, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
  RunUntilIdle();
  Clear();
  InjectMouseMove(150, 110);
  InjectMouseButton(MouseButton::Left, true);
  InjectMouseMove(180, 140);
  InjectMouseMove(190, 150);
  InjectMouseButton(MouseButton::Left, false);
  RunUntilIdle();
  RECT r{};
  GetWindowRect(w, &r);
  EXPECT_EQ(r.left, 140);
  EXPECT_EQ(r.top, 140);
  EXPECT_EQ(r.right - r.left, 200);
  EXPECT_EQ(L().Sequence({WM_ENTERSIZEMOVE, WM_EXITSIZEMOVE}),
            (std::vector<UINT>{WM_ENTERSIZEMOVE, WM_EXITSIZEMOVE}));
  EXPECT_EQ(GetCapture(), nullptr);
  // A control that starts the drag itself, the way skinned forms do.
  HWND strip = Child(w, 0, 0, 50, 20);
  L().handlers[WM_LBUTTONDOWN] = [w, strip](HWND h, WPARAM, LPARAM, bool* handled) -> LRESULT {
    if (h != strip) {
      *handled = false;
      return 0;
    }
    ReleaseCapture();
    SendMessageW(w, WM_NCLBUTTONDOWN, HTCAPTION, 0);
    return 0;
  };
  RunUntilIdle();
  POINT p{10, 10};
  ClientToScreen(strip, &p);
  InjectMouseMove(p.x, p.y);
  InjectMouseButton(MouseButton::Left, true);
  InjectMouseMove(p.x + 5, p.y + 7);
  InjectMouseButton(MouseButton::Left, false);
  RunUntilIdle();
  GetWindowRect(w, &r);
  EXPECT_EQ(r.left, 145);
  EXPECT_EQ(r.top, 147);
}

TEST_F(UserInputTest, CursorsAndPositions) {
  EXPECT_NE(LoadCursorW(nullptr, IDC_ARROW), nullptr);
  EXPECT_NE(LoadCursorA(nullptr, MAKEINTRESOURCEA(32649)), LoadCursorW(nullptr, IDC_ARROW));
  EXPECT_EQ(LoadCursorA(nullptr, MAKEINTRESOURCEA(32649)), LoadCursorW(nullptr, IDC_HAND));
  EXPECT_EQ(LoadCursorW(nullptr, MAKEINTRESOURCEW(1)), nullptr);
  EXPECT_EQ(LoadCursorA(nullptr, "IDC_ARROW"), nullptr);
  HCURSOR hand = LoadCursorW(nullptr, IDC_HAND);
  SetCursor(hand);
  EXPECT_EQ(GetCursor(), hand);
  EXPECT_EQ(SetCursor(nullptr), hand);
  EXPECT_TRUE(SetCursorPos(5000, -3));
  POINT p{};
  EXPECT_TRUE(GetCursorPos(&p));
  EXPECT_EQ(p.x, 1279);  // kept on the screen
  EXPECT_EQ(p.y, 0);
  EXPECT_FALSE(GetCursorPos(nullptr));
  EXPECT_EQ(GetDoubleClickTime(), 500u);
}

}  // namespace
}  // namespace vantor::platform::test
