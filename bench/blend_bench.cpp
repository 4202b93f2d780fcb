// Speed of the surface's own blend beside pixman's OVER compositing of the
// same pre-multiplied pixels, in the same process, on 1920 x 1080. The ratio
// is our time over pixman's; megapixels per second are ours. "Render" rows go
// through c32bppDIB::Render with the system's AlphaBlend switched off, so
// they include reading the destination back from its DC and writing it again;
// the "host surface" rows blend straight into another surface's memory.
#include <pixman.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <vector>

#include <benchmark/benchmark.h>

#include "imaging/HandBlend.h"
#include "imaging/c32bppDIB.h"
#include "platform/Gdi.h"

using namespace vantor::imaging;

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

double g_worst = 1e30;  // the slowest of our rows, in megapixels a second

void Row(const char* what, const std::function<void()>& ours, const char* peerName,
         const std::function<void()>& peer) {
  const double a = MillisPerCall(ours);
  const double b = MillisPerCall(peer);
  const double megapixels = kWidth * double{kHeight} / 1e6;
  const double rate = megapixels / (a / 1000.0);
  g_worst = std::min(g_worst, rate);
  std::printf("%-34s %8.3f ms %7.0f MP/s   %-26s %8.3f ms   ratio %5.2f\n", what, a, rate, peerName,
              b, a / b);
}

// Pre-multiplied pixels with every kind of alpha: a third transparent, a
// third opaque, a third in between, in runs as pictures have them.
uint32_t SourcePixel(size_t i) {
  const size_t run = (i / 37) % 3;
  const uint32_t a = run == 0 ? 0 : run == 1 ? 255 : static_cast<uint32_t>((i * 7) & 0xFF);
  const uint32_t c = static_cast<uint32_t>((i * 13) & 0xFF) * a / 255;
  return (a << 24) | (c << 16) | ((a - c / 2) << 8) | (c / 3);
}

uint32_t DestinationPixel(size_t i) {
  return 0xFF000000u | static_cast<uint32_t>((i * 2654435761u) & 0xFFFFFF);
}

// A top-down DIB section in a memory DC.
struct Canvas {
  HDC dc = nullptr;
  HBITMAP bitmap = nullptr;
  HGDIOBJ previous = nullptr;
  uint32_t* bits = nullptr;
  Canvas() {
    BITMAPINFO info{};
    info.bmiHeader =
        BITMAPINFOHEADER{sizeof(BITMAPINFOHEADER), kWidth, -kHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    dc = CreateCompatibleDC(nullptr);
    void* p = nullptr;
    bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &p, nullptr, 0);
    bits = static_cast<uint32_t*>(p);
    previous = SelectObject(dc, bitmap);
  }
  ~Canvas() {
    SelectObject(dc, previous);
    DeleteDC(dc);
    DeleteObject(bitmap);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--quick") == 0) g_rounds = 2;
  const size_t n = static_cast<size_t>(kWidth) * kHeight;

  c32bppDIB picture;
  if (!picture.InitializeDIB(kWidth, kHeight)) return 1;
  auto* sp = reinterpret_cast<uint32_t*>(picture.get_BitsPointer());
  for (size_t i = 0; i < n; ++i) sp[i] = SourcePixel(i);
  picture.put_Alpha(Alpha_Complex);
  picture.put_isAlphaBlendFriendly(false);  // our own blend

  Canvas canvas;
  c32bppDIB host;
  if (!host.InitializeDIB(kWidth, kHeight)) return 1;
  auto* hp = reinterpret_cast<uint32_t*>(host.get_BitsPointer());

  // pixman's images over memory of the same layout (a8r8g8b8 is BGRA in
  // memory on this machine): the same source, a destination of its own.
  std::vector<uint32_t> peerSource(sp, sp + n), peerDestination(n);
  pixman_image_t* src =
      pixman_image_create_bits(PIXMAN_a8r8g8b8, kWidth, kHeight, peerSource.data(), kWidth * 4);
  pixman_image_t* dst = pixman_image_create_bits(PIXMAN_a8r8g8b8, kWidth, kHeight,
                                                 peerDestination.data(), kWidth * 4);
  const pixman_color_t half{0, 0, 0, 0x7F7F};
  pixman_image_t* mask = pixman_image_create_solid_fill(&half);

  // Both sides start from the same destination.
  auto fill = [&] {
    for (size_t i = 0; i < n; ++i) {
      const uint32_t d = DestinationPixel(i);
      canvas.bits[i] = d;
      hp[i] = d;
      peerDestination[i] = d;
    }
  };
  fill();
  auto pixmanOver = [&] {
    pixman_image_composite32(PIXMAN_OP_OVER, src, nullptr, dst, 0, 0, 0, 0, 0, 0, kWidth, kHeight);
  };
  auto pixmanOverHalf = [&] {
    pixman_image_composite32(PIXMAN_OP_OVER, src, mask, dst, 0, 0, 0, 0, 0, 0, kWidth, kHeight);
  };

  std::printf("%-34s %11s %12s   %-26s %11s\n", "operation (1920x1080)", "ours", "", "pixman", "");
  Row(
      "BlendRow kernel, opacity 100",
      [&] {
        for (int y = 0; y < kHeight; ++y) {
          const size_t at = static_cast<size_t>(y) * kWidth;
          BlendRow(reinterpret_cast<uint8_t*>(hp + at), reinterpret_cast<const uint8_t*>(sp + at),
                   kWidth, 255);
        }
      },
      "composite32 OVER", pixmanOver);
  Row(
      "BlendRow kernel, opacity 50",
      [&] {
        for (int y = 0; y < kHeight; ++y) {
          const size_t at = static_cast<size_t>(y) * kWidth;
          BlendRow(reinterpret_cast<uint8_t*>(hp + at), reinterpret_cast<const uint8_t*>(sp + at),
                   kWidth, 127);
        }
      },
      "composite32 OVER, mask 50%", pixmanOverHalf);
  Row(
      "Render into a host surface",
      [&] {
        benchmark::DoNotOptimize(
            picture.Render(nullptr, 0, 0, 0, 0, 0, 0, 0, 0, 100, true, true, &host));
      },
      "composite32 OVER", pixmanOver);
  Row(
      "Render into a DC, opacity 100",
      [&] { benchmark::DoNotOptimize(picture.Render(canvas.dc, 0, 0)); }, "composite32 OVER",
      pixmanOver);
  Row(
      "Render into a DC, opacity 50",
      [&] { benchmark::DoNotOptimize(picture.Render(canvas.dc, 0, 0, 0, 0, 0, 0, 0, 0, 50)); },
      "composite32 OVER, mask 50%", pixmanOverHalf);
  std::printf("slowest of ours: %.0f megapixels a second (wanted: 300 or more)\n", g_worst);

  // A DC with a clip region of its user's is read back with BitBlt into a
  // scratch surface and written again, as a window's DC is: two more copies
  // of the whole area, shown for what they cost.
  HRGN clip = CreateRectRgn(0, 0, kWidth, kHeight);
  SelectClipRgn(canvas.dc, clip);
  DeleteObject(clip);
  const double read =
      MillisPerCall([&] { benchmark::DoNotOptimize(picture.Render(canvas.dc, 0, 0)); });
  std::printf("%-34s %8.3f ms %7.0f MP/s   (read back and written with BitBlt)\n",
              "Render into a clipped DC", read, kWidth * double{kHeight} / 1e3 / read);
  SelectClipRgn(canvas.dc, nullptr);

  pixman_image_unref(mask);
  pixman_image_unref(src);
  pixman_image_unref(dst);
  return 0;
}
