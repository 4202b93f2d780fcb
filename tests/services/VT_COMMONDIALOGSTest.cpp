#include "services/VT_COMMONDIALOGS.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

#include "platform/User.h"
#include "server/Registry.h"

namespace vantor::services {
namespace {

using Dialogs = VT_COMMONDIALOGS;
using namespace std::string_literals;

// A dialog that records what it was asked and gives a prepared answer.
struct FakeDialog {
  bool choose = true;
  String answer;
  int32_t newFilterIndex = -1;
  bool throws = false;
  int calls = 0;
  std::optional<Dialogs::FileDialogRequest> seen;

  Dialogs::FileDialogService Service() {
    return [this](Dialogs::FileDialogRequest& r, String& out) {
      ++calls;
      seen = r;
      if (throws) throw std::runtime_error("dialog broke");
      if (newFilterIndex >= 0) r.filterIndex = newFilterIndex;
      out = answer;
      return choose;
    };
  }
};

class CommonDialogs : public ::testing::Test {
 protected:
  void TearDown() override { Dialogs::SetFileDialogService(nullptr); }
};

TEST_F(CommonDialogs, WithoutADialogServiceTheAnswerIsCancel) {
  Dialogs d;
  d.put_FileName(u"inicial.txt");
  for (wModeType mode : {OpenFile, SaveFile}) {
    d.DialogFile(mode);
    EXPECT_TRUE(d.get_Cancel());
    EXPECT_EQ(d.get_FullPath(), u"");
    EXPECT_EQ(d.get_Path(), u"");
    EXPECT_EQ(d.get_FileName(), u"inicial.txt");
  }
}

TEST_F(CommonDialogs, FilterBecomesNulSeparatedPairs) {
  const struct {
    String filter, expected;
  } cases[] = {
      {u"", u"\0\0"s},
      {u"Texto (*.txt)|*.txt", u"Texto (*.txt)\0*.txt\0\0"s},
      {u"Texto|*.txt|Todos|*.*", u"Texto\0*.txt\0Todos\0*.*\0\0"s},
      {u"Imagens|*.png;*.jpg|", u"Imagens\0*.png;*.jpg\0\0\0"s},
      {u"||", u"\0\0\0\0"s},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Dialogs::FilterForDialog(c.filter), c.expected) << ToUtf8(c.filter);
}

TEST_F(CommonDialogs, TitlesAndFlags) {
  EXPECT_EQ(Dialogs::TitleForDialog(OpenFile, u""), u"Abrir Arquivo");
  EXPECT_EQ(Dialogs::TitleForDialog(SaveFile, u""), u"Salvar Arquivo");
  EXPECT_EQ(Dialogs::TitleForDialog(SaveFile, u"Exportar relatório"), u"Exportar relatório");
  const struct {
    wModeType mode;
    int32_t flags;
    bool multiple;
    int32_t expected;
  } cases[] = {
      {OpenFile, 0, false, 6148},  // path and file must exist, read-only box hidden
      {SaveFile, 0, false, 2054},  // overwrite prompt, read-only box hidden, path must exist
      {OpenFile, 4, false, 4},     // the host's own flags replace the defaults
      {SaveFile, 0x800, false, 0x800},
      {OpenFile, 0, true, 6148 | 0x200 | 0x80000},
      {SaveFile, 2, true, 2 | 0x200 | 0x80000},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Dialogs::FlagsForDialog(c.mode, c.flags, c.multiple), c.expected);
  }
}

TEST_F(CommonDialogs, TheRequestCarriesTheProperties) {
  FakeDialog fake;
  fake.answer = u"C:\\Dados\\relatorio.txt";
  Dialogs::SetFileDialogService(fake.Service());
  Dialogs d;
  d.put_Filter(u"Texto|*.txt");
  d.put_FilterIndex(1);
  d.put_FileName(u"relatorio");
  d.put_DefaultEXT(u"txt");
  d.put_hwnd(4242);
  d.DialogFile(SaveFile);
  ASSERT_TRUE(fake.seen);
  EXPECT_EQ(fake.seen->mode, SaveFile);
  EXPECT_EQ(fake.seen->title, u"Salvar Arquivo");
  EXPECT_EQ(fake.seen->filter, u"Texto\0*.txt\0\0"s);
  EXPECT_EQ(fake.seen->filterIndex, 1);
  EXPECT_EQ(fake.seen->initialName, u"relatorio");
  EXPECT_EQ(fake.seen->nameCapacity, 204800u);
  EXPECT_EQ(fake.seen->titleCapacity, 255u);
  EXPECT_EQ(fake.seen->defaultExt, u"txt");
  EXPECT_EQ(fake.seen->owner, 4242);
  EXPECT_EQ(fake.seen->flags, 2054);
  d.put_FileFlags(0x1000);
  d.DialogFile(OpenFile, u"Escolha o arquivo");
  EXPECT_EQ(fake.seen->title, u"Escolha o arquivo");
  EXPECT_EQ(fake.seen->flags, 0x1000);
  EXPECT_EQ(fake.seen->initialName, u"relatorio.txt");  // the last answer's name
}

TEST_F(CommonDialogs, AnswersAreSplitAtTheLastSeparator) {
  const struct {
    String answer;
    String fileName, path, fullPath;
  } cases[] = {
      {u"C:\\Dados\\relatorio.txt", u"relatorio.txt", u"C:\\Dados", u"C:\\Dados\\relatorio.txt"},
      {u"C:\\a\\b\\c.d.e", u"c.d.e", u"C:\\a\\b", u"C:\\a\\b\\c.d.e"},
      {u"C:\\a\\b.txt\0lixo depois"s, u"b.txt", u"C:\\a", u"C:\\a\\b.txt"},
      {u"C:\\raiz.txt", u"raiz.txt", u"C:\\", u"C:\\raiz.txt"},
      {u"/home/ana/notas.txt", u"notas.txt", u"/home/ana", u"/home/ana/notas.txt"},
      {u"/notas.txt", u"notas.txt", u"/", u"/notas.txt"},
      {u"sem-pasta.txt", u"sem-pasta.txt", u"", u"sem-pasta.txt"},
      {u"\\\\servidor\\share\\x.csv", u"x.csv", u"\\\\servidor\\share",
       u"\\\\servidor\\share\\x.csv"},
      {u"C:\\Pasta\\", u"", u"C:\\Pasta", u"C:\\Pasta\\"},
  };
  FakeDialog fake;
  Dialogs::SetFileDialogService(fake.Service());
  for (const auto& c : cases) {
    fake.answer = c.answer;
    Dialogs d;
    d.DialogFile(OpenFile);
    EXPECT_FALSE(d.get_Cancel()) << ToUtf8(c.answer);
    EXPECT_EQ(d.get_FileName(), c.fileName) << ToUtf8(c.answer);
    EXPECT_EQ(d.get_Path(), c.path) << ToUtf8(c.answer);
    EXPECT_EQ(d.get_FullPath(), c.fullPath) << ToUtf8(c.answer);
  }
}

TEST_F(CommonDialogs, MultipleSelectionListsEveryName) {
  FakeDialog fake;
  Dialogs::SetFileDialogService(fake.Service());
  Dialogs d;
  d.put_MultipleFiles(true);
  fake.answer = u"C:\\Dados\0a.txt\0b.txt\0c d.txt\0\0"s;
  d.DialogFile(OpenFile);
  EXPECT_EQ(fake.seen->flags & 0x80200, 0x80200);
  EXPECT_FALSE(d.get_Cancel());
  EXPECT_EQ(d.get_Path(), u"C:\\Dados");
  EXPECT_EQ(d.get_FileName(), u"a.txt|b.txt|c d.txt");
  EXPECT_EQ(d.get_FullPath(), u"C:\\Dados\\a.txt|C:\\Dados\\b.txt|C:\\Dados\\c d.txt");
  // One name chosen: the platform answers a full path, as without the flag.
  fake.answer = u"C:\\Dados\\a.txt\0\0"s;
  d.DialogFile(OpenFile);
  EXPECT_EQ(d.get_Path(), u"C:\\Dados");
  EXPECT_EQ(d.get_FileName(), u"a.txt");
  EXPECT_EQ(d.get_FullPath(), u"C:\\Dados\\a.txt");
  // A root folder already ends in its separator; a Linux folder joins with "/".
  fake.answer = u"C:\\\0x.txt\0y.txt\0"s;
  d.DialogFile(OpenFile);
  EXPECT_EQ(d.get_FullPath(), u"C:\\x.txt|C:\\y.txt");
  fake.answer = u"/home/ana\0x.txt\0y.txt\0"s;
  d.DialogFile(OpenFile);
  EXPECT_EQ(d.get_FullPath(), u"/home/ana/x.txt|/home/ana/y.txt");
}

TEST_F(CommonDialogs, CancelAndBrokenDialogsChooseNothing) {
  FakeDialog fake;
  Dialogs::SetFileDialogService(fake.Service());
  Dialogs d;
  fake.answer = u"C:\\a.txt";
  d.DialogFile(OpenFile);
  ASSERT_FALSE(d.get_Cancel());

  fake.choose = false;
  d.DialogFile(OpenFile);
  EXPECT_TRUE(d.get_Cancel());
  EXPECT_EQ(d.get_FullPath(), u"");
  EXPECT_EQ(d.get_Path(), u"");

  fake.choose = true;
  fake.answer = u"\0C:\\a.txt"s;  // nothing before the first NUL
  d.DialogFile(OpenFile);
  EXPECT_TRUE(d.get_Cancel());

  fake.answer = u"C:\\a.txt";
  fake.throws = true;
  d.DialogFile(OpenFile);
  EXPECT_TRUE(d.get_Cancel());
  EXPECT_EQ(d.get_FullPath(), u"");

  // A mode that is neither open nor save opens nothing.
  fake.throws = false;
  const int before = fake.calls;
  d.DialogFile(static_cast<wModeType>(0));
  d.DialogFile(static_cast<wModeType>(3));
  EXPECT_EQ(fake.calls, before);
  EXPECT_TRUE(d.get_Cancel());
}

TEST_F(CommonDialogs, FilterIndexAndOversizedAnswers) {
  FakeDialog fake;
  Dialogs::SetFileDialogService(fake.Service());
  Dialogs d;
  d.put_FilterIndex(1);
  fake.newFilterIndex = 2;
  fake.answer = u"C:\\x.png";
  d.DialogFile(OpenFile);
  EXPECT_EQ(d.get_FilterIndex(), 2);
  fake.choose = false;
  fake.newFilterIndex = 3;
  d.DialogFile(OpenFile);
  EXPECT_EQ(d.get_FilterIndex(), 2);  // a cancelled dialog answers nothing

  fake.choose = true;
  fake.answer = u"C:\\" + String(300000, u'n');
  d.DialogFile(OpenFile);
  EXPECT_FALSE(d.get_Cancel());
  EXPECT_EQ(d.get_FullPath().size(), Dialogs::kNameBufferSize - 1);
  // A starting name longer than the buffer is cut to it.
  d.put_FileName(String(300000, u'i'));
  d.DialogFile(OpenFile);
  EXPECT_EQ(fake.seen->initialName.size(), Dialogs::kNameBufferSize - 1);
}

TEST_F(CommonDialogs, DefaultsColoursAndFont) {
  Dialogs d;
  EXPECT_EQ(d.get_Font(), u"Arial");
  EXPECT_TRUE(d.get_Cancel());
  EXPECT_EQ(d.get_FileFlags(), 0);
  for (int32_t i = 0; i < 16; ++i) EXPECT_EQ(d.get_CustomColor(i), GetSysColor(i)) << i;
  d.put_CustomColor(3, 0x00123456);
  EXPECT_EQ(d.get_CustomColor(3), 0x00123456u);
  d.put_CustomColor(16, 0x00FFFFFF);
  d.put_CustomColor(-1, 0x00FFFFFF);
  EXPECT_EQ(d.get_CustomColor(16), 0u);
  EXPECT_EQ(d.get_CustomColor(-1), 0u);
  EXPECT_EQ(d.get_CustomColor(1000000), 0u);
}

class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    if (value) {
      ::setenv(name, value, 1);
    } else {
      ::unsetenv(name);
    }
  }
  ~ScopedEnv() {
    if (old_) {
      ::setenv(name_, old_->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

TEST_F(CommonDialogs, DefaultPrinter) {
  const struct {
    String entry, name;
  } cases[] = {
      {u"HP LaserJet 1020,winspool,Ne00:", u"HP LaserJet 1020"},
      {u"Impressora", u"Impressora"},
      {u"", u""},
      {u",winspool,LPT1:", u""},
      {u"PDF,winspool\0lixo"s, u"PDF"},
  };
  for (const auto& c : cases) EXPECT_EQ(Dialogs::PrinterFromDeviceEntry(c.entry), c.name);

  const auto home =
      std::filesystem::temp_directory_path() / ("vt_cd_" + std::to_string(::getpid()));
  std::filesystem::create_directories(home / ".cups");
  {
    Dialogs d;
    ScopedEnv printer("PRINTER", "Recepcao");
    EXPECT_EQ(d.GetDefaultPrinter(), u"Recepcao");
    ScopedEnv noPrinter("PRINTER", nullptr);
    ScopedEnv userHome("HOME", home.c_str());
    std::ofstream(home / ".cups" / "lpoptions")
        << "Dest Outra\nDefault Escritorio/rascunho sides=one-sided\n";
    EXPECT_EQ(d.GetDefaultPrinter(), u"Escritorio");
    EXPECT_EQ(server::Call(d, "GetDefaultPrinter").ToString(), u"Escritorio");
  }
  std::filesystem::remove_all(home);
}

TEST_F(CommonDialogs, LateBoundProperties) {
  Dialogs::Register();
  server::DispatchPtr d = server::Registry::Instance().Create("VT_COMMONDIALOGS");
  ASSERT_NE(d, nullptr);
  for (const auto& m : d->Info().dispatch.members) {
    const bool method = m.name == "DialogFile" || m.name == "GetDefaultPrinter";
    EXPECT_TRUE(d->Implements(
        m.name, method ? server::InvokeKind::Method : server::InvokeKind::PropertyGet))
        << m.name;
  }
  auto put = [&](std::string_view name, Variant v) {
    Variant args[] = {std::move(v)};
    return d->Invoke(name, server::InvokeKind::PropertyPut, args);
  };
  auto get = [&](std::string_view name) {
    Variant r;
    d->Invoke(name, server::InvokeKind::PropertyGet, {}, &r);
    return r;
  };
  ASSERT_TRUE(put("Filter", String(u"Todos|*.*")));
  EXPECT_EQ(get("Filter").ToString(), u"Todos|*.*");
  ASSERT_TRUE(put("FontSize", 12.5));
  EXPECT_FLOAT_EQ(get("FontSize").ToSingle(), 12.5f);
  ASSERT_TRUE(put("MultipleFiles", true));
  EXPECT_TRUE(get("MultipleFiles").ToBoolean());
  Err().Clear();
  EXPECT_FALSE(put("FullPath", String(u"x")));  // read only
  EXPECT_EQ(Err().Number(), server::errReadOnlyProperty);
  Variant index[] = {Variant(2), Variant(int32_t{255})};
  ASSERT_TRUE(d->Invoke("CustomColor", server::InvokeKind::PropertyPut, index));
  Variant r;
  Variant at[] = {Variant(2)};
  ASSERT_TRUE(d->Invoke("CustomColor", server::InvokeKind::PropertyGet, at, &r));
  EXPECT_EQ(r.ToLong(), 255);

  FakeDialog fake;
  fake.answer = u"C:\\Dados\0a.txt\0b.txt\0\0"s;
  Dialogs::SetFileDialogService(fake.Service());
  server::Call(*d, "DialogFile", 1);  // the title omitted
  EXPECT_EQ(fake.seen->title, u"Abrir Arquivo");
  EXPECT_FALSE(get("Cancel").ToBoolean());
  EXPECT_EQ(get("FileName").ToString(), u"a.txt|b.txt");
  EXPECT_EQ(get("Path").ToString(), u"C:\\Dados");
}

}  // namespace
}  // namespace vantor::services
