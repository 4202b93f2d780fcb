#include "platform/Font.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <tuple>

#include "platform/DeviceContext.h"
#include "platform/Text.h"

namespace vantor::platform {

namespace {

struct FaceFile {
  std::string path;
  int index = 0;
};

char16_t Lower(char16_t c) {
  return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

bool SameName(const String& a, const char* b) {
  const size_t n = std::strlen(b);
  if (a.size() != n) return false;
  for (size_t i = 0; i < n; ++i) {
    if (Lower(a[i]) != static_cast<char16_t>(b[i])) return false;
  }
  return true;
}

// Found once per family and style: a fontconfig match costs far more than
// the text it would serve.
FaceFile Lookup(const char* family, bool bold, bool italic) {
  static std::map<std::tuple<std::string, bool, bool>, FaceFile> found;
  const auto key = std::make_tuple(std::string(family), bold, italic);
  auto it = found.find(key);
  if (it != found.end()) return it->second;

  FaceFile file;
  FcPattern* pattern = FcPatternCreate();
  if (pattern != nullptr) {
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
    FcPatternAddInteger(pattern, FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern, FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern, FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern* match = FcFontMatch(nullptr, pattern, &result);
    if (match != nullptr) {
      FcChar8* path = nullptr;
      int index = 0;
      if (FcPatternGetString(match, FC_FILE, 0, &path) == FcResultMatch && path != nullptr) {
        file.path = reinterpret_cast<const char*>(path);
      }
      if (FcPatternGetInteger(match, FC_INDEX, 0, &index) == FcResultMatch) file.index = index;
      FcPatternDestroy(match);
    }
    FcPatternDestroy(pattern);
  }
  found.emplace(key, file);
  return file;
}

LOGFONTW MakeLogFont(LONG height, LONG weight, const char16_t* face, BYTE pitch_and_family) {
  LOGFONTW lf{};
  lf.lfHeight = height;
  lf.lfWeight = weight;
  lf.lfCharSet = DEFAULT_CHARSET;
  lf.lfPitchAndFamily = pitch_and_family;
  for (int i = 0; face[i] != 0 && i < LF_FACESIZE - 1; ++i) lf.lfFaceName[i] = face[i];
  return lf;
}

}  // namespace

Font::Font(const LOGFONTW& logfont) : GdiObject(OBJ_FONT), logfont_(logfont) {
  // A face name without its terminator is cut, as the platform reads at most
  // LF_FACESIZE - 1 characters.
  logfont_.lfFaceName[LF_FACESIZE - 1] = 0;
}

String Font::FaceName() const {
  String name(logfont_.lfFaceName);
  return name.empty() ? String(u"MS Shell Dlg") : name;
}

const char* Font::FamilyFor(const String& face_name) {
  static const char* const kMono[] = {"courier new", "courier",  "lucida console", "consolas",
                                      "fixedsys",    "terminal", "liberation mono"};
  static const char* const kSerif[] = {"times new roman", "times", "ms serif", "georgia",
                                       "liberation serif"};
  static const char* const kNarrow[] = {"arial narrow", "liberation sans narrow"};
  for (const char* name : kMono) {
    if (SameName(face_name, name)) return "Liberation Mono";
  }
  for (const char* name : kSerif) {
    if (SameName(face_name, name)) return "Liberation Serif";
  }
  for (const char* name : kNarrow) {
    if (SameName(face_name, name)) return "Liberation Sans Narrow";
  }
  return "Liberation Sans";
}

void Font::Resolve() {
  if (resolved_) return;
  resolved_ = true;
  const String name(logfont_.lfFaceName);
  const char* family = FamilyFor(name);
  if (name.empty()) {
    // No name: the pitch and family bits choose, as the platform's mapper does.
    const int pitch = logfont_.lfPitchAndFamily & 3;
    const int kind = logfont_.lfPitchAndFamily & 0xF0;
    if (pitch == FIXED_PITCH || kind == FF_MODERN) family = "Liberation Mono";
    if (kind == FF_ROMAN) family = "Liberation Serif";
  }
  const bool italic = logfont_.lfItalic != 0;
  const FaceFile file = Lookup(family, Bold(), italic);
  // The cell height the platform would give for an extreme request is kept
  // within what can be rendered.
  const LONG height = std::clamp<LONG>(logfont_.lfHeight, -1000, 1000);
  GlyphCache::Smoothing smoothing = GlyphCache::Smoothing::kByFont;
  if (logfont_.lfQuality == NONANTIALIASED_QUALITY) smoothing = GlyphCache::Smoothing::kMono;
  if (logfont_.lfQuality == ANTIALIASED_QUALITY || logfont_.lfQuality == CLEARTYPE_QUALITY) {
    smoothing = GlyphCache::Smoothing::kGrey;
  }
  glyphs_ = GlyphCache::For(file.path, file.index, static_cast<int>(height), smoothing);

  if (glyphs_) {
    face_ = glyphs_->Metrics();
  } else {
    // No face at all: Arial's proportions, so layout still has sane numbers.
    int em = height < 0 ? static_cast<int>(-height) : height == 0 ? 11 : (height * 7 + 4) / 8;
    em = std::max(1, em);
    face_.em = em;
    face_.ascent = static_cast<int>(std::lround(em * 0.905));
    face_.descent = static_cast<int>(std::lround(em * 0.212));
    face_.internal_leading = std::max(0, face_.ascent + face_.descent - em);
    face_.average_width = std::max(1, static_cast<int>(std::lround(em * 0.441)));
    face_.max_width = em * 2;
    face_.underline_offset = 1;
    face_.strike_offset = -face_.ascent / 3;
  }

  TEXTMETRICW& tm = metrics_;
  tm.tmAscent = face_.ascent;
  tm.tmDescent = face_.descent;
  tm.tmHeight = face_.ascent + face_.descent;
  tm.tmInternalLeading = face_.internal_leading;
  tm.tmExternalLeading = face_.external_leading;
  tm.tmAveCharWidth = face_.average_width;
  tm.tmMaxCharWidth = face_.max_width;
  tm.tmWeight = Bold() ? FW_BOLD : FW_NORMAL;
  tm.tmOverhang = 0;
  tm.tmDigitizedAspectX = 96;
  tm.tmDigitizedAspectY = 96;
  tm.tmFirstChar = 0x20;
  tm.tmLastChar = 0xFFFC;
  tm.tmDefaultChar = 0x1F;
  tm.tmBreakChar = 0x20;
  tm.tmItalic = italic ? 255 : 0;
  tm.tmUnderlined = logfont_.lfUnderline != 0 ? 255 : 0;
  tm.tmStruckOut = logfont_.lfStrikeOut != 0 ? 255 : 0;
  BYTE kind = FF_SWISS;
  if (std::strcmp(family, "Liberation Mono") == 0) kind = FF_MODERN;
  if (std::strcmp(family, "Liberation Serif") == 0) kind = FF_ROMAN;
  // The pitch bit is set for a variable-pitch font, as the platform has it.
  tm.tmPitchAndFamily = static_cast<BYTE>(kind | TMPF_TRUETYPE | TMPF_VECTOR |
                                          (face_.fixed_pitch ? 0 : TMPF_FIXED_PITCH));
  tm.tmCharSet = logfont_.lfCharSet == SYMBOL_CHARSET ? SYMBOL_CHARSET : ANSI_CHARSET;
}

GlyphCache* Font::Glyphs() {
  Resolve();
  return glyphs_.get();
}

const TEXTMETRICW& Font::Metrics() {
  Resolve();
  return metrics_;
}

const FaceMetrics& Font::Face() {
  Resolve();
  return face_;
}

Font& Font::DefaultGui() {
  static Font font(MakeLogFont(-11, FW_NORMAL, u"MS Shell Dlg", DEFAULT_PITCH | FF_DONTCARE));
  return font;
}

// The GDI side asks for these when it makes its stock objects and answers
// GetObject for a font.
std::shared_ptr<GdiObject> MakeStockFont(int stock_id) {
  LOGFONTW lf;
  switch (stock_id) {
    case 10:  // OEM_FIXED_FONT
      lf = MakeLogFont(12, FW_NORMAL, u"Terminal", FIXED_PITCH | FF_MODERN);
      break;
    case 11:  // ANSI_FIXED_FONT
      lf = MakeLogFont(12, FW_NORMAL, u"Courier", FIXED_PITCH | FF_MODERN);
      break;
    case 12:  // ANSI_VAR_FONT
      lf = MakeLogFont(12, FW_NORMAL, u"MS Sans Serif", VARIABLE_PITCH | FF_SWISS);
      break;
    case 16:  // SYSTEM_FIXED_FONT
      lf = MakeLogFont(15, FW_NORMAL, u"Fixedsys", FIXED_PITCH | FF_MODERN);
      break;
    case 13:  // SYSTEM_FONT
    case 14:  // DEVICE_DEFAULT_FONT
      // A new DC's font: drawn like the dialog font, which is what the
      // controls' text looks like on the platform's desktops.
      lf = MakeLogFont(-11, FW_NORMAL, u"System", VARIABLE_PITCH | FF_SWISS);
      break;
    case 17:  // DEFAULT_GUI_FONT
      lf = Font::DefaultGui().LogFont();
      break;
    default:
      return nullptr;
  }
  auto font = std::make_shared<Font>(lf);
  font->stock = true;
  return font;
}

int GetFontObject(GdiObject& font, int size, void* out, bool wide) {
  if (font.Type() != OBJ_FONT) return 0;
  const LOGFONTW& lf = static_cast<Font&>(font).LogFont();
  const int needed = wide ? static_cast<int>(sizeof(LOGFONTW)) : static_cast<int>(sizeof(LOGFONTA));
  if (out == nullptr) return needed;
  if (size <= 0) return 0;
  const size_t count = static_cast<size_t>(std::min(size, needed));
  if (wide) {
    std::memcpy(out, &lf, count);
  } else {
    LOGFONTA narrow{};
    std::memcpy(&narrow, &lf, offsetof(LOGFONTA, lfFaceName));
    const std::string name = ToAnsi(String(lf.lfFaceName));
    std::memcpy(narrow.lfFaceName, name.data(), std::min<size_t>(name.size(), LF_FACESIZE - 1));
    std::memcpy(out, &narrow, count);
  }
  return static_cast<int>(count);
}

}  // namespace vantor::platform

// fontconfig loses a few bytes while it parses its configuration files, once
// a process; the leak checker of sanitizer builds is told so, or every
// program that draws text would be reported for it.
#if defined(__SANITIZE_ADDRESS__)
#define VANTOR_LEAK_CHECKED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VANTOR_LEAK_CHECKED 1
#endif
#endif
#ifdef VANTOR_LEAK_CHECKED
extern "C" __attribute__((weak, used)) const char* __lsan_default_suppressions() {
  return "leak:libfontconfig.so\n";
}
#endif
