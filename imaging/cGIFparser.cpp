#include "imaging/cGIFparser.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <numeric>

#include "imaging/GifLzw.h"
#include "platform/User.h"

namespace vantor::imaging {

namespace {

uint16_t Le16(std::span<const uint8_t> d, size_t at) {
  return static_cast<uint16_t>(d[at] | (d[at + 1] << 8));
}

bool SignatureMatches(std::span<const uint8_t> d) {
  if (d.size() < 6) return false;
  char text[6];
  for (size_t i = 0; i < 6; ++i) {
    const auto c = static_cast<char>(d[i]);
    text[i] = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return std::memcmp(text, "gif89a", 6) == 0 || std::memcmp(text, "gif87a", 6) == 0;
}

// Reads `entries` colours of 3 bytes into a table of 256 B, G, R, A words
// (alpha 255); entries past the file's palette stay black.
void ReadColourTable(std::span<const uint8_t> d, size_t at, size_t entries,
                     std::array<uint32_t, 256>& table) {
  table.fill(0xFF000000u);
  for (size_t i = 0; i < entries && i < 256; ++i) {
    const size_t p = at + i * 3;
    table[i] = 0xFF000000u | (uint32_t{d[p]} << 16) | (uint32_t{d[p + 1]} << 8) | d[p + 2];
  }
}

void PutBgra(uint8_t* px, uint32_t argb) {
  px[0] = static_cast<uint8_t>(argb);
  px[1] = static_cast<uint8_t>(argb >> 8);
  px[2] = static_cast<uint8_t>(argb >> 16);
  px[3] = static_cast<uint8_t>(argb >> 24);
}

bool LoadFirstFrame(std::span<const uint8_t> d, Pixels& out) {
  if (!SignatureMatches(d) || d.size() < 13) return false;
  std::array<uint32_t, 256> palette;
  palette.fill(0xFF000000u);
  size_t pos = 13;
  if (d[10] & 0x80) {
    const size_t entries = size_t{2} << (d[10] & 7);
    if (pos + entries * 3 > d.size()) return false;
    ReadColourTable(d, pos, entries, palette);
    pos += entries * 3;
  }

  bool transparent = false;
  uint8_t transparentIndex = 0;
  while (pos < d.size()) {
    const uint8_t block = d[pos++];
    if (block == 0) continue;
    if (block == 0x21) {
      if (pos >= d.size()) return false;
      const uint8_t label = d[pos++];
      if (label == 0xF9 && pos < d.size() && d[pos] >= 4 && pos + 4 < d.size()) {
        transparent = (d[pos + 1] & 1) != 0;
        transparentIndex = d[pos + 4];
      }
      pos = SkipGifSubBlocks(d, pos);
      continue;
    }
    if (block != 0x2C) return false;

    // The first frame, and the only one this reader wants.
    if (pos + 9 > d.size()) return false;
    const int32_t width = Le16(d, pos + 4);
    const int32_t height = Le16(d, pos + 6);
    const uint8_t packed = d[pos + 8];
    pos += 9;
    if (packed & 0x80) {
      const size_t entries = size_t{2} << (packed & 7);
      if (pos + entries * 3 > d.size()) return false;
      ReadColourTable(d, pos, entries, palette);
      pos += entries * 3;
    }
    if (width == 0 || height == 0 || pos >= d.size()) return false;
    const uint64_t area = static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
    if (!GifAreaIsPlausible(area, d.size() - pos)) return false;
    const bool interlaced = (packed & 0x40) != 0;

    std::vector<uint8_t> indexes;
    const size_t produced = DecodeGifImage(d, pos, width, height, interlaced, indexes);
    if (produced == 0) return false;
    if (!out.Allocate(width, height)) return false;  // transparent to begin with
    bool anyClear = produced < area;
    ForEachDecodedRow(produced, width, height, interlaced, [&](int32_t y, int32_t n) {
      const uint8_t* src = indexes.data() + static_cast<size_t>(y) * static_cast<size_t>(width);
      uint8_t* dst = out.Row(y);
      for (int32_t x = 0; x < n; ++x, dst += 4) {
        const uint8_t i = src[x];
        if (transparent && i == transparentIndex) {
          anyClear = true;
          continue;
        }
        PutBgra(dst, palette[i]);
      }
    });
    out.alpha = anyClear ? Alpha_Simple : Alpha_None;
    out.format = Image_GIF;
    return true;
  }
  return false;
}

// ------------------------------------------------------------------ writing

// Straight colours, 0x00RRGGBB, of the pixels kept, or -1 for the ones that
// become transparent.
std::vector<int32_t> KeptColours(const Pixels& in, int32_t tolerance,
                                 std::optional<COLORREF> fill) {
  const size_t count = static_cast<size_t>(in.width) * static_cast<size_t>(in.height);
  std::vector<int32_t> colours(count);
  size_t k = 0;
  for (int32_t y = 0; y < in.height; ++y) {
    const uint8_t* px = in.Row(y);
    for (int32_t x = 0; x < in.width; ++x, px += 4) {
      const uint32_t a = px[3];
      uint32_t b = px[0], g = px[1], r = px[2];
      if (static_cast<int32_t>(a) < tolerance || a == 0) {
        colours[k++] = -1;
        continue;
      }
      if (a < 255) {
        if (fill) {
          const uint32_t inv = 255 - a;
          r = std::min<uint32_t>(255, r + (*fill & 0xFF) * inv / 255);
          g = std::min<uint32_t>(255, g + ((*fill >> 8) & 0xFF) * inv / 255);
          b = std::min<uint32_t>(255, b + ((*fill >> 16) & 0xFF) * inv / 255);
        } else {
          r = std::min<uint32_t>(255, (r * 255 + a - 1) / a);
          g = std::min<uint32_t>(255, (g * 255 + a - 1) / a);
          b = std::min<uint32_t>(255, (b * 255 + a - 1) / a);
        }
      }
      colours[k++] = static_cast<int32_t>((r << 16) | (g << 8) | b);
    }
  }
  return colours;
}

int Channel(int32_t rgb, int shift) {
  return (rgb >> shift) & 0xFF;
}

// Median cut over a 5-bit-a-channel histogram: the box holding the most
// error (its population's squared spread along its widest axis) is cut there
// at its mean, until the palette is full; each entry is the mean of the true
// colours in its box.
struct Cube {
  std::vector<uint16_t> bins;
  double error = 0;
  int axis = 0;
  int mean = 0;
};

void Measure(Cube& c, const std::vector<uint32_t>& count) {
  double n = 0, sum[3] = {}, squares[3] = {};
  for (uint16_t b : c.bins) {
    const double k = count[b];
    const int v[3] = {(b >> 10) & 31, (b >> 5) & 31, b & 31};
    n += k;
    for (int i = 0; i < 3; ++i) {
      sum[i] += k * v[i];
      squares[i] += k * v[i] * v[i];
    }
  }
  c.error = 0;
  for (int i = 0; i < 3; ++i) {
    const double e = squares[i] - sum[i] * sum[i] / n;
    if (e > c.error) {
      c.error = e;
      c.axis = i;
      c.mean = static_cast<int>(sum[i] / n);
    }
  }
  if (c.bins.size() < 2) c.error = 0;
}

std::vector<int32_t> MedianCut(const std::vector<int32_t>& colours, size_t slots,
                               std::vector<uint8_t>& binToEntry) {
  std::vector<uint32_t> count(32768, 0);
  std::vector<uint64_t> sum(32768 * 3, 0);
  auto binOf = [](int32_t rgb) {
    return static_cast<uint16_t>(((rgb >> 9) & 0x7C00) | ((rgb >> 6) & 0x3E0) | ((rgb >> 3) & 31));
  };
  for (int32_t c : colours) {
    if (c < 0) continue;
    const uint16_t b = binOf(c);
    ++count[b];
    sum[b * 3u] += static_cast<uint64_t>(Channel(c, 16));
    sum[b * 3u + 1] += static_cast<uint64_t>(Channel(c, 8));
    sum[b * 3u + 2] += static_cast<uint64_t>(Channel(c, 0));
  }
  std::vector<Cube> cubes(1);
  for (uint32_t b = 0; b < 32768; ++b) {
    if (count[b]) cubes[0].bins.push_back(static_cast<uint16_t>(b));
  }
  Measure(cubes[0], count);
  while (cubes.size() < slots) {
    auto it = std::max_element(cubes.begin(), cubes.end(),
                               [](const Cube& a, const Cube& b) { return a.error < b.error; });
    if (it->error <= 0) break;
    const int shift = 10 - it->axis * 5;
    const int mean = it->mean;
    // Bins at or below the mean on the axis stay, the rest go; the mean
    // lies below the axis's highest value, so both halves hold some.
    const auto middle = std::partition(it->bins.begin(), it->bins.end(),
                                       [=](uint16_t b) { return ((b >> shift) & 31) <= mean; });
    Cube upper;
    upper.bins.assign(middle, it->bins.end());
    it->bins.erase(middle, it->bins.end());
    Measure(*it, count);
    Measure(upper, count);
    cubes.push_back(std::move(upper));
  }
  std::vector<int32_t> palette;
  binToEntry.assign(32768, 0);
  for (const Cube& c : cubes) {
    uint64_t n = 0, r = 0, g = 0, b = 0;
    for (uint16_t bin : c.bins) {
      n += count[bin];
      r += sum[bin * 3u];
      g += sum[bin * 3u + 1];
      b += sum[bin * 3u + 2];
      binToEntry[bin] = static_cast<uint8_t>(palette.size());
    }
    if (n == 0) n = 1;
    palette.push_back(
        static_cast<int32_t>(((r + n / 2) / n << 16) | ((g + n / 2) / n << 8) | ((b + n / 2) / n)));
  }
  return palette;
}

// The fixed palette: 6 levels of red and blue, 7 of green, to which the eye
// is most sensitive; 252 entries.
int CubeLevel(int v, int levels) {
  return (v * (levels - 1) + 127) / 255;
}

std::vector<int32_t> FixedCube() {
  std::vector<int32_t> palette;
  for (int r = 0; r < 6; ++r) {
    for (int g = 0; g < 7; ++g) {
      for (int b = 0; b < 6; ++b) {
        palette.push_back((r * 255 / 5) << 16 | (g * 255 / 6) << 8 | (b * 255 / 5));
      }
    }
  }
  return palette;
}

// The classic hashing compressor: open addressing over 5003 slots keyed by
// (code, next index); a full table of 4096 codes sends a clear code and
// starts again.
class LzwEncoder {
 public:
  LzwEncoder(int rootSize, std::vector<uint8_t>& out)
      : out_(out), initBits_(rootSize + 1), clear_(1 << rootSize) {}

  void Encode(const std::vector<uint8_t>& indexes) {
    nBits_ = initBits_;
    maxCode_ = (1 << nBits_) - 1;
    freeEnt_ = clear_ + 2;
    hashKey_.fill(-1);
    Output(clear_);
    int ent = indexes.empty() ? 0 : indexes[0];
    for (size_t i = 1; i < indexes.size(); ++i) {
      const int c = indexes[i];
      const int32_t key = (c << 12) + ent;
      int slot = (c << kHashShift) ^ ent;
      if (hashKey_[static_cast<size_t>(slot)] == key) {
        ent = hashCode_[static_cast<size_t>(slot)];
        continue;
      }
      bool found = false;
      if (hashKey_[static_cast<size_t>(slot)] >= 0) {
        const int step = slot == 0 ? 1 : kHashSize - slot;
        do {
          slot -= step;
          if (slot < 0) slot += kHashSize;
          if (hashKey_[static_cast<size_t>(slot)] == key) {
            found = true;
            break;
          }
        } while (hashKey_[static_cast<size_t>(slot)] >= 0);
      }
      if (found) {
        ent = hashCode_[static_cast<size_t>(slot)];
        continue;
      }
      Output(ent);
      ent = c;
      if (freeEnt_ < kMaxCodes) {
        hashCode_[static_cast<size_t>(slot)] = static_cast<uint16_t>(freeEnt_++);
        hashKey_[static_cast<size_t>(slot)] = key;
      } else {
        hashKey_.fill(-1);
        freeEnt_ = clear_ + 2;
        clearing_ = true;
        Output(clear_);
      }
    }
    Output(ent);
    Output(clear_ + 1);
    while (bitCount_ > 0) {
      Byte(static_cast<uint8_t>(bits_));
      bits_ >>= 8;
      bitCount_ = bitCount_ > 8 ? bitCount_ - 8 : 0;
    }
    Flush();
    out_.push_back(0);
  }

 private:
  static constexpr int kHashSize = 5003;
  static constexpr int kHashShift = 4;  // 8 less the doublings of 5003 up to 65536
  static constexpr int kMaxCodes = 4096;

  void Output(int code) {
    bits_ |= static_cast<uint32_t>(code) << bitCount_;
    bitCount_ += nBits_;
    while (bitCount_ >= 8) {
      Byte(static_cast<uint8_t>(bits_));
      bits_ >>= 8;
      bitCount_ -= 8;
    }
    // The width grows when the next code to be made no longer fits, exactly
    // when the reader's table reaches it.
    if (clearing_) {
      nBits_ = initBits_;
      maxCode_ = (1 << nBits_) - 1;
      clearing_ = false;
    } else if (freeEnt_ > maxCode_ && nBits_ < 12) {
      ++nBits_;
      maxCode_ = nBits_ == 12 ? kMaxCodes : (1 << nBits_) - 1;
    }
  }

  void Byte(uint8_t b) {
    block_[blockLen_++] = b;
    if (blockLen_ == 254) Flush();
  }

  void Flush() {
    if (blockLen_ == 0) return;
    out_.push_back(static_cast<uint8_t>(blockLen_));
    out_.insert(out_.end(), block_.begin(), block_.begin() + blockLen_);
    blockLen_ = 0;
  }

  std::vector<uint8_t>& out_;
  const int initBits_;
  const int clear_;
  int nBits_ = 0;
  int maxCode_ = 0;
  int freeEnt_ = 0;
  bool clearing_ = false;
  uint32_t bits_ = 0;
  int bitCount_ = 0;
  std::array<int32_t, kHashSize> hashKey_{};
  std::array<uint16_t, kHashSize> hashCode_{};
  std::array<uint8_t, 254> block_{};
  int blockLen_ = 0;
};

void Put16(std::vector<uint8_t>& out, int32_t v) {
  out.push_back(static_cast<uint8_t>(v));
  out.push_back(static_cast<uint8_t>(v >> 8));
}

bool Encode(const Pixels& in, std::vector<uint8_t>& out, bool adaptive, int32_t tolerance,
            std::optional<OLE_COLOR> fillColor) {
  if (in.Empty() || in.width > 65535 || in.height > 65535 ||
      in.bytes.size() != in.Stride() * static_cast<size_t>(in.height)) {
    return false;
  }
  std::optional<COLORREF> fill;
  if (fillColor) {
    COLORREF c = 0;
    if (OleTranslateColor(*fillColor, nullptr, &c) == S_OK) fill = c;
  }
  const std::vector<int32_t> colours = KeptColours(in, tolerance, fill);
  const bool anyClear = std::find(colours.begin(), colours.end(), -1) != colours.end();
  const size_t slots = anyClear ? 255 : 256;

  // The exact palette when the picture's colours fit, in order of appearance,
  // looked up through a small open-addressed table: a picture's worth of
  // pixels goes through it.
  std::vector<int32_t> palette;
  std::vector<uint8_t> indexes(colours.size());
  std::array<int32_t, 1024> keys;
  std::array<uint8_t, 1024> values{};
  keys.fill(-1);
  bool fits = true;
  int32_t last = -1;
  uint8_t lastIndex = 0;
  for (size_t i = 0; i < colours.size() && fits; ++i) {
    const int32_t c = colours[i];
    if (c < 0) continue;
    if (c == last) {
      indexes[i] = lastIndex;
      continue;
    }
    size_t slot = (static_cast<uint32_t>(c) * 2654435761u) >> 22;
    while (keys[slot] >= 0 && keys[slot] != c) slot = (slot + 1) & 1023;
    if (keys[slot] < 0) {
      if (palette.size() == slots) {
        fits = false;
        break;
      }
      keys[slot] = c;
      values[slot] = static_cast<uint8_t>(palette.size());
      palette.push_back(c);
    }
    last = c;
    lastIndex = indexes[i] = values[slot];
  }

  if (fits) {
    if (palette.empty()) palette.push_back(0);
    const auto clearIndex = static_cast<uint8_t>(palette.size());
    for (size_t i = 0; i < colours.size(); ++i) {
      if (colours[i] < 0) indexes[i] = clearIndex;
    }
  } else if (adaptive) {
    std::vector<uint8_t> binToEntry;
    palette = MedianCut(colours, slots, binToEntry);
    // Each histogram bin goes to the entry nearest its own colours, worked
    // out once per bin the picture uses.
    std::vector<int16_t> nearest(32768, -1);
    const auto clearIndex = static_cast<uint8_t>(palette.size());
    for (size_t i = 0; i < colours.size(); ++i) {
      const int32_t c = colours[i];
      if (c < 0) {
        indexes[i] = clearIndex;
        continue;
      }
      const size_t bin =
          static_cast<size_t>(((c >> 9) & 0x7C00) | ((c >> 6) & 0x3E0) | ((c >> 3) & 31));
      if (nearest[bin] < 0) {
        const int r = Channel(c, 16), g = Channel(c, 8), b = Channel(c, 0);
        int best = binToEntry[bin];
        int bestD = INT32_MAX;
        for (size_t p = 0; p < palette.size(); ++p) {
          const int dr = r - Channel(palette[p], 16), dg = g - Channel(palette[p], 8),
                    db = b - Channel(palette[p], 0);
          const int dist = dr * dr * 3 + dg * dg * 4 + db * db * 2;
          if (dist < bestD) {
            bestD = dist;
            best = static_cast<int>(p);
          }
        }
        nearest[bin] = static_cast<int16_t>(best);
      }
      indexes[i] = static_cast<uint8_t>(nearest[bin]);
    }
  } else {
    palette = FixedCube();
    const auto clearIndex = static_cast<uint8_t>(palette.size());
    for (size_t i = 0; i < colours.size(); ++i) {
      const int32_t c = colours[i];
      indexes[i] = c < 0 ? clearIndex
                         : static_cast<uint8_t>(CubeLevel(Channel(c, 16), 6) * 42 +
                                                CubeLevel(Channel(c, 8), 7) * 6 +
                                                CubeLevel(Channel(c, 0), 6));
    }
  }

  const size_t entries = palette.size() + (anyClear ? 1 : 0);
  int bits = 1;
  while ((size_t{1} << bits) < entries) ++bits;

  out.clear();
  out.reserve(colours.size() / 2 + 1024);
  const char* head = "GIF89a";
  out.insert(out.end(), head, head + 6);
  Put16(out, in.width);
  Put16(out, in.height);
  out.push_back(static_cast<uint8_t>(0x80 | ((bits - 1) << 4) | (bits - 1)));
  out.push_back(0);  // background index
  out.push_back(0);  // aspect ratio
  for (size_t i = 0; i < (size_t{1} << bits); ++i) {
    const int32_t c = i < palette.size() ? palette[i] : 0;
    out.push_back(static_cast<uint8_t>(c >> 16));
    out.push_back(static_cast<uint8_t>(c >> 8));
    out.push_back(static_cast<uint8_t>(c));
  }
  if (anyClear) {
    const uint8_t gce[] = {0x21, 0xF9, 4, 1, 0, 0, static_cast<uint8_t>(palette.size()), 0};
    out.insert(out.end(), gce, gce + sizeof gce);
  }
  out.push_back(0x2C);
  Put16(out, 0);
  Put16(out, 0);
  Put16(out, in.width);
  Put16(out, in.height);
  out.push_back(0);
  const int root = std::max(2, bits);
  out.push_back(static_cast<uint8_t>(root));
  LzwEncoder(root, out).Encode(indexes);
  out.push_back(0x3B);
  return true;
}

}  // namespace

bool cGIFparser::LoadStream(std::span<const uint8_t> bytes, Pixels& out, size_t start,
                            size_t length) {
  out.Clear();
  try {
    if (start >= bytes.size()) return false;
    const size_t avail = bytes.size() - start;
    const size_t n = (length == 0 || length > avail) ? avail : length;
    if (LoadFirstFrame(bytes.subspan(start, n), out)) return true;
  } catch (...) {
  }
  out.Clear();
  return false;
}

bool cGIFparser::SaveAsGIF(const Pixels& in, std::vector<uint8_t>& out, bool useAdaptivePalette,
                           int32_t opaquenessTolerance, std::optional<OLE_COLOR> fillColor) {
  try {
    if (Encode(in, out, useAdaptivePalette, opaquenessTolerance, fillColor)) return true;
  } catch (...) {
  }
  out.clear();
  return false;
}

bool cGIFparser::SaveAsGIF(const Pixels& in, const String& fileName, bool useAdaptivePalette,
                           int32_t opaquenessTolerance, std::optional<OLE_COLOR> fillColor) {
  if (fileName.empty()) return false;
  std::vector<uint8_t> bytes;
  if (!SaveAsGIF(in, bytes, useAdaptivePalette, opaquenessTolerance, fillColor)) return false;
  try {
    std::ofstream f(ToUtf8(fileName), std::ios::binary | std::ios::trunc);
    if (!f) return false;
    f.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(f);
  } catch (...) {
    return false;
  }
}

}  // namespace vantor::imaging
