// Invalidation and painting, window DCs, window regions and layered
// attributes.
#include <algorithm>

#include "platform/DeviceContext.h"
#include "platform/Gdi.h"
#include "platform/RegionObject.h"
#include "platform/UserState.h"

using vantor::platform::DeviceContext;
using vantor::platform::GdiTable;
using vantor::platform::Region;
using vantor::platform::RegionObject;
using vantor::platform::UserState;
using vantor::platform::Window;

namespace {

// A DC handed out for a window. BeginPaint's DC is also cut to the update
// region it took (client coordinates).
struct WindowDC {
  HDC dc = nullptr;
  HWND hwnd = nullptr;
  bool client = true;
  bool has_paint_clip = false;
  Region paint_clip;
};

std::vector<WindowDC>& WindowDCs() {
  static std::vector<WindowDC> dcs;
  return dcs;
}

// What GetDC(NULL) draws on: nothing, but measuring text works.
const vantor::platform::Surface& ScreenSurface() {
  static vantor::platform::Surface surface;
  return surface;
}

void Fit(WindowDC& entry) {
  DeviceContext* dc = vantor::platform::DcFromHandle(entry.dc);
  Window* w = Window::Get(entry.hwnd);
  if (dc == nullptr || w == nullptr) return;
  if (w->parent == nullptr) {
    dc->SetTarget(ScreenSurface());
    dc->SetSystemClip(Region());
    return;
  }
  Window* top = w->TopLevel();
  const POINT top_origin = top->WindowOrigin();
  const POINT o = entry.client ? w->ClientOrigin() : w->WindowOrigin();
  dc->SetTarget(top->surface);
  dc->origin = POINT{o.x - top_origin.x, o.y - top_origin.y};
  Region visible = w->VisibleRegion(entry.client);
  if (entry.has_paint_clip) {
    Region p = entry.paint_clip;
    const POINT c = w->ClientOrigin();
    p.Offset(c.x - top_origin.x, c.y - top_origin.y);
    visible.Intersect(p);
  }
  dc->SetSystemClip(visible);
  dc->ClipChanged();
}

HDC MakeDC(Window& w, bool client, const Region* paint_clip) {
  WindowDC entry;
  entry.hwnd = w.handle;
  entry.client = client;
  if (paint_clip != nullptr) {
    entry.has_paint_clip = true;
    entry.paint_clip = *paint_clip;
  }
  entry.dc = vantor::platform::CreateSurfaceDC(ScreenSurface(), POINT{0, 0}, Region(), w.handle);
  if (entry.dc == nullptr) return nullptr;
  Fit(entry);
  WindowDCs().push_back(std::move(entry));
  vantor::platform::Touch();
  return WindowDCs().back().dc;
}

bool ChildrenIncluded(const Window& w, UINT flags) {
  if ((flags & RDW_ALLCHILDREN) != 0) return true;
  if ((flags & RDW_NOCHILDREN) != 0) return false;
  return (w.style & WS_CLIPCHILDREN) == 0;
}

RECT ClientBounds(const Window& w) {
  return RECT{0, 0, w.client.right - w.client.left, w.client.bottom - w.client.top};
}

void Validate(Window& w, const Region* region, bool children) {
  if (region == nullptr) {
    w.update.SetEmpty();
  } else {
    w.update.Subtract(*region);
  }
  if (w.update.Empty()) w.erase = false;
  if (!children) return;
  for (auto& c : w.children) {
    if (region == nullptr) {
      Validate(*c, nullptr, true);
      continue;
    }
    Region sub = *region;
    sub.Offset(-c->client.left, -c->client.top);
    Validate(*c, &sub, true);
  }
}

void EraseNow(Window& w) {
  if (!w.erase || w.update.Empty()) return;
  w.erase = false;
  const Region area = w.update;
  HDC dc = MakeDC(w, true, &area);
  SendMessageW(w.handle, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0);
  ReleaseDC(w.handle, dc);
}

void PaintNow(const std::shared_ptr<Window>& w, bool children, bool erase_only) {
  if (!w->ReallyVisible()) return;
  if (erase_only) {
    EraseNow(*w);
  } else if (!w->update.Empty() || w->internal_paint || w->frame_dirty) {
    SendMessageW(w->handle, WM_PAINT, 0, 0);
    if (Window::Get(w->handle) != w.get()) return;
    vantor::platform::PaintFrameIfDue(*w);
    if (Window::Get(w->handle) != w.get()) return;
    // As the pump does: a procedure that didn't paint is taken as done.
    w->update.SetEmpty();
    w->erase = false;
    w->internal_paint = false;
  }
  if (!children) return;
  auto kids = w->children;
  for (auto& c : kids) {
    if (Window::Get(c->handle) == c.get()) PaintNow(c, true, erase_only);
  }
}

Window* FindPaint(Window& w, HWND filter) {
  if (!w.Visible()) return nullptr;
  if (w.parent != nullptr && (!w.update.Empty() || w.internal_paint || w.frame_dirty) &&
      (filter == nullptr || w.handle == filter || IsChild(filter, w.handle))) {
    return &w;
  }
  for (auto& c : w.children) {
    if (Window* found = FindPaint(*c, filter)) return found;
  }
  return nullptr;
}

int Complexity(const Region& r) {
  return r.Complexity();
}

}  // namespace

namespace vantor::platform {

void Touch() {
  ++UserState::Get().generation;
}

void InvalidateFrame(Window& w) {
  if (w.parent == nullptr || !w.HasFrame()) return;
  w.frame_dirty = true;
  Touch();
}

void PaintFrameIfDue(Window& w) {
  if (!w.frame_dirty) return;
  w.frame_dirty = false;
  if (w.ReallyVisible()) SendMessageW(w.handle, WM_NCPAINT, 1, 0);
}

void InvalidateWindow(Window& w, const Region* client_region, bool erase, bool children) {
  if (!w.ReallyVisible() || w.parent == nullptr) return;
  if (client_region == nullptr) InvalidateFrame(w);
  Region r(ClientBounds(w));
  if (client_region != nullptr) r.Intersect(*client_region);
  if (r.Empty()) return;
  w.update.Union(r);
  if (erase) w.erase = true;
  Touch();
  if (!children) return;
  for (auto& c : w.children) {
    if (!c->Visible()) continue;
    Region sub = r;
    sub.Intersect(c->rect);
    if (sub.Empty()) continue;
    sub.Offset(-c->client.left, -c->client.top);
    InvalidateWindow(*c, &sub, erase, (c->style & WS_CLIPCHILDREN) == 0);
  }
}

Window* NextPaintWindow(HWND filter) {
  return FindPaint(*Window::Desktop(), filter);
}

void RefreshWindowDCs() {
  auto& dcs = WindowDCs();
  for (size_t i = 0; i < dcs.size();) {
    if (Window::Get(dcs[i].hwnd) == nullptr || DcFromHandle(dcs[i].dc) == nullptr) {
      DeleteDC(dcs[i].dc);
      dcs.erase(dcs.begin() + static_cast<ptrdiff_t>(i));
      continue;
    }
    Fit(dcs[i]);
    ++i;
  }
}

void DropWindowDCs(HWND hwnd) {
  auto& dcs = WindowDCs();
  for (size_t i = 0; i < dcs.size();) {
    if (dcs[i].hwnd == hwnd) {
      DeleteDC(dcs[i].dc);
      dcs.erase(dcs.begin() + static_cast<ptrdiff_t>(i));
      continue;
    }
    ++i;
  }
}

}  // namespace vantor::platform

BOOL InvalidateRect(HWND hwnd, const RECT* rect, BOOL erase) {
  return RedrawWindow(hwnd, rect, nullptr, RDW_INVALIDATE | (erase ? RDW_ERASE : 0u));
}

BOOL InvalidateRgn(HWND hwnd, HRGN region, BOOL erase) {
  if (region != nullptr && GdiTable::Get<RegionObject>(region, OBJ_REGION) == nullptr) {
    return FALSE;
  }
  return RedrawWindow(hwnd, nullptr, region, RDW_INVALIDATE | (erase ? RDW_ERASE : 0u));
}

BOOL ValidateRect(HWND hwnd, const RECT* rect) {
  return RedrawWindow(hwnd, rect, nullptr, RDW_VALIDATE | RDW_NOCHILDREN);
}

BOOL ValidateRgn(HWND hwnd, HRGN region) {
  return RedrawWindow(hwnd, nullptr, region, RDW_VALIDATE | RDW_NOCHILDREN);
}

BOOL UpdateWindow(HWND hwnd) {
  if (Window::Get(hwnd) == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
  }
  return RedrawWindow(hwnd, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

BOOL RedrawWindow(HWND hwnd, const RECT* rect, HRGN region, UINT flags) {
  std::shared_ptr<Window> w =
      hwnd == nullptr ? Window::Share(GetDesktopWindow()) : Window::Share(hwnd);
  if (!w) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
  }
  Region area(ClientBounds(*w));
  bool whole = true;
  if (region != nullptr) {
    auto* r = GdiTable::Get<RegionObject>(region, OBJ_REGION);
    if (r != nullptr) {
      area.Intersect(r->region);
      whole = false;
    }
  } else if (rect != nullptr) {
    area.Intersect(*rect);
    whole = false;
  }
  const bool children = hwnd == nullptr || ChildrenIncluded(*w, flags);
  if (w->parent == nullptr) {
    // The desktop: every top-level window, whole.
    for (auto& top : w->children) {
      RedrawWindow(top->handle, nullptr, nullptr, flags | RDW_ALLCHILDREN);
    }
    return TRUE;
  }
  if ((flags & RDW_INVALIDATE) != 0) {
    vantor::platform::InvalidateWindow(*w, whole ? nullptr : &area, (flags & RDW_ERASE) != 0,
                                       children);
    if ((flags & RDW_INTERNALPAINT) != 0) w->internal_paint = true;
  } else if ((flags & RDW_VALIDATE) != 0) {
    Validate(*w, whole ? nullptr : &area, children);
    if ((flags & RDW_NOERASE) != 0) w->erase = false;
    if ((flags & RDW_NOINTERNALPAINT) != 0) w->internal_paint = false;
  } else if ((flags & RDW_INTERNALPAINT) != 0) {
    w->internal_paint = true;
  }
  if ((flags & RDW_UPDATENOW) != 0) {
    PaintNow(w, (flags & RDW_NOCHILDREN) == 0, false);
  } else if ((flags & RDW_ERASENOW) != 0) {
    PaintNow(w, (flags & RDW_NOCHILDREN) == 0, true);
  }
  return TRUE;
}

BOOL GetUpdateRect(HWND hwnd, LPRECT rect, BOOL erase) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
  }
  const bool any = !w->update.Empty();
  if (rect != nullptr) *rect = w->update.Box();
  if (erase && any) EraseNow(*w);
  return any ? TRUE : FALSE;
}

int GetUpdateRgn(HWND hwnd, HRGN region, BOOL erase) {
  Window* w = Window::Get(hwnd);
  auto* r = GdiTable::Get<RegionObject>(region, OBJ_REGION);
  if (w == nullptr || r == nullptr) return 0;
  r->region = w->update;
  if (erase) EraseNow(*w);
  return Complexity(r->region);
}

HDC BeginPaint(HWND hwnd, PAINTSTRUCT* paint) {
  auto w = Window::Share(hwnd);
  if (!w || w->parent == nullptr || paint == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
  }
  vantor::platform::PaintFrameIfDue(*w);
  if (vantor::platform::Window::Get(hwnd) != w.get()) return nullptr;
  const Region area = w->update;
  const bool erase = w->erase;
  w->update.SetEmpty();
  w->erase = false;
  w->internal_paint = false;
  HDC dc = MakeDC(*w, true, &area);
  *paint = PAINTSTRUCT{};
  paint->hdc = dc;
  paint->rcPaint = area.Box();
  if (erase && dc != nullptr) {
    const LRESULT erased = SendMessageW(hwnd, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0);
    paint->fErase = erased == 0 ? TRUE : FALSE;
  }
  return dc;
}

BOOL EndPaint(HWND hwnd, const PAINTSTRUCT* paint) {
  if (paint == nullptr) return FALSE;
  ReleaseDC(hwnd, paint->hdc);
  return TRUE;
}

HDC GetDC(HWND hwnd) {
  Window* w = hwnd == nullptr ? Window::Desktop() : Window::Get(hwnd);
  if (w == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
  }
  return MakeDC(*w, true, nullptr);
}

HDC GetWindowDC(HWND hwnd) {
  Window* w = hwnd == nullptr ? Window::Desktop() : Window::Get(hwnd);
  if (w == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
  }
  return MakeDC(*w, false, nullptr);
}

int ReleaseDC(HWND, HDC dc) {
  auto& dcs = WindowDCs();
  for (auto it = dcs.begin(); it != dcs.end(); ++it) {
    if (it->dc == dc) {
      DeleteDC(dc);
      dcs.erase(it);
      vantor::platform::Touch();
      return 1;
    }
  }
  return 0;
}

HWND WindowFromDC(HDC dc) {
  for (const auto& e : WindowDCs()) {
    if (e.dc == dc) return e.hwnd;
  }
  return nullptr;
}

int SetWindowRgn(HWND hwnd, HRGN region, BOOL redraw) {
  auto w = Window::Share(hwnd);
  if (!w || w->parent == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return 0;
  }
  if (region != nullptr) {
    auto* r = GdiTable::Get<RegionObject>(region, OBJ_REGION);
    if (r == nullptr) return 0;
    w->window_region = std::make_unique<Region>(r->region);
    // The window owns the region from here on.
    DeleteObject(region);
  } else {
    w->window_region.reset();
  }
  if (redraw && w->Visible()) {
    if (w->parent->parent != nullptr) {
      Region area(w->rect);
      vantor::platform::InvalidateWindow(*w->parent, &area, true, true);
    }
    vantor::platform::InvalidateWindow(*w, nullptr, true, true);
  }
  vantor::platform::RefreshWindowDCs();
  vantor::platform::Touch();
  return 1;
}

int GetWindowRgn(HWND hwnd, HRGN region) {
  Window* w = Window::Get(hwnd);
  auto* r = GdiTable::Get<RegionObject>(region, OBJ_REGION);
  if (w == nullptr || r == nullptr || !w->window_region) return 0;
  r->region = *w->window_region;
  return Complexity(r->region);
}

BOOL SetLayeredWindowAttributes(HWND hwnd, COLORREF key, BYTE alpha, DWORD flags) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
  }
  if ((w->ex_style & WS_EX_LAYERED) == 0 || (flags & ~(LWA_ALPHA | LWA_COLORKEY)) != 0) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  w->layered_set = true;
  w->color_key = key;
  w->alpha = alpha;
  w->layered_flags = flags;
  vantor::platform::Touch();
  return TRUE;
}

BOOL GetLayeredWindowAttributes(HWND hwnd, COLORREF* key, BYTE* alpha, DWORD* flags) {
  Window* w = Window::Get(hwnd);
  if (w == nullptr) {
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
  }
  if ((w->ex_style & WS_EX_LAYERED) == 0 || !w->layered_set) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  if (key != nullptr) *key = w->color_key;
  if (alpha != nullptr) *alpha = w->alpha;
  if (flags != nullptr) *flags = w->layered_flags;
  return TRUE;
}

BOOL FlashWindow(HWND, BOOL) {
  return TRUE;
}
