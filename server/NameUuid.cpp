#include "server/NameUuid.h"

#include <bit>

namespace vantor::server {

namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool IsDashPosition(size_t i) {
  return i == 8 || i == 13 || i == 18 || i == 23;
}

uint32_t BigEndian32(const uint8_t* p) {
  return static_cast<uint32_t>(p[0]) << 24 | static_cast<uint32_t>(p[1]) << 16 |
         static_cast<uint32_t>(p[2]) << 8 | static_cast<uint32_t>(p[3]);
}

}  // namespace

std::string Uuid::Text() const {
  std::string text;
  text.reserve(36);
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += kHexDigits[bytes[i] >> 4];
    text += kHexDigits[bytes[i] & 0xF];
  }
  return text;
}

std::optional<Uuid> Uuid::Parse(std::string_view text) {
  if (text.size() == 38 && text.front() == '{' && text.back() == '}') text = text.substr(1, 36);
  if (text.size() != 36) return std::nullopt;
  Uuid u;
  size_t n = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (IsDashPosition(i)) {
      if (text[i] != '-') return std::nullopt;
      continue;
    }
    const int v = HexValue(text[i]);
    if (v < 0) return std::nullopt;
    u.bytes[n / 2] = static_cast<uint8_t>(u.bytes[n / 2] << 4 | v);
    ++n;
  }
  return u;
}

Sha1::Sha1() {
  Reset();
}

void Sha1::Reset() {
  h_ = {0x67452301u, 0xEFCDAB89u, 0x98BADCFEu, 0x10325476u, 0xC3D2E1F0u};
  buffered_ = 0;
  length_ = 0;
}

void Sha1::Block(const uint8_t* block) {
  std::array<uint32_t, 80> w;
  for (size_t t = 0; t < 16; ++t) w[t] = BigEndian32(block + 4 * t);
  for (size_t t = 16; t < 80; ++t) w[t] = std::rotl(w[t - 3] ^ w[t - 8] ^ w[t - 14] ^ w[t - 16], 1);
  uint32_t a = h_[0], b = h_[1], c = h_[2], d = h_[3], e = h_[4];
  for (size_t t = 0; t < 80; ++t) {
    uint32_t f, k;
    if (t < 20) {
      f = (b & c) | (~b & d);
      k = 0x5A827999u;
    } else if (t < 40) {
      f = b ^ c ^ d;
      k = 0x6ED9EBA1u;
    } else if (t < 60) {
      f = (b & c) | (b & d) | (c & d);
      k = 0x8F1BBCDCu;
    } else {
      f = b ^ c ^ d;
      k = 0xCA62C1D6u;
    }
    const uint32_t temp = std::rotl(a, 5) + f + e + k + w[t];
    e = d;
    d = c;
    c = std::rotl(b, 30);
    b = a;
    a = temp;
  }
  h_[0] += a;
  h_[1] += b;
  h_[2] += c;
  h_[3] += d;
  h_[4] += e;
}

void Sha1::Update(std::span<const uint8_t> data) {
  length_ += data.size();
  size_t i = 0;
  if (buffered_ > 0) {
    while (buffered_ < buffer_.size() && i < data.size()) buffer_[buffered_++] = data[i++];
    if (buffered_ < buffer_.size()) return;
    Block(buffer_.data());
    buffered_ = 0;
  }
  for (; i + buffer_.size() <= data.size(); i += buffer_.size()) Block(data.data() + i);
  while (i < data.size()) buffer_[buffered_++] = data[i++];
}

void Sha1::Update(std::string_view data) {
  Update(std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(data.data()), data.size()));
}

Sha1::Digest Sha1::Final() {
  const uint64_t bits = length_ * 8;
  // A 1 bit, zeros up to 56 bytes into the last block, then the length.
  std::array<uint8_t, 72> pad{};
  pad[0] = 0x80;
  const size_t padLength = (buffered_ < 56 ? 56 : 120) - buffered_;
  for (size_t i = 0; i < 8; ++i) pad[padLength + i] = static_cast<uint8_t>(bits >> (56 - 8 * i));
  Update(std::span<const uint8_t>(pad.data(), padLength + 8));
  Digest digest;
  for (size_t i = 0; i < h_.size(); ++i) {
    for (size_t j = 0; j < 4; ++j) digest[4 * i + j] = static_cast<uint8_t>(h_[i] >> (24 - 8 * j));
  }
  Reset();
  return digest;
}

Sha1::Digest Sha1::Of(std::string_view data) {
  Sha1 sha;
  sha.Update(data);
  return sha.Final();
}

Uuid NameUuid(const Uuid& space, std::string_view name) {
  Sha1 sha;
  sha.Update(space.bytes);
  sha.Update(name);
  const Sha1::Digest digest = sha.Final();
  Uuid u;
  for (size_t i = 0; i < u.bytes.size(); ++i) u.bytes[i] = digest[i];
  u.bytes[6] = static_cast<uint8_t>((u.bytes[6] & 0x0F) | 0x50);  // version 5
  u.bytes[8] = static_cast<uint8_t>((u.bytes[8] & 0x3F) | 0x80);  // the RFC 4122 variant
  return u;
}

Uuid LibraryNamespace() {
  // Drawn at random once, when the library first needed GUIDs.
  static const Uuid space = *Uuid::Parse("8396563a-9fe9-4fa5-aee2-07938c30bf40");
  return space;
}

Uuid TypeLibGuid(std::string_view kind, std::string_view name) {
  std::string key(kind);
  key += ':';
  key += name;
  return NameUuid(LibraryNamespace(), key);
}

}  // namespace vantor::server
