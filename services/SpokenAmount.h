#pragma once
// An amount of money in Brazilian Portuguese words, as cheques and receipts
// print it: "Mil duzentos e trinta e quatro reais e cinquenta e seis centavos".
// The text box and the utilities class share it. Hosts compare and store
// these texts, so the phrasing is kept word for word, odd joints included
// ("Um mil um reais"), rather than made grammatical.
#include "runtime/String.h"

namespace vantor::services {

class SpokenAmount {
 public:
  // The largest amount spoken; anything above gives kUnsupported.
  static constexpr double kLargest = 9999999999.99;
  static constexpr StringView kUnsupported = u"Valor não suportado.";

  static String Text(double value, StringView currencySingular, StringView currencyPlural,
                     StringView decimalSingular, StringView decimalPlural);

  // The pieces of the fraction's text the words are chosen from, exposed so
  // the tests can hold them against the run time's own conversions.
  struct Fraction {
    // The digits after the decimal point of the fraction's 15-digit text;
    // none below 1E-04, where that text takes an exponent.
    char digits[24] = {};
    int count = 0;
    // The fraction rounded to hundredths, 0 to 100.
    int cents = 0;
  };
  static Fraction Split(double fraction);
  // The last digit of the general text of hundredths/100 ("0,56" gives 6,
  // "0,5" gives 5, "0" gives 0).
  static int LastDigitOfHundredths(int hundredths);
};

}  // namespace vantor::services
