// Speed of the software GDI beside pixman doing the same pixels in the same
// process: FillRect against pixman_image_fill_rectangles, GradientFill against
// a pixman linear gradient, AlphaBlend against pixman's OVER, BitBlt against
// pixman's SRC, all on a 1920 x 1080 32-bit surface. The ratio is our time
// over pixman's; megapixels per second are ours.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <vector>

#include <benchmark/benchmark.h>

// The library links pixman but keeps its headers private; when they are not
// on the include path the few declarations used here stand in for them.
#if __has_include(<pixman.h>)
#include <pixman.h>
#else
extern "C" {
typedef int32_t pixman_fixed_t;
typedef int pixman_bool_t;
typedef struct pixman_image pixman_image_t;
struct pixman_color_t {
  uint16_t red, green, blue, alpha;
};
struct pixman_rectangle16_t {
  int16_t x, y;
  uint16_t width, height;
};
struct pixman_point_fixed_t {
  pixman_fixed_t x, y;
};
struct pixman_gradient_stop_t {
  pixman_fixed_t x;
  pixman_color_t color;
};
enum pixman_op_t { PIXMAN_OP_SRC = 1, PIXMAN_OP_OVER = 3 };
enum pixman_format_code_t { PIXMAN_a8r8g8b8 = (32 << 24) | (2 << 16) | 0x8888 };
pixman_image_t* pixman_image_create_bits(pixman_format_code_t format, int width, int height,
                                         uint32_t* bits, int rowstride_bytes);
pixman_image_t* pixman_image_create_solid_fill(const pixman_color_t* color);
pixman_image_t* pixman_image_create_linear_gradient(const pixman_point_fixed_t* p1,
                                                    const pixman_point_fixed_t* p2,
                                                    const pixman_gradient_stop_t* stops,
                                                    int n_stops);
pixman_bool_t pixman_image_unref(pixman_image_t* image);
pixman_bool_t pixman_image_fill_rectangles(pixman_op_t op, pixman_image_t* image,
                                           const pixman_color_t* color, int n_rects,
                                           const pixman_rectangle16_t* rects);
void pixman_image_composite32(pixman_op_t op, pixman_image_t* src, pixman_image_t* mask,
                              pixman_image_t* dest, int32_t src_x, int32_t src_y, int32_t mask_x,
                              int32_t mask_y, int32_t dest_x, int32_t dest_y, int32_t width,
                              int32_t height);
}
constexpr pixman_fixed_t pixman_int_to_fixed(int i) {
  return static_cast<pixman_fixed_t>(i) << 16;
}
#endif

#include "platform/Gdi.h"

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
int g_rounds = 40;

double MillisPerCall(const std::function<void()>& f) {
  f();  // warm caches
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < g_rounds; ++i) f();
  const auto end = std::chrono::steady_clock::now();
  return std::chrono::duration<double, std::milli>(end - start).count() / g_rounds;
}

void Row(const char* what, const std::function<void()>& ours, const char* peer_name,
         const std::function<void()>& peer) {
  const double a = MillisPerCall(ours);
  const double b = MillisPerCall(peer);
  const double megapixels = kWidth * double{kHeight} / 1e6;
  std::printf("%-30s %8.3f ms %8.0f MP/s   %-28s %8.3f ms   ratio %5.2f\n", what, a,
              megapixels / (a / 1000.0), peer_name, b, a / b);
}

// A DIB section in a memory DC and a pixman image over the same kind of
// memory, so both sides touch equal amounts of it.
struct Target {
  HDC dc = nullptr;
  HBITMAP bitmap = nullptr;
  uint32_t* bits = nullptr;
  pixman_image_t* image = nullptr;
  std::vector<uint32_t> peer_pixels;

  Target() {
    BITMAPINFO info{};
    info.bmiHeader =
        BITMAPINFOHEADER{sizeof(BITMAPINFOHEADER), kWidth, -kHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    dc = CreateCompatibleDC(nullptr);
    void* p = nullptr;
    bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &p, nullptr, 0);
    bits = static_cast<uint32_t*>(p);
    SelectObject(dc, bitmap);
    peer_pixels.assign(static_cast<size_t>(kWidth) * kHeight, 0);
    image =
        pixman_image_create_bits(PIXMAN_a8r8g8b8, kWidth, kHeight, peer_pixels.data(), kWidth * 4);
  }
  ~Target() {
    pixman_image_unref(image);
    DeleteDC(dc);
    DeleteObject(bitmap);
  }
  // Premultiplied pixels with every kind of alpha, on both sides.
  void FillTranslucent() {
    for (size_t i = 0; i < peer_pixels.size(); ++i) {
      const uint32_t a = static_cast<uint32_t>((i * 7) & 0xFF);
      const uint32_t c = a / 2;
      const uint32_t px = (a << 24) | (c << 16) | (a << 8) | (c / 2);
      peer_pixels[i] = px;
      bits[i] = px;
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--quick") == 0) g_rounds = 2;
  Target dst, src;
  src.FillTranslucent();
  const RECT all{0, 0, kWidth, kHeight};
  HBRUSH brush = CreateSolidBrush(RGB(10, 120, 200));

  std::printf("%-30s %11s %13s   %-28s %11s\n", "operation (1920x1080)", "ours", "", "pixman", "");
  Row(
      "FillRect solid", [&] { benchmark::DoNotOptimize(FillRect(dst.dc, &all, brush)); },
      "fill_rectangles SRC",
      [&] {
        const pixman_color_t color{0xC8C8, 0x7878, 0x0A0A, 0xFFFF};
        const pixman_rectangle16_t rect{0, 0, kWidth, kHeight};
        benchmark::DoNotOptimize(
            pixman_image_fill_rectangles(PIXMAN_OP_SRC, dst.image, &color, 1, &rect));
      });

  TRIVERTEX v[2] = {{0, 0, 0xFF00, 0, 0, 0}, {kWidth, kHeight, 0, 0, 0xFF00, 0}};
  GRADIENT_RECT mesh{0, 1};
  pixman_gradient_stop_t stops[2] = {{0, {0xFFFF, 0, 0, 0}},
                                     {pixman_int_to_fixed(1), {0, 0, 0xFFFF, 0}}};
  const pixman_point_fixed_t p1{0, 0}, p2{pixman_int_to_fixed(kWidth), 0};
  pixman_image_t* gradient = pixman_image_create_linear_gradient(&p1, &p2, stops, 2);
  Row(
      "GradientFill RECT_H",
      [&] { benchmark::DoNotOptimize(GradientFill(dst.dc, v, 2, &mesh, 1, GRADIENT_FILL_RECT_H)); },
      "linear gradient SRC",
      [&] {
        pixman_image_composite32(PIXMAN_OP_SRC, gradient, nullptr, dst.image, 0, 0, 0, 0, 0, 0,
                                 kWidth, kHeight);
      });
  Row(
      "GradientFill RECT_V",
      [&] { benchmark::DoNotOptimize(GradientFill(dst.dc, v, 2, &mesh, 1, GRADIENT_FILL_RECT_V)); },
      "linear gradient SRC",
      [&] {
        pixman_image_composite32(PIXMAN_OP_SRC, gradient, nullptr, dst.image, 0, 0, 0, 0, 0, 0,
                                 kWidth, kHeight);
      });
  pixman_image_unref(gradient);

  const BLENDFUNCTION per_pixel{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
  Row(
      "AlphaBlend per-pixel",
      [&] {
        benchmark::DoNotOptimize(
            AlphaBlend(dst.dc, 0, 0, kWidth, kHeight, src.dc, 0, 0, kWidth, kHeight, per_pixel));
      },
      "composite32 OVER",
      [&] {
        pixman_image_composite32(PIXMAN_OP_OVER, src.image, nullptr, dst.image, 0, 0, 0, 0, 0, 0,
                                 kWidth, kHeight);
      });
  const BLENDFUNCTION both{AC_SRC_OVER, 0, 160, AC_SRC_ALPHA};
  const pixman_color_t mask_color{0, 0, 0, 0xA0A0};
  pixman_image_t* mask = pixman_image_create_solid_fill(&mask_color);
  Row(
      "AlphaBlend per-pixel * 160",
      [&] {
        benchmark::DoNotOptimize(
            AlphaBlend(dst.dc, 0, 0, kWidth, kHeight, src.dc, 0, 0, kWidth, kHeight, both));
      },
      "composite32 OVER, solid mask",
      [&] {
        pixman_image_composite32(PIXMAN_OP_OVER, src.image, mask, dst.image, 0, 0, 0, 0, 0, 0,
                                 kWidth, kHeight);
      });
  const BLENDFUNCTION constant{AC_SRC_OVER, 0, 160, 0};
  Row(
      "AlphaBlend constant 160",
      [&] {
        benchmark::DoNotOptimize(
            AlphaBlend(dst.dc, 0, 0, kWidth, kHeight, src.dc, 0, 0, kWidth, kHeight, constant));
      },
      "composite32 OVER, solid mask",
      [&] {
        pixman_image_composite32(PIXMAN_OP_OVER, src.image, mask, dst.image, 0, 0, 0, 0, 0, 0,
                                 kWidth, kHeight);
      });
  pixman_image_unref(mask);
  Row(
      "BitBlt SRCCOPY",
      [&] {
        benchmark::DoNotOptimize(BitBlt(dst.dc, 0, 0, kWidth, kHeight, src.dc, 0, 0, SRCCOPY));
      },
      "composite32 SRC",
      [&] {
        pixman_image_composite32(PIXMAN_OP_SRC, src.image, nullptr, dst.image, 0, 0, 0, 0, 0, 0,
                                 kWidth, kHeight);
      });
  DeleteObject(brush);
  return 0;
}
