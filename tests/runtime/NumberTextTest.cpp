#include "runtime/NumberText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "runtime/String.h"

namespace vantor {
namespace {

const Locale& ptBR() {
  return Locale::Get(Locale::Id::ptBR);
}
const Locale& enUS() {
  return Locale::Get(Locale::Id::enUS);
}

struct ParseCase {
  const char16_t* text;
  std::optional<double> expected;
};

void CheckParse(const ParseCase& c, const Locale& locale) {
  SCOPED_TRACE(ToUtf8(c.text) + " in " + ToUtf8(locale.Name()));
  const auto value = NumberText::Parse(c.text, locale);
  ASSERT_EQ(value.has_value(), c.expected.has_value());
  if (value) {
    EXPECT_EQ(*value, *c.expected);
  }
}

TEST(NumberTextParse, BrazilianTexts) {
  const ParseCase cases[] = {
      {u"12", 12},
      {u"  12  ", 12},
      {u"\t12\r\n", 12},
      {u"1,5", 1.5},
      {u"1.234,5", 1234.5},
      {u"1.234.567,891", 1234567.891},
      {u",5", 0.5},
      {u"5,", 5},
      // "." is the thousands separator here, taken without checking the groups.
      {u"1.5", 15},
      {u"1.2.3", 123},
      {u"5.", 5},
      {u".5", std::nullopt},
      {u"1,5.3", std::nullopt},
      {u"1,2,3", std::nullopt},
      {u"-12,5", -12.5},
      {u"+12,5", 12.5},
      {u"12,5-", -12.5},
      {u"12,5+", 12.5},
      {u"- 12", -12},
      {u"(12,5)", -12.5},
      {u"( 12 )", -12},
      {u"(12", std::nullopt},
      {u"12)", std::nullopt},
      {u"-(12)", std::nullopt},
      {u"--12", std::nullopt},
      {u"-12-", std::nullopt},
      {u"R$ 12,50", 12.5},
      {u"R$12,50", 12.5},
      {u"-R$ 1.234,50", -1234.5},
      {u"R$ -1.234,50", -1234.5},
      {u"(R$ 12,5)", -12.5},
      {u"12,50 R$", 12.5},
      {u"R$ R$ 12", std::nullopt},
      {u"$ 12", std::nullopt},
      {u"1E3", 1000},
      {u"1e3", 1000},
      {u"1D2", 100},
      {u"1,5E-2", 0.015},
      {u"2,5e+3", 2500},
      {u"1E", std::nullopt},
      {u"1E+", std::nullopt},
      {u"E3", std::nullopt},
      {u"0", 0},
      {u"-0", 0},
      {u"000123", 123},
      {u"1 2", std::nullopt},
      {u"12abc", std::nullopt},
      {u"abc", std::nullopt},
      {u"", std::nullopt},
      {u"   ", std::nullopt},
      {u"-", std::nullopt},
      {u",", std::nullopt},
      {u"R$", std::nullopt},
      {u"1E400", std::nullopt},
      {u"1E-400", 0},
      {u"0,1", 0.1},
      {u"123456789012345678901234567890", 123456789012345678901234567890.0},
  };
  for (const auto& c : cases) CheckParse(c, ptBR());
}

TEST(NumberTextParse, AmericanTexts) {
  const ParseCase cases[] = {
      {u"1.5", 1.5},          {u"1,234.5", 1234.5},      {u"1,5", 15}, {u"1.234,5", std::nullopt},
      {u"$1,234.50", 1234.5}, {u"($1,234.50)", -1234.5}, {u"-$5", -5}, {u"R$ 12", std::nullopt},
      {u".5", 0.5},           {u"1e-2", 0.01},
  };
  for (const auto& c : cases) CheckParse(c, enUS());
}

TEST(NumberTextParse, HexadecimalAndOctalKeepTheirWidth) {
  const ParseCase cases[] = {
      {u"&HFF", 255},
      {u"&hff", 255},
      {u"&H7FFF", 32767},
      {u"&H8000", -32768},
      {u"&HFFFF", -1},
      {u"&H0000FFFF", -1},
      {u"&H10000", 65536},
      {u"&H7FFFFFFF", 2147483647},
      {u"&H80000000", -2147483648.0},
      {u"&HFFFFFFFF", -1},
      {u"&H100000000", std::nullopt},
      {u"  &H1F  ", 31},
      {u"&O17", 15},
      {u"&o777", 511},
      {u"&O177777", -1},
      {u"&O37777777777", -1},
      {u"&O8", std::nullopt},
      {u"&H", std::nullopt},
      {u"&HG", std::nullopt},
      {u"&HFFx", std::nullopt},
      {u"&", std::nullopt},
      {u"&17", std::nullopt},
      {u"-&HFF", std::nullopt},
  };
  for (const auto& c : cases) CheckParse(c, ptBR());
}

TEST(NumberTextParse, GarbageNeverCrashes) {
  String huge(100000, u'9');
  auto big = NumberText::Parse(huge, ptBR());
  EXPECT_FALSE(big.has_value());  // 1E+100000 overflows
  String longFraction = u"0," + String(5000, u'0') + u"1";
  EXPECT_EQ(NumberText::Parse(longFraction, ptBR()), 0.0);
  String exactLong = u"1," + String(3000, u'0') + u"1";
  EXPECT_EQ(NumberText::Parse(exactLong, ptBR()), 1.0);
  EXPECT_FALSE(NumberText::Parse(String(1000, u'.'), ptBR()).has_value());
  EXPECT_FALSE(NumberText::Parse(u"\uFFFF\xD800", ptBR()).has_value());
  EXPECT_FALSE(NumberText::Parse(String(u"1\0"
                                        u"2",
                                        3),
                                 ptBR())
                   .has_value());
  EXPECT_EQ(NumberText::Parse(u"1E99999999999999999999", ptBR()), std::nullopt);
  EXPECT_EQ(NumberText::Parse(u"1E-99999999999999999999", ptBR()), 0.0);
}

TEST(NumberTextParse, UsesTheCurrentLocaleByDefault) {
  EXPECT_EQ(NumberText::Parse(u"1,5"), 1.5);  // the tests run in pt-BR
}

struct TextCase {
  double value;
  const char16_t* expected;
};

TEST(NumberTextGeneral, FifteenDigitsAndTheLocaleSeparator) {
  const TextCase cases[] = {
      {0, u"0"},
      {-0.0, u"0"},
      {1, u"1"},
      {-1, u"-1"},
      {1.5, u"1,5"},
      {0.1 + 0.2, u"0,3"},
      {1.0 / 3, u"0,333333333333333"},
      {2.0 / 3, u"0,666666666666667"},
      {123456789012345.0, u"123456789012345"},
      {1234567890123456.0, u"1,23456789012346E+15"},
      {1e15, u"1E+15"},
      {999999999999999.0, u"999999999999999"},
      {999999999999999.9, u"1E+15"},
      {1e16, u"1E+16"},
      {1e100, u"1E+100"},
      {-1e300, u"-1E+300"},
      {0.0001, u"0,0001"},
      {0.00012345, u"0,00012345"},
      {0.00001, u"1E-05"},
      {-0.00001, u"-1E-05"},
      {0.000015, u"1,5E-05"},
      {1e-300, u"1E-300"},
      {100, u"100"},
      {1234.5, u"1234,5"},
      {-1234.5, u"-1234,5"},
      {4.9406564584124654e-324, u"4,94065645841247E-324"},
      {std::numeric_limits<double>::max(), u"1,79769313486232E+308"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(NumberText::General(c.value, ptBR()), c.expected) << c.value;
  }
  EXPECT_EQ(NumberText::General(1.5, enUS()), u"1.5");
  EXPECT_EQ(NumberText::General(1.5e-5, enUS()), u"1.5E-05");
}

TEST(NumberTextGeneral, NotANumberAndInfinity) {
  EXPECT_EQ(NumberText::General(std::numeric_limits<double>::infinity(), ptBR()), u"1,#INF");
  EXPECT_EQ(NumberText::General(-std::numeric_limits<double>::infinity(), ptBR()), u"-1,#INF");
  EXPECT_EQ(NumberText::General(std::nan(""), ptBR()), u"-1,#IND");
}

TEST(NumberTextGeneral, SingleKeepsSevenDigits) {
  struct Case {
    float value;
    const char16_t* expected;
  };
  const Case cases[] = {
      {0.0f, u"0"},
      {1.1f, u"1,1"},
      {0.1f, u"0,1"},
      {1.0f / 3, u"0,3333333"},
      {1234567.0f, u"1234567"},
      {12345678.0f, u"1,234568E+07"},
      {10000000.0f, u"1E+07"},
      {-2.5f, u"-2,5"},
      {0.0001f, u"0,0001"},
      {0.00001f, u"1E-05"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(NumberText::GeneralSingle(c.value, ptBR()), c.expected) << c.value;
  }
}

TEST(NumberTextGeneral, RoundTripsThroughParse) {
  const double values[] = {0.1, 1234.5678, -98765.4321, 1e-5, 3.14159265358979, 1e20};
  for (double v : values) {
    auto back = NumberText::Parse(NumberText::General(v, ptBR()), ptBR());
    ASSERT_TRUE(back.has_value()) << v;
    EXPECT_DOUBLE_EQ(*back, v);
  }
}

TEST(NumberTextCurrency, FourDecimalsAtMost) {
  struct Case {
    int64_t raw;
    const char16_t* expected;
  };
  const Case cases[] = {
      {0, u"0"},
      {10000, u"1"},
      {12345, u"1,2345"},
      {12340, u"1,234"},
      {15000, u"1,5"},
      {1, u"0,0001"},
      {-5000, u"-0,5"},
      {-1, u"-0,0001"},
      {123456789000, u"12345678,9"},
      {std::numeric_limits<int64_t>::max(), u"922337203685477,5807"},
      {std::numeric_limits<int64_t>::min(), u"-922337203685477,5808"},
  };
  for (const auto& c : cases) EXPECT_EQ(NumberText::FromCurrency(c.raw, ptBR()), c.expected);
  EXPECT_EQ(NumberText::FromCurrency(12345, enUS()), u"1.2345");
}

}  // namespace
}  // namespace vantor
