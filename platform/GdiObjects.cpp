// Device contexts, objects and their selection, stock objects, bitmaps, the
// DC's modes and its clipping.
#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "platform/Bitmap.h"
#include "platform/Brush.h"
#include "platform/DeviceContext.h"
#include "platform/Gdi.h"
#include "platform/Pen.h"
#include "platform/Raster.h"
#include "platform/RegionObject.h"

using vantor::platform::Bitmap;
using vantor::platform::Brush;
using vantor::platform::DcFromHandle;
using vantor::platform::DeviceContext;
using vantor::platform::GdiObject;
using vantor::platform::GdiTable;
using vantor::platform::Pen;
using vantor::platform::Region;
using vantor::platform::RegionObject;

namespace {

template <class T, class... Args>
HGDIOBJ AddObject(Args&&... args) {
  return GdiTable::Add(std::make_shared<T>(std::forward<Args>(args)...));
}

HGDIOBJ MakeStock(std::shared_ptr<GdiObject> object) {
  if (!object) return nullptr;
  object->stock = true;
  return GdiTable::Add(std::move(object));
}

std::shared_ptr<GdiObject> StockBrush(UINT style, COLORREF color) {
  return std::make_shared<Brush>(LOGBRUSH{style, color, 0});
}

std::shared_ptr<GdiObject> StockPen(UINT style, COLORREF color) {
  return std::make_shared<Pen>(LOGPEN{style, POINT{0, 0}, color});
}

// The 1x1 monochrome bitmap that every new memory DC holds.
HGDIOBJ StockBitmap() {
  static HGDIOBJ handle = [] {
    auto b = std::make_shared<Bitmap>();
    b->Allocate(1, 1, false);
    b->bits_per_pixel = 1;
    return MakeStock(b);
  }();
  return handle;
}

// The platform counts from the bottom in bottom-up DIBs.
bool ValidDibHeader(const BITMAPINFO* info) {
  if (info == nullptr) return false;
  const BITMAPINFOHEADER& h = info->bmiHeader;
  return h.biSize >= sizeof(BITMAPINFOHEADER) && h.biWidth > 0 && h.biHeight != 0 &&
         h.biHeight != INT32_MIN && h.biPlanes == 1;
}

int ClipComplexity(const DeviceContext& dc) {
  return dc.Clip().Complexity();
}

// A rectangle large enough to stand for "no clip" in device coordinates.
Region Everything() {
  return Region(-Region::kMaxCoord, -Region::kMaxCoord, Region::kMaxCoord, Region::kMaxCoord);
}

}  // namespace

HDC CreateCompatibleDC(HDC dc) {
  if (dc != nullptr && DcFromHandle(dc) == nullptr) return nullptr;
  auto memory = std::make_shared<DeviceContext>(OBJ_MEMDC);
  memory->Select(StockBitmap(), OBJ_BITMAP);
  vantor::platform::InitDefaultObjects(*memory);
  return static_cast<HDC>(GdiTable::Add(std::move(memory)));
}

BOOL DeleteDC(HDC dc) {
  if (DcFromHandle(dc) == nullptr) return FALSE;
  return GdiTable::Remove(dc) ? TRUE : FALSE;
}

int SaveDC(HDC dc) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return 0;
  d->saved.push_back(d->state);
  return static_cast<int>(d->saved.size());
}

BOOL RestoreDC(HDC dc, int level) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return FALSE;
  const int depth = static_cast<int>(d->saved.size());
  // Negative levels count back from the latest save.
  const int target = level < 0 ? depth + level + 1 : level;
  if (level == 0 || target < 1 || target > depth) return FALSE;
  DeviceContext::State s = d->saved[static_cast<size_t>(target - 1)];
  d->saved.resize(static_cast<size_t>(target - 1));
  d->Select(s.pen, OBJ_PEN);
  d->Select(s.brush, OBJ_BRUSH);
  d->Select(s.font, OBJ_FONT);
  if (d->Type() == OBJ_MEMDC) d->Select(s.bitmap, OBJ_BITMAP);
  s.pen = d->state.pen;
  s.brush = d->state.brush;
  s.font = d->state.font;
  s.bitmap = d->state.bitmap;
  d->state = s;
  d->ClipChanged();
  return TRUE;
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
  DeviceContext* d = DcFromHandle(dc);
  GdiObject* o = GdiTable::Get(object);
  if (d == nullptr || o == nullptr) return nullptr;
  switch (o->Type()) {
    case OBJ_PEN:
    case OBJ_BRUSH:
    case OBJ_FONT:
      return d->Select(object, o->Type());
    case OBJ_BITMAP: {
      // Only memory DCs hold bitmaps, and a bitmap sits in one DC at a time
      // (the stock bitmap excepted).
      if (d->Type() != OBJ_MEMDC) return nullptr;
      if (object == d->state.bitmap) return object;
      if (o->selections > 0 && !o->stock) return nullptr;
      return d->Select(object, OBJ_BITMAP);
    }
    case OBJ_REGION: {
      const int r = SelectClipRgn(dc, static_cast<HRGN>(object));
      return reinterpret_cast<HGDIOBJ>(static_cast<intptr_t>(r));
    }
    default:
      return nullptr;
  }
}

BOOL DeleteObject(HGDIOBJ object) {
  GdiObject* o = GdiTable::Get(object);
  if (o == nullptr) return FALSE;
  if (o->Type() == OBJ_DC || o->Type() == OBJ_MEMDC) return FALSE;
  if (o->stock) return TRUE;
  if (o->selections > 0) return FALSE;
  return GdiTable::Remove(object) ? TRUE : FALSE;
}

DWORD GetObjectType(HGDIOBJ object) {
  GdiObject* o = GdiTable::Get(object);
  return o == nullptr ? 0 : o->Type();
}

namespace {

int GetObjectCommon(HANDLE object, int size, LPVOID out, bool wide) {
  GdiObject* o = GdiTable::Get(object);
  if (o == nullptr || size < 0) return 0;
  auto copy = [&](const void* data, int needed) -> int {
    if (out == nullptr) return needed;
    if (size < needed) return 0;
    std::memcpy(out, data, static_cast<size_t>(needed));
    return needed;
  };
  switch (o->Type()) {
    case OBJ_PEN:
      return copy(&static_cast<Pen*>(o)->log, sizeof(LOGPEN));
    case OBJ_BRUSH:
      return copy(&static_cast<Brush*>(o)->log, sizeof(LOGBRUSH));
    case OBJ_FONT:
      return vantor::platform::GetFontObject(*o, size, out, wide);
    case OBJ_BITMAP: {
      const auto* b = static_cast<Bitmap*>(o);
      DIBSECTION ds{};
      ds.dsBm.bmType = 0;
      ds.dsBm.bmWidth = b->surface.width;
      ds.dsBm.bmHeight = b->surface.height;
      ds.dsBm.bmPlanes = 1;
      ds.dsBm.bmBitsPixel = static_cast<WORD>(b->bits_per_pixel);
      // Rows are padded to 16 bits in device bitmaps and 32 in DIBs.
      const LONG bits = b->surface.width * b->bits_per_pixel;
      ds.dsBm.bmWidthBytes = b->dib ? (bits + 31) / 32 * 4 : (bits + 15) / 16 * 2;
      if (b->dib) {
        ds.dsBm.bmBits = b->Bits();
        ds.dsBmih = b->header;
        ds.dsBmih.biSizeImage = static_cast<DWORD>(ds.dsBm.bmWidthBytes * b->surface.height);
        if (out == nullptr) return sizeof(BITMAP);
        if (size >= static_cast<int>(sizeof(DIBSECTION))) return copy(&ds, sizeof(DIBSECTION));
      }
      return copy(&ds.dsBm, sizeof(BITMAP));
    }
    default:
      return 0;
  }
}

}  // namespace

int GetObjectW(HANDLE object, int size, LPVOID out) {
  return GetObjectCommon(object, size, out, true);
}

int GetObjectA(HANDLE object, int size, LPVOID out) {
  return GetObjectCommon(object, size, out, false);
}

HGDIOBJ GetStockObject(int id) {
  static std::array<HGDIOBJ, 20> table = [] {
    std::array<HGDIOBJ, 20> t{};
    t[WHITE_BRUSH] = MakeStock(StockBrush(BS_SOLID, RGB(255, 255, 255)));
    t[LTGRAY_BRUSH] = MakeStock(StockBrush(BS_SOLID, RGB(192, 192, 192)));
    t[GRAY_BRUSH] = MakeStock(StockBrush(BS_SOLID, RGB(128, 128, 128)));
    t[DKGRAY_BRUSH] = MakeStock(StockBrush(BS_SOLID, RGB(64, 64, 64)));
    t[BLACK_BRUSH] = MakeStock(StockBrush(BS_SOLID, RGB(0, 0, 0)));
    t[NULL_BRUSH] = MakeStock(StockBrush(BS_NULL, 0));
    t[WHITE_PEN] = MakeStock(StockPen(PS_SOLID, RGB(255, 255, 255)));
    t[BLACK_PEN] = MakeStock(StockPen(PS_SOLID, RGB(0, 0, 0)));
    t[NULL_PEN] = MakeStock(StockPen(PS_NULL, 0));
    t[DC_BRUSH] = MakeStock(StockBrush(BS_SOLID, RGB(255, 255, 255)));
    t[DC_PEN] = MakeStock(StockPen(PS_SOLID, RGB(0, 0, 0)));
    return t;
  }();
  if (id < 0 || id >= static_cast<int>(table.size()) || id == 9 || id == DEFAULT_PALETTE) {
    return nullptr;
  }
  const bool font = id >= OEM_FIXED_FONT && id <= DEFAULT_GUI_FONT;
  if (font && GdiTable::Get(table[static_cast<size_t>(id)]) == nullptr) {
    // The text code makes the stock fonts; ask it again until it answers.
    table[static_cast<size_t>(id)] = MakeStock(vantor::platform::MakeStockFont(id));
  }
  return table[static_cast<size_t>(id)];
}

HGDIOBJ GetCurrentObject(HDC dc, UINT type) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return nullptr;
  switch (type) {
    case OBJ_PEN:
      return d->state.pen;
    case OBJ_BRUSH:
      return d->state.brush;
    case OBJ_FONT:
      return d->state.font;
    case OBJ_BITMAP:
      return d->state.bitmap;
    default:
      return nullptr;
  }
}

int GetDeviceCaps(HDC dc, int index) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return 0;
  switch (index) {
    case LOGPIXELSX:
    case LOGPIXELSY:
      return 96;
    case BITSPIXEL:
      return 32;
    case PLANES:
      return 1;
    case NUMCOLORS:
      return -1;
    case HORZRES:
      return d->Target().width;
    case VERTRES:
      return d->Target().height;
    default:
      return 0;
  }
}

HPEN CreatePen(int style, int width, COLORREF color) {
  const int kind = style & PS_STYLE_MASK;
  if (kind > PS_ALTERNATE || kind == PS_USERSTYLE) return nullptr;
  // Styled lines are only styled when one pixel wide; wider pens draw solid.
  LOGPEN log{static_cast<UINT>(style), POINT{std::max(width, 0), 0}, color & 0x00FFFFFF};
  return static_cast<HPEN>(AddObject<Pen>(log));
}

HPEN CreatePenIndirect(const LOGPEN* pen) {
  if (pen == nullptr) return nullptr;
  return CreatePen(static_cast<int>(pen->lopnStyle), pen->lopnWidth.x, pen->lopnColor);
}

HBRUSH CreateSolidBrush(COLORREF color) {
  return static_cast<HBRUSH>(AddObject<Brush>(LOGBRUSH{BS_SOLID, color & 0x00FFFFFF, 0}));
}

HBRUSH CreateHatchBrush(int hatch, COLORREF color) {
  if (hatch < HS_HORIZONTAL || hatch > HS_DIAGCROSS) return nullptr;
  auto b = std::make_shared<Brush>(
      LOGBRUSH{BS_HATCHED, color & 0x00FFFFFF, static_cast<ULONG_PTR>(hatch)});
  b->tile_width = b->tile_height = 8;
  b->tile.assign(64, 0);
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) {
      bool on = false;
      switch (hatch) {
        case HS_HORIZONTAL:
          on = y == 7;
          break;
        case HS_VERTICAL:
          on = x == 7;
          break;
        case HS_FDIAGONAL:
          on = x == y;
          break;
        case HS_BDIAGONAL:
          on = x + y == 7;
          break;
        case HS_CROSS:
          on = x == 7 || y == 7;
          break;
        default:
          on = x == y || x + y == 7;
          break;
      }
      b->tile[static_cast<size_t>(y * 8 + x)] = on ? 1u : 0u;
    }
  }
  return static_cast<HBRUSH>(GdiTable::Add(std::move(b)));
}

HBRUSH CreatePatternBrush(HBITMAP bitmap) {
  Bitmap* src = GdiTable::Get<Bitmap>(bitmap, OBJ_BITMAP);
  if (src == nullptr || src->surface.Empty()) return nullptr;
  auto b = std::make_shared<Brush>(LOGBRUSH{BS_PATTERN, 0, 0});
  b->tile_width = src->surface.width;
  b->tile_height = src->surface.height;
  b->tile.reserve(static_cast<size_t>(b->tile_width) * static_cast<size_t>(b->tile_height));
  for (int y = 0; y < b->tile_height; ++y) {
    for (int x = 0; x < b->tile_width; ++x) b->tile.push_back(src->surface.At(x, y));
  }
  return static_cast<HBRUSH>(GdiTable::Add(std::move(b)));
}

HBRUSH CreateBrushIndirect(const LOGBRUSH* brush) {
  if (brush == nullptr) return nullptr;
  switch (brush->lbStyle) {
    case BS_SOLID:
      return CreateSolidBrush(brush->lbColor);
    case BS_NULL:
      return static_cast<HBRUSH>(GetStockObject(NULL_BRUSH));
    case BS_HATCHED:
      return CreateHatchBrush(static_cast<int>(brush->lbHatch), brush->lbColor);
    case BS_PATTERN:
      return CreatePatternBrush(reinterpret_cast<HBITMAP>(brush->lbHatch));
    default:
      return nullptr;
  }
}

// The window code defines the system colours; this stands in when it is not
// linked, with the Windows 10 defaults of the colours GDI itself draws with.
__attribute__((weak)) DWORD GetSysColor(int index) {
  switch (index) {
    case 5:
      return RGB(255, 255, 255);  // COLOR_WINDOW
    case 8:
      return RGB(0, 0, 0);  // COLOR_WINDOWTEXT
    case 15:
      return RGB(240, 240, 240);  // COLOR_BTNFACE
    case 16:
      return RGB(160, 160, 160);  // COLOR_BTNSHADOW
    case 17:
      return RGB(109, 109, 109);  // COLOR_GRAYTEXT
    case 18:
      return RGB(0, 0, 0);  // COLOR_BTNTEXT
    case 20:
      return RGB(255, 255, 255);  // COLOR_BTNHIGHLIGHT
    case 21:
      return RGB(105, 105, 105);  // COLOR_3DDKSHADOW
    case 22:
      return RGB(227, 227, 227);  // COLOR_3DLIGHT
    default:
      return 0;
  }
}

HBRUSH GetSysColorBrush(int index) {
  constexpr int kColors = 31;
  if (index < 0 || index >= kColors) return nullptr;
  static std::array<HGDIOBJ, kColors> brushes{};
  static std::array<COLORREF, kColors> colors{};
  const COLORREF c = GetSysColor(index) & 0x00FFFFFF;
  auto& slot = brushes[static_cast<size_t>(index)];
  if (GdiTable::Get(slot) == nullptr) {
    slot = MakeStock(StockBrush(BS_SOLID, c));
  } else if (colors[static_cast<size_t>(index)] != c) {
    // The colour scheme changed: the brush follows it, as the platform's do.
    GdiTable::Get<Brush>(slot, OBJ_BRUSH)->log.lbColor = c;
  }
  colors[static_cast<size_t>(index)] = c;
  return static_cast<HBRUSH>(slot);
}

HBITMAP CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section,
                         DWORD) {
  if (bits != nullptr) *bits = nullptr;
  if (dc != nullptr && DcFromHandle(dc) == nullptr) return nullptr;
  if (!ValidDibHeader(info) || section != nullptr || usage > DIB_PAL_COLORS) return nullptr;
  const BITMAPINFOHEADER& h = info->bmiHeader;
  if (h.biBitCount != 32 || (h.biCompression != BI_RGB && h.biCompression != BI_BITFIELDS)) {
    return nullptr;
  }
  auto b = std::make_shared<Bitmap>();
  if (!b->Allocate(h.biWidth, h.biHeight < 0 ? -h.biHeight : h.biHeight, h.biHeight > 0)) {
    return nullptr;
  }
  b->dib = true;
  b->header = h;
  b->header.biSize = sizeof(BITMAPINFOHEADER);
  if (bits != nullptr) *bits = b->Bits();
  return static_cast<HBITMAP>(GdiTable::Add(std::move(b)));
}

HBITMAP CreateCompatibleBitmap(HDC dc, int width, int height) {
  if (dc != nullptr && DcFromHandle(dc) == nullptr) return nullptr;
  if (width < 0 || height < 0) return nullptr;
  if (width == 0 || height == 0) return static_cast<HBITMAP>(StockBitmap());
  auto b = std::make_shared<Bitmap>();
  if (!b->Allocate(width, height, false)) return nullptr;
  return static_cast<HBITMAP>(GdiTable::Add(std::move(b)));
}

HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bpp, const void* bits) {
  if (width < 0 || height < 0 || planes != 1) return nullptr;
  if (bpp != 1 && bpp != 32) return nullptr;
  if (width == 0 || height == 0) return static_cast<HBITMAP>(StockBitmap());
  auto b = std::make_shared<Bitmap>();
  if (!b->Allocate(width, height, false)) return nullptr;
  b->bits_per_pixel = static_cast<int>(bpp);
  if (bits != nullptr) {
    const auto* p = static_cast<const uint8_t*>(bits);
    if (bpp == 1) {
      // Monochrome rows are padded to 16 bits; a set bit is white.
      const size_t stride = static_cast<size_t>((width + 15) / 16 * 2);
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
          const bool on =
              (p[static_cast<size_t>(y) * stride + static_cast<size_t>(x / 8)] >> (7 - x % 8)) & 1;
          b->surface.At(x, y) = on ? 0x00FFFFFFu : 0u;
        }
      }
    } else {
      std::memcpy(b->storage.data(), bits, b->storage.size() * 4);
    }
  }
  return static_cast<HBITMAP>(GdiTable::Add(std::move(b)));
}

int GetDIBits(HDC dc, HBITMAP bitmap, UINT start, UINT lines, LPVOID bits, BITMAPINFO* info,
              UINT usage) {
  Bitmap* b = GdiTable::Get<Bitmap>(bitmap, OBJ_BITMAP);
  if (DcFromHandle(dc) == nullptr || b == nullptr || info == nullptr || usage > DIB_PAL_COLORS) {
    return 0;
  }
  BITMAPINFOHEADER& h = info->bmiHeader;
  if (h.biSize < sizeof(BITMAPINFOHEADER)) return 0;
  const int width = b->surface.width, height = b->surface.height;
  if (bits == nullptr && h.biBitCount == 0) {
    // The caller asks for the format.
    h.biWidth = width;
    h.biHeight = height;
    h.biPlanes = 1;
    h.biBitCount = 32;
    h.biCompression = BI_RGB;
    h.biSizeImage = static_cast<DWORD>(width * height * 4);
    h.biClrUsed = h.biClrImportant = 0;
    return 1;
  }
  if (h.biBitCount != 32 || h.biWidth != width || h.biHeight == 0 || h.biHeight == INT32_MIN ||
      (h.biCompression != BI_RGB && h.biCompression != BI_BITFIELDS)) {
    return 0;
  }
  const bool bottom_up = h.biHeight > 0;
  if (start >= static_cast<UINT>(height)) return 0;
  const UINT count = std::min<UINT>(lines, static_cast<UINT>(height) - start);
  if (bits != nullptr) {
    auto* out = static_cast<uint32_t*>(bits);
    for (UINT i = 0; i < count; ++i) {
      const UINT scan = start + i;
      const int row = bottom_up ? height - 1 - static_cast<int>(scan) : static_cast<int>(scan);
      std::memcpy(out + static_cast<size_t>(i) * static_cast<size_t>(width), b->surface.Row(row),
                  static_cast<size_t>(width) * 4);
    }
  }
  return static_cast<int>(count);
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return CLR_INVALID;
  return std::exchange(d->state.text_color, color);
}

COLORREF GetTextColor(HDC dc) {
  DeviceContext* d = DcFromHandle(dc);
  return d == nullptr ? CLR_INVALID : d->state.text_color;
}

COLORREF SetBkColor(HDC dc, COLORREF color) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return CLR_INVALID;
  return std::exchange(d->state.bk_color, color);
}

COLORREF GetBkColor(HDC dc) {
  DeviceContext* d = DcFromHandle(dc);
  return d == nullptr ? CLR_INVALID : d->state.bk_color;
}

int SetBkMode(HDC dc, int mode) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || (mode != TRANSPARENT && mode != OPAQUE)) return 0;
  return std::exchange(d->state.bk_mode, mode);
}

int GetBkMode(HDC dc) {
  DeviceContext* d = DcFromHandle(dc);
  return d == nullptr ? 0 : d->state.bk_mode;
}

int SetROP2(HDC dc, int rop2) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || rop2 < R2_BLACK || rop2 > R2_WHITE) return 0;
  return std::exchange(d->state.rop2, rop2);
}

int GetROP2(HDC dc) {
  DeviceContext* d = DcFromHandle(dc);
  return d == nullptr ? 0 : d->state.rop2;
}

int SetStretchBltMode(HDC dc, int mode) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || mode < BLACKONWHITE || mode > HALFTONE) return 0;
  return std::exchange(d->state.stretch_mode, mode);
}

int GetStretchBltMode(HDC dc) {
  DeviceContext* d = DcFromHandle(dc);
  return d == nullptr ? 0 : d->state.stretch_mode;
}

BOOL SetViewportOrgEx(HDC dc, int x, int y, LPPOINT previous) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return FALSE;
  if (previous != nullptr) *previous = d->state.viewport_org;
  d->state.viewport_org = POINT{x, y};
  return TRUE;
}

BOOL GetViewportOrgEx(HDC dc, LPPOINT origin) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || origin == nullptr) return FALSE;
  *origin = d->state.viewport_org;
  return TRUE;
}

BOOL OffsetViewportOrgEx(HDC dc, int dx, int dy, LPPOINT previous) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return FALSE;
  if (previous != nullptr) *previous = d->state.viewport_org;
  d->state.viewport_org.x += dx;
  d->state.viewport_org.y += dy;
  return TRUE;
}

BOOL SetBrushOrgEx(HDC dc, int x, int y, LPPOINT previous) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return FALSE;
  if (previous != nullptr) *previous = d->state.brush_org;
  d->state.brush_org = POINT{x, y};
  return TRUE;
}

int SelectClipRgn(HDC dc, HRGN region) {
  return ExtSelectClipRgn(dc, region, RGN_COPY);
}

int ExtSelectClipRgn(HDC dc, HRGN region, int mode) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || mode < RGN_AND || mode > RGN_COPY) return ERROR;
  if (region == nullptr) {
    // Only RGN_COPY takes a null region: it removes the clip.
    if (mode != RGN_COPY) return ERROR;
    d->SetUserClip(nullptr);
    return ClipComplexity(*d);
  }
  auto* r = GdiTable::Get<RegionObject>(region, OBJ_REGION);
  if (r == nullptr) return ERROR;
  // The region is in device coordinates; the DC keeps its own copy.
  Region current = d->UserClip() != nullptr ? *d->UserClip() : Everything();
  switch (mode) {
    case RGN_AND:
      current.Intersect(r->region);
      break;
    case RGN_OR:
      current.Union(r->region);
      break;
    case RGN_XOR:
      current.Xor(r->region);
      break;
    case RGN_DIFF:
      current.Subtract(r->region);
      break;
    default:
      current = r->region;
      break;
  }
  d->SetUserClip(&current);
  return ClipComplexity(*d);
}

int GetClipBox(HDC dc, LPRECT rect) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || rect == nullptr) return ERROR;
  const Region& clip = d->Clip();
  if (clip.Empty()) {
    *rect = RECT{0, 0, 0, 0};
    return NULLREGION;
  }
  RECT b = clip.Box();
  const LONG dx = d->origin.x + d->state.viewport_org.x;
  const LONG dy = d->origin.y + d->state.viewport_org.y;
  *rect = RECT{b.left - dx, b.top - dy, b.right - dx, b.bottom - dy};
  return clip.Complexity();
}

int GetClipRgn(HDC dc, HRGN region) {
  DeviceContext* d = DcFromHandle(dc);
  auto* r = GdiTable::Get<RegionObject>(region, OBJ_REGION);
  if (d == nullptr || r == nullptr) return -1;
  if (d->UserClip() == nullptr) return 0;
  r->region = *d->UserClip();
  return 1;
}

int IntersectClipRect(HDC dc, int left, int top, int right, int bottom) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return ERROR;
  const POINT v = d->state.viewport_org;
  const Region rect(std::min(left, right) + v.x, std::min(top, bottom) + v.y,
                    std::max(left, right) + v.x, std::max(top, bottom) + v.y);
  Region current = d->UserClip() != nullptr ? *d->UserClip() : Everything();
  current.Intersect(rect);
  d->SetUserClip(&current);
  return ClipComplexity(*d);
}

int ExcludeClipRect(HDC dc, int left, int top, int right, int bottom) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return ERROR;
  const POINT v = d->state.viewport_org;
  const Region rect(std::min(left, right) + v.x, std::min(top, bottom) + v.y,
                    std::max(left, right) + v.x, std::max(top, bottom) + v.y);
  Region current = d->UserClip() != nullptr ? *d->UserClip() : Everything();
  current.Subtract(rect);
  d->SetUserClip(&current);
  return ClipComplexity(*d);
}
