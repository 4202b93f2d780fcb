#include "runtime/Format.h"

#include <charconv>
#include <optional>
#include <vector>

#include "runtime/DateFormat.h"
#include "runtime/DateText.h"
#include "runtime/FormatSections.h"
#include "runtime/Error.h"
#include "runtime/Locale.h"
#include "runtime/NumberFormat.h"
#include "runtime/NumberText.h"
#include "runtime/TextFormat.h"

namespace vantor {

namespace {

constexpr int kMaxDefaultDepth = 8;

char16_t Lower(char16_t c) {
  return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

bool SameName(StringView a, StringView b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (Lower(a[i]) != Lower(b[i])) return false;
  }
  return true;
}

bool StartsWithNoCase(StringView text, size_t at, StringView prefix) {
  return text.size() - at >= prefix.size() && SameName(text.substr(at, prefix.size()), prefix);
}

// A Single formats from its own seven digits, so CSng(2.675) with "0.00" is
// 2,68 as the value reads, not the 2,67 of its binary expansion.
double SingleAsDouble(float value) {
  char buffer[32];
  auto written = std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(value),
                               std::chars_format::scientific, 6);
  double result = static_cast<double>(value);
  std::from_chars(buffer, written.ptr, result);
  return result;
}

// The value as the number engine reads it; nothing when it is no number.
std::optional<double> NumberOf(const Variant& value, const Locale& locale, int depth = 0) {
  const Variant& v = value.Deref();
  switch (v.Type()) {
    case vbEmpty:
      return 0.0;
    case vbInteger:
      return *v.As<int16_t>();
    case vbLong:
      return *v.As<int32_t>();
    case vbSingle:
      return SingleAsDouble(*v.As<float>());
    case vbDouble:
      return *v.As<double>();
    case vbCurrency:
      return v.As<Currency>()->ToDouble();
    case vbDate:
      return v.As<Date>()->Serial();
    case vbBoolean:
      return *v.As<bool>() ? -1.0 : 0.0;
    case vbByte:
      return *v.As<uint8_t>();
    case vbString:
      return NumberText::Parse(*v.As<String>(), locale);
    case vbObject: {
      Variant inner;
      const ObjectPtr* object = v.ObjectRef();
      if (depth < kMaxDefaultDepth && object != nullptr && *object &&
          (*object)->DefaultValue(inner)) {
        return NumberOf(inner, locale, depth + 1);
      }
      return std::nullopt;
    }
    default:
      return std::nullopt;
  }
}

// The value as the date engine reads it: dates, numbers as serials, texts
// that read as a date (or else as a number).
std::optional<Date> DateOf(const Variant& value, const Locale& locale) {
  const Variant& v = value.Deref();
  if (const Date* date = v.As<Date>()) return *date;
  if (const String* text = v.As<String>()) {
    if (auto date = DateText::Parse(*text, locale)) return date;
  }
  auto number = NumberOf(v, locale);
  if (!number || !Date::InRange(*number)) return std::nullopt;
  return Date(*number);
}

// What Format gives for a value it cannot read the way the pattern wants.
String AsItIs(const Variant& value) {
  if (const String* text = value.Deref().As<String>()) return *text;
  return value.ToString();
}


enum class Engine { Number, Date, Text };

// Reads the pattern, past quoted text and escapes, for the tokens that say
// how the value is to be read. "@" and "&" make a text pattern even beside
// letters that are date tokens ("@ dias"); digit placeholders come next, then
// date tokens; "<", ">" and "!" alone are text too. A pattern of plain
// characters goes to the number engine, which copies them.
Engine Classify(StringView pattern) {
  bool number = false, date = false, text = false, textMarks = false;
  const size_t n = pattern.size();
  for (size_t i = 0; i < n; ++i) {
    const char16_t c = pattern[i];
    if (c == u'"') {
      const size_t end = pattern.find(u'"', i + 1);
      i = end == StringView::npos ? n : end;
      continue;
    }
    if (c == u'\\') {
      ++i;
      continue;
    }
    switch (Lower(c)) {
      case u'0':
      case u'#':
      case u'%':
        number = true;
        break;
      case u'e':
        if (i + 1 < n && (pattern[i + 1] == u'+' || pattern[i + 1] == u'-')) number = true;
        break;
      case u'd':
      case u'm':
      case u'y':
      case u'h':
      case u'n':
      case u's':
      case u'w':
      case u'q':
      case u'c':
        date = true;
        break;
      case u't':
        if (StartsWithNoCase(pattern, i, u"ttttt")) date = true;
        break;
      case u'a':
        if (StartsWithNoCase(pattern, i, u"am/pm") || StartsWithNoCase(pattern, i, u"a/p") ||
            StartsWithNoCase(pattern, i, u"ampm")) {
          date = true;
        }
        break;
      case u'@':
      case u'&':
        text = true;
        break;
      case u'<':
      case u'>':
      case u'!':
        textMarks = true;
        break;
      default:
        break;
    }
  }
  if (text) return Engine::Text;
  if (number) return Engine::Number;
  if (date) return Engine::Date;
  if (textMarks) return Engine::Text;
  return Engine::Number;
}

String FormatText(const Variant& value, StringView pattern) {
  if (!value.IsNull()) return TextFormat::Apply(value.ToString(), pattern);
  // Null shows only through the second section, the one for an empty text.
  return FormatSections(pattern).size() >= 2 ? TextFormat::Apply({}, pattern) : String();
}

String FormatNumber(const Variant& value, StringView pattern, const Locale& locale) {
  if (value.IsNull()) return NumberFormat::ApplyNull(pattern, locale);
  auto number = NumberOf(value, locale);
  if (!number) return AsItIs(value);
  return NumberFormat::Apply(*number, pattern, locale);
}

String FormatDate(const Variant& value, StringView pattern, VbDayOfWeek firstDayOfWeek,
                  VbFirstWeekOfYear firstWeekOfYear, const Locale& locale) {
  if (value.IsNull()) return {};
  auto date = DateOf(value, locale);
  if (!date) return AsItIs(value);
  return DateFormat::Apply(*date, pattern, firstDayOfWeek, firstWeekOfYear, locale);
}

String CurrencyText(double number, const Locale& locale) {
  // pt-BR writes "R$ 1.234,50" and "-R$ 1.234,50"; en-US "$1,234.50" and
  // "($1,234.50)", the system's default currency patterns of the two.
  String symbol = u"\"" + String(locale.CurrencySymbol()) + u"\"";
  String pattern;
  if (locale.id() == Locale::Id::ptBR) {
    pattern = symbol + u" #,##0.00;-" + symbol + u" #,##0.00";
  } else {
    pattern = symbol + u"#,##0.00;(" + symbol + u"#,##0.00)";
  }
  return NumberFormat::Apply(number, pattern, locale);
}

// The named formats; nothing when the pattern is none of them.
std::optional<String> Named(const Variant& value, StringView name, VbDayOfWeek firstDayOfWeek,
                            VbFirstWeekOfYear firstWeekOfYear, const Locale& locale) {
  struct Numeric {
    StringView name;
    StringView pattern;
  };
  static constexpr Numeric kNumeric[] = {
      {u"Fixed", u"0.00"},
      {u"Standard", u"#,##0.00"},
      {u"Percent", u"0.00%"},
      {u"Scientific", u"0.00E+00"},
  };
  for (const Numeric& n : kNumeric) {
    if (SameName(name, n.name)) return FormatNumber(value, n.pattern, locale);
  }

  const bool portuguese = locale.id() == Locale::Id::ptBR;
  struct Words {
    StringView name;
    StringView yes, no;
  };
  const Words words[] = {
      {u"Yes/No", portuguese ? u"Sim" : u"Yes", portuguese ? u"Não" : u"No"},
      {u"True/False", locale.TrueName(), locale.FalseName()},
      {u"On/Off", portuguese ? u"Ativado" : u"On", portuguese ? u"Desativado" : u"Off"},
  };
  for (const Words& w : words) {
    if (!SameName(name, w.name)) continue;
    if (value.IsNull()) return String();
    auto number = NumberOf(value, locale);
    if (!number) return AsItIs(value);
    return String(*number != 0.0 ? w.yes : w.no);
  }

  if (SameName(name, u"General Number")) {
    if (value.IsNull()) return String();
    const Variant& v = value.Deref();
    if (const float* single = v.As<float>()) return NumberText::GeneralSingle(*single, locale);
    if (const Currency* money = v.As<Currency>()) {
      return NumberText::FromCurrency(money->Raw(), locale);
    }
    auto number = NumberOf(v, locale);
    if (!number) return AsItIs(value);
    return NumberText::General(*number, locale);
  }
  if (SameName(name, u"Currency")) {
    if (value.IsNull()) return String();
    auto number = NumberOf(value, locale);
    if (!number) return AsItIs(value);
    return CurrencyText(*number, locale);
  }

  if (SameName(name, u"General Date")) {
    if (value.IsNull()) return String();
    auto date = DateOf(value, locale);
    if (!date) return AsItIs(value);
    return DateText::General(*date, locale);
  }
  struct Dated {
    StringView name;
    StringView pattern;
  };
  const Dated dated[] = {
      {u"Long Date", locale.LongDateFormat()},   {u"Medium Date", locale.MediumDateFormat()},
      {u"Short Date", locale.ShortDateFormat()}, {u"Long Time", locale.LongTimeFormat()},
      {u"Medium Time", u"hh:mm AMPM"},           {u"Short Time", u"hh:mm"},
  };
  for (const Dated& d : dated) {
    if (SameName(name, d.name)) {
      return FormatDate(value, d.pattern, firstDayOfWeek, firstWeekOfYear, locale);
    }
  }
  return std::nullopt;
}

}  // namespace

String Format(const Variant& expression, StringView format, VbDayOfWeek firstDayOfWeek,
              VbFirstWeekOfYear firstWeekOfYear) {
  const Locale& locale = Locale::Current();
  if (format.empty()) {
    if (expression.IsNull()) return {};
    return expression.ToString();
  }
  if (auto named = Named(expression, format, firstDayOfWeek, firstWeekOfYear, locale)) {
    return *named;
  }
  switch (Classify(format)) {
    case Engine::Text:
      return FormatText(expression, format);
    case Engine::Date:
      return FormatDate(expression, format, firstDayOfWeek, firstWeekOfYear, locale);
    case Engine::Number:
      break;
  }
  return FormatNumber(expression, format, locale);
}

}  // namespace vantor
