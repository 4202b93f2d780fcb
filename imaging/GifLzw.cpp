#include "imaging/GifLzw.h"

#include <algorithm>
#include <array>

namespace vantor::imaging {

namespace {

constexpr int kMaxCodes = 4096;

// Hands out the data bytes of a run of sub-blocks, hopping over the size
// bytes; an empty sub-block or the data's end reads as the end.
class SubBlockBytes {
 public:
  SubBlockBytes(std::span<const uint8_t> file, size_t pos) : file_(file), pos_(pos) {}

  bool Next(uint8_t& out) {
    if (left_ == 0) {
      if (done_ || pos_ >= file_.size() || file_[pos_] == 0) {
        done_ = true;
        return false;
      }
      left_ = file_[pos_++];
    }
    if (pos_ >= file_.size()) {
      done_ = true;
      return false;
    }
    out = file_[pos_++];
    --left_;
    return true;
  }

 private:
  std::span<const uint8_t> file_;
  size_t pos_;
  size_t left_ = 0;
  bool done_ = false;
};

// The string table: each code is its prefix code plus one last index, with its
// first index and its length kept so that a string can be written back to
// front straight into the output.
struct Table {
  std::array<uint16_t, kMaxCodes> prefix;
  std::array<uint8_t, kMaxCodes> suffix;
  std::array<uint8_t, kMaxCodes> first;
  std::array<uint16_t, kMaxCodes> length;
};

size_t DecodeLinear(std::span<const uint8_t> file, size_t pos, uint8_t* out, size_t count) {
  if (pos >= file.size() || count == 0) return 0;
  const int minSize = file[pos];
  // Indexes are bytes, so a root size beyond 8 cannot be; 1 is what some
  // writers use for two-colour pictures and the arithmetic holds for it.
  if (minSize < 1 || minSize > 8) return 0;
  SubBlockBytes bytes(file, pos + 1);

  Table t;
  const int clear = 1 << minSize;
  const int end = clear + 1;
  for (int i = 0; i < clear; ++i) {
    t.prefix[static_cast<size_t>(i)] = 0;
    t.suffix[static_cast<size_t>(i)] = static_cast<uint8_t>(i);
    t.first[static_cast<size_t>(i)] = static_cast<uint8_t>(i);
    t.length[static_cast<size_t>(i)] = 1;
  }
  int codeSize = minSize + 1;
  int next = end + 1;
  int prev = -1;
  uint32_t bits = 0;
  int bitCount = 0;
  size_t done = 0;

  while (done < count) {
    while (bitCount < codeSize) {
      uint8_t b;
      if (!bytes.Next(b)) return done;
      bits |= static_cast<uint32_t>(b) << bitCount;
      bitCount += 8;
    }
    const int code = static_cast<int>(bits & ((1u << codeSize) - 1));
    bits >>= codeSize;
    bitCount -= codeSize;

    if (code == clear) {
      codeSize = minSize + 1;
      next = end + 1;
      prev = -1;
      continue;
    }
    if (code == end) break;

    const int emit = code;
    if (prev < 0) {
      if (code > clear) break;  // nothing to build on yet
      // Only a root size of 1 outgrows its width here; counted as the
      // common decoders count it.
      if (next + 1 > (1 << codeSize) && codeSize < 12) ++codeSize;
    } else if (code < next) {
      if (next < kMaxCodes) {
        const auto n = static_cast<size_t>(next);
        t.prefix[n] = static_cast<uint16_t>(prev);
        t.suffix[n] = t.first[static_cast<size_t>(code)];
        t.first[n] = t.first[static_cast<size_t>(prev)];
        t.length[n] = static_cast<uint16_t>(t.length[static_cast<size_t>(prev)] + 1);
        ++next;
        if (next == (1 << codeSize) && codeSize < 12) ++codeSize;
      }
    } else if (code == next && next < kMaxCodes) {
      // The string being defined by this very code: the previous one plus
      // its own first index.
      const auto n = static_cast<size_t>(next);
      t.prefix[n] = static_cast<uint16_t>(prev);
      t.suffix[n] = t.first[static_cast<size_t>(prev)];
      t.first[n] = t.first[static_cast<size_t>(prev)];
      t.length[n] = static_cast<uint16_t>(t.length[static_cast<size_t>(prev)] + 1);
      ++next;
      if (next == (1 << codeSize) && codeSize < 12) ++codeSize;
    } else {
      break;  // a code from nowhere: the rest of the stream means nothing
    }

    // Write the string back to front; a string that overruns the picture
    // is cut at its end.
    const size_t len = t.length[static_cast<size_t>(emit)];
    size_t k = len;
    auto c = static_cast<size_t>(emit);
    while (done + k > count) {
      c = t.prefix[c];
      --k;
    }
    uint8_t* dst = out + done;
    while (k > 0) {
      dst[--k] = t.suffix[c];
      c = t.prefix[c];
    }
    done = std::min(done + len, count);
    prev = code;
  }
  return done;
}

}  // namespace

int32_t GifRowOf(int32_t sentRow, int32_t height, bool interlaced) {
  if (!interlaced) return sentRow;
  // Four passes: every 8th row from 0, every 8th from 4, every 4th from 2,
  // every 2nd from 1.
  const int32_t pass1 = (height + 7) / 8;
  const int32_t pass2 = (height + 3) / 8;
  const int32_t pass3 = (height + 1) / 4;
  int32_t r = sentRow;
  if (r < pass1) return r * 8;
  r -= pass1;
  if (r < pass2) return 4 + r * 8;
  r -= pass2;
  if (r < pass3) return 2 + r * 4;
  r -= pass3;
  return 1 + r * 2;
}

size_t DecodeGifImage(std::span<const uint8_t> file, size_t pos, int32_t width, int32_t height,
                      bool interlaced, std::vector<uint8_t>& indexes) {
  indexes.clear();
  if (width <= 0 || height <= 0) return 0;
  const size_t w = static_cast<size_t>(width);
  const size_t count = w * static_cast<size_t>(height);
  indexes.assign(count, 0);
  if (!interlaced) return DecodeLinear(file, pos, indexes.data(), count);
  std::vector<uint8_t> sent(count, 0);
  const size_t produced = DecodeLinear(file, pos, sent.data(), count);
  for (int32_t r = 0; r < height; ++r) {
    const size_t from = static_cast<size_t>(r) * w;
    if (from >= produced) break;
    const size_t to = static_cast<size_t>(GifRowOf(r, height, true)) * w;
    std::copy_n(sent.begin() + static_cast<std::ptrdiff_t>(from), w,
                indexes.begin() + static_cast<std::ptrdiff_t>(to));
  }
  return produced;
}

size_t SkipGifSubBlocks(std::span<const uint8_t> file, size_t pos) {
  while (pos < file.size()) {
    const size_t n = file[pos];
    ++pos;
    if (n == 0) return pos;
    pos += n;
  }
  return file.size();
}

bool GifAreaIsPlausible(uint64_t pixels, size_t bytesLeft) {
  return pixels <= (static_cast<uint64_t>(bytesLeft) + 16) * 4096;
}

}  // namespace vantor::imaging
