#include "runtime/DateFormat.h"

#include <string>
#include <vector>

#include "runtime/DateText.h"
#include "runtime/DateTime.h"
#include "runtime/Error.h"

namespace vantor {

namespace {

enum class Kind {
  Literal,
  Day,        // d .. dddddd
  Weekday,    // w
  Week,       // ww
  Month,      // m .. mmmm; m and mm may turn out to be minutes
  Minute,     // n, nn
  Quarter,    // q
  DayOfYear,  // y
  Year,       // yy, yyyy
  Hour,       // h, hh
  Second,     // s, ss
  LongTime,   // ttttt
  General,    // c
  AmPm,       // AM/PM and its kin
};

enum class Meridiem { Locale, OneLetter, TwoLetters };

struct Token {
  Kind kind = Kind::Literal;
  int count = 0;
  Meridiem meridiem = Meridiem::Locale;
  String text;  // the literal, or the AM/PM token as the pattern wrote it
};

char16_t Lower(char16_t c) {
  return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c;
}

bool MatchesAt(StringView format, size_t i, StringView lowerWord) {
  if (format.size() - i < lowerWord.size()) return false;
  for (size_t k = 0; k < lowerWord.size(); ++k) {
    if (Lower(format[i + k]) != lowerWord[k]) return false;
  }
  return true;
}

void AddLiteral(std::vector<Token>& tokens, StringView text) {
  if (tokens.empty() || tokens.back().kind != Kind::Literal) tokens.push_back({});
  tokens.back().text += text;
}

void AddLiteral(std::vector<Token>& tokens, char16_t c) {
  AddLiteral(tokens, StringView(&c, 1));
}

// Splits a run of one letter into the longest tokens the letter has.
void AddRun(std::vector<Token>& tokens, Kind kind, int run, int longest) {
  while (run > 0) {
    const int take = run < longest ? run : longest;
    tokens.push_back({kind, take, Meridiem::Locale, {}});
    run -= take;
  }
}

std::vector<Token> Tokenize(StringView format, const Locale& locale) {
  std::vector<Token> tokens;
  size_t i = 0;
  const size_t n = format.size();
  auto runOf = [&](char16_t lower) {
    size_t j = i;
    while (j < n && Lower(format[j]) == lower) ++j;
    const int run = static_cast<int>(j - i);
    i = j;
    return run;
  };
  while (i < n) {
    const char16_t c = format[i];
    const char16_t lc = Lower(c);
    if (c == u'"') {
      const size_t close = format.find(u'"', i + 1);
      const size_t stop = close == StringView::npos ? n : close;
      AddLiteral(tokens, format.substr(i + 1, stop - i - 1));
      i = stop == n ? n : stop + 1;
      continue;
    }
    if (c == u'\\') {
      if (i + 1 < n) AddLiteral(tokens, format[i + 1]);
      i += 2;
      continue;
    }
    if (lc == u'a') {
      if (MatchesAt(format, i, u"am/pm")) {
        tokens.push_back({Kind::AmPm, 0, Meridiem::TwoLetters, String(format.substr(i, 5))});
        i += 5;
        continue;
      }
      if (MatchesAt(format, i, u"ampm")) {
        tokens.push_back({Kind::AmPm, 0, Meridiem::Locale, {}});
        i += 4;
        continue;
      }
      if (MatchesAt(format, i, u"a/p")) {
        tokens.push_back({Kind::AmPm, 0, Meridiem::OneLetter, String(format.substr(i, 3))});
        i += 3;
        continue;
      }
    }
    switch (lc) {
      case u'd':
        AddRun(tokens, Kind::Day, runOf(u'd'), 6);
        continue;
      case u'm':
        AddRun(tokens, Kind::Month, runOf(u'm'), 4);
        continue;
      case u'n':
        AddRun(tokens, Kind::Minute, runOf(u'n'), 2);
        continue;
      case u'h':
        AddRun(tokens, Kind::Hour, runOf(u'h'), 2);
        continue;
      case u's':
        AddRun(tokens, Kind::Second, runOf(u's'), 2);
        continue;
      case u'q':
        AddRun(tokens, Kind::Quarter, runOf(u'q'), 1);
        continue;
      case u'c':
        AddRun(tokens, Kind::General, runOf(u'c'), 1);
        continue;
      case u'w': {
        int run = runOf(u'w');
        for (; run >= 2; run -= 2) tokens.push_back({Kind::Week, 2, Meridiem::Locale, {}});
        if (run == 1) tokens.push_back({Kind::Weekday, 1, Meridiem::Locale, {}});
        continue;
      }
      case u'y': {
        // "yyy" is a two-digit year and the day of the year, as the platform
        // reads it.
        int run = runOf(u'y');
        while (run > 0) {
          const int take = run >= 4 ? 4 : run >= 2 ? 2 : 1;
          tokens.push_back({take == 1 ? Kind::DayOfYear : Kind::Year, take, Meridiem::Locale, {}});
          run -= take;
        }
        continue;
      }
      case u't': {
        int run = runOf(u't');
        for (; run >= 5; run -= 5) tokens.push_back({Kind::LongTime, 5, Meridiem::Locale, {}});
        // Fewer than five are plain letters.
        if (run > 0) {
          AddLiteral(tokens, format.substr(i - static_cast<size_t>(run), static_cast<size_t>(run)));
        }
        continue;
      }
      default:
        break;
    }
    if (c == u'/') {
      AddLiteral(tokens, locale.DateSeparator());
    } else if (c == u':') {
      AddLiteral(tokens, locale.TimeSeparator());
    } else {
      AddLiteral(tokens, c);
    }
    ++i;
  }
  // "m" and "mm" next to hours or seconds are minutes: right after an hour
  // token, or right before a seconds token, with only literals between.
  for (size_t k = 0; k < tokens.size(); ++k) {
    if (tokens[k].kind != Kind::Month || tokens[k].count > 2) continue;
    size_t before = k;
    while (before > 0 && tokens[before - 1].kind == Kind::Literal) --before;
    size_t after = k + 1;
    while (after < tokens.size() && tokens[after].kind == Kind::Literal) ++after;
    const bool afterHour = before > 0 && tokens[before - 1].kind == Kind::Hour;
    const bool beforeSecond = after < tokens.size() && tokens[after].kind == Kind::Second;
    if (afterHour || beforeSecond) tokens[k].kind = Kind::Minute;
  }
  return tokens;
}

String Digits(int64_t value, int width) {
  const std::string s = std::to_string(value);
  String out;
  for (size_t k = s.size(); k < static_cast<size_t>(width); ++k) out += u'0';
  for (char ch : s) out += static_cast<char16_t>(ch);
  return out;
}

}  // namespace

String DateFormat::Apply(Date date, StringView format, VbDayOfWeek firstDayOfWeek,
                         VbFirstWeekOfYear firstWeekOfYear, const Locale& locale) {
  if (!Date::InRange(date.Serial()) || firstDayOfWeek < 0 || firstDayOfWeek > 7 ||
      firstWeekOfYear < 0 || firstWeekOfYear > 3) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  const std::vector<Token> tokens = Tokenize(format, locale);
  bool twelveHour = false;
  for (const Token& t : tokens) twelveHour = twelveHour || t.kind == Kind::AmPm;

  const int32_t year = Year(date), month = Month(date), day = Day(date);
  const int32_t hour = Hour(date), minute = Minute(date), second = Second(date);
  const bool afternoon = hour >= 12;

  String out;
  for (const Token& t : tokens) {
    switch (t.kind) {
      case Kind::Literal:
        out += t.text;
        break;
      case Kind::Day:
        switch (t.count) {
          case 1:
            out += Digits(day, 1);
            break;
          case 2:
            out += Digits(day, 2);
            break;
          case 3:
            out += locale.DayName(Weekday(date), true);
            break;
          case 4:
            out += locale.DayName(Weekday(date), false);
            break;
          case 5:
            out += Apply(date, locale.ShortDateFormat(), firstDayOfWeek, firstWeekOfYear, locale);
            break;
          default:
            out += Apply(date, locale.LongDateFormat(), firstDayOfWeek, firstWeekOfYear, locale);
            break;
        }
        break;
      case Kind::Weekday:
        out += Digits(Weekday(date, firstDayOfWeek), 1);
        break;
      case Kind::Week:
        out += Digits(WeekOfYear(date, firstDayOfWeek, firstWeekOfYear), 1);
        break;
      case Kind::Month:
        if (t.count <= 2) {
          out += Digits(month, t.count);
        } else {
          out += locale.MonthName(month, t.count == 3);
        }
        break;
      case Kind::Minute:
        out += Digits(minute, t.count);
        break;
      case Kind::Quarter:
        out += Digits((month - 1) / 3 + 1, 1);
        break;
      case Kind::DayOfYear:
        out += Digits(DatePart(u"y", date), 1);
        break;
      case Kind::Year:
        out += t.count == 2 ? Digits(year % 100, 2) : Digits(year, 1);
        break;
      case Kind::Hour: {
        int32_t h = hour;
        if (twelveHour) {
          h %= 12;
          if (h == 0) h = 12;
        }
        out += Digits(h, t.count);
        break;
      }
      case Kind::Second:
        out += Digits(second, t.count);
        break;
      case Kind::LongTime:
        out += Apply(date, locale.LongTimeFormat(), firstDayOfWeek, firstWeekOfYear, locale);
        break;
      case Kind::General:
        out += DateText::General(date, locale);
        break;
      case Kind::AmPm:
        switch (t.meridiem) {
          case Meridiem::Locale:
            out += afternoon ? locale.PmDesignator() : locale.AmDesignator();
            break;
          case Meridiem::OneLetter:
            out += afternoon ? t.text[2] : t.text[0];
            break;
          case Meridiem::TwoLetters:
            out += afternoon ? t.text.substr(3, 2) : t.text.substr(0, 2);
            break;
        }
        break;
    }
  }
  return out;
}

}  // namespace vantor
