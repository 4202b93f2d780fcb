#include "imaging/HandBlend.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <vector>

#include "platform/Gdi.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vantor::imaging {

namespace {

// A buffer the blend makes for itself is refused beyond this many pixels
// (1 GiB), as the pictures themselves are.
constexpr int64_t kMaxBufferPixels = int64_t{1} << 28;

// Pixels in one band of the read-back through BitBlt (256 KiB).
constexpr int32_t kBandPixels = 1 << 16;

inline void BlendPixel(uint8_t* d, const uint8_t* s, uint32_t k) {
  const uint32_t a = s[3];
  if (a == 0) return;
  if (k == 255 && a == 255) {
    std::memcpy(d, s, 4);
    return;
  }
  const uint32_t inv = 255 - DivideBy255(a * k);
  for (int c = 0; c < 4; ++c) {
    d[c] = static_cast<uint8_t>(std::min(DivideBy255(d[c] * inv + s[c] * k), 255u));
  }
}

#if defined(__SSE2__)
// floor(v / 255) on 16-bit lanes.
inline __m128i Div255(__m128i v) {
  return _mm_srli_epi16(_mm_mulhi_epu16(v, _mm_set1_epi16(static_cast<short>(0x8081))), 7);
}

// Two pixels widened to 16-bit lanes.
inline __m128i BlendTwo(__m128i d16, __m128i s16, __m128i k16) {
  const __m128i a16 = _mm_shufflehi_epi16(_mm_shufflelo_epi16(s16, 0xFF), 0xFF);
  const __m128i inv = _mm_sub_epi16(_mm_set1_epi16(255), Div255(_mm_mullo_epi16(a16, k16)));
  // A source that is not truly pre-multiplied could pass 65535; saturate.
  return Div255(_mm_adds_epu16(_mm_mullo_epi16(d16, inv), _mm_mullo_epi16(s16, k16)));
}
#endif

// Source rows for the part of the destination that is visible: the first
// row's first pixel and the distance in bytes from one row to the next.
struct Rows {
  const uint8_t* first = nullptr;
  ptrdiff_t stride = 0;
};

// A window of the destination rectangle, relative to its corner.
struct Window {
  int32_t x = 0, y = 0, width = 0, height = 0;
};

// A top-down 32-bit DIB section selected into a memory DC: the scratch copy
// of the destination that the blend reads back, works on and writes again.
class Scratch {
 public:
  Scratch(int32_t width, int32_t height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap_ == nullptr || bits == nullptr) return;
    dc_ = CreateCompatibleDC(nullptr);
    if (dc_ == nullptr) return;
    previous_ = SelectObject(dc_, bitmap_);
    bits_ = static_cast<uint8_t*>(bits);
  }
  ~Scratch() {
    if (dc_ != nullptr) {
      if (previous_ != nullptr) SelectObject(dc_, previous_);
      DeleteDC(dc_);
    }
    if (bitmap_ != nullptr) DeleteObject(bitmap_);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  bool Ok() const { return bits_ != nullptr; }
  HDC dc() const { return dc_; }
  uint8_t* bits() const { return bits_; }

 private:
  HBITMAP bitmap_ = nullptr;
  HDC dc_ = nullptr;
  HGDIOBJ previous_ = nullptr;
  uint8_t* bits_ = nullptr;
};

// Pixels the blend can reach in memory: the top row and the distance in bytes
// from a row to the one below it, with the shift from the caller's
// coordinates to the memory's.
struct Memory {
  uint8_t* top = nullptr;
  ptrdiff_t stride = 0;
  int32_t width = 0, height = 0;
  int32_t shiftX = 0, shiftY = 0;
  uint8_t* Row(int64_t y) const { return top + stride * static_cast<ptrdiff_t>(y); }
};

// A memory DC over a 32-bit DIB section, with no clip region of its user's,
// shows exactly its bitmap: the blend then works on the bitmap's pixels
// where they lie instead of reading them back and writing them again, which
// gives the same pixels for half the memory traffic. Other DCs (a window's,
// a clipped one) go through BitBlt.
bool DirectPixels(HDC dc, Memory& m) {
  if (GetObjectType(dc) != OBJ_MEMDC) return false;
  HRGN probe = CreateRectRgn(0, 0, 0, 0);
  if (probe == nullptr) return false;
  const int clipped = GetClipRgn(dc, probe);
  DeleteObject(probe);
  if (clipped != 0) return false;
  DIBSECTION ds{};
  HGDIOBJ bitmap = GetCurrentObject(dc, OBJ_BITMAP);
  if (bitmap == nullptr || GetObjectW(bitmap, sizeof ds, &ds) != static_cast<int>(sizeof ds) ||
      ds.dsBm.bmBits == nullptr || ds.dsBm.bmBitsPixel != 32 || ds.dsBm.bmWidth <= 0 ||
      ds.dsBm.bmHeight <= 0 || ds.dsBm.bmWidthBytes != ds.dsBm.bmWidth * 4) {
    return false;
  }
  POINT origin{};
  if (!GetViewportOrgEx(dc, &origin)) return false;
  const ptrdiff_t stride = ds.dsBm.bmWidthBytes;
  auto* base = static_cast<uint8_t*>(ds.dsBm.bmBits);
  if (ds.dsBmih.biHeight > 0) {  // bottom-up
    m.top = base + stride * (ds.dsBm.bmHeight - 1);
    m.stride = -stride;
  } else {
    m.top = base;
    m.stride = stride;
  }
  m.width = ds.dsBm.bmWidth;
  m.height = ds.dsBm.bmHeight;
  m.shiftX = origin.x;
  m.shiftY = origin.y;
  return true;
}

// Blends a picture already at its destination size into the target over the
// rectangle (x, y, width, height), visiting only what the target can show.
// `fetch(window, rows)` supplies the source rows of a window.
template <class Fetch>
bool Composite(const RenderTarget& target, int64_t x, int64_t y, int64_t width, int64_t height,
               uint32_t k, int32_t grayScale, Fetch fetch) {
  Memory memory;
  bool direct = false;
  RECT bounds{};
  if (target.dc != nullptr) {
    if (GetClipBox(target.dc, &bounds) == ERROR) return false;
    direct = DirectPixels(target.dc, memory);
  } else {
    if (target.bits == nullptr || target.width <= 0 || target.height <= 0) return false;
    bounds = RECT{0, 0, target.width, target.height};
    memory.top = target.bits + static_cast<size_t>(target.width) * 4 * (target.height - 1);
    memory.stride = -static_cast<ptrdiff_t>(target.width) * 4;
    memory.width = target.width;
    memory.height = target.height;
    direct = true;
  }
  int64_t left = std::max<int64_t>(x, bounds.left);
  int64_t top = std::max<int64_t>(y, bounds.top);
  int64_t right = std::min<int64_t>(x + width, bounds.right);
  int64_t bottom = std::min<int64_t>(y + height, bounds.bottom);
  if (direct) {
    // The clip box of such a DC is its bitmap; holding to the memory as well
    // costs nothing and keeps a surprise from writing out of bounds.
    left = std::max<int64_t>(left, -int64_t{memory.shiftX});
    top = std::max<int64_t>(top, -int64_t{memory.shiftY});
    right = std::min<int64_t>(right, int64_t{memory.width} - memory.shiftX);
    bottom = std::min<int64_t>(bottom, int64_t{memory.height} - memory.shiftY);
  }
  if (left >= right || top >= bottom) return true;  // all of it falls outside
  const Window window{static_cast<int32_t>(left - x), static_cast<int32_t>(top - y),
                      static_cast<int32_t>(right - left), static_cast<int32_t>(bottom - top)};
  Rows rows;
  if (!fetch(window, rows)) return false;

  const bool gray = grayScale != -1;
  const GrayWeights weights = GrayFormula(grayScale);
  const size_t n = static_cast<size_t>(window.width);
  auto blend = [&](uint8_t* d, int32_t row) {
    const uint8_t* s = rows.first + rows.stride * row;
    if (gray) {
      BlendRowGray(d, s, n, k, weights);
    } else {
      BlendRow(d, s, n, k);
    }
  };
  if (direct) {
    // Rows are visited in the target's memory order; the source's next row
    // is asked for ahead, since its order may run the other way, which the
    // processor's own prefetching does not follow.
    const int32_t step = memory.stride < 0 ? -1 : 1;
    int32_t r = step < 0 ? window.height - 1 : 0;
    for (int32_t i = 0; i < window.height; ++i, r += step) {
      if (i + 1 < window.height) {
        const uint8_t* next = rows.first + rows.stride * (r + step);
        for (size_t b = 0; b < n * 4; b += 64) __builtin_prefetch(next + b);
      }
      blend(memory.Row(top + r + memory.shiftY) + (left + memory.shiftX) * 4, r);
    }
    return true;
  }
  // Read back, blended and written again a band of rows at a time: a small
  // scratch stays in the cache and costs little to make.
  const int32_t band = std::clamp<int32_t>(kBandPixels / window.width, 1, window.height);
  Scratch scratch(window.width, band);
  if (!scratch.Ok()) return false;
  const int l = static_cast<int>(left);
  for (int32_t first = 0; first < window.height; first += band) {
    const int32_t count = std::min(band, window.height - first);
    const int t = static_cast<int>(top + first);
    if (!BitBlt(scratch.dc(), 0, 0, window.width, count, target.dc, l, t, SRCCOPY)) return false;
    for (int32_t r = 0; r < count; ++r) blend(scratch.bits() + n * 4 * r, first + r);
    if (!BitBlt(target.dc, l, t, window.width, count, scratch.dc(), 0, 0, SRCCOPY)) return false;
  }
  return true;
}

bool Reserve(std::vector<uint32_t>& buffer, int64_t pixels) {
  if (pixels <= 0 || pixels > kMaxBufferPixels) return false;
  try {
    buffer.assign(static_cast<size_t>(pixels), 0);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

// What the blend does to a copy before it blends: light, and for a picture
// drawn without its alpha, every pixel made opaque.
void Prepare(uint32_t* pixels, size_t count, const RenderJob& job) {
  auto* bytes = reinterpret_cast<uint8_t*>(pixels);
  if (job.light != 0) LightTable(job.light).ApplyRow(bytes, count);
  if (!job.blend) {
    for (size_t i = 0; i < count; ++i) bytes[i * 4 + 3] = 255;
  }
}

}  // namespace

GrayWeights GrayFormula(int32_t formula) {
  switch (formula) {
    case -1:
      return {1000, 1000, 1000};
    case 1:
      return {213, 715, 72};
    case 2:
      return {333, 334, 333};
    case 3:
      return {800, 100, 100};
    case 4:
      return {100, 800, 100};
    case 5:
      return {100, 100, 800};
    case 6:
      return {450, 450, 100};
    case 7:
      return {100, 450, 450};
    default:
      return {299, 587, 114};
  }
}

void BlendRow(uint8_t* dst, const uint8_t* src, size_t count, uint32_t k) {
  if (k == 0) return;
  size_t i = 0;
#if defined(__SSE2__)
  const __m128i zero = _mm_setzero_si128();
  const __m128i alphaBits = _mm_set1_epi32(static_cast<int>(0xFF000000u));
  const __m128i k16 = _mm_set1_epi16(static_cast<short>(k));
  for (; i + 4 <= count; i += 4) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + i * 4));
    const __m128i a = _mm_and_si128(s, alphaBits);
    const __m128i clear = _mm_cmpeq_epi32(a, zero);
    const int clearMask = _mm_movemask_epi8(clear);
    if (clearMask == 0xFFFF) continue;  // wholly transparent: nothing changes
    if (k == 255 && _mm_movemask_epi8(_mm_cmpeq_epi32(a, alphaBits)) == 0xFFFF) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i * 4), s);
      continue;
    }
    const __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i*>(dst + i * 4));
    const __m128i lo = BlendTwo(_mm_unpacklo_epi8(d, zero), _mm_unpacklo_epi8(s, zero), k16);
    const __m128i hi = BlendTwo(_mm_unpackhi_epi8(d, zero), _mm_unpackhi_epi8(s, zero), k16);
    __m128i out = _mm_packus_epi16(lo, hi);
    if (clearMask != 0) out = _mm_or_si128(_mm_and_si128(clear, d), _mm_andnot_si128(clear, out));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i * 4), out);
  }
#endif
  for (; i < count; ++i) BlendPixel(dst + i * 4, src + i * 4, k);
}

void BlendRowGray(uint8_t* dst, const uint8_t* src, size_t count, uint32_t k,
                  const GrayWeights& weights) {
  if (k == 0) return;
  for (size_t i = 0; i < count; ++i) {
    const uint8_t* s = src + i * 4;
    if (s[3] == 0) continue;
    const auto g = static_cast<uint8_t>(std::min(GrayOf(s, weights), 255u));
    const uint8_t grey[4] = {g, g, g, s[3]};
    uint8_t* d = dst + i * 4;
    // No shortcut for opaque pixels here: the grey is what replaces them.
    const uint32_t inv = 255 - DivideBy255(s[3] * k);
    for (int c = 0; c < 4; ++c) {
      d[c] = static_cast<uint8_t>(std::min(DivideBy255(d[c] * inv + grey[c] * k), 255u));
    }
  }
}

LightTable::LightTable(double percent) {
  const double f = percent / 100.0 * 255.0;
  for (int a = 0; a < 256; ++a) {
    amount_[a] = static_cast<int32_t>(std::trunc(a * f)) / 255;
  }
}

void LightTable::ApplyRow(uint8_t* bgra, size_t count) const {
  for (size_t i = 0; i < count; ++i) {
    uint8_t* p = bgra + i * 4;
    const int32_t a = p[3];
    if (a == 0) continue;
    const int32_t add = amount_[a];
    for (int c = 0; c < 3; ++c) p[c] = static_cast<uint8_t>(std::clamp(p[c] + add, 0, a));
  }
}

void GrayRow(uint8_t* bgra, size_t count, const GrayWeights& weights) {
  for (size_t i = 0; i < count; ++i) {
    uint8_t* p = bgra + i * 4;
    if (p[3] == 0) continue;
    const auto g = static_cast<uint8_t>(std::min(GrayOf(p, weights), 255u));
    p[0] = p[1] = p[2] = g;
  }
}

void InverseRow(uint8_t* bgra, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    uint8_t* p = bgra + i * 4;
    const uint8_t a = p[3];
    if (a == 0) continue;
    // A channel above its alpha is not pre-multiplied; it inverts to 0.
    for (int c = 0; c < 3; ++c) p[c] = static_cast<uint8_t>(a > p[c] ? a - p[c] : 0);
  }
}

bool HandBlendPath::Draw(const RenderJob& job) {
  if (job.source.Empty() || job.destWidth <= 0 || job.destHeight <= 0 || job.srcWidth <= 0 ||
      job.srcHeight <= 0) {
    return false;
  }
  if (job.rotated) return DrawRotated(job);
  // A picture drawn 1:1 with nothing to change is read in place; anything
  // else goes through a copy of the visible window.
  const bool copy = job.Stretched() || job.Mirrored() || job.light != 0 || !job.blend;
  std::vector<uint32_t> buffer;
  auto fetch = [&](const Window& w, Rows& rows) {
    if (!copy) {
      rows.first = job.source.Row(job.srcY + w.y) + static_cast<size_t>(job.srcX + w.x) * 4;
      rows.stride = -static_cast<ptrdiff_t>(job.source.width) * 4;
      return true;
    }
    if (!Reserve(buffer, int64_t{w.width} * w.height)) return false;
    ScaleRequest request;
    request.source = job.source;
    request.srcX = job.srcX;
    request.srcY = job.srcY;
    request.srcWidth = job.srcWidth;
    request.srcHeight = job.srcHeight;
    request.destWidth = job.destWidth;
    request.destHeight = job.destHeight;
    request.mirrorX = job.mirrorX;
    request.mirrorY = job.mirrorY;
    request.bilinear = job.highQuality;
    request.windowX = w.x;
    request.windowY = w.y;
    request.windowWidth = w.width;
    request.windowHeight = w.height;
    if (!ScaleWindow(request, buffer.data(), static_cast<size_t>(w.width))) return false;
    Prepare(buffer.data(), buffer.size(), job);
    rows.first = reinterpret_cast<const uint8_t*>(buffer.data());
    rows.stride = static_cast<ptrdiff_t>(w.width) * 4;
    return true;
  };
  return Composite(job.target, job.destX, job.destY, job.destWidth, job.destHeight,
                   job.ConstantAlpha(), job.grayScale, fetch);
}

bool HandBlendPath::DrawRotated(const RenderJob& job) {
  const int64_t w = job.destWidth, h = job.destHeight;
  if (w > kMaxBufferPixels || h > kMaxBufferPixels) return false;
  const auto side = static_cast<int64_t>(std::sqrt(static_cast<double>(w * w + h * h)));
  if (side <= 0 || side * side > kMaxBufferPixels) return false;
  // The picture at its destination size, mirrored and lightened, is what
  // turns.
  std::vector<uint32_t> scaled;
  if (!Reserve(scaled, w * h)) return false;
  ScaleRequest request;
  request.source = job.source;
  request.srcX = job.srcX;
  request.srcY = job.srcY;
  request.srcWidth = job.srcWidth;
  request.srcHeight = job.srcHeight;
  request.destWidth = job.destWidth;
  request.destHeight = job.destHeight;
  request.mirrorX = job.mirrorX;
  request.mirrorY = job.mirrorY;
  request.bilinear = job.highQuality;
  request.windowWidth = job.destWidth;
  request.windowHeight = job.destHeight;
  if (!ScaleWindow(request, scaled.data(), static_cast<size_t>(w))) return false;
  Prepare(scaled.data(), scaled.size(), job);

  // Whole degrees, turned clockwise on the screen: each buffer pixel looks
  // back by the opposite angle to find its source.
  const double pi = 4.0 * std::atan(1.0);
  // Reduced before it is made whole, which keeps a huge angle in range and
  // gives the same whole degrees, 360 being even.
  const auto degrees =
      static_cast<int64_t>(std::nearbyint(std::fmod(static_cast<double>(job.angle), 360.0))) % 360;
  const double theta = static_cast<double>(-degrees) * pi / 180.0;
  const double cosine = std::cos(theta), sine = std::sin(theta);
  const double cx = static_cast<double>(w) / 2.0, cy = static_cast<double>(h) / 2.0;
  const double half = static_cast<double>(side) / 2.0;
  const double placeX = std::floor(static_cast<double>(job.destX) + cx - half);
  const double placeY = std::floor(static_cast<double>(job.destY) + cy - half);
  // Distances are taken from the picture's own centre, not the buffer's, so
  // that placing the buffer on whole pixels moves nothing by half a pixel.
  const double originX = placeX - (static_cast<double>(job.destX) + cx) + 0.5;
  const double originY = placeY - (static_cast<double>(job.destY) + cy) + 0.5;

  std::vector<uint32_t> turned;
  auto fetch = [&](const Window& win, Rows& rows) {
    if (!Reserve(turned, int64_t{win.width} * win.height)) return false;
    for (int32_t by = 0; by < win.height; ++by) {
      const double dy = originY + static_cast<double>(win.y + by);
      uint32_t* out = turned.data() + static_cast<size_t>(by) * static_cast<size_t>(win.width);
      for (int32_t bx = 0; bx < win.width; ++bx) {
        const double dx = originX + static_cast<double>(win.x + bx);
        const double sx = dx * cosine - dy * sine + cx;
        const double sy = dx * sine + dy * cosine + cy;
        if (sx >= 0 && sy >= 0 && sx < static_cast<double>(w) && sy < static_cast<double>(h)) {
          out[bx] =
              scaled[static_cast<size_t>(sy) * static_cast<size_t>(w) + static_cast<size_t>(sx)];
        }
      }
    }
    rows.first = reinterpret_cast<const uint8_t*>(turned.data());
    rows.stride = static_cast<ptrdiff_t>(win.width) * 4;
    return true;
  };
  return Composite(job.target, static_cast<int64_t>(placeX), static_cast<int64_t>(placeY), side,
                   side, job.ConstantAlpha(), job.grayScale, fetch);
}

}  // namespace vantor::imaging
