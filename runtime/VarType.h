#pragma once
// The platform's variant type codes, as VarType reports them.
#include <cstdint>

namespace vantor {

enum VbVarType : uint16_t {
  vbEmpty = 0,
  vbNull = 1,
  vbInteger = 2,
  vbLong = 3,
  vbSingle = 4,
  vbDouble = 5,
  vbCurrency = 6,
  vbDate = 7,
  vbString = 8,
  vbObject = 9,
  vbError = 10,
  vbBoolean = 11,
  vbVariant = 12,
  vbDataObject = 13,
  vbDecimal = 14,
  vbByte = 17,
  vbArray = 8192,
  vbByRef = 0x4000,
};

enum VbCompareMethod : int32_t { vbBinaryCompare = 0, vbTextCompare = 1 };

enum VbDayOfWeek : int32_t {
  vbUseSystemDayOfWeek = 0,
  vbSunday = 1,
  vbMonday = 2,
  vbTuesday = 3,
  vbWednesday = 4,
  vbThursday = 5,
  vbFriday = 6,
  vbSaturday = 7,
};

enum VbFirstWeekOfYear : int32_t {
  vbUseSystem = 0,
  vbFirstJan1 = 1,
  vbFirstFourDays = 2,
  vbFirstFullWeek = 3,
};

}  // namespace vantor
