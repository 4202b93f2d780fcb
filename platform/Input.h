#pragma once
// Input as it comes from a user's hands, for presenters and tests. Each call
// changes the device state at once (cursor position, GetAsyncKeyState) and
// queues the event; the message pump turns it into window messages the way
// the platform does: hit testing by WM_NCHITTEST, WM_SETCURSOR, capture, the
// mouse-activate and focus changes of a click, double clicks by time and
// distance for CS_DBLCLKS classes, hover and leave of TrackMouseEvent, keys
// to the focus window. Nothing is delivered until the queue is pumped
// (RunUntilIdle, GetMessage, PeekMessage).
#include <functional>

#include "platform/WinTypes.h"

namespace vantor::platform {

enum class MouseButton { Left, Right, Middle, X1, X2 };

// Screen coordinates. The cursor may leave the screen; it is kept in it, as
// the platform keeps it.
void InjectMouseMove(int x, int y);
// At the current cursor position.
void InjectMouseButton(MouseButton button, bool down);
// `delta` in WHEEL_DELTA units (120 a notch; positive is away from the user
// or to the right).
void InjectMouseWheel(int delta, bool horizontal = false);
// A key going down (repeats while held give repeat counts of 1 each) or up.
// With Alt held and Ctrl not, WM_SYSKEYDOWN/UP as on the platform.
// TranslateMessage makes the characters of the keys it knows.
void InjectKey(int vkey, bool down);
// A character as an input method delivers it: WM_CHAR to the focus window,
// with no key messages.
void InjectChar(char16_t ch);

// Delivers posted messages, input, paints and due timers until nothing is
// left; returns how many messages were dispatched. It never waits and never
// moves the clock.
int RunUntilIdle();

// Called by GetMessage when it would otherwise wait; returns true when it
// produced something (injected input, posted a message, advanced the clock).
// A presenter plays scripted input through it. Empty removes it.
void SetIdleHook(std::function<bool()> hook);

}  // namespace vantor::platform
