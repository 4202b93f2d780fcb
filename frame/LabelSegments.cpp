#include "frame/LabelSegments.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>

#include "runtime/Conversion.h"
#include "runtime/Strings.h"

namespace vantor::frame {

namespace {

constexpr StringView kMarker{LabelSegments::kBreakMarker};

String DecimalOf(uint32_t colour) {
  // A Long, as the host keeps colours: system colours read negative.
  return FromUtf8(std::to_string(static_cast<int32_t>(colour)));
}

// The tag's kind and value when the lower-cased text is one of the language's.
bool Classify(const String& tag, uint32_t foreColor, LabelTag& out) {
  struct Known {
    const char16_t* text;
    int32_t kind;
    const char16_t* value;
  };
  static constexpr Known kKnown[] = {
      {u"<b>", kTagBold, u"True"},      {u"</b>", kTagBold, u"False"},
      {u"<strong>", kTagBold, u"True"}, {u"</strong>", kTagBold, u"False"},
      {u"<i>", kTagItalic, u"True"},    {u"</i>", kTagItalic, u"False"},
      {u"<u>", kTagUnderline, u"True"}, {u"</u>", kTagUnderline, u"False"},
      {u"<s>", kTagStrike, u"True"},    {u"</s>", kTagStrike, u"False"},
  };
  for (const Known& k : kKnown) {
    if (tag == k.text) {
      out.Kind = k.kind;
      out.Value = k.value;
      return true;
    }
  }
  if (tag.size() >= 4 && tag.compare(0, 3, u"<c=") == 0 && tag.back() == u'>') {
    out.Kind = kTagColour;
    out.Value = tag.substr(3, tag.size() - 4);
    return true;
  }
  if (tag == u"</c>") {
    out.Kind = kTagColour;
    out.Value = DecimalOf(foreColor);
    return true;
  }
  // A CR LF pair is listed among the breaks, although a text that starts
  // with "<" can never be one; a CR LF in the caption breaks when printed.
  if (tag == u"<br>" || tag == u"</br>" || tag == u"</ br>" || tag == u"\r\n") {
    out.Kind = kTagBreak;
    out.Value.clear();
    return true;
  }
  return false;
}

void Apply(const LabelTag& tag, LabelSegment& segment) {
  const bool on = tag.Value == u"True";
  switch (tag.Kind) {
    case kTagBold:
      segment.Bold = on;
      break;
    case kTagItalic:
      segment.Italic = on;
      break;
    case kTagUnderline:
      segment.Underline = on;
      break;
    case kTagStrike:
      segment.Strikethrough = on;
      break;
    case kTagColour:
      segment.Colour = LabelSegments::ColourOf(tag.Value);
      break;
    case kTagBreak:
      segment.NewLine = true;
      break;
    default:
      break;
  }
}

bool Blank(StringView text) {
  return Trim(text).empty();
}

// A cut: the text before `head` stays, the text from `tail` goes to a new line.
struct Cut {
  size_t head = 0;
  size_t tail = 0;
};

// Where a text that runs past the width is cut: at the last blank that
// leaves what stays within the width (and something on a line of its own).
// When no blank fits, a segment that begins a word (after a blank, on a
// line already begun) goes to the next line whole; otherwise the first blank
// that leaves a word behind keeps the overflow to that one word. Nothing
// when the text has no place to cut.
std::optional<Cut> CutAt(const String& text, double x, double width, bool afterBlank, bool bold,
                         bool italic, const LabelSegments::WidthFn& widthOf) {
  const bool lineStart = x <= 0;
  for (size_t p = text.rfind(u' '); p != String::npos;
       p = p == 0 ? String::npos : text.rfind(u' ', p - 1)) {
    const String head = RTrim(StringView(text).substr(0, p));
    if (head.empty() && lineStart) break;
    if (x + widthOf(head, bold, italic) <= width) return Cut{p, p + 1};
  }
  if (!lineStart && afterBlank) return Cut{0, 0};
  for (size_t p = text.find(u' '); p != String::npos; p = text.find(u' ', p + 1)) {
    if (!Blank(StringView(text).substr(0, p)) || !lineStart) return Cut{p, p + 1};
  }
  return std::nullopt;
}

}  // namespace

LabelTag LabelSegments::FindTag(StringView text, uint32_t foreColor) {
  size_t from = 0;
  for (;;) {
    const size_t open = text.find(u'<', from);
    if (open == StringView::npos) return LabelTag{};
    const size_t close = text.find(u'>', open);
    if (close == StringView::npos) return LabelTag{};
    LabelTag tag;
    if (Classify(LCase(text.substr(open, close - open + 1)), foreColor, tag)) {
      tag.Start = static_cast<int32_t>(open + 1);
      tag.End = static_cast<int32_t>(close + 1);
      return tag;
    }
    // Not a tag of the language: plain text, and the search goes on inside it.
    from = open + 1;
  }
}

uint32_t LabelSegments::ColourOf(StringView colourText) {
  // Ampersands come doubled from captions where "&" marks an access key.
  const String text = Replace(colourText, u"&&", u"&");
  double sum = 0;
  double place = 1;
  for (const String& part : Split(text, u",")) {
    sum += Val(part) * place;
    place *= 256;
  }
  if (!std::isfinite(sum) || std::fabs(sum) >= 9.0e18) return 0;
  // Rounded as the platform rounds into a Long; the colour keeps 32 bits.
  return static_cast<uint32_t>(static_cast<int64_t>(std::nearbyint(sum)));
}

std::vector<LabelSegment> LabelSegments::Parse(StringView caption, const LabelStyle& style) {
  std::vector<LabelSegment> segments(1);
  LabelSegment& first = segments.front();
  first.Text = String(caption);
  first.Bold = style.Bold;
  first.Italic = style.Italic;
  first.Underline = style.Underline;
  first.Strikethrough = style.Strikethrough;
  first.NewLine = true;
  first.Colour = style.Colour;

  for (;;) {
    LabelSegment& last = segments.back();
    const LabelTag tag = FindTag(last.Text, style.ForeColor);
    if (tag.Kind == kTagNone) break;
    String left = last.Text.substr(0, static_cast<size_t>(tag.Start - 1));
    String right = last.Text.substr(static_cast<size_t>(tag.End));
    // A style tag with nothing before it styles the segment it is in; a
    // line break always cuts, even before nothing, so "<br>" first leaves an
    // empty first line.
    if (tag.Kind != kTagBreak && Blank(left)) {
      last.Text = left + right;
      Apply(tag, last);
      continue;
    }
    last.Text = std::move(left);
    if (Blank(right)) continue;  // a tag with only blanks after it is dropped
    LabelSegment next = last;
    next.Text = std::move(right);
    next.NewLine = false;
    Apply(tag, next);
    segments.push_back(std::move(next));
  }
  return segments;
}

void LabelSegments::Wrap(std::vector<LabelSegment>& segments, double width,
                         const WidthFn& widthOf) {
  double x = 0;
  bool afterBlank = false;  // the line so far ends in a blank
  size_t i = 0;
  while (i < segments.size()) {
    LabelSegment& segment = segments[i];
    if (segment.NewLine) {
      x = 0;
      afterBlank = false;
    }
    String text = segment.Text;
    size_t mark = text.find(kMarker);
    if (mark == String::npos && x + widthOf(text, segment.Bold, segment.Italic) > width) {
      const std::optional<Cut> cut =
          CutAt(text, x, width, afterBlank, segment.Bold, segment.Italic, widthOf);
      if (cut) {
        const String head = RTrim(StringView(text).substr(0, cut->head));
        mark = head.size();
        text = head + String(kMarker) + String(StringView(text).substr(cut->tail));
      }
    }
    if (mark == String::npos) {
      x += widthOf(segment.Text, segment.Bold, segment.Italic);
      if (!segment.Text.empty()) afterBlank = segment.Text.back() == u' ';
      ++i;
      continue;
    }
    // Blanks at a cut would only push the next line in.
    String tail = LTrim(StringView(text).substr(mark + kMarker.size()));
    segment.Text = RTrim(StringView(text).substr(0, mark));
    if (!tail.empty()) {
      LabelSegment next = segment;
      next.Text = std::move(tail);
      next.NewLine = true;
      segments.insert(segments.begin() + static_cast<std::ptrdiff_t>(i) + 1, std::move(next));
    } else if (i + 1 < segments.size()) {
      segments[i + 1].NewLine = true;
    }
    // What stays is looked at again: it may still hold a marker of the
    // caption's own or run past the width.
  }
}

String LabelSegments::PlainText(const std::vector<LabelSegment>& segments) {
  String text;
  for (size_t i = 0; i < segments.size(); ++i) {
    text += segments[i].Text;
    if (i + 1 < segments.size() && segments[i + 1].NewLine) text += u"\r\n";
  }
  return text;
}

LabelExtent LabelSegments::Measure(const std::vector<LabelSegment>& segments, StringView caption,
                                   bool bold, bool italic, const WidthFn& widthOf,
                                   const HeightFn& heightOf) {
  LabelExtent extent;
  extent.Width = widthOf(u"Q", bold, italic);
  extent.Height = heightOf(u"Q");
  if (Blank(caption)) return extent;
  double line = 0;
  for (size_t i = 0; i < segments.size(); ++i) {
    if (i > 0 && segments[i].NewLine) line = 0;
    line += widthOf(segments[i].Text, segments[i].Bold, segments[i].Italic);
    extent.Width = std::max(extent.Width, line);
  }
  extent.PlainText = PlainText(segments);
  extent.Height = heightOf(extent.PlainText);
  return extent;
}

}  // namespace vantor::frame
