#include "plumbing/CTooltip.h"

namespace vantor::plumbing {

namespace {

// Colours may name a system colour; the tip wants the colour itself.
COLORREF Translate(OLE_COLOR color) {
  COLORREF out = 0;
  return OleTranslateColor(color, nullptr, &out) == S_OK ? out : color;
}

}  // namespace

CTooltip::~CTooltip() {
  Destroy();
}

void CTooltip::Create(HWND ParentHwnd) {
  if (hwnd_ != nullptr) {
    DestroyWindow(hwnd_);
    hwnd_ = nullptr;
  }
  // A control whose icon is "none" shows no tip at all, however its text is set.
  if (icon_ == TTNoIcon) return;
  parent_ = ParentHwnd;
  DWORD style = TTS_ALWAYSTIP | TTS_NOPREFIX;
  if (style_ == ToolTip_Balloon) style |= TTS_BALLOON;
  const HINSTANCE instance = GetModuleHandleW(nullptr);
  hwnd_ = CreateWindowExA(0, TOOLTIPS_CLASSA, nullptr, style, CW_USEDEFAULT, CW_USEDEFAULT,
                          CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, instance, nullptr);

  tipAnsi_ = ToAnsi(tipText_);
  titleAnsi_ = ToAnsi(title_);
  ti_ = TOOLINFOA{};
  ti_.cbSize = TTTOOLINFOA_V1_SIZE;
  ti_.uFlags = TTF_SUBCLASS | TTF_IDISHWND | (centered_ ? TTF_CENTERTIP : 0u);
  ti_.hwnd = parent_;
  ti_.uId = reinterpret_cast<UINT_PTR>(parent_);
  ti_.hinst = instance;
  ti_.lpszText = tipAnsi_.data();

  SendMessageA(hwnd_, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&ti_));
  SendMessageA(hwnd_, TTM_SETTITLEA, static_cast<WPARAM>(icon_),
               reinterpret_cast<LPARAM>(titleAnsi_.c_str()));
  SendMessageA(hwnd_, TTM_SETTIPTEXTCOLOR, Translate(foreColor_), 0);
  SendMessageA(hwnd_, TTM_SETTIPBKCOLOR, Translate(backColor_), 0);
  SendMessageA(hwnd_, TTM_SETDELAYTIME, TTDT_AUTOPOP, visibleTime_);
  SendMessageA(hwnd_, TTM_SETDELAYTIME, TTDT_INITIAL, delayTime_);
}

void CTooltip::Destroy() {
  if (hwnd_ == nullptr) return;
  DestroyWindow(hwnd_);
  hwnd_ = nullptr;
}

}  // namespace vantor::plumbing
