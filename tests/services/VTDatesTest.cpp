#include <gtest/gtest.h>

#include "runtime/DateTime.h"
#include "runtime/Format.h"
#include "runtime/Locale.h"
#include "server/Dispatch.h"
#include "services/DateRules.h"
#include "services/VT.h"

namespace vantor::services {
namespace {

class VTDates : public ::testing::Test {
 protected:
  void SetUp() override { Locale::Set(Locale::Id::ptBR); }
  void TearDown() override { Locale::FromEnvironment(); }
  VT vt;
};

bool AllDigits(StringView s) {
  for (char16_t c : s) {
    if (c < u'0' || c > u'9') return false;
  }
  return !s.empty();
}

TEST_F(VTDates, CalcularIdadeCountsWholeYears) {
  const Date today = Today();
  EXPECT_EQ(vt.VT_CalcularIdade(DateAdd(u"yyyy", -30, today)), 30);
  EXPECT_EQ(vt.VT_CalcularIdade(DateAdd(u"d", 1, DateAdd(u"yyyy", -30, today))), 29);
  EXPECT_EQ(vt.VT_CalcularIdade(DateAdd(u"d", -1, DateAdd(u"yyyy", -30, today))), 30);
  EXPECT_EQ(vt.VT_CalcularIdade(today), 0);
  EXPECT_EQ(vt.VT_CalcularIdade(Date(1e12)), 0);
}

TEST_F(VTDates, ValidarDataEdgeCases) {
  EXPECT_FALSE(vt.VT_ValidarData(u"12/2024", 54));
  EXPECT_FALSE(vt.VT_ValidarData(u"31/04/2000", 1));
  EXPECT_FALSE(vt.VT_ValidarData(u"29/02/1900", 1));
  EXPECT_TRUE(vt.VT_ValidarData(u"29/02/2000", 1));
  EXPECT_FALSE(vt.VT_ValidarData(u"", 1));
  EXPECT_FALSE(vt.VT_ValidarData(u"25/12/2024", 99));
}

TEST_F(VTDates, ValidarHora) {
  EXPECT_TRUE(vt.VT_ValidarHora(u"23:59:59", u":"));
  EXPECT_FALSE(vt.VT_ValidarHora(u"23:60", u":"));
  EXPECT_TRUE(vt.VT_ValidarHora(u"2359", u""));
  EXPECT_FALSE(vt.VT_ValidarHora(u"", u":"));
}

TEST_F(VTDates, FormatarDataTakesANumberOrAText) {
  struct {
    Variant format;
    const char16_t* result;
  } const cases[] = {
      {Variant(int32_t{1}), u"05/03/2024"},
      {Variant(int16_t{4}), u"05-03-2024"},
      {Variant(1.0), u"05/03/2024"},
      {Variant(String(u"1")), u"05/03/2024"},  // a numeric text names a format too
      {Variant(int32_t{0}), u"2024/03/05"},
      {Variant(int32_t{36}), u"05/03"},
      {Variant(String(u"dd-mm-yy")), u"05-03-24"},
      {Variant(String(u"DD/MM/YYYY")), u"05/03/2024"},
      // A number that names no format leaves the platform's text.
      {Variant(int32_t{99}), u"5/3/2024"},
      {Variant(int32_t{-1}), u"5/3/2024"},
      {Variant(Null), u""},
      {Variant::Missing(), u""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ToUtf8(vt.VT_FormatarData(u"5/3/2024", c.format)), ToUtf8(c.result))
        << ToUtf8(c.format.ToString());
  }
  EXPECT_EQ(vt.VT_FormatarData(u"", Variant(int32_t{1})), u"");
  EXPECT_EQ(vt.VT_FormatarDataEx(u"5-3-2024", u"DD/MM/YYYY"), u"05/03/2024");
  EXPECT_EQ(vt.VT_FormatarDataEx(u"", u"DD/MM/YYYY"), u"");
  for (int32_t f = 0; f < DateRules::kFormatCount; ++f) {
    EXPECT_EQ(vt.VT_FormatarData(u"25/12/2024", Variant(f)),
              vt.VT_FormatarDataEx(u"25/12/2024", DateRules::FormatName(f)))
        << f;
  }
}

TEST_F(VTDates, NowAsText) {
  const String time = vt.VT_HoraAtual();
  ASSERT_EQ(time.size(), 8u);
  EXPECT_TRUE(AllDigits(time.substr(0, 2)) && AllDigits(time.substr(3, 2)) &&
              AllDigits(time.substr(6, 2)));
  EXPECT_EQ(time[2], u':');
  EXPECT_EQ(time[5], u':');

  const String before = Format(Variant(Today()), u"dd/mm/yyyy");
  const String date = vt.VT_DataAtual();
  const String after = Format(Variant(Today()), u"dd/mm/yyyy");
  EXPECT_TRUE(date == before || date == after) << ToUtf8(date);
  ASSERT_EQ(date.size(), 10u);
  EXPECT_EQ(date[2], u'/');
  EXPECT_EQ(date[5], u'/');

  const String both = vt.VT_DataHoraAtual();
  ASSERT_EQ(both.size(), 19u);
  EXPECT_EQ(both[10], u' ');
  EXPECT_EQ(both[2], u'/');
  EXPECT_EQ(both[13], u':');
}

TEST_F(VTDates, NomeDia) {
  EXPECT_EQ(vt.VT_NomeDia(DateSerial(2024, 12, 25), false), u"Quarta-feira");
  EXPECT_EQ(vt.VT_NomeDia(DateSerial(2024, 12, 25), true), u"Qua");
  EXPECT_EQ(vt.VT_NomeDia(DateSerial(2024, 12, 28), true), u"Sáb");
  EXPECT_EQ(vt.VT_NomeDia(Date(5e9), true), u"");
}

TEST_F(VTDates, AnoBissexto) {
  EXPECT_TRUE(vt.VT_AnoBissexto(2000));
  EXPECT_FALSE(vt.VT_AnoBissexto(1900));
  EXPECT_TRUE(vt.VT_AnoBissexto(2024));
  EXPECT_FALSE(vt.VT_AnoBissexto(2023));
  EXPECT_TRUE(vt.VT_AnoBissexto(INT32_MIN));  // divisible by 4, not by 100
  EXPECT_FALSE(vt.VT_AnoBissexto(INT32_MAX));
}

TEST_F(VTDates, QuantidadeDiasNoMes) {
  const int32_t thisYear = Year(Today());
  EXPECT_EQ(vt.VT_QuantidadeDiasNoMes(2, Variant(int32_t{2024})), 29);
  EXPECT_EQ(vt.VT_QuantidadeDiasNoMes(2, Variant(int16_t{2023})), 28);
  EXPECT_EQ(vt.VT_QuantidadeDiasNoMes(2, Variant(String(u"2000"))), 29);
  EXPECT_EQ(vt.VT_QuantidadeDiasNoMes(2, Variant::Missing()), DateRules::DaysInMonth(2, thisYear));
  EXPECT_EQ(vt.VT_QuantidadeDiasNoMes(2, Variant()), DateRules::DaysInMonth(2, thisYear));
  EXPECT_EQ(vt.VT_QuantidadeDiasNoMes(7, Variant::Missing()), 31);
  EXPECT_EQ(vt.VT_QuantidadeDiasNoMes(2, Variant(String(u"abc"))), 0);
  EXPECT_EQ(vt.VT_QuantidadeDiasNoMes(2, Variant(Null)), 0);
  EXPECT_EQ(vt.VT_QuantidadeDiasNoMes(2, Variant(1e15)), 0);
}

TEST_F(VTDates, MembersAnswerThroughDispatch) {
  Err().Clear();
  EXPECT_EQ(server::Call(vt, "VT_ValidarData", u"29/02/2000", 1).ToBoolean(), true);
  EXPECT_EQ(server::Call(vt, "VT_ValidarData", u"29/02/1900", 1).ToBoolean(), false);
  // The delimiter defaults to ":".
  EXPECT_EQ(server::Call(vt, "VT_ValidarHora", u"12:30").ToBoolean(), true);
  EXPECT_EQ(server::Call(vt, "VT_FormatarData", u"5/3/2024", 1).ToString(), u"05/03/2024");
  EXPECT_EQ(server::Call(vt, "VT_FormatarData", u"5/3/2024", u"yyyy-mm-dd").ToString(),
            u"2024-03-05");
  // The format defaults to "DD/MM/YYYY".
  EXPECT_EQ(server::Call(vt, "VT_FormatarDataEx", u"5.3.2024").ToString(), u"05/03/2024");
  // The year may be left out.
  EXPECT_EQ(server::Call(vt, "VT_QuantidadeDiasNoMes", 12).ToLong(), 31);
  EXPECT_EQ(server::Call(vt, "VT_QuantidadeDiasNoMes", 2, 2024).ToLong(), 29);
  // A date given as text is read with the locale.
  EXPECT_EQ(server::Call(vt, "VT_NomeDia", u"25/12/2024", false).ToString(), u"Quarta-feira");
  EXPECT_EQ(server::Call(vt, "VT_AnoBissexto", 2024).ToBoolean(), true);
  EXPECT_EQ(server::Call(vt, "VT_CalcularIdade", Today()).ToLong(), 0);
  EXPECT_EQ(server::Call(vt, "VT_DataAtual").ToString().size(), 10u);
  EXPECT_EQ(Err().Number(), 0);
}

}  // namespace
}  // namespace vantor::services
