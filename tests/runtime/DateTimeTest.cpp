#include "runtime/DateTime.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "runtime/Error.h"
#include "runtime/Locale.h"
#include "tests/runtime/TestSupport.h"

namespace vantor {
namespace {

using namespace test;

struct Parts {
  int y, m, d, h, n, s;
};

Parts PartsOf(Date date) {
  return {Year(date), Month(date), Day(date), Hour(date), Minute(date), Second(date)};
}

void ExpectParts(Date date, Parts want) {
  const Parts got = PartsOf(date);
  EXPECT_EQ(got.y, want.y) << date.Serial();
  EXPECT_EQ(got.m, want.m) << date.Serial();
  EXPECT_EQ(got.d, want.d) << date.Serial();
  EXPECT_EQ(got.h, want.h) << date.Serial();
  EXPECT_EQ(got.n, want.n) << date.Serial();
  EXPECT_EQ(got.s, want.s) << date.Serial();
}

TEST(DateTimeSerial, PartsOfSerials) {
  const struct {
    double serial;
    Parts parts;
  } cases[] = {
      {0.0, {1899, 12, 30, 0, 0, 0}},
      {1.0, {1899, 12, 31, 0, 0, 0}},
      {2.0, {1900, 1, 1, 0, 0, 0}},
      {60.0, {1900, 2, 28, 0, 0, 0}},  // no 29 February 1900
      {61.0, {1900, 3, 1, 0, 0, 0}},
      {36526.0, {2000, 1, 1, 0, 0, 0}},
      {45292.5, {2024, 1, 1, 12, 0, 0}},
      {0.5, {1899, 12, 30, 12, 0, 0}},
      // Before day 0 the fraction still counts forward from midnight.
      {-0.5, {1899, 12, 30, 12, 0, 0}},
      {-1.0, {1899, 12, 29, 0, 0, 0}},
      {-1.25, {1899, 12, 29, 6, 0, 0}},
      {-1.75, {1899, 12, 29, 18, 0, 0}},
      {-2.5, {1899, 12, 28, 12, 0, 0}},
      {-657434.0, {100, 1, 1, 0, 0, 0}},
      {2958465.0, {9999, 12, 31, 0, 0, 0}},
      {2958465.99998, {9999, 12, 31, 23, 59, 58}},
      // Times round to the second and carry into the day.
      {0.99999999, {1899, 12, 31, 0, 0, 0}},
      {0.999994, {1899, 12, 30, 23, 59, 59}},
      {-1.9999999, {1899, 12, 30, 0, 0, 0}},
      {45292.0 + 13.0 / 24 + 44.0 / 1440 + 59.6 / 86400, {2024, 1, 1, 13, 45, 0}},
      {45292.0 + 13.0 / 24 + 44.0 / 1440 + 59.4 / 86400, {2024, 1, 1, 13, 44, 59}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.serial);
    ExpectParts(Date(c.serial), c.parts);
  }
}

// Every day of the calendar taken apart and put together again, a day after
// the day before and a weekday after the weekday before.
TEST(DateTimeSerial, EveryDayRoundTrips) {
  int y = 100, m = 1, d = 1, weekday = Weekday(Date(Date::kMinSerial));
  for (int64_t day = -657434; day <= 2958465; ++day) {
    const Date date(static_cast<double>(day));
    const int gy = Year(date), gm = Month(date), gd = Day(date);
    if (gy != y || gm != m || gd != d) {
      FAIL() << day << ": " << gy << "-" << gm << "-" << gd << " after " << y << "-" << m << "-"
             << d;
    }
    if (DateSerial(gy, gm, gd) != date || Weekday(date) != weekday) FAIL() << day;
    // The next day.
    weekday = weekday % 7 + 1;
    const int last = m == 2 ? ((y % 4 == 0 && y % 100 != 0) || y % 400 == 0 ? 29 : 28)
                     : (m == 4 || m == 6 || m == 9 || m == 11) ? 30
                                                               : 31;
    if (++d > last) {
      d = 1;
      if (++m > 12) {
        m = 1;
        ++y;
      }
    }
  }
  EXPECT_EQ(y, 10000);
}

TEST(DateTimeSerial, OutOfRangeIsError5) {
  const double bad[] = {-657435.0,
                        2958466.0,
                        1e300,
                        -1e300,
                        std::numeric_limits<double>::quiet_NaN(),
                        std::numeric_limits<double>::infinity()};
  for (double serial : bad) {
    SCOPED_TRACE(serial);
    Err().Clear();
    EXPECT_EQ(Year(Date(serial)), 0);
    EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
    Err().Clear();
    EXPECT_EQ(Hour(Date(serial)), 0);
    EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
    Err().Clear();
    EXPECT_EQ(DatePart(u"d", Date(serial)), 0);
    EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  }
}

TEST(DateTimeSerial, LeapYears) {
  const struct {
    int year;
    int februaryDays;
  } cases[] = {{1900, 28}, {2000, 29}, {2100, 28}, {2023, 28},
               {2024, 29}, {1600, 29}, {100, 28},  {104, 29}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.year);
    EXPECT_EQ(Day(DateSerial(c.year, 3, 0)), c.februaryDays);
    EXPECT_EQ(DateSerial(c.year, 3, 1).Serial() - DateSerial(c.year, 2, 1).Serial(),
              c.februaryDays);
  }
}

TEST(DateTimeSerial, DateSerialCarriesAndWindows) {
  const struct {
    int y, m, d;
    int wy, wm, wd;
  } cases[] = {
      {2024, 13, 1, 2025, 1, 1},    {2024, 3, 0, 2024, 2, 29},   {2023, 3, 0, 2023, 2, 28},
      {2024, 0, 1, 2023, 12, 1},    {2024, -1, 1, 2023, 11, 1},  {2024, 1, 0, 2023, 12, 31},
      {2024, 1, -5, 2023, 12, 26},  {2014, -5, 12, 2013, 7, 12}, {2014, -5, 38, 2013, 8, 7},
      {2024, 1, 366, 2024, 12, 31}, {2024, 25, 1, 2026, 1, 1},   {2024, -12, 1, 2022, 12, 1},
      {69, 2, 12, 1969, 2, 12},     {10, 2, 12, 2010, 2, 12},    {0, 1, 1, 2000, 1, 1},
      {29, 12, 31, 2029, 12, 31},   {30, 1, 1, 1930, 1, 1},      {99, 12, 31, 1999, 12, 31},
      {99, 13, 1, 2000, 1, 1},      {100, 1, 1, 100, 1, 1},      {9999, 12, 31, 9999, 12, 31},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.y << "-" << c.m << "-" << c.d);
    Err().Clear();
    const Date date = DateSerial(c.y, c.m, c.d);
    EXPECT_EQ(Err().Number(), 0);
    EXPECT_EQ(date.Serial(), std::trunc(date.Serial()));
    ExpectParts(date, {c.wy, c.wm, c.wd, 0, 0, 0});
  }
  EXPECT_EQ(DateSerial(1899, 12, 30).Serial(), 0.0);
  EXPECT_EQ(DateSerial(1899, 12, 29).Serial(), -1.0);
  EXPECT_EQ(DateSerial(2024, 1, 1).Serial(), 45292.0);
  EXPECT_EQ(DateSerial(100, 1, 1).Serial(), Date::kMinSerial);
}

TEST(DateTimeSerial, DateSerialLimits) {
  const struct {
    int y, m, d;
  } cases[] = {{10000, 1, 1},
               {9999, 12, 32},
               {9999, 13, 1},
               {100, 1, 0},
               {100, 0, 1},
               {-1, 1, 1},
               {-100, 1, 1},
               {150, -700, 1},
               {INT_MAX, INT_MAX, INT_MAX},
               {INT_MIN, INT_MIN, INT_MIN},
               {2024, 1, INT_MAX}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.y << "-" << c.m << "-" << c.d);
    Err().Clear();
    EXPECT_EQ(DateSerial(c.y, c.m, c.d).Serial(), 0.0);
    EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  }
}

TEST(DateTimeSerial, TimeSerialCarries) {
  EXPECT_DOUBLE_EQ(TimeSerial(25, 0, 0).Serial(), 1.0 + 1.0 / 24);
  EXPECT_DOUBLE_EQ(TimeSerial(6, -15, 0).Serial(), 5.75 / 24);
  EXPECT_DOUBLE_EQ(TimeSerial(0, 90, 0).Serial(), 1.5 / 24);
  EXPECT_DOUBLE_EQ(TimeSerial(12, 20, -2).Serial(), (12 * 3600 + 19 * 60 + 58) / 86400.0);
  EXPECT_DOUBLE_EQ(TimeSerial(0, 0, 86400).Serial(), 1.0);
  // A negative sum keeps the serial the arithmetic gives.
  EXPECT_DOUBLE_EQ(TimeSerial(-1, 0, 0).Serial(), -1.0 / 24);
  ExpectParts(TimeSerial(13, 45, 30), {1899, 12, 30, 13, 45, 30});
  Err().Clear();
  EXPECT_EQ(TimeSerial(INT_MAX, INT_MAX, INT_MAX).Serial(), 0.0);
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
}

TEST(DateTimeAdd, MonthsClampToMonthLength) {
  const struct {
    const char16_t* interval;
    double number;
    Date from;
    Date want;
  } cases[] = {
      {u"m", 1, At(2024, 1, 31), At(2024, 2, 29)},
      {u"m", 1, At(2023, 1, 31), At(2023, 2, 28)},
      {u"m", -1, At(2024, 3, 31), At(2024, 2, 29)},
      {u"m", -1, At(2023, 3, 31), At(2023, 2, 28)},
      {u"m", 1, At(2024, 3, 31), At(2024, 4, 30)},
      {u"m", 12, At(2024, 1, 31), At(2025, 1, 31)},
      {u"m", -13, At(2024, 1, 15), At(2022, 12, 15)},
      {u"M", 1, At(2024, 12, 15), At(2025, 1, 15)},
      {u"yyyy", 1, At(2024, 2, 29), At(2025, 2, 28)},
      {u"yyyy", 4, At(2024, 2, 29), At(2028, 2, 29)},
      {u"YYYY", -1, At(2000, 2, 29), At(1999, 2, 28)},
      {u"q", 1, At(2024, 11, 30), At(2025, 2, 28)},
      {u"q", -2, At(2024, 8, 31), At(2024, 2, 29)},
      {u"m", 1, At(2024, 1, 31, 13, 45, 30), At(2024, 2, 29, 13, 45, 30)},
      // The fraction of a calendar count is dropped.
      {u"m", 1.9, At(2024, 1, 15), At(2024, 2, 15)},
      {u"m", -1.9, At(2024, 3, 15), At(2024, 2, 15)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.number << " from " << c.from.Serial());
    Err().Clear();
    EXPECT_EQ(DateAdd(c.interval, c.number, c.from), c.want);
    EXPECT_EQ(Err().Number(), 0);
  }
}

TEST(DateTimeAdd, DaysWeeksAndTimes) {
  const Date d = At(2024, 1, 31, 10, 0, 0);
  EXPECT_EQ(DateAdd(u"d", 1, d), At(2024, 2, 1, 10, 0, 0));
  EXPECT_EQ(DateAdd(u"d", 1.9, d), At(2024, 2, 1, 10, 0, 0));
  EXPECT_EQ(DateAdd(u"d", -1.9, d), At(2024, 1, 30, 10, 0, 0));
  EXPECT_EQ(DateAdd(u"d", 0.5, d), d);
  EXPECT_EQ(DateAdd(u"y", 1, d), At(2024, 2, 1, 10, 0, 0));
  EXPECT_EQ(DateAdd(u"w", 1, d), At(2024, 2, 1, 10, 0, 0));  // a day, as the platform's
  EXPECT_EQ(DateAdd(u"ww", 1, d), At(2024, 2, 7, 10, 0, 0));
  EXPECT_EQ(DateAdd(u"d", 366, At(2024, 1, 1)), At(2025, 1, 1));
  EXPECT_EQ(DateAdd(u"h", 14, d), At(2024, 2, 1, 0, 0, 0));
  EXPECT_EQ(DateAdd(u"h", 1.5, d), At(2024, 1, 31, 11, 30, 0));
  EXPECT_EQ(DateAdd(u"n", -601, d), At(2024, 1, 30, 23, 59, 0));
  EXPECT_EQ(DateAdd(u"s", 86400, d), At(2024, 2, 1, 10, 0, 0));
  // Across day 0 the result is the real moment, not the serial's arithmetic.
  EXPECT_EQ(DateAdd(u"h", -3, Date(0.0)).Serial(), -1.875);
  EXPECT_EQ(DateAdd(u"d", -1, Date(0.25)).Serial(), -1.25);
  EXPECT_EQ(DateAdd(u"h", 30, Date(-1.25)).Serial(), 0.5);
  EXPECT_EQ(DateAdd(u"h", 54, Date(-1.25)).Serial(), 1.5);
  EXPECT_EQ(DateAdd(u"n", 1, Date(-1.0 - 1439.0 / 1440)).Serial(), 0.0);
}

TEST(DateTimeAdd, SecondsDoNotDrift) {
  Date t(0.0);
  for (int i = 0; i < 8640; ++i) t = DateAdd(u"s", 10, t);
  EXPECT_EQ(t.Serial(), 1.0);
  Date h = At(2024, 3, 10);
  for (int i = 0; i < 24 * 30; ++i) h = DateAdd(u"h", 1, h);
  EXPECT_EQ(h, At(2024, 4, 9));
}

TEST(DateTimeAdd, Errors) {
  const struct {
    const char16_t* interval;
    double number;
    Date from;
    int32_t error;
  } cases[] = {
      {u"yyyy", -1, At(100, 6, 1), errInvalidProcedureCall},
      {u"m", -1, At(100, 1, 31), errInvalidProcedureCall},
      {u"d", 1, At(9999, 12, 31), errInvalidProcedureCall},
      {u"s", 1, At(9999, 12, 31, 23, 59, 59), errInvalidProcedureCall},
      {u"d", 1e300, At(2024, 1, 1), errInvalidProcedureCall},
      {u"m", -1e18, At(2024, 1, 1), errInvalidProcedureCall},
      {u"h", std::numeric_limits<double>::quiet_NaN(), At(2024, 1, 1), errInvalidProcedureCall},
      {u"d", std::numeric_limits<double>::infinity(), At(2024, 1, 1), errInvalidProcedureCall},
      {u"d", 1, Date(1e10), errInvalidProcedureCall},
      {u"x", 1, At(2024, 1, 1), errTypeMismatch},
      {u"", 1, At(2024, 1, 1), errTypeMismatch},
      {u"mm", 1, At(2024, 1, 1), errTypeMismatch},
      {u"d ", 1, At(2024, 1, 1), errTypeMismatch},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.number);
    Err().Clear();
    EXPECT_EQ(DateAdd(c.interval, c.number, c.from), Date());
    EXPECT_EQ(Err().Number(), c.error);
  }
  Err().Clear();
  EXPECT_EQ(DateAdd(u"yyyy", -1, At(101, 1, 1)), At(100, 1, 1));
  EXPECT_EQ(Err().Number(), 0);
}

TEST(DateTimeDiff, AcrossTheTurnOfTheYear) {
  // 31 December 2022 is a Saturday, so a Sunday-first week starts on 1 January.
  const Date a = At(2022, 12, 31, 23, 0, 0), b = At(2023, 1, 1, 1, 0, 0);
  const struct {
    const char16_t* interval;
    int64_t want;
  } cases[] = {{u"yyyy", 1}, {u"q", 1}, {u"m", 1}, {u"y", 1},   {u"d", 1},
               {u"ww", 1},   {u"w", 0}, {u"h", 2}, {u"n", 120}, {u"s", 7200}};
  for (const auto& c : cases) {
    SCOPED_TRACE(ToUtf8(c.interval));
    EXPECT_EQ(DateDiff(c.interval, a, b), c.want);
    EXPECT_EQ(DateDiff(c.interval, b, a), -c.want);
  }
  EXPECT_EQ(DateDiff(u"ww", a, b, vbMonday), 0);
  EXPECT_EQ(DateDiff(u"yyyy", At(2024, 1, 1), At(2024, 12, 31)), 0);
  EXPECT_EQ(DateDiff(u"m", At(2024, 1, 31), At(2024, 2, 1)), 1);
  EXPECT_EQ(DateDiff(u"q", At(2024, 3, 31), At(2024, 4, 1)), 1);
  EXPECT_EQ(DateDiff(u"q", At(2024, 1, 1), At(2024, 3, 31)), 0);
}

TEST(DateTimeDiff, WeeksAndDays) {
  const Date monday = At(2024, 1, 1);
  EXPECT_EQ(DateDiff(u"w", monday, At(2024, 1, 7)), 0);
  EXPECT_EQ(DateDiff(u"w", monday, At(2024, 1, 8)), 1);
  EXPECT_EQ(DateDiff(u"w", monday, At(2024, 1, 14)), 1);
  EXPECT_EQ(DateDiff(u"w", monday, At(2024, 1, 15)), 2);
  EXPECT_EQ(DateDiff(u"w", At(2024, 1, 14), monday), -1);
  // Sundays crossed: the 7th and the 14th; the start day never counts.
  EXPECT_EQ(DateDiff(u"ww", monday, At(2024, 1, 14)), 2);
  EXPECT_EQ(DateDiff(u"ww", At(2024, 1, 7), At(2024, 1, 13)), 0);
  EXPECT_EQ(DateDiff(u"ww", monday, At(2024, 1, 14), vbMonday), 1);
  EXPECT_EQ(DateDiff(u"ww", monday, At(2024, 1, 15), vbMonday), 2);
  EXPECT_EQ(DateDiff(u"ww", monday, At(2024, 1, 6), vbSaturday), 1);
  EXPECT_EQ(DateDiff(u"ww", monday, At(2024, 1, 14), vbUseSystemDayOfWeek), 2);
  // Days ignore the time of day.
  EXPECT_EQ(DateDiff(u"d", At(2024, 1, 1, 23, 59, 0), At(2024, 1, 2, 0, 1, 0)), 1);
  EXPECT_EQ(DateDiff(u"d", At(2024, 1, 1, 0, 1, 0), At(2024, 1, 1, 23, 59, 0)), 0);
  EXPECT_EQ(DateDiff(u"d", At(2024, 1, 1), At(2025, 1, 1)), 366);
  EXPECT_EQ(DateDiff(u"d", At(1900, 2, 28), At(1900, 3, 1)), 1);
}

TEST(DateTimeDiff, TimesCountBoundaries) {
  EXPECT_EQ(DateDiff(u"h", At(2024, 1, 1, 10, 59, 59), At(2024, 1, 1, 11, 0, 0)), 1);
  EXPECT_EQ(DateDiff(u"h", At(2024, 1, 1, 10, 0, 0), At(2024, 1, 1, 10, 59, 59)), 0);
  EXPECT_EQ(DateDiff(u"n", At(2024, 1, 1, 10, 59, 59), At(2024, 1, 1, 11, 0, 0)), 1);
  EXPECT_EQ(DateDiff(u"s", At(2024, 1, 1, 10, 59, 59), At(2024, 1, 1, 11, 0, 0)), 1);
  EXPECT_EQ(DateDiff(u"h", At(2024, 1, 1), At(2024, 1, 2)), 24);
  // Around day 0: 29 December 1899 21:00 to 30 December 03:00.
  EXPECT_EQ(DateDiff(u"h", Date(-1.875), Date(0.125)), 6);
  EXPECT_EQ(DateDiff(u"d", Date(-1.875), Date(0.125)), 1);
  EXPECT_EQ(DateDiff(u"n", Date(-0.5), Date(0.5)), 0);  // the same moment
  EXPECT_EQ(DateDiff(u"d", At(100, 1, 1), At(9999, 12, 31)), 2958465 + 657434);
}

TEST(DateTimeDiff, Errors) {
  Err().Clear();
  EXPECT_EQ(DateDiff(u"z", At(2024, 1, 1), At(2024, 1, 2)), 0);
  EXPECT_EQ(Err().Number(), errTypeMismatch);
  Err().Clear();
  EXPECT_EQ(DateDiff(u"d", At(2024, 1, 1), Date(-1e9)), 0);
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  Err().Clear();
  EXPECT_EQ(DateDiff(u"ww", At(2024, 1, 1), At(2024, 2, 1), static_cast<VbDayOfWeek>(8)), 0);
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  Err().Clear();
  EXPECT_EQ(
      DateDiff(u"d", At(2024, 1, 1), At(2024, 2, 1), vbSunday, static_cast<VbFirstWeekOfYear>(-1)),
      0);
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
}

TEST(DateTimePart, EachInterval) {
  const Date d = At(2024, 5, 15, 14, 30, 45);  // a Wednesday
  const struct {
    const char16_t* interval;
    int32_t want;
  } cases[] = {{u"yyyy", 2024}, {u"q", 2},   {u"m", 5},  {u"y", 136}, {u"d", 15},
               {u"w", 4},       {u"ww", 20}, {u"h", 14}, {u"n", 30},  {u"s", 45}};
  for (const auto& c : cases) {
    EXPECT_EQ(DatePart(c.interval, d), c.want);
  }
  EXPECT_EQ(DatePart(u"w", d, vbMonday), 3);
  EXPECT_EQ(DatePart(u"y", At(2023, 12, 31)), 365);
  EXPECT_EQ(DatePart(u"y", At(2024, 12, 31)), 366);
  EXPECT_EQ(DatePart(u"q", At(2024, 3, 31)), 1);
  EXPECT_EQ(DatePart(u"q", At(2024, 4, 1)), 2);
  EXPECT_EQ(DatePart(u"q", At(2024, 12, 1)), 4);
  EXPECT_EQ(DatePart(u"ww", At(2024, 12, 30), vbMonday, vbFirstFourDays), 1);
  Err().Clear();
  EXPECT_EQ(DatePart(u"www", d), 0);
  EXPECT_EQ(Err().Number(), errTypeMismatch);
}

TEST(DateTimeWeek, WeekdayFromFirstDay) {
  const Date friday = At(2024, 1, 5);
  EXPECT_EQ(Weekday(friday), 6);
  EXPECT_EQ(Weekday(friday, vbMonday), 5);
  EXPECT_EQ(Weekday(friday, vbFriday), 1);
  EXPECT_EQ(Weekday(friday, vbSaturday), 7);
  EXPECT_EQ(Weekday(friday, vbUseSystemDayOfWeek), 6);
  EXPECT_EQ(Weekday(Date(0.0)), 7);    // 30 December 1899, a Saturday
  EXPECT_EQ(Weekday(Date(-1.0)), 6);   // and the Friday before it
  EXPECT_EQ(Weekday(Date(-1.75)), 6);  // its evening still
  EXPECT_EQ(Weekday(At(100, 1, 1)), 6);
  Err().Clear();
  EXPECT_EQ(Weekday(friday, static_cast<VbDayOfWeek>(8)), 0);
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
}

TEST(DateTimeWeek, WeekOfYearAroundNewYear) {
  const struct {
    VbDayOfWeek first;
    VbFirstWeekOfYear rule;
  } rules[] = {
      {vbSunday, vbFirstJan1},     {vbMonday, vbFirstJan1},     {vbSaturday, vbFirstJan1},
      {vbSunday, vbFirstFourDays}, {vbMonday, vbFirstFourDays}, {vbThursday, vbFirstFourDays},
      {vbSunday, vbFirstFullWeek}, {vbMonday, vbFirstFullWeek}, {vbSaturday, vbFirstFullWeek}};
  const struct {
    int y, m, d;
    int want[9];
  } cases[] = {
      {2000, 12, 30, {53, 53, 53, 52, 52, 53, 52, 52, 53}},
      {2000, 12, 31, {54, 53, 53, 1, 52, 53, 53, 52, 53}},
      {2001, 1, 1, {1, 1, 1, 1, 1, 53, 53, 1, 53}},
      {2003, 12, 28, {53, 52, 53, 53, 52, 52, 52, 51, 52}},
      {2003, 12, 29, {53, 53, 53, 53, 1, 52, 52, 52, 52}},  // the Monday the platform misses
      {2004, 1, 1, {1, 1, 1, 53, 1, 1, 52, 52, 52}},
      {2004, 1, 4, {2, 1, 2, 1, 1, 1, 1, 52, 1}},
      {2004, 1, 5, {2, 2, 2, 1, 2, 1, 1, 1, 1}},
      {2004, 12, 31, {53, 53, 53, 52, 53, 1, 52, 52, 52}},
      {2005, 1, 1, {1, 1, 1, 52, 53, 1, 52, 52, 1}},
      {2005, 1, 2, {2, 1, 1, 1, 53, 1, 1, 52, 1}},
      {2005, 1, 3, {2, 2, 1, 1, 1, 1, 1, 1, 1}},
      {2008, 12, 29, {53, 53, 53, 53, 1, 52, 52, 52, 52}},
      {2009, 1, 1, {1, 1, 1, 53, 1, 1, 52, 52, 52}},
      {2020, 12, 31, {53, 53, 53, 53, 53, 1, 52, 52, 52}},
      {2021, 1, 1, {1, 1, 1, 53, 53, 1, 52, 52, 52}},
      {2021, 1, 3, {2, 1, 2, 1, 53, 1, 1, 52, 1}},
      {2021, 1, 4, {2, 2, 2, 1, 1, 1, 1, 1, 1}},
      {2023, 12, 31, {53, 53, 53, 1, 52, 53, 53, 52, 52}},
      {2024, 1, 1, {1, 1, 1, 1, 1, 53, 53, 1, 52}},
      {2024, 12, 29, {53, 52, 53, 1, 52, 52, 52, 52, 52}},
      {2024, 12, 30, {53, 53, 53, 1, 1, 52, 52, 53, 52}},
      {2024, 12, 31, {53, 53, 53, 1, 1, 52, 52, 53, 52}},
      {2025, 1, 1, {1, 1, 1, 1, 1, 52, 52, 53, 52}},
      {2025, 1, 5, {2, 1, 2, 2, 1, 1, 1, 53, 1}},
      {2026, 1, 1, {1, 1, 1, 53, 1, 1, 52, 52, 52}},
      {2027, 1, 1, {1, 1, 1, 52, 53, 1, 52, 52, 52}},
      {2027, 1, 3, {2, 1, 2, 1, 53, 1, 1, 52, 1}},
  };
  for (const auto& c : cases) {
    for (int r = 0; r < 9; ++r) {
      SCOPED_TRACE(testing::Message() << c.y << "-" << c.m << "-" << c.d << " first "
                                      << rules[r].first << " rule " << rules[r].rule);
      EXPECT_EQ(WeekOfYear(At(c.y, c.m, c.d), rules[r].first, rules[r].rule), c.want[r]);
      EXPECT_EQ(DatePart(u"ww", At(c.y, c.m, c.d, 23, 59, 59), rules[r].first, rules[r].rule),
                c.want[r]);
    }
  }
}

TEST(DateTimeWeek, SystemSettingsAreSundayAndFirstJan1) {
  for (int day = 0; day < 800; day += 3) {
    const Date d = DateAdd(u"d", day, At(2023, 6, 1));
    EXPECT_EQ(WeekOfYear(d, vbUseSystemDayOfWeek, vbUseSystem),
              WeekOfYear(d, vbSunday, vbFirstJan1));
  }
  Err().Clear();
  EXPECT_EQ(WeekOfYear(At(2024, 1, 1), vbSunday, static_cast<VbFirstWeekOfYear>(4)), 0);
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
}

TEST(DateTimeWeek, CalendarEdgesDoNotFail) {
  const VbFirstWeekOfYear rules[] = {vbFirstJan1, vbFirstFourDays, vbFirstFullWeek};
  for (VbFirstWeekOfYear rule : rules) {
    Err().Clear();
    EXPECT_GE(WeekOfYear(At(100, 1, 1), vbMonday, rule), 1);
    EXPECT_GE(WeekOfYear(At(9999, 12, 31), vbMonday, rule), 1);
    EXPECT_EQ(Err().Number(), 0);
  }
}

TEST(DateTimeNames, MonthAndWeekdayNames) {
  EXPECT_EQ(MonthName(1), u"janeiro");
  EXPECT_EQ(MonthName(3), u"março");
  EXPECT_EQ(MonthName(12, true), u"dez");
  EXPECT_EQ(WeekdayName(1), u"domingo");
  EXPECT_EQ(WeekdayName(2), u"segunda-feira");
  EXPECT_EQ(WeekdayName(1, false, vbMonday), u"segunda-feira");
  EXPECT_EQ(WeekdayName(7, true, vbMonday), u"dom");
  EXPECT_EQ(WeekdayName(7, true, vbUseSystemDayOfWeek), u"sáb");
  {
    EnglishLocale english;
    EXPECT_EQ(MonthName(1), u"January");
    EXPECT_EQ(MonthName(5, true), u"May");
    EXPECT_EQ(WeekdayName(6), u"Friday");
    EXPECT_EQ(WeekdayName(1, true, vbSaturday), u"Sat");
  }
  const int32_t badMonths[] = {0, 13, -1, INT_MAX};
  for (int32_t m : badMonths) {
    Err().Clear();
    EXPECT_EQ(MonthName(m), u"");
    EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  }
  Err().Clear();
  EXPECT_EQ(WeekdayName(8), u"");
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  Err().Clear();
  EXPECT_EQ(WeekdayName(1, false, static_cast<VbDayOfWeek>(9)), u"");
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
}

TEST(DateTimeText, IsDate) {
  EXPECT_TRUE(IsDate(Variant(At(2024, 1, 31))));
  EXPECT_TRUE(IsDate(Variant(u"31/01/2024")));
  EXPECT_TRUE(IsDate(Variant(u"12/31/2024")));  // read the other way round
  EXPECT_TRUE(IsDate(Variant(u"13:45")));
  EXPECT_FALSE(IsDate(Variant(u"31/02/2024")));
  EXPECT_FALSE(IsDate(Variant(u"")));
  EXPECT_FALSE(IsDate(Variant(u"abc")));
  EXPECT_FALSE(IsDate(Variant(int32_t{5})));
  EXPECT_FALSE(IsDate(Variant(45292.0)));
  EXPECT_FALSE(IsDate(Variant(Null)));
  EXPECT_FALSE(IsDate(Variant()));
  Variant target(u"01/02/2024");
  EXPECT_TRUE(IsDate(Variant::ByRef(&target)));
  {
    EnglishLocale english;
    EXPECT_TRUE(IsDate(Variant(u"12/31/2024")));
    EXPECT_TRUE(IsDate(Variant(u"31/12/2024")));
    EXPECT_FALSE(IsDate(Variant(u"13/31/2024")));
  }
}

TEST(DateTimeText, DateValueAndTimeValue) {
  EXPECT_EQ(DateValue(u"31/01/2024 13:45"), At(2024, 1, 31));
  EXPECT_EQ(TimeValue(u"31/01/2024 13:45"), TimeSerial(13, 45, 0));
  EXPECT_EQ(DateValue(u"01/02/2024"), At(2024, 2, 1));
  EXPECT_EQ(DateValue(u"13:45"), Date());
  EXPECT_EQ(TimeValue(u"31/01/2024"), Date());
  EXPECT_EQ(TimeValue(u"29/12/1899 06:00"), Date(0.25));
  EXPECT_EQ(DateValue(u"29/12/1899 06:00"), Date(-1.0));
  {
    EnglishLocale english;
    EXPECT_EQ(DateValue(u"01/02/2024"), At(2024, 1, 2));
    EXPECT_EQ(TimeValue(u"1:45 PM"), TimeSerial(13, 45, 0));
  }
  const char16_t* bad[] = {u"", u"x", u"31/02/2024", u"25:00", u"/"};
  for (const char16_t* text : bad) {
    Err().Clear();
    EXPECT_EQ(DateValue(text), Date());
    EXPECT_EQ(Err().Number(), errTypeMismatch);
    Err().Clear();
    EXPECT_EQ(TimeValue(text), Date());
    EXPECT_EQ(Err().Number(), errTypeMismatch);
  }
}

TEST(DateTimeClock, LocalClockAgrees) {
  const Date today = Today();
  const Date now = Now();
  const Date time = TimeNow();
  const double timer = Timer();
  EXPECT_EQ(today.Serial(), std::trunc(today.Serial()));
  EXPECT_GT(today.Serial(), 45000.0);
  // Unless midnight passed between the calls.
  const double sinceToday = now.Serial() - today.Serial();
  if (sinceToday < 1.0) {
    EXPECT_GE(sinceToday, 0.0);
    EXPECT_NEAR(sinceToday, time.Serial(), 2.0 / 86400);
    EXPECT_NEAR(timer, time.Serial() * 86400, 2.0);
  }
  EXPECT_GE(time.Serial(), 0.0);
  EXPECT_LT(time.Serial(), 1.0);
  EXPECT_GE(timer, 0.0);
  EXPECT_LT(timer, 86400.0);
  // Now is whole seconds.
  EXPECT_NEAR(now.Serial() * 86400, std::round(now.Serial() * 86400), 1e-3);
}

}  // namespace
}  // namespace vantor
