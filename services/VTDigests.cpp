// The cipher and digest members of VT. The cipher text format is the one the
// suite has always written: Skipjack in codebook mode over blocks of six
// characters, everything as uppercase hexadecimal text. Six characters fill
// only three of a block's four words, so the format is its own; the cipher
// under it is the standard one.
#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "runtime/Strings.h"
#include "platform/FilePath.h"
#include "services/Crc32.h"
#include "services/Md5.h"
#include "services/Skipjack.h"
#include "services/VT.h"
#include "services/VT_ZLIB.h"

namespace vantor::services {

namespace {

constexpr char16_t kHexDigits[] = u"0123456789ABCDEF";

// A character that is no hexadecimal digit counts as 0, so that a damaged
// key or cipher text still gives a result (garbage, as it must) instead of
// failing.
int HexValue(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  return 0;
}

// The digits that are there, read left to right; none reads as 0.
uint32_t HexText(StringView digits) {
  uint32_t v = 0;
  for (const char16_t c : digits) v = v << 4 | static_cast<uint32_t>(HexValue(c));
  return v;
}

// The key is read by position, two digits a byte: a short key leaves the
// last bytes empty, and an empty one is 0. Digits past the twentieth are
// not part of it.
Skipjack::Key ReadKey(const String& key) {
  Skipjack::Key bytes{};
  const StringView k(key);
  for (size_t i = 0; i < bytes.size(); ++i) {
    const size_t at = 2 * i;
    if (at >= k.size()) break;
    bytes[i] = static_cast<uint8_t>(HexText(k.substr(at, 2)));
  }
  return bytes;
}

void AppendHexWord(String& out, uint16_t w) {
  for (int shift = 12; shift >= 0; shift -= 4) out.push_back(kHexDigits[(w >> shift) & 0xF]);
}

// The platform's Hex of a Long taken as unsigned: uppercase, no leading zeros.
String HexNoLeadingZeros(uint32_t v) {
  char16_t digits[8];
  size_t n = 0;
  do {
    digits[n++] = kHexDigits[v & 0xF];
    v >>= 4;
  } while (v != 0);
  String out;
  out.reserve(n);
  while (n > 0) out.push_back(digits[--n]);
  return out;
}

// The character's byte in the ANSI code page, as the platform's Asc gives it.
uint8_t AnsiByte(char16_t c) {
  if (c < 0x80) return static_cast<uint8_t>(c);
  const int b = CharToAnsi(c);
  return b < 0 ? static_cast<uint8_t>('?') : static_cast<uint8_t>(b);
}

std::string NativePath(const String& path) { return platform::FilePath::Native(path); }

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};

}  // namespace

String VT::VT_Criptografar(const String& Texto, const String& Chave) const {
  if (Texto.empty()) return {};
  const Skipjack cipher(ReadKey(Chave));
  String out;
  out.reserve((Texto.size() + 5) / 6 * 16);
  for (size_t at = 0; at < Texto.size(); at += 6) {
    // Six characters, the last block padded with blanks; the fourth word
    // stays empty.
    uint8_t b[6];
    for (size_t i = 0; i < 6; ++i) b[i] = at + i < Texto.size() ? AnsiByte(Texto[at + i]) : ' ';
    const Skipjack::Block plain = {static_cast<uint16_t>(b[0] << 8 | b[1]),
                                   static_cast<uint16_t>(b[2] << 8 | b[3]),
                                   static_cast<uint16_t>(b[4] << 8 | b[5]), 0};
    for (const uint16_t w : cipher.Encrypt(plain)) AppendHexWord(out, w);
  }
  return out;
}

String VT::VT_Decriptografar(const String& Texto, const String& Chave) const {
  const Skipjack cipher(ReadKey(Chave));
  const StringView text(Texto);
  String out;
  for (size_t at = 0; at + 16 <= text.size(); at += 16) {
    Skipjack::Block block;
    for (size_t i = 0; i < 4; ++i)
      block[i] = static_cast<uint16_t>(HexText(text.substr(at + 4 * i, 4)));
    const Skipjack::Block plain = cipher.Decrypt(block);
    // Each block's text ends at its first NUL: the empty fourth word of a
    // well-formed block, or wherever a wrong key happens to put one.
    uint8_t bytes[8];
    for (size_t i = 0; i < 4; ++i) {
      bytes[2 * i] = static_cast<uint8_t>(plain[i] >> 8);
      bytes[2 * i + 1] = static_cast<uint8_t>(plain[i] & 0xFF);
    }
    for (const uint8_t b : bytes) {
      if (b == 0) break;
      out.push_back(AnsiToChar(b));
    }
  }
  return Trim(out);
}

String VT::VT_CRC32(const String& Texto) const {
  uint32_t reg = Crc32::Start();
  uint8_t chunk[256];
  for (size_t at = 0; at < Texto.size(); at += sizeof chunk) {
    const size_t n = std::min(sizeof chunk, Texto.size() - at);
    for (size_t i = 0; i < n; ++i) chunk[i] = static_cast<uint8_t>(Texto[at + i] & 0xFF);
    reg = Crc32::Update(reg, std::span<const uint8_t>(chunk, n));
  }
  return HexNoLeadingZeros(Crc32::Finish(reg));
}

String VT::VT_MD5(const String& Texto) const {
  // The text's ANSI bytes, converted a stretch at a time so that short texts
  // need no allocation.
  Md5 md5;
  uint8_t chunk[256];
  size_t used = 0;
  for (size_t i = 0; i < Texto.size(); ++i) {
    const char16_t c = Texto[i];
    chunk[used++] = AnsiByte(c);
    // A surrogate pair is one character, and one '?' in the code page.
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < Texto.size() && Texto[i + 1] >= 0xDC00 &&
        Texto[i + 1] <= 0xDFFF) {
      ++i;
    }
    if (used == sizeof chunk) {
      md5.Update(std::span<const uint8_t>(chunk, used));
      used = 0;
    }
  }
  md5.Update(std::span<const uint8_t>(chunk, used));
  static constexpr char16_t kLower[] = u"0123456789abcdef";
  String out(32, u'0');
  size_t at = 0;
  for (const uint8_t b : md5.Final()) {
    out[at++] = kLower[b >> 4];
    out[at++] = kLower[b & 0xF];
  }
  return out;
}

String VT::VT_ArquivoCRC32(const String& Arquivo) const {
  // The file's checksum is zlib's; without the library there is none.
  if (!VT_ZLIB::LibraryPresent() || Arquivo.empty()) return {};
  std::unique_ptr<std::FILE, FileCloser> f(std::fopen(NativePath(Arquivo).c_str(), "rb"));
  if (!f) return {};
  std::unique_ptr<Bytef[]> block = std::make_unique<Bytef[]>(65536);
  uLong crc = crc32(0L, Z_NULL, 0);
  for (;;) {
    const size_t got = std::fread(block.get(), 1, 65536, f.get());
    if (got > 0) crc = crc32(crc, block.get(), static_cast<uInt>(got));
    if (got < 65536) break;
  }
  if (std::ferror(f.get())) return {};
  return HexNoLeadingZeros(static_cast<uint32_t>(crc));
}

}  // namespace vantor::services
