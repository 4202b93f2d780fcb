#include "imaging/Pixels.h"

#include <limits>
#include <new>

namespace vantor::imaging {

namespace {
// Beyond this a picture is refused rather than attempted: 1 GiB of pixels.
constexpr uint64_t kMaxBytes = uint64_t{1} << 30;
}  // namespace

bool Pixels::Allocate(int32_t w, int32_t h) {
  Clear();
  if (w <= 0 || h <= 0) return false;
  const uint64_t size = static_cast<uint64_t>(w) * static_cast<uint64_t>(h) * 4;
  if (size > kMaxBytes) return false;
  try {
    bytes.assign(static_cast<size_t>(size), 0);
  } catch (const std::bad_alloc&) {
    return false;
  }
  width = w;
  height = h;
  return true;
}

void Pixels::Clear() {
  width = height = 0;
  bytes.clear();
  bytes.shrink_to_fit();
  alpha = Alpha_None;
  format = Image_None;
}

ENUM_ALPHA_TYPE Pixels::ScanAlpha() const {
  ENUM_ALPHA_TYPE kind = Alpha_None;
  for (size_t i = 3; i < bytes.size(); i += 4) {
    const uint8_t a = bytes[i];
    if (a == 255) continue;
    if (a != 0) return Alpha_Complex;
    kind = Alpha_Simple;
  }
  return kind;
}

}  // namespace vantor::imaging
