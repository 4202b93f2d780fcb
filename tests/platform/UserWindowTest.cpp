// Windows: creation and destruction sequences, the tree, placement, text,
// window longs and properties.
#include <cstring>

#include "UserTestSupport.h"
#include "platform/Gdi.h"

namespace vantor::platform::test {
namespace {

using UserWindowTest = UserTest;

TEST_F(UserWindowTest, CreationSendsTheMessagesInThePlatformsOrder) {
  HWND w = Top(10, 20, 200, 100, WS_POPUP);
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(
      L().Sequence({WM_GETMINMAXINFO, WM_NCCREATE, WM_NCCALCSIZE, WM_CREATE, WM_SIZE, WM_MOVE}),
      (std::vector<UINT>{WM_NCCREATE, WM_NCCALCSIZE, WM_CREATE, WM_SIZE, WM_MOVE}));
  const auto size = L().Of(WM_SIZE);
  ASSERT_EQ(size.size(), 1u);
  EXPECT_EQ(size[0].lparam, MAKELPARAM(200, 100));
  const auto move = L().Of(WM_MOVE);
  EXPECT_EQ(move[0].lparam, MAKELPARAM(10, 20));
  EXPECT_FALSE(IsWindowVisible(w));
}

TEST_F(UserWindowTest, OverlappedWindowsAskForTheirTrackingSizeFirst) {
  L().handlers[WM_GETMINMAXINFO] = [](HWND, WPARAM, LPARAM l, bool*) -> LRESULT {
    reinterpret_cast<MINMAXINFO*>(l)->ptMinTrackSize = POINT{300, 200};
    return 0;
  };
  HWND w = Top(0, 0, 100, 100, WS_OVERLAPPEDWINDOW);
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(L().messages.front().msg, static_cast<UINT>(WM_GETMINMAXINFO));
  RECT r{};
  GetWindowRect(w, &r);
  EXPECT_EQ(r.right - r.left, 300);
  EXPECT_EQ(r.bottom - r.top, 200);
}

TEST_F(UserWindowTest, CreateStructCarriesTheArguments) {
  int marker = 7;
  CREATESTRUCTW seen{};
  String name;
  L().handlers[WM_CREATE] = [&](HWND, WPARAM, LPARAM l, bool*) -> LRESULT {
    seen = *reinterpret_cast<CREATESTRUCTW*>(l);
    name = seen.lpszName;
    return 0;
  };
  HWND parent = Top(0, 0, 300, 300);
  HWND c = CreateWindowExW(WS_EX_CLIENTEDGE, u"VantorTestWindow", u"Nome", WS_CHILD, 5, 6, 70, 80,
                           parent, reinterpret_cast<HMENU>(intptr_t{42}), nullptr, &marker);
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(seen.lpCreateParams, &marker);
  EXPECT_EQ(seen.hwndParent, parent);
  EXPECT_EQ(seen.x, 5);
  EXPECT_EQ(seen.y, 6);
  EXPECT_EQ(seen.cx, 70);
  EXPECT_EQ(seen.cy, 80);
  EXPECT_EQ(seen.dwExStyle, WS_EX_CLIENTEDGE);
  EXPECT_EQ(name, u"Nome");
  EXPECT_EQ(GetDlgCtrlID(c), 42);
  EXPECT_EQ(GetDlgItem(parent, 42), c);
}

TEST_F(UserWindowTest, RefusedCreationLeavesNoWindow) {
  L().handlers[WM_NCCREATE] = [](HWND, WPARAM, LPARAM, bool*) -> LRESULT { return FALSE; };
  EXPECT_EQ(Top(0, 0, 10, 10), nullptr);
  EXPECT_EQ(L().Of(WM_NCDESTROY).size(), 1u);
  L().handlers.clear();
  L().handlers[WM_CREATE] = [](HWND, WPARAM, LPARAM, bool*) -> LRESULT { return -1; };
  Clear();
  EXPECT_EQ(Top(0, 0, 10, 10), nullptr);
  EXPECT_EQ(L().Sequence({WM_DESTROY, WM_NCDESTROY}),
            (std::vector<UINT>{WM_DESTROY, WM_NCDESTROY}));
  EXPECT_EQ(GetTopWindow(nullptr), nullptr);
}

TEST_F(UserWindowTest, BadCreationArgumentsFail) {
  EXPECT_EQ(CreateWindowExW(0, u"NoSuchClass", u"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr,
                            nullptr),
            nullptr);
  EXPECT_EQ(GetLastError(), ERROR_CANNOT_FIND_WND_CLASS);
  EXPECT_EQ(
      CreateWindowExW(0, nullptr, u"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr),
      nullptr);
  // A child needs a parent.
  EXPECT_EQ(Child(nullptr, 0, 0, 1, 1), nullptr);
  EXPECT_EQ(Child(reinterpret_cast<HWND>(intptr_t{0x123456}), 0, 0, 1, 1), nullptr);
  // Negative and huge sizes are kept sane.
  HWND w = Top(0, 0, -50, -50);
  RECT r{};
  GetWindowRect(w, &r);
  EXPECT_EQ(r.right - r.left, 0);
  HWND huge = Top(-2000000000, 2000000000, 2000000000, 2000000000);
  ASSERT_NE(huge, nullptr);
  EXPECT_TRUE(DestroyWindow(huge));
}

TEST_F(UserWindowTest, ClassesAreRegisteredOnceAndNotDroppedWhileInUse) {
  WNDCLASSEXW wc{};
  wc.cbSize = sizeof wc;
  wc.lpfnWndProc = LoggingProc;
  wc.lpszClassName = u"vantortestwindow";  // case does not matter
  EXPECT_EQ(RegisterClassExW(&wc), 0);
  EXPECT_EQ(GetLastError(), ERROR_CLASS_ALREADY_EXISTS);
  wc.cbSize = 0;
  wc.lpszClassName = u"Other";
  EXPECT_EQ(RegisterClassExW(&wc), 0);
  HWND w = Top(0, 0, 10, 10);
  EXPECT_FALSE(UnregisterClassW(u"VantorTestWindow", nullptr));
  EXPECT_EQ(GetLastError(), ERROR_CLASS_HAS_WINDOWS);
  DestroyWindow(w);
  EXPECT_TRUE(UnregisterClassW(u"VantorTestWindow", nullptr));
  EXPECT_FALSE(UnregisterClassW(u"VantorTestWindow", nullptr));
}

std::string g_narrow_create_name;

LRESULT CALLBACK NarrowDefault(HWND h, UINT m, WPARAM w, LPARAM l) {
  if (m == WM_NCCREATE) g_narrow_create_name = reinterpret_cast<CREATESTRUCTA*>(l)->lpszName;
  return DefWindowProcA(h, m, w, l);
}

TEST_F(UserWindowTest, ClassesCanBeNamedByAtomAndNarrowText) {
  WNDCLASSA wc{};
  wc.lpfnWndProc = NarrowDefault;
  wc.lpszClassName = "Estreito";
  const ATOM atom = RegisterClassA(&wc);
  ASSERT_GE(atom, 0xC000);
  HWND w = CreateWindowExW(0, MAKEINTATOM(atom), u"Olá", WS_POPUP, 0, 0, 5, 5, nullptr, nullptr,
                           nullptr, nullptr);
  ASSERT_NE(w, nullptr);
  EXPECT_FALSE(IsWindowUnicode(w));
  EXPECT_EQ(g_narrow_create_name, "Ol\xE1");
  WCHAR title[8];
  EXPECT_EQ(GetWindowTextW(w, title, 8), 3);
  EXPECT_EQ(String(title), u"Olá");
  HWND n = CreateWindowExA(0, "estreito", "Pre\xE7o", WS_POPUP, 0, 0, 5, 5, nullptr, nullptr,
                           nullptr, nullptr);
  ASSERT_NE(n, nullptr);
  EXPECT_EQ(g_narrow_create_name, "Pre\xE7o");
  EXPECT_EQ(GetWindowTextLengthW(n), 5);
  WCHAR name[32];
  EXPECT_EQ(GetClassNameW(w, name, 32), 8);
  EXPECT_EQ(String(name), u"Estreito");
  char small[4];
  EXPECT_EQ(GetClassNameA(w, small, 4), 3);
  EXPECT_STREQ(small, "Est");
  EXPECT_TRUE(IsWindowUnicode(GetDesktopWindow()));
}

TEST_F(UserWindowTest, DestroyGoesParentFirstForDestroyAndChildrenFirstForNcDestroy) {
  HWND p = Top(0, 0, 100, 100);
  HWND c = Child(p, 0, 0, 10, 10);
  HWND g = Child(c, 0, 0, 5, 5);
  Clear();
  EXPECT_TRUE(DestroyWindow(p));
  std::vector<std::pair<HWND, UINT>> order;
  for (const auto& m : L().messages) {
    if (m.msg == WM_DESTROY || m.msg == WM_NCDESTROY) order.emplace_back(m.hwnd, m.msg);
  }
  const std::vector<std::pair<HWND, UINT>> expected{{p, WM_DESTROY},   {c, WM_DESTROY},
                                                    {g, WM_DESTROY},   {g, WM_NCDESTROY},
                                                    {c, WM_NCDESTROY}, {p, WM_NCDESTROY}};
  EXPECT_EQ(order, expected);
  EXPECT_FALSE(IsWindow(p));
  EXPECT_FALSE(IsWindow(c));
  EXPECT_FALSE(IsWindow(g));
}

TEST_F(UserWindowTest, HandleStaysUsableInNcDestroyAndDeadAfter) {
  HWND w = Top(0, 0, 10, 10);
  SetWindowLongPtrW(w, GWLP_USERDATA, 99);
  LONG_PTR seen = 0;
  L().handlers[WM_NCDESTROY] = [&](HWND h, WPARAM, LPARAM, bool*) -> LRESULT {
    seen = GetWindowLongPtrW(h, GWLP_USERDATA);
    return 0;
  };
  DestroyWindow(w);
  EXPECT_EQ(seen, 99);
  // A dead handle fails everywhere, and never reaches another window.
  HWND other = Top(0, 0, 10, 10);
  EXPECT_NE(other, w);
  RECT r{};
  EXPECT_FALSE(GetWindowRect(w, &r));
  EXPECT_FALSE(ShowWindow(w, SW_SHOW));
  EXPECT_FALSE(DestroyWindow(w));
  EXPECT_EQ(SendMessageW(w, WM_USER, 0, 0), 0);
  EXPECT_FALSE(PostMessageW(w, WM_USER, 0, 0));
  EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
  EXPECT_FALSE(SetWindowPos(w, nullptr, 0, 0, 1, 1, 0));
  EXPECT_FALSE(InvalidateRect(w, nullptr, TRUE));
  EXPECT_EQ(SetWindowLongW(w, GWL_STYLE, 0), 0);
  EXPECT_EQ(GetDC(w), nullptr);
  EXPECT_EQ(SetTimer(w, 1, 10, nullptr), 0u);
  EXPECT_FALSE(DestroyWindow(nullptr));
  EXPECT_FALSE(DestroyWindow(GetDesktopWindow()));
}

TEST_F(UserWindowTest, DestroyInsideItsOwnMessageIsSafe) {
  HWND w = Top(0, 0, 50, 50);
  HWND c = Child(w, 0, 0, 20, 20);
  L().handlers[WM_USER] = [](HWND h, WPARAM, LPARAM, bool*) -> LRESULT {
    EXPECT_TRUE(DestroyWindow(GetAncestor(h, GA_ROOT)));
    // Still answering, on a handle that is gone.
    EXPECT_FALSE(IsWindow(h));
    EXPECT_EQ(SendMessageW(h, WM_USER + 1, 0, 0), 0);
    return 5;
  };
  EXPECT_EQ(SendMessageW(c, WM_USER, 0, 0), 5);
  EXPECT_FALSE(IsWindow(w));
  // A destroy from WM_DESTROY itself is a no-op.
  L().handlers.clear();
  HWND x = Top(0, 0, 5, 5);
  L().handlers[WM_DESTROY] = [](HWND h, WPARAM, LPARAM, bool*) -> LRESULT {
    EXPECT_TRUE(DestroyWindow(h));
    return 0;
  };
  EXPECT_TRUE(DestroyWindow(x));
  EXPECT_EQ(L().Of(WM_NCDESTROY, x).size(), 1u);
  // Posted messages for it are gone too.
  HWND y = Top(0, 0, 5, 5);
  PostMessageW(y, WM_USER + 5, 0, 0);
  DestroyWindow(y);
  Clear();
  RunUntilIdle();
  EXPECT_TRUE(L().Of(WM_USER + 5).empty());
}

TEST_F(UserWindowTest, NewChildrenGoToTheBottomOfTheZOrder) {
  HWND p = Top(0, 0, 100, 100);
  HWND a = Child(p, 0, 0, 10, 10, 1);
  HWND b = Child(p, 0, 0, 10, 10, 2);
  HWND c = Child(p, 0, 0, 10, 10, 3);
  EXPECT_EQ(GetWindow(p, GW_CHILD), a);
  EXPECT_EQ(GetWindow(a, GW_HWNDNEXT), b);
  EXPECT_EQ(GetWindow(c, GW_HWNDPREV), b);
  EXPECT_EQ(GetWindow(b, GW_HWNDFIRST), a);
  EXPECT_EQ(GetWindow(a, GW_HWNDLAST), c);
  EXPECT_EQ(GetWindow(c, GW_HWNDNEXT), nullptr);
  EXPECT_EQ(GetWindow(a, GW_HWNDPREV), nullptr);
  SetWindowPos(c, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  EXPECT_EQ(GetWindow(p, GW_CHILD), c);
  SetWindowPos(c, b, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  EXPECT_EQ(GetWindow(b, GW_HWNDNEXT), c);
  SetWindowPos(a, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  EXPECT_EQ(GetWindow(p, GW_CHILD), b);
  EXPECT_EQ(GetWindow(b, GW_HWNDLAST), a);
}

TEST_F(UserWindowTest, TopMostWindowsStayAbove) {
  HWND a = Top(0, 0, 10, 10);
  HWND t = Top(0, 0, 10, 10, WS_POPUP | WS_VISIBLE, WS_EX_TOPMOST);
  HWND b = Top(0, 0, 10, 10);
  EXPECT_EQ(GetTopWindow(nullptr), t);
  EXPECT_EQ(GetWindow(t, GW_HWNDNEXT), b);
  EXPECT_EQ(GetWindow(b, GW_HWNDNEXT), a);
  SetWindowPos(a, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  EXPECT_EQ(GetTopWindow(nullptr), a);
  EXPECT_NE(GetWindowLongW(a, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
  SetWindowPos(a, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  EXPECT_EQ(GetTopWindow(nullptr), t);
  EXPECT_EQ(GetWindow(t, GW_HWNDNEXT), a);
}

TEST_F(UserWindowTest, ClientAreaFollowsTheFrameStyles) {
  struct Case {
    DWORD style, ex;
    RECT client;  // screen, for a window at (100,100) 200x150
  };
  const Case cases[] = {
      {WS_POPUP, 0, {100, 100, 300, 250}},
      {WS_POPUP | WS_BORDER, 0, {101, 101, 299, 249}},
      {WS_POPUP | WS_DLGFRAME, 0, {103, 103, 297, 247}},
      {WS_POPUP | WS_THICKFRAME, 0, {104, 104, 296, 246}},
      {WS_POPUP | WS_CAPTION, 0, {103, 122, 297, 247}},
      {WS_OVERLAPPEDWINDOW, 0, {104, 123, 296, 246}},
      {WS_POPUP, WS_EX_CLIENTEDGE, {102, 102, 298, 248}},
      {WS_POPUP | WS_VSCROLL | WS_HSCROLL, 0, {100, 100, 283, 233}},
  };
  for (const auto& c : cases) {
    HWND w = Top(100, 100, 200, 150, c.style, c.ex);
    POINT o{0, 0};
    ClientToScreen(w, &o);
    RECT r{};
    GetClientRect(w, &r);
    EXPECT_EQ(o.x, c.client.left) << std::hex << c.style;
    EXPECT_EQ(o.y, c.client.top) << std::hex << c.style;
    EXPECT_EQ(r.right, c.client.right - c.client.left) << std::hex << c.style;
    EXPECT_EQ(r.bottom, c.client.bottom - c.client.top) << std::hex << c.style;
    DestroyWindow(w);
  }
}

TEST_F(UserWindowTest, CoordinatesMapThroughTheTree) {
  HWND p = Top(100, 50, 300, 300, WS_POPUP | WS_BORDER | WS_VISIBLE);
  HWND c = Child(p, 10, 20, 100, 100);
  HWND g = Child(c, 3, 4, 10, 10);
  POINT pt{1, 1};
  ClientToScreen(g, &pt);
  EXPECT_EQ(pt.x, 100 + 1 + 10 + 3 + 1);
  EXPECT_EQ(pt.y, 50 + 1 + 20 + 4 + 1);
  ScreenToClient(g, &pt);
  EXPECT_EQ(pt.x, 1);
  RECT r{};
  GetWindowRect(g, &r);
  EXPECT_EQ(r.left, 114);
  EXPECT_EQ(r.top, 75);
  POINT pts[2] = {{0, 0}, {5, -5}};
  const int delta = MapWindowPoints(g, p, pts, 2);
  EXPECT_EQ(pts[0].x, 13);
  EXPECT_EQ(pts[0].y, 24);
  EXPECT_EQ(pts[1].y, 19);
  EXPECT_EQ(LOWORD(static_cast<uint32_t>(delta)), 13);
  EXPECT_EQ(HIWORD(static_cast<uint32_t>(delta)), 24);
  POINT back[1] = {{0, 0}};
  const int neg = MapWindowPoints(p, g, back, 1);
  EXPECT_EQ(back[0].x, -13);
  EXPECT_EQ(static_cast<SHORT>(LOWORD(static_cast<uint32_t>(neg))), -13);
  POINT s[1] = {{0, 0}};
  MapWindowPoints(nullptr, g, s, 1);
  EXPECT_EQ(s[0].x, -114);
  EXPECT_EQ(MapWindowPoints(reinterpret_cast<HWND>(intptr_t{77}), g, s, 1), 0);
}

TEST_F(UserWindowTest, SetWindowPosReportsMovesAndSizesThroughDefWindowProc) {
  HWND w = Top(0, 0, 100, 100);
  Clear();
  SetWindowPos(w, nullptr, 5, 6, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  EXPECT_EQ(
      L().Sequence({WM_WINDOWPOSCHANGING, WM_NCCALCSIZE, WM_WINDOWPOSCHANGED, WM_MOVE, WM_SIZE}),
      (std::vector<UINT>{WM_WINDOWPOSCHANGING, WM_NCCALCSIZE, WM_WINDOWPOSCHANGED, WM_MOVE}));
  Clear();
  MoveWindow(w, 5, 6, 40, 30, TRUE);
  EXPECT_EQ(L().Sequence({WM_MOVE, WM_SIZE}), (std::vector<UINT>{WM_SIZE}));
  EXPECT_EQ(L().Of(WM_SIZE)[0].lparam, MAKELPARAM(40, 30));
  // The procedure may change the position while it is being changed.
  L().handlers[WM_WINDOWPOSCHANGING] = [](HWND, WPARAM, LPARAM l, bool*) -> LRESULT {
    reinterpret_cast<WINDOWPOS*>(l)->cx = 77;
    return 0;
  };
  MoveWindow(w, 0, 0, 10, 10, TRUE);
  RECT r{};
  GetWindowRect(w, &r);
  EXPECT_EQ(r.right, 77);
  EXPECT_EQ(r.bottom, 10);
}

TEST_F(UserWindowTest, ShowAndHideSendShowWindowAndChangeVisibility) {
  HWND w = Top(0, 0, 10, 10, WS_POPUP);
  HWND c = Child(w, 0, 0, 5, 5);
  EXPECT_TRUE(GetWindowLongW(c, GWL_STYLE) & WS_VISIBLE);
  EXPECT_FALSE(IsWindowVisible(c));  // its parent is hidden
  Clear();
  EXPECT_FALSE(ShowWindow(w, SW_SHOW));
  EXPECT_EQ(L().Of(WM_SHOWWINDOW, w).size(), 1u);
  EXPECT_EQ(L().Of(WM_SHOWWINDOW, w)[0].wparam, static_cast<WPARAM>(TRUE));
  EXPECT_TRUE(IsWindowVisible(c));
  EXPECT_TRUE(ShowWindow(w, SW_SHOW));
  EXPECT_TRUE(ShowWindow(w, SW_HIDE));
  EXPECT_FALSE(IsWindowVisible(w));
  EXPECT_FALSE(ShowWindow(w, SW_HIDE));
  EXPECT_FALSE(ShowWindow(w, 99));
  ShowWindow(w, SW_MAXIMIZE);
  EXPECT_TRUE(IsZoomed(w));
  RECT r{};
  GetWindowRect(w, &r);
  EXPECT_EQ(r.bottom, 760);  // the work area above the task bar
  ShowWindow(w, SW_MINIMIZE);
  EXPECT_TRUE(IsIconic(w));
  EXPECT_TRUE(TopLevelWindows().empty());  // nothing to show on the screen
  ShowWindow(w, SW_RESTORE);
  EXPECT_FALSE(IsIconic(w));
  EXPECT_TRUE(IsZoomed(w));  // a maximized window comes back maximized
  ShowWindow(w, SW_RESTORE);
  EXPECT_FALSE(IsZoomed(w));
  GetWindowRect(w, &r);
  EXPECT_EQ(r.right, 10);
  EXPECT_EQ(r.bottom, 10);
}

TEST_F(UserWindowTest, ParentOwnerAndAncestors) {
  HWND owner = Top(0, 0, 10, 10);
  HWND popup = CreateWindowExW(0, u"VantorTestWindow", u"", WS_POPUP, 0, 0, 5, 5, owner, nullptr,
                               nullptr, nullptr);
  HWND overlapped = CreateWindowExW(0, u"VantorTestWindow", u"", WS_OVERLAPPED, 0, 0, 200, 200,
                                    owner, nullptr, nullptr, nullptr);
  HWND child = Child(owner, 0, 0, 5, 5);
  HWND grandchild = Child(child, 0, 0, 5, 5);
  EXPECT_EQ(GetParent(popup), owner);
  EXPECT_EQ(GetParent(overlapped), nullptr);
  EXPECT_EQ(GetWindow(overlapped, GW_OWNER), owner);
  EXPECT_EQ(GetParent(child), owner);
  EXPECT_EQ(GetAncestor(grandchild, GA_PARENT), child);
  EXPECT_EQ(GetAncestor(grandchild, GA_ROOT), owner);
  EXPECT_EQ(GetAncestor(popup, GA_PARENT), GetDesktopWindow());
  EXPECT_EQ(GetAncestor(popup, GA_ROOTOWNER), owner);
  EXPECT_TRUE(IsChild(owner, grandchild));
  EXPECT_FALSE(IsChild(owner, popup));
  EXPECT_FALSE(IsChild(child, owner));
  // Owned windows go with their owner.
  DestroyWindow(owner);
  EXPECT_FALSE(IsWindow(popup));
  EXPECT_FALSE(IsWindow(overlapped));
}

struct Collected {
  std::vector<HWND> seen;
  size_t limit = 100;
};

BOOL CALLBACK Collect(HWND h, LPARAM l) {
  auto* out = reinterpret_cast<Collected*>(l);
  out->seen.push_back(h);
  return out->seen.size() < out->limit ? TRUE : FALSE;
}

TEST_F(UserWindowTest, EnumerationWalksTopLevelsAndDescendantsInOrder) {
  HWND a = Top(0, 0, 10, 10);
  HWND b = Top(0, 0, 10, 10);
  HWND c1 = Child(a, 0, 0, 5, 5, 1);
  HWND g = Child(c1, 0, 0, 5, 5, 2);
  HWND c2 = Child(a, 0, 0, 5, 5, 3);
  Collected tops;
  EXPECT_TRUE(EnumWindows(Collect, reinterpret_cast<LPARAM>(&tops)));
  EXPECT_EQ(tops.seen, (std::vector<HWND>{b, a}));
  Collected all;
  EXPECT_TRUE(EnumChildWindows(a, Collect, reinterpret_cast<LPARAM>(&all)));
  EXPECT_EQ(all.seen, (std::vector<HWND>{c1, g, c2}));
  HWND c3 = Child(a, 0, 0, 5, 5, 4);
  Collected some;
  some.limit = 3;
  EXPECT_FALSE(EnumChildWindows(a, Collect, reinterpret_cast<LPARAM>(&some)));  // stopped
  EXPECT_EQ(some.seen.size(), 3u);
  EXPECT_NE(some.seen.back(), c3);
  EXPECT_FALSE(EnumChildWindows(reinterpret_cast<HWND>(intptr_t{9}), Collect, 0));
  EXPECT_FALSE(EnumWindows(nullptr, 0));
}

TEST_F(UserWindowTest, SetParentMovesAWindowBetweenParents) {
  HWND a = Top(0, 0, 100, 100);
  HWND b = Top(200, 0, 100, 100);
  HWND c = Child(a, 10, 10, 5, 5);
  EXPECT_EQ(SetParent(c, b), a);
  EXPECT_EQ(GetParent(c), b);
  EXPECT_EQ(GetWindow(a, GW_CHILD), nullptr);
  RECT r{};
  GetWindowRect(c, &r);
  EXPECT_EQ(r.left, 210);
  EXPECT_EQ(SetParent(b, c), nullptr);  // no cycles
  EXPECT_EQ(SetParent(c, reinterpret_cast<HWND>(intptr_t{5})), nullptr);
}

TEST_F(UserWindowTest, TextGoesThroughWmSetTextAndWmGetText) {
  HWND w = Top(0, 0, 10, 10);
  EXPECT_TRUE(SetWindowTextW(w, u"Ação"));
  EXPECT_EQ(GetWindowTextLengthW(w), 4);
  WCHAR buffer[16];
  EXPECT_EQ(GetWindowTextW(w, buffer, 16), 4);
  EXPECT_EQ(String(buffer), u"Ação");
  EXPECT_EQ(GetWindowTextW(w, buffer, 3), 2);
  EXPECT_EQ(String(buffer), u"Aç");
  char narrow[16];
  EXPECT_EQ(GetWindowTextA(w, narrow, 16), 4);
  EXPECT_EQ(std::string(narrow), "A\xE7\xE3o");
  EXPECT_TRUE(SetWindowTextA(w, "Pre\xE7o \x80"));
  EXPECT_EQ(GetWindowTextW(w, buffer, 16), 7);
  EXPECT_EQ(String(buffer), u"Preço €");
  EXPECT_EQ(GetWindowTextW(w, buffer, 0), 0);
  EXPECT_EQ(GetWindowTextW(nullptr, buffer, 16), 0);
  EXPECT_EQ(buffer[0], 0);
  EXPECT_TRUE(SetWindowTextW(w, nullptr));
  EXPECT_EQ(GetWindowTextLengthW(w), 0);
  EXPECT_EQ(L().Of(WM_SETTEXT, w).size(), 3u);
}

TEST_F(UserWindowTest, WindowLongsAndExtraBytes) {
  HWND w = Top(0, 0, 10, 10);
  EXPECT_EQ(SetWindowLongPtrW(w, GWLP_USERDATA, 1234), 0);
  EXPECT_EQ(GetWindowLongPtrW(w, GWLP_USERDATA), 1234);
  EXPECT_EQ(SetWindowLongW(w, 0, 0x11223344), 0);
  EXPECT_EQ(GetWindowLongW(w, 0), 0x11223344);
  EXPECT_EQ(SetWindowLongPtrW(w, 8, -5), 0);
  EXPECT_EQ(GetWindowLongPtrW(w, 8), -5);
  EXPECT_EQ(GetWindowLongW(w, 13), 0);  // 13 + 4 > 16 extra bytes
  EXPECT_EQ(GetLastError(), ERROR_INVALID_INDEX);
  EXPECT_EQ(GetWindowLongW(w, -100), 0);
  Clear();
  const LONG old = SetWindowLongW(w, GWL_STYLE, static_cast<LONG>(WS_POPUP | WS_BORDER));
  EXPECT_EQ(static_cast<DWORD>(old) & WS_POPUP, WS_POPUP);
  EXPECT_EQ(L().Sequence({WM_STYLECHANGING, WM_STYLECHANGED}),
            (std::vector<UINT>{WM_STYLECHANGING, WM_STYLECHANGED}));
  EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(w, GWL_STYLE)), WS_POPUP | WS_BORDER);
  SetWindowLongW(w, GWL_EXSTYLE, static_cast<LONG>(WS_EX_LAYERED));
  EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(w, GWL_EXSTYLE)), WS_EX_LAYERED);
  HWND c = Child(w, 0, 0, 1, 1, 9);
  EXPECT_EQ(GetWindowLongW(c, GWL_ID), 9);
  EXPECT_EQ(SetWindowLongW(c, GWL_ID, 10), 9);
  EXPECT_EQ(GetDlgCtrlID(c), 10);
}

TEST_F(UserWindowTest, PropertiesAreKeyedWithoutCase) {
  HWND w = Top(0, 0, 10, 10);
  int a = 0, b = 0;
  EXPECT_TRUE(SetPropW(w, u"Magic", &a));
  EXPECT_EQ(GetPropW(w, u"MAGIC"), &a);
  EXPECT_TRUE(SetPropW(w, u"magic", &b));
  EXPECT_EQ(GetPropW(w, u"Magic"), &b);
  EXPECT_TRUE(SetPropW(w, MAKEINTATOM(7), &a));
  EXPECT_EQ(GetPropW(w, MAKEINTATOM(7)), &a);
  EXPECT_EQ(RemovePropW(w, u"MaGiC"), &b);
  EXPECT_EQ(GetPropW(w, u"Magic"), nullptr);
  EXPECT_EQ(RemovePropW(w, u"Magic"), nullptr);
  EXPECT_FALSE(SetPropW(nullptr, u"x", &a));
  EXPECT_EQ(GetPropW(w, nullptr), nullptr);
}

TEST_F(UserWindowTest, ControlColoursDefaultToTheSystemScheme) {
  HWND w = Top(0, 0, 10, 10);
  HDC dc = GetDC(w);
  EXPECT_EQ(SendMessageW(w, WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(dc), 0),
            reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW)));
  EXPECT_EQ(GetBkColor(dc), GetSysColor(COLOR_WINDOW));
  EXPECT_EQ(SendMessageW(w, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc), 0),
            reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_BTNFACE)));
  EXPECT_EQ(GetBkColor(dc), GetSysColor(COLOR_BTNFACE));
  EXPECT_EQ(GetTextColor(dc), GetSysColor(COLOR_WINDOWTEXT));
  ReleaseDC(w, dc);
}

TEST_F(UserWindowTest, EnableWindowReportsThePreviousState) {
  HWND w = Top(0, 0, 10, 10);
  EXPECT_FALSE(EnableWindow(w, FALSE));  // was enabled
  EXPECT_FALSE(IsWindowEnabled(w));
  EXPECT_TRUE(EnableWindow(w, FALSE));
  EXPECT_TRUE(EnableWindow(w, TRUE));
  EXPECT_TRUE(IsWindowEnabled(w));
  EXPECT_EQ(L().Of(WM_ENABLE, w).size(), 2u);
}

TEST_F(UserWindowTest, ChildWindowFromPointSeesHiddenChildren) {
  HWND p = Top(0, 0, 100, 100);
  HWND hidden = Child(p, 10, 10, 20, 20, 1, WS_CHILD);
  EXPECT_EQ(ChildWindowFromPoint(p, POINT{15, 15}), hidden);
  EXPECT_EQ(ChildWindowFromPoint(p, POINT{50, 50}), p);
  EXPECT_EQ(ChildWindowFromPoint(p, POINT{150, 50}), nullptr);
  EXPECT_EQ(ChildWindowFromPoint(p, POINT{30, 30}), p);  // right edge is outside
}

}  // namespace
}  // namespace vantor::platform::test
