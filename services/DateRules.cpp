#include "services/DateRules.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "runtime/Conversion.h"
#include "runtime/DateTime.h"
#include "runtime/Format.h"
#include "runtime/Strings.h"
#include "runtime/Variant.h"
#include "server/TypeLibrary.h"

namespace vantor::services {

namespace {

// The format names are published by the type library; reading them from there
// keeps one list for the hosts and for us.
const std::vector<String>& FormatNames() {
  static const std::vector<String> names = [] {
    std::vector<String> out(DateRules::kFormatCount);
    if (const server::EnumInfo* e = server::TypeLibrary::Get().FindEnum("ENUM_DATE_FORMAT")) {
      for (const server::EnumMember& m : e->members) {
        if (m.value >= 0 && m.value < DateRules::kFormatCount) {
          out[static_cast<size_t>(m.value)] = FromUtf8(m.name);
        }
      }
    }
    return out;
  }();
  return names;
}

// Typed dates use "/", "-" or "."; "/" wins when a text mixes them, then "-".
char16_t SeparatorOf(StringView text) {
  for (char16_t c : {u'/', u'-', u'.'}) {
    if (text.find(c) != StringView::npos) return c;
  }
  return 0;
}

// The first three parts of a text cut on a delimiter, and how many there are
// in all. Dates and times never need more, so nothing is allocated. An empty
// text has no parts; an empty delimiter leaves the text whole.
struct Parts {
  std::array<StringView, 3> items;
  size_t count = 0;
  size_t size() const { return count; }
  StringView operator[](size_t i) const { return items[i]; }
};

Parts SplitParts(StringView text, StringView delimiter) {
  Parts parts;
  if (text.empty()) return parts;
  size_t start = 0;
  while (true) {
    const size_t at = delimiter.empty() ? StringView::npos : text.find(delimiter, start);
    const StringView piece =
        text.substr(start, at == StringView::npos ? StringView::npos : at - start);
    if (parts.count < parts.items.size()) parts.items[parts.count] = piece;
    ++parts.count;
    if (at == StringView::npos) return parts;
    start = at + delimiter.size();
  }
}

Parts SplitOn(StringView text, char16_t separator) {
  return SplitParts(text, separator == 0 ? StringView() : StringView(&separator, 1));
}

// A part of a typed date or time: digits with blanks around. Anything else is
// no number, and a date or time holding it is refused. Absurdly long digit
// runs saturate at a value no day, month, hour or minute reaches.
std::optional<int64_t> WholeNumber(StringView part) {
  size_t first = 0, last = part.size();
  while (first < last && part[first] == u' ') ++first;
  while (last > first && part[last - 1] == u' ') --last;
  if (first == last) return std::nullopt;
  int64_t value = 0;
  for (size_t i = first; i < last; ++i) {
    const char16_t c = part[i];
    if (c < u'0' || c > u'9') return std::nullopt;
    if (value < 1'000'000'000'000) value = value * 10 + (c - u'0');
  }
  return value;
}

// A part that is present must be a number; a part that is missing counts as 0,
// which is how a date typed without its year reads.
bool PartAt(const Parts& parts, size_t index, int64_t& out) {
  if (index >= parts.size()) {
    out = 0;
    return true;
  }
  const std::optional<int64_t> value = WholeNumber(parts[index]);
  if (!value) return false;
  out = *value;
  return true;
}

enum class Order { YearMonthDay, DayMonthYear, MonthDayYear, DayMonth, MonthYear, YearMonth };

std::optional<Order> OrderOf(int32_t format) {
  if (format == 0 || (format >= 25 && format <= 35)) return Order::YearMonthDay;
  if (format == 1 || (format >= 3 && format <= 13)) return Order::DayMonthYear;
  if (format == 2 || (format >= 14 && format <= 24)) return Order::MonthDayYear;
  // The month-first two-part forms (45 to 53) are read day first as well;
  // controls that use them have always been checked this way.
  if (format >= 36 && format <= 53) return Order::DayMonth;
  if (format >= 54 && format <= 65) return Order::MonthYear;
  if (format >= 66 && format <= 77) return Order::YearMonth;
  return std::nullopt;
}

bool IsCalendarDay(int64_t day, int64_t month, int64_t year) {
  if (day < 1 || day > 31) return false;
  switch (month) {
    case 1:
    case 3:
    case 5:
    case 7:
    case 8:
    case 10:
    case 12:
      return true;
    case 2:
      return day <= (DateRules::IsLeapYear(year) ? 29 : 28);
    case 4:
    case 6:
    case 9:
    case 11:
      return day <= 30;
    default:
      return false;
  }
}

enum class Field { Day, Month, Year, Other };

Field FieldOf(StringView f) {
  if (f == u"d" || f == u"dd") return Field::Day;
  if (f == u"m" || f == u"mm") return Field::Month;
  if (f == u"yy" || f == u"yyyy") return Field::Year;
  return Field::Other;
}

int64_t FloorDiv(int64_t a, int64_t b) {
  const int64_t q = a / b;
  return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

String PadLeft(StringView value, size_t width) {
  String out;
  if (value.size() < width) out.assign(width - value.size(), u'0');
  out += value;
  return out;
}

// A short year gets its century: two digits below 50 are this century's.
String FullYear(StringView value, size_t width) {
  if (value.size() >= width || value.size() != 2) return String(value);
  return (Val(value) < 50 ? u"20" : u"19") + String(value);
}

String Rebuilt(StringView value, Field field, size_t width) {
  switch (field) {
    case Field::Day:
    case Field::Month:
      return PadLeft(value, width);
    case Field::Year:
      return FullYear(value, width);
    default:
      return String(value);
  }
}

}  // namespace

String DateRules::FormatName(int32_t number) {
  if (number < 0 || number >= kFormatCount) return {};
  return FormatNames()[static_cast<size_t>(number)];
}

bool DateRules::IsValidDate(StringView text, int32_t format) {
  return IsValidDate(text, format, Year(Today()));
}

bool DateRules::IsValidDate(StringView text, int32_t format, int32_t currentYear) {
  if (text.empty()) return false;
  const std::optional<Order> order = OrderOf(format);
  if (!order) return false;
  const Parts parts = SplitOn(text, SeparatorOf(text));
  int64_t day = 0, month = 0, year = 0;
  bool ok = true;
  switch (*order) {
    case Order::YearMonthDay:
      ok = PartAt(parts, 0, year) && PartAt(parts, 1, month) && PartAt(parts, 2, day);
      break;
    case Order::DayMonthYear:
      ok = PartAt(parts, 0, day) && PartAt(parts, 1, month) && PartAt(parts, 2, year);
      break;
    case Order::MonthDayYear:
      ok = PartAt(parts, 0, month) && PartAt(parts, 1, day) && PartAt(parts, 2, year);
      break;
    case Order::DayMonth:
      ok = PartAt(parts, 0, day) && PartAt(parts, 1, month);
      break;
    case Order::MonthYear:
      // The second part is read as the day, so "12/2024" fails: a form that
      // names no day has always been checked like this.
      ok = PartAt(parts, 0, month) && PartAt(parts, 1, day);
      year = currentYear;
      break;
    case Order::YearMonth:
      ok = PartAt(parts, 0, year) && PartAt(parts, 1, month);
      day = 1;
      break;
  }
  return ok && IsCalendarDay(day, month, year);
}

bool DateRules::IsValidTime(StringView text, StringView delimiter) {
  if (text.empty()) return false;
  int64_t hour = 0, minute = 0, second = 0;
  if (delimiter.empty()) {
    if (text.size() != 4 && text.size() != 6) return false;
    const std::optional<int64_t> h = WholeNumber(text.substr(0, 2));
    const std::optional<int64_t> m = WholeNumber(text.substr(2, 2));
    const std::optional<int64_t> s =
        text.size() == 6 ? WholeNumber(text.substr(4, 2)) : std::optional<int64_t>(0);
    if (!h || !m || !s) return false;
    hour = *h, minute = *m, second = *s;
  } else {
    const Parts parts = SplitParts(text, delimiter);
    if (!PartAt(parts, 0, hour) || !PartAt(parts, 1, minute) || !PartAt(parts, 2, second)) {
      return false;
    }
  }
  return hour <= 23 && minute <= 59 && second <= 59;
}

String DateRules::FormatDate(StringView text, StringView format) {
  if (text.empty()) return {};
  String typed(text);
  for (char16_t& c : typed) {
    if (c == u'-' || c == u'.') c = u'/';
  }
  const String platform = Format(Variant(std::move(typed)), format);

  const String lowered = LCase(format);
  const char16_t formatSeparator = SeparatorOf(lowered);
  const Parts formatParts = SplitOn(lowered, formatSeparator);
  const Parts parts = SplitOn(platform, SeparatorOf(platform));
  if (formatSeparator == 0 || formatParts.size() < 2 || formatParts.size() > 3 ||
      parts.size() < formatParts.size()) {
    return platform;
  }
  std::array<Field, 3> fields{Field::Other, Field::Other, Field::Other};
  for (size_t i = 0; i < formatParts.size(); ++i) fields[i] = FieldOf(formatParts[i]);
  if (fields[0] == Field::Other || fields[1] == Field::Other) return platform;

  const String separator(1, formatSeparator);
  auto field = [&](size_t part, size_t formatPart, size_t minimum = 0) {
    const size_t width = std::max(formatParts[formatPart].size(), minimum);
    return Rebuilt(parts[part], fields[formatPart], width);
  };

  if (formatParts.size() == 3) {
    const bool oneOfEach = fields[2] != Field::Other && fields[0] != fields[1] &&
                           fields[0] != fields[2] && fields[1] != fields[2];
    if (!oneOfEach) return platform;
    return field(0, 0) + separator + field(1, 1) + separator + field(2, 2);
  }
  const Field a = fields[0], b = fields[1];
  if ((a == Field::Day && b == Field::Month) || (a == Field::Month && b == Field::Day)) {
    return field(0, 0, 2) + separator + field(1, 1, 2);
  }
  if (a == Field::Month && b == Field::Year) return field(0, 0) + separator + field(1, 1);
  if (a == Field::Year && b == Field::Month) {
    // Both fields come from the second part, so the month shows as the year
    // too; hosts that use these forms rely on it.
    return field(1, 0) + separator + field(1, 1);
  }
  return platform;
}

bool DateRules::IsLeapYear(int64_t year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int32_t DateRules::AgeOn(Date birth, Date today) {
  if (!Date::InRange(birth.Serial()) || !Date::InRange(today.Serial())) return 0;
  int32_t age = Year(today) - Year(birth);
  const int32_t tm = Month(today), bm = Month(birth);
  if (tm < bm || (tm == bm && Day(today) < Day(birth))) --age;
  return age;
}

int32_t DateRules::DaysInMonth(int32_t month, int32_t year) {
  // Two-digit years as DateSerial reads them.
  int64_t y = year;
  if (y >= 0 && y <= 29) {
    y += 2000;
  } else if (y >= 30 && y <= 99) {
    y += 1900;
  }
  const int64_t months = y * 12 + (static_cast<int64_t>(month) - 1);
  const int64_t first = FloorDiv(months, 12);
  const int64_t next = FloorDiv(months + 1, 12);
  if (first < 100 || next > 9999) return 0;
  const int m = static_cast<int>(months - first * 12) + 1;
  static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && IsLeapYear(first) ? 29 : kDays[m - 1];
}

String DateRules::DayName(Date date, bool abbreviated) {
  if (!Date::InRange(date.Serial())) return {};
  static constexpr std::array<StringView, 7> kNames = {
      u"Domingo",      u"Segunda-feira", u"Terça-feira", u"Quarta-feira",
      u"Quinta-feira", u"Sexta-feira",   u"Sábado"};
  const int32_t weekday = Weekday(date);
  if (weekday < 1 || weekday > 7) return {};
  const StringView name = kNames[static_cast<size_t>(weekday - 1)];
  return String(abbreviated ? name.substr(0, 3) : name);
}

}  // namespace vantor::services
