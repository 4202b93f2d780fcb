#include "runtime/DateFormat.h"

#include <gtest/gtest.h>

#include "runtime/DateTime.h"
#include "runtime/Error.h"
#include "tests/runtime/TestSupport.h"

namespace vantor {
namespace {

using namespace test;

struct Case {
  Date date;
  const char16_t* pattern;
  const char16_t* want;
};

void ExpectFormats(const Case* begin, const Case* end, const Locale& locale,
                   VbDayOfWeek first = vbSunday, VbFirstWeekOfYear rule = vbFirstJan1) {
  for (const Case* c = begin; c != end; ++c) {
    SCOPED_TRACE(ToUtf8(c->pattern));
    Err().Clear();
    EXPECT_EQ(DateFormat::Apply(c->date, c->pattern, first, rule, locale), c->want);
    EXPECT_EQ(Err().Number(), 0);
  }
}

const Locale& Portuguese() {
  return Locale::Get(Locale::Id::ptBR);
}
const Locale& English() {
  return Locale::Get(Locale::Id::enUS);
}

TEST(DateFormatApply, DateTokens) {
  const Date friday = At(2024, 1, 5);
  const Case cases[] = {
      {friday, u"d", u"5"},
      {friday, u"dd", u"05"},
      {friday, u"mm/yy", u"01/24"},
      {friday, u"m", u"1"},
      {friday, u"w", u"6"},
      {friday, u"ww", u"1"},
      {friday, u"q", u"1"},
      {friday, u"y", u"5"},
      {friday, u"yy", u"24"},
      {friday, u"yyyy", u"2024"},
      {friday, u"yyy", u"245"},
      {friday, u"dd/mm/yyyy", u"05/01/2024"},
      {friday, u"DD/MM/YYYY", u"05/01/2024"},
      {friday, u"yyyy-mm-dd", u"2024-01-05"},
      {At(2024, 12, 31), u"ww", u"53"},
      {At(2023, 12, 31), u"ww", u"53"},
      {At(2000, 12, 31), u"ww", u"54"},
      {At(2024, 12, 31), u"y", u"366"},
      {At(2024, 11, 30), u"q", u"4"},
      {At(2005, 1, 2), u"yy", u"05"},
      {At(100, 1, 1), u"yy", u"00"},
  };
  ExpectFormats(std::begin(cases), std::end(cases), Portuguese());
}

TEST(DateFormatApply, NamesFollowTheLocale) {
  const Date monday = At(2024, 1, 15);
  const Case pt[] = {
      {monday, u"mmmm yyyy", u"janeiro 2024"},
      {monday, u"mmm", u"jan"},
      {monday, u"ddd", u"seg"},
      {monday, u"dddd", u"segunda-feira"},
      {monday, u"ddddd", u"15/01/2024"},
      {monday, u"dddddd", u"segunda-feira, 15 de janeiro de 2024"},
      {At(2024, 3, 2), u"d \"de\" mmmm", u"2 de março"},
      {At(2024, 3, 2), u"dddd", u"sábado"},
  };
  ExpectFormats(std::begin(pt), std::end(pt), Portuguese());
  const Case en[] = {
      {monday, u"mmmm yyyy", u"January 2024"},
      {monday, u"mmm", u"Jan"},
      {monday, u"ddd", u"Mon"},
      {monday, u"dddd", u"Monday"},
      {monday, u"ddddd", u"1/15/2024"},
      {monday, u"dddddd", u"Monday, January 15, 2024"},
  };
  ExpectFormats(std::begin(en), std::end(en), English());
}

TEST(DateFormatApply, TimeTokens) {
  const Date t = At(2024, 1, 5, 13, 5, 9);
  const Case cases[] = {
      {t, u"hh:mm:ss", u"13:05:09"},
      {t, u"hh:nn", u"13:05"},
      {t, u"hh:mm", u"13:05"},
      {t, u"h:m:s", u"13:5:9"},
      {t, u"HH:NN:SS", u"13:05:09"},
      {t, u"mm:ss", u"05:09"},
      {t, u"hh \"h\" mm", u"13 h 05"},
      {t, u"dd/mm hh", u"05/01 13"},
      {t, u"mm hh", u"01 13"},
      {t, u"hh dd mm", u"13 05 01"},
      {t, u"h:mm AM/PM", u"1:05 PM"},
      {t, u"hh:mm am/pm", u"01:05 pm"},
      {t, u"h A/P", u"1 P"},
      {t, u"h a/p", u"1 p"},
      {t, u"h AMPM", u"1 PM"},
      {t, u"h Am/pM", u"1 pM"},
      {t, u"ttttt", u"13:05:09"},
      {t, u"c", u"05/01/2024 13:05:09"},
      {At(2024, 1, 5, 0, 0, 0), u"h:mm AM/PM", u"12:00 AM"},
      {At(2024, 1, 5, 12, 0, 0), u"h:mm AM/PM", u"12:00 PM"},
      {At(2024, 1, 5, 0, 30, 0), u"hh:mm", u"00:30"},
      {At(2024, 1, 5, 11, 59, 59), u"h:mm:ss a/p", u"11:59:59 a"},
      {At(2024, 1, 5), u"c", u"05/01/2024"},
      {Date(0.5), u"c", u"12:00:00"},
  };
  ExpectFormats(std::begin(cases), std::end(cases), Portuguese());
  const Case en[] = {
      {t, u"ttttt", u"1:05:09 PM"},
      {t, u"c", u"1/5/2024 1:05:09 PM"},
      {t, u"hh:mm", u"13:05"},
  };
  ExpectFormats(std::begin(en), std::end(en), English());
}

TEST(DateFormatApply, SerialEdges) {
  const Case cases[] = {
      {Date(0.99999999), u"dd/mm/yyyy hh:nn:ss", u"31/12/1899 00:00:00"},
      {Date(-1.25), u"dd/mm/yyyy hh:nn", u"29/12/1899 06:00"},
      {Date(-0.5), u"dd/mm/yyyy hh:nn", u"30/12/1899 12:00"},
      {Date(0.0), u"dddd", u"sábado"},
      {At(9999, 12, 31, 23, 59, 59), u"yyyy-mm-dd hh:nn:ss", u"9999-12-31 23:59:59"},
  };
  ExpectFormats(std::begin(cases), std::end(cases), Portuguese());
}

TEST(DateFormatApply, WeekRules) {
  // 30 December 2024 is a Monday that belongs to week 1 of 2025 under the
  // four-day rule.
  EXPECT_EQ(DateFormat::Apply(At(2024, 12, 30), u"ww", vbMonday, vbFirstFourDays), u"1");
  EXPECT_EQ(DateFormat::Apply(At(2003, 12, 29), u"ww", vbMonday, vbFirstFourDays), u"1");
  EXPECT_EQ(DateFormat::Apply(At(2021, 1, 3), u"ww", vbMonday, vbFirstFourDays), u"53");
  EXPECT_EQ(DateFormat::Apply(At(2005, 1, 1), u"ww", vbSunday, vbFirstFullWeek), u"52");
  EXPECT_EQ(DateFormat::Apply(At(2024, 1, 5), u"w", vbMonday), u"5");
  EXPECT_EQ(DateFormat::Apply(At(2024, 1, 5), u"w w", vbFriday), u"1 1");
  EXPECT_EQ(DateFormat::Apply(At(2024, 1, 5), u"w", vbUseSystemDayOfWeek), u"6");
}

TEST(DateFormatApply, LiteralsAndEscapes) {
  const Date d = At(2024, 1, 5, 13, 5, 9);
  const Case cases[] = {
      {d, u"\"Data:\" dd", u"Data: 05"},
      {d, u"\\d d", u"d 5"},
      {d, u"\"abc", u"abc"},
      {d, u"dd\\", u"05"},
      {d, u"x", u"x"},
      {d, u"ttt", u"ttt"},
      {d, u"[dd]", u"[05]"},
      {d, u"dd.mm.yyyy", u"05.01.2024"},
      {d, u"dd-mm-yyyy", u"05-01-2024"},
      {d, u"", u""},
      {d, u"a", u"a"},
      {d, u"\"hh\"", u"hh"},
  };
  ExpectFormats(std::begin(cases), std::end(cases), Portuguese());
}

TEST(DateFormatApply, UsesCurrentLocaleByDefault) {
  const Date d = At(2024, 1, 15, 13, 5, 0);
  EXPECT_EQ(DateFormat::Apply(d, u"mmmm"), u"janeiro");
  EnglishLocale english;
  EXPECT_EQ(DateFormat::Apply(d, u"mmmm"), u"January");
  EXPECT_EQ(DateFormat::Apply(d, u"ddddd ttttt"), u"1/15/2024 1:05:00 PM");
}

TEST(DateFormatApply, BadArguments) {
  Err().Clear();
  EXPECT_EQ(DateFormat::Apply(Date(1e10), u"dd"), u"");
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  Err().Clear();
  EXPECT_EQ(DateFormat::Apply(At(2024, 1, 1), u"dd", static_cast<VbDayOfWeek>(8)), u"");
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  Err().Clear();
  EXPECT_EQ(DateFormat::Apply(At(2024, 1, 1), u"dd", vbSunday, static_cast<VbFirstWeekOfYear>(9)),
            u"");
  EXPECT_EQ(Err().Number(), errInvalidProcedureCall);
  // Long and odd patterns still give text.
  Err().Clear();
  String pattern;
  for (int i = 0; i < 3000; ++i) pattern += u"dmyhnsqwtc\"\\";
  EXPECT_FALSE(DateFormat::Apply(At(2024, 1, 1), pattern).empty());
  // 1666 long dates and one day name.
  const String longDate = DateFormat::Apply(At(2024, 1, 1), u"dddddd");
  EXPECT_EQ(DateFormat::Apply(At(2024, 1, 1), String(10000, u'd')), [&] {
    String want;
    for (int i = 0; i < 1666; ++i) want += longDate;
    return want + u"segunda-feira";
  }());
  EXPECT_EQ(Err().Number(), 0);
}

}  // namespace
}  // namespace vantor
