#pragma once
// A clean desktop for each USER test, on the manual clock, and a window
// class whose procedure logs every message and lets a test answer any of
// them itself.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <vector>

#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/Input.h"
#include "platform/User.h"

namespace vantor::platform::test {

struct Logged {
  HWND hwnd;
  UINT msg;
  WPARAM wparam;
  LPARAM lparam;
};

// What the logging procedure does: log, then ask the test's handler, then
// the default procedure.
struct Log {
  std::vector<Logged> messages;
  std::map<UINT, std::function<LRESULT(HWND, WPARAM, LPARAM, bool* handled)>> handlers;

  static Log& Get() {
    static Log log;
    return log;
  }
  // The messages of one kind, or all when `msg` is 0, for one window (or all).
  std::vector<Logged> Of(UINT msg, HWND hwnd = nullptr) const {
    std::vector<Logged> out;
    for (const auto& m : messages) {
      if ((msg == 0 || m.msg == msg) && (hwnd == nullptr || m.hwnd == hwnd)) out.push_back(m);
    }
    return out;
  }
  // The order of the given messages as they came.
  std::vector<UINT> Sequence(const std::vector<UINT>& wanted, HWND hwnd = nullptr) const {
    std::vector<UINT> out;
    for (const auto& m : messages) {
      if (hwnd != nullptr && m.hwnd != hwnd) continue;
      for (UINT w : wanted) {
        if (m.msg == w) out.push_back(w);
      }
    }
    return out;
  }
};

inline LRESULT CALLBACK LoggingProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  Log& log = Log::Get();
  log.messages.push_back(Logged{hwnd, msg, wparam, lparam});
  auto it = log.handlers.find(msg);
  if (it != log.handlers.end()) {
    bool handled = true;
    const LRESULT r = it->second(hwnd, wparam, lparam, &handled);
    if (handled) return r;
  }
  return DefWindowProcW(hwnd, msg, wparam, lparam);
}

class UserTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetDesktop();
    SetScreenSize(1280, 800);
    Clock::SetManual(true);
    Log::Get() = Log{};
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.style = CS_DBLCLKS;
    wc.lpfnWndProc = LoggingProc;
    wc.cbWndExtra = 16;
    wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    wc.lpszClassName = u"VantorTestWindow";
    ASSERT_NE(RegisterClassExW(&wc), 0);
  }
  void TearDown() override {
    // Handlers may hold the test's locals: none may run while the windows go.
    Log::Get().handlers.clear();
    ResetDesktop();
    Log::Get() = Log{};
    Clock::SetManual(false);
  }

  static HWND Top(int x, int y, int w, int h, DWORD style = WS_POPUP | WS_VISIBLE, DWORD ex = 0) {
    return CreateWindowExW(ex, u"VantorTestWindow", u"top", style, x, y, w, h, nullptr, nullptr,
                           nullptr, nullptr);
  }
  static HWND Child(HWND parent, int x, int y, int w, int h, int id = 1,
                    DWORD style = WS_CHILD | WS_VISIBLE) {
    return CreateWindowExW(0, u"VantorTestWindow", u"child", style, x, y, w, h, parent,
                           reinterpret_cast<HMENU>(static_cast<intptr_t>(id)), nullptr, nullptr);
  }
  static void Clear() { Log::Get().messages.clear(); }
  static Log& L() { return Log::Get(); }
};

}  // namespace vantor::platform::test
