#include "services/IniFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <optional>

#include "SystemTestSupport.h"

namespace vantor::services {
namespace {

using test::TempFolder;

// One file with every shape of line the readers meet.
constexpr char kSample[] =
    "; comentário no início\n"
    "# comentário de Linux\n"
    "Solto=fora de seção\n"
    "[Geral]\n"
    "Nome = Vantor  \n"
    "Vazio=\n"
    "SemIgual\n"
    "Aspas=\"  com espaços  \"\n"
    "Simples='x'\n"
    "Mista=\"x'\n"
    "UmaAspa=\"\n"
    "Igual=a=b\n"
    "Comentario=valor ; nota\n"
    "\tTab\t=\ttabulado\t\n"
    "nome=segundo\n"
    "; Escondida=1\n"
    "[geral]\n"
    "Outra=da segunda\n"
    "[ Espaços ]\n"
    "Chave=1\n"
    "[Sem fim\n"
    "Chave2=2\n"
    "[Acentuação]\n"
    "Ação=Sim\n"
    "[Vazia]\n"
    "[Dup]\n"
    "K=1\n"
    "[Dup]\n"
    "K=2\n"
    "L=3\n"
    "[Nulo]\n"
    "Texto=ab\0cd\n"
    "Cercado=\"ab\0cd\"\n";

struct GetCase {
  const char16_t* section;
  const char16_t* key;
  std::optional<String> want;
};

void PrintTo(const GetCase& c, std::ostream* out) {
  *out << "[" << ToUtf8(c.section) << "] " << ToUtf8(c.key);
}

class IniGet : public ::testing::TestWithParam<GetCase> {};

TEST_P(IniGet, ReadsByThePlatformsRules) {
  const IniFile ini = IniFile::FromBytes(std::string_view(kSample, sizeof kSample - 1));
  const GetCase& c = GetParam();
  EXPECT_EQ(ini.Get(c.section, c.key), c.want) << ToUtf8(c.section) << " / " << ToUtf8(c.key);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, IniGet,
    ::testing::Values(
        GetCase{u"Geral", u"Nome", u"Vantor"},              // trimmed both sides
        GetCase{u"GERAL", u"nOME", u"Vantor"},              // without regard to case
        GetCase{u"  Geral ", u" Nome\t", u"Vantor"},        // names trimmed
        GetCase{u"Geral", u"Vazio", u""},                   // present, empty
        GetCase{u"Geral", u"SemIgual", std::nullopt},       // no "=": the default
        GetCase{u"Geral", u"Aspas", u"  com espaços  "},    // quotes go, inner blanks stay
        GetCase{u"Geral", u"Simples", u"x"},                // single quotes too
        GetCase{u"Geral", u"Mista", u"\"x'"},               // quotes that don't match stay
        GetCase{u"Geral", u"UmaAspa", u"\""},               // one quote is no pair
        GetCase{u"Geral", u"Igual", u"a=b"},                // the first "=" splits
        GetCase{u"Geral", u"Comentario", u"valor ; nota"},  // no comments after a value
        GetCase{u"Geral", u"Tab", u"tabulado"},             // tabs trimmed as blanks
        GetCase{u"Geral", u"Outra", std::nullopt},          // the first section of a name only
        GetCase{u"Geral", u"; Escondida", std::nullopt},    // a comment is no key
        GetCase{u"Geral", u"Escondida", std::nullopt},
        GetCase{u"Espaços", u"Chave", u"1"},   // header trimmed inside brackets
        GetCase{u"Espaços", u"Chave2", u"2"},  // "[Sem fim" is no header
        GetCase{u"Sem fim", u"Chave2", std::nullopt},
        GetCase{u"ACENTUAÇÃO", u"AÇÃO", u"Sim"},  // accented letters fold too
        GetCase{u"Vazia", u"K", std::nullopt},    // empty section
        GetCase{u"Dup", u"K", u"1"},              // first section wins
        GetCase{u"Dup", u"L", std::nullopt},
        GetCase{u"Nulo", u"Texto", u"ab"},     // up to the first NUL
        GetCase{u"Nulo", u"Cercado", u"ab"},   // quotes go first, then the NUL cut
        GetCase{u"", u"Solto", std::nullopt},  // lines before any section
        GetCase{u"Geral", u"", std::nullopt},  // empty key
        GetCase{u"", u"", std::nullopt},
        GetCase{u"Nada", u"Nome", std::nullopt},     // missing section
        GetCase{u"Geral", u"Nada", std::nullopt}));  // missing key

struct SetCase {
  const char* before;
  const char16_t* section;
  const char16_t* key;
  StringView value;
  bool accepted;
  const char* after;
};

void PrintTo(const SetCase& c, std::ostream* out) {
  *out << "[" << ToUtf8(c.section) << "] " << ToUtf8(c.key) << " in "
       << testing::PrintToString(c.before);
}

class IniSet : public ::testing::TestWithParam<SetCase> {};

TEST_P(IniSet, ChangesOnlyWhatItMust) {
  const SetCase& c = GetParam();
  IniFile ini = IniFile::FromBytes(c.before);
  EXPECT_EQ(ini.Set(c.section, c.key, c.value), c.accepted);
  EXPECT_EQ(ini.Bytes(), c.after);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, IniSet,
    ::testing::Values(
        // A new file gets its section and key.
        SetCase{"", u"S", u"K", u"V", true, "[S]\nK=V\n"},
        // Replaced in place, the key keeping the file's spelling.
        SetCase{"[S]\nK=velho\n", u"s", u"k", u"novo", true, "[S]\nK=novo\n"},
        SetCase{"[S]\n  A = 1 ; x\n", u"S", u"a", u"2", true, "[S]\nA=2\n"},
        // A new key follows the section's last line, before the blank ones.
        SetCase{"[S]\nA=1\n\n[T]\nB=2\n", u"S", u"C", u"3", true, "[S]\nA=1\nC=3\n\n[T]\nB=2\n"},
        SetCase{"[S]\n\n\n[T]\n", u"S", u"K", u"V", true, "[S]\nK=V\n\n\n[T]\n"},
        SetCase{"[S]\nA=1\n; fim\n", u"S", u"B", u"2", true, "[S]\nA=1\n; fim\nB=2\n"},
        SetCase{"[S]", u"S", u"K", u"V", true, "[S]\nK=V\n"},
        // A new section goes at the end, after a blank line.
        SetCase{"[S]\nA=1\n", u"T", u"B", u"2", true, "[S]\nA=1\n\n[T]\nB=2\n"},
        SetCase{"; só comentário", u"S", u"K", u"V", true, "; só comentário\n\n[S]\nK=V\n"},
        SetCase{"[S]\nA=1\n\n", u"T", u"B", u"2", true, "[S]\nA=1\n\n[T]\nB=2\n"},
        // Line ends of the file are kept.
        SetCase{"[S]\r\nA=1\r\n", u"S", u"B", u"2", true, "[S]\r\nA=1\r\nB=2\r\n"},
        SetCase{"[S]\r\nA=1", u"T", u"B", u"2", true, "[S]\r\nA=1\r\n\r\n[T]\r\nB=2\r\n"},
        // Names trimmed; the value as given (a reader trims it).
        SetCase{"", u" S ", u"\tK ", u" v ", true, "[S]\nK= v \n"},
        // The value ends at a line break or NUL.
        SetCase{"", u"S", u"K", u"a\r\n[Outra]", true, "[S]\nK=a\n"},
        SetCase{"", u"S", u"K", StringView(u"a\0b", 3), true, "[S]\nK=a\n"},
        SetCase{"", u"S", u"K", u"", true, "[S]\nK=\n"},
        SetCase{"", u"Seção", u"Ação", u"ç", true, "[Seção]\nAção=ç\n"},
        // Names the file could not hold.
        SetCase{"[S]\n", u"", u"K", u"V", false, "[S]\n"},
        SetCase{"[S]\n", u"   ", u"K", u"V", false, "[S]\n"},
        SetCase{"[S]\n", u"S", u"", u"V", false, "[S]\n"},
        SetCase{"[S]\n", u"S]x", u"K", u"V", false, "[S]\n"},
        SetCase{"[S]\n", u"S\nT", u"K", u"V", false, "[S]\n"},
        SetCase{"[S]\n", u"S", u"a=b", u"V", false, "[S]\n"},
        SetCase{"[S]\n", u"S", u";k", u"V", false, "[S]\n"},
        SetCase{"[S]\n", u"S", u"#k", u"V", false, "[S]\n"},
        SetCase{"[S]\n", u"S", u"[k", u"V", false, "[S]\n"},
        SetCase{"[S]\n", u"S", u"k\r", u"V", true, "[S]\nk=V\n"}));  // "\r" trims as a blank

TEST(IniFile, KeepsTheEncodingItFound) {
  struct Case {
    std::string bytes;
    const char* label;
    std::string_view head;  // how the rewritten file begins
    std::string_view added;
  };
  const Case cases[] = {
      {"[Se\xC3\xA7\xC3\xA3o]\nChave=Ol\xC3\xA1\n", "utf-8", "[Se\xC3\xA7\xC3\xA3o]",
       "Nova=\xC3\xA7\n"},
      {"\xEF\xBB\xBF[Se\xC3\xA7\xC3\xA3o]\nChave=Ol\xC3\xA1\n", "utf-8 bom", "\xEF\xBB\xBF[Se",
       "Nova=\xC3\xA7\n"},
      {"[Se\xE7\xE3o]\nChave=Ol\xE1\n", "1252", "[Se\xE7\xE3o]", "Nova=\xE7\n"},
      {std::string("\xFF\xFE[\0S\0e\0\xE7\0\xE3\0o\0]\0\n\0C\0h\0a\0v\0e\0=\0O\0l\0\xE1\0\n\0", 38),
       "utf-16le", std::string_view("\xFF\xFE[\0", 4),
       std::string_view("N\0o\0v\0a\0=\0\xE7\0\n\0", 14)},
      {std::string("\xFE\xFF\0[\0S\0e\0\xE7\0\xE3\0o\0]\0\n\0C\0h\0a\0v\0e\0=\0O\0l\0\xE1\0\n", 38),
       "utf-16be", std::string_view("\xFE\xFF\0[", 4),
       std::string_view("\0N\0o\0v\0a\0=\0\xE7\0\n", 14)},
      // Overlong and surrogate forms are no UTF-8: the code page reads them.
      {"[Se\xE7\xE3o]\nChave=Ol\xE1\n\xC0\xAF\n", "1252 with overlong", "[Se\xE7\xE3o]",
       "Nova=\xE7\n"},
  };
  for (const Case& c : cases) {
    IniFile ini = IniFile::FromBytes(c.bytes);
    EXPECT_EQ(ini.Get(u"Seção", u"chave"), String(u"Olá")) << c.label;
    ASSERT_TRUE(ini.Set(u"Seção", u"Nova", u"ç")) << c.label;
    const std::string out = ini.Bytes();
    EXPECT_TRUE(out.starts_with(c.head)) << c.label;
    EXPECT_NE(out.find(c.added), std::string::npos) << c.label;
    EXPECT_EQ(IniFile::FromBytes(out).Get(u"SEÇÃO", u"NOVA"), String(u"ç")) << c.label;
  }
  // A character the code page lacks becomes its default character.
  IniFile ansi = IniFile::FromBytes("[S]\nA=\xE9\n");
  ansi.Set(u"S", u"B", u"\u4E2D");
  EXPECT_EQ(ansi.Bytes(), "[S]\nA=\xE9\nB=?\n");
}

TEST(IniFile, LoadsAndSavesRealFiles) {
  TempFolder dir;
  ASSERT_FALSE(dir.Path().empty());

  IniFile missing = IniFile::Load(dir.Join("nada.ini"));
  EXPECT_FALSE(missing.Exists());
  EXPECT_EQ(missing.Get(u"S", u"K"), std::nullopt);

  dir.Write("a.ini", "[S]\r\nK=1\r\n");
  IniFile a = IniFile::Load(dir.Join("a.ini"));
  EXPECT_TRUE(a.Exists());
  EXPECT_EQ(a.Get(u"s", u"k"), String(u"1"));
  ASSERT_TRUE(a.Set(u"S", u"K", u"2"));
  EXPECT_TRUE(a.Save(dir.Join("a.ini")));
  EXPECT_EQ(dir.Read("a.ini"), "[S]\r\nK=2\r\n");

  IniFile fresh;
  ASSERT_TRUE(fresh.Set(u"S", u"K", u"V"));
  EXPECT_FALSE(fresh.Save(dir.Join("sem-pasta/b.ini")));  // the folder isn't made
  EXPECT_FALSE(dir.Exists("sem-pasta"));
  EXPECT_TRUE(fresh.Save(dir.Join("b.ini")));
  EXPECT_EQ(dir.Read("b.ini"), "[S]\nK=V\n");

  // A folder is neither read nor replaced.
  ::mkdir(dir.Join("pasta.ini").c_str(), 0755);
  EXPECT_FALSE(IniFile::Load(dir.Join("pasta.ini")).Exists());
  EXPECT_FALSE(fresh.Save(dir.Join("pasta.ini")));
  EXPECT_TRUE(dir.IsDir("pasta.ini"));

  // A pipe must not hang the reader nor the writer.
  ASSERT_EQ(::mkfifo(dir.Join("cano.ini").c_str(), 0644), 0);
  EXPECT_FALSE(IniFile::Load(dir.Join("cano.ini")).Exists());
  EXPECT_FALSE(fresh.Save(dir.Join("cano.ini")));

  EXPECT_FALSE(IniFile::Load("").Exists());
  EXPECT_FALSE(IniFile::Load(dir.Join(std::string(300, 'n'))).Exists());
  EXPECT_FALSE(fresh.Save(dir.Join(std::string(300, 'n'))));
}

TEST(IniFile, TextRoundTripsUntouchedLines) {
  IniFile ini = IniFile::FromBytes(std::string_view(kSample, sizeof kSample - 1));
  EXPECT_EQ(ini.Bytes(), std::string(kSample, sizeof kSample - 1));
  ASSERT_TRUE(ini.Set(u"Geral", u"Nome", u"Outro"));
  std::string want(kSample, sizeof kSample - 1);
  want.replace(want.find("Nome = Vantor  "), 15, "Nome=Outro");
  EXPECT_EQ(ini.Bytes(), want);
  EXPECT_EQ(ini.Get(u"geral", u"nome"), String(u"Outro"));
  EXPECT_EQ(ini.Get(u"Dup", u"K"), String(u"1"));
}

TEST(IniFile, ManyKeysAndLongValues) {
  IniFile ini;
  for (int i = 0; i < 500; ++i) {
    const String n = FromUtf8(std::to_string(i));
    ASSERT_TRUE(ini.Set(u"Seção " + FromUtf8(std::to_string(i % 7)), u"Chave" + n, n));
  }
  EXPECT_EQ(ini.Get(u"seção 3", u"chave493"), String(u"493"));
  EXPECT_EQ(ini.Get(u"seção 4", u"chave493"), std::nullopt);
  const String big(100000, u'x');
  ASSERT_TRUE(ini.Set(u"Grande", u"Valor", big));
  EXPECT_EQ(ini.Get(u"grande", u"valor"), big);
  const String longName(5000, u'k');
  ASSERT_TRUE(ini.Set(u"Grande", longName, u"1"));
  EXPECT_EQ(ini.Get(u"Grande", longName), String(u"1"));
}

}  // namespace
}  // namespace vantor::services
