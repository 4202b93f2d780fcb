// Fonts: the faces forms name, their metrics and widths at 96 DPI as the
// platform reports them for the Liberation substitutes, stock fonts, GetObject.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/Font.h"
#include "platform/Gdi.h"
#include "platform/GdiObject.h"
#include "platform/Text.h"

namespace {

// A memory DC with a font selected for one test.
class FontDc {
 public:
  explicit FontDc(HFONT font) : dc_(CreateCompatibleDC(nullptr)), font_(font) {
    old_ = SelectObject(dc_, font_);
  }
  ~FontDc() {
    SelectObject(dc_, old_);
    DeleteObject(font_);
    DeleteDC(dc_);
  }
  FontDc(const FontDc&) = delete;
  FontDc& operator=(const FontDc&) = delete;
  HDC dc() const { return dc_; }

 private:
  HDC dc_;
  HFONT font_;
  HGDIOBJ old_ = nullptr;
};

HFONT Make(const char16_t* face, int height, int weight = FW_NORMAL, bool italic = false,
           bool underline = false, bool strike = false) {
  return CreateFontW(height, 0, 0, 0, weight, italic, underline, strike, DEFAULT_CHARSET,
                     OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, face);
}

SIZE Extent(HDC dc, const char16_t* text) {
  SIZE size{-1, -1};
  EXPECT_TRUE(
      GetTextExtentPoint32W(dc, text, static_cast<int>(std::u16string(text).size()), &size));
  return size;
}

const char16_t kSample[] = u"Ação Rápida: 0123 WMgjy &Arquivo";

TEST(TextFontTest, MetricsAndWidthsOfTheFormsFaces) {
  struct Case {
    const char16_t* face;
    int height, weight;
    bool italic;
    LONG tm_height, ascent, descent, internal, external, average, tm_weight;
    LONG sample, w, i;
  } cases[] = {
      {u"MS Sans Serif", -11, 400, false, 12, 10, 2, 1, 0, 6, 400, 175, 10, 2},
      {u"Tahoma", -11, 400, false, 12, 10, 2, 1, 0, 6, 400, 175, 10, 2},
      {u"Arial", -13, 700, false, 15, 12, 3, 2, 0, 8, 700, 222, 12, 4},
      {u"Segoe UI", -12, 400, true, 14, 11, 3, 1, 0, 7, 400, 198, 11, 3},
      {u"Courier New", -13, 400, false, 15, 11, 4, 2, 0, 8, 400, 256, 8, 8},
      // A positive height is the cell: 12 is the same font as -11 here.
      {u"Tahoma", 12, 400, false, 12, 10, 2, 1, 0, 6, 400, 175, 10, 2},
      // Unknown names get the sans face.
      {u"Fonte Inexistente", -11, 400, false, 12, 10, 2, 1, 0, 6, 400, 175, 10, 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.face, c.face + std::u16string(c.face).size()) + " " +
                 std::to_string(c.height));
    FontDc f(Make(c.face, c.height, c.weight, c.italic));
    TEXTMETRICW tm{};
    ASSERT_TRUE(GetTextMetricsW(f.dc(), &tm));
    EXPECT_EQ(tm.tmHeight, c.tm_height);
    EXPECT_EQ(tm.tmAscent, c.ascent);
    EXPECT_EQ(tm.tmDescent, c.descent);
    EXPECT_EQ(tm.tmInternalLeading, c.internal);
    EXPECT_EQ(tm.tmExternalLeading, c.external);
    EXPECT_EQ(tm.tmAveCharWidth, c.average);
    EXPECT_EQ(tm.tmWeight, c.tm_weight);
    EXPECT_EQ(tm.tmItalic != 0, c.italic);
    EXPECT_EQ(Extent(f.dc(), kSample).cx, c.sample);
    EXPECT_EQ(Extent(f.dc(), kSample).cy, c.tm_height);
    EXPECT_EQ(Extent(f.dc(), u"W").cx, c.w);
    EXPECT_EQ(Extent(f.dc(), u"i").cx, c.i);
  }
}

TEST(TextFontTest, PitchAndFamilyBits) {
  FontDc mono(Make(u"Courier New", -13));
  TEXTMETRICW tm{};
  ASSERT_TRUE(GetTextMetricsW(mono.dc(), &tm));
  // The bit named "fixed pitch" is set for variable-pitch fonts.
  EXPECT_EQ(tm.tmPitchAndFamily & TMPF_FIXED_PITCH, 0);
  EXPECT_EQ(tm.tmPitchAndFamily & 0xF0, FF_MODERN);
  EXPECT_NE(tm.tmPitchAndFamily & TMPF_TRUETYPE, 0);
  FontDc sans(Make(u"Arial", -13));
  ASSERT_TRUE(GetTextMetricsW(sans.dc(), &tm));
  EXPECT_NE(tm.tmPitchAndFamily & TMPF_FIXED_PITCH, 0);
  EXPECT_EQ(tm.tmPitchAndFamily & 0xF0, FF_SWISS);
}

TEST(TextFontTest, BoldIsWiderAndFlagsReachTheMetrics) {
  FontDc regular(Make(u"Arial", -13));
  FontDc bold(Make(u"Arial", -13, FW_BOLD));
  EXPECT_GT(Extent(bold.dc(), kSample).cx, Extent(regular.dc(), kSample).cx);
  // Semi-bold picks the bold face; medium does not.
  FontDc semi(Make(u"Arial", -13, FW_SEMIBOLD));
  FontDc medium(Make(u"Arial", -13, FW_MEDIUM));
  EXPECT_EQ(Extent(semi.dc(), kSample).cx, Extent(bold.dc(), kSample).cx);
  EXPECT_EQ(Extent(medium.dc(), kSample).cx, Extent(regular.dc(), kSample).cx);
  FontDc lines(Make(u"Tahoma", -11, FW_NORMAL, false, true, true));
  TEXTMETRICW tm{};
  ASSERT_TRUE(GetTextMetricsW(lines.dc(), &tm));
  EXPECT_NE(tm.tmUnderlined, 0);
  EXPECT_NE(tm.tmStruckOut, 0);
}

TEST(TextFontTest, FaceNameIsTheOneAsked) {
  FontDc f(Make(u"Tahoma", -11));
  WCHAR name[LF_FACESIZE] = {};
  EXPECT_EQ(GetTextFaceW(f.dc(), LF_FACESIZE, name), 7);
  EXPECT_EQ(std::u16string(name), u"Tahoma");
  EXPECT_EQ(GetTextFaceW(f.dc(), 0, nullptr), 7);
  // A short buffer takes what fits and its terminator.
  WCHAR small[4] = {u'x', u'x', u'x', u'x'};
  EXPECT_EQ(GetTextFaceW(f.dc(), 4, small), 4);
  EXPECT_EQ(std::u16string(small), u"Tah");
  EXPECT_EQ(GetTextFaceW(f.dc(), 0, small), 0);
  EXPECT_EQ(GetTextFaceW(nullptr, LF_FACESIZE, name), 0);
}

TEST(TextFontTest, GetObjectGivesTheLogFontBack) {
  LOGFONTW in{};
  in.lfHeight = -16;
  in.lfWeight = FW_BOLD;
  in.lfItalic = 1;
  in.lfCharSet = ANSI_CHARSET;
  std::memcpy(in.lfFaceName, u"Ação", 5 * sizeof(WCHAR));
  HFONT font = CreateFontIndirectW(&in);
  ASSERT_NE(font, nullptr);
  EXPECT_EQ(GetObjectType(font), static_cast<DWORD>(OBJ_FONT));
  EXPECT_EQ(GetObjectW(font, 0, nullptr), static_cast<int>(sizeof(LOGFONTW)));
  LOGFONTW out{};
  EXPECT_EQ(GetObjectW(font, sizeof out, &out), static_cast<int>(sizeof(LOGFONTW)));
  EXPECT_EQ(std::memcmp(&in, &out, sizeof in), 0);
  LOGFONTA narrow{};
  EXPECT_EQ(GetObjectA(font, sizeof narrow, &narrow), static_cast<int>(sizeof(LOGFONTA)));
  EXPECT_EQ(narrow.lfHeight, -16);
  EXPECT_EQ(narrow.lfWeight, FW_BOLD);
  EXPECT_STREQ(narrow.lfFaceName, "A\xE7\xE3o");
  // A short buffer gets the first bytes only.
  LONG height = 0;
  EXPECT_EQ(GetObjectW(font, sizeof height, &height), static_cast<int>(sizeof height));
  EXPECT_EQ(height, -16);
  EXPECT_TRUE(DeleteObject(font));
  EXPECT_EQ(GetObjectW(font, sizeof out, &out), 0);
}

TEST(TextFontTest, NarrowCreationConvertsTheFaceName) {
  LOGFONTA in{};
  in.lfHeight = -11;
  std::strcpy(in.lfFaceName, "Tahoma");
  FontDc a(CreateFontIndirectA(&in));
  WCHAR name[LF_FACESIZE] = {};
  GetTextFaceW(a.dc(), LF_FACESIZE, name);
  EXPECT_EQ(std::u16string(name), u"Tahoma");
  FontDc b(CreateFontA(-11, 0, 0, 0, FW_NORMAL, 0, 0, 0, 0, 0, 0, 0, 0, "Courier New"));
  GetTextFaceW(b.dc(), LF_FACESIZE, name);
  EXPECT_EQ(std::u16string(name), u"Courier New");
  EXPECT_EQ(Extent(b.dc(), u"i").cx, Extent(b.dc(), u"W").cx);
}

TEST(TextFontTest, StockFontsAndTheDefaultOfANewDc) {
  HGDIOBJ gui = GetStockObject(DEFAULT_GUI_FONT);
  ASSERT_NE(gui, nullptr);
  EXPECT_EQ(GetObjectType(gui), static_cast<DWORD>(OBJ_FONT));
  LOGFONTW lf{};
  ASSERT_EQ(GetObjectW(gui, sizeof lf, &lf), static_cast<int>(sizeof lf));
  EXPECT_EQ(lf.lfHeight, -11);
  EXPECT_EQ(std::u16string(lf.lfFaceName), u"MS Shell Dlg");
  // Stock objects survive DeleteObject.
  DeleteObject(gui);
  EXPECT_EQ(GetObjectType(gui), static_cast<DWORD>(OBJ_FONT));
  for (int id : {OEM_FIXED_FONT, ANSI_FIXED_FONT, ANSI_VAR_FONT, SYSTEM_FONT, DEVICE_DEFAULT_FONT,
                 SYSTEM_FIXED_FONT}) {
    EXPECT_EQ(GetObjectType(GetStockObject(id)), static_cast<DWORD>(OBJ_FONT)) << id;
  }
  // A new DC measures with the dialog font.
  HDC dc = CreateCompatibleDC(nullptr);
  TEXTMETRICW tm{};
  ASSERT_TRUE(GetTextMetricsW(dc, &tm));
  EXPECT_EQ(tm.tmHeight, 12);
  EXPECT_EQ(Extent(dc, kSample).cx, 175);
  DeleteDC(dc);
}

TEST(TextFontTest, CharWidthsAndFits) {
  FontDc f(Make(u"Tahoma", -11));
  INT widths[3] = {};
  ASSERT_TRUE(GetCharWidth32W(f.dc(), 'W', 'Y', widths));
  EXPECT_EQ(widths[0], 10);
  EXPECT_FALSE(GetCharWidth32W(f.dc(), 'Y', 'W', widths));
  EXPECT_FALSE(GetCharWidth32W(f.dc(), 'W', 'Y', nullptr));
  EXPECT_FALSE(GetCharWidth32W(nullptr, 'W', 'Y', widths));

  INT fit = -1;
  INT dx[4] = {};
  SIZE size{};
  ASSERT_TRUE(GetTextExtentExPointW(f.dc(), u"WiWi", 4, 13, &fit, dx, &size));
  EXPECT_EQ(fit, 2);  // W (10) and i (12) fit in 13, the next W does not
  EXPECT_EQ(dx[0], 10);
  EXPECT_EQ(dx[1], 12);
  EXPECT_EQ(dx[3], 24);
  EXPECT_EQ(size.cx, 24);
  ASSERT_TRUE(GetTextExtentExPointW(f.dc(), u"WiWi", 4, 9, &fit, nullptr, &size));
  EXPECT_EQ(fit, 0);
}

TEST(TextFontTest, BadInputFailsQuietly) {
  SIZE size{};
  FontDc f(Make(u"Tahoma", -11));
  EXPECT_FALSE(GetTextExtentPoint32W(nullptr, u"a", 1, &size));
  EXPECT_FALSE(GetTextExtentPoint32W(f.dc(), u"a", -1, &size));
  EXPECT_FALSE(GetTextExtentPoint32W(f.dc(), nullptr, 3, &size));
  EXPECT_FALSE(GetTextExtentPoint32W(f.dc(), u"a", 1, nullptr));
  EXPECT_FALSE(GetTextExtentPoint32A(f.dc(), nullptr, 3, &size));
  // Empty text has no width and a line's height.
  ASSERT_TRUE(GetTextExtentPoint32W(f.dc(), nullptr, 0, &size));
  EXPECT_EQ(size.cx, 0);
  EXPECT_EQ(size.cy, 12);
  EXPECT_FALSE(GetTextMetricsW(nullptr, nullptr));
  TEXTMETRICW tm{};
  EXPECT_FALSE(GetTextMetricsW(reinterpret_cast<HDC>(0x12345), &tm));
  EXPECT_EQ(CreateFontIndirectW(nullptr), nullptr);
  EXPECT_EQ(CreateFontIndirectA(nullptr), nullptr);

  // Garbage in a LOGFONT still makes a font that measures.
  LOGFONTW junk;
  std::memset(&junk, 0xA5, sizeof junk);
  HFONT font = CreateFontIndirectW(&junk);
  ASSERT_NE(font, nullptr);
  FontDc g(font);
  ASSERT_TRUE(GetTextMetricsW(g.dc(), &tm));
  EXPECT_GT(tm.tmHeight, 0);
  // Extreme heights are kept within what can be rendered.
  for (int height : {INT32_MIN, -100000, 100000, INT32_MAX, 0, 1, -1}) {
    FontDc h(Make(u"Arial", height));
    ASSERT_TRUE(GetTextMetricsW(h.dc(), &tm)) << height;
    EXPECT_GT(tm.tmHeight, 0) << height;
    EXPECT_LT(tm.tmHeight, 1500) << height;
    EXPECT_TRUE(GetTextExtentPoint32W(h.dc(), u"Wg", 2, &size)) << height;
  }
}

TEST(TextFontTest, FontsDoNotLeakHandles) {
  const size_t before = vantor::platform::GdiTable::Count();
  for (int i = 0; i < 50; ++i) {
    HFONT font = Make(u"Tahoma", -11 - i % 3);
    EXPECT_TRUE(DeleteObject(font));
  }
  EXPECT_EQ(vantor::platform::GdiTable::Count(), before);
}

TEST(TextFontTest, FamiliesOfTheFormsFaces) {
  using vantor::platform::Font;
  EXPECT_STREQ(Font::FamilyFor(u"MS Sans Serif"), "Liberation Sans");
  EXPECT_STREQ(Font::FamilyFor(u"segoe ui"), "Liberation Sans");
  EXPECT_STREQ(Font::FamilyFor(u"COURIER NEW"), "Liberation Mono");
  EXPECT_STREQ(Font::FamilyFor(u"Times New Roman"), "Liberation Serif");
  EXPECT_STREQ(Font::FamilyFor(u"Arial Narrow"), "Liberation Sans Narrow");
  EXPECT_STREQ(Font::FamilyFor(u""), "Liberation Sans");
  EXPECT_STREQ(Font::FamilyFor(u"Courier New "), "Liberation Sans");
}

}  // namespace
