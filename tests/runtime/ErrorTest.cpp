#include "runtime/Error.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "runtime/Locale.h"

namespace vantor {
namespace {

TEST(ErrObject, SetRaiseAndClear) {
  Err().Clear();
  EXPECT_FALSE(Err());
  Err().Set(errTypeMismatch);
  EXPECT_EQ(Err().Number(), 13);
  EXPECT_EQ(Err().Description(), u"Type mismatch");
  EXPECT_TRUE(Err());
  try {
    Err().Raise(1962, u"Images.Add", u"Imagem inválida");
    FAIL() << "Raise must leave the routine";
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), 1962);
    EXPECT_EQ(e.Source(), u"Images.Add");
    EXPECT_EQ(e.Description(), u"Imagem inválida");
    EXPECT_STREQ(e.what(), "error 1962: Imagem inválida (Images.Add)");
  }
  EXPECT_EQ(Err().Number(), 1962);
  EXPECT_EQ(Err().Source(), u"Images.Add");
  Err().Clear();
  EXPECT_EQ(Err().Number(), 0);
  EXPECT_TRUE(Err().Description().empty());
  EXPECT_TRUE(Err().Source().empty());

  Err().Set(Error(457));
  EXPECT_EQ(Err().Description(),
            u"This key is already associated with an element of this collection");
  Err().Set(70000);
  EXPECT_EQ(Err().Description(), u"Application-defined or object-defined error");
}

TEST(Locale, BrazilianByDefaultAndSwitchable) {
  Locale::Set(Locale::Id::ptBR);
  const Locale& br = Locale::Current();
  EXPECT_EQ(br.DecimalSeparator(), u',');
  EXPECT_EQ(br.ThousandsSeparator(), u'.');
  EXPECT_EQ(br.ShortDateFormat(), u"dd/mm/yyyy");
  EXPECT_EQ(br.MonthName(3), u"março");
  EXPECT_EQ(br.MonthName(12, true), u"dez");
  EXPECT_EQ(br.DayName(1), u"domingo");
  EXPECT_EQ(br.DayName(7, true), u"sáb");
  EXPECT_EQ(br.MonthName(0), u"");
  EXPECT_EQ(br.DayName(8), u"");

  Locale::Set(Locale::Id::enUS);
  EXPECT_EQ(Locale::Current().DecimalSeparator(), u'.');
  EXPECT_EQ(Locale::Current().MonthName(1), u"January");

  ::setenv("VANTOR_LOCALE", "en_US", 1);
  Locale::Set(Locale::Id::ptBR);
  Locale::FromEnvironment();
  EXPECT_EQ(Locale::Current().id(), Locale::Id::enUS);
  ::setenv("VANTOR_LOCALE", "fr-FR", 1);  // unknown: the default
  Locale::FromEnvironment();
  EXPECT_EQ(Locale::Current().id(), Locale::Id::ptBR);
  ::unsetenv("VANTOR_LOCALE");
  Locale::FromEnvironment();
  EXPECT_EQ(Locale::Current().id(), Locale::Id::ptBR);
}

}  // namespace
}  // namespace vantor
