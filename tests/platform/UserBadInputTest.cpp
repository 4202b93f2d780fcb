// Null, stale, foreign and garbage arguments: every function answers the
// platform's failure value and nothing crashes.
#include <cstdlib>
#include <random>

#include "UserTestSupport.h"
#include "platform/Gdi.h"

namespace vantor::platform::test {
namespace {

using UserBadInputTest = UserTest;

HWND Stale() {
  HWND w = CreateWindowExW(0, u"VantorTestWindow", u"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                           nullptr, nullptr);
  DestroyWindow(w);
  return w;
}

TEST_F(UserBadInputTest, DeadAndGarbageWindowHandlesFailEverywhere) {
  const HWND bad[] = {nullptr, Stale(), reinterpret_cast<HWND>(intptr_t{1}),
                      reinterpret_cast<HWND>(intptr_t{-7}),
                      reinterpret_cast<HWND>(uintptr_t{0xFFFFFFFFFFFF0001u})};
  for (HWND h : bad) {
    RECT r{1, 2, 3, 4};
    POINT p{5, 6};
    WCHAR text[8] = u"xyz";
    char narrow[8] = "xyz";
    PAINTSTRUCT ps{};
    EXPECT_FALSE(IsWindow(h));
    EXPECT_FALSE(IsWindowVisible(h));
    EXPECT_FALSE(IsWindowEnabled(h));
    EXPECT_FALSE(EnableWindow(h, TRUE));
    EXPECT_FALSE(IsWindowUnicode(h));
    EXPECT_EQ(GetParent(h), nullptr);
    EXPECT_EQ(GetWindow(h, GW_CHILD), nullptr);
    EXPECT_EQ(GetAncestor(h, GA_ROOT), nullptr);
    EXPECT_FALSE(ShowWindow(h, SW_SHOW));
    EXPECT_FALSE(MoveWindow(h, 0, 0, 1, 1, TRUE));
    EXPECT_FALSE(SetWindowPos(h, HWND_TOPMOST, 0, 0, 1, 1, 0));
    EXPECT_FALSE(GetClientRect(h, &r));
    EXPECT_FALSE(ClientToScreen(h, &p));
    EXPECT_FALSE(ScreenToClient(h, &p));
    EXPECT_EQ(p.x, 5);
    EXPECT_EQ(ChildWindowFromPoint(h, p), nullptr);
    EXPECT_FALSE(SetWindowTextW(h, u"a"));
    EXPECT_FALSE(SetWindowTextA(h, "a"));
    EXPECT_EQ(GetWindowTextW(h, text, 8), 0);
    EXPECT_EQ(text[0], 0);
    EXPECT_EQ(GetWindowTextA(h, narrow, 8), 0);
    EXPECT_EQ(GetWindowTextLengthW(h), 0);
    EXPECT_EQ(GetWindowLongW(h, GWL_STYLE), 0);
    EXPECT_EQ(SetWindowLongPtrW(h, GWLP_USERDATA, 1), 0);
    EXPECT_EQ(GetClassNameW(h, text, 8), 0);
    EXPECT_EQ(GetClassLongPtrW(h, GCLP_HCURSOR), 0u);
    EXPECT_FALSE(SetPropW(h, u"p", nullptr));
    EXPECT_EQ(GetPropW(h, u"p"), nullptr);
    EXPECT_EQ(RemovePropW(h, u"p"), nullptr);
    EXPECT_EQ(SendMessageW(h, WM_GETTEXTLENGTH, 0, 0), 0);
    EXPECT_EQ(SendMessageA(h, WM_GETTEXTLENGTH, 0, 0), 0);
    EXPECT_EQ(DefWindowProcW(h, WM_NCHITTEST, 0, 0), 0);
    EXPECT_EQ(DefWindowProcA(h, WM_GETTEXT, 8, reinterpret_cast<LPARAM>(narrow)), 0);
    EXPECT_EQ(BeginPaint(h, &ps), nullptr);
    EXPECT_FALSE(GetUpdateRect(h, &r, TRUE));
    EXPECT_EQ(GetWindowDC(h) == nullptr, h != nullptr);
    EXPECT_EQ(SetWindowRgn(h, nullptr, TRUE), 0);
    EXPECT_EQ(GetWindowRgn(h, nullptr), 0);
    EXPECT_FALSE(SetLayeredWindowAttributes(h, 0, 0, LWA_ALPHA));
    EXPECT_FALSE(GetLayeredWindowAttributes(h, nullptr, nullptr, nullptr));
    EXPECT_FALSE(KillTimer(h, 1));
    EXPECT_EQ(SetFocus(h), nullptr);
    EXPECT_EQ(GetWindowThreadProcessId(h, nullptr), 0u);
    MSG m{h, WM_USER, 0, 0, 0, {}};
    EXPECT_EQ(DispatchMessageW(&m), 0);
    if (h != nullptr) {
      EXPECT_FALSE(DestroyWindow(h));
      EXPECT_FALSE(PostMessageW(h, WM_USER, 0, 0));
      EXPECT_EQ(SetTimer(h, 1, 10, nullptr), 0u);
      EXPECT_FALSE(InvalidateRect(h, nullptr, TRUE));
      EXPECT_FALSE(UpdateWindow(h));
      EXPECT_EQ(SetParent(h, nullptr), nullptr);
      EXPECT_EQ(GetDC(h), nullptr);
      EXPECT_FALSE(SetForegroundWindow(h));
    }
  }
  EXPECT_EQ(RunUntilIdle(), 0);
}

TEST_F(UserBadInputTest, NullPointersAndOutOfRangeValues) {
  HWND w = Top(0, 0, 50, 50);
  RunUntilIdle();
  EXPECT_FALSE(GetClientRect(w, nullptr));
  EXPECT_FALSE(GetWindowRect(w, nullptr));
  EXPECT_FALSE(ClientToScreen(w, nullptr));
  EXPECT_EQ(MapWindowPoints(w, nullptr, nullptr, 5), 0);
  EXPECT_EQ(GetWindowTextW(w, nullptr, 10), 0);
  EXPECT_EQ(GetWindowTextW(w, nullptr, -1), 0);
  WCHAR one[1];
  EXPECT_EQ(GetWindowTextW(w, one, -5), 0);
  EXPECT_EQ(BeginPaint(w, nullptr), nullptr);
  EXPECT_FALSE(EndPaint(w, nullptr));
  EXPECT_FALSE(TranslateMessage(nullptr));
  EXPECT_EQ(DispatchMessageW(nullptr), 0);
  EXPECT_FALSE(PeekMessageW(nullptr, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(RegisterClassExW(nullptr), 0);
  EXPECT_EQ(RegisterClassW(nullptr), 0);
  EXPECT_EQ(RegisterClassA(nullptr), 0);
  WNDCLASSEXW noname{};
  noname.cbSize = sizeof noname;
  noname.lpfnWndProc = LoggingProc;
  EXPECT_EQ(RegisterClassExW(&noname), 0);
  noname.lpszClassName = u"NoProcedure";
  noname.lpfnWndProc = nullptr;
  EXPECT_EQ(RegisterClassExW(&noname), 0);
  noname.lpfnWndProc = LoggingProc;
  noname.cbWndExtra = -4;
  EXPECT_EQ(RegisterClassExW(&noname), 0);
  EXPECT_FALSE(UnregisterClassW(nullptr, nullptr));
  EXPECT_FALSE(UnregisterClassA("", nullptr));
  EXPECT_EQ(GetWindow(w, 99), nullptr);
  EXPECT_EQ(GetAncestor(w, 99), nullptr);
  EXPECT_EQ(GetWindowLongW(w, -1000), 0);
  EXPECT_EQ(SetWindowLongW(w, 1 << 20, 5), 0);
  EXPECT_EQ(GetClassLongPtrW(w, 4096), 0u);
  EXPECT_FALSE(SetPropW(w, nullptr, nullptr));
  EXPECT_FALSE(InvalidateRgn(w, reinterpret_cast<HRGN>(intptr_t{77}), TRUE));
  EXPECT_EQ(GetUpdateRgn(w, reinterpret_cast<HRGN>(intptr_t{77}), TRUE), 0);
  EXPECT_EQ(SetParent(w, w), nullptr);
  // Messages whose pointers are missing are answered without touching them.
  for (UINT msg : {WM_GETTEXT, WM_SETTEXT, WM_NCCALCSIZE, WM_WINDOWPOSCHANGING, WM_WINDOWPOSCHANGED,
                   WM_NCCREATE, WM_ERASEBKGND, WM_SETCURSOR, WM_NCHITTEST, WM_GETMINMAXINFO,
                   WM_MOUSEACTIVATE}) {
    SendMessageW(w, msg, 100, 0);
    SendMessageA(w, msg, 100, 0);
  }
  EXPECT_TRUE(IsWindow(w));
  // Garbage device contexts and regions are refused.
  EXPECT_EQ(ReleaseDC(w, reinterpret_cast<HDC>(intptr_t{5})), 0);
  EXPECT_EQ(WindowFromDC(nullptr), nullptr);
  EXPECT_EQ(SendMessageW(w, WM_ERASEBKGND, 12345, 0), 0);
  // Input far off the screen and odd keys go nowhere harmful.
  InjectMouseMove(-100000, 100000);
  InjectMouseWheel(1 << 30);
  InjectKey(0, true);
  InjectKey(999, true);
  InjectKey(VK_F10, true);
  InjectKey(VK_F10, false);
  InjectMouseButton(static_cast<MouseButton>(42), true);
  InjectChar(0);
  RunUntilIdle();
  EXPECT_TRUE(IsWindow(w));
  // The tree refuses to grow without end.
  HWND parent = w;
  int depth = 0;
  for (; depth < 1000; ++depth) {
    HWND c = Child(parent, 0, 0, 10, 10);
    if (c == nullptr) break;
    parent = c;
  }
  EXPECT_LT(depth, 1000);
  InvalidateRect(w, nullptr, TRUE);
  RunUntilIdle();
  EXPECT_TRUE(DestroyWindow(w));
}

TEST_F(UserBadInputTest, ProceduresThatMisbehaveCannotHangThePump) {
  HWND w = Top(0, 0, 10, 10);
  L().handlers[WM_USER] = [](HWND h, WPARAM, LPARAM, bool*) -> LRESULT {
    PostMessageW(h, WM_USER, 0, 0);  // for ever
    return 0;
  };
  PostMessageW(w, WM_USER, 0, 0);
  EXPECT_EQ(RunUntilIdle(), 1000000);
  L().handlers.clear();
  RunUntilIdle();
  // A procedure that destroys windows while input is routed.
  HWND a = Top(0, 0, 100, 100);
  Child(a, 0, 0, 50, 50);
  RunUntilIdle();
  L().handlers[WM_NCHITTEST] = [a](HWND, WPARAM, LPARAM, bool*) -> LRESULT {
    DestroyWindow(a);
    return HTCLIENT;
  };
  InjectMouseMove(10, 10);
  InjectMouseButton(MouseButton::Left, true);
  InjectMouseButton(MouseButton::Left, false);
  RunUntilIdle();
  EXPECT_FALSE(IsWindow(a));
}

TEST_F(UserBadInputTest, WindowsDestroyedWhileInputIsRoutedToThem) {
  for (UINT dying : {WM_SETCURSOR, WM_MOUSEACTIVATE, WM_NCHITTEST, WM_ACTIVATE, WM_KILLFOCUS,
                     WM_PARENTNOTIFY, WM_CAPTURECHANGED}) {
    HWND a = Top(0, 0, 100, 100);
    HWND c = Child(a, 10, 10, 50, 50);
    HWND b = Top(200, 0, 100, 100);  // active, so a click on a activates it
    SetCapture(b);
    RunUntilIdle();
    L().handlers[dying] = [](HWND h, WPARAM, LPARAM, bool* handled) -> LRESULT {
      *handled = false;
      DestroyWindow(GetAncestor(h, GA_ROOT));
      return 0;
    };
    ReleaseCapture();
    InjectMouseMove(20, 20);
    InjectMouseButton(MouseButton::Left, true);
    InjectMouseButton(MouseButton::Left, false);
    InjectKey('A', true);
    RunUntilIdle();
    SetFocus(c);
    SetFocus(nullptr);
    L().handlers.clear();
    InjectKey('A', false);
    RunUntilIdle();
    ResetDesktop();
    SetUp();
  }
}

// A long run of calls with arguments drawn at random (fixed seed): windows
// made, moved, destroyed, subclassed and sent messages, input injected and
// the clock advanced. Nothing may crash or hang.
LRESULT CALLBACK Chaos(HWND h, UINT m, WPARAM w, LPARAM l) {
  if (m == WM_USER && (w & 1) != 0) DestroyWindow(h);
  if (m == WM_PAINT && (w & 2) != 0) InvalidateRect(h, nullptr, TRUE);
  return DefWindowProcW(h, m, w, l);
}

TEST_F(UserBadInputTest, RandomCallsNeverCrash) {
  // VANTOR_CHAOS_SEED runs another sequence, for hunting by hand.
  const char* seed = std::getenv("VANTOR_CHAOS_SEED");
  std::mt19937 rng(seed != nullptr ? static_cast<unsigned>(std::strtoul(seed, nullptr, 10))
                                   : 20240611u);
  auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
  std::vector<HWND> windows{nullptr};
  for (int step = 0; step < 4000; ++step) {
    HWND h = windows[static_cast<size_t>(pick(static_cast<int>(windows.size())))];
    const int x = pick(2000) - 500, y = pick(1500) - 500;
    switch (pick(16)) {
      case 0:
        windows.push_back(
            Top(x, y, pick(400), pick(400), WS_POPUP | WS_VISIBLE | (pick(2) ? WS_CAPTION : 0)));
        break;
      case 1:
        windows.push_back(Child(h, x / 4, y / 4, pick(200), pick(200), pick(9)));
        break;
      case 2:
        DestroyWindow(h);
        break;
      case 3:
        SetWindowPos(h, pick(2) ? HWND_TOPMOST : HWND_BOTTOM, x, y, pick(300), pick(300),
                     static_cast<UINT>(pick(0x80)));
        break;
      case 4:
        ShowWindow(h, pick(12));
        break;
      case 5:
        SetWindowLongPtrW(h, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Chaos));
        break;
      case 6:
        SendMessageW(h, WM_USER, static_cast<WPARAM>(pick(4)), 0);
        break;
      case 7:
        InjectMouseMove(x, y);
        break;
      case 8:
        InjectMouseButton(static_cast<MouseButton>(pick(5)), pick(2) != 0);
        break;
      case 9:
        InjectKey(pick(256), pick(2) != 0);
        break;
      case 10:
        Clock::Advance(static_cast<DWORD>(pick(600)));
        break;
      case 11:
        SetTimer(h, static_cast<UINT_PTR>(pick(3)), static_cast<UINT>(pick(100)), nullptr);
        break;
      case 12:
        SetCapture(h);
        break;
      case 13:
        SetWindowRgn(h, CreateEllipticRgn(0, 0, pick(100), pick(100)), TRUE);
        break;
      case 14:
        SetParent(h, windows[static_cast<size_t>(pick(static_cast<int>(windows.size())))]);
        break;
      default: {
        TRACKMOUSEEVENT t{sizeof t, TME_HOVER | TME_LEAVE, h, static_cast<DWORD>(pick(500))};
        TrackMouseEvent(&t);
        break;
      }
    }
    if (pick(4) == 0) RunUntilIdle();
  }
  RunUntilIdle();
  SUCCEED();
}

}  // namespace
}  // namespace vantor::platform::test
