// VT's words, numbers and text helpers.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <random>

#include "runtime/Conversion.h"
#include "runtime/NumberFormat.h"
#include "runtime/NumberText.h"
#include "runtime/Strings.h"
#include "services/SpokenAmount.h"
#include "services/VT.h"

namespace vantor::services {

namespace {

// A padded or generated text is refused past this many characters, where the
// platform would run out of string space; the member then gives "".
constexpr int64_t kLongestText = 1 << 24;

// One generator for the process, seeded once from the system's entropy, as
// the platform's Randomize seeds Rnd from the clock.
double Rnd() {
  static std::mt19937_64 generator{std::random_device{}()};
  return std::uniform_real_distribution<double>(0.0, 1.0)(generator);
}

bool IsDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

// A URL scheme: a letter, then letters, digits, "+", "-" or ".". One letter
// alone is a drive ("C:\pasta"), not a scheme.
bool IsScheme(StringView s) {
  if (s.size() < 2) return false;
  auto letter = [](char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); };
  if (!letter(s[0])) return false;
  for (char16_t c : s) {
    if (!letter(c) && !IsDigit(c) && c != u'+' && c != u'-' && c != u'.') return false;
  }
  return true;
}

}  // namespace

String VT::VT_ValorExtenso(double Valor, const String& MoedaSingular, const String& MoedaPlural,
                           const String& DecimalSingular, const String& DecimalPlural) const {
  return SpokenAmount::Text(Valor, MoedaSingular, MoedaPlural, DecimalSingular, DecimalPlural);
}

String VT::VT_ZeroEsquerda(const String& Texto, int32_t QuantidadeZeros) const {
  if (QuantidadeZeros > kLongestText) return {};
  const auto width = static_cast<size_t>(std::max(QuantidadeZeros, 0));
  if (Texto.size() >= width) return Texto;
  return String(width - Texto.size(), u'0') + Texto;
}

// A scheme, ":" and something after it, as the system's URL check accepts;
// control characters never belong to a URL.
bool VT::VT_ValidarURL(const String& Url) const {
  const size_t colon = Url.find(u':');
  if (colon == String::npos || colon + 1 >= Url.size()) return false;
  if (!IsScheme(StringView(Url).substr(0, colon))) return false;
  for (char16_t c : Url) {
    if (c < 0x20 || c == 0x7F) return false;
  }
  return true;
}

String VT::VT_RemoverAcentos(const String& Texto) const {
  static constexpr StringView kFrom = u"ÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÒÓÔÕÖÙÚÛÜàáâãäåçèéêëìíîïòóôõöùúûü";
  static constexpr StringView kTo = u"AAAAAACEEEEIIIIOOOOOUUUUaaaaaaceeeeiiiiooooouuuu";
  static_assert(kFrom.size() == kTo.size());
  String out = Texto;
  for (char16_t& c : out) {
    if (c < 0xC0) continue;
    const size_t at = kFrom.find(c);
    if (at != StringView::npos) c = kTo[at];
  }
  return out;
}

// CPF (11 digits) and CNPJ (14 digits), each with its two check digits.
bool VT::VT_ValidarCPFCNPJ(const String& Texto) const {
  int digits[14];
  size_t n = 0;
  for (char16_t c : Texto) {
    if (c == u'.' || c == u'-' || c == u'/') continue;
    if (!IsDigit(c) || n == 14) return false;
    digits[n++] = c - u'0';
  }
  auto checks = [&](int sum, int digit) {
    const int r = sum % 11;
    return digit == (r < 2 ? 0 : 11 - r);
  };
  if (n == 11) {
    int first = 0, second = 0;
    for (int i = 0; i < 9; ++i) first += digits[i] * (10 - i);
    for (int i = 0; i < 10; ++i) second += digits[i] * (11 - i);
    return checks(first, digits[9]) && checks(second, digits[10]);
  }
  if (n == 14) {
    static constexpr int kWeights[13] = {6, 5, 4, 3, 2, 9, 8, 7, 6, 5, 4, 3, 2};
    int first = 0, second = 0;
    for (int i = 0; i < 12; ++i) first += digits[i] * kWeights[i + 1];
    for (int i = 0; i < 13; ++i) second += digits[i] * kWeights[i];
    return checks(first, digits[12]) && checks(second, digits[13]);
  }
  return false;
}

String VT::VT_RetornarNumeros(const String& Texto) const {
  String out;
  for (char16_t c : Texto) {
    if (IsDigit(c)) out.push_back(c);
  }
  return out;
}

// The characters the file systems of Windows refuse in a name, and the line
// breaks; the length leaves room for a folder in a 260-character path.
bool VT::VT_ValidarNomeArquivo(const String& Texto) const {
  if (Texto.size() >= 251) return false;
  static constexpr StringView kRefused = u"\n\r\"*/:<>?\\|";
  return Texto.find_first_of(kRefused) == String::npos;
}

String VT::VT_PegaConteudoTexto(const String& Texto, const String& TextoIN,
                                const String& TextoOUT) const {
  const size_t in = Texto.find(TextoIN);
  if (in == String::npos) return {};
  const size_t from = in + TextoIN.size();
  if (from >= Texto.size()) return {};
  const size_t out = Texto.find(TextoOUT, from);
  if (out == String::npos) return {};
  return Texto.substr(from, out - from);
}

int32_t VT::VT_NumeroAleatorio() const {
  return static_cast<int32_t>(std::floor(Rnd() * 999999999.0));
}

String VT::VT_GerarNumeroAleatorio(const String& Delimitador, int32_t Casas,
                                   int32_t FormatoCasas) const {
  if (Casas <= 0 || FormatoCasas < 0) return {};
  const String widest = NumberText::General(FormatoCasas);
  const int64_t length =
      static_cast<int64_t>(Casas) * static_cast<int64_t>(widest.size() + Delimitador.size());
  if (length > kLongestText) return {};
  String out;
  out.reserve(static_cast<size_t>(length));
  for (int32_t i = 0; i < Casas; ++i) {
    if (i > 0) out += Delimitador;
    const auto number = static_cast<int64_t>(std::floor(Rnd() * (FormatoCasas + 1.0)));
    const String digits = NumberText::General(static_cast<double>(number));
    if (digits.size() < widest.size()) out.append(widest.size() - digits.size(), u'0');
    out += digits;
  }
  return out;
}

String VT::VT_LongToHex(int32_t Valor) const {
  const String hex = Hex(Variant(Valor));
  return hex.size() < 8 ? String(8 - hex.size(), u'0') + hex : hex;
}

String VT::VT_FormatarBytes(double Valor) const {
  if (!std::isfinite(Valor)) return {};
  if (Valor <= 999) return NumberFormat::Apply(Valor, u"0") + u" Bytes";
  static constexpr StringView kUnits[] = {u" Kb", u" Mb", u" Gb", u" Tb",
                                          u" Pb", u" Eb", u" Zb", u" Yb"};
  constexpr int kLast = static_cast<int>(std::size(kUnits));
  int k = 1;
  while (k < kLast && !(Valor < std::pow(1024.0, k) * 999)) ++k;
  const double scaled = Valor / std::pow(1024.0, k);
  const StringView pattern = scaled > 99 ? u"0" : scaled > 9 ? u"0.0" : u"0.00";
  return NumberFormat::Apply(scaled, pattern) + String(kUnits[k - 1]);
}

}  // namespace vantor::services
