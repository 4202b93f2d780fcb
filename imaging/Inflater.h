#pragma once
// Deflate decoding of our own (the zlib wrapper and raw deflate), so that PNG
// pictures and compressed image lists still open where zlib cannot be loaded.
// Input is a list of pieces read in order as one stream, the way a PNG's IDAT
// bodies lie in its file, so that nothing has to be joined first. Output is
// pulled in portions of the caller's size: a reader can take one image row at
// a time while only the last 32 KiB of history and a working span stay here.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace vantor::imaging {

class Inflater {
 public:
  enum class Wrapper { Zlib, Raw };

  Inflater();
  ~Inflater();
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  // Begins a new stream. The bytes the pieces point to must outlive the reads.
  // With `checkAdler` the zlib trailer must hold the output's Adler-32; without
  // it decoding stops at the end of the final block, trailer or none.
  void Start(std::span<const std::span<const uint8_t>> pieces, Wrapper wrapper = Wrapper::Zlib,
             bool checkAdler = false);
  void Start(std::span<const uint8_t> data, Wrapper wrapper = Wrapper::Zlib,
             bool checkAdler = false);

  // Copies up to `count` bytes of output; fewer only at the end of the stream
  // or when the input is bad or runs out, which Failed() then tells.
  size_t Read(uint8_t* out, size_t count);
  bool Failed() const;
  // The final block was decoded (with its trailer, when checked) and every
  // byte of output has been read.
  bool Finished() const;

  // The whole output of one stream in `out`; false for bad input or when the
  // output would pass `maxOutput` bytes.
  static bool Uncompress(std::span<const uint8_t> in, std::vector<uint8_t>& out, size_t maxOutput,
                         Wrapper wrapper = Wrapper::Zlib, bool checkAdler = true);

 private:
  struct Tables;
  enum class State : uint8_t { Header, BlockHeader, Stored, Codes, Trailer, Done, Failed };

  void Reset(Wrapper wrapper, bool checkAdler);
  // Runs the decoder until base[pos] reaches `end`, the stream ends or fails.
  // base[0, pos) is the history that matches may reach back into.
  void Decode(uint8_t* base, size_t& pos, size_t end);
  bool DecodeCodes(uint8_t* base, size_t& pos, size_t end);
  bool ReadBlockHeader();
  bool ReadDynamicTables();
  bool CopyStored(uint8_t* base, size_t& pos, size_t end);
  void RefillSlow();
  bool Overrun() const { return count_ < padBits_; }
  void Fail() { state_ = State::Failed; }
  void UpdateAdler(const uint8_t* p, size_t n);

  std::vector<std::span<const uint8_t>> pieces_;
  size_t nextPiece_ = 0;
  const uint8_t* in_ = nullptr;
  const uint8_t* inEnd_ = nullptr;
  uint64_t bits_ = 0;
  uint32_t count_ = 0;    // bits held in bits_
  uint32_t padBits_ = 0;  // zero bits appended after the input ran out

  State state_ = State::Header;
  Wrapper wrapper_ = Wrapper::Zlib;
  bool checkAdler_ = false;
  bool final_ = false;
  uint32_t storedLeft_ = 0;
  uint32_t pendingLength_ = 0;  // a match cut short by the end of the output
  uint32_t pendingDistance_ = 0;
  uint32_t adlerA_ = 1, adlerB_ = 0;
  std::unique_ptr<Tables> tables_;

  // Streaming output: 32 KiB of history, then the span being filled.
  std::vector<uint8_t> window_;
  size_t readPos_ = 0;
  size_t writePos_ = 0;
};

}  // namespace vantor::imaging
