#include "runtime/DateTime.h"

#include <algorithm>
#include <cmath>
#include <ctime>

#include "runtime/DateText.h"
#include "runtime/Error.h"
#include "runtime/Locale.h"

namespace vantor {

namespace {

constexpr int64_t kSecondsPerDay = 86400;
// Day numbers of 1 January 100 and 31 December 9999.
constexpr int64_t kMinDay = -657434;
constexpr int64_t kMaxDay = 2958465;

int64_t FloorDiv(int64_t a, int64_t b) {
  int64_t q = a / b;
  if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
  return q;
}

int64_t FloorMod(int64_t a, int64_t b) {
  return a - FloorDiv(a, b) * b;
}

bool IsLeap(int64_t year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysInMonth(int64_t year, int month) {
  static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

// Proleptic Gregorian calendar counted in 400-year eras of 146097 days, with
// March as the first month so that the leap day falls at the end of the year.
// The count is shifted so that 30 December 1899 is day 0.
constexpr int64_t kEpochShift = 693899;  // days from 1 March 0 to 30 December 1899

int64_t DayNumber(int64_t year, int month, int64_t day) {
  const int64_t y = month <= 2 ? year - 1 : year;
  const int64_t era = FloorDiv(y, 400);
  const int64_t yoe = y - era * 400;
  const int64_t mp = (month + 9) % 12;  // March is 0
  const int64_t doy = (153 * mp + 2) / 5;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - kEpochShift + (day - 1);
}

struct Civil {
  int64_t year;
  int month;
  int day;
};

Civil CivilOf(int64_t dayNumber) {
  const int64_t z = dayNumber + kEpochShift;
  const int64_t era = FloorDiv(z, 146097);
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  const int day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  const int month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  const int64_t year = yoe + era * 400 + (month <= 2 ? 1 : 0);
  return {year, month, day};
}

// A date cut into its calendar day and the second of that day. The platform
// shows and takes apart dates to the nearest second, so a time a hair before
// midnight belongs to the next day.
struct Moment {
  int64_t day = 0;
  int64_t second = 0;
  int64_t Linear() const { return day * kSecondsPerDay + second; }
};

bool Split(Date date, Moment& out) {
  const double serial = date.Serial();
  if (!Date::InRange(serial)) return false;
  const double whole = std::trunc(serial);
  // Before day 0 the fraction still runs forward from the day's midnight.
  const double fraction = std::fabs(serial - whole);
  int64_t day = static_cast<int64_t>(whole);
  auto second = static_cast<int64_t>(std::floor(fraction * kSecondsPerDay + 0.5));
  if (second >= kSecondsPerDay) {
    if (day < kMaxDay) {
      ++day;
      second -= kSecondsPerDay;
    } else {
      second = kSecondsPerDay - 1;
    }
  }
  out.day = day;
  out.second = second;
  return true;
}

double Encode(int64_t day, int64_t second) {
  const double fraction = static_cast<double>(second) / kSecondsPerDay;
  const auto whole = static_cast<double>(day);
  return day >= 0 ? whole + fraction : whole - fraction;
}

bool DayInRange(int64_t day) {
  return day >= kMinDay && day <= kMaxDay;
}

Date FromLinear(int64_t linear, bool& ok) {
  const int64_t day = FloorDiv(linear, kSecondsPerDay);
  ok = DayInRange(day);
  if (!ok) return Date();
  return Date(Encode(day, FloorMod(linear, kSecondsPerDay)));
}

enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

bool ParseInterval(StringView text, Interval& out) {
  String lower(text);
  for (auto& c : lower) {
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
  }
  static constexpr struct {
    const char16_t* name;
    Interval interval;
  } kNames[] = {{u"yyyy", Interval::Year},   {u"q", Interval::Quarter}, {u"m", Interval::Month},
                {u"y", Interval::DayOfYear}, {u"d", Interval::Day},     {u"w", Interval::Weekday},
                {u"ww", Interval::Week},     {u"h", Interval::Hour},    {u"n", Interval::Minute},
                {u"s", Interval::Second}};
  for (const auto& entry : kNames) {
    if (lower == entry.name) {
      out = entry.interval;
      return true;
    }
  }
  return false;
}

// The system setting the platform consults for 0 is Sunday in both locales
// the library supports.
int FirstDay(VbDayOfWeek first) {
  return first == vbUseSystemDayOfWeek ? vbSunday : first;
}

bool ValidFirstDay(VbDayOfWeek first) {
  return first >= 0 && first <= 7;
}
bool ValidFirstWeek(VbFirstWeekOfYear rule) {
  return rule >= 0 && rule <= 3;
}

// 0 for the first day of the week, 6 for the last. Day 0 was a Saturday.
int WeekdayIndex(int64_t day, int first) {
  const int sundayBased = static_cast<int>(FloorMod(day + 6, 7));  // 0 = Sunday
  return static_cast<int>(FloorMod(sundayBased - (first - 1), 7));
}

int64_t WeekStart(int64_t day, int first) {
  return day - WeekdayIndex(day, first);
}

// The first day of week 1 of the year under the rule.
int64_t FirstWeekStart(int64_t year, int first, VbFirstWeekOfYear rule) {
  const int64_t jan1 = DayNumber(year, 1, 1);
  const int64_t start = WeekStart(jan1, first);
  switch (rule) {
    case vbFirstFourDays:
      // The week holding 1 January counts when at least four of its days are
      // in the new year.
      return jan1 - start <= 3 ? start : start + 7;
    case vbFirstFullWeek:
      return start == jan1 ? start : start + 7;
    default:
      return start;
  }
}

int32_t WeekNumber(int64_t day, int first, VbFirstWeekOfYear rule) {
  if (rule == vbUseSystem) rule = vbFirstJan1;
  const int64_t year = CivilOf(day).year;
  // Under the four-day rule the last days of December may already be week 1
  // of the next year. The platform's DatePart is known to get some of those
  // Mondays wrong (53 instead of 1); the library gives the right week.
  if (rule == vbFirstFourDays && day >= FirstWeekStart(year + 1, first, rule)) return 1;
  int64_t start = FirstWeekStart(year, first, rule);
  if (day < start) start = FirstWeekStart(year - 1, first, rule);
  return static_cast<int32_t>((day - start) / 7 + 1);
}

bool SplitOrFail(Date date, Moment& m) {
  if (Split(date, m)) return true;
  Err().Set(errInvalidProcedureCall);
  return false;
}

int32_t DayOfYear(int64_t day) {
  return static_cast<int32_t>(day - DayNumber(CivilOf(day).year, 1, 1) + 1);
}

int32_t Quarter(int month) {
  return (month - 1) / 3 + 1;
}

Date LocalClock(bool withDate, bool withTime) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (localtime_r(&now, &local) == nullptr) return Date();
  const int64_t day = DayNumber(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  // A leap second still shows as the minute's last.
  const int64_t second = local.tm_hour * 3600 + local.tm_min * 60 + std::min(local.tm_sec, 59);
  return Date(Encode(withDate ? day : 0, withTime ? second : 0));
}

}  // namespace

Date DateSerial(int year, int month, int day) {
  int64_t y = year;
  if (y >= 0 && y <= 29) {
    y += 2000;
  } else if (y >= 30 && y <= 99) {
    y += 1900;
  }
  // Months and days past their ends move the date on, as the platform allows.
  const int64_t months = y * 12 + (static_cast<int64_t>(month) - 1);
  const int64_t dayNumber =
      DayNumber(FloorDiv(months, 12), static_cast<int>(FloorMod(months, 12)) + 1, day);
  if (!DayInRange(dayNumber)) {
    Err().Set(errInvalidProcedureCall);
    return Date();
  }
  return Date(static_cast<double>(dayNumber));
}

// The sum of the parts as a fraction of a day, as the platform computes it. A
// negative sum is kept as the arithmetic gives it rather than moved to the day
// before.
Date TimeSerial(int hour, int minute, int second) {
  const int64_t total =
      static_cast<int64_t>(hour) * 3600 + static_cast<int64_t>(minute) * 60 + second;
  const double serial = static_cast<double>(total) / kSecondsPerDay;
  if (!Date::InRange(serial)) {
    Err().Set(errInvalidProcedureCall);
    return Date();
  }
  return Date(serial);
}

// The platform's documentation says the number is rounded, but its run time
// drops the fraction for the calendar intervals, and so does this one:
// DateAdd("d", 1.9, d) adds one day. Hours, minutes and seconds add the exact
// time, rounded to the second so that repeated steps do not drift.
Date DateAdd(StringView interval, double number, Date date) {
  Interval kind;
  if (!ParseInterval(interval, kind)) {
    Err().Set(errTypeMismatch);
    return Date();
  }
  Moment m;
  if (!std::isfinite(number) || !SplitOrFail(date, m)) {
    if (!std::isfinite(number)) Err().Set(errInvalidProcedureCall);
    return Date();
  }
  // Well beyond the span of the calendar, so the integer arithmetic below
  // cannot overflow.
  constexpr double kLimit = 1e12;
  const double whole = std::trunc(number);
  bool ok = std::fabs(number) < kLimit;
  Date result;
  if (ok) {
    switch (kind) {
      case Interval::Year:
      case Interval::Quarter:
      case Interval::Month: {
        const int64_t per = kind == Interval::Year ? 12 : kind == Interval::Quarter ? 3 : 1;
        const Civil c = CivilOf(m.day);
        const int64_t months = c.year * 12 + (c.month - 1) + static_cast<int64_t>(whole) * per;
        const int64_t year = FloorDiv(months, 12);
        const int month = static_cast<int>(FloorMod(months, 12)) + 1;
        ok = year >= 100 && year <= 9999;
        if (ok) {
          const int day = std::min(c.day, DaysInMonth(year, month));
          result = Date(Encode(DayNumber(year, month, day), m.second));
        }
        break;
      }
      case Interval::DayOfYear:
      case Interval::Day:
      case Interval::Weekday:
      case Interval::Week: {
        const int64_t per = kind == Interval::Week ? 7 : 1;
        const int64_t day = m.day + static_cast<int64_t>(whole) * per;
        ok = DayInRange(day);
        if (ok) result = Date(Encode(day, m.second));
        break;
      }
      case Interval::Hour:
      case Interval::Minute:
      case Interval::Second: {
        const double per = kind == Interval::Hour ? 3600 : kind == Interval::Minute ? 60 : 1;
        const double seconds = std::round(number * per);
        ok = std::fabs(seconds) < kLimit * 10;
        if (ok) result = FromLinear(m.Linear() + static_cast<int64_t>(seconds), ok);
        break;
      }
    }
  }
  if (!ok) {
    Err().Set(errInvalidProcedureCall);
    return Date();
  }
  return result;
}

int64_t DateDiff(StringView interval, Date date1, Date date2, VbDayOfWeek firstDayOfWeek,
                 VbFirstWeekOfYear firstWeekOfYear) {
  Interval kind;
  if (!ParseInterval(interval, kind)) {
    Err().Set(errTypeMismatch);
    return 0;
  }
  if (!ValidFirstDay(firstDayOfWeek) || !ValidFirstWeek(firstWeekOfYear)) {
    Err().Set(errInvalidProcedureCall);
    return 0;
  }
  Moment a, b;
  if (!SplitOrFail(date1, a) || !SplitOrFail(date2, b)) return 0;
  const Civil ca = CivilOf(a.day), cb = CivilOf(b.day);
  switch (kind) {
    case Interval::Year:
      return cb.year - ca.year;
    case Interval::Quarter:
      return (cb.year * 4 + Quarter(cb.month)) - (ca.year * 4 + Quarter(ca.month));
    case Interval::Month:
      return (cb.year * 12 + cb.month) - (ca.year * 12 + ca.month);
    case Interval::DayOfYear:
    case Interval::Day:
      return b.day - a.day;
    case Interval::Weekday:
      // Whole periods of seven days; toward zero either way.
      return (b.day - a.day) / 7;
    case Interval::Week: {
      const int first = FirstDay(firstDayOfWeek);
      return (WeekStart(b.day, first) - WeekStart(a.day, first)) / 7;
    }
    case Interval::Hour:
      return FloorDiv(b.Linear(), 3600) - FloorDiv(a.Linear(), 3600);
    case Interval::Minute:
      return FloorDiv(b.Linear(), 60) - FloorDiv(a.Linear(), 60);
    case Interval::Second:
      return b.Linear() - a.Linear();
  }
  return 0;
}

int32_t DatePart(StringView interval, Date date, VbDayOfWeek firstDayOfWeek,
                 VbFirstWeekOfYear firstWeekOfYear) {
  Interval kind;
  if (!ParseInterval(interval, kind)) {
    Err().Set(errTypeMismatch);
    return 0;
  }
  if (!ValidFirstDay(firstDayOfWeek) || !ValidFirstWeek(firstWeekOfYear)) {
    Err().Set(errInvalidProcedureCall);
    return 0;
  }
  Moment m;
  if (!SplitOrFail(date, m)) return 0;
  const Civil c = CivilOf(m.day);
  switch (kind) {
    case Interval::Year:
      return static_cast<int32_t>(c.year);
    case Interval::Quarter:
      return Quarter(c.month);
    case Interval::Month:
      return c.month;
    case Interval::DayOfYear:
      return DayOfYear(m.day);
    case Interval::Day:
      return c.day;
    case Interval::Weekday:
      return WeekdayIndex(m.day, FirstDay(firstDayOfWeek)) + 1;
    case Interval::Week:
      return WeekNumber(m.day, FirstDay(firstDayOfWeek), firstWeekOfYear);
    case Interval::Hour:
      return static_cast<int32_t>(m.second / 3600);
    case Interval::Minute:
      return static_cast<int32_t>(m.second / 60 % 60);
    case Interval::Second:
      return static_cast<int32_t>(m.second % 60);
  }
  return 0;
}

int32_t Year(Date date) {
  Moment m;
  return SplitOrFail(date, m) ? static_cast<int32_t>(CivilOf(m.day).year) : 0;
}

int32_t Month(Date date) {
  Moment m;
  return SplitOrFail(date, m) ? CivilOf(m.day).month : 0;
}

int32_t Day(Date date) {
  Moment m;
  return SplitOrFail(date, m) ? CivilOf(m.day).day : 0;
}

int32_t Hour(Date date) {
  Moment m;
  return SplitOrFail(date, m) ? static_cast<int32_t>(m.second / 3600) : 0;
}

int32_t Minute(Date date) {
  Moment m;
  return SplitOrFail(date, m) ? static_cast<int32_t>(m.second / 60 % 60) : 0;
}

int32_t Second(Date date) {
  Moment m;
  return SplitOrFail(date, m) ? static_cast<int32_t>(m.second % 60) : 0;
}

int32_t Weekday(Date date, VbDayOfWeek firstDayOfWeek) {
  if (!ValidFirstDay(firstDayOfWeek)) {
    Err().Set(errInvalidProcedureCall);
    return 0;
  }
  Moment m;
  return SplitOrFail(date, m) ? WeekdayIndex(m.day, FirstDay(firstDayOfWeek)) + 1 : 0;
}

int32_t WeekOfYear(Date date, VbDayOfWeek firstDayOfWeek, VbFirstWeekOfYear firstWeekOfYear) {
  if (!ValidFirstDay(firstDayOfWeek) || !ValidFirstWeek(firstWeekOfYear)) {
    Err().Set(errInvalidProcedureCall);
    return 0;
  }
  Moment m;
  return SplitOrFail(date, m) ? WeekNumber(m.day, FirstDay(firstDayOfWeek), firstWeekOfYear) : 0;
}

String MonthName(int32_t month, bool abbreviate) {
  if (month < 1 || month > 12) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  return String(Locale::Current().MonthName(month, abbreviate));
}

String WeekdayName(int32_t weekday, bool abbreviate, VbDayOfWeek firstDayOfWeek) {
  if (weekday < 1 || weekday > 7 || !ValidFirstDay(firstDayOfWeek)) {
    Err().Set(errInvalidProcedureCall);
    return {};
  }
  const int sundayBased = (weekday - 1 + FirstDay(firstDayOfWeek) - 1) % 7 + 1;
  return String(Locale::Current().DayName(sundayBased, abbreviate));
}

bool IsDate(const Variant& value) {
  if (value.As<Date>() != nullptr) return true;
  if (const String* text = value.As<String>()) return DateText::Parse(*text).has_value();
  // Numbers are not dates to the platform's IsDate, though CDate takes them.
  return false;
}

Date DateValue(StringView text) {
  const auto parsed = DateText::Parse(text);
  Moment m;
  if (!parsed || !Split(*parsed, m)) {
    Err().Set(errTypeMismatch);
    return Date();
  }
  return Date(static_cast<double>(m.day));
}

// Taken from the whole seconds rather than by subtracting the day, which
// would leave the fraction a few bits short.
Date TimeValue(StringView text) {
  const auto parsed = DateText::Parse(text);
  Moment m;
  if (!parsed || !Split(*parsed, m)) {
    Err().Set(errTypeMismatch);
    return Date();
  }
  return Date(Encode(0, m.second));
}

Date Now() {
  return LocalClock(true, true);
}

Date Today() {
  return LocalClock(true, false);
}

Date TimeNow() {
  return LocalClock(false, true);
}

double Timer() {
  std::timespec now{};
  if (std::timespec_get(&now, TIME_UTC) == 0) return 0.0;
  std::tm local{};
  if (localtime_r(&now.tv_sec, &local) == nullptr) return 0.0;
  const int seconds = local.tm_hour * 3600 + local.tm_min * 60 + std::min(local.tm_sec, 59);
  return seconds + static_cast<double>(now.tv_nsec) / 1e9;
}

}  // namespace vantor
