#pragma once
// The base of every visual control: the surface a container gives a control.
// It owns the control's window and its retained picture (what the window
// shows; controls draw into hDC and call Refresh), turns the window's
// messages into the container events a control handles (Resize, GotFocus,
// KeyDown, MouseDown, Click...), and carries the container surface's own
// properties (Enabled, MousePointer, MouseIcon, AccessKeys).
//
// The container drives the life of a control through the public "container
// side" calls: Create (Initialize), then InitNew (InitProperties) or Load
// (ReadProperties), Save (WriteProperties), Show, and Close (Terminate).
//
// Every container event runs in the library's skip-and-continue mode: an
// exception inside a handler ends that handler only, and the error object is
// clear afterwards, so nothing a control does reaches its container.
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/User.h"
#include "platform/WinTypes.h"
#include "server/ControlSite.h"
#include "server/Dispatch.h"
#include "server/PropertyBag.h"
#include "server/StdPicture.h"

namespace vantor::server {

// MousePointer values the surface honours.
enum MousePointerConstants : int16_t {
  vbDefault = 0,
  vbArrow = 1,
  vbCrosshair = 2,
  vbIbeam = 3,
  vbSizeNESW = 6,
  vbSizeNS = 7,
  vbSizeNWSE = 8,
  vbSizeWE = 9,
  vbUpArrow = 10,
  vbHourglass = 11,
  vbNoDrop = 12,
  vbArrowHourglass = 13,
  vbArrowQuestion = 14,
  vbSizeAll = 15,
  vbCustom = 99,
};

class UserControl : public Dispatch {
 public:
  explicit UserControl(const ClassInfo& info);
  ~UserControl() override;
  UserControl(const UserControl&) = delete;
  UserControl& operator=(const UserControl&) = delete;

  // ---- the container's side
  // Makes the window as a child of `parent` at the given place in pixels,
  // hidden until the container shows it, and raises Initialize.
  bool Create(ControlSite* site, HWND parent, const RECT& pixels);
  void InitNew();
  // Raises ReadProperties; a bag without any key gives a new control's values.
  void Load(const PropertyBag& bag);
  void Save(PropertyBag& bag);
  void NotifyShow();
  void NotifyAmbientChanged(StringView name);
  void NotifyAccessKey(int16_t keyAscii);
  // Raises Terminate and destroys the window; the control is inert afterwards.
  void Close();
  bool IsCreated() const { return hwnd_ != nullptr; }

  // ---- the control's side: the container surface
  HWND hWnd() const { return hwnd_; }
  // The retained picture's device context; its size follows the window's.
  HDC hDC() const { return memDC_; }
  int ScaleWidth() const { return width_; }
  int ScaleHeight() const { return height_; }
  // Shows the retained picture in the window.
  void Refresh();

  bool SurfaceEnabled() const;
  void SetSurfaceEnabled(bool enabled);
  int16_t MousePointer() const { return mousePointer_; }
  void SetMousePointer(int16_t pointer);
  std::shared_ptr<StdPicture> MouseIcon() const { return mouseIcon_; }
  void SetMouseIcon(std::shared_ptr<StdPicture> icon);
  // The characters that, with Alt, reach this control as AccessKeyPress.
  const String& AccessKeys() const { return accessKeys_; }
  void SetAccessKeys(StringView keys);

  AmbientProperties Ambient() const;
  // The container's extender; nullptr while the control has no site.
  Extender* GetExtender() const;
  void PropertyChanged(StringView name);
  std::vector<ObjectPtr> ContainedControls() const;
  ControlSite* Site() const { return site_; }

  // How many times the container events of each kind ran; tests measure
  // painting and resizing with it.
  int PaintCount() const { return paints_; }

 protected:
  // ---- container events, each a no-op unless the control handles it
  virtual void Initialize() {}
  virtual void InitProperties() {}
  virtual void ReadProperties(const PropertyBag& bag) { (void)bag; }
  virtual void WriteProperties(PropertyBag& bag) { (void)bag; }
  virtual void Resize() {}
  virtual void Show() {}
  virtual void Paint() {}
  virtual void Terminate() {}
  virtual void GotFocus() {}
  virtual void LostFocus() {}
  virtual void KeyDown(int16_t& keyCode, int16_t& shift) { (void)keyCode, (void)shift; }
  virtual void KeyPress(int16_t& keyAscii) { (void)keyAscii; }
  virtual void KeyUp(int16_t& keyCode, int16_t& shift) { (void)keyCode, (void)shift; }
  virtual void MouseDown(int16_t button, int16_t shift, float x, float y) {
    (void)button, (void)shift, (void)x, (void)y;
  }
  virtual void MouseMove(int16_t button, int16_t shift, float x, float y) {
    (void)button, (void)shift, (void)x, (void)y;
  }
  virtual void MouseUp(int16_t button, int16_t shift, float x, float y) {
    (void)button, (void)shift, (void)x, (void)y;
  }
  virtual void Click() {}
  virtual void DblClick() {}
  virtual void AmbientChanged(const String& propertyName) { (void)propertyName; }
  virtual void AccessKeyPress(int16_t keyAscii) { (void)keyAscii; }

 private:
  static LRESULT CALLBACK WindowProc(HWND hwnd, UINT msg, WPARAM wparam, LPARAM lparam);
  LRESULT Handle(UINT msg, WPARAM wparam, LPARAM lparam);
  void Guarded(const std::function<void()>& handler);
  void ResizeSurface(int width, int height);
  void FreeSurface();
  // The first Resize, once InitProperties or ReadProperties has run.
  void FirstResize();
  void Mouse(UINT msg, WPARAM wparam, LPARAM lparam);
  bool SetPointer();

  ControlSite* site_ = nullptr;
  HWND hwnd_ = nullptr;
  HDC memDC_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ oldBitmap_ = nullptr;
  int width_ = 0;
  int height_ = 0;
  int16_t mousePointer_ = vbDefault;
  std::shared_ptr<StdPicture> mouseIcon_;
  String accessKeys_;
  int16_t buttonsDown_ = 0;  // mouse buttons pressed over this control, as Button bits
  int16_t clickButton_ = 0;  // the button whose release will be a Click
  bool shown_ = false;
  bool hasProperties_ = false;  // InitNew or Load has run
  bool tabTaken_ = false;   // the container took a Tab; its WM_CHAR is not ours
  int paints_ = 0;
};

}  // namespace vantor::server
