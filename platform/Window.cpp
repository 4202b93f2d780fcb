#include "platform/Window.h"

#include <algorithm>
#include <cstring>

#include "platform/Desktop.h"
#include "platform/HandleTable.h"

namespace vantor::platform {

namespace {

// A window's surface is at most this wide and high; windows larger than any
// screen still work, their far parts are just not kept.
constexpr int kMaxSurfaceSide = 4096;

struct Table {
  HandleTable<Window> handles;
  std::shared_ptr<Window> desktop;
};

Table& TheTable() {
  static Table table;
  return table;
}

uintptr_t ValueOf(HWND hwnd) { return reinterpret_cast<uintptr_t>(hwnd); }

// A window's shape on the screen: its rectangle cut by its own region.
Region ScreenShape(const Window& w) {
  const RECT r = w.ScreenRect();
  Region shape(r);
  if (w.window_region) {
    Region wr = *w.window_region;
    wr.Offset(r.left, r.top);
    shape.Intersect(wr);
  }
  return shape;
}

}  // namespace

bool Window::IsTopLevel() const {
  return parent != nullptr && parent->parent == nullptr;
}

Window* Window::TopLevel() {
  Window* w = this;
  while (w->parent != nullptr && w->parent->parent != nullptr) w = w->parent;
  return w;
}

bool Window::ReallyVisible() const {
  for (const Window* w = this; w != nullptr && w->parent != nullptr; w = w->parent) {
    if (!w->Visible()) return false;
  }
  return true;
}

POINT Window::ClientOrigin() const {
  POINT p{client.left, client.top};
  if (parent != nullptr && parent->parent != nullptr) {
    const POINT o = parent->ClientOrigin();
    p.x += o.x;
    p.y += o.y;
  }
  return p;
}

POINT Window::WindowOrigin() const {
  POINT p{rect.left, rect.top};
  if (parent != nullptr && parent->parent != nullptr) {
    const POINT o = parent->ClientOrigin();
    p.x += o.x;
    p.y += o.y;
  }
  return p;
}

RECT Window::ScreenRect() const {
  const POINT o = WindowOrigin();
  return RECT{o.x, o.y, o.x + Width(), o.y + Height()};
}

RECT Window::ScreenClient() const {
  const POINT o = ClientOrigin();
  return RECT{o.x, o.y, o.x + (client.right - client.left), o.y + (client.bottom - client.top)};
}

Region Window::VisibleRegion(bool client_area) const {
  if (parent == nullptr || !ReallyVisible()) return Region();
  const Window* top = this;
  while (top->parent != nullptr && top->parent->parent != nullptr) top = top->parent;
  const POINT top_origin = top->WindowOrigin();

  Region visible(client_area ? ScreenClient() : ScreenRect());
  if (window_region) visible.Intersect(ScreenShape(*this));
  if ((style & WS_CLIPCHILDREN) != 0) {
    for (const auto& child : children) {
      if (child->Visible()) visible.Subtract(ScreenShape(*child));
    }
  }
  for (const Window* w = this; w != top; w = w->parent) {
    const Window* p = w->parent;
    if ((w->style & WS_CLIPSIBLINGS) != 0) {
      for (const auto& sibling : p->children) {
        if (sibling.get() == w) break;
        if (sibling->Visible()) visible.Subtract(ScreenShape(*sibling));
      }
    }
    visible.Intersect(p->ScreenClient());
    if (p->window_region) visible.Intersect(ScreenShape(*p));
  }
  visible.Offset(-top_origin.x, -top_origin.y);
  return visible;
}

void Window::SyncSurface() {
  if (!IsTopLevel()) {
    pixels.clear();
    pixels.shrink_to_fit();
    surface = Surface{};
    return;
  }
  const int width = std::clamp(Width(), 0, kMaxSurfaceSide);
  const int height = std::clamp(Height(), 0, kMaxSurfaceSide);
  if (width == surface.width && height == surface.height && surface.pixels != nullptr) return;
  std::vector<uint32_t> next(static_cast<size_t>(width) * static_cast<size_t>(height), 0);
  // What was painted stays where it was; the newly uncovered part is invalid.
  const int keep_w = std::min(width, surface.width);
  const int keep_h = std::min(height, surface.height);
  for (int y = 0; keep_w > 0 && y < keep_h; ++y) {
    std::memcpy(next.data() + static_cast<size_t>(y) * static_cast<size_t>(width), surface.Row(y),
                static_cast<size_t>(keep_w) * sizeof(uint32_t));
  }
  pixels = std::move(next);
  surface.pixels = pixels.empty() ? nullptr : pixels.data();
  surface.width = width;
  surface.height = height;
  surface.stride = width;
}

RECT Window::DefaultClient(const RECT& window, DWORD style, DWORD ex_style) {
  RECT c = window;
  int frame = 0;
  if ((style & WS_THICKFRAME) != 0) {
    frame = GetSystemMetrics(SM_CXFRAME);
  } else if ((style & WS_DLGFRAME) != 0 || (ex_style & WS_EX_DLGMODALFRAME) != 0) {
    frame = GetSystemMetrics(SM_CXDLGFRAME);
  } else if ((style & WS_BORDER) != 0) {
    frame = GetSystemMetrics(SM_CXBORDER);
  }
  c.left += frame;
  c.top += frame;
  c.right -= frame;
  c.bottom -= frame;
  if ((style & WS_CAPTION) == WS_CAPTION) {
    c.top += (ex_style & WS_EX_TOOLWINDOW) != 0 ? GetSystemMetrics(SM_CYSMCAPTION)
                                                : GetSystemMetrics(SM_CYCAPTION);
  }
  if ((ex_style & WS_EX_CLIENTEDGE) != 0) {
    c.left += 2;
    c.top += 2;
    c.right -= 2;
    c.bottom -= 2;
  }
  if ((ex_style & WS_EX_STATICEDGE) != 0) {
    c.left += 1;
    c.top += 1;
    c.right -= 1;
    c.bottom -= 1;
  }
  if ((style & WS_VSCROLL) != 0) c.right -= GetSystemMetrics(SM_CXVSCROLL);
  if ((style & WS_HSCROLL) != 0) c.bottom -= GetSystemMetrics(SM_CYHSCROLL);
  // A frame larger than the window leaves an empty client area at its top left.
  if (c.right < c.left) c.right = c.left;
  if (c.bottom < c.top) c.bottom = c.top;
  return c;
}

HWND Window::Add(std::shared_ptr<Window> window) {
  Window* w = window.get();
  const auto hwnd = reinterpret_cast<HWND>(TheTable().handles.Add(std::move(window)));
  if (w != nullptr) w->handle = hwnd;
  return hwnd;
}

Window* Window::Get(HWND hwnd) { return TheTable().handles.Get(ValueOf(hwnd)); }

std::shared_ptr<Window> Window::Share(HWND hwnd) { return TheTable().handles.Share(ValueOf(hwnd)); }

void Window::Remove(HWND hwnd) { TheTable().handles.Remove(ValueOf(hwnd)); }

Window* Window::Desktop() {
  Table& t = TheTable();
  if (!t.desktop) {
    t.desktop = std::make_shared<Window>();
    t.desktop->style = WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS;
    Add(t.desktop);
  }
  const SIZE s = ScreenSize();
  t.desktop->rect = RECT{0, 0, s.cx, s.cy};
  t.desktop->client = t.desktop->rect;
  return t.desktop.get();
}

size_t Window::Count() { return TheTable().handles.Count(); }

}  // namespace vantor::platform
