// The tool tip a control keeps: what it sends the tip window, in which order,
// and how many tip windows it leaves behind.
#include "plumbing/CTooltip.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/Desktop.h"
#include "platform/HeadlessPresenter.h"

namespace vantor::plumbing {
namespace {

// What a stand-in tip class saw: tool-tip messages with their arguments read
// at the time they came.
struct Seen {
  UINT msg;
  WPARAM wparam;
  LPARAM lparam;
  std::string text;  // the record's text, or the title
  TOOLINFOA info;
};
std::vector<Seen> g_seen;
CREATESTRUCTW g_create;
String g_createName;
bool g_refuse = false;

LRESULT CALLBACK StandInProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  if (msg == WM_NCCREATE) {
    g_create = *reinterpret_cast<const CREATESTRUCTW*>(lparam);
    g_createName = g_create.lpszName != nullptr ? g_create.lpszName : u"(null)";
    if (g_refuse) return FALSE;
  }
  if (msg >= WM_USER && msg < WM_USER + 0x100) {
    Seen s{msg, wparam, lparam, {}, {}};
    if (msg == TTM_ADDTOOLA) {
      s.info = *reinterpret_cast<const TOOLINFOA*>(lparam);
      s.text = s.info.lpszText;
    }
    if (msg == TTM_SETTITLEA) s.text = reinterpret_cast<const char*>(lparam);
    g_seen.push_back(s);
    return TRUE;
  }
  return DefWindowProcW(hwnd, msg, wparam, lparam);
}

int TipWindows() {
  int n = 0;
  EnumWindows(
      [](HWND hwnd, LPARAM count) -> BOOL {
        char name[64] = {};
        GetClassNameA(hwnd, name, sizeof name);
        if (std::strcmp(name, "tooltips_class32") == 0) ++*reinterpret_cast<int*>(count);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&n));
  return n;
}

class Tooltip : public ::testing::Test {
 protected:
  void SetUp() override {
    platform::ResetDesktop();
    g_seen.clear();
    g_refuse = false;
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.lpfnWndProc = DefWindowProcW;
    wc.lpszClassName = u"TipParent";
    ASSERT_NE(RegisterClassExW(&wc), 0);
    parent = CreateWindowExW(0, u"TipParent", u"", WS_POPUP | WS_VISIBLE, 100, 100, 120, 40,
                             nullptr, nullptr, nullptr, nullptr);
  }
  void TearDown() override { platform::ResetDesktop(); }

  // The tip class of the application's own, which comes before the system's.
  static void StandIn() {
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.lpfnWndProc = StandInProc;
    wc.lpszClassName = u"tooltips_class32";
    ASSERT_NE(RegisterClassExW(&wc), 0);
  }
  static LRESULT Ask(const CTooltip& t, UINT msg, WPARAM w = 0) {
    return SendMessageW(t.hWnd(), msg, w, 0);
  }

  platform::HeadlessPresenter screen{640, 480};
  HWND parent = nullptr;
};

TEST_F(Tooltip, StartsWithTheClassDefaultsAndStoresWhatItIsGiven) {
  CTooltip t;
  EXPECT_EQ(t.get_VisibleTime(), 5000);
  EXPECT_EQ(t.get_DelayTime(), 100);
  EXPECT_EQ(t.get_Icon(), TTNoIcon);
  EXPECT_EQ(t.get_Style(), ToolTip_Standard);
  EXPECT_FALSE(t.get_Centered());
  EXPECT_EQ(t.get_BackColor(), 0u);
  EXPECT_EQ(t.get_ForeColor(), 0u);
  EXPECT_TRUE(t.get_Title().empty());
  EXPECT_TRUE(t.get_TipText().empty());
  EXPECT_EQ(t.hWnd(), nullptr);

  t.put_Style(ToolTip_Balloon);
  t.put_Centered(true);
  t.put_Icon(TTIconError);
  t.put_ForeColor(0x80000008);
  t.put_BackColor(0xD7FCFE);
  t.put_Title(u"Título");
  t.put_TipText(u"Descrição");
  t.put_VisibleTime(-1);
  t.put_DelayTime(70000);
  EXPECT_EQ(t.get_Style(), ToolTip_Balloon);
  EXPECT_TRUE(t.get_Centered());
  EXPECT_EQ(t.get_Icon(), TTIconError);
  EXPECT_EQ(t.get_ForeColor(), 0x80000008u);
  EXPECT_EQ(t.get_BackColor(), 0xD7FCFEu);
  EXPECT_EQ(t.get_Title(), u"Título");
  EXPECT_EQ(t.get_TipText(), u"Descrição");
  EXPECT_EQ(t.get_VisibleTime(), -1);
  EXPECT_EQ(t.get_DelayTime(), 70000);
  EXPECT_EQ(t.hWnd(), nullptr);  // stores only
}

TEST_F(Tooltip, TheMessagesGoInTheirOrderWithTheirArguments) {
  StandIn();
  CTooltip t;
  t.put_Icon(TTIconWarning);
  t.put_Title(u"Atenção");
  t.put_TipText(u"Campo obrigatório");
  t.put_ForeColor(0x112233);
  t.put_BackColor(0xD7FCFE);
  t.put_VisibleTime(4000);
  t.put_DelayTime(250);
  t.Create(parent);
  ASSERT_NE(t.hWnd(), nullptr);
  EXPECT_EQ(t.ParentHwnd(), parent);
  EXPECT_EQ(static_cast<DWORD>(g_create.style) & 0xFF, 3u);
  EXPECT_EQ(g_create.hwndParent, nullptr);
  EXPECT_EQ(g_create.hInstance, GetModuleHandleW(nullptr));
  EXPECT_EQ(g_createName, u"");

  ASSERT_EQ(g_seen.size(), 6u);
  const UINT order[] = {TTM_ADDTOOLA,      TTM_SETTITLEA,    TTM_SETTIPTEXTCOLOR,
                        TTM_SETTIPBKCOLOR, TTM_SETDELAYTIME, TTM_SETDELAYTIME};
  for (size_t i = 0; i < 6; ++i) EXPECT_EQ(g_seen[i].msg, order[i]) << i;
  const TOOLINFOA& info = g_seen[0].info;
  EXPECT_EQ(info.cbSize, TTTOOLINFOA_V1_SIZE);
  EXPECT_EQ(info.uFlags, 17u);
  EXPECT_EQ(info.hwnd, parent);
  EXPECT_EQ(info.uId, reinterpret_cast<UINT_PTR>(parent));
  EXPECT_EQ(info.hinst, GetModuleHandleW(nullptr));
  EXPECT_EQ(g_seen[0].text, "Campo obrigat\xF3rio");
  EXPECT_EQ(g_seen[1].wparam, 2u);
  EXPECT_EQ(g_seen[1].text, "Aten\xE7\xE3o");
  EXPECT_EQ(g_seen[2].wparam, 0x112233u);
  EXPECT_EQ(g_seen[3].wparam, 0xD7FCFEu);
  EXPECT_EQ(g_seen[4].wparam, TTDT_AUTOPOP);
  EXPECT_EQ(g_seen[4].lparam, 4000);
  EXPECT_EQ(g_seen[5].wparam, TTDT_INITIAL);
  EXPECT_EQ(g_seen[5].lparam, 250);
  // The record handed over is the one the object keeps.
  EXPECT_STREQ(t.ToolInfo().lpszText, "Campo obrigat\xF3rio");
}

TEST_F(Tooltip, TheRecordIsTheFirstFormOfTheTipRecord) {
  // Where pointers have 32 bits this is the platform's 44.
  EXPECT_EQ(TTTOOLINFOA_V1_SIZE, sizeof(void*) == 4 ? 44u : 56u);
}

struct ShapeCase {
  bool centered;
  ENUM_TOOLTIP_STYLE style;
  UINT flags;
  DWORD tipStyle;
};

TEST_F(Tooltip, CentredAndBalloonChooseFlagsAndStyle) {
  const ShapeCase cases[] = {{false, ToolTip_Standard, 17, 0x03},
                             {true, ToolTip_Standard, 19, 0x03},
                             {false, ToolTip_Balloon, 17, 0x43},
                             {true, ToolTip_Balloon, 19, 0x43}};
  for (const auto& c : cases) {
    CTooltip t;
    t.put_Icon(TTIconInfo);
    t.put_Centered(c.centered);
    t.put_Style(c.style);
    t.Create(parent);
    ASSERT_NE(t.hWnd(), nullptr);
    EXPECT_EQ(t.ToolInfo().uFlags, c.flags);
    // The real tip took the record as it was given.
    TOOLINFOA back{};
    back.cbSize = sizeof back;
    back.hwnd = parent;
    back.uId = reinterpret_cast<UINT_PTR>(parent);
    ASSERT_TRUE(SendMessageA(t.hWnd(), TTM_GETTOOLINFOA, 0, reinterpret_cast<LPARAM>(&back)));
    EXPECT_EQ(back.uFlags, c.flags);
    EXPECT_EQ(static_cast<DWORD>(GetWindowLongW(t.hWnd(), GWL_STYLE)) & 0xFF, c.tipStyle);
  }
}

TEST_F(Tooltip, SettingsReachTheRealTip) {
  CTooltip t;
  t.put_Icon(TTIconInfo);
  t.put_Title(u"Salvar");
  t.put_BackColor(0x80000000u | COLOR_INFOBK);  // a system colour, given as itself
  t.put_ForeColor(0x0000FF);
  t.put_VisibleTime(3000);
  t.put_DelayTime(200);
  t.Create(parent);
  EXPECT_EQ(static_cast<COLORREF>(Ask(t, TTM_GETTIPBKCOLOR)), GetSysColor(COLOR_INFOBK));
  EXPECT_EQ(static_cast<COLORREF>(Ask(t, TTM_GETTIPTEXTCOLOR)), 0x0000FFu);
  EXPECT_EQ(Ask(t, TTM_GETDELAYTIME, TTDT_AUTOPOP), 3000);
  EXPECT_EQ(Ask(t, TTM_GETDELAYTIME, TTDT_INITIAL), 200);
  WCHAR title[16] = {};
  TTGETTITLE get{sizeof get, 0, 16, title};
  SendMessageW(t.hWnd(), TTM_GETTITLE, 0, reinterpret_cast<LPARAM>(&get));
  EXPECT_EQ(get.uTitleBitmap, 1u);
  EXPECT_EQ(String(title), u"Salvar");
}

TEST_F(Tooltip, IconNoneDestroysAnOlderTipAndLeavesNone) {
  CTooltip t;
  t.put_Icon(TTIconInfo);
  t.put_TipText(u"Texto");
  t.Create(parent);
  const HWND older = t.hWnd();
  ASSERT_EQ(TipWindows(), 1);
  t.put_Icon(TTNoIcon);
  t.Create(parent);
  EXPECT_EQ(t.hWnd(), nullptr);
  EXPECT_FALSE(IsWindow(older));
  EXPECT_EQ(TipWindows(), 0);
  // And over the window no tip ever comes.
  screen.MoveTo(150, 120);
  screen.Wait(1000);
  EXPECT_EQ(TipWindows(), 0);
}

TEST_F(Tooltip, CreatingTwiceLeavesOneTipWindow) {
  CTooltip t;
  t.put_Icon(TTIconWarning);
  t.Create(parent);
  const HWND first = t.hWnd();
  t.Create(parent);
  EXPECT_NE(t.hWnd(), nullptr);
  EXPECT_FALSE(IsWindow(first));
  EXPECT_EQ(TipWindows(), 1);
  // The first tip let go of the window: only one procedure of a tip is in its chain.
  TOOLINFOA back{};
  back.cbSize = sizeof back;
  back.hwnd = parent;
  back.uId = reinterpret_cast<UINT_PTR>(parent);
  EXPECT_TRUE(SendMessageA(t.hWnd(), TTM_GETTOOLINFOA, 0, reinterpret_cast<LPARAM>(&back)));
}

TEST_F(Tooltip, AFailedCreationLeavesNoHandleAndSendsNothing) {
  StandIn();
  g_refuse = true;
  CTooltip t;
  t.put_Icon(TTIconInfo);
  t.Create(parent);
  EXPECT_EQ(t.hWnd(), nullptr);
  EXPECT_TRUE(g_seen.empty());
  t.Destroy();
  EXPECT_EQ(t.hWnd(), nullptr);
}

TEST_F(Tooltip, DestroyAndTheDestructorTakeTheWindowAway) {
  HWND made = nullptr;
  {
    CTooltip t;
    t.put_Icon(TTIconInfo);
    t.Create(parent);
    made = t.hWnd();
    ASSERT_TRUE(IsWindow(made));
    t.Destroy();
    EXPECT_FALSE(IsWindow(made));
    EXPECT_EQ(t.hWnd(), nullptr);
    t.Create(parent);
    made = t.hWnd();
  }
  EXPECT_FALSE(IsWindow(made));
  EXPECT_EQ(TipWindows(), 0);
}

TEST_F(Tooltip, TheTipShowsOverTheParentAfterTheDelayForTheVisibleTime) {
  CTooltip t;
  t.put_Icon(TTIconInfo);
  t.put_Title(u"Dica");
  t.put_TipText(u"Clique para gravar");
  t.put_BackColor(0xD7FCFE);
  t.put_DelayTime(500);
  t.put_VisibleTime(2000);
  t.Create(parent);
  screen.MoveTo(150, 120);
  screen.Wait(490);
  EXPECT_FALSE(IsWindowVisible(t.hWnd()));
  screen.Wait(10);
  EXPECT_TRUE(IsWindowVisible(t.hWnd()));
  screen.Wait(2000);
  EXPECT_FALSE(IsWindowVisible(t.hWnd()));
}

}  // namespace
}  // namespace vantor::plumbing
