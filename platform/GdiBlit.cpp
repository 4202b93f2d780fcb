// Blits: raster operations between DCs, stretching, device-independent bits,
// alpha blending, gradients and colour-keyed copies.
#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/Blend.h"
#include "platform/Brush.h"
#include "platform/DeviceContext.h"
#include "platform/Gdi.h"
#include "platform/Raster.h"

using vantor::platform::Brush;
using vantor::platform::ColorToPixel;
using vantor::platform::DcFromHandle;
using vantor::platform::DeviceContext;
using vantor::platform::GdiTable;
using vantor::platform::Region;
using vantor::platform::Surface;

namespace {

// Larger blits than this are refused as garbage.
constexpr int64_t kMaxExtent = 1 << 15;

bool UsesSource(DWORD rop) {
  return (((rop >> 2) ^ rop) & 0x330000) != 0;
}
bool UsesPattern(DWORD rop) {
  return (((rop >> 4) ^ rop) & 0x0F0000) != 0;
}

// One axis of a stretch: for each destination pixel the source pixel it
// takes (-1 when outside the source), and for the scan-combining modes the
// first source pixel of its group.
struct AxisMap {
  std::vector<int64_t> pick;
  std::vector<int64_t> first;
};

// Which source pixel a destination pixel takes. Growing, it is the one under
// the destination pixel's centre, ties going to the lower one. Shrinking, it
// is the one half a pixel before the end of the destination pixel's span;
// rows are walked from the bottom up when shrinking, so they take that rule
// mirrored. For the scan-combining modes, `first` is where the group of
// source pixels a destination pixel stands for begins.
AxisMap MapAxis(int64_t dst, int64_t src, int64_t src_start, bool mirror, int64_t src_limit,
                bool rows = false) {
  AxisMap m;
  m.pick.assign(static_cast<size_t>(dst), 0);
  m.first.assign(static_cast<size_t>(dst), 0);
  auto shrink = [&](int64_t i) { return ((2 * i + 2) * src - dst) / (2 * dst); };
  for (int64_t i = 0; i < dst; ++i) {
    int64_t k, first;
    if (dst == src) {
      k = first = i;
    } else if (dst > src) {
      k = first = (2 * i * src + src - 1) / (2 * dst);
    } else if (!rows) {
      k = shrink(i);
      first = i == 0 ? 0 : shrink(i - 1) + 1;
    } else {
      // Walked from the bottom, a row's group reaches down to the row
      // before the next one kept.
      k = src - 1 - shrink(dst - 1 - i);
      first = i == dst - 1 ? src - 1 : src - 1 - shrink(dst - 2 - i) - 1;
    }
    k = std::clamp<int64_t>(k, 0, src - 1);
    first = std::clamp<int64_t>(first, 0, src - 1);
    m.pick[static_cast<size_t>(i)] = k;
    m.first[static_cast<size_t>(i)] = first;
  }
  for (int64_t i = 0; i < dst; ++i) {
    for (auto* v : {&m.pick[static_cast<size_t>(i)], &m.first[static_cast<size_t>(i)]}) {
      int64_t k = mirror ? src - 1 - *v : *v;
      k += src_start;
      *v = (k < 0 || k >= src_limit) ? -1 : k;
    }
  }
  return m;
}

struct Extent {
  int64_t start;  // lowest coordinate
  int64_t size;   // positive
  bool negative;  // given right to left (or bottom to top)
};

// A negative extent runs leftwards (or upwards) from the starting pixel,
// which it includes.
Extent Normalize(int64_t origin, int64_t size) {
  if (size < 0) return Extent{origin + size + 1, -size, true};
  return Extent{origin, size, false};
}

// The stretched source, pixel by pixel, for a destination of w x h; `valid`
// marks the pixels that come from inside the source.
struct Sampled {
  std::vector<uint32_t> pixels;
  std::vector<uint8_t> valid;
  int64_t width = 0;
};

// HALFTONE: a destination pixel interpolates between the source pixels
// around its position, along each row first and then between the two rows,
// each step rounded to a whole value; positions advance by the ratio in
// single precision, as the platform's engine steps them.
struct LerpAxis {
  std::vector<int64_t> k0, k1;  // source indexes, -1 when outside the source
  std::vector<float> f;
};

LerpAxis Positions(int64_t dst, int64_t src, int64_t src_start, bool mirror, int64_t limit) {
  LerpAxis a;
  a.k0.assign(static_cast<size_t>(dst), -1);
  a.k1.assign(static_cast<size_t>(dst), -1);
  a.f.assign(static_cast<size_t>(dst), 0.0f);
  const float step = static_cast<float>(static_cast<double>(src) / static_cast<double>(dst));
  float position = 0.0f;
  for (int64_t n = 0; n < dst; ++n) {
    const float p = position;
    position += step;
    int64_t k = static_cast<int64_t>(p);
    float f = p - static_cast<float>(k);
    int64_t k1 = k + 1;
    if (k >= src - 1) {
      k = k1 = src - 1;
      f = 0.0f;
    }
    // Mirrored, the destination still fills from its left (or top) edge,
    // over the source read backwards.
    const size_t i = static_cast<size_t>(n);
    const int64_t s0 = src_start + (mirror ? src - 1 - k : k);
    const int64_t s1 = src_start + (mirror ? src - 1 - k1 : k1);
    if (s0 < 0 || s1 < 0 || s0 >= limit || s1 >= limit) continue;
    a.k0[i] = s0;
    a.k1[i] = s1;
    a.f[i] = f;
  }
  return a;
}

inline uint32_t Lerp(uint32_t a, uint32_t b, float f) {
  const float v =
      static_cast<float>(a) + static_cast<float>(static_cast<int>(b) - static_cast<int>(a)) * f;
  return static_cast<uint32_t>(static_cast<double>(v) + 0.5);
}

Sampled SampleHalftone(const Surface& src, Extent dx, Extent dy, Extent sx, Extent sy) {
  Sampled out;
  const LerpAxis ax = Positions(dx.size, sx.size, sx.start, dx.negative != sx.negative, src.width);
  const LerpAxis ay = Positions(dy.size, sy.size, sy.start, dy.negative != sy.negative, src.height);
  out.width = dx.size;
  const size_t count = static_cast<size_t>(dx.size * dy.size);
  out.pixels.assign(count, 0);
  out.valid.assign(count, 0);
  for (int64_t j = 0; j < dy.size; ++j) {
    const size_t jj = static_cast<size_t>(j);
    if (ay.k0[jj] < 0) continue;
    const uint32_t* r0 = src.Row(static_cast<int>(ay.k0[jj]));
    const uint32_t* r1 = src.Row(static_cast<int>(ay.k1[jj]));
    for (int64_t i = 0; i < dx.size; ++i) {
      const size_t ii = static_cast<size_t>(i);
      if (ax.k0[ii] < 0) continue;
      const uint32_t a = r0[ax.k0[ii]], b = r0[ax.k1[ii]], c = r1[ax.k0[ii]], d = r1[ax.k1[ii]];
      uint32_t v = 0;
      for (int shift = 0; shift < 32; shift += 8) {
        const uint32_t top = Lerp((a >> shift) & 0xFF, (b >> shift) & 0xFF, ax.f[ii]);
        const uint32_t bottom = Lerp((c >> shift) & 0xFF, (d >> shift) & 0xFF, ax.f[ii]);
        v |= std::min<uint32_t>(Lerp(top, bottom, ay.f[jj]), 255) << shift;
      }
      const size_t at = static_cast<size_t>(j * dx.size + i);
      out.pixels[at] = v;
      out.valid[at] = 1;
    }
  }
  return out;
}

Sampled Sample(const Surface& src, Extent dx, Extent dy, Extent sx, Extent sy, int mode,
               bool rows_from_bottom = true) {
  if (mode == HALFTONE) return SampleHalftone(src, dx, dy, sx, sy);
  Sampled out;
  const bool mirror_x = dx.negative != sx.negative, mirror_y = dy.negative != sy.negative;
  const AxisMap mx = MapAxis(dx.size, sx.size, sx.start, mirror_x, src.width);
  const AxisMap my = MapAxis(dy.size, sy.size, sy.start, mirror_y, src.height, rows_from_bottom);
  out.width = dx.size;
  const size_t count = static_cast<size_t>(dx.size * dy.size);
  out.pixels.assign(count, 0);
  out.valid.assign(count, 0);
  const bool shrink_x = dx.size < sx.size, shrink_y = dy.size < sy.size;
  for (int64_t j = 0; j < dy.size; ++j) {
    const int64_t row = my.pick[static_cast<size_t>(j)];
    if (row < 0) continue;
    for (int64_t i = 0; i < dx.size; ++i) {
      const int64_t col = mx.pick[static_cast<size_t>(i)];
      if (col < 0) continue;
      const size_t at = static_cast<size_t>(j * dx.size + i);
      out.valid[at] = 1;
      int64_t c0 = mx.first[static_cast<size_t>(i)], r0 = my.first[static_cast<size_t>(j)];
      if (c0 < 0) c0 = col;
      if (r0 < 0) r0 = row;
      const int64_t cl = std::min(c0, col), ch = std::max(c0, col);
      const int64_t rl = std::min(r0, row), rh = std::max(r0, row);
      if ((mode == BLACKONWHITE || mode == WHITEONBLACK) && (shrink_x || shrink_y)) {
        // The scans a shrink drops are merged into the one it keeps.
        uint32_t acc = mode == BLACKONWHITE ? 0xFFFFFFFFu : 0u;
        for (int64_t y = rl; y <= rh; ++y) {
          for (int64_t x = cl; x <= ch; ++x) {
            const uint32_t p = src.At(static_cast<int>(x), static_cast<int>(y));
            acc = mode == BLACKONWHITE ? (acc & p) : (acc | p);
          }
        }
        out.pixels[at] = acc;
      } else {
        out.pixels[at] = src.At(static_cast<int>(col), static_cast<int>(row));
      }
    }
  }
  return out;
}

// Puts sampled pixels on the destination through its clip with a ROP.
void Apply(DeviceContext& d, Extent dx, Extent dy, const Sampled* s, DWORD rop) {
  const RECT area{static_cast<LONG>(dx.start), static_cast<LONG>(dy.start),
                  static_cast<LONG>(dx.start + dx.size), static_cast<LONG>(dy.start + dy.size)};
  const uint8_t code = static_cast<uint8_t>((rop >> 16) & 0xFF);
  Brush* brush = GdiTable::Get<Brush>(d.state.brush, OBJ_BRUSH);
  const bool pattern = UsesPattern(rop);
  const Surface& t = d.Target();
  vantor::platform::ForEachClipRect(d, area, [&](const RECT& r) {
    for (LONG y = r.top; y < r.bottom; ++y) {
      uint32_t* row = t.Row(y);
      const size_t base =
          s != nullptr ? static_cast<size_t>((y - dy.start) * s->width - dx.start) : 0;
      for (LONG x = r.left; x < r.right; ++x) {
        uint32_t src = 0;
        if (s != nullptr) {
          const size_t at = base + static_cast<size_t>(x);
          if (!s->valid[at]) continue;
          src = s->pixels[at];
        }
        uint32_t pat = 0;
        if (pattern) {
          if (brush == nullptr || brush->IsNull()) continue;
          if (!vantor::platform::BrushPixel(d, *brush, x, y, &pat)) continue;
        }
        row[x] = code == 0xCC ? src : vantor::platform::ApplyRop3(code, pat, src, row[x]);
      }
    }
  });
}

bool SaneExtents(int64_t a, int64_t b, int64_t c = 0, int64_t d = 0) {
  for (int64_t v : {a, b, c, d}) {
    if (v > kMaxExtent || v < -kMaxExtent) return false;
  }
  return true;
}

// Reads a DIB's pixels into a 32-bit top-down surface.
bool ReadDib(const BITMAPINFO* info, const void* bits, UINT usage, std::vector<uint32_t>* out,
             Surface* surface) {
  if (info == nullptr || bits == nullptr || usage != DIB_RGB_COLORS) return false;
  const BITMAPINFOHEADER& h = info->bmiHeader;
  if (h.biSize < sizeof(BITMAPINFOHEADER) || h.biWidth <= 0 || h.biHeight == 0 ||
      h.biHeight == INT32_MIN || h.biPlanes != 1) {
    return false;
  }
  const int64_t width = h.biWidth, height = h.biHeight < 0 ? -int64_t{h.biHeight} : h.biHeight;
  if (width > kMaxExtent || height > kMaxExtent) return false;
  const int bpp = h.biBitCount;
  if (bpp != 1 && bpp != 4 && bpp != 8 && bpp != 16 && bpp != 24 && bpp != 32) return false;
  if (h.biCompression != BI_RGB && !(h.biCompression == BI_BITFIELDS && (bpp == 16 || bpp == 32))) {
    return false;
  }
  const auto* table =
      reinterpret_cast<const RGBQUAD*>(reinterpret_cast<const char*>(info) + h.biSize);
  const DWORD* masks = reinterpret_cast<const DWORD*>(table);
  const uint32_t colors =
      bpp <= 8 ? (h.biClrUsed != 0 ? std::min<DWORD>(h.biClrUsed, 1u << bpp) : 1u << bpp) : 0;
  const size_t stride = static_cast<size_t>((width * bpp + 31) / 32 * 4);
  out->assign(static_cast<size_t>(width * height), 0);
  const auto* base = static_cast<const uint8_t*>(bits);
  const bool bottom_up = h.biHeight > 0;
  for (int64_t y = 0; y < height; ++y) {
    const uint8_t* row = base + stride * static_cast<size_t>(bottom_up ? height - 1 - y : y);
    uint32_t* o = out->data() + y * width;
    for (int64_t x = 0; x < width; ++x) {
      uint32_t p = 0;
      switch (bpp) {
        case 32: {
          std::memcpy(&p, row + x * 4, 4);
          if (h.biCompression == BI_BITFIELDS &&
              !(masks[0] == 0xFF0000 && masks[1] == 0xFF00 && masks[2] == 0xFF)) {
            auto field = [&](DWORD mask) {
              if (mask == 0) return 0u;
              int shift = 0;
              while (((mask >> shift) & 1) == 0) ++shift;
              const uint32_t v = (p & mask) >> shift, max = mask >> shift;
              return static_cast<uint32_t>(v * 255 / max);
            };
            p = (field(masks[0]) << 16) | (field(masks[1]) << 8) | field(masks[2]);
          }
          break;
        }
        case 24:
          p = row[x * 3] | (uint32_t{row[x * 3 + 1]} << 8) | (uint32_t{row[x * 3 + 2]} << 16);
          break;
        case 16: {
          const uint32_t v = row[x * 2] | (uint32_t{row[x * 2 + 1]} << 8);
          const bool is565 = h.biCompression == BI_BITFIELDS && masks[1] == 0x07E0;
          const uint32_t r = is565 ? (v >> 11) & 31 : (v >> 10) & 31;
          const uint32_t g = is565 ? ((v >> 5) & 63) * 255 / 63 : ((v >> 5) & 31) * 255 / 31;
          const uint32_t b = v & 31;
          p = ((r * 255 / 31) << 16) | (g << 8) | (b * 255 / 31);
          break;
        }
        default: {
          const int64_t bit = x * bpp;
          const uint32_t index = (row[bit / 8] >> (8 - bpp - bit % 8)) & ((1u << bpp) - 1);
          if (index < colors) {
            const RGBQUAD q = table[index];
            p = (uint32_t{q.rgbRed} << 16) | (uint32_t{q.rgbGreen} << 8) | q.rgbBlue;
          }
          break;
        }
      }
      o[x] = p;
    }
  }
  surface->pixels = out->data();
  surface->width = static_cast<int>(width);
  surface->height = static_cast<int>(height);
  surface->stride = static_cast<ptrdiff_t>(width);
  return true;
}

bool SameSurfaceOverlap(const Surface& a, const Surface& b) {
  return a.pixels == b.pixels && a.stride == b.stride;
}

// A copy of a surface part, so that a blit within one surface reads the
// pixels as they were before it started.
struct Snapshot {
  std::vector<uint32_t> pixels;
  Surface surface;
};

bool TakeSnapshot(const Surface& s, Snapshot* snap) {
  const int64_t n = int64_t{s.width} * s.height;
  if (n <= 0) return false;
  snap->pixels.resize(static_cast<size_t>(n));
  for (int y = 0; y < s.height; ++y) {
    std::memcpy(snap->pixels.data() + static_cast<size_t>(y) * static_cast<size_t>(s.width),
                s.Row(y), static_cast<size_t>(s.width) * 4);
  }
  snap->surface = Surface{snap->pixels.data(), s.width, s.height, s.width};
  return true;
}

// Blits without stretching or a pattern, the common case, straight from the
// source rows. Within one surface the rows go in the order that reads each
// source row before it is overwritten.
void Copy1to1(DeviceContext& d, Extent dx, Extent dy, const Surface& src, int64_t sx, int64_t sy,
              DWORD rop) {
  // Only the part with source pixels under it is drawn.
  const int64_t shift_x = sx - dx.start, shift_y = sy - dy.start;
  const int64_t left = std::max(dx.start, -shift_x), top = std::max(dy.start, -shift_y);
  const int64_t right = std::min(dx.start + dx.size, src.width - shift_x);
  const int64_t bottom = std::min(dy.start + dy.size, src.height - shift_y);
  if (left >= right || top >= bottom) return;
  const RECT area{static_cast<LONG>(left), static_cast<LONG>(top), static_cast<LONG>(right),
                  static_cast<LONG>(bottom)};
  const uint8_t code = static_cast<uint8_t>((rop >> 16) & 0xFF);
  const Surface& t = d.Target();
  bool same = SameSurfaceOverlap(src, t);
  Region part(area);
  part.Intersect(d.Clip());
  std::vector<RECT> rects = part.Rects();
  const Surface* from = &src;
  int64_t fx = shift_x, fy = shift_y;
  std::vector<uint32_t> copy;
  Surface snapshot;
  if (same && rects.size() > 1) {
    // Several clip rectangles within one surface: no order of them is safe
    // in every direction, so read from a copy of the source part.
    const int64_t w = right - left, h = bottom - top;
    copy.resize(static_cast<size_t>(w * h));
    for (int64_t y = 0; y < h; ++y) {
      std::memcpy(copy.data() + y * w,
                  src.Row(static_cast<int>(top + y + shift_y)) + (left + shift_x),
                  static_cast<size_t>(w) * 4);
    }
    snapshot =
        Surface{copy.data(), static_cast<int>(w), static_cast<int>(h), static_cast<ptrdiff_t>(w)};
    from = &snapshot;
    fx = -left;
    fy = -top;
    same = false;
  }
  // Moving down within one surface, the lowest rows go first; memmove keeps
  // each row safe sideways.
  const bool upward = same && shift_y < 0;
  std::vector<uint32_t> scratch;
  for (const RECT& r : rects) {
    const size_t n = static_cast<size_t>(r.right - r.left);
    for (LONG i = 0; i < r.bottom - r.top; ++i) {
      const LONG y = upward ? r.bottom - 1 - i : r.top + i;
      uint32_t* out = t.Row(y) + r.left;
      const uint32_t* in = from->Row(static_cast<int>(y + fy)) + (r.left + fx);
      if (code == 0xCC) {
        std::memmove(out, in, n * 4);
        continue;
      }
      if (same) {
        scratch.assign(in, in + n);
        in = scratch.data();
      }
      for (size_t k = 0; k < n; ++k) out[k] = vantor::platform::ApplyRop3(code, 0, in[k], out[k]);
    }
  }
}

BOOL StretchCore(DeviceContext& d, int64_t x, int64_t y, int64_t w, int64_t h, const Surface* src,
                 int64_t sx, int64_t sy, int64_t sw, int64_t sh, DWORD rop, int mode) {
  if (!SaneExtents(w, h, sw, sh)) return FALSE;
  if (w == 0 || h == 0) return TRUE;
  const Extent dx = Normalize(d.SurfaceX(0) + x, w), dy = Normalize(d.SurfaceY(0) + y, h);
  if (src == nullptr) {
    Apply(d, dx, dy, nullptr, rop);
    return TRUE;
  }
  if (sw == 0 || sh == 0) return FALSE;
  if (w == sw && h == sh && !UsesPattern(rop)) {
    Copy1to1(d, dx, dy, *src, Normalize(sx, sw).start, Normalize(sy, sh).start, rop);
    return TRUE;
  }
  Snapshot snap;
  if (SameSurfaceOverlap(*src, d.Target())) {
    if (!TakeSnapshot(*src, &snap)) return FALSE;
    src = &snap.surface;
  }
  const Sampled s = Sample(*src, dx, dy, Normalize(sx, sw), Normalize(sy, sh), mode);
  Apply(d, dx, dy, &s, rop);
  return TRUE;
}

}  // namespace

BOOL PatBlt(HDC dc, int x, int y, int width, int height, DWORD rop) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || UsesSource(rop)) return FALSE;
  const uint8_t code = static_cast<uint8_t>((rop >> 16) & 0xFF);
  Brush* b = GdiTable::Get<Brush>(d->state.brush, OBJ_BRUSH);
  if (code == 0xF0 && b != nullptr && b->tile.empty() && !b->IsNull() && width >= 0 &&
      height >= 0) {
    vantor::platform::FillSurfaceRect(*d, d->SurfaceRect(RECT{x, y, x + width, y + height}),
                                      ColorToPixel(b->log.lbColor));
    return TRUE;
  }
  return StretchCore(*d, x, y, width, height, nullptr, 0, 0, 0, 0, rop, COLORONCOLOR);
}

BOOL BitBlt(HDC dest, int x, int y, int width, int height, HDC src, int x_src, int y_src,
            DWORD rop) {
  DeviceContext* d = DcFromHandle(dest);
  if (d == nullptr) return FALSE;
  if (!UsesSource(rop)) return PatBlt(dest, x, y, width, height, rop);
  DeviceContext* s = DcFromHandle(src);
  if (s == nullptr) return FALSE;
  return StretchCore(*d, x, y, width, height, &s->Target(), s->SurfaceX(x_src), s->SurfaceY(y_src),
                     width, height, rop, COLORONCOLOR);
}

BOOL StretchBlt(HDC dest, int x, int y, int width, int height, HDC src, int x_src, int y_src,
                int src_width, int src_height, DWORD rop) {
  DeviceContext* d = DcFromHandle(dest);
  if (d == nullptr) return FALSE;
  if (!UsesSource(rop)) return PatBlt(dest, x, y, width, height, rop);
  DeviceContext* s = DcFromHandle(src);
  if (s == nullptr) return FALSE;
  return StretchCore(*d, x, y, width, height, &s->Target(), s->SurfaceX(x_src), s->SurfaceY(y_src),
                     src_width, src_height, rop, d->state.stretch_mode);
}

int StretchDIBits(HDC dc, int x_dest, int y_dest, int dest_width, int dest_height, int x_src,
                  int y_src, int src_width, int src_height, const void* bits,
                  const BITMAPINFO* info, UINT usage, DWORD rop) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr) return 0;
  std::vector<uint32_t> pixels;
  Surface s;
  if (!ReadDib(info, bits, usage, &pixels, &s)) return 0;
  // Bottom-up DIBs count source rows from the bottom.
  int64_t sy = y_src;
  if (info->bmiHeader.biHeight > 0) sy = int64_t{s.height} - y_src - src_height;
  if (!StretchCore(*d, x_dest, y_dest, dest_width, dest_height, &s, x_src, sy, src_width,
                   src_height, rop, d->state.stretch_mode)) {
    return 0;
  }
  return s.height;
}

int SetDIBitsToDevice(HDC dc, int x_dest, int y_dest, DWORD width, DWORD height, int x_src,
                      int y_src, UINT start_scan, UINT lines, const void* bits,
                      const BITMAPINFO* info, UINT usage) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || info == nullptr || bits == nullptr || lines == 0) return 0;
  if (width > kMaxExtent || height > kMaxExtent) return 0;
  // The bits hold scans start_scan .. start_scan + lines - 1 only; read them
  // as a DIB of that height and place it where those scans belong.
  BITMAPINFO band = *info;
  const LONG full = info->bmiHeader.biHeight;
  const int64_t abs_height = full < 0 ? -int64_t{full} : full;
  if (start_scan >= abs_height) return 0;
  const int64_t count = std::min<int64_t>(lines, abs_height - start_scan);
  band.bmiHeader.biHeight = static_cast<LONG>(full < 0 ? -count : count);
  if (info->bmiHeader.biBitCount <= 8 || info->bmiHeader.biCompression == BI_BITFIELDS) {
    // Colour tables and masks follow the header: keep reading them in place.
    band = *info;
    band.bmiHeader.biHeight = static_cast<LONG>(full < 0 ? -count : count);
  }
  std::vector<uint32_t> pixels;
  Surface s;
  const BITMAPINFO* use =
      info->bmiHeader.biBitCount <= 8 || info->bmiHeader.biCompression == BI_BITFIELDS ? info
                                                                                       : &band;
  if (use == info) {
    // Reading with the full header would overrun the band; only whole DIBs
    // are accepted with tables.
    if (count != abs_height || start_scan != 0) return 0;
  }
  if (!ReadDib(use, bits, usage, &pixels, &s)) return 0;
  // Source rows in the band, top-down: a bottom-up band's first scan is the
  // image's start_scan-th row from the bottom.
  int64_t top;
  if (full > 0) {
    const int64_t band_bottom_row = abs_height - 1 - start_scan;  // image row of band's scan 0
    const int64_t band_top_row = band_bottom_row - (count - 1);
    const int64_t src_top_row = abs_height - y_src - static_cast<int64_t>(height);
    top = src_top_row - band_top_row;
  } else {
    top = int64_t{y_src} - start_scan;
  }
  if (!StretchCore(*d, x_dest, y_dest, width, height, &s, x_src, top, width, height, SRCCOPY,
                   COLORONCOLOR)) {
    return 0;
  }
  return static_cast<int>(count);
}

BOOL AlphaBlend(HDC dest, int x, int y, int width, int height, HDC src, int x_src, int y_src,
                int src_width, int src_height, BLENDFUNCTION blend) {
  DeviceContext* d = DcFromHandle(dest);
  DeviceContext* s = DcFromHandle(src);
  if (d == nullptr || s == nullptr) return FALSE;
  if (blend.BlendOp != AC_SRC_OVER || blend.BlendFlags != 0 ||
      (blend.AlphaFormat != 0 && blend.AlphaFormat != AC_SRC_ALPHA)) {
    return FALSE;
  }
  if (width < 0 || height < 0 || src_width < 0 || src_height < 0) return FALSE;
  if (!SaneExtents(width, height, src_width, src_height)) return FALSE;
  // The source rectangle must lie inside the source surface.
  const Surface& ss = s->Target();
  const int64_t sx = s->SurfaceX(x_src), sy = s->SurfaceY(y_src);
  if (sx < 0 || sy < 0 || sx + src_width > ss.width || sy + src_height > ss.height) return FALSE;
  if (width == 0 || height == 0 || src_width == 0 || src_height == 0) return TRUE;
  const Extent dx = Normalize(d->SurfaceX(x), width), dy = Normalize(d->SurfaceY(y), height);
  if (SameSurfaceOverlap(ss, d->Target()) && dx.start < sx + src_width && sx < dx.start + width &&
      dy.start < sy + src_height && sy < dy.start + height) {
    return FALSE;
  }
  const RECT area{static_cast<LONG>(dx.start), static_cast<LONG>(dy.start),
                  static_cast<LONG>(dx.start + width), static_cast<LONG>(dy.start + height)};
  const uint32_t alpha = blend.SourceConstantAlpha;
  const bool per_pixel = blend.AlphaFormat == AC_SRC_ALPHA;
  const bool stretch = width != src_width || height != src_height;
  AxisMap mx, my;
  if (stretch) {
    mx = MapAxis(width, src_width, sx, false, ss.width);
    my = MapAxis(height, src_height, sy, false, ss.height, true);
  }
  std::vector<uint32_t> row_buffer;
  const Surface& t = d->Target();
  vantor::platform::ForEachClipRect(*d, area, [&](const RECT& r) {
    const size_t n = static_cast<size_t>(r.right - r.left);
    for (LONG py = r.top; py < r.bottom; ++py) {
      const int64_t j = py - dy.start;
      const uint32_t* srow;
      if (stretch) {
        row_buffer.resize(n);
        const uint32_t* line = ss.Row(static_cast<int>(my.pick[static_cast<size_t>(j)]));
        for (size_t i = 0; i < n; ++i) {
          row_buffer[i] = line[mx.pick[static_cast<size_t>(r.left - dx.start) + i]];
        }
        srow = row_buffer.data();
      } else {
        srow = ss.Row(static_cast<int>(sy + j)) + (sx + (r.left - dx.start));
      }
      uint32_t* drow = t.Row(py) + r.left;
      if (per_pixel) {
        vantor::platform::BlendPremultipliedConstant(drow, srow, n, alpha);
      } else {
        vantor::platform::BlendConstant(drow, srow, n, alpha);
      }
    }
  });
  return TRUE;
}

BOOL GradientFill(HDC dc, TRIVERTEX* vertices, ULONG vertex_count, void* mesh, ULONG mesh_count,
                  ULONG mode) {
  DeviceContext* d = DcFromHandle(dc);
  if (d == nullptr || vertices == nullptr || mesh == nullptr) return FALSE;
  if (mode != GRADIENT_FILL_RECT_H && mode != GRADIENT_FILL_RECT_V) return FALSE;
  const auto* rects = static_cast<const GRADIENT_RECT*>(mesh);
  for (ULONG m = 0; m < mesh_count; ++m) {
    if (rects[m].UpperLeft >= vertex_count || rects[m].LowerRight >= vertex_count) return FALSE;
  }
  const Surface& t = d->Target();
  for (ULONG m = 0; m < mesh_count; ++m) {
    TRIVERTEX v0 = vertices[rects[m].UpperLeft], v1 = vertices[rects[m].LowerRight];
    const bool horizontal = mode == GRADIENT_FILL_RECT_H;
    // Colours run from the vertex on the left (or top) to the other one.
    if (horizontal ? v0.x > v1.x : v0.y > v1.y) std::swap(v0, v1);
    const int64_t x0 = std::min(v0.x, v1.x), x1 = std::max(v0.x, v1.x);
    const int64_t y0 = std::min(v0.y, v1.y), y1 = std::max(v0.y, v1.y);
    if (!SaneExtents(x1 - x0, y1 - y0)) return FALSE;
    const int64_t len = horizontal ? v1.x - v0.x : v1.y - v0.y;
    if (len <= 0 || x1 == x0 || y1 == y0) continue;
    auto color_at = [&](int64_t pos) {
      auto mix = [&](COLOR16 a, COLOR16 b) {
        return static_cast<uint32_t>((int64_t{a} * (len - pos) + int64_t{b} * pos) / len / 256);
      };
      return (mix(v0.Alpha, v1.Alpha) << 24) | (mix(v0.Red, v1.Red) << 16) |
             (mix(v0.Green, v1.Green) << 8) | mix(v0.Blue, v1.Blue);
    };
    const LONG ox = d->SurfaceX(0), oy = d->SurfaceY(0);
    const RECT area{static_cast<LONG>(x0 + ox), static_cast<LONG>(y0 + oy),
                    static_cast<LONG>(x1 + ox), static_cast<LONG>(y1 + oy)};
    if (horizontal) {
      std::vector<uint32_t> line(static_cast<size_t>(x1 - x0));
      for (int64_t i = 0; i < x1 - x0; ++i) line[static_cast<size_t>(i)] = color_at(i);
      vantor::platform::ForEachClipRect(*d, area, [&](const RECT& r) {
        for (LONG py = r.top; py < r.bottom; ++py) {
          std::memcpy(t.Row(py) + r.left, line.data() + (r.left - area.left),
                      static_cast<size_t>(r.right - r.left) * 4);
        }
      });
    } else {
      vantor::platform::ForEachClipRect(*d, area, [&](const RECT& r) {
        for (LONG py = r.top; py < r.bottom; ++py) {
          const uint32_t c = color_at(py - area.top);
          std::fill(t.Row(py) + r.left, t.Row(py) + r.right, c);
        }
      });
    }
  }
  return TRUE;
}

BOOL TransparentBlt(HDC dest, int x, int y, int width, int height, HDC src, int x_src, int y_src,
                    int src_width, int src_height, UINT transparent) {
  DeviceContext* d = DcFromHandle(dest);
  DeviceContext* s = DcFromHandle(src);
  if (d == nullptr || s == nullptr) return FALSE;
  if (width <= 0 || height <= 0 || src_width <= 0 || src_height <= 0) return FALSE;
  if (!SaneExtents(width, height, src_width, src_height)) return FALSE;
  Snapshot snap;
  const Surface* ss = &s->Target();
  if (SameSurfaceOverlap(*ss, d->Target())) {
    if (!TakeSnapshot(*ss, &snap)) return FALSE;
    ss = &snap.surface;
  }
  const Extent dx = Normalize(d->SurfaceX(x), width), dy = Normalize(d->SurfaceY(y), height);
  Sampled sampled = Sample(*ss, dx, dy, Normalize(s->SurfaceX(x_src), src_width),
                           Normalize(s->SurfaceY(y_src), src_height), d->state.stretch_mode);
  // The key compares colours only, whatever the alpha byte holds.
  const uint32_t key = ColorToPixel(transparent);
  for (size_t i = 0; i < sampled.pixels.size(); ++i) {
    if ((sampled.pixels[i] & 0x00FFFFFF) == key) sampled.valid[i] = 0;
  }
  Apply(*d, dx, dy, &sampled, SRCCOPY);
  return TRUE;
}
