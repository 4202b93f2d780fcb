#pragma once
// The date and time rules the utilities class shares with the text boxes, the
// calendar and the date picker: checking a typed date against one of the date
// formats, checking a typed time, and rewriting a typed date into a format.
// They are plain functions so that a control can call them without making a
// VT object; none of them throws.
#include <cstdint>

#include "runtime/Date.h"
#include "runtime/String.h"

namespace vantor::services {

class DateRules {
 public:
  // The number of date formats; a format's number is its place in the list.
  static constexpr int32_t kFormatCount = 78;

  // The format text of a date-format number ("dd/mm/yyyy" for 1); empty for a
  // number outside the list.
  static String FormatName(int32_t number);

  // Whether the text holds a real calendar date in the order the format number
  // gives. `currentYear` stands for the year of the month-and-year formats,
  // which carry no year of their own in the part being read.
  static bool IsValidDate(StringView text, int32_t format);
  static bool IsValidDate(StringView text, int32_t format, int32_t currentYear);

  // Hours, minutes and seconds split on the delimiter, or packed as HHMM and
  // HHMMSS when the delimiter is empty.
  static bool IsValidTime(StringView text, StringView delimiter);

  // The text read as a date and written again in the format's shape.
  static String FormatDate(StringView text, StringView format);

  static bool IsLeapYear(int64_t year);
  // Whole years from `birth` to `today`.
  static int32_t AgeOn(Date birth, Date today);
  // Days from the first of the month to the first of the next, the month
  // carrying into other years as the platform's DateSerial does; 0 when
  // either day falls outside the years 100 to 9999.
  static int32_t DaysInMonth(int32_t month, int32_t year);
  // "Domingo" to "Sábado"; the abbreviation is the first three letters.
  static String DayName(Date date, bool abbreviated);
};

}  // namespace vantor::services
