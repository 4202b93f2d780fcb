#pragma once
// A date as the platform holds it: the OLE date serial, days since
// 30 December 1899 in the whole part and the time of day in the fraction. Before
// that day the whole part counts back but the fraction still counts forward, so
// -1.25 is 29 December 1899 at 06:00.
#include <compare>

namespace vantor {

class Date {
 public:
  // 1 January 100 and 31 December 9999, the range the platform accepts.
  static constexpr double kMinSerial = -657434.0;
  static constexpr double kMaxSerial = 2958465.99999999;

  constexpr Date() = default;
  explicit constexpr Date(double serial) : serial_(serial) {}
  constexpr double Serial() const { return serial_; }
  static constexpr bool InRange(double serial) {
    return serial >= kMinSerial && serial < 2958466.0;
  }

  constexpr auto operator<=>(const Date&) const = default;

 private:
  double serial_ = 0.0;
};

}  // namespace vantor
