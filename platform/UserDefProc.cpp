// The default window procedure: what a window does with a message its own
// procedure passes on.
#include <algorithm>

#include "platform/Gdi.h"
#include "platform/Text.h"
#include "platform/UserState.h"

using vantor::String;
using vantor::platform::UserState;
using vantor::platform::Window;

namespace {

constexpr UINT kNoClientSize = 0x0800;
constexpr UINT kNoClientMove = 0x1000;

LRESULT HitTest(Window& w, LPARAM lparam) {
  const POINT p{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
  const RECT r = w.ScreenRect();
  if (p.x < r.left || p.x >= r.right || p.y < r.top || p.y >= r.bottom) return HTNOWHERE;
  if (w.window_region && !w.window_region->Contains(p.x - r.left, p.y - r.top)) return HTNOWHERE;
  const RECT c = w.ScreenClient();
  if (p.x >= c.left && p.x < c.right && p.y >= c.top && p.y < c.bottom) return HTCLIENT;
  const RECT inner = Window::DefaultClient(r, w.style & ~(WS_VSCROLL | WS_HSCROLL), w.ex_style);
  if ((w.style & WS_VSCROLL) != 0 && p.x >= c.right && p.y >= c.top && p.y < c.bottom) {
    return HTVSCROLL;
  }
  if ((w.style & WS_HSCROLL) != 0 && p.y >= c.bottom && p.x >= c.left && p.x < c.right) {
    return HTHSCROLL;
  }
  if ((w.style & WS_THICKFRAME) != 0) {
    const int frame = GetSystemMetrics(SM_CXFRAME);
    const int corner = frame + GetSystemMetrics(SM_CXSIZE);
    const bool left = p.x < r.left + frame;
    const bool right = p.x >= r.right - frame;
    const bool top = p.y < r.top + frame;
    const bool bottom = p.y >= r.bottom - frame;
    if (left || right || top || bottom) {
      const bool near_top = p.y < r.top + corner;
      const bool near_bottom = p.y >= r.bottom - corner;
      const bool near_left = p.x < r.left + corner;
      const bool near_right = p.x >= r.right - corner;
      if (left) return near_top ? HTTOPLEFT : near_bottom ? HTBOTTOMLEFT : HTLEFT;
      if (right) return near_top ? HTTOPRIGHT : near_bottom ? HTBOTTOMRIGHT : HTRIGHT;
      if (top) return near_left ? HTTOPLEFT : near_right ? HTTOPRIGHT : HTTOP;
      return near_left ? HTBOTTOMLEFT : near_right ? HTBOTTOMRIGHT : HTBOTTOM;
    }
  }
  if ((w.style & WS_CAPTION) == WS_CAPTION && p.y < inner.top && p.y >= r.top) {
    const int button = GetSystemMetrics(SM_CXSIZE);
    const int frame = (w.style & WS_THICKFRAME) != 0 ? GetSystemMetrics(SM_CXFRAME)
                                                     : GetSystemMetrics(SM_CXDLGFRAME);
    if ((w.style & WS_SYSMENU) != 0) {
      if (p.x >= r.right - frame - button) return HTCLOSE;
      if (p.x < r.left + frame + button) return HTSYSMENU;
    }
    return HTCAPTION;
  }
  return HTBORDER;
}

LPCWSTR CursorFor(LRESULT hit) {
  switch (hit) {
    case HTLEFT:
    case HTRIGHT:
      return IDC_SIZEWE;
    case HTTOP:
    case HTBOTTOM:
      return IDC_SIZENS;
    case HTTOPLEFT:
    case HTBOTTOMRIGHT:
      return IDC_SIZENWSE;
    case HTTOPRIGHT:
    case HTBOTTOMLEFT:
      return IDC_SIZENESW;
    default:
      return IDC_ARROW;
  }
}

bool IsButtonDown(UINT msg) {
  return msg == WM_LBUTTONDOWN || msg == WM_RBUTTONDOWN || msg == WM_MBUTTONDOWN ||
         msg == WM_XBUTTONDOWN;
}

LRESULT SetCursorDefault(Window& w, WPARAM wparam, LPARAM lparam, bool unicode) {
  if (w.IsChild() && w.parent != nullptr && w.parent->parent != nullptr) {
    Window* p = w.parent;
    const LRESULT r = unicode ? SendMessageW(p->handle, WM_SETCURSOR, wparam, lparam)
                              : SendMessageA(p->handle, WM_SETCURSOR, wparam, lparam);
    if (r != 0) return TRUE;
  }
  const auto hit = static_cast<SHORT>(LOWORD(static_cast<uintptr_t>(lparam)));
  if (hit == HTERROR) {
    if (IsButtonDown(HIWORD(static_cast<uintptr_t>(lparam)))) MessageBeep(0);
    return FALSE;
  }
  if (hit == HTCLIENT) {
    if (w.cls && w.cls->cursor != nullptr) {
      SetCursor(w.cls->cursor);
      return TRUE;
    }
    return FALSE;
  }
  SetCursor(LoadCursorW(nullptr, CursorFor(hit)));
  return TRUE;
}

LRESULT EraseBackground(Window& w, HDC dc) {
  if (!w.cls || w.cls->background == nullptr || dc == nullptr) return 0;
  HBRUSH brush = w.cls->background;
  const auto value = reinterpret_cast<uintptr_t>(brush);
  // COLOR_x + 1 stands for the system colour's brush.
  if (value >= 1 && value <= static_cast<uintptr_t>(COLOR_MENUBAR) + 1) {
    brush = GetSysColorBrush(static_cast<int>(value) - 1);
  }
  RECT r{0, 0, w.client.right - w.client.left, w.client.bottom - w.client.top};
  FillRect(dc, &r, brush);
  return 1;
}

void Fill(HDC dc, LONG l, LONG t, LONG r, LONG b, int color) {
  RECT rect{l, t, r, b};
  FillRect(dc, &rect, GetSysColorBrush(color));
}

// A one-pixel edge: `light` on the top and left, `dark` on the bottom and
// right, as the classic 3-D look draws it.
void Edge(HDC dc, RECT r, int light, int dark) {
  Fill(dc, r.left, r.top, r.right - 1, r.top + 1, light);
  Fill(dc, r.left, r.top + 1, r.left + 1, r.bottom - 1, light);
  Fill(dc, r.right - 1, r.top, r.right, r.bottom, dark);
  Fill(dc, r.left, r.bottom - 1, r.right - 1, r.bottom, dark);
}

RECT Inset(RECT r, int by) {
  return RECT{r.left + by, r.top + by, r.right - by, r.bottom - by};
}

// The classic frame: raised dialog or sizing border, or a plain line; the
// caption bar with its title; client and static edges; the scroll-bar
// places in the button face.
void PaintFrame(Window& w) {
  if (!w.HasFrame()) return;
  HDC dc = GetWindowDC(w.handle);
  if (dc == nullptr) return;
  RECT r{0, 0, w.Width(), w.Height()};
  const bool thick = (w.style & WS_THICKFRAME) != 0;
  const bool dialog = (w.style & WS_DLGFRAME) != 0 || (w.ex_style & WS_EX_DLGMODALFRAME) != 0;
  if (thick || dialog) {
    const int frame = thick ? GetSystemMetrics(SM_CXFRAME) : GetSystemMetrics(SM_CXDLGFRAME);
    Edge(dc, r, COLOR_3DLIGHT, COLOR_3DDKSHADOW);
    Edge(dc, Inset(r, 1), COLOR_BTNHIGHLIGHT, COLOR_BTNSHADOW);
    for (int i = 2; i < frame; ++i) Edge(dc, Inset(r, i), COLOR_BTNFACE, COLOR_BTNFACE);
    r = Inset(r, frame);
  } else if ((w.style & WS_BORDER) != 0) {
    Edge(dc, r, COLOR_WINDOWFRAME, COLOR_WINDOWFRAME);
    r = Inset(r, 1);
  }
  if ((w.style & WS_CAPTION) == WS_CAPTION) {
    const int height = (w.ex_style & WS_EX_TOOLWINDOW) != 0 ? GetSystemMetrics(SM_CYSMCAPTION)
                                                            : GetSystemMetrics(SM_CYCAPTION);
    RECT bar{r.left, r.top, r.right, r.top + height - 1};
    const bool active = w.caption_active;
    Fill(dc, bar.left, bar.top, bar.right, bar.bottom,
         active ? COLOR_ACTIVECAPTION : COLOR_INACTIVECAPTION);
    Fill(dc, bar.left, bar.bottom, bar.right, bar.bottom + 1, COLOR_BTNFACE);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(active ? COLOR_CAPTIONTEXT : COLOR_INACTIVECAPTIONTEXT));
    HGDIOBJ old = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    RECT text{bar.left + 3, bar.top, bar.right - 2, bar.bottom};
    DrawTextW(dc, w.text.c_str(), static_cast<int>(w.text.size()), &text,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    SelectObject(dc, old);
    r.top += height;
  }
  if ((w.ex_style & WS_EX_CLIENTEDGE) != 0) {
    Edge(dc, r, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT);
    Edge(dc, Inset(r, 1), COLOR_3DDKSHADOW, COLOR_3DLIGHT);
    r = Inset(r, 2);
  }
  if ((w.ex_style & WS_EX_STATICEDGE) != 0) {
    Edge(dc, r, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT);
    r = Inset(r, 1);
  }
  // What is left outside the client is scroll-bar room.
  const POINT origin = w.WindowOrigin();
  const RECT c = w.ScreenClient();
  const RECT client{c.left - origin.x, c.top - origin.y, c.right - origin.x, c.bottom - origin.y};
  if (client.right < r.right) Fill(dc, client.right, r.top, r.right, r.bottom, COLOR_BTNFACE);
  if (client.bottom < r.bottom)
    Fill(dc, r.left, client.bottom, client.right, r.bottom, COLOR_BTNFACE);
  ReleaseDC(w.handle, dc);
}

void StartSizeMove(Window& w, LRESULT hit) {
  if (hit != HTCAPTION && (hit < HTLEFT || hit > HTBOTTOMRIGHT)) return;
  if (hit != HTCAPTION && (w.style & WS_THICKFRAME) == 0) return;
  if ((w.style & WS_MAXIMIZE) != 0) return;
  auto& sm = vantor::platform::CurrentSizeMove();
  sm.hwnd = w.handle;
  sm.hit = hit;
  // The drag starts where the cursor was when the message being handled
  // was taken, whatever the lParam says: controls send this message with 0.
  const DWORD pos = GetMessagePos();
  sm.start = POINT{GET_X_LPARAM(static_cast<LPARAM>(pos)), GET_Y_LPARAM(static_cast<LPARAM>(pos))};
  sm.rect = w.rect;
  SendMessageW(w.handle, WM_ENTERSIZEMOVE, 0, 0);
  if (Window::Get(sm.hwnd) == nullptr) {
    sm.hwnd = nullptr;
    return;
  }
  SetCapture(w.handle);
}

LRESULT DefProc(Window& w, UINT msg, WPARAM wparam, LPARAM lparam, bool unicode) {
  const HWND hwnd = w.handle;
  switch (msg) {
    case WM_NCCREATE: {
      if (lparam != 0) {
        if (unicode) {
          const auto* cs = reinterpret_cast<const CREATESTRUCTW*>(lparam);
          if (cs->lpszName != nullptr && !IS_INTRESOURCE(cs->lpszName)) w.text = cs->lpszName;
        } else {
          const auto* cs = reinterpret_cast<const CREATESTRUCTA*>(lparam);
          if (cs->lpszName != nullptr && !IS_INTRESOURCE(cs->lpszName)) {
            w.text = vantor::FromAnsi(cs->lpszName);
          }
        }
      }
      return TRUE;
    }
    case WM_NCCALCSIZE: {
      if (lparam == 0) return 0;
      if (wparam != 0) {
        auto* params = reinterpret_cast<NCCALCSIZE_PARAMS*>(lparam);
        params->rgrc[0] = Window::DefaultClient(params->rgrc[0], w.style, w.ex_style);
      } else {
        auto* r = reinterpret_cast<RECT*>(lparam);
        *r = Window::DefaultClient(*r, w.style, w.ex_style);
      }
      return 0;
    }
    case WM_NCHITTEST:
      return HitTest(w, lparam);
    case WM_SETCURSOR:
      return SetCursorDefault(w, wparam, lparam, unicode);
    case WM_MOUSEACTIVATE:
      if (w.IsChild() && w.parent != nullptr && w.parent->parent != nullptr) {
        const LRESULT r = SendMessageW(w.parent->handle, WM_MOUSEACTIVATE, wparam, lparam);
        if (r != 0) return r;
      }
      return MA_ACTIVATE;
    case WM_MOUSEWHEEL:
    case WM_MOUSEHWHEEL:
    case WM_CONTEXTMENU:
      if (w.IsChild() && w.parent != nullptr && w.parent->parent != nullptr) {
        return SendMessageW(w.parent->handle, msg, wparam, lparam);
      }
      return 0;
    case WM_SETTEXT: {
      if (lparam == 0) {
        w.text.clear();
      } else if (unicode) {
        w.text = reinterpret_cast<LPCWSTR>(lparam);
      } else {
        w.text = vantor::FromAnsi(reinterpret_cast<LPCSTR>(lparam));
      }
      if ((w.style & WS_CAPTION) == WS_CAPTION && w.ReallyVisible()) PaintFrame(w);
      vantor::platform::Touch();
      return TRUE;
    }
    case WM_GETTEXT: {
      if (lparam == 0 || wparam == 0) return 0;
      const size_t size = wparam;
      if (unicode) {
        auto* out = reinterpret_cast<LPWSTR>(lparam);
        const size_t n = std::min(w.text.size(), size - 1);
        std::copy_n(w.text.data(), n, out);
        out[n] = 0;
        return static_cast<LRESULT>(n);
      }
      const std::string a = vantor::ToAnsi(w.text);
      auto* out = reinterpret_cast<LPSTR>(lparam);
      const size_t n = std::min(a.size(), size - 1);
      std::copy_n(a.data(), n, out);
      out[n] = 0;
      return static_cast<LRESULT>(n);
    }
    case WM_GETTEXTLENGTH:
      return static_cast<LRESULT>(unicode ? w.text.size() : vantor::ToAnsi(w.text).size());
    case WM_CLOSE:
      DestroyWindow(hwnd);
      return 0;
    case WM_PAINT: {
      PAINTSTRUCT ps{};
      if (BeginPaint(hwnd, &ps) != nullptr) EndPaint(hwnd, &ps);
      return 0;
    }
    case WM_ERASEBKGND:
      return EraseBackground(w, reinterpret_cast<HDC>(wparam));
    case WM_WINDOWPOSCHANGING: {
      auto* wp = reinterpret_cast<WINDOWPOS*>(lparam);
      if (wp != nullptr && (wp->flags & SWP_NOSIZE) == 0 &&
          vantor::platform::NeedsMinMax(w.style) && (wp->cx != w.Width() || wp->cy != w.Height())) {
        vantor::platform::ClampToTrackSize(w, &wp->cx, &wp->cy);
      }
      return 0;
    }
    case WM_WINDOWPOSCHANGED: {
      const auto* wp = reinterpret_cast<const WINDOWPOS*>(lparam);
      if (wp == nullptr) return 0;
      if ((wp->flags & kNoClientMove) == 0) {
        SendMessageW(hwnd, WM_MOVE, 0,
                     MAKELPARAM(static_cast<WORD>(w.client.left), static_cast<WORD>(w.client.top)));
      }
      if ((wp->flags & kNoClientSize) == 0 && Window::Get(hwnd) == &w) {
        const WPARAM kind = (w.style & WS_MINIMIZE) != 0   ? SIZE_MINIMIZED
                            : (w.style & WS_MAXIMIZE) != 0 ? SIZE_MAXIMIZED
                                                           : SIZE_RESTORED;
        SendMessageW(hwnd, WM_SIZE, kind,
                     MAKELPARAM(static_cast<WORD>(w.client.right - w.client.left),
                                static_cast<WORD>(w.client.bottom - w.client.top)));
      }
      return 0;
    }
    case WM_ACTIVATE:
      if (LOWORD(wparam) != WA_INACTIVE && (w.style & WS_MINIMIZE) == 0) SetFocus(hwnd);
      return 0;
    case WM_NCACTIVATE:
      if (w.caption_active != (wparam != 0)) {
        w.caption_active = wparam != 0;
        if ((w.style & WS_CAPTION) == WS_CAPTION) PaintFrame(w);
      }
      return TRUE;
    case WM_NCPAINT:
      PaintFrame(w);
      return 0;
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case 0x0132:  // WM_CTLCOLORMSGBOX
    case WM_CTLCOLORBTN:
    case 0x0136:  // WM_CTLCOLORDLG
    case 0x0137:  // WM_CTLCOLORSCROLLBAR
    case WM_CTLCOLORSTATIC: {
      // Edits and lists on the window colour, the rest on the button face.
      HDC dc = reinterpret_cast<HDC>(wparam);
      const bool window = msg == WM_CTLCOLOREDIT || msg == WM_CTLCOLORLISTBOX;
      const int back = msg == 0x0137 ? COLOR_SCROLLBAR : window ? COLOR_WINDOW : COLOR_BTNFACE;
      SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
      SetBkColor(dc, GetSysColor(back));
      return reinterpret_cast<LRESULT>(GetSysColorBrush(back));
    }
    case WM_SETREDRAW:
      if (wparam != 0) {
        w.style |= WS_VISIBLE;
      } else {
        w.style &= ~WS_VISIBLE;
      }
      return 0;
    case WM_CANCELMODE:
      if (GetCapture() == hwnd) ReleaseCapture();
      return 0;
    case WM_SYSCOMMAND:
      switch (wparam & 0xFFF0) {
        case SC_CLOSE:
          SendMessageW(hwnd, WM_CLOSE, 0, 0);
          break;
        case SC_MINIMIZE:
          ShowWindow(hwnd, SW_MINIMIZE);
          break;
        case SC_MAXIMIZE:
          ShowWindow(hwnd, SW_MAXIMIZE);
          break;
        case SC_RESTORE:
          ShowWindow(hwnd, SW_RESTORE);
          break;
        default:
          break;
      }
      return 0;
    case WM_SYSKEYDOWN:
      if (wparam == VK_F4 && (lparam & (1 << 29)) != 0) {
        HWND top = GetAncestor(hwnd, GA_ROOT);
        if (top != nullptr) SendMessageW(top, WM_SYSCOMMAND, SC_CLOSE, 0);
      }
      return 0;
    case WM_NCLBUTTONDOWN:
      StartSizeMove(w, static_cast<LRESULT>(wparam));
      return 0;
    default:
      return 0;
  }
}

}  // namespace

LRESULT DefWindowProcW(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr || w->parent == nullptr) return 0;
  const auto keep = Window::Share(hwnd);
  return DefProc(*w, msg, wparam, lparam, true);
}

LRESULT DefWindowProcA(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr || w->parent == nullptr) return 0;
  const auto keep = Window::Share(hwnd);
  if (msg == WM_CHAR || msg == WM_SYSCHAR) {
    wparam = vantor::AnsiToChar(static_cast<uint8_t>(wparam & 0xFF));
  }
  return DefProc(*w, msg, wparam, lparam, false);
}
