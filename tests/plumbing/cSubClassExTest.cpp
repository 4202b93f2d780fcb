// The message bridge on real windows: what runs in which order, what the
// owner can answer, and how records, tables and procedures are reused.
#include "plumbing/cSubClassEx.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/Desktop.h"
#include "platform/HeadlessPresenter.h"

namespace vantor::plumbing {
namespace {

constexpr UINT kPing = WM_USER + 1;
constexpr UINT kPong = WM_USER + 2;
std::vector<std::string> g_log;

// The window's own procedure: logs, and answers kPing with 7.
LRESULT CALLBACK OwnProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  if (msg == kPing || msg == kPong || msg == WM_LBUTTONDOWN)
    g_log.push_back("own " + std::to_string(msg));
  if (msg == kPing) return 7;
  return DefWindowProcW(hwnd, msg, wparam, lparam);
}

class SubClassEx : public ::testing::Test {
 protected:
  void SetUp() override {
    platform::ResetDesktop();
    g_log.clear();
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.lpfnWndProc = OwnProc;
    wc.lpszClassName = u"BridgeTest";
    ASSERT_NE(RegisterClassExW(&wc), 0);
  }
  void TearDown() override { platform::ResetDesktop(); }

  static HWND Make(int x = 0) {
    return CreateWindowExW(0, u"BridgeTest", u"", WS_POPUP | WS_VISIBLE, x, 0, 50, 50, nullptr,
                           nullptr, nullptr, nullptr);
  }
  // A bridge whose owner logs each call under `name` and lets `answer` decide.
  static std::unique_ptr<cSubClassEx> Bridge(
      const std::string& name, std::function<void(bool, bool&, LRESULT&, UINT)> answer = {}) {
    return std::make_unique<cSubClassEx>(
        [name, answer](bool before, bool& handled, LRESULT& ret, HWND, UINT msg, WPARAM, LPARAM) {
          g_log.push_back(name + (before ? " before " : " after ") + std::to_string(msg) + " " +
                          std::to_string(ret));
          if (answer) answer(before, handled, ret, msg);
        });
  }
  static std::string P(const std::string& who) { return who + " " + std::to_string(kPing); }
};

TEST_F(SubClassEx, BeforeThenOwnThenAfterAndTheAfterCallSetsTheResult) {
  HWND w = Make();
  auto b = Bridge("b", [](bool before, bool&, LRESULT& ret, UINT) {
    if (!before) ret += 100;
  });
  ASSERT_NE(b->Subclass(w), nullptr);
  b->AddMsg(w, kPing, MSG_BEFORE_AFTER);
  EXPECT_EQ(SendMessageW(w, kPing, 0, 0), 107);
  EXPECT_EQ(g_log, (std::vector<std::string>{P("b before") + " 0", P("own"), P("b after") + " 7"}));
  g_log.clear();
  EXPECT_EQ(SendMessageW(w, kPong, 0, 0), 0);  // not subscribed: only the window sees it
  EXPECT_EQ(g_log, (std::vector<std::string>{"own " + std::to_string(kPong)}));
}

TEST_F(SubClassEx, HandledBeforeAnswersAloneAndSkipsTheAfterCall) {
  HWND w = Make();
  auto b = Bridge("b", [](bool before, bool& handled, LRESULT& ret, UINT) {
    if (before) handled = true, ret = 42;
  });
  b->Subclass(w);
  b->AddMsg(w, kPing, MSG_BEFORE_AFTER);
  EXPECT_EQ(SendMessageW(w, kPing, 0, 0), 42);
  EXPECT_EQ(g_log, (std::vector<std::string>{P("b before") + " 0"}));
}

TEST_F(SubClassEx, EachTableOnlyGetsItsOwnCall) {
  HWND w = Make();
  auto b = Bridge("b");
  b->Subclass(w);
  b->AddMsg(w, kPing, MSG_AFTER);
  b->AddMsg(w, kPong, MSG_BEFORE);
  SendMessageW(w, kPing, 0, 0);
  SendMessageW(w, kPong, 0, 0);
  EXPECT_EQ(g_log, (std::vector<std::string>{P("own"), P("b after") + " 7",
                                             "b before " + std::to_string(kPong) + " 0",
                                             "own " + std::to_string(kPong)}));
}

TEST_F(SubClassEx, TwoBridgesOnOneWindowNestAndEachGivesBackWhatItFound) {
  HWND w = Make();
  const LONG_PTR own = GetWindowLongPtrW(w, GWL_WNDPROC);
  auto a = Bridge("a");
  auto b = Bridge("b");
  const WNDPROC procA = a->Subclass(w);
  b->Subclass(w);
  a->AddMsg(w, kPing, MSG_BEFORE_AFTER);
  b->AddMsg(w, kPing, MSG_BEFORE_AFTER);
  EXPECT_EQ(SendMessageW(w, kPing, 0, 0), 7);
  EXPECT_EQ(g_log, (std::vector<std::string>{P("b before") + " 0", P("a before") + " 0", P("own"),
                                             P("a after") + " 7", P("b after") + " 7"}));
  EXPECT_EQ(a->GetOriginalHwnd(w), own);
  EXPECT_EQ(b->GetOriginalHwnd(w), reinterpret_cast<LONG_PTR>(procA));
  b->UnSubclass(w);
  EXPECT_EQ(GetWindowLongPtrW(w, GWL_WNDPROC), reinterpret_cast<LONG_PTR>(procA));
  a->UnSubclass(w);
  EXPECT_EQ(GetWindowLongPtrW(w, GWL_WNDPROC), own);
}

TEST_F(SubClassEx, DetachingTheMiddleOfAChainPutsBackWhatItFoundAndStaysSafe) {
  HWND w = Make();
  const LONG_PTR own = GetWindowLongPtrW(w, GWL_WNDPROC);
  auto a = Bridge("a"), b = Bridge("b"), c = Bridge("c");
  for (auto* x : {a.get(), b.get(), c.get()}) x->Subclass(w), x->AddMsg(w, kPing, MSG_BEFORE);
  b->UnSubclass(w);
  // The window's procedure is what b found, a's: c, subclassed after b, is left out.
  g_log.clear();
  EXPECT_EQ(SendMessageW(w, kPing, 0, 0), 7);
  EXPECT_EQ(g_log, (std::vector<std::string>{P("a before") + " 0", P("own")}));
  c.reset();  // puts back b's procedure, which now only passes messages on
  g_log.clear();
  EXPECT_EQ(SendMessageW(w, kPing, 0, 0), 7);
  EXPECT_EQ(g_log, (std::vector<std::string>{P("a before") + " 0", P("own")}));
  a.reset();
  EXPECT_EQ(GetWindowLongPtrW(w, GWL_WNDPROC), own);
  EXPECT_EQ(SendMessageW(w, kPing, 0, 0), 7);
}

TEST_F(SubClassEx, AnOwnerMayDetachOrDestroyItsBridgeInsideTheCall) {
  HWND w = Make();
  std::unique_ptr<cSubClassEx> b;
  b = std::make_unique<cSubClassEx>(
      [&](bool before, bool&, LRESULT&, HWND h, UINT, WPARAM, LPARAM) {
        g_log.push_back(before ? "before" : "after");
        b.reset();
        EXPECT_EQ(SendMessageW(h, kPong, 0, 0), 0);  // re-entrant, and already passed straight on
      });
  b->Subclass(w);
  b->AddMsg(w, kPing, MSG_BEFORE_AFTER);
  EXPECT_EQ(SendMessageW(w, kPing, 0, 0), 7);
  EXPECT_EQ(g_log, (std::vector<std::string>{"before", "own " + std::to_string(kPong), P("own")}));
}

TEST_F(SubClassEx, OneBridgeServesSeveralWindowsWithTablesOfTheirOwn) {
  HWND w1 = Make(), w2 = Make(60);
  std::vector<HWND> seen;
  cSubClassEx b([&](bool, bool&, LRESULT&, HWND h, UINT, WPARAM, LPARAM) { seen.push_back(h); });
  b.Subclass(w1);
  b.Subclass(w2);
  b.AddMsg(w1, kPing, MSG_BEFORE);
  b.AddMsg(w2, kPong, MSG_BEFORE);
  for (HWND h : {w1, w2}) SendMessageW(h, kPing, 0, 0), SendMessageW(h, kPong, 0, 0);
  EXPECT_EQ(seen, (std::vector<HWND>{w1, w2}));
}

TEST_F(SubClassEx, TablesKeepOneEntryPerMessageAndReuseFreedEntries) {
  HWND w = Make();
  cSubClassEx b([](bool, bool&, LRESULT&, HWND, UINT, WPARAM, LPARAM) {});
  b.Subclass(w);
  for (int32_t m : {0x200, 0x201, 0x200, 0x202}) b.AddMsg(w, m, MSG_BEFORE);
  EXPECT_EQ(b.MsgTable(w, MSG_BEFORE), (std::vector<int32_t>{0x200, 0x201, 0x202}));
  b.DelMsg(w, 0x201, MSG_BEFORE);
  EXPECT_EQ(b.MsgTable(w, MSG_BEFORE), (std::vector<int32_t>{0x200, 0, 0x202}));
  EXPECT_EQ(b.MsgCount(w, MSG_BEFORE), 3);  // the table does not shrink
  b.AddMsg(w, 0x203, MSG_BEFORE);
  EXPECT_EQ(b.MsgTable(w, MSG_BEFORE), (std::vector<int32_t>{0x200, 0x203, 0x202}));
  EXPECT_EQ(b.MsgCount(w, MSG_AFTER), 0);
}

TEST_F(SubClassEx, AllMessagesSurvivesDeletingOneAndEndsWithItsOwnDelete) {
  HWND w = Make();
  auto b = Bridge("b");
  b->Subclass(w);
  b->AddMsg(w, ALL_MESSAGES, MSG_BEFORE);
  b->DelMsg(w, kPing, MSG_BEFORE);
  b->AddMsg(w, kPong, MSG_BEFORE);
  EXPECT_EQ(b->MsgCount(w, MSG_BEFORE), -1);
  SendMessageW(w, kPing, 0, 0);
  SendMessageW(w, WM_NULL, 0, 0);
  EXPECT_EQ(g_log, (std::vector<std::string>{P("b before") + " 0", P("own"), "b before 0 0"}));
  b->DelMsg(w, ALL_MESSAGES, MSG_BEFORE);
  EXPECT_EQ(b->MsgCount(w, MSG_BEFORE), 0);
  g_log.clear();
  SendMessageW(w, kPing, 0, 0);
  EXPECT_EQ(g_log, (std::vector<std::string>{P("own")}));
}

TEST_F(SubClassEx, RecordsAndProceduresAreReusedFromTheHighestFreeSlot) {
  HWND w[4] = {Make(), Make(60), Make(120), Make(180)};
  const size_t poolFree = cSubClassEx::PoolFree();
  cSubClassEx b([](bool, bool&, LRESULT&, HWND, UINT, WPARAM, LPARAM) {});
  for (int i = 0; i < 3; ++i) b.Subclass(w[i]);
  EXPECT_EQ(cSubClassEx::PoolFree(), poolFree - 3);
  b.UnSubclass(w[0]);
  b.UnSubclass(w[1]);
  EXPECT_EQ(cSubClassEx::PoolFree(), poolFree - 1);
  EXPECT_EQ(b.SlotOf(w[0]), -1);
  b.Subclass(w[3]);
  EXPECT_EQ(b.SlotOf(w[3]), 1);
  EXPECT_EQ(b.SlotCount(), 3u);
  b.Subclass(w[0]);
  EXPECT_EQ(b.SlotOf(w[0]), 0);
  EXPECT_EQ(b.SlotCount(), 3u);
}

TEST_F(SubClassEx, AWindowDestroyedWhileSubclassedIsSeenGoingAndThenPassedOver) {
  HWND w = Make();
  const size_t poolFree = cSubClassEx::PoolFree();
  std::vector<UINT> seen;
  auto b = std::make_unique<cSubClassEx>(
      [&](bool, bool&, LRESULT&, HWND, UINT m, WPARAM, LPARAM) { seen.push_back(m); });
  b->Subclass(w);
  b->AddMsg(w, ALL_MESSAGES, MSG_AFTER);
  DestroyWindow(w);
  ASSERT_GE(seen.size(), 2u);
  EXPECT_EQ(seen[seen.size() - 2], WM_DESTROY);
  EXPECT_EQ(seen.back(), WM_NCDESTROY);
  b->AddMsg(w, kPing, MSG_BEFORE);  // nothing: no such window
  EXPECT_EQ(b->MsgCount(w, MSG_BEFORE), 0);
  EXPECT_EQ(b->Subclass(w), nullptr);
  b->UnSubclass(w);
  EXPECT_EQ(b->SlotOf(w), -1);
  EXPECT_EQ(cSubClassEx::PoolFree(), poolFree);
  b->DelMsg(w, kPing, MSG_BEFORE);  // an unknown window finds no slot
}

TEST_F(SubClassEx, TheBridgeGoingAwayGivesEveryWindowItsProcedureBack) {
  HWND w1 = Make(), w2 = Make(60);
  const LONG_PTR own = GetWindowLongPtrW(w1, GWL_WNDPROC);
  {
    struct Owner : cSubClassEx::Owner {
      int calls = 0;
      void WndProc(bool, bool&, LRESULT&, HWND, UINT, WPARAM, LPARAM) override { ++calls; }
    } owner;
    cSubClassEx b(owner);
    b.Subclass(w1);
    b.Subclass(w2);
    b.AddMsg(w2, kPing, MSG_BEFORE);
    SendMessageW(w2, kPing, 0, 0);
    EXPECT_EQ(owner.calls, 1);
  }
  EXPECT_EQ(GetWindowLongPtrW(w1, GWL_WNDPROC), own);
  EXPECT_EQ(GetWindowLongPtrW(w2, GWL_WNDPROC), own);
}

TEST_F(SubClassEx, RealInputReachesTheOwnerFirstAndAHandledClickNeverReachesTheWindow) {
  platform::HeadlessPresenter screen(200, 100);
  HWND w = Make(20);
  std::vector<LPARAM> moves;
  cSubClassEx b([&](bool, bool& handled, LRESULT&, HWND, UINT m, WPARAM, LPARAM l) {
    if (m == WM_MOUSEMOVE) moves.push_back(l);
    if (m == WM_LBUTTONDOWN) handled = true;
  });
  b.Subclass(w);
  b.AddMsg(w, WM_MOUSEMOVE, MSG_BEFORE);
  b.AddMsg(w, WM_LBUTTONDOWN, MSG_BEFORE);
  screen.MoveTo(25, 10);
  screen.Click(30, 12);
  ASSERT_FALSE(moves.empty());
  EXPECT_EQ(moves.front(), MAKELPARAM(5, 10));
  EXPECT_EQ(g_log, std::vector<std::string>{});
}

TEST_F(SubClassEx, AThrowingOwnerDoesNotStopTheMessage) {
  HWND w = Make();
  cSubClassEx b([](bool, bool&, LRESULT&, HWND, UINT, WPARAM, LPARAM) { throw 1; });
  b.Subclass(w);
  b.AddMsg(w, kPing, MSG_BEFORE_AFTER);
  EXPECT_EQ(SendMessageW(w, kPing, 0, 0), 7);
}

}  // namespace
}  // namespace vantor::plumbing
