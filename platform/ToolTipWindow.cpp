#include "platform/ToolTipWindow.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <vector>

#include "platform/Gdi.h"
#include "platform/Text.h"
#include "runtime/String.h"

namespace vantor::platform {

namespace {

constexpr UINT_PTR kInitialTimer = 1;
constexpr UINT_PTR kAutoPopTimer = 2;
// The leave notice can be eaten by another subclass of the tool window (a
// hover tracker answers it itself), so the cursor is also looked at now and
// then while a tool is waited for, shown, or kept quiet.
constexpr UINT_PTR kWatchTimer = 3;
constexpr UINT kWatchPeriod = 100;

// Where nobody set a width, text wraps here rather than run across the screen.
constexpr int kDefaultWrap = 300;
// GETTOOLINFO copies at most this much text, the buffer size the platform
// asks its callers for.
constexpr size_t kInfoTextChars = 80;

// Geometry: frame, padding, the title row, the balloon's corners and stem.
constexpr int kIcon = 16;
constexpr int kIconGap = 6;
constexpr int kHeaderGap = 6;
constexpr int kPadX = 4;
constexpr int kPadY = 3;
constexpr int kBalloonPad = 9;
constexpr int kCorner = 16;
constexpr int kStemHeight = 14;
constexpr int kStemBase = 14;
constexpr int kStemInset = 18;
// The arrow cursor's tip is its hot spot; a tip below it starts past the arrow.
constexpr int kBelowCursor = 20;
constexpr int kToolGap = 2;

struct Tool {
  UINT flags = 0;
  HWND hwnd = nullptr;
  UINT_PTR id = 0;
  RECT rect{};
  HINSTANCE hinst = nullptr;
  String text;
  LPARAM param = 0;

  // The window whose mouse the tool follows.
  HWND Window() const { return (flags & TTF_IDISHWND) != 0 ? reinterpret_cast<HWND>(id) : hwnd; }
};

struct Layout {
  int width = 0, height = 0;
  RECT body{};  // the framed rectangle, window coordinates
  bool balloon = false;
  POINT stem[3]{};
  bool header = false;
  POINT icon{};
  RECT title{};
  RECT text{};
};

struct Tip {
  HWND self = nullptr;
  std::vector<Tool> tools;
  COLORREF back = GetSysColor(COLOR_INFOBK);
  COLORREF fore = GetSysColor(COLOR_INFOTEXT);
  WPARAM icon = TTI_NONE;
  String title;
  UINT initial = 0, autopop = 0, reshow = 0;
  int max_width = -1;
  HFONT font = nullptr;
  bool active = true;
  int current = -1;  // the tool waited for or shown
  bool shown = false;
  POINT rest{};          // where the mouse rests, on the screen
  HWND quiet = nullptr;  // shows nothing until the mouse has left it
  Layout layout;
};

std::map<HWND, std::unique_ptr<Tip>>& Tips() {
  static std::map<HWND, std::unique_ptr<Tip>> tips;
  return tips;
}

Tip* TipOf(HWND hwnd) {
  auto it = Tips().find(hwnd);
  return it == Tips().end() ? nullptr : it->second.get();
}

// ---------------------------------------------------------------- GDI helpers

struct MemoryDC {
  HDC dc = CreateCompatibleDC(nullptr);
  ~MemoryDC() { DeleteDC(dc); }
};

struct Owned {
  HGDIOBJ object;
  ~Owned() {
    if (object != nullptr) DeleteObject(object);
  }
};

struct Selected {
  HDC dc;
  HGDIOBJ old;
  Selected(HDC d, HGDIOBJ object) : dc(d), old(SelectObject(d, object)) {}
  ~Selected() { SelectObject(dc, old); }
};

HFONT FontOf(const Tip& t) {
  return t.font != nullptr ? t.font : static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
}

HFONT MakeBold(HFONT font) {
  LOGFONTW lf{};
  if (GetObjectW(font, sizeof lf, &lf) == 0) return nullptr;
  lf.lfWeight = FW_BOLD;
  return CreateFontIndirectW(&lf);
}

UINT TextFormat(const Tip& t) {
  const auto style = static_cast<DWORD>(GetWindowLongW(t.self, GWL_STYLE));
  // Without TTS_NOPREFIX an ampersand marks no access key in a tip: it is
  // only taken out.
  return DT_LEFT | DT_WORDBREAK | DT_EXPANDTABS |
         ((style & TTS_NOPREFIX) != 0 ? DT_NOPREFIX : DT_HIDEPREFIX);
}

bool Balloon(const Tip& t) {
  return (static_cast<DWORD>(GetWindowLongW(t.self, GWL_STYLE)) & TTS_BALLOON) != 0;
}

// ---------------------------------------------------------------- the subclass

struct Hook {
  LONG_PTR previous = 0;
  std::vector<HWND> tips;
};

std::map<HWND, Hook>& Hooks() {
  static std::map<HWND, Hook> hooks;
  return hooks;
}

bool Relayed(UINT msg) {
  return msg == WM_MOUSEMOVE || msg == WM_MOUSELEAVE ||
         (msg >= WM_LBUTTONDOWN && msg <= WM_MBUTTONDBLCLK) ||
         (msg >= WM_XBUTTONDOWN && msg <= WM_XBUTTONDBLCLK);
}

void ForgetToolWindow(Tip& t, HWND window);

LRESULT CALLBACK ToolProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  auto it = Hooks().find(hwnd);
  if (it == Hooks().end()) return DefWindowProcW(hwnd, msg, wparam, lparam);
  const LONG_PTR previous = it->second.previous;
  if (Relayed(msg)) {
    const std::vector<HWND> tips = it->second.tips;
    const DWORD pos = GetMessagePos();
    MSG m{hwnd,
          msg,
          wparam,
          lparam,
          static_cast<DWORD>(GetMessageTime()),
          POINT{GET_X_LPARAM(static_cast<LPARAM>(pos)), GET_Y_LPARAM(static_cast<LPARAM>(pos))}};
    for (HWND tip : tips) SendMessageW(tip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&m));
  }
  const LRESULT result =
      CallWindowProcW(reinterpret_cast<WNDPROC>(previous), hwnd, msg, wparam, lparam);
  if (msg == WM_NCDESTROY) {
    auto again = Hooks().find(hwnd);
    if (again != Hooks().end()) {
      const std::vector<HWND> tips = again->second.tips;
      Hooks().erase(again);
      for (HWND tip : tips) {
        if (Tip* t = TipOf(tip)) ForgetToolWindow(*t, hwnd);
      }
    }
  }
  return result;
}

void HookTool(HWND tool, HWND tip) {
  auto it = Hooks().find(tool);
  if (it == Hooks().end()) {
    if (!IsWindow(tool)) return;
    const LONG_PTR previous =
        SetWindowLongPtrW(tool, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ToolProc));
    if (previous == 0) return;
    it = Hooks().emplace(tool, Hook{previous, {}}).first;
  }
  auto& tips = it->second.tips;
  if (std::find(tips.begin(), tips.end(), tip) == tips.end()) tips.push_back(tip);
}

void UnhookTool(HWND tool, HWND tip) {
  auto it = Hooks().find(tool);
  if (it == Hooks().end()) return;
  auto& tips = it->second.tips;
  tips.erase(std::remove(tips.begin(), tips.end(), tip), tips.end());
  if (!tips.empty()) return;
  // Only a procedure still at the head of the chain can be taken out; under
  // a later subclass it stays and passes every message on.
  if (GetWindowLongPtrW(tool, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(&ToolProc)) {
    SetWindowLongPtrW(tool, GWLP_WNDPROC, it->second.previous);
    Hooks().erase(it);
  }
}

// Unhooks the window unless another subclassing tool of the tip still uses it.
void ReleaseToolWindow(const Tip& t, HWND window) {
  for (const Tool& other : t.tools) {
    if ((other.flags & TTF_SUBCLASS) != 0 && other.Window() == window) return;
  }
  UnhookTool(window, t.self);
}

// ---------------------------------------------------------------- showing

RECT ToolScreenRect(const Tool& tool) {
  RECT r{};
  if ((tool.flags & TTF_IDISHWND) != 0) {
    GetClientRect(tool.Window(), &r);
    MapWindowPoints(tool.Window(), nullptr, reinterpret_cast<POINT*>(&r), 2);
  } else {
    r = tool.rect;
    MapWindowPoints(tool.hwnd, nullptr, reinterpret_cast<POINT*>(&r), 2);
  }
  return r;
}

bool CursorOver(const Tool& tool) {
  POINT p{};
  GetCursorPos(&p);
  if (WindowFromPoint(p) != tool.Window()) return false;
  if ((tool.flags & TTF_IDISHWND) != 0) return true;
  ScreenToClient(tool.hwnd, &p);
  return PtInRect(&tool.rect, p) != FALSE;
}

void Watch(const Tip& t) {
  SetTimer(t.self, kWatchTimer, kWatchPeriod, nullptr);
}

void Pop(Tip& t) {
  KillTimer(t.self, kInitialTimer);
  KillTimer(t.self, kAutoPopTimer);
  t.current = -1;
  t.shown = false;
  if (IsWindowVisible(t.self)) ShowWindow(t.self, SW_HIDE);
}

void WaitFor(Tip& t, int index, UINT delay) {
  t.current = index;
  GetCursorPos(&t.rest);
  SetTimer(t.self, kInitialTimer, std::max(delay, 1u), nullptr);
  Watch(t);
  TRACKMOUSEEVENT track{sizeof(TRACKMOUSEEVENT), TME_LEAVE,
                        t.tools[static_cast<size_t>(index)].Window(), HOVER_DEFAULT};
  TrackMouseEvent(&track);
}

Layout Measure(const Tip& t, const Tool& tool) {
  Layout l;
  l.balloon = Balloon(t);
  MemoryDC mem;
  const HFONT font = FontOf(t);
  Owned bold{MakeBold(font)};
  SIZE header{0, 0};
  RECT title{0, 0, 0, 0};
  l.header = !t.title.empty();
  if (l.header) {
    Selected pick(mem.dc, bold.object != nullptr ? bold.object : font);
    DrawTextW(mem.dc, t.title.c_str(), -1, &title, DT_SINGLELINE | DT_NOPREFIX | DT_CALCRECT);
    const bool icon = t.icon != TTI_NONE;
    header.cx = (icon ? kIcon + kIconGap : 0) + title.right;
    header.cy = std::max(icon ? kIcon : 0, static_cast<int>(title.bottom));
  }
  const int wrap = t.max_width > 0 ? t.max_width : kDefaultWrap;
  RECT text{0, 0, wrap, 0};
  {
    Selected pick(mem.dc, font);
    DrawTextW(mem.dc, tool.text.c_str(), -1, &text, TextFormat(t) | DT_CALCRECT);
  }
  const int content_w = std::max(static_cast<int>(header.cx), static_cast<int>(text.right));
  const int content_h = header.cy + (l.header ? kHeaderGap : 0) + text.bottom;
  const int pad_x = l.balloon ? kBalloonPad : kPadX;
  const int pad_y = l.balloon ? kBalloonPad - 2 : kPadY;
  const int body_w = content_w + 2 * (1 + pad_x);
  const int body_h = content_h + 2 * (1 + pad_y);
  l.width = body_w;
  l.height = body_h + (l.balloon ? kStemHeight : 0);
  l.body = RECT{0, 0, body_w, body_h};
  // Content offsets from the body; the body moves down under an upward stem.
  const int x = 1 + pad_x, y = 1 + pad_y;
  if (l.header) {
    int tx = x;
    if (t.icon != TTI_NONE) {
      l.icon = POINT{x, y + (header.cy - kIcon) / 2};
      tx += kIcon + kIconGap;
    }
    l.title = RECT{tx, y, tx + title.right, y + header.cy};
  }
  const int ty = y + header.cy + (l.header ? kHeaderGap : 0);
  l.text = RECT{x, ty, x + text.right, ty + text.bottom};
  return l;
}

void ShiftDown(Layout& l, int dy) {
  OffsetRect(&l.body, 0, dy);
  l.icon.y += dy;
  OffsetRect(&l.title, 0, dy);
  OffsetRect(&l.text, 0, dy);
}

// Places the tip for the tool and the cursor; returns its screen origin.
POINT Place(Layout& l, const Tool& tool) {
  const int screen_w = GetSystemMetrics(SM_CXSCREEN);
  const int screen_h = GetSystemMetrics(SM_CYSCREEN);
  POINT cursor{};
  GetCursorPos(&cursor);
  const RECT r = ToolScreenRect(tool);
  const bool centred = (tool.flags & TTF_CENTERTIP) != 0;
  auto clamp_x = [&](int x) { return std::clamp(x, 0, std::max(0, screen_w - l.width)); };
  if (!l.balloon) {
    if (centred) {
      const int x = clamp_x((r.left + r.right) / 2 - l.width / 2);
      int y = r.bottom + kToolGap;
      if (y + l.height > screen_h) y = r.top - kToolGap - l.height;
      return POINT{x, y};
    }
    int y = cursor.y + kBelowCursor;
    if (y + l.height > screen_h) y = cursor.y - l.height;
    return POINT{clamp_x(cursor.x), y};
  }
  // The stem's point: the cursor, or the middle of the tool's lower edge
  // (upper edge when the tip must go above it).
  POINT anchor = centred ? POINT{(r.left + r.right) / 2, r.bottom} : cursor;
  const bool up = anchor.y + l.height <= screen_h;
  if (!up && centred) anchor.y = r.top;
  const int x = clamp_x(anchor.x - kStemInset);
  const int apex = std::clamp(static_cast<int>(anchor.x - x), kCorner / 2,
                              std::max(kCorner / 2, l.width - kCorner / 2 - kStemBase));
  if (up) {
    ShiftDown(l, kStemHeight);
    l.stem[0] = POINT{apex, 0};
    l.stem[1] = POINT{apex + kStemBase, kStemHeight + 1};
    l.stem[2] = POINT{apex, kStemHeight + 1};
    return POINT{x, anchor.y};
  }
  const int base = l.body.bottom - 1;
  l.stem[0] = POINT{apex, base};
  l.stem[1] = POINT{apex + kStemBase, base};
  l.stem[2] = POINT{apex, l.height};
  return POINT{x, anchor.y - l.height};
}

HRGN BalloonRegion(const Layout& l) {
  // A rounded region keeps clear of its right and bottom edges: one more
  // pixel each way covers the whole body.
  HRGN body = CreateRoundRectRgn(l.body.left, l.body.top, l.body.right + 1, l.body.bottom + 1,
                                 kCorner, kCorner);
  Owned stem{CreatePolygonRgn(l.stem, 3, WINDING)};
  CombineRgn(body, body, static_cast<HRGN>(stem.object), RGN_OR);
  return body;
}

void Show(Tip& t) {
  const Tool& tool = t.tools[static_cast<size_t>(t.current)];
  if (tool.text.empty()) {
    t.quiet = tool.Window();
    Pop(t);
    return;
  }
  Layout l = Measure(t, tool);
  const POINT at = Place(l, tool);
  t.layout = l;
  SetWindowRgn(t.self, l.balloon ? BalloonRegion(l) : nullptr, FALSE);
  SetWindowPos(t.self, HWND_TOPMOST, at.x, at.y, l.width, l.height,
               SWP_NOACTIVATE | SWP_SHOWWINDOW);
  InvalidateRect(t.self, nullptr, TRUE);
  t.shown = true;
  SetTimer(t.self, kAutoPopTimer, std::max(t.autopop, 1u), nullptr);
}

bool OwnerActive(const Tool& tool) {
  const HWND active = GetActiveWindow();
  return active != nullptr && active == GetAncestor(tool.Window(), GA_ROOT);
}

void OnTimer(Tip& t, UINT_PTR id) {
  if (id == kInitialTimer) {
    KillTimer(t.self, kInitialTimer);
    if (t.current < 0 || t.shown) return;
    const Tool& tool = t.tools[static_cast<size_t>(t.current)];
    const auto style = static_cast<DWORD>(GetWindowLongW(t.self, GWL_STYLE));
    if (!CursorOver(tool) || ((style & TTS_ALWAYSTIP) == 0 && !OwnerActive(tool))) {
      Pop(t);
      return;
    }
    Show(t);
  } else if (id == kAutoPopTimer) {
    const HWND window = t.current >= 0 ? t.tools[static_cast<size_t>(t.current)].Window() : nullptr;
    Pop(t);
    t.quiet = window;
  } else if (id == kWatchTimer) {
    if (t.current >= 0 && !CursorOver(t.tools[static_cast<size_t>(t.current)])) Pop(t);
    if (t.quiet != nullptr) {
      POINT p{};
      GetCursorPos(&p);
      if (WindowFromPoint(p) != t.quiet) t.quiet = nullptr;
    }
    if (t.current < 0 && t.quiet == nullptr) KillTimer(t.self, kWatchTimer);
  }
}

int HitTool(const Tip& t, HWND window, POINT client) {
  for (size_t i = 0; i < t.tools.size(); ++i) {
    const Tool& tool = t.tools[i];
    if (tool.Window() != window) continue;
    if ((tool.flags & TTF_IDISHWND) != 0 || PtInRect(&tool.rect, client)) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

HWND CurrentWindow(const Tip& t) {
  return t.current >= 0 ? t.tools[static_cast<size_t>(t.current)].Window() : nullptr;
}

void Relay(Tip& t, const MSG& m) {
  if (!t.active) return;
  if (m.message == WM_MOUSELEAVE) {
    if (t.quiet == m.hwnd) t.quiet = nullptr;
    if (CurrentWindow(t) == m.hwnd) Pop(t);
    return;
  }
  if (m.message != WM_MOUSEMOVE) {
    // A button: the tip goes, and keeps away while the mouse stays.
    if (CurrentWindow(t) == m.hwnd ||
        HitTool(t, m.hwnd, POINT{GET_X_LPARAM(m.lParam), GET_Y_LPARAM(m.lParam)}) >= 0) {
      Pop(t);
      t.quiet = m.hwnd;
      Watch(t);
    }
    return;
  }
  const int index = HitTool(t, m.hwnd, POINT{GET_X_LPARAM(m.lParam), GET_Y_LPARAM(m.lParam)});
  if (t.quiet != nullptr && t.quiet != m.hwnd) t.quiet = nullptr;
  if (index < 0) {
    if (CurrentWindow(t) == m.hwnd) Pop(t);
    return;
  }
  if (t.quiet == m.hwnd) return;
  if (t.shown) {
    if (index != t.current) {
      Pop(t);
      WaitFor(t, index, t.reshow);
    }
    return;
  }
  POINT p{};
  GetCursorPos(&p);
  // The tip comes for a mouse at rest: a move starts the wait again.
  if (index == t.current && p.x == t.rest.x && p.y == t.rest.y) return;
  WaitFor(t, index, t.initial);
}

void ForgetToolWindow(Tip& t, HWND window) {
  if (CurrentWindow(t) == window) Pop(t);
  if (t.quiet == window) t.quiet = nullptr;
  t.tools.erase(std::remove_if(t.tools.begin(), t.tools.end(),
                               [&](const Tool& tool) { return tool.Window() == window; }),
                t.tools.end());
}

// ---------------------------------------------------------------- painting

void DrawIcon(HDC dc, WPARAM icon, POINT at) {
  const int x = at.x, y = at.y;
  Owned white{CreateSolidBrush(RGB(255, 255, 255))};
  auto fill = [&](HGDIOBJ brush, int l, int t, int r, int b) {
    const RECT rc{x + l, y + t, x + r, y + b};
    FillRect(dc, &rc, static_cast<HBRUSH>(brush));
  };
  if (icon == TTI_INFO || icon == TTI_ERROR) {
    const COLORREF c = icon == TTI_INFO ? kTipInfoBlue : kTipErrorRed;
    Owned brush{CreateSolidBrush(c)};
    Owned pen{CreatePen(PS_SOLID, 1, c)};
    Selected b(dc, brush.object), p(dc, pen.object);
    Ellipse(dc, x, y, x + kIcon, y + kIcon);
    if (icon == TTI_INFO) {
      fill(white.object, 7, 3, 9, 5);
      fill(white.object, 7, 6, 9, 13);
    } else {
      Owned cross{CreatePen(PS_SOLID, 2, RGB(255, 255, 255))};
      Selected c2(dc, cross.object);
      MoveToEx(dc, x + 5, y + 5, nullptr);
      LineTo(dc, x + 11, y + 11);
      MoveToEx(dc, x + 11, y + 5, nullptr);
      LineTo(dc, x + 5, y + 11);
    }
    return;
  }
  if (icon == TTI_WARNING) {
    Owned brush{CreateSolidBrush(kTipWarningYellow)};
    Owned pen{CreatePen(PS_SOLID, 1, kTipWarningEdge)};
    Selected b(dc, brush.object), p(dc, pen.object);
    const POINT triangle[3] = {{x + 8, y + 1}, {x + 15, y + 15}, {x + 1, y + 15}};
    Polygon(dc, triangle, 3);
    Owned black{CreateSolidBrush(RGB(0, 0, 0))};
    fill(black.object, 7, 5, 9, 11);
    fill(black.object, 7, 12, 9, 14);
  }
}

void Paint(Tip& t) {
  PAINTSTRUCT ps{};
  HDC dc = BeginPaint(t.self, &ps);
  if (dc == nullptr) return;
  const Layout& l = t.layout;
  Owned back{CreateSolidBrush(t.back)};
  Owned frame{CreateSolidBrush(t.fore)};
  if (l.balloon) {
    Owned shape{BalloonRegion(l)};
    FillRgn(dc, static_cast<HRGN>(shape.object), static_cast<HBRUSH>(back.object));
    FrameRgn(dc, static_cast<HRGN>(shape.object), static_cast<HBRUSH>(frame.object), 1, 1);
  } else {
    const RECT all{0, 0, l.width, l.height};
    FillRect(dc, &all, static_cast<HBRUSH>(back.object));
    FrameRect(dc, &all, static_cast<HBRUSH>(frame.object));
  }
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, t.fore);
  const HFONT font = FontOf(t);
  if (l.header) {
    if (t.icon != TTI_NONE) DrawIcon(dc, t.icon, l.icon);
    Owned bold{MakeBold(font)};
    Selected pick(dc, bold.object != nullptr ? bold.object : font);
    RECT r = l.title;
    DrawTextW(dc, t.title.c_str(), -1, &r, DT_SINGLELINE | DT_NOPREFIX | DT_VCENTER);
  }
  if (t.current >= 0) {
    Selected pick(dc, font);
    RECT r = l.text;
    DrawTextW(dc, t.tools[static_cast<size_t>(t.current)].text.c_str(), -1, &r, TextFormat(t));
  }
  EndPaint(t.self, &ps);
}

// ---------------------------------------------------------------- the protocol

String TextFrom(LPCSTR text) {
  if (IS_INTRESOURCE(text) || reinterpret_cast<intptr_t>(text) == -1) return String();
  return FromAnsi(text);
}

String TextFrom(LPCWSTR text) {
  if (IS_INTRESOURCE(text) || reinterpret_cast<intptr_t>(text) == -1) return String();
  return String(text);
}

void CopyText(const String& text, LPSTR out) {
  const std::string ansi = ToAnsi(text).substr(0, kInfoTextChars - 1);
  std::memcpy(out, ansi.c_str(), ansi.size() + 1);
}

void CopyText(const String& text, LPWSTR out) {
  const String part = text.substr(0, kInfoTextChars - 1);
  std::memcpy(out, part.c_str(), (part.size() + 1) * sizeof(WCHAR));
}

template <class Info>
bool Readable(const Info* info) {
  return info != nullptr && info->cbSize >= offsetof(Info, lParam);
}

template <class Info>
int FindTool(const Tip& t, const Info* info) {
  if (!Readable(info)) return -1;
  for (size_t i = 0; i < t.tools.size(); ++i) {
    if (t.tools[i].hwnd == info->hwnd && t.tools[i].id == info->uId) return static_cast<int>(i);
  }
  return -1;
}

template <class Info>
LRESULT AddTool(Tip& t, const Info* info) {
  if (!Readable(info)) return FALSE;
  Tool tool;
  tool.flags = info->uFlags;
  tool.hwnd = info->hwnd;
  tool.id = info->uId;
  tool.rect = info->rect;
  tool.hinst = info->hinst;
  tool.text = TextFrom(info->lpszText);
  if (info->cbSize >= offsetof(Info, lParam) + sizeof(LPARAM)) tool.param = info->lParam;
  t.tools.push_back(tool);
  if ((tool.flags & TTF_SUBCLASS) != 0) HookTool(tool.Window(), t.self);
  return TRUE;
}

template <class Info>
LRESULT DelTool(Tip& t, const Info* info) {
  const int index = FindTool(t, info);
  if (index < 0) return 0;
  if (index == t.current) Pop(t);
  const HWND window = t.tools[static_cast<size_t>(index)].Window();
  t.tools.erase(t.tools.begin() + index);
  if (t.current > index) --t.current;
  ReleaseToolWindow(t, window);
  return 0;
}

template <class Info>
void Fill(const Tool& tool, Info* info) {
  info->uFlags = tool.flags;
  info->hwnd = tool.hwnd;
  info->uId = tool.id;
  info->rect = tool.rect;
  info->hinst = tool.hinst;
  if (info->lpszText != nullptr && !IS_INTRESOURCE(info->lpszText) &&
      reinterpret_cast<intptr_t>(info->lpszText) != -1) {
    CopyText(tool.text, info->lpszText);
  }
  if (info->cbSize >= offsetof(Info, lParam) + sizeof(LPARAM)) info->lParam = tool.param;
}

template <class Info>
LRESULT GetToolInfo(const Tip& t, Info* info) {
  const int index = FindTool(t, info);
  if (index < 0) return FALSE;
  Fill(t.tools[static_cast<size_t>(index)], info);
  return TRUE;
}

template <class Info>
LRESULT GetCurrentTool(const Tip& t, Info* info) {
  if (!t.shown || t.current < 0) return FALSE;
  if (info == nullptr) return TRUE;
  if (!Readable(info)) return FALSE;
  Fill(t.tools[static_cast<size_t>(t.current)], info);
  return TRUE;
}

template <class Info>
LRESULT UpdateText(Tip& t, const Info* info) {
  const int index = FindTool(t, info);
  if (index < 0) return 0;
  t.tools[static_cast<size_t>(index)].text = TextFrom(info->lpszText);
  if (index == t.current && t.shown) Show(t);
  return 0;
}

void SetDelay(Tip& t, WPARAM which, LPARAM value) {
  const bool reset = static_cast<LONG>(value) < 0;
  const UINT ms = LOWORD(static_cast<uintptr_t>(value));
  // The platform's defaults follow the double-click time.
  const UINT base = GetDoubleClickTime();
  switch (which) {
    case TTDT_AUTOMATIC: {
      const UINT v = reset ? base : ms;
      t.initial = v;
      t.autopop = v * 10;
      t.reshow = v / 5;
      break;
    }
    case TTDT_RESHOW:
      t.reshow = reset ? base / 5 : ms;
      break;
    case TTDT_AUTOPOP:
      t.autopop = reset ? base * 10 : ms;
      break;
    case TTDT_INITIAL:
      t.initial = reset ? base : ms;
      break;
    default:
      break;
  }
}

LRESULT GetDelay(const Tip& t, WPARAM which) {
  switch (which) {
    case TTDT_RESHOW:
      return t.reshow;
    case TTDT_AUTOPOP:
      return t.autopop;
    case TTDT_INITIAL:
    case TTDT_AUTOMATIC:
      return t.initial;
    default:
      return 0;
  }
}

LRESULT SetTitle(Tip& t, WPARAM icon, String title) {
  // Icon handles are not kept: only the platform's own three icons.
  t.icon = icon <= TTI_ERROR ? icon : TTI_NONE;
  t.title = std::move(title);
  if (t.shown) Show(t);
  return TRUE;
}

LRESULT GetTitle(const Tip& t, TTGETTITLE* out) {
  if (out == nullptr) return 0;
  out->uTitleBitmap = static_cast<UINT>(t.icon);
  if (out->pszTitle != nullptr && out->cch > 0) {
    const size_t n = std::min(t.title.size(), static_cast<size_t>(out->cch) - 1);
    std::memcpy(out->pszTitle, t.title.data(), n * sizeof(WCHAR));
    out->pszTitle[n] = 0;
  }
  return 0;
}

LRESULT Protocol(Tip& t, UINT msg, WPARAM wparam, LPARAM lparam) {
  switch (msg) {
    case TTM_ACTIVATE:
      t.active = wparam != 0;
      if (!t.active) Pop(t);
      return 0;
    case TTM_SETDELAYTIME:
      SetDelay(t, wparam, lparam);
      return 0;
    case TTM_GETDELAYTIME:
      return GetDelay(t, wparam);
    case TTM_ADDTOOLA:
      return AddTool(t, reinterpret_cast<const TOOLINFOA*>(lparam));
    case TTM_ADDTOOLW:
      return AddTool(t, reinterpret_cast<const TOOLINFOW*>(lparam));
    case TTM_DELTOOLA:
      return DelTool(t, reinterpret_cast<const TOOLINFOA*>(lparam));
    case TTM_DELTOOLW:
      return DelTool(t, reinterpret_cast<const TOOLINFOW*>(lparam));
    case TTM_GETTOOLINFOA:
      return GetToolInfo(t, reinterpret_cast<TOOLINFOA*>(lparam));
    case TTM_GETTOOLINFOW:
      return GetToolInfo(t, reinterpret_cast<TOOLINFOW*>(lparam));
    case TTM_GETCURRENTTOOLA:
      return GetCurrentTool(t, reinterpret_cast<TOOLINFOA*>(lparam));
    case TTM_GETCURRENTTOOLW:
      return GetCurrentTool(t, reinterpret_cast<TOOLINFOW*>(lparam));
    case TTM_UPDATETIPTEXTA:
      return UpdateText(t, reinterpret_cast<const TOOLINFOA*>(lparam));
    case TTM_UPDATETIPTEXTW:
      return UpdateText(t, reinterpret_cast<const TOOLINFOW*>(lparam));
    case TTM_GETTOOLCOUNT:
      return static_cast<LRESULT>(t.tools.size());
    case TTM_SETTIPBKCOLOR:
      t.back = static_cast<COLORREF>(wparam);
      InvalidateRect(t.self, nullptr, TRUE);
      return 0;
    case TTM_SETTIPTEXTCOLOR:
      t.fore = static_cast<COLORREF>(wparam);
      InvalidateRect(t.self, nullptr, TRUE);
      return 0;
    case TTM_GETTIPBKCOLOR:
      return t.back;
    case TTM_GETTIPTEXTCOLOR:
      return t.fore;
    case TTM_SETMAXTIPWIDTH: {
      const int old = t.max_width;
      t.max_width = static_cast<int>(lparam);
      return old;
    }
    case TTM_GETMAXTIPWIDTH:
      return t.max_width;
    case TTM_POP:
      Pop(t);
      return 0;
    case TTM_SETTITLEA:
      if (lparam == 0) return FALSE;
      return SetTitle(t, wparam, FromAnsi(reinterpret_cast<LPCSTR>(lparam)));
    case TTM_SETTITLEW:
      if (lparam == 0) return FALSE;
      return SetTitle(t, wparam, String(reinterpret_cast<LPCWSTR>(lparam)));
    case TTM_GETTITLE:
      return GetTitle(t, reinterpret_cast<TTGETTITLE*>(lparam));
    case TTM_RELAYEVENT:
      if (lparam != 0) Relay(t, *reinterpret_cast<const MSG*>(lparam));
      return 0;
    default:
      return 0;
  }
}

LRESULT CALLBACK TipProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  if (msg == WM_NCCREATE) {
    auto tip = std::make_unique<Tip>();
    tip->self = hwnd;
    SetDelay(*tip, TTDT_AUTOMATIC, -1);
    Tips()[hwnd] = std::move(tip);
    // Whatever it was made with, a tip is a frameless top-level pop-up that
    // no task bar lists.
    const auto style = static_cast<DWORD>(GetWindowLongW(hwnd, GWL_STYLE));
    SetWindowLongW(
        hwnd, GWL_STYLE,
        static_cast<LONG>((style & ~(WS_CAPTION | WS_THICKFRAME | WS_CHILD)) | WS_POPUP));
    const auto ex = static_cast<DWORD>(GetWindowLongW(hwnd, GWL_EXSTYLE));
    SetWindowLongW(
        hwnd, GWL_EXSTYLE,
        static_cast<LONG>((ex & ~(WS_EX_APPWINDOW | WS_EX_CLIENTEDGE | WS_EX_WINDOWEDGE)) |
                          WS_EX_TOOLWINDOW));
    return TRUE;
  }
  Tip* t = TipOf(hwnd);
  if (t == nullptr) return DefWindowProcW(hwnd, msg, wparam, lparam);
  if (msg >= WM_USER && msg < WM_USER + 0x100) return Protocol(*t, msg, wparam, lparam);
  switch (msg) {
    case WM_NCCALCSIZE:
      return 0;  // the frame is painted in the client area
    case WM_NCHITTEST:
      return HTTRANSPARENT;  // the mouse belongs to what is under the tip
    case WM_MOUSEACTIVATE:
      return MA_NOACTIVATE;
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT:
      Paint(*t);
      return 0;
    case WM_TIMER:
      OnTimer(*t, wparam);
      return 0;
    case WM_SETFONT:
      t->font = reinterpret_cast<HFONT>(wparam);
      if (LOWORD(static_cast<uintptr_t>(lparam)) != 0) InvalidateRect(hwnd, nullptr, TRUE);
      return 0;
    case WM_GETFONT:
      return reinterpret_cast<LRESULT>(t->font);
    case WM_DESTROY: {
      Pop(*t);
      std::vector<HWND> windows;
      for (const Tool& tool : t->tools) {
        if ((tool.flags & TTF_SUBCLASS) != 0) windows.push_back(tool.Window());
      }
      t->tools.clear();
      for (HWND w : windows) UnhookTool(w, hwnd);
      return 0;
    }
    case WM_NCDESTROY:
      Tips().erase(hwnd);
      return DefWindowProcW(hwnd, msg, wparam, lparam);
    default:
      return DefWindowProcW(hwnd, msg, wparam, lparam);
  }
}

}  // namespace

std::shared_ptr<WindowClass> MakeToolTipClass() {
  auto cls = std::make_shared<WindowClass>();
  cls->name = TOOLTIPS_CLASSW;
  cls->style = CS_DBLCLKS | CS_SAVEBITS;
  cls->proc = &TipProc;
  cls->unicode = true;
  cls->cursor = LoadCursorW(nullptr, IDC_ARROW);
  return cls;
}

}  // namespace vantor::platform
