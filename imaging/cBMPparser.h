#pragma once
// Windows bitmaps in both directions. Every depth (1, 2, 4, 8, 16, 24, 32),
// RLE4, RLE8 and bit fields are decoded here, since only Windows has a system
// decoder to hand them to; a 32-bit picture's fourth byte is judged to be
// alpha (pre-multiplied or straight) or padding by looking at it. The saver
// writes 24 bits for an opaque picture and 32 bits otherwise.
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "imaging/Pixels.h"
#include "platform/WinTypes.h"
#include "runtime/String.h"

namespace vantor::imaging {

// What a DIB's header says, shared with the icon reader, whose entries are
// DIBs without the file header.
struct DibHeader {
  uint32_t headerSize = 0;
  int32_t width = 0;
  int32_t height = 0;  // absolute
  bool topDown = false;
  uint16_t bitCount = 0;
  uint32_t compression = 0;             // BI_RGB 0, RLE8 1, RLE4 2, BITFIELDS 3, 6
  std::array<uint32_t, 4> masks{};      // red, green, blue, alpha
  std::array<uint32_t, 256> palette{};  // B, G, R words; unused entries black
  size_t colours = 0;                   // palette entries the data gave
  size_t end = 0;                       // just past the header, masks and palette

  // Bytes of one uncompressed row, padded to 32 bits.
  size_t Stride() const;
};

class cBMPparser {
 public:
  // Reads the bitmap that occupies `length` bytes (0: all the rest) from
  // byte `start` of `bytes`. On failure returns false with `out` empty.
  bool LoadStream(std::span<const uint8_t> bytes, Pixels& out, size_t start = 0, size_t length = 0);

  // A GDI bitmap as a picture: 32-bit bitmaps go through the alpha decision,
  // others are opaque.
  bool ConvertstdPicTo32bpp(HBITMAP bitmap, Pixels& out);

  // Bottom-up BMP with a 40-byte header. With `keepPremultiplied` the pixels
  // go out as 32 bits as they stand; an opaque picture goes out as 24 bits;
  // one with alpha as straight 32 bits, or laid over `fillColor` as 24 bits
  // when one is given.
  bool SaveAsBMP(const Pixels& in, std::vector<uint8_t>& out, bool keepPremultiplied = false,
                 std::optional<OLE_COLOR> fillColor = {});
  // The same, written to a file; an empty name is refused.
  bool SaveAsBMP(const Pixels& in, const String& fileName, bool keepPremultiplied = false,
                 std::optional<OLE_COLOR> fillColor = {});

  // --- shared with the icon reader ---

  // Reads a DIB header (BITMAPCOREHEADER, BITMAPINFOHEADER or a later one)
  // at `pos`, with the bit-field masks and palette that follow it.
  static bool ReadDibHeader(std::span<const uint8_t> d, size_t pos, DibHeader& h);
  // Decodes the pixels at `data` into `out` (already of the header's size):
  // colours straight, alpha 255, except for 32 bits and alpha bit fields,
  // whose alpha is left raw for the decision. Returns false when the data is
  // too short. `alphaRaw` tells whether alpha was left raw.
  static bool DecodeDibPixels(const DibHeader& h, std::span<const uint8_t> data, Pixels& out,
                              bool& alphaRaw);
  // The alpha decision on straight or pre-multiplied pixels read from a
  // 32-bit source: all alpha 0 means none (made opaque, Image_Bitmap);
  // otherwise pre-multiplied when no colour exceeds its alpha
  // (Image_Bitmap_PARGB), else straight (Image_Bitmap_ARGB) and
  // pre-multiplied here. Returns false when the alpha was all 0.
  static bool DecideAlpha(Pixels& p);
};

}  // namespace vantor::imaging
