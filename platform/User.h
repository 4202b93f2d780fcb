#pragma once
// USER: windows, classes, messages, painting, timers, input state, cursors,
// system metrics and colours, the clipboard. Names, values, records and
// behaviour are the platform's, so that control code reads one to one against
// it. Internal services for presenters and tests are in platform/Input.h,
// platform/Desktop.h and platform/Clock.h.
#include <cstddef>
#include <cstdint>

#include "platform/WinTypes.h"

VANTOR_DECLARE_HANDLE(HPALETTE);
typedef HANDLE HGLOBAL;
typedef ULONG_PTR DWORD_PTR;
typedef LONG_PTR INT_PTR;

// ---------------------------------------------------------------- messages
constexpr UINT WM_NULL = 0x0000;
constexpr UINT WM_CREATE = 0x0001;
constexpr UINT WM_DESTROY = 0x0002;
constexpr UINT WM_MOVE = 0x0003;
constexpr UINT WM_SIZE = 0x0005;
constexpr UINT WM_ACTIVATE = 0x0006;
constexpr UINT WM_SETFOCUS = 0x0007;
constexpr UINT WM_KILLFOCUS = 0x0008;
constexpr UINT WM_ENABLE = 0x000A;
constexpr UINT WM_SETREDRAW = 0x000B;
constexpr UINT WM_SETTEXT = 0x000C;
constexpr UINT WM_GETTEXT = 0x000D;
constexpr UINT WM_GETTEXTLENGTH = 0x000E;
constexpr UINT WM_PAINT = 0x000F;
constexpr UINT WM_CLOSE = 0x0010;
constexpr UINT WM_QUIT = 0x0012;
constexpr UINT WM_ERASEBKGND = 0x0014;
constexpr UINT WM_SYSCOLORCHANGE = 0x0015;
constexpr UINT WM_SHOWWINDOW = 0x0018;
constexpr UINT WM_SETTINGCHANGE = 0x001A;
constexpr UINT WM_ACTIVATEAPP = 0x001C;
constexpr UINT WM_CANCELMODE = 0x001F;
constexpr UINT WM_SETCURSOR = 0x0020;
constexpr UINT WM_MOUSEACTIVATE = 0x0021;
constexpr UINT WM_GETMINMAXINFO = 0x0024;
constexpr UINT WM_NEXTDLGCTL = 0x0028;
constexpr UINT WM_DRAWITEM = 0x002B;
constexpr UINT WM_MEASUREITEM = 0x002C;
constexpr UINT WM_SETFONT = 0x0030;
constexpr UINT WM_GETFONT = 0x0031;
constexpr UINT WM_WINDOWPOSCHANGING = 0x0046;
constexpr UINT WM_WINDOWPOSCHANGED = 0x0047;
constexpr UINT WM_NOTIFY = 0x004E;
constexpr UINT WM_HELP = 0x0053;
constexpr UINT WM_CONTEXTMENU = 0x007B;
constexpr UINT WM_STYLECHANGING = 0x007C;
constexpr UINT WM_STYLECHANGED = 0x007D;
constexpr UINT WM_GETICON = 0x007F;
constexpr UINT WM_SETICON = 0x0080;
constexpr UINT WM_NCCREATE = 0x0081;
constexpr UINT WM_NCDESTROY = 0x0082;
constexpr UINT WM_NCCALCSIZE = 0x0083;
constexpr UINT WM_NCHITTEST = 0x0084;
constexpr UINT WM_NCPAINT = 0x0085;
constexpr UINT WM_NCACTIVATE = 0x0086;
constexpr UINT WM_GETDLGCODE = 0x0087;
constexpr UINT WM_NCMOUSEMOVE = 0x00A0;
constexpr UINT WM_NCLBUTTONDOWN = 0x00A1;
constexpr UINT WM_NCLBUTTONUP = 0x00A2;
constexpr UINT WM_NCLBUTTONDBLCLK = 0x00A3;
constexpr UINT WM_NCRBUTTONDOWN = 0x00A4;
constexpr UINT WM_NCRBUTTONUP = 0x00A5;
constexpr UINT WM_NCRBUTTONDBLCLK = 0x00A6;
constexpr UINT WM_NCMBUTTONDOWN = 0x00A7;
constexpr UINT WM_NCMBUTTONUP = 0x00A8;
constexpr UINT WM_NCMBUTTONDBLCLK = 0x00A9;
constexpr UINT WM_NCXBUTTONDOWN = 0x00AB;
constexpr UINT WM_NCXBUTTONUP = 0x00AC;
constexpr UINT WM_NCXBUTTONDBLCLK = 0x00AD;
constexpr UINT WM_KEYFIRST = 0x0100;
constexpr UINT WM_KEYDOWN = 0x0100;
constexpr UINT WM_KEYUP = 0x0101;
constexpr UINT WM_CHAR = 0x0102;
constexpr UINT WM_DEADCHAR = 0x0103;
constexpr UINT WM_SYSKEYDOWN = 0x0104;
constexpr UINT WM_SYSKEYUP = 0x0105;
constexpr UINT WM_SYSCHAR = 0x0106;
constexpr UINT WM_KEYLAST = 0x0109;
constexpr UINT WM_INITDIALOG = 0x0110;
constexpr UINT WM_COMMAND = 0x0111;
constexpr UINT WM_SYSCOMMAND = 0x0112;
constexpr UINT WM_TIMER = 0x0113;
constexpr UINT WM_HSCROLL = 0x0114;
constexpr UINT WM_VSCROLL = 0x0115;
constexpr UINT WM_INITMENUPOPUP = 0x0117;
constexpr UINT WM_MENUSELECT = 0x011F;
constexpr UINT WM_CTLCOLOREDIT = 0x0133;
constexpr UINT WM_CTLCOLORLISTBOX = 0x0134;
constexpr UINT WM_CTLCOLORBTN = 0x0135;
constexpr UINT WM_CTLCOLORSTATIC = 0x0138;
constexpr UINT WM_MOUSEFIRST = 0x0200;
constexpr UINT WM_MOUSEMOVE = 0x0200;
constexpr UINT WM_LBUTTONDOWN = 0x0201;
constexpr UINT WM_LBUTTONUP = 0x0202;
constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
constexpr UINT WM_RBUTTONDOWN = 0x0204;
constexpr UINT WM_RBUTTONUP = 0x0205;
constexpr UINT WM_RBUTTONDBLCLK = 0x0206;
constexpr UINT WM_MBUTTONDOWN = 0x0207;
constexpr UINT WM_MBUTTONUP = 0x0208;
constexpr UINT WM_MBUTTONDBLCLK = 0x0209;
constexpr UINT WM_MOUSEWHEEL = 0x020A;
constexpr UINT WM_XBUTTONDOWN = 0x020B;
constexpr UINT WM_XBUTTONUP = 0x020C;
constexpr UINT WM_XBUTTONDBLCLK = 0x020D;
constexpr UINT WM_MOUSEHWHEEL = 0x020E;
constexpr UINT WM_MOUSELAST = 0x020E;
constexpr UINT WM_PARENTNOTIFY = 0x0210;
constexpr UINT WM_ENTERMENULOOP = 0x0211;
constexpr UINT WM_EXITMENULOOP = 0x0212;
constexpr UINT WM_SIZING = 0x0214;
constexpr UINT WM_CAPTURECHANGED = 0x0215;
constexpr UINT WM_MOVING = 0x0216;
constexpr UINT WM_ENTERSIZEMOVE = 0x0231;
constexpr UINT WM_EXITSIZEMOVE = 0x0232;
constexpr UINT WM_NCMOUSEHOVER = 0x02A0;
constexpr UINT WM_MOUSEHOVER = 0x02A1;
constexpr UINT WM_NCMOUSELEAVE = 0x02A2;
constexpr UINT WM_MOUSELEAVE = 0x02A3;
constexpr UINT WM_CUT = 0x0300;
constexpr UINT WM_COPY = 0x0301;
constexpr UINT WM_PASTE = 0x0302;
constexpr UINT WM_CLEAR = 0x0303;
constexpr UINT WM_UNDO = 0x0304;
constexpr UINT WM_PRINT = 0x0317;
constexpr UINT WM_PRINTCLIENT = 0x0318;
constexpr UINT WM_THEMECHANGED = 0x031A;
constexpr UINT WM_USER = 0x0400;
constexpr UINT WM_APP = 0x8000;

// WM_SYSCOMMAND codes.
constexpr WPARAM SC_SIZE = 0xF000;
constexpr WPARAM SC_MOVE = 0xF010;
constexpr WPARAM SC_MINIMIZE = 0xF020;
constexpr WPARAM SC_MAXIMIZE = 0xF030;
constexpr WPARAM SC_CLOSE = 0xF060;
constexpr WPARAM SC_RESTORE = 0xF120;

// WM_SIZE.
constexpr WPARAM SIZE_RESTORED = 0;
constexpr WPARAM SIZE_MINIMIZED = 1;
constexpr WPARAM SIZE_MAXIMIZED = 2;

// WM_ACTIVATE and WM_MOUSEACTIVATE.
constexpr WORD WA_INACTIVE = 0;
constexpr WORD WA_ACTIVE = 1;
constexpr WORD WA_CLICKACTIVE = 2;
constexpr LRESULT MA_ACTIVATE = 1;
constexpr LRESULT MA_ACTIVATEANDEAT = 2;
constexpr LRESULT MA_NOACTIVATE = 3;
constexpr LRESULT MA_NOACTIVATEANDEAT = 4;

// Mouse message wParam flags.
constexpr WPARAM MK_LBUTTON = 0x0001;
constexpr WPARAM MK_RBUTTON = 0x0002;
constexpr WPARAM MK_SHIFT = 0x0004;
constexpr WPARAM MK_CONTROL = 0x0008;
constexpr WPARAM MK_MBUTTON = 0x0010;
constexpr WPARAM MK_XBUTTON1 = 0x0020;
constexpr WPARAM MK_XBUTTON2 = 0x0040;
constexpr WORD XBUTTON1 = 0x0001;
constexpr WORD XBUTTON2 = 0x0002;
constexpr int WHEEL_DELTA = 120;
constexpr WORD GET_KEYSTATE_WPARAM(WPARAM w) {
  return LOWORD(w);
}
constexpr SHORT GET_WHEEL_DELTA_WPARAM(WPARAM w) {
  return static_cast<SHORT>(HIWORD(w));
}
constexpr WORD GET_XBUTTON_WPARAM(WPARAM w) {
  return HIWORD(w);
}

// ---------------------------------------------------------------- keys
constexpr int VK_LBUTTON = 0x01;
constexpr int VK_RBUTTON = 0x02;
constexpr int VK_CANCEL = 0x03;
constexpr int VK_MBUTTON = 0x04;
constexpr int VK_XBUTTON1 = 0x05;
constexpr int VK_XBUTTON2 = 0x06;
constexpr int VK_BACK = 0x08;
constexpr int VK_TAB = 0x09;
constexpr int VK_CLEAR = 0x0C;
constexpr int VK_RETURN = 0x0D;
constexpr int VK_SHIFT = 0x10;
constexpr int VK_CONTROL = 0x11;
constexpr int VK_MENU = 0x12;
constexpr int VK_PAUSE = 0x13;
constexpr int VK_CAPITAL = 0x14;
constexpr int VK_ESCAPE = 0x1B;
constexpr int VK_SPACE = 0x20;
constexpr int VK_PRIOR = 0x21;
constexpr int VK_NEXT = 0x22;
constexpr int VK_END = 0x23;
constexpr int VK_HOME = 0x24;
constexpr int VK_LEFT = 0x25;
constexpr int VK_UP = 0x26;
constexpr int VK_RIGHT = 0x27;
constexpr int VK_DOWN = 0x28;
constexpr int VK_SNAPSHOT = 0x2C;
constexpr int VK_INSERT = 0x2D;
constexpr int VK_DELETE = 0x2E;
constexpr int VK_HELP = 0x2F;
constexpr int VK_LWIN = 0x5B;
constexpr int VK_RWIN = 0x5C;
constexpr int VK_APPS = 0x5D;
constexpr int VK_NUMPAD0 = 0x60;
constexpr int VK_NUMPAD9 = 0x69;
constexpr int VK_MULTIPLY = 0x6A;
constexpr int VK_ADD = 0x6B;
constexpr int VK_SEPARATOR = 0x6C;
constexpr int VK_SUBTRACT = 0x6D;
constexpr int VK_DECIMAL = 0x6E;
constexpr int VK_DIVIDE = 0x6F;
constexpr int VK_F1 = 0x70;
constexpr int VK_F2 = 0x71;
constexpr int VK_F3 = 0x72;
constexpr int VK_F4 = 0x73;
constexpr int VK_F5 = 0x74;
constexpr int VK_F6 = 0x75;
constexpr int VK_F7 = 0x76;
constexpr int VK_F8 = 0x77;
constexpr int VK_F9 = 0x78;
constexpr int VK_F10 = 0x79;
constexpr int VK_F11 = 0x7A;
constexpr int VK_F12 = 0x7B;
constexpr int VK_F24 = 0x87;
constexpr int VK_NUMLOCK = 0x90;
constexpr int VK_SCROLL = 0x91;
constexpr int VK_LSHIFT = 0xA0;
constexpr int VK_RSHIFT = 0xA1;
constexpr int VK_LCONTROL = 0xA2;
constexpr int VK_RCONTROL = 0xA3;
constexpr int VK_LMENU = 0xA4;
constexpr int VK_RMENU = 0xA5;
constexpr int VK_OEM_1 = 0xBA;
constexpr int VK_OEM_PLUS = 0xBB;
constexpr int VK_OEM_COMMA = 0xBC;
constexpr int VK_OEM_MINUS = 0xBD;
constexpr int VK_OEM_PERIOD = 0xBE;
constexpr int VK_OEM_2 = 0xBF;
constexpr int VK_OEM_3 = 0xC0;
constexpr int VK_OEM_4 = 0xDB;
constexpr int VK_OEM_5 = 0xDC;
constexpr int VK_OEM_6 = 0xDD;
constexpr int VK_OEM_7 = 0xDE;

// keybd_event flags.
constexpr DWORD KEYEVENTF_EXTENDEDKEY = 0x0001;
constexpr DWORD KEYEVENTF_KEYUP = 0x0002;

// ---------------------------------------------------------------- styles
constexpr DWORD WS_OVERLAPPED = 0x00000000;
constexpr DWORD WS_POPUP = 0x80000000;
constexpr DWORD WS_CHILD = 0x40000000;
constexpr DWORD WS_MINIMIZE = 0x20000000;
constexpr DWORD WS_VISIBLE = 0x10000000;
constexpr DWORD WS_DISABLED = 0x08000000;
constexpr DWORD WS_CLIPSIBLINGS = 0x04000000;
constexpr DWORD WS_CLIPCHILDREN = 0x02000000;
constexpr DWORD WS_MAXIMIZE = 0x01000000;
constexpr DWORD WS_CAPTION = 0x00C00000;
constexpr DWORD WS_BORDER = 0x00800000;
constexpr DWORD WS_DLGFRAME = 0x00400000;
constexpr DWORD WS_VSCROLL = 0x00200000;
constexpr DWORD WS_HSCROLL = 0x00100000;
constexpr DWORD WS_SYSMENU = 0x00080000;
constexpr DWORD WS_THICKFRAME = 0x00040000;
constexpr DWORD WS_GROUP = 0x00020000;
constexpr DWORD WS_TABSTOP = 0x00010000;
constexpr DWORD WS_MINIMIZEBOX = 0x00020000;
constexpr DWORD WS_MAXIMIZEBOX = 0x00010000;
constexpr DWORD WS_SIZEBOX = WS_THICKFRAME;
constexpr DWORD WS_CHILDWINDOW = WS_CHILD;
constexpr DWORD WS_OVERLAPPEDWINDOW =
    WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX;
constexpr DWORD WS_POPUPWINDOW = WS_POPUP | WS_BORDER | WS_SYSMENU;

constexpr DWORD WS_EX_DLGMODALFRAME = 0x00000001;
constexpr DWORD WS_EX_NOPARENTNOTIFY = 0x00000004;
constexpr DWORD WS_EX_TOPMOST = 0x00000008;
constexpr DWORD WS_EX_ACCEPTFILES = 0x00000010;
constexpr DWORD WS_EX_TRANSPARENT = 0x00000020;
constexpr DWORD WS_EX_MDICHILD = 0x00000040;
constexpr DWORD WS_EX_TOOLWINDOW = 0x00000080;
constexpr DWORD WS_EX_WINDOWEDGE = 0x00000100;
constexpr DWORD WS_EX_CLIENTEDGE = 0x00000200;
constexpr DWORD WS_EX_CONTEXTHELP = 0x00000400;
constexpr DWORD WS_EX_RIGHT = 0x00001000;
constexpr DWORD WS_EX_LEFT = 0x00000000;
constexpr DWORD WS_EX_RTLREADING = 0x00002000;
constexpr DWORD WS_EX_LEFTSCROLLBAR = 0x00004000;
constexpr DWORD WS_EX_CONTROLPARENT = 0x00010000;
constexpr DWORD WS_EX_STATICEDGE = 0x00020000;
constexpr DWORD WS_EX_APPWINDOW = 0x00040000;
constexpr DWORD WS_EX_LAYERED = 0x00080000;
constexpr DWORD WS_EX_NOINHERITLAYOUT = 0x00100000;
constexpr DWORD WS_EX_LAYOUTRTL = 0x00400000;
constexpr DWORD WS_EX_COMPOSITED = 0x02000000;
constexpr DWORD WS_EX_NOACTIVATE = 0x08000000;
constexpr DWORD WS_EX_OVERLAPPEDWINDOW = WS_EX_WINDOWEDGE | WS_EX_CLIENTEDGE;

// Class styles.
constexpr UINT CS_VREDRAW = 0x0001;
constexpr UINT CS_HREDRAW = 0x0002;
constexpr UINT CS_DBLCLKS = 0x0008;
constexpr UINT CS_OWNDC = 0x0020;
constexpr UINT CS_CLASSDC = 0x0040;
constexpr UINT CS_PARENTDC = 0x0080;
constexpr UINT CS_NOCLOSE = 0x0200;
constexpr UINT CS_SAVEBITS = 0x0800;
constexpr UINT CS_GLOBALCLASS = 0x4000;
constexpr UINT CS_DROPSHADOW = 0x00020000;

constexpr int CW_USEDEFAULT = static_cast<int>(0x80000000u);

// ShowWindow.
constexpr int SW_HIDE = 0;
constexpr int SW_SHOWNORMAL = 1;
constexpr int SW_NORMAL = 1;
constexpr int SW_SHOWMINIMIZED = 2;
constexpr int SW_SHOWMAXIMIZED = 3;
constexpr int SW_MAXIMIZE = 3;
constexpr int SW_SHOWNOACTIVATE = 4;
constexpr int SW_SHOW = 5;
constexpr int SW_MINIMIZE = 6;
constexpr int SW_SHOWMINNOACTIVE = 7;
constexpr int SW_SHOWNA = 8;
constexpr int SW_RESTORE = 9;
constexpr int SW_SHOWDEFAULT = 10;
constexpr int SW_FORCEMINIMIZE = 11;

// SetWindowPos.
constexpr UINT SWP_NOSIZE = 0x0001;
constexpr UINT SWP_NOMOVE = 0x0002;
constexpr UINT SWP_NOZORDER = 0x0004;
constexpr UINT SWP_NOREDRAW = 0x0008;
constexpr UINT SWP_NOACTIVATE = 0x0010;
constexpr UINT SWP_FRAMECHANGED = 0x0020;
constexpr UINT SWP_DRAWFRAME = SWP_FRAMECHANGED;
constexpr UINT SWP_SHOWWINDOW = 0x0040;
constexpr UINT SWP_HIDEWINDOW = 0x0080;
constexpr UINT SWP_NOCOPYBITS = 0x0100;
constexpr UINT SWP_NOOWNERZORDER = 0x0200;
constexpr UINT SWP_NOREPOSITION = SWP_NOOWNERZORDER;
constexpr UINT SWP_NOSENDCHANGING = 0x0400;
constexpr UINT SWP_DEFERERASE = 0x2000;
constexpr UINT SWP_ASYNCWINDOWPOS = 0x4000;

// The z-order pseudo-handles of SetWindowPos.
inline HWND const HWND_TOP = nullptr;
inline HWND const HWND_DESKTOP = nullptr;
inline HWND const HWND_BOTTOM = reinterpret_cast<HWND>(intptr_t{1});
inline HWND const HWND_TOPMOST = reinterpret_cast<HWND>(intptr_t{-1});
inline HWND const HWND_NOTOPMOST = reinterpret_cast<HWND>(intptr_t{-2});
inline HWND const HWND_MESSAGE = reinterpret_cast<HWND>(intptr_t{-3});

// Get/SetWindowLong and Get/SetClassLong indexes.
constexpr int GWL_WNDPROC = -4;
constexpr int GWL_HINSTANCE = -6;
constexpr int GWL_HWNDPARENT = -8;
constexpr int GWL_ID = -12;
constexpr int GWL_STYLE = -16;
constexpr int GWL_EXSTYLE = -20;
constexpr int GWL_USERDATA = -21;
constexpr int GWLP_WNDPROC = -4;
constexpr int GWLP_HINSTANCE = -6;
constexpr int GWLP_HWNDPARENT = -8;
constexpr int GWLP_ID = -12;
constexpr int GWLP_USERDATA = -21;
constexpr int GCLP_MENUNAME = -8;
constexpr int GCLP_HBRBACKGROUND = -10;
constexpr int GCLP_HCURSOR = -12;
constexpr int GCLP_HICON = -14;
constexpr int GCLP_WNDPROC = -24;
constexpr int GCL_CBWNDEXTRA = -18;
constexpr int GCL_CBCLSEXTRA = -20;
constexpr int GCL_STYLE = -26;

// GetWindow and GetAncestor.
constexpr UINT GW_HWNDFIRST = 0;
constexpr UINT GW_HWNDLAST = 1;
constexpr UINT GW_HWNDNEXT = 2;
constexpr UINT GW_HWNDPREV = 3;
constexpr UINT GW_OWNER = 4;
constexpr UINT GW_CHILD = 5;
constexpr UINT GW_ENABLEDPOPUP = 6;
constexpr UINT GA_PARENT = 1;
constexpr UINT GA_ROOT = 2;
constexpr UINT GA_ROOTOWNER = 3;

// WM_NCHITTEST results.
constexpr LRESULT HTERROR = -2;
constexpr LRESULT HTTRANSPARENT = -1;
constexpr LRESULT HTNOWHERE = 0;
constexpr LRESULT HTCLIENT = 1;
constexpr LRESULT HTCAPTION = 2;
constexpr LRESULT HTSYSMENU = 3;
constexpr LRESULT HTGROWBOX = 4;
constexpr LRESULT HTSIZE = HTGROWBOX;
constexpr LRESULT HTMENU = 5;
constexpr LRESULT HTHSCROLL = 6;
constexpr LRESULT HTVSCROLL = 7;
constexpr LRESULT HTMINBUTTON = 8;
constexpr LRESULT HTMAXBUTTON = 9;
constexpr LRESULT HTLEFT = 10;
constexpr LRESULT HTRIGHT = 11;
constexpr LRESULT HTTOP = 12;
constexpr LRESULT HTTOPLEFT = 13;
constexpr LRESULT HTTOPRIGHT = 14;
constexpr LRESULT HTBOTTOM = 15;
constexpr LRESULT HTBOTTOMLEFT = 16;
constexpr LRESULT HTBOTTOMRIGHT = 17;
constexpr LRESULT HTBORDER = 18;
constexpr LRESULT HTCLOSE = 20;
constexpr LRESULT HTHELP = 21;

// RedrawWindow.
constexpr UINT RDW_INVALIDATE = 0x0001;
constexpr UINT RDW_INTERNALPAINT = 0x0002;
constexpr UINT RDW_ERASE = 0x0004;
constexpr UINT RDW_VALIDATE = 0x0008;
constexpr UINT RDW_NOINTERNALPAINT = 0x0010;
constexpr UINT RDW_NOERASE = 0x0020;
constexpr UINT RDW_NOCHILDREN = 0x0040;
constexpr UINT RDW_ALLCHILDREN = 0x0080;
constexpr UINT RDW_UPDATENOW = 0x0100;
constexpr UINT RDW_ERASENOW = 0x0200;
constexpr UINT RDW_FRAME = 0x0400;
constexpr UINT RDW_NOFRAME = 0x0800;

// PeekMessage.
constexpr UINT PM_NOREMOVE = 0x0000;
constexpr UINT PM_REMOVE = 0x0001;
constexpr UINT PM_NOYIELD = 0x0002;

// TrackMouseEvent.
constexpr DWORD TME_HOVER = 0x00000001;
constexpr DWORD TME_LEAVE = 0x00000002;
constexpr DWORD TME_NONCLIENT = 0x00000010;
constexpr DWORD TME_QUERY = 0x40000000;
constexpr DWORD TME_CANCEL = 0x80000000;
constexpr DWORD HOVER_DEFAULT = 0xFFFFFFFF;

// Layered windows.
constexpr DWORD LWA_COLORKEY = 0x00000001;
constexpr DWORD LWA_ALPHA = 0x00000002;

// Cursors, as resource ids (MAKEINTRESOURCE).
inline LPWSTR MAKEINTRESOURCEW(WORD id) {
  return reinterpret_cast<LPWSTR>(uintptr_t{id});
}
inline LPSTR MAKEINTRESOURCEA(WORD id) {
  return reinterpret_cast<LPSTR>(uintptr_t{id});
}
inline LPCWSTR MAKEINTATOM(ATOM atom) {
  return MAKEINTRESOURCEW(atom);
}
inline bool IS_INTRESOURCE(const void* p) {
  return (reinterpret_cast<uintptr_t>(p) >> 16) == 0;
}
inline LPCWSTR const IDC_ARROW = MAKEINTRESOURCEW(32512);
inline LPCWSTR const IDC_IBEAM = MAKEINTRESOURCEW(32513);
inline LPCWSTR const IDC_WAIT = MAKEINTRESOURCEW(32514);
inline LPCWSTR const IDC_CROSS = MAKEINTRESOURCEW(32515);
inline LPCWSTR const IDC_UPARROW = MAKEINTRESOURCEW(32516);
inline LPCWSTR const IDC_SIZE = MAKEINTRESOURCEW(32640);
inline LPCWSTR const IDC_ICON = MAKEINTRESOURCEW(32641);
inline LPCWSTR const IDC_SIZENWSE = MAKEINTRESOURCEW(32642);
inline LPCWSTR const IDC_SIZENESW = MAKEINTRESOURCEW(32643);
inline LPCWSTR const IDC_SIZEWE = MAKEINTRESOURCEW(32644);
inline LPCWSTR const IDC_SIZENS = MAKEINTRESOURCEW(32645);
inline LPCWSTR const IDC_SIZEALL = MAKEINTRESOURCEW(32646);
inline LPCWSTR const IDC_NO = MAKEINTRESOURCEW(32648);
inline LPCWSTR const IDC_HAND = MAKEINTRESOURCEW(32649);
inline LPCWSTR const IDC_APPSTARTING = MAKEINTRESOURCEW(32650);
inline LPCWSTR const IDC_HELP = MAKEINTRESOURCEW(32651);

// System colour indexes (GetSysColor, and OLE_COLOR 0x80000000 + index).
constexpr int COLOR_SCROLLBAR = 0;
constexpr int COLOR_BACKGROUND = 1;
constexpr int COLOR_DESKTOP = 1;
constexpr int COLOR_ACTIVECAPTION = 2;
constexpr int COLOR_INACTIVECAPTION = 3;
constexpr int COLOR_MENU = 4;
constexpr int COLOR_WINDOW = 5;
constexpr int COLOR_WINDOWFRAME = 6;
constexpr int COLOR_MENUTEXT = 7;
constexpr int COLOR_WINDOWTEXT = 8;
constexpr int COLOR_CAPTIONTEXT = 9;
constexpr int COLOR_ACTIVEBORDER = 10;
constexpr int COLOR_INACTIVEBORDER = 11;
constexpr int COLOR_APPWORKSPACE = 12;
constexpr int COLOR_HIGHLIGHT = 13;
constexpr int COLOR_HIGHLIGHTTEXT = 14;
constexpr int COLOR_BTNFACE = 15;
constexpr int COLOR_3DFACE = 15;
constexpr int COLOR_BTNSHADOW = 16;
constexpr int COLOR_3DSHADOW = 16;
constexpr int COLOR_GRAYTEXT = 17;
constexpr int COLOR_BTNTEXT = 18;
constexpr int COLOR_INACTIVECAPTIONTEXT = 19;
constexpr int COLOR_BTNHIGHLIGHT = 20;
constexpr int COLOR_BTNHILIGHT = 20;
constexpr int COLOR_3DHIGHLIGHT = 20;
constexpr int COLOR_3DHILIGHT = 20;
constexpr int COLOR_3DDKSHADOW = 21;
constexpr int COLOR_3DLIGHT = 22;
constexpr int COLOR_INFOTEXT = 23;
constexpr int COLOR_INFOBK = 24;
constexpr int COLOR_HOTLIGHT = 26;
constexpr int COLOR_GRADIENTACTIVECAPTION = 27;
constexpr int COLOR_GRADIENTINACTIVECAPTION = 28;
constexpr int COLOR_MENUHILIGHT = 29;
constexpr int COLOR_MENUBAR = 30;

// GetSystemMetrics.
constexpr int SM_CXSCREEN = 0;
constexpr int SM_CYSCREEN = 1;
constexpr int SM_CXVSCROLL = 2;
constexpr int SM_CYHSCROLL = 3;
constexpr int SM_CYCAPTION = 4;
constexpr int SM_CXBORDER = 5;
constexpr int SM_CYBORDER = 6;
constexpr int SM_CXDLGFRAME = 7;
constexpr int SM_CXFIXEDFRAME = 7;
constexpr int SM_CYDLGFRAME = 8;
constexpr int SM_CYFIXEDFRAME = 8;
constexpr int SM_CYVTHUMB = 9;
constexpr int SM_CXHTHUMB = 10;
constexpr int SM_CXICON = 11;
constexpr int SM_CYICON = 12;
constexpr int SM_CXCURSOR = 13;
constexpr int SM_CYCURSOR = 14;
constexpr int SM_CYMENU = 15;
constexpr int SM_CXFULLSCREEN = 16;
constexpr int SM_CYFULLSCREEN = 17;
constexpr int SM_MOUSEPRESENT = 19;
constexpr int SM_CYVSCROLL = 20;
constexpr int SM_CXHSCROLL = 21;
constexpr int SM_SWAPBUTTON = 23;
constexpr int SM_CXMIN = 28;
constexpr int SM_CYMIN = 29;
constexpr int SM_CXSIZE = 30;
constexpr int SM_CYSIZE = 31;
constexpr int SM_CXFRAME = 32;
constexpr int SM_CXSIZEFRAME = 32;
constexpr int SM_CYFRAME = 33;
constexpr int SM_CYSIZEFRAME = 33;
constexpr int SM_CXMINTRACK = 34;
constexpr int SM_CYMINTRACK = 35;
constexpr int SM_CXDOUBLECLK = 36;
constexpr int SM_CYDOUBLECLK = 37;
constexpr int SM_CXICONSPACING = 38;
constexpr int SM_CYICONSPACING = 39;
constexpr int SM_MENUDROPALIGNMENT = 40;
constexpr int SM_CMOUSEBUTTONS = 43;
constexpr int SM_CXEDGE = 45;
constexpr int SM_CYEDGE = 46;
constexpr int SM_CXSMICON = 49;
constexpr int SM_CYSMICON = 50;
constexpr int SM_CYSMCAPTION = 51;
constexpr int SM_CXSMSIZE = 52;
constexpr int SM_CYSMSIZE = 53;
constexpr int SM_CXMENUSIZE = 54;
constexpr int SM_CYMENUSIZE = 55;
constexpr int SM_CXMINIMIZED = 57;
constexpr int SM_CYMINIMIZED = 58;
constexpr int SM_CXMAXTRACK = 59;
constexpr int SM_CYMAXTRACK = 60;
constexpr int SM_CXMAXIMIZED = 61;
constexpr int SM_CYMAXIMIZED = 62;
constexpr int SM_CXDRAG = 68;
constexpr int SM_CYDRAG = 69;
constexpr int SM_CXMENUCHECK = 71;
constexpr int SM_CYMENUCHECK = 72;
constexpr int SM_MOUSEWHEELPRESENT = 75;
constexpr int SM_XVIRTUALSCREEN = 76;
constexpr int SM_YVIRTUALSCREEN = 77;
constexpr int SM_CXVIRTUALSCREEN = 78;
constexpr int SM_CYVIRTUALSCREEN = 79;
constexpr int SM_CMONITORS = 80;
constexpr int SM_CXFOCUSBORDER = 83;
constexpr int SM_CYFOCUSBORDER = 84;
constexpr int SM_CXPADDEDBORDER = 92;
constexpr int SM_REMOTESESSION = 0x1000;

// SystemParametersInfo.
constexpr UINT SPI_GETKEYBOARDDELAY = 0x0016;
constexpr UINT SPI_GETWORKAREA = 0x0030;
constexpr UINT SPI_GETMOUSEHOVERWIDTH = 0x0062;
constexpr UINT SPI_GETMOUSEHOVERHEIGHT = 0x0064;
constexpr UINT SPI_GETMOUSEHOVERTIME = 0x0066;
constexpr UINT SPI_GETWHEELSCROLLLINES = 0x0068;
constexpr UINT SPI_GETWHEELSCROLLCHARS = 0x006C;

// Clipboard formats and global memory.
constexpr UINT CF_TEXT = 1;
constexpr UINT CF_BITMAP = 2;
constexpr UINT CF_OEMTEXT = 7;
constexpr UINT CF_DIB = 8;
constexpr UINT CF_UNICODETEXT = 13;
constexpr UINT GMEM_FIXED = 0x0000;
constexpr UINT GMEM_MOVEABLE = 0x0002;
constexpr UINT GMEM_ZEROINIT = 0x0040;
constexpr UINT GHND = GMEM_MOVEABLE | GMEM_ZEROINIT;
constexpr UINT GPTR = GMEM_FIXED | GMEM_ZEROINIT;

// MessageBeep.
constexpr UINT MB_OK = 0x00000000;
constexpr UINT MB_ICONHAND = 0x00000010;
constexpr UINT MB_ICONQUESTION = 0x00000020;
constexpr UINT MB_ICONEXCLAMATION = 0x00000030;
constexpr UINT MB_ICONASTERISK = 0x00000040;

// Results used by OleTranslateColor; other headers may define them too.
#ifndef VANTOR_HRESULT_S_OK
#define VANTOR_HRESULT_S_OK
constexpr HRESULT S_OK = 0;
#endif
#ifndef VANTOR_HRESULT_E_INVALIDARG
#define VANTOR_HRESULT_E_INVALIDARG
constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);
#endif

// Last-error codes that USER sets.
constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400;
constexpr DWORD ERROR_CANNOT_FIND_WND_CLASS = 1407;
constexpr DWORD ERROR_CLASS_ALREADY_EXISTS = 1410;
constexpr DWORD ERROR_CLASS_DOES_NOT_EXIST = 1411;
constexpr DWORD ERROR_CLASS_HAS_WINDOWS = 1412;
constexpr DWORD ERROR_INVALID_INDEX = 1413;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_CLIPBOARD_NOT_OPEN = 1418;

// Tool tips: the record and the messages the library sends to the tip window.
constexpr UINT TTS_ALWAYSTIP = 0x01;
constexpr UINT TTS_NOPREFIX = 0x02;
constexpr UINT TTS_BALLOON = 0x40;
constexpr UINT TTF_IDISHWND = 0x0001;
constexpr UINT TTF_CENTERTIP = 0x0002;
constexpr UINT TTF_SUBCLASS = 0x0010;
constexpr UINT TTM_SETDELAYTIME = WM_USER + 3;
constexpr UINT TTM_ADDTOOLA = WM_USER + 4;
constexpr UINT TTM_SETTIPBKCOLOR = WM_USER + 19;
constexpr UINT TTM_SETTIPTEXTCOLOR = WM_USER + 20;
constexpr UINT TTM_SETTITLEA = WM_USER + 32;
constexpr UINT TTM_ADDTOOLW = WM_USER + 50;
constexpr UINT TTM_SETTITLEW = WM_USER + 33;
constexpr UINT TTM_ACTIVATE = WM_USER + 1;
constexpr UINT TTM_DELTOOLA = WM_USER + 5;
constexpr UINT TTM_RELAYEVENT = WM_USER + 7;
constexpr UINT TTM_GETTOOLINFOA = WM_USER + 8;
constexpr UINT TTM_UPDATETIPTEXTA = WM_USER + 12;
constexpr UINT TTM_GETTOOLCOUNT = WM_USER + 13;
constexpr UINT TTM_GETCURRENTTOOLA = WM_USER + 15;
constexpr UINT TTM_GETDELAYTIME = WM_USER + 21;
constexpr UINT TTM_GETTIPBKCOLOR = WM_USER + 22;
constexpr UINT TTM_GETTIPTEXTCOLOR = WM_USER + 23;
constexpr UINT TTM_SETMAXTIPWIDTH = WM_USER + 24;
constexpr UINT TTM_GETMAXTIPWIDTH = WM_USER + 25;
constexpr UINT TTM_POP = WM_USER + 28;
constexpr UINT TTM_GETTITLE = WM_USER + 35;
constexpr UINT TTM_DELTOOLW = WM_USER + 51;
constexpr UINT TTM_GETTOOLINFOW = WM_USER + 53;
constexpr UINT TTM_UPDATETIPTEXTW = WM_USER + 57;
constexpr UINT TTM_GETCURRENTTOOLW = WM_USER + 59;
// TTM_SETDELAYTIME and TTM_GETDELAYTIME: which delay.
constexpr WPARAM TTDT_AUTOMATIC = 0;
constexpr WPARAM TTDT_RESHOW = 1;
constexpr WPARAM TTDT_AUTOPOP = 2;
constexpr WPARAM TTDT_INITIAL = 3;
// TTM_SETTITLE icons.
constexpr WPARAM TTI_NONE = 0;
constexpr WPARAM TTI_INFO = 1;
constexpr WPARAM TTI_WARNING = 2;
constexpr WPARAM TTI_ERROR = 3;
// The system class, known without registration.
inline constexpr char TOOLTIPS_CLASSA[] = "tooltips_class32";
inline constexpr char16_t TOOLTIPS_CLASSW[] = u"tooltips_class32";

// ---------------------------------------------------------------- records
struct WNDCLASSEXW {
  UINT cbSize;
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HICON hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;
  LPCWSTR lpszMenuName;
  LPCWSTR lpszClassName;
  HICON hIconSm;
};

struct WNDCLASSEXA {
  UINT cbSize;
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HICON hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;
  LPCSTR lpszMenuName;
  LPCSTR lpszClassName;
  HICON hIconSm;
};

struct WNDCLASSW {
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HICON hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;
  LPCWSTR lpszMenuName;
  LPCWSTR lpszClassName;
};

struct WNDCLASSA {
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HICON hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;
  LPCSTR lpszMenuName;
  LPCSTR lpszClassName;
};

struct CREATESTRUCTW {
  LPVOID lpCreateParams;
  HINSTANCE hInstance;
  HMENU hMenu;
  HWND hwndParent;
  int cy;
  int cx;
  int y;
  int x;
  LONG style;
  LPCWSTR lpszName;
  LPCWSTR lpszClass;
  DWORD dwExStyle;
};

struct CREATESTRUCTA {
  LPVOID lpCreateParams;
  HINSTANCE hInstance;
  HMENU hMenu;
  HWND hwndParent;
  int cy;
  int cx;
  int y;
  int x;
  LONG style;
  LPCSTR lpszName;
  LPCSTR lpszClass;
  DWORD dwExStyle;
};

struct MSG {
  HWND hwnd;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
  DWORD time;
  POINT pt;
};
typedef MSG* LPMSG;

struct PAINTSTRUCT {
  HDC hdc;
  BOOL fErase;
  RECT rcPaint;
  BOOL fRestore;
  BOOL fIncUpdate;
  BYTE rgbReserved[32];
};

struct TRACKMOUSEEVENT {
  DWORD cbSize;
  DWORD dwFlags;
  HWND hwndTrack;
  DWORD dwHoverTime;
};

struct MINMAXINFO {
  POINT ptReserved;
  POINT ptMaxSize;
  POINT ptMaxPosition;
  POINT ptMinTrackSize;
  POINT ptMaxTrackSize;
};

struct WINDOWPOS {
  HWND hwnd;
  HWND hwndInsertAfter;
  int x;
  int y;
  int cx;
  int cy;
  UINT flags;
};

struct NCCALCSIZE_PARAMS {
  RECT rgrc[3];
  WINDOWPOS* lppos;
};

struct STYLESTRUCT {
  DWORD styleOld;
  DWORD styleNew;
};

struct TOOLINFOW {
  UINT cbSize;
  UINT uFlags;
  HWND hwnd;
  UINT_PTR uId;
  RECT rect;
  HINSTANCE hinst;
  LPWSTR lpszText;
  LPARAM lParam;
  void* lpReserved;
};

struct TOOLINFOA {
  UINT cbSize;
  UINT uFlags;
  HWND hwnd;
  UINT_PTR uId;
  RECT rect;
  HINSTANCE hinst;
  LPSTR lpszText;
  LPARAM lParam;
  void* lpReserved;
};

// The first form of the records ends with the text: 44 bytes where pointers
// have 32 bits. The tip window takes no smaller record.
constexpr UINT TTTOOLINFOA_V1_SIZE = static_cast<UINT>(offsetof(TOOLINFOA, lParam));
constexpr UINT TTTOOLINFOW_V1_SIZE = static_cast<UINT>(offsetof(TOOLINFOW, lParam));

// TTM_GETTITLE.
struct TTGETTITLE {
  DWORD dwSize;
  UINT uTitleBitmap;
  UINT cch;
  WCHAR* pszTitle;
};

// ---------------------------------------------------------------- classes
ATOM RegisterClassExW(const WNDCLASSEXW* wc);
ATOM RegisterClassExA(const WNDCLASSEXA* wc);
ATOM RegisterClassW(const WNDCLASSW* wc);
ATOM RegisterClassA(const WNDCLASSA* wc);
BOOL UnregisterClassW(LPCWSTR class_name, HINSTANCE instance);
BOOL UnregisterClassA(LPCSTR class_name, HINSTANCE instance);
BOOL GetClassInfoExW(HINSTANCE instance, LPCWSTR class_name, WNDCLASSEXW* out);
int GetClassNameW(HWND hwnd, LPWSTR buffer, int max_count);
int GetClassNameA(HWND hwnd, LPSTR buffer, int max_count);
ULONG_PTR GetClassLongPtrW(HWND hwnd, int index);
ULONG_PTR SetClassLongPtrW(HWND hwnd, int index, LONG_PTR value);

// ---------------------------------------------------------------- windows
HWND CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR window_name, DWORD style, int x,
                     int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                     LPVOID param);
HWND CreateWindowExA(DWORD ex_style, LPCSTR class_name, LPCSTR window_name, DWORD style, int x,
                     int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                     LPVOID param);
BOOL DestroyWindow(HWND hwnd);
BOOL IsWindow(HWND hwnd);
BOOL IsWindowVisible(HWND hwnd);
BOOL IsWindowEnabled(HWND hwnd);
BOOL EnableWindow(HWND hwnd, BOOL enable);
BOOL IsWindowUnicode(HWND hwnd);
BOOL IsChild(HWND parent, HWND hwnd);
BOOL IsIconic(HWND hwnd);
BOOL IsZoomed(HWND hwnd);
HWND GetParent(HWND hwnd);
HWND SetParent(HWND child, HWND new_parent);
HWND GetWindow(HWND hwnd, UINT cmd);
HWND GetTopWindow(HWND hwnd);
HWND GetAncestor(HWND hwnd, UINT flags);
HWND GetDesktopWindow();
typedef BOOL(CALLBACK* WNDENUMPROC)(HWND, LPARAM);
// Top-level windows in z-order; the callback stops the walk with FALSE.
BOOL EnumWindows(WNDENUMPROC proc, LPARAM lparam);
// Every descendant, each child followed by its own children.
BOOL EnumChildWindows(HWND parent, WNDENUMPROC proc, LPARAM lparam);
HWND GetDlgItem(HWND parent, int id);
int GetDlgCtrlID(HWND hwnd);
BOOL ShowWindow(HWND hwnd, int cmd);
BOOL MoveWindow(HWND hwnd, int x, int y, int width, int height, BOOL repaint);
BOOL SetWindowPos(HWND hwnd, HWND insert_after, int x, int y, int cx, int cy, UINT flags);
BOOL GetClientRect(HWND hwnd, LPRECT rect);
BOOL GetWindowRect(HWND hwnd, LPRECT rect);
BOOL ClientToScreen(HWND hwnd, LPPOINT point);
BOOL ScreenToClient(HWND hwnd, LPPOINT point);
int MapWindowPoints(HWND from, HWND to, LPPOINT points, UINT count);
HWND WindowFromPoint(POINT point);
HWND ChildWindowFromPoint(HWND parent, POINT point);
BOOL SetWindowTextW(HWND hwnd, LPCWSTR text);
BOOL SetWindowTextA(HWND hwnd, LPCSTR text);
int GetWindowTextW(HWND hwnd, LPWSTR buffer, int max_count);
int GetWindowTextA(HWND hwnd, LPSTR buffer, int max_count);
int GetWindowTextLengthW(HWND hwnd);
int GetWindowTextLengthA(HWND hwnd);
// A procedure does not fit in 32 bits here: GWL_WNDPROC through the 32-bit
// functions gives a handle value that CallWindowProc and SetWindowLong take
// back, as the platform does for a procedure of the other text form.
LONG GetWindowLongW(HWND hwnd, int index);
LONG GetWindowLongA(HWND hwnd, int index);
LONG SetWindowLongW(HWND hwnd, int index, LONG value);
LONG SetWindowLongA(HWND hwnd, int index, LONG value);
LONG_PTR GetWindowLongPtrW(HWND hwnd, int index);
LONG_PTR GetWindowLongPtrA(HWND hwnd, int index);
LONG_PTR SetWindowLongPtrW(HWND hwnd, int index, LONG_PTR value);
LONG_PTR SetWindowLongPtrA(HWND hwnd, int index, LONG_PTR value);
BOOL SetPropW(HWND hwnd, LPCWSTR name, HANDLE data);
HANDLE GetPropW(HWND hwnd, LPCWSTR name);
HANDLE RemovePropW(HWND hwnd, LPCWSTR name);
DWORD GetWindowThreadProcessId(HWND hwnd, DWORD* process_id);
DWORD GetCurrentProcessId();
DWORD GetCurrentThreadId();
HMODULE GetModuleHandleW(LPCWSTR name);
HMODULE GetModuleHandleA(LPCSTR name);
DWORD GetLastError();
void SetLastError(DWORD error);

// ---------------------------------------------------------------- messages
LRESULT DefWindowProcW(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam);
LRESULT DefWindowProcA(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam);
LRESULT CallWindowProcW(WNDPROC proc, HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam);
LRESULT CallWindowProcA(WNDPROC proc, HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam);
LRESULT SendMessageW(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam);
LRESULT SendMessageA(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam);
BOOL PostMessageW(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam);
BOOL PostMessageA(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam);
void PostQuitMessage(int exit_code);
// Headless, a GetMessage that would wait for ever (no message, paint, timer
// or presenter input can come) returns 0 as if WM_QUIT had arrived, so that
// message loops end instead of hanging.
BOOL GetMessageW(LPMSG msg, HWND hwnd, UINT filter_min, UINT filter_max);
BOOL GetMessageA(LPMSG msg, HWND hwnd, UINT filter_min, UINT filter_max);
BOOL PeekMessageW(LPMSG msg, HWND hwnd, UINT filter_min, UINT filter_max, UINT remove);
BOOL PeekMessageA(LPMSG msg, HWND hwnd, UINT filter_min, UINT filter_max, UINT remove);
BOOL TranslateMessage(const MSG* msg);
LRESULT DispatchMessageW(const MSG* msg);
LRESULT DispatchMessageA(const MSG* msg);
LONG GetMessageTime();
DWORD GetMessagePos();

// ---------------------------------------------------------------- painting
BOOL InvalidateRect(HWND hwnd, const RECT* rect, BOOL erase);
BOOL InvalidateRgn(HWND hwnd, HRGN region, BOOL erase);
BOOL ValidateRect(HWND hwnd, const RECT* rect);
BOOL ValidateRgn(HWND hwnd, HRGN region);
BOOL UpdateWindow(HWND hwnd);
BOOL RedrawWindow(HWND hwnd, const RECT* rect, HRGN region, UINT flags);
BOOL GetUpdateRect(HWND hwnd, LPRECT rect, BOOL erase);
int GetUpdateRgn(HWND hwnd, HRGN region, BOOL erase);
HDC BeginPaint(HWND hwnd, PAINTSTRUCT* paint);
BOOL EndPaint(HWND hwnd, const PAINTSTRUCT* paint);
HDC GetDC(HWND hwnd);
HDC GetWindowDC(HWND hwnd);
int ReleaseDC(HWND hwnd, HDC dc);
HWND WindowFromDC(HDC dc);
// The window takes the region (window coordinates) and deletes it when done;
// null removes the region.
int SetWindowRgn(HWND hwnd, HRGN region, BOOL redraw);
int GetWindowRgn(HWND hwnd, HRGN region);
BOOL SetLayeredWindowAttributes(HWND hwnd, COLORREF key, BYTE alpha, DWORD flags);
BOOL GetLayeredWindowAttributes(HWND hwnd, COLORREF* key, BYTE* alpha, DWORD* flags);
BOOL FlashWindow(HWND hwnd, BOOL invert);
BOOL MessageBeep(UINT type);

// ---------------------------------------------------------------- timers
UINT_PTR SetTimer(HWND hwnd, UINT_PTR id, UINT elapse, TIMERPROC proc);
BOOL KillTimer(HWND hwnd, UINT_PTR id);
DWORD GetTickCount();
DWORD timeGetTime();
void Sleep(DWORD milliseconds);

// ---------------------------------------------------------------- input
HWND SetCapture(HWND hwnd);
BOOL ReleaseCapture();
HWND GetCapture();
HWND SetFocus(HWND hwnd);
HWND GetFocus();
HWND GetActiveWindow();
HWND SetActiveWindow(HWND hwnd);
BOOL SetForegroundWindow(HWND hwnd);
HWND GetForegroundWindow();
BOOL TrackMouseEvent(TRACKMOUSEEVENT* track);
HCURSOR SetCursor(HCURSOR cursor);
HCURSOR GetCursor();
HCURSOR LoadCursorW(HINSTANCE instance, LPCWSTR name);
HCURSOR LoadCursorA(HINSTANCE instance, LPCSTR name);
BOOL GetCursorPos(LPPOINT point);
BOOL SetCursorPos(int x, int y);
SHORT GetAsyncKeyState(int vkey);
SHORT GetKeyState(int vkey);
void keybd_event(BYTE vkey, BYTE scan, DWORD flags, ULONG_PTR extra);
UINT GetDoubleClickTime();

// ---------------------------------------------------------------- system
int GetSystemMetrics(int index);
BOOL SystemParametersInfoW(UINT action, UINT uparam, LPVOID pvparam, UINT winini);
BOOL SystemParametersInfoA(UINT action, UINT uparam, LPVOID pvparam, UINT winini);
// The Windows 10 default scheme; see User.cpp for the table.
DWORD GetSysColor(int index);
HRESULT OleTranslateColor(OLE_COLOR color, HPALETTE palette, COLORREF* out);

// ---------------------------------------------------------------- clipboard
BOOL OpenClipboard(HWND owner);
BOOL CloseClipboard();
BOOL EmptyClipboard();
HANDLE SetClipboardData(UINT format, HANDLE data);
HANDLE GetClipboardData(UINT format);
BOOL IsClipboardFormatAvailable(UINT format);
HGLOBAL GlobalAlloc(UINT flags, size_t bytes);
LPVOID GlobalLock(HGLOBAL memory);
BOOL GlobalUnlock(HGLOBAL memory);
HGLOBAL GlobalFree(HGLOBAL memory);
size_t GlobalSize(HGLOBAL memory);
