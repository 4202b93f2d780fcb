#include "platform/GlyphCache.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_DRIVER_H
#include FT_MODULE_H
#include FT_TRUETYPE_TABLES_H
#include FT_GASP_H

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>

namespace vantor::platform {

namespace {

// The library is made once and never freed: fonts held by the GDI table may
// outlive any static of ours at exit, and each face needs its library alive.
FT_Library Library() {
  static FT_Library library = [] {
    FT_Library made = nullptr;
    if (FT_Init_FreeType(&made) != 0) return static_cast<FT_Library>(nullptr);
    // FREETYPE_PROPERTIES in the environment must not change our pixels.
    FT_UInt interpreter = TT_INTERPRETER_VERSION_40;
    FT_Property_Set(made, "truetype", "interpreter-version", &interpreter);
    return made;
  }();
  return library;
}

int Scale(long units, int em, int units_per_em) {
  if (units_per_em <= 0) return 0;
  return static_cast<int>(
      std::lround(static_cast<double>(units) * em / static_cast<double>(units_per_em)));
}

// Sizes beyond this are refused by clamping: a glyph bitmap grows with the
// square of the size, and no form asks for more.
constexpr int kMaxEm = 1000;

}  // namespace

struct GlyphCache::Native {
  FT_Face face = nullptr;
  ~Native() {
    if (face != nullptr) FT_Done_Face(face);
  }
};

std::shared_ptr<GlyphCache> GlyphCache::For(const std::string& file, int index, int logical_height,
                                            Smoothing smoothing) {
  static std::map<std::tuple<std::string, int, int, Smoothing>, std::shared_ptr<GlyphCache>> cache;
  const auto key = std::make_tuple(file, index, logical_height, smoothing);
  auto found = cache.find(key);
  if (found != cache.end()) return found->second;

  FT_Library library = Library();
  if (library == nullptr || file.empty()) return nullptr;
  auto native = std::make_unique<Native>();
  if (FT_New_Face(library, file.c_str(), index, &native->face) != 0) {
    native->face = nullptr;
    return nullptr;
  }
  auto made = std::make_shared<GlyphCache>(std::move(native), logical_height, smoothing);
  cache.emplace(key, made);
  return made;
}

GlyphCache::GlyphCache(std::unique_ptr<Native> native, int logical_height, Smoothing smoothing)
    : native_(std::move(native)), latin_(256), latin_ready_(256, false) {
  FT_Face face = native_->face;
  const int upem = face->units_per_EM > 0 ? face->units_per_EM : 2048;
  const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  const auto* hhea = static_cast<const TT_HoriHeader*>(FT_Get_Sfnt_Table(face, FT_SFNT_HHEA));
  const auto* post = static_cast<const TT_Postscript*>(FT_Get_Sfnt_Table(face, FT_SFNT_POST));

  long win_ascent = face->ascender;
  long win_descent = -face->descender;
  if (os2 != nullptr && os2->version != 0xFFFF && os2->usWinAscent + os2->usWinDescent > 0) {
    win_ascent = os2->usWinAscent;
    win_descent = os2->usWinDescent;
  }
  if (win_ascent + win_descent <= 0) {
    win_ascent = upem * 9 / 10;
    win_descent = upem - win_ascent;
  }

  // A positive height is the cell, ascent plus descent; a negative one the em.
  int em;
  if (logical_height > 0) {
    em = Scale(logical_height, upem, static_cast<int>(win_ascent + win_descent));
  } else {
    em = logical_height == 0 ? 11 : -logical_height;
  }
  em = std::clamp(em, 1, kMaxEm);
  FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(em));

  FaceMetrics& m = metrics_;
  m.em = em;
  m.ascent = Scale(win_ascent, em, upem);
  m.descent = Scale(win_descent, em, upem);
  // Scaled on its own, as the platform does, so it need not equal the cell
  // height less the em.
  m.internal_leading = std::max(0, Scale(win_ascent + win_descent - upem, em, upem));
  if (hhea != nullptr) {
    const long hhea_height = hhea->Ascender - hhea->Descender;
    const long gap = hhea->Line_Gap - ((win_ascent + win_descent) - hhea_height);
    m.external_leading = std::max(0, Scale(gap, em, upem));
  }
  // tmAveCharWidth (tab stops, dialog units) is the OS/2 table's average,
  // scaled, as the platform takes it from the font file.
  long average = face->max_advance_width / 2;
  if (os2 != nullptr && os2->version != 0xFFFF && os2->xAvgCharWidth > 0) {
    average = os2->xAvgCharWidth;
  }
  m.average_width = std::max(1, Scale(average, em, upem));
  m.max_width = Scale(face->max_advance_width, em, upem);
  m.fixed_pitch = FT_IS_FIXED_WIDTH(face);

  // Underline and strike-out as the platform places them: the stroke's
  // position is its centre, so half the size goes above it.
  long under_pos = -upem / 10;
  long under_size = upem / 20;
  if (post != nullptr) {
    under_pos = post->underlinePosition;
    under_size = post->underlineThickness;
  }
  long strike_pos = upem / 4;
  long strike_size = under_size;
  if (os2 != nullptr && os2->version != 0xFFFF) {
    strike_pos = os2->yStrikeoutPosition;
    strike_size = os2->yStrikeoutSize;
  }
  m.underline_size = std::max(1, Scale(under_size, em, upem));
  m.underline_offset = -Scale(under_pos, em, upem) - m.underline_size / 2;
  m.strike_size = std::max(1, Scale(strike_size, em, upem));
  m.strike_offset = -Scale(strike_pos, em, upem) - m.strike_size / 2;

  // The font's gasp table says at which sizes its designers wanted grey
  // edges; small UI sizes of the Windows faces and their substitutes are
  // drawn in plain pixels.
  grey_ = smoothing == Smoothing::kGrey;
  if (smoothing == Smoothing::kByFont) {
    const FT_Int gasp = FT_Get_Gasp(face, static_cast<FT_UInt>(em));
    grey_ = gasp == FT_GASP_NO_TABLE || (gasp & FT_GASP_DO_GRAY) != 0;
  }
}

GlyphCache::~GlyphCache() = default;

bool GlyphCache::Has(char32_t code_point) const {
  return FT_Get_Char_Index(native_->face, code_point) != 0;
}

const Glyph& GlyphCache::Get(char32_t code_point) {
  if (code_point < 256) {
    Glyph& glyph = latin_[code_point];
    if (!latin_ready_[code_point]) {
      Render(code_point, glyph);
      latin_ready_[code_point] = true;
    }
    return glyph;
  }
  auto found = others_.find(code_point);
  if (found != others_.end()) return found->second;
  Glyph& glyph = others_[code_point];
  Render(code_point, glyph);
  return glyph;
}

void GlyphCache::Render(char32_t code_point, Glyph& out) {
  out = Glyph{};
  FT_Face face = native_->face;
  const FT_UInt index = FT_Get_Char_Index(face, code_point);
  // Text measures with the normal hinting whatever its edges, as the
  // platform's metrics do. Plain glyphs are shaped by the monochrome hinting,
  // which keeps stems one pixel wide, and drawn with the advances that
  // hinting gave them, as the platform's aliased text output places them.
  if (FT_Load_Glyph(face, index, FT_LOAD_DEFAULT | FT_LOAD_TARGET_NORMAL) != 0) return;
  FT_GlyphSlot slot = face->glyph;
  out.advance = static_cast<int>((slot->advance.x + 32) >> 6);
  out.draw_advance = out.advance;
  if (!grey_) {
    if (FT_Load_Glyph(face, index, FT_LOAD_DEFAULT | FT_LOAD_TARGET_MONO) != 0) return;
    out.draw_advance = static_cast<int>((slot->advance.x + 32) >> 6);
  }
  if (slot->format != FT_GLYPH_FORMAT_BITMAP &&
      FT_Render_Glyph(slot, grey_ ? FT_RENDER_MODE_NORMAL : FT_RENDER_MODE_MONO) != 0) {
    return;
  }
  const FT_Bitmap& bitmap = slot->bitmap;
  const int width = static_cast<int>(bitmap.width);
  const int height = static_cast<int>(bitmap.rows);
  if (width <= 0 || height <= 0 || bitmap.buffer == nullptr) return;
  out.left = slot->bitmap_left;
  out.top = slot->bitmap_top;
  out.width = width;
  out.height = height;
  out.coverage.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
  for (int y = 0; y < height; ++y) {
    const unsigned char* row = bitmap.buffer + static_cast<ptrdiff_t>(y) * bitmap.pitch;
    uint8_t* target = out.coverage.data() + static_cast<size_t>(y) * static_cast<size_t>(width);
    if (bitmap.pixel_mode == FT_PIXEL_MODE_MONO) {
      for (int x = 0; x < width; ++x) target[x] = (row[x >> 3] & (0x80 >> (x & 7))) ? 255 : 0;
    } else if (bitmap.pixel_mode == FT_PIXEL_MODE_GRAY) {
      // Seventeen levels, as the platform's grey glyph bitmaps have.
      for (int x = 0; x < width; ++x) {
        const int level = (row[x] * 16 + 128) / 256;
        target[x] = static_cast<uint8_t>(level * 255 / 16);
      }
    }
  }
}

int GlyphCache::RenderUncached(char32_t code_point) {
  FT_Face face = native_->face;
  const FT_Int32 target = grey_ ? FT_LOAD_TARGET_NORMAL : FT_LOAD_TARGET_MONO;
  if (FT_Load_Char(face, code_point, FT_LOAD_DEFAULT | target) != 0) return 0;
  if (FT_Render_Glyph(face->glyph, grey_ ? FT_RENDER_MODE_NORMAL : FT_RENDER_MODE_MONO) != 0) {
    return 0;
  }
  return static_cast<int>(face->glyph->bitmap.rows);
}

}  // namespace vantor::platform
