#pragma once
// A picture out as a baseline JPEG, for when GDI+ is not there to do it (it
// never is off Windows). Transparency is laid over a fill colour first, since
// JPEG has no alpha.
//
// The way through: the pixels become a luminance and two chrominance planes
// of 16-bit samples (the chrominance at half the resolution each way unless
// told otherwise), one strip of data units at a time; each 8 x 8 block goes
// through a floating-point AAN DCT and is divided by the quantisation table
// that the quality chose. The first pass turns the blocks into Huffman
// symbols and counts them; Huffman tables fitted to those counts are then
// built, and the second pass writes the symbols with them. Fitted tables make
// smaller files than the example tables of the standard, for the price of
// keeping the symbols between the passes.
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "imaging/Pixels.h"
#include "platform/WinTypes.h"
#include "runtime/String.h"

namespace vantor::imaging {

class cJPGWriter {
 public:
  // The stock tables' quality: 50 leaves them as they stand.
  static constexpr int32_t kDefaultQuality = 75;
  // Frequencies by symbol, entry 256 the reserved one that keeps every code
  // from being all ones.
  using Frequencies = std::array<uint32_t, 257>;

  cJPGWriter();

  // 1 to 100; a value beyond either end is taken as that end. Setting it
  // rebuilds the quantisation tables.
  int32_t get_Quality() const { return quality_; }
  void put_Quality(int32_t Quality);

  // How many luminance samples stand for one chrominance sample across and
  // down: 1 or 2 each. (2, 2) unless changed, as in most files of photographs.
  // False, with nothing changed, for other values.
  bool SetLuminanceSampling(int32_t horizontal, int32_t vertical);

  // The picture as a JPEG file in `out`, at `Quality`, with transparent and
  // half-transparent pixels laid over `FillColor` (an OLE colour). False,
  // with `out` empty, for an empty or malformed picture or one wider or
  // higher than a JPEG frame can say (65535).
  bool Save(const Pixels& in, std::vector<uint8_t>& out, int32_t Quality = kDefaultQuality,
            OLE_COLOR FillColor = 0xFFFFFF);
  // The same, written to a file in one go; false also when the file cannot be
  // made.
  bool Save(const Pixels& in, const String& fileName, int32_t Quality = kDefaultQuality,
            OLE_COLOR FillColor = 0xFFFFFF);

  // Quantisation table 0 (luminance) or 1 (chrominance) at the present
  // quality, in zig-zag order, as the file carries it.
  const std::array<uint8_t, 64>& QuantizationTable(int index) const { return quant_[index & 3]; }
  // The zig-zag walk: entry k is the position, in row order, of the k-th
  // coefficient written.
  const std::array<uint8_t, 64>& ZigZag() const { return zigzag_; }

  // Code lengths fitted to `frequencies` by the JPEG standard's procedure
  // (Annex K.2): lengths limited to 16, the reserved symbol counted and then
  // taken out. `bits[n]` is the number of codes of length n (bits[0] unused);
  // `values` the symbols by length, then by value. Symbols of frequency 0 get
  // no code.
  static void FitHuffmanTable(Frequencies frequencies, std::array<uint8_t, 17>& bits,
                              std::vector<uint8_t>& values);

  // The hot loops have a plain form beside the one that works on several
  // lanes at once; tests run both and compare their files.
  static void UsePlainLoopsForTesting(bool plain);

 private:
  struct HuffmanTable {
    std::array<uint8_t, 17> bits{};
    std::vector<uint8_t> values;
    std::array<uint16_t, 256> code{};
    std::array<uint8_t, 256> size{};
  };
  struct Component {
    uint8_t id = 0;
    uint8_t horizontal = 1;
    uint8_t vertical = 1;
    uint8_t quantTable = 0;
    uint8_t dcTable = 0;
    uint8_t acTable = 0;
    // One strip of samples: a row of data units, padded to whole units.
    std::vector<int16_t> plane;
    size_t planeWidth = 0;
  };
  void BuildQuantizationTables();
  // The output array: room for `more` bytes at the write position, growing
  // when needed.
  void Reserve(size_t more);
  void PutByte(uint8_t b);
  void PutWord(uint32_t w);
  // A marker, with its segment's length unless that is 0.
  void PutMarker(uint8_t marker, uint32_t length);
  // SOI, APP0, DQT, SOF0, DHT and SOS, in that order.
  void WriteHeaders();
  // The first pass's symbols with the fitted codes, 0xFF bytes stuffed.
  void WriteEntropy(const uint32_t* tokens, size_t count,
                    const std::array<uint32_t, 4 * 256>& codes,
                    const std::array<uint8_t, 4 * 256>& sizes);

  int32_t quality_ = kDefaultQuality;
  int32_t precision_ = 8;
  std::array<std::array<uint8_t, 64>, 4> quant_{};
  std::array<HuffmanTable, 4> dcTables_{};
  std::array<HuffmanTable, 4> acTables_{};
  std::array<Component, 4> components_{};
  int32_t componentCount_ = 3;
  int32_t width_ = 0;
  int32_t height_ = 0;
  std::unique_ptr<uint8_t[]> output_;
  size_t outputSize_ = 0;
  size_t position_ = 0;
  std::array<uint8_t, 64> zigzag_{};
};

}  // namespace vantor::imaging
