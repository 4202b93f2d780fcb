// System metrics, colours, OleTranslateColor, system parameters, global
// memory and the clipboard.
#include <cstring>

#include "UserTestSupport.h"

namespace vantor::platform::test {
namespace {

using UserSystemTest = UserTest;

TEST_F(UserSystemTest, MetricsOfAClassic96DpiDesktop) {
  struct Case {
    int index;
    int value;
  };
  const Case cases[] = {
      {SM_CXSCREEN, 1280},
      {SM_CYSCREEN, 800},
      {SM_CXVSCROLL, 17},
      {SM_CYHSCROLL, 17},
      {SM_CYCAPTION, 19},
      {SM_CXBORDER, 1},
      {SM_CXDLGFRAME, 3},
      {SM_CXICON, 32},
      {SM_CYICON, 32},
      {SM_CXFRAME, 4},
      {SM_CXDOUBLECLK, 4},
      {SM_CXEDGE, 2},
      {SM_CXSMICON, 16},
      {SM_CXFOCUSBORDER, 1},
      {SM_CMONITORS, 1},
      {SM_CXMENUCHECK, 13},
      {SM_CYFULLSCREEN, 741},
      {-1, 0},
      {1000, 0},
  };
  for (const auto& c : cases) EXPECT_EQ(GetSystemMetrics(c.index), c.value) << c.index;
  // The platform's own numbers for the indexes.
  EXPECT_EQ(SM_CXICON, 11);
  EXPECT_EQ(SM_CXDOUBLECLK, 36);
  EXPECT_EQ(SM_CXFOCUSBORDER, 83);
  SetScreenSize(1920, 1080);
  EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 1920);
  RECT work{};
  EXPECT_TRUE(SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0));
  EXPECT_EQ(work.bottom, 1040);
  EXPECT_TRUE(SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0));
  EXPECT_EQ(work.right, 1920);
  EXPECT_FALSE(SystemParametersInfoW(SPI_GETWORKAREA, 0, nullptr, 0));
  EXPECT_FALSE(SystemParametersInfoW(0xFFFF, 0, &work, 0));
  UINT hover = 0;
  EXPECT_TRUE(SystemParametersInfoW(SPI_GETMOUSEHOVERTIME, 0, &hover, 0));
  EXPECT_EQ(hover, 400u);
}

TEST_F(UserSystemTest, SystemColoursAreTheDefaultScheme) {
  EXPECT_EQ(GetSysColor(COLOR_BTNFACE), RGB(240, 240, 240));
  EXPECT_EQ(GetSysColor(COLOR_WINDOW), RGB(255, 255, 255));
  EXPECT_EQ(GetSysColor(COLOR_WINDOWTEXT), RGB(0, 0, 0));
  EXPECT_EQ(GetSysColor(COLOR_BTNSHADOW), RGB(160, 160, 160));
  EXPECT_EQ(GetSysColor(COLOR_3DDKSHADOW), RGB(105, 105, 105));
  EXPECT_EQ(GetSysColor(COLOR_3DLIGHT), RGB(227, 227, 227));
  EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHT), RGB(0, 120, 215));
  EXPECT_EQ(GetSysColor(COLOR_GRAYTEXT), RGB(109, 109, 109));
  EXPECT_EQ(GetSysColor(COLOR_INFOBK), RGB(255, 255, 225));
  EXPECT_EQ(GetSysColor(COLOR_MENUBAR), RGB(240, 240, 240));
  EXPECT_EQ(GetSysColor(-1), 0u);
  EXPECT_EQ(GetSysColor(31), 0u);
}

TEST_F(UserSystemTest, OleTranslateColorResolvesSystemColours) {
  struct Case {
    OLE_COLOR in;
    HRESULT result;
    COLORREF out;
  };
  const Case cases[] = {
      {0x00123456, S_OK, 0x00123456},
      {0x8000000F, S_OK, RGB(240, 240, 240)},  // vbButtonFace
      {0x80000005, S_OK, RGB(255, 255, 255)},
      {0x80000000, S_OK, RGB(200, 200, 200)},
      {0x8000001E, S_OK, RGB(240, 240, 240)},
      {0x8000001F, E_INVALIDARG, 0},
      {0x80010005, E_INVALIDARG, 0},
      {0x02123456, S_OK, 0x02123456},
      {0x40000000, E_INVALIDARG, 0},
      {0xFFFFFFFF, E_INVALIDARG, 0},
  };
  for (const auto& c : cases) {
    COLORREF out = 0xDEAD;
    EXPECT_EQ(OleTranslateColor(c.in, nullptr, &out), c.result) << std::hex << c.in;
    if (c.result == S_OK) {
      EXPECT_EQ(out, c.out) << std::hex << c.in;
    } else {
      EXPECT_EQ(out, 0xDEADu) << std::hex << c.in;
    }
  }
  EXPECT_EQ(OleTranslateColor(0x8000000F, nullptr, nullptr), S_OK);
}

TEST_F(UserSystemTest, GlobalMemoryLocksAndFrees) {
  HGLOBAL fixed = GlobalAlloc(GPTR, 16);
  ASSERT_NE(fixed, nullptr);
  EXPECT_EQ(GlobalLock(fixed), fixed);  // a fixed block is its own address
  EXPECT_EQ(GlobalSize(fixed), 16u);
  EXPECT_EQ(static_cast<char*>(fixed)[15], 0);
  HGLOBAL movable = GlobalAlloc(GHND, 8);
  void* p = GlobalLock(movable);
  ASSERT_NE(p, nullptr);
  EXPECT_NE(p, movable);
  EXPECT_FALSE(GlobalUnlock(movable));  // the last lock
  EXPECT_FALSE(GlobalUnlock(movable));
  EXPECT_EQ(GlobalFree(movable), nullptr);
  EXPECT_EQ(GlobalFree(movable), movable);  // already gone
  EXPECT_EQ(GlobalLock(movable), nullptr);
  EXPECT_EQ(GlobalSize(nullptr), 0u);
  EXPECT_EQ(GlobalAlloc(GMEM_MOVEABLE, size_t{1} << 40), nullptr);
  EXPECT_EQ(GlobalFree(fixed), nullptr);
}

HGLOBAL WideText(const char16_t* text) {
  const size_t bytes = (std::char_traits<char16_t>::length(text) + 1) * sizeof(char16_t);
  HGLOBAL h = GlobalAlloc(GMEM_MOVEABLE, bytes);
  std::memcpy(GlobalLock(h), text, bytes);
  GlobalUnlock(h);
  return h;
}

TEST_F(UserSystemTest, ClipboardTextInBothForms) {
  HWND w = Top(0, 0, 10, 10);
  EXPECT_EQ(SetClipboardData(CF_UNICODETEXT, WideText(u"x")), nullptr);  // not open
  EXPECT_FALSE(EmptyClipboard());
  EXPECT_TRUE(OpenClipboard(w));
  EXPECT_FALSE(OpenClipboard(w));
  EXPECT_TRUE(EmptyClipboard());
  HGLOBAL text = WideText(u"Ação 1,50 €");
  EXPECT_EQ(SetClipboardData(CF_UNICODETEXT, text), text);
  EXPECT_TRUE(CloseClipboard());
  EXPECT_FALSE(CloseClipboard());
  EXPECT_TRUE(IsClipboardFormatAvailable(CF_UNICODETEXT));
  EXPECT_TRUE(IsClipboardFormatAvailable(CF_TEXT));
  EXPECT_FALSE(IsClipboardFormatAvailable(CF_BITMAP));
  EXPECT_EQ(GetClipboardData(CF_TEXT), nullptr);  // closed
  ASSERT_TRUE(OpenClipboard(nullptr));
  HANDLE narrow = GetClipboardData(CF_TEXT);
  ASSERT_NE(narrow, nullptr);
  EXPECT_STREQ(static_cast<const char*>(GlobalLock(narrow)), "A\xE7\xE3o 1,50 \x80");
  GlobalUnlock(narrow);
  HANDLE wide = GetClipboardData(CF_UNICODETEXT);
  EXPECT_EQ(String(static_cast<const char16_t*>(GlobalLock(wide))), u"Ação 1,50 €");
  GlobalUnlock(wide);
  // Narrow text in, wide text out.
  EmptyClipboard();
  HGLOBAL a = GlobalAlloc(GMEM_MOVEABLE, 4);
  std::memcpy(GlobalLock(a), "P\xE9\0", 4);
  GlobalUnlock(a);
  SetClipboardData(CF_TEXT, a);
  EXPECT_EQ(String(static_cast<const char16_t*>(GlobalLock(GetClipboardData(CF_UNICODETEXT)))),
            u"Pé");
  EXPECT_EQ(SetClipboardData(CF_TEXT, reinterpret_cast<HANDLE>(intptr_t{0x999})), nullptr);
  EXPECT_EQ(SetClipboardData(0, a), nullptr);
  EmptyClipboard();
  EXPECT_FALSE(IsClipboardFormatAvailable(CF_TEXT));
  EXPECT_EQ(GetClipboardData(CF_UNICODETEXT), nullptr);
  CloseClipboard();
}

TEST_F(UserSystemTest, ProcessAndModuleOddsAndEnds) {
  HWND w = Top(0, 0, 10, 10);
  DWORD pid = 0;
  EXPECT_EQ(GetWindowThreadProcessId(w, &pid), GetCurrentThreadId());
  EXPECT_EQ(pid, GetCurrentProcessId());
  EXPECT_EQ(GetWindowThreadProcessId(nullptr, &pid), 0u);
  EXPECT_NE(GetModuleHandleW(nullptr), nullptr);
  EXPECT_EQ(GetModuleHandleW(nullptr), GetModuleHandleA(nullptr));
  SetLastError(1234);
  EXPECT_EQ(GetLastError(), 1234u);
  EXPECT_TRUE(MessageBeep(MB_OK));
}

}  // namespace
}  // namespace vantor::platform::test
