#include "imaging/Inflater.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>

namespace vantor::imaging {

namespace {

constexpr size_t kHistory = 32768;         // the farthest a match can reach back
constexpr size_t kSpan = size_t{1} << 17;  // output decoded per refill of the window
// The fast loop writes a whole match, and up to 7 bytes past it, without
// looking at the end of the output; it stops this far before the end.
constexpr size_t kFastOutputMargin = 258 + 8;

// A table entry: bits 0-7 the code length; bits 8-11 the extra bits of a
// length or distance; the flags below; bits 16-31 the literal, the base
// length or distance, or the code-length symbol.
constexpr uint32_t kLiteral = 1u << 15;
constexpr uint32_t kEnd = 1u << 14;
constexpr uint32_t kLong = 1u << 13;  // longer than the lookup: decode bit by bit
constexpr uint32_t kBad = 1u << 12;
constexpr int kLookupBits = 10;
constexpr uint32_t kLookupMask = (1u << kLookupBits) - 1;

constexpr uint16_t kLengthBase[29] = {3,  4,  5,  6,   7,   8,   9,   10,  11, 13,
                                      15, 17, 19, 23,  27,  31,  35,  43,  51, 59,
                                      67, 83, 99, 115, 131, 163, 195, 227, 258};
constexpr uint8_t kLengthExtra[29] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                      2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr uint16_t kDistanceBase[30] = {
    1,   2,   3,   4,   5,   7,    9,    13,   17,   25,   33,   49,   65,    97,    129,
    193, 257, 385, 513, 769, 1025, 1537, 2049, 3073, 4097, 6145, 8193, 12289, 16385, 24577};
constexpr uint8_t kDistanceExtra[30] = {0, 0, 0, 0, 1, 1, 2, 2,  3,  3,  4,  4,  5,  5,  6,
                                        6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};
constexpr uint8_t kCodeLengthOrder[19] = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                          11, 4,  12, 3, 13, 2, 14, 1, 15};

// What each symbol means, without its code length.
struct SymbolInfo {
  std::array<uint32_t, 288> literalLength{};
  std::array<uint32_t, 32> distance{};
  std::array<uint32_t, 19> codeLength{};
  SymbolInfo() {
    for (uint32_t s = 0; s < 256; ++s) literalLength[s] = kLiteral | s << 16;
    literalLength[256] = kEnd;
    for (uint32_t s = 257; s < 286; ++s)
      literalLength[s] = uint32_t{kLengthBase[s - 257]} << 16 | uint32_t{kLengthExtra[s - 257]}
                                                                    << 8;
    literalLength[286] = literalLength[287] = kBad;
    for (uint32_t s = 0; s < 30; ++s)
      distance[s] = uint32_t{kDistanceBase[s]} << 16 | uint32_t{kDistanceExtra[s]} << 8;
    distance[30] = distance[31] = kBad;
    for (uint32_t s = 0; s < 19; ++s) codeLength[s] = kLiteral | s << 16;
  }
};

const SymbolInfo& Info() {
  static const SymbolInfo info;
  return info;
}

}  // namespace

// A canonical Huffman code: a lookup on the next 10 bits for the short codes,
// and the counts and sorted symbols to walk the rare longer ones bit by bit.
struct HuffmanTable {
  std::array<uint32_t, 1u << kLookupBits> lookup;
  std::array<uint16_t, 16> count;
  std::array<uint16_t, 288> sorted;
  const uint32_t* info = nullptr;

  // False for a set of lengths that is over-subscribed, or incomplete where
  // deflate does not allow it: only a code of one symbol, or none at all,
  // may leave codes unused, and never the code-length code.
  bool Build(const uint8_t* lengths, size_t n, const uint32_t* symbolInfo, bool codeLengthCode) {
    info = symbolInfo;
    count.fill(0);
    for (size_t s = 0; s < n; ++s) ++count[lengths[s]];
    count[0] = 0;
    int32_t left = 1;
    int maxLength = 0;
    for (int len = 1; len <= 15; ++len) {
      left = left * 2 - count[len];
      if (left < 0) return false;
      if (count[len] != 0) maxLength = len;
    }
    if (left > 0 && (codeLengthCode || maxLength > 1)) return false;

    std::array<uint16_t, 17> offset{};
    for (int len = 1; len <= 15; ++len)
      offset[len + 1] = static_cast<uint16_t>(offset[len] + count[len]);
    for (size_t s = 0; s < n; ++s)
      if (lengths[s] != 0) sorted[offset[lengths[s]]++] = static_cast<uint16_t>(s);

    lookup.fill(kBad);
    uint32_t code = 0;
    size_t index = 0;
    for (uint32_t len = 1; len <= 15; ++len, code <<= 1) {
      for (uint32_t i = 0; i < count[len]; ++i, ++code) {
        const uint16_t symbol = sorted[index++];
        uint32_t reversed = 0;
        for (uint32_t b = 0; b < len; ++b) reversed |= ((code >> b) & 1u) << (len - 1 - b);
        if (len <= static_cast<uint32_t>(kLookupBits)) {
          const uint32_t entry = info[symbol] | len;
          for (uint32_t r = reversed; r <= kLookupMask; r += 1u << len) lookup[r] = entry;
        } else {
          lookup[reversed & kLookupMask] = kLong;
        }
      }
    }
    return true;
  }

  // The entry for a code longer than the lookup, read from the low end of
  // `bits` (which holds at least 15).
  uint32_t DecodeLong(uint64_t bits) const {
    uint32_t code = 0, first = 0, index = 0;
    for (uint32_t len = 1; len <= 15; ++len) {
      code |= static_cast<uint32_t>(bits & 1u);
      bits >>= 1;
      const uint32_t c = count[len];
      if (code < first + c) return info[sorted[index + code - first]] | len;
      index += c;
      first = (first + c) << 1;
      code <<= 1;
    }
    return kBad;
  }

  uint32_t Decode(uint64_t bits) const {
    const uint32_t e = lookup[bits & kLookupMask];
    return (e & kLong) ? DecodeLong(bits) : e;
  }
};

struct Inflater::Tables {
  HuffmanTable literal;
  HuffmanTable distance;
  HuffmanTable codeLength;
  const HuffmanTable* currentLiteral = nullptr;
  const HuffmanTable* currentDistance = nullptr;
};

namespace {

struct FixedTables {
  HuffmanTable literal;
  HuffmanTable distance;
  FixedTables() {
    uint8_t lengths[288];
    std::fill(lengths, lengths + 144, uint8_t{8});
    std::fill(lengths + 144, lengths + 256, uint8_t{9});
    std::fill(lengths + 256, lengths + 280, uint8_t{7});
    std::fill(lengths + 280, lengths + 288, uint8_t{8});
    literal.Build(lengths, 288, Info().literalLength.data(), false);
    std::fill(lengths, lengths + 32, uint8_t{5});
    distance.Build(lengths, 32, Info().distance.data(), false);
  }
};

const FixedTables& Fixed() {
  static const FixedTables tables;
  return tables;
}

inline uint64_t Load64(const uint8_t* p) {
  uint64_t v;
  std::memcpy(&v, p, 8);
  if constexpr (std::endian::native == std::endian::big) v = __builtin_bswap64(v);
  return v;
}

inline uint64_t LowBits(uint64_t bits, uint32_t n) {
  return bits & ((uint64_t{1} << n) - 1);
}

}  // namespace

Inflater::Inflater() : tables_(std::make_unique<Tables>()) {}
Inflater::~Inflater() = default;

void Inflater::Reset(Wrapper wrapper, bool checkAdler) {
  nextPiece_ = 0;
  in_ = inEnd_ = nullptr;
  bits_ = 0;
  count_ = padBits_ = 0;
  wrapper_ = wrapper;
  checkAdler_ = checkAdler && wrapper == Wrapper::Zlib;
  state_ = wrapper == Wrapper::Zlib ? State::Header : State::BlockHeader;
  final_ = false;
  storedLeft_ = pendingLength_ = pendingDistance_ = 0;
  adlerA_ = 1;
  adlerB_ = 0;
  readPos_ = writePos_ = 0;
}

void Inflater::Start(std::span<const std::span<const uint8_t>> pieces, Wrapper wrapper,
                     bool checkAdler) {
  Reset(wrapper, checkAdler);
  pieces_.assign(pieces.begin(), pieces.end());
}

void Inflater::Start(std::span<const uint8_t> data, Wrapper wrapper, bool checkAdler) {
  Reset(wrapper, checkAdler);
  pieces_.assign(1, data);
}

bool Inflater::Failed() const {
  return state_ == State::Failed;
}

bool Inflater::Finished() const {
  return state_ == State::Done && readPos_ == writePos_;
}

// Fills the bit buffer to more than 56 bits a byte at a time, crossing into
// the next piece as needed; past the last piece it appends zero bytes and
// counts them, so that Overrun() can tell when decoding used bits that were
// never there.
void Inflater::RefillSlow() {
  while (count_ <= 56) {
    if (in_ == inEnd_) {
      while (in_ == inEnd_ && nextPiece_ < pieces_.size()) {
        in_ = pieces_[nextPiece_].data();
        inEnd_ = in_ + pieces_[nextPiece_].size();
        ++nextPiece_;
      }
      if (in_ == inEnd_) {
        count_ += 8;
        padBits_ += 8;
        continue;
      }
    }
    bits_ |= uint64_t{*in_++} << count_;
    count_ += 8;
  }
}

void Inflater::UpdateAdler(const uint8_t* p, size_t n) {
  if (!checkAdler_) return;
  constexpr uint32_t kBase = 65521;
  uint32_t a = adlerA_, b = adlerB_;
  while (n > 0) {
    const size_t chunk = std::min<size_t>(n, 5552);  // the most that cannot overflow
    n -= chunk;
    for (size_t i = 0; i < chunk; ++i) {
      a += p[i];
      b += a;
    }
    p += chunk;
    a %= kBase;
    b %= kBase;
  }
  adlerA_ = a;
  adlerB_ = b;
}

bool Inflater::ReadBlockHeader() {
  RefillSlow();
  final_ = (bits_ & 1u) != 0;
  const uint32_t type = static_cast<uint32_t>((bits_ >> 1) & 3u);
  bits_ >>= 3;
  count_ -= 3;
  if (Overrun()) return false;
  switch (type) {
    case 0: {
      const uint32_t drop = count_ & 7u;
      bits_ >>= drop;
      count_ -= drop;
      const uint32_t length = static_cast<uint32_t>(bits_ & 0xFFFFu);
      const uint32_t complement = static_cast<uint32_t>((bits_ >> 16) & 0xFFFFu);
      bits_ >>= 32;
      count_ -= 32;
      if (Overrun() || length != (~complement & 0xFFFFu)) return false;
      storedLeft_ = length;
      state_ = State::Stored;
      return true;
    }
    case 1:
      tables_->currentLiteral = &Fixed().literal;
      tables_->currentDistance = &Fixed().distance;
      state_ = State::Codes;
      return true;
    case 2:
      if (!ReadDynamicTables()) return false;
      tables_->currentLiteral = &tables_->literal;
      tables_->currentDistance = &tables_->distance;
      state_ = State::Codes;
      return true;
    default:
      return false;
  }
}

bool Inflater::ReadDynamicTables() {
  RefillSlow();
  const uint32_t literals = static_cast<uint32_t>(bits_ & 31u) + 257;
  const uint32_t distances = static_cast<uint32_t>((bits_ >> 5) & 31u) + 1;
  const uint32_t codeLengths = static_cast<uint32_t>((bits_ >> 10) & 15u) + 4;
  bits_ >>= 14;
  count_ -= 14;
  if (literals > 286 || distances > 30) return false;

  uint8_t clLengths[19] = {};
  for (uint32_t i = 0; i < codeLengths; ++i) {
    if (count_ < 3) RefillSlow();
    clLengths[kCodeLengthOrder[i]] = static_cast<uint8_t>(bits_ & 7u);
    bits_ >>= 3;
    count_ -= 3;
  }
  if (Overrun()) return false;
  Tables& t = *tables_;
  if (!t.codeLength.Build(clLengths, 19, Info().codeLength.data(), true)) return false;

  uint8_t lengths[288 + 32] = {};
  const uint32_t total = literals + distances;
  uint32_t n = 0;
  while (n < total) {
    RefillSlow();
    const uint32_t e = t.codeLength.Decode(bits_);
    if (e & kBad) return false;
    const uint32_t len = e & 0xFFu;
    bits_ >>= len;
    count_ -= len;
    const uint32_t symbol = e >> 16;
    if (symbol < 16) {
      lengths[n++] = static_cast<uint8_t>(symbol);
      continue;
    }
    uint8_t value = 0;
    uint32_t repeat;
    if (symbol == 16) {
      if (n == 0) return false;
      value = lengths[n - 1];
      repeat = 3 + static_cast<uint32_t>(bits_ & 3u);
      bits_ >>= 2;
      count_ -= 2;
    } else if (symbol == 17) {
      repeat = 3 + static_cast<uint32_t>(bits_ & 7u);
      bits_ >>= 3;
      count_ -= 3;
    } else {
      repeat = 11 + static_cast<uint32_t>(bits_ & 127u);
      bits_ >>= 7;
      count_ -= 7;
    }
    if (n + repeat > total) return false;
    std::fill(lengths + n, lengths + n + repeat, value);
    n += repeat;
  }
  if (Overrun()) return false;
  if (lengths[256] == 0) return false;  // a block that could never end
  return t.literal.Build(lengths, literals, Info().literalLength.data(), false) &&
         t.distance.Build(lengths + literals, distances, Info().distance.data(), false);
}

bool Inflater::CopyStored(uint8_t* base, size_t& pos, size_t end) {
  // Whole bytes still in the bit buffer come first, then the input itself.
  while (storedLeft_ > 0 && count_ > 0 && pos < end) {
    if (count_ - padBits_ < 8) return false;
    base[pos++] = static_cast<uint8_t>(bits_);
    bits_ >>= 8;
    count_ -= 8;
    --storedLeft_;
  }
  // The buffer may still hold bits of the bytes about to be copied past it,
  // left there by a refill that loaded ahead; they must not be read twice.
  if (count_ == 0) bits_ = 0;
  while (storedLeft_ > 0 && pos < end) {
    if (in_ == inEnd_) {
      if (nextPiece_ >= pieces_.size()) return false;
      in_ = pieces_[nextPiece_].data();
      inEnd_ = in_ + pieces_[nextPiece_].size();
      ++nextPiece_;
      continue;
    }
    const size_t n =
        std::min({static_cast<size_t>(storedLeft_), end - pos, static_cast<size_t>(inEnd_ - in_)});
    std::memcpy(base + pos, in_, n);
    in_ += n;
    pos += n;
    storedLeft_ -= static_cast<uint32_t>(n);
  }
  if (storedLeft_ == 0) state_ = final_ ? State::Trailer : State::BlockHeader;
  return true;
}

// Literals and matches of a Huffman block. Returns false when the output is
// full or the data is bad (the state tells which); true at the block's end.
bool Inflater::DecodeCodes(uint8_t* base, size_t& pos, size_t end) {
  const HuffmanTable& lit = *tables_->currentLiteral;
  const HuffmanTable& dist = *tables_->currentDistance;
  for (;;) {
    if (pendingLength_ > 0) {
      const size_t n = std::min<size_t>(pendingLength_, end - pos);
      uint8_t* out = base + pos;
      const uint8_t* from = out - pendingDistance_;
      for (size_t i = 0; i < n; ++i) out[i] = from[i];
      pos += n;
      pendingLength_ -= static_cast<uint32_t>(n);
      if (pendingLength_ > 0) return false;
    }

    // The fast loop: enough input in this piece for a whole match with one
    // refill, enough room for a whole match and its overshoot.
    if (end - pos >= kFastOutputMargin && inEnd_ - in_ >= 8 && padBits_ == 0) {
      uint64_t bits = bits_;
      uint32_t count = count_;
      const uint8_t* in = in_;
      const uint8_t* const inLimit = inEnd_ - 8;
      uint8_t* out = base + pos;
      uint8_t* const outLimit = base + end - kFastOutputMargin;
      while (out <= outLimit && in <= inLimit) {
        bits |= Load64(in) << count;
        in += (63 - count) >> 3;
        count |= 56;
        uint32_t e = lit.Decode(bits);
        if (e & kLiteral) {
          const uint32_t n = e & 0xFFu;
          bits >>= n;
          count -= n;
          *out++ = static_cast<uint8_t>(e >> 16);
          // A second literal fits in what the refill gave.
          e = lit.Decode(bits);
          if (e & kLiteral) {
            const uint32_t n2 = e & 0xFFu;
            bits >>= n2;
            count -= n2;
            *out++ = static_cast<uint8_t>(e >> 16);
          }
          continue;
        }
        if (e & (kEnd | kBad)) break;  // left for the careful path below
        uint32_t n = e & 0xFFu;
        uint32_t extra = (e >> 8) & 15u;
        const uint32_t length = (e >> 16) + static_cast<uint32_t>(LowBits(bits >> n, extra));
        bits >>= n + extra;
        count -= n + extra;
        e = dist.Decode(bits);
        if (e & kBad) {
          Fail();
          return false;
        }
        n = e & 0xFFu;
        extra = (e >> 8) & 15u;
        const uint32_t distance = (e >> 16) + static_cast<uint32_t>(LowBits(bits >> n, extra));
        bits >>= n + extra;
        count -= n + extra;
        if (distance > static_cast<size_t>(out - base)) {
          Fail();
          return false;
        }
        const uint8_t* from = out - distance;
        if (distance >= 8) {
          uint8_t* const stop = out + length;
          do {
            std::memcpy(out, from, 8);
            out += 8;
            from += 8;
          } while (out < stop);
          out = stop;
        } else if (distance == 1) {
          std::memset(out, *from, length);
          out += length;
        } else {
          for (uint32_t i = 0; i < length; ++i) out[i] = from[i];
          out += length;
        }
      }
      bits_ = bits;
      count_ = count;
      in_ = in;
      pos = static_cast<size_t>(out - base);
    }
    if (pos >= end) return false;

    // One symbol with every check: near the ends of input and output, and
    // for what the fast loop leaves.
    RefillSlow();
    uint32_t e = lit.Decode(bits_);
    if (e & kBad) {
      Fail();
      return false;
    }
    uint32_t n = e & 0xFFu;
    bits_ >>= n;
    count_ -= n;
    if (Overrun()) {
      Fail();
      return false;
    }
    if (e & kLiteral) {
      base[pos++] = static_cast<uint8_t>(e >> 16);
      continue;
    }
    if (e & kEnd) {
      state_ = final_ ? State::Trailer : State::BlockHeader;
      return true;
    }
    uint32_t extra = (e >> 8) & 15u;
    const uint32_t length = (e >> 16) + static_cast<uint32_t>(LowBits(bits_, extra));
    bits_ >>= extra;
    count_ -= extra;
    RefillSlow();
    e = dist.Decode(bits_);
    if (e & kBad) {
      Fail();
      return false;
    }
    n = e & 0xFFu;
    extra = (e >> 8) & 15u;
    const uint32_t distance = (e >> 16) + static_cast<uint32_t>(LowBits(bits_ >> n, extra));
    bits_ >>= n + extra;
    count_ -= n + extra;
    if (Overrun() || distance > pos) {
      Fail();
      return false;
    }
    pendingLength_ = length;
    pendingDistance_ = distance;
  }
}

void Inflater::Decode(uint8_t* base, size_t& pos, size_t end) {
  size_t adlerFrom = pos;
  while (pos < end || state_ == State::BlockHeader || state_ == State::Trailer ||
         state_ == State::Header) {
    switch (state_) {
      case State::Header: {
        RefillSlow();
        const uint32_t cmf = static_cast<uint32_t>(bits_ & 0xFFu);
        const uint32_t flg = static_cast<uint32_t>((bits_ >> 8) & 0xFFu);
        bits_ >>= 16;
        count_ -= 16;
        if (Overrun() || (cmf & 15u) != 8 || (cmf >> 4) > 7 || (cmf * 256 + flg) % 31 != 0 ||
            (flg & 0x20u) != 0) {
          Fail();
          break;
        }
        state_ = State::BlockHeader;
        break;
      }
      case State::BlockHeader:
        if (!ReadBlockHeader()) Fail();
        break;
      case State::Stored:
        if (!CopyStored(base, pos, end)) Fail();
        break;
      case State::Codes:
        DecodeCodes(base, pos, end);
        break;
      case State::Trailer: {
        if (checkAdler_) {
          UpdateAdler(base + adlerFrom, pos - adlerFrom);
          adlerFrom = pos;
          const uint32_t drop = count_ & 7u;
          bits_ >>= drop;
          count_ -= drop;
          RefillSlow();
          uint32_t stored = 0;
          for (int i = 0; i < 4; ++i) {
            stored = stored << 8 | static_cast<uint32_t>(bits_ & 0xFFu);
            bits_ >>= 8;
            count_ -= 8;
          }
          if (Overrun() || stored != (adlerB_ << 16 | adlerA_)) {
            Fail();
            break;
          }
        }
        state_ = State::Done;
        break;
      }
      case State::Done:
      case State::Failed:
        UpdateAdler(base + adlerFrom, pos - adlerFrom);
        return;
    }
    if (state_ == State::Failed) return;
  }
  UpdateAdler(base + adlerFrom, pos - adlerFrom);
}

size_t Inflater::Read(uint8_t* out, size_t count) {
  size_t done = 0;
  while (done < count) {
    if (readPos_ < writePos_) {
      const size_t n = std::min(count - done, writePos_ - readPos_);
      std::memcpy(out + done, window_.data() + readPos_, n);
      readPos_ += n;
      done += n;
      continue;
    }
    if (state_ == State::Done || state_ == State::Failed) break;
    if (window_.empty()) {
      try {
        window_.resize(kHistory + kSpan);
      } catch (const std::bad_alloc&) {
        Fail();
        break;
      }
    }
    if (writePos_ == window_.size()) {
      // Keep the last 32 KiB as history and decode the next span after it.
      std::memmove(window_.data(), window_.data() + writePos_ - kHistory, kHistory);
      readPos_ = writePos_ = kHistory;
    }
    Decode(window_.data(), writePos_, window_.size());
  }
  return done;
}

bool Inflater::Uncompress(std::span<const uint8_t> in, std::vector<uint8_t>& out, size_t maxOutput,
                          Wrapper wrapper, bool checkAdler) {
  out.clear();
  // One byte beyond the limit tells an output that is too long from one that
  // fills it exactly.
  const size_t limit = maxOutput < out.max_size() ? maxOutput + 1 : maxOutput;
  Inflater inflater;
  inflater.Start(in, wrapper, checkAdler);
  size_t pos = 0;
  try {
    out.resize(std::min(limit, std::max<size_t>(65536, in.size() * 4)));
    for (;;) {
      inflater.Decode(out.data(), pos, out.size());
      if (inflater.state_ == State::Done) break;
      if (inflater.state_ == State::Failed || out.size() >= limit) {
        out.clear();
        return false;
      }
      out.resize(std::min(limit, out.size() * 2));
    }
  } catch (const std::bad_alloc&) {
    out.clear();
    return false;
  }
  if (pos > maxOutput) {
    out.clear();
    return false;
  }
  out.resize(pos);
  return true;
}

}  // namespace vantor::imaging
