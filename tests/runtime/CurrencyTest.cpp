#include "runtime/Currency.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

namespace vantor {
namespace {

constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
constexpr int64_t kMin = std::numeric_limits<int64_t>::min();

std::optional<int64_t> RawOf(std::optional<Currency> c) {
  if (!c) return std::nullopt;
  return c->Raw();
}

TEST(CurrencyFromDouble, RoundsAtTheFourthDecimalByTheExactValue) {
  struct Case {
    double value;
    std::optional<int64_t> raw;
  };
  const Case cases[] = {
      {0.0, 0},
      {-0.0, 0},
      {1.0, 10000},
      {-1.0, -10000},
      {1.23456, 12346},
      {1.23454, 12345},
      {0.1, 1000},
      // 0.00005 is stored a hair above the tie, 0.00015 a hair below it.
      {0.00005, 1},
      {0.00015, 1},
      {-0.00005, -1},
      // 0.03125 and 0.09375 are exact ties: to the even neighbour.
      {0.03125, 312},
      {0.09375, 938},
      {-0.03125, -312},
      {0.00004999, 0},
      {1e-300, 0},
      {922337203685477.0, 9223372036854770000},
      {-922337203685477.0, -9223372036854770000},
      {922337203685478.0, std::nullopt},
      {-922337203685478.0, std::nullopt},
      {1e300, std::nullopt},
      {std::numeric_limits<double>::infinity(), std::nullopt},
      {std::nan(""), std::nullopt},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(RawOf(Currency::FromDouble(c.value)), c.raw) << c.value;
  }
}

TEST(CurrencyFromDouble, RoundTripsFourDecimals) {
  for (int64_t raw : {1LL, 12345LL, -987654321LL, 100000000000000LL}) {
    auto c = Currency::FromDouble(Currency::FromRaw(raw).ToDouble());
    ASSERT_TRUE(c.has_value());
    EXPECT_EQ(c->Raw(), raw);
  }
}

TEST(CurrencyArithmetic, AddAndSubtractDetectOverflow) {
  const Currency one = Currency::FromRaw(10000);
  EXPECT_EQ(RawOf(Currency::Add(one, Currency::FromRaw(5))), 10005);
  EXPECT_EQ(RawOf(Currency::Subtract(one, Currency::FromRaw(20000))), -10000);
  EXPECT_EQ(RawOf(Currency::Add(Currency::FromRaw(kMax), Currency::FromRaw(1))), std::nullopt);
  EXPECT_EQ(RawOf(Currency::Add(Currency::FromRaw(kMax), Currency::FromRaw(0))), kMax);
  EXPECT_EQ(RawOf(Currency::Subtract(Currency::FromRaw(kMin), Currency::FromRaw(1))), std::nullopt);
  EXPECT_EQ(RawOf(Currency::Subtract(Currency::FromRaw(0), Currency::FromRaw(kMin))), std::nullopt);
  EXPECT_EQ(RawOf(Currency::Subtract(Currency::FromRaw(-1), Currency::FromRaw(kMax))), kMin);
}

TEST(CurrencyArithmetic, MultiplyRoundsTheEighthDecimalAwayToEven) {
  auto mul = [](int64_t a, int64_t b) {
    return RawOf(Currency::Multiply(Currency::FromRaw(a), Currency::FromRaw(b)));
  };
  EXPECT_EQ(mul(20000, 30000), 60000);    // 2 * 3
  EXPECT_EQ(mul(15000, -15000), -22500);  // 1.5 * -1.5
  EXPECT_EQ(mul(1, 1), 0);                // 0.00000001
  EXPECT_EQ(mul(5000, 1), 0);             // 0.00005: tie, to even 0
  EXPECT_EQ(mul(15000, 1), 2);            // 0.00015: tie, to even 2
  EXPECT_EQ(mul(-15000, 1), -2);
  EXPECT_EQ(mul(5001, 1), 1);  // just above the tie
  // The product needs more than 64 bits before it is scaled back.
  EXPECT_EQ(mul(kMax, 10000), kMax);
  EXPECT_EQ(mul(kMax, 10001), std::nullopt);
  EXPECT_EQ(mul(kMin, 10000), kMin);
  EXPECT_EQ(mul(kMin, -10000), std::nullopt);
  EXPECT_EQ(mul(30000000000000LL, 30000000000000LL), std::nullopt);
}

TEST(CurrencyArithmetic, DivideRoundsToEvenAndRefusesZero) {
  auto div = [](int64_t a, int64_t b) {
    return RawOf(Currency::Divide(Currency::FromRaw(a), Currency::FromRaw(b)));
  };
  EXPECT_EQ(div(10000, 30000), 3333);  // 1 / 3
  EXPECT_EQ(div(20000, 30000), 6667);  // 2 / 3
  EXPECT_EQ(div(-20000, 30000), -6667);
  EXPECT_EQ(div(20000, -30000), -6667);
  EXPECT_EQ(div(-20000, -30000), 6667);
  EXPECT_EQ(div(1, 20000), 0);  // 0.00005: tie, to even 0
  EXPECT_EQ(div(3, 20000), 2);  // 0.00015: tie, to even 2
  EXPECT_EQ(div(10000, 0), std::nullopt);
  EXPECT_EQ(div(0, 0), std::nullopt);
  EXPECT_EQ(div(kMax, 10000), kMax);
  EXPECT_EQ(div(kMax, 1), std::nullopt);
  EXPECT_EQ(div(kMin, -10000), std::nullopt);
  EXPECT_EQ(div(kMin, 10000), kMin);
}

TEST(CurrencyCompare, OrdersByValue) {
  EXPECT_LT(Currency::FromRaw(-1), Currency::FromRaw(0));
  EXPECT_EQ(Currency::FromRaw(10000), *Currency::FromDouble(1.0));
}

}  // namespace
}  // namespace vantor
