#pragma once
// The platform's Currency: a 64-bit integer counting ten-thousandths, so sums
// of money add without the drift of binary fractions.
#include <compare>
#include <cstdint>
#include <optional>

namespace vantor {

class Currency {
 public:
  static constexpr int64_t kScale = 10000;

  constexpr Currency() = default;
  static constexpr Currency FromRaw(int64_t raw) {
    Currency c;
    c.raw_ = raw;
    return c;
  }
  constexpr int64_t Raw() const { return raw_; }

  // Rounds to the fourth decimal, ties to even; nothing for NaN or a value
  // beyond about 922 trillion.
  static std::optional<Currency> FromDouble(double value);
  double ToDouble() const { return static_cast<double>(raw_) / kScale; }

  // Arithmetic gives nothing on overflow, as the platform raises error 6 there.
  static std::optional<Currency> Add(Currency a, Currency b);
  static std::optional<Currency> Subtract(Currency a, Currency b);
  static std::optional<Currency> Multiply(Currency a, Currency b);
  // Nothing on overflow or division by zero.
  static std::optional<Currency> Divide(Currency a, Currency b);

  constexpr auto operator<=>(const Currency&) const = default;

 private:
  int64_t raw_ = 0;
};

}  // namespace vantor
