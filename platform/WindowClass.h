#pragma once
// A registered window class: what every window of the class starts with.
// Names compare without case, as the platform's class atoms do.
#include <memory>
#include <vector>

#include "platform/User.h"

namespace vantor::platform {

class WindowClass {
 public:
  String name;
  ATOM atom = 0;
  UINT style = 0;
  WNDPROC proc = nullptr;
  bool unicode = true;  // registered by a W function: its procedure takes wide text
  int class_extra = 0;
  int window_extra = 0;
  HINSTANCE instance = nullptr;
  HICON icon = nullptr;
  HCURSOR cursor = nullptr;
  HBRUSH background = nullptr;
  std::vector<uint8_t> extra_bytes;
  int windows = 0;  // live windows of the class; such a class can't be unregistered

  // Registers; 0 with the last error set when the name is taken or bad.
  static ATOM Register(std::shared_ptr<WindowClass> cls);
  // By name, or by atom when `name` is an integer resource (MAKEINTATOM).
  static std::shared_ptr<WindowClass> Find(LPCWSTR name);
  static bool Unregister(LPCWSTR name);
  static void UnregisterAll();
};

}  // namespace vantor::platform
