// Messages: subclass chains, wide and narrow procedures, posting and the
// pump, timers on the test clock.
#include "UserTestSupport.h"

namespace vantor::platform::test {
namespace {

using UserMessageTest = UserTest;

// A two-deep subclass chain that records where each message went, in order.
std::vector<std::string>& Trail() {
  static std::vector<std::string> trail;
  return trail;
}
WNDPROC g_first_old = nullptr;
WNDPROC g_second_old = nullptr;

LRESULT CALLBACK FirstSubclass(HWND h, UINT m, WPARAM w, LPARAM l) {
  if (m != WM_USER) return CallWindowProcW(g_first_old, h, m, w, l);
  Trail().push_back("first before");
  const LRESULT r = CallWindowProcW(g_first_old, h, m, w, l);
  Trail().push_back("first after");
  return r + 10;
}

LRESULT CALLBACK SecondSubclass(HWND h, UINT m, WPARAM w, LPARAM l) {
  if (m != WM_USER) return CallWindowProcW(g_second_old, h, m, w, l);
  Trail().push_back("second before");
  if (w == 1) return 1000;  // handled: the rest of the chain never sees it
  const LRESULT r = CallWindowProcW(g_second_old, h, m, w, l);
  Trail().push_back("second after");
  return r + 100;
}

TEST_F(UserMessageTest, SubclassChainRunsNewestFirstAroundTheOriginal) {
  HWND w = Top(0, 0, 10, 10);
  L().handlers[WM_USER] = [](HWND, WPARAM, LPARAM, bool*) -> LRESULT {
    Trail().push_back("original");
    return 1;
  };
  Trail().clear();
  g_first_old = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrW(w, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&FirstSubclass)));
  EXPECT_EQ(g_first_old, &LoggingProc);
  g_second_old = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrW(w, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&SecondSubclass)));
  EXPECT_EQ(g_second_old, &FirstSubclass);
  EXPECT_EQ(SendMessageW(w, WM_USER, 0, 0), 111);
  EXPECT_EQ(Trail(), (std::vector<std::string>{"second before", "first before", "original",
                                               "first after", "second after"}));
  Trail().clear();
  EXPECT_EQ(SendMessageW(w, WM_USER, 1, 0), 1000);
  EXPECT_EQ(Trail(), (std::vector<std::string>{"second before"}));
  // Removing the middle link puts back what it replaced, which drops the
  // newer link too, as on the platform.
  SetWindowLongPtrW(w, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g_first_old));
  Trail().clear();
  EXPECT_EQ(SendMessageW(w, WM_USER, 0, 0), 1);
  EXPECT_EQ(Trail(), (std::vector<std::string>{"original"}));
}

TEST_F(UserMessageTest, ThirtyTwoBitLongsHandOutProcedureHandles) {
  HWND w = Top(0, 0, 10, 10);
  const LONG handle = GetWindowLongW(w, GWL_WNDPROC);
  EXPECT_NE(handle, 0);
  // The handle calls the procedure through CallWindowProc.
  L().handlers[WM_USER] = [](HWND, WPARAM, LPARAM, bool*) -> LRESULT { return 33; };
  EXPECT_EQ(
      CallWindowProcW(reinterpret_cast<WNDPROC>(static_cast<LONG_PTR>(handle)), w, WM_USER, 0, 0),
      33);
  // And restores it through SetWindowLong, as the message bridge does.
  SetWindowLongPtrW(w, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&FirstSubclass));
  g_first_old = &LoggingProc;
  EXPECT_NE(SetWindowLongA(w, GWL_WNDPROC, handle), 0);
  EXPECT_EQ(GetWindowLongPtrW(w, GWLP_WNDPROC), reinterpret_cast<LONG_PTR>(&LoggingProc));
  // A value that is no handle is refused.
  EXPECT_EQ(SetWindowLongW(w, GWL_WNDPROC, 0x1234), 0);
  EXPECT_EQ(SetWindowLongPtrW(w, GWLP_WNDPROC, 0), 0);
  EXPECT_EQ(GetWindowLongPtrW(w, GWLP_WNDPROC), reinterpret_cast<LONG_PTR>(&LoggingProc));
  EXPECT_EQ(CallWindowProcW(nullptr, w, WM_USER, 0, 0), 0);
}

std::string g_narrow_seen;
WPARAM g_char_seen = 0;

LRESULT CALLBACK NarrowProc(HWND h, UINT m, WPARAM w, LPARAM l) {
  if (m == WM_SETTEXT && l != 0) g_narrow_seen = reinterpret_cast<LPCSTR>(l);
  if (m == WM_CHAR) g_char_seen = w;
  return DefWindowProcA(h, m, w, l);
}

TEST_F(UserMessageTest, NarrowProceduresGetNarrowText) {
  HWND w = Top(0, 0, 10, 10);
  const LONG_PTR wide_original = GetWindowLongPtrW(w, GWLP_WNDPROC);
  // Installed through the A function, the procedure takes narrow messages.
  const LONG_PTR old = SetWindowLongPtrA(w, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&NarrowProc));
  EXPECT_FALSE(IsWindowUnicode(w));
  // Seen from the A side the wide original is a handle, not the pointer.
  EXPECT_NE(old, wide_original);
  SetWindowTextW(w, u"Pão €");
  EXPECT_EQ(g_narrow_seen, "P\xE3o \x80");
  SendMessageW(w, WM_CHAR, u'ç', 0);
  EXPECT_EQ(g_char_seen, 0xE7u);
  SendMessageW(w, WM_CHAR, u'ż', 0);  // not in Windows-1252
  EXPECT_EQ(g_char_seen, static_cast<WPARAM>('?'));
  WCHAR buffer[8];
  EXPECT_EQ(GetWindowTextW(w, buffer, 8), 5);
  EXPECT_EQ(String(buffer), u"Pão €");
  // The handle leads back to the wide original, with conversion.
  EXPECT_EQ(CallWindowProcA(reinterpret_cast<WNDPROC>(old), w, WM_SETTEXT, 0,
                            reinterpret_cast<LPARAM>("Caf\xE9")),
            TRUE);
  EXPECT_EQ(L().Of(WM_SETTEXT).back().lparam != 0, true);
  EXPECT_EQ(GetWindowTextW(w, buffer, 8), 4);
  EXPECT_EQ(String(buffer), u"Café");
}

TEST_F(UserMessageTest, PostedMessagesArriveInOrderThroughThePump) {
  HWND w = Top(0, 0, 10, 10);
  RunUntilIdle();
  Clear();
  PostMessageW(w, WM_USER + 1, 1, 2);
  PostMessageW(w, WM_USER + 2, 3, 4);
  PostMessageW(nullptr, WM_USER + 3, 0, 0);  // a thread message: taken, not dispatched
  MSG m{};
  EXPECT_TRUE(PeekMessageW(&m, nullptr, 0, 0, PM_NOREMOVE));
  EXPECT_EQ(m.message, static_cast<UINT>(WM_USER + 1));
  EXPECT_TRUE(PeekMessageW(&m, nullptr, WM_USER + 2, WM_USER + 2, PM_REMOVE));
  EXPECT_EQ(m.wParam, 3u);
  EXPECT_EQ(RunUntilIdle(), 2);
  ASSERT_EQ(L().Of(WM_USER + 1).size(), 1u);
  EXPECT_EQ(L().Of(WM_USER + 1)[0].lparam, 2);
  EXPECT_TRUE(L().Of(WM_USER + 2).empty());
  EXPECT_FALSE(PeekMessageW(&m, nullptr, 0, 0, PM_REMOVE));
  EXPECT_FALSE(PostMessageW(w, WM_SETTEXT, 0, 0));  // pointers can't wait in a queue
}

TEST_F(UserMessageTest, GetMessageEndsOnQuitAndWhenNothingCanCome) {
  HWND w = Top(0, 0, 10, 10);
  RunUntilIdle();
  PostMessageW(w, WM_USER, 0, 0);
  PostQuitMessage(3);
  MSG m{};
  EXPECT_EQ(GetMessageW(&m, nullptr, 0, 0), 1);
  EXPECT_EQ(m.message, static_cast<UINT>(WM_USER));
  EXPECT_EQ(GetMessageW(&m, nullptr, 0, 0), 0);
  EXPECT_EQ(m.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(m.wParam, 3u);
  EXPECT_EQ(GetMessageW(&m, nullptr, 0, 0), 0);  // headless: nothing else can arrive
  EXPECT_EQ(GetMessageW(nullptr, nullptr, 0, 0), -1);
  EXPECT_EQ(GetMessageW(&m, reinterpret_cast<HWND>(intptr_t{99}), 0, 0), -1);
}

TEST_F(UserMessageTest, GetMessageWaitsForTheNextTimerOnTheTestClock) {
  HWND w = Top(0, 0, 10, 10);
  RunUntilIdle();
  const DWORD start = GetTickCount();
  SetTimer(w, 7, 250, nullptr);
  MSG m{};
  EXPECT_EQ(GetMessageW(&m, nullptr, 0, 0), 1);
  EXPECT_EQ(m.message, static_cast<UINT>(WM_TIMER));
  EXPECT_EQ(m.wParam, 7u);
  EXPECT_EQ(GetTickCount() - start, 250u);
}

TEST_F(UserMessageTest, TimersFireOnceWhenDueHoweverLate) {
  HWND w = Top(0, 0, 10, 10);
  RunUntilIdle();
  Clear();
  EXPECT_EQ(SetTimer(w, 1, 100, nullptr), 1u);
  Clock::Advance(99);
  RunUntilIdle();
  EXPECT_TRUE(L().Of(WM_TIMER).empty());
  Clock::Advance(1);
  RunUntilIdle();
  ASSERT_EQ(L().Of(WM_TIMER).size(), 1u);
  EXPECT_EQ(L().Of(WM_TIMER)[0].wparam, 1u);
  Clock::Advance(1000);  // ten periods late: still one message
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_TIMER).size(), 2u);
  // Replacing keeps one timer with the new period.
  SetTimer(w, 1, 50, nullptr);
  Clock::Advance(50);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_TIMER).size(), 3u);
  EXPECT_TRUE(KillTimer(w, 1));
  EXPECT_FALSE(KillTimer(w, 1));
  Clock::Advance(500);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_TIMER).size(), 3u);
  // Periods below the platform's minimum become 10 ms.
  SetTimer(w, 2, 0, nullptr);
  Clock::Advance(9);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_TIMER).size(), 3u);
  Clock::Advance(1);
  RunUntilIdle();
  EXPECT_EQ(L().Of(WM_TIMER).size(), 4u);
}

std::vector<std::pair<HWND, UINT_PTR>> g_ticks;
void CALLBACK TickProc(HWND h, UINT msg, UINT_PTR id, DWORD) {
  EXPECT_EQ(msg, static_cast<UINT>(WM_TIMER));
  g_ticks.emplace_back(h, id);
}

TEST_F(UserMessageTest, TimerProceduresAndThreadTimers) {
  g_ticks.clear();
  HWND w = Top(0, 0, 10, 10);
  RunUntilIdle();
  Clear();
  SetTimer(w, 5, 20, TickProc);
  const UINT_PTR a = SetTimer(nullptr, 0, 30, TickProc);
  const UINT_PTR b = SetTimer(nullptr, 0, 30, TickProc);
  EXPECT_NE(a, 0u);
  EXPECT_NE(a, b);
  Clock::Advance(30);
  RunUntilIdle();
  // The earliest due first; the window's procedure never sees them.
  ASSERT_EQ(g_ticks.size(), 3u);
  EXPECT_EQ(g_ticks[0], std::make_pair(w, UINT_PTR{5}));
  EXPECT_EQ(g_ticks[1].first, nullptr);
  EXPECT_TRUE(L().Of(WM_TIMER).empty());
  EXPECT_TRUE(KillTimer(nullptr, a));
  // A window's timers die with it.
  DestroyWindow(w);
  g_ticks.clear();
  Clock::Advance(30);
  RunUntilIdle();
  ASSERT_EQ(g_ticks.size(), 1u);
  EXPECT_EQ(g_ticks[0].second, b);
}

TEST_F(UserMessageTest, TheClockMovesOnlyWhenTold) {
  const DWORD t = GetTickCount();
  EXPECT_EQ(timeGetTime(), t);
  Sleep(1500);
  EXPECT_EQ(GetTickCount(), t + 1500);
  Clock::Advance(0xFFFFFFFFu);  // wraps as the platform's tick count does
  EXPECT_EQ(GetTickCount(), t + 1499);
  Clock::SetManual(false);
  const DWORD real = GetTickCount();
  EXPECT_GE(static_cast<int32_t>(GetTickCount() - real), 0);
  Clock::SetManual(true);
}

TEST_F(UserMessageTest, DefWindowProcClosesAndAnswersText) {
  HWND w = Top(0, 0, 10, 10);
  EXPECT_EQ(SendMessageW(w, WM_GETTEXTLENGTH, 0, 0), 3);  // "top"
  SendMessageW(w, WM_CLOSE, 0, 0);
  EXPECT_FALSE(IsWindow(w));
  HWND x = Top(0, 0, 10, 10);
  SendMessageW(x, WM_SYSCOMMAND, SC_CLOSE, 0);
  EXPECT_FALSE(IsWindow(x));
}

}  // namespace
}  // namespace vantor::platform::test
