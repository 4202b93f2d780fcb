// GIF arrives from outside as files: the first-frame reader and the animation
// walk must take any bytes without harm, and what the first-frame reader
// makes must survive a trip through our writer when its colours fit.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <unordered_set>
#include <vector>

#include "imaging/GifAnimation.h"
#include "imaging/cGIFparser.h"

namespace {

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

using vantor::imaging::Pixels;

void CheckShape(const Pixels& p) {
  Check(p.width > 0 && p.height > 0);
  Check(p.bytes.size() == size_t(p.width) * size_t(p.height) * 4);
  for (size_t i = 0; i < p.bytes.size(); i += 4) {
    // Read pixels are opaque or clear, and clear ones are black.
    Check(p.bytes[i + 3] == 255 ||
          (p.bytes[i + 3] == 0 && p.bytes[i] == 0 && p.bytes[i + 1] == 0 && p.bytes[i + 2] == 0));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::span<const uint8_t> bytes(data, size);
  vantor::imaging::cGIFparser gif;
  Pixels first;
  if (gif.LoadStream(bytes, first)) {
    CheckShape(first);
    Check(first.alpha == first.ScanAlpha());
    // Our writer gives back the same pixels while the colours fit its palette.
    std::unordered_set<uint32_t> colours;
    for (size_t i = 0; i < first.bytes.size(); i += 4) {
      uint32_t c;
      std::memcpy(&c, &first.bytes[i], 4);
      if (first.bytes[i + 3] != 0) colours.insert(c);
    }
    if (first.bytes.size() <= (1u << 18) && colours.size() < 256) {
      std::vector<uint8_t> out;
      Check(gif.SaveAsGIF(first, out));
      Pixels back;
      Check(gif.LoadStream(out, back));
      Check(back.bytes == first.bytes);
    }
  } else {
    Check(first.Empty());
  }

  vantor::imaging::GifAnimation animation;
  if (animation.Load(bytes)) {
    Check(animation.FrameCount() > 0);
    // Compose a bounded number of frames, then go back once.
    const size_t frames = animation.FrameCount() < 8 ? animation.FrameCount() : 8;
    const Pixels* canvas = nullptr;
    for (size_t i = 0; i < frames; ++i) {
      canvas = animation.ComposeFrame(i);
      if (canvas == nullptr) break;
      Check(canvas->width == animation.ScreenWidth() && canvas->height == animation.ScreenHeight());
    }
    if (canvas != nullptr) CheckShape(*canvas);
    Pixels p;
    if (animation.RenderFrame(0, p)) CheckShape(p);
  } else {
    Check(animation.FrameCount() == 0);
  }
  return 0;
}
