// libjpeg-turbo reads what the JPEG writer makes: the sizes, the colours
// within what the quality allows, transparency laid over the fill colour,
// edges that do not fill a data unit. On a photograph-like picture the writer
// must keep 30 dB of PSNR at quality 75 and stay within 10 percent of the size
// of libjpeg-turbo's own file with fitted Huffman tables.
#include <gtest/gtest.h>

// jpeglib.h uses FILE and size_t without declaring them.
#include <cstdio>

#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "imaging/Pixels.h"
#include "imaging/c32bppDIB.h"
#include "imaging/cJPGWriter.h"
#include "platform/User.h"

namespace vantor::imaging {
namespace {

// --- libjpeg-turbo, both ways ------------------------------------------------------

struct ErrorJump {
  jpeg_error_mgr manager;
  std::jmp_buf jump;
  int warnings = 0;
};

void OnError(j_common_ptr c) {
  std::longjmp(reinterpret_cast<ErrorJump*>(c->err)->jump, 1);
}

// Warnings are how libjpeg reports data it had to guess at.
void OnMessage(j_common_ptr c, int level) {
  if (level < 0) ++reinterpret_cast<ErrorJump*>(c->err)->warnings;
}

struct Decoded {
  int width = 0, height = 0, components = 0, warnings = 0;
  std::vector<uint8_t> rgb;  // top-down
};

// Nothing that needs destroying is made between setjmp and the end, so the
// jump out of libjpeg leaves only `out` to look at.
bool Decode(const std::vector<uint8_t>& file, Decoded* out) {
  jpeg_decompress_struct info{};
  ErrorJump error{};
  info.err = jpeg_std_error(&error.manager);
  error.manager.error_exit = OnError;
  error.manager.emit_message = OnMessage;
  jpeg_create_decompress(&info);
  if (setjmp(error.jump) != 0) {
    jpeg_destroy_decompress(&info);
    return false;
  }
  jpeg_mem_src(&info, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&info, TRUE);
  out->components = info.num_components;
  info.out_color_space = JCS_RGB;
  jpeg_start_decompress(&info);
  out->width = static_cast<int>(info.output_width);
  out->height = static_cast<int>(info.output_height);
  out->rgb.resize(static_cast<size_t>(out->width) * static_cast<size_t>(out->height) * 3);
  while (info.output_scanline < info.output_height) {
    JSAMPROW row = out->rgb.data() +
                   static_cast<size_t>(info.output_scanline) * static_cast<size_t>(out->width) * 3;
    jpeg_read_scanlines(&info, &row, 1);
  }
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
  out->warnings = error.warnings;
  return true;
}

Decoded MustDecode(const std::vector<uint8_t>& file) {
  Decoded d;
  EXPECT_TRUE(Decode(file, &d));
  EXPECT_EQ(d.warnings, 0);
  return d;
}

// libjpeg-turbo's file at its defaults (its integer DCT; 4:2:0 unless
// `sampling` and `vertical` give the luminance's factors) and a quality.
std::vector<uint8_t> LibjpegEncode(const std::vector<uint8_t>& rgb, int w, int h, int quality,
                                   bool optimize, int sampling = 2, int vertical = 0) {
  jpeg_compress_struct info{};
  jpeg_error_mgr error{};
  info.err = jpeg_std_error(&error);
  jpeg_create_compress(&info);
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &buffer, &size);
  info.image_width = static_cast<JDIMENSION>(w);
  info.image_height = static_cast<JDIMENSION>(h);
  info.input_components = 3;
  info.in_color_space = JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, quality, TRUE);
  info.optimize_coding = optimize ? TRUE : FALSE;
  info.comp_info[0].h_samp_factor = sampling;
  info.comp_info[0].v_samp_factor = vertical != 0 ? vertical : sampling;
  jpeg_start_compress(&info, TRUE);
  while (info.next_scanline < info.image_height) {
    JSAMPROW row = const_cast<uint8_t*>(rgb.data()) +
                   static_cast<size_t>(info.next_scanline) * static_cast<size_t>(w) * 3;
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  std::vector<uint8_t> out(buffer, buffer + size);
  std::free(buffer);
  jpeg_destroy_compress(&info);
  return out;
}

// --- Pictures ----------------------------------------------------------------------

double Smooth(double edge0, double edge1, double x) {
  const double t = std::clamp((x - edge0) / (edge1 - edge0), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

// Something like a photograph of a landscape: a sky graded from deep blue to
// haze, a soft sun, two ranges of hills with blurred ridges, a lake's
// reflections, a few out-of-focus blobs of colour, a vignette, and a little
// sensor noise.
Pixels Photograph(int w, int h, uint32_t seed = 1) {
  Pixels p;
  EXPECT_TRUE(p.Allocate(w, h));
  std::mt19937 rng(seed);
  for (int y = 0; y < h; ++y) {
    uint8_t* row = p.Row(y);
    const double v = static_cast<double>(y) / h;
    for (int x = 0; x < w; ++x) {
      const double u = static_cast<double>(x) / w;
      // Sky.
      double r = 40 + 150 * v, g = 90 + 120 * v, b = 200 + 40 * v;
      // Sun with its glow.
      const double sun = std::exp(-((u - 0.72) * (u - 0.72) + (v - 0.22) * (v - 0.22)) * 90);
      r += 200 * sun, g += 170 * sun, b += 60 * sun;
      // Far hills, bluish; near hills, green with light and shade.
      const double far = 0.48 + 0.06 * std::sin(u * 9.0) + 0.02 * std::sin(u * 31.0);
      const double farMix = Smooth(far - 0.01, far + 0.01, v);
      r = r * (1 - farMix) + (70 + 20 * std::sin(u * 5)) * farMix;
      g = g * (1 - farMix) + (100 + 15 * std::cos(u * 7)) * farMix;
      b = b * (1 - farMix) + (130 + 10 * std::sin(u * 3)) * farMix;
      const double near = 0.62 + 0.08 * std::sin(u * 4.0 + 1.0) + 0.015 * std::sin(u * 47.0);
      const double nearMix = Smooth(near - 0.006, near + 0.006, v);
      const double shade = 0.75 + 0.25 * std::sin(u * 13.0 + v * 8.0);
      r = r * (1 - nearMix) + (60 + 50 * shade) * nearMix;
      g = g * (1 - nearMix) + (110 + 70 * shade) * nearMix;
      b = b * (1 - nearMix) + (40 + 20 * shade) * nearMix;
      // A lake below, mirroring the sky with ripples.
      const double lake = Smooth(0.84, 0.845, v);
      const double ripple = 0.5 + 0.5 * std::sin(v * 260.0 + 3.0 * std::sin(u * 20.0));
      r = r * (1 - lake) + (60 + 40 * ripple) * lake;
      g = g * (1 - lake) + (110 + 40 * ripple) * lake;
      b = b * (1 - lake) + (170 + 40 * ripple) * lake;
      // Blobs of colour out of focus.
      const double blob1 = std::exp(-((u - 0.2) * (u - 0.2) + (v - 0.7) * (v - 0.7)) * 400);
      const double blob2 = std::exp(-((u - 0.45) * (u - 0.45) + (v - 0.78) * (v - 0.78)) * 700);
      r += 150 * blob1 + 30 * blob2, g += 40 * blob1 + 20 * blob2, b += 20 * blob1 + 160 * blob2;
      // Vignette.
      const double d = (u - 0.5) * (u - 0.5) + (v - 0.5) * (v - 0.5);
      const double vignette = 1.0 - 0.6 * d;
      auto noise = [&] { return static_cast<double>(static_cast<int>(rng() % 7) - 3); };
      row[x * 4 + 2] = static_cast<uint8_t>(std::clamp(r * vignette + noise(), 0.0, 255.0));
      row[x * 4 + 1] = static_cast<uint8_t>(std::clamp(g * vignette + noise(), 0.0, 255.0));
      row[x * 4 + 0] = static_cast<uint8_t>(std::clamp(b * vignette + noise(), 0.0, 255.0));
      row[x * 4 + 3] = 255;
    }
  }
  p.alpha = Alpha_None;
  return p;
}

Pixels Solid(int w, int h, uint8_t r, uint8_t g, uint8_t b, uint8_t a = 255) {
  Pixels p;
  EXPECT_TRUE(p.Allocate(w, h));
  for (size_t i = 0; i < p.bytes.size(); i += 4) {
    p.bytes[i] = b;
    p.bytes[i + 1] = g;
    p.bytes[i + 2] = r;
    p.bytes[i + 3] = a;
  }
  p.alpha = a == 255 ? Alpha_None : Alpha_Complex;
  return p;
}

// The picture's colours top-down as libjpeg takes them (opaque pictures only).
std::vector<uint8_t> Rgb(const Pixels& p) {
  std::vector<uint8_t> out;
  out.reserve(static_cast<size_t>(p.width) * static_cast<size_t>(p.height) * 3);
  for (int y = 0; y < p.height; ++y) {
    const uint8_t* row = p.Row(y);
    for (int x = 0; x < p.width; ++x) {
      out.push_back(row[x * 4 + 2]);
      out.push_back(row[x * 4 + 1]);
      out.push_back(row[x * 4 + 0]);
    }
  }
  return out;
}

double Psnr(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  EXPECT_EQ(a.size(), b.size());
  double sum = 0;
  for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    const double d = static_cast<double>(a[i]) - static_cast<double>(b[i]);
    sum += d * d;
  }
  const double mse = sum / static_cast<double>(a.size());
  return mse == 0 ? 99.0 : 10.0 * std::log10(255.0 * 255.0 / mse);
}

int MaxError(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  int worst = 0;
  for (size_t i = 0; i < std::min(a.size(), b.size()); ++i)
    worst = std::max(worst, std::abs(int{a[i]} - int{b[i]}));
  return worst;
}

std::vector<uint8_t> Ours(const Pixels& p, int quality, OLE_COLOR fill = 0xFFFFFF,
                          int sampling = 2) {
  cJPGWriter w;
  EXPECT_TRUE(w.SetLuminanceSampling(sampling, sampling));
  std::vector<uint8_t> out;
  EXPECT_TRUE(w.Save(p, out, quality, fill));
  return out;
}

// --- The checks --------------------------------------------------------------------

TEST(JpegOracle, PhotographAtQuality75) {
  const Pixels photo = Photograph(640, 480);
  const std::vector<uint8_t> rgb = Rgb(photo);
  const std::vector<uint8_t> ours = Ours(photo, 75);
  const Decoded d = MustDecode(ours);
  ASSERT_EQ(d.width, 640);
  ASSERT_EQ(d.height, 480);
  EXPECT_EQ(d.components, 3);
  const double psnr = Psnr(rgb, d.rgb);

  const std::vector<uint8_t> theirs = LibjpegEncode(rgb, 640, 480, 75, true);
  const Decoded t = MustDecode(theirs);
  const double theirPsnr = Psnr(rgb, t.rgb);
  const double sizeRatio = static_cast<double>(ours.size()) / static_cast<double>(theirs.size());
  std::printf(
      "quality 75, 640 x 480: ours %zu bytes, %.2f dB; libjpeg-turbo (fitted tables) "
      "%zu bytes, %.2f dB; size ratio %.3f\n",
      ours.size(), psnr, theirs.size(), theirPsnr, sizeRatio);
  RecordProperty("psnr", std::to_string(psnr));
  RecordProperty("size_ratio", std::to_string(sizeRatio));
  EXPECT_GE(psnr, 30.0);
  EXPECT_LE(sizeRatio, 1.10);
  // The same quantisation: the floating-point DCT loses nothing to the
  // integer one.
  EXPECT_GE(psnr, theirPsnr - 0.3);
}

TEST(JpegOracle, GrainyPhotographAtQuality75) {
  // The same scene with heavy grain: most of the file is then the fine
  // detail that the fitted AC tables code.
  Pixels photo = Photograph(640, 480, 5);
  std::mt19937 rng(11);
  for (size_t i = 0; i < photo.bytes.size(); i += 4) {
    for (size_t c = 0; c < 3; ++c) {
      const int v = photo.bytes[i + c] + static_cast<int>(rng() % 25) - 12;
      photo.bytes[i + c] = static_cast<uint8_t>(std::clamp(v, 0, 255));
    }
  }
  const std::vector<uint8_t> rgb = Rgb(photo);
  const std::vector<uint8_t> ours = Ours(photo, 75);
  const std::vector<uint8_t> theirs = LibjpegEncode(rgb, 640, 480, 75, true);
  const double psnr = Psnr(rgb, MustDecode(ours).rgb);
  const double theirPsnr = Psnr(rgb, MustDecode(theirs).rgb);
  const double sizeRatio = static_cast<double>(ours.size()) / static_cast<double>(theirs.size());
  std::printf(
      "grainy, quality 75: ours %zu bytes, %.2f dB; libjpeg-turbo %zu bytes, %.2f dB; "
      "size ratio %.3f\n",
      ours.size(), psnr, theirs.size(), theirPsnr, sizeRatio);
  EXPECT_LE(sizeRatio, 1.10);
  EXPECT_GE(psnr, theirPsnr - 0.3);
}

TEST(JpegOracle, QualityTradesSizeForFidelity) {
  const Pixels photo = Photograph(320, 240, 2);
  const std::vector<uint8_t> rgb = Rgb(photo);
  double lastPsnr = 0;
  size_t lastSize = 0;
  for (int quality : {1, 10, 25, 50, 75, 90, 100}) {
    const std::vector<uint8_t> file = Ours(photo, quality);
    const Decoded d = MustDecode(file);
    ASSERT_EQ(d.width, 320);
    ASSERT_EQ(d.height, 240);
    const double psnr = Psnr(rgb, d.rgb);
    EXPECT_GT(psnr, lastPsnr) << "quality " << quality;
    EXPECT_GT(file.size(), lastSize) << "quality " << quality;
    // Within a few percent of libjpeg-turbo's fitted file at every quality.
    const std::vector<uint8_t> theirs = LibjpegEncode(rgb, 320, 240, quality, true);
    EXPECT_LE(static_cast<double>(file.size()), 1.10 * static_cast<double>(theirs.size()))
        << "quality " << quality;
    lastPsnr = psnr;
    lastSize = file.size();
  }
  // Without subsampling, at quality 100, little is lost but the rounding.
  const Decoded full = MustDecode(Ours(photo, 100, 0xFFFFFF, 1));
  EXPECT_GE(Psnr(rgb, full.rgb), 45.0);
}

TEST(JpegOracle, SizesThatDoNotFillADataUnit) {
  struct Size {
    int w, h;
  };
  for (const Size s :
       {Size{1, 1}, Size{2, 1}, Size{1, 2}, Size{7, 3}, Size{8, 8}, Size{9, 9}, Size{13, 7},
        Size{16, 16}, Size{17, 9}, Size{33, 17}, Size{100, 1}, Size{1, 100}, Size{250, 130}}) {
    for (int sampling : {1, 2}) {
      // A whole landscape in a few pixels is all edges: what halving the
      // chrominance costs there, libjpeg-turbo's file loses too.
      const Pixels photo = Photograph(s.w, s.h, 3);
      const std::vector<uint8_t> rgb = Rgb(photo);
      const Decoded d = MustDecode(Ours(photo, 90, 0xFFFFFF, sampling));
      ASSERT_EQ(d.width, s.w);
      ASSERT_EQ(d.height, s.h);
      const Decoded t = MustDecode(LibjpegEncode(rgb, s.w, s.h, 90, true, sampling));
      const double ours = Psnr(rgb, d.rgb), theirs = Psnr(rgb, t.rgb);
      EXPECT_GE(ours, theirs - 0.5) << s.w << " x " << s.h << " sampling " << sampling;
      if (sampling == 1) {
        EXPECT_GE(ours, 30.0) << s.w << " x " << s.h;
      }
    }
  }
}

TEST(JpegOracle, EverySampling) {
  const Pixels photo = Photograph(37, 23, 6);
  const std::vector<uint8_t> rgb = Rgb(photo);
  for (int h : {1, 2}) {
    for (int v : {1, 2}) {
      cJPGWriter w;
      ASSERT_TRUE(w.SetLuminanceSampling(h, v));
      std::vector<uint8_t> file;
      ASSERT_TRUE(w.Save(photo, file, 80));
      const Decoded d = MustDecode(file);
      ASSERT_EQ(d.width, 37);
      ASSERT_EQ(d.height, 23);
      const Decoded t = MustDecode(LibjpegEncode(rgb, 37, 23, 80, true, h, v));
      EXPECT_GE(Psnr(rgb, d.rgb), Psnr(rgb, t.rgb) - 0.5) << h << " x " << v;
    }
  }
}

TEST(JpegOracle, OnePixel) {
  const Pixels p = Solid(1, 1, 200, 30, 90);
  const Decoded d = MustDecode(Ours(p, 75));
  ASSERT_EQ(d.rgb.size(), 3u);
  EXPECT_LE(MaxError(d.rgb, {200, 30, 90}), 4);
}

TEST(JpegOracle, EdgesRepeatTheLastColumnAndRow) {
  // Black with a white last column: the padded part of the second unit is
  // white too, so that unit is flat and the column comes back exactly; a
  // neutral fill would have smeared it.
  for (int quality : {50, 75}) {
    Pixels p = Solid(9, 1, 0, 0, 0);
    std::fill_n(p.Row(0) + 8 * 4, 3, uint8_t{255});
    const Decoded d = MustDecode(Ours(p, quality));
    ASSERT_EQ(d.rgb.size(), 27u);
    for (size_t c = 0; c < 3; ++c) EXPECT_EQ(d.rgb[8 * 3 + c], 255);
    for (size_t i = 0; i < 24; ++i) EXPECT_EQ(d.rgb[i], 0) << i;

    Pixels column = Solid(1, 9, 0, 0, 0);
    std::fill_n(column.Row(8), 3, uint8_t{255});
    const Decoded dc = MustDecode(Ours(column, quality));
    ASSERT_EQ(dc.rgb.size(), 27u);
    for (size_t c = 0; c < 3; ++c) EXPECT_EQ(dc.rgb[8 * 3 + c], 255);
    for (size_t i = 0; i < 24; ++i) EXPECT_EQ(dc.rgb[i], 0) << i;
  }
}

TEST(JpegOracle, FlatColoursComeBack) {
  struct Colour {
    uint8_t r, g, b;
  };
  for (const Colour c :
       {Colour{0, 0, 0}, Colour{255, 255, 255}, Colour{255, 0, 0}, Colour{0, 255, 0},
        Colour{0, 0, 255}, Colour{255, 255, 0}, Colour{12, 200, 180}, Colour{128, 128, 128}}) {
    const Decoded d = MustDecode(Ours(Solid(24, 24, c.r, c.g, c.b), 90));
    const std::vector<uint8_t> want = Rgb(Solid(24, 24, c.r, c.g, c.b));
    EXPECT_LE(MaxError(d.rgb, want), 3) << int{c.r} << "," << int{c.g} << "," << int{c.b};
  }
}

TEST(JpegOracle, TransparencyLiesOverTheFillColour) {
  struct Case {
    uint8_t r, g, b, a;  // pre-multiplied
    OLE_COLOR fill;
    uint8_t wantR, wantG, wantB;
  };
  for (const Case c : {
           Case{0, 0, 0, 0, 0x0000FF, 255, 0, 0},            // clear over red
           Case{0, 0, 0, 0, 0xFFFFFF, 255, 255, 255},        // clear over white
           Case{0, 0, 0, 128, 0xFFFFFF, 127, 127, 127},      // half black over white
           Case{128, 0, 0, 128, 0xFF0000, 128, 0, 127},      // half red over blue
           Case{200, 100, 50, 255, 0x00FF00, 200, 100, 50},  // opaque: the fill is hidden
       }) {
    const Decoded d = MustDecode(Ours(Solid(16, 16, c.r, c.g, c.b, c.a), 95, c.fill));
    const std::vector<uint8_t> want = Rgb(Solid(16, 16, c.wantR, c.wantG, c.wantB));
    EXPECT_LE(MaxError(d.rgb, want), 3) << "fill " << std::hex << c.fill;
  }
  // A system colour is looked up first.
  COLORREF window = 0;
  ASSERT_EQ(OleTranslateColor(0x80000005, nullptr, &window), S_OK);
  const Decoded d = MustDecode(Ours(Solid(8, 8, 0, 0, 0, 0), 95, 0x80000005));
  const std::vector<uint8_t> want =
      Rgb(Solid(8, 8, static_cast<uint8_t>(window), static_cast<uint8_t>(window >> 8),
                static_cast<uint8_t>(window >> 16)));
  EXPECT_LE(MaxError(d.rgb, want), 3);
}

TEST(JpegOracle, NoiseAtEveryQuality) {
  // Noise makes the largest coefficients and the longest codes.
  Pixels p;
  ASSERT_TRUE(p.Allocate(67, 45));
  std::mt19937 rng(9);
  for (size_t i = 0; i < p.bytes.size(); i += 4) {
    for (size_t c = 0; c < 3; ++c) p.bytes[i + c] = (rng() & 1) != 0 ? 255 : 0;
    p.bytes[i + 3] = 255;
  }
  for (int quality : {1, 50, 100}) {
    for (int sampling : {1, 2}) {
      const Decoded d = MustDecode(Ours(p, quality, 0xFFFFFF, sampling));
      EXPECT_EQ(d.width, 67);
      EXPECT_EQ(d.height, 45);
    }
  }
  const Decoded best = MustDecode(Ours(p, 100, 0xFFFFFF, 1));
  EXPECT_GE(Psnr(Rgb(p), best.rgb), 30.0);
}

// --- Through the surface -----------------------------------------------------------

TEST(JpegOracle, SurfaceSavesThroughTheWriter) {
  c32bppDIB s;
  Pixels photo = Photograph(96, 64, 4);
  const std::vector<uint8_t> rgb = Rgb(photo);
  ASSERT_TRUE(s.AdoptPixels(std::move(photo)));
  std::vector<uint8_t> stream;
  ASSERT_TRUE(s.SaveToStream_JPG(stream, 75));
  const Decoded d = MustDecode(stream);
  ASSERT_EQ(d.width, 96);
  ASSERT_EQ(d.height, 64);
  EXPECT_GE(Psnr(rgb, d.rgb), 30.0);

  const auto dir = std::filesystem::temp_directory_path() / "vantor_jpeg_oracle_test";
  std::filesystem::create_directories(dir);
  const auto path = dir / "photo.jpg";
  ASSERT_TRUE(s.SaveToFile_JPG(FromUtf8(path.string()), 75));
  std::ifstream in(path, std::ios::binary);
  const std::vector<uint8_t> file((std::istreambuf_iterator<char>(in)),
                                  std::istreambuf_iterator<char>());
  EXPECT_EQ(file, stream);
  EXPECT_FALSE(s.SaveToFile_JPG(FromUtf8((dir / "missing" / "x.jpg").string())));
  std::filesystem::remove_all(dir);

  // A lower quality makes a smaller file.
  std::vector<uint8_t> small;
  ASSERT_TRUE(s.SaveToStream_JPG(small, 20));
  EXPECT_LT(small.size(), stream.size());
}

TEST(JpegOracle, SurfaceFlattensOverItsFillColour) {
  c32bppDIB s;
  ASSERT_TRUE(s.InitializeDIB(20, 10));  // transparent
  std::vector<uint8_t> stream;
  ASSERT_TRUE(s.SaveToStream_JPG(stream, 90, 0x00FF00));
  const Decoded d = MustDecode(stream);
  EXPECT_LE(MaxError(d.rgb, Rgb(Solid(20, 10, 0, 255, 0))), 3);
  c32bppDIB empty;
  stream = {1};
  EXPECT_FALSE(empty.SaveToStream_JPG(stream));
  EXPECT_TRUE(stream.empty());
}

}  // namespace
}  // namespace vantor::imaging
