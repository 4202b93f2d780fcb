#pragma once
// One font file at one pixel size, with the glyphs it has rendered. Text is
// drawn many times with few faces and sizes, so each glyph is rendered once
// and its coverage and advance kept for the life of the process. The hinting
// and rendering settings are fixed here (native TrueType hinting through the
// v40 interpreter, plain or 17-level grey coverage, no kerning as GDI's TextOut
// has none),
// so the same text gives the same pixels on every run.
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace vantor::platform {

struct Glyph {
  int advance = 0;       // pixels to the next pen position when measuring
  int draw_advance = 0;  // and when drawing: plain glyphs keep their own fit
  int left = 0;          // from the pen position to the first column
  int top = 0;           // from the baseline up to the first row
  int width = 0;
  int height = 0;
  std::vector<uint8_t> coverage;  // width * height bytes, rows top down
};

// Vertical metrics in pixels, as the platform derives them from a TrueType
// face: ascent and descent from the OS/2 table's Windows metrics.
struct FaceMetrics {
  int em = 0;  // pixels per em
  int ascent = 0;
  int descent = 0;
  int internal_leading = 0;
  int external_leading = 0;
  int average_width = 0;
  int max_width = 0;
  // First rows of the underline and strike-out strokes, from the baseline row
  // (the first row below the glyphs' bodies); negative is above it.
  int underline_offset = 1;
  int underline_size = 1;
  int strike_offset = -3;
  int strike_size = 1;
  bool fixed_pitch = false;
};

class GlyphCache {
 public:
  // Plain or grey glyph edges: as the font's gasp table asks for the size
  // (DEFAULT_QUALITY), or forced by the LOGFONT's quality.
  enum class Smoothing { kByFont, kMono, kGrey };

  // The face of `file` (face `index`) sized by a LOGFONT height: negative is
  // the em height in pixels, positive the cell height (ascent + descent).
  // nullptr when the file cannot be read.
  static std::shared_ptr<GlyphCache> For(const std::string& file, int index, int logical_height,
                                         Smoothing smoothing = Smoothing::kByFont);

  struct Native;  // the FreeType face, kept out of this header
  GlyphCache(std::unique_ptr<Native> native, int logical_height, Smoothing smoothing);
  ~GlyphCache();
  GlyphCache(const GlyphCache&) = delete;
  GlyphCache& operator=(const GlyphCache&) = delete;

  const FaceMetrics& Metrics() const { return metrics_; }
  // The glyph of a code point; the face's missing-glyph box when it has none.
  const Glyph& Get(char32_t code_point);
  int Advance(char32_t code_point) { return Get(code_point).advance; }
  bool Has(char32_t code_point) const;
  bool Grey() const { return grey_; }

  // Loads and renders the glyph through FreeType without keeping it: what
  // the cache saves, for the benchmark.
  int RenderUncached(char32_t code_point);

 private:
  void Render(char32_t code_point, Glyph& out);

  std::unique_ptr<Native> native_;
  bool grey_ = false;
  FaceMetrics metrics_;
  std::vector<Glyph> latin_;  // code points below 256, filled on first use
  std::vector<bool> latin_ready_;
  std::unordered_map<char32_t, Glyph> others_;
};

}  // namespace vantor::platform
