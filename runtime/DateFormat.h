#pragma once
// User-defined date and time formats: d, dd, ddd, dddd, ddddd (short date),
// dddddd (long date), w (weekday, 1 for the first day of the week), ww (week
// of the year), m, mm, mmm, mmmm (month; "m" and "mm" right after an hour token
// are minutes), q, y (day of the year), yy, yyyy, h, hh, n, nn, s, ss, ttttt,
// c, AM/PM, am/pm, A/P, a/p, AMPM, "/" and ":" as the locale's separators,
// quoted text and "\" escapes. Month and day names are the locale's.
#include "runtime/Date.h"
#include "runtime/Locale.h"
#include "runtime/String.h"
#include "runtime/VarType.h"

namespace vantor {

class DateFormat {
 public:
  static String Apply(Date date, StringView format, VbDayOfWeek firstDayOfWeek = vbSunday,
                      VbFirstWeekOfYear firstWeekOfYear = vbFirstJan1,
                      const Locale& locale = Locale::Current());
};

}  // namespace vantor
