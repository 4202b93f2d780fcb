// Bytes drive a session of windows and input: windows made, moved, hidden,
// destroyed, given regions and subclassed; mouse, wheel and keys injected;
// the clock advanced and the queue pumped. No sequence may crash or hang,
// and the state must stay whole: capture, focus and the active window are
// live windows or none, and the focus lies inside the active window.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/Gdi.h"
#include "platform/Input.h"
#include "platform/User.h"

namespace {

struct Reader {
  const uint8_t* data;
  size_t size;
  int Take(int range) {
    if (size == 0 || range <= 0) return 0;
    uint16_t v = data[0];
    if (size > 1) v = static_cast<uint16_t>(v | (data[1] << 8));
    const size_t n = size > 1 ? 2 : 1;
    data += n;
    size -= n;
    return v % range;
  }
};

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

LRESULT CALLBACK Proc(HWND h, UINT m, WPARAM w, LPARAM l) {
  // Procedures that destroy, capture and pump from inside their messages.
  if (m == WM_USER) {
    if (w == 1) DestroyWindow(h);
    if (w == 2) SetCapture(h);
    if (w == 3) {
      MSG msg;
      while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&msg);
    }
  }
  if (m == WM_PAINT) {
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(h, &ps);
    FillRect(dc, &ps.rcPaint, static_cast<HBRUSH>(GetStockObject(GRAY_BRUSH)));
    EndPaint(h, &ps);
    return 0;
  }
  return DefWindowProcW(h, m, w, l);
}

void Setup() {
  vantor::platform::ResetDesktop();
  vantor::platform::Clock::SetManual(true);
  WNDCLASSEXW wc{};
  wc.cbSize = sizeof wc;
  wc.style = CS_DBLCLKS;
  wc.lpfnWndProc = Proc;
  wc.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<intptr_t>(COLOR_WINDOW + 1));
  wc.lpszClassName = u"Fuzzed";
  RegisterClassExW(&wc);
}

void CheckState() {
  const HWND capture = GetCapture();
  const HWND focus = GetFocus();
  const HWND active = GetActiveWindow();
  Check(capture == nullptr || IsWindow(capture));
  Check(focus == nullptr || IsWindow(focus));
  Check(active == nullptr || IsWindow(active));
  Check(focus == nullptr || focus == active || IsChild(active, focus));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Setup();
  Reader in{data, size};
  std::vector<HWND> windows{nullptr};
  while (in.size > 0) {
    HWND h = windows[static_cast<size_t>(in.Take(static_cast<int>(windows.size())))];
    const int x = in.Take(1600) - 200;
    const int y = in.Take(1000) - 200;
    switch (in.Take(14)) {
      case 0:
        windows.push_back(
            CreateWindowExW(static_cast<DWORD>(in.Take(2)) * WS_EX_TOPMOST, u"Fuzzed", u"w",
                            WS_POPUP | WS_VISIBLE | (in.Take(2) ? WS_CAPTION | WS_THICKFRAME : 0),
                            x, y, in.Take(500), in.Take(500), nullptr, nullptr, nullptr, nullptr));
        break;
      case 1:
        windows.push_back(CreateWindowExW(
            0, u"Fuzzed", u"c",
            WS_CHILD | WS_VISIBLE | (in.Take(2) ? WS_CLIPSIBLINGS | WS_CLIPCHILDREN : 0), x / 4,
            y / 4, in.Take(300), in.Take(300), h, nullptr, nullptr, nullptr));
        break;
      case 2:
        DestroyWindow(h);
        break;
      case 3:
        SetWindowPos(h, in.Take(2) ? HWND_TOP : HWND_NOTOPMOST, x, y, in.Take(400), in.Take(400),
                     static_cast<UINT>(in.Take(0x100)));
        break;
      case 4:
        ShowWindow(h, in.Take(12));
        break;
      case 5:
        SendMessageW(h, WM_USER, static_cast<WPARAM>(in.Take(4)), 0);
        break;
      case 6:
        vantor::platform::InjectMouseMove(x, y);
        break;
      case 7:
        vantor::platform::InjectMouseButton(static_cast<vantor::platform::MouseButton>(in.Take(5)),
                                            in.Take(2) != 0);
        break;
      case 8:
        vantor::platform::InjectKey(in.Take(256), in.Take(2) != 0);
        break;
      case 9:
        vantor::platform::Clock::Advance(static_cast<DWORD>(in.Take(1000)));
        break;
      case 10: {
        TRACKMOUSEEVENT t{sizeof t, static_cast<DWORD>(in.Take(4)), h, HOVER_DEFAULT};
        TrackMouseEvent(&t);
        break;
      }
      case 11:
        SetWindowRgn(h, CreateRoundRectRgn(0, 0, x, y, in.Take(20), in.Take(20)), TRUE);
        break;
      case 12:
        SetFocus(h);
        break;
      default:
        vantor::platform::RunUntilIdle();
        break;
    }
    CheckState();
  }
  vantor::platform::RunUntilIdle();
  CheckState();
  vantor::platform::ResetDesktop();
  return 0;
}
