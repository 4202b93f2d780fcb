// The PNG reader on any bytes: it must never crash, leak or leave a half-made
// picture. Each input is read as it is (CRCs tested by the zlib route) and
// again with every chunk's CRC made right, so that mutations reach the
// decoding behind the CRC test; there the two inflate routes must agree:
// whatever zlib reads, our own inflater reads to the same pixels.
#include <cstddef>
#include <cstdint>
#include <vector>

#include <zlib.h>

#include "imaging/Pixels.h"
#include "imaging/cPNGparser.h"

namespace {

using vantor::imaging::cPNGparser;
using vantor::imaging::Pixels;

uint32_t Be32(const uint8_t* p) {
  return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | uint32_t{p[3]};
}

// Rewrites the CRC of every whole chunk after the signature.
void FixCrcs(std::vector<uint8_t>& file) {
  size_t pos = 8;
  while (file.size() >= pos + 12) {
    const uint32_t length = Be32(file.data() + pos);
    if (length > file.size() - pos - 12) break;
    const uint32_t crc =
        static_cast<uint32_t>(crc32(0L, file.data() + pos + 4, static_cast<uInt>(length + 4)));
    uint8_t* at = file.data() + pos + 8 + length;
    at[0] = static_cast<uint8_t>(crc >> 24);
    at[1] = static_cast<uint8_t>(crc >> 16);
    at[2] = static_cast<uint8_t>(crc >> 8);
    at[3] = static_cast<uint8_t>(crc);
    pos += 12 + length;
  }
}

bool Load(const std::vector<uint8_t>& bytes, Pixels& out, bool withoutZlib) {
  cPNGparser::SimulateZlibAbsent(withoutZlib);
  cPNGparser parser;
  const bool ok = parser.LoadStream(bytes, out);
  cPNGparser::SimulateZlibAbsent(false);
  if (!ok && (!out.Empty() || !out.bytes.empty())) __builtin_trap();  // failure leaves nothing
  if (ok) {
    if (out.bytes.size() != static_cast<size_t>(out.width) * out.height * 4) __builtin_trap();
    if (out.alpha != out.ScanAlpha()) __builtin_trap();
    // Pre-multiplied: no colour above its alpha.
    for (size_t i = 0; i < out.bytes.size(); i += 4)
      if (out.bytes[i] > out.bytes[i + 3] || out.bytes[i + 1] > out.bytes[i + 3] ||
          out.bytes[i + 2] > out.bytes[i + 3])
        __builtin_trap();
  }
  return ok;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<uint8_t> bytes(data, data + size);
  Pixels asGiven;
  Load(bytes, asGiven, false);

  FixCrcs(bytes);
  Pixels viaZlib, viaOwn;
  const bool zlibOk = Load(bytes, viaZlib, false);
  const bool ownOk = Load(bytes, viaOwn, true);
  if (zlibOk) {
    if (!ownOk) __builtin_trap();
    if (viaZlib.bytes != viaOwn.bytes || viaZlib.width != viaOwn.width ||
        viaZlib.height != viaOwn.height || viaZlib.alpha != viaOwn.alpha)
      __builtin_trap();
  }
  return 0;
}
