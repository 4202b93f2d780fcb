#pragma once
// What USER keeps for its one UI thread: the message queue, timers, the input
// devices' state, capture, focus and activation, mouse tracking, the screen.
// The User*.cpp files share it; nothing outside platform/ sees it.
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "platform/User.h"
#include "platform/Window.h"

namespace vantor::platform {

struct InputEvent {
  enum Kind { kMove, kButton, kWheel, kKey, kChar } kind = kMove;
  POINT point{};   // screen, at the time of the event
  int button = 0;  // 0 left, 1 right, 2 middle, 3 X1, 4 X2
  bool down = false;
  int delta = 0;
  bool horizontal = false;
  int vkey = 0;
  bool repeat = false;  // the key was already down
  char16_t ch = 0;
  DWORD time = 0;
};

struct Timer {
  HWND hwnd = nullptr;
  UINT_PTR id = 0;
  UINT elapse = 0;
  TIMERPROC proc = nullptr;
  DWORD due = 0;
};

class UserState {
 public:
  static UserState& Get();

  std::deque<MSG> posted;
  bool quit = false;
  int quit_code = 0;
  std::deque<InputEvent> input;
  std::vector<Timer> timers;
  UINT_PTR next_timer_id = 1;

  POINT cursor{};
  BYTE async_keys[256] = {};  // 0x80 down; 0x01 pressed since the last query
  BYTE keys[256] = {};        // 0x80 down, 0x01 toggled: as of the messages taken
  HWND capture = nullptr;
  HWND focus = nullptr;
  HWND active = nullptr;
  HCURSOR cursor_shape = nullptr;

  // TrackMouseEvent: one tracked window at a time, as on the platform.
  HWND track = nullptr;
  DWORD track_flags = 0;
  DWORD hover_time = 400;
  POINT hover_anchor{};
  DWORD hover_start = 0;

  // The window under the cursor and its hit-test code, as of the last
  // mouse event taken.
  HWND mouse_window = nullptr;
  LRESULT mouse_hit = 0;

  // The last button press, for double clicks.
  UINT last_press = 0;
  HWND last_press_window = nullptr;
  DWORD last_press_time = 0;
  POINT last_press_point{};
  bool last_press_fresh = false;

  DWORD message_time = 0;
  POINT message_point{};
  DWORD last_error = 0;

  SIZE screen{1280, 800};
  RECT work_area{0, 0, 1280, 760};
  uint64_t generation = 1;
  std::function<bool()> idle_hook;
};

// Sends to a window's current procedure, converting text between the wide
// and narrow forms when the procedure takes the other one.
LRESULT SendToWindow(Window& window, UINT msg, WPARAM wparam, LPARAM lparam, bool unicode);
// Calls a procedure (or procedure handle) with the message in the given form.
LRESULT CallProc(WNDPROC proc, bool proc_unicode, HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam,
                 bool msg_unicode);

// The pump: takes the next message that passes the filter, in the platform's
// order (posted, quit, input, paint, timer). False when there is none now.
bool NextMessage(MSG* out, HWND filter, UINT first, UINT last, bool remove, bool quit);

// Input (UserInput.cpp): turns one queued event into a message; false when
// the event produced none (eaten, or no window to take it).
bool TranslateInput(const InputEvent& event, MSG* out);
// Posts WM_MOUSEHOVER when a hover is due; true when it did.
bool CheckHover();
// Forgets a window that goes away: capture, focus, activation, tracking.
void ForgetWindow(HWND hwnd);

// Painting (UserPaint.cpp): a window whose WM_PAINT is due, parents first.
Window* NextPaintWindow(HWND filter);
void InvalidateWindow(Window& window, const Region* client_region, bool erase, bool children);
// The frame (caption, borders, edges) is repainted by WM_NCPAINT with the
// next paint: BeginPaint sends it first, as on the platform.
void InvalidateFrame(Window& window);
void PaintFrameIfDue(Window& window);
// The top-level's pixels may have changed.
void Touch();

// Timers (UserTimer.cpp).
bool NextTimer(MSG* out, HWND filter, bool remove);
void KillWindowTimers(HWND hwnd);
// The due time of the earliest timer or hover; false when none.
bool NextDue(DWORD* due);

bool MessageMatches(HWND hwnd, UINT msg, HWND filter, UINT first, UINT last);

}  // namespace vantor::platform

namespace vantor::platform {

// Procedures as Get/SetWindowLong see them: a procedure of the other text
// form, or any procedure through the 32-bit functions, is handed out as a
// small handle value that CallWindowProc and SetWindowLong recognise.
LONG_PTR ProcToValue(WNDPROC proc, bool proc_unicode, bool caller_unicode, bool narrow);
// False when `value` is neither a procedure nor a known handle.
bool ValueToProc(LONG_PTR value, bool caller_unicode, bool narrow, WNDPROC* proc,
                 bool* proc_unicode);

// Window DCs handed out (GetDC, GetWindowDC, BeginPaint) follow their
// window's geometry; they are dropped with the window.
void RefreshWindowDCs();
void DropWindowDCs(HWND hwnd);

// WM_GETMINMAXINFO, and the size kept within its tracking limits.
void ClampToTrackSize(Window& window, int* cx, int* cy);
bool NeedsMinMax(DWORD style);

// The non-client drag that DefWindowProc starts on a caption or border
// press; the input code moves or sizes the window until the button is up.
struct SizeMove {
  HWND hwnd = nullptr;
  LRESULT hit = 0;
  POINT start{};
  RECT rect{};
};
SizeMove& CurrentSizeMove();

// Empties the clipboard and frees global memory blocks (UserClipboard.cpp).
void ResetClipboard();

// Activation (UserInput.cpp).
void Activate(HWND hwnd, WORD how);
// After a top-level window goes away or hides: the next one to activate.
void ActivateNext(HWND leaving);
// The window under a screen point, by the platform's hit testing.
HWND HitTestPoint(POINT screen, LRESULT* hit, bool send);

}  // namespace vantor::platform
