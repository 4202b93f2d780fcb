#include "services/DateRules.h"

#include <gtest/gtest.h>

#include "runtime/DateTime.h"
#include "runtime/Locale.h"

namespace vantor::services {
namespace {

TEST(DateRules, FormatNamesComeFromTheTypeLibrary) {
  EXPECT_EQ(DateRules::FormatName(0), u"yyyy/mm/dd");
  EXPECT_EQ(DateRules::FormatName(1), u"dd/mm/yyyy");
  EXPECT_EQ(DateRules::FormatName(2), u"mm/dd/yyyy");
  EXPECT_EQ(DateRules::FormatName(25), u"yyyy-mm-dd");
  EXPECT_EQ(DateRules::FormatName(36), u"dd/mm");
  EXPECT_EQ(DateRules::FormatName(54), u"mm/yyyy");
  EXPECT_EQ(DateRules::FormatName(66), u"yyyy/mm");
  EXPECT_EQ(DateRules::FormatName(77), u"yy.m");
  EXPECT_EQ(DateRules::FormatName(78), u"");
  EXPECT_EQ(DateRules::FormatName(-1), u"");
  for (int32_t i = 0; i < DateRules::kFormatCount; ++i) {
    EXPECT_FALSE(DateRules::FormatName(i).empty()) << i;
  }
}

struct DateCase {
  int32_t format;
  const char16_t* text;
  bool valid;
};

// 2023 is not a leap year; the month-and-year forms take it as this year.
constexpr int32_t kThisYear = 2023;

TEST(DateRules, ValidDateDayFirst) {
  const DateCase cases[] = {
      {1, u"25/12/2024", true},       {1, u"31/04/2000", false}, {1, u"29/02/1900", false},
      {1, u"29/02/2000", true},       {1, u"29/02/2024", true},  {1, u"29/02/2023", false},
      {1, u"28/02/2023", true},       {1, u"01/01/2024", true},  {1, u"31/12/2024", true},
      {1, u"32/12/2024", false},      {1, u"00/12/2024", false}, {1, u"01/13/2024", false},
      {1, u"01/00/2024", false},      {1, u"30/06/2024", true},  {1, u"31/06/2024", false},
      {1, u"31/07/2024", true},       {1, u"31/08/2024", true},  {1, u"31/09/2024", false},
      {1, u"31/10/2024", true},       {1, u"31/11/2024", false}, {1, u"31/03/2024", true},
      {1, u"31/05/2024", true},       {1, u"31/01/2024", true},  {1, u"5/3/2024", true},
      {1, u"25-12-2024", true},       {1, u"25.12.2024", true},  {4, u"25-12-2024", true},
      {3, u"25/12/24", true},         {11, u"29/2/24", true},    {11, u"29/2/23", false},
      {1, u" 25 / 12 / 2024 ", true},
  };
  for (const DateCase& c : cases) {
    EXPECT_EQ(DateRules::IsValidDate(c.text, c.format, kThisYear), c.valid)
        << c.format << " " << ToUtf8(c.text);
  }
}

TEST(DateRules, ValidDateOtherOrders) {
  const DateCase cases[] = {
      {0, u"2024/12/25", true},
      {0, u"1900/02/29", false},
      {0, u"2000/02/29", true},
      {25, u"2024-02-30", false},
      {27, u"24/02/29", true},
      {27, u"23/02/29", false},
      {35, u"2024.4.31", false},
      {2, u"12/25/2024", true},
      {2, u"25/12/2024", false},
      {14, u"02-29-2000", true},
      {24, u"2.29.1900", false},
      // Day and month, no year: the missing year is 0, a leap year.
      {36, u"29/02", true},
      {36, u"30/02", false},
      {36, u"31/04", false},
      {44, u"31-12", true},
      // The month-first two-part forms are read day first too.
      {45, u"12/25", false},
      {45, u"25/12", true},
      {53, u"5-3", true},
      // Month and year: the second part is the day, the year this one.
      {54, u"12/2024", false},
      {54, u"12/15", true},
      {54, u"02/29", false},
      {54, u"13/01", false},
      {65, u"4.30", true},
      // Year and month: the first of the month.
      {66, u"2024/12", true},
      {66, u"2024/13", false},
      {66, u"2024/0", false},
      {77, u"24.2", true},
  };
  for (const DateCase& c : cases) {
    EXPECT_EQ(DateRules::IsValidDate(c.text, c.format, kThisYear), c.valid)
        << c.format << " " << ToUtf8(c.text);
  }
  EXPECT_TRUE(DateRules::IsValidDate(u"02/29", 54, 2024));
}

TEST(DateRules, ValidDateRefusesBadInput) {
  const DateCase cases[] = {
      {1, u"", false},
      {-1, u"25/12/2024", false},
      {78, u"25/12/2024", false},
      {1000, u"25/12/2024", false},
      {1, u"ab/cd/efgh", false},
      {1, u"25/12/20x4", false},
      {1, u"25/12/", false},
      {1, u"/12/2024", false},
      {1, u"25", false},
      {1, u"25122024", false},
      {1, u"-1/12/2024", false},
      {1, u"25/-12/2024", false},
      {1, u"1.5/12/2024", false},
      {1, u"99999999999999999999/12/2024", false},
      // "/" is the separator when the text mixes them.
      {1, u"25/12-2024", false},
  };
  for (const DateCase& c : cases) {
    EXPECT_EQ(DateRules::IsValidDate(c.text, c.format, kThisYear), c.valid)
        << c.format << " " << ToUtf8(c.text);
  }
  EXPECT_FALSE(DateRules::IsValidDate(String(100000, u'1'), 1, kThisYear));
  EXPECT_FALSE(DateRules::IsValidDate(String(100000, u'/'), 1, kThisYear));
}

TEST(DateRules, AMissingYearCountsAsALeapYear) {
  EXPECT_TRUE(DateRules::IsValidDate(u"29/02", 1, kThisYear));
  EXPECT_TRUE(DateRules::IsValidDate(u"31/12", 1, kThisYear));
  EXPECT_FALSE(DateRules::IsValidDate(u"30/02", 1, kThisYear));
}

TEST(DateRules, ValidDateWithoutAYearGivenUsesThisYear) {
  const bool leap = DateRules::IsLeapYear(Year(Today()));
  EXPECT_EQ(DateRules::IsValidDate(u"02/29", 54), leap);
  EXPECT_TRUE(DateRules::IsValidDate(u"25/12/2024", 1));
}

TEST(DateRules, ValidTime) {
  struct {
    const char16_t* text;
    const char16_t* delimiter;
    bool valid;
  } const cases[] = {
      {u"12:30", u":", true},       {u"23:59:59", u":", true}, {u"00:00:00", u":", true},
      {u"0:0", u":", true},         {u"12", u":", true},  // minutes and seconds missing count as 0
      {u"24:00", u":", false},      {u"12:60", u":", false},   {u"12:30:60", u":", false},
      {u"12:30:45:99", u":", true},  // what follows the seconds is not read
      {u"", u":", false},           {u"ab:cd", u":", false},   {u"12:", u":", false},
      {u":30", u":", false},        {u"-1:00", u":", false},   {u"12:3a", u":", false},
      {u"12.30", u".", true},       {u"12h30", u"h", true},    {u"12 - 30", u"-", true},
      {u"1230", u"", true},         {u"123045", u"", true},    {u"000000", u"", true},
      {u"2359", u"", true},         {u"2400", u"", false},     {u"1260", u"", false},
      {u"123060", u"", false},      {u"12305", u"", false},    {u"12:30", u"", false},
      {u"12a0", u"", false},        {u"", u"", false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(DateRules::IsValidTime(c.text, c.delimiter), c.valid)
        << ToUtf8(c.text) << " [" << ToUtf8(c.delimiter) << "]";
  }
  EXPECT_FALSE(DateRules::IsValidTime(String(100000, u'9'), u":"));
  EXPECT_FALSE(DateRules::IsValidTime(String(100000, u':'), u":"));
}

TEST(DateRules, FormatDate) {
  Locale::Set(Locale::Id::ptBR);
  struct {
    const char16_t* text;
    const char16_t* format;
    const char16_t* result;
  } const cases[] = {
      {u"25/12/2024", u"dd/mm/yyyy", u"25/12/2024"},
      {u"25-12-2024", u"dd/mm/yyyy", u"25/12/2024"},
      {u"25.12.24", u"dd/mm/yyyy", u"25/12/2024"},
      {u"5/3/2024", u"dd/mm/yyyy", u"05/03/2024"},
      {u"5/3/2024", u"DD/MM/YYYY", u"05/03/2024"},
      {u"5/3/2024", u"d/m/yyyy", u"5/3/2024"},
      {u"5/3/2024", u"dd-mm-yyyy", u"05-03-2024"},
      {u"5/3/2024", u"dd.mm.yy", u"05.03.24"},
      {u"2024/12/25", u"yyyy/mm/dd", u"2024/12/25"},
      {u"25/12/2024", u"mm/dd/yyyy", u"12/25/2024"},
      {u"25/12/2024", u"yy/mm/dd", u"24/12/25"},
      // Not a date: the platform gives the text back, and the fields are
      // still padded and a two-digit year completed.
      {u"31/02/24", u"dd/mm/yyyy", u"31/02/2024"},
      {u"31/02/85", u"dd/mm/yyyy", u"31/02/1985"},
      {u"31/2/49", u"dd/mm/yyyy", u"31/02/2049"},
      {u"31/2/50", u"dd/mm/yyyy", u"31/02/1950"},
      // Day and month: two digits each.
      {u"5/3", u"dd/mm", u"05/03"},
      {u"5/3", u"d/m", u"05/03"},
      {u"5/3", u"mm/dd", u"03/05"},
      // Month and year.
      {u"12/2024", u"mm/yyyy", u"12/2024"},
      {u"3/2024", u"mm/yyyy", u"03/2024"},
      {u"3/2024", u"m-yyyy", u"3-2024"},
      // Year and month: the second part stands for both.
      {u"2024/12", u"yyyy/mm", u"2012/12"},
      {u"2024-3", u"yyyy/m", u"3/3"},
      // Shapes the rebuilding does not know: the platform's result.
      {u"25/12/2024", u"dd mmm yyyy", u"25 dez 2024"},
      {u"25/12/2024", u"dddd", u"quarta-feira"},
      {u"25/12/2024", u"dd/mmm/yyyy", u"25/dez/2024"},
      {u"25/12/2024", u"dd/mm/dd", u"25/12/25"},
      {u"abc", u"dd/mm/yyyy", u"abc"},
      {u"25/12/2024", u"", u"25/12/2024"},
      {u"", u"dd/mm/yyyy", u""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ToUtf8(DateRules::FormatDate(c.text, c.format)), ToUtf8(c.result))
        << ToUtf8(c.text) << " " << ToUtf8(c.format);
  }
  const String longText(100000, u'1');
  EXPECT_EQ(DateRules::FormatDate(longText, u"dd/mm/yyyy").size(), longText.size());
  Locale::FromEnvironment();
}

TEST(DateRules, LeapYears) {
  struct {
    int64_t year;
    bool leap;
  } const cases[] = {{2000, true}, {1900, false}, {2024, true}, {2023, false}, {2100, false},
                     {2400, true}, {0, true},     {4, true},    {-4, true},    {1, false}};
  for (const auto& c : cases) EXPECT_EQ(DateRules::IsLeapYear(c.year), c.leap) << c.year;
}

TEST(DateRules, AgeOn) {
  const Date birth = DateSerial(2000, 6, 15);
  EXPECT_EQ(DateRules::AgeOn(birth, DateSerial(2024, 6, 14)), 23);
  EXPECT_EQ(DateRules::AgeOn(birth, DateSerial(2024, 6, 15)), 24);
  EXPECT_EQ(DateRules::AgeOn(birth, DateSerial(2024, 5, 30)), 23);
  EXPECT_EQ(DateRules::AgeOn(birth, DateSerial(2024, 12, 31)), 24);
  EXPECT_EQ(DateRules::AgeOn(birth, birth), 0);
  EXPECT_EQ(DateRules::AgeOn(birth, DateSerial(2000, 6, 14)), -1);
  const Date leapDay = DateSerial(2000, 2, 29);
  EXPECT_EQ(DateRules::AgeOn(leapDay, DateSerial(2023, 2, 28)), 22);
  EXPECT_EQ(DateRules::AgeOn(leapDay, DateSerial(2023, 3, 1)), 23);
  EXPECT_EQ(DateRules::AgeOn(leapDay, DateSerial(2024, 2, 29)), 24);
  // The time of day does not count.
  EXPECT_EQ(DateRules::AgeOn(Date(birth.Serial() + 0.9), Date(DateSerial(2024, 6, 15).Serial())),
            24);
  EXPECT_EQ(DateRules::AgeOn(Date(1e9), DateSerial(2024, 6, 15)), 0);
  EXPECT_EQ(DateRules::AgeOn(birth, Date(-1e9)), 0);
}

TEST(DateRules, DaysInMonth) {
  struct {
    int32_t month, year, days;
  } const cases[] = {
      {1, 2024, 31},        {2, 2024, 29},  {2, 2023, 28},  {2, 1900, 28},
      {2, 2000, 29},        {4, 2024, 30},  {6, 2024, 30},  {9, 2024, 30},
      {11, 2024, 30},       {12, 2024, 31}, {13, 2024, 31},  // January 2025
      {14, 2023, 29},                                        // February 2024
      {0, 2024, 31},                                         // December 2023
      {-1, 2024, 30},                                        // November 2023
      {-22, 2026, 29},                                       // February 2024
      {2, 24, 29},  // two-digit years as the platform reads them
      {2, 99, 28},          {2, 100, 28},   {1, 100, 31},   {11, 9999, 30},
      {12, 9999, 0},  // its next month is past the last day the platform knows
      {13, 9999, 0},        {1, 99999, 0},  {1, -5, 0},     {INT32_MAX, 2024, 0},
      {INT32_MIN, 2024, 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(DateRules::DaysInMonth(c.month, c.year), c.days) << c.month << "/" << c.year;
  }
}

TEST(DateRules, DayName) {
  struct {
    int day;
    const char16_t *name, *abbreviated;
  } const cases[] = {
      {22, u"Domingo", u"Dom"},      {23, u"Segunda-feira", u"Seg"}, {24, u"Terça-feira", u"Ter"},
      {25, u"Quarta-feira", u"Qua"}, {26, u"Quinta-feira", u"Qui"},  {27, u"Sexta-feira", u"Sex"},
      {28, u"Sábado", u"Sáb"},
  };
  for (const auto& c : cases) {
    const Date d = DateSerial(2024, 12, c.day);
    EXPECT_EQ(DateRules::DayName(d, false), c.name) << c.day;
    EXPECT_EQ(DateRules::DayName(d, true), c.abbreviated) << c.day;
  }
  EXPECT_EQ(DateRules::DayName(Date(0), false), u"Sábado");  // 30 December 1899
  EXPECT_EQ(DateRules::DayName(Date(1e9), false), u"");
  EXPECT_EQ(DateRules::DayName(Date(-1e9), true), u"");
}

}  // namespace
}  // namespace vantor::services
