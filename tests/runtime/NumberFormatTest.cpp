#include "runtime/NumberFormat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "runtime/String.h"

namespace vantor {
namespace {

const Locale& ptBR() {
  return Locale::Get(Locale::Id::ptBR);
}
const Locale& enUS() {
  return Locale::Get(Locale::Id::enUS);
}

struct Case {
  double value;
  const char16_t* format;
  const char16_t* expected;
};

void Check(const Case* begin, const Case* end, const Locale& locale) {
  for (const Case* c = begin; c != end; ++c) {
    EXPECT_EQ(ToUtf8(NumberFormat::Apply(c->value, c->format, locale)), ToUtf8(c->expected))
        << c->value << " with \"" << ToUtf8(c->format) << "\" in " << ToUtf8(locale.Name());
  }
}

TEST(NumberFormatApply, PlaceholdersAndGrouping) {
  const Case cases[] = {
      {1234.5, u"#,##0.00", u"1.234,50"},
      {0, u"#,##0.00", u"0,00"},
      {0.5, u"#,##0.00", u"0,50"},
      {12345678.9, u"#,##0.00", u"12.345.678,90"},
      {123456, u"#,##0", u"123.456"},
      {1234, u"0,0", u"1.234"},
      {5, u"0.0", u"5,0"},
      {12, u"000", u"012"},
      {123456, u"0", u"123456"},
      {0.25, u"#.##", u",25"},
      {0, u"#.##", u","},
      {0, u"#", u""},
      {1.5, u"#.##", u"1,5"},
      {1.25, u"0.0#", u"1,25"},
      {1.5, u"0.0#", u"1,5"},
      {1, u"0.0#", u"1,0"},
      {1.05, u"0.#0", u"1,05"},
      {5, u"#,000,000", u"000.005"},
      {1.5, u".00", u"1,50"},
      {0.5, u".00", u",50"},
      {5, u"0.", u"5,"},
      {1e20, u"0", u"100000000000000000000"},
      {1e20, u"#,##0", u"100.000.000.000.000.000.000"},
      {123456789012345678.0, u"0", u"123456789012346000"},
      {1e-20, u"0.00", u"0,00"},
      {1.5, u"0.0", u"1,5"},
      {1023.96, u"0", u"1024"},
      {1.456, u"0.00", u"1,46"},
  };
  Check(std::begin(cases), std::end(cases), ptBR());
}

TEST(NumberFormatApply, EntryFieldPatterns) {
  // "#," + n "#" + "0." + n "0", and the same doubled for the negative side.
  const Case cases[] = {
      {1234.5, u"#,###0.000", u"1.234,500"},
      {0, u"#,###0.000", u"0,000"},
      {1234567.5, u"#,###0.000", u"1.234.567,500"},
      {-1234.5, u"#,###0.000", u"-1.234,500"},
      {1234567.891, u"#,##0.00;-#,##0.00", u"1.234.567,89"},
      {-1234.5, u"#,##0.00;-#,##0.00", u"-1.234,50"},
      {0, u"#,##0.00;-#,##0.00", u"0,00"},
      {12.3, u"#,#0.0;-#,#0.0", u"12,3"},
      {7, u"#,0.;-#,0.", u"7,"},
  };
  Check(std::begin(cases), std::end(cases), ptBR());
}

TEST(NumberFormatApply, RoundsHalfAwayFromZeroOnFifteenDigits) {
  const Case cases[] = {
      {1.005, u"0.00", u"1,01"},  // stored as 1.00499999999999989...
      {2.5, u"0", u"3"},
      {-2.5, u"0", u"-3"},
      {0.5, u"0", u"1"},
      {1.5, u"0", u"2"},
      {0.125, u"0.00", u"0,13"},
      {2.675, u"0.00", u"2,68"},
      {0.0005, u"0.000", u"0,001"},
      {999.995, u"#,##0.00", u"1.000,00"},
      {9.96, u"0.0", u"10,0"},
      {0.4, u"0", u"0"},
      {0.4, u"#", u""},
      {0.1 + 0.2, u"0.00000000000000000", u"0,30000000000000000"},
  };
  Check(std::begin(cases), std::end(cases), ptBR());
}

TEST(NumberFormatApply, NegativeValuesAndSections) {
  const Case cases[] = {
      {-1234.5, u"#,##0.00", u"-1.234,50"},
      {-1234.5, u"#,##0.00;(#,##0.00)", u"(1.234,50)"},
      {1234.5, u"#,##0.00;(#,##0.00)", u"1.234,50"},
      {0, u"#,##0.00;(#,##0.00)", u"0,00"},
      {-5, u"0;(0)", u"(5)"},
      {5, u"0;-0;\\z\\e\\r\\o", u"5"},
      {0, u"0;-0;\\z\\e\\r\\o", u"zero"},
      {0, u"0.00;;\"Zero\"", u"Zero"},
      // An empty negative section borrows the first, which needs the minus.
      {-5, u"0;;\"Zero\"", u"-5"},
      {-5, u"0;", u"-5"},
      {0, u"0;(0);", u"0"},
      // A negative value that rounds to zero keeps its sign, as the platform
      // shows it; the zero section is for a value that is zero.
      {-0.001, u"0.00", u"-0,00"},
      {-0.001, u"0.00;(0.00)", u"(0,00)"},
      {-0.001, u"0.00;(0.00);\\z", u"(0,00)"},
      {0.001, u"0.00;(0.00);\\z", u"0,00"},
      {-0.0, u"0;(0);\\z", u"z"},
      {-5, u"$0", u"-$5"},
      {-0.25, u"#.##", u"-,25"},
      {5, u";0", u""},
      {5, u"0;0;0;0;0", u"5"},
  };
  Check(std::begin(cases), std::end(cases), ptBR());
}

TEST(NumberFormatApply, PercentAndThousandsScaling) {
  const Case cases[] = {
      {0.5, u"0%", u"50%"},
      {0.125, u"0.00%", u"12,50%"},
      {0.0115, u"0.0%", u"1,2%"},  // 1.15 on its decimal digits, not 1.1499...
      {1, u"0%%", u"10000%%"},
      {0.5, u"0\\%", u"1%"},
      {0.5, u"0\"%\"", u"1%"},
      {1234567, u"#,##0,", u"1.235"},
      {100000000, u"##0,,", u"100"},
      {1234567, u"0,.0", u"1234,6"},
      {500, u"0,", u"1"},
      {499, u"0,", u"0"},
      {1234567, u"0,\\K", u"1235K"},
      {0.5, u"0.0,0", u"0,50"},
  };
  Check(std::begin(cases), std::end(cases), ptBR());
}

TEST(NumberFormatApply, Exponents) {
  const Case cases[] = {
      {1234, u"0.00E+00", u"1,23E+03"},     {0.00012345, u"0.00E+00", u"1,23E-04"},
      {0, u"0.00E+00", u"0,00E+00"},        {9.999, u"0.00E+00", u"1,00E+01"},
      {-1234, u"0.00E+00", u"-1,23E+03"},   {1234, u"0.00e-00", u"1,23e03"},
      {0.001234, u"0.00E-00", u"1,23E-03"}, {1234, u"##0.0E+0", u"123,4E+1"},
      {123456, u"0E+0", u"1E+5"},           {1e100, u"0.0E+0", u"1,0E+100"},
      {1.5, u"0.0E+00 \\u", u"1,5E+00 u"},
  };
  Check(std::begin(cases), std::end(cases), ptBR());
}

TEST(NumberFormatApply, LiteralsQuotesAndEscapes) {
  const Case cases[] = {
      {5, u"$0", u"$5"},
      {5, u"0 \\k\\g", u"5 kg"},
      {5, u"\"R$ \"0.00", u"R$ 5,00"},
      {5, u"\"R$ \"0,00", u"R$ 005"},  // "," between placeholders groups
      {12345, u"00000-000", u"00012-345"},
      {1310100, u"00000-000", u"01310-100"},
      {1234567, u"(000) 000-0000", u"(000) 123-4567"},
      {5, u"+0", u"+5"},
      {5, u"(0)", u"(5)"},
      {5, u"\"a;b\"0", u"a;b5"},
      {5, u"0\\;0", u"0;5"},
      {5, u"\\", u""},
      {5, u"\"open", u"open"},
      {5, u"0\"", u"5"},
      {5, u"abc", u"abc"},
      {1.5, u"0.0.0", u"1,5,0"},
  };
  Check(std::begin(cases), std::end(cases), ptBR());
}

TEST(NumberFormatApply, AmericanSeparators) {
  const Case cases[] = {
      {1234.5, u"#,##0.00", u"1,234.50"},
      {0.25, u"#.##", u".25"},
      {1234, u"0.00E+00", u"1.23E+03"},
      {1234567.891, u"#,##0.00;-#,##0.00", u"1,234,567.89"},
      {0.5, u"0%", u"50%"},
  };
  Check(std::begin(cases), std::end(cases), enUS());
}

TEST(NumberFormatApply, EmptyPatternAndOddValues) {
  EXPECT_EQ(NumberFormat::Apply(1.5, u"", ptBR()), u"1,5");
  EXPECT_EQ(NumberFormat::Apply(std::numeric_limits<double>::infinity(), u"0", ptBR()), u"1,#INF");
  EXPECT_EQ(NumberFormat::Apply(std::nan(""), u"0", ptBR()), u"-1,#IND");
  EXPECT_EQ(NumberFormat::Apply(std::numeric_limits<double>::max(), u"0.00E+00", ptBR()),
            u"1,80E+308");
  EXPECT_EQ(NumberFormat::Apply(std::numeric_limits<double>::max(), u"#,##0", ptBR()).size(),
            309u + 102u);
  EXPECT_EQ(NumberFormat::Apply(5e-324, u"0.00E+00", ptBR()), u"4,94E-324");
  EXPECT_EQ(NumberFormat::Apply(1.5, u"0.0"), u"1,5");  // the current locale, pt-BR
}

TEST(NumberFormatApply, GarbagePatternsDoNotCrash) {
  const char16_t* patterns[] = {u";;;;;;", u"\"\"\"", u"\\\\\\", u"E+E+E-",        u"e+",
                                u",,,,",   u"....",   u"%%%%",   u"#,#,#,#.#,#,#", u"0E+0E+0",
                                u"\xD800", u"0.0E-"};
  for (const char16_t* p : patterns) {
    for (double v : {0.0, -1.5, 1e300, 123.456}) (void)NumberFormat::Apply(v, p, ptBR());
  }
  String huge(100000, u'0');
  EXPECT_EQ(NumberFormat::Apply(1, huge, ptBR()).size(), huge.size());
  String commas;
  for (int i = 0; i < 50000; ++i) commas += u"0,";
  EXPECT_EQ(NumberFormat::Apply(0, commas, ptBR()).size(), 50000u + 16666u);
  String many(20000, u';');
  (void)NumberFormat::Apply(-1, many, ptBR());
  (void)NumberFormat::ApplyNull(many, ptBR());
}

TEST(NumberFormatApplyNull, FourthSectionOnly) {
  EXPECT_EQ(NumberFormat::ApplyNull(u"0;0;0;\\N\\u\\l\\l", ptBR()), u"Null");
  EXPECT_EQ(NumberFormat::ApplyNull(u"0;0;0;\"vazio\"", ptBR()), u"vazio");
  EXPECT_EQ(NumberFormat::ApplyNull(u"0;0;0;", ptBR()), u"");
  EXPECT_EQ(NumberFormat::ApplyNull(u"0;0;0", ptBR()), u"");
  EXPECT_EQ(NumberFormat::ApplyNull(u"0", ptBR()), u"");
  EXPECT_EQ(NumberFormat::ApplyNull(u"", ptBR()), u"");
  EXPECT_EQ(NumberFormat::ApplyNull(u"0;0;0;-0-", ptBR()), u"--");
}

}  // namespace
}  // namespace vantor
