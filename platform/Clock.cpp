#include "platform/Clock.h"

#include <chrono>

namespace vantor::platform {

namespace {

struct ClockState {
  bool manual = false;
  // Manual: the reading. Otherwise: what Advance added to the monotonic one.
  DWORD manual_now = 0;
  DWORD offset = 0;
  std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

ClockState& State() {
  static ClockState state;
  return state;
}

DWORD Monotonic() {
  const auto elapsed = std::chrono::steady_clock::now() - State().start;
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
  return static_cast<DWORD>(static_cast<uint64_t>(ms));
}

}  // namespace

DWORD Clock::Now() {
  const ClockState& s = State();
  return s.manual ? s.manual_now : Monotonic() + s.offset;
}

void Clock::Advance(DWORD milliseconds) {
  ClockState& s = State();
  if (s.manual) {
    s.manual_now += milliseconds;
  } else {
    s.offset += milliseconds;
  }
}

void Clock::SetManual(bool manual) {
  ClockState& s = State();
  if (manual == s.manual) return;
  const DWORD now = Now();
  s.manual = manual;
  if (manual) {
    s.manual_now = now;
  } else {
    s.offset = now - Monotonic();
  }
}

bool Clock::Manual() {
  return State().manual;
}

}  // namespace vantor::platform
