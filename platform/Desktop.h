#pragma once
// The screen as USER sees it, for presenters: its size and work area, and the
// top-level windows in z-order with the pixels they painted.
#include <cstdint>
#include <vector>

#include "platform/Region.h"
#include "platform/Surface.h"
#include "platform/WinTypes.h"

namespace vantor::platform {

struct TopLevelWindow {
  HWND hwnd = nullptr;
  RECT rect{};                       // screen coordinates
  const Surface* surface = nullptr;  // the whole window rectangle, row 0 on top
  const Region* region = nullptr;    // SetWindowRgn's region in window coordinates, or null
  bool layered = false;              // WS_EX_LAYERED with attributes set
  COLORREF color_key = 0;
  BYTE alpha = 255;
  DWORD layered_flags = 0;  // LWA_COLORKEY | LWA_ALPHA
  bool topmost = false;
};

// Visible top-level windows, the top one first. The pointers stay valid until
// the next call into USER that moves, sizes or destroys a window.
std::vector<TopLevelWindow> TopLevelWindows();

// The screen size (GetSystemMetrics SM_CXSCREEN/SM_CYSCREEN); 1280x800 unless
// a presenter sets it. Setting it also resets the work area to the screen less
// a 40-pixel task bar at the bottom, as a default desktop has.
SIZE ScreenSize();
void SetScreenSize(int width, int height);
RECT WorkArea();
void SetWorkArea(const RECT& area);

// Counts every change of any window's pixels or placement, so that a presenter
// knows when to compose again.
uint64_t DesktopGeneration();

// The standard cursor id (IDC_ARROW's 32512 and so on) of the cursor that
// SetCursor set last, or 0 for none or another cursor.
WORD CurrentCursorId();

// Destroys every window, unregisters every class, empties the queues, timers,
// clipboard and key state, and puts cursor, capture and focus back to none;
// tests start from it.
void ResetDesktop();

}  // namespace vantor::platform
