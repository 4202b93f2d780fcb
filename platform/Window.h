#pragma once
// The state behind an HWND. Windows form one tree under the desktop window;
// each one keeps its rectangles in its parent's client coordinates (top-level
// windows: screen coordinates) and its children top of the z-order first.
// A visible top-level window owns the pixels of its whole rectangle; window
// DCs of it and of its descendants draw there.
#include <memory>
#include <utility>
#include <vector>

#include "platform/Region.h"
#include "platform/Surface.h"
#include "platform/User.h"
#include "platform/WindowClass.h"

namespace vantor::platform {

class Window {
 public:
  HWND handle = nullptr;
  std::shared_ptr<WindowClass> cls;
  WNDPROC proc = nullptr;
  bool unicode = true;  // the current procedure takes wide text
  DWORD style = 0;
  DWORD ex_style = 0;
  LONG_PTR id = 0;
  LONG_PTR user_data = 0;
  HINSTANCE instance = nullptr;
  Window* parent = nullptr;  // the desktop for top-level windows; null only for the desktop
  HWND owner = nullptr;
  std::vector<std::shared_ptr<Window>> children;  // top of the z-order first
  RECT rect{};                                    // window rectangle, parent's client coordinates
  RECT client{};                                  // client rectangle, parent's client coordinates
  RECT normal{};                                  // the rectangle to go back to after a maximize
  bool has_normal = false;
  String text;
  std::vector<std::pair<String, HANDLE>> props;
  std::vector<uint8_t> extra;  // cbWndExtra bytes

  // Painting: the invalid part in client coordinates, and whether
  // BeginPaint must send WM_ERASEBKGND first.
  Region update;
  bool erase = false;
  bool internal_paint = false;
  bool frame_dirty = false;               // WM_NCPAINT is due with the next paint
  bool caption_active = false;            // as the last WM_NCACTIVATE said
  std::unique_ptr<Region> window_region;  // window coordinates

  bool layered_set = false;
  COLORREF color_key = 0;
  BYTE alpha = 255;
  DWORD layered_flags = 0;

  // The pixels of a top-level window.
  std::vector<uint32_t> pixels;
  Surface surface;

  bool destroying = false;
  bool created = false;  // WM_NCCREATE has been answered with TRUE

  bool HasFrame() const {
    return rect.left != client.left || rect.top != client.top || rect.right != client.right ||
           rect.bottom != client.bottom;
  }
  bool Visible() const { return (style & WS_VISIBLE) != 0; }
  bool IsChild() const { return (style & WS_CHILD) != 0; }
  bool IsTopLevel() const;
  Window* TopLevel();
  // Visible with all its ancestors.
  bool ReallyVisible() const;
  int Width() const { return rect.right - rect.left; }
  int Height() const { return rect.bottom - rect.top; }
  // The client origin on the screen, and the window's on the screen.
  POINT ClientOrigin() const;
  POINT WindowOrigin() const;
  RECT ScreenRect() const;
  RECT ScreenClient() const;
  // What a DC of this window may touch, in the top-level's surface
  // coordinates (the top-level's window origin is 0,0).
  Region VisibleRegion(bool client_area) const;
  // Keeps the top-level surface the size of the window rectangle.
  void SyncSurface();
  // Client coordinates of the window's non-client frame from its styles
  // (what WM_NCCALCSIZE answers by default).
  static RECT DefaultClient(const RECT& window, DWORD style, DWORD ex_style);

  // The handle table.
  static HWND Add(std::shared_ptr<Window> window);
  static Window* Get(HWND hwnd);
  static std::shared_ptr<Window> Share(HWND hwnd);
  static void Remove(HWND hwnd);
  static Window* Desktop();
  static size_t Count();
};

}  // namespace vantor::platform
