#pragma once
// Every frame of an animated GIF: the walk over the file's blocks that keeps
// each frame's place, timing and colour table, the decoding of a frame's
// indexes, and the composition of frames on a canvas of the logical screen's
// size with the disposal each frame asks for. The animated image control
// plays what this class composes.
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/Pixels.h"

namespace vantor::imaging {

struct GifFrame {
  uint16_t left = 0, top = 0, width = 0, height = 0;
  uint32_t delay = 0;          // milliseconds: the file's hundredths x 10
  uint32_t controlOffset = 0;  // where the frame's graphic control extension starts
  uint32_t paletteIndex = 0;   // which colour table (ColorTable) the frame uses
  uint8_t transparentIndex = 0;
  uint8_t transparent = 0;  // 1 when transparentIndex is meaningful
  uint8_t disposal = 0;     // 0 to 3
  bool interlaced = false;
  uint32_t dataOffset = 0;  // the frame's LZW data: its minimum-code-size byte
};

class GifAnimation {
 public:
  // Walks the file; false (and nothing held) when it is no GIF or holds no
  // frame. A file cut short keeps the frames read before the cut.
  bool Load(std::span<const uint8_t> bytes);
  void Clear();

  size_t FrameCount() const { return frames_.size(); }
  const GifFrame& Frame(size_t i) const { return frames_[i]; }
  int32_t ScreenWidth() const { return screenWidth_; }
  int32_t ScreenHeight() const { return screenHeight_; }
  // The NETSCAPE2.0 loop count; 0 when the file gives none (or says endless).
  int32_t LoopCount() const { return loops_; }
  const std::vector<uint8_t>& Bytes() const { return file_; }

  // Frame i's 256 colours as B, G, R, 0 words (RGBQUAD order). Changing
  // them changes what later compositions show.
  std::span<uint32_t> ColorTable(size_t frame);
  std::span<const uint32_t> ColorTable(size_t frame) const;

  // Frame i's palette indexes, width x height of its own rectangle, row 0
  // at the top. Returns how many pixels its data gave (see DecodeGifImage).
  size_t DecodeFrame(size_t i, std::vector<uint8_t>& indexes) const;

  // The whole screen as it stands while frame i shows: the frames before it
  // drawn and disposed of in turn. Successive frames reuse the running
  // canvas; going back starts again from the first. False when i is out of
  // range or the canvas cannot be made.
  bool RenderFrame(size_t i, Pixels& out);
  // The same without the copy: the running canvas itself, valid until the
  // next composition or load; null on failure.
  const Pixels* ComposeFrame(size_t i);
  // Every frame composed, in order.
  bool ComposeAll(std::vector<Pixels>& out);

 private:
  void ResetCanvas();
  void DrawFrame(size_t i);
  void Dispose(size_t i);

  std::vector<uint8_t> file_;
  std::vector<GifFrame> frames_;
  std::vector<uint32_t> tables_;  // frames x 256
  int32_t screenWidth_ = 0, screenHeight_ = 0;
  int32_t loops_ = 0;

  Pixels canvas_;
  Pixels saved_;             // what frame `drawn_` covered, for disposal 3
  size_t drawn_ = SIZE_MAX;  // the frame the canvas shows now
  std::vector<uint8_t> scratch_;
};

}  // namespace vantor::imaging
