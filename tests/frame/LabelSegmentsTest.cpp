// The label's tag language without a window: the tag search, the colours,
// the parse into segments, the wrap pass and the measure, each as a table of
// captions and what they must become. A segment is written compactly as
// "/bius{text}#RRGGBB": "/" when it starts a line, the style letters it
// has, its text, and its colour when that is not the start colour.
#include "frame/LabelSegments.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace vantor::frame {
namespace {

constexpr uint32_t kForeColor = 0x80000008;  // the label's default, a system colour
constexpr uint32_t kStartColour = 0x123456;  // as the screen would show it

LabelStyle Plain() {
  LabelStyle s;
  s.ForeColor = kForeColor;
  s.Colour = kStartColour;
  return s;
}

std::string Describe(const LabelSegment& s) {
  std::string out = s.NewLine ? "/" : "";
  if (s.Bold) out += "b";
  if (s.Italic) out += "i";
  if (s.Underline) out += "u";
  if (s.Strikethrough) out += "s";
  out += "{" + ToUtf8(s.Text) + "}";
  if (s.Colour != kStartColour) {
    char hex[16];
    std::snprintf(hex, sizeof hex, "#%06X", s.Colour);
    out += hex;
  }
  return out;
}

std::vector<std::string> Describe(const std::vector<LabelSegment>& segments) {
  std::vector<std::string> out;
  for (const LabelSegment& s : segments) out.push_back(Describe(s));
  return out;
}

std::vector<std::string> ParseOf(const char16_t* caption, const LabelStyle& style = Plain()) {
  return Describe(LabelSegments::Parse(caption, style));
}

// Ten pixels a character, twelve in bold; italic changes nothing.
double FakeWidth(StringView text, bool bold, bool) {
  return static_cast<double>(text.size()) * (bold ? 12 : 10);
}

// Sixteen pixels a line.
double FakeHeight(StringView text) {
  double lines = 1;
  for (size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == u'\r' && text[i + 1] == u'\n') ++lines;
  }
  return lines * 16;
}

// Segments from their compact form (the colour is left at the start colour).
std::vector<LabelSegment> Make(const std::vector<std::string>& described) {
  std::vector<LabelSegment> out;
  for (const std::string& d : described) {
    LabelSegment s;
    s.Colour = kStartColour;
    size_t i = 0;
    for (; d[i] != '{'; ++i) {
      switch (d[i]) {
        case '/':
          s.NewLine = true;
          break;
        case 'b':
          s.Bold = true;
          break;
        case 'i':
          s.Italic = true;
          break;
        case 'u':
          s.Underline = true;
          break;
        case 's':
          s.Strikethrough = true;
          break;
        default:
          break;
      }
    }
    s.Text = FromUtf8(d.substr(i + 1, d.size() - i - 2));
    out.push_back(s);
  }
  return out;
}

struct TagCase {
  const char16_t* text;
  int32_t kind;
  const char16_t* value;
  int32_t start, end;
};

TEST(LabelTagSearch, FindsTheFirstTagOfTheLanguage) {
  const TagCase cases[] = {
      {u"sem tags", kTagNone, u"", 0, 0},
      {u"ab<b>c", kTagBold, u"True", 3, 5},
      {u"</B>", kTagBold, u"False", 1, 4},
      {u"x<STRONG>", kTagBold, u"True", 2, 9},
      {u"x</strong>", kTagBold, u"False", 2, 10},
      {u"<i></i>", kTagItalic, u"True", 1, 3},
      {u"</i>", kTagItalic, u"False", 1, 4},
      {u"<u>", kTagUnderline, u"True", 1, 3},
      {u"</U>", kTagUnderline, u"False", 1, 4},
      {u"<s>", kTagStrike, u"True", 1, 3},
      {u"</s>", kTagStrike, u"False", 1, 4},
      {u"a<c=255,0,0>b", kTagColour, u"255,0,0", 2, 12},
      // The colour text is read later: its ampersands stay doubled here.
      {u"<C=&&HFF>", kTagColour, u"&&hff", 1, 9},
      {u"<c=>", kTagColour, u"", 1, 4},
      // "</c>" goes back to ForeColor, written as the host's Long.
      {u"</c>", kTagColour, u"-2147483640", 1, 4},
      {u"<br>", kTagBreak, u"", 1, 4},
      {u"</BR>", kTagBreak, u"", 1, 5},
      {u"</ br>", kTagBreak, u"", 1, 6},
      // Not tags of the language: plain text, and the search goes on.
      {u"a<x>b", kTagNone, u"", 0, 0},
      {u"a<x>b<i>", kTagItalic, u"True", 6, 8},
      {u"<<b>", kTagBold, u"True", 2, 4},
      {u"< b >", kTagNone, u"", 0, 0},
      {u"<br/>", kTagNone, u"", 0, 0},
      {u"1 < 2", kTagNone, u"", 0, 0},
      {u"> <", kTagNone, u"", 0, 0},
  };
  for (const TagCase& c : cases) {
    SCOPED_TRACE(ToUtf8(c.text));
    const LabelTag tag = LabelSegments::FindTag(c.text, kForeColor);
    EXPECT_EQ(tag.Kind, c.kind);
    EXPECT_EQ(ToUtf8(tag.Value), ToUtf8(c.value));
    EXPECT_EQ(tag.Start, c.start);
    EXPECT_EQ(tag.End, c.end);
  }
}

TEST(LabelTagSearch, ColourTextIsReadPartByPartInBgrOrder) {
  const struct {
    const char16_t* text;
    uint32_t colour;
  } cases[] = {
      {u"255,0,0", 0x0000FF},
      {u"0,255,0", 0x00FF00},
      {u"0,0,255", 0xFF0000},
      {u"1,2,3", 0x030201},
      {u"1,1", 0x000101},
      {u"16777215", 0xFFFFFF},
      {u"&&HFF", 0x0000FF},
      {u"&&h10,&&h20", 0x2010},
      {u" 12 , 34 ", 0x220C},
      {u"abc", 0},
      {u"", 0},
      {u"-2147483640", 0x80000008},
      {u"7x,2", 0x0207},
      {u"1.5", 2},
      {u"0,0,0,1", 0x01000000},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(ToUtf8(c.text));
    EXPECT_EQ(LabelSegments::ColourOf(c.text), c.colour);
  }
}

struct ParseCase {
  const char16_t* caption;
  std::vector<std::string> segments;
};

TEST(LabelParse, CaptionsBecomeSegments) {
  const ParseCase cases[] = {
      {u"", {"/{}"}},
      {u"Texto simples", {"/{Texto simples}"}},
      {u"<b>Negrito</b> normal", {"/b{Negrito}", "{ normal}"}},
      {u"<B>maiúscula", {"/b{maiúscula}"}},
      {u"Um <i>dois</i> três", {"/{Um }", "i{dois}", "{ três}"}},
      {u"a <u>b<s>c</u>d", {"/{a }", "u{b}", "us{c}", "s{d}"}},
      {u"<i><b>x", {"/bi{x}"}},
      // Blanks before a tag do not cut; they stay in the text.
      {u"  <b>x", {"/b{  x}"}},
      // Closing without opening is simply "not bold".
      {u"a</b>b", {"/{a}", "{b}"}},
      // A line break cuts even with nothing before it.
      {u"<br>Linha", {"/{}", "/{Linha}"}},
      {u"Um<br>Dois</br>Três</ br>Quatro", {"/{Um}", "/{Dois}", "/{Três}", "/{Quatro}"}},
      {u"Um<br><br>Três", {"/{Um}", "/{}", "/{Três}"}},
      // A tag followed only by blanks makes no segment, and is lost.
      {u"Fim <b>   ", {"/{Fim }"}},
      {u"a<br>", {"/{a}"}},
      {u"a <strong>b</strong>", {"/{a }", "b{b}"}},
      // Unknown tags and lone brackets are text.
      {u"a<x>b", {"/{a<x>b}"}},
      {u"a<x>b<i>c", {"/{a<x>b}", "i{c}"}},
      {u"1 < 2 e 3 > 2", {"/{1 < 2 e 3 > 2}"}},
      {u"x <c=255,0,0>vermelho</c> y", {"/{x }", "{vermelho}#0000FF", "{ y}#80000008"}},
      {u"<c=0,0,255>azul", {"/{azul}#FF0000"}},
      {u"x <c=&&HFF00>y", {"/{x }", "{y}#FFFFFF00"}},
      {u"x <c=&&HFF>y", {"/{x }", "{y}#0000FF"}},
      {u"x <c=nada>y", {"/{x }", "{y}#000000"}},
      {u"<b>a<br>b", {"/b{a}", "/b{b}"}},
  };
  for (const ParseCase& c : cases) {
    SCOPED_TRACE(ToUtf8(c.caption));
    EXPECT_EQ(ParseOf(c.caption), c.segments);
  }
}

TEST(LabelParse, TheFirstSegmentStartsFromTheFontAndForeColor) {
  LabelStyle style = Plain();
  style.Bold = true;
  style.Underline = true;
  EXPECT_EQ(ParseOf(u"x</b>y", style), (std::vector<std::string>{"/bu{x}", "u{y}"}));
  EXPECT_EQ(ParseOf(u"</b>y", style), (std::vector<std::string>{"/u{y}"}));
  const std::vector<LabelSegment> s = LabelSegments::Parse(u"a <c=1,2,3>b</c> c", style);
  ASSERT_EQ(s.size(), 3u);
  EXPECT_EQ(s[0].Colour, kStartColour);
  EXPECT_EQ(s[1].Colour, 0x030201u);
  EXPECT_EQ(s[2].Colour, kForeColor);  // as set, to be translated when drawn
}

struct WrapCase {
  std::vector<std::string> in;
  double width;
  std::vector<std::string> out;
};

TEST(LabelWrap, CutsAtTheLastBlankThatFits) {
  const WrapCase cases[] = {
      {{"/{aaa bbb ccc}"}, 1000, {"/{aaa bbb ccc}"}},
      {{"/{aaa bbb ccc}"}, 75, {"/{aaa bbb}", "/{ccc}"}},
      {{"/{aaa bbb ccc}"}, 35, {"/{aaa}", "/{bbb}", "/{ccc}"}},
      // Blanks at the cut are dropped on both sides.
      {{"/{aaa   bbb}"}, 50, {"/{aaa}", "/{bbb}"}},
      // The running x carries over segments, each measured in its own style.
      {{"/{aaaa }", "b{bb cc}"}, 80, {"/{aaaa }", "b{bb}", "/b{cc}"}},
      // A segment that starts a line starts again from 0.
      {{"/{aaaaa}", "/{bbbbb}"}, 50, {"/{aaaaa}", "/{bbbbb}"}},
      // A word longer than the line stays whole; what follows it wraps.
      {{"/{abcdefghij k}"}, 50, {"/{abcdefghij}", "/{k}"}},
      {{"/{abcdefghij}"}, 50, {"/{abcdefghij}"}},
      // A segment that begins with a blank moves to the next line whole.
      {{"/{aaaa}", "b{ bbbbb}"}, 60, {"/{aaaa}", "b{}", "/b{bbbbb}"}},
      // A word that starts after a blank and does not fit goes to the next
      // line whole; glued to the text before it, it stays.
      {{"/{aaaa }", "b{bbbbb}"}, 60, {"/{aaaa }", "b{}", "/b{bbbbb}"}},
      {{"/{aaaa}", "b{bbbbb}"}, 60, {"/{aaaa}", "b{bbbbb}"}},
      {{"/{aaaa }", "b{bb cc}"}, 60, {"/{aaaa }", "b{}", "/b{bb cc}"}},
      // Only blanks past the width: the next segment starts a line.
      {{"/{aaa }", "{b}"}, 35, {"/{aaa}", "/{b}"}},
      // The reserved word breaks wherever it stands.
      {{"/{umnovyradekdois}"}, 1000, {"/{um}", "/{dois}"}},
      {{"/{um novyradek dois novyradek três}"}, 1000, {"/{um}", "/{dois}", "/{três}"}},
      {{"/{linha novyradek}", "i{x}"}, 1000, {"/{linha}", "/i{x}"}},
  };
  for (const WrapCase& c : cases) {
    SCOPED_TRACE(c.in.front() + " at " + std::to_string(c.width));
    std::vector<LabelSegment> segments = Make(c.in);
    LabelSegments::Wrap(segments, c.width, FakeWidth);
    EXPECT_EQ(Describe(segments), c.out);
  }
}

TEST(LabelWrap, TheCutKeepsStyleAndColour) {
  std::vector<LabelSegment> segments = LabelSegments::Parse(u"<i><c=0,0,255>um dois", Plain());
  LabelSegments::Wrap(segments, 40, FakeWidth);
  EXPECT_EQ(Describe(segments), (std::vector<std::string>{"/i{um}#FF0000", "/i{dois}#FF0000"}));
}

TEST(LabelMeasure, WidestLineAndHeightOfThePlainText) {
  const struct {
    const char16_t* caption;
    double width, height;
    const char* plain;
  } cases[] = {
      {u"", 10, 16, ""},  // an empty caption measures as "Q"
      {u"   ", 10, 16, ""},
      {u"a", 10, 16, "a"},  // never narrower than "Q"
      {u"abc", 30, 16, "abc"},
      {u"aa<br>bbbb", 40, 32, "aa\r\nbbbb"},
      {u"aa <b>bb</b><br>c", 54, 32, "aa bb\r\nc"},
      {u"<br>x", 10, 32, "\r\nx"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(ToUtf8(c.caption));
    const std::vector<LabelSegment> s = LabelSegments::Parse(c.caption, Plain());
    const LabelExtent e = LabelSegments::Measure(s, c.caption, false, false, FakeWidth, FakeHeight);
    EXPECT_EQ(e.Width, c.width);
    EXPECT_EQ(e.Height, c.height);
    EXPECT_EQ(ToUtf8(e.PlainText), c.plain);
  }
  // "Q" in the label's own weight.
  const LabelExtent bold = LabelSegments::Measure(LabelSegments::Parse(u"", Plain()), u"", true,
                                                  false, FakeWidth, FakeHeight);
  EXPECT_EQ(bold.Width, 12);
}

TEST(LabelPlainText, LinesJoinWithCrLf) {
  EXPECT_EQ(ToUtf8(LabelSegments::PlainText(Make({"/{a}", "b{b}", "/{c}", "/{}"}))), "ab\r\nc\r\n");
  EXPECT_EQ(ToUtf8(LabelSegments::PlainText(Make({"/{}"}))), "");
}

}  // namespace
}  // namespace vantor::frame
