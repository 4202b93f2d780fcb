#include "imaging/Scaler.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace vantor::imaging {

namespace {

// Weights are in 1/256 steps: a product of a channel and a weight stays within
// 16 bits, and a product of two weights within 17.
constexpr int32_t kOne = 256;

struct Tap {
  int32_t first;   // source index of the left (or upper) neighbour
  int32_t second;  // and of the right (or lower) one
  int32_t weight;  // of the second, 0 to 256
};

// For destination positions [start, start + count) of `dest` along one axis,
// which source positions of [srcStart, srcStart + srcSize) they read.
// Bilinear sampling puts pixel centres on pixel centres, so that a 1:1 scale
// reproduces the source and an enlargement spreads edge pixels evenly.
std::vector<Tap> Taps(int32_t srcStart, int32_t srcSize, int32_t dest, bool mirror, bool bilinear,
                      int32_t start, int32_t count) {
  std::vector<Tap> taps(static_cast<size_t>(count));
  const double step = static_cast<double>(srcSize) / static_cast<double>(dest);
  for (int32_t i = 0; i < count; ++i) {
    const int32_t d = mirror ? dest - 1 - (start + i) : start + i;
    Tap& t = taps[static_cast<size_t>(i)];
    if (!bilinear) {
      // Truncation, in integers so that no rounding of the step can move a
      // pixel over its edge.
      const int64_t s = static_cast<int64_t>(d) * srcSize / dest;
      t.first = t.second = srcStart + static_cast<int32_t>(s);
      t.weight = 0;
      continue;
    }
    double p = (static_cast<double>(d) + 0.5) * step - 0.5;
    p = std::clamp(p, 0.0, static_cast<double>(srcSize - 1));
    const int32_t i0 = static_cast<int32_t>(p);
    const int32_t i1 = std::min(i0 + 1, srcSize - 1);
    t.first = srcStart + i0;
    t.second = srcStart + i1;
    t.weight = static_cast<int32_t>(std::lround((p - i0) * kOne));
    if (i1 == i0) t.weight = 0;
  }
  return taps;
}

// One source row resampled across the window's columns, each channel times
// 256 so that the vertical step keeps the fraction.
void Horizontal(const uint8_t* row, const std::vector<Tap>& columns, uint16_t* out) {
  for (size_t x = 0; x < columns.size(); ++x) {
    const Tap& t = columns[x];
    const uint8_t* a = row + static_cast<size_t>(t.first) * 4;
    const uint8_t* b = row + static_cast<size_t>(t.second) * 4;
    const int32_t w1 = t.weight, w0 = kOne - w1;
    for (int c = 0; c < 4; ++c) {
      out[x * 4 + c] = static_cast<uint16_t>(a[c] * w0 + b[c] * w1);
    }
  }
}

}  // namespace

bool ScaleWindow(const ScaleRequest& r, uint32_t* out, size_t outStride) {
  const PixelView& s = r.source;
  if (s.Empty() || out == nullptr || r.srcWidth <= 0 || r.srcHeight <= 0 || r.srcX < 0 ||
      r.srcY < 0 || r.srcX > s.width - r.srcWidth || r.srcY > s.height - r.srcHeight ||
      r.destWidth <= 0 || r.destHeight <= 0 || r.windowWidth <= 0 || r.windowHeight <= 0 ||
      r.windowX < 0 || r.windowY < 0 || r.windowX > r.destWidth - r.windowWidth ||
      r.windowY > r.destHeight - r.windowHeight || outStride < static_cast<size_t>(r.windowWidth)) {
    return false;
  }
  const std::vector<Tap> columns =
      Taps(r.srcX, r.srcWidth, r.destWidth, r.mirrorX, r.bilinear, r.windowX, r.windowWidth);
  const std::vector<Tap> rows =
      Taps(r.srcY, r.srcHeight, r.destHeight, r.mirrorY, r.bilinear, r.windowY, r.windowHeight);

  if (!r.bilinear) {
    for (int32_t y = 0; y < r.windowHeight; ++y) {
      const auto* line =
          reinterpret_cast<const uint32_t*>(s.Row(rows[static_cast<size_t>(y)].first));
      uint32_t* o = out + static_cast<size_t>(y) * outStride;
      for (int32_t x = 0; x < r.windowWidth; ++x) {
        uint32_t px;
        std::memcpy(&px, line + columns[static_cast<size_t>(x)].first, 4);
        o[x] = px;
      }
    }
    return true;
  }

  // Two horizontally resampled rows are kept, keyed by their source row, so
  // that an enlargement resamples each source row once.
  const size_t n = static_cast<size_t>(r.windowWidth) * 4;
  std::vector<uint16_t> cache[2] = {std::vector<uint16_t>(n), std::vector<uint16_t>(n)};
  int32_t cached[2] = {-1, -1};
  auto find = [&](int32_t row) { return cached[0] == row ? 0 : cached[1] == row ? 1 : -1; };
  auto fill = [&](int slot, int32_t row) {
    Horizontal(s.Row(row), columns, cache[slot].data());
    cached[slot] = row;
  };
  for (int32_t y = 0; y < r.windowHeight; ++y) {
    const Tap& t = rows[static_cast<size_t>(y)];
    int a = find(t.first);
    int b = t.second == t.first ? a : find(t.second);
    if (a < 0 && b < 0) {
      fill(0, t.first);
      a = 0;
      b = 0;
      if (t.second != t.first) fill(b = 1, t.second);
    } else if (a < 0) {
      fill(a = 1 - b, t.first);
    } else if (b < 0) {
      fill(b = 1 - a, t.second);
    }
    const uint16_t* top = cache[a].data();
    const uint16_t* bottom = cache[b].data();
    const uint32_t w1 = static_cast<uint32_t>(t.weight), w0 = kOne - w1;
    auto* o = reinterpret_cast<uint8_t*>(out + static_cast<size_t>(y) * outStride);
    for (size_t i = 0; i < n; ++i) {
      o[i] = static_cast<uint8_t>((top[i] * w0 + bottom[i] * w1 + 32768u) >> 16);
    }
  }
  return true;
}

}  // namespace vantor::imaging
