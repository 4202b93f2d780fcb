// The headless presenter with real windows: what the screen shows when
// windows overlap, are shaped or layered, and what a window receives when
// the presenter plays a user's clicks, wheel and typing.
#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/Gdi.h"
#include "platform/HeadlessPresenter.h"
#include "platform/User.h"
#include "tests/platform/GoldenPng.h"

namespace vantor::platform {
namespace {

struct Seen {
  UINT msg;
  WPARAM wparam;
  LPARAM lparam;
};
std::vector<Seen> g_seen;

// Paints its whole client area in the colour kept in GWLP_USERDATA and
// records the input it gets.
LRESULT CALLBACK SolidProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  switch (msg) {
    case WM_PAINT: {
      PAINTSTRUCT ps;
      HDC dc = BeginPaint(hwnd, &ps);
      RECT rc;
      GetClientRect(hwnd, &rc);
      HBRUSH brush =
          CreateSolidBrush(static_cast<COLORREF>(GetWindowLongPtrW(hwnd, GWLP_USERDATA)));
      FillRect(dc, &rc, brush);
      DeleteObject(brush);
      EndPaint(hwnd, &ps);
      return 0;
    }
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
    case WM_MOUSEWHEEL:
    case WM_CHAR:
    case WM_KEYDOWN:
      g_seen.push_back({msg, wparam, lparam});
      return 0;
    default:
      return DefWindowProcW(hwnd, msg, wparam, lparam);
  }
}

class Presenter : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetDesktop();
    g_seen.clear();
    for (const auto& [name, style] :
         {std::pair{u"VantorSolid", 0u}, {u"VantorSolidDbl", CS_DBLCLKS}}) {
      WNDCLASSEXW wc{};
      wc.cbSize = sizeof wc;
      wc.style = style;
      wc.lpfnWndProc = SolidProc;
      wc.lpszClassName = name;
      ASSERT_NE(RegisterClassExW(&wc), 0);
    }
  }
  void TearDown() override { ResetDesktop(); }

  HWND Solid(int x, int y, int w, int h, COLORREF color, DWORD exStyle = 0,
             const char16_t* cls = u"VantorSolid") {
    HWND hwnd = CreateWindowExW(exStyle, cls, u"", WS_POPUP | WS_VISIBLE, x, y, w, h, nullptr,
                                nullptr, nullptr, nullptr);
    SetWindowLongPtrW(hwnd, GWLP_USERDATA, static_cast<LONG_PTR>(color));
    InvalidateRect(hwnd, nullptr, TRUE);
    UpdateWindow(hwnd);
    return hwnd;
  }

  static uint32_t Px(COLORREF c) {
    return 0xFF000000u | uint32_t{GetRValue(c)} << 16 | uint32_t{GetGValue(c)} << 8 | GetBValue(c);
  }
};

TEST_F(Presenter, ScreenHasTheAskedSizeAndFallsBackOnNonsense) {
  HeadlessPresenter small(320, 200);
  EXPECT_EQ(small.Screen().width, 320);
  EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 320);
  EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), 200);
  HeadlessPresenter bad(-5, 0);
  EXPECT_EQ(bad.Width(), 1280);
  EXPECT_EQ(bad.Screen().height, 800);
}

TEST_F(Presenter, UpperWindowCoversLowerOne) {
  HeadlessPresenter p(200, 100);
  Solid(10, 10, 50, 40, RGB(255, 0, 0));
  Solid(40, 20, 50, 40, RGB(0, 0, 255));
  p.Pump();
  const Surface& s = p.Screen();
  EXPECT_EQ(s.At(0, 0), Px(p.DesktopColor()));
  EXPECT_EQ(s.At(10, 10), Px(RGB(255, 0, 0)));
  EXPECT_EQ(s.At(39, 20), Px(RGB(255, 0, 0)));
  EXPECT_EQ(s.At(40, 20), Px(RGB(0, 0, 255)));  // the later window is on top
  EXPECT_EQ(s.At(89, 59), Px(RGB(0, 0, 255)));
  EXPECT_EQ(s.At(90, 59), Px(p.DesktopColor()));  // right edge excluded
  EXPECT_EQ(s.At(59, 49), Px(RGB(0, 0, 255)));
}

TEST_F(Presenter, WindowRegionShapesWhatIsShown) {
  HeadlessPresenter p(100, 100);
  Solid(0, 0, 100, 100, RGB(0, 255, 0));
  HWND top = Solid(10, 10, 40, 40, RGB(255, 0, 0));
  SetWindowRgn(top, CreateEllipticRgn(0, 0, 40, 40), TRUE);
  p.Pump();
  const Surface& s = p.Screen();
  EXPECT_EQ(s.At(10, 10), Px(RGB(0, 255, 0)));  // corner outside the ellipse
  EXPECT_EQ(s.At(30, 30), Px(RGB(255, 0, 0)));  // centre inside
}

TEST_F(Presenter, LayeredWindowsBlendAndDropTheirKey) {
  HeadlessPresenter p(100, 50);
  Solid(0, 0, 100, 50, RGB(200, 100, 0));
  HWND faded = Solid(0, 0, 40, 40, RGB(0, 0, 255), WS_EX_LAYERED);
  SetLayeredWindowAttributes(faded, 0, 128, LWA_ALPHA);
  HWND keyed = Solid(50, 0, 40, 40, RGB(255, 0, 255), WS_EX_LAYERED);
  SetLayeredWindowAttributes(keyed, RGB(255, 0, 255), 255, LWA_COLORKEY);
  p.Pump();
  const Surface& s = p.Screen();
  // 128/255 of blue over (200,100,0), rounded to nearest.
  EXPECT_EQ(s.At(5, 5), Px(RGB(100, 50, 128)));
  EXPECT_EQ(s.At(60, 5), Px(RGB(200, 100, 0)));  // the key colour lets the lower one through
}

TEST_F(Presenter, ClickArrivesInClientCoordinates) {
  HeadlessPresenter p(300, 200);
  Solid(100, 50, 80, 60, RGB(1, 2, 3));
  p.Click(110, 70);
  ASSERT_GE(g_seen.size(), 2u);
  EXPECT_EQ(g_seen[0].msg, WM_LBUTTONDOWN);
  EXPECT_EQ(GET_X_LPARAM(g_seen[0].lparam), 10);
  EXPECT_EQ(GET_Y_LPARAM(g_seen[0].lparam), 20);
  EXPECT_EQ(g_seen[1].msg, WM_LBUTTONUP);
}

TEST_F(Presenter, DoubleClickOnlyForDoubleClickClassesAndOnlyWhenFast) {
  HeadlessPresenter p(300, 200);
  Solid(0, 0, 100, 100, RGB(1, 2, 3), 0, u"VantorSolidDbl");
  p.DoubleClick(10, 10);
  std::vector<UINT> msgs;
  for (const Seen& s : g_seen) msgs.push_back(s.msg);
  EXPECT_EQ(msgs,
            (std::vector<UINT>{WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP}));
  g_seen.clear();
  p.Click(10, 10);  // right after: still a single click
  p.Click(10, 10);
  msgs.clear();
  for (const Seen& s : g_seen) msgs.push_back(s.msg);
  EXPECT_EQ(msgs, (std::vector<UINT>{WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDOWN, WM_LBUTTONUP}));
}

TEST_F(Presenter, WheelAndTypingReachTheFocusWindow) {
  HeadlessPresenter p(300, 200);
  HWND w = Solid(0, 0, 100, 100, RGB(1, 2, 3));
  p.Click(50, 50);
  SetFocus(w);
  g_seen.clear();
  p.Wheel(-2);
  ASSERT_FALSE(g_seen.empty());
  EXPECT_EQ(g_seen[0].msg, WM_MOUSEWHEEL);
  EXPECT_EQ(GET_WHEEL_DELTA_WPARAM(g_seen[0].wparam), -240);
  EXPECT_EQ(GET_X_LPARAM(g_seen[0].lparam), 50);  // screen coordinates
  g_seen.clear();
  p.Type(u"Ab1,ç");
  std::u16string typed;
  for (const Seen& s : g_seen)
    if (s.msg == WM_CHAR) typed += static_cast<char16_t>(s.wparam);
  EXPECT_EQ(typed, u"Ab1,ç");
}

TEST_F(Presenter, SavesWindowsAndScreenAsPng) {
  HeadlessPresenter p(120, 80);
  HWND w = Solid(20, 10, 30, 20, RGB(10, 20, 30));
  p.Pump();
  const auto dir = std::filesystem::temp_directory_path();
  const std::string screen = (dir / "vantor-presenter-screen.png").string();
  const std::string window = (dir / "vantor-presenter-window.png").string();
  ASSERT_TRUE(p.SaveScreen(screen));
  ASSERT_TRUE(p.SaveWindow(w, window));
  const test::GoldenImage s = test::ReadPng(screen);
  const test::GoldenImage img = test::ReadPng(window);
  std::filesystem::remove(screen);
  std::filesystem::remove(window);
  ASSERT_EQ(s.width, 120);
  EXPECT_EQ(s.At(20, 10), Px(RGB(10, 20, 30)));
  ASSERT_EQ(img.width, 30);
  ASSERT_EQ(img.height, 20);
  EXPECT_EQ(img.At(29, 19), Px(RGB(10, 20, 30)));
}

TEST_F(Presenter, BadWindowsAreRefused) {
  HeadlessPresenter p(100, 100);
  EXPECT_FALSE(p.SaveWindow(nullptr, "/tmp/x.png"));
  HWND w = Solid(0, 0, 10, 10, RGB(0, 0, 0));
  DestroyWindow(w);
  EXPECT_FALSE(p.SaveWindow(w, "/tmp/x.png"));
  EXPECT_TRUE(p.WindowPixels(w).Empty());
  HWND v = Solid(0, 0, 10, 10, RGB(0, 0, 0));
  EXPECT_FALSE(p.SaveWindow(v, "/nonexistent-folder/x.png"));
  p.Click(-50, 5000);  // off the screen: must not crash
  p.Type(u"");
}

}  // namespace
}  // namespace vantor::platform
