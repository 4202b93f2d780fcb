#pragma once
// The GIF flavour of LZW, shared by the first-frame reader and the animation:
// variable-width codes of up to 12 bits, packed from the low bit up, carried in
// sub-blocks of at most 255 bytes that end with an empty one.
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vantor::imaging {

// Decodes the image data that starts at `pos` (its minimum-code-size byte)
// into `width` x `height` palette indexes, in logical order (row 0 at the top,
// interlaced rows put back in place). `indexes` is resized; pixels that the
// data never reached are left 0. Returns how many pixels the data gave, in the
// order they were sent; a broken stream ends the decoding, not the caller.
size_t DecodeGifImage(std::span<const uint8_t> file, size_t pos, int32_t width, int32_t height,
                      bool interlaced, std::vector<uint8_t>& indexes);

// The logical row that the n-th row sent lands on.
int32_t GifRowOf(int32_t sentRow, int32_t height, bool interlaced);

// Calls `fn(row, columns)` for every logical row with how many of its leading
// pixels `produced` (from DecodeGifImage) covers.
template <class Fn>
void ForEachDecodedRow(size_t produced, int32_t width, int32_t height, bool interlaced, Fn fn) {
  const size_t w = static_cast<size_t>(width);
  for (int32_t r = 0; r < height; ++r) {
    const size_t before = static_cast<size_t>(r) * w;
    if (before >= produced) break;
    const size_t n = produced - before < w ? produced - before : w;
    fn(GifRowOf(r, height, interlaced), static_cast<int32_t>(n));
  }
}

// Position just after the sub-blocks that start at `pos` (past their empty
// terminator), or the data's end when they run out first.
size_t SkipGifSubBlocks(std::span<const uint8_t> file, size_t pos);

// A picture whose data could not possibly hold this many pixels is refused
// before its buffers are made: a string grows by one index a code, so no
// code stands for more than 4096 pixels, and past the first few hundred codes
// each takes 9 bits or more.
bool GifAreaIsPlausible(uint64_t pixels, size_t bytesLeft);

}  // namespace vantor::imaging
