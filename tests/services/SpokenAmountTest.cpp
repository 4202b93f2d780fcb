#include "services/SpokenAmount.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "runtime/Conversion.h"
#include "runtime/Locale.h"
#include "runtime/NumberText.h"

namespace vantor::services {
namespace {

String Reais(double v) {
  return SpokenAmount::Text(v, u"real", u"reais", u"centavo", u"centavos");
}

struct Case {
  double value;
  const char16_t* words;
};

template <size_t N>
void CheckAll(const Case (&cases)[N]) {
  for (const Case& c : cases) {
    EXPECT_EQ(ToUtf8(Reais(c.value)), ToUtf8(c.words)) << "value " << c.value;
  }
}

TEST(SpokenAmount, UnitsTensAndTeens) {
  const Case cases[] = {
      {1, u"Um real"},
      {2, u"Dois reais"},
      {3, u"Três reais"},
      {9, u"Nove reais"},
      {10, u"Dez reais"},
      {11, u"Onze reais"},
      {12, u"Doze reais"},
      {13, u"Treze reais"},
      {14, u"Quatorze reais"},
      {15, u"Quinze reais"},
      {16, u"Dezesseis reais"},
      {17, u"Dezessete reais"},
      {18, u"Dezoito reais"},
      {19, u"Dezenove reais"},
      {20, u"Vinte reais"},
      {21, u"Vinte e um reais"},
      {30, u"Trinta reais"},
      {45, u"Quarenta e cinco reais"},
      {50, u"Cinquenta reais"},
      {67, u"Sessenta e sete reais"},
      {70, u"Setenta reais"},
      {88, u"Oitenta e oito reais"},
      {99, u"Noventa e nove reais"},
  };
  CheckAll(cases);
}

TEST(SpokenAmount, Hundreds) {
  const Case cases[] = {
      // One hundred alone is "cem"; with anything after it the joined "cento e".
      {100, u"Cem reais"},
      {101, u"Cento e um reais"},
      {110, u"Cento e dez reais"},
      {111, u"Cento e onze reais"},
      {119, u"Cento e dezenove reais"},
      {120, u"Cento e vinte reais"},
      {199, u"Cento e noventa e nove reais"},
      {200, u"Duzentos reais"},
      {201, u"Duzentos e um reais"},
      {210, u"Duzentos e dez reais"},
      {215, u"Duzentos e quinze reais"},
      {300, u"Trezentos reais"},
      {400, u"Quatrocentos reais"},
      {555, u"Quinhentos e cinquenta e cinco reais"},
      {600, u"Seiscentos reais"},
      {700, u"Setecentos reais"},
      {800, u"Oitocentos reais"},
      {999, u"Novecentos e noventa e nove reais"},
  };
  CheckAll(cases);
}

TEST(SpokenAmount, ThousandsKeepTheirOwnJoints) {
  const Case cases[] = {
      // The thousands are spoken with their unit and no "e" before a unit.
      {1000, u"Um mil reais"},
      {1001, u"Um mil um reais"},
      {1010, u"Um mil dez reais"},
      {1015, u"Um mil quinze reais"},
      {1100, u"Um mil cem reais"},
      {1101, u"Um mil cento e um reais"},
      {2000, u"Dois mil reais"},
      {10000, u"Dez mil reais"},
      {11000, u"Onze mil reais"},
      {12345, u"Doze mil trezentos e quarenta e cinco reais"},
      {19999, u"Dezenove mil novecentos e noventa e nove reais"},
      {20000, u"Vinte mil reais"},
      {21000, u"Vinte e um mil reais"},
      {100000, u"Cem mil reais"},
      {101000, u"Cento e um mil reais"},
      {115000, u"Cento e quinze mil reais"},
      {999999, u"Novecentos e noventa e nove mil novecentos e noventa e nove reais"},
  };
  CheckAll(cases);
}

TEST(SpokenAmount, MillionsAndBillionsWithTheDeRule) {
  const Case cases[] = {
      {1000000, u"Um milhão de reais"},
      {1100000, u"Um milhão cem mil reais"},
      {1000001, u"Um milhão um reais"},
      {1001000, u"Um milhão um mil reais"},
      {2000000, u"Dois milhões de reais"},
      {11000000, u"Onze milhões de reais"},
      // A "1" in the units of millions is singular unless it closes a teen.
      {21000000, u"Vinte e um milhão de reais"},
      {100000000, u"Cem milhões de reais"},
      {200000000, u"Duzentos milhões de reais"},
      {123456789,
       u"Cento e vinte e três milhões quatrocentos e cinquenta e seis mil setecentos e oitenta e "
       u"nove reais"},
      {1000000000, u"Um bilhão de reais"},
      {2000000000, u"Dois bilhões de reais"},
      {1000000001, u"Um bilhão um reais"},
      {1000001000, u"Um bilhão um mil reais"},
      // "de" only when one big unit stands alone.
      {2003000000, u"Dois bilhões três milhões reais"},
      {9999999999,
       u"Nove bilhões novecentos e noventa e nove milhões novecentos e noventa e nove mil "
       u"novecentos e noventa e nove reais"},
  };
  CheckAll(cases);
}

TEST(SpokenAmount, Fractions) {
  const Case cases[] = {
      {0.01, u"Um centavo"},
      {0.02, u"Dois centavos"},
      {0.09, u"Nove centavos"},
      {0.1, u"Dez centavos"},
      {0.11, u"Onze centavos"},
      {0.15, u"Quinze centavos"},
      {0.19, u"Dezenove centavos"},
      {0.2, u"Vinte centavos"},
      {0.21, u"Vinte e um centavos"},
      {0.5, u"Cinquenta centavos"},
      {0.56, u"Cinquenta e seis centavos"},
      {0.99, u"Noventa e nove centavos"},
      {1.01, u"Um real e um centavo"},
      {1.05, u"Um real e cinco centavos"},
      {1.15, u"Um real e quinze centavos"},
      {1.5, u"Um real e cinquenta centavos"},
      {2.25, u"Dois reais e vinte e cinco centavos"},
      {1234.56, u"Um mil duzentos e trinta e quatro reais e cinquenta e seis centavos"},
      {1000000.5, u"Um milhão de reais e cinquenta centavos"},
      {9999999999.99,
       u"Nove bilhões novecentos e noventa e nove milhões novecentos e noventa e nove mil "
       u"novecentos e noventa e nove reais e noventa e nove centavos"},
  };
  CheckAll(cases);
}

// The fraction is taken as money holds it, to the ten-thousandth: amounts
// whose cents binary arithmetic cannot hold exactly are still spoken right.
TEST(SpokenAmount, FractionsAreTakenAsMoneyHoldsThem) {
  const Case cases[] = {
      {1.1, u"Um real e dez centavos"},
      {1.2, u"Um real e vinte centavos"},
      {1234.3, u"Um mil duzentos e trinta e quatro reais e trinta centavos"},
      {0.29, u"Vinte e nove centavos"},
      {1.15, u"Um real e quinze centavos"},
      {0.001, u"Centavo"},                // hundredths 0: no unit word
      {0.096, u"Um centavo"},             // hundredths 10: last digit 1
      {0.996, u"Noventa e um centavos"},  // hundredths 100
  };
  CheckAll(cases);
}

TEST(SpokenAmount, ZeroAndTheLimits) {
  EXPECT_EQ(Reais(0), u"Zero centavos");
  EXPECT_EQ(SpokenAmount::Text(0, u"dólar", u"dólares", u"cent", u"cents"), u"Zero cents");
  EXPECT_EQ(Reais(SpokenAmount::kLargest).substr(0, 12), u"Nove bilhões");
  EXPECT_EQ(Reais(9999999999.995), SpokenAmount::kUnsupported);
  EXPECT_EQ(Reais(10000000000.0), SpokenAmount::kUnsupported);
  EXPECT_EQ(Reais(1e300), SpokenAmount::kUnsupported);
  EXPECT_EQ(Reais(std::numeric_limits<double>::infinity()), SpokenAmount::kUnsupported);
  EXPECT_EQ(Reais(-std::numeric_limits<double>::infinity()), SpokenAmount::kUnsupported);
  EXPECT_EQ(Reais(std::numeric_limits<double>::quiet_NaN()), SpokenAmount::kUnsupported);
  EXPECT_EQ(Reais(-1e11), SpokenAmount::kUnsupported);
}

TEST(SpokenAmount, Negatives) {
  const Case cases[] = {
      {-1, u"Um real negativo"},
      {-2, u"Dois reais negativos"},
      {-0.5, u"Cinquenta centavos negativo"},
      {-1.5, u"Um real e cinquenta centavos negativos"},
      {-1000000, u"Um milhão de reais negativos"},
      {-1234.56, u"Um mil duzentos e trinta e quatro reais e cinquenta e seis centavos negativos"},
      // The sign is taken out of the text "-1E-05", which leaves 1E05.
      {-0.00001, u"Cem mil reais negativos"},
  };
  CheckAll(cases);
}

TEST(SpokenAmount, CurrencyWordsAreUsedAsGiven) {
  EXPECT_EQ(SpokenAmount::Text(1, u"dólar", u"dólares", u"cent", u"cents"), u"Um dólar");
  EXPECT_EQ(SpokenAmount::Text(3.01, u"dólar", u"dólares", u"cent", u"cents"),
            u"Três dólares e um cent");
  EXPECT_EQ(SpokenAmount::Text(2, u"", u"", u"", u""), u"Dois");
  EXPECT_EQ(SpokenAmount::Text(0.3, u"", u"", u"", u""), u"Trinta");
  const String longWord(10000, u'x');
  EXPECT_EQ(SpokenAmount::Text(2, longWord, longWord, longWord, longWord).size(),
            String(u"Dois ").size() + longWord.size());
}

// The fraction's pieces must be what the run time's general text and Round
// give, on every kind of fraction the amounts produce.
TEST(SpokenAmount, FractionPiecesMatchTheRunTime) {
  Locale::Set(Locale::Id::ptBR);
  std::vector<double> fractions = {0.125,
                                   0.375,
                                   0.625,
                                   0.875,
                                   0.005,
                                   0.015,
                                   0.105,
                                   0.995,
                                   0.1,
                                   0.2,
                                   0.00001,
                                   0.5,
                                   0.999999999999999,
                                   0.9999999999999999};
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int i = 0; i < 3000; ++i) fractions.push_back(unit(random));
  for (int whole : {0, 1, 7, 1234, 987654, 123456789}) {
    for (int cents = 0; cents < 100; ++cents) {
      const double v = whole + cents / 100.0;
      fractions.push_back(v - std::floor(v));
    }
  }
  for (double f : fractions) {
    if (!(f > 0)) continue;
    const SpokenAmount::Fraction parts = SpokenAmount::Split(f);
    const double rounded = Round(f, 2);
    EXPECT_EQ(parts.cents, static_cast<int>(std::lround(rounded * 100))) << f;
    const String general = NumberText::General(f);
    const size_t comma = general.find(u',');
    const String after = comma == String::npos ? String() : general.substr(comma + 1);
    if (f >= 1e-4) {
      EXPECT_EQ(ToUtf8(after), std::string(parts.digits, static_cast<size_t>(parts.count))) << f;
    }
    const String roundedText = NumberText::General(rounded);
    EXPECT_EQ(SpokenAmount::LastDigitOfHundredths(parts.cents), roundedText.back() - u'0') << f;
    if (f > 0.1 && f < 0.2) {
      const String less = NumberText::General(rounded - 0.1);
      EXPECT_EQ(SpokenAmount::LastDigitOfHundredths(parts.cents - 10), less.back() - u'0') << f;
    }
  }
}

}  // namespace
}  // namespace vantor::services
