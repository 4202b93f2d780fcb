// The screen and its top-level windows, as presenters see them.
#include "platform/Desktop.h"

#include "platform/Clock.h"
#include "platform/UserState.h"

namespace vantor::platform {

std::vector<TopLevelWindow> TopLevelWindows() {
  std::vector<TopLevelWindow> out;
  for (auto& w : Window::Desktop()->children) {
    if (!w->Visible() || (w->style & WS_MINIMIZE) != 0) continue;
    TopLevelWindow t;
    t.hwnd = w->handle;
    t.rect = w->rect;
    t.surface = &w->surface;
    t.region = w->window_region.get();
    t.layered = (w->ex_style & WS_EX_LAYERED) != 0 && w->layered_set;
    t.color_key = w->color_key;
    t.alpha = t.layered && (w->layered_flags & LWA_ALPHA) != 0 ? w->alpha : BYTE{255};
    t.layered_flags = t.layered ? w->layered_flags : 0;
    t.topmost = (w->ex_style & WS_EX_TOPMOST) != 0;
    out.push_back(t);
  }
  return out;
}

SIZE ScreenSize() {
  return UserState::Get().screen;
}

void SetScreenSize(int width, int height) {
  UserState& s = UserState::Get();
  s.screen = SIZE{std::max(width, 1), std::max(height, 1)};
  // A default desktop keeps a 40-pixel task bar at the bottom.
  s.work_area = RECT{0, 0, s.screen.cx, std::max<LONG>(s.screen.cy - 40, 1)};
  Window::Desktop();
  Touch();
}

RECT WorkArea() {
  return UserState::Get().work_area;
}

void SetWorkArea(const RECT& area) {
  UserState::Get().work_area = area;
  Touch();
}

uint64_t DesktopGeneration() {
  return UserState::Get().generation;
}

WORD CurrentCursorId() {
  const auto value = reinterpret_cast<uintptr_t>(UserState::Get().cursor_shape);
  constexpr uintptr_t kCursorBase = 0x00C00000;
  if (value > kCursorBase && value <= kCursorBase + 0xFFFF) {
    return static_cast<WORD>(value - kCursorBase);
  }
  return 0;
}

void ResetDesktop() {
  for (int guard = 0; guard < 100000; ++guard) {
    auto& tops = Window::Desktop()->children;
    if (tops.empty()) break;
    const HWND hwnd = tops.front()->handle;
    if (!DestroyWindow(hwnd) && Window::Get(hwnd) != nullptr) {
      // A window that refuses to go is unlinked by force.
      Window::Remove(hwnd);
      if (!tops.empty() && tops.front()->handle == hwnd) tops.erase(tops.begin());
    }
  }
  DropWindowDCs(Window::Desktop()->handle);
  WindowClass::UnregisterAll();
  UserState& s = UserState::Get();
  const SIZE screen = s.screen;
  const RECT work = s.work_area;
  const uint64_t generation = s.generation;
  s = UserState();
  s.screen = screen;
  s.work_area = work;
  s.generation = generation + 1;
  CurrentSizeMove() = SizeMove{};
  ResetClipboard();
}

}  // namespace vantor::platform
