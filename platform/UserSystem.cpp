// System metrics, parameters and colours of the desktop that the library
// was written for, and the process-level odds and ends of USER.
#include <unistd.h>

#include "platform/Desktop.h"
#include "platform/UserState.h"

using vantor::platform::UserState;

namespace vantor::platform {

UserState& UserState::Get() {
  static UserState state;
  return state;
}

}  // namespace vantor::platform

namespace {

// The Windows 10 default colour scheme (Control Panel\Colors of a new
// profile); Windows 7's differs only in COLOR_HIGHLIGHT and
// COLOR_MENUHILIGHT (51,153,255) and COLOR_HOTLIGHT (0,102,204 on both).
//   0 SCROLLBAR 200,200,200        16 BTNSHADOW 160,160,160
//   1 BACKGROUND 0,0,0             17 GRAYTEXT 109,109,109
//   2 ACTIVECAPTION 153,180,209    18 BTNTEXT 0,0,0
//   3 INACTIVECAPTION 191,205,219  19 INACTIVECAPTIONTEXT 0,0,0
//   4 MENU 240,240,240             20 BTNHIGHLIGHT 255,255,255
//   5 WINDOW 255,255,255           21 3DDKSHADOW 105,105,105
//   6 WINDOWFRAME 100,100,100      22 3DLIGHT 227,227,227
//   7 MENUTEXT 0,0,0               23 INFOTEXT 0,0,0
//   8 WINDOWTEXT 0,0,0             24 INFOBK 255,255,225
//   9 CAPTIONTEXT 0,0,0            25 (unused) 0,0,0
//  10 ACTIVEBORDER 180,180,180     26 HOTLIGHT 0,102,204
//  11 INACTIVEBORDER 244,247,252   27 GRADIENTACTIVECAPTION 185,209,234
//  12 APPWORKSPACE 171,171,171     28 GRADIENTINACTIVECAPTION 215,228,242
//  13 HIGHLIGHT 0,120,215          29 MENUHILIGHT 0,120,215
//  14 HIGHLIGHTTEXT 255,255,255    30 MENUBAR 240,240,240
//  15 BTNFACE 240,240,240
constexpr COLORREF kSysColors[] = {
    RGB(200, 200, 200), RGB(0, 0, 0),       RGB(153, 180, 209), RGB(191, 205, 219),
    RGB(240, 240, 240), RGB(255, 255, 255), RGB(100, 100, 100), RGB(0, 0, 0),
    RGB(0, 0, 0),       RGB(0, 0, 0),       RGB(180, 180, 180), RGB(244, 247, 252),
    RGB(171, 171, 171), RGB(0, 120, 215),   RGB(255, 255, 255), RGB(240, 240, 240),
    RGB(160, 160, 160), RGB(109, 109, 109), RGB(0, 0, 0),       RGB(0, 0, 0),
    RGB(255, 255, 255), RGB(105, 105, 105), RGB(227, 227, 227), RGB(0, 0, 0),
    RGB(255, 255, 225), RGB(0, 0, 0),       RGB(0, 102, 204),   RGB(185, 209, 234),
    RGB(215, 228, 242), RGB(0, 120, 215),   RGB(240, 240, 240)};

constexpr int kHoverSize = 4;
constexpr UINT kHoverTime = 400;
constexpr UINT kWheelLines = 3;

}  // namespace

int GetSystemMetrics(int index) {
  const UserState& s = UserState::Get();
  const RECT& work = s.work_area;
  // A 96-DPI desktop in the classic style.
  switch (index) {
    case SM_CXSCREEN:
    case SM_CXVIRTUALSCREEN:
      return s.screen.cx;
    case SM_CYSCREEN:
    case SM_CYVIRTUALSCREEN:
      return s.screen.cy;
    case SM_CXVSCROLL:
    case SM_CYHSCROLL:
    case SM_CYVTHUMB:
    case SM_CXHTHUMB:
    case SM_CYVSCROLL:
    case SM_CXHSCROLL:
      return 17;
    case SM_CYCAPTION:
      return 19;
    case SM_CXBORDER:
    case SM_CYBORDER:
      return 1;
    case SM_CXDLGFRAME:
    case SM_CYDLGFRAME:
      return 3;
    case SM_CXICON:
    case SM_CYICON:
    case SM_CXCURSOR:
    case SM_CYCURSOR:
      return 32;
    case SM_CYMENU:
      return 19;
    case SM_CXFULLSCREEN:
      return work.right - work.left;
    case SM_CYFULLSCREEN:
      return work.bottom - work.top - 19;
    case SM_MOUSEPRESENT:
    case SM_MOUSEWHEELPRESENT:
    case SM_CMONITORS:
      return 1;
    case SM_SWAPBUTTON:
      return 0;
    case SM_CXMIN:
    case SM_CXMINTRACK:
      return 112;
    case SM_CYMIN:
    case SM_CYMINTRACK:
      return 27;
    case SM_CXSIZE:
    case SM_CYSIZE:
    case SM_CXMENUSIZE:
    case SM_CYMENUSIZE:
      return 18;
    case SM_CXFRAME:
    case SM_CYFRAME:
      return 4;
    case SM_CXDOUBLECLK:
    case SM_CYDOUBLECLK:
    case SM_CXDRAG:
    case SM_CYDRAG:
      return 4;
    case SM_CXICONSPACING:
    case SM_CYICONSPACING:
      return 75;
    case SM_MENUDROPALIGNMENT:
      return 0;
    case SM_CMOUSEBUTTONS:
      return 5;
    case SM_CXEDGE:
    case SM_CYEDGE:
      return 2;
    case SM_CXSMICON:
    case SM_CYSMICON:
      return 16;
    case SM_CYSMCAPTION:
      return 16;
    case SM_CXSMSIZE:
    case SM_CYSMSIZE:
      return 15;
    case SM_CXMINIMIZED:
      return 160;
    case SM_CYMINIMIZED:
      return 24;
    case SM_CXMAXTRACK:
      return s.screen.cx + 12;
    case SM_CYMAXTRACK:
      return s.screen.cy + 12;
    case SM_CXMAXIMIZED:
      return work.right - work.left + 8;
    case SM_CYMAXIMIZED:
      return work.bottom - work.top + 8;
    case SM_CXMENUCHECK:
    case SM_CYMENUCHECK:
      return 13;
    case SM_XVIRTUALSCREEN:
    case SM_YVIRTUALSCREEN:
      return 0;
    case SM_CXFOCUSBORDER:
    case SM_CYFOCUSBORDER:
      return 1;
    case SM_CXPADDEDBORDER:
      return 0;
    case SM_REMOTESESSION:
      return 0;
    default:
      return 0;
  }
}

namespace {

BOOL SystemParameters(UINT action, LPVOID pv) {
  if (pv == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  switch (action) {
    case SPI_GETWORKAREA:
      *static_cast<RECT*>(pv) = UserState::Get().work_area;
      return TRUE;
    case SPI_GETMOUSEHOVERTIME:
      *static_cast<UINT*>(pv) = kHoverTime;
      return TRUE;
    case SPI_GETMOUSEHOVERWIDTH:
    case SPI_GETMOUSEHOVERHEIGHT:
      *static_cast<UINT*>(pv) = kHoverSize;
      return TRUE;
    case SPI_GETWHEELSCROLLLINES:
    case SPI_GETWHEELSCROLLCHARS:
      *static_cast<UINT*>(pv) = kWheelLines;
      return TRUE;
    case SPI_GETKEYBOARDDELAY:
      *static_cast<int*>(pv) = 1;
      return TRUE;
    default:
      SetLastError(ERROR_INVALID_PARAMETER);
      return FALSE;
  }
}

}  // namespace

BOOL SystemParametersInfoW(UINT action, UINT, LPVOID pvparam, UINT) {
  return SystemParameters(action, pvparam);
}

BOOL SystemParametersInfoA(UINT action, UINT, LPVOID pvparam, UINT) {
  return SystemParameters(action, pvparam);
}

DWORD GetSysColor(int index) {
  if (index < 0 || index >= static_cast<int>(std::size(kSysColors))) return 0;
  return kSysColors[index];
}

HRESULT OleTranslateColor(OLE_COLOR color, HPALETTE, COLORREF* out) {
  COLORREF result;
  switch (color >> 24) {
    case 0x00:  // a plain colour
    case 0x01:  // PALETTEINDEX: no palette to look in, passed on as it is
    case 0x02:  // PALETTERGB
      result = color;
      break;
    case 0x80: {
      const auto index = static_cast<int>(color & 0xFFFF);
      if ((color & 0x00FF0000u) != 0 || index > COLOR_MENUBAR) return E_INVALIDARG;
      result = GetSysColor(index);
      break;
    }
    default:
      return E_INVALIDARG;
  }
  if (out != nullptr) *out = result;
  return S_OK;
}

DWORD GetLastError() {
  return UserState::Get().last_error;
}
void SetLastError(DWORD error) {
  UserState::Get().last_error = error;
}

HMODULE GetModuleHandleW(LPCWSTR name) {
  // One module: the process itself, at the platform's usual image base.
  return name == nullptr ? reinterpret_cast<HMODULE>(uintptr_t{0x400000}) : nullptr;
}

HMODULE GetModuleHandleA(LPCSTR name) {
  return name == nullptr ? reinterpret_cast<HMODULE>(uintptr_t{0x400000}) : nullptr;
}

DWORD GetCurrentProcessId() {
  return static_cast<DWORD>(getpid());
}

// One UI thread, as the library assumes.
DWORD GetCurrentThreadId() {
  return 1;
}

DWORD GetWindowThreadProcessId(HWND hwnd, DWORD* process_id) {
  if (vantor::platform::Window::Get(hwnd) == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return 0;
  }
  if (process_id != nullptr) *process_id = GetCurrentProcessId();
  return GetCurrentThreadId();
}

BOOL MessageBeep(UINT) {
  return TRUE;
}
