// The members of VT that reach the operating system, on real files, folders,
// INI files and child processes, and through the dispatcher.
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/statvfs.h>

#include <filesystem>

#include "SystemTestSupport.h"
#include "platform/Desktop.h"
#include "platform/User.h"
#include "runtime/Locale.h"
#include "runtime/Strings.h"
#include "server/Registry.h"
#include "services/HostSystem.h"
#include "services/VT.h"

namespace vantor::services {
namespace {

using test::Child;
using test::EnvVar;
using test::Recorder;
using test::SleepProgram;
using test::TempFolder;

class VTSystem : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_FALSE(dir.Path().empty()); }
  VT vt;
  TempFolder dir;
};

// ---------------------------------------------------------------- existence

TEST_F(VTSystem, TellsFilesFromFolders) {
  dir.Write("a.txt", "conteúdo");
  ::mkdir(dir.Join("sub").c_str(), 0755);
  dir.Write("sub/b.dat", "");
  dir.Write("com espaço e ç.txt", "x");
  ::symlink(dir.Join("a.txt").c_str(), dir.Join("elo").c_str());
  ::symlink(dir.Join("nada").c_str(), dir.Join("elo-quebrado").c_str());

  struct Case {
    String path;
    bool any, file, onlyDir, folder;
  };
  const String nul = dir.U("a.txt") + String(1, u'\0') + u"lixo";
  const Case cases[] = {
      {dir.U("a.txt"), true, true, false, false},
      {dir.Win("a.txt"), true, true, false, false},  // Windows' separators
      {dir.U("sub"), true, false, true, true},
      {dir.Win("sub") + u"\\", true, false, true, true},
      {dir.U("sub/b.dat"), true, true, false, false},
      {dir.U("com espaço e ç.txt"), true, true, false, false},
      {dir.U("elo"), true, true, false, false},  // a link counts as what it names
      {dir.U("elo-quebrado"), false, false, false, false},
      {dir.U("a.txt/"), false, false, false, false},  // a file is no folder
      {dir.U("nada"), false, false, false, false},
      {dir.U("nada/a.txt"), false, false, false, false},
      {u"", false, false, false, false},
      {nul, false, false, false, false},  // would name a.txt if cut at the NUL
      {dir.U(std::string(300, 'n')), false, false, false, false},
      {u"/" + String(5000, u'p'), false, false, false, false},
      {dir.U("a?*<>|\".txt"), false, false, false, false},
      {String(1, u'\xD800'), false, false, false, false},
      {u"C:\\Windows", false, false, false, false},
  };
  for (const Case& c : cases) {
    const std::string label = ToUtf8(c.path.substr(0, 200));
    EXPECT_EQ(vt.VT_ArquivoOuDiretorioExiste(c.path), c.any) << label;
    EXPECT_EQ(vt.VT_ArquivoExiste(c.path, false), c.file) << label;
    EXPECT_EQ(vt.VT_ArquivoExiste(c.path, true), c.onlyDir) << label;
    EXPECT_EQ(vt.VT_DiretorioExiste(c.path), c.folder) << label;
  }
  EXPECT_TRUE(vt.VT_DiretorioExiste(u"/"));
  EXPECT_TRUE(vt.VT_DiretorioExiste(u"\\"));
}

// ---------------------------------------------------------------- path text

TEST(VTPathText, ExtensionIsTheLastDotOn) {
  const VT vt;
  const std::pair<String, String> cases[] = {
      {u"a.txt", u".txt"},
      {u"arquivo.tar.gz", u".gz"},
      {u"C:\\Dados\\Nota.PDF", u".PDF"},
      {u"/home/u/.bashrc", u".bashrc"},
      {u"semponto", u""},
      {u"", u""},
      {u"a.", u"."},
      {u".", u"."},
      {u"pasta.v1/arquivo", u".v1/arquivo"},  // the last "." wherever it stands
      {u"relatório.ção", u".ção"},
      {String(10000, u'a') + u".x", u".x"},
  };
  for (const auto& [in, want] : cases) EXPECT_EQ(vt.VT_ArquivoExtensao(in), want) << ToUtf8(in);
}

TEST(VTPathText, FolderOfAPathWithEitherSeparator) {
  const VT vt;
  const std::pair<String, String> cases[] = {
      {u"/home/u/a.txt", u"/home/u"},
      {u"C:\\Dados\\a.txt", u"C:\\Dados"},
      {u"dados/sub\\a.txt", u"dados/sub"},
      {u"dados\\sub/a.txt", u"dados\\sub"},
      {u"/home/u/", u"/home/u"},
      {u"/home//a.txt", u"/home"},
      {u"/a.txt", u"/"},
      {u"\\a.txt", u"\\"},
      {u"//", u"/"},
      {u"C:\\a.txt", u"C:\\"},
      {u"C:/a.txt", u"C:/"},
      {u"a.txt", u""},
      {u"", u""},
      {u"\\\\servidor\\pasta\\a.txt", u"\\\\servidor\\pasta"},
      {String(5000, u'p') + u"/a", String(5000, u'p')},
  };
  for (const auto& [in, want] : cases) EXPECT_EQ(vt.VT_ArquivoCaminho(in), want) << ToUtf8(in);
}

// ---------------------------------------------------------------- attributes

TEST_F(VTSystem, ReadOnlyIsTheFilesWriteBits) {
  const mode_t oldMask = ::umask(022);
  dir.Write("a.txt", "x");
  ::chmod(dir.Join("a.txt").c_str(), 0664);
  vt.VT_ArquivoAtributo(dir.U("a.txt"), true, false, true, false);
  EXPECT_EQ(dir.Mode("a.txt"), 0444);
  // Clearing gives back what a new file would have.
  vt.VT_ArquivoAtributo(dir.Win("a.txt"), false, false, false, false);
  EXPECT_EQ(dir.Mode("a.txt"), 0644);
  // Archive, hidden and system change nothing.
  vt.VT_ArquivoAtributo(dir.U("a.txt"), true, true, false, true);
  EXPECT_EQ(dir.Mode("a.txt"), 0644);
  EXPECT_TRUE(dir.Exists("a.txt"));
  // With a mask that allows nobody to write, the owner still may.
  ::chmod(dir.Join("a.txt").c_str(), 0444);
  ::umask(0222);
  vt.VT_ArquivoAtributo(dir.U("a.txt"), false, false, false, false);
  EXPECT_EQ(dir.Mode("a.txt"), 0644);
  ::umask(022);
  // A folder's mode stays.
  ::mkdir(dir.Join("sub").c_str(), 0755);
  vt.VT_ArquivoAtributo(dir.U("sub"), false, false, true, false);
  EXPECT_EQ(dir.Mode("sub"), 0755);
  // Bad paths do nothing.
  vt.VT_ArquivoAtributo(dir.U("nada"), false, false, true, false);
  vt.VT_ArquivoAtributo(u"", false, false, true, false);
  vt.VT_ArquivoAtributo(dir.U(std::string(300, 'n')), false, false, true, false);
  EXPECT_FALSE(dir.Exists("nada"));
  ::umask(oldMask);
}

// ---------------------------------------------------------------- delete, make, compare

TEST_F(VTSystem, DeletesFilesOnly) {
  dir.Write("a.txt", "x");
  dir.Write("b.txt", "x");
  ::chmod(dir.Join("b.txt").c_str(), 0444);
  dir.Write("c.txt", "x");
  ::mkdir(dir.Join("sub").c_str(), 0755);
  ::symlink(dir.Join("c.txt").c_str(), dir.Join("elo").c_str());

  vt.VT_ApagarArquivo(dir.U("a.txt"));
  EXPECT_FALSE(dir.Exists("a.txt"));
  vt.VT_ApagarArquivo(dir.Win("b.txt"));  // read-only, and "\"
  EXPECT_FALSE(dir.Exists("b.txt"));
  vt.VT_ApagarArquivo(dir.U("sub"));
  EXPECT_TRUE(dir.IsDir("sub"));
  vt.VT_ApagarArquivo(dir.U("elo"));  // the link goes, not what it names
  EXPECT_FALSE(dir.Exists("elo"));
  EXPECT_TRUE(dir.Exists("c.txt"));
  vt.VT_ApagarArquivo(dir.U("c.txt") + String(1, u'\0') + u"x");
  EXPECT_TRUE(dir.Exists("c.txt"));
  vt.VT_ApagarArquivo(dir.U("nada"));
  vt.VT_ApagarArquivo(u"");
  vt.VT_ApagarArquivo(dir.U(std::string(300, 'n')));
  EXPECT_TRUE(dir.Exists("c.txt"));
}

TEST_F(VTSystem, MakesFoldersWithTheirParents) {
  dir.Write("arquivo", "x");
  struct Case {
    String path;
    bool want;
    const char* made;  // checked when not null
  };
  const Case cases[] = {
      {dir.U("nova"), true, "nova"},
      {dir.U("nova"), true, "nova"},  // already there
      {dir.U("a/b/c"), true, "a/b/c"},
      {dir.Win("w\\x\\"), true, "w/x"},
      {dir.U("d//e/"), true, "d/e"},
      {dir.U("ç ã/é"), true, "ç ã/é"},
      {dir.U("arquivo"), false, nullptr},
      {dir.U("arquivo/sub"), false, nullptr},
      {dir.U(std::string(300, 'n')), false, nullptr},
      {dir.U("ok/" + std::string(300, 'n')), false, nullptr},
      {u"", false, nullptr},
      {dir.U("x") + String(1, u'\0') + u"y", false, nullptr},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(vt.VT_CriarDiretorio(c.path), c.want) << ToUtf8(c.path.substr(0, 100));
    if (c.made) {
      EXPECT_TRUE(dir.IsDir(c.made)) << c.made;
    }
  }
  EXPECT_FALSE(dir.Exists("x"));
  EXPECT_TRUE(vt.VT_CriarDiretorio(u"/"));
}

TEST_F(VTSystem, ComparesContents) {
  dir.Write("a", "mesmo conteúdo");
  dir.Write("b", "mesmo conteúdo");
  dir.Write("c", "outro conteúdo");  // same length
  dir.Write("d", "curto");
  dir.Write("vazio1", "");
  dir.Write("vazio2", "");
  std::string big(300000, 'z');
  dir.Write("g1", big);
  dir.Write("g2", big);
  big.back() = 'y';
  dir.Write("g3", big);
  big.back() = 'z';
  big.front() = 'y';
  dir.Write("g4", big);
  ::mkdir(dir.Join("sub").c_str(), 0755);

  struct Case {
    const char* a;
    const char* b;
    bool want;
  };
  const Case cases[] = {
      {"a", "b", true},        {"a", "a", true},           {"a", "c", false},
      {"a", "d", false},       {"vazio1", "vazio2", true}, {"vazio1", "a", false},
      {"g1", "g2", true},      {"g1", "g3", false},        {"g1", "g4", false},
      {"a", "nada", false},    {"nada", "a", false},       {"nada", "nada2", false},
      {"nada", "nada", false}, {"sub", "sub", false},      {"sub", "a", false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(vt.VT_CompararArquivos(dir.U(c.a), dir.U(c.b)), c.want) << c.a << " " << c.b;
  }
  EXPECT_TRUE(vt.VT_CompararArquivos(dir.Win("a"), dir.U("b")));
  EXPECT_FALSE(vt.VT_CompararArquivos(u"", u""));
  EXPECT_FALSE(vt.VT_CompararArquivos(dir.U("a"), u""));
  ASSERT_EQ(::mkfifo(dir.Join("cano").c_str(), 0644), 0);
  EXPECT_FALSE(vt.VT_CompararArquivos(dir.U("cano"), dir.U("cano")));  // and doesn't hang
}

// ---------------------------------------------------------------- INI files

TEST_F(VTSystem, IniFilesReadAndWritten) {
  const String file = dir.U("config.ini");
  EXPECT_EQ(vt.VT_INILer(file, u"Banco", u"Servidor"), u"");  // no file: the default
  EXPECT_FALSE(dir.Exists("config.ini"));

  vt.VT_INIGravar(file, u"Banco", u"Servidor", u"localhost");
  EXPECT_EQ(dir.Read("config.ini"), "[Banco]\nServidor=localhost\n");
  vt.VT_INIGravar(file, u"banco", u"Porta", u"3306");
  vt.VT_INIGravar(dir.Win("config.ini"), u"Usuário", u"Nome", u"João");
  vt.VT_INIGravar(file, u"BANCO", u"SERVIDOR", u"  \"192.168.0.1\"  ");
  EXPECT_EQ(dir.Read("config.ini"),
            "[Banco]\nServidor=  \"192.168.0.1\"  \nPorta=3306\n\n[Usuário]\nNome=João\n");

  EXPECT_EQ(vt.VT_INILer(file, u"banco", u"servidor"), u"192.168.0.1");
  EXPECT_EQ(vt.VT_INILer(dir.Win("config.ini"), u"Banco", u"Porta"), u"3306");
  EXPECT_EQ(vt.VT_INILer(file, u"USUÁRIO", u"nome"), u"João");
  EXPECT_EQ(vt.VT_INILer(file, u"Banco", u"Senha"), u"");
  EXPECT_EQ(vt.VT_INILer(file, u"Nada", u"Porta"), u"");
  EXPECT_EQ(vt.VT_INILer(file, u"", u""), u"");

  // A file from a Windows program: CRLF, comments, 1252, a NUL.
  static constexpr char kWindows[] =
      "; gerado\r\n[Geral]\r\nT\xEDtulo=Relat\xF3rio\r\nNulo=ab\0cd\r\n";
  static constexpr char kWritten[] =
      "; gerado\r\n[Geral]\r\nT\xEDtulo=Relat\xF3rio\r\nNulo=ab\0cd\r\nNova=\xE7\r\n";
  dir.Write("win.ini", std::string_view(kWindows, sizeof kWindows - 1));
  EXPECT_EQ(vt.VT_INILer(dir.U("win.ini"), u"geral", u"título"), u"Relatório");
  EXPECT_EQ(vt.VT_INILer(dir.U("win.ini"), u"geral", u"nulo"), u"ab");
  vt.VT_INIGravar(dir.U("win.ini"), u"Geral", u"Nova", u"ç");
  EXPECT_EQ(dir.Read("win.ini"), std::string_view(kWritten, sizeof kWritten - 1));
}

TEST_F(VTSystem, IniBadInputWritesNothing) {
  vt.VT_INIGravar(dir.U("sem-pasta/config.ini"), u"S", u"K", u"V");
  EXPECT_FALSE(dir.Exists("sem-pasta"));
  vt.VT_INIGravar(u"", u"S", u"K", u"V");
  vt.VT_INIGravar(dir.U("a.ini"), u"", u"K", u"V");
  vt.VT_INIGravar(dir.U("a.ini"), u"S", u"", u"V");
  vt.VT_INIGravar(dir.U("a.ini"), u"S", u"K=1", u"V");
  EXPECT_FALSE(dir.Exists("a.ini"));
  vt.VT_INIGravar(dir.U("a.ini") + String(1, u'\0') + u"x", u"S", u"K", u"V");
  EXPECT_FALSE(dir.Exists("a.ini"));
  vt.VT_INIGravar(dir.U(std::string(300, 'n')), u"S", u"K", u"V");
  EXPECT_EQ(vt.VT_INILer(dir.U(std::string(300, 'n')), u"S", u"K"), u"");
  EXPECT_EQ(vt.VT_INILer(u"", u"S", u"K"), u"");
  // A folder is no INI file, and stays a folder.
  ::mkdir(dir.Join("pasta.ini").c_str(), 0755);
  vt.VT_INIGravar(dir.U("pasta.ini"), u"S", u"K", u"V");
  EXPECT_TRUE(dir.IsDir("pasta.ini"));
  EXPECT_EQ(vt.VT_INILer(dir.U("pasta.ini"), u"S", u"K"), u"");
  // Long names and values go through whole.
  const String key(1000, u'k');
  const String value(20000, u'v');
  vt.VT_INIGravar(dir.U("b.ini"), u"S", key, value);
  EXPECT_EQ(vt.VT_INILer(dir.U("b.ini"), u"s", key), value);
}

// ---------------------------------------------------------------- processes

TEST_F(VTSystem, FindsAndEndsAChildByName) {
  const std::string sleep = SleepProgram();
  ASSERT_FALSE(sleep.empty());
  const std::string name = "vtsono" + std::to_string(::getpid());
  std::filesystem::copy_file(sleep, dir.Join(name));
  ::chmod(dir.Join(name).c_str(), 0755);
  const String uname = FromUtf8(name);

  EXPECT_FALSE(vt.VT_AplicativoSendoExecutado(uname));
  Child child(dir.Join(name), dir.Join(name));
  ASSERT_GT(child.Pid(), 0);
  EXPECT_TRUE(vt.VT_AplicativoSendoExecutado(uname));
  EXPECT_TRUE(vt.VT_AplicativoSendoExecutado(UCase(uname) + u".EXE"));
  EXPECT_TRUE(vt.VT_AplicativoSendoExecutado(u"C:\\Programas\\" + uname + u".exe"));
  EXPECT_TRUE(vt.VT_AplicativoSendoExecutado(dir.U(name)));
  EXPECT_FALSE(vt.VT_AplicativoSendoExecutado(uname + u"x"));
  EXPECT_FALSE(vt.VT_AplicativoSendoExecutado(uname.substr(0, uname.size() - 1)));

  vt.VT_FinalizarProcesso(uname + u"x");  // another name: nothing ends
  EXPECT_TRUE(child.Running());
  vt.VT_FinalizarProcesso(uname);
  EXPECT_FALSE(vt.VT_AplicativoSendoExecutado(uname));  // not reaped yet, yet not running
  EXPECT_EQ(child.EndedBy(), SIGTERM);
}

TEST_F(VTSystem, FindsAChildByTheNameItWasStartedUnder) {
  const std::string sleep = SleepProgram();
  ASSERT_FALSE(sleep.empty());
  // A long name: the kernel's 15-byte copy of it must not be taken for it.
  const std::string name = "vt-processo-de-teste-longo-" + std::to_string(::getpid());
  Child child(sleep, name);
  ASSERT_GT(child.Pid(), 0);
  EXPECT_TRUE(vt.VT_AplicativoSendoExecutado(FromUtf8(name)));
  EXPECT_FALSE(vt.VT_AplicativoSendoExecutado(FromUtf8(name.substr(0, 15))));
  vt.VT_FinalizarProcesso(FromUtf8(name));
  EXPECT_EQ(child.EndedBy(), SIGTERM);
}

TEST_F(VTSystem, ProcessBadInput) {
  const std::string self = std::filesystem::read_symlink("/proc/self/exe").filename().string();
  EXPECT_TRUE(vt.VT_AplicativoSendoExecutado(FromUtf8(self)));
  const String bad[] = {u"",
                        u"/",
                        u"\\",
                        u".exe",
                        String(5000, u'x'),
                        String(1, u'\0'),
                        String(u"a\0b", 3),
                        u"*",
                        u"?",
                        String(1, u'\xDC00')};
  for (const String& name : bad) {
    EXPECT_FALSE(vt.VT_AplicativoSendoExecutado(name)) << ToUtf8(name.substr(0, 50));
    vt.VT_FinalizarProcesso(name);
  }
}

// ---------------------------------------------------------------- shell

class VTShell : public VTSystem {
 protected:
  void SetUp() override {
    VTSystem::SetUp();
    recorder = std::make_unique<Recorder>(dir);
  }
  // Opens a marker, waits for its line, then a little for any stray line
  // that a member should not have started.
  std::string LogAfterMarker() {
    vt.VT_AbrirUrl(u"marcador");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (recorder->Log().find("marcador") == std::string::npos &&
           std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    return recorder->Log();
  }
  std::unique_ptr<Recorder> recorder;
};

TEST_F(VTShell, OpensAddressesWithTheRuleForHttp) {
  const std::pair<String, std::string> cases[] = {
      {u"www.exemplo.com.br", "xdg-open|http://www.exemplo.com.br|"},
      {u"http://exemplo.com.br/a b", "xdg-open|http://exemplo.com.br/a b|"},
      {u"https://exemplo.com.br", "xdg-open|https://exemplo.com.br|"},
      {u"HTTPS://EXEMPLO.COM.BR", "xdg-open|HTTPS://EXEMPLO.COM.BR|"},
      {u"httpbin.org", "xdg-open|httpbin.org|"},  // begins with "http"
      {u"ftp://exemplo.com.br", "xdg-open|http://ftp://exemplo.com.br|"},
      {u"  exemplo.com.br  ", "xdg-open|http://exemplo.com.br|"},
      {u"-x", "xdg-open|http://-x|"},
  };
  size_t lines = 0;
  for (const auto& [url, want] : cases) {
    vt.VT_AbrirUrl(url);
    const std::string log = recorder->WaitFor(++lines);
    const size_t last = log.rfind('\n', log.size() - 2);
    EXPECT_EQ(log.substr(last == std::string::npos ? 0 : last + 1), want + "\n") << ToUtf8(url);
  }
}

TEST_F(VTShell, OpensFilesAndFoldersByTheirFullPath) {
  dir.Write("nota fiscal.pdf", "%PDF");
  dir.Write("-x", "");
  ::mkdir(dir.Join("pasta").c_str(), 0755);
  const std::filesystem::path cwd = std::filesystem::current_path();
  std::filesystem::current_path(dir.Path());

  vt.VT_AbrirArquivo(dir.Win("nota fiscal.pdf"));
  vt.VT_AbrirArquivo(u"-x");  // relative, and no option to the opener
  vt.VT_AbrirArquivo(u"mailto:contato@exemplo.com.br");
  vt.VT_AbrirPasta(dir.U("pasta"));
  vt.VT_AbrirPasta(u"pasta\\");
  const std::string log = recorder->WaitFor(5);
  std::filesystem::current_path(cwd);
  for (const std::string& want :
       {"xdg-open|" + dir.Join("nota fiscal.pdf") + "|\n", "xdg-open|" + dir.Join("-x") + "|\n",
        std::string("xdg-open|mailto:contato@exemplo.com.br|\n"),
        "xdg-open|" + dir.Join("pasta") + "|\n"}) {
    EXPECT_NE(log.find(want), std::string::npos) << want << " in " << log;
  }
}

TEST_F(VTShell, BadInputOpensNothing) {
  vt.VT_AbrirUrl(u"");
  vt.VT_AbrirUrl(u"   ");
  vt.VT_AbrirUrl(String(u"a\0b", 3));
  vt.VT_AbrirArquivo(dir.U("nada.pdf"));
  vt.VT_AbrirArquivo(u"");
  vt.VT_AbrirArquivo(dir.U(std::string(300, 'n')));
  vt.VT_AbrirArquivo(String(u"http://x\0y", 10));
  vt.VT_AbrirPasta(dir.U("nada"));
  vt.VT_AbrirPasta(u"");
  vt.VT_TocarWAV(dir.U("nada.wav"));
  vt.VT_TocarWAV(u"");
  dir.Write("falso.wav", "ID3 não é WAV");
  vt.VT_TocarWAV(dir.U("falso.wav"));
  EXPECT_EQ(LogAfterMarker(), "xdg-open|http://marcador|\n");
}

TEST_F(VTShell, PlaysWavFilesThroughAPlayer) {
  std::string wav = "RIFF";
  wav += std::string("\x24\x00\x00\x00", 4);
  wav += "WAVEfmt ";
  wav += std::string(24, '\0');
  wav += "data";
  wav += std::string(4, '\0');
  dir.Write("som.wav", wav);
  vt.VT_TocarWAV(dir.Win("som.wav"));
  const std::string log = recorder->WaitFor(1);
  const std::string tail = "|" + dir.Join("som.wav") + "|\n";
  EXPECT_TRUE(log.ends_with(tail)) << log;
  EXPECT_TRUE(log.starts_with("paplay|") || log.starts_with("pw-play|") ||
              log.starts_with("aplay|"))
      << log;
}

TEST_F(VTSystem, WithoutAnOpenerNothingHappens) {
  EnvVar launcher("VANTOR_LAUNCHER");
  EnvVar path("PATH");
  launcher.Unset();
  path.Set(dir.Path());
  dir.Write("a.wav", std::string("RIFF\x04\x00\x00\x00WAVE", 12));
  vt.VT_AbrirUrl(u"exemplo.com.br");
  vt.VT_AbrirArquivo(dir.U("a.wav"));
  vt.VT_AbrirPasta(dir.U(""));
  vt.VT_TocarWAV(dir.U("a.wav"));
  int status = 0;
  EXPECT_EQ(::waitpid(-1, &status, WNOHANG), -1);  // nothing was started
}

// ---------------------------------------------------------------- disks and drives

TEST_F(VTSystem, FreeSpaceOfTheFileSystem) {
  struct statvfs vfs {};
  ASSERT_EQ(::statvfs(dir.Path().c_str(), &vfs), 0);
  const double want = static_cast<double>(vfs.f_bavail) * static_cast<double>(vfs.f_frsize);
  // Other programs write meanwhile; a few megabytes either way.
  EXPECT_NEAR(vt.VT_DiscoEspacoLivre(dir.U("")), want, 64.0 * 1024 * 1024);
  EXPECT_NEAR(vt.VT_DiscoEspacoLivre(dir.Win("")), want, 64.0 * 1024 * 1024);
  dir.Write("a.txt", "x");
  EXPECT_NEAR(vt.VT_DiscoEspacoLivre(dir.U("a.txt")), want, 64.0 * 1024 * 1024);
  EXPECT_GT(vt.VT_DiscoEspacoLivre(u"/"), 0.0);
  EXPECT_EQ(vt.VT_DiscoEspacoLivre(u""), 0.0);
  EXPECT_EQ(vt.VT_DiscoEspacoLivre(u"C:"), 0.0);
  EXPECT_EQ(vt.VT_DiscoEspacoLivre(dir.U("nada")), 0.0);
  EXPECT_EQ(vt.VT_DiscoEspacoLivre(dir.U(std::string(300, 'n'))), 0.0);
  EXPECT_EQ(vt.VT_DiscoEspacoLivre(String(u"/\0", 2)), 0.0);
}

TEST_F(VTSystem, DrivesAreMountPoints) {
  ::mkdir(dir.Join("sub").c_str(), 0755);
  EXPECT_TRUE(vt.VT_DriveExiste(u"/"));
  EXPECT_TRUE(vt.VT_DriveExiste(u"\\"));
  EXPECT_EQ(vt.VT_DriveExiste(u"\\proc\\"), HostSystem::IsMountPoint("/proc"));
  EXPECT_FALSE(vt.VT_DriveExiste(dir.U("sub")));
  EXPECT_FALSE(vt.VT_DriveExiste(dir.U("nada")));
  for (const char16_t* drive : {u"C", u"C:", u"C:\\", u"c:/", u"Z:\\", u"", u"*"}) {
    EXPECT_FALSE(vt.VT_DriveExiste(drive)) << ToUtf8(drive);
  }
}

// ---------------------------------------------------------------- environment

TEST_F(VTSystem, TemporaryFolderFromTheEnvironment) {
  EnvVar temp("TEMP");
  EnvVar tmpdir("TMPDIR");
  temp.Set("/srv/temporario");
  tmpdir.Set("/var/tmp");
  EXPECT_EQ(vt.VT_DiretorioTemporario(), u"/srv/temporario");
  temp.Unset();
  EXPECT_EQ(vt.VT_DiretorioTemporario(), u"/var/tmp");
  tmpdir.Set("");
  EXPECT_EQ(vt.VT_DiretorioTemporario(), u"/tmp");
  tmpdir.Unset();
  EXPECT_EQ(vt.VT_DiretorioTemporario(), u"/tmp");
  EnvVar lower("temp");  // Windows reads names without regard to case
  lower.Set("/minusculo");
  EXPECT_EQ(vt.VT_DiretorioTemporario(), u"/minusculo");
}

TEST_F(VTSystem, UserFolderFromTheEnvironment) {
  EnvVar profile("USERPROFILE");
  EnvVar mixed("UserProfile");
  EnvVar home("HOME");
  mixed.Unset();
  profile.Set("/perfil/joão");
  home.Set("/home/joao");
  EXPECT_EQ(vt.VT_DiretorioUsuario(), u"/perfil/joão");
  profile.Unset();
  EXPECT_EQ(vt.VT_DiretorioUsuario(), u"/home/joao");
  home.Unset();
  const passwd* pw = ::getpwuid(::geteuid());
  EXPECT_EQ(vt.VT_DiretorioUsuario(), pw ? FromUtf8(pw->pw_dir) : String());
}

TEST_F(VTSystem, WindowsFolderOnlyWhereTheEnvironmentNamesOne) {
  EnvVar windir("windir");
  EnvVar upper("WINDIR");
  EnvVar root("SystemRoot");
  EnvVar rootUpper("SYSTEMROOT");
  windir.Unset();
  upper.Unset();
  root.Unset();
  rootUpper.Unset();
  EXPECT_EQ(vt.VT_DiretorioWindows(), u"");
  root.Set("/opt/windows");
  EXPECT_EQ(vt.VT_DiretorioWindows(), u"/opt/windows");
  upper.Set("/srv/win");
  EXPECT_EQ(vt.VT_DiretorioWindows(), u"/srv/win");
}

// ---------------------------------------------------------------- the machine

TEST_F(VTSystem, MachineFacts) {
  EXPECT_EQ(vt.VT_WindowsAdministrador(), ::geteuid() == 0);
  if constexpr (sizeof(void*) == 8) {
    EXPECT_TRUE(vt.VT_Windos64Bits());
  }

  const Variant serial = vt.VT_SerialHD();
  const auto want = HostSystem::VolumeSerial();
  if (want) {
    ASSERT_EQ(serial.Type(), vbLong);
    EXPECT_EQ(serial.ToLong(), *want);
  } else {
    EXPECT_TRUE(serial.IsEmpty());
  }

  EXPECT_EQ(vt.VT_InternetOnline(), HostSystem::Online());
  // Nothing to start; must not fail.
  vt.VT_IniciarCommonControls();
}

TEST_F(VTSystem, OutsideServersAreAbsent) {
  dir.Write("imagem.tif", "II*");
  dir.Write("doc.doc", "x");
  EXPECT_EQ(vt.VT_LerOCR(dir.U("imagem.tif"), 2048), u"");
  EXPECT_EQ(vt.VT_LerOCR(u"", 0), u"");
  EXPECT_FALSE(vt.VT_ArquivoParaHTML(dir.U("doc.doc"), dir.U("doc.html")));
  EXPECT_FALSE(dir.Exists("doc.html"));
  EXPECT_EQ(vt.VT_SelecionarPasta(nullptr, u"Escolha", dir.U(""), true), u"");
}

struct ErrorCase {
  int32_t code;
  const char16_t* portuguese;
  const char16_t* english;
};

TEST(VTErrors, TranslatesThePlatformsCodes) {
  const VT vt;
  const ErrorCase cases[] = {
      {0, u"A operação foi concluída com sucesso.", u"The operation completed successfully."},
      {2, u"O arquivo não foi encontrado.", u"The file was not found."},
      {3, u"O caminho não foi encontrado.", u"The path was not found."},
      {5, u"Acesso negado.", u"Access is denied."},
      {87, u"Um parâmetro não é válido.", u"A parameter is not valid."},
      {112, u"Não há espaço suficiente no disco.", u"There is not enough space on the disk."},
      {1400, u"O identificador de janela não é válido.", u"The window handle is not valid."},
      {1418, u"A área de transferência não está aberta.", u"The clipboard is not open."},
      {static_cast<int32_t>(0x80070005), u"Acesso negado.", u"Access is denied."},
      {static_cast<int32_t>(0x80070002), u"O arquivo não foi encontrado.",
       u"The file was not found."},
      {static_cast<int32_t>(0x80004005), u"Erro não especificado.", u"Unspecified error."},
      {7, u"", u""},  // unknown codes have no text
      {99999, u"", u""},
      {-1, u"", u""},
      {static_cast<int32_t>(0x80070007), u"", u""},
      {static_cast<int32_t>(0x80000000), u"", u""},
      {INT32_MAX, u"", u""},
  };
  Locale::Set(Locale::Id::ptBR);
  for (const ErrorCase& c : cases)
    EXPECT_EQ(vt.VT_TraduzirDescricaoErro(c.code), c.portuguese) << c.code;
  Locale::Set(Locale::Id::enUS);
  for (const ErrorCase& c : cases)
    EXPECT_EQ(vt.VT_TraduzirDescricaoErro(c.code), c.english) << c.code;
  Locale::FromEnvironment();
}

// ---------------------------------------------------------------- windows

class VTWindows : public ::testing::Test {
 protected:
  void SetUp() override {
    platform::ResetDesktop();
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.lpfnWndProc = DefWindowProcW;
    wc.lpszClassName = u"VTSystemTestWindow";
    ASSERT_NE(RegisterClassExW(&wc), 0);
  }
  void TearDown() override { platform::ResetDesktop(); }
  static HWND Make(DWORD style, HWND parent = nullptr) {
    return CreateWindowExW(0, u"VTSystemTestWindow", u"janela", style, 10, 10, 100, 80, parent,
                           nullptr, nullptr, nullptr);
  }
  static int32_t AsLong(HWND h) { return static_cast<int32_t>(reinterpret_cast<uintptr_t>(h)); }
  static bool TopMost(HWND h) { return (GetWindowLongW(h, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0; }
  VT vt;
};

TEST_F(VTWindows, AlwaysOnTopByTheHandlesLong) {
  const HWND form = Make(WS_POPUP | WS_VISIBLE);
  const HWND other = Make(WS_POPUP | WS_VISIBLE);
  ASSERT_NE(form, nullptr);
  RECT before{};
  GetWindowRect(form, &before);
  vt.VT_FormularioSempreVisivel(AsLong(form), true);
  EXPECT_TRUE(TopMost(form));
  EXPECT_FALSE(TopMost(other));
  RECT after{};
  GetWindowRect(form, &after);
  EXPECT_EQ(after.left, before.left);  // neither moved nor sized
  EXPECT_EQ(after.right, before.right);
  EXPECT_EQ(after.bottom, before.bottom);
  vt.VT_FormularioSempreVisivel(AsLong(form), false);
  EXPECT_FALSE(TopMost(form));
}

TEST_F(VTWindows, NoWindowNoHarm) {
  const HWND form = Make(WS_POPUP | WS_VISIBLE);
  const int32_t gone = AsLong(Make(WS_POPUP));
  DestroyWindow(reinterpret_cast<HWND>(static_cast<uintptr_t>(static_cast<uint32_t>(gone))));
  for (int32_t h : {0, 1, -1, -2, 12345, INT32_MAX, INT32_MIN, gone}) {
    vt.VT_FormularioSempreVisivel(h, true);
    vt.VT_FormularioPiscar(h, true);
    vt.VT_FormularioNaBarraTarefas(h);
  }
  EXPECT_FALSE(TopMost(form));
  vt.VT_FormularioPiscar(AsLong(form), true);
  vt.VT_FormularioPiscar(AsLong(form), false);
  vt.VT_FormularioNaBarraTarefas(AsLong(form));
  EXPECT_TRUE(IsWindow(form));
  EXPECT_FALSE(TopMost(form));
}

// ---------------------------------------------------------------- through the dispatcher

TEST_F(VTSystem, ReachedLateBound) {
  VT::Register();
  server::DispatchPtr obj = server::Registry::Instance().Create("VT");
  ASSERT_NE(obj, nullptr);
  dir.Write("a.txt", "x");

  EXPECT_EQ(server::Call(*obj, "VT_ArquivoExiste", dir.U("a.txt")).ToBoolean(), true);  // default
  EXPECT_EQ(server::Call(*obj, "VT_ArquivoExiste", dir.U("a.txt"), true).ToBoolean(), false);
  EXPECT_EQ(server::Call(*obj, "VT_DiretorioExiste", dir.U("")).ToBoolean(), true);
  EXPECT_EQ(server::Call(*obj, "VT_ArquivoCaminho", u"C:\\a\\b.txt").ToString(), u"C:\\a");
  EXPECT_EQ(server::Call(*obj, "VT_ArquivoExtensao", u"b.txt").ToString(), u".txt");

  server::Call(*obj, "VT_INIGravar", dir.U("d.ini"), u"S", u"K", 42);  // a number as text
  EXPECT_EQ(server::Call(*obj, "VT_INILer", dir.U("d.ini"), u"s", u"k").ToString(), u"42");

  const Variant free = server::Call(*obj, "VT_DiscoEspacoLivre", dir.U(""));
  EXPECT_EQ(free.Type(), vbDouble);
  EXPECT_GT(free.ToDouble(), 0.0);
  EXPECT_EQ(server::Call(*obj, "VT_SerialHD").Type(),
            HostSystem::VolumeSerial() ? vbLong : vbEmpty);
  EXPECT_EQ(server::Call(*obj, "VT_TraduzirDescricaoErro", int32_t{2}).ToString(),
            u"O arquivo não foi encontrado.");
  EXPECT_EQ(server::Call(*obj, "VT_TraduzirDescricaoErro", u"5").ToString(), u"Acesso negado.");
  EXPECT_EQ(server::Call(*obj, "VT_LerOCR", dir.U("a.txt")).ToString(), u"");  // default language
  EXPECT_EQ(server::Call(*obj, "VT_SelecionarPasta", Variant(ObjectPtr()), u"t", u"/").ToString(),
            u"");

  Err().Clear();
  server::Call(*obj, "VT_CriarDiretorio", dir.U("nova"));
  EXPECT_TRUE(dir.IsDir("nova"));
  server::Call(*obj, "VT_ApagarArquivo", dir.U("a.txt"));
  EXPECT_FALSE(dir.Exists("a.txt"));
  EXPECT_EQ(Err().Number(), 0);
  EXPECT_EQ(server::Call(*obj, "VT_WindowsAdministrador").ToBoolean(), ::geteuid() == 0);
}

}  // namespace
}  // namespace vantor::services
