// The frame walk and the composition of animations that giflib wrote,
// against giflib's decoding of each frame laid on a canvas by the rules of
// disposal.
#include <gtest/gtest.h>

#include "imaging/GifAnimation.h"
#include "tests/imaging/GifOracle.h"

namespace vantor::imaging {
namespace {

using namespace gif_oracle;

// The canvas after every frame, from giflib's frames: transparent to begin
// with; disposal 2 clears the frame's rectangle and 3 puts back what it
// covered, before the next frame; the first frame's 3 counts as 0.
std::vector<std::vector<uint8_t>> ReferenceCompose(const Decoded& d) {
  const size_t w = size_t(d.width), h = size_t(d.height);
  std::vector<uint8_t> canvas(w * h * 4, 0), saved;
  std::vector<std::vector<uint8_t>> out;
  for (size_t i = 0; i < d.frames.size(); ++i) {
    const DecodedFrame& f = d.frames[i];
    const int disposal = (i == 0 && f.disposal == 3) ? 0 : f.disposal;
    if (disposal == 3) saved = canvas;
    for (int y = 0; y < f.height; ++y) {
      for (int x = 0; x < f.width; ++x) {
        const size_t cx = size_t(f.left + x), cy = size_t(f.top + y);
        if (cx >= w || cy >= h) continue;
        const uint8_t index = f.indexes[size_t(y * f.width + x)];
        if (index == f.transparent) continue;
        uint8_t* px = &canvas[(cy * w + cx) * 4];
        const Rgb c = f.palette[index];
        px[0] = c.b, px[1] = c.g, px[2] = c.r, px[3] = 255;
      }
    }
    out.push_back(canvas);
    for (int y = 0; y < f.height; ++y) {
      for (int x = 0; x < f.width; ++x) {
        const size_t cx = size_t(f.left + x), cy = size_t(f.top + y);
        if (cx >= w || cy >= h) continue;
        uint8_t* px = &canvas[(cy * w + cx) * 4];
        if (disposal == 2) std::memset(px, 0, 4);
        if (disposal == 3) std::memcpy(px, &saved[(cy * w + cx) * 4], 4);
      }
    }
  }
  return out;
}

// Frames of every disposal, with transparency, offsets, local tables and
// interlacing, some reaching past the screen's edge.
FileSpec Animation(std::mt19937& rng, int frames) {
  FileSpec spec;
  spec.width = 41;
  spec.height = 29;
  spec.global = RandomPalette(32, rng);
  spec.loops = 3;
  for (int i = 0; i < frames; ++i) {
    FrameSpec f;
    f.left = int(rng() % 30);
    f.top = int(rng() % 20);
    f.width = 1 + int(rng() % 25);
    f.height = 1 + int(rng() % 20);
    if (i == 0) f.left = f.top = 0, f.width = 41, f.height = 29;
    f.interlace = rng() % 3 == 0;
    const int colours = rng() % 2 ? 32 : 8;
    if (colours == 8) f.local = RandomPalette(8, rng);
    f.indexes = RandomIndexes(size_t(f.width * f.height), colours, rng);
    f.disposal = int(rng() % 4);
    f.delay = int(rng() % 50);
    f.transparent = rng() % 3 ? int(rng() % size_t(colours)) : -1;
    spec.frames.push_back(f);
  }
  return spec;
}

TEST(GifAnimation, RecordsAsTheFileGivesThem) {
  std::mt19937 rng(17);
  FileSpec spec = Animation(rng, 6);
  spec.frames[0].disposal = 3;  // the first frame's 3 becomes 0
  spec.frames[1].delay = 0;     // and a delay of 0 stays 0
  spec.frames[2].transparent = 5;
  const auto file = GiflibWrite(spec);
  ASSERT_FALSE(file.empty());
  GifAnimation a;
  ASSERT_TRUE(a.Load(file));
  ASSERT_EQ(a.FrameCount(), 6u);
  EXPECT_EQ(a.ScreenWidth(), 41);
  EXPECT_EQ(a.ScreenHeight(), 29);
  EXPECT_EQ(a.LoopCount(), 3);
  for (size_t i = 0; i < 6; ++i) {
    const FrameSpec& s = spec.frames[i];
    const GifFrame& f = a.Frame(i);
    EXPECT_EQ(f.left, s.left);
    EXPECT_EQ(f.top, s.top);
    EXPECT_EQ(f.width, s.width);
    EXPECT_EQ(f.height, s.height);
    EXPECT_EQ(f.delay, uint32_t(s.delay * 10));
    EXPECT_EQ(f.disposal, i == 0 ? 0 : s.disposal);
    EXPECT_EQ(f.interlaced, s.interlace);
    EXPECT_EQ(f.transparent, s.transparent >= 0 ? 1 : 0);
    if (s.transparent >= 0) {
      EXPECT_EQ(f.transparentIndex, s.transparent);
    }
    EXPECT_EQ(file[f.controlOffset], 0x21);
    EXPECT_EQ(file[f.controlOffset + 1], 0xF9);
    // The frame's table, in B, G, R, 0 words.
    const auto& colours = s.local.empty() ? spec.global : s.local;
    for (size_t c = 0; c < colours.size(); ++c) {
      EXPECT_EQ(a.ColorTable(i)[c],
                uint32_t(colours[c].r) << 16 | uint32_t(colours[c].g) << 8 | colours[c].b);
    }
    std::vector<uint8_t> indexes;
    EXPECT_EQ(a.DecodeFrame(i, indexes), size_t(s.width * s.height));
    EXPECT_EQ(indexes, s.indexes);
  }
  EXPECT_EQ(a.Frame(1).delay, 0u);
}

TEST(GifAnimation, ComposesAsTheDisposalsSay) {
  for (unsigned seed = 1; seed <= 25; ++seed) {
    std::mt19937 rng(seed);
    const FileSpec spec = Animation(rng, 2 + int(seed % 9));
    const auto file = GiflibWrite(spec);
    const Decoded d = GiflibRead(file);
    ASSERT_TRUE(d.ok);
    const auto expected = ReferenceCompose(d);
    GifAnimation a;
    ASSERT_TRUE(a.Load(file));
    std::vector<Pixels> frames;
    ASSERT_TRUE(a.ComposeAll(frames));
    ASSERT_EQ(frames.size(), expected.size());
    for (size_t i = 0; i < frames.size(); ++i) {
      EXPECT_EQ(frames[i].format, Image_GIF);
      EXPECT_EQ(frames[i].alpha, frames[i].ScanAlpha());
      ASSERT_EQ(TopDown(frames[i]), expected[i]) << "seed " << seed << " frame " << i;
    }
    // Going back starts again and lands on the same pictures.
    Pixels p;
    for (size_t i : {frames.size() - 1, size_t{0}, frames.size() / 2, frames.size() / 2}) {
      ASSERT_TRUE(a.RenderFrame(i, p));
      EXPECT_EQ(TopDown(p), expected[i]) << "seed " << seed << " again " << i;
    }
    EXPECT_FALSE(a.RenderFrame(frames.size(), p));
    EXPECT_TRUE(p.Empty());
    // The canvas itself, without a copy.
    const Pixels* canvas = a.ComposeFrame(frames.size() - 1);
    ASSERT_NE(canvas, nullptr);
    EXPECT_EQ(TopDown(*canvas), expected.back());
    EXPECT_EQ(a.ComposeFrame(frames.size()), nullptr);
  }
}

TEST(GifAnimation, ChangedColourTableShowsInTheNextRender) {
  std::mt19937 rng(2);
  FileSpec spec = Animation(rng, 2);
  spec.frames[0].transparent = -1;
  const auto file = GiflibWrite(spec);
  GifAnimation a;
  ASSERT_TRUE(a.Load(file));
  Pixels before, after;
  ASSERT_TRUE(a.RenderFrame(0, before));
  for (uint32_t& c : a.ColorTable(0)) c = 0x00102030;
  ASSERT_TRUE(a.RenderFrame(1, after));  // forward: frame 0 already drawn
  ASSERT_TRUE(a.RenderFrame(0, after));  // back: drawn again with the new table
  EXPECT_EQ(after.Row(0)[0], 0x30);
  EXPECT_EQ(after.Row(0)[2], 0x10);
  EXPECT_TRUE(a.ColorTable(2).empty());
}

// A hand-made file: header, global table of 2, then `blocks`.
std::vector<uint8_t> HandMade(const std::vector<uint8_t>& blocks, bool upper = false) {
  const uint8_t head[19] = {
      'G', 'I', 'F', '8', '9', upper ? uint8_t('A') : uint8_t('a'), 2, 0, 2, 0, 0x80, 0, 0, 0,
      0,   0,   255, 255, 255};
  std::vector<uint8_t> f(sizeof head + blocks.size());
  std::copy(head, head + sizeof head, f.begin());
  std::copy(blocks.begin(), blocks.end(), f.begin() + sizeof head);
  return f;
}

// A 2 x 2 image of the indexes 0 1 1 0: the codes clear (4), 0, 1, 1 in 3
// bits, then 0 and end (5) in 4 bits once the table reaches 8.
const std::vector<uint8_t> kImage = {0x2C, 0, 0, 0, 0, 2, 0, 2, 0, 0, 2, 3, 0x44, 0x02, 0x05, 0};

TEST(GifAnimation, HandMadeBlocks) {
  const auto one = HandMade(kImage);
  std::vector<uint8_t> plain = one;
  plain.push_back(0x3B);
  GifAnimation a;
  ASSERT_TRUE(a.Load(plain));
  ASSERT_EQ(a.FrameCount(), 1u);
  std::vector<uint8_t> idx;
  a.DecodeFrame(0, idx);
  EXPECT_EQ(idx, (std::vector<uint8_t>{0, 1, 1, 0}));
  EXPECT_EQ(a.LoopCount(), 0);

  // NETSCAPE2.0 with a sub-block of 3 sets the loops; upper or lower case.
  const std::vector<uint8_t> netscape = {0x21, 0xFF, 11,  'n', 'e', 't', 's', 'c', 'a', 'p',
                                         'e',  '2',  '.', '0', 3,   1,   7,   1,   0};
  auto blocks = netscape;
  blocks.insert(blocks.end(), kImage.begin(), kImage.end());
  blocks.push_back(0x3B);
  ASSERT_TRUE(a.Load(HandMade(blocks, true)));
  EXPECT_EQ(a.LoopCount(), 263);
  // Any other size leaves the loop count alone.
  blocks = {0x21, 0xFF, 11,  'N', 'E', 'T', 'S', 'C', 'A', 'P',
            'E',  '2',  '.', '0', 4,   1,   7,   1,   9,   0};
  blocks.insert(blocks.end(), kImage.begin(), kImage.end());
  ASSERT_TRUE(a.Load(HandMade(blocks)));
  EXPECT_EQ(a.LoopCount(), 0);
  EXPECT_EQ(a.FrameCount(), 1u);

  // A control block, then an image without one: the second has no
  // transparency; its record does not inherit.
  blocks = {0x21, 0xF9, 4, 0x09, 0x0A, 0, 1, 0};  // disposal 2, delay 10, clear index 1
  blocks.insert(blocks.end(), kImage.begin(), kImage.end());
  blocks.insert(blocks.end(), kImage.begin(), kImage.end());
  ASSERT_TRUE(a.Load(HandMade(blocks)));
  ASSERT_EQ(a.FrameCount(), 2u);
  EXPECT_EQ(a.Frame(0).delay, 100u);
  EXPECT_EQ(a.Frame(0).disposal, 2);
  EXPECT_EQ(a.Frame(0).transparent, 1);
  EXPECT_EQ(a.Frame(1).transparent, 0);
  EXPECT_EQ(a.Frame(1).delay, 0u);
  // Disposal bits above 3 count as 0.
  blocks[3] = 0x1C;  // disposal 7
  ASSERT_TRUE(a.Load(HandMade(blocks)));
  EXPECT_EQ(a.Frame(0).disposal, 0);
}

TEST(GifAnimation, CutShortKeepsWhatWasRead) {
  std::mt19937 rng(8);
  const FileSpec spec = Animation(rng, 5);
  const auto file = GiflibWrite(spec);
  GifAnimation whole;
  ASSERT_TRUE(whole.Load(file));
  size_t previous = 0;
  for (size_t cut = 13; cut < file.size(); cut += 7) {
    const std::vector<uint8_t> part(file.begin(), file.begin() + cut);
    GifAnimation a;
    const bool ok = a.Load(part);
    EXPECT_EQ(ok, a.FrameCount() > 0);
    EXPECT_GE(a.FrameCount(), previous);  // more bytes never lose a frame
    previous = a.FrameCount();
    if (!ok) continue;
    std::vector<Pixels> frames;
    EXPECT_TRUE(a.ComposeAll(frames));
    for (size_t i = 0; i + 1 < a.FrameCount(); ++i) {
      EXPECT_EQ(a.Frame(i).dataOffset, whole.Frame(i).dataOffset);
    }
  }
  EXPECT_EQ(previous, 5u);
}

TEST(GifAnimation, RefusesFilesWithoutFrames) {
  GifAnimation a;
  EXPECT_FALSE(a.Load(HandMade({0x3B})));
  EXPECT_FALSE(a.Load(HandMade({})));
  EXPECT_FALSE(a.Load(std::vector<uint8_t>{'G', 'I', 'F', '8', '9', 'a'}));
  EXPECT_FALSE(a.Load(std::vector<uint8_t>(100, 0)));
  EXPECT_EQ(a.FrameCount(), 0u);
  Pixels p;
  EXPECT_FALSE(a.RenderFrame(0, p));
  // No screen size: the frames' extent stands in.
  auto f = HandMade(kImage);
  f[6] = f[8] = 0;
  ASSERT_TRUE(a.Load(f));
  EXPECT_EQ(a.ScreenWidth(), 2);
  ASSERT_TRUE(a.RenderFrame(0, p));
  EXPECT_EQ(p.alpha, Alpha_None);
}

}  // namespace
}  // namespace vantor::imaging
