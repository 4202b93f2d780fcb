#pragma once
// Dates to and from text under a locale: the reading behind IsDate, CDate and
// DateValue, and the general date text of CStr.
#include <optional>

#include "runtime/Date.h"
#include "runtime/Locale.h"
#include "runtime/String.h"

namespace vantor {

class DateText {
 public:
  // Reads dates in the locale's order with "/", "-" or "." between the parts
  // (a first part of three or four digits makes it year first; a day and month
  // that cannot stand in the locale's order are tried the other way round),
  // day and month without a year (this year), month names and their
  // abbreviations in Portuguese and English, and times "h:mm", "h:mm:ss" with
  // an optional AM/PM. Nothing when the text is no date.
  static std::optional<Date> Parse(StringView text, const Locale& locale = Locale::Current());

  // CStr of a date: the short date, the long time, or both, leaving out a date
  // part of zero and a time of midnight.
  static String General(Date date, const Locale& locale = Locale::Current());
};

}  // namespace vantor
