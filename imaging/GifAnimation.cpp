#include "imaging/GifAnimation.h"

#include <algorithm>
#include <cstring>

#include "imaging/GifLzw.h"
#include "runtime/Error.h"

namespace vantor::imaging {

namespace {

// The file's reader: each read that would pass the end raises, and the walk
// keeps what it had when that happens.
class GifReader {
 public:
  explicit GifReader(std::span<const uint8_t> d) : d_(d) {}

  size_t Position() const { return pos_; }
  void Seek(size_t pos) { pos_ = pos; }

  uint8_t NextByte() {
    if (pos_ >= d_.size()) EndOfFile();
    return d_[pos_++];
  }
  uint16_t NextWord() {
    const uint8_t lo = NextByte();
    return static_cast<uint16_t>(lo | (NextByte() << 8));
  }
  void Skip(size_t n) {
    if (n > d_.size() - pos_) EndOfFile();
    pos_ += n;
  }
  void SkipSubBlocks() {
    for (uint8_t n = NextByte(); n != 0; n = NextByte()) Skip(n);
  }

 private:
  [[noreturn]] static void EndOfFile() { throw Error(62, u"ReadGifFile", u"End of File"); }

  std::span<const uint8_t> d_;
  size_t pos_ = 0;
};

void ReadTable(GifReader& in, size_t entries, uint32_t* table) {
  std::fill(table, table + 256, 0u);
  for (size_t i = 0; i < entries; ++i) {
    const uint32_t r = in.NextByte(), g = in.NextByte(), b = in.NextByte();
    table[i] = (r << 16) | (g << 8) | b;
  }
}

bool IsGif(std::span<const uint8_t> d) {
  if (d.size() < 6) return false;
  char text[7] = {};
  for (size_t i = 0; i < 6; ++i) {
    const auto c = static_cast<char>(d[i]);
    text[i] = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return std::strcmp(text, "gif89a") == 0 || std::strcmp(text, "gif87a") == 0;
}

}  // namespace

void GifAnimation::Clear() {
  file_.clear();
  frames_.clear();
  tables_.clear();
  screenWidth_ = screenHeight_ = loops_ = 0;
  canvas_.Clear();
  saved_.Clear();
  drawn_ = SIZE_MAX;
}

bool GifAnimation::Load(std::span<const uint8_t> bytes) {
  Clear();
  try {
    if (!IsGif(bytes) || bytes.size() < 13) return false;
    file_.assign(bytes.begin(), bytes.end());
    GifReader in(file_);
    in.Seek(6);
    screenWidth_ = in.NextWord();
    screenHeight_ = in.NextWord();
    const uint8_t packed = in.NextByte();
    in.Skip(2);
    uint32_t global[256] = {};
    if (packed & 0x80) ReadTable(in, size_t{2} << (packed & 7), global);

    GifFrame current;
    bool controlled = false;  // a control extension came since the last image
    try {
      for (;;) {
        const size_t at = in.Position();
        const uint8_t block = in.NextByte();
        if (block == 0) continue;
        if (block == 0x21) {
          const uint8_t label = in.NextByte();
          if (label == 0xFF) {
            const uint8_t size = in.NextByte();
            char name[256] = {};
            for (size_t i = 0; i < size; ++i) {
              const auto c = static_cast<char>(in.NextByte());
              name[i] = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
            }
            if (std::strcmp(name, "NETSCAPE2.0") == 0) {
              const uint8_t sub = in.NextByte();
              if (sub == 3) {
                in.NextByte();
                loops_ = in.NextWord();
              } else {
                in.Skip(sub);
              }
              if (sub != 0) in.SkipSubBlocks();
            } else {
              in.SkipSubBlocks();
            }
          } else if (label == 0xF9) {
            // What this block does not set carries over from the frame before.
            current = frames_.empty() ? GifFrame{} : frames_.back();
            current.controlOffset = static_cast<uint32_t>(at);
            const uint8_t size = in.NextByte();
            uint8_t data[4] = {};
            for (size_t i = 0; i < size; ++i) {
              const uint8_t b = in.NextByte();
              if (i < 4) data[i] = b;
            }
            uint8_t disposal = static_cast<uint8_t>((data[0] >> 2) & 7);
            if (disposal > 3 || (disposal == 3 && frames_.empty())) disposal = 0;
            current.disposal = disposal;
            current.delay = static_cast<uint32_t>(data[1] | (data[2] << 8)) * 10;
            current.transparent = data[0] & 1;
            if (current.transparent) current.transparentIndex = data[3];
            controlled = true;
            in.SkipSubBlocks();
          } else {
            in.SkipSubBlocks();
          }
          continue;
        }
        if (block != 0x2C) break;  // the trailer, or anything we do not know

        // An image without its own control extension takes none.
        if (!controlled) current = GifFrame{};
        controlled = false;
        current.left = in.NextWord();
        current.top = in.NextWord();
        current.width = in.NextWord();
        current.height = in.NextWord();
        const uint8_t flags = in.NextByte();
        current.interlaced = (flags & 0x40) != 0;
        uint32_t table[256];
        if (flags & 0x80) {
          ReadTable(in, size_t{2} << (flags & 7), table);
        } else {
          std::copy(global, global + 256, table);
        }
        current.dataOffset = static_cast<uint32_t>(in.Position());
        in.NextByte();  // the minimum code size, which must be there
        current.paletteIndex = static_cast<uint32_t>(frames_.size());
        frames_.push_back(current);
        tables_.insert(tables_.end(), table, table + 256);
        in.SkipSubBlocks();
      }
    } catch (const Error&) {
      // Cut short: the frames read so far stand.
    }
    if (frames_.empty()) {
      Clear();
      return false;
    }
    if (screenWidth_ == 0 || screenHeight_ == 0) {
      // No screen given: the frames' own extent stands in for it.
      for (const GifFrame& f : frames_) {
        screenWidth_ = std::max(screenWidth_, int32_t{f.left} + f.width);
        screenHeight_ = std::max(screenHeight_, int32_t{f.top} + f.height);
      }
    }
    const uint64_t area =
        static_cast<uint64_t>(screenWidth_) * static_cast<uint64_t>(screenHeight_);
    if (area == 0 || !GifAreaIsPlausible(area, file_.size())) {
      Clear();
      return false;
    }
    return true;
  } catch (...) {
    Clear();
    return false;
  }
}

std::span<uint32_t> GifAnimation::ColorTable(size_t frame) {
  if (frame >= frames_.size()) return {};
  return std::span<uint32_t>(tables_).subspan(size_t{frames_[frame].paletteIndex} * 256, 256);
}

std::span<const uint32_t> GifAnimation::ColorTable(size_t frame) const {
  if (frame >= frames_.size()) return {};
  return std::span<const uint32_t>(tables_).subspan(size_t{frames_[frame].paletteIndex} * 256, 256);
}

size_t GifAnimation::DecodeFrame(size_t i, std::vector<uint8_t>& indexes) const {
  indexes.clear();
  if (i >= frames_.size()) return 0;
  const GifFrame& f = frames_[i];
  const uint64_t area = uint64_t{f.width} * f.height;
  if (area == 0 || !GifAreaIsPlausible(area, file_.size() - f.dataOffset)) return 0;
  return DecodeGifImage(file_, f.dataOffset, f.width, f.height, f.interlaced, indexes);
}

void GifAnimation::ResetCanvas() {
  drawn_ = SIZE_MAX;
  saved_.Clear();
  if (canvas_.width == screenWidth_ && canvas_.height == screenHeight_ && !canvas_.Empty()) {
    std::fill(canvas_.bytes.begin(), canvas_.bytes.end(), uint8_t{0});
  } else {
    canvas_.Allocate(screenWidth_, screenHeight_);
  }
}

namespace {

// The part of a frame's rectangle that lies on the screen.
struct Clip {
  int32_t x0, y0, x1, y1;
  bool Empty() const { return x0 >= x1 || y0 >= y1; }
};

Clip ClipOf(const GifFrame& f, const Pixels& canvas) {
  return {f.left, f.top, std::min<int32_t>(f.left + f.width, canvas.width),
          std::min<int32_t>(f.top + f.height, canvas.height)};
}

}  // namespace

void GifAnimation::DrawFrame(size_t i) {
  const GifFrame& f = frames_[i];
  const Clip c = ClipOf(f, canvas_);
  if (f.disposal == 3 && !c.Empty()) {
    // Keep what the frame covers, to be put back when it goes.
    if (saved_.Allocate(c.x1 - c.x0, c.y1 - c.y0)) {
      for (int32_t y = c.y0; y < c.y1; ++y) {
        std::memcpy(saved_.Row(y - c.y0), canvas_.Row(y) + size_t(c.x0) * 4, saved_.Stride());
      }
    }
  }
  const size_t produced = DecodeFrame(i, scratch_);
  if (produced == 0 || c.Empty()) return;
  const std::span<const uint32_t> table = ColorTable(i);
  const bool clear = f.transparent != 0;
  ForEachDecodedRow(produced, f.width, f.height, f.interlaced, [&](int32_t row, int32_t n) {
    const int32_t y = f.top + row;
    if (y >= c.y1) return;
    const uint8_t* src = scratch_.data() + size_t(row) * f.width;
    uint8_t* dst = canvas_.Row(y) + size_t(c.x0) * 4;
    const int32_t end = std::min(n, c.x1 - c.x0);
    for (int32_t x = 0; x < end; ++x, dst += 4) {
      const uint8_t index = src[x];
      if (clear && index == f.transparentIndex) continue;
      const uint32_t colour = table[index];
      dst[0] = static_cast<uint8_t>(colour);
      dst[1] = static_cast<uint8_t>(colour >> 8);
      dst[2] = static_cast<uint8_t>(colour >> 16);
      dst[3] = 255;
    }
  });
}

void GifAnimation::Dispose(size_t i) {
  const GifFrame& f = frames_[i];
  const Clip c = ClipOf(f, canvas_);
  if (c.Empty()) return;
  if (f.disposal == 2) {
    // Back to the background, which here is transparency: the control fills
    // its own colour behind when it is solid.
    for (int32_t y = c.y0; y < c.y1; ++y) {
      std::memset(canvas_.Row(y) + size_t(c.x0) * 4, 0, size_t(c.x1 - c.x0) * 4);
    }
  } else if (f.disposal == 3 && saved_.width == c.x1 - c.x0 && saved_.height == c.y1 - c.y0) {
    for (int32_t y = c.y0; y < c.y1; ++y) {
      std::memcpy(canvas_.Row(y) + size_t(c.x0) * 4, saved_.Row(y - c.y0), saved_.Stride());
    }
  }
}

const Pixels* GifAnimation::ComposeFrame(size_t i) {
  try {
    if (i >= frames_.size()) return nullptr;
    if (drawn_ == SIZE_MAX || i < drawn_ || canvas_.Empty()) {
      ResetCanvas();
      if (canvas_.Empty()) return nullptr;
    }
    for (size_t k = drawn_ == SIZE_MAX ? 0 : drawn_ + 1; k <= i; ++k) {
      if (drawn_ != SIZE_MAX) Dispose(drawn_);
      DrawFrame(k);
      drawn_ = k;
    }
    canvas_.alpha = canvas_.ScanAlpha();
    canvas_.format = Image_GIF;
    return &canvas_;
  } catch (...) {
    drawn_ = SIZE_MAX;
    return nullptr;
  }
}

bool GifAnimation::RenderFrame(size_t i, Pixels& out) {
  out.Clear();
  try {
    const Pixels* canvas = ComposeFrame(i);
    if (canvas == nullptr) return false;
    out = *canvas;
    return true;
  } catch (...) {
    out.Clear();
    return false;
  }
}

bool GifAnimation::ComposeAll(std::vector<Pixels>& out) {
  out.clear();
  try {
    out.resize(frames_.size());
    for (size_t i = 0; i < frames_.size(); ++i) {
      if (!RenderFrame(i, out[i])) {
        out.clear();
        return false;
      }
    }
    return true;
  } catch (...) {
    out.clear();
    return false;
  }
}

}  // namespace vantor::imaging
