#include "services/SpokenAmount.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>

#include "runtime/NumberText.h"
#include "runtime/Strings.h"

namespace vantor::services {

namespace {

constexpr StringView kUnits[10] = {u"",      u"um",   u"dois", u"três", u"quatro",
                                   u"cinco", u"seis", u"sete", u"oito", u"nove"};
constexpr StringView kTeens[10] = {u"",       u"onze",      u"doze",      u"treze",   u"quatorze",
                                   u"quinze", u"dezesseis", u"dezessete", u"dezoito", u"dezenove"};
constexpr StringView kTens[10] = {u"",          u"dez",      u"vinte",   u"trinta",  u"quarenta",
                                  u"cinquenta", u"sessenta", u"setenta", u"oitenta", u"noventa"};
constexpr StringView kHundreds[10] = {
    u"",           u"cem",        u"duzentos",   u"trezentos",  u"quatrocentos",
    u"quinhentos", u"seiscentos", u"setecentos", u"oitocentos", u"novecentos"};

// Whether the text, blanks at its end left aside, ends with `tail`.
bool EndsWithTrimmed(const String& text, StringView tail) {
  size_t end = text.size();
  while (end > 0 && text[end - 1] == u' ') --end;
  return end >= tail.size() && StringView(text).substr(end - tail.size(), tail.size()) == tail;
}

void Append(String& r, StringView a, StringView b = {}, StringView c = {}) {
  r += a;
  r += b;
  r += c;
}

// The finishing touches: blanks trimmed, one pass that turns each pair of
// blanks into one (as the platform's Replace would), first letter capitalised.
String Finish(String r) {
  size_t first = 0, last = r.size();
  while (first < last && r[first] == u' ') ++first;
  while (last > first && r[last - 1] == u' ') --last;
  size_t out = 0;
  for (size_t i = first; i < last; ++i) {
    r[out++] = r[i];
    if (r[i] == u' ' && i + 1 < last && r[i + 1] == u' ') ++i;
  }
  r.resize(out);
  if (!r.empty()) {
    const char16_t c = r[0];
    if (c >= u'a' && c <= u'z') {
      r[0] = static_cast<char16_t>(c - u'a' + u'A');
    } else if (c >= 0x80) {
      r[0] = UCase(StringView(&r[0], 1))[0];
    }
  }
  return r;
}

}  // namespace

SpokenAmount::Fraction SpokenAmount::Split(double fraction) {
  Fraction f;
  if (!(fraction > 0) || !std::isfinite(fraction)) return f;
  char buffer[64];
  // The general conversion keeps 15 significant digits.
  auto end =
      std::to_chars(buffer, buffer + sizeof buffer, fraction, std::chars_format::scientific, 14)
          .ptr;
  char mantissa[16];
  int m = 0;
  const char* p = buffer;
  for (; p < end && *p != 'e'; ++p) {
    if (*p >= '0' && *p <= '9' && m < 15) mantissa[m++] = *p;
  }
  int exponent = 0;
  if (p < end) std::from_chars(p[1] == '+' ? p + 2 : p + 1, end, exponent);
  while (m > 1 && mantissa[m - 1] == '0') --m;
  auto put = [&f](char c) {
    if (f.count < static_cast<int>(sizeof f.digits)) f.digits[f.count++] = c;
  };
  if (exponent < -4) {
    // Exponent form ("1,5E-05"); only fractions of a tenth and more are read
    // digit by digit, so there is nothing to keep.
  } else if (exponent < 0) {
    for (int i = -1; i > exponent; --i) put('0');
    for (int i = 0; i < m; ++i) put(mantissa[i]);
  } else {
    for (int i = exponent + 1; i < m; ++i) put(mantissa[i]);
  }
  // Hundredths from the exact value, ties to even, as the platform's Round.
  const auto fixed =
      std::to_chars(buffer, buffer + sizeof buffer, fraction, std::chars_format::fixed, 2);
  int cents = 0;
  for (const char* q = buffer; q < fixed.ptr; ++q) {
    if (*q >= '0' && *q <= '9') cents = cents * 10 + (*q - '0');
  }
  f.cents = cents;
  return f;
}

int SpokenAmount::LastDigitOfHundredths(int hundredths) {
  // The general text drops trailing zeros: 0,50 reads "0,5" and 1,00 "1".
  while (hundredths > 0 && hundredths % 10 == 0) hundredths /= 10;
  return hundredths % 10;
}

String SpokenAmount::Text(double value, StringView currencySingular, StringView currencyPlural,
                          StringView decimalSingular, StringView decimalPlural) {
  if (std::isnan(value)) return String(kUnsupported);
  bool negative = false;
  if (value < 0) {
    negative = true;
    // The sign goes by taking "-" out of the number's text, so a negative
    // small enough to print with an exponent loses the exponent's sign too.
    String text = NumberText::General(value);
    std::erase(text, u'-');
    value = NumberText::Parse(text).value_or(HUGE_VAL);
  }
  if (value == 0) return Finish(String(u"zero ") + String(decimalPlural));
  if (!(value <= kLargest)) return String(kUnsupported);

  // Amounts are money: the value is split as the platform's Currency holds
  // it, to the ten-thousandth, so that 1,20 has a fraction of exactly 0,2 and
  // not the 0,19999999999999996 that binary arithmetic leaves, which would
  // be spoken as "onze centavos".
  const auto units = static_cast<int64_t>(std::nearbyint(value * 10000.0));
  const double whole = static_cast<double>(units / 10000);
  const double fraction = static_cast<double>(units % 10000) / 10000.0;
  String r;
  r.reserve(256);

  if (whole > 0) {
    char digits[12];
    int n = 0;
    {
      auto w = static_cast<uint64_t>(whole);
      char reversed[12];
      do {
        reversed[n++] = static_cast<char>('0' + w % 10);
        w /= 10;
      } while (w > 0);
      for (int i = 0; i < n; ++i) digits[i] = reversed[n - 1 - i];
    }
    const bool lastThreeZero = static_cast<uint64_t>(whole) % 1000 == 0;
    bool billion = false, million = false, thousand = false, teen = false;
    for (int i = 0; i < n; ++i) {
      const int place = n - i;
      const int d = digits[i] - '0';
      if (place == 10) {
        Append(r, kUnits[d], d == 1 ? u" bilhão " : u" bilhões ");
        billion = true;
      }
      if ((place == 9 || place == 6 || place == 3) && d > 0) {
        const int three = d * 100 + (digits[i + 1] - '0') * 10 + (digits[i + 2] - '0');
        if (three > 100 && three < 200) {
          r += u" cento e ";
        } else {
          Append(r, kHundreds[d], u" ");
        }
        if (place == 9) million = true;
        if (place == 6) thousand = true;
      }
      if ((place == 8 || place == 5 || place == 2) && d > 0) {
        const int pair = d * 10 + (digits[i + 1] - '0');
        r += EndsWithTrimmed(r, u"entos") ? u" e " : u" ";
        if (pair <= 10 || pair >= 20) {
          r += kTens[d];
          teen = false;
        } else {
          r += kTeens[pair - 10];
          teen = true;
        }
        if (place == 8) million = true;
        if (place == 5) thousand = true;
      }
      if (place == 7 || place == 4 || place == 1) {
        if (d > 0 && !teen) {
          const bool joined = EndsWithTrimmed(r, u"entos") || EndsWithTrimmed(r, u"nte") ||
                              EndsWithTrimmed(r, u"nta");
          Append(r, joined ? u" e " : u" ", kUnits[d]);
        }
        if (place == 7 && (d > 0 || million)) {
          r += d == 1 && !teen ? u" milhão " : u" milhões ";
          million = true;
        }
        if (place == 4 && (d > 0 || thousand)) {
          r += u" mil ";
          thousand = true;
        }
        if (place == 1) {
          // "um milhão de reais", "dois bilhões de reais": only a round
          // amount of one big unit alone takes "de".
          if (lastThreeZero &&
              ((billion && !million && !thousand) || (million && !thousand && !billion))) {
            r += u" de ";
          }
          Append(r, u" ", whole > 1 ? currencyPlural : currencySingular, u" ");
        }
        teen = false;
      }
    }
  }

  if (fraction > 0) {
    const Fraction f = Split(fraction);
    const StringView joint = whole > 0 ? u" e " : u" ";
    if (fraction < 0.1) {
      const int d = LastDigitOfHundredths(f.cents);
      Append(r, joint, kUnits[d]);
      Append(r, u" ", d > 1 ? decimalPlural : decimalSingular, u" ");
    } else if (fraction > 0.1 && fraction < 0.2) {
      const int d = LastDigitOfHundredths(std::max(f.cents - 10, 0));
      Append(r, joint, kTeens[d]);
      Append(r, u" ", decimalPlural, u" ");
    } else {
      Append(r, joint, f.count > 0 ? kTens[f.digits[0] - '0'] : StringView());
      if (f.count > 1) Append(r, u" e ", kUnits[LastDigitOfHundredths(f.cents)]);
      Append(r, u" ", decimalPlural, u" ");
    }
  }

  String out = Finish(std::move(r));
  if (negative) out += value > 1 ? u" negativos" : u" negativo";
  return out;
}

}  // namespace vantor::services
