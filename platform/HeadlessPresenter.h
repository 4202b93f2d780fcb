#pragma once
// A screen without a display: it composes the top-level windows, in z-order,
// onto one surface (window regions clip them, layered windows blend by their
// constant alpha or drop their colour key) and plays a user's input into USER
// through the input queue, pumping messages after each action, so that
// capture, focus, hover, leave and double clicks follow as they would for a
// person at the machine. Tests, the gallery and the command line use it; it
// is deterministic: it puts the clock in manual mode and moves it itself.
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "platform/Input.h"
#include "platform/Surface.h"
#include "platform/WinTypes.h"
#include "runtime/String.h"

namespace vantor::platform {

class HeadlessPresenter {
 public:
  // Sets USER's screen size (GetSystemMetrics follows it). Sizes outside
  // 1..16384 fall back to the default 1280x800.
  explicit HeadlessPresenter(int width = 1280, int height = 800);
  HeadlessPresenter(const HeadlessPresenter&) = delete;
  HeadlessPresenter& operator=(const HeadlessPresenter&) = delete;

  int Width() const { return width_; }
  int Height() const { return height_; }

  // The composed screen, composed again when any window changed. Pixels are
  // opaque (alpha 255).
  const Surface& Screen();
  // The colour of the screen where no window is (COLOR_DESKTOP).
  COLORREF DesktopColor() const;

  // Mouse, in screen coordinates. Each action pumps messages afterwards.
  void MoveTo(int x, int y);
  void Press(MouseButton button = MouseButton::Left);
  void Release(MouseButton button = MouseButton::Left);
  // Moves there, then presses and releases. A click never counts as the
  // second half of a double click: the clock is moved past the double-click
  // time first when the previous click was too recent.
  void Click(int x, int y, MouseButton button = MouseButton::Left);
  // Two clicks at the same place, 50 ms apart: well inside the double-click
  // time and rectangle.
  void DoubleClick(int x, int y, MouseButton button = MouseButton::Left);
  // Presses at one point, moves there in steps and releases: a drag.
  void Drag(int fromX, int fromY, int toX, int toY, MouseButton button = MouseButton::Left);
  // Notches of the wheel (positive away from the user) at the cursor.
  void Wheel(int notches, bool horizontal = false);

  // Keyboard. KeyChord presses the keys in order and releases them in the
  // opposite order (VK_CONTROL, 'C' is Ctrl+C).
  void KeyDown(int vkey);
  void KeyUp(int vkey);
  void Key(int vkey);
  void KeyChord(std::initializer_list<int> vkeys);
  // Types text as a keyboard would: letters, digits, blanks, Enter, Tab and
  // Backspace as keys (with Shift for capitals, so TranslateMessage makes
  // the characters); anything else arrives as an input method's character.
  void Type(const String& text);

  // Lets time pass: timers, hover and caret blinks fall due and are pumped.
  void Wait(DWORD milliseconds);
  // Delivers whatever is pending.
  int Pump();

  // PNG files (UTF-8 paths). A window is saved from its own pixels, whole
  // even where others cover it; a child window is cut out of its top-level's
  // pixels. False for a window that is not visible or a file that cannot be
  // written.
  bool SaveScreen(const std::string& path);
  bool SaveWindow(HWND hwnd, const std::string& path);
  // The pixels of a window as SaveWindow would write them (empty on failure),
  // for tests that look at pixels directly.
  Surface WindowPixels(HWND hwnd) const;

 private:
  void Compose();

  int width_;
  int height_;
  std::vector<uint32_t> pixels_;
  Surface screen_;
  uint64_t composed_generation_ = 0;
  bool composed_ = false;
  bool click_seen_ = false;
  DWORD last_click_ = 0;
};

}  // namespace vantor::platform
