// Drawing text into a memory DC: where the pixels land, what stays clean,
// the background of OPAQUE mode, underlines, clipping, alignment, and bad
// input. Tahoma 8 (lfHeight -11) throughout: tmHeight 12, ascent 10.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "platform/Gdi.h"
#include "platform/Text.h"
#include "tests/platform/GdiTestSupport.h"

namespace {

using vantor::platform::test::Canvas;

constexpr uint32_t kWhite = 0x00FFFFFF;

class TextCanvas : public Canvas {
 public:
  TextCanvas(int width = 200, int height = 60, bool underline = false)
      : Canvas(width, height), width_(width), height_(height) {
    font_ = CreateFontW(-11, 0, 0, 0, FW_NORMAL, 0, underline, 0, DEFAULT_CHARSET, 0, 0, 0, 0,
                        u"Tahoma");
    old_font_ = SelectObject(dc(), font_);
    SetBkMode(dc(), TRANSPARENT);
    SetTextColor(dc(), RGB(0, 0, 0));
  }
  ~TextCanvas() {
    SelectObject(dc(), old_font_);
    DeleteObject(font_);
  }
  TextCanvas(const TextCanvas&) = delete;
  TextCanvas& operator=(const TextCanvas&) = delete;

  // The box of every pixel that is not white; all -1 when there is none.
  RECT Ink(uint32_t background = kWhite) const {
    RECT r{INT_MAX, INT_MAX, -1, -1};
    for (int y = 0; y < height_; ++y) {
      for (int x = 0; x < width_; ++x) {
        if (At(x, y) == background) continue;
        r.left = std::min<LONG>(r.left, x);
        r.top = std::min<LONG>(r.top, y);
        r.right = std::max<LONG>(r.right, x + 1);
        r.bottom = std::max<LONG>(r.bottom, y + 1);
      }
    }
    if (r.right < 0) return RECT{-1, -1, -1, -1};
    return r;
  }
  int Count(uint32_t pixel) const {
    int n = 0;
    for (int y = 0; y < height_; ++y) {
      for (int x = 0; x < width_; ++x) n += At(x, y) == pixel ? 1 : 0;
    }
    return n;
  }
  int RowRun(int y, uint32_t pixel) const {  // longest run of `pixel` on a row
    int best = 0, run = 0;
    for (int x = 0; x < width_; ++x) {
      run = At(x, y) == pixel ? run + 1 : 0;
      best = std::max(best, run);
    }
    return best;
  }

 private:
  int width_, height_;
  HFONT font_ = nullptr;
  HGDIOBJ old_font_ = nullptr;
};

int Draw(HDC dc, const char16_t* text, RECT rect, UINT format) {
  return DrawTextW(dc, text, -1, &rect, format);
}

TEST(TextDrawTest, GlyphsLandInsideTheTextsCell) {
  TextCanvas c;
  EXPECT_EQ(Draw(c.dc(), u"Esquerda", {4, 4, 156, 18}, DT_SINGLELINE), 12);
  const RECT ink = c.Ink();
  // "Esquerda" is 47 wide; the glyphs sit in its cell, the q's tail in
  // the descent.
  EXPECT_GE(ink.left, 4);
  EXPECT_LE(ink.right, 4 + 47);
  EXPECT_GE(ink.top, 4);
  EXPECT_LE(ink.bottom, 4 + 12);
  EXPECT_GT(ink.bottom, 4 + 10);  // something below the baseline
  // Aliased at this size: the text colour itself, and nothing between.
  EXPECT_GT(c.Count(0x000000), 40);
  EXPECT_EQ(c.Count(0x000000) + c.Count(kWhite), 200 * 60);
}

TEST(TextDrawTest, GreyEdgesFollowThePlatformsRamp) {
  // Arial 10 bold is drawn with grey edges (the font's gasp table asks for
  // them at 13 pixels); black on white and white on black both land on the
  // ramp's steps only.
  const std::vector<uint32_t> ramp = {0,   77,  104, 124, 140, 154, 167, 178, 189,
                                      199, 208, 217, 225, 233, 240, 248, 255};
  for (const bool inverse : {false, true}) {
    Canvas c(120, 20, inverse ? 0x000000 : 0xFFFFFF);
    HFONT font = CreateFontW(-13, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, u"Arial");
    HGDIOBJ old = SelectObject(c.dc(), font);
    SetBkMode(c.dc(), TRANSPARENT);
    SetTextColor(c.dc(), inverse ? RGB(255, 255, 255) : RGB(0, 0, 0));
    TextOutW(c.dc(), 2, 2, u"Ação Rápida", 11);
    SelectObject(c.dc(), old);
    DeleteObject(font);
    std::vector<bool> seen(256, false);
    for (int y = 0; y < 20; ++y) {
      for (int x = 0; x < 120; ++x) {
        const uint32_t p = c.At(x, y) & 0xFFFFFF;
        const uint32_t b = p & 0xFF;
        ASSERT_EQ(p, b * 0x010101u) << x << "," << y;
        ASSERT_NE(std::find(ramp.begin(), ramp.end(), b), ramp.end()) << b;
        seen[b] = true;
      }
    }
    int steps = 0;
    for (uint32_t v = 1; v < 255; ++v) steps += seen[v] ? 1 : 0;
    EXPECT_GE(steps, 8) << inverse;
  }
}

TEST(TextDrawTest, TextColourIsUsed) {
  TextCanvas c;
  SetTextColor(c.dc(), RGB(200, 10, 20));
  Draw(c.dc(), u"Cor", {0, 0, 100, 20}, DT_SINGLELINE);
  EXPECT_GT(c.Count(0x00C80A14), 10);
  EXPECT_EQ(c.Count(0x000000), 0);
}

TEST(TextDrawTest, CalcRectDrawsNothing) {
  TextCanvas c;
  RECT r{4, 4, 4, 4};
  EXPECT_EQ(DrawTextW(c.dc(), u"Calcular", -1, &r, DT_CALCRECT), 12);
  EXPECT_EQ(r.right, 44);
  EXPECT_EQ(r.bottom, 16);
  EXPECT_EQ(c.Ink().right, -1);
}

TEST(TextDrawTest, AlignmentMovesTheInk) {
  TextCanvas left, center, right;
  Draw(left.dc(), u"Centro", {4, 4, 156, 18}, DT_SINGLELINE);
  Draw(center.dc(), u"Centro", {4, 4, 156, 18}, DT_SINGLELINE | DT_CENTER);
  Draw(right.dc(), u"Centro", {4, 4, 156, 18}, DT_SINGLELINE | DT_RIGHT);
  // "Centro" is 33 wide: centred at (4 + 156 - 33) / 2 = 63, right at 123.
  EXPECT_EQ(center.Ink().left - left.Ink().left, 63 - 4);
  EXPECT_EQ(right.Ink().left - left.Ink().left, 123 - 4);
  EXPECT_EQ(center.Ink().top, left.Ink().top);
  TextCanvas vcenter, bottom;
  EXPECT_EQ(Draw(vcenter.dc(), u"Centro", {4, 4, 156, 36}, DT_SINGLELINE | DT_VCENTER), 10 + 12);
  EXPECT_EQ(Draw(bottom.dc(), u"Centro", {4, 4, 156, 36}, DT_SINGLELINE | DT_BOTTOM), 32);
  EXPECT_EQ(vcenter.Ink().top - left.Ink().top, 10);
  EXPECT_EQ(bottom.Ink().top - left.Ink().top, 20);
}

TEST(TextDrawTest, ClippingToTheRectangle) {
  TextCanvas clipped, free;
  Draw(clipped.dc(), u"Com corte à direita", {4, 4, 40, 18}, DT_SINGLELINE);
  Draw(free.dc(), u"Com corte à direita", {4, 4, 40, 18}, DT_SINGLELINE | DT_NOCLIP);
  EXPECT_LE(clipped.Ink().right, 40);
  EXPECT_GT(free.Ink().right, 80);
  // Inside the rectangle both are the same.
  for (int y = 0; y < 60; ++y) {
    for (int x = 0; x < 40; ++x) ASSERT_EQ(clipped.At(x, y), free.At(x, y)) << x << "," << y;
  }
  // Rows below the rectangle stay clean too.
  TextCanvas low;
  Draw(low.dc(), u"Agj", {4, 4, 100, 12}, DT_SINGLELINE);
  EXPECT_LE(low.Ink().bottom, 12);
}

TEST(TextDrawTest, TheDcsClipRegionAndOriginApply) {
  TextCanvas plain, clipped, moved;
  Draw(plain.dc(), u"Região", {4, 4, 150, 18}, DT_SINGLELINE);
  HRGN region = CreateRectRgn(0, 0, 20, 60);
  SelectClipRgn(clipped.dc(), region);
  DeleteObject(region);
  Draw(clipped.dc(), u"Região", {4, 4, 150, 18}, DT_SINGLELINE);
  EXPECT_LE(clipped.Ink().right, 20);
  EXPECT_EQ(clipped.Ink().left, plain.Ink().left);
  SetViewportOrgEx(moved.dc(), 30, 20, nullptr);
  Draw(moved.dc(), u"Região", {4, 4, 150, 18}, DT_SINGLELINE);
  EXPECT_EQ(moved.Ink().left, plain.Ink().left + 30);
  EXPECT_EQ(moved.Ink().top, plain.Ink().top + 20);
}

TEST(TextDrawTest, OpaqueModeFillsTheCells) {
  TextCanvas c;
  SetBkMode(c.dc(), OPAQUE);
  SetBkColor(c.dc(), RGB(255, 230, 150));
  SetTextColor(c.dc(), RGB(128, 0, 0));
  Draw(c.dc(), u"Fundo opaco", {4, 4, 156, 18}, DT_SINGLELINE | DT_CENTER);
  // "Fundo opaco" is 64 wide, centred at 48; the cell is 12 high.
  const uint32_t back = 0x00FFE696;
  const RECT ink = c.Ink();
  EXPECT_EQ(ink.left, 48);
  EXPECT_EQ(ink.right, 48 + 64);
  EXPECT_EQ(ink.top, 4);
  EXPECT_EQ(ink.bottom, 16);
  EXPECT_EQ(c.At(48, 4), back);
  EXPECT_EQ(c.At(47, 4), kWhite);
  EXPECT_GT(c.Count(0x00800000), 30);
  EXPECT_EQ(c.Count(back) + c.Count(0x00800000), 64 * 12);
}

TEST(TextDrawTest, PrefixUnderlineHideAndOnly) {
  // The mark of "&Arquivo" runs under the A (7 wide, the mark one less) a
  // row below the baseline row: y = 4 + 10 + 1.
  TextCanvas shown, hidden, only, none;
  Draw(shown.dc(), u"&Arquivo", {4, 4, 76, 18}, DT_SINGLELINE);
  Draw(hidden.dc(), u"&Arquivo", {4, 4, 76, 18}, DT_SINGLELINE | DT_HIDEPREFIX);
  Draw(only.dc(), u"&Arquivo", {4, 4, 76, 18}, DT_SINGLELINE | DT_PREFIXONLY);
  Draw(none.dc(), u"Arquivo", {4, 4, 76, 18}, DT_SINGLELINE);
  const int row = 4 + 10 + 1;
  EXPECT_EQ(shown.RowRun(row, 0), 6);
  EXPECT_EQ(shown.At(4, row), 0u);
  EXPECT_LT(hidden.RowRun(row, 0), 6);
  // Hidden prefix draws exactly what the text without the ampersand draws.
  for (int y = 0; y < 60; ++y) {
    for (int x = 0; x < 200; ++x) ASSERT_EQ(hidden.At(x, y), none.At(x, y));
  }
  EXPECT_EQ(only.Count(0), 6);
  EXPECT_EQ(only.RowRun(row, 0), 6);
}

TEST(TextDrawTest, UnderlineFontRunsUnderTheWholeText) {
  TextCanvas c(200, 60, true);
  Draw(c.dc(), u"Sublinhado", {4, 4, 150, 18}, DT_SINGLELINE);
  SIZE size{};
  GetTextExtentPoint32W(c.dc(), u"Sublinhado", 10, &size);
  // On the baseline row itself, the font's underline position at this size.
  EXPECT_EQ(c.RowRun(4 + 10, 0), size.cx);
}

TEST(TextDrawTest, MultipleLinesStackByLineHeight) {
  TextCanvas c;
  EXPECT_EQ(Draw(c.dc(), u"Linha 1\r\nLinha 2\nLinha 3", {4, 4, 76, 44}, 0), 36);
  const RECT ink = c.Ink();
  EXPECT_GE(ink.top, 4);
  EXPECT_GT(ink.bottom, 4 + 24);
  EXPECT_LE(ink.bottom, 4 + 36);
  // Clipped at the bottom: the third line is cut and not counted past it.
  TextCanvas cut;
  EXPECT_EQ(Draw(cut.dc(), u"Linha 1\nLinha 2\nLinha 3", {4, 4, 76, 20}, 0), 24);
  EXPECT_LE(cut.Ink().bottom, 20);
}

TEST(TextDrawTest, WordBreakMatchesTheMeasuredRectangle) {
  TextCanvas c;
  const char16_t* text = u"O valor informado não é uma data válida para o campo";
  RECT calc{4, 4, 76, 80};
  EXPECT_EQ(DrawTextW(c.dc(), text, -1, &calc, DT_WORDBREAK | DT_CALCRECT), 60);
  EXPECT_EQ(calc.right, 76);
  EXPECT_EQ(calc.bottom, 64);
  EXPECT_EQ(Draw(c.dc(), text, {4, 4, 76, 80}, DT_WORDBREAK), 60);
  const RECT ink = c.Ink();
  EXPECT_GE(ink.left, calc.left);
  EXPECT_LE(ink.right, calc.right);
  EXPECT_LE(ink.bottom, calc.bottom);
  EXPECT_GT(ink.bottom, calc.bottom - 12);
}

// Measurements the platform gave for the same texts, flags and rectangles
// (Tahoma 8 through the Liberation substitute): return value and the
// DT_CALCRECT rectangle.
TEST(TextDrawTest, MeasuresAsThePlatform) {
  struct Case {
    const char16_t* text;
    RECT rect;
    UINT format;
    int height;
    RECT calc;
  } cases[] = {
      {u"Esquerda", {4, 4, 156, 18}, DT_SINGLELINE, 12, {4, 4, 51, 16}},
      {u"Meio", {4, 58, 76, 90}, DT_VCENTER | DT_SINGLELINE, 22, {4, 58, 27, 80}},
      {u"Baixo", {84, 58, 156, 90}, DT_BOTTOM | DT_RIGHT | DT_SINGLELINE, 32, {84, 58, 111, 90}},
      {u"Sem efeito", {4, 94, 156, 116}, DT_VCENTER, 12, {4, 94, 55, 106}},
      {u"O valor informado não é uma data válida para o campo",
       {4, 4, 76, 80},
       DT_WORDBREAK,
       60,
       {4, 4, 76, 64}},
      {u"Texto centrado em várias linhas",
       {84, 4, 156, 60},
       DT_WORDBREAK | DT_CENTER,
       36,
       {84, 4, 145, 40}},
      {u"Paralelepipedalmente grande", {84, 64, 130, 100}, DT_WORDBREAK, 24, {84, 64, 187, 88}},
      {u"Linha 1\r\nLinha 2\nLinha 3", {4, 84, 76, 124}, 0, 36, {4, 84, 39, 120}},
      {u"Um\r\nDois", {84, 104, 156, 118}, DT_SINGLELINE, 12, {84, 104, 131, 116}},
      {u"Um texto que quebra em linhas", {4, 4, 60, 4}, DT_WORDBREAK, 48, {4, 4, 59, 52}},
      {u"&Salvar && sair", {4, 4, 200, 4}, DT_SINGLELINE, 12, {4, 4, 66, 16}},
      {u"a\tb\tc", {4, 4, 200, 4}, DT_EXPANDTABS, 12, {4, 4, 106, 16}},
      {u"Descrição muito comprida do produto",
       {4, 4, 90, 18},
       DT_END_ELLIPSIS | DT_SINGLELINE,
       12,
       {4, 4, 86, 16}},
      {u"Palavras demais para caber aqui",
       {4, 22, 90, 36},
       DT_WORD_ELLIPSIS | DT_SINGLELINE,
       12,
       {4, 22, 88, 34}},
      {u"Extraordinariamente longo",
       {94, 22, 140, 60},
       DT_WORDBREAK | DT_WORD_ELLIPSIS,
       24,
       {94, 22, 139, 46}},
      {u"Várias linhas de texto que não cabem na caixa",
       {4, 40, 90, 66},
       DT_WORDBREAK | DT_END_ELLIPSIS,
       36,
       {4, 40, 84, 76}},
      {u"C:\\Arquivos\\Sistema\\Relatorios\\mensal.txt",
       {4, 70, 120, 84},
       DT_PATH_ELLIPSIS | DT_SINGLELINE,
       12,
       {4, 70, 117, 82}},
      {u"Fim&", {84, 22, 156, 36}, DT_SINGLELINE, 12, {84, 22, 109, 34}},
      {u"Nome:\tJoão\tFim", {4, 76, 156, 90}, DT_EXPANDTABS | DT_SINGLELINE, 12, {4, 76, 118, 88}},
      {u"Nome:\tJoão", {4, 94, 156, 108}, DT_SINGLELINE, 12, {4, 94, 64, 106}},
  };
  TextCanvas c;
  for (const Case& t : cases) {
    SCOPED_TRACE(std::string(t.text, t.text + std::u16string(t.text).size()));
    RECT calc = t.rect;
    EXPECT_EQ(DrawTextW(c.dc(), t.text, -1, &calc, t.format | DT_CALCRECT), t.height);
    EXPECT_EQ(calc.left, t.calc.left);
    EXPECT_EQ(calc.top, t.calc.top);
    EXPECT_EQ(calc.right, t.calc.right);
    EXPECT_EQ(calc.bottom, t.calc.bottom);
    // Drawn into a rectangle without height, only the first line counts.
    RECT box = t.rect;
    EXPECT_EQ(DrawTextW(c.dc(), t.text, -1, &box, t.format),
              t.rect.bottom == t.rect.top ? 12 : t.height);
  }
}

TEST(TextDrawTest, ModifyStringWritesTheEllipsis) {
  TextCanvas c;
  std::u16string buffer = u"Descrição muito comprida do produto";
  const int length = static_cast<int>(buffer.size());
  buffer.resize(buffer.size() + 4, u'#');
  RECT r{4, 4, 90, 18};
  DrawTextW(c.dc(), buffer.c_str(), length, &r, DT_SINGLELINE | DT_END_ELLIPSIS | DT_MODIFYSTRING);
  EXPECT_EQ(std::u16string(buffer.c_str()), u"Descrição muit...");
  std::string narrow = "Descri\xE7\xE3o muito comprida do produto";
  const int narrow_length = static_cast<int>(narrow.size());
  narrow.resize(narrow.size() + 4, '#');
  r = {4, 4, 90, 18};
  DrawTextA(c.dc(), narrow.c_str(), narrow_length, &r,
            DT_SINGLELINE | DT_END_ELLIPSIS | DT_MODIFYSTRING);
  EXPECT_STREQ(narrow.c_str(), "Descri\xE7\xE3o muit...");
  // Without the flag the text stays.
  std::u16string kept = u"Descrição muito comprida do produto";
  r = {4, 4, 90, 18};
  DrawTextW(c.dc(), kept.c_str(), -1, &r, DT_SINGLELINE | DT_END_ELLIPSIS);
  EXPECT_EQ(kept, u"Descrição muito comprida do produto");
}

TEST(TextDrawTest, NarrowTextDrawsAsWide) {
  TextCanvas wide, narrow;
  RECT a{4, 4, 100, 18}, b{4, 4, 100, 18};
  EXPECT_EQ(DrawTextW(wide.dc(), u"Ação", -1, &a, DT_SINGLELINE), 12);
  EXPECT_EQ(DrawTextA(narrow.dc(), "A\xE7\xE3o", -1, &b, DT_SINGLELINE), 12);
  for (int y = 0; y < 60; ++y) {
    for (int x = 0; x < 200; ++x) ASSERT_EQ(wide.At(x, y), narrow.At(x, y));
  }
  SIZE sw{}, sn{};
  GetTextExtentPoint32W(wide.dc(), u"Ação", 4, &sw);
  GetTextExtentPoint32A(wide.dc(), "A\xE7\xE3o", 4, &sn);
  EXPECT_EQ(sw.cx, sn.cx);
}

TEST(TextDrawTest, DrawTextExMargins) {
  TextCanvas plain, margins;
  Draw(plain.dc(), u"Margem", {4, 4, 150, 18}, DT_SINGLELINE);
  DRAWTEXTPARAMS params{sizeof(DRAWTEXTPARAMS), 0, 10, 0, 0};
  std::u16string text = u"Margem";
  RECT r{4, 4, 150, 18};
  EXPECT_EQ(DrawTextExW(margins.dc(), text.data(), -1, &r, DT_SINGLELINE, &params), 12);
  EXPECT_EQ(margins.Ink().left, plain.Ink().left + 10);
  EXPECT_EQ(params.uiLengthDrawn, 6u);
  // A wrong cbSize fails.
  params.cbSize = 3;
  EXPECT_EQ(DrawTextExW(margins.dc(), text.data(), -1, &r, DT_SINGLELINE, &params), 0);
}

TEST(TextDrawTest, TextOutAlignmentAndCurrentPosition) {
  TextCanvas left, right, center, base;
  SIZE size{};
  GetTextExtentPoint32W(left.dc(), u"Texto", 5, &size);
  TextOutW(left.dc(), 100, 10, u"Texto", 5);
  EXPECT_EQ(SetTextAlign(right.dc(), TA_RIGHT), TA_LEFT | TA_TOP);
  EXPECT_EQ(GetTextAlign(right.dc()), TA_RIGHT);
  TextOutW(right.dc(), 100, 10, u"Texto", 5);
  SetTextAlign(center.dc(), TA_CENTER);
  TextOutW(center.dc(), 100, 10, u"Texto", 5);
  SetTextAlign(base.dc(), TA_BASELINE);
  TextOutW(base.dc(), 100, 20, u"Texto", 5);
  EXPECT_EQ(right.Ink().left, left.Ink().left - size.cx);
  EXPECT_EQ(center.Ink().left, left.Ink().left - size.cx / 2);
  EXPECT_EQ(base.Ink().top, left.Ink().top);  // baseline 20 = top 10 + ascent 10

  // TA_UPDATECP draws at the current position and moves it.
  TextCanvas cp;
  MoveToEx(cp.dc(), 100, 10, nullptr);
  SetTextAlign(cp.dc(), TA_UPDATECP);
  TextOutW(cp.dc(), 0, 0, u"Texto", 5);
  POINT after{};
  MoveToEx(cp.dc(), 0, 0, &after);
  EXPECT_EQ(after.x, 100 + size.cx);
  EXPECT_EQ(after.y, 10);
  EXPECT_EQ(cp.Ink().left, left.Ink().left);
}

TEST(TextDrawTest, ExtTextOutOpaqueClippedAndAdvances) {
  TextCanvas c;
  SetBkColor(c.dc(), RGB(180, 220, 255));
  RECT r{4, 24, 156, 40};
  EXPECT_TRUE(ExtTextOutW(c.dc(), 6, 26, ETO_OPAQUE, &r, u"ExtTextOut", 10, nullptr));
  const uint32_t back = 0x00B4DCFF;
  EXPECT_EQ(c.At(4, 24), back);
  EXPECT_EQ(c.At(155, 39), back);
  EXPECT_EQ(c.At(156, 39), kWhite);
  EXPECT_EQ(c.At(4, 40), kWhite);
  // ETO_OPAQUE with no text still fills.
  TextCanvas empty;
  SetBkColor(empty.dc(), RGB(180, 220, 255));
  EXPECT_TRUE(ExtTextOutW(empty.dc(), 0, 0, ETO_OPAQUE, &r, nullptr, 0, nullptr));
  EXPECT_EQ(empty.Count(back), 152 * 16);

  TextCanvas clipped;
  RECT box{4, 44, 50, 60};
  ExtTextOutW(clipped.dc(), 6, 46, ETO_CLIPPED, &box, u"Recortado no retângulo", 22, nullptr);
  EXPECT_LE(clipped.Ink().right, 50);
  EXPECT_GE(clipped.Ink().top, 44);

  // Explicit advances place each character.
  TextCanvas spaced, normal;
  const INT dx[3] = {20, 20, 20};
  ExtTextOutW(spaced.dc(), 10, 10, 0, nullptr, u"iii", 3, dx);
  ExtTextOutW(normal.dc(), 10, 10, 0, nullptr, u"i", 1, nullptr);
  EXPECT_EQ(spaced.Ink().left, normal.Ink().left);
  EXPECT_EQ(spaced.Ink().right, normal.Ink().right + 40);
}

TEST(TextDrawTest, BadInputDrawsNothingAndFails) {
  TextCanvas c;
  RECT r{0, 0, 100, 20};
  EXPECT_EQ(DrawTextW(nullptr, u"a", -1, &r, 0), 0);
  EXPECT_EQ(DrawTextW(c.dc(), nullptr, -1, &r, 0), 0);
  EXPECT_EQ(DrawTextW(c.dc(), u"a", -1, nullptr, 0), 0);
  EXPECT_EQ(DrawTextA(c.dc(), nullptr, -1, &r, 0), 0);
  EXPECT_EQ(DrawTextW(reinterpret_cast<HDC>(0x7777), u"a", -1, &r, 0), 0);
  EXPECT_FALSE(TextOutW(nullptr, 0, 0, u"a", 1));
  EXPECT_FALSE(TextOutW(c.dc(), 0, 0, u"a", -1));
  EXPECT_FALSE(TextOutW(c.dc(), 0, 0, nullptr, 3));
  EXPECT_FALSE(TextOutA(c.dc(), 0, 0, nullptr, 3));
  EXPECT_FALSE(ExtTextOutW(c.dc(), 0, 0, 0, nullptr, nullptr, 2, nullptr));
  EXPECT_EQ(SetTextAlign(nullptr, TA_RIGHT), GDI_ERROR);
  EXPECT_EQ(GetTextAlign(nullptr), GDI_ERROR);
  // A deleted DC is refused.
  HDC gone = CreateCompatibleDC(nullptr);
  DeleteDC(gone);
  EXPECT_EQ(DrawTextW(gone, u"a", -1, &r, 0), 0);
  EXPECT_FALSE(TextOutW(gone, 0, 0, u"a", 1));
  EXPECT_EQ(c.Ink().right, -1);

  // Far coordinates, empty and inverted rectangles, every flag: no crash,
  // nothing outside the surface.
  const RECT rects[] = {{INT_MIN, INT_MIN, INT_MAX, INT_MAX},
                        {INT_MAX - 3, 0, INT_MAX, 10},
                        {50, 50, 10, 10},
                        {0, 0, 0, 0},
                        {-1000000, -1000000, 10, 10}};
  const std::u16string texts[] = {u"", u"&", u"a\tb\r\nc&&d", std::u16string(5000, u'W'),
                                  u"\xD800\xDC00\xD800 x"};
  for (const RECT& rect : rects) {
    for (const std::u16string& text : texts) {
      for (UINT format : {0u, 0xFFFFFFFFu, 0x3FFFFFu, DT_CALCRECT | DT_WORDBREAK,
                          DT_WORDBREAK | DT_END_ELLIPSIS | DT_EDITCONTROL}) {
        RECT copy = rect;
        std::u16string buffer = text;
        buffer.resize(text.size() + 4, 0);
        DrawTextW(c.dc(), buffer.data(), static_cast<int>(text.size()), &copy, format);
      }
    }
  }
  EXPECT_TRUE(TextOutW(c.dc(), INT_MAX, INT_MIN, u"abc", 3));
  EXPECT_TRUE(TextOutW(c.dc(), INT_MIN, INT_MAX, u"abc", 3));
  const INT far_dx[3] = {INT_MAX, INT_MAX, INT_MIN};
  EXPECT_TRUE(ExtTextOutW(c.dc(), 0, 0, 0, nullptr, u"abc", 3, far_dx));
}

}  // namespace
