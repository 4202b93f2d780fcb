#pragma once
// The label's small tag language and the pieces it cuts a caption into.
//
// A caption such as "Total: <b>R$ 10,00</b><br><c=255,0,0>vencido</c>" is
// parsed into segments, each a run of text with its own bold, italic,
// underline, strike-through and colour, and a flag saying that it starts a
// line. The wrap pass then cuts segments that run past the label's width.
//
// Everything here is a pure function of its arguments: text widths come from
// a callback, so the rules can be checked without a window or a font.
#include <cstdint>
#include <functional>
#include <vector>

#include "runtime/String.h"

namespace vantor::frame {

struct LabelSegment {
  String Text;
  bool Bold = false;
  bool Italic = false;
  bool Underline = false;
  bool Strikethrough = false;
  bool NewLine = false;  // this segment starts a line
  uint32_t Colour = 0;   // OLE colour
};

// What a tag search found in one segment's text.
enum LabelTagKind : int32_t {
  kTagNone = 1,
  kTagBold = 2,
  kTagItalic = 3,
  kTagUnderline = 4,
  kTagStrike = 5,
  kTagColour = 6,
  kTagBreak = 7,
};

struct LabelTag {
  int32_t Kind = kTagNone;
  // "True" or "False" for the style tags, the colour text for a colour tag.
  String Value;
  // 1-based positions of "<" and ">" in the searched text.
  int32_t Start = 0;
  int32_t End = 0;
};

// What the first segment starts with: the label's font flags, its ForeColor
// as set (a "</c>" returns to it) and that colour as the screen shows it.
struct LabelStyle {
  bool Bold = false;
  bool Italic = false;
  bool Underline = false;
  bool Strikethrough = false;
  uint32_t ForeColor = 0;
  uint32_t Colour = 0;
};

// What the label measures for AutoSize and CaptionWidth.
struct LabelExtent {
  double Width = 0;
  double Height = 0;
  String PlainText;  // the caption without its tags, lines joined by CR LF
};

class LabelSegments {
 public:
  // Width of a text in the label's font with the given bold and italic.
  using WidthFn = std::function<double(StringView text, bool bold, bool italic)>;
  // Height of a text (all its lines) in the label's font.
  using HeightFn = std::function<double(StringView text)>;

  // The word that marks a cut while wrapping. A caption that holds it breaks
  // there, which is why it is reserved.
  static constexpr char16_t kBreakMarker[] = u"novyradek";

  // The first known tag of the text. A "<...>" that is no tag of the
  // language is plain text and the search goes on after its "<".
  static LabelTag FindTag(StringView text, uint32_t foreColor);
  // "r,g,b" (or one number) as the label reads it; "&&" stands for "&".
  static uint32_t ColourOf(StringView colourText);
  // Cuts the caption into segments (never fewer than one).
  static std::vector<LabelSegment> Parse(StringView caption, const LabelStyle& style);
  // Cuts segments whose text runs past `width` at the last blank that fits,
  // and at every break marker.
  static void Wrap(std::vector<LabelSegment>& segments, double width, const WidthFn& widthOf);
  // The text of the segments, CR LF where a segment starts a line.
  static String PlainText(const std::vector<LabelSegment>& segments);
  // The widest line and the height of all lines; an empty caption measures
  // as "Q" in the label's own bold and italic.
  static LabelExtent Measure(const std::vector<LabelSegment>& segments, StringView caption,
                             bool bold, bool italic, const WidthFn& widthOf,
                             const HeightFn& heightOf);
};

}  // namespace vantor::frame
