#include "platform/Text.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/DeviceContext.h"
#include "platform/Font.h"
#include "platform/Gdi.h"
#include "platform/TextLayout.h"

using vantor::String;
using vantor::StringView;
using vantor::platform::DeviceContext;
using vantor::platform::Font;
using vantor::platform::GdiTable;
using vantor::platform::Glyph;
using vantor::platform::GlyphCache;
using vantor::platform::TextLayout;

namespace {

// Logical coordinates beyond this are outside every surface; text placed
// there is skipped instead of being pushed through overflowing arithmetic.
constexpr long long kFar = 1LL << 29;

Font& SelectedFont(DeviceContext& dc) {
  Font* font = GdiTable::Get<Font>(dc.state.font, vantor::platform::OBJ_FONT);
  return font != nullptr ? *font : Font::DefaultGui();
}

class FontMeasure final : public vantor::platform::TextMeasure {
 public:
  explicit FontMeasure(Font& font) : glyphs_(font.Glyphs()) {}
  int Advance(char32_t code_point) override {
    return glyphs_ != nullptr ? glyphs_->Advance(code_point) : 0;
  }

 private:
  GlyphCache* glyphs_;
};

// A half-open rectangle in 64 bits, for clipping without overflow.
struct Box {
  long long left, top, right, bottom;
  bool Empty() const { return left >= right || top >= bottom; }
  Box Intersect(const Box& o) const {
    return {std::max(left, o.left), std::max(top, o.top), std::min(right, o.right),
            std::min(bottom, o.bottom)};
  }
};

Box BoxOf(const RECT& r) {
  return {r.left, r.top, r.right, r.bottom};
}

void Fill(DeviceContext& dc, Box box, const Box* clip, COLORREF color) {
  if (clip != nullptr) box = box.Intersect(*clip);
  box = box.Intersect({-kFar, -kFar, kFar, kFar});
  if (box.Empty()) return;
  const RECT r{static_cast<LONG>(box.left), static_cast<LONG>(box.top),
               static_cast<LONG>(box.right), static_cast<LONG>(box.bottom)};
  vantor::platform::FillSolidRect(dc, r, color);
}

// Grey glyph edges blend as the platform's do: the coverage, in 17 levels,
// goes through a fixed ramp that favours the lighter side, and each channel
// moves from its background toward the text colour only within the range
// the ramp gives that level. Plain (two-level) glyphs need none of this.
constexpr uint8_t kRamp[17] = {0,   77,  104, 124, 140, 154, 167, 178, 189,
                               199, 208, 217, 225, 233, 240, 248, 255};

uint32_t GreyChannel(uint32_t back, uint32_t text, int level) {
  if (back == text) return back;
  if (back > text) {
    const uint32_t top = kRamp[16 - level] + (255 - kRamp[16 - level]) * text / 255;
    return text + (back - text) * (top - text) / (255 - text);
  }
  const uint32_t bottom = kRamp[level] * text / 255;
  return text - (text - back) * (text - bottom) / text;
}

// Blends a coverage mask whose top-left is logical (x, y) through the DC's
// clip with the grey ramp.
void BlendGrey(DeviceContext& dc, long long x, long long y, const uint8_t* mask, int width,
               int height, int pitch, COLORREF color) {
  const vantor::platform::Surface& surface = dc.Target();
  if (surface.Empty()) return;
  const long long sx = dc.SurfaceX(0) + x;
  const long long sy = dc.SurfaceY(0) + y;
  const Box area{sx, sy, sx + width, sy + height};
  const uint32_t tr = color & 0xFF, tg = (color >> 8) & 0xFF, tb = (color >> 16) & 0xFF;
  for (const RECT& r : dc.Clip().Rects()) {
    const Box part = area.Intersect(BoxOf(r));
    for (long long py = part.top; py < part.bottom; ++py) {
      const uint8_t* levels = mask + (py - sy) * pitch;
      uint32_t* row = surface.Row(static_cast<int>(py));
      for (long long px = part.left; px < part.right; ++px) {
        const int level = (levels[px - sx] * 16 + 127) / 255;
        if (level == 0) continue;
        const uint32_t d = row[px];
        row[px] = (GreyChannel((d >> 16) & 0xFF, tr, level) << 16) |
                  (GreyChannel((d >> 8) & 0xFF, tg, level) << 8) | GreyChannel(d & 0xFF, tb, level);
      }
    }
  }
}

void Composite(DeviceContext& dc, long long x, long long y, const uint8_t* mask, int width,
               int height, int pitch, COLORREF color, bool grey) {
  if (grey) {
    BlendGrey(dc, x, y, mask, width, height, pitch, color);
  } else {
    vantor::platform::BlendMask(dc, static_cast<int>(x), static_cast<int>(y), mask, width, height,
                                pitch, color);
  }
}

// A glyph's coverage at logical (x, y), cut to the clip rectangle first; the
// DC's own clip is applied by the compositing.
void Blend(DeviceContext& dc, const Glyph& glyph, long long x, long long y, const Box* clip,
           COLORREF color, bool grey) {
  if (glyph.width <= 0 || glyph.height <= 0) return;
  Box box{x, y, x + glyph.width, y + glyph.height};
  if (clip != nullptr) box = box.Intersect(*clip);
  box = box.Intersect({-kFar, -kFar, kFar, kFar});
  if (box.Empty()) return;
  const auto skip_x = static_cast<size_t>(box.left - x);
  const auto skip_y = static_cast<size_t>(box.top - y);
  const uint8_t* start = glyph.coverage.data() + skip_y * static_cast<size_t>(glyph.width) + skip_x;
  Composite(dc, box.left, box.top, start, static_cast<int>(box.right - box.left),
            static_cast<int>(box.bottom - box.top), glyph.width, color, grey);
}

struct Placed {
  const Glyph* glyph;
  long long x, y;
};

// The glyphs of a run are merged into one mask and blended at once: the
// DC's clip is then walked once a run instead of once a glyph. Runs too
// large for a scratch mask go glyph by glyph.
void BlendRun(DeviceContext& dc, const std::vector<Placed>& placed, const Box* clip, COLORREF color,
              bool grey) {
  if (placed.empty()) return;
  Box box{kFar, kFar, -kFar, -kFar};
  for (const Placed& p : placed) {
    box.left = std::min(box.left, p.x);
    box.top = std::min(box.top, p.y);
    box.right = std::max(box.right, p.x + p.glyph->width);
    box.bottom = std::max(box.bottom, p.y + p.glyph->height);
  }
  if (clip != nullptr) box = box.Intersect(*clip);
  box = box.Intersect({-kFar, -kFar, kFar, kFar});
  if (box.Empty()) return;
  const long long width = box.right - box.left;
  const long long height = box.bottom - box.top;
  constexpr long long kMaxMask = 1 << 22;
  if (width * height > kMaxMask) {
    for (const Placed& p : placed) Blend(dc, *p.glyph, p.x, p.y, clip, color, grey);
    return;
  }
  static std::vector<uint8_t> mask;
  mask.assign(static_cast<size_t>(width * height), 0);
  for (const Placed& p : placed) {
    const Glyph& g = *p.glyph;
    const Box part = Box{p.x, p.y, p.x + g.width, p.y + g.height}.Intersect(box);
    for (long long y = part.top; y < part.bottom; ++y) {
      const uint8_t* from = g.coverage.data() + (y - p.y) * g.width + (part.left - p.x);
      uint8_t* to = mask.data() + (y - box.top) * width + (part.left - box.left);
      for (long long i = 0; i < part.right - part.left; ++i) to[i] = std::max(to[i], from[i]);
    }
  }
  Composite(dc, box.left, box.top, mask.data(), static_cast<int>(width), static_cast<int>(height),
            static_cast<int>(width), color, grey);
}

struct Paint {
  bool opaque = false;      // fill the cells with the back colour
  bool draw_glyphs = true;  // DT_PREFIXONLY draws only the underline
  int prefix = -1;          // character to underline
  int tab_width = 0;
  const INT* dx = nullptr;  // ExtTextOut's own advances
};

// Draws one run with its top-left at logical (x, y): the cell background in
// OPAQUE mode, the glyphs in the text colour, then the font's underline and
// strike-out and an access-key underline.
void PaintRun(DeviceContext& dc, Font& font, long long x, long long y, StringView text,
              const Box* clip, const Paint& paint, std::vector<int>& positions) {
  FontMeasure measure(font);
  const TEXTMETRICW& tm = font.Metrics();
  const vantor::platform::FaceMetrics& face = font.Face();
  vantor::platform::TextLayout layout(measure, tm.tmHeight, tm.tmExternalLeading,
                                      tm.tmAveCharWidth);
  if (paint.dx != nullptr) {
    positions.assign(text.size() + 1, 0);
    long long pen = 0;
    for (size_t i = 0; i < text.size(); ++i) {
      positions[i] = static_cast<int>(pen);
      pen = std::clamp<long long>(pen + paint.dx[i], -kFar, kFar);
    }
    positions[text.size()] = static_cast<int>(pen);
  } else {
    layout.Positions(text, paint.tab_width, positions);
  }
  GlyphCache* glyphs = font.Glyphs();
  // Where the glyphs go: each stretch between tabs starts where measuring
  // put it and goes on by the drawing advances.
  static std::vector<long long> placed_at;
  placed_at.assign(positions.begin(), positions.end());
  if (paint.dx == nullptr && glyphs != nullptr) {
    long long pen = 0;
    for (size_t i = 0; i < text.size(); ++i) {
      const bool after_tab = i > 0 && text[i - 1] == u'\t' && paint.tab_width > 0;
      if (i == 0 || after_tab) pen = positions[i];
      placed_at[i] = pen;
      if (TextLayout::SecondHalf(text, i)) continue;
      const char32_t cp = TextLayout::CodePointAt(text, i);
      if (cp != u'\t' || paint.tab_width <= 0) {
        pen = std::min<long long>(pen + glyphs->Get(cp).draw_advance, kFar);
      }
    }
    const bool ends_in_tab = !text.empty() && text.back() == u'\t' && paint.tab_width > 0;
    placed_at[text.size()] = ends_in_tab ? positions[text.size()] : pen;
  }
  // The cell, underline and strike-out span the measured width.
  const long long width = positions[text.size()];
  const COLORREF color = dc.state.text_color;
  if (paint.opaque) Fill(dc, {x, y, x + width, y + tm.tmHeight}, clip, dc.state.bk_color);

  const long long baseline = y + tm.tmAscent;
  if (paint.draw_glyphs && glyphs != nullptr && x + width > -kFar && x < kFar) {
    static std::vector<Placed> placed;
    placed.clear();
    for (size_t i = 0; i < text.size(); ++i) {
      if (TextLayout::SecondHalf(text, i)) continue;
      const char32_t cp = TextLayout::CodePointAt(text, i);
      if (cp == u'\t' && paint.tab_width > 0) continue;
      const Glyph& glyph = glyphs->Get(cp);
      if (glyph.width > 0 && glyph.height > 0) {
        placed.push_back({&glyph, x + placed_at[i] + glyph.left, baseline - glyph.top});
      }
    }
    BlendRun(dc, placed, clip, color, glyphs->Grey());
  }
  if (paint.draw_glyphs && tm.tmUnderlined != 0) {
    const long long top = baseline + face.underline_offset;
    Fill(dc, {x, top, x + width, top + face.underline_size}, clip, color);
  }
  if (paint.draw_glyphs && tm.tmStruckOut != 0) {
    const long long top = baseline + face.strike_offset;
    Fill(dc, {x, top, x + width, top + face.strike_size}, clip, color);
  }
  // The access key's mark is a one-pixel line a row below the baseline,
  // drawn as a pen line over the character's advance, so its last pixel is
  // left out, as the platform draws it.
  if (paint.prefix >= 0 && static_cast<size_t>(paint.prefix) < text.size()) {
    const auto p = static_cast<size_t>(paint.prefix);
    Fill(dc, {x + positions[p], baseline + 1, x + positions[p + 1] - 1, baseline + 2}, clip, color);
  }
}

StringView Span(LPCWSTR text, int count) {
  if (count < 0) return StringView(text);
  return StringView(text, static_cast<size_t>(count));
}

int DrawTextImpl(HDC hdc, LPWSTR writable, LPCWSTR text, int count, LPRECT rect, UINT format,
                 DRAWTEXTPARAMS* params) {
  DeviceContext* dc = vantor::platform::DcFromHandle(hdc);
  if (dc == nullptr || text == nullptr || rect == nullptr) return 0;
  if (params != nullptr && params->cbSize != sizeof(DRAWTEXTPARAMS)) return 0;
  const StringView source = Span(text, count);
  Font& font = SelectedFont(*dc);
  const TEXTMETRICW& tm = font.Metrics();
  FontMeasure measure(font);
  vantor::platform::TextLayout layout(measure, tm.tmHeight, tm.tmExternalLeading,
                                      tm.tmAveCharWidth);
  const vantor::platform::TextLayoutResult result = layout.Run(source, *rect, format, params);
  format = result.format;
  if (params != nullptr) params->uiLengthDrawn = result.length_drawn;

  if ((format & DT_MODIFYSTRING) != 0 && result.modified && writable != nullptr) {
    // The caller's buffer holds its text and four more characters.
    const size_t room = source.size() + 4;
    const size_t n = std::min(result.modified_text.size(), room - 1);
    std::copy_n(result.modified_text.data(), n, writable);
    writable[n] = 0;
  }
  if ((format & DT_CALCRECT) != 0) {
    *rect = result.bounds;
    return result.height;
  }

  const Box clip_box = BoxOf(*rect);
  const Box* clip = (format & DT_NOCLIP) != 0 ? nullptr : &clip_box;
  Paint paint;
  paint.opaque = dc->state.bk_mode == OPAQUE && (format & DT_PREFIXONLY) == 0;
  paint.draw_glyphs = (format & DT_PREFIXONLY) == 0;
  paint.tab_width = result.tab_width;
  std::vector<int> positions;
  for (const vantor::platform::TextLine& line : result.lines) {
    paint.prefix = (format & DT_HIDEPREFIX) != 0 ? -1 : line.prefix;
    PaintRun(*dc, font, line.x, line.y, line.text, clip, paint, positions);
  }
  return result.height;
}

}  // namespace

HFONT CreateFontIndirectW(const LOGFONTW* logfont) {
  if (logfont == nullptr) return nullptr;
  return static_cast<HFONT>(GdiTable::Add(std::make_shared<Font>(*logfont)));
}

HFONT CreateFontIndirectA(const LOGFONTA* logfont) {
  if (logfont == nullptr) return nullptr;
  LOGFONTW wide{};
  std::memcpy(&wide, logfont, offsetof(LOGFONTA, lfFaceName));
  size_t length = 0;
  while (length < LF_FACESIZE - 1 && logfont->lfFaceName[length] != 0) ++length;
  const String name = vantor::FromAnsi(std::string_view(logfont->lfFaceName, length));
  std::copy_n(name.data(), std::min<size_t>(name.size(), LF_FACESIZE - 1), wide.lfFaceName);
  return CreateFontIndirectW(&wide);
}

HFONT CreateFontW(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                  DWORD underline, DWORD strike_out, DWORD charset, DWORD out_precision,
                  DWORD clip_precision, DWORD quality, DWORD pitch_and_family, LPCWSTR face_name) {
  LOGFONTW lf{};
  lf.lfHeight = height;
  lf.lfWidth = width;
  lf.lfEscapement = escapement;
  lf.lfOrientation = orientation;
  lf.lfWeight = weight;
  lf.lfItalic = static_cast<BYTE>(italic);
  lf.lfUnderline = static_cast<BYTE>(underline);
  lf.lfStrikeOut = static_cast<BYTE>(strike_out);
  lf.lfCharSet = static_cast<BYTE>(charset);
  lf.lfOutPrecision = static_cast<BYTE>(out_precision);
  lf.lfClipPrecision = static_cast<BYTE>(clip_precision);
  lf.lfQuality = static_cast<BYTE>(quality);
  lf.lfPitchAndFamily = static_cast<BYTE>(pitch_and_family);
  if (face_name != nullptr) {
    for (int i = 0; i < LF_FACESIZE - 1 && face_name[i] != 0; ++i) lf.lfFaceName[i] = face_name[i];
  }
  return CreateFontIndirectW(&lf);
}

HFONT CreateFontA(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                  DWORD underline, DWORD strike_out, DWORD charset, DWORD out_precision,
                  DWORD clip_precision, DWORD quality, DWORD pitch_and_family, LPCSTR face_name) {
  String name;
  if (face_name != nullptr) {
    name = vantor::FromAnsi(std::string_view(face_name, strnlen(face_name, LF_FACESIZE - 1)));
  }
  return CreateFontW(height, width, escapement, orientation, weight, italic, underline, strike_out,
                     charset, out_precision, clip_precision, quality, pitch_and_family,
                     face_name != nullptr ? name.c_str() : nullptr);
}

BOOL GetTextExtentExPointW(HDC hdc, LPCWSTR text, int count, int max_extent, INT* fit, INT* dx,
                           LPSIZE size) {
  DeviceContext* dc = vantor::platform::DcFromHandle(hdc);
  if (dc == nullptr || size == nullptr || count < 0 || (text == nullptr && count > 0)) {
    return FALSE;
  }
  Font& font = SelectedFont(*dc);
  GlyphCache* glyphs = font.Glyphs();
  long long pen = 0;
  int fitted = 0;
  const StringView view(text == nullptr ? u"" : text, static_cast<size_t>(count));
  for (size_t i = 0; i < view.size(); ++i) {
    if (!TextLayout::SecondHalf(view, i) && glyphs != nullptr) {
      pen = std::min<long long>(pen + glyphs->Advance(TextLayout::CodePointAt(view, i)), 1LL << 30);
    }
    if (max_extent >= 0 && pen <= max_extent && fitted == static_cast<int>(i)) fitted += 1;
    if (dx != nullptr) dx[i] = static_cast<INT>(pen);
  }
  if (fit != nullptr) *fit = max_extent < 0 ? count : fitted;
  size->cx = static_cast<LONG>(pen);
  size->cy = font.Metrics().tmHeight;
  return TRUE;
}

BOOL GetTextExtentPoint32W(HDC dc, LPCWSTR text, int count, LPSIZE size) {
  return GetTextExtentExPointW(dc, text, count, -1, nullptr, nullptr, size);
}

BOOL GetTextExtentPoint32A(HDC dc, LPCSTR text, int count, LPSIZE size) {
  if (count < 0 || (text == nullptr && count > 0)) return FALSE;
  const String wide = text == nullptr
                          ? String()
                          : vantor::FromAnsi(std::string_view(text, static_cast<size_t>(count)));
  return GetTextExtentExPointW(dc, wide.c_str(), static_cast<int>(wide.size()), -1, nullptr,
                               nullptr, size);
}

BOOL GetTextMetricsW(HDC hdc, TEXTMETRICW* metrics) {
  DeviceContext* dc = vantor::platform::DcFromHandle(hdc);
  if (dc == nullptr || metrics == nullptr) return FALSE;
  *metrics = SelectedFont(*dc).Metrics();
  return TRUE;
}

int GetTextFaceW(HDC hdc, int count, LPWSTR name) {
  DeviceContext* dc = vantor::platform::DcFromHandle(hdc);
  if (dc == nullptr) return 0;
  const String face = SelectedFont(*dc).FaceName();
  if (name == nullptr) return static_cast<int>(face.size()) + 1;
  if (count <= 0) return 0;
  const size_t n = std::min(face.size(), static_cast<size_t>(count) - 1);
  std::copy_n(face.data(), n, name);
  name[n] = 0;
  return static_cast<int>(n) + 1;
}

BOOL GetCharWidth32W(HDC hdc, UINT first, UINT last, INT* widths) {
  DeviceContext* dc = vantor::platform::DcFromHandle(hdc);
  if (dc == nullptr || widths == nullptr || last < first || last > 0x10FFFF) return FALSE;
  GlyphCache* glyphs = SelectedFont(*dc).Glyphs();
  for (UINT c = first;; ++c) {
    widths[c - first] = glyphs != nullptr ? glyphs->Advance(c) : 0;
    if (c == last) break;
  }
  return TRUE;
}

int DrawTextExW(HDC dc, LPWSTR text, int count, LPRECT rect, UINT format, DRAWTEXTPARAMS* params) {
  return DrawTextImpl(dc, text, text, count, rect, format, params);
}

int DrawTextW(HDC dc, LPCWSTR text, int count, LPRECT rect, UINT format) {
  // The platform writes into the "constant" text under DT_MODIFYSTRING.
  LPWSTR writable = (format & DT_MODIFYSTRING) != 0 ? const_cast<LPWSTR>(text) : nullptr;
  return DrawTextImpl(dc, writable, text, count, rect, format, nullptr);
}

int DrawTextA(HDC dc, LPCSTR text, int count, LPRECT rect, UINT format) {
  if (text == nullptr) return 0;
  const size_t length = count < 0 ? std::strlen(text) : static_cast<size_t>(count);
  String wide = vantor::FromAnsi(std::string_view(text, length));
  const size_t original = wide.size();
  wide.resize(original + 4, 0);
  const int height = DrawTextImpl(dc, wide.data(), wide.c_str(), static_cast<int>(original), rect,
                                  format, nullptr);
  if ((format & DT_MODIFYSTRING) != 0) {
    const std::string narrow = vantor::ToAnsi(StringView(wide.c_str()));
    if (narrow != std::string_view(text, length)) {
      const size_t n = std::min(narrow.size(), length + 3);
      std::memcpy(const_cast<char*>(text), narrow.data(), n);
      const_cast<char*>(text)[n] = 0;
    }
  }
  return height;
}

BOOL ExtTextOutW(HDC hdc, int x, int y, UINT options, const RECT* rect, LPCWSTR text, UINT count,
                 const INT* dx) {
  DeviceContext* dc = vantor::platform::DcFromHandle(hdc);
  if (dc == nullptr || (text == nullptr && count > 0)) return FALSE;
  if (count > 0x7FFFFFFF) return FALSE;
  const StringView view(text == nullptr ? u"" : text, count);
  Font& font = SelectedFont(*dc);
  const TEXTMETRICW& tm = font.Metrics();

  const Box rect_box = rect != nullptr ? BoxOf(*rect) : Box{};
  if (rect != nullptr && (options & ETO_OPAQUE) != 0) {
    Fill(*dc, rect_box, nullptr, dc->state.bk_color);
  }
  const Box* clip = rect != nullptr && (options & ETO_CLIPPED) != 0 ? &rect_box : nullptr;

  // The run's width places it for centre and right alignment.
  FontMeasure measure(font);
  vantor::platform::TextLayout layout(measure, tm.tmHeight, tm.tmExternalLeading,
                                      tm.tmAveCharWidth);
  long long width = 0;
  if (dx != nullptr) {
    for (size_t i = 0; i < view.size(); ++i)
      width = std::clamp<long long>(width + dx[i], -kFar, kFar);
  } else {
    width = layout.Width(view, 0);
  }
  const UINT align = dc->state.text_align;
  const bool update = (align & TA_UPDATECP) != 0;
  long long left = update ? dc->state.position.x : x;
  long long top = update ? dc->state.position.y : y;
  const long long origin_x = left;
  if ((align & TA_CENTER) == TA_CENTER) {
    left -= width / 2;
  } else if ((align & TA_RIGHT) != 0) {
    left -= width;
  }
  if ((align & TA_BASELINE) == TA_BASELINE) {
    top -= tm.tmAscent;
  } else if ((align & TA_BOTTOM) != 0) {
    top -= tm.tmHeight;
  }
  if (update) {
    // Left-aligned text moves the position past itself, right-aligned text
    // before itself; centred text leaves it.
    long long next = origin_x;
    if ((align & TA_CENTER) != TA_CENTER) next += (align & TA_RIGHT) != 0 ? -width : width;
    dc->state.position.x = static_cast<LONG>(std::clamp<long long>(next, INT32_MIN, INT32_MAX));
  }
  if (view.empty()) return TRUE;

  Paint paint;
  paint.opaque = dc->state.bk_mode == OPAQUE;
  paint.dx = dx;
  std::vector<int> positions;
  PaintRun(*dc, font, left, top, view, clip, paint, positions);
  return TRUE;
}

BOOL TextOutW(HDC dc, int x, int y, LPCWSTR text, int count) {
  if (count < 0) return FALSE;
  return ExtTextOutW(dc, x, y, 0, nullptr, text, static_cast<UINT>(count), nullptr);
}

BOOL TextOutA(HDC dc, int x, int y, LPCSTR text, int count) {
  if (count < 0 || (text == nullptr && count > 0)) return FALSE;
  const String wide = text == nullptr
                          ? String()
                          : vantor::FromAnsi(std::string_view(text, static_cast<size_t>(count)));
  return ExtTextOutW(dc, x, y, 0, nullptr, wide.c_str(), static_cast<UINT>(wide.size()), nullptr);
}

UINT SetTextAlign(HDC hdc, UINT align) {
  DeviceContext* dc = vantor::platform::DcFromHandle(hdc);
  if (dc == nullptr) return GDI_ERROR;
  const UINT previous = dc->state.text_align;
  dc->state.text_align = align;
  return previous;
}

UINT GetTextAlign(HDC hdc) {
  DeviceContext* dc = vantor::platform::DcFromHandle(hdc);
  return dc == nullptr ? GDI_ERROR : dc->state.text_align;
}
