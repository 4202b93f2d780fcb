#include "platform/PngFile.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace vantor::platform {
namespace {

void PutU32(std::vector<uint8_t>& out, uint32_t v) {
  out.push_back(static_cast<uint8_t>(v >> 24));
  out.push_back(static_cast<uint8_t>(v >> 16));
  out.push_back(static_cast<uint8_t>(v >> 8));
  out.push_back(static_cast<uint8_t>(v));
}

// A chunk's CRC covers its type and data but not its length.
void PutChunk(std::vector<uint8_t>& out, const char (&type)[5], const uint8_t* data, size_t size) {
  PutU32(out, static_cast<uint32_t>(size));
  const size_t start = out.size();
  out.insert(out.end(), type, type + 4);
  if (size > 0) out.insert(out.end(), data, data + size);
  uLong crc = crc32(0L, Z_NULL, 0);
  crc = crc32(crc, out.data() + start, static_cast<uInt>(out.size() - start));
  PutU32(out, static_cast<uint32_t>(crc));
}

uint8_t Paeth(int a, int b, int c) {
  const int p = a + b - c;
  const int pa = std::abs(p - a);
  const int pb = std::abs(p - b);
  const int pc = std::abs(p - c);
  if (pa <= pb && pa <= pc) return static_cast<uint8_t>(a);
  return static_cast<uint8_t>(pb <= pc ? b : c);
}

// One surface pixel as PNG samples. Pre-multiplied colour is divided back by
// alpha with rounding so that an opaque pixel keeps its exact values.
void Samples(uint32_t px, bool alpha, uint8_t* out) {
  uint32_t b = px & 0xFF, g = (px >> 8) & 0xFF, r = (px >> 16) & 0xFF;
  const uint32_t a = px >> 24;
  if (alpha) {
    if (a == 0) {
      r = g = b = 0;
    } else if (a < 255) {
      r = std::min<uint32_t>(255, (r * 255 + a / 2) / a);
      g = std::min<uint32_t>(255, (g * 255 + a / 2) / a);
      b = std::min<uint32_t>(255, (b * 255 + a / 2) / a);
    }
  }
  out[0] = static_cast<uint8_t>(r);
  out[1] = static_cast<uint8_t>(g);
  out[2] = static_cast<uint8_t>(b);
  if (alpha) out[3] = static_cast<uint8_t>(a);
}

// The usual heuristic: per row, the filter whose output has the smallest sum
// of absolute (signed) bytes, which tends to compress best.
void FilterRow(const uint8_t* row, const uint8_t* prev, size_t bytes, size_t bpp,
               std::vector<uint8_t>& out) {
  std::array<std::vector<uint8_t>, 5> cand;
  size_t best = 0;
  uint64_t bestSum = UINT64_MAX;
  for (size_t f = 0; f < 5; ++f) {
    cand[f].resize(bytes);
    uint64_t sum = 0;
    for (size_t i = 0; i < bytes; ++i) {
      const int x = row[i];
      const int a = i >= bpp ? row[i - bpp] : 0;
      const int b = prev != nullptr ? prev[i] : 0;
      const int c = prev != nullptr && i >= bpp ? prev[i - bpp] : 0;
      int v = x;
      switch (f) {
        case 1:
          v = x - a;
          break;
        case 2:
          v = x - b;
          break;
        case 3:
          v = x - (a + b) / 2;
          break;
        case 4:
          v = x - Paeth(a, b, c);
          break;
        default:
          break;
      }
      const auto byte = static_cast<uint8_t>(v & 0xFF);
      cand[f][i] = byte;
      sum += static_cast<uint64_t>(byte < 128 ? byte : 256 - byte);
    }
    if (sum < bestSum) {
      bestSum = sum;
      best = f;
    }
  }
  out.push_back(static_cast<uint8_t>(best));
  out.insert(out.end(), cand[best].begin(), cand[best].end());
}

}  // namespace

std::vector<uint8_t> PngFile::Encode(const Surface& surface, Channels channels) {
  std::vector<uint8_t> png;
  // PNG dimensions are 31-bit; anything that large is no screenshot anyway.
  if (surface.Empty() || surface.width > 0x4000 || surface.height > 0x4000) return png;
  const bool alpha = channels == Channels::kRgba;
  const size_t bpp = alpha ? 4 : 3;
  const size_t rowBytes = static_cast<size_t>(surface.width) * bpp;

  std::vector<uint8_t> raw;
  raw.reserve((rowBytes + 1) * static_cast<size_t>(surface.height));
  std::vector<uint8_t> row(rowBytes), prev(rowBytes);
  for (int y = 0; y < surface.height; ++y) {
    const uint32_t* src = surface.Row(y);
    for (int x = 0; x < surface.width; ++x)
      Samples(src[x], alpha, &row[static_cast<size_t>(x) * bpp]);
    FilterRow(row.data(), y > 0 ? prev.data() : nullptr, rowBytes, bpp, raw);
    row.swap(prev);
  }

  uLongf packedSize = compressBound(static_cast<uLong>(raw.size()));
  std::vector<uint8_t> packed(packedSize);
  if (compress2(packed.data(), &packedSize, raw.data(), static_cast<uLong>(raw.size()), 9) !=
      Z_OK) {
    return png;
  }

  static constexpr uint8_t kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  png.assign(kSignature, kSignature + 8);
  std::vector<uint8_t> header;
  PutU32(header, static_cast<uint32_t>(surface.width));
  PutU32(header, static_cast<uint32_t>(surface.height));
  header.push_back(8);                     // bits per sample
  header.push_back(alpha ? 6 : 2);         // colour type: RGBA or RGB
  header.insert(header.end(), {0, 0, 0});  // deflate, adaptive filters, no interlace
  PutChunk(png, "IHDR", header.data(), header.size());
  PutChunk(png, "IDAT", packed.data(), packedSize);
  PutChunk(png, "IEND", nullptr, 0);
  return png;
}

bool PngFile::Save(const Surface& surface, const std::string& path, Channels channels) {
  const std::vector<uint8_t> png = Encode(surface, channels);
  if (png.empty() || path.empty()) return false;
  std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "wb"), &std::fclose);
  if (!file) return false;
  if (std::fwrite(png.data(), 1, png.size(), file.get()) != png.size()) return false;
  return std::fflush(file.get()) == 0;
}

}  // namespace vantor::platform
