#include "server/UserControl.h"

#include <algorithm>

#include "platform/Gdi.h"

namespace vantor::server {

namespace {

constexpr char16_t kWindowClass[] = u"VantorUserControl";

void RegisterWindowClass(WNDPROC proc) {
  // Asked of USER each time rather than remembered: a desktop that was reset
  // (tests start from one) has forgotten every class.
  WNDCLASSEXW known{};
  known.cbSize = sizeof known;
  if (GetClassInfoExW(nullptr, kWindowClass, &known)) return;
  WNDCLASSW wc{};
  // Double clicks are part of what a control is told (DblClick).
  wc.style = CS_DBLCLKS;
  wc.lpfnWndProc = proc;
  wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  wc.lpszClassName = kWindowClass;
  RegisterClassW(&wc);
}

int16_t ShiftState() {
  int16_t shift = 0;
  if (GetKeyState(VK_SHIFT) < 0) shift |= 1;
  if (GetKeyState(VK_CONTROL) < 0) shift |= 2;
  if (GetKeyState(VK_MENU) < 0) shift |= 4;
  return shift;
}

// Button bits as the container events give them: 1 left, 2 right, 4 middle.
int16_t ButtonsOf(WPARAM wparam) {
  int16_t b = 0;
  if (wparam & MK_LBUTTON) b |= 1;
  if (wparam & MK_RBUTTON) b |= 2;
  if (wparam & MK_MBUTTON) b |= 4;
  return b;
}

LPCWSTR CursorFor(int16_t pointer) {
  switch (pointer) {
    case vbArrow: return IDC_ARROW;
    case vbCrosshair: return IDC_CROSS;
    case vbIbeam: return IDC_IBEAM;
    case vbSizeNESW: return IDC_SIZENESW;
    case vbSizeNS: return IDC_SIZENS;
    case vbSizeNWSE: return IDC_SIZENWSE;
    case vbSizeWE: return IDC_SIZEWE;
    case vbUpArrow: return IDC_UPARROW;
    case vbHourglass: return IDC_WAIT;
    case vbNoDrop: return IDC_NO;
    case vbArrowHourglass: return IDC_APPSTARTING;
    case vbArrowQuestion: return IDC_HELP;
    case vbSizeAll: return IDC_SIZEALL;
    default: return nullptr;
  }
}

}  // namespace

UserControl::UserControl(const ClassInfo& info) : Dispatch(info) {}

UserControl::~UserControl() {
  if (hwnd_) {
    SetWindowLongPtrW(hwnd_, GWLP_USERDATA, 0);
    DestroyWindow(hwnd_);
  }
  FreeSurface();
}

void UserControl::Guarded(const std::function<void()>& handler) {
  try {
    handler();
  } catch (...) {
    // Skip-and-continue: the failing handler ends, the control goes on.
  }
  Err().Clear();
}

bool UserControl::Create(ControlSite* site, HWND parent, const RECT& r) {
  if (hwnd_) return false;
  site_ = site;
  RegisterWindowClass(&UserControl::WindowProc);
  const int w = std::max(0, static_cast<int>(r.right - r.left));
  const int h = std::max(0, static_cast<int>(r.bottom - r.top));
  ResizeSurface(w, h);
  Guarded([this] { Initialize(); });
  hwnd_ = CreateWindowExW(0, kWindowClass, u"", WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, r.left,
                          r.top, w, h, parent, nullptr, nullptr, this);
  return hwnd_ != nullptr;
}

void UserControl::InitNew() {
  Guarded([this] { InitProperties(); });
  FirstResize();
}

void UserControl::Load(const PropertyBag& bag) {
  Guarded([&] { ReadProperties(bag); });
  FirstResize();
}

void UserControl::FirstResize() {
  if (hasProperties_) return;
  hasProperties_ = true;
  if (hwnd_) Guarded([this] { Resize(); });
}

void UserControl::Save(PropertyBag& bag) { Guarded([&] { WriteProperties(bag); }); }

void UserControl::NotifyShow() {
  if (shown_) return;
  shown_ = true;
  Guarded([this] { Show(); });
}

void UserControl::NotifyAmbientChanged(StringView name) {
  const String n(name);
  Guarded([&] { AmbientChanged(n); });
}

void UserControl::NotifyAccessKey(int16_t keyAscii) {
  Guarded([&] { AccessKeyPress(keyAscii); });
}

void UserControl::Close() {
  if (!hwnd_) return;
  Guarded([this] { Terminate(); });
  HWND hwnd = hwnd_;
  hwnd_ = nullptr;
  SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
  DestroyWindow(hwnd);
  FreeSurface();
  site_ = nullptr;
}

void UserControl::Refresh() {
  if (hwnd_) InvalidateRect(hwnd_, nullptr, FALSE);
}

bool UserControl::SurfaceEnabled() const { return hwnd_ ? IsWindowEnabled(hwnd_) != FALSE : true; }

void UserControl::SetSurfaceEnabled(bool enabled) {
  if (hwnd_) EnableWindow(hwnd_, enabled ? TRUE : FALSE);
}

void UserControl::SetMousePointer(int16_t pointer) { mousePointer_ = pointer; }

void UserControl::SetMouseIcon(std::shared_ptr<StdPicture> icon) { mouseIcon_ = std::move(icon); }

void UserControl::SetAccessKeys(StringView keys) { accessKeys_ = String(keys); }

AmbientProperties UserControl::Ambient() const {
  if (site_) return site_->Ambient();
  // Without a container: a run-time host with the platform's form font.
  AmbientProperties a;
  a.Font = std::make_shared<StdFont>();
  return a;
}

Extender* UserControl::GetExtender() const { return site_ ? &site_->GetExtender() : nullptr; }

void UserControl::PropertyChanged(StringView name) {
  if (site_) site_->PropertyChanged(name);
}

std::vector<ObjectPtr> UserControl::ContainedControls() const {
  return site_ ? site_->ContainedControls() : std::vector<ObjectPtr>{};
}

void UserControl::FreeSurface() {
  if (memDC_) {
    SelectObject(memDC_, oldBitmap_);
    DeleteDC(memDC_);
  }
  if (bitmap_) DeleteObject(bitmap_);
  memDC_ = nullptr;
  bitmap_ = nullptr;
  oldBitmap_ = nullptr;
}

void UserControl::ResizeSurface(int width, int height) {
  if (memDC_ && width == width_ && height == height_) return;
  // The picture keeps what it held where the sizes overlap; new parts take
  // the button face, as a fresh control's background.
  HDC screen = GetDC(nullptr);
  HDC dc = CreateCompatibleDC(screen);
  HBITMAP bmp = CreateCompatibleBitmap(screen, std::max(width, 1), std::max(height, 1));
  ReleaseDC(nullptr, screen);
  HGDIOBJ old = SelectObject(dc, bmp);
  RECT all{0, 0, std::max(width, 1), std::max(height, 1)};
  HBRUSH face = CreateSolidBrush(GetSysColor(COLOR_BTNFACE));
  FillRect(dc, &all, face);
  DeleteObject(face);
  if (memDC_) BitBlt(dc, 0, 0, std::min(width, width_), std::min(height, height_), memDC_, 0, 0, SRCCOPY);
  FreeSurface();
  memDC_ = dc;
  bitmap_ = bmp;
  oldBitmap_ = old;
  width_ = width;
  height_ = height;
}

bool UserControl::SetPointer() {
  if (mousePointer_ == vbCustom && mouseIcon_) {
    // A picture is no cursor on every platform; the hand stands in for a
    // custom pointer, which is what controls of the library set it for.
    SetCursor(LoadCursorW(nullptr, IDC_HAND));
    return true;
  }
  LPCWSTR id = CursorFor(mousePointer_);
  if (!id) return false;
  SetCursor(LoadCursorW(nullptr, id));
  return true;
}

LRESULT CALLBACK UserControl::WindowProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  if (msg == WM_NCCREATE) {
    const auto* cs = reinterpret_cast<const CREATESTRUCTW*>(lparam);
    SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(cs->lpCreateParams));
    if (auto* self = static_cast<UserControl*>(cs->lpCreateParams)) self->hwnd_ = hwnd;
  }
  auto* self = reinterpret_cast<UserControl*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
  if (!self || self->hwnd_ != hwnd) return DefWindowProcW(hwnd, msg, wparam, lparam);
  // The control must outlive its own message, even if a handler lets go of it.
  const std::shared_ptr<Object> keep = self->weak_from_this().lock();
  return self->Handle(msg, wparam, lparam);
}

void UserControl::Mouse(UINT msg, WPARAM wparam, LPARAM lparam) {
  const float x = static_cast<float>(static_cast<int16_t>(LOWORD(lparam)));
  const float y = static_cast<float>(static_cast<int16_t>(HIWORD(lparam)));
  const int16_t shift = ShiftState();
  int16_t button = 0;
  switch (msg) {
    case WM_LBUTTONDOWN: case WM_LBUTTONUP: case WM_LBUTTONDBLCLK: button = 1; break;
    case WM_RBUTTONDOWN: case WM_RBUTTONUP: case WM_RBUTTONDBLCLK: button = 2; break;
    case WM_MBUTTONDOWN: case WM_MBUTTONUP: case WM_MBUTTONDBLCLK: button = 4; break;
    default: break;
  }
  switch (msg) {
    case WM_MOUSEMOVE:
      Guarded([&] { MouseMove(ButtonsOf(wparam), shift, x, y); });
      return;
    case WM_LBUTTONDBLCLK:
      // Down, up, Click, DblClick, up: the second press is the double click
      // and its release is no Click.
      buttonsDown_ |= button;
      clickButton_ = 0;
      if (GetCapture() != hwnd_) SetCapture(hwnd_);
      Guarded([&] { DblClick(); });
      return;
    case WM_LBUTTONDOWN: case WM_RBUTTONDOWN: case WM_MBUTTONDOWN:
    case WM_RBUTTONDBLCLK: case WM_MBUTTONDBLCLK:
      if (button == 1 && GetFocus() != hwnd_ && IsWindowEnabled(hwnd_)) SetFocus(hwnd_);
      buttonsDown_ |= button;
      clickButton_ = button;
      // The container captures for its control, so the release is seen
      // wherever it happens.
      if (GetCapture() != hwnd_) SetCapture(hwnd_);
      Guarded([&] { MouseDown(button, shift, x, y); });
      return;
    case WM_LBUTTONUP: case WM_RBUTTONUP: case WM_MBUTTONUP: {
      buttonsDown_ = static_cast<int16_t>(buttonsDown_ & ~button);
      if (buttonsDown_ == 0 && GetCapture() == hwnd_) ReleaseCapture();
      Guarded([&] { MouseUp(button, shift, x, y); });
      const bool inside = x >= 0 && y >= 0 && x < static_cast<float>(width_) && y < static_cast<float>(height_);
      if (clickButton_ == button && inside) {
        clickButton_ = 0;
        Guarded([&] { Click(); });
      }
      return;
    }
    default:
      return;
  }
}

LRESULT UserControl::Handle(UINT msg, WPARAM wparam, LPARAM lparam) {
  switch (msg) {
    case WM_SIZE:
      ResizeSurface(LOWORD(lparam), HIWORD(lparam));
      // The window reports its size as it is made, before the control has
      // its properties; a control lays itself out only once it has them.
      if (hasProperties_) Guarded([this] { Resize(); });
      return 0;
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT: {
      PAINTSTRUCT ps;
      HDC dc = BeginPaint(hwnd_, &ps);
      ++paints_;
      Guarded([this] { Paint(); });
      BitBlt(dc, 0, 0, width_, height_, memDC_, 0, 0, SRCCOPY);
      EndPaint(hwnd_, &ps);
      return 0;
    }
    case WM_SETFOCUS:
      if (site_) site_->FocusChanged(*this, true);
      Guarded([this] { GotFocus(); });
      return 0;
    case WM_KILLFOCUS:
      Guarded([this] { LostFocus(); });
      if (site_) site_->FocusChanged(*this, false);
      return 0;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN: {
      int16_t key = static_cast<int16_t>(wparam);
      int16_t shift = ShiftState();
      if (key == VK_TAB && (shift & ~1) == 0 && site_ && site_->TabKey((shift & 1) != 0)) {
        tabTaken_ = true;
        return 0;
      }
      Guarded([&] { KeyDown(key, shift); });
      return 0;
    }
    case WM_KEYUP:
    case WM_SYSKEYUP: {
      int16_t key = static_cast<int16_t>(wparam);
      int16_t shift = ShiftState();
      Guarded([&] { KeyUp(key, shift); });
      return 0;
    }
    case WM_CHAR: {
      // The character of a Tab the container took is not the control's.
      if (wparam == 9 && tabTaken_) {
        tabTaken_ = false;
        return 0;
      }
      int16_t ascii = static_cast<int16_t>(wparam);
      Guarded([&] { KeyPress(ascii); });
      return 0;
    }
    case WM_SYSCHAR:
      if (site_ && site_->AccessKey(static_cast<char16_t>(wparam))) return 0;
      return DefWindowProcW(hwnd_, msg, wparam, lparam);
    case WM_SETCURSOR:
      if (SetPointer()) return TRUE;
      return DefWindowProcW(hwnd_, msg, wparam, lparam);
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN: case WM_LBUTTONUP: case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN: case WM_RBUTTONUP: case WM_RBUTTONDBLCLK:
    case WM_MBUTTONDOWN: case WM_MBUTTONUP: case WM_MBUTTONDBLCLK:
      Mouse(msg, wparam, lparam);
      return 0;
    case WM_CAPTURECHANGED:
      if (reinterpret_cast<HWND>(lparam) != hwnd_) buttonsDown_ = 0;
      return 0;
    default:
      return DefWindowProcW(hwnd_, msg, wparam, lparam);
  }
}

}  // namespace vantor::server
