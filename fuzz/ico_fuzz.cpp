// Icons and cursors arrive from outside as files: the directory, the choice
// of entry and the decoding of DIB and PNG entries must take any bytes.
#include <cstddef>
#include <cstdint>

#include "imaging/cICOparser.h"

namespace {

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using vantor::imaging::Pixels;
  const std::span<const uint8_t> bytes(data, size);
  const int32_t wishes[][3] = {{0, 0, 0}, {16, 16, 32}, {48, 48, 8}};
  for (const auto& w : wishes) {
    vantor::imaging::cICOparser ico;
    Pixels p;
    if (ico.LoadStream(bytes, p, 0, 0, w[0], w[1], w[2])) {
      Check(p.width > 0 && p.height > 0);
      Check(p.bytes.size() == size_t(p.width) * size_t(p.height) * 4);
      Check(ico.ChosenEntry() >= 0 && ico.ChosenEntry() < ico.IconCount());
      for (size_t i = 0; i < p.bytes.size(); i += 4) {
        Check(p.bytes[i] <= p.bytes[i + 3] && p.bytes[i + 1] <= p.bytes[i + 3] &&
              p.bytes[i + 2] <= p.bytes[i + 3]);
      }
    } else {
      Check(p.Empty());
    }
    for (int32_t i = 0; i < ico.IconCount(); ++i) {
      Check(ico.Width(i) >= 0 && ico.Height(i) >= 0 && ico.bitDepth(i) >= 0);
    }
  }
  return 0;
}
