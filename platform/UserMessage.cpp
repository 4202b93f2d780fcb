// Sending, posting and dispatching messages; window procedures and their
// wide/narrow conversions; the default window procedure; the message pump.
#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

#include "platform/Clock.h"
#include "platform/Gdi.h"
#include "platform/Input.h"
#include "platform/UserState.h"

using vantor::String;
using vantor::platform::UserState;
using vantor::platform::Window;

namespace vantor::platform {

namespace {

// Procedures handed out as handles, as the platform does when a caller of
// one text form asks for a procedure of the other form.
struct ProcEntry {
  WNDPROC proc;
  bool unicode;
};

std::vector<ProcEntry>& ProcHandles() {
  static std::vector<ProcEntry> handles;
  return handles;
}

constexpr uint32_t kProcHandleBase = 0xFFFF0000u;

bool IsProcHandle(LONG_PTR value, size_t* index) {
  const auto v = static_cast<uint64_t>(value);
  const uint64_t high = v >> 32;
  if (high != 0 && high != 0xFFFFFFFFu) return false;
  if ((v & 0xFFFF0000u) != kProcHandleBase) return false;
  *index = static_cast<size_t>(v & 0xFFFFu);
  return *index < ProcHandles().size();
}

}  // namespace

LONG_PTR ProcToValue(WNDPROC proc, bool proc_unicode, bool caller_unicode, bool narrow) {
  if (proc == nullptr) return 0;
  if (!narrow && proc_unicode == caller_unicode) return reinterpret_cast<LONG_PTR>(proc);
  auto& handles = ProcHandles();
  size_t index = 0;
  while (index < handles.size() &&
         (handles[index].proc != proc || handles[index].unicode != proc_unicode)) {
    ++index;
  }
  if (index == handles.size()) {
    if (handles.size() >= 0xFFFF) return 0;
    handles.push_back(ProcEntry{proc, proc_unicode});
  }
  return static_cast<LONG_PTR>(static_cast<LONG>(kProcHandleBase | index));
}

bool ValueToProc(LONG_PTR value, bool caller_unicode, bool narrow, WNDPROC* proc,
                 bool* proc_unicode) {
  size_t index = 0;
  if (value == 0) {
    *proc = nullptr;
    *proc_unicode = caller_unicode;
    return true;
  }
  if (IsProcHandle(value, &index)) {
    *proc = ProcHandles()[index].proc;
    *proc_unicode = ProcHandles()[index].unicode;
    return true;
  }
  // Through the 32-bit functions only our handles can name a procedure;
  // a pointer doesn't fit.
  if (narrow && sizeof(LONG_PTR) > sizeof(LONG)) return false;
  *proc = reinterpret_cast<WNDPROC>(value);
  *proc_unicode = caller_unicode;
  return true;
}

namespace {

char16_t WideChar(WPARAM narrow) {
  return vantor::AnsiToChar(static_cast<uint8_t>(narrow & 0xFF));
}

WPARAM NarrowChar(WPARAM wide) {
  const int b = vantor::CharToAnsi(static_cast<char16_t>(wide & 0xFFFF));
  return static_cast<WPARAM>(b < 0 ? '?' : b);
}

bool IsCharMessage(UINT msg) {
  return msg == WM_CHAR || msg == WM_SYSCHAR || msg == WM_DEADCHAR || msg == 0x0107;
}

}  // namespace

LRESULT CallProc(WNDPROC proc, bool proc_unicode, HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam,
                 bool msg_unicode) {
  if (proc == nullptr) {
    return msg_unicode ? DefWindowProcW(hwnd, msg, wparam, lparam)
                       : DefWindowProcA(hwnd, msg, wparam, lparam);
  }
  if (proc_unicode == msg_unicode) return proc(hwnd, msg, wparam, lparam);
  if (IsCharMessage(msg)) {
    return proc(hwnd, msg, msg_unicode ? NarrowChar(wparam) : WideChar(wparam), lparam);
  }
  switch (msg) {
    case WM_SETTEXT: {
      if (lparam == 0) return proc(hwnd, msg, wparam, lparam);
      if (msg_unicode) {
        const std::string a = vantor::ToAnsi(reinterpret_cast<LPCWSTR>(lparam));
        return proc(hwnd, msg, wparam, reinterpret_cast<LPARAM>(a.c_str()));
      }
      const String w = vantor::FromAnsi(reinterpret_cast<LPCSTR>(lparam));
      return proc(hwnd, msg, wparam, reinterpret_cast<LPARAM>(w.c_str()));
    }
    case WM_GETTEXT: {
      if (lparam == 0 || wparam == 0) return proc(hwnd, msg, wparam, lparam);
      const size_t size = std::min<size_t>(wparam, size_t{1} << 24);
      if (msg_unicode) {
        std::vector<char> buffer(size + 1, 0);
        const LRESULT n = proc(hwnd, msg, size, reinterpret_cast<LPARAM>(buffer.data()));
        const size_t got = std::min<size_t>(static_cast<size_t>(std::max<LRESULT>(n, 0)), size);
        const String w = vantor::FromAnsi(std::string_view(buffer.data(), got));
        auto* out = reinterpret_cast<LPWSTR>(lparam);
        const size_t copy = std::min(w.size(), size - 1);
        std::copy_n(w.data(), copy, out);
        out[copy] = 0;
        return static_cast<LRESULT>(copy);
      }
      std::vector<char16_t> buffer(size + 1, 0);
      const LRESULT n = proc(hwnd, msg, size, reinterpret_cast<LPARAM>(buffer.data()));
      const size_t got = std::min<size_t>(static_cast<size_t>(std::max<LRESULT>(n, 0)), size);
      const std::string a = vantor::ToAnsi(std::u16string_view(buffer.data(), got));
      auto* out = reinterpret_cast<LPSTR>(lparam);
      const size_t copy = std::min(a.size(), size - 1);
      std::copy_n(a.data(), copy, out);
      out[copy] = 0;
      return static_cast<LRESULT>(copy);
    }
    case WM_NCCREATE:
    case WM_CREATE: {
      if (lparam == 0) return proc(hwnd, msg, wparam, lparam);
      if (msg_unicode) {
        const auto* cs = reinterpret_cast<const CREATESTRUCTW*>(lparam);
        const std::string name = cs->lpszName ? vantor::ToAnsi(cs->lpszName) : std::string();
        std::string cls;
        CREATESTRUCTA a{cs->lpCreateParams,
                        cs->hInstance,
                        cs->hMenu,
                        cs->hwndParent,
                        cs->cy,
                        cs->cx,
                        cs->y,
                        cs->x,
                        cs->style,
                        nullptr,
                        nullptr,
                        cs->dwExStyle};
        a.lpszName = cs->lpszName ? name.c_str() : nullptr;
        if (cs->lpszClass != nullptr && IS_INTRESOURCE(cs->lpszClass)) {
          a.lpszClass = reinterpret_cast<LPCSTR>(cs->lpszClass);
        } else if (cs->lpszClass != nullptr) {
          cls = vantor::ToAnsi(cs->lpszClass);
          a.lpszClass = cls.c_str();
        }
        return proc(hwnd, msg, wparam, reinterpret_cast<LPARAM>(&a));
      }
      const auto* cs = reinterpret_cast<const CREATESTRUCTA*>(lparam);
      const String name = cs->lpszName ? vantor::FromAnsi(cs->lpszName) : String();
      String cls;
      CREATESTRUCTW w{cs->lpCreateParams,
                      cs->hInstance,
                      cs->hMenu,
                      cs->hwndParent,
                      cs->cy,
                      cs->cx,
                      cs->y,
                      cs->x,
                      cs->style,
                      nullptr,
                      nullptr,
                      cs->dwExStyle};
      w.lpszName = cs->lpszName ? name.c_str() : nullptr;
      if (cs->lpszClass != nullptr && IS_INTRESOURCE(cs->lpszClass)) {
        w.lpszClass = reinterpret_cast<LPCWSTR>(cs->lpszClass);
      } else if (cs->lpszClass != nullptr) {
        cls = vantor::FromAnsi(cs->lpszClass);
        w.lpszClass = cls.c_str();
      }
      return proc(hwnd, msg, wparam, reinterpret_cast<LPARAM>(&w));
    }
    default:
      return proc(hwnd, msg, wparam, lparam);
  }
}

LRESULT SendToWindow(Window& window, UINT msg, WPARAM wparam, LPARAM lparam, bool unicode) {
  // The window stays alive until its procedure returns, even if the
  // procedure destroys it.
  const std::shared_ptr<Window> keep = Window::Share(window.handle);
  if (!keep) return 0;
  if (window.parent == nullptr) return 0;  // the desktop answers nothing
  return CallProc(window.proc, window.unicode, window.handle, msg, wparam, lparam, unicode);
}

bool MessageMatches(HWND hwnd, UINT msg, HWND filter, UINT first, UINT last) {
  if (filter == reinterpret_cast<HWND>(intptr_t{-1})) {
    if (hwnd != nullptr) return false;
  } else if (filter != nullptr && hwnd != filter && !IsChild(filter, hwnd)) {
    return false;
  }
  if (first == 0 && last == 0) return true;
  if (msg == WM_QUIT) return true;
  return msg >= first && msg <= last;
}

namespace {

bool RangeAllows(UINT first, UINT last, UINT lo, UINT hi) {
  if (first == 0 && last == 0) return true;
  return !(hi < first || lo > last);
}

}  // namespace

bool NextMessage(MSG* out, HWND filter, UINT first, UINT last, bool remove, bool quit) {
  UserState& s = UserState::Get();
  for (int round = 0; round < 100000; ++round) {
    for (auto it = s.posted.begin(); it != s.posted.end(); ++it) {
      if (MessageMatches(it->hwnd, it->message, filter, first, last)) {
        *out = *it;
        if (remove) s.posted.erase(it);
        return true;
      }
    }
    if (quit && s.quit) {
      *out = MSG{nullptr, WM_QUIT, static_cast<WPARAM>(s.quit_code), 0, Clock::Now(), s.cursor};
      if (remove) s.quit = false;
      return true;
    }
    // Input becomes messages only when they may be taken now; what it
    // produces goes to the head of the queue.
    if (!s.input.empty() && (RangeAllows(first, last, WM_MOUSEFIRST, WM_MOUSELAST) ||
                             RangeAllows(first, last, WM_KEYFIRST, WM_KEYLAST) ||
                             RangeAllows(first, last, WM_NCMOUSEMOVE, WM_NCXBUTTONDBLCLK))) {
      const InputEvent event = s.input.front();
      s.input.pop_front();
      MSG m{};
      const size_t before = s.posted.size();
      if (TranslateInput(event, &m)) {
        // After what the event itself put at the head (a mouse leave).
        const size_t ahead = s.posted.size() >= before ? s.posted.size() - before : 0;
        s.posted.insert(s.posted.begin() + static_cast<ptrdiff_t>(std::min(ahead, s.posted.size())),
                        m);
      }
      continue;
    }
    if (CheckHover()) continue;
    if (RangeAllows(first, last, WM_PAINT, WM_PAINT)) {
      if (Window* w = NextPaintWindow(filter)) {
        *out = MSG{w->handle, WM_PAINT, 0, 0, Clock::Now(), s.cursor};
        return true;
      }
    }
    if (RangeAllows(first, last, WM_TIMER, WM_TIMER) && NextTimer(out, filter, remove)) {
      return true;
    }
    return false;
  }
  return false;
}

}  // namespace vantor::platform

// ---------------------------------------------------------------- send, post

LRESULT SendMessageW(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return 0;
  }
  return vantor::platform::SendToWindow(*w, msg, wparam, lparam, true);
}

LRESULT SendMessageA(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return 0;
  }
  return vantor::platform::SendToWindow(*w, msg, wparam, lparam, false);
}

namespace {

// Messages whose parameters point into the sender's memory can't wait in
// a queue.
bool SyncOnly(UINT msg) {
  switch (msg) {
    case WM_SETTEXT:
    case WM_GETTEXT:
    case WM_CREATE:
    case WM_NCCREATE:
    case WM_NCCALCSIZE:
    case WM_GETMINMAXINFO:
    case WM_WINDOWPOSCHANGING:
    case WM_WINDOWPOSCHANGED:
    case WM_STYLECHANGING:
    case WM_STYLECHANGED:
      return true;
    default:
      return false;
  }
}

constexpr DWORD kErrorMessageSyncOnly = 1159;

BOOL Post(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  UserState& s = UserState::Get();
  if (SyncOnly(msg)) {
    SetLastError(kErrorMessageSyncOnly);
    return FALSE;
  }
  const MSG m{hwnd, msg, wparam, lparam, vantor::platform::Clock::Now(), s.cursor};
  if (hwnd == reinterpret_cast<HWND>(intptr_t{0xFFFF})) {
    for (auto& top : Window::Desktop()->children) {
      MSG copy = m;
      copy.hwnd = top->handle;
      s.posted.push_back(copy);
    }
    return TRUE;
  }
  if (hwnd != nullptr && Window::Get(hwnd) == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
  }
  s.posted.push_back(m);
  return TRUE;
}

}  // namespace

BOOL PostMessageW(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  return Post(hwnd, msg, wparam, lparam);
}

BOOL PostMessageA(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  // The queue keeps wide characters; DispatchMessageA narrows them again.
  if (vantor::platform::IsCharMessage(msg)) wparam = vantor::platform::WideChar(wparam);
  return Post(hwnd, msg, wparam, lparam);
}

void PostQuitMessage(int exit_code) {
  UserState& s = UserState::Get();
  s.quit = true;
  s.quit_code = exit_code;
}

LRESULT CallWindowProcW(WNDPROC proc, HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  WNDPROC p = nullptr;
  bool unicode = true;
  if (proc == nullptr ||
      !vantor::platform::ValueToProc(reinterpret_cast<LONG_PTR>(proc), true, false, &p, &unicode) ||
      p == nullptr) {
    return 0;
  }
  return vantor::platform::CallProc(p, unicode, hwnd, msg, wparam, lparam, true);
}

LRESULT CallWindowProcA(WNDPROC proc, HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  WNDPROC p = nullptr;
  bool unicode = false;
  if (proc == nullptr ||
      !vantor::platform::ValueToProc(reinterpret_cast<LONG_PTR>(proc), false, false, &p,
                                     &unicode) ||
      p == nullptr) {
    return 0;
  }
  return vantor::platform::CallProc(p, unicode, hwnd, msg, wparam, lparam, false);
}

// ---------------------------------------------------------------- the pump

namespace {

void Took(const MSG& m) {
  UserState& s = UserState::Get();
  s.message_time = m.time;
  s.message_point = m.pt;
}

BOOL Get(LPMSG msg, HWND hwnd, UINT first, UINT last) {
  if (msg == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return -1;
  }
  if (hwnd != nullptr && hwnd != reinterpret_cast<HWND>(intptr_t{-1}) &&
      Window::Get(hwnd) == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return -1;
  }
  UserState& s = UserState::Get();
  for (;;) {
    if (vantor::platform::NextMessage(msg, hwnd, first, last, true, true)) {
      Took(*msg);
      return msg->message == WM_QUIT ? 0 : 1;
    }
    if (s.idle_hook && s.idle_hook()) continue;
    DWORD due = 0;
    const DWORD now = vantor::platform::Clock::Now();
    if (vantor::platform::NextDue(&due) && static_cast<int32_t>(due - now) > 0) {
      if (vantor::platform::Clock::Manual()) {
        vantor::platform::Clock::Advance(due - now);
      } else {
        std::this_thread::sleep_for(std::chrono::milliseconds(due - now));
      }
      continue;
    }
    // Nothing can ever arrive: end the loop as a quit would.
    *msg = MSG{nullptr, WM_QUIT, 0, 0, now, s.cursor};
    return 0;
  }
}

}  // namespace

BOOL GetMessageW(LPMSG msg, HWND hwnd, UINT filter_min, UINT filter_max) {
  return Get(msg, hwnd, filter_min, filter_max);
}

BOOL GetMessageA(LPMSG msg, HWND hwnd, UINT filter_min, UINT filter_max) {
  const BOOL r = Get(msg, hwnd, filter_min, filter_max);
  if (r > 0 && vantor::platform::IsCharMessage(msg->message)) {
    msg->wParam = vantor::platform::NarrowChar(msg->wParam);
  }
  return r;
}

BOOL PeekMessageW(LPMSG msg, HWND hwnd, UINT filter_min, UINT filter_max, UINT remove) {
  if (msg == nullptr) return FALSE;
  if (!vantor::platform::NextMessage(msg, hwnd, filter_min, filter_max, (remove & PM_REMOVE) != 0,
                                     true)) {
    return FALSE;
  }
  Took(*msg);
  return TRUE;
}

BOOL PeekMessageA(LPMSG msg, HWND hwnd, UINT filter_min, UINT filter_max, UINT remove) {
  const BOOL r = PeekMessageW(msg, hwnd, filter_min, filter_max, remove);
  if (r && vantor::platform::IsCharMessage(msg->message)) {
    msg->wParam = vantor::platform::NarrowChar(msg->wParam);
  }
  return r;
}

namespace {

// The characters of the US layout, which pt-BR installations also type with
// for these keys; others produce none.
int CharOf(int vkey, bool shift, bool caps, bool ctrl, bool alt) {
  if (vkey >= 'A' && vkey <= 'Z') {
    if (ctrl && !alt) return vkey - 'A' + 1;
    return (shift != caps) ? vkey : vkey + 32;
  }
  if (ctrl && !alt) {
    switch (vkey) {
      case VK_RETURN:
        return 0x0A;
      case VK_BACK:
        return 0x7F;
      case VK_ESCAPE:
        return 0x1B;
      case VK_SPACE:
        return ' ';
      case VK_OEM_4:
        return 0x1B;
      case VK_OEM_5:
        return 0x1C;
      case VK_OEM_6:
        return 0x1D;
      default:
        return -1;
    }
  }
  if (vkey >= '0' && vkey <= '9') return shift ? ")!@#$%^&*("[vkey - '0'] : vkey;
  if (vkey >= VK_NUMPAD0 && vkey <= VK_NUMPAD9) return '0' + (vkey - VK_NUMPAD0);
  switch (vkey) {
    case VK_SPACE:
      return ' ';
    case VK_RETURN:
      return '\r';
    case VK_BACK:
      return 0x08;
    case VK_TAB:
      return '\t';
    case VK_ESCAPE:
      return 0x1B;
    case VK_MULTIPLY:
      return '*';
    case VK_ADD:
      return '+';
    case VK_SUBTRACT:
      return '-';
    case VK_DECIMAL:
      return '.';
    case VK_DIVIDE:
      return '/';
    case VK_OEM_1:
      return shift ? ':' : ';';
    case VK_OEM_PLUS:
      return shift ? '+' : '=';
    case VK_OEM_COMMA:
      return shift ? '<' : ',';
    case VK_OEM_MINUS:
      return shift ? '_' : '-';
    case VK_OEM_PERIOD:
      return shift ? '>' : '.';
    case VK_OEM_2:
      return shift ? '?' : '/';
    case VK_OEM_3:
      return shift ? '~' : '`';
    case VK_OEM_4:
      return shift ? '{' : '[';
    case VK_OEM_5:
      return shift ? '|' : '\\';
    case VK_OEM_6:
      return shift ? '}' : ']';
    case VK_OEM_7:
      return shift ? '"' : '\'';
    default:
      return -1;
  }
}

}  // namespace

BOOL TranslateMessage(const MSG* msg) {
  if (msg == nullptr) return FALSE;
  if (msg->message != WM_KEYDOWN && msg->message != WM_SYSKEYDOWN && msg->message != WM_KEYUP &&
      msg->message != WM_SYSKEYUP) {
    return FALSE;
  }
  if (msg->message == WM_KEYDOWN || msg->message == WM_SYSKEYDOWN) {
    const auto& keys = UserState::Get().keys;
    const bool shift = (keys[VK_SHIFT] & 0x80) != 0;
    const bool ctrl = (keys[VK_CONTROL] & 0x80) != 0;
    const bool alt = (keys[VK_MENU] & 0x80) != 0;
    const bool caps = (keys[VK_CAPITAL] & 0x01) != 0;
    const int ch = CharOf(static_cast<int>(msg->wParam & 0xFF), shift, caps, ctrl, alt);
    if (ch >= 0) {
      UserState::Get().posted.push_front(
          MSG{msg->hwnd, msg->message == WM_KEYDOWN ? WM_CHAR : WM_SYSCHAR, static_cast<WPARAM>(ch),
              msg->lParam, msg->time, msg->pt});
    }
  }
  return TRUE;
}

namespace {

LRESULT Dispatch(const MSG* msg, bool unicode) {
  if (msg == nullptr) return 0;
  if (msg->message == WM_TIMER && msg->lParam != 0) {
    // Only a procedure that a live timer holds is called.
    for (const auto& t : UserState::Get().timers) {
      if (reinterpret_cast<LPARAM>(t.proc) == msg->lParam && t.hwnd == msg->hwnd &&
          t.id == msg->wParam) {
        t.proc(msg->hwnd, WM_TIMER, msg->wParam, vantor::platform::Clock::Now());
        return 0;
      }
    }
    return 0;
  }
  if (msg->hwnd == nullptr) return 0;
  Window* w = Window::Get(msg->hwnd);
  if (w == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return 0;
  }
  WPARAM wparam = msg->wParam;
  if (!unicode && vantor::platform::IsCharMessage(msg->message)) {
    wparam = vantor::platform::WideChar(wparam);
  }
  const LRESULT r = vantor::platform::SendToWindow(*w, msg->message, wparam, msg->lParam, true);
  if (msg->message == WM_PAINT) {
    // A procedure that answers WM_PAINT without painting would be sent it
    // for ever; the pump takes the update region as handled.
    if (Window* again = Window::Get(msg->hwnd)) {
      vantor::platform::PaintFrameIfDue(*again);
    }
    if (Window* again = Window::Get(msg->hwnd)) {
      again->update.SetEmpty();
      again->erase = false;
      again->internal_paint = false;
    }
  }
  return r;
}

}  // namespace

LRESULT DispatchMessageW(const MSG* msg) {
  return Dispatch(msg, true);
}
LRESULT DispatchMessageA(const MSG* msg) {
  return Dispatch(msg, false);
}

LONG GetMessageTime() {
  return static_cast<LONG>(UserState::Get().message_time);
}

DWORD GetMessagePos() {
  const POINT p = UserState::Get().message_point;
  return static_cast<DWORD>(MAKELONG(static_cast<WORD>(p.x), static_cast<WORD>(p.y)));
}

namespace vantor::platform {

int RunUntilIdle() {
  int dispatched = 0;
  MSG m{};
  // A generous bound, so that a procedure that posts to itself for ever
  // can't hang a test.
  while (dispatched < 1000000 && NextMessage(&m, nullptr, 0, 0, true, false)) {
    UserState::Get().message_time = m.time;
    UserState::Get().message_point = m.pt;
    TranslateMessage(&m);
    DispatchMessageW(&m);
    ++dispatched;
  }
  return dispatched;
}

void SetIdleHook(std::function<bool()> hook) {
  UserState::Get().idle_hook = std::move(hook);
}

}  // namespace vantor::platform
