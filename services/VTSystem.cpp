// The members of VT that reach the operating system. On Linux they do what a
// user of the system expects of them, member by member as docs/vt-on-linux.md
// tells; paths take "\" as well as "/", since the host's code was written
// for Windows. None raises: a failure gives the empty or false result.
#include "services/VT.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "platform/FilePath.h"
#include "platform/User.h"
#include "runtime/Strings.h"
#include "services/HostSystem.h"
#include "services/IniFile.h"
#include "services/ProcessTable.h"
#include "services/ShellLauncher.h"
#include "services/SystemMessages.h"

namespace vantor::services {
namespace {

template <class R, class F>
R Guarded(R fallback, F&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return fallback;
  }
}

template <class F>
void GuardedVoid(F&& body) noexcept {
  try {
    body();
  } catch (...) {
  }
}

std::optional<std::string> NativePath(StringView path) {
  std::string native = platform::FilePath::Native(path);
  if (native.empty()) return std::nullopt;
  return native;
}

std::optional<struct stat> StatOf(StringView path) {
  const auto native = NativePath(path);
  struct stat st {};
  if (!native || ::stat(native->c_str(), &st) != 0) return std::nullopt;
  return st;
}

// The absolute path, so that a program started on it never reads a name
// beginning with "-" as an option.
std::optional<std::string> Absolute(StringView path) {
  const auto native = NativePath(path);
  if (!native) return std::nullopt;
  char* real = ::realpath(native->c_str(), nullptr);
  if (real == nullptr) return std::nullopt;
  std::string out(real);
  std::free(real);
  return out;
}

// The platform's handles are table values that fit in 32 bits; the host
// keeps them in a Long.
HWND WindowOf(int32_t hwnd) {
  return reinterpret_cast<HWND>(static_cast<uintptr_t>(static_cast<uint32_t>(hwnd)));
}

mode_t CurrentUmask() {
  // Read without changing it where the kernel tells it.
  const int fd = ::open("/proc/self/status", O_RDONLY | O_CLOEXEC);
  if (fd >= 0) {
    std::string text;
    char buffer[4096];
    ssize_t n;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0) text.append(buffer, static_cast<size_t>(n));
    ::close(fd);
    const size_t at = text.find("\nUmask:");
    if (at != std::string::npos) {
      return static_cast<mode_t>(std::strtoul(text.c_str() + at + 7, nullptr, 8) & 0777);
    }
  }
  const mode_t mask = ::umask(022);
  ::umask(mask);
  return mask;
}

bool IsWavFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat st {};
  char head[12] = {};
  const bool ok = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) &&
                  ::read(fd, head, sizeof head) == static_cast<ssize_t>(sizeof head);
  ::close(fd);
  return ok && std::string_view(head, 4) == "RIFF" && std::string_view(head + 8, 4) == "WAVE";
}

bool SameContent(const std::string& a, const std::string& b) {
  const int fa = ::open(a.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fa < 0) return false;
  const int fb = ::open(b.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fb < 0) {
    ::close(fa);
    return false;
  }
  struct stat sa {};
  struct stat sb {};
  bool same = ::fstat(fa, &sa) == 0 && ::fstat(fb, &sb) == 0 && S_ISREG(sa.st_mode) &&
              S_ISREG(sb.st_mode) && sa.st_size == sb.st_size;
  if (same && !(sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino)) {
    std::vector<char> ba(65536);
    std::vector<char> bb(65536);
    for (;;) {
      const ssize_t na = ::read(fa, ba.data(), ba.size());
      if (na < 0) {
        same = false;
        break;
      }
      if (na == 0) break;
      // A regular file gives all that is asked for but at its end; read
      // the other one to the same length.
      ssize_t nb = 0;
      while (nb < na) {
        const ssize_t r = ::read(fb, bb.data() + nb, static_cast<size_t>(na - nb));
        if (r <= 0) break;
        nb += r;
      }
      if (nb != na || !std::equal(ba.begin(), ba.begin() + na, bb.begin())) {
        same = false;
        break;
      }
    }
  }
  ::close(fa);
  ::close(fb);
  return same;
}

bool Open(const std::string& target) {
  return ShellLauncher::Start("xdg-open", {target});
}

}  // namespace

// No OCR server nor word processor is reached by name here.
String VT::VT_LerOCR(const String&, int32_t) const {
  return {};
}

bool VT::VT_ArquivoParaHTML(const String&, const String&) const {
  return false;
}

void VT::VT_TocarWAV(const String& Arquivo) const {
  GuardedVoid([&] {
    const auto path = Absolute(Arquivo);
    // The platform plays WAV files only; a player would read anything else
    // as raw samples and make noise of it.
    if (!path || !IsWavFile(*path)) return;
    std::string player;
    for (const char* name : {"paplay", "pw-play", "aplay"}) {
      if (!ShellLauncher::FindProgram(name).empty()) {
        player = name;
        break;
      }
    }
    if (player.empty()) {
      if (!ShellLauncher::Available("paplay")) return;
      player = "paplay";
    }
    ShellLauncher::Start(player, {*path});
  });
}

void VT::VT_FormularioSempreVisivel(int32_t hwnd, bool SempreVisivel) const {
  GuardedVoid([&] {
    const HWND window = WindowOf(hwnd);
    if (hwnd == 0 || !IsWindow(window)) return;
    SetWindowPos(window, SempreVisivel ? HWND_TOPMOST : HWND_NOTOPMOST, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE);
  });
}

void VT::VT_FinalizarProcesso(const String& NomeProcesso) const {
  GuardedVoid([&] { ProcessTable::End(NomeProcesso); });
}

// There is no folder browser without a dialog service: the user chose nothing.
String VT::VT_SelecionarPasta(const ObjectPtr&, const String&, const String&, bool) const {
  return {};
}

bool VT::VT_AplicativoSendoExecutado(const String& NomeProcesso) const {
  return Guarded(false, [&] { return !ProcessTable::Find(NomeProcesso).empty(); });
}

void VT::VT_ArquivoAtributo(const String& Arquivo, bool, bool, bool TipoSomenteLeitura,
                            bool) const {
  GuardedVoid([&] {
    const auto native = NativePath(Arquivo);
    struct stat st {};
    // A folder's read-only mark on Windows doesn't stop files being made in
    // it, so a folder's mode is left alone. Archive, hidden and system have
    // no meaning here.
    if (!native || ::stat(native->c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return;
    mode_t mode = st.st_mode & 07777;
    if (TipoSomenteLeitura) {
      mode &= static_cast<mode_t>(~0222);
    } else {
      // Writable again as a new file would be, and by its owner at least.
      mode |= static_cast<mode_t>(S_IWUSR | (0222 & ~CurrentUmask()));
    }
    if (mode != (st.st_mode & 07777)) ::chmod(native->c_str(), mode);
  });
}

String VT::VT_ArquivoExtensao(const String& Arquivo) const {
  return Guarded(String(), [&] {
    const size_t dot = Arquivo.rfind(u'.');
    return dot == String::npos ? String() : Arquivo.substr(dot);
  });
}

String VT::VT_ArquivoCaminho(const String& Arquivo) const {
  return Guarded(String(), [&] {
    size_t cut = Arquivo.find_last_of(u"/\\");
    if (cut == String::npos) return String();
    // Doubled separators before the name go with it.
    while (cut > 0 && (Arquivo[cut - 1] == u'/' || Arquivo[cut - 1] == u'\\')) --cut;
    // A root keeps its separator: "/" alone, or a drive's "C:\".
    if (cut == 0) return Arquivo.substr(0, 1);
    if (cut == 2 && Arquivo[1] == u':') return Arquivo.substr(0, 3);
    return Arquivo.substr(0, cut);
  });
}

bool VT::VT_Windos64Bits() const {
  if constexpr (sizeof(void*) == 8) return true;
  struct utsname u {};
  if (::uname(&u) != 0) return false;
  const std::string_view machine(u.machine);
  return machine.find("64") != std::string_view::npos || machine == "s390x";
}

void VT::VT_AbrirUrl(const String& Url) const {
  GuardedVoid([&] {
    const String url = Trim(Url);
    if (url.empty() || url.find(u'\0') != String::npos) return;
    // The scheme's case doesn't matter to a browser; "HTTPS://" needs no prefix.
    const bool http = LCase(Left(url, 4)) == u"http";
    Open(ToUtf8(http ? url : u"http://" + url));
  });
}

void VT::VT_AbrirArquivo(const String& Arquivo) const {
  GuardedVoid([&] {
    if (const auto path = Absolute(Arquivo)) {
      Open(*path);
      return;
    }
    // The platform's shell opens addresses given as documents as well.
    if (Arquivo.find(u'\0') == String::npos &&
        (Arquivo.find(u"://") != String::npos || LCase(Left(Arquivo, 7)) == u"mailto:")) {
      Open(ToUtf8(Arquivo));
    }
  });
}

void VT::VT_AbrirPasta(const String& Caminho) const {
  GuardedVoid([&] {
    if (const auto path = Absolute(Caminho)) Open(*path);
  });
}

void VT::VT_ApagarArquivo(const String& Arquivo) const {
  GuardedVoid([&] {
    const auto native = NativePath(Arquivo);
    struct stat st {};
    // Removing needs no write permission on the file itself, so there are no
    // attributes to clear first; a folder is no file to delete.
    if (!native || ::lstat(native->c_str(), &st) != 0 || S_ISDIR(st.st_mode)) return;
    ::unlink(native->c_str());
  });
}

bool VT::VT_ArquivoOuDiretorioExiste(const String& Caminho) const {
  return Guarded(false, [&] { return StatOf(Caminho).has_value(); });
}

bool VT::VT_ArquivoExiste(const String& Arquivo, bool SomenteDiretorio) const {
  return Guarded(false, [&] {
    const auto st = StatOf(Arquivo);
    return st && S_ISDIR(st->st_mode) == SomenteDiretorio;
  });
}

bool VT::VT_DiretorioExiste(const String& Caminho) const {
  return Guarded(false, [&] {
    const auto st = StatOf(Caminho);
    return st && S_ISDIR(st->st_mode);
  });
}

bool VT::VT_DriveExiste(const String& Drive) const {
  return Guarded(false, [&] {
    const auto native = NativePath(Drive);
    return native && HostSystem::IsMountPoint(*native);
  });
}

// The common controls are part of the platform layer and always ready.
void VT::VT_IniciarCommonControls() const {}

bool VT::VT_CriarDiretorio(const String& Caminho) const {
  return Guarded(false, [&] {
    const auto native = NativePath(Caminho);
    if (!native) return false;
    const std::string& p = *native;
    // The missing folders on the way are made too, as a user of mkdir -p
    // expects; a folder already there is success.
    for (size_t i = 1; i <= p.size(); ++i) {
      if (i < p.size() && p[i] != '/') continue;
      if (p[i - 1] == '/') continue;
      const std::string part = p.substr(0, i);
      if (::mkdir(part.c_str(), 0777) != 0) {
        struct stat st {};
        if (::stat(part.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return false;
      }
    }
    struct stat st {};
    return ::stat(p.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
  });
}

double VT::VT_DiscoEspacoLivre(const String& strDrive) const {
  return Guarded(0.0, [&] {
    const auto native = NativePath(strDrive);
    struct statvfs vfs {};
    if (!native || ::statvfs(native->c_str(), &vfs) != 0) return 0.0;
    // What the caller may use, as the platform's first answer gives.
    return static_cast<double>(vfs.f_bavail) * static_cast<double>(vfs.f_frsize);
  });
}

String VT::VT_DiretorioWindows() const {
  return Guarded(String(), [&] {
    String dir = HostSystem::Environment("windir");
    if (dir.empty()) dir = HostSystem::Environment("SystemRoot");
    return dir;
  });
}

String VT::VT_DiretorioTemporario() const {
  return Guarded(String(u"/tmp"), [&] {
    String dir = HostSystem::Environment("TEMP");
    if (dir.empty()) dir = HostSystem::Environment("TMPDIR");
    return dir.empty() ? String(u"/tmp") : dir;
  });
}

String VT::VT_DiretorioUsuario() const {
  return Guarded(String(), [&] {
    String dir = HostSystem::Environment("UserProfile");
    if (dir.empty()) dir = HostSystem::Environment("HOME");
    if (dir.empty()) {
      passwd entry{};
      passwd* found = nullptr;
      std::vector<char> buffer(16384);
      if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 &&
          found != nullptr && found->pw_dir != nullptr) {
        dir = FromUtf8(found->pw_dir);
      }
    }
    return dir;
  });
}

bool VT::VT_CompararArquivos(const String& Arquivo1, const String& Arquivo2) const {
  return Guarded(false, [&] {
    const auto a = NativePath(Arquivo1);
    const auto b = NativePath(Arquivo2);
    return a && b && SameContent(*a, *b);
  });
}

String VT::VT_INILer(const String& Arquivo, const String& NomeAplicacao,
                     const String& Chave) const {
  return Guarded(String(), [&] {
    const auto native = NativePath(Arquivo);
    if (!native) return String();
    return IniFile::Load(*native).Get(NomeAplicacao, Chave).value_or(String());
  });
}

void VT::VT_INIGravar(const String& Arquivo, const String& NomeAplicacao, const String& Chave,
                      const String& Valor) const {
  GuardedVoid([&] {
    const auto native = NativePath(Arquivo);
    if (!native) return;
    IniFile ini = IniFile::Load(*native);
    // A file that is there but could not be read must not be replaced by
    // the one key.
    struct stat st {};
    if (!ini.Exists() && ::stat(native->c_str(), &st) == 0) return;
    if (ini.Set(NomeAplicacao, Chave, Valor)) ini.Save(*native);
  });
}

Variant VT::VT_SerialHD() const {
  return Guarded(Variant(), [&] {
    const auto serial = HostSystem::VolumeSerial();
    return serial ? Variant(*serial) : Variant();
  });
}

bool VT::VT_InternetOnline() const {
  return Guarded(false, [&] { return HostSystem::Online(); });
}

bool VT::VT_WindowsAdministrador() const {
  return ::geteuid() == 0;
}

String VT::VT_TraduzirDescricaoErro(int32_t NumeroErro) const {
  return Guarded(String(), [&] { return SystemMessages::Describe(NumeroErro); });
}

void VT::VT_FormularioPiscar(int32_t hwnd, bool Piscar) const {
  GuardedVoid([&] {
    const HWND window = WindowOf(hwnd);
    if (hwnd == 0 || !IsWindow(window)) return;
    FlashWindow(window, Piscar ? TRUE : FALSE);
  });
}

// A window of our platform is on the task bar of the desktop that shows it;
// a headless desktop has none.
void VT::VT_FormularioNaBarraTarefas(int32_t) const {}

}  // namespace vantor::services
