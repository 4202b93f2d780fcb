// Mouse and keyboard: device state, injection, routing to windows (hit
// testing, capture, focus), activation, mouse tracking and cursors.
#include <algorithm>
#include <cstdlib>

#include "platform/Clock.h"
#include "platform/Input.h"
#include "platform/UserState.h"

using vantor::platform::Clock;
using vantor::platform::InputEvent;
using vantor::platform::UserState;
using vantor::platform::Window;

namespace {

constexpr UINT kDoubleClickTime = 500;
constexpr DWORD kErrorResourceNameNotFound = 1814;

bool Alive(HWND hwnd) {
  return Window::Get(hwnd) != nullptr;
}

LPARAM PackPoint(LONG x, LONG y) {
  return MAKELPARAM(static_cast<WORD>(static_cast<SHORT>(x)),
                    static_cast<WORD>(static_cast<SHORT>(y)));
}

WPARAM MouseKeys() {
  const auto& k = UserState::Get().keys;
  WPARAM flags = 0;
  if ((k[VK_LBUTTON] & 0x80) != 0) flags |= MK_LBUTTON;
  if ((k[VK_RBUTTON] & 0x80) != 0) flags |= MK_RBUTTON;
  if ((k[VK_SHIFT] & 0x80) != 0) flags |= MK_SHIFT;
  if ((k[VK_CONTROL] & 0x80) != 0) flags |= MK_CONTROL;
  if ((k[VK_MBUTTON] & 0x80) != 0) flags |= MK_MBUTTON;
  if ((k[VK_XBUTTON1] & 0x80) != 0) flags |= MK_XBUTTON1;
  if ((k[VK_XBUTTON2] & 0x80) != 0) flags |= MK_XBUTTON2;
  return flags;
}

bool ShapeContains(const Window& w, POINT p) {
  const RECT r = w.ScreenRect();
  if (p.x < r.left || p.x >= r.right || p.y < r.top || p.y >= r.bottom) return false;
  return !w.window_region || w.window_region->Contains(p.x - r.left, p.y - r.top);
}

Window* Descend(Window& w, POINT p, LRESULT* hit, bool send) {
  const RECT c = w.ScreenClient();
  if (p.x >= c.left && p.x < c.right && p.y >= c.top && p.y < c.bottom) {
    auto children = w.children;
    for (auto& child : children) {
      if (!child->Visible() || (child->style & WS_DISABLED) != 0 || !ShapeContains(*child, p)) {
        continue;
      }
      if (Window* found = Descend(*child, p, hit, send)) return found;
    }
  }
  const HWND hwnd = w.handle;
  LRESULT h;
  if (send) {
    h = SendMessageW(hwnd, WM_NCHITTEST, 0, PackPoint(p.x, p.y));
    if (!Alive(hwnd)) return nullptr;
  } else {
    h = (p.x >= c.left && p.x < c.right && p.y >= c.top && p.y < c.bottom) ? HTCLIENT : HTBORDER;
  }
  if (h == HTTRANSPARENT) return nullptr;
  *hit = h;
  return &w;
}

// The virtual-key codes of the mouse buttons and their messages.
constexpr int kButtonKey[] = {VK_LBUTTON, VK_RBUTTON, VK_MBUTTON, VK_XBUTTON1, VK_XBUTTON2};
constexpr UINT kButtonDown[] = {WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN, WM_XBUTTONDOWN,
                                WM_XBUTTONDOWN};

int ScanCode(int vk, bool* extended) {
  *extended = false;
  static constexpr BYTE kLetters[26] = {0x1E, 0x30, 0x2E, 0x20, 0x12, 0x21, 0x22, 0x23, 0x17,
                                        0x24, 0x25, 0x26, 0x32, 0x31, 0x18, 0x19, 0x10, 0x13,
                                        0x1F, 0x14, 0x16, 0x2F, 0x11, 0x2D, 0x15, 0x2C};
  if (vk >= 'A' && vk <= 'Z') return kLetters[vk - 'A'];
  if (vk >= '1' && vk <= '9') return 0x02 + (vk - '1');
  if (vk == '0') return 0x0B;
  if (vk >= VK_F1 && vk <= VK_F10) return 0x3B + (vk - VK_F1);
  switch (vk) {
    case VK_ESCAPE:
      return 0x01;
    case VK_BACK:
      return 0x0E;
    case VK_TAB:
      return 0x0F;
    case VK_RETURN:
      return 0x1C;
    case VK_CONTROL:
    case VK_LCONTROL:
      return 0x1D;
    case VK_RCONTROL:
      *extended = true;
      return 0x1D;
    case VK_SHIFT:
    case VK_LSHIFT:
      return 0x2A;
    case VK_RSHIFT:
      return 0x36;
    case VK_MENU:
    case VK_LMENU:
      return 0x38;
    case VK_RMENU:
      *extended = true;
      return 0x38;
    case VK_SPACE:
      return 0x39;
    case VK_CAPITAL:
      return 0x3A;
    case VK_F11:
      return 0x57;
    case VK_F12:
      return 0x58;
    case VK_OEM_MINUS:
      return 0x0C;
    case VK_OEM_PLUS:
      return 0x0D;
    case VK_OEM_4:
      return 0x1A;
    case VK_OEM_6:
      return 0x1B;
    case VK_OEM_1:
      return 0x27;
    case VK_OEM_7:
      return 0x28;
    case VK_OEM_3:
      return 0x29;
    case VK_OEM_5:
      return 0x2B;
    case VK_OEM_COMMA:
      return 0x33;
    case VK_OEM_PERIOD:
      return 0x34;
    case VK_OEM_2:
      return 0x35;
    case VK_HOME:
      *extended = true;
      return 0x47;
    case VK_UP:
      *extended = true;
      return 0x48;
    case VK_PRIOR:
      *extended = true;
      return 0x49;
    case VK_LEFT:
      *extended = true;
      return 0x4B;
    case VK_RIGHT:
      *extended = true;
      return 0x4D;
    case VK_END:
      *extended = true;
      return 0x4F;
    case VK_DOWN:
      *extended = true;
      return 0x50;
    case VK_NEXT:
      *extended = true;
      return 0x51;
    case VK_INSERT:
      *extended = true;
      return 0x52;
    case VK_DELETE:
      *extended = true;
      return 0x53;
    case VK_DIVIDE:
      *extended = true;
      return 0x35;
    case VK_APPS:
      *extended = true;
      return 0x5D;
    default:
      return 0;
  }
}

// Left and right modifier keys also move the generic one.
int Generic(int vk) {
  switch (vk) {
    case VK_LSHIFT:
    case VK_RSHIFT:
      return VK_SHIFT;
    case VK_LCONTROL:
    case VK_RCONTROL:
      return VK_CONTROL;
    case VK_LMENU:
    case VK_RMENU:
      return VK_MENU;
    default:
      return 0;
  }
}

void SetKey(BYTE* keys, int vk, bool down, bool toggle_on_down) {
  const auto i = static_cast<size_t>(vk & 0xFF);
  if (down) {
    if (toggle_on_down && (keys[i] & 0x80) == 0) keys[i] ^= 0x01;
    keys[i] |= 0x80;
  } else {
    keys[i] &= static_cast<BYTE>(~0x80);
  }
}

void MoveKeyState(BYTE* keys, int vk, bool down, bool async) {
  // The asynchronous state's low bit means "pressed since the last query".
  if (async) {
    const auto i = static_cast<size_t>(vk & 0xFF);
    if (down) {
      keys[i] |= 0x81;
    } else {
      keys[i] &= static_cast<BYTE>(~0x80);
    }
    if (const int g = Generic(vk)) {
      if (down) {
        keys[g] |= 0x81;
      } else {
        keys[g] &= static_cast<BYTE>(~0x80);
      }
    }
    return;
  }
  SetKey(keys, vk, down, true);
  if (const int g = Generic(vk)) SetKey(keys, g, down, true);
}

void UpdateTracking(HWND under, LRESULT hit, POINT p) {
  UserState& s = UserState::Get();
  s.mouse_window = under;
  s.mouse_hit = hit;
  if (s.track == nullptr) return;
  if (!Alive(s.track)) {
    s.track = nullptr;
    s.track_flags = 0;
    return;
  }
  const bool nc = (s.track_flags & TME_NONCLIENT) != 0;
  const bool inside = under == s.track && (nc ? hit != HTCLIENT : hit == HTCLIENT);
  if (!inside) {
    if ((s.track_flags & TME_LEAVE) != 0) {
      s.posted.push_front(
          MSG{s.track, nc ? WM_NCMOUSELEAVE : WM_MOUSELEAVE, 0, 0, Clock::Now(), s.cursor});
    }
    s.track = nullptr;
    s.track_flags = 0;
    return;
  }
  if ((s.track_flags & TME_HOVER) != 0) {
    // SPI_GETMOUSEHOVERWIDTH and HEIGHT: 4 pixels, centred on the anchor.
    constexpr int half_w = 2;
    constexpr int half_h = 2;
    if (std::abs(p.x - s.hover_anchor.x) > half_w || std::abs(p.y - s.hover_anchor.y) > half_h) {
      s.hover_anchor = p;
      s.hover_start = Clock::Now();
    }
  }
}

bool SizeMoveStep(const InputEvent& e) {
  auto& sm = vantor::platform::CurrentSizeMove();
  if (sm.hwnd == nullptr) return false;
  Window* w = Window::Get(sm.hwnd);
  if (w == nullptr) {
    sm.hwnd = nullptr;
    return false;
  }
  if (e.kind == InputEvent::kButton && e.button == 0 && !e.down) {
    const HWND hwnd = sm.hwnd;
    sm.hwnd = nullptr;
    if (GetCapture() == hwnd) ReleaseCapture();
    if (Alive(hwnd)) SendMessageW(hwnd, WM_EXITSIZEMOVE, 0, 0);
    return true;
  }
  if (e.kind != InputEvent::kMove) return e.kind == InputEvent::kButton;
  const LONG dx = e.point.x - sm.start.x;
  const LONG dy = e.point.y - sm.start.y;
  RECT r = sm.rect;
  switch (sm.hit) {
    case HTCAPTION:
      r = RECT{r.left + dx, r.top + dy, r.right + dx, r.bottom + dy};
      break;
    case HTLEFT:
      r.left += dx;
      break;
    case HTRIGHT:
      r.right += dx;
      break;
    case HTTOP:
      r.top += dy;
      break;
    case HTBOTTOM:
      r.bottom += dy;
      break;
    case HTTOPLEFT:
      r.left += dx;
      r.top += dy;
      break;
    case HTTOPRIGHT:
      r.right += dx;
      r.top += dy;
      break;
    case HTBOTTOMLEFT:
      r.left += dx;
      r.bottom += dy;
      break;
    case HTBOTTOMRIGHT:
      r.right += dx;
      r.bottom += dy;
      break;
    default:
      break;
  }
  const UINT flags = SWP_NOZORDER | SWP_NOACTIVATE | (sm.hit == HTCAPTION ? SWP_NOSIZE : 0u);
  SetWindowPos(sm.hwnd, nullptr, r.left, r.top, std::max<LONG>(r.right - r.left, 0),
               std::max<LONG>(r.bottom - r.top, 0), flags);
  return true;
}

void Push(InputEvent e) {
  UserState& s = UserState::Get();
  e.time = Clock::Now();
  // A queue nobody pumps must not grow without end.
  if (s.input.size() >= 65536) s.input.pop_front();
  s.input.push_back(e);
}

}  // namespace

namespace vantor::platform {

SizeMove& CurrentSizeMove() {
  static SizeMove sm;
  return sm;
}

HWND HitTestPoint(POINT screen, LRESULT* hit, bool send) {
  *hit = HTNOWHERE;
  auto tops = Window::Desktop()->children;
  for (auto& top : tops) {
    if (!top->Visible() || (top->style & WS_MINIMIZE) != 0 || !ShapeContains(*top, screen)) {
      continue;
    }
    if ((top->style & WS_DISABLED) != 0) {
      *hit = HTERROR;
      return top->handle;
    }
    if (Window* found = Descend(*top, screen, hit, send)) return found->handle;
  }
  return nullptr;
}

bool TranslateInput(const InputEvent& e, MSG* out) {
  UserState& s = UserState::Get();
  if (e.kind == InputEvent::kButton) {
    MoveKeyState(s.keys, kButtonKey[e.button], e.down, false);
  }
  if ((e.kind == InputEvent::kMove || e.kind == InputEvent::kButton) && SizeMoveStep(e)) {
    return false;
  }
  const DWORD now = e.time;
  if (e.kind == InputEvent::kMove || e.kind == InputEvent::kButton ||
      e.kind == InputEvent::kWheel) {
    LRESULT hit = HTNOWHERE;
    const HWND under = HitTestPoint(e.point, &hit, true);
    UpdateTracking(under, hit, e.point);
    HWND target = s.capture != nullptr && Alive(s.capture) ? s.capture : under;
    if (e.kind == InputEvent::kWheel) {
      if (target == nullptr) target = s.focus;
      if (target == nullptr || hit == HTERROR) return false;
      const UINT msg = e.horizontal ? WM_MOUSEHWHEEL : WM_MOUSEWHEEL;
      *out = MSG{target,
                 msg,
                 MAKEWPARAM(static_cast<WORD>(MouseKeys()),
                            static_cast<WORD>(static_cast<SHORT>(e.delta))),
                 PackPoint(e.point.x, e.point.y),
                 now,
                 e.point};
      return true;
    }
    if (target == nullptr) return false;
    const bool captured = target == s.capture;
    UINT msg = WM_MOUSEMOVE;
    if (e.kind == InputEvent::kButton) {
      msg = kButtonDown[e.button] + (e.down ? 0u : 1u);
    }
    if (!captured) {
      SendMessageW(under, WM_SETCURSOR, reinterpret_cast<WPARAM>(under),
                   MAKELPARAM(static_cast<WORD>(static_cast<SHORT>(hit)), static_cast<WORD>(msg)));
      if (!Alive(under) || hit == HTERROR) return false;
      if (e.kind == InputEvent::kButton && e.down) {
        Window* w = Window::Get(under);
        Window* top = w->TopLevel();
        const HWND top_handle = top->handle;
        if (s.active != top_handle && (top->ex_style & WS_EX_NOACTIVATE) == 0) {
          const LRESULT r = SendMessageW(
              under, WM_MOUSEACTIVATE, reinterpret_cast<WPARAM>(top_handle),
              MAKELPARAM(static_cast<WORD>(static_cast<SHORT>(hit)), static_cast<WORD>(msg)));
          if ((r == MA_ACTIVATE || r == MA_ACTIVATEANDEAT) && Alive(top_handle)) {
            Activate(top_handle, WA_CLICKACTIVE);
          }
          if (r == MA_ACTIVATEANDEAT || r == MA_NOACTIVATEANDEAT || !Alive(under)) return false;
        }
      }
    }
    const bool client = captured || hit == HTCLIENT;
    if (e.kind == InputEvent::kButton && e.down) {
      Window* w = Window::Get(target);
      const bool wants = !client || (w != nullptr && w->cls && (w->cls->style & CS_DBLCLKS) != 0);
      const bool near =
          std::abs(e.point.x - s.last_press_point.x) <= GetSystemMetrics(SM_CXDOUBLECLK) / 2 &&
          std::abs(e.point.y - s.last_press_point.y) <= GetSystemMetrics(SM_CYDOUBLECLK) / 2;
      if (s.last_press_fresh && s.last_press == msg && s.last_press_window == target && near &&
          now - s.last_press_time <= kDoubleClickTime && wants) {
        msg += 2;  // the DBLCLK message of the button
        s.last_press_fresh = false;
      } else {
        s.last_press_fresh = true;
        s.last_press = msg;
        s.last_press_window = target;
        s.last_press_time = now;
        s.last_press_point = e.point;
      }
    }
    if (!captured && client && e.kind == InputEvent::kButton && e.down &&
        (msg == kButtonDown[e.button])) {
      // A press on a child tells its parents, unless it asked not to.
      for (Window* c = Window::Get(target);
           c != nullptr && c->IsChild() && (c->ex_style & WS_EX_NOPARENTNOTIFY) == 0;) {
        Window* p = c->parent;
        if (p == nullptr || p->parent == nullptr) break;
        const HWND ph = p->handle;
        const POINT o = p->ClientOrigin();
        SendMessageW(ph, WM_PARENTNOTIFY,
                     MAKEWPARAM(static_cast<WORD>(msg),
                                e.button >= 3 ? (e.button == 3 ? XBUTTON1 : XBUTTON2) : 0),
                     PackPoint(e.point.x - o.x, e.point.y - o.y));
        if (!Alive(target) || !Alive(ph)) return false;
        c = Window::Get(ph);
      }
    }
    // The procedures asked above may have destroyed the target.
    if (!Alive(target)) return false;
    WPARAM wparam = client ? MouseKeys() : static_cast<WPARAM>(hit);
    if (e.kind == InputEvent::kButton && e.button >= 3) {
      wparam = MAKEWPARAM(static_cast<WORD>(wparam), e.button == 3 ? XBUTTON1 : XBUTTON2);
    }
    if (client) {
      Window* w = Window::Get(target);
      const POINT o = w->ClientOrigin();
      *out = MSG{target, msg, wparam, PackPoint(e.point.x - o.x, e.point.y - o.y), now, e.point};
    } else {
      // The non-client messages sit 0x160 below the client ones.
      *out = MSG{target, msg - (WM_MOUSEMOVE - WM_NCMOUSEMOVE),
                 wparam, PackPoint(e.point.x, e.point.y),
                 now,    e.point};
    }
    return true;
  }
  if (e.kind == InputEvent::kKey) {
    const int vk = e.vkey & 0xFF;
    const bool alt_before = (s.keys[VK_MENU] & 0x80) != 0;
    MoveKeyState(s.keys, vk, e.down, false);
    const bool alt = (s.keys[VK_MENU] & 0x80) != 0;
    const bool ctrl = (s.keys[VK_CONTROL] & 0x80) != 0;
    bool sys = (alt && !ctrl) || vk == VK_F10 ||
               (!e.down && alt_before && Generic(vk) == VK_MENU) || (!e.down && vk == VK_MENU);
    HWND target = s.focus != nullptr && Alive(s.focus) ? s.focus : nullptr;
    if (target == nullptr) {
      target = s.active != nullptr && Alive(s.active) ? s.active : nullptr;
      sys = true;
    }
    if (target == nullptr) return false;
    bool extended = false;
    const int scan = ScanCode(vk, &extended);
    uintptr_t l = 1u | (static_cast<uintptr_t>(scan) << 16);
    if (extended) l |= uintptr_t{1} << 24;
    if ((e.down ? alt : alt_before) && !ctrl) l |= uintptr_t{1} << 29;
    if (!e.down || e.repeat) l |= uintptr_t{1} << 30;
    if (!e.down) l |= uintptr_t{1} << 31;
    const UINT msg =
        sys ? (e.down ? WM_SYSKEYDOWN : WM_SYSKEYUP) : (e.down ? WM_KEYDOWN : WM_KEYUP);
    *out =
        MSG{target, msg,     static_cast<WPARAM>(vk), static_cast<LPARAM>(static_cast<uint32_t>(l)),
            now,    s.cursor};
    return true;
  }
  if (e.kind == InputEvent::kChar) {
    HWND target = s.focus != nullptr && Alive(s.focus) ? s.focus : s.active;
    if (target == nullptr || !Alive(target)) return false;
    *out = MSG{target, WM_CHAR, e.ch, 1, now, s.cursor};
    return true;
  }
  return false;
}

bool CheckHover() {
  UserState& s = UserState::Get();
  if (s.track == nullptr || (s.track_flags & TME_HOVER) == 0) return false;
  Window* w = Window::Get(s.track);
  if (w == nullptr) {
    s.track = nullptr;
    s.track_flags = 0;
    return false;
  }
  if (Clock::Now() - s.hover_start < s.hover_time) return false;
  const bool nc = (s.track_flags & TME_NONCLIENT) != 0;
  LPARAM where;
  if (nc) {
    where = PackPoint(s.cursor.x, s.cursor.y);
  } else {
    const POINT o = w->ClientOrigin();
    where = PackPoint(s.cursor.x - o.x, s.cursor.y - o.y);
  }
  s.posted.push_back(MSG{s.track, nc ? WM_NCMOUSEHOVER : WM_MOUSEHOVER,
                         nc ? static_cast<WPARAM>(s.mouse_hit) : MouseKeys(), where, Clock::Now(),
                         s.cursor});
  // Hover is reported once; leave tracking goes on.
  s.track_flags &= ~TME_HOVER;
  if ((s.track_flags & TME_LEAVE) == 0) s.track = nullptr;
  return true;
}

void ForgetWindow(HWND hwnd) {
  UserState& s = UserState::Get();
  if (s.capture == hwnd) s.capture = nullptr;
  if (s.focus == hwnd) s.focus = nullptr;
  if (s.active == hwnd) s.active = nullptr;
  if (s.track == hwnd) {
    s.track = nullptr;
    s.track_flags = 0;
  }
  if (s.mouse_window == hwnd) s.mouse_window = nullptr;
  if (s.last_press_window == hwnd) s.last_press_fresh = false;
  if (CurrentSizeMove().hwnd == hwnd) CurrentSizeMove().hwnd = nullptr;
}

void Activate(HWND hwnd, WORD how) {
  UserState& s = UserState::Get();
  Window* w = Window::Get(hwnd);
  if (w != nullptr && w->parent == nullptr) {
    // The desktop is never the active window.
    hwnd = nullptr;
    w = nullptr;
  }
  if (w != nullptr && !w->IsTopLevel()) {
    hwnd = w->TopLevel()->handle;
    w = Window::Get(hwnd);
  }
  if (s.active == hwnd) return;
  const HWND old = s.active != nullptr && Alive(s.active) ? s.active : nullptr;
  s.active = hwnd;
  if (old != nullptr) {
    Window* o = Window::Get(old);
    SendMessageW(old, WM_NCACTIVATE, FALSE, 0);
    if (Alive(old)) {
      SendMessageW(old, WM_ACTIVATE, MAKEWPARAM(WA_INACTIVE, (o->style & WS_MINIMIZE) != 0 ? 1 : 0),
                   reinterpret_cast<LPARAM>(hwnd));
    }
  }
  if (hwnd == nullptr || !Alive(hwnd) || s.active != hwnd) {
    if (s.active == hwnd) s.active = nullptr;
    if (hwnd == nullptr && s.focus != nullptr) SetFocus(nullptr);
    return;
  }
  SetWindowPos(hwnd, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  if (!Alive(hwnd)) return;
  SendMessageW(hwnd, WM_NCACTIVATE, TRUE, 0);
  if (!Alive(hwnd)) return;
  SendMessageW(hwnd, WM_ACTIVATE, MAKEWPARAM(how, (w->style & WS_MINIMIZE) != 0 ? 1 : 0),
               reinterpret_cast<LPARAM>(old));
  // The focus stays inside the active window, or nowhere.
  if (s.active == hwnd && s.focus != nullptr && s.focus != hwnd && !IsChild(hwnd, s.focus)) {
    SetFocus(nullptr);
  }
}

void ActivateNext(HWND leaving) {
  UserState& s = UserState::Get();
  Window* l = Window::Get(leaving);
  HWND next = nullptr;
  if (l != nullptr && l->owner != nullptr) {
    Window* o = Window::Get(l->owner);
    if (o != nullptr && o->Visible() && (o->style & WS_DISABLED) == 0) next = o->handle;
  }
  if (next == nullptr) {
    for (auto& top : Window::Desktop()->children) {
      if (top->handle == leaving || !top->Visible() || (top->style & WS_DISABLED) != 0 ||
          (top->ex_style & (WS_EX_NOACTIVATE | WS_EX_TOOLWINDOW)) != 0 || top->destroying) {
        continue;
      }
      next = top->handle;
      break;
    }
  }
  if (next != nullptr) {
    Activate(next, WA_ACTIVE);
  } else if (s.active == leaving) {
    Activate(nullptr, WA_INACTIVE);
  }
}

void InjectMouseMove(int x, int y) {
  UserState& s = UserState::Get();
  s.cursor = POINT{std::clamp<LONG>(x, 0, std::max<LONG>(s.screen.cx - 1, 0)),
                   std::clamp<LONG>(y, 0, std::max<LONG>(s.screen.cy - 1, 0))};
  InputEvent e;
  e.kind = InputEvent::kMove;
  e.point = s.cursor;
  Push(e);
}

void InjectMouseButton(MouseButton button, bool down) {
  UserState& s = UserState::Get();
  InputEvent e;
  e.kind = InputEvent::kButton;
  e.button = static_cast<int>(button);
  if (e.button < 0 || e.button > 4) return;
  e.down = down;
  e.point = s.cursor;
  MoveKeyState(s.async_keys, kButtonKey[e.button], down, true);
  Push(e);
}

void InjectMouseWheel(int delta, bool horizontal) {
  InputEvent e;
  e.kind = InputEvent::kWheel;
  e.delta = std::clamp(delta, -32768, 32767);
  e.horizontal = horizontal;
  e.point = UserState::Get().cursor;
  Push(e);
}

void InjectKey(int vkey, bool down) {
  UserState& s = UserState::Get();
  if (vkey <= 0 || vkey > 0xFE) return;
  InputEvent e;
  e.kind = InputEvent::kKey;
  e.vkey = vkey;
  e.down = down;
  e.repeat = down && (s.async_keys[vkey] & 0x80) != 0;
  e.point = s.cursor;
  MoveKeyState(s.async_keys, vkey, down, true);
  Push(e);
}

void InjectChar(char16_t ch) {
  InputEvent e;
  e.kind = InputEvent::kChar;
  e.ch = ch;
  e.point = UserState::Get().cursor;
  Push(e);
}

}  // namespace vantor::platform

// ---------------------------------------------------------------- capture

HWND SetCapture(HWND hwnd) {
  UserState& s = UserState::Get();
  const HWND old = s.capture;
  if (hwnd != nullptr && !Alive(hwnd)) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
  }
  s.capture = hwnd;
  if (old != nullptr && old != hwnd && Alive(old)) {
    SendMessageW(old, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(hwnd));
  }
  return old;
}

BOOL ReleaseCapture() {
  UserState& s = UserState::Get();
  const HWND old = s.capture;
  s.capture = nullptr;
  if (old != nullptr && Alive(old)) SendMessageW(old, WM_CAPTURECHANGED, 0, 0);
  return TRUE;
}

HWND GetCapture() {
  return UserState::Get().capture;
}

// ---------------------------------------------------------------- focus

HWND SetFocus(HWND hwnd) {
  UserState& s = UserState::Get();
  const HWND old = s.focus;
  if (hwnd == nullptr) {
    s.focus = nullptr;
    if (old != nullptr && Alive(old)) SendMessageW(old, WM_KILLFOCUS, 0, 0);
    return old;
  }
  Window* w = Window::Get(hwnd);
  if (w == nullptr || w->parent == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
  }
  if (old == hwnd) return old;
  const HWND top = w->TopLevel()->handle;
  if (s.active != top) {
    vantor::platform::Activate(top, WA_ACTIVE);
    if (!Alive(hwnd)) return nullptr;
  }
  const HWND before = s.focus;
  if (before == hwnd) return old;
  if (before != nullptr && Alive(before)) {
    SendMessageW(before, WM_KILLFOCUS, reinterpret_cast<WPARAM>(hwnd), 0);
    if (!Alive(hwnd)) return nullptr;
  }
  s.focus = hwnd;
  SendMessageW(hwnd, WM_SETFOCUS, reinterpret_cast<WPARAM>(before), 0);
  return old;
}

HWND GetFocus() {
  return UserState::Get().focus;
}
HWND GetActiveWindow() {
  return UserState::Get().active;
}
HWND GetForegroundWindow() {
  return UserState::Get().active;
}

HWND SetActiveWindow(HWND hwnd) {
  const HWND old = UserState::Get().active;
  if (hwnd != nullptr && !Alive(hwnd)) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
  }
  vantor::platform::Activate(hwnd, WA_ACTIVE);
  return old;
}

BOOL SetForegroundWindow(HWND hwnd) {
  if (!Alive(hwnd)) return FALSE;
  vantor::platform::Activate(GetAncestor(hwnd, GA_ROOT), WA_ACTIVE);
  return TRUE;
}

// ---------------------------------------------------------------- tracking

BOOL TrackMouseEvent(TRACKMOUSEEVENT* track) {
  UserState& s = UserState::Get();
  if (track == nullptr || track->cbSize != sizeof(TRACKMOUSEEVENT)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  if ((track->dwFlags & TME_QUERY) != 0) {
    if (s.track != nullptr && Alive(s.track)) {
      track->dwFlags = s.track_flags;
      track->hwndTrack = s.track;
      track->dwHoverTime = s.hover_time;
    } else {
      track->dwFlags = 0;
      track->hwndTrack = nullptr;
      track->dwHoverTime = 0;
    }
    return TRUE;
  }
  if (!Alive(track->hwndTrack)) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
  }
  const DWORD kinds = track->dwFlags & (TME_HOVER | TME_LEAVE | TME_NONCLIENT);
  if ((track->dwFlags & TME_CANCEL) != 0) {
    if (s.track == track->hwndTrack) {
      s.track_flags &= ~(kinds & (TME_HOVER | TME_LEAVE));
      if ((s.track_flags & (TME_HOVER | TME_LEAVE)) == 0) {
        s.track = nullptr;
        s.track_flags = 0;
      }
    }
    return TRUE;
  }
  LRESULT hit = HTNOWHERE;
  const HWND under = vantor::platform::HitTestPoint(s.cursor, &hit, true);
  const bool nc = (kinds & TME_NONCLIENT) != 0;
  const bool inside = under == track->hwndTrack && (nc ? hit != HTCLIENT : hit == HTCLIENT);
  if (!inside) {
    // The mouse is already elsewhere: the leave comes at once.
    if ((kinds & TME_LEAVE) != 0) {
      s.posted.push_back(MSG{track->hwndTrack, nc ? WM_NCMOUSELEAVE : WM_MOUSELEAVE, 0, 0,
                             Clock::Now(), s.cursor});
    }
    return TRUE;
  }
  if (s.track != track->hwndTrack || ((s.track_flags & TME_NONCLIENT) != 0) != nc) {
    s.track_flags = 0;
  }
  s.track = track->hwndTrack;
  s.track_flags |= kinds;
  if ((kinds & TME_HOVER) != 0) {
    UINT hover = 400;
    if (track->dwHoverTime != HOVER_DEFAULT) hover = track->dwHoverTime;
    if (hover == 0) hover = 1;
    s.hover_time = hover;
    s.hover_anchor = s.cursor;
    s.hover_start = Clock::Now();
  }
  return TRUE;
}

// ---------------------------------------------------------------- cursors

namespace {

constexpr WORD kCursorIds[] = {32512, 32513, 32514, 32515, 32516, 32640, 32641, 32642,
                               32643, 32644, 32645, 32646, 32648, 32649, 32650, 32651};
constexpr uintptr_t kCursorBase = 0x00C00000;

}  // namespace

HCURSOR SetCursor(HCURSOR cursor) {
  UserState& s = UserState::Get();
  const HCURSOR old = s.cursor_shape;
  s.cursor_shape = cursor;
  return old;
}

HCURSOR GetCursor() {
  return UserState::Get().cursor_shape;
}

HCURSOR LoadCursorW(HINSTANCE instance, LPCWSTR name) {
  if (instance == nullptr && name != nullptr && IS_INTRESOURCE(name)) {
    const auto id = static_cast<WORD>(reinterpret_cast<uintptr_t>(name));
    for (WORD known : kCursorIds) {
      if (known == id) return reinterpret_cast<HCURSOR>(kCursorBase + id);
    }
  }
  SetLastError(kErrorResourceNameNotFound);
  return nullptr;
}

HCURSOR LoadCursorA(HINSTANCE instance, LPCSTR name) {
  if (name != nullptr && IS_INTRESOURCE(name)) {
    return LoadCursorW(instance, reinterpret_cast<LPCWSTR>(name));
  }
  SetLastError(kErrorResourceNameNotFound);
  return nullptr;
}

BOOL GetCursorPos(LPPOINT point) {
  if (point == nullptr) return FALSE;
  *point = UserState::Get().cursor;
  return TRUE;
}

BOOL SetCursorPos(int x, int y) {
  vantor::platform::InjectMouseMove(x, y);
  return TRUE;
}

SHORT GetAsyncKeyState(int vkey) {
  if (vkey < 0 || vkey > 255) return 0;
  BYTE& k = UserState::Get().async_keys[vkey];
  const int r = ((k & 0x80) != 0 ? 0x8000 : 0) | (k & 0x01);
  k &= static_cast<BYTE>(~0x01);
  return static_cast<SHORT>(r);
}

SHORT GetKeyState(int vkey) {
  if (vkey < 0 || vkey > 255) return 0;
  const BYTE k = UserState::Get().keys[vkey];
  return static_cast<SHORT>(((k & 0x80) != 0 ? 0xFF80 : 0) | (k & 0x01));
}

void keybd_event(BYTE vkey, BYTE, DWORD flags, ULONG_PTR) {
  vantor::platform::InjectKey(vkey, (flags & KEYEVENTF_KEYUP) == 0);
}

UINT GetDoubleClickTime() {
  return kDoubleClickTime;
}
