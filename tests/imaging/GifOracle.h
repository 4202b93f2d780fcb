#pragma once
// giflib on both sides of our GIF code: it writes the files our readers are
// checked on, and reads back the files our writer makes.
#include <gif_lib.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <random>
#include <vector>

#include "imaging/Pixels.h"

namespace vantor::imaging::gif_oracle {

struct Rgb {
  uint8_t r = 0, g = 0, b = 0;
  bool operator==(const Rgb&) const = default;
};

struct FrameSpec {
  int left = 0, top = 0, width = 0, height = 0;
  bool interlace = false;
  std::vector<Rgb> local;        // empty: the global table
  std::vector<uint8_t> indexes;  // width x height, row 0 at the top
  bool control = true;           // write a graphic control extension
  int disposal = 0;
  int delay = 0;  // hundredths
  int transparent = -1;
};

struct FileSpec {
  int width = 0, height = 0;
  std::vector<Rgb> global;  // empty: none
  std::optional<int> loops;
  std::vector<FrameSpec> frames;
};

inline int OutputToVector(GifFileType* gif, const GifByteType* data, int n) {
  auto* out = static_cast<std::vector<uint8_t>*>(gif->UserData);
  out->insert(out->end(), data, data + n);
  return n;
}

struct InputCursor {
  const std::vector<uint8_t>* bytes;
  size_t pos = 0;
};

inline int InputFromVector(GifFileType* gif, GifByteType* data, int n) {
  auto* in = static_cast<InputCursor*>(gif->UserData);
  const size_t left = in->bytes->size() - in->pos;
  const size_t k = std::min(left, static_cast<size_t>(n));
  std::memcpy(data, in->bytes->data() + in->pos, k);
  in->pos += k;
  return static_cast<int>(k);
}

// A colour map of the next power of two at or above the palette's size.
inline ColorMapObject* MakeMap(const std::vector<Rgb>& colours) {
  int size = 2;
  while (size < static_cast<int>(colours.size())) size *= 2;
  std::vector<GifColorType> c(static_cast<size_t>(size), GifColorType{0, 0, 0});
  for (size_t i = 0; i < colours.size(); ++i) c[i] = {colours[i].r, colours[i].g, colours[i].b};
  return GifMakeMapObject(size, c.data());
}

inline std::vector<uint8_t> GiflibWrite(const FileSpec& spec) {
  std::vector<uint8_t> out;
  int error = 0;
  GifFileType* gif = EGifOpen(&out, OutputToVector, &error);
  if (gif == nullptr) return {};
  EGifSetGifVersion(gif, true);
  ColorMapObject* global = spec.global.empty() ? nullptr : MakeMap(spec.global);
  bool ok = EGifPutScreenDesc(gif, spec.width, spec.height, 8, 0, global) == GIF_OK;
  if (spec.loops && ok) {
    const uint8_t loop[3] = {1, static_cast<uint8_t>(*spec.loops),
                             static_cast<uint8_t>(*spec.loops >> 8)};
    ok = EGifPutExtensionLeader(gif, APPLICATION_EXT_FUNC_CODE) == GIF_OK &&
         EGifPutExtensionBlock(gif, 11, "NETSCAPE2.0") == GIF_OK &&
         EGifPutExtensionBlock(gif, 3, loop) == GIF_OK && EGifPutExtensionTrailer(gif) == GIF_OK;
  }
  for (const FrameSpec& f : spec.frames) {
    if (!ok) break;
    if (f.control) {
      GraphicsControlBlock gcb{f.disposal, false, f.delay, f.transparent};
      GifByteType ext[4];
      const size_t n = EGifGCBToExtension(&gcb, ext);
      ok = EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(n), ext) == GIF_OK;
    }
    ColorMapObject* local = f.local.empty() ? nullptr : MakeMap(f.local);
    if (local == nullptr && gif->Image.ColorMap != nullptr) {
      // giflib forgets the previous frame's table instead of freeing it.
      GifFreeMapObject(gif->Image.ColorMap);
      gif->Image.ColorMap = nullptr;
    }
    ok =
        ok && EGifPutImageDesc(gif, f.left, f.top, f.width, f.height, f.interlace, local) == GIF_OK;
    if (local) GifFreeMapObject(local);
    // giflib sends rows in the order given; an interlaced file wants them
    // pass by pass.
    std::vector<int> order;
    if (f.interlace) {
      const int start[4] = {0, 4, 2, 1}, step[4] = {8, 8, 4, 2};
      for (int p = 0; p < 4; ++p) {
        for (int y = start[p]; y < f.height; y += step[p]) order.push_back(y);
      }
    } else {
      for (int y = 0; y < f.height; ++y) order.push_back(y);
    }
    for (int y : order) {
      if (!ok) break;
      std::vector<GifPixelType> row(f.indexes.begin() + y * f.width,
                                    f.indexes.begin() + (y + 1) * f.width);
      ok = EGifPutLine(gif, row.data(), f.width) == GIF_OK;
    }
  }
  if (global) GifFreeMapObject(global);
  EGifCloseFile(gif, &error);
  return ok ? out : std::vector<uint8_t>{};
}

struct DecodedFrame {
  int left = 0, top = 0, width = 0, height = 0;
  std::vector<Rgb> palette;  // 256 entries, the table the frame uses
  std::vector<uint8_t> indexes;
  int disposal = 0, delay = 0, transparent = -1;
};

struct Decoded {
  bool ok = false;
  int width = 0, height = 0;
  std::vector<DecodedFrame> frames;
};

inline Decoded GiflibRead(const std::vector<uint8_t>& bytes) {
  Decoded d;
  InputCursor cursor{&bytes};
  int error = 0;
  GifFileType* gif = DGifOpen(&cursor, InputFromVector, &error);
  if (gif == nullptr) return d;
  if (DGifSlurp(gif) == GIF_OK) {
    d.ok = true;
    d.width = gif->SWidth;
    d.height = gif->SHeight;
    for (int i = 0; i < gif->ImageCount; ++i) {
      const SavedImage& s = gif->SavedImages[i];
      DecodedFrame f;
      f.left = s.ImageDesc.Left;
      f.top = s.ImageDesc.Top;
      f.width = s.ImageDesc.Width;
      f.height = s.ImageDesc.Height;
      const ColorMapObject* map = s.ImageDesc.ColorMap ? s.ImageDesc.ColorMap : gif->SColorMap;
      f.palette.assign(256, Rgb{});
      for (int c = 0; map && c < map->ColorCount; ++c) {
        f.palette[static_cast<size_t>(c)] = {map->Colors[c].Red, map->Colors[c].Green,
                                             map->Colors[c].Blue};
      }
      f.indexes.assign(s.RasterBits, s.RasterBits + f.width * f.height);
      GraphicsControlBlock gcb{};
      if (DGifSavedExtensionToGCB(gif, i, &gcb) == GIF_OK) {
        f.disposal = gcb.DisposalMode;
        f.delay = gcb.DelayTime;
        f.transparent = gcb.TransparentColor;
      }
      d.frames.push_back(std::move(f));
    }
  }
  DGifCloseFile(gif, &error);
  return d;
}

// One frame on its own as the picture it shows: B, G, R, A, top row first.
inline std::vector<uint8_t> FramePixels(const DecodedFrame& f) {
  std::vector<uint8_t> px(static_cast<size_t>(f.width * f.height) * 4, 0);
  for (size_t i = 0; i < f.indexes.size(); ++i) {
    if (f.indexes[i] == f.transparent) continue;
    const Rgb c = f.palette[f.indexes[i]];
    px[i * 4] = c.b;
    px[i * 4 + 1] = c.g;
    px[i * 4 + 2] = c.r;
    px[i * 4 + 3] = 255;
  }
  return px;
}

// A Pixels as B, G, R, A, top row first.
inline std::vector<uint8_t> TopDown(const Pixels& p) {
  std::vector<uint8_t> out;
  for (int32_t y = 0; y < p.height; ++y) out.insert(out.end(), p.Row(y), p.Row(y) + p.Stride());
  return out;
}

inline std::vector<Rgb> RandomPalette(size_t n, std::mt19937& rng) {
  std::vector<Rgb> p(n);
  for (auto& c : p) {
    c = {static_cast<uint8_t>(rng()), static_cast<uint8_t>(rng()), static_cast<uint8_t>(rng())};
  }
  return p;
}

inline std::vector<uint8_t> RandomIndexes(size_t n, int colours, std::mt19937& rng) {
  std::vector<uint8_t> v(n);
  for (auto& i : v) i = static_cast<uint8_t>(rng() % static_cast<unsigned>(colours));
  return v;
}

}  // namespace vantor::imaging::gif_oracle
