#include "imaging/cBMPparser.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <fstream>

#include "platform/Gdi.h"
#include "platform/User.h"

namespace vantor::imaging {

namespace {

constexpr uint32_t kRle8 = 1, kRle4 = 2, kBitFields = 3, kAlphaBitFields = 6;

uint16_t Le16(std::span<const uint8_t> d, size_t at) {
  return static_cast<uint16_t>(d[at] | (d[at + 1] << 8));
}
uint32_t Le32(std::span<const uint8_t> d, size_t at) {
  return uint32_t{d[at]} | (uint32_t{d[at + 1]} << 8) | (uint32_t{d[at + 2]} << 16) |
         (uint32_t{d[at + 3]} << 24);
}

// One colour channel described by a bit mask, widened or narrowed to 8 bits.
struct Channel {
  uint32_t mask = 0;
  int shift = 0;
  int bits = 0;

  explicit Channel(uint32_t m) : mask(m) {
    if (m == 0) return;
    shift = std::countr_zero(m);
    bits = std::bit_width(m >> shift);
  }
  uint8_t Of(uint32_t v) const {
    if (bits == 0) return 0;
    const uint32_t x = (v & mask) >> shift;
    if (bits >= 8) return static_cast<uint8_t>(x >> (bits - 8));
    const uint32_t max = (1u << bits) - 1;
    return static_cast<uint8_t>((x * 255 + max / 2) / max);
  }
};

void PutColour(uint8_t* px, uint32_t bgr) {
  px[0] = static_cast<uint8_t>(bgr);
  px[1] = static_cast<uint8_t>(bgr >> 8);
  px[2] = static_cast<uint8_t>(bgr >> 16);
  px[3] = 255;
}

// Run-length data: runs and literal stretches of indexes, with escapes for
// the end of a line, the end of the picture and a jump. Pixels a jump passes
// over keep their zero.
void DecodeRle(const DibHeader& h, std::span<const uint8_t> d, Pixels& out) {
  const bool four = h.compression == kRle4;
  const int64_t width = h.width, height = h.height;
  int64_t x = 0, r = 0;
  auto put = [&](uint8_t index) {
    if (x < width && r < height) {
      const auto y = static_cast<int32_t>(h.topDown ? r : height - 1 - r);
      PutColour(out.Row(y) + x * 4, h.palette[index]);
    }
    ++x;
  };
  size_t p = 0;
  while (p + 1 < d.size() && r < height) {
    const uint8_t count = d[p], value = d[p + 1];
    p += 2;
    if (count > 0) {
      const int64_t n = std::min<int64_t>(count, std::max<int64_t>(width - x, 0));
      for (int64_t k = 0; k < n; ++k) {
        put(four ? static_cast<uint8_t>((k & 1) ? value & 15 : value >> 4) : value);
      }
      x += count - n;
      continue;
    }
    if (value == 0) {  // end of line
      x = 0;
      ++r;
    } else if (value == 1) {  // end of picture
      break;
    } else if (value == 2) {  // jump right and up
      if (p + 1 >= d.size()) break;
      x += d[p];
      r += d[p + 1];
      p += 2;
    } else {  // a literal stretch, padded to a whole word
      const size_t bytes = four ? (size_t{value} + 1) / 2 : value;
      if (p + bytes > d.size()) break;
      for (size_t k = 0; k < value; ++k) {
        put(four ? static_cast<uint8_t>((k & 1) ? d[p + k / 2] & 15 : d[p + k / 2] >> 4)
                 : d[p + k]);
      }
      p += bytes + (bytes & 1);
    }
  }
}

void Premultiply(uint8_t* px) {
  const uint32_t a = px[3];
  for (int c = 0; c < 3; ++c) px[c] = static_cast<uint8_t>(px[c] * a / 255);
}

bool WriteFile(const String& name, const std::vector<uint8_t>& bytes) {
  try {
    std::ofstream f(ToUtf8(name), std::ios::binary | std::ios::trunc);
    if (!f) return false;
    f.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(f);
  } catch (...) {
    return false;
  }
}

void Put16(std::vector<uint8_t>& o, uint32_t v) {
  o.push_back(static_cast<uint8_t>(v));
  o.push_back(static_cast<uint8_t>(v >> 8));
}
void Put32(std::vector<uint8_t>& o, uint32_t v) {
  Put16(o, v & 0xFFFF);
  Put16(o, v >> 16);
}

}  // namespace

size_t DibHeader::Stride() const {
  return static_cast<size_t>((static_cast<uint64_t>(width) * bitCount + 31) / 32 * 4);
}

bool cBMPparser::ReadDibHeader(std::span<const uint8_t> d, size_t pos, DibHeader& h) {
  h = DibHeader{};
  if (pos > d.size() || d.size() - pos < 12) return false;
  h.headerSize = Le32(d, pos);
  const bool core = h.headerSize == 12;
  if (!core && h.headerSize < 16) return false;
  if (h.headerSize > d.size() - pos) return false;
  uint32_t used = 0;
  int64_t height;
  if (core) {
    h.width = Le16(d, pos + 4);
    height = Le16(d, pos + 6);
    h.bitCount = Le16(d, pos + 10);
  } else {
    h.width = static_cast<int32_t>(Le32(d, pos + 4));
    height = static_cast<int32_t>(Le32(d, pos + 8));
    h.bitCount = Le16(d, pos + 14);
    if (h.headerSize >= 20) h.compression = Le32(d, pos + 16);
    if (h.headerSize >= 36) used = Le32(d, pos + 32);
  }
  h.topDown = height < 0;
  height = height < 0 ? -height : height;
  if (h.width <= 0 || height <= 0 || height > INT32_MAX) return false;
  h.height = static_cast<int32_t>(height);

  switch (h.bitCount) {
    case 1:
    case 2:
    case 4:
    case 8:
    case 16:
    case 24:
    case 32:
      break;
    default:
      return false;
  }
  switch (h.compression) {
    case 0:
      break;
    case kRle8:
      if (h.bitCount != 8) return false;
      break;
    case kRle4:
      if (h.bitCount != 4) return false;
      break;
    case kBitFields:
    case kAlphaBitFields:
      // OS/2's 64-byte header gives these numbers other meanings.
      if ((h.bitCount != 16 && h.bitCount != 32) || h.headerSize == 64) return false;
      break;
    default:
      return false;
  }

  size_t at = pos + h.headerSize;
  if (h.compression == kBitFields || h.compression == kAlphaBitFields) {
    const size_t count = h.compression == kAlphaBitFields ? 4 : 3;
    if (h.headerSize >= 40 + 4 * count) {
      for (size_t i = 0; i < count; ++i) h.masks[i] = Le32(d, pos + 40 + 4 * i);
    } else {
      // The masks follow the header.
      if (at + 4 * count > d.size()) return false;
      for (size_t i = 0; i < count; ++i) h.masks[i] = Le32(d, at + 4 * i);
      at += 4 * count;
    }
    if (h.headerSize >= 56) h.masks[3] = Le32(d, pos + 52);
  } else if (h.bitCount == 16) {
    h.masks = {0x7C00, 0x03E0, 0x001F, 0};
  } else if (h.bitCount == 32) {
    h.masks = {0xFF0000, 0xFF00, 0xFF, 0};
  }
  if (h.bitCount == 32 && h.masks[3] == 0 &&
      ((h.masks[0] | h.masks[1] | h.masks[2]) & 0xFF000000u) == 0) {
    h.masks[3] = 0xFF000000u;  // the fourth byte: alpha or padding, judged later
  }

  size_t entries = 0;
  if (h.bitCount <= 8) {
    entries = used == 0 ? size_t{1} << h.bitCount : std::min<size_t>(used, 256);
  } else {
    entries = std::min<size_t>(used, 256);  // a hint for palette devices
  }
  const size_t entrySize = core ? 3 : 4;
  for (size_t i = 0; i < entries && at + entrySize <= d.size(); ++i, at += entrySize) {
    if (h.bitCount <= 8) {
      h.palette[i] = uint32_t{d[at]} | (uint32_t{d[at + 1]} << 8) | (uint32_t{d[at + 2]} << 16);
      h.colours = i + 1;
    }
  }
  h.end = at;
  return true;
}

bool cBMPparser::DecodeDibPixels(const DibHeader& h, std::span<const uint8_t> data, Pixels& out,
                                 bool& alphaRaw) {
  alphaRaw = false;
  if (out.width != h.width || out.height != h.height) return false;
  if (h.compression == kRle8 || h.compression == kRle4) {
    DecodeRle(h, data, out);
    for (size_t i = 3; i < out.bytes.size(); i += 4) out.bytes[i] = 255;
    return true;
  }
  const size_t stride = h.Stride();
  const size_t rowBytes = (static_cast<size_t>(h.width) * h.bitCount + 7) / 8;
  // The last row's padding may be missing; nothing else may.
  if (data.size() < stride * static_cast<size_t>(h.height - 1) + rowBytes) return false;

  const Channel red(h.masks[0]), green(h.masks[1]), blue(h.masks[2]), alpha(h.masks[3]);
  alphaRaw = h.bitCount >= 16 && h.masks[3] != 0;
  const bool plain32 = h.bitCount == 32 && h.masks[0] == 0xFF0000 && h.masks[1] == 0xFF00 &&
                       h.masks[2] == 0xFF && h.masks[3] == 0xFF000000u;
  auto pack = [&](uint32_t v) {
    return uint32_t{blue.Of(v)} | (uint32_t{green.Of(v)} << 8) | (uint32_t{red.Of(v)} << 16) |
           (uint32_t{alphaRaw ? alpha.Of(v) : uint8_t{255}} << 24);
  };
  // A large 16-bit picture pays for a table of every value once.
  std::vector<uint32_t> lut16;
  if (h.bitCount == 16 &&
      static_cast<uint64_t>(h.width) * static_cast<uint64_t>(h.height) >= 16384) {
    lut16.resize(65536);
    for (uint32_t v = 0; v < 65536; ++v) lut16[v] = pack(v);
  }
  const int32_t w = h.width;
  for (int32_t r = 0; r < h.height; ++r) {
    const uint8_t* src = data.data() + stride * static_cast<size_t>(r);
    uint8_t* dst = out.Row(h.topDown ? r : h.height - 1 - r);
    switch (h.bitCount) {
      case 1:
      case 2:
      case 4:
      case 8: {
        const int bits = h.bitCount;
        const int perByte = 8 / bits;
        const uint8_t mask = static_cast<uint8_t>((1 << bits) - 1);
        for (int32_t x = 0; x < w; ++x) {
          const int shift = 8 - bits * (x % perByte + 1);
          const uint8_t index = static_cast<uint8_t>((src[x / perByte] >> shift) & mask);
          PutColour(dst + size_t(x) * 4, h.palette[index]);
        }
        break;
      }
      case 16:
        for (int32_t x = 0; x < w; ++x) {
          const uint32_t v = uint32_t{src[x * 2]} | (uint32_t{src[x * 2 + 1]} << 8);
          const uint32_t c = lut16.empty() ? pack(v) : lut16[v];
          std::memcpy(dst + size_t(x) * 4, &c, 4);
        }
        break;
      case 24:
        for (int32_t x = 0; x < w; ++x, src += 3, dst += 4) {
          dst[0] = src[0];
          dst[1] = src[1];
          dst[2] = src[2];
          dst[3] = 255;
        }
        break;
      case 32:
        if (plain32) {
          std::memcpy(dst, src, size_t(w) * 4);
        } else {
          for (int32_t x = 0; x < w; ++x, src += 4, dst += 4) {
            const uint32_t v = uint32_t{src[0]} | (uint32_t{src[1]} << 8) |
                               (uint32_t{src[2]} << 16) | (uint32_t{src[3]} << 24);
            dst[0] = blue.Of(v);
            dst[1] = green.Of(v);
            dst[2] = red.Of(v);
            dst[3] = alphaRaw ? alpha.Of(v) : 255;
          }
        }
        break;
      default:
        return false;
    }
  }
  return true;
}

bool cBMPparser::DecideAlpha(Pixels& p) {
  bool any = false, premultiplied = true;
  for (size_t i = 0; i + 3 < p.bytes.size(); i += 4) {
    const uint8_t a = p.bytes[i + 3];
    if (a != 0) any = true;
    if (p.bytes[i] > a || p.bytes[i + 1] > a || p.bytes[i + 2] > a) premultiplied = false;
    if (any && !premultiplied) break;
  }
  if (!any) {
    // All zero: a bitmap that never had alpha, not an invisible one.
    for (size_t i = 3; i < p.bytes.size(); i += 4) p.bytes[i] = 255;
    p.alpha = Alpha_None;
    p.format = Image_Bitmap;
    return false;
  }
  if (!premultiplied) {
    for (size_t i = 0; i + 3 < p.bytes.size(); i += 4) Premultiply(&p.bytes[i]);
  }
  p.format = premultiplied ? Image_Bitmap_PARGB : Image_Bitmap_ARGB;
  p.alpha = p.ScanAlpha();
  return true;
}

bool cBMPparser::LoadStream(std::span<const uint8_t> bytes, Pixels& out, size_t start,
                            size_t length) {
  out.Clear();
  try {
    if (start >= bytes.size()) return false;
    const size_t avail = bytes.size() - start;
    const std::span<const uint8_t> d =
        bytes.subspan(start, length == 0 || length > avail ? avail : length);
    if (d.size() < 26 || Le16(d, 0) != 19778) return false;  // "BM"
    DibHeader h;
    if (!ReadDibHeader(d, 14, h)) return false;
    const size_t offset = Le32(d, 10);
    const bool rle = h.compression == kRle8 || h.compression == kRle4;
    const uint64_t area = static_cast<uint64_t>(h.width) * static_cast<uint64_t>(h.height);

    size_t dataStart = offset;
    if (offset == 0 || offset >= d.size()) {
      // A header that lost its offset: the data is taken to fill the file's
      // end, or to follow the palette when the file is too short for that.
      const uint64_t need = static_cast<uint64_t>(h.Stride()) * static_cast<uint64_t>(h.height);
      dataStart = (!rle && need <= d.size() - h.end) ? d.size() - static_cast<size_t>(need) : h.end;
    }
    if (dataStart >= d.size()) return false;
    const std::span<const uint8_t> data = d.subspan(dataStart);
    if (rle) {
      // Runs reach at most 255 pixels in 2 bytes; jumps and line ends may
      // pass over more, but a picture that is mostly passed over is no
      // picture: a giant from a few bytes is refused before it is made.
      if (area > static_cast<uint64_t>(data.size()) * 1024 + 65536) return false;
    } else {
      const uint64_t need =
          static_cast<uint64_t>(h.Stride()) * static_cast<uint64_t>(h.height - 1) +
          (static_cast<uint64_t>(h.width) * h.bitCount + 7) / 8;
      if (need > data.size()) return false;
    }
    if (!out.Allocate(h.width, h.height)) return false;
    bool alphaRaw = false;
    if (!DecodeDibPixels(h, data, out, alphaRaw)) {
      out.Clear();
      return false;
    }
    if (alphaRaw) {
      DecideAlpha(out);
    } else {
      out.alpha = Alpha_None;
      out.format = Image_Bitmap;
    }
    return true;
  } catch (...) {
    out.Clear();
    return false;
  }
}

bool cBMPparser::ConvertstdPicTo32bpp(HBITMAP bitmap, Pixels& out) {
  out.Clear();
  try {
    BITMAP bm{};
    if (bitmap == nullptr || GetObjectW(bitmap, sizeof bm, &bm) == 0) return false;
    if (!out.Allocate(bm.bmWidth, bm.bmHeight < 0 ? -bm.bmHeight : bm.bmHeight)) return false;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = out.width;
    info.bmiHeader.biHeight = out.height;  // bottom-up, as the picture keeps its rows
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    HDC dc = CreateCompatibleDC(nullptr);
    const int lines = GetDIBits(dc, bitmap, 0, static_cast<UINT>(out.height), out.bytes.data(),
                                &info, DIB_RGB_COLORS);
    DeleteDC(dc);
    if (lines != out.height) {
      out.Clear();
      return false;
    }
    if (bm.bmBitsPixel == 32) {
      DecideAlpha(out);
    } else {
      for (size_t i = 3; i < out.bytes.size(); i += 4) out.bytes[i] = 255;
      out.alpha = Alpha_None;
      out.format = Image_Bitmap;
    }
    return true;
  } catch (...) {
    out.Clear();
    return false;
  }
}

bool cBMPparser::SaveAsBMP(const Pixels& in, std::vector<uint8_t>& out, bool keepPremultiplied,
                           std::optional<OLE_COLOR> fillColor) {
  out.clear();
  try {
    if (in.Empty() || in.bytes.size() != in.Stride() * static_cast<size_t>(in.height)) {
      return false;
    }
    std::optional<COLORREF> fill;
    if (fillColor) {
      COLORREF c = 0;
      if (OleTranslateColor(*fillColor, nullptr, &c) == S_OK) fill = c;
    }
    const bool opaque = in.alpha == Alpha_None;
    const int bits = keepPremultiplied ? 32 : (opaque || fill) ? 24 : 32;
    const size_t stride = (static_cast<size_t>(in.width) * static_cast<size_t>(bits) + 31) / 32 * 4;
    const uint64_t imageSize = static_cast<uint64_t>(stride) * static_cast<uint64_t>(in.height);
    if (imageSize + 54 > UINT32_MAX) return false;
    out.reserve(static_cast<size_t>(imageSize) + 54);
    out.push_back('B');
    out.push_back('M');
    Put32(out, static_cast<uint32_t>(imageSize + 54));
    Put32(out, 0);
    Put32(out, 54);
    Put32(out, 40);
    Put32(out, static_cast<uint32_t>(in.width));
    Put32(out, static_cast<uint32_t>(in.height));
    Put16(out, 1);
    Put16(out, static_cast<uint32_t>(bits));
    Put32(out, 0);  // BI_RGB
    Put32(out, static_cast<uint32_t>(imageSize));
    for (int i = 0; i < 4; ++i) Put32(out, 0);

    const uint8_t fb = fill ? static_cast<uint8_t>(*fill >> 16) : 0;
    const uint8_t fg = fill ? static_cast<uint8_t>(*fill >> 8) : 0;
    const uint8_t fr = fill ? static_cast<uint8_t>(*fill) : 0;
    const size_t pad = stride - static_cast<size_t>(in.width) * static_cast<size_t>(bits / 8);
    // Pixels keeps its rows bottom-up already, as the file wants them.
    for (int32_t r = 0; r < in.height; ++r) {
      const uint8_t* px = in.bytes.data() + static_cast<size_t>(r) * in.Stride();
      if (keepPremultiplied) {
        out.insert(out.end(), px, px + in.Stride());
        continue;
      }
      for (int32_t x = 0; x < in.width; ++x, px += 4) {
        const uint32_t a = px[3];
        if (bits == 24) {
          if (fill && !opaque) {
            const uint32_t inv = 255 - a;
            out.push_back(static_cast<uint8_t>(std::min<uint32_t>(255, px[0] + fb * inv / 255)));
            out.push_back(static_cast<uint8_t>(std::min<uint32_t>(255, px[1] + fg * inv / 255)));
            out.push_back(static_cast<uint8_t>(std::min<uint32_t>(255, px[2] + fr * inv / 255)));
          } else {
            out.insert(out.end(), px, px + 3);
          }
        } else if (a == 0) {
          Put32(out, 0);
        } else {
          // Rounded up: the straight value that pre-multiplies back to the
          // very byte it came from, so a save and a load give the same pixels.
          for (int c = 0; c < 3; ++c) {
            out.push_back(
                static_cast<uint8_t>(std::min<uint32_t>(255, (px[c] * 255u + a - 1) / a)));
          }
          out.push_back(static_cast<uint8_t>(a));
        }
      }
      out.insert(out.end(), pad, uint8_t{0});
    }
    return true;
  } catch (...) {
    out.clear();
    return false;
  }
}

bool cBMPparser::SaveAsBMP(const Pixels& in, const String& fileName, bool keepPremultiplied,
                           std::optional<OLE_COLOR> fillColor) {
  if (fileName.empty()) return false;
  std::vector<uint8_t> bytes;
  return SaveAsBMP(in, bytes, keepPremultiplied, fillColor) && WriteFile(fileName, bytes);
}

}  // namespace vantor::imaging
