#include "imaging/cHuffman.h"

#include <algorithm>
#include <array>
#include <functional>
#include <new>
#include <queue>
#include <utility>

namespace vantor::imaging {

namespace {

// A node keeps its links in 16 bits, as the tree never has more than 511
// of them; -1 marks a link or a value that is not set, so a node whose value
// is set is a leaf.
struct Node {
  int16_t parent = -1;
  int16_t left = -1;
  int16_t right = -1;
  int16_t value = -1;
};

constexpr size_t kHeaderBytes = 6;
// Bits the decoder resolves in one look-up before it walks on bit by bit;
// most codes of real data are shorter.
constexpr int kLookupBits = 10;

void Put16(std::vector<uint8_t>& out, uint32_t v) {
  out.push_back(static_cast<uint8_t>(v));
  out.push_back(static_cast<uint8_t>(v >> 8));
}

void Put32(std::vector<uint8_t>& out, uint32_t v) {
  Put16(out, v & 0xFFFF);
  Put16(out, v >> 16);
}

class BitWriter {
 public:
  explicit BitWriter(std::vector<uint8_t>& out) : out_(out) {}
  // Up to 32 bits, the first of them in the high bit of `count`.
  void Put(uint64_t bits, int count) {
    acc_ = (acc_ << count) | (bits & ((uint64_t{1} << count) - 1));
    pending_ += count;
    while (pending_ >= 8) {
      pending_ -= 8;
      out_.push_back(static_cast<uint8_t>(acc_ >> pending_));
    }
    acc_ &= (uint64_t{1} << pending_) - 1;
  }
  void Flush() {
    if (pending_ > 0) out_.push_back(static_cast<uint8_t>(acc_ << (8 - pending_)));
    pending_ = 0;
    acc_ = 0;
  }

 private:
  std::vector<uint8_t>& out_;
  uint64_t acc_ = 0;
  int pending_ = 0;
};

}  // namespace

bool cHuffman::EncodeByteArray(std::span<const uint8_t> in, std::vector<uint8_t>& out) {
  out.clear();
  try {
    // The length field is 32 bits; that also keeps every code within 64
    // bits, since a code of length d needs a count of at least the (d+2)th
    // Fibonacci number.
    if (in.size() > UINT32_MAX) return false;
    std::array<uint64_t, 256> counts{};
    for (const uint8_t b : in) ++counts[b];

    std::vector<Node> nodes;
    nodes.reserve(kMaxNodes);
    std::array<int16_t, 256> leafOf;
    leafOf.fill(-1);
    using Weighted = std::pair<uint64_t, int16_t>;
    std::priority_queue<Weighted, std::vector<Weighted>, std::greater<>> queue;
    for (int v = 0; v < 256; ++v) {
      if (counts[static_cast<size_t>(v)] == 0) continue;
      leafOf[static_cast<size_t>(v)] = static_cast<int16_t>(nodes.size());
      queue.emplace(counts[static_cast<size_t>(v)], static_cast<int16_t>(nodes.size()));
      Node leaf;
      leaf.value = static_cast<int16_t>(v);
      nodes.push_back(leaf);
    }
    if (queue.size() == 1) {
      // One value alone: a root above it, so its code is the single bit 0.
      Node root;
      root.left = 0;
      nodes[0].parent = 1;
      nodes.push_back(root);
    }
    while (queue.size() > 1) {
      const Weighted a = queue.top();
      queue.pop();
      const Weighted b = queue.top();
      queue.pop();
      const auto join = static_cast<int16_t>(nodes.size());
      Node node;
      node.left = a.second;
      node.right = b.second;
      nodes[static_cast<size_t>(a.second)].parent = join;
      nodes[static_cast<size_t>(b.second)].parent = join;
      nodes.push_back(node);
      queue.emplace(a.first + b.first, join);
    }

    // Each value's code, read from its leaf up to the root.
    std::array<uint64_t, 256> code{};
    std::array<int, 256> length{};
    uint64_t totalBits = 0;
    int entries = 0;
    for (size_t v = 0; v < 256; ++v) {
      if (leafOf[v] < 0) continue;
      uint64_t bits = 0;
      int depth = 0;
      for (int16_t n = leafOf[v]; nodes[static_cast<size_t>(n)].parent >= 0;) {
        const int16_t up = nodes[static_cast<size_t>(n)].parent;
        if (nodes[static_cast<size_t>(up)].right == n) bits |= uint64_t{1} << depth;
        ++depth;
        n = up;
      }
      if (depth > 64) return false;
      code[v] = bits;
      length[v] = depth;
      totalBits += counts[v] * static_cast<uint64_t>(depth);
      ++entries;
    }

    out.reserve(kHeaderBytes + static_cast<size_t>(entries) * 10 + (totalBits + 7) / 8);
    Put32(out, static_cast<uint32_t>(in.size()));
    Put16(out, static_cast<uint32_t>(entries));
    for (size_t v = 0; v < 256; ++v) {
      if (length[v] == 0) continue;
      out.push_back(static_cast<uint8_t>(v));
      out.push_back(static_cast<uint8_t>(length[v]));
      // The code, high bit first, padded to whole bytes.
      const int bytes = (length[v] + 7) / 8;
      for (int i = 0; i < bytes; ++i) {
        uint8_t byte = 0;
        for (int k = 0; k < 8; ++k) {
          const int bit = i * 8 + k;
          if (bit < length[v] && ((code[v] >> (length[v] - 1 - bit)) & 1)) {
            byte = static_cast<uint8_t>(byte | (0x80 >> k));
          }
        }
        out.push_back(byte);
      }
    }
    BitWriter writer(out);
    for (const uint8_t b : in) {
      const int len = length[b];
      const uint64_t c = code[b];
      if (len > 32) writer.Put(c >> 32, len - 32);
      writer.Put(c, std::min(len, 32));
    }
    writer.Flush();
    return true;
  } catch (const std::bad_alloc&) {
    out.clear();
    return false;
  }
}

bool cHuffman::DecodeByteArray(std::span<const uint8_t> in, std::vector<uint8_t>& out) {
  out.clear();
  try {
    if (in.size() < kHeaderBytes) return false;
    const uint32_t total = static_cast<uint32_t>(in[0]) | static_cast<uint32_t>(in[1]) << 8 |
                           static_cast<uint32_t>(in[2]) << 16 | static_cast<uint32_t>(in[3]) << 24;
    const uint32_t entries = static_cast<uint32_t>(in[4]) | static_cast<uint32_t>(in[5]) << 8;
    if (entries > 256 || (entries == 0 && total != 0)) return false;

    // The tree, rebuilt by walking each code from the root and making the
    // nodes it lacks.
    std::vector<Node> nodes(1);
    nodes.reserve(kMaxNodes);
    size_t at = kHeaderBytes;
    for (uint32_t e = 0; e < entries; ++e) {
      if (in.size() - at < 2) return false;
      const uint8_t value = in[at];
      const int len = in[at + 1];
      at += 2;
      const size_t bytes = static_cast<size_t>(len + 7) / 8;
      if (len == 0 || in.size() - at < bytes) return false;
      size_t n = 0;
      for (int bit = 0; bit < len; ++bit) {
        // A code that runs through a leaf clashes with a shorter one.
        if (nodes[n].value >= 0) return false;
        const bool right = (in[at + static_cast<size_t>(bit / 8)] >> (7 - bit % 8)) & 1;
        int16_t& link = right ? nodes[n].right : nodes[n].left;
        if (link < 0) {
          if (nodes.size() >= static_cast<size_t>(kMaxNodes)) return false;
          link = static_cast<int16_t>(nodes.size());
          Node child;
          child.parent = static_cast<int16_t>(n);
          nodes.push_back(child);
        }
        n = static_cast<size_t>(link);
      }
      // The code must end on a node of its own: not a leaf already, and not
      // on the way to a longer code.
      if (nodes[n].value >= 0 || nodes[n].left >= 0 || nodes[n].right >= 0) return false;
      nodes[n].value = value;
      at += bytes;
    }

    const std::span<const uint8_t> data = in.subspan(at);
    const uint64_t availableBits = static_cast<uint64_t>(data.size()) * 8;
    // Every byte costs at least one bit.
    if (total > availableBits) return false;
    if (total == 0) return true;

    // For each pattern of the next kLookupBits bits, the node the walk from
    // the root reaches (a leaf, or where the pattern ran out) and the bits it
    // took; -1 where the pattern leaves the tree.
    struct Step {
      int16_t node;
      uint8_t bits;
    };
    std::vector<Step> lookup(size_t{1} << kLookupBits);
    for (uint32_t pattern = 0; pattern < lookup.size(); ++pattern) {
      int16_t n = 0;
      uint8_t used = 0;
      while (n >= 0 && nodes[static_cast<size_t>(n)].value < 0 && used < kLookupBits) {
        const bool right = (pattern >> (kLookupBits - 1 - used)) & 1;
        n = right ? nodes[static_cast<size_t>(n)].right : nodes[static_cast<size_t>(n)].left;
        ++used;
      }
      lookup[pattern] = {n, used};
    }

    out.resize(total);
    uint64_t pos = 0;
    const uint8_t* bits = data.data();
    for (uint32_t i = 0; i < total; ++i) {
      int16_t n = 0;
      if (pos + kLookupBits <= availableBits) {
        const size_t byte = static_cast<size_t>(pos >> 3);
        uint32_t window = static_cast<uint32_t>(bits[byte]) << 16;
        if (byte + 1 < data.size()) window |= static_cast<uint32_t>(bits[byte + 1]) << 8;
        if (byte + 2 < data.size()) window |= bits[byte + 2];
        const uint32_t pattern =
            (window >> (24 - static_cast<int>(pos & 7) - kLookupBits)) & ((1u << kLookupBits) - 1);
        const Step step = lookup[pattern];
        if (step.node < 0) {
          out.clear();
          return false;
        }
        n = step.node;
        pos += step.bits;
      }
      while (nodes[static_cast<size_t>(n)].value < 0) {
        if (pos >= availableBits) {
          out.clear();
          return false;
        }
        const bool right = (bits[pos >> 3] >> (7 - (pos & 7))) & 1;
        ++pos;
        n = right ? nodes[static_cast<size_t>(n)].right : nodes[static_cast<size_t>(n)].left;
        if (n < 0) {
          out.clear();
          return false;
        }
      }
      out[i] = static_cast<uint8_t>(nodes[static_cast<size_t>(n)].value);
    }
    return true;
  } catch (const std::bad_alloc&) {
    out.clear();
    return false;
  }
}

}  // namespace vantor::imaging
