// Window and thread timers on the clock of platform/Clock.h.
#include <algorithm>
#include <chrono>
#include <thread>

#include "platform/Clock.h"
#include "platform/UserState.h"

using vantor::platform::Clock;
using vantor::platform::Timer;
using vantor::platform::UserState;

namespace {

// The platform's bounds for a timer's period.
constexpr UINT kMinimumElapse = 10;
constexpr UINT kMaximumElapse = 0x7FFFFFFF;

bool Due(DWORD due, DWORD now) {
  return static_cast<int32_t>(now - due) >= 0;
}

}  // namespace

namespace vantor::platform {

bool NextTimer(MSG* out, HWND filter, bool remove) {
  UserState& s = UserState::Get();
  const DWORD now = Clock::Now();
  Timer* best = nullptr;
  for (auto& t : s.timers) {
    if (!Due(t.due, now)) continue;
    if (!MessageMatches(t.hwnd, WM_TIMER, filter, 0, 0)) continue;
    if (best == nullptr || static_cast<int32_t>(t.due - best->due) < 0) best = &t;
  }
  if (best == nullptr) return false;
  *out = MSG{best->hwnd, WM_TIMER, best->id, reinterpret_cast<LPARAM>(best->proc), now, s.cursor};
  // One WM_TIMER however late: missed periods are not made up.
  if (remove) best->due = now + best->elapse;
  return true;
}

void KillWindowTimers(HWND hwnd) {
  auto& v = UserState::Get().timers;
  v.erase(std::remove_if(v.begin(), v.end(), [&](const Timer& t) { return t.hwnd == hwnd; }),
          v.end());
}

bool NextDue(DWORD* due) {
  UserState& s = UserState::Get();
  bool any = false;
  for (const auto& t : s.timers) {
    if (!any || static_cast<int32_t>(t.due - *due) < 0) *due = t.due;
    any = true;
  }
  if (s.track != nullptr && (s.track_flags & TME_HOVER) != 0) {
    const DWORD hover = s.hover_start + s.hover_time;
    if (!any || static_cast<int32_t>(hover - *due) < 0) *due = hover;
    any = true;
  }
  return any;
}

}  // namespace vantor::platform

UINT_PTR SetTimer(HWND hwnd, UINT_PTR id, UINT elapse, TIMERPROC proc) {
  UserState& s = UserState::Get();
  if (hwnd != nullptr && vantor::platform::Window::Get(hwnd) == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return 0;
  }
  elapse = std::clamp(elapse, kMinimumElapse, kMaximumElapse);
  const DWORD due = Clock::Now() + elapse;
  if (hwnd != nullptr) {
    for (auto& t : s.timers) {
      if (t.hwnd == hwnd && t.id == id) {
        t.elapse = elapse;
        t.proc = proc;
        t.due = due;
        return id == 0 ? 1 : id;
      }
    }
    s.timers.push_back(Timer{hwnd, id, elapse, proc, due});
    return id == 0 ? 1 : id;
  }
  // A thread timer: an existing id is replaced, otherwise a new id is made.
  if (id != 0) {
    for (auto& t : s.timers) {
      if (t.hwnd == nullptr && t.id == id) {
        t.elapse = elapse;
        t.proc = proc;
        t.due = due;
        return id;
      }
    }
  }
  UINT_PTR fresh = 0;
  for (int guard = 0; guard < 0x8000 && fresh == 0; ++guard) {
    const UINT_PTR candidate = 0x7FFF + s.next_timer_id++;
    if (s.next_timer_id > 0x7FFF) s.next_timer_id = 1;
    bool taken = false;
    for (const auto& t : s.timers) taken = taken || (t.hwnd == nullptr && t.id == candidate);
    if (!taken) fresh = candidate;
  }
  if (fresh == 0) return 0;
  s.timers.push_back(Timer{nullptr, fresh, elapse, proc, due});
  return fresh;
}

BOOL KillTimer(HWND hwnd, UINT_PTR id) {
  auto& v = UserState::Get().timers;
  for (auto it = v.begin(); it != v.end(); ++it) {
    if (it->hwnd == hwnd && it->id == id) {
      v.erase(it);
      // A WM_TIMER already taken from the queue but not dispatched is dropped
      // by the dispatcher, which only calls live timers' procedures.
      return TRUE;
    }
  }
  SetLastError(ERROR_INVALID_PARAMETER);
  return FALSE;
}

DWORD GetTickCount() {
  return Clock::Now();
}
DWORD timeGetTime() {
  return Clock::Now();
}

void Sleep(DWORD milliseconds) {
  if (Clock::Manual()) {
    Clock::Advance(milliseconds);
    return;
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
