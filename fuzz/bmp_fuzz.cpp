// Bitmaps arrive from outside as files: any bytes must load or fail cleanly,
// and a loaded picture must save and load again to the same pixels.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/cBMPparser.h"

namespace {

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using vantor::imaging::Pixels;
  vantor::imaging::cBMPparser bmp;
  Pixels p;
  if (!bmp.LoadStream(std::span<const uint8_t>(data, size), p)) {
    Check(p.Empty());
    return 0;
  }
  Check(p.width > 0 && p.height > 0);
  Check(p.bytes.size() == size_t(p.width) * size_t(p.height) * 4);
  Check(p.alpha == p.ScanAlpha());
  // Pre-multiplied: no colour above its alpha.
  for (size_t i = 0; i < p.bytes.size(); i += 4) {
    Check(p.bytes[i] <= p.bytes[i + 3] && p.bytes[i + 1] <= p.bytes[i + 3] &&
          p.bytes[i + 2] <= p.bytes[i + 3]);
  }
  if (p.bytes.size() > (1u << 18)) return 0;
  std::vector<uint8_t> out;
  Pixels back;
  // Kept pre-multiplied, the bytes come back as they were.
  Check(bmp.SaveAsBMP(p, out, true));
  Check(bmp.LoadStream(out, back));
  Check(back.bytes == p.bytes);
  // An opaque picture goes through 24 bits unchanged.
  if (p.alpha == vantor::imaging::Alpha_None) {
    Check(bmp.SaveAsBMP(p, out));
    Check(bmp.LoadStream(out, back));
    Check(back.bytes == p.bytes);
  }
  return 0;
}
