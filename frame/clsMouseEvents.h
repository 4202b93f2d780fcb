#pragma once
// The hover tracker every control attaches to its window at run time: it
// asks the platform to report when the mouse leaves, turns the window's mouse
// messages into MouseIn and MouseOut, and passes on moves, wheels, scroll
// messages and the back and forward buttons as events. It listens through a
// message bridge before the window's own procedure, which still gets every
// message except the leave notice and the cursor question it answers itself.
#include <cstdint>
#include <memory>

#include "platform/User.h"
#include "plumbing/cSubClassEx.h"
#include "server/Dispatch.h"
#include "server/Event.h"

namespace vantor::frame {

class clsMouseEvents : public server::Dispatch {
 public:
  clsMouseEvents();
  ~clsMouseEvents() override;
  clsMouseEvents(const clsMouseEvents&) = delete;
  clsMouseEvents& operator=(const clsMouseEvents&) = delete;

  static void Register();

  // Tracks the window (a handle as the host keeps it, in a Long); 0 only
  // ends the tracking of the window attached before.
  void Attach(int32_t Target_hWnd);

  // The standard cursor (IDC_HAND's 32649...) the window shows while the
  // mouse is over it; 0 leaves the cursor to the window.
  int32_t CursorId() const { return cursorId_; }
  void SetCursorId(int32_t id) { cursorId_ = id; }
  HWND TrackedWindow() const { return hWnd_; }

  server::Event<> MouseOut{*this, "MouseOut"};
  server::Event<> MouseIn{*this, "MouseIn"};
  server::Event<int32_t, int32_t> MouseWheel{*this, "MouseWheel"};
  server::Event<int32_t, int32_t> MouseVScrollEx{*this, "MouseVScrollEx"};
  server::Event<int32_t, int32_t> MouseHScrollEx{*this, "MouseHScrollEx"};
  // wParam, lParam, Button, Shift, X, Y.
  server::Event<int32_t, int32_t, int32_t, int32_t, int32_t, int32_t> MouseMove{*this, "MouseMove"};
  // Shift, X, Y.
  server::Event<int32_t, int32_t, int32_t> MouseBackButtonClick{*this, "MouseBackButtonClick"};
  server::Event<int32_t, int32_t, int32_t> MouseForwardButtonClick{*this,
                                                                   "MouseForwardButtonClick"};

 protected:
  const server::Bindings* Bound() const override;

 private:
  struct Mouse {
    int32_t button, shift, x, y;
  };
  static Mouse Decode(WPARAM wParam, LPARAM lParam);

  void Detach();
  void WndProc(bool& bHandled, LRESULT& lReturn, UINT uMsg, WPARAM wParam, LPARAM lParam);

  HWND hWnd_ = nullptr;
  TRACKMOUSEEVENT track_{};
  bool trackingRequested_ = false;
  bool outside_ = false;
  int32_t cursorId_ = 0;
  std::unique_ptr<plumbing::cSubClassEx> magic_;
};

}  // namespace vantor::frame
