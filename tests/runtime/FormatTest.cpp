#include "runtime/Format.h"

#include <gtest/gtest.h>

#include <memory>

#include "runtime/Error.h"
#include "tests/runtime/TestSupport.h"

namespace vantor {
namespace {

using namespace test;

// 15 March 2023.
constexpr double kIdes = 45000.0;

struct Case {
  Variant value;
  const char16_t* format;
  const char16_t* expected;
};

void Check(std::initializer_list<Case> cases) {
  for (const Case& c : cases) {
    EXPECT_EQ(ToUtf8(Format(c.value, c.format)), ToUtf8(c.expected))
        << "\"" << ToUtf8(c.format) << "\" of " << ToUtf8(c.value.TypeName());
  }
}

TEST(FormatNamed, NumbersInPortuguese) {
  Check({
      {1234.5, u"Currency", u"R$ 1.234,50"},
      {-1234.5, u"Currency", u"-R$ 1.234,50"},
      {0.0, u"Currency", u"R$ 0,00"},
      {1234567.891, u"currency", u"R$ 1.234.567,89"},
      {1234.567, u"Fixed", u"1234,57"},
      {-0.5, u"Fixed", u"-0,50"},
      {1234.567, u"Standard", u"1.234,57"},
      {0.1234, u"Percent", u"12,34%"},
      {1234.5, u"Scientific", u"1,23E+03"},
      {1234.5, u"General Number", u"1234,5"},
      {1234.5, u"GENERAL NUMBER", u"1234,5"},
      {1e15, u"General Number", u"1E+15"},
      {1.1f, u"General Number", u"1,1"},
      {Currency::FromRaw(12345), u"General Number", u"1,2345"},
      {u"1.234,5", u"General Number", u"1234,5"},
      {u"abc", u"General Number", u"abc"},
      {u"1.234,5", u"Standard", u"1.234,50"},
  });
}

TEST(FormatNamed, NumbersInEnglish) {
  LocaleGuard en(Locale::Id::enUS);
  Check({
      {1234.5, u"Currency", u"$1,234.50"},
      {-1234.5, u"Currency", u"($1,234.50)"},
      {1234.567, u"Standard", u"1,234.57"},
      {0.1234, u"Percent", u"12.34%"},
      {1234.5, u"General Number", u"1234.5"},
  });
}

TEST(FormatNamed, Words) {
  Check({
      {1, u"Yes/No", u"Sim"},
      {0, u"Yes/No", u"Não"},
      {true, u"yes/no", u"Sim"},
      {-0.5, u"True/False", u"Verdadeiro"},
      {0.0, u"True/False", u"Falso"},
      {5, u"On/Off", u"Ativado"},
      {Variant(), u"On/Off", u"Desativado"},
      {u"0", u"Yes/No", u"Não"},
      {u"talvez", u"Yes/No", u"talvez"},
      {Null, u"Yes/No", u""},
  });
  LocaleGuard en(Locale::Id::enUS);
  Check({
      {1, u"Yes/No", u"Yes"},
      {0, u"Yes/No", u"No"},
      {1, u"True/False", u"True"},
      {1, u"On/Off", u"On"},
      {0, u"On/Off", u"Off"},
  });
}

TEST(FormatNamed, Dates) {
  Check({
      {Date(kIdes), u"Short Date", u"15/03/2023"},
      {Date(kIdes + 0.75), u"Short Time", u"18:00"},
      {Date(kIdes + 0.75), u"Long Time", u"18:00:00"},
      {Date(kIdes + 0.75), u"Medium Time", u"06:00 PM"},
      {Date(kIdes), u"Long Date", u"quarta-feira, 15 de março de 2023"},
      {kIdes, u"short date", u"15/03/2023"},
      {u"15/03/2023", u"Short Date", u"15/03/2023"},
      {u"nada", u"Short Date", u"nada"},
      {Null, u"Short Date", u""},
      {1e10, u"Short Date", u"10000000000"},
  });
  LocaleGuard en(Locale::Id::enUS);
  Check({
      {Date(kIdes), u"Short Date", u"3/15/2023"},
      {Date(kIdes + 0.75), u"Long Time", u"6:00:00 PM"},
  });
}

TEST(FormatNamed, GeneralDateDropsTheEmptyPart) {
  Check({
      {Date(kIdes), u"General Date", u"15/03/2023"},
      {Date(kIdes + 0.5), u"General Date", u"15/03/2023 12:00:00"},
  });
}

TEST(FormatPattern, EmptyPatternIsCStr) {
  Check({
      {1.5, u"", u"1,5"},
      {true, u"", u"Verdadeiro"},
      {Null, u"", u""},
      {Variant(), u"", u""},
      {u"texto", u"", u"texto"},
      {static_cast<int16_t>(-3), u"", u"-3"},
  });
  EXPECT_EQ(Format(2.5), u"2,5");
}

TEST(FormatPattern, NumberPatternsReadTheValueAsANumber) {
  Check({
      {1234.5, u"#,##0.00", u"1.234,50"},
      {static_cast<int16_t>(-7), u"000", u"-007"},
      {static_cast<uint8_t>(200), u"0.0", u"200,0"},
      {true, u"0", u"-1"},
      {false, u"0", u"0"},
      {Variant(), u"0.00", u"0,00"},
      {Date(kIdes + 0.5), u"0.0", u"45000,5"},
      {Currency::FromRaw(12345), u"0.00", u"1,23"},
      {Currency::FromRaw(12355), u"0.000", u"1,236"},
      {2.675f, u"0.00", u"2,68"},
      {u"1234,5", u"#,##0.00", u"1.234,50"},
      {u" R$ 12,50 ", u"0.0", u"12,5"},
      {u"abc", u"0.00", u"abc"},
      {u"01310100", u"00000-000", u"01310-100"},
      {Null, u"0.00", u""},
      {Null, u"0;0;0;\\N\\u\\l\\l", u"Null"},
      {5, u"0 m", u"5 m"},
      {-5, u"0;(0)", u"(5)"},
      {0.5, u"0%", u"50%"},
      {5, u"---", u"---"},
      {Variant(ObjectPtr(std::make_shared<Answer>(Variant(2.5)))), u"0.00", u"2,50"},
  });
  Variant target(3.25);
  EXPECT_EQ(Format(Variant::ByRef(&target), u"0.0"), u"3,3");
}

TEST(FormatPattern, DatePatterns) {
  Check({
      {Date(kIdes), u"dd/mm/yyyy", u"15/03/2023"},
      {Date(kIdes + 0.5), u"hh:nn", u"12:00"},
      {kIdes, u"yyyy", u"2023"},
      {u"15/03/2023", u"mmmm", u"março"},
      {u"15/03/2023 10:30", u"hh\\hnn", u"10h30"},
      {u"sem data", u"dd/mm/yyyy", u"sem data"},
      {Variant(), u"dd/mm/yyyy", u"30/12/1899"},
      {Null, u"dd/mm/yyyy", u""},
      {1e10, u"yyyy", u"10000000000"},
  });
}

TEST(FormatPattern, TextPatterns) {
  Check({
      {u"1234", u"@@@.@@@.@@@", u"   .  1.234"},
      {u"abc", u">", u"ABC"},
      {u"ABC", u"<", u"abc"},
      {12345678901.0, u"@@@.@@@.@@@-@@", u"123.456.789-01"},
      {5, u"@ dias", u"5 dias"},
      {u"", u"@;\\v\\a\\z\\i\\o", u"vazio"},
      {Null, u"@;\\v\\a\\z\\i\\o", u"vazio"},
      {Null, u"@", u""},
      {u"x", u"@;\\v\\a\\z\\i\\o", u"x"},
  });
}

TEST(FormatPattern, GarbageDoesNotCrash) {
  const char16_t* patterns[] = {u";;;",  u"\"",    u"\\",     u"@;", u"dddddddddddd", u"E+",
                                u"&&&&", u"0;@;d", u"\xD800", u"!",  u"a/p",          u"ttttt"};
  const Variant values[] = {Variant(),
                            Null,
                            1.5,
                            u"",
                            u"abc",
                            Date(kIdes),
                            true,
                            Variant(std::vector<uint8_t>{1}),
                            Variant::Missing()};
  for (const char16_t* p : patterns) {
    for (const Variant& v : values) (void)Format(v, p);
  }
  (void)Format(1.0, String(50000, u'#'));
  (void)Format(u"x", String(50000, u'@'));
  Err().Clear();
}

}  // namespace
}  // namespace vantor
