#include "runtime/DateText.h"

#include <cmath>
#include <cstdint>
#include <vector>

#include "runtime/DateFormat.h"
#include "runtime/DateTime.h"
#include "runtime/Error.h"

namespace vantor {

namespace {

// No date or time the platform reads has more pieces than this; a longer text
// is refused before any work is spent on it.
constexpr size_t kMaxTokens = 40;
// Digits kept of a number; anything longer is no part of a date anyway.
constexpr int kMaxDigits = 9;

enum class Kind { Number, Word, Separator, Blank };

struct Token {
  Kind kind = Kind::Blank;
  char16_t separator = 0;
  int64_t value = 0;
  int digits = 0;
  String word;  // lower case, accents dropped
};

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\u00A0';
}
bool IsDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}
bool IsSeparator(char16_t c) {
  return c == u'/' || c == u'-' || c == u'.' || c == u',' || c == u':';
}

// Folds a Latin-1 letter to its lower-case base letter so that "Março",
// "marco" and "MARÇO" read alike; 0 when the character is no letter.
char16_t FoldLetter(char16_t c) {
  if (c >= u'a' && c <= u'z') return c;
  if (c >= u'A' && c <= u'Z') return static_cast<char16_t>(c - u'A' + u'a');
  if (c < 0xC0 || c > 0xFF || c == 0xD7 || c == 0xF7) return 0;
  if (c == 0xDF) return u's';
  // Upper and lower case of Latin-1 differ by 0x20.
  const char16_t lower = c < 0xE0 ? static_cast<char16_t>(c + 0x20) : c;
  static constexpr char16_t kBase[32] = {
      u'a', u'a', u'a', u'a', u'a', u'a', u'a', u'c',  // E0..E7
      u'e', u'e', u'e', u'e', u'i', u'i', u'i', u'i',  // E8..EF
      u'd', u'n', u'o', u'o', u'o', u'o', u'o', 0,     // F0..F7
      u'o', u'u', u'u', u'u', u'u', u'y', u'p', u'y',  // F8..FF
  };
  return kBase[lower - 0xE0];
}

bool Tokenize(StringView text, std::vector<Token>& out) {
  size_t i = 0;
  const size_t n = text.size();
  while (i < n) {
    if (out.size() >= kMaxTokens) return false;
    const char16_t c = text[i];
    Token token;
    if (IsBlank(c)) {
      while (i < n && IsBlank(text[i])) ++i;
      token.kind = Kind::Blank;
    } else if (IsDigit(c)) {
      token.kind = Kind::Number;
      while (i < n && IsDigit(text[i])) {
        if (token.digits < kMaxDigits) token.value = token.value * 10 + (text[i] - u'0');
        ++token.digits;
        ++i;
      }
    } else if (IsSeparator(c)) {
      token.kind = Kind::Separator;
      token.separator = c;
      ++i;
    } else if (FoldLetter(c) != 0) {
      token.kind = Kind::Word;
      while (i < n && FoldLetter(text[i]) != 0) {
        if (token.word.size() < 16) token.word += FoldLetter(text[i]);
        ++i;
      }
    } else {
      return false;
    }
    out.push_back(std::move(token));
  }
  return true;
}

// Month names of both languages the library's users write, full and short.
int MonthOfWord(const String& word) {
  static constexpr const char16_t* kNames[][5] = {
      {u"janeiro", u"jan", u"january", nullptr, nullptr},
      {u"fevereiro", u"fev", u"february", u"feb", nullptr},
      {u"marco", u"mar", u"march", nullptr, nullptr},
      {u"abril", u"abr", u"april", u"apr", nullptr},
      {u"maio", u"mai", u"may", nullptr, nullptr},
      {u"junho", u"jun", u"june", nullptr, nullptr},
      {u"julho", u"jul", u"july", nullptr, nullptr},
      {u"agosto", u"ago", u"august", u"aug", nullptr},
      {u"setembro", u"set", u"september", u"sep", u"sept"},
      {u"outubro", u"out", u"october", u"oct", nullptr},
      {u"novembro", u"nov", u"november", nullptr, nullptr},
      {u"dezembro", u"dez", u"december", u"dec", nullptr},
  };
  for (int m = 0; m < 12; ++m) {
    for (const char16_t* name : kNames[m]) {
      if (name != nullptr && word == name) return m + 1;
    }
  }
  return 0;
}

bool IsWeekdayWord(const String& word) {
  static constexpr const char16_t* kNames[] = {
      u"domingo", u"segunda", u"terca",   u"quarta",    u"quinta",   u"sexta",  u"sabado",
      u"dom",     u"seg",     u"ter",     u"qua",       u"qui",      u"sex",    u"sab",
      u"sunday",  u"monday",  u"tuesday", u"wednesday", u"thursday", u"friday", u"saturday",
      u"sun",     u"mon",     u"tue",     u"wed",       u"thu",      u"fri",    u"sat"};
  for (const char16_t* name : kNames) {
    if (word == name) return true;
  }
  return false;
}

// 0 for none, 1 for the morning, 2 for the afternoon.
int MeridiemOfWord(const Token& token, const Locale& locale) {
  if (token.kind != Kind::Word) return 0;
  auto matches = [&](StringView designator) {
    String folded;
    for (char16_t c : designator) folded += FoldLetter(c);
    return !folded.empty() && token.word == folded;
  };
  if (token.word == u"am" || matches(locale.AmDesignator())) return 1;
  if (token.word == u"pm" || matches(locale.PmDesignator())) return 2;
  return 0;
}

bool IsSeparatorToken(const Token& t, char16_t c) {
  return t.kind == Kind::Separator && t.separator == c;
}

// A day name in front ("segunda-feira, 15 de janeiro de 2024", "Monday,
// January 15, 2024") and the Portuguese "de" between parts are what the long
// date adds to the parts themselves; they are dropped before reading.
std::vector<Token> DropFillers(std::vector<Token> tokens) {
  size_t start = 0;
  if (!tokens.empty() && tokens[0].kind == Kind::Word && IsWeekdayWord(tokens[0].word)) {
    start = 1;
    if (start + 1 < tokens.size() && IsSeparatorToken(tokens[start], u'-') &&
        tokens[start + 1].kind == Kind::Word && tokens[start + 1].word == u"feira") {
      start += 2;
    }
    if (start < tokens.size() && IsSeparatorToken(tokens[start], u',')) ++start;
    if (start < tokens.size() && tokens[start].kind == Kind::Blank) ++start;
  }
  std::vector<Token> out;
  for (size_t i = start; i < tokens.size(); ++i) {
    Token t = std::move(tokens[i]);
    if (t.kind == Kind::Word && t.word == u"de") t.kind = Kind::Blank;
    if (t.kind == Kind::Blank && !out.empty() && out.back().kind == Kind::Blank) continue;
    out.push_back(std::move(t));
  }
  if (!out.empty() && out.front().kind == Kind::Blank) out.erase(out.begin());
  if (!out.empty() && out.back().kind == Kind::Blank) out.pop_back();
  return out;
}

bool ValidTimeNumber(const Token& t, int64_t limit) {
  return t.kind == Kind::Number && t.digits <= 2 && t.value <= limit;
}

// Finds and reads the time: "h:mm", "h:mm:ss", either with AM or PM, or an
// hour with AM or PM alone. [begin, end) is where it stood.
bool ReadTime(const std::vector<Token>& t, const Locale& locale, size_t& begin, size_t& end,
              int64_t& seconds, bool& found) {
  found = false;
  const size_t n = t.size();
  size_t colon = n;
  for (size_t i = 0; i < n; ++i) {
    if (IsSeparatorToken(t[i], u':')) {
      colon = i;
      break;
    }
  }
  int64_t hour = 0, minute = 0, second = 0;
  size_t pos = 0;
  if (colon < n) {
    if (colon == 0 || t[colon - 1].kind != Kind::Number) return false;
    begin = colon - 1;
    if (colon + 1 >= n || !ValidTimeNumber(t[colon + 1], 59)) return false;
    hour = t[begin].value;
    minute = t[colon + 1].value;
    pos = colon + 2;
    if (pos < n && IsSeparatorToken(t[pos], u':')) {
      if (pos + 1 >= n || !ValidTimeNumber(t[pos + 1], 59)) return false;
      second = t[pos + 1].value;
      pos += 2;
    }
  } else {
    size_t word = n;
    for (size_t i = 0; i < n; ++i) {
      if (MeridiemOfWord(t[i], locale) != 0) {
        word = i;
        break;
      }
    }
    if (word == n) return true;  // no time in the text
    size_t number = word;
    if (number > 0 && t[number - 1].kind == Kind::Blank) --number;
    if (number == 0 || t[number - 1].kind != Kind::Number) return false;
    begin = number - 1;
    hour = t[begin].value;
    pos = number;
  }
  if (t[begin].digits > 2) return false;
  int meridiem = 0;
  if (pos < n && MeridiemOfWord(t[pos], locale) != 0) {
    meridiem = MeridiemOfWord(t[pos], locale);
    ++pos;
  } else if (pos + 1 < n && t[pos].kind == Kind::Blank && MeridiemOfWord(t[pos + 1], locale) != 0) {
    meridiem = MeridiemOfWord(t[pos + 1], locale);
    pos += 2;
  }
  if (meridiem != 0) {
    if (hour > 12) return false;
    if (hour == 12) hour = 0;
    if (meridiem == 2) hour += 12;
  } else if (hour > 23) {
    return false;
  }
  end = pos;
  seconds = hour * 3600 + minute * 60 + second;
  found = true;
  return true;
}

struct Part {
  int month = 0;  // a month given by name
  int64_t value = 0;
  int digits = 0;
};

// The date's two or three parts and how they were separated.
bool ReadDateParts(const std::vector<Token>& t, size_t begin, size_t end, std::vector<Part>& parts,
                   bool& looseSeparators) {
  looseSeparators = false;
  size_t i = begin;
  while (true) {
    if (i >= end) return false;
    Part part;
    if (t[i].kind == Kind::Number) {
      part.value = t[i].value;
      part.digits = t[i].digits;
    } else if (t[i].kind == Kind::Word && MonthOfWord(t[i].word) != 0) {
      part.month = MonthOfWord(t[i].word);
    } else {
      return false;
    }
    parts.push_back(part);
    if (parts.size() > 3) return false;
    ++i;
    if (i >= end) return true;
    // Between parts: one separator character with blanks around, or blanks.
    bool any = false, blank = false, comma = false;
    if (t[i].kind == Kind::Blank) {
      blank = any = true;
      ++i;
    }
    if (i < end && t[i].kind == Kind::Separator) {
      if (t[i].separator == u':') return false;
      comma = t[i].separator == u',';
      any = true;
      ++i;
      if (i < end && t[i].kind == Kind::Blank) ++i;
    } else if (blank) {
      looseSeparators = true;
    }
    if (!any) return false;
    if (comma) looseSeparators = true;
  }
}

bool IsLeap(int64_t y) {
  return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

bool ValidDate(int64_t y, int64_t m, int64_t d) {
  static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (y < 100 || y > 9999 || m < 1 || m > 12 || d < 1) return false;
  const int last = m == 2 && IsLeap(y) ? 29 : kDays[m - 1];
  return d <= last;
}

// Two-digit years: 0 to 29 are this century, 30 to 99 the last, as the
// system's default window puts them.
int64_t FullYear(int64_t value) {
  if (value < 30) return 2000 + value;
  if (value < 100) return 1900 + value;
  return value;
}

struct Ymd {
  int64_t y = 0, m = 0, d = 0;
};

// The day and month in the order given, or the other way round when only
// that one makes a date, as the platform reads "12/31/2024" in a day-first
// locale.
bool DayAndMonth(int64_t year, int64_t day, int64_t month, Ymd& out) {
  if (ValidDate(year, month, day)) {
    out = {year, month, day};
    return true;
  }
  if (ValidDate(year, day, month)) {
    out = {year, day, month};
    return true;
  }
  return false;
}

int64_t ThisYear() {
  return Year(Today());
}

bool ResolveNamed(const std::vector<Part>& parts, Ymd& out) {
  int month = 0;
  std::vector<Part> numbers;
  for (const Part& p : parts) {
    if (p.month != 0) {
      if (month != 0) return false;
      month = p.month;
    } else {
      if (p.digits > 4) return false;
      numbers.push_back(p);
    }
  }
  int64_t year = 0, day = 1;
  if (numbers.size() == 2) {
    const Part& a = numbers[0];
    const Part& b = numbers[1];
    if (a.digits >= 3 && b.digits <= 2) {
      year = a.value;
      day = b.value;
    } else if (a.digits <= 2) {
      day = a.value;
      year = FullYear(b.value);
    } else {
      return false;
    }
  } else if (numbers.size() == 1) {
    const Part& a = numbers[0];
    if (a.digits >= 3 || a.value > 31) {
      year = FullYear(a.value);
    } else {
      day = a.value;
      year = ThisYear();
    }
  } else {
    return false;
  }
  if (!ValidDate(year, month, day)) return false;
  out = {year, month, day};
  return true;
}

bool ResolveNumeric(const std::vector<Part>& parts, DateOrder order, Ymd& out) {
  for (const Part& p : parts) {
    if (p.digits > 4) return false;
  }
  if (parts.size() == 3) {
    const Part &a = parts[0], &b = parts[1], &c = parts[2];
    if (b.digits > 2) return false;
    if (a.digits >= 3 || order == DateOrder::YMD) {
      return c.digits <= 2 && DayAndMonth(FullYear(a.value), c.value, b.value, out);
    }
    if (a.digits > 2) return false;
    const int64_t year = FullYear(c.value);
    const bool dayFirst = order == DateOrder::DMY;
    if (DayAndMonth(year, dayFirst ? a.value : b.value, dayFirst ? b.value : a.value, out)) {
      return true;
    }
    // A first part that can be no day nor month is a two-digit year.
    return a.value > 31 && c.digits <= 2 && DayAndMonth(FullYear(a.value), c.value, b.value, out);
  }
  const Part &a = parts[0], &b = parts[1];
  if (a.digits >= 3 && b.digits <= 2) {
    if (!ValidDate(a.value, b.value, 1)) return false;
    out = {a.value, b.value, 1};
    return true;
  }
  if (b.digits >= 3 && a.digits <= 2) {
    if (!ValidDate(b.value, a.value, 1)) return false;
    out = {b.value, a.value, 1};
    return true;
  }
  if (a.digits > 2 || b.digits > 2) return false;
  const bool dayFirst = order == DateOrder::DMY;
  return DayAndMonth(ThisYear(), dayFirst ? a.value : b.value, dayFirst ? b.value : a.value, out);
}

}  // namespace

std::optional<Date> DateText::Parse(StringView text, const Locale& locale) {
  std::vector<Token> raw;
  if (!Tokenize(text, raw)) return std::nullopt;
  const std::vector<Token> t = DropFillers(std::move(raw));
  if (t.empty()) return std::nullopt;

  size_t timeBegin = t.size(), timeEnd = t.size();
  int64_t seconds = 0;
  bool hasTime = false;
  if (!ReadTime(t, locale, timeBegin, timeEnd, seconds, hasTime)) return std::nullopt;

  // The date stands wholly before or wholly after the time, a blank between.
  size_t dateBegin = 0, dateEnd = t.size();
  if (hasTime) {
    const bool before = timeBegin > 0;
    const bool after = timeEnd < t.size();
    if (before && after) return std::nullopt;
    if (before) {
      if (t[timeBegin - 1].kind != Kind::Blank) return std::nullopt;
      dateEnd = timeBegin - 1;
    } else if (after) {
      if (t[timeEnd].kind != Kind::Blank) return std::nullopt;
      dateBegin = timeEnd + 1;
    } else {
      dateBegin = dateEnd = 0;
    }
  }

  if (dateBegin >= dateEnd) {
    if (!hasTime) return std::nullopt;
    return Date(static_cast<double>(seconds) / 86400.0);
  }

  std::vector<Part> parts;
  bool loose = false;
  if (!ReadDateParts(t, dateBegin, dateEnd, parts, loose)) return std::nullopt;
  if (parts.size() < 2) return std::nullopt;
  bool named = false;
  for (const Part& p : parts) named = named || p.month != 0;
  // Blanks and commas part numbers only around a month's name.
  if (loose && !named) return std::nullopt;
  Ymd ymd;
  const bool ok =
      named ? ResolveNamed(parts, ymd) : ResolveNumeric(parts, locale.ShortDateOrder(), ymd);
  if (!ok) return std::nullopt;

  const double day =
      DateSerial(static_cast<int>(ymd.y), static_cast<int>(ymd.m), static_cast<int>(ymd.d))
          .Serial();
  const double fraction = static_cast<double>(seconds) / 86400.0;
  return Date(day >= 0 ? day + fraction : day - fraction);
}

String DateText::General(Date date, const Locale& locale) {
  if (!Date::InRange(date.Serial())) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  // Parts rounded to the second, so a time a hair before midnight counts as
  // the next day, not as 23:59:60.
  const bool noDate = Year(date) == 1899 && Month(date) == 12 && Day(date) == 30;
  const bool noTime = Hour(date) == 0 && Minute(date) == 0 && Second(date) == 0;
  if (noDate) {
    return DateFormat::Apply(date, locale.LongTimeFormat(), vbSunday, vbFirstJan1, locale);
  }
  String text = DateFormat::Apply(date, locale.ShortDateFormat(), vbSunday, vbFirstJan1, locale);
  if (!noTime) {
    text += u' ';
    text += DateFormat::Apply(date, locale.LongTimeFormat(), vbSunday, vbFirstJan1, locale);
  }
  return text;
}

}  // namespace vantor
