#include "platform/Bitmap.h"

#include <new>

namespace vantor::platform {

namespace {
// Large enough for any screen the library meets; refusing beyond it keeps a
// garbage size from exhausting memory.
constexpr int64_t kMaxPixels = int64_t{1} << 26;
}  // namespace

bool Bitmap::Allocate(int width, int height, bool bottom) {
  if (width <= 0 || height <= 0) return false;
  const int64_t count = int64_t{width} * height;
  if (count > kMaxPixels) return false;
  try {
    storage.assign(static_cast<size_t>(count), 0u);
  } catch (const std::bad_alloc&) {
    return false;
  }
  bottom_up = bottom;
  surface.width = width;
  surface.height = height;
  if (bottom) {
    // Row 0 on screen is the last row in memory.
    surface.pixels = storage.data() + static_cast<ptrdiff_t>(height - 1) * width;
    surface.stride = -static_cast<ptrdiff_t>(width);
  } else {
    surface.pixels = storage.data();
    surface.stride = width;
  }
  return true;
}

void* Bitmap::Bits() const {
  return const_cast<uint32_t*>(storage.data());
}

}  // namespace vantor::platform
