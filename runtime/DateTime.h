#pragma once
// Date arithmetic of the platform's language, on the OLE date serial.
// Intervals are "yyyy" (year), "q" (quarter), "m" (month), "y" (day of year),
// "d" (day), "w" (weekday), "ww" (week), "h", "n" (minute), "s".
// Bad arguments set the error object (5, or 13 for an unknown interval) and
// return Date() or 0.
#include <cstdint>

#include "runtime/Date.h"
#include "runtime/VarType.h"
#include "runtime/Variant.h"

namespace vantor {

// Months and days out of range carry over: DateSerial(2024, 13, 1) is
// 1 January 2025, day 0 the last of the month before. Years 0 to 29 are
// 2000 to 2029, 30 to 99 are 1930 to 1999. Error 5 outside 100..9999.
Date DateSerial(int year, int month, int day);
Date TimeSerial(int hour, int minute, int second);
// Adding months keeps the day, or takes the month's last day when it has fewer:
// one month after 31 January is 28 or 29 February.
Date DateAdd(StringView interval, double number, Date date);
// Counts boundaries crossed from date1 to date2: "yyyy" years, "m" months,
// "ww" first days of the week, "w" whole weeks of seven days.
int64_t DateDiff(StringView interval, Date date1, Date date2,
                 VbDayOfWeek firstDayOfWeek = vbSunday,
                 VbFirstWeekOfYear firstWeekOfYear = vbFirstJan1);
int32_t DatePart(StringView interval, Date date, VbDayOfWeek firstDayOfWeek = vbSunday,
                 VbFirstWeekOfYear firstWeekOfYear = vbFirstJan1);

int32_t Year(Date date);
int32_t Month(Date date);
int32_t Day(Date date);
int32_t Hour(Date date);
int32_t Minute(Date date);
int32_t Second(Date date);
// 1 for the first day of the week given.
int32_t Weekday(Date date, VbDayOfWeek firstDayOfWeek = vbSunday);
// The week of the year (format "ww", DatePart "ww"); week 1 is the one holding
// 1 January, or the first with four days, or the first full week.
int32_t WeekOfYear(Date date, VbDayOfWeek firstDayOfWeek = vbSunday,
                   VbFirstWeekOfYear firstWeekOfYear = vbFirstJan1);

// The locale's names: month 1..12; weekday 1..7 counted from firstDayOfWeek.
String MonthName(int32_t month, bool abbreviate = false);
String WeekdayName(int32_t weekday, bool abbreviate = false,
                   VbDayOfWeek firstDayOfWeek = vbSunday);

// Whether the value is a date or a text the locale reads as a date or time.
bool IsDate(const Variant& value);
// The date part of a text (DateValue) and its time part (TimeValue).
Date DateValue(StringView text);
Date TimeValue(StringView text);

// The local clock.
Date Now();
Date Today();
Date TimeNow();
// Seconds since midnight, with fractions (the platform's Timer).
double Timer();

}  // namespace vantor
