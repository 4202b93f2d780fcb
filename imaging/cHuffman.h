#pragma once
// The image lists' own byte compressor, for when zlib is not there to make
// PNG: an order-0 Huffman coder over bytes that needs no library at all.
//
// A packed stream reads:
//   4 bytes   the unpacked length n, little-endian
//   2 bytes   how many byte values have a code (0 to 256), little-endian
//   per code  the byte value, the code's length L in bits (1 to 255), and the
//             code itself in ceil(L / 8) bytes, first bit in the high bit
//   the rest  the codes of the n bytes, one after the other, high bit first;
//             the last byte is padded with zero bits
// A single byte value still gets a one-bit code, so that every byte costs at
// least one bit and a stream's own size bounds what it can unpack to.
#include <cstdint>
#include <span>
#include <vector>

namespace vantor::imaging {

class cHuffman {
 public:
  // Both leave `out` empty and return false on failure; neither throws. An
  // empty input packs to a stream that unpacks to nothing.
  static bool EncodeByteArray(std::span<const uint8_t> in, std::vector<uint8_t>& out);
  // Refuses a code table that does not make a tree of at most 511 nodes
  // (codes that clash, that are too long, or too many nodes), a bit stream
  // that leads off the tree or ends early, and a length the stream could not
  // hold.
  static bool DecodeByteArray(std::span<const uint8_t> in, std::vector<uint8_t>& out);

  // The largest tree: 256 leaves and 255 joins.
  static constexpr int kMaxNodes = 511;
};

}  // namespace vantor::imaging
