// The tool-tip window class driven by a user's mouse through the headless
// presenter: when the tip comes and goes, where it stands, what it draws.
#include "platform/ToolTipWindow.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/Desktop.h"
#include "platform/Gdi.h"
#include "platform/HeadlessPresenter.h"
#include "tests/frame/ControlGolden.h"

namespace vantor::platform {
namespace {

constexpr COLORREF kToolColor = RGB(40, 120, 40);
constexpr COLORREF kBack = RGB(255, 250, 205);
constexpr COLORREF kFore = RGB(20, 20, 90);
constexpr UINT kInitial = 300;
constexpr UINT kAutoPop = 1000;

int g_toolMoves = 0;  // WM_MOUSEMOVE that reached the tool's own procedure

LRESULT CALLBACK ToolOwnProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  if (msg == WM_MOUSEMOVE) ++g_toolMoves;
  if (msg == WM_ERASEBKGND) {
    RECT r;
    GetClientRect(hwnd, &r);
    HBRUSH brush = CreateSolidBrush(kToolColor);
    FillRect(reinterpret_cast<HDC>(wparam), &r, brush);
    DeleteObject(brush);
    return 1;
  }
  return DefWindowProcW(hwnd, msg, wparam, lparam);
}

uint32_t Rgb(COLORREF c) {
  return static_cast<uint32_t>(GetRValue(c)) << 16 | static_cast<uint32_t>(GetGValue(c)) << 8 |
         GetBValue(c);
}

int Count(const Surface& s, COLORREF c) {
  int n = 0;
  for (int y = 0; y < s.height; ++y) {
    for (int x = 0; x < s.width; ++x) n += (s.At(x, y) & 0xFFFFFF) == Rgb(c) ? 1 : 0;
  }
  return n;
}

class ToolTipWindow : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetDesktop();
    g_toolMoves = 0;
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.lpfnWndProc = ToolOwnProc;
    wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    wc.lpszClassName = u"TipToolTest";
    ASSERT_NE(RegisterClassExW(&wc), 0);
    // 120 x 40 at (100, 100).
    tool = CreateWindowExW(0, u"TipToolTest", u"", WS_POPUP | WS_VISIBLE, 100, 100, 120, 40,
                           nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(tool, nullptr);
  }
  void TearDown() override { ResetDesktop(); }

  HWND MakeTip(DWORD style = TTS_ALWAYSTIP | TTS_NOPREFIX) {
    tip = CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, style, CW_USEDEFAULT, CW_USEDEFAULT,
                          CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, nullptr, nullptr);
    SendMessageW(tip, TTM_SETDELAYTIME, TTDT_INITIAL, kInitial);
    SendMessageW(tip, TTM_SETDELAYTIME, TTDT_AUTOPOP, kAutoPop);
    SendMessageW(tip, TTM_SETTIPBKCOLOR, kBack, 0);
    SendMessageW(tip, TTM_SETTIPTEXTCOLOR, kFore, 0);
    return tip;
  }
  BOOL AddTool(UINT flags, const char16_t* text, RECT rect = {}) {
    TOOLINFOW ti{};
    ti.cbSize = sizeof ti;
    ti.uFlags = flags;
    ti.hwnd = tool;
    ti.uId = (flags & TTF_IDISHWND) != 0 ? reinterpret_cast<UINT_PTR>(tool) : 7;
    ti.rect = rect;
    ti.lpszText = const_cast<LPWSTR>(text);
    return static_cast<BOOL>(SendMessageW(tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&ti)));
  }
  void Standard(DWORD style = TTS_ALWAYSTIP | TTS_NOPREFIX, UINT flags = 0) {
    MakeTip(style);
    ASSERT_TRUE(AddTool(TTF_IDISHWND | TTF_SUBCLASS | flags, u"Grava o cadastro do cliente"));
  }
  // Hovers and waits the initial delay out.
  void Hover(int x = 150, int y = 120) {
    screen.MoveTo(x, y);
    screen.Wait(kInitial);
  }
  bool Shown() const { return IsWindowVisible(tip) != FALSE; }
  RECT TipRect() const {
    RECT r{};
    GetWindowRect(tip, &r);
    return r;
  }

  HeadlessPresenter screen{640, 480};
  HWND tool = nullptr;
  HWND tip = nullptr;
};

TEST_F(ToolTipWindow, TheClassIsThereWithoutRegistrationAndMakesAHiddenPopup) {
  WNDCLASSEXW wc{};
  wc.cbSize = sizeof wc;
  EXPECT_TRUE(GetClassInfoExW(nullptr, u"TOOLTIPS_CLASS32", &wc));
  MakeTip();
  ASSERT_NE(tip, nullptr);
  char name[64] = {};
  GetClassNameA(tip, name, sizeof name);
  EXPECT_STREQ(name, "tooltips_class32");
  const auto style = static_cast<DWORD>(GetWindowLongW(tip, GWL_STYLE));
  EXPECT_NE(style & WS_POPUP, 0u);
  EXPECT_EQ(style & WS_CAPTION, 0u);
  EXPECT_EQ(style & (TTS_ALWAYSTIP | TTS_NOPREFIX), TTS_ALWAYSTIP | TTS_NOPREFIX);
  EXPECT_NE(static_cast<DWORD>(GetWindowLongW(tip, GWL_EXSTYLE)) & WS_EX_TOOLWINDOW, 0u);
  EXPECT_FALSE(Shown());
  // A system class can't be unregistered, and is there again on a fresh desktop.
  EXPECT_FALSE(UnregisterClassW(TOOLTIPS_CLASSW, nullptr));
  ResetDesktop();
  EXPECT_NE(CreateWindowExA(0, TOOLTIPS_CLASSA, nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                            nullptr),
            nullptr);
}

TEST_F(ToolTipWindow, AnApplicationClassOfTheSameNameComesFirst) {
  WNDCLASSEXW wc{};
  wc.cbSize = sizeof wc;
  wc.lpfnWndProc = DefWindowProcW;
  wc.lpszClassName = u"tooltips_class32";
  ASSERT_NE(RegisterClassExW(&wc), 0);
  MakeTip();
  EXPECT_EQ(GetClassLongPtrW(tip, GCLP_WNDPROC), reinterpret_cast<ULONG_PTR>(&DefWindowProcW));
  EXPECT_EQ(SendMessageW(tip, TTM_GETTIPBKCOLOR, 0, 0), 0);
}

struct DelayCase {
  WPARAM which;
  LPARAM value;
  LRESULT reshow, autopop, initial;
};

TEST_F(ToolTipWindow, DelaysFollowTheDoubleClickTimeUnlessSet) {
  const LRESULT dc = GetDoubleClickTime();
  const DelayCase cases[] = {
      {TTDT_INITIAL, 250, dc / 5, dc * 10, 250},
      {TTDT_AUTOPOP, 7000, dc / 5, 7000, dc},
      {TTDT_RESHOW, 40, 40, dc * 10, dc},
      {TTDT_AUTOMATIC, 200, 40, 2000, 200},
      {TTDT_AUTOPOP, MAKELPARAM(5000, 0), dc / 5, 5000, dc},
      {TTDT_INITIAL, -1, dc / 5, dc * 10, dc},
      {TTDT_AUTOMATIC, -1, dc / 5, dc * 10, dc},
  };
  for (const auto& c : cases) {
    HWND h = CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                             nullptr);
    if (c.which != TTDT_INITIAL || c.value >= 0)
      SendMessageW(h, TTM_SETDELAYTIME, TTDT_INITIAL, 999);
    SendMessageW(h, TTM_SETDELAYTIME, TTDT_AUTOMATIC, -1);
    SendMessageW(h, TTM_SETDELAYTIME, c.which, c.value);
    EXPECT_EQ(SendMessageW(h, TTM_GETDELAYTIME, TTDT_RESHOW, 0), c.reshow)
        << c.which << " " << c.value;
    EXPECT_EQ(SendMessageW(h, TTM_GETDELAYTIME, TTDT_AUTOPOP, 0), c.autopop) << c.which;
    EXPECT_EQ(SendMessageW(h, TTM_GETDELAYTIME, TTDT_INITIAL, 0), c.initial) << c.which;
    DestroyWindow(h);
  }
}

TEST_F(ToolTipWindow, ColoursTitleAndToolsReadBack) {
  MakeTip();
  EXPECT_EQ(static_cast<COLORREF>(SendMessageW(tip, TTM_GETTIPBKCOLOR, 0, 0)), kBack);
  EXPECT_EQ(static_cast<COLORREF>(SendMessageW(tip, TTM_GETTIPTEXTCOLOR, 0, 0)), kFore);
  EXPECT_TRUE(
      SendMessageA(tip, TTM_SETTITLEA, TTI_WARNING, reinterpret_cast<LPARAM>("Aten\xE7\xE3o")));
  WCHAR title[32] = {};
  TTGETTITLE get{sizeof get, 0, 32, title};
  SendMessageW(tip, TTM_GETTITLE, 0, reinterpret_cast<LPARAM>(&get));
  EXPECT_EQ(get.uTitleBitmap, TTI_WARNING);
  EXPECT_EQ(String(title), u"Atenção");

  // The narrow record: flags, window, id and text come back as given.
  TOOLINFOA a{};
  a.cbSize = TTTOOLINFOA_V1_SIZE;
  a.uFlags = TTF_IDISHWND | TTF_SUBCLASS | TTF_CENTERTIP;
  a.hwnd = tool;
  a.uId = reinterpret_cast<UINT_PTR>(tool);
  a.lpszText = const_cast<LPSTR>("Salvar");
  EXPECT_TRUE(SendMessageA(tip, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&a)));
  EXPECT_TRUE(AddTool(0, u"Parte", RECT{0, 0, 10, 10}));
  EXPECT_EQ(SendMessageW(tip, TTM_GETTOOLCOUNT, 0, 0), 2);

  char text[80] = {};
  TOOLINFOA back{};
  back.cbSize = sizeof back;
  back.hwnd = tool;
  back.uId = reinterpret_cast<UINT_PTR>(tool);
  back.lpszText = text;
  ASSERT_TRUE(SendMessageA(tip, TTM_GETTOOLINFOA, 0, reinterpret_cast<LPARAM>(&back)));
  EXPECT_EQ(back.uFlags, 19u);
  EXPECT_STREQ(text, "Salvar");
  WCHAR wide[80] = {};
  TOOLINFOW w{};
  w.cbSize = sizeof w;
  w.hwnd = tool;
  w.uId = 7;
  w.lpszText = wide;
  ASSERT_TRUE(SendMessageW(tip, TTM_GETTOOLINFOW, 0, reinterpret_cast<LPARAM>(&w)));
  EXPECT_EQ(w.uFlags, 0u);
  EXPECT_EQ(w.rect.right, 10);
  EXPECT_EQ(String(wide), u"Parte");
  w.uId = 8;
  EXPECT_FALSE(SendMessageW(tip, TTM_GETTOOLINFOW, 0, reinterpret_cast<LPARAM>(&w)));

  // A record shorter than the first form of it is refused.
  a.cbSize = TTTOOLINFOA_V1_SIZE - 4;
  EXPECT_FALSE(SendMessageA(tip, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&a)));
  EXPECT_FALSE(SendMessageA(tip, TTM_ADDTOOLA, 0, 0));
  EXPECT_EQ(SendMessageW(tip, TTM_GETTOOLCOUNT, 0, 0), 2);
}

TEST_F(ToolTipWindow, ARestingMouseBringsTheTipAfterTheInitialDelayBelowTheCursor) {
  Standard();
  screen.MoveTo(150, 120);
  screen.Wait(kInitial - 10);
  EXPECT_FALSE(Shown());
  screen.Wait(10);
  ASSERT_TRUE(Shown());
  const RECT r = TipRect();
  EXPECT_EQ(r.left, 150);
  EXPECT_EQ(r.top, 140);
  EXPECT_GT(r.right - r.left, 40);
  // The tip is a top-level window above the tool, and the mouse goes through it.
  EXPECT_EQ(GetActiveWindow(), tool);
  EXPECT_EQ(WindowFromPoint(POINT{r.left + 5, r.top + 5}), GetDesktopWindow());
  EXPECT_GT(g_toolMoves, 0);
  TOOLINFOW current{};
  current.cbSize = sizeof current;
  EXPECT_TRUE(SendMessageW(tip, TTM_GETCURRENTTOOLW, 0, reinterpret_cast<LPARAM>(&current)));
  EXPECT_EQ(current.uId, reinterpret_cast<UINT_PTR>(tool));

  const Surface s = screen.WindowPixels(tip);
  ASSERT_FALSE(s.Empty());
  EXPECT_EQ(s.At(0, 0) & 0xFFFFFF, Rgb(kFore));  // the frame
  EXPECT_EQ(s.At(s.width - 1, s.height - 1) & 0xFFFFFF, Rgb(kFore));
  EXPECT_EQ(s.At(2, 2) & 0xFFFFFF, Rgb(kBack));
  // Text: more than a few pixels neither back nor frame colour... or frame-coloured glyphs.
  int ink = 0;
  for (int y = 2; y < s.height - 2; ++y) {
    for (int x = 2; x < s.width - 2; ++x) ink += (s.At(x, y) & 0xFFFFFF) != Rgb(kBack) ? 1 : 0;
  }
  EXPECT_GT(ink, 40);
}

TEST_F(ToolTipWindow, TheTipGoesAfterTheVisibleTimeAndComesBackOnlyAfterALeave) {
  Standard();
  Hover();
  ASSERT_TRUE(Shown());
  screen.Wait(kAutoPop - 10);
  EXPECT_TRUE(Shown());
  screen.Wait(10);
  EXPECT_FALSE(Shown());
  screen.MoveTo(151, 120);
  screen.Wait(kInitial * 3);
  EXPECT_FALSE(Shown());
  screen.MoveTo(20, 20);
  Hover(160, 125);
  EXPECT_TRUE(Shown());
}

TEST_F(ToolTipWindow, LeavingTheToolOrPressingAButtonHidesTheTip) {
  Standard();
  Hover();
  ASSERT_TRUE(Shown());
  screen.MoveTo(20, 20);
  EXPECT_FALSE(Shown());

  Hover();
  ASSERT_TRUE(Shown());
  screen.Press();
  EXPECT_FALSE(Shown());
  screen.Release();
  screen.MoveTo(152, 121);
  screen.Wait(kInitial * 2);
  EXPECT_FALSE(Shown());
}

TEST_F(ToolTipWindow, AMovingMouseStartsTheWaitAgain) {
  Standard();
  screen.MoveTo(150, 120);
  screen.Wait(200);
  screen.MoveTo(160, 122);
  screen.Wait(200);
  EXPECT_FALSE(Shown());
  screen.Wait(100);
  EXPECT_TRUE(Shown());
  EXPECT_EQ(TipRect().left, 160);
}

TEST_F(ToolTipWindow, ACentredTipStandsUnderTheMiddleOfTheTool) {
  Standard(TTS_ALWAYSTIP | TTS_NOPREFIX, TTF_CENTERTIP);
  Hover(110, 105);
  ASSERT_TRUE(Shown());
  const RECT r = TipRect();
  EXPECT_NEAR((r.left + r.right) / 2, 160, 1);
  EXPECT_EQ(r.top, 142);
}

TEST_F(ToolTipWindow, AToolNearTheBottomGetsItsTipAbove) {
  MoveWindow(tool, 100, 440, 120, 40, TRUE);
  Standard();
  Hover(150, 460);
  ASSERT_TRUE(Shown());
  EXPECT_EQ(TipRect().bottom, 460);
}

TEST_F(ToolTipWindow, ABalloonHasRoundedCornersAndAStemAtTheCursor) {
  Standard(TTS_ALWAYSTIP | TTS_NOPREFIX | TTS_BALLOON);
  Hover(150, 120);
  ASSERT_TRUE(Shown());
  const RECT r = TipRect();
  EXPECT_EQ(r.top, 120);
  HRGN region = CreateRectRgn(0, 0, 0, 0);
  ASSERT_NE(GetWindowRgn(tip, region), ERROR);
  RECT box{};
  GetRgnBox(region, &box);
  EXPECT_EQ(box.right, r.right - r.left);
  EXPECT_EQ(box.bottom, r.bottom - r.top);
  EXPECT_TRUE(PtInRegion(region, 150 - r.left, 1));  // the stem's point
  EXPECT_FALSE(PtInRegion(region, 0, 14));           // a rounded corner
  EXPECT_FALSE(PtInRegion(region, r.right - r.left - 1, r.bottom - r.top - 1));
  EXPECT_TRUE(PtInRegion(region, 8, 30));
  DeleteObject(region);
  // On the screen the tool shows through the corner and beside the stem.
  const Surface& s = screen.Screen();
  EXPECT_EQ(s.At(r.left, r.top + 14) & 0xFFFFFF, Rgb(kToolColor));
  EXPECT_EQ(s.At(r.left + 60, r.top + 2) & 0xFFFFFF, Rgb(kToolColor));
  EXPECT_EQ(s.At(150, 121) & 0xFFFFFF, Rgb(kFore));
  EXPECT_EQ(s.At(r.left + 20, r.top + 30) & 0xFFFFFF, Rgb(kBack));
}

TEST_F(ToolTipWindow, ABalloonAtTheBottomPointsDown) {
  MoveWindow(tool, 100, 440, 120, 40, TRUE);
  Standard(TTS_ALWAYSTIP | TTS_BALLOON);
  Hover(150, 460);
  ASSERT_TRUE(Shown());
  const RECT r = TipRect();
  EXPECT_EQ(r.bottom, 460);
  HRGN region = CreateRectRgn(0, 0, 0, 0);
  GetWindowRgn(tip, region);
  EXPECT_TRUE(PtInRegion(region, 150 - r.left, r.bottom - r.top - 1));
  EXPECT_FALSE(PtInRegion(region, 150 - r.left - 3, r.bottom - r.top - 1));
  DeleteObject(region);
}

struct IconCase {
  WPARAM icon;
  COLORREF mark;
  COLORREF glyph;
};

TEST_F(ToolTipWindow, TitleIconsAreDrawnInTheirColours) {
  const COLORREF marks[] = {kTipInfoBlue, kTipWarningYellow, kTipErrorRed};
  const IconCase cases[] = {{TTI_NONE, 0, 0},
                            {TTI_INFO, kTipInfoBlue, RGB(255, 255, 255)},
                            {TTI_WARNING, kTipWarningYellow, RGB(0, 0, 0)},
                            {TTI_ERROR, kTipErrorRed, RGB(255, 255, 255)}};
  for (const auto& c : cases) {
    Standard();
    SendMessageW(tip, TTM_SETTITLEW, c.icon, reinterpret_cast<LPARAM>(u"Cliente"));
    Hover();
    ASSERT_TRUE(Shown()) << c.icon;
    const Surface s = screen.WindowPixels(tip);
    for (COLORREF m : marks) {
      if (m == c.mark) {
        EXPECT_GT(Count(s, m), 60) << c.icon;
      } else {
        EXPECT_EQ(Count(s, m), 0) << c.icon;
      }
    }
    if (c.icon != TTI_NONE) {
      EXPECT_GE(Count(s, c.glyph), 12) << c.icon;
    }
    DestroyWindow(tip);
    screen.MoveTo(20, 20);
  }
}

TEST_F(ToolTipWindow, ATitleMakesTheTipTallerAndATitleWithoutTextShowsNothing) {
  Standard();
  Hover();
  const RECT plain = TipRect();
  DestroyWindow(tip);
  screen.MoveTo(20, 20);
  Standard();
  SendMessageW(tip, TTM_SETTITLEW, TTI_INFO, reinterpret_cast<LPARAM>(u"Cliente"));
  Hover();
  EXPECT_GE(TipRect().bottom - TipRect().top, plain.bottom - plain.top + 16);
  DestroyWindow(tip);
  screen.MoveTo(20, 20);

  MakeTip();
  SendMessageW(tip, TTM_SETTITLEW, TTI_INFO, reinterpret_cast<LPARAM>(u"Cliente"));
  AddTool(TTF_IDISHWND | TTF_SUBCLASS, u"");
  Hover();
  EXPECT_FALSE(Shown());
}

TEST_F(ToolTipWindow, LongTextWrapsAtTheMaximumWidth) {
  MakeTip();
  AddTool(TTF_IDISHWND | TTF_SUBCLASS,
          u"Uma descrição bem longa que não cabe numa linha só e precisa quebrar em palavras");
  Hover();
  const RECT wide = TipRect();
  EXPECT_LE(wide.right - wide.left, 300 + 10);
  screen.MoveTo(20, 20);
  EXPECT_EQ(SendMessageW(tip, TTM_SETMAXTIPWIDTH, 0, 120), -1);
  Hover();
  const RECT narrow = TipRect();
  EXPECT_LE(narrow.right - narrow.left, 120 + 10);
  EXPECT_GT(narrow.bottom - narrow.top, wide.bottom - wide.top);
}

struct ActiveCase {
  DWORD style;
  bool shown;
};

TEST_F(ToolTipWindow, WithoutAlwaysTipOnlyAnActiveOwnerGetsTips) {
  const ActiveCase cases[] = {{TTS_ALWAYSTIP, true}, {0, false}};
  for (const auto& c : cases) {
    Standard(c.style);
    HWND other = CreateWindowExW(0, u"TipToolTest", u"", WS_POPUP | WS_VISIBLE, 400, 300, 50, 50,
                                 nullptr, nullptr, nullptr, nullptr);
    ASSERT_EQ(GetActiveWindow(), other);
    Hover();
    EXPECT_EQ(Shown(), c.shown) << c.style;
    DestroyWindow(other);
    DestroyWindow(tip);
    screen.MoveTo(20, 20);
  }
}

TEST_F(ToolTipWindow, TheSubclassGoesWithTheTipAndAGoneToolIsForgotten) {
  const LONG_PTR own = GetWindowLongPtrW(tool, GWLP_WNDPROC);
  Standard();
  EXPECT_NE(GetWindowLongPtrW(tool, GWLP_WNDPROC), own);
  DestroyWindow(tip);
  EXPECT_EQ(GetWindowLongPtrW(tool, GWLP_WNDPROC), own);

  Standard();
  Hover();
  ASSERT_TRUE(Shown());
  DestroyWindow(tool);
  EXPECT_FALSE(Shown());
  EXPECT_EQ(SendMessageW(tip, TTM_GETTOOLCOUNT, 0, 0), 0);
}

TEST_F(ToolTipWindow, DeletingTheToolTakesTheSubclassOut) {
  const LONG_PTR own = GetWindowLongPtrW(tool, GWLP_WNDPROC);
  Standard();
  TOOLINFOW ti{};
  ti.cbSize = sizeof ti;
  ti.hwnd = tool;
  ti.uId = reinterpret_cast<UINT_PTR>(tool);
  SendMessageW(tip, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&ti));
  EXPECT_EQ(SendMessageW(tip, TTM_GETTOOLCOUNT, 0, 0), 0);
  EXPECT_EQ(GetWindowLongPtrW(tool, GWLP_WNDPROC), own);
  Hover();
  EXPECT_FALSE(Shown());
}

TEST_F(ToolTipWindow, ARectangleToolFedByRelayedMessages) {
  MakeTip();
  ASSERT_TRUE(AddTool(0, u"Só a metade esquerda", RECT{0, 0, 60, 40}));
  auto relay = [&](int x, int y) {
    screen.MoveTo(100 + x, 100 + y);
    MSG m{tool, WM_MOUSEMOVE, 0, MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y)), 0, {}};
    SendMessageW(tip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&m));
    screen.Wait(kInitial);
  };
  relay(90, 20);
  EXPECT_FALSE(Shown());
  relay(30, 20);
  EXPECT_TRUE(Shown());
  // Out of the rectangle but still on the window: the watch takes it away.
  screen.MoveTo(190, 120);
  screen.Wait(100);
  EXPECT_FALSE(Shown());
}

TEST_F(ToolTipWindow, GoldenStandardAndBalloon) {
  Standard();
  SendMessageW(tip, TTM_SETTITLEW, TTI_INFO, reinterpret_cast<LPARAM>(u"Salvar"));
  Hover();
  ASSERT_TRUE(Shown());
  EXPECT_TRUE(vantor::test::MatchesGolden(screen.WindowPixels(tip), "tooltip_standard_info"));
  DestroyWindow(tip);
  screen.MoveTo(20, 20);

  Standard(TTS_ALWAYSTIP | TTS_NOPREFIX | TTS_BALLOON);
  SendMessageW(tip, TTM_SETTITLEW, TTI_ERROR, reinterpret_cast<LPARAM>(u"CPF inválido"));
  Hover();
  ASSERT_TRUE(Shown());
  // From the screen, where the region shows: the tip and the tool around it.
  const RECT r = TipRect();
  const Surface& all = screen.Screen();
  const Surface crop{&all.At(r.left - 4, r.top), r.right - r.left + 8, r.bottom - r.top + 2,
                     all.stride};
  EXPECT_TRUE(vantor::test::MatchesGolden(crop, "tooltip_balloon_error"));
}

}  // namespace
}  // namespace vantor::platform
