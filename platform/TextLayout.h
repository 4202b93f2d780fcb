#pragma once
// DrawText's layout, apart from any pixels: where its lines break, what each
// shows (access-key ampersands taken out, ellipses put in), where each goes,
// and what the call returns. The drawing code and DT_CALCRECT share it, so a
// measured rectangle always holds what is drawn into it.
#include <vector>

#include "platform/WinTypes.h"
#include "runtime/String.h"

namespace vantor::platform {

// Character widths for the layout; the font's glyph advances in use, fixed
// widths in tests.
class TextMeasure {
 public:
  virtual ~TextMeasure() = default;
  virtual int Advance(char32_t code_point) = 0;
};

struct TextLine {
  String text;      // what is shown: no prefix ampersands or line breaks
  LONG x = 0;       // left edge of the line, logical
  LONG y = 0;       // top edge
  int width = 0;    // pixels, tabs expanded
  int prefix = -1;  // the character to underline, an index into text
};

struct TextLayoutResult {
  std::vector<TextLine> lines;
  int height = 0;         // DrawText's return value
  RECT bounds{};          // the rectangle DT_CALCRECT gives back
  int tab_width = 0;      // pixels per tab stop; 0 when tabs are not expanded
  UINT format = 0;        // the format with a DT_TABSTOP length taken out
  bool modified = false;  // an ellipsis changed a line (DT_MODIFYSTRING)
  String modified_text;
  UINT length_drawn = 0;  // characters of the source the lines came from
};

class TextLayout {
 public:
  // line_height is the font's tmHeight, external_leading its
  // tmExternalLeading (added with DT_EXTERNALLEADING), average_width its
  // tmAveCharWidth (tab stops).
  TextLayout(TextMeasure& measure, int line_height, int external_leading, int average_width);

  TextLayoutResult Run(StringView text, const RECT& rect, UINT format,
                       const DRAWTEXTPARAMS* params);

  // The code point whose first (or only) code unit is at i; a lone surrogate
  // stands for itself.
  static char32_t CodePointAt(StringView text, size_t i);
  // True for the second code unit of a surrogate pair.
  static bool SecondHalf(StringView text, size_t i);

  // The pen position after one more character, a tab jumping to its stop.
  int PenAfter(char32_t code_point, int pen, int tab_width);
  // Width of a run of characters; tabs expanded when tab_width > 0.
  int Width(StringView text, int tab_width);
  // The pen position before each code unit, plus the total at the end
  // (text.size() + 1 entries); the second half of a surrogate pair adds
  // nothing.
  void Positions(StringView text, int tab_width, std::vector<int>& out);

 private:
  struct Source {
    String text;
    int prefix = -1;
    size_t consumed = 0;
  };
  Source NextSource(StringView text, size_t& pos, UINT format);
  // Splits a shown line where it passes max_width; returns the end of the
  // first line and sets next to where the following one starts.
  size_t Wrap(const String& text, size_t start, int max_width, UINT format, size_t& next,
              bool& ellipsis_word);
  String Ellipsify(const String& text, int max_width, UINT format, int& prefix);
  String EndEllipsis(const String& text, int max_width);

  TextMeasure& measure_;
  int line_height_;
  int external_leading_;
  int average_width_;
  int tab_width_ = 0;
  std::vector<int> scratch_;
};

}  // namespace vantor::platform
