#include "platform/DeviceContext.h"

#include <algorithm>

#include "platform/Bitmap.h"
#include "platform/Raster.h"

namespace vantor::platform {

DeviceContext::DeviceContext(DWORD type) : GdiObject(type) {}

DeviceContext::~DeviceContext() {
  // Objects that are still selected become free to delete again; the saved
  // states hold no selections of their own.
  for (HGDIOBJ h : {static_cast<HGDIOBJ>(state.pen), static_cast<HGDIOBJ>(state.brush),
                    static_cast<HGDIOBJ>(state.font), static_cast<HGDIOBJ>(state.bitmap)}) {
    if (GdiObject* o = GdiTable::Get(h)) --o->selections;
  }
}

void DeviceContext::SetTarget(const Surface& surface) {
  surface_ = surface;
  if (Type() == OBJ_MEMDC) {
    system_clip_.SetRect(0, 0, surface.width, surface.height);
  }
  clip_valid_ = false;
}

void DeviceContext::SetSystemClip(const Region& visible) {
  system_clip_ = visible;
  clip_valid_ = false;
}

void DeviceContext::SetUserClip(const Region* device_region) {
  state.has_user_clip = device_region != nullptr;
  if (device_region != nullptr) {
    state.user_clip = *device_region;
  } else {
    state.user_clip.SetEmpty();
  }
  clip_valid_ = false;
}

const Region& DeviceContext::Clip() const {
  if (!clip_valid_) {
    clip_ = system_clip_;
    clip_.Intersect(RECT{0, 0, surface_.width, surface_.height});
    if (state.has_user_clip) {
      Region user = state.user_clip;
      user.Offset(origin.x, origin.y);
      clip_.Intersect(user);
    }
    if (surface_.Empty()) clip_.SetEmpty();
    clip_valid_ = true;
  }
  return clip_;
}

RECT DeviceContext::SurfaceRect(const RECT& r) const {
  return RECT{SurfaceX(r.left), SurfaceY(r.top), SurfaceX(r.right), SurfaceY(r.bottom)};
}

HGDIOBJ DeviceContext::Select(HGDIOBJ object, DWORD type) {
  HGDIOBJ* slot = nullptr;
  switch (type) {
    case OBJ_PEN:
      slot = reinterpret_cast<HGDIOBJ*>(&state.pen);
      break;
    case OBJ_BRUSH:
      slot = reinterpret_cast<HGDIOBJ*>(&state.brush);
      break;
    case OBJ_FONT:
      slot = reinterpret_cast<HGDIOBJ*>(&state.font);
      break;
    case OBJ_BITMAP:
      slot = reinterpret_cast<HGDIOBJ*>(&state.bitmap);
      break;
    default:
      return nullptr;
  }
  HGDIOBJ previous = *slot;
  if (GdiObject* o = GdiTable::Get(object)) ++o->selections;
  if (GdiObject* o = GdiTable::Get(previous)) --o->selections;
  *slot = object;
  if (type == OBJ_BITMAP) {
    Bitmap* b = GdiTable::Get<Bitmap>(object, OBJ_BITMAP);
    SetTarget(b != nullptr ? b->surface : Surface{});
  }
  return previous;
}

DeviceContext* DcFromHandle(HDC dc) {
  GdiObject* o = GdiTable::Get(dc);
  if (o == nullptr || (o->Type() != OBJ_DC && o->Type() != OBJ_MEMDC)) return nullptr;
  return static_cast<DeviceContext*>(o);
}

HDC CreateSurfaceDC(const Surface& surface, POINT origin, const Region& visible, HWND owner) {
  auto dc = std::make_shared<DeviceContext>(OBJ_DC);
  dc->SetTarget(surface);
  dc->origin = origin;
  dc->owner = owner;
  dc->SetSystemClip(visible);
  InitDefaultObjects(*dc);
  return static_cast<HDC>(GdiTable::Add(std::move(dc)));
}

void BlendMask(DeviceContext& dc, int x, int y, const uint8_t* coverage, int width, int height,
               int pitch, COLORREF color) {
  if (coverage == nullptr || width <= 0 || height <= 0) return;
  const Surface& s = dc.Target();
  const LONG sx = dc.SurfaceX(x);
  const LONG sy = dc.SurfaceY(y);
  const RECT area{sx, sy, sx + width, sy + height};
  const uint32_t src = ColorToPixel(color);
  const uint32_t sr = (src >> 16) & 0xFF, sg = (src >> 8) & 0xFF, sb = src & 0xFF;
  ForEachClipRect(dc, area, [&](const RECT& r) {
    for (LONG py = r.top; py < r.bottom; ++py) {
      const uint8_t* cov = coverage + static_cast<ptrdiff_t>(py - sy) * pitch;
      uint32_t* row = s.Row(py);
      for (LONG px = r.left; px < r.right; ++px) {
        const uint32_t a = cov[px - sx];
        if (a == 0) continue;
        const uint32_t d = row[px];
        if (a == 255) {
          row[px] = src;
          continue;
        }
        const uint32_t na = 255 - a;
        const uint32_t r8 = (sr * a + ((d >> 16) & 0xFF) * na + 127) / 255;
        const uint32_t g8 = (sg * a + ((d >> 8) & 0xFF) * na + 127) / 255;
        const uint32_t b8 = (sb * a + (d & 0xFF) * na + 127) / 255;
        row[px] = (r8 << 16) | (g8 << 8) | b8;
      }
    }
  });
}

void FillSolidRect(DeviceContext& dc, const RECT& logical, COLORREF color) {
  FillSurfaceRect(dc, dc.SurfaceRect(logical), ColorToPixel(color));
}

__attribute__((weak)) std::shared_ptr<GdiObject> MakeStockFont(int) {
  return nullptr;
}

__attribute__((weak)) int GetFontObject(GdiObject&, int, void*, bool) {
  return 0;
}

}  // namespace vantor::platform
