// JPEG encoding speed beside libjpeg-turbo in the same process, on
// photograph-like pictures at qualities 75 and 90, 4:2:0. Both sides start
// from the same memory: the surface's bottom-up BGRA rows (libjpeg-turbo
// takes them as BGRX through its row pointers, so neither side pays for a
// conversion the other skips). The peer runs three ways:
//   - its defaults: integer DCT, the standard's Huffman tables (one pass);
//   - fitted Huffman tables (two passes, as ours);
//   - fitted tables and its floating-point DCT: the same work as ours.
// A ratio is our time over the peer's: at most 3 is the bound, 2 the aim.
// Sizes are printed beside the times.

// jpeglib.h uses FILE and size_t without declaring them.
#include <cstdio>

#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "imaging/Pixels.h"
#include "imaging/cJPGWriter.h"

using namespace vantor::imaging;

namespace {

int g_rounds = 12;

// The CPU time of this thread, so that other programs on a busy machine do
// not count against either side.
double ThreadMs() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

double BestMs(const std::function<void()>& f) {
  f();  // warm caches and the allocator
  double best = 1e300;
  for (int i = 0; i < g_rounds; ++i) {
    const double start = ThreadMs();
    f();
    best = std::min(best, ThreadMs() - start);
  }
  return best;
}

double Smooth(double edge0, double edge1, double x) {
  const double t = std::clamp((x - edge0) / (edge1 - edge0), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

// Light and shade of a landscape with grain: a graded sky, a sun, hills with
// soft ridges, ripples, and a little noise.
Pixels Photograph(int w, int h) {
  Pixels p;
  p.Allocate(w, h);
  std::mt19937 rng(1);
  for (int y = 0; y < h; ++y) {
    uint8_t* row = p.Row(y);
    const double v = static_cast<double>(y) / h;
    for (int x = 0; x < w; ++x) {
      const double u = static_cast<double>(x) / w;
      double r = 40 + 150 * v, g = 90 + 120 * v, b = 200 + 40 * v;
      const double sun = std::exp(-((u - 0.72) * (u - 0.72) + (v - 0.22) * (v - 0.22)) * 90);
      r += 200 * sun, g += 170 * sun, b += 60 * sun;
      const double ridge = 0.6 + 0.08 * std::sin(u * 4.0 + 1.0) + 0.015 * std::sin(u * 47.0);
      const double hill = Smooth(ridge - 0.006, ridge + 0.006, v);
      const double shade = 0.75 + 0.25 * std::sin(u * 13.0 + v * 8.0);
      r = r * (1 - hill) + (60 + 50 * shade) * hill;
      g = g * (1 - hill) + (110 + 70 * shade) * hill;
      b = b * (1 - hill) + (40 + 20 * shade) * hill;
      const double lake = Smooth(0.84, 0.845, v);
      const double ripple = 0.5 + 0.5 * std::sin(v * 260.0 + 3.0 * std::sin(u * 20.0));
      r = r * (1 - lake) + (60 + 40 * ripple) * lake;
      g = g * (1 - lake) + (110 + 40 * ripple) * lake;
      b = b * (1 - lake) + (170 + 40 * ripple) * lake;
      auto noise = [&] { return static_cast<double>(static_cast<int>(rng() % 7) - 3); };
      row[x * 4 + 2] = static_cast<uint8_t>(std::clamp(r + noise(), 0.0, 255.0));
      row[x * 4 + 1] = static_cast<uint8_t>(std::clamp(g + noise(), 0.0, 255.0));
      row[x * 4 + 0] = static_cast<uint8_t>(std::clamp(b + noise(), 0.0, 255.0));
      row[x * 4 + 3] = 255;
    }
  }
  p.alpha = Alpha_None;
  return p;
}

struct Peer {
  const char* name;
  bool optimize;
  J_DCT_METHOD dct;
};

size_t LibjpegEncode(const Pixels& p, int quality, const Peer& how, std::vector<JSAMPROW>& rows) {
  jpeg_compress_struct info{};
  jpeg_error_mgr error{};
  info.err = jpeg_std_error(&error);
  jpeg_create_compress(&info);
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &buffer, &size);
  info.image_width = static_cast<JDIMENSION>(p.width);
  info.image_height = static_cast<JDIMENSION>(p.height);
  info.input_components = 4;
  info.in_color_space = JCS_EXT_BGRX;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, quality, TRUE);
  info.optimize_coding = how.optimize ? TRUE : FALSE;
  info.dct_method = how.dct;
  jpeg_start_compress(&info, TRUE);
  jpeg_write_scanlines(&info, rows.data(), static_cast<JDIMENSION>(rows.size()));
  jpeg_finish_compress(&info);
  std::free(buffer);
  jpeg_destroy_compress(&info);
  return size;
}

struct Worst {
  double ratio = 0;
  std::string what;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--quick") == 0) g_rounds = 2;
  struct Case {
    int width, height, quality;
  };
  const Peer peers[] = {{"turbo default", false, JDCT_ISLOW},
                        {"turbo fitted", true, JDCT_ISLOW},
                        {"turbo fitted+float", true, JDCT_FLOAT}};
  std::printf("%-22s %10s %10s  %-20s %10s %10s  %s\n", "picture", "ours ms", "bytes", "peer",
              "peer ms", "bytes", "ratio ours/peer");
  Worst worst[3];
  for (const Case c : {Case{640, 480, 75}, Case{1920, 1080, 75}, Case{1920, 1080, 90}}) {
    const Pixels photo = Photograph(c.width, c.height);
    // The surface's rows, top row first, as libjpeg-turbo wants them.
    std::vector<JSAMPROW> rows(static_cast<size_t>(c.height));
    for (int y = 0; y < c.height; ++y) {
      rows[static_cast<size_t>(y)] = const_cast<uint8_t*>(photo.Row(y));
    }
    cJPGWriter writer;
    std::vector<uint8_t> out;
    const double ours = BestMs([&] {
      writer.Save(photo, out, c.quality);
      benchmark::DoNotOptimize(out.data());
    });
    const double megapixels = static_cast<double>(c.width) * c.height / 1e6;
    char picture[64];
    std::snprintf(picture, sizeof picture, "%dx%d q%d", c.width, c.height, c.quality);
    for (size_t i = 0; i < 3; ++i) {
      size_t size = 0;
      const double peer = BestMs([&] { size = LibjpegEncode(photo, c.quality, peers[i], rows); });
      const double ratio = ours / peer;
      std::printf("%-22s %10.2f %10zu  %-20s %10.2f %10zu  %5.2f  (%.0f Mpx/s ours)\n", picture,
                  ours, out.size(), peers[i].name, peer, size, ratio, megapixels / ours * 1e3);
      if (ratio > worst[i].ratio) worst[i] = {ratio, picture};
    }
  }
  std::printf("\nworst ratio per peer (bound 3, aim 2):\n");
  for (size_t i = 0; i < 3; ++i) {
    std::printf("  %-20s %5.2f at %s  %s\n", peers[i].name, worst[i].ratio, worst[i].what.c_str(),
                worst[i].ratio <= 2.0   ? "ok"
                : worst[i].ratio <= 3.0 ? "within bound"
                                        : "TOO SLOW");
  }
  return 0;
}
