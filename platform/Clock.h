#pragma once
// The time that USER reads: GetTickCount, timeGetTime, message times, timers,
// hover and double-click timing. In normal use it follows the monotonic clock;
// tests (and a deterministic presenter) switch it to manual, where it moves
// only when told, so that a timer or a hover fires exactly when a test says.
#include "platform/WinTypes.h"

namespace vantor::platform {

class Clock {
 public:
  // Milliseconds from an arbitrary start; wraps after 49.7 days, as the
  // platform's tick count does.
  static DWORD Now();
  // Moves the clock forward (in either mode); timers that fall due fire at
  // the next message pump, in due order.
  static void Advance(DWORD milliseconds);
  // Manual: time stands still between Advance calls, and Sleep advances it
  // instead of waiting. Switching keeps the current reading.
  static void SetManual(bool manual);
  static bool Manual();
};

}  // namespace vantor::platform
