#include "services/Md5.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vantor::services {

namespace {

// The sine table: entry i is the integer part of 2^32 * |sin(i + 1)|, i in
// radians. Built from its definition rather than typed in.
const std::array<uint32_t, 64> kSine = [] {
  std::array<uint32_t, 64> t{};
  for (size_t i = 0; i < t.size(); ++i) {
    t[i] = static_cast<uint32_t>(
        std::floor(std::fabs(std::sin(static_cast<double>(i + 1))) * 4294967296.0));
  }
  return t;
}();

// Per step: which message word it mixes in and how far it rotates.
struct Schedule {
  std::array<int, 64> word;
  std::array<int, 64> shift;
};
constexpr Schedule kSchedule = [] {
  constexpr int shifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
  Schedule s{};
  for (int i = 0; i < 64; ++i) {
    const int round = i / 16;
    s.word[static_cast<size_t>(i)] = round == 0   ? i
                                     : round == 1 ? (5 * i + 1) % 16
                                     : round == 2 ? (3 * i + 5) % 16
                                                  : (7 * i) % 16;
    s.shift[static_cast<size_t>(i)] = shifts[round][i % 4];
  }
  return s;
}();

constexpr uint32_t Rotl(uint32_t x, int n) {
  return x << n | x >> (32 - n);
}

uint32_t LoadLe(const uint8_t* p) {
  return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
         static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
}

}  // namespace

Md5::Md5() : state_{0x67452301u, 0xEFCDAB89u, 0x98BADCFEu, 0x10325476u} {}

void Md5::Transform(const uint8_t* block) {
  uint32_t x[16];
  for (int i = 0; i < 16; ++i) x[i] = LoadLe(block + 4 * i);
  uint32_t a = state_[0], b = state_[1], c = state_[2], d = state_[3];
  // Each step mixes one word into a and rotates the roles; the four rounds
  // differ in their function, word order and shifts.
  auto step = [&](uint32_t f, size_t i) {
    const uint32_t t = a + f + x[kSchedule.word[i]] + kSine[i];
    a = d;
    d = c;
    c = b;
    b = b + Rotl(t, kSchedule.shift[i]);
  };
#pragma GCC unroll 16
  for (size_t i = 0; i < 16; ++i) step((b & c) | (~b & d), i);
#pragma GCC unroll 16
  for (size_t i = 16; i < 32; ++i) step((b & d) | (c & ~d), i);
#pragma GCC unroll 16
  for (size_t i = 32; i < 48; ++i) step(b ^ c ^ d, i);
#pragma GCC unroll 16
  for (size_t i = 48; i < 64; ++i) step(c ^ (b | ~d), i);
  state_[0] += a;
  state_[1] += b;
  state_[2] += c;
  state_[3] += d;
}

void Md5::Update(std::span<const uint8_t> bytes) {
  if (bytes.empty()) return;
  size_t used = static_cast<size_t>(length_ % 64);
  length_ += bytes.size();
  const uint8_t* p = bytes.data();
  size_t left = bytes.size();
  if (used > 0) {
    const size_t take = std::min(left, 64 - used);
    std::memcpy(buffer_.data() + used, p, take);
    used += take;
    p += take;
    left -= take;
    if (used < 64) return;
    Transform(buffer_.data());
  }
  for (; left >= 64; p += 64, left -= 64) Transform(p);
  if (left > 0) std::memcpy(buffer_.data(), p, left);
}

Md5::Digest Md5::Final() {
  const uint64_t bits = length_ * 8;
  // One 0x80, zeros up to 56 bytes into a block, then the length in bits.
  uint8_t pad[72] = {0x80};
  const size_t used = static_cast<size_t>(length_ % 64);
  const size_t padLength = used < 56 ? 56 - used : 120 - used;
  for (int i = 0; i < 8; ++i)
    pad[padLength + static_cast<size_t>(i)] = static_cast<uint8_t>(bits >> (8 * i));
  Update(std::span<const uint8_t>(pad, padLength + 8));
  Digest out;
  for (size_t i = 0; i < 4; ++i) {
    for (size_t j = 0; j < 4; ++j) out[4 * i + j] = static_cast<uint8_t>(state_[i] >> (8 * j));
  }
  return out;
}

Md5::Digest Md5::Of(std::span<const uint8_t> bytes) {
  Md5 md5;
  md5.Update(bytes);
  return md5.Final();
}

}  // namespace vantor::services
