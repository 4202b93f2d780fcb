// DrawText's layout with widths fixed by the test: every character 6 pixels,
// a blank 3, a dot 2; line height 13, external leading 1, average width 5.
#include "platform/TextLayout.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "platform/Text.h"

namespace vantor::platform {
namespace {

class FixedMeasure final : public TextMeasure {
 public:
  int Advance(char32_t c) override {
    if (c == U' ') return 3;
    if (c == U'.') return 2;
    return 6;
  }
};

struct LineCase {
  const char16_t* text;
  RECT rect;
  UINT format;
  std::u16string lines;  // shown lines joined with '|'
  int height;
  LONG first_x;
  LONG first_y;
};

TextLayoutResult Lay(StringView text, RECT rect, UINT format,
                     const DRAWTEXTPARAMS* params = nullptr) {
  FixedMeasure measure;
  TextLayout layout(measure, 13, 1, 5);
  return layout.Run(text, rect, format, params);
}

std::u16string Joined(const TextLayoutResult& r) {
  std::u16string out;
  for (size_t i = 0; i < r.lines.size(); ++i) {
    if (i > 0) out += u'|';
    out += r.lines[i].text;
  }
  return out;
}

TEST(TextLayoutTest, LinesPositionsAndHeights) {
  const LineCase cases[] = {
      {u"Hello", {0, 0, 100, 20}, DT_SINGLELINE, u"Hello", 13, 0, 0},
      {u"Hello", {0, 0, 100, 20}, DT_SINGLELINE | DT_CENTER, u"Hello", 13, 35, 0},
      {u"Hello", {0, 0, 100, 20}, DT_SINGLELINE | DT_RIGHT, u"Hello", 13, 70, 0},
      {u"ab", {0, 0, 31, 20}, DT_CENTER, u"ab", 13, 9, 0},  // (0 + 31 - 12) / 2
      {u"Hello", {0, 0, 10, 20}, DT_CENTER | DT_NOCLIP, u"Hello", 13, -10, 0},
      {u"Hello", {5, 10, 100, 30}, DT_SINGLELINE | DT_VCENTER, u"Hello", 16, 5, 13},
      {u"Hello", {5, 10, 100, 31}, DT_SINGLELINE | DT_VCENTER, u"Hello", 17, 5, 14},
      {u"Hello", {0, 0, 100, 20}, DT_SINGLELINE | DT_BOTTOM, u"Hello", 20, 0, 7},
      // Vertical placement needs DT_SINGLELINE.
      {u"Hello", {0, 0, 100, 20}, DT_VCENTER, u"Hello", 13, 0, 0},
      {u"Hello", {0, 0, 100, 20}, DT_BOTTOM, u"Hello", 13, 0, 0},
      // Line breaks: CR LF, LF and CR each end a line.
      {u"ab\r\ncd\nef\rgh", {0, 0, 100, 100}, 0, u"ab|cd|ef|gh", 52, 0, 0},
      {u"ab\n\ncd", {0, 0, 100, 100}, 0, u"ab||cd", 39, 0, 0},
      {u"ab\r\ncd", {0, 0, 100, 100}, DT_SINGLELINE, u"ab\r\ncd", 13, 0, 0},
      // Prefixes.
      {u"&File", {0, 0, 100, 20}, DT_SINGLELINE, u"File", 13, 0, 0},
      {u"a&&b", {0, 0, 100, 20}, DT_SINGLELINE, u"a&b", 13, 0, 0},
      {u"ab&", {0, 0, 100, 20}, DT_SINGLELINE, u"ab&", 13, 0, 0},
      {u"&File", {0, 0, 100, 20}, DT_SINGLELINE | DT_NOPREFIX, u"&File", 13, 0, 0},
      // Word breaks before a word that follows a blank; the line keeps its
      // trailing blank, and a word fits only with the blank after it.
      {u"aaa bbb ccc", {0, 0, 42, 100}, DT_WORDBREAK, u"aaa bbb |ccc", 26, 0, 0},
      {u"aaa bbb ccc", {0, 0, 41, 100}, DT_WORDBREAK, u"aaa |bbb ccc", 26, 0, 0},
      {u"aaa bbb ccc", {0, 0, 38, 100}, DT_WORDBREAK, u"aaa |bbb |ccc", 39, 0, 0},
      {u"aaa bbb ccc", {0, 0, 38, 100}, DT_WORDBREAK | DT_CENTER, u"aaa|bbb|ccc", 39, 10, 0},
      {u"aaa bbb ccc", {0, 0, 38, 100}, DT_WORDBREAK | DT_RIGHT, u"aaa|bbb|ccc", 39, 20, 0},
      {u"aaa   bbb", {0, 0, 20, 100}, DT_WORDBREAK, u"aaa|bbb", 26, 0, 0},
      {u"aaa\tbbb", {0, 0, 20, 100}, DT_WORDBREAK, u"aaa|bbb", 26, 0, 0},
      {u"  aaa", {0, 0, 100, 100}, DT_WORDBREAK, u"  aaa", 13, 0, 0},
      {u"aaa bbb", {0, 0, 10, 100}, DT_WORDBREAK | DT_SINGLELINE, u"aaa bbb", 13, 0, 0},
      // A word wider than the line stays whole, except in an edit control.
      {u"abcdefghij", {0, 0, 30, 100}, DT_WORDBREAK, u"abcdefghij", 13, 0, 0},
      {u"abcdefghij", {0, 0, 30, 100}, DT_WORDBREAK | DT_EDITCONTROL, u"abcde|fghij", 26, 0, 0},
      {u"abcdefghij klm",
       {0, 0, 30, 100},
       DT_WORDBREAK | DT_WORD_ELLIPSIS,
       u"abcd...|klm",
       26,
       0,
       0},
      // Ellipses only for lines too wide.
      {u"abcdefghij", {0, 0, 30, 20}, DT_SINGLELINE | DT_END_ELLIPSIS, u"abcd...", 13, 0, 0},
      {u"abcde", {0, 0, 30, 20}, DT_SINGLELINE | DT_END_ELLIPSIS, u"abcde", 13, 0, 0},
      {u"abcdefghij", {0, 0, 3, 20}, DT_SINGLELINE | DT_END_ELLIPSIS, u"...", 13, 0, 0},
      {u"c:\\dir\\file.txt",
       {0, 0, 70, 20},
       DT_SINGLELINE | DT_PATH_ELLIPSIS,
       u"c:...\\file.txt",
       13,
       0,
       0},
      {u"c:\\dir\\file.txt",
       {0, 0, 200, 20},
       DT_SINGLELINE | DT_PATH_ELLIPSIS,
       u"c:\\dir\\file.txt",
       13,
       0,
       0},
      // Clipped drawing stops at the line that reaches the bottom.
      {u"a\nb\nc", {0, 0, 100, 20}, 0, u"a|b", 26, 0, 0},
      {u"a\nb\nc", {0, 0, 100, 25}, 0, u"a|b", 26, 0, 0},
      {u"a\nb\nc", {0, 0, 100, 26}, 0, u"a|b|c", 39, 0, 0},
      {u"a\nb\nc", {0, 0, 100, 20}, DT_NOCLIP, u"a|b|c", 39, 0, 0},
      {u"a\nb\nc", {0, 0, 100, 20}, DT_CALCRECT, u"a|b|c", 39, 0, 0},
      {u"a\nb\nc", {0, 0, 100, 20}, DT_EDITCONTROL, u"a", 13, 0, 0},
      {u"a\nb\nc", {0, 0, 100, 26}, DT_EDITCONTROL, u"a|b", 26, 0, 0},
      // External leading.
      {u"a\nb", {0, 0, 100, 100}, DT_EXTERNALLEADING, u"a|b", 28, 0, 0},
  };
  for (const LineCase& c : cases) {
    SCOPED_TRACE(std::string(c.lines.begin(), c.lines.end()) + " format " +
                 std::to_string(c.format));
    const TextLayoutResult r = Lay(c.text, c.rect, c.format);
    EXPECT_EQ(Joined(r), c.lines);
    EXPECT_EQ(r.height, c.height);
    ASSERT_FALSE(r.lines.empty());
    EXPECT_EQ(r.lines[0].x, c.first_x);
    EXPECT_EQ(r.lines[0].y, c.first_y);
  }
}

TEST(TextLayoutTest, LinesFollowOneAnother) {
  const TextLayoutResult r = Lay(u"ab\ncdef\ng", {10, 20, 100, 200}, DT_RIGHT);
  ASSERT_EQ(r.lines.size(), 3u);
  EXPECT_EQ(r.lines[1].y, 33);
  EXPECT_EQ(r.lines[2].y, 46);
  EXPECT_EQ(r.lines[1].x, 100 - 24);
  EXPECT_EQ(r.lines[1].width, 24);
}

TEST(TextLayoutTest, PrefixIndexFollowsTheShownText) {
  struct Case {
    const char16_t* text;
    UINT format;
    int line;
    int prefix;
  } cases[] = {
      {u"&File", DT_SINGLELINE, 0, 0},
      {u"Sa&ve", DT_SINGLELINE, 0, 2},
      {u"a&&b", DT_SINGLELINE, 0, -1},
      {u"&&&x", DT_SINGLELINE, 0, 1},
      {u"&a&b", DT_SINGLELINE, 0, 1},  // the last marked character wins
      {u"&File", DT_SINGLELINE | DT_NOPREFIX, 0, -1},
      {u"one\ntw&o", 0, 1, 2},
      {u"aaa b&bb", DT_WORDBREAK, 1, 1},  // on the second line after the wrap
      {u"a\r\n&b", DT_SINGLELINE, 0, 3},  // CR and LF stay on a single line
      {u"abcdefg&hij", DT_SINGLELINE | DT_END_ELLIPSIS, 0, -1},  // cut off
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::u16string(c.text).size());
    const TextLayoutResult r = Lay(c.text, {0, 0, 30, 100}, c.format | DT_NOCLIP);
    ASSERT_GT(r.lines.size(), static_cast<size_t>(c.line));
    EXPECT_EQ(r.lines[static_cast<size_t>(c.line)].prefix, c.prefix);
  }
}

TEST(TextLayoutTest, CalcRectGivesTheTextsBox) {
  TextLayoutResult r = Lay(u"ab\ncdef", {5, 7, 100, 8}, DT_CALCRECT);
  EXPECT_EQ(r.bounds.left, 5);
  EXPECT_EQ(r.bounds.top, 7);
  EXPECT_EQ(r.bounds.right, 5 + 24);
  EXPECT_EQ(r.bounds.bottom, 7 + 26);
  EXPECT_EQ(r.height, 26);

  // A word too long widens the rectangle past the width given.
  r = Lay(u"abcdefghij", {0, 0, 30, 10}, DT_CALCRECT | DT_WORDBREAK);
  EXPECT_EQ(r.bounds.right, 60);
  // A measured rectangle ends where the centred or bottom line ends.
  r = Lay(u"ab", {0, 10, 100, 110}, DT_CALCRECT | DT_SINGLELINE | DT_VCENTER);
  EXPECT_EQ(r.bounds.top, 10);
  EXPECT_EQ(r.bounds.bottom, 10 + 43 + 13);
  EXPECT_EQ(r.height, 43 + 13);
  r = Lay(u"ab", {0, 10, 100, 110}, DT_CALCRECT | DT_SINGLELINE | DT_BOTTOM);
  EXPECT_EQ(r.bounds.bottom, 110);
  // Centred text is measured from the left edge.
  r = Lay(u"ab", {0, 0, 100, 100}, DT_CALCRECT | DT_CENTER | DT_WORDBREAK);
  EXPECT_EQ(r.bounds.left, 0);
  EXPECT_EQ(r.bounds.right, 12);
}

TEST(TextLayoutTest, EmptyTextHasALineOfHeight) {
  TextLayoutResult r = Lay(u"", {3, 4, 50, 60}, DT_CALCRECT);
  EXPECT_EQ(r.height, 13);
  EXPECT_EQ(r.bounds.right, 3);
  EXPECT_EQ(r.bounds.bottom, 4);
  EXPECT_TRUE(r.lines.empty());
  r = Lay(u"", {3, 4, 50, 60}, DT_CALCRECT | DT_SINGLELINE);
  EXPECT_EQ(r.bounds.bottom, 17);
}

TEST(TextLayoutTest, TabsExpandToStops) {
  // Eight average widths by default: 40 pixels.
  EXPECT_EQ(Lay(u"a\tb", {0, 0, 200, 20}, DT_EXPANDTABS).lines[0].width, 46);
  EXPECT_EQ(Lay(u"\tb", {0, 0, 200, 20}, DT_EXPANDTABS).lines[0].width, 46);
  EXPECT_EQ(Lay(u"a\t\tb", {0, 0, 200, 20}, DT_EXPANDTABS).lines[0].width, 86);
  // Without DT_EXPANDTABS a tab is a character like any other.
  EXPECT_EQ(Lay(u"a\tb", {0, 0, 200, 20}, 0).lines[0].width, 18);
  // DT_TABSTOP: the second byte is the tab length and no other flag.
  const UINT four = DT_TABSTOP | DT_EXPANDTABS | (4u << 8);
  TextLayoutResult r = Lay(u"a\tb", {0, 0, 200, 20}, four);
  EXPECT_EQ(r.lines[0].width, 26);
  EXPECT_EQ(r.format & 0xFF00u, 0u);
  // 4 << 8 is DT_CALCRECT's bit: it must not measure.
  const UINT calc_bits = DT_TABSTOP | DT_EXPANDTABS | (DT_CALCRECT);
  EXPECT_EQ(Lay(u"a\tb", {0, 0, 200, 20}, calc_bits).format & DT_CALCRECT, 0u);
  // DRAWTEXTPARAMS sets the tab length too.
  DRAWTEXTPARAMS params{sizeof(DRAWTEXTPARAMS), 2, 0, 0, 0};
  EXPECT_EQ(Lay(u"a\tb", {0, 0, 200, 20}, DT_EXPANDTABS, &params).lines[0].width, 16);
}

TEST(TextLayoutTest, MarginsNarrowTheLine) {
  DRAWTEXTPARAMS params{sizeof(DRAWTEXTPARAMS), 0, 5, 7, 0};
  TextLayoutResult r = Lay(u"ab", {10, 0, 100, 20}, DT_SINGLELINE, &params);
  EXPECT_EQ(r.lines[0].x, 15);
  r = Lay(u"ab", {10, 0, 100, 20}, DT_SINGLELINE | DT_RIGHT, &params);
  EXPECT_EQ(r.lines[0].x, 100 - 7 - 12);
  r = Lay(u"ab", {10, 0, 100, 20}, DT_SINGLELINE | DT_CALCRECT, &params);
  EXPECT_EQ(r.bounds.right, 10 + 12 + 12);
  EXPECT_EQ(r.length_drawn, 2u);
}

TEST(TextLayoutTest, ModifiedTextIsTheEllipsisLine) {
  TextLayoutResult r = Lay(u"abcdefghij", {0, 0, 30, 20}, DT_SINGLELINE | DT_END_ELLIPSIS);
  EXPECT_TRUE(r.modified);
  EXPECT_EQ(r.modified_text, u"abcd...");
  r = Lay(u"abc", {0, 0, 30, 20}, DT_SINGLELINE | DT_END_ELLIPSIS);
  EXPECT_FALSE(r.modified);
}

TEST(TextLayoutTest, SurrogatePairsAreOneCharacter) {
  // U+1F600 as a pair measures as one character.
  EXPECT_EQ(Lay(u"a\U0001F600b", {0, 0, 200, 20}, 0).lines[0].width, 18);
  // An ellipsis never splits the pair.
  const TextLayoutResult r = Lay(u"\U0001F600\U0001F600\U0001F600\U0001F600", {0, 0, 16, 20},
                                 DT_SINGLELINE | DT_END_ELLIPSIS);
  EXPECT_EQ(r.lines[0].text, std::u16string(u"\U0001F600...").c_str());
}

TEST(TextLayoutTest, ExtremeRectanglesDoNotOverflow) {
  const RECT rects[] = {{INT_MIN, INT_MIN, INT_MAX, INT_MAX},
                        {INT_MAX, INT_MAX, INT_MIN, INT_MIN},
                        {INT_MAX - 5, 0, INT_MAX, INT_MAX},
                        {0, 0, -100, -100}};
  const UINT formats[] = {0,
                          DT_CENTER | DT_VCENTER | DT_SINGLELINE,
                          DT_RIGHT | DT_BOTTOM | DT_SINGLELINE,
                          DT_WORDBREAK | DT_CALCRECT,
                          DT_WORDBREAK | DT_EDITCONTROL | DT_END_ELLIPSIS,
                          DT_PATH_ELLIPSIS | DT_SINGLELINE};
  for (const RECT& rect : rects) {
    for (UINT format : formats) {
      const TextLayoutResult r = Lay(u"aaa bbb\nccc\\ddd", rect, format);
      EXPECT_FALSE(r.lines.empty());
    }
  }
  // Huge text: the layout is linear and widths saturate.
  const std::u16string big(1 << 20, u'x');
  const TextLayoutResult r = Lay(big, {0, 0, 100, 100}, DT_SINGLELINE | DT_END_ELLIPSIS);
  EXPECT_EQ(r.lines[0].width, Lay(u"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx", {0, 0, 100, 100},
                                  DT_SINGLELINE | DT_END_ELLIPSIS)
                                  .lines[0]
                                  .width);
  const TextLayoutResult wrapped = Lay(big, {0, 0, 100, 100}, DT_WORDBREAK | DT_EDITCONTROL);
  EXPECT_EQ(wrapped.lines.size(), 7u);  // 16 characters a line, only the visible lines
}

}  // namespace
}  // namespace vantor::platform
