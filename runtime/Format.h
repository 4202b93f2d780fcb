#pragma once
// The platform's Format function. The pattern decides how the value is read:
// digit placeholders ("0", "#", "%", "E+") read it as a number, date and time
// tokens as a date, "@" and "&" as text. Named formats ("General Number",
// "Currency", "Fixed", "Standard", "Percent", "Scientific", "Yes/No",
// "True/False", "On/Off", "General Date", "Long Date", "Medium Date",
// "Short Date", "Long Time", "Medium Time", "Short Time") are understood in any
// case. An empty pattern gives CStr of the value. A value that cannot be read
// the way the pattern wants is returned as its text, as the platform does.
#include "runtime/VarType.h"
#include "runtime/Variant.h"

namespace vantor {

String Format(const Variant& expression, StringView format = {},
              VbDayOfWeek firstDayOfWeek = vbSunday,
              VbFirstWeekOfYear firstWeekOfYear = vbFirstJan1);

}  // namespace vantor
