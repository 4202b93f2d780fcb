#include "platform/TextLayout.h"

#include <algorithm>
#include <cstdint>

#include "platform/Text.h"

namespace vantor::platform {

namespace {

constexpr char16_t kEllipsis[] = u"...";

bool IsHigh(char16_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}
bool IsLow(char16_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}

}  // namespace

char32_t TextLayout::CodePointAt(StringView text, size_t i) {
  const char16_t c = text[i];
  if (IsHigh(c) && i + 1 < text.size() && IsLow(text[i + 1])) {
    return 0x10000 + ((static_cast<char32_t>(c) - 0xD800) << 10) + (text[i + 1] - 0xDC00);
  }
  return c;
}

bool TextLayout::SecondHalf(StringView text, size_t i) {
  return i > 0 && i < text.size() && IsLow(text[i]) && IsHigh(text[i - 1]);
}

TextLayout::TextLayout(TextMeasure& measure, int line_height, int external_leading,
                       int average_width)
    : measure_(measure),
      line_height_(line_height),
      external_leading_(external_leading),
      average_width_(average_width) {}

int TextLayout::PenAfter(char32_t code_point, int pen, int tab_width) {
  // Widths saturate far beyond any surface, so huge text cannot overflow.
  constexpr int kLimit = 1 << 30;
  if (pen >= kLimit) return kLimit;
  if (code_point == u'\t' && tab_width > 0) return (pen / tab_width + 1) * tab_width;
  return std::min(kLimit, pen + measure_.Advance(code_point));
}

int TextLayout::Width(StringView text, int tab_width) {
  int pen = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (SecondHalf(text, i)) continue;
    pen = PenAfter(CodePointAt(text, i), pen, tab_width);
  }
  return pen;
}

void TextLayout::Positions(StringView text, int tab_width, std::vector<int>& out) {
  out.resize(text.size() + 1);
  int pen = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    out[i] = pen;
    if (SecondHalf(text, i)) continue;
    pen = PenAfter(CodePointAt(text, i), pen, tab_width);
  }
  out[text.size()] = pen;
}

// One line of the source: up to a CR, LF or CR LF (all one line with
// DT_SINGLELINE), with the prefix ampersands
// resolved: "&x" underlines x, "&&" shows one "&", and a final "&" shows as
// itself. The last marked character of a line is the one underlined.
TextLayout::Source TextLayout::NextSource(StringView text, size_t& pos, UINT format) {
  Source line;
  const bool single = (format & DT_SINGLELINE) != 0;
  const bool prefixes = (format & DT_NOPREFIX) == 0;
  const size_t begin = pos;
  size_t i = pos;
  while (i < text.size()) {
    const char16_t c = text[i];
    // On a single line CR and LF are characters like any other (the font's
    // missing-glyph box, as the platform draws them).
    if (!single && (c == u'\r' || c == u'\n')) {
      ++i;
      if (c == u'\r' && i < text.size() && text[i] == u'\n') ++i;
      break;
    }
    if (c == u'&' && prefixes && i + 1 < text.size()) {
      if (text[i + 1] == u'&') {
        line.text.push_back(u'&');
        i += 2;
      } else {
        line.prefix = static_cast<int>(line.text.size());
        ++i;
      }
      continue;
    }
    line.text.push_back(c);
    ++i;
  }
  if (line.prefix >= static_cast<int>(line.text.size())) line.prefix = -1;
  line.consumed = i - begin;
  pos = i;
  return line;
}

// A line may break before a word that follows a blank. The line ends at the
// last such break whose text, its trailing blanks included, still fits; the
// blanks stay on the line (and in its width) unless it is centred or right
// aligned, which drop the one before the break.
size_t TextLayout::Wrap(const String& text, size_t start, int max_width, UINT format, size_t& next,
                        bool& ellipsis_word) {
  ellipsis_word = false;
  const size_t n = text.size();
  auto blank = [&](size_t i) { return text[i] == u' ' || text[i] == u'\t'; };
  auto break_before = [&](size_t i) { return i > start && i < n && !blank(i) && blank(i - 1); };

  // How many characters fit.
  int pen = 0;
  size_t fit = start;
  while (fit < n) {
    if (!SecondHalf(text, fit)) {
      const int after = PenAfter(CodePointAt(text, fit), pen, tab_width_);
      if (after > max_width) break;
      pen = after;
    }
    ++fit;
  }
  if (fit >= n) {
    next = n;
    return n;
  }
  size_t b = fit;
  while (b > start && !break_before(b)) --b;
  if (b > start) {
    next = b;
    size_t end = b;
    if ((format & (DT_CENTER | DT_RIGHT)) != 0 && text[end - 1] == u' ') --end;
    return end;
  }
  // One word wider than the line. An edit control breaks it between
  // characters; otherwise it stays whole (and overhangs), shortened with an
  // ellipsis under DT_WORD_ELLIPSIS.
  if ((format & DT_EDITCONTROL) != 0) {
    size_t cut = std::max(fit, start + 1);
    if (SecondHalf(text, cut)) ++cut;
    next = cut;
    return cut;
  }
  size_t end = fit;
  while (end < n && !blank(end)) ++end;
  next = end;
  while (next < n && blank(next)) ++next;
  ellipsis_word = (format & DT_WORD_ELLIPSIS) != 0;
  return end;
}

String TextLayout::EndEllipsis(const String& text, int max_width) {
  const int dots = Width(kEllipsis, 0);
  Positions(text, tab_width_, scratch_);
  size_t keep = 0;
  for (size_t k = text.size(); k > 0; --k) {
    if (SecondHalf(text, k)) continue;
    if (scratch_[k] + dots <= max_width) {
      keep = k;
      break;
    }
  }
  return text.substr(0, keep) + kEllipsis;
}

// Shortens a line wider than max_width. DT_PATH_ELLIPSIS keeps the last
// path element and takes characters out before it; DT_END_ELLIPSIS and
// DT_WORD_ELLIPSIS take them from the end. The prefix index is dropped when
// its character goes.
String TextLayout::Ellipsify(const String& text, int max_width, UINT format, int& prefix) {
  String shown = text;
  if ((format & DT_PATH_ELLIPSIS) != 0) {
    const size_t slash = text.find_last_of(u"\\/");
    if (slash != String::npos) {
      const String tail = text.substr(slash);
      const int fixed = Width(kEllipsis, 0) + Width(tail, 0);
      Positions(text, 0, scratch_);
      size_t keep = 0;
      for (size_t k = slash; k > 0; --k) {
        if (SecondHalf(text, k)) continue;
        if (scratch_[k] + fixed <= max_width) {
          keep = k;
          break;
        }
      }
      shown = text.substr(0, keep) + kEllipsis + tail;
      if (prefix >= static_cast<int>(keep)) prefix = -1;
      if ((format & (DT_END_ELLIPSIS | DT_WORD_ELLIPSIS)) == 0 ||
          Width(shown, tab_width_) <= max_width) {
        return shown;
      }
    } else if ((format & (DT_END_ELLIPSIS | DT_WORD_ELLIPSIS)) == 0) {
      return shown;
    }
  }
  shown = EndEllipsis(shown, max_width);
  if (prefix >= static_cast<int>(shown.size()) - 3) prefix = -1;
  return shown;
}

TextLayoutResult TextLayout::Run(StringView text, const RECT& rect, UINT format,
                                 const DRAWTEXTPARAMS* params) {
  TextLayoutResult result;
  // DT_TABSTOP puts the tab length in the second byte, which then holds no
  // other format bits.
  int tab_chars = 8;
  if ((format & DT_TABSTOP) != 0) {
    tab_chars = static_cast<int>((format >> 8) & 0xFF);
    format &= ~0xFF00u;
  }
  int left_margin = 0;
  int right_margin = 0;
  if (params != nullptr) {
    if (params->iTabLength > 0) tab_chars = params->iTabLength;
    left_margin = params->iLeftMargin;
    right_margin = params->iRightMargin;
  }
  result.format = format;
  tab_width_ = (format & DT_EXPANDTABS) != 0 ? std::max(0, tab_chars) * average_width_ : 0;
  result.tab_width = tab_width_;

  const int lh = line_height_ + ((format & DT_EXTERNALLEADING) != 0 ? external_leading_ : 0);
  const bool single = (format & DT_SINGLELINE) != 0;
  const bool calc = (format & DT_CALCRECT) != 0;
  const bool clip = (format & DT_NOCLIP) == 0;
  const bool wrap = !single && (format & DT_WORDBREAK) != 0;
  const bool ellipsis = (format & (DT_END_ELLIPSIS | DT_WORD_ELLIPSIS | DT_PATH_ELLIPSIS)) != 0;
  // Coordinates are carried wide so that a rectangle at the edge of the
  // range cannot overflow; what goes out is clamped back.
  const long long left = static_cast<long long>(rect.left) + left_margin;
  const long long right = static_cast<long long>(rect.right) - right_margin;
  const int max_width = static_cast<int>(std::clamp(right - left, -(1LL << 30), 1LL << 30));
  auto narrow = [](long long v) {
    return static_cast<LONG>(std::clamp<long long>(v, INT32_MIN, INT32_MAX));
  };

  // Empty text draws nothing but still has a line's height.
  if (text.empty()) {
    result.height = lh;
    result.bounds = rect;
    result.bounds.right = rect.left;
    result.bounds.bottom = single ? narrow(static_cast<long long>(rect.top) + lh) : rect.top;
    return result;
  }

  long long y = rect.top;
  // The vertical placement applies to a measured rectangle too: its bottom
  // is where the centred or bottom-aligned line ends.
  if (single) {
    if ((format & DT_VCENTER) != 0) {
      y = rect.top + (static_cast<long long>(rect.bottom) - rect.top - lh) / 2;
    } else if ((format & DT_BOTTOM) != 0) {
      y = static_cast<long long>(rect.bottom) - lh;
    }
  }

  int widest = 0;
  size_t pos = 0;
  bool last = false;
  while (pos < text.size() && !last) {
    Source source = NextSource(text, pos, format);
    size_t start = 0;
    do {
      TextLine line;
      size_t next = source.text.size();
      size_t end = next;
      bool ellipsis_word = false;
      if (wrap) end = Wrap(source.text, start, max_width, format, next, ellipsis_word);
      line.text = source.text.substr(start, end - start);
      if (source.prefix >= static_cast<int>(start) && source.prefix < static_cast<int>(end)) {
        line.prefix = source.prefix - static_cast<int>(start);
      }
      line.width = Width(line.text, tab_width_);
      if ((ellipsis || ellipsis_word) && line.width > max_width) {
        line.text = Ellipsify(line.text, max_width,
                              ellipsis_word ? (format | DT_WORD_ELLIPSIS) : format, line.prefix);
        line.width = Width(line.text, tab_width_);
        if (!result.modified) {
          result.modified = true;
          result.modified_text = line.text;
        }
      }
      if ((format & DT_CENTER) != 0) {
        line.x = narrow((left + right - line.width) / 2);
      } else if ((format & DT_RIGHT) != 0) {
        line.x = narrow(right - line.width);
      } else {
        line.x = narrow(left);
      }
      line.y = narrow(y);
      widest = std::max(widest, line.width);
      result.lines.push_back(std::move(line));

      // Drawing stops at the line that reaches the bottom (an edit control
      // shows no partly visible line); measuring goes on to the end.
      if (clip && !calc) {
        const long long reach = (format & DT_EDITCONTROL) != 0 ? 2LL * lh : lh;
        if (y + reach > rect.bottom) last = true;
      }
      y += lh;
      start = next;
    } while (start < source.text.size() && !last);
  }
  result.length_drawn = static_cast<UINT>(std::min(pos, text.size()));
  result.height = static_cast<int>(std::clamp(y - rect.top, -(1LL << 30), 1LL << 30));
  result.bounds = rect;
  result.bounds.right =
      narrow(static_cast<long long>(rect.left) + widest + left_margin + right_margin);
  result.bounds.bottom = narrow(y);
  return result;
}

}  // namespace vantor::platform
