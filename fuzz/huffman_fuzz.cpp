// The image lists' byte compressor on any bytes. Decoding must answer true or
// false without a crash, a leak or an allocation beyond eight bytes out for
// each byte in; what it decodes packs again and unpacks to the same bytes.
// The input also goes the other way: packed, it unpacks to itself.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/cHuffman.h"

namespace {

using vantor::imaging::cHuffman;

void RoundTrip(const std::vector<uint8_t>& plain) {
  std::vector<uint8_t> packed, back;
  if (!cHuffman::EncodeByteArray(plain, packed)) __builtin_trap();
  if (!cHuffman::DecodeByteArray(packed, back)) __builtin_trap();
  if (back != plain) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<uint8_t> bytes(data, data + size);
  std::vector<uint8_t> out{1};
  if (cHuffman::DecodeByteArray(bytes, out)) {
    if (out.size() > bytes.size() * 8) __builtin_trap();
    RoundTrip(out);
  } else if (!out.empty()) {
    __builtin_trap();  // a failure leaves nothing
  }
  RoundTrip(bytes);
  return 0;
}
