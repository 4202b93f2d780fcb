#include "runtime/NumberFormat.h"

#include <charconv>
#include <cmath>
#include <string>
#include <vector>

#include "runtime/FormatSections.h"
#include "runtime/NumberText.h"

namespace vantor {

namespace {

// A non-negative decimal number: 0.digits times ten to point, so 1234.5 is
// "12345" with point 4 and 0.025 is "25" with point -1. No digits is zero.
struct Decimal {
  std::string digits;
  int point = 0;

  bool IsZero() const { return digits.empty(); }

  // The value's 15 significant digits, the precision the platform formats
  // from; every later rounding works on these digits, not on the double.
  static Decimal From(double magnitude) {
    Decimal d;
    if (magnitude == 0.0) return d;
    char buffer[64];
    auto result =
        std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::scientific, 14);
    const char* p = buffer;
    for (; p < result.ptr && *p != 'e'; ++p) {
      if (*p >= '0' && *p <= '9') d.digits.push_back(*p);
    }
    int exponent = 0;
    if (p < result.ptr) {
      ++p;
      std::from_chars(*p == '+' ? p + 1 : p, result.ptr, exponent);
    }
    d.point = exponent + 1;
    d.Trim();
    return d;
  }

  void Trim() {
    while (!digits.empty() && digits.back() == '0') digits.pop_back();
    size_t lead = 0;
    while (lead < digits.size() && digits[lead] == '0') ++lead;
    if (lead > 0) {
      digits.erase(0, lead);
      point -= static_cast<int>(lead);
    }
  }

  // Keeps `decimals` places after the point, a 5 in the first place dropped
  // rounding away from zero (the platform's Format, unlike its CInt).
  void RoundTo(int decimals) {
    if (IsZero()) return;
    const long keep = static_cast<long>(point) + decimals;
    if (keep >= static_cast<long>(digits.size())) return;
    if (keep < 0) {
      digits.clear();
      return;
    }
    const bool up = digits[static_cast<size_t>(keep)] >= '5';
    digits.resize(static_cast<size_t>(keep));
    if (up) {
      size_t k = digits.size();
      while (k > 0 && digits[k - 1] == '9') {
        digits[k - 1] = '0';
        --k;
      }
      if (k == 0) {
        digits.insert(digits.begin(), '1');
        ++point;
      } else {
        ++digits[k - 1];
      }
    }
    Trim();
  }

  // The digits of the whole part, "" for a number below one.
  std::string Whole() const {
    if (point <= 0) return {};
    std::string whole = digits.substr(0, static_cast<size_t>(point));
    whole.resize(static_cast<size_t>(point), '0');
    return whole;
  }

  // The i-th digit after the point, 0-based.
  char Fraction(int i) const {
    const long index = static_cast<long>(point) + i;
    if (index < 0 || index >= static_cast<long>(digits.size())) return '0';
    return digits[static_cast<size_t>(index)];
  }
};

enum class Kind { Digit, Literal, Comma };

struct Token {
  Kind kind = Kind::Literal;
  char16_t placeholder = u'0';  // '0' or '#' for a digit
  String text;                  // for a literal
};

// One section of a format, split where the number's parts go.
struct Layout {
  std::vector<Token> whole;     // before the point (or the exponent)
  std::vector<Token> fraction;  // after the point
  std::vector<Token> exponent;  // after "E+" and the like
  bool point = false;
  bool hasExponent = false;
  char16_t exponentLetter = u'E';
  bool exponentPlus = false;
  bool grouping = false;
  int thousandsScale = 0;  // commas that divide by 1000 each
  int percents = 0;
  int wholeDigits = 0, fractionDigits = 0, exponentDigits = 0;

  bool LiteralOnly() const {
    return wholeDigits == 0 && fractionDigits == 0 && !hasExponent && !point;
  }
};

void AddLiteral(std::vector<Token>& tokens, StringView text) {
  if (!tokens.empty() && tokens.back().kind == Kind::Literal) {
    tokens.back().text += text;
    return;
  }
  Token t;
  t.kind = Kind::Literal;
  t.text = String(text);
  tokens.push_back(std::move(t));
}

Layout Parse(StringView section, const Locale& locale) {
  Layout layout;
  enum class Part { Whole, Fraction, Exponent } part = Part::Whole;
  auto tokens = [&]() -> std::vector<Token>& {
    switch (part) {
      case Part::Whole:
        return layout.whole;
      case Part::Fraction:
        return layout.fraction;
      case Part::Exponent:
        break;
    }
    return layout.exponent;
  };
  const size_t n = section.size();
  for (size_t i = 0; i < n; ++i) {
    const char16_t c = section[i];
    if (c == u'"') {
      size_t end = section.find(u'"', i + 1);
      if (end == StringView::npos) end = n;
      AddLiteral(tokens(), section.substr(i + 1, end - i - 1));
      i = end;
    } else if (c == u'\\') {
      if (i + 1 < n) AddLiteral(tokens(), section.substr(++i, 1));
    } else if (c == u'0' || c == u'#') {
      Token t;
      t.kind = Kind::Digit;
      t.placeholder = c;
      tokens().push_back(t);
      if (part == Part::Whole) ++layout.wholeDigits;
      if (part == Part::Fraction) ++layout.fractionDigits;
      if (part == Part::Exponent) ++layout.exponentDigits;
    } else if (c == u'.' && part == Part::Whole) {
      layout.point = true;
      part = Part::Fraction;
    } else if (c == u'.') {
      const char16_t separator = locale.DecimalSeparator();
      AddLiteral(tokens(), StringView(&separator, 1));
    } else if (c == u',') {
      // Only the whole part groups or scales; elsewhere the platform drops it.
      if (part == Part::Whole) {
        Token t;
        t.kind = Kind::Comma;
        layout.whole.push_back(t);
      }
    } else if (c == u'%') {
      ++layout.percents;
      AddLiteral(tokens(), u"%");
    } else if ((c == u'E' || c == u'e') && i + 1 < n &&
               (section[i + 1] == u'+' || section[i + 1] == u'-') && !layout.hasExponent) {
      layout.hasExponent = true;
      layout.exponentLetter = c;
      layout.exponentPlus = section[i + 1] == u'+';
      part = Part::Exponent;
      ++i;
    } else {
      AddLiteral(tokens(), section.substr(i, 1));
    }
  }

  // A comma between digit placeholders asks for grouping; commas after the
  // last digit placeholder of the whole part ("#,##0,," or "0,.00") scale by
  // a thousand each; one before any digit placeholder means nothing.
  size_t lastDigit = 0;
  for (size_t k = 0; k < layout.whole.size(); ++k) {
    if (layout.whole[k].kind == Kind::Digit) lastDigit = k;
  }
  bool digitBefore = false;
  for (size_t k = 0; k < layout.whole.size(); ++k) {
    if (layout.whole[k].kind == Kind::Digit) digitBefore = true;
    if (layout.whole[k].kind != Kind::Comma || !digitBefore) continue;
    if (k < lastDigit) {
      layout.grouping = true;
    } else {
      ++layout.thousandsScale;
    }
  }
  return layout;
}


void PutDigit(String& out, char digit) {
  out.push_back(static_cast<char16_t>(digit));
}

// Fills placeholders from the right; digits beyond the placeholders all go in
// front of the first one, and the grouping separator follows every digit
// whose position from the right is a non-zero multiple of three.
void EmitWhole(String& out, const std::vector<Token>& tokens, int placeholders,
               const std::string& digits, bool grouping, const Locale& locale) {
  const int length = static_cast<int>(digits.size());
  auto emit = [&](int position, char digit) {
    PutDigit(out, digit);
    if (grouping && position > 0 && position % 3 == 0) out.push_back(locale.ThousandsSeparator());
  };
  int seen = 0;
  for (const Token& t : tokens) {
    if (t.kind == Kind::Literal) {
      out += t.text;
      continue;
    }
    if (t.kind != Kind::Digit) continue;
    if (seen == 0) {
      for (int k = 0; k < length - placeholders; ++k)
        emit(length - 1 - k, digits[static_cast<size_t>(k)]);
    }
    const int position = placeholders - 1 - seen;
    const int index = length - 1 - position;
    if (index >= 0) {
      emit(position, digits[static_cast<size_t>(index)]);
    } else if (t.placeholder == u'0') {
      emit(position, '0');
    }
    ++seen;
  }
  if (placeholders == 0) {
    for (int k = 0; k < length; ++k) emit(length - 1 - k, digits[static_cast<size_t>(k)]);
  }
}

String Render(const Layout& layout, double magnitude, const Locale& locale) {
  String out;
  if (layout.LiteralOnly()) {
    for (const Token& t : layout.whole) {
      if (t.kind == Kind::Literal) out += t.text;
    }
    return out;
  }
  Decimal number = Decimal::From(magnitude);
  if (!number.IsZero()) number.point += 2 * layout.percents - 3 * layout.thousandsScale;

  int exponent = 0;
  if (layout.hasExponent && !number.IsZero()) {
    // The mantissa takes as many whole digits as the pattern has placeholders.
    const int wholeDigits = layout.wholeDigits;
    exponent = number.point - wholeDigits;
    number.point = wholeDigits;
    number.RoundTo(layout.fractionDigits);
    if (number.point > wholeDigits) {  // 9.99 became 10.0
      exponent += number.point - wholeDigits;
      number.point = wholeDigits;
    }
  } else {
    number.RoundTo(layout.fractionDigits);
  }

  EmitWhole(out, layout.whole, layout.wholeDigits, number.Whole(),
            layout.grouping && !layout.hasExponent, locale);

  if (layout.point) out.push_back(locale.DecimalSeparator());
  int lastShown = -1;  // the last fraction place whose digit is not zero
  for (int i = 0; i < layout.fractionDigits; ++i) {
    if (number.Fraction(i) != '0') lastShown = i;
  }
  int place = 0;
  for (const Token& t : layout.fraction) {
    if (t.kind == Kind::Literal) {
      out += t.text;
    } else if (t.kind == Kind::Digit) {
      if (place <= lastShown || t.placeholder == u'0') PutDigit(out, number.Fraction(place));
      ++place;
    }
  }

  if (layout.hasExponent) {
    out.push_back(layout.exponentLetter);
    if (exponent < 0) {
      out.push_back(u'-');
    } else if (layout.exponentPlus) {
      out.push_back(u'+');
    }
    const std::string digits = exponent == 0 ? std::string() : std::to_string(std::abs(exponent));
    EmitWhole(out, layout.exponent, layout.exponentDigits, digits, false, locale);
  }
  return out;
}

}  // namespace

String NumberFormat::Apply(double value, StringView format, const Locale& locale) {
  if (format.empty() || !std::isfinite(value)) return NumberText::General(value, locale);
  const std::vector<StringView> sections = FormatSections(format);
  StringView section = sections[0];
  bool minus = false;
  if (value < 0) {
    // The negative section carries its own sign; without one the number keeps
    // its minus, even when it rounds to zero ("-0,00"), as the platform shows.
    if (sections.size() >= 2 && !sections[1].empty()) {
      section = sections[1];
    } else {
      minus = true;
    }
  } else if (value == 0 && sections.size() >= 3 && !sections[2].empty()) {
    section = sections[2];
  }
  String out = Render(Parse(section, locale), std::fabs(value), locale);
  if (minus) out.insert(out.begin(), u'-');
  return out;
}

String NumberFormat::ApplyNull(StringView format, const Locale& locale) {
  const std::vector<StringView> sections = FormatSections(format);
  if (sections.size() < 4) return {};
  const Layout layout = Parse(sections[3], locale);
  // Only the text of the Null section shows; it has no number to place.
  String out;
  for (const auto* part : {&layout.whole, &layout.fraction, &layout.exponent}) {
    for (const Token& t : *part) {
      if (t.kind == Kind::Literal) out += t.text;
    }
  }
  return out;
}

}  // namespace vantor
