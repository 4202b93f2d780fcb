// Window classes, creation and destruction, the window tree, placement,
// text, window longs and properties.
#include <algorithm>
#include <cstring>

#include "platform/Gdi.h"
#include "platform/RegionObject.h"
#include "platform/UserState.h"

using vantor::String;
using vantor::platform::Region;
using vantor::platform::SendToWindow;
using vantor::platform::Window;
using vantor::platform::WindowClass;

namespace {

// WINDOWPOS flags the platform keeps for itself: what DefWindowProc must
// report with WM_SIZE and WM_MOVE.
constexpr UINT kNoClientSize = 0x0800;
constexpr UINT kNoClientMove = 0x1000;
constexpr DWORD kErrorTlwWithWsChild = 1406;
// Deeper trees than this are refused, so that the tree walks stay shallow;
// real window trees are a handful of levels deep.
constexpr int kMaxDepth = 256;

int Depth(const Window* w) {
  int depth = 0;
  for (; w != nullptr; w = w->parent) ++depth;
  return depth;
}

String ToString(LPCWSTR text) {
  return text ? String(text) : String();
}

String NarrowToString(LPCSTR text) {
  return text ? vantor::FromAnsi(text) : String();
}

Window* Valid(HWND hwnd) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr) SetLastError(ERROR_INVALID_WINDOW_HANDLE);
  return w;
}

LRESULT Send(Window& w, UINT msg, WPARAM wparam, LPARAM lparam) {
  return vantor::platform::SendToWindow(w, msg, wparam, lparam, true);
}

bool Alive(const std::shared_ptr<Window>& w) {
  return Window::Get(w->handle) == w.get();
}

void Unlink(Window& w) {
  if (w.parent == nullptr) return;
  auto& siblings = w.parent->children;
  siblings.erase(std::remove_if(siblings.begin(), siblings.end(),
                                [&](const std::shared_ptr<Window>& s) { return s.get() == &w; }),
                 siblings.end());
}

// Places a window among its siblings: top-level windows above the others
// unless a top-most one is there; children at the bottom, as created.
void Link(const std::shared_ptr<Window>& w, Window* parent, bool at_bottom) {
  w->parent = parent;
  auto& siblings = parent->children;
  if (at_bottom) {
    siblings.push_back(w);
    return;
  }
  auto it = siblings.begin();
  if (parent->parent == nullptr && (w->ex_style & WS_EX_TOPMOST) == 0) {
    while (it != siblings.end() && ((*it)->ex_style & WS_EX_TOPMOST) != 0) ++it;
  }
  siblings.insert(it, w);
}

void InvalidateParentArea(Window& w, const RECT& parent_rect) {
  if (w.parent == nullptr || w.parent->parent == nullptr) return;
  // The rectangle is in the parent's client coordinates already.
  Region area(parent_rect);
  vantor::platform::InvalidateWindow(*w.parent, &area, true, true);
}

void Free(Window& w) {
  vantor::platform::KillWindowTimers(w.handle);
  vantor::platform::ForgetWindow(w.handle);
  vantor::platform::DropWindowDCs(w.handle);
  auto& q = vantor::platform::UserState::Get().posted;
  q.erase(std::remove_if(q.begin(), q.end(), [&](const MSG& m) { return m.hwnd == w.handle; }),
          q.end());
  if (w.cls) --w.cls->windows;
  Unlink(w);
  w.window_region.reset();
  w.props.clear();
  Window::Remove(w.handle);
}

void SendDestroy(const std::shared_ptr<Window>& w) {
  Send(*w, WM_DESTROY, 0, 0);
  auto children = w->children;
  for (auto& c : children) {
    if (Alive(c) && !c->destroying) {
      c->destroying = true;
      SendDestroy(c);
    }
  }
}

void SendNcDestroyAndFree(const std::shared_ptr<Window>& w) {
  auto children = w->children;
  for (auto& c : children) {
    if (Alive(c)) SendNcDestroyAndFree(c);
  }
  if (!Alive(w)) return;
  Send(*w, WM_NCDESTROY, 0, 0);
  if (Alive(w)) Free(*w);
}

HWND CreateWindowImpl(DWORD ex_style, LPCWSTR class_name, const String& name, DWORD style, int x,
                      int y, int width, int height, HWND parent_hwnd, HMENU menu,
                      HINSTANCE instance, LPVOID param) {
  auto cls = WindowClass::Find(class_name);
  if (!cls) {
    SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
    return nullptr;
  }
  Window* desktop = Window::Desktop();
  Window* parent = nullptr;
  HWND owner = nullptr;
  if (parent_hwnd == HWND_MESSAGE) parent_hwnd = nullptr;
  if ((style & WS_CHILD) != 0) {
    parent = Window::Get(parent_hwnd);
    if (parent == nullptr) {
      SetLastError(parent_hwnd ? ERROR_INVALID_WINDOW_HANDLE : kErrorTlwWithWsChild);
      return nullptr;
    }
    if (Depth(parent) >= kMaxDepth) {
      SetLastError(ERROR_INVALID_PARAMETER);
      return nullptr;
    }
  } else {
    if (parent_hwnd != nullptr) {
      if (Window::Get(parent_hwnd) == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
      }
      owner = GetAncestor(parent_hwnd, GA_ROOT);
    }
    parent = desktop;
    // Overlapped windows always have a caption, and top-level windows never
    // draw over one another.
    if ((style & WS_POPUP) == 0) style |= WS_CAPTION;
    style |= WS_CLIPSIBLINGS;
  }
  const bool top_level = parent == desktop;
  const auto& state = vantor::platform::UserState::Get();
  if (top_level && (style & WS_POPUP) == 0) {
    if (x == CW_USEDEFAULT) x = y = 0;
    if (width == CW_USEDEFAULT) {
      width = state.screen.cx * 3 / 4;
      height = state.screen.cy * 3 / 4;
    }
  } else {
    if (x == CW_USEDEFAULT) x = y = 0;
    if (width == CW_USEDEFAULT) width = height = 0;
  }
  width = std::max(width, 0);
  height = std::max(height, 0);

  auto w = std::make_shared<Window>();
  w->cls = cls;
  w->proc = cls->proc;
  w->unicode = cls->unicode;
  w->style = style & ~WS_VISIBLE;
  w->ex_style = ex_style;
  w->instance = instance;
  w->owner = owner;
  w->id = (style & WS_CHILD) != 0 ? reinterpret_cast<LONG_PTR>(menu) : 0;
  w->extra.assign(static_cast<size_t>(cls->window_extra), 0);
  const HWND hwnd = Window::Add(w);
  ++cls->windows;
  Link(w, parent, !top_level);

  if (vantor::platform::NeedsMinMax(style)) {
    vantor::platform::ClampToTrackSize(*w, &width, &height);
    if (!Alive(w)) return nullptr;
  }
  // Coordinates are kept where offsets can't overflow.
  constexpr int kLimit = Region::kMaxCoord / 2;
  x = std::clamp(x, -kLimit, kLimit);
  y = std::clamp(y, -kLimit, kLimit);
  width = std::min(width, kLimit);
  height = std::min(height, kLimit);
  w->rect = RECT{x, y, x + width, y + height};
  w->client = w->rect;

  CREATESTRUCTW cs{};
  cs.lpCreateParams = param;
  cs.hInstance = instance;
  cs.hMenu = menu;
  cs.hwndParent = top_level ? owner : parent->handle;
  cs.cx = width;
  cs.cy = height;
  cs.x = x;
  cs.y = y;
  cs.style = static_cast<LONG>(style);
  cs.lpszName = name.c_str();
  cs.lpszClass = class_name;
  cs.dwExStyle = ex_style;
  const LRESULT ok = Send(*w, WM_NCCREATE, 0, reinterpret_cast<LPARAM>(&cs));
  if (!Alive(w)) return nullptr;
  if (ok == 0) {
    w->destroying = true;
    SendNcDestroyAndFree(w);
    return nullptr;
  }
  w->created = true;
  RECT calc = w->rect;
  Send(*w, WM_NCCALCSIZE, FALSE, reinterpret_cast<LPARAM>(&calc));
  if (!Alive(w)) return nullptr;
  w->client = calc;
  w->SyncSurface();
  if (Send(*w, WM_CREATE, 0, reinterpret_cast<LPARAM>(&cs)) == -1) {
    if (Alive(w)) DestroyWindow(hwnd);
    return nullptr;
  }
  if (!Alive(w)) return nullptr;
  Send(*w, WM_SIZE, SIZE_RESTORED,
       MAKELPARAM(static_cast<WORD>(w->client.right - w->client.left),
                  static_cast<WORD>(w->client.bottom - w->client.top)));
  if (!Alive(w)) return nullptr;
  Send(*w, WM_MOVE, 0,
       MAKELPARAM(static_cast<WORD>(w->client.left), static_cast<WORD>(w->client.top)));
  if (!Alive(w)) return nullptr;
  if (!top_level && (ex_style & WS_EX_NOPARENTNOTIFY) == 0) {
    for (Window* p = w->parent; p != nullptr && p->parent != nullptr; p = p->parent) {
      HWND ph = p->handle;
      Send(*p, WM_PARENTNOTIFY, MAKEWPARAM(WM_CREATE, static_cast<WORD>(w->id)),
           reinterpret_cast<LPARAM>(hwnd));
      if (Window::Get(ph) == nullptr || (p->ex_style & WS_EX_NOPARENTNOTIFY) != 0 || !p->IsChild())
        break;
    }
    if (!Alive(w)) return nullptr;
  }
  if ((style & WS_VISIBLE) != 0) {
    ShowWindow(hwnd, (style & WS_MAXIMIZE) != 0 ? SW_SHOWMAXIMIZED : SW_SHOW);
    if (!Alive(w)) return nullptr;
  }
  vantor::platform::Touch();
  return hwnd;
}

}  // namespace

namespace vantor::platform {

void ClampToTrackSize(Window& w, int* cx, int* cy) {
  MINMAXINFO mm{};
  const SIZE screen = UserState::Get().screen;
  mm.ptMaxSize = POINT{screen.cx + 8, screen.cy + 8};
  mm.ptMaxPosition = POINT{-4, -4};
  mm.ptMinTrackSize = POINT{GetSystemMetrics(SM_CXMINTRACK), GetSystemMetrics(SM_CYMINTRACK)};
  mm.ptMaxTrackSize = POINT{GetSystemMetrics(SM_CXMAXTRACK), GetSystemMetrics(SM_CYMAXTRACK)};
  Send(w, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&mm));
  *cx = std::clamp<int>(*cx, std::min(mm.ptMinTrackSize.x, mm.ptMaxTrackSize.x),
                        std::max(mm.ptMinTrackSize.x, mm.ptMaxTrackSize.x));
  *cy = std::clamp<int>(*cy, std::min(mm.ptMinTrackSize.y, mm.ptMaxTrackSize.y),
                        std::max(mm.ptMinTrackSize.y, mm.ptMaxTrackSize.y));
}

bool NeedsMinMax(DWORD style) {
  return (style & WS_THICKFRAME) != 0 || (style & (WS_POPUP | WS_CHILD)) == 0;
}

}  // namespace vantor::platform

// ---------------------------------------------------------------- classes

ATOM RegisterClassExW(const WNDCLASSEXW* wc) {
  if (wc == nullptr || wc->cbSize != sizeof(WNDCLASSEXW) || wc->lpszClassName == nullptr ||
      IS_INTRESOURCE(wc->lpszClassName) || wc->lpfnWndProc == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  auto cls = std::make_shared<WindowClass>();
  cls->name = wc->lpszClassName;
  cls->style = wc->style;
  cls->proc = wc->lpfnWndProc;
  cls->unicode = true;
  cls->class_extra = wc->cbClsExtra;
  cls->window_extra = wc->cbWndExtra;
  cls->instance = wc->hInstance;
  cls->icon = wc->hIcon;
  cls->cursor = wc->hCursor;
  cls->background = wc->hbrBackground;
  return WindowClass::Register(cls);
}

ATOM RegisterClassW(const WNDCLASSW* wc) {
  if (wc == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  WNDCLASSEXW ex{sizeof(WNDCLASSEXW), wc->style,        wc->lpfnWndProc,   wc->cbClsExtra,
                 wc->cbWndExtra,      wc->hInstance,    wc->hIcon,         wc->hCursor,
                 wc->hbrBackground,   wc->lpszMenuName, wc->lpszClassName, nullptr};
  return RegisterClassExW(&ex);
}

ATOM RegisterClassExA(const WNDCLASSEXA* wc) {
  if (wc == nullptr || wc->cbSize != sizeof(WNDCLASSEXA) || wc->lpszClassName == nullptr ||
      IS_INTRESOURCE(wc->lpszClassName) || wc->lpfnWndProc == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  auto cls = std::make_shared<WindowClass>();
  cls->name = vantor::FromAnsi(wc->lpszClassName);
  cls->style = wc->style;
  cls->proc = wc->lpfnWndProc;
  cls->unicode = false;
  cls->class_extra = wc->cbClsExtra;
  cls->window_extra = wc->cbWndExtra;
  cls->instance = wc->hInstance;
  cls->icon = wc->hIcon;
  cls->cursor = wc->hCursor;
  cls->background = wc->hbrBackground;
  return WindowClass::Register(cls);
}

ATOM RegisterClassA(const WNDCLASSA* wc) {
  if (wc == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  WNDCLASSEXA ex{sizeof(WNDCLASSEXA), wc->style,        wc->lpfnWndProc,   wc->cbClsExtra,
                 wc->cbWndExtra,      wc->hInstance,    wc->hIcon,         wc->hCursor,
                 wc->hbrBackground,   wc->lpszMenuName, wc->lpszClassName, nullptr};
  return RegisterClassExA(&ex);
}

BOOL UnregisterClassW(LPCWSTR class_name, HINSTANCE) {
  return WindowClass::Unregister(class_name) ? TRUE : FALSE;
}

BOOL UnregisterClassA(LPCSTR class_name, HINSTANCE instance) {
  if (class_name == nullptr) return UnregisterClassW(nullptr, instance);
  if (IS_INTRESOURCE(class_name)) {
    return UnregisterClassW(reinterpret_cast<LPCWSTR>(class_name), instance);
  }
  const String name = vantor::FromAnsi(class_name);
  return UnregisterClassW(name.c_str(), instance);
}

BOOL GetClassInfoExW(HINSTANCE, LPCWSTR class_name, WNDCLASSEXW* out) {
  auto cls = WindowClass::Find(class_name);
  if (!cls || out == nullptr) {
    SetLastError(ERROR_CLASS_DOES_NOT_EXIST);
    return FALSE;
  }
  *out = WNDCLASSEXW{sizeof(WNDCLASSEXW), cls->style,    cls->proc,         cls->class_extra,
                     cls->window_extra,   cls->instance, cls->icon,         cls->cursor,
                     cls->background,     nullptr,       cls->name.c_str(), nullptr};
  return TRUE;
}

int GetClassNameW(HWND hwnd, LPWSTR buffer, int max_count) {
  Window* w = Valid(hwnd);
  if (w == nullptr || buffer == nullptr || max_count <= 0) return 0;
  const String name = w->cls ? w->cls->name : String(u"#32769");
  const int n = std::min<int>(static_cast<int>(name.size()), max_count - 1);
  std::copy_n(name.data(), n, buffer);
  buffer[n] = 0;
  return n;
}

int GetClassNameA(HWND hwnd, LPSTR buffer, int max_count) {
  Window* w = Valid(hwnd);
  if (w == nullptr || buffer == nullptr || max_count <= 0) return 0;
  const std::string name = vantor::ToAnsi(w->cls ? w->cls->name : String(u"#32769"));
  const int n = std::min<int>(static_cast<int>(name.size()), max_count - 1);
  std::copy_n(name.data(), n, buffer);
  buffer[n] = 0;
  return n;
}

ULONG_PTR GetClassLongPtrW(HWND hwnd, int index) {
  Window* w = Valid(hwnd);
  if (w == nullptr || !w->cls) return 0;
  WindowClass& c = *w->cls;
  switch (index) {
    case GCLP_HCURSOR:
      return reinterpret_cast<ULONG_PTR>(c.cursor);
    case GCLP_HBRBACKGROUND:
      return reinterpret_cast<ULONG_PTR>(c.background);
    case GCLP_HICON:
      return reinterpret_cast<ULONG_PTR>(c.icon);
    case GCL_STYLE:
      return c.style;
    case GCL_CBWNDEXTRA:
      return static_cast<ULONG_PTR>(c.window_extra);
    case GCL_CBCLSEXTRA:
      return static_cast<ULONG_PTR>(c.class_extra);
    case GCLP_WNDPROC:
      return static_cast<ULONG_PTR>(vantor::platform::ProcToValue(c.proc, c.unicode, true, false));
    default:
      if (index >= 0 && static_cast<size_t>(index) + sizeof(ULONG_PTR) <= c.extra_bytes.size()) {
        ULONG_PTR v;
        std::memcpy(&v, &c.extra_bytes[static_cast<size_t>(index)], sizeof v);
        return v;
      }
      SetLastError(ERROR_INVALID_INDEX);
      return 0;
  }
}

ULONG_PTR SetClassLongPtrW(HWND hwnd, int index, LONG_PTR value) {
  Window* w = Valid(hwnd);
  if (w == nullptr || !w->cls) return 0;
  WindowClass& c = *w->cls;
  const ULONG_PTR old = GetClassLongPtrW(hwnd, index);
  switch (index) {
    case GCLP_HCURSOR:
      c.cursor = reinterpret_cast<HCURSOR>(value);
      break;
    case GCLP_HBRBACKGROUND:
      c.background = reinterpret_cast<HBRUSH>(value);
      break;
    case GCLP_HICON:
      c.icon = reinterpret_cast<HICON>(value);
      break;
    case GCL_STYLE:
      c.style = static_cast<UINT>(value);
      break;
    case GCLP_WNDPROC: {
      WNDPROC proc;
      bool unicode;
      if (!vantor::platform::ValueToProc(value, true, false, &proc, &unicode)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
      }
      c.proc = proc;
      c.unicode = unicode;
      break;
    }
    default:
      if (index >= 0 && static_cast<size_t>(index) + sizeof(LONG_PTR) <= c.extra_bytes.size()) {
        std::memcpy(&c.extra_bytes[static_cast<size_t>(index)], &value, sizeof value);
        break;
      }
      SetLastError(ERROR_INVALID_INDEX);
      return 0;
  }
  return old;
}

// ---------------------------------------------------------------- creation

HWND CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR window_name, DWORD style, int x,
                     int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                     LPVOID param) {
  return CreateWindowImpl(ex_style, class_name, ToString(window_name), style, x, y, width, height,
                          parent, menu, instance, param);
}

HWND CreateWindowExA(DWORD ex_style, LPCSTR class_name, LPCSTR window_name, DWORD style, int x,
                     int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                     LPVOID param) {
  if (class_name != nullptr && IS_INTRESOURCE(class_name)) {
    return CreateWindowImpl(ex_style, reinterpret_cast<LPCWSTR>(class_name),
                            NarrowToString(window_name), style, x, y, width, height, parent, menu,
                            instance, param);
  }
  const String cls = NarrowToString(class_name);
  return CreateWindowImpl(ex_style, class_name ? cls.c_str() : nullptr, NarrowToString(window_name),
                          style, x, y, width, height, parent, menu, instance, param);
}

BOOL DestroyWindow(HWND hwnd) {
  auto w = Window::Share(hwnd);
  if (!w || w->parent == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
  }
  if (w->destroying) return TRUE;
  w->destroying = true;
  // Owned windows go first, as on the platform.
  if (w->IsTopLevel()) {
    auto tops = Window::Desktop()->children;
    for (auto& t : tops) {
      if (t->owner == hwnd && Alive(t)) DestroyWindow(t->handle);
    }
  }
  if (w->IsChild() && (w->ex_style & WS_EX_NOPARENTNOTIFY) == 0 && w->parent != nullptr &&
      w->parent->parent != nullptr) {
    Send(*w->parent, WM_PARENTNOTIFY, MAKEWPARAM(WM_DESTROY, static_cast<WORD>(w->id)),
         reinterpret_cast<LPARAM>(hwnd));
  }
  if (!Alive(w)) return TRUE;
  if (w->Visible()) {
    const RECT old = w->rect;
    w->style &= ~WS_VISIBLE;
    InvalidateParentArea(*w, old);
  }
  auto& state = vantor::platform::UserState::Get();
  if (state.capture != nullptr && (state.capture == hwnd || IsChild(hwnd, state.capture))) {
    ReleaseCapture();
  }
  // The focus inside a window that goes moves to its parent (none for a
  // top-level window), as when the window is hidden.
  if (state.focus != nullptr && (state.focus == hwnd || IsChild(hwnd, state.focus))) {
    SetFocus(w->IsChild() && w->parent != nullptr && w->parent->parent != nullptr
                 ? w->parent->handle
                 : nullptr);
    if (!Alive(w)) return TRUE;
  }
  if (state.active == hwnd) vantor::platform::ActivateNext(hwnd);
  if (state.focus != nullptr && (state.focus == hwnd || IsChild(hwnd, state.focus))) {
    state.focus = nullptr;
  }
  if (Alive(w)) SendDestroy(w);
  if (Alive(w)) SendNcDestroyAndFree(w);
  vantor::platform::RefreshWindowDCs();
  vantor::platform::Touch();
  return TRUE;
}

// ---------------------------------------------------------------- the tree

BOOL IsWindow(HWND hwnd) {
  return Window::Get(hwnd) != nullptr ? TRUE : FALSE;
}

BOOL IsWindowVisible(HWND hwnd) {
  Window* w = Window::Get(hwnd);
  return w != nullptr && w->ReallyVisible() ? TRUE : FALSE;
}

BOOL IsWindowEnabled(HWND hwnd) {
  Window* w = Window::Get(hwnd);
  return w != nullptr && (w->style & WS_DISABLED) == 0 ? TRUE : FALSE;
}

BOOL EnableWindow(HWND hwnd, BOOL enable) {
  Window* w = Valid(hwnd);
  if (w == nullptr) return FALSE;
  const bool was_disabled = (w->style & WS_DISABLED) != 0;
  if (enable && was_disabled) {
    w->style &= ~WS_DISABLED;
    Send(*w, WM_ENABLE, TRUE, 0);
  } else if (!enable && !was_disabled) {
    Send(*w, WM_CANCELMODE, 0, 0);
    if (Window::Get(hwnd) == nullptr) return FALSE;
    w->style |= WS_DISABLED;
    auto& state = vantor::platform::UserState::Get();
    if (state.focus == hwnd || IsChild(hwnd, state.focus)) SetFocus(nullptr);
    if (Window::Get(hwnd) != nullptr) Send(*w, WM_ENABLE, FALSE, 0);
  }
  return was_disabled ? TRUE : FALSE;
}

BOOL IsWindowUnicode(HWND hwnd) {
  Window* w = Window::Get(hwnd);
  return w != nullptr && w->unicode ? TRUE : FALSE;
}

BOOL IsChild(HWND parent, HWND hwnd) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr || parent == nullptr) return FALSE;
  while (w->IsChild() && w->parent != nullptr && w->parent->parent != nullptr) {
    w = w->parent;
    if (w->handle == parent) return TRUE;
  }
  return FALSE;
}

BOOL IsIconic(HWND hwnd) {
  Window* w = Window::Get(hwnd);
  return w != nullptr && (w->style & WS_MINIMIZE) != 0 ? TRUE : FALSE;
}

BOOL IsZoomed(HWND hwnd) {
  Window* w = Window::Get(hwnd);
  return w != nullptr && (w->style & WS_MAXIMIZE) != 0 ? TRUE : FALSE;
}

HWND GetParent(HWND hwnd) {
  Window* w = Valid(hwnd);
  if (w == nullptr) return nullptr;
  // The platform answers the owner for pop-ups, the parent for children.
  if (w->IsChild()) return w->parent ? w->parent->handle : nullptr;
  if ((w->style & WS_POPUP) != 0) return w->owner;
  return nullptr;
}

HWND SetParent(HWND child, HWND new_parent) {
  auto w = Window::Share(child);
  if (!w || w->parent == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
  }
  Window* p = new_parent ? Window::Get(new_parent) : Window::Desktop();
  if (p == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
  }
  // A window can't go under itself or its own descendant.
  if (Depth(p) >= kMaxDepth) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  for (Window* a = p; a != nullptr; a = a->parent) {
    if (a == w.get()) {
      SetLastError(ERROR_INVALID_PARAMETER);
      return nullptr;
    }
  }
  Window* old = w->parent;
  const HWND old_handle = old->handle;
  if (w->Visible()) InvalidateParentArea(*w, w->rect);
  Unlink(*w);
  Link(w, p, false);
  w->SyncSurface();
  if (w->Visible()) vantor::platform::InvalidateWindow(*w, nullptr, true, true);
  vantor::platform::RefreshWindowDCs();
  vantor::platform::Touch();
  return old_handle;
}

HWND GetWindow(HWND hwnd, UINT cmd) {
  Window* w = Valid(hwnd);
  if (w == nullptr) return nullptr;
  if (cmd == GW_CHILD) return w->children.empty() ? nullptr : w->children.front()->handle;
  if (cmd == GW_OWNER) return w->owner;
  if (cmd == GW_ENABLEDPOPUP) return nullptr;
  if (w->parent == nullptr) return nullptr;
  const auto& s = w->parent->children;
  auto it = std::find_if(s.begin(), s.end(), [&](const auto& c) { return c.get() == w; });
  switch (cmd) {
    case GW_HWNDFIRST:
      return s.front()->handle;
    case GW_HWNDLAST:
      return s.back()->handle;
    case GW_HWNDNEXT:
      return (it == s.end() || it + 1 == s.end()) ? nullptr : (*(it + 1))->handle;
    case GW_HWNDPREV:
      return (it == s.begin() || it == s.end()) ? nullptr : (*(it - 1))->handle;
    default:
      SetLastError(ERROR_INVALID_PARAMETER);
      return nullptr;
  }
}

HWND GetTopWindow(HWND hwnd) {
  Window* w = hwnd ? Valid(hwnd) : Window::Desktop();
  if (w == nullptr || w->children.empty()) return nullptr;
  return w->children.front()->handle;
}

HWND GetAncestor(HWND hwnd, UINT flags) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr || w->parent == nullptr) return nullptr;
  switch (flags) {
    case GA_PARENT:
      return w->parent->handle;
    case GA_ROOT:
      return w->TopLevel()->handle;
    case GA_ROOTOWNER: {
      HWND root = w->TopLevel()->handle;
      for (int guard = 0; guard < 1000; ++guard) {
        Window* r = Window::Get(root);
        if (r == nullptr || r->owner == nullptr) break;
        root = r->owner;
      }
      return root;
    }
    default:
      return nullptr;
  }
}

HWND GetDesktopWindow() {
  return Window::Desktop()->handle;
}

namespace {

// The handles are taken first, so that the callback may create or destroy
// windows; those destroyed on the way are skipped.
void Collect(const Window& w, std::vector<HWND>* out) {
  for (const auto& c : w.children) {
    out->push_back(c->handle);
    Collect(*c, out);
  }
}

}  // namespace

BOOL EnumWindows(WNDENUMPROC proc, LPARAM lparam) {
  if (proc == nullptr) return FALSE;
  std::vector<HWND> tops;
  for (const auto& t : Window::Desktop()->children) tops.push_back(t->handle);
  for (HWND h : tops) {
    if (IsWindow(h) && !proc(h, lparam)) return FALSE;
  }
  return TRUE;
}

BOOL EnumChildWindows(HWND parent, WNDENUMPROC proc, LPARAM lparam) {
  Window* w = parent == nullptr ? Window::Desktop() : Valid(parent);
  if (w == nullptr || proc == nullptr) return FALSE;
  std::vector<HWND> all;
  Collect(*w, &all);
  for (HWND h : all) {
    if (IsWindow(h) && !proc(h, lparam)) return FALSE;
  }
  return TRUE;
}

HWND GetDlgItem(HWND parent, int id) {
  Window* w = Valid(parent);
  if (w == nullptr) return nullptr;
  for (auto& c : w->children) {
    if (c->id == id) return c->handle;
  }
  return nullptr;
}

int GetDlgCtrlID(HWND hwnd) {
  Window* w = Valid(hwnd);
  return w != nullptr && w->IsChild() ? static_cast<int>(w->id) : 0;
}

// ---------------------------------------------------------------- placement

BOOL SetWindowPos(HWND hwnd, HWND insert_after, int x, int y, int cx, int cy, UINT flags) {
  auto w = Window::Share(hwnd);
  if (!w || w->parent == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
  }
  if (insert_after != HWND_TOP && insert_after != HWND_BOTTOM && insert_after != HWND_TOPMOST &&
      insert_after != HWND_NOTOPMOST && (flags & SWP_NOZORDER) == 0) {
    Window* a = Window::Get(insert_after);
    if (a == nullptr) {
      SetLastError(ERROR_INVALID_WINDOW_HANDLE);
      return FALSE;
    }
    if (a->parent != w->parent || a == w.get()) flags |= SWP_NOZORDER;
  }
  WINDOWPOS wp{hwnd, insert_after, x, y, cx, cy, flags};
  if ((flags & SWP_NOMOVE) != 0) {
    wp.x = w->rect.left;
    wp.y = w->rect.top;
  }
  if ((flags & SWP_NOSIZE) != 0) {
    wp.cx = w->Width();
    wp.cy = w->Height();
  }
  constexpr int kLimit = Region::kMaxCoord / 2;
  if ((flags & SWP_NOSENDCHANGING) == 0) {
    Send(*w, WM_WINDOWPOSCHANGING, 0, reinterpret_cast<LPARAM>(&wp));
    if (!Alive(w)) return FALSE;
  }
  wp.x = std::clamp(wp.x, -kLimit, kLimit);
  wp.y = std::clamp(wp.y, -kLimit, kLimit);
  wp.cx = std::clamp(wp.cx, 0, kLimit);
  wp.cy = std::clamp(wp.cy, 0, kLimit);
  flags = wp.flags;

  const RECT old_rect = w->rect;
  const RECT old_client = w->client;
  const bool was_visible = w->Visible();
  const RECT new_rect{wp.x, wp.y, wp.x + wp.cx, wp.y + wp.cy};
  const bool moved = new_rect.left != old_rect.left || new_rect.top != old_rect.top;
  const bool sized = (new_rect.right - new_rect.left) != (old_rect.right - old_rect.left) ||
                     (new_rect.bottom - new_rect.top) != (old_rect.bottom - old_rect.top);

  if ((flags & SWP_NOZORDER) == 0 && w->parent != nullptr) {
    Window* p = w->parent;
    if (insert_after == HWND_TOPMOST) {
      if (p->parent == nullptr) w->ex_style |= WS_EX_TOPMOST;
      Unlink(*w);
      Link(w, p, false);
    } else if (insert_after == HWND_NOTOPMOST) {
      w->ex_style &= ~WS_EX_TOPMOST;
      Unlink(*w);
      Link(w, p, false);
    } else if (insert_after == HWND_TOP) {
      Unlink(*w);
      Link(w, p, false);
    } else if (insert_after == HWND_BOTTOM) {
      if (p->parent == nullptr) w->ex_style &= ~WS_EX_TOPMOST;
      Unlink(*w);
      w->parent = p;
      p->children.push_back(w);
    } else if (Window* a = Window::Get(insert_after)) {
      Unlink(*w);
      auto& s = p->children;
      auto it = std::find_if(s.begin(), s.end(), [&](const auto& c) { return c.get() == a; });
      w->parent = p;
      s.insert(it == s.end() ? s.end() : it + 1, w);
    }
  }
  w->rect = new_rect;
  if (moved || sized || (flags & SWP_FRAMECHANGED) != 0) {
    NCCALCSIZE_PARAMS params{};
    params.rgrc[0] = new_rect;
    params.rgrc[1] = old_rect;
    params.rgrc[2] = old_client;
    params.lppos = &wp;
    Send(*w, WM_NCCALCSIZE, TRUE, reinterpret_cast<LPARAM>(&params));
    if (!Alive(w)) return FALSE;
    w->client = params.rgrc[0];
  }
  if ((flags & SWP_SHOWWINDOW) != 0) w->style |= WS_VISIBLE;
  if ((flags & SWP_HIDEWINDOW) != 0) w->style &= ~WS_VISIBLE;
  w->SyncSurface();
  const bool visible = w->Visible();
  if ((flags & SWP_NOREDRAW) == 0) {
    if (was_visible && (moved || sized || !visible || (flags & SWP_NOZORDER) == 0)) {
      InvalidateParentArea(*w, old_rect);
    }
    if (visible && (sized || moved || !was_visible || (flags & SWP_FRAMECHANGED) != 0 ||
                    (flags & SWP_NOZORDER) == 0)) {
      if (!w->IsTopLevel()) InvalidateParentArea(*w, new_rect);
      if (sized || !was_visible || (flags & SWP_FRAMECHANGED) != 0 || !w->IsTopLevel()) {
        vantor::platform::InvalidateWindow(*w, nullptr, true, true);
      }
      if ((flags & SWP_FRAMECHANGED) != 0) vantor::platform::InvalidateFrame(*w);
    }
  }
  vantor::platform::RefreshWindowDCs();
  vantor::platform::Touch();
  if (visible && (flags & SWP_NOACTIVATE) == 0 && w->IsTopLevel() &&
      (w->ex_style & WS_EX_NOACTIVATE) == 0) {
    vantor::platform::Activate(hwnd, WA_ACTIVE);
    if (!Alive(w)) return TRUE;
  }
  if (was_visible && !visible && vantor::platform::UserState::Get().active == hwnd) {
    vantor::platform::ActivateNext(hwnd);
  }
  if (w->client.left == old_client.left && w->client.top == old_client.top) {
    wp.flags |= kNoClientMove;
  }
  if (w->client.right - w->client.left == old_client.right - old_client.left &&
      w->client.bottom - w->client.top == old_client.bottom - old_client.top) {
    wp.flags |= kNoClientSize;
  }
  wp.x = w->rect.left;
  wp.y = w->rect.top;
  wp.cx = w->Width();
  wp.cy = w->Height();
  if ((flags & SWP_NOSENDCHANGING) == 0 || moved || sized ||
      (flags & (SWP_SHOWWINDOW | SWP_HIDEWINDOW)) != 0) {
    Send(*w, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&wp));
  }
  return TRUE;
}

BOOL MoveWindow(HWND hwnd, int x, int y, int width, int height, BOOL repaint) {
  return SetWindowPos(hwnd, nullptr, x, y, width, height,
                      SWP_NOZORDER | SWP_NOACTIVATE | (repaint ? 0u : SWP_NOREDRAW));
}

BOOL ShowWindow(HWND hwnd, int cmd) {
  auto w = Window::Share(hwnd);
  if (!w || w->parent == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
  }
  const BOOL was_visible = w->Visible() ? TRUE : FALSE;
  if (cmd < SW_HIDE || cmd > SW_FORCEMINIMIZE) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return was_visible;
  }
  if (cmd == SW_HIDE) {
    if (!was_visible) return FALSE;
    Send(*w, WM_SHOWWINDOW, FALSE, 0);
    if (!Alive(w)) return TRUE;
    SetWindowPos(hwnd, nullptr, 0, 0, 0, 0,
                 SWP_HIDEWINDOW | SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    auto& state = vantor::platform::UserState::Get();
    if (Alive(w) && (state.focus == hwnd || IsChild(hwnd, state.focus))) {
      SetFocus(w->IsChild() && w->parent ? w->parent->handle : nullptr);
    }
    return TRUE;
  }
  bool activate = cmd != SW_SHOWNOACTIVATE && cmd != SW_SHOWNA && cmd != SW_SHOWMINNOACTIVE &&
                  cmd != SW_MINIMIZE && cmd != SW_FORCEMINIMIZE;
  UINT flags = SWP_SHOWWINDOW | SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER;
  RECT target = w->rect;
  if (cmd == SW_MAXIMIZE) {
    if ((w->style & WS_MAXIMIZE) == 0) {
      w->normal = w->rect;
      w->has_normal = true;
    }
    w->style = (w->style | WS_MAXIMIZE) & ~WS_MINIMIZE;
    if (w->IsTopLevel()) {
      target = vantor::platform::UserState::Get().work_area;
      flags &= ~(SWP_NOSIZE | SWP_NOMOVE);
    }
  } else if (cmd == SW_MINIMIZE || cmd == SW_SHOWMINIMIZED || cmd == SW_SHOWMINNOACTIVE ||
             cmd == SW_FORCEMINIMIZE) {
    w->style = (w->style | WS_MINIMIZE);
  } else if (cmd == SW_RESTORE || cmd == SW_SHOWNORMAL) {
    const bool was_minimized = (w->style & WS_MINIMIZE) != 0;
    if (was_minimized) {
      // Back to what it was before: maximized stays maximized.
      w->style &= ~WS_MINIMIZE;
    } else if ((w->style & WS_MAXIMIZE) != 0) {
      w->style &= ~WS_MAXIMIZE;
      if (w->has_normal) {
        target = w->normal;
        flags &= ~(SWP_NOSIZE | SWP_NOMOVE);
      }
    }
  }
  if (!was_visible) {
    Send(*w, WM_SHOWWINDOW, TRUE, 0);
    if (!Alive(w)) return FALSE;
  }
  if (!activate || w->IsChild() || (w->ex_style & WS_EX_NOACTIVATE) != 0) {
    flags |= SWP_NOACTIVATE;
  }
  SetWindowPos(hwnd, nullptr, target.left, target.top, target.right - target.left,
               target.bottom - target.top, flags);
  return was_visible;
}

BOOL GetClientRect(HWND hwnd, LPRECT rect) {
  Window* w = Valid(hwnd);
  if (w == nullptr || rect == nullptr) return FALSE;
  *rect = RECT{0, 0, w->client.right - w->client.left, w->client.bottom - w->client.top};
  return TRUE;
}

BOOL GetWindowRect(HWND hwnd, LPRECT rect) {
  Window* w = Valid(hwnd);
  if (w == nullptr || rect == nullptr) return FALSE;
  *rect = w->parent == nullptr ? w->rect : w->ScreenRect();
  return TRUE;
}

BOOL ClientToScreen(HWND hwnd, LPPOINT point) {
  Window* w = Valid(hwnd);
  if (w == nullptr || point == nullptr) return FALSE;
  const POINT o = w->parent == nullptr ? POINT{0, 0} : w->ClientOrigin();
  point->x += o.x;
  point->y += o.y;
  return TRUE;
}

BOOL ScreenToClient(HWND hwnd, LPPOINT point) {
  Window* w = Valid(hwnd);
  if (w == nullptr || point == nullptr) return FALSE;
  const POINT o = w->parent == nullptr ? POINT{0, 0} : w->ClientOrigin();
  point->x -= o.x;
  point->y -= o.y;
  return TRUE;
}

int MapWindowPoints(HWND from, HWND to, LPPOINT points, UINT count) {
  POINT a{0, 0};
  POINT b{0, 0};
  if (from != nullptr && !ClientToScreen(from, &a)) return 0;
  if (to != nullptr && !ClientToScreen(to, &b)) return 0;
  const LONG dx = a.x - b.x;
  const LONG dy = a.y - b.y;
  if (points != nullptr) {
    for (UINT i = 0; i < count; ++i) {
      points[i].x += dx;
      points[i].y += dy;
    }
  }
  SetLastError(0);
  return MAKELONG(static_cast<WORD>(dx), static_cast<WORD>(dy));
}

HWND WindowFromPoint(POINT point) {
  LRESULT hit = 0;
  const HWND found = vantor::platform::HitTestPoint(point, &hit, true);
  // Where no window is, the desktop is.
  return found != nullptr ? found : GetDesktopWindow();
}

HWND ChildWindowFromPoint(HWND parent, POINT point) {
  Window* w = Valid(parent);
  if (w == nullptr) return nullptr;
  const RECT c{0, 0, w->client.right - w->client.left, w->client.bottom - w->client.top};
  if (point.x < c.left || point.x >= c.right || point.y < c.top || point.y >= c.bottom) {
    return nullptr;
  }
  for (auto& child : w->children) {
    const RECT& r = child->rect;
    if (point.x >= r.left && point.x < r.right && point.y >= r.top && point.y < r.bottom) {
      if (child->window_region &&
          !child->window_region->Contains(point.x - r.left, point.y - r.top)) {
        continue;
      }
      return child->handle;
    }
  }
  return parent;
}

// ---------------------------------------------------------------- text

BOOL SetWindowTextW(HWND hwnd, LPCWSTR text) {
  Window* w = Valid(hwnd);
  if (w == nullptr) return FALSE;
  return SendMessageW(hwnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) != 0 ? TRUE : FALSE;
}

BOOL SetWindowTextA(HWND hwnd, LPCSTR text) {
  Window* w = Valid(hwnd);
  if (w == nullptr) return FALSE;
  return SendMessageA(hwnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) != 0 ? TRUE : FALSE;
}

int GetWindowTextW(HWND hwnd, LPWSTR buffer, int max_count) {
  if (buffer != nullptr && max_count > 0) buffer[0] = 0;
  if (Valid(hwnd) == nullptr || buffer == nullptr || max_count <= 0) return 0;
  return static_cast<int>(SendMessageW(hwnd, WM_GETTEXT, static_cast<WPARAM>(max_count),
                                       reinterpret_cast<LPARAM>(buffer)));
}

int GetWindowTextA(HWND hwnd, LPSTR buffer, int max_count) {
  if (buffer != nullptr && max_count > 0) buffer[0] = 0;
  if (Valid(hwnd) == nullptr || buffer == nullptr || max_count <= 0) return 0;
  return static_cast<int>(SendMessageA(hwnd, WM_GETTEXT, static_cast<WPARAM>(max_count),
                                       reinterpret_cast<LPARAM>(buffer)));
}

int GetWindowTextLengthW(HWND hwnd) {
  if (Valid(hwnd) == nullptr) return 0;
  return static_cast<int>(SendMessageW(hwnd, WM_GETTEXTLENGTH, 0, 0));
}

int GetWindowTextLengthA(HWND hwnd) {
  if (Valid(hwnd) == nullptr) return 0;
  return static_cast<int>(SendMessageA(hwnd, WM_GETTEXTLENGTH, 0, 0));
}

// ---------------------------------------------------------------- longs

namespace {

bool StyleChange(Window& w, int index, DWORD value, DWORD* old) {
  STYLESTRUCT ss{index == GWL_STYLE ? w.style : w.ex_style, value};
  *old = ss.styleOld;
  const HWND hwnd = w.handle;
  SendToWindow(w, WM_STYLECHANGING, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&ss),
               true);
  if (Window::Get(hwnd) != &w) return false;
  if (index == GWL_STYLE) {
    w.style = ss.styleNew;
  } else {
    w.ex_style = ss.styleNew;
  }
  SendToWindow(w, WM_STYLECHANGED, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&ss), true);
  vantor::platform::Touch();
  return true;
}

LONG_PTR GetLong(HWND hwnd, int index, bool unicode, bool narrow) {
  Window* w = Valid(hwnd);
  if (w == nullptr) return 0;
  switch (index) {
    case GWL_WNDPROC:
      return vantor::platform::ProcToValue(w->proc, w->unicode, unicode, narrow);
    case GWL_HINSTANCE:
      return reinterpret_cast<LONG_PTR>(w->instance);
    case GWL_HWNDPARENT:
      return reinterpret_cast<LONG_PTR>(w->IsChild() && w->parent ? w->parent->handle : w->owner);
    case GWL_ID:
      return w->id;
    case GWL_STYLE:
      return static_cast<LONG>(w->style);
    case GWL_EXSTYLE:
      return static_cast<LONG>(w->ex_style);
    case GWL_USERDATA:
      return w->user_data;
    default: {
      const size_t size = narrow ? sizeof(LONG) : sizeof(LONG_PTR);
      if (index >= 0 && static_cast<size_t>(index) + size <= w->extra.size()) {
        if (narrow) {
          LONG v;
          std::memcpy(&v, &w->extra[static_cast<size_t>(index)], sizeof v);
          return v;
        }
        LONG_PTR v;
        std::memcpy(&v, &w->extra[static_cast<size_t>(index)], sizeof v);
        return v;
      }
      SetLastError(ERROR_INVALID_INDEX);
      return 0;
    }
  }
}

LONG_PTR SetLong(HWND hwnd, int index, LONG_PTR value, bool unicode, bool narrow) {
  Window* w = Valid(hwnd);
  if (w == nullptr || w->parent == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return 0;
  }
  SetLastError(0);
  switch (index) {
    case GWL_WNDPROC: {
      WNDPROC proc;
      bool proc_unicode;
      if (!vantor::platform::ValueToProc(value, unicode, narrow, &proc, &proc_unicode) ||
          proc == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
      }
      const LONG_PTR old = vantor::platform::ProcToValue(w->proc, w->unicode, unicode, narrow);
      w->proc = proc;
      w->unicode = proc_unicode;
      return old;
    }
    case GWL_HINSTANCE: {
      const LONG_PTR old = reinterpret_cast<LONG_PTR>(w->instance);
      w->instance = reinterpret_cast<HINSTANCE>(value);
      return old;
    }
    case GWL_HWNDPARENT: {
      const LONG_PTR old = reinterpret_cast<LONG_PTR>(w->owner);
      if (!w->IsChild()) w->owner = reinterpret_cast<HWND>(value);
      return old;
    }
    case GWL_ID: {
      const LONG_PTR old = w->id;
      w->id = value;
      return old;
    }
    case GWL_STYLE:
    case GWL_EXSTYLE: {
      DWORD old = 0;
      StyleChange(*w, index, static_cast<DWORD>(value), &old);
      return static_cast<LONG>(old);
    }
    case GWL_USERDATA: {
      const LONG_PTR old = w->user_data;
      w->user_data = value;
      return old;
    }
    default: {
      const size_t size = narrow ? sizeof(LONG) : sizeof(LONG_PTR);
      if (index >= 0 && static_cast<size_t>(index) + size <= w->extra.size()) {
        const LONG_PTR old = GetLong(hwnd, index, unicode, narrow);
        if (narrow) {
          const auto v = static_cast<LONG>(value);
          std::memcpy(&w->extra[static_cast<size_t>(index)], &v, sizeof v);
        } else {
          std::memcpy(&w->extra[static_cast<size_t>(index)], &value, sizeof value);
        }
        return old;
      }
      SetLastError(ERROR_INVALID_INDEX);
      return 0;
    }
  }
}

}  // namespace

LONG GetWindowLongW(HWND hwnd, int index) {
  return static_cast<LONG>(GetLong(hwnd, index, true, true));
}
LONG GetWindowLongA(HWND hwnd, int index) {
  return static_cast<LONG>(GetLong(hwnd, index, false, true));
}
LONG SetWindowLongW(HWND hwnd, int index, LONG value) {
  return static_cast<LONG>(SetLong(hwnd, index, value, true, true));
}
LONG SetWindowLongA(HWND hwnd, int index, LONG value) {
  return static_cast<LONG>(SetLong(hwnd, index, value, false, true));
}
LONG_PTR GetWindowLongPtrW(HWND hwnd, int index) {
  return GetLong(hwnd, index, true, false);
}
LONG_PTR GetWindowLongPtrA(HWND hwnd, int index) {
  return GetLong(hwnd, index, false, false);
}
LONG_PTR SetWindowLongPtrW(HWND hwnd, int index, LONG_PTR value) {
  return SetLong(hwnd, index, value, true, false);
}
LONG_PTR SetWindowLongPtrA(HWND hwnd, int index, LONG_PTR value) {
  return SetLong(hwnd, index, value, false, false);
}

// ---------------------------------------------------------------- properties

namespace {

// Property names are atoms on the platform: case does not matter, and an
// integer atom names a property as well as a string does.
String PropKey(LPCWSTR name) {
  if (IS_INTRESOURCE(name)) {
    return u"#" + vantor::FromUtf8(std::to_string(reinterpret_cast<uintptr_t>(name)));
  }
  String key(name);
  for (auto& c : key) {
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - 32);
  }
  return key;
}

}  // namespace

BOOL SetPropW(HWND hwnd, LPCWSTR name, HANDLE data) {
  Window* w = Valid(hwnd);
  if (w == nullptr || name == nullptr) return FALSE;
  const String key = PropKey(name);
  for (auto& p : w->props) {
    if (p.first == key) {
      p.second = data;
      return TRUE;
    }
  }
  w->props.emplace_back(key, data);
  return TRUE;
}

HANDLE GetPropW(HWND hwnd, LPCWSTR name) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr || name == nullptr) return nullptr;
  const String key = PropKey(name);
  for (auto& p : w->props) {
    if (p.first == key) return p.second;
  }
  return nullptr;
}

HANDLE RemovePropW(HWND hwnd, LPCWSTR name) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr || name == nullptr) return nullptr;
  const String key = PropKey(name);
  for (auto it = w->props.begin(); it != w->props.end(); ++it) {
    if (it->first == key) {
      HANDLE data = it->second;
      w->props.erase(it);
      return data;
    }
  }
  return nullptr;
}
