#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <set>

#include "runtime/Locale.h"
#include "server/Dispatch.h"
#include "services/VT.h"

namespace vantor::services {
namespace {

class VTText : public ::testing::Test {
 protected:
  void SetUp() override { Locale::Set(Locale::Id::ptBR); }
  void TearDown() override { Locale::FromEnvironment(); }
  VT vt;
};

TEST_F(VTText, ValorExtensoSpeaksTheAmount) {
  EXPECT_EQ(vt.VT_ValorExtenso(1234.56, u"real", u"reais", u"centavo", u"centavos"),
            u"Um mil duzentos e trinta e quatro reais e cinquenta e seis centavos");
  EXPECT_EQ(vt.VT_ValorExtenso(100, u"real", u"reais", u"centavo", u"centavos"), u"Cem reais");
  EXPECT_EQ(vt.VT_ValorExtenso(0, u"real", u"reais", u"centavo", u"centavos"), u"Zero centavos");
  EXPECT_EQ(vt.VT_ValorExtenso(0.01, u"real", u"reais", u"centavo", u"centavos"), u"Um centavo");
  EXPECT_EQ(vt.VT_ValorExtenso(1e12, u"real", u"reais", u"centavo", u"centavos"),
            u"Valor não suportado.");
}

TEST_F(VTText, ZeroEsquerdaPadsWithoutCutting) {
  struct {
    const char16_t* text;
    int32_t width;
    const char16_t* padded;
  } const cases[] = {
      {u"5", 3, u"005"}, {u"123", 3, u"123"}, {u"1234", 3, u"1234"}, {u"", 2, u"00"},
      {u"5", 0, u"5"},   {u"5", -3, u"5"},    {u"abc", 5, u"00abc"}, {u"", 0, u""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(vt.VT_ZeroEsquerda(c.text, c.width), c.padded) << ToUtf8(c.text) << " " << c.width;
  }
  EXPECT_EQ(vt.VT_ZeroEsquerda(u"7", 100000).size(), 100000u);
  EXPECT_EQ(vt.VT_ZeroEsquerda(u"7", INT32_MAX), u"");
}

TEST_F(VTText, ValidarURLWantsASchemeAndSomethingAfterIt) {
  struct {
    const char16_t* url;
    bool valid;
  } const cases[] = {
      {u"http://www.example.com", true},
      {u"https://a", true},
      {u"ftp://ftp.example.com/pub", true},
      {u"mailto:alguem@example.com", true},
      {u"file:///tmp/a.txt", true},
      {u"x-y.z+w:abc", true},
      {u"http://", true},
      {u"www.example.com", false},
      {u"", false},
      {u"http:", false},
      {u":abc", false},
      {u"C:\\pasta\\arquivo.txt", false},
      {u"1http://x", false},
      {u"ht tp://x", false},
      {u"http://a\nb", false},
      {u"http://a\tb", false},
  };
  for (const auto& c : cases) EXPECT_EQ(vt.VT_ValidarURL(c.url), c.valid) << ToUtf8(c.url);
}

TEST_F(VTText, RemoverAcentosMapsEachAccentedLetter) {
  EXPECT_EQ(vt.VT_RemoverAcentos(u"ÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÒÓÔÕÖÙÚÛÜàáâãäåçèéêëìíîïòóôõöùúûü"),
            u"AAAAAACEEEEIIIIOOOOOUUUUaaaaaaceeeeiiiiooooouuuu");
  EXPECT_EQ(vt.VT_RemoverAcentos(u"Ação Pública em São Paulo"), u"Acao Publica em Sao Paulo");
  // Letters outside the list stay.
  EXPECT_EQ(vt.VT_RemoverAcentos(u"ñÑýÿØø€"), u"ñÑýÿØø€");
  EXPECT_EQ(vt.VT_RemoverAcentos(u""), u"");
  EXPECT_EQ(vt.VT_RemoverAcentos(String(50000, u'é')), String(50000, u'e'));
}

TEST_F(VTText, ValidarCPFCNPJ) {
  struct {
    const char16_t* text;
    bool valid;
  } const cases[] = {
      {u"529.982.247-25", true},
      {u"52998224725", true},
      {u"111.444.777-35", true},
      {u"123.456.789-09", true},  // remainder below 2: check digit 0
      {u"390.533.447-05", true},
      {u"529.982.247-26", false},  // second check digit wrong
      {u"529.982.247-15", false},  // first check digit wrong
      {u"123.456.789-00", false},
      {u"111.111.111-11", true},  // repeated digits are not refused
      {u"000.000.000-00", true},
      {u"11.222.333/0001-81", true},
      {u"11222333000181", true},
      {u"11.444.777/0001-61", true},
      {u"04.252.011/0001-10", true},  // remainder below 2: check digit 0
      {u"60.746.948/0001-12", true},
      {u"11.222.333/0001-82", false},
      {u"11.222.333/0001-91", false},
      {u"", false},
      {u"...---///", false},
      {u"5299822472", false},       // 10 digits
      {u"529982247250", false},     // 12 digits
      {u"112223330001811", false},  // 15 digits
      {u"529 982 247 25", false},   // blanks are not separators
      {u"529.982.247-2a", false},
      {u"٥٢٩٩٨٢٢٤٧٢٥", false},  // only ASCII digits count
  };
  for (const auto& c : cases) EXPECT_EQ(vt.VT_ValidarCPFCNPJ(c.text), c.valid) << ToUtf8(c.text);
  EXPECT_FALSE(vt.VT_ValidarCPFCNPJ(String(100000, u'1')));
}

TEST_F(VTText, RetornarNumerosKeepsTheDigits) {
  EXPECT_EQ(vt.VT_RetornarNumeros(u"(11) 98765-4321"), u"11987654321");
  EXPECT_EQ(vt.VT_RetornarNumeros(u"CPF 529.982.247-25"), u"52998224725");
  EXPECT_EQ(vt.VT_RetornarNumeros(u"abc"), u"");
  EXPECT_EQ(vt.VT_RetornarNumeros(u""), u"");
  EXPECT_EQ(vt.VT_RetornarNumeros(u"١٢³½"), u"");
}

TEST_F(VTText, ValidarNomeArquivo) {
  EXPECT_TRUE(vt.VT_ValidarNomeArquivo(u"relatório 2024.txt"));
  EXPECT_TRUE(vt.VT_ValidarNomeArquivo(u"a\tb"));
  EXPECT_TRUE(vt.VT_ValidarNomeArquivo(u""));
  EXPECT_TRUE(vt.VT_ValidarNomeArquivo(String(250, u'a')));
  EXPECT_FALSE(vt.VT_ValidarNomeArquivo(String(251, u'a')));
  for (char16_t refused : {u'\n', u'\r', u'"', u'*', u'/', u':', u'<', u'>', u'?', u'\\', u'|'}) {
    const String name = String(u"nome") + refused + u".txt";
    EXPECT_FALSE(vt.VT_ValidarNomeArquivo(name)) << static_cast<int>(refused);
  }
}

TEST_F(VTText, PegaConteudoTexto) {
  struct {
    const char16_t *text, *in, *out, *between;
  } const cases[] = {
      {u"<nome>Ana</nome>", u"<nome>", u"</nome>", u"Ana"},
      {u"[1][2]", u"[", u"]", u"1"},
      {u"a=1;b=2;", u"b=", u";", u"2"},
      {u"<nome></nome>", u"<nome>", u"</nome>", u""},
      {u"sem marcas", u"<", u">", u""},
      {u"<aberto", u"<", u">", u""},
      {u"fim<", u"<", u">", u""},
      {u"abc", u"", u"c", u"ab"},
      {u"abc", u"a", u"", u""},
      {u"", u"<", u">", u""},
      {u"Abc", u"a", u"c", u""},  // markers match case exactly
  };
  for (const auto& c : cases) {
    EXPECT_EQ(vt.VT_PegaConteudoTexto(c.text, c.in, c.out), c.between) << ToUtf8(c.text);
  }
}

TEST_F(VTText, NumeroAleatorioIsAWholeNumberInRange) {
  std::set<int32_t> seen;
  for (int i = 0; i < 200; ++i) {
    const int32_t n = vt.VT_NumeroAleatorio();
    EXPECT_GE(n, 0);
    EXPECT_LT(n, 999999999);
    seen.insert(n);
  }
  EXPECT_GT(seen.size(), 190u);
}

TEST_F(VTText, GerarNumeroAleatorio) {
  for (int i = 0; i < 50; ++i) {
    const String s = vt.VT_GerarNumeroAleatorio(u".", 4, 99);
    ASSERT_EQ(s.size(), 11u) << ToUtf8(s);
    for (size_t k = 0; k < s.size(); ++k) {
      if (k % 3 == 2) {
        EXPECT_EQ(s[k], u'.');
      } else {
        EXPECT_TRUE(s[k] >= u'0' && s[k] <= u'9');
      }
    }
  }
  std::set<String> values;
  for (int i = 0; i < 300; ++i) {
    const String s = vt.VT_GerarNumeroAleatorio(u",", 1, 5);
    ASSERT_EQ(s.size(), 1u);
    values.insert(s);
  }
  EXPECT_EQ(values, (std::set<String>{u"0", u"1", u"2", u"3", u"4", u"5"}));
  EXPECT_EQ(vt.VT_GerarNumeroAleatorio(u"", 2, 1000).size(), 8u);
  EXPECT_EQ(vt.VT_GerarNumeroAleatorio(u" - ", 3, 9).size(), 9u);
  EXPECT_EQ(vt.VT_GerarNumeroAleatorio(u"-", 1, 0), u"0");
  EXPECT_EQ(vt.VT_GerarNumeroAleatorio(u".", 0, 99), u"");
  EXPECT_EQ(vt.VT_GerarNumeroAleatorio(u".", -4, 99), u"");
  EXPECT_EQ(vt.VT_GerarNumeroAleatorio(u".", 4, -1), u"");
  EXPECT_EQ(vt.VT_GerarNumeroAleatorio(u".", INT32_MAX, INT32_MAX), u"");
}

TEST_F(VTText, LongToHex) {
  struct {
    int32_t value;
    const char16_t* hex;
  } const cases[] = {
      {0, u"00000000"},         {255, u"000000FF"},       {-1, u"FFFFFFFF"},
      {INT32_MIN, u"80000000"}, {INT32_MAX, u"7FFFFFFF"}, {0xABCDE, u"000ABCDE"},
      {-65536, u"FFFF0000"},
  };
  for (const auto& c : cases) EXPECT_EQ(vt.VT_LongToHex(c.value), c.hex) << c.value;
}

TEST_F(VTText, FormatarBytes) {
  const double k = 1024.0;
  struct {
    double value;
    const char16_t* text;
  } const cases[] = {
      {0, u"0 Bytes"},
      {1, u"1 Bytes"},
      {999, u"999 Bytes"},
      {999.4, u"0,98 Kb"},  // above 999 already counts in the next unit
      {-5, u"-5 Bytes"},
      {1000, u"0,98 Kb"},
      {k, u"1,00 Kb"},
      {9 * k, u"9,00 Kb"},
      {9.5 * k, u"9,5 Kb"},
      {10 * k, u"10,0 Kb"},
      {99 * k, u"99,0 Kb"},
      {99.5 * k, u"100 Kb"},  // above 99: no decimals, rounded half away
      {100 * k, u"100 Kb"},
      {998 * k, u"998 Kb"},
      {999 * k, u"0,98 Mb"},  // the next unit from 999 of this one
      {k * k, u"1,00 Mb"},
      {1.5 * k * k * k, u"1,50 Gb"},
      {std::pow(k, 4), u"1,00 Tb"},
      {std::pow(k, 5), u"1,00 Pb"},
      {std::pow(k, 6), u"1,00 Eb"},
      {std::pow(k, 7), u"1,00 Zb"},
      {std::pow(k, 8), u"1,00 Yb"},
      {std::pow(k, 9), u"1024 Yb"},  // the last unit takes everything bigger
  };
  for (const auto& c : cases) EXPECT_EQ(vt.VT_FormatarBytes(c.value), c.text) << c.value;
  EXPECT_EQ(vt.VT_FormatarBytes(std::numeric_limits<double>::infinity()), u"");
  EXPECT_EQ(vt.VT_FormatarBytes(std::numeric_limits<double>::quiet_NaN()), u"");
}

TEST_F(VTText, FormatarBytesFollowsTheLocale) {
  Locale::Set(Locale::Id::enUS);
  EXPECT_EQ(vt.VT_FormatarBytes(1536), u"1.50 Kb");
}

// Through the object model, as a host calls them: arguments converted to the
// declared types, defaults filled in.
TEST_F(VTText, MembersAnswerThroughDispatch) {
  Err().Clear();
  EXPECT_EQ(server::Call(vt, "VT_ValorExtenso", 1234.56, u"real", u"reais", u"centavo", u"centavos")
                .ToString(),
            u"Um mil duzentos e trinta e quatro reais e cinquenta e seis centavos");
  // A numeric text is read with the locale's decimal comma.
  EXPECT_EQ(server::Call(vt, "VT_ValorExtenso", u"2,5", u"real", u"reais", u"centavo", u"centavos")
                .ToString(),
            u"Dois reais e cinquenta centavos");
  EXPECT_EQ(server::Call(vt, "VT_ValidarCPFCNPJ", u"529.982.247-25").ToBoolean(), true);
  EXPECT_EQ(*server::Call(vt, "VT_ValidarCPFCNPJ", u"529.982.247-26").As<bool>(), false);
  EXPECT_EQ(server::Call(vt, "VT_LongToHex", u"255").ToString(), u"000000FF");
  EXPECT_EQ(server::Call(vt, "VT_ZeroEsquerda", 42, 5).ToString(), u"00042");
  EXPECT_EQ(server::Call(vt, "VT_FormatarBytes", 2048).ToString(), u"2,00 Kb");
  EXPECT_EQ(server::Call(vt, "VT_GerarNumeroAleatorio").ToString().size(), 11u);
  EXPECT_EQ(server::Call(vt, "VT_RemoverAcentos", u"Ação").ToString(), u"Acao");
  EXPECT_EQ(Err().Number(), 0);
  // A text that is no number cannot become the amount.
  Variant bad =
      server::Call(vt, "VT_ValorExtenso", u"abc", u"real", u"reais", u"centavo", u"centavos");
  EXPECT_TRUE(bad.IsEmpty());
  EXPECT_NE(Err().Number(), 0);
  Err().Clear();
}

}  // namespace
}  // namespace vantor::services
