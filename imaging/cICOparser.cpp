#include "imaging/cICOparser.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "imaging/cBMPparser.h"
#include "imaging/cPNGparser.h"

namespace vantor::imaging {

namespace {

constexpr uint8_t kPngSignature[8] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};

uint16_t Le16(std::span<const uint8_t> d, size_t at) {
  return static_cast<uint16_t>(d[at] | (d[at + 1] << 8));
}
uint32_t Le32(std::span<const uint8_t> d, size_t at) {
  return uint32_t{d[at]} | (uint32_t{d[at + 1]} << 8) | (uint32_t{d[at + 2]} << 16) |
         (uint32_t{d[at + 3]} << 24);
}
uint32_t Be32(std::span<const uint8_t> d, size_t at) {
  return (uint32_t{d[at]} << 24) | (uint32_t{d[at + 1]} << 16) | (uint32_t{d[at + 2]} << 8) |
         uint32_t{d[at + 3]};
}

bool StartsAsPng(std::span<const uint8_t> e) {
  return e.size() >= 8 && std::memcmp(e.data(), kPngSignature, 8) == 0;
}

bool DecodePngEntry(std::span<const uint8_t> entry, Pixels& out) {
  return cPNGparser().LoadStream(entry, out);
}

// Wide enough that sizes from a hostile header cannot overflow it.
int64_t Score(const cICOparser::Candidate& e, int64_t w, int64_t h, int64_t d) {
  int64_t sw = e.width - w;
  if (w > e.width) sw *= 2;
  int64_t sh = e.height - h;
  if (h > e.height) sh *= 2;
  if (e.depth > 32) return -10000;
  return sw + sh + std::abs(d - e.depth);
}

}  // namespace

int32_t cICOparser::ChooseEntry(const std::vector<Candidate>& entries, int32_t width,
                                int32_t height, int32_t depth) {
  if (entries.empty()) return -1;
  if (width <= 0 || height <= 0) {
    // No size wanted: the largest the file has.
    width = height = 0;
    for (const Candidate& e : entries) {
      width = std::max(width, e.width);
      height = std::max(height, e.height);
    }
  }
  if (depth <= 0) depth = 32;
  if (entries.size() < 2) return 0;

  int64_t best = 10000;
  int32_t choice = -1;
  for (size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].depth == 0) continue;
    const int64_t s = Score(entries[i], width, height, depth);
    if (s == 0) return static_cast<int32_t>(i);
    if (s > 0 && s < best) {
      best = s;
      choice = static_cast<int32_t>(i);
    }
  }
  if (choice >= 0) return choice;

  // Every entry is smaller than wanted: the nearest, leaning to 32 bits, and
  // on a tie the later one.
  best = INT64_MAX;
  for (size_t i = entries.size(); i-- > 0;) {
    if (entries[i].depth == 0) continue;
    const int64_t s = std::abs(Score(entries[i], width, height, depth)) +
                      std::abs(int64_t{32} - entries[i].depth);
    if (s < best) {
      best = s;
      choice = static_cast<int32_t>(i);
    }
  }
  return choice >= 0 ? choice : 0;
}

bool cICOparser::Parse(std::span<const uint8_t> d) {
  directory_.clear();
  entries_.clear();
  type_ = 0;
  if (d.size() < 6 || Le16(d, 0) != 0) return false;
  const uint16_t type = Le16(d, 2), count = Le16(d, 4);
  if ((type != 1 && type != 2) || count == 0) return false;
  if (6 + size_t{count} * 16 > d.size()) return false;

  for (size_t i = 0; i < count; ++i) {
    const size_t at = 6 + i * 16;
    IconDirEntry e;
    e.width = d[at];
    e.height = d[at + 1];
    e.colorCount = d[at + 2];
    e.reserved = d[at + 3];
    e.planes = Le16(d, at + 4);
    e.bitCount = Le16(d, at + 6);
    e.bytesInRes = Le32(d, at + 8);
    e.imageOffset = Le32(d, at + 12);
    if (uint64_t{e.imageOffset} + e.bytesInRes > d.size() || e.bytesInRes < 8) return false;
    const std::span<const uint8_t> image = d.subspan(e.imageOffset, e.bytesInRes);
    const bool png = StartsAsPng(image);
    if (!png && Le32(image, 0) != 40) return false;

    // The entry's own header is the authority; the directory's bytes are
    // often wrong.
    Resolved r;
    r.width = e.width == 0 ? 256 : e.width;
    r.height = e.height == 0 ? 256 : e.height;
    r.colours = e.colorCount;
    if (png) {
      if (image.size() >= 26 && std::memcmp(image.data() + 12, "IHDR", 4) == 0 &&
          Be32(image, 16) > 0 && Be32(image, 20) > 0 && Be32(image, 16) <= INT32_MAX &&
          Be32(image, 20) <= INT32_MAX) {
        r.png = true;
        r.width = static_cast<int32_t>(Be32(image, 16));
        r.height = static_cast<int32_t>(Be32(image, 20));
        const int bits = image[24];
        static constexpr int kChannels[7] = {1, 0, 3, 1, 2, 0, 4};
        const int channels = image[25] <= 6 ? kChannels[image[25]] : 0;
        r.depth = std::min(32, bits * channels);
        r.colours = image[25] == 3 && bits <= 8 ? 1 << bits : 0;
      }
    } else {
      DibHeader h;
      if (cBMPparser::ReadDibHeader(image, 0, h) && h.height / 2 > 0) {
        r.width = h.width;
        r.height = h.height / 2;
        r.depth = h.bitCount;
        r.colours = h.bitCount <= 8 ? static_cast<int32_t>(h.colours) : 0;
      }
    }
    directory_.push_back(e);
    entries_.push_back(r);
  }
  type_ = type;
  return true;
}

bool cICOparser::ReadDirectory(std::span<const uint8_t> bytes, size_t start, size_t length) {
  try {
    if (start < bytes.size()) {
      const size_t avail = bytes.size() - start;
      if (Parse(bytes.subspan(start, length == 0 || length > avail ? avail : length))) return true;
    }
  } catch (...) {
  }
  directory_.clear();
  entries_.clear();
  type_ = 0;
  return false;
}

bool cICOparser::DecodeDib(std::span<const uint8_t> image, Pixels& out) const {
  DibHeader h;
  if (!cBMPparser::ReadDibHeader(image, 0, h)) return false;
  h.height /= 2;  // the colour rows, then as many rows of the AND mask
  if (h.height == 0 || (h.compression != 0 && h.compression != 3 && h.compression != 6)) {
    return false;
  }
  if (h.end >= image.size()) return false;
  const std::span<const uint8_t> data = image.subspan(h.end);
  if (static_cast<uint64_t>(h.Stride()) * static_cast<uint64_t>(h.height) > data.size() + 3) {
    return false;
  }
  if (!out.Allocate(h.width, h.height)) return false;
  bool alphaRaw = false;
  if (!cBMPparser::DecodeDibPixels(h, data, out, alphaRaw)) return false;
  const bool cursor = type_ == 2;
  if (alphaRaw && cBMPparser::DecideAlpha(out)) {
    out.format = cursor ? Image_Cursor_ARGB : Image_Icon_ARGB;
    return true;
  }

  // No alpha of its own: the AND mask's set bits are clear. A mask cut off
  // by the entry's end leaves the picture opaque.
  const size_t xorBytes = h.Stride() * static_cast<size_t>(h.height);
  const size_t maskStride = (static_cast<size_t>(h.width) + 31) / 32 * 4;
  bool anyClear = false;
  if (data.size() >= xorBytes &&
      data.size() - xorBytes >= maskStride * static_cast<size_t>(h.height)) {
    const uint8_t* mask = data.data() + xorBytes;
    for (int32_t r = 0; r < h.height; ++r) {
      const uint8_t* bits = mask + maskStride * static_cast<size_t>(r);
      uint8_t* px = out.Row(h.topDown ? r : h.height - 1 - r);
      for (int32_t x = 0; x < h.width; ++x, px += 4) {
        if (bits[x >> 3] & (0x80 >> (x & 7))) {
          std::memset(px, 0, 4);
          anyClear = true;
        } else {
          px[3] = 255;
        }
      }
    }
  } else {
    for (size_t i = 3; i < out.bytes.size(); i += 4) out.bytes[i] = 255;
  }
  out.alpha = anyClear ? Alpha_Simple : Alpha_None;
  out.format = cursor ? Image_Cursor : Image_Icon;
  return true;
}

bool cICOparser::LoadStream(std::span<const uint8_t> bytes, Pixels& out, size_t start,
                            size_t length, int32_t wantedWidth, int32_t wantedHeight,
                            int32_t wantedDepth) {
  out.Clear();
  chosen_ = -1;
  try {
    if (!ReadDirectory(bytes, start, length)) return false;
    std::vector<Candidate> candidates;
    for (const Resolved& r : entries_) candidates.push_back({r.width, r.height, r.depth});
    const int32_t pick = ChooseEntry(candidates, std::max(0, wantedWidth),
                                     std::max(0, wantedHeight), std::clamp(wantedDepth, 0, 32));
    if (pick < 0) return false;
    const IconDirEntry& e = directory_[static_cast<size_t>(pick)];
    const std::span<const uint8_t> image = bytes.subspan(start + e.imageOffset, e.bytesInRes);
    bool ok;
    if (entries_[static_cast<size_t>(pick)].png) {
      ok = DecodePngEntry(image, out);
      if (ok) out.format = Image_PNG_Icon;
    } else {
      ok = DecodeDib(image, out);
    }
    if (!ok) {
      out.Clear();
      return false;
    }
    chosen_ = pick;
    return true;
  } catch (...) {
    out.Clear();
    return false;
  }
}

bool cICOparser::ConvertstdPicTo32bpp(HBITMAP colorBitmap, HBITMAP maskBitmap, Pixels& out,
                                      bool cursor) {
  out.Clear();
  try {
    cBMPparser bmp;
    Pixels mask;
    if (maskBitmap != nullptr && !bmp.ConvertstdPicTo32bpp(maskBitmap, mask)) return false;
    auto maskBit = [&mask](int32_t x, int32_t y) {
      const uint8_t* px = mask.Row(y) + size_t(x) * 4;
      return (px[0] | px[1] | px[2]) != 0;
    };
    bool anyClear = false;
    if (colorBitmap != nullptr) {
      if (!bmp.ConvertstdPicTo32bpp(colorBitmap, out)) return false;
      if (out.format != Image_Bitmap) {
        out.format = cursor ? Image_Cursor_ARGB : Image_Icon_ARGB;
        return true;
      }
      if (!mask.Empty() && mask.width >= out.width && mask.height >= out.height) {
        for (int32_t y = 0; y < out.height; ++y) {
          for (int32_t x = 0; x < out.width; ++x) {
            if (maskBit(x, y)) {
              std::memset(out.Row(y) + size_t(x) * 4, 0, 4);
              anyClear = true;
            }
          }
        }
      }
    } else {
      // A monochrome cursor: AND rows above, XOR rows below.
      if (mask.Empty() || mask.height < 2 || !out.Allocate(mask.width, mask.height / 2)) {
        out.Clear();
        return false;
      }
      for (int32_t y = 0; y < out.height; ++y) {
        for (int32_t x = 0; x < out.width; ++x) {
          uint8_t* px = out.Row(y) + size_t(x) * 4;
          if (maskBit(x, y)) {
            anyClear = true;
            continue;
          }
          const uint8_t v = maskBit(x, y + out.height) ? 255 : 0;
          px[0] = px[1] = px[2] = v;
          px[3] = 255;
        }
      }
    }
    out.alpha = anyClear ? Alpha_Simple : Alpha_None;
    out.format = cursor ? Image_Cursor : Image_Icon;
    return true;
  } catch (...) {
    out.Clear();
    return false;
  }
}

int32_t cICOparser::Width(int32_t i) const {
  return i >= 0 && i < IconCount() ? entries_[size_t(i)].width : 0;
}
int32_t cICOparser::Height(int32_t i) const {
  return i >= 0 && i < IconCount() ? entries_[size_t(i)].height : 0;
}
int32_t cICOparser::bitDepth(int32_t i) const {
  return i >= 0 && i < IconCount() ? entries_[size_t(i)].depth : 0;
}
int32_t cICOparser::ColorCount(int32_t i) const {
  return i >= 0 && i < IconCount() ? entries_[size_t(i)].colours : 0;
}
int32_t cICOparser::ColorByteOffset(int32_t i) const {
  return i >= 0 && i < IconCount() ? static_cast<int32_t>(directory_[size_t(i)].imageOffset) : 0;
}
bool cICOparser::IsIconPNG(int32_t i) const {
  return i >= 0 && i < IconCount() && entries_[size_t(i)].png;
}

}  // namespace vantor::imaging
