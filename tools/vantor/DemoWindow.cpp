#include "tools/vantor/DemoWindow.h"

#include "platform/Gdi.h"
#include "platform/HeadlessPresenter.h"
#include "platform/Text.h"
#include "platform/User.h"
#include "runtime/Conversion.h"
#include "runtime/DateTime.h"
#include "runtime/Format.h"

namespace vantor::tools {

namespace {

constexpr int kWidth = 360;
constexpr int kHeight = 170;
const RECT kButton{200, 110, 330, 142};
int g_clicks = 0;

void Fill(HDC dc, const RECT& r, COLORREF top, COLORREF bottom) {
  TRIVERTEX v[2] = {
      {r.left, r.top, static_cast<COLOR16>(GetRValue(top) << 8),
       static_cast<COLOR16>(GetGValue(top) << 8), static_cast<COLOR16>(GetBValue(top) << 8), 0},
      {r.right, r.bottom, static_cast<COLOR16>(GetRValue(bottom) << 8),
       static_cast<COLOR16>(GetGValue(bottom) << 8), static_cast<COLOR16>(GetBValue(bottom) << 8),
       0}};
  GRADIENT_RECT g{0, 1};
  GradientFill(dc, v, 2, &g, 1, GRADIENT_FILL_RECT_V);
}

void Paint(HWND hwnd) {
  PAINTSTRUCT ps;
  HDC dc = BeginPaint(hwnd, &ps);
  RECT client;
  GetClientRect(hwnd, &client);
  Fill(dc, client, RGB(255, 255, 255), RGB(222, 232, 245));

  LOGFONTW lf{};
  lf.lfHeight = -15;
  lf.lfWeight = FW_BOLD;
  const char16_t face[] = u"Segoe UI";
  for (size_t i = 0; i < sizeof face / sizeof face[0]; ++i) lf.lfFaceName[i] = face[i];
  HFONT title = CreateFontIndirectW(&lf);
  HGDIOBJ old = SelectObject(dc, title);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(31, 73, 125));
  RECT line{16, 12, kWidth - 16, 36};
  DrawTextW(dc, u"Vantor", -1, &line, DT_LEFT | DT_SINGLELINE | DT_VCENTER);
  SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
  DeleteObject(title);

  // What the run time gives a Brazilian form.
  SetTextColor(dc, RGB(0, 0, 0));
  const String lines[] = {
      u"Total: " + Format(1234567.891, u"#,##0.00"),
      u"Hoje: " + Format(Variant(Today()), u"dddddd"),
      u"Semana do ano: " + Format(Variant(Today()), u"ww"),
  };
  int y = 44;
  for (const String& text : lines) {
    RECT r{16, y, kWidth - 16, y + 18};
    DrawTextW(dc, text.c_str(), -1, &r, DT_LEFT | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
    y += 18;
  }

  // A button in the library's look: a soft gradient inside a rounded border.
  HRGN shape =
      CreateRoundRectRgn(kButton.left, kButton.top, kButton.right + 1, kButton.bottom + 1, 3, 3);
  SelectClipRgn(dc, shape);
  Fill(dc, kButton, g_clicks ? RGB(255, 232, 166) : RGB(250, 250, 250),
       g_clicks ? RGB(255, 200, 80) : RGB(220, 228, 238));
  SelectClipRgn(dc, nullptr);
  DeleteObject(shape);
  HPEN pen = CreatePen(PS_SOLID, 1, RGB(112, 146, 190));
  HGDIOBJ oldPen = SelectObject(dc, pen);
  HGDIOBJ oldBrush = SelectObject(dc, GetStockObject(NULL_BRUSH));
  RoundRect(dc, kButton.left, kButton.top, kButton.right, kButton.bottom, 3, 3);
  SelectObject(dc, oldBrush);
  SelectObject(dc, oldPen);
  DeleteObject(pen);
  RECT caption = kButton;
  const String text = g_clicks ? u"Clicado " + CStr(g_clicks) + u"x" : String(u"&Confirmar");
  DrawTextW(dc, text.c_str(), -1, &caption, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
  SelectObject(dc, old);
  EndPaint(hwnd, &ps);
}

LRESULT CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam) {
  switch (msg) {
    case WM_PAINT:
      Paint(hwnd);
      return 0;
    case WM_LBUTTONUP: {
      const POINT p{GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
      if (PtInRect(&kButton, p)) {
        ++g_clicks;
        InvalidateRect(hwnd, nullptr, FALSE);
      }
      return 0;
    }
    default:
      return DefWindowProcW(hwnd, msg, wparam, lparam);
  }
}

}  // namespace

bool SaveDemoScreenshot(const std::string& path) {
  platform::HeadlessPresenter screen(kWidth, kHeight);
  WNDCLASSEXW wc{};
  wc.cbSize = sizeof wc;
  wc.lpfnWndProc = Proc;
  wc.lpszClassName = u"VantorDemo";
  wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  RegisterClassExW(&wc);
  HWND hwnd = CreateWindowExW(0, u"VantorDemo", u"Vantor", WS_POPUP | WS_VISIBLE, 0, 0, kWidth,
                              kHeight, nullptr, nullptr, nullptr, nullptr);
  if (hwnd == nullptr) return false;
  screen.Pump();
  // A person clicks the button; the window answers by painting anew.
  screen.Click((kButton.left + kButton.right) / 2, (kButton.top + kButton.bottom) / 2);
  const bool saved = screen.SaveWindow(hwnd, path);
  DestroyWindow(hwnd);
  return saved;
}

}  // namespace vantor::tools
