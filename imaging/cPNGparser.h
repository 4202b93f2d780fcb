#pragma once
// PNG into the surface's layout (pre-multiplied BGRA, bottom-up). Only what a
// picture needs is read: the header, the palette, the transparency chunk and
// the image data; every other chunk is passed over, so no gamma, colour space,
// background or text is applied. Every colour type, bit depth and Adam7
// interlacing is decoded; 16-bit samples keep their high byte.
//
// Two inflate routes give the same pixels: zlib, which also lets the reader
// test each chunk's CRC, and our own Inflater for when zlib cannot be had, in
// which case no CRC is tested. The image data is inflated a row at a time
// straight from the IDAT bodies where they lie, so decoding needs little more
// than the picture itself.
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/Pixels.h"
#include "runtime/String.h"

namespace vantor::imaging {

class cPNGparser {
 public:
  // Reads the PNG that occupies `length` bytes (0: all the rest) from byte
  // `start` of `bytes`. A picture fills `out` with format Image_PNG and the
  // alpha kind its pixels show; on failure `out` is empty and the result
  // false, with no message: the caller goes on to its next reader.
  bool LoadStream(std::span<const uint8_t> bytes, Pixels& out, size_t start = 0, size_t length = 0);
  // The same from a file; a file of 56 bytes or fewer is not looked at.
  bool LoadFile(const String& fileName, Pixels& out);

  // Whether zlib's inflate and CRC are at hand. It is linked into the library
  // here, so only a test can take it away: with `absent` true every reader
  // behaves as it would where zlib cannot be loaded.
  static bool ZlibPresent();
  static void SimulateZlibAbsent(bool absent);

 private:
  bool Load(std::span<const uint8_t> data, Pixels& out);
  bool WalkChunks(std::span<const uint8_t> data);
  bool ReadHeader(std::span<const uint8_t> body);
  bool DecodeImage(Pixels& out);

  // From IHDR, in its order.
  int32_t width_ = 0;
  int32_t height_ = 0;
  uint8_t bitDepth_ = 0;
  uint8_t colorType_ = 0;
  uint8_t compression_ = 0;
  uint8_t filter_ = 0;
  uint8_t interlace_ = 0;
  bool haveHeader_ = false;
  // -1 until the walk ends; then 0 none, 1 palette alphas, 2 a key colour.
  int32_t transparencyMode_ = -1;
  std::vector<uint8_t> palette_;       // red, green, blue triples
  std::vector<uint8_t> transparency_;  // tRNS as it came
  // The IDAT bodies where they lie in the caller's bytes, read as one stream.
  std::vector<std::span<const uint8_t>> compressed_;
  uint64_t compressedSize_ = 0;
  bool useZlib_ = true;
};

}  // namespace vantor::imaging
