#pragma once
// A small PNG reader for the tests: enough for the goldens and screenshots
// (8-bit RGB or RGBA, any filter, no interlace), so the pixel tests need no
// image library. Pixels come back as the surface holds them: 0xAARRGGBB,
// alpha 255 for RGB files.
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace vantor::test {

struct GoldenImage {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> pixels;  // row 0 on top
  bool Empty() const { return pixels.empty(); }
  uint32_t At(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }
};

inline uint32_t GoldenU32(const uint8_t* p) {
  return (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | p[3];
}

// Empty on anything it does not understand or a bad CRC.
inline GoldenImage DecodePng(const std::vector<uint8_t>& bytes) {
  GoldenImage img;
  static const uint8_t kSig[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  if (bytes.size() < 8 || !std::equal(kSig, kSig + 8, bytes.begin())) return img;
  size_t pos = 8;
  int w = 0, h = 0, type = -1;
  std::vector<uint8_t> idat;
  bool ended = false;
  while (pos + 12 <= bytes.size() && !ended) {
    const uint32_t len = GoldenU32(&bytes[pos]);
    if (len > bytes.size() - pos - 12) return img;
    const std::string tag(reinterpret_cast<const char*>(&bytes[pos + 4]), 4);
    const uint8_t* data = &bytes[pos + 8];
    uLong crc = crc32(0L, Z_NULL, 0);
    crc = crc32(crc, &bytes[pos + 4], len + 4);
    if (crc != GoldenU32(data + len)) return img;
    if (tag == "IHDR" && len == 13) {
      w = static_cast<int>(GoldenU32(data));
      h = static_cast<int>(GoldenU32(data + 4));
      if (data[8] != 8 || (data[9] != 2 && data[9] != 6) || data[12] != 0) return img;
      type = data[9];
    } else if (tag == "IDAT") {
      idat.insert(idat.end(), data, data + len);
    } else if (tag == "IEND") {
      ended = true;
    }
    pos += 12 + len;
  }
  if (!ended || type < 0 || w <= 0 || h <= 0 || w > 0x4000 || h > 0x4000) return img;
  const size_t bpp = type == 6 ? 4 : 3;
  const size_t rowBytes = static_cast<size_t>(w) * bpp;
  std::vector<uint8_t> raw((rowBytes + 1) * static_cast<size_t>(h));
  uLongf rawSize = static_cast<uLongf>(raw.size());
  if (uncompress(raw.data(), &rawSize, idat.data(), static_cast<uLong>(idat.size())) != Z_OK ||
      rawSize != raw.size()) {
    return img;
  }
  std::vector<uint8_t> prev(rowBytes, 0), row(rowBytes);
  img.pixels.resize(static_cast<size_t>(w) * h);
  for (int y = 0; y < h; ++y) {
    const uint8_t* in = &raw[static_cast<size_t>(y) * (rowBytes + 1)];
    const uint8_t filter = in[0];
    for (size_t i = 0; i < rowBytes; ++i) {
      const int a = i >= bpp ? row[i - bpp] : 0;
      const int b = prev[i];
      const int c = i >= bpp ? prev[i - bpp] : 0;
      int pred = 0;
      switch (filter) {
        case 0:
          break;
        case 1:
          pred = a;
          break;
        case 2:
          pred = b;
          break;
        case 3:
          pred = (a + b) / 2;
          break;
        case 4: {
          const int p = a + b - c;
          const int pa = std::abs(p - a), pb = std::abs(p - b), pc = std::abs(p - c);
          pred = pa <= pb && pa <= pc ? a : (pb <= pc ? b : c);
          break;
        }
        default:
          return GoldenImage{};
      }
      row[i] = static_cast<uint8_t>((in[1 + i] + pred) & 0xFF);
    }
    for (int x = 0; x < w; ++x) {
      const uint8_t* s = &row[static_cast<size_t>(x) * bpp];
      const uint32_t alpha = bpp == 4 ? s[3] : 255;
      img.pixels[static_cast<size_t>(y) * w + x] =
          (alpha << 24) | (uint32_t{s[0]} << 16) | (uint32_t{s[1]} << 8) | s[2];
    }
    prev.swap(row);
  }
  img.width = w;
  img.height = h;
  return img;
}

inline GoldenImage ReadPng(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return GoldenImage{};
  const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                   std::istreambuf_iterator<char>());
  return DecodePng(bytes);
}

}  // namespace vantor::test
