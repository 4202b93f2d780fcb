#include "services/ShellLauncher.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace vantor::services {
namespace {

bool IsExecutableFile(const std::string& path) {
  struct stat st {};
  return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

std::string LauncherName() {
  const char* v = std::getenv("VANTOR_LAUNCHER");
  return v != nullptr ? std::string(v) : std::string();
}

}  // namespace

std::string ShellLauncher::FindProgram(std::string_view name) {
  if (name.empty() || name.find('\0') != std::string_view::npos) return {};
  if (name.find('/') != std::string_view::npos) {
    std::string path(name);
    return IsExecutableFile(path) ? path : std::string();
  }
  const char* env = std::getenv("PATH");
  const std::string_view search = env != nullptr ? env : "/usr/local/bin:/usr/bin:/bin";
  size_t start = 0;
  while (start <= search.size()) {
    size_t end = search.find(':', start);
    if (end == std::string_view::npos) end = search.size();
    const std::string_view dir = search.substr(start, end - start);
    // An empty entry would mean the current folder, which is no place to
    // pick a program from on a user's behalf.
    if (!dir.empty()) {
      std::string path(dir);
      path += '/';
      path += name;
      if (IsExecutableFile(path)) return path;
    }
    start = end + 1;
  }
  return {};
}

bool ShellLauncher::Available(std::string_view program) {
  const std::string launcher = LauncherName();
  return !FindProgram(launcher.empty() ? program : std::string_view(launcher)).empty();
}

bool ShellLauncher::Start(std::string_view program, const std::vector<std::string>& args) {
  const std::string launcher = LauncherName();
  std::vector<std::string> words;
  std::string path;
  if (!launcher.empty()) {
    path = FindProgram(launcher);
    words.push_back(path);
    words.emplace_back(program);
  } else {
    path = FindProgram(program);
    words.push_back(path);
  }
  if (path.empty()) return false;
  for (const std::string& a : args) {
    if (a.find('\0') != std::string::npos) return false;
    words.push_back(a);
  }
  // Everything the children need is made before they exist: between fork and
  // exec only async-signal-safe calls are allowed.
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (std::string& w : words) argv.push_back(w.data());
  argv.push_back(nullptr);

  const pid_t child = ::fork();
  if (child < 0) return false;
  if (child == 0) {
    // The middle child exits at once, so the program is adopted by init and
    // the caller has nobody to reap but this child.
    const pid_t grandchild = ::fork();
    if (grandchild == 0) {
      ::setsid();
      sigset_t none;
      ::sigemptyset(&none);
      ::sigprocmask(SIG_SETMASK, &none, nullptr);
      const int null = ::open("/dev/null", O_RDWR);
      if (null >= 0) {
        ::dup2(null, 0);
        ::dup2(null, 1);
        ::dup2(null, 2);
      }
      ::close_range(3, ~0U, 0);
      ::execv(path.c_str(), argv.data());
      ::_exit(127);
    }
    ::_exit(grandchild < 0 ? 1 : 0);
  }
  int status = 0;
  for (;;) {
    if (::waitpid(child, &status, 0) >= 0) break;
    // A host that ignores SIGCHLD has its children reaped for it.
    if (errno != EINTR) return errno == ECHILD;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace vantor::services
