#include "runtime/DateText.h"

#include <gtest/gtest.h>

#include <optional>

#include "runtime/DateTime.h"
#include "runtime/Error.h"
#include "tests/runtime/TestSupport.h"

namespace vantor {
namespace {

using namespace test;

const Locale& Portuguese() {
  return Locale::Get(Locale::Id::ptBR);
}
const Locale& English() {
  return Locale::Get(Locale::Id::enUS);
}

double At(int y, int m, int d, int h = 0, int n = 0, int s = 0) {
  return DateSerial(y, m, d).Serial() + TimeSerial(h, n, s).Serial();
}

double Time(int h, int n, int s = 0) {
  return TimeSerial(h, n, s).Serial();
}

struct Case {
  const char16_t* text;
  std::optional<double> want;
};

void ExpectParses(const Case* begin, const Case* end, const Locale& locale) {
  for (const Case* c = begin; c != end; ++c) {
    SCOPED_TRACE(ToUtf8(c->text));
    const std::optional<Date> got = DateText::Parse(c->text, locale);
    ASSERT_EQ(got.has_value(), c->want.has_value());
    if (got) {
      EXPECT_DOUBLE_EQ(got->Serial(), *c->want);
    }
  }
}

TEST(DateTextParse, PortugueseNumericDates) {
  const Case cases[] = {
      {u"31/01/2024", At(2024, 1, 31)},
      {u"1/2/2024", At(2024, 2, 1)},
      {u"01-02-2024", At(2024, 2, 1)},
      {u"01.02.2024", At(2024, 2, 1)},
      {u"  31/01/2024  ", At(2024, 1, 31)},
      {u"\t31/01/2024", At(2024, 1, 31)},
      {u"29/02/2024", At(2024, 2, 29)},
      {u"28/02/1900", At(1900, 2, 28)},
      {u"1/1/29", At(2029, 1, 1)},
      {u"1/1/30", At(1930, 1, 1)},
      {u"1/1/00", At(2000, 1, 1)},
      {u"31/12/99", At(1999, 12, 31)},
      {u"1/1/100", At(100, 1, 1)},
      {u"31/12/9999", At(9999, 12, 31)},
      // Year first when the first part has three or four digits.
      {u"2024-01-31", At(2024, 1, 31)},
      {u"2024/1/5", At(2024, 1, 5)},
      // Day and month that only make sense the other way round.
      {u"12/31/2024", At(2024, 12, 31)},
      {u"01/2024", At(2024, 1, 1)},
      {u"2024/03", At(2024, 3, 1)},
      {u"123/1/1", At(123, 1, 1)},
  };
  ExpectParses(std::begin(cases), std::end(cases), Portuguese());
}

TEST(DateTextParse, InvalidDates) {
  const Case cases[] = {
      {u"31/02/2024", std::nullopt},  {u"29/02/2023", std::nullopt},  {u"29/02/1900", std::nullopt},
      {u"32/01/2024", std::nullopt},  {u"00/01/2024", std::nullopt},  {u"01/00/2024", std::nullopt},
      {u"13/13/2024", std::nullopt},  {u"1/1/10000", std::nullopt},   {u"1/1/12345", std::nullopt},
      {u"31/12/0099x", std::nullopt}, {u"1/1/1/1", std::nullopt},     {u"1//2024", std::nullopt},
      {u"/1/2024", std::nullopt},     {u"1/1/2024/", std::nullopt},   {u"1 1 2024", std::nullopt},
      {u"1,5", std::nullopt},         {u"5", std::nullopt},           {u"2024", std::nullopt},
      {u"2024-13-45", std::nullopt},  {u"2024-01-31-", std::nullopt}, {u"12345/1/1", std::nullopt},
  };
  ExpectParses(std::begin(cases), std::end(cases), Portuguese());
}

TEST(DateTextParse, EnglishOrder) {
  const Case cases[] = {
      {u"1/31/2024", At(2024, 1, 31)},
      {u"01/02/2024", At(2024, 1, 2)},
      {u"31/12/2024", At(2024, 12, 31)},
      {u"2024-01-31", At(2024, 1, 31)},
      {u"13/31/2024", std::nullopt},
      {u"1:45 PM", Time(13, 45)},
      {u"1/31/2024 1:45:30 PM", At(2024, 1, 31, 13, 45, 30)},
      {u"January 5, 2024", At(2024, 1, 5)},
      {u"Monday, January 15, 2024", At(2024, 1, 15)},
  };
  ExpectParses(std::begin(cases), std::end(cases), English());
}

TEST(DateTextParse, TwoPartsTakeThisYear) {
  const int year = Year(Today());
  const Case pt[] = {{u"15/03", At(year, 3, 15)},
                     {u"03/15", At(year, 3, 15)},
                     {u"5 jan", At(year, 1, 5)},
                     {u"31/02", std::nullopt}};
  ExpectParses(std::begin(pt), std::end(pt), Portuguese());
  const Case en[] = {{u"3/15", At(year, 3, 15)}, {u"01/02", At(year, 1, 2)}};
  ExpectParses(std::begin(en), std::end(en), English());
}

TEST(DateTextParse, MonthNames) {
  const Case cases[] = {
      {u"5 janeiro 2024", At(2024, 1, 5)},
      {u"janeiro 5, 2024", At(2024, 1, 5)},
      {u"5-jan-2024", At(2024, 1, 5)},
      {u"jan 5 2024", At(2024, 1, 5)},
      {u"5/jan/24", At(2024, 1, 5)},
      {u"5 JAN 2024", At(2024, 1, 5)},
      {u"15 de março de 2024", At(2024, 3, 15)},
      {u"15 de MARÇO de 2024", At(2024, 3, 15)},
      {u"15 marco 2024", At(2024, 3, 15)},
      {u"1 fev 2024", At(2024, 2, 1)},
      {u"1 feb 2024", At(2024, 2, 1)},
      {u"10 out 2024", At(2024, 10, 10)},
      {u"10 oct 2024", At(2024, 10, 10)},
      {u"2024 dez 25", At(2024, 12, 25)},
      {u"dezembro 2024", At(2024, 12, 1)},
      {u"segunda-feira, 15 de janeiro de 2024", At(2024, 1, 15)},
      {u"31 fev 2024", std::nullopt},
      {u"5 janvier 2024", std::nullopt},
      {u"jan fev 2024", std::nullopt},
      {u"janeiro", std::nullopt},
  };
  ExpectParses(std::begin(cases), std::end(cases), Portuguese());
}

TEST(DateTextParse, Times) {
  const Case cases[] = {
      {u"13:45", Time(13, 45)},
      {u"13:45:30", Time(13, 45, 30)},
      {u"0:00", 0.0},
      {u"23:59:59", Time(23, 59, 59)},
      {u"1:45 PM", Time(13, 45)},
      {u"1:45:30 am", Time(1, 45, 30)},
      {u"1:45PM", Time(13, 45)},
      {u"12:00 AM", 0.0},
      {u"12:30 PM", Time(12, 30)},
      {u"1 PM", Time(13, 0)},
      {u"31/01/2024 13:45:30", At(2024, 1, 31, 13, 45, 30)},
      {u"13:45 31/01/2024", At(2024, 1, 31, 13, 45)},
      {u"2024-01-31 1:05 pm", At(2024, 1, 31, 13, 5)},
      // Before day 0 the time still counts forward from midnight.
      {u"29/12/1899 06:00", -1.25},
      {u"13h", std::nullopt},
      {u"24:00", std::nullopt},
      {u"12:60", std::nullopt},
      {u"12:30:60", std::nullopt},
      {u"13:45 PM", std::nullopt},
      {u"1:45 XM", std::nullopt},
      {u"13:", std::nullopt},
      {u":45", std::nullopt},
      {u"1:2:3:4", std::nullopt},
      {u"123:45", std::nullopt},
      {u"31/01/2024 13:45 31/01/2024", std::nullopt},
      {u"31/01/2024-13:45", std::nullopt},
      {u"31/01/2024 13:45 extra", std::nullopt},
      {u"PM", std::nullopt},
  };
  ExpectParses(std::begin(cases), std::end(cases), Portuguese());
}

TEST(DateTextParse, GarbageNeverCrashes) {
  const String long1(10000, u'1');
  const String longA(10000, u'a');
  String longMixed;
  for (int i = 0; i < 2000; ++i) longMixed += u"1/2:";
  String blanksAround = String(5000, u' ') + u"31/01/2024" + String(5000, u' ');
  const String texts[] = {u"",
                          u" ",
                          u"/",
                          u"//",
                          u":",
                          u"::",
                          u"-",
                          u".",
                          u"99999999999999999999/1/1",
                          u"1/1/99999999999999999999",
                          long1,
                          longA,
                          longMixed,
                          u"\u00e7\u00e3o",
                          u"\xFFFF",
                          String(1, u'\0'),
                          u"\U0001F600"};
  for (const String& text : texts) {
    EXPECT_FALSE(DateText::Parse(text, Portuguese()).has_value()) << text.size();
    EXPECT_FALSE(DateText::Parse(text, English()).has_value()) << text.size();
  }
  EXPECT_EQ(DateText::Parse(blanksAround, Portuguese())->Serial(), At(2024, 1, 31));
}

TEST(DateTextGeneral, Portuguese) {
  EXPECT_EQ(DateText::General(Date(At(2024, 1, 31)), Portuguese()), u"31/01/2024");
  EXPECT_EQ(DateText::General(Date(Time(13, 45)), Portuguese()), u"13:45:00");
  EXPECT_EQ(DateText::General(Date(At(2024, 1, 31, 13, 45, 0)), Portuguese()),
            u"31/01/2024 13:45:00");
  EXPECT_EQ(DateText::General(Date(0.0), Portuguese()), u"00:00:00");
  EXPECT_EQ(DateText::General(Date(-0.5), Portuguese()), u"12:00:00");
  EXPECT_EQ(DateText::General(Date(-1.25), Portuguese()), u"29/12/1899 06:00:00");
  EXPECT_EQ(DateText::General(Date(1.0), Portuguese()), u"31/12/1899");
  // A hair before midnight rounds into the next day.
  EXPECT_EQ(DateText::General(Date(45322.99999999), Portuguese()), u"01/02/2024");
  EXPECT_EQ(DateText::General(Date(At(100, 1, 1)), Portuguese()), u"01/01/100");
}

TEST(DateTextGeneral, English) {
  EXPECT_EQ(DateText::General(Date(At(2024, 1, 31)), English()), u"1/31/2024");
  EXPECT_EQ(DateText::General(Date(Time(13, 45)), English()), u"1:45:00 PM");
  EXPECT_EQ(DateText::General(Date(0.0), English()), u"12:00:00 AM");
  EXPECT_EQ(DateText::General(Date(At(2024, 1, 31, 9, 5, 7)), English()), u"1/31/2024 9:05:07 AM");
  EnglishLocale english;
  EXPECT_EQ(DateText::General(Date(At(2024, 12, 5))), u"12/5/2024");
}

TEST(DateTextGeneral, OutOfRange) {
  Err().Clear();
  EXPECT_EQ(DateText::General(Date(1e10)), u"");
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
}

TEST(DateTextGeneral, RoundTrips) {
  const double serials[] = {At(2024, 1, 31),
                            At(2024, 2, 29, 23, 59, 59),
                            Time(0, 0, 1),
                            Time(12, 0),
                            At(1900, 3, 1, 12, 0, 0),
                            -1.25,
                            -657434.0,
                            At(9999, 12, 31, 23, 59, 59),
                            At(1999, 12, 31, 0, 0, 1),
                            At(2030, 6, 15, 18, 30, 0)};
  for (const Locale* locale : {&Portuguese(), &English()}) {
    for (double serial : serials) {
      const String text = DateText::General(Date(serial), *locale);
      SCOPED_TRACE(ToUtf8(text));
      const auto back = DateText::Parse(text, *locale);
      ASSERT_TRUE(back.has_value());
      EXPECT_NEAR(back->Serial(), serial, 1e-9);
    }
  }
}

}  // namespace
}  // namespace vantor
