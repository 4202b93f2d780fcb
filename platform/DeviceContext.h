#pragma once
// The state behind an HDC: where it draws (a surface and the position of the
// device origin on it), what it may touch (the system clip of its window and
// the clip its user selected), the selected objects and the drawing modes.
// Memory DCs draw on their selected bitmap; window DCs draw on their top-level
// window's surface and are made by the window code with CreateSurfaceDC.
//
// Coordinates: logical (what the API takes) + viewport origin = device;
// device + origin = surface. SelectClipRgn regions are in device coordinates,
// the system clip and Clip() in surface coordinates.
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/GdiObject.h"
#include "platform/Region.h"
#include "platform/Surface.h"
#include "platform/WinTypes.h"

namespace vantor::platform {

class DeviceContext : public GdiObject {
 public:
  // OBJ_MEMDC for CreateCompatibleDC, OBJ_DC for window DCs.
  explicit DeviceContext(DWORD type);
  // Releases the selections of the selected objects.
  ~DeviceContext() override;
  DeviceContext(const DeviceContext&) = delete;
  DeviceContext& operator=(const DeviceContext&) = delete;

  // The state SaveDC keeps and RestoreDC brings back.
  struct State {
    HPEN pen = nullptr;
    HBRUSH brush = nullptr;
    HFONT font = nullptr;
    HBITMAP bitmap = nullptr;
    COLORREF text_color = 0x000000;
    COLORREF bk_color = 0xFFFFFF;
    int bk_mode = 2;       // OPAQUE
    int stretch_mode = 1;  // BLACKONWHITE
    int rop2 = 13;         // R2_COPYPEN
    UINT text_align = 0;   // TA_LEFT | TA_TOP | TA_NOUPDATECP
    int char_extra = 0;
    POINT position{0, 0};  // MoveToEx, logical
    POINT viewport_org{0, 0};
    POINT brush_org{0, 0};
    bool has_user_clip = false;
    Region user_clip;  // device coordinates, when has_user_clip
  };

  // Where device (0,0) falls on the surface.
  POINT origin{0, 0};
  HWND owner = nullptr;
  State state;

  const Surface& Target() const { return surface_; }
  // Sets the surface; for memory DCs the system clip becomes its bounds.
  void SetTarget(const Surface& surface);
  const Region& SystemClip() const { return system_clip_; }
  void SetSystemClip(const Region& visible);
  // The user clip (device coordinates), or nullptr when none is selected.
  const Region* UserClip() const { return state.has_user_clip ? &state.user_clip : nullptr; }
  void SetUserClip(const Region* device_region);
  // Where drawing may land, in surface coordinates: the system clip, the
  // surface bounds and the user clip intersected.
  const Region& Clip() const;
  // Must be called after changing origin or the state's clip fields directly.
  void ClipChanged() { clip_valid_ = false; }

  // Logical to surface.
  LONG SurfaceX(LONG x) const { return x + state.viewport_org.x + origin.x; }
  LONG SurfaceY(LONG y) const { return y + state.viewport_org.y + origin.y; }
  RECT SurfaceRect(const RECT& logical) const;

  // Selects a handle of the given kind, keeping the selection counts right;
  // returns the previous handle.
  HGDIOBJ Select(HGDIOBJ object, DWORD type);

  std::vector<State> saved;  // SaveDC stack

 private:
  Surface surface_;
  Region system_clip_;
  mutable Region clip_;
  mutable bool clip_valid_ = false;
};

// The DC behind a handle (window or memory DC), or nullptr.
DeviceContext* DcFromHandle(HDC dc);

// A DC drawing on someone else's surface, as GetDC and BeginPaint give: device
// (0,0) is at `origin` on the surface, and nothing outside `visible` (surface
// coordinates) is touched. The surface must outlive the DC; DeleteDC frees it.
HDC CreateSurfaceDC(const Surface& surface, POINT origin, const Region& visible, HWND owner);

// Blends an 8-bit coverage mask (0 = nothing, 255 = full colour) in `color`
// at logical (x, y) through the DC's clip; glyphs are drawn with it. The alpha
// byte of touched pixels becomes 0, as GDI's text output leaves it.
void BlendMask(DeviceContext& dc, int x, int y, const uint8_t* coverage, int width, int height,
               int pitch, COLORREF color);

// Fills a logical rectangle with a solid colour through the clip (opaque
// text backgrounds, underlines).
void FillSolidRect(DeviceContext& dc, const RECT& logical, COLORREF color);

// The font machinery lives with the text code. It provides these two; until
// it does, the library's weak fallbacks return nullptr and 0.
// A stock font object for SYSTEM_FONT, DEFAULT_GUI_FONT and the other stock
// font ids (the object must have type OBJ_FONT).
std::shared_ptr<GdiObject> MakeStockFont(int stock_id);
// GetObjectW/A of a font: copies a LOGFONTW (wide) or LOGFONTA into `out`
// (up to `size` bytes) or, when `out` is null, returns the size needed.
int GetFontObject(GdiObject& font, int size, void* out, bool wide);

}  // namespace vantor::platform
