#include "services/ProcessTable.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "runtime/Strings.h"

namespace vantor::services {
namespace {

std::string ReadSmallFile(const std::string& path, size_t limit) {
  std::string out;
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return out;
  char buffer[4096];
  while (out.size() < limit) {
    const ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n > 0) {
      out.append(buffer, static_cast<size_t>(n));
    } else if (n < 0 && errno == EINTR) {
      continue;
    } else {
      break;
    }
  }
  ::close(fd);
  return out;
}

std::string ProcPath(pid_t pid, const char* leaf) {
  return "/proc/" + std::to_string(pid) + "/" + leaf;
}

std::string_view FileNameOf(std::string_view path) {
  const size_t slash = path.rfind('/');
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// The state letter of /proc/<pid>/stat, and the kernel's name in brackets;
// 0 when the process is gone. The name may hold ")" itself, so the last one
// closes it.
char ReadStat(pid_t pid, std::string* comm) {
  const std::string stat = ReadSmallFile(ProcPath(pid, "stat"), 1024);
  const size_t open = stat.find('(');
  const size_t close = stat.rfind(')');
  if (open == std::string::npos || close == std::string::npos || close < open ||
      close + 2 >= stat.size()) {
    return 0;
  }
  if (comm) *comm = stat.substr(open + 1, close - open - 1);
  return stat[close + 2];
}

bool Gone(char state) {
  return state == 0 || state == 'Z' || state == 'X' || state == 'x';
}

// The names a process is asked for by: the name itself and, for a name a
// Windows program gives with ".exe", the name without it.
std::vector<String> Candidates(StringView name) {
  const size_t sep = name.find_last_of(u"/\\");
  const String base = LCase(sep == StringView::npos ? name : name.substr(sep + 1));
  std::vector<String> out;
  if (base.empty()) return out;
  out.push_back(base);
  if (base.size() > 4 && base.ends_with(u".exe")) out.push_back(base.substr(0, base.size() - 4));
  return out;
}

bool MatchesAny(const ProcessTable::Process& p, const std::vector<String>& candidates) {
  const String exe = LCase(p.exe);
  const String argv0 = LCase(p.argv0);
  const String comm = LCase(p.comm);
  for (const String& c : candidates) {
    if (c == exe || c == argv0) return true;
    // The kernel keeps 15 bytes of a name; a longer name must not match its
    // cut-off start, which other programs may share.
    if (ToUtf8(c).size() <= 15 && c == comm) return true;
  }
  return false;
}

}  // namespace

bool ProcessTable::IsRunning(pid_t pid) {
  return pid > 0 && !Gone(ReadStat(pid, nullptr));
}

bool ProcessTable::Read(pid_t pid, Process& out) {
  if (pid <= 0) return false;
  std::string comm;
  if (Gone(ReadStat(pid, &comm))) return false;
  out = Process{};
  out.pid = pid;
  out.comm = FromUtf8(comm);

  std::string cmdline = ReadSmallFile(ProcPath(pid, "cmdline"), 4096);
  const size_t nul = cmdline.find('\0');
  if (nul != std::string::npos) cmdline.resize(nul);
  out.argv0 = FromUtf8(FileNameOf(cmdline));

  char target[4096];
  const ssize_t n = ::readlink(ProcPath(pid, "exe").c_str(), target, sizeof target - 1);
  if (n > 0) {
    std::string_view exe(target, static_cast<size_t>(n));
    // A replaced or removed executable still runs under its old name.
    constexpr std::string_view kDeleted = " (deleted)";
    if (exe.ends_with(kDeleted)) exe.remove_suffix(kDeleted.size());
    out.exe = FromUtf8(FileNameOf(exe));
  }
  return true;
}

std::vector<ProcessTable::Process> ProcessTable::Snapshot() {
  std::vector<Process> out;
  DIR* dir = ::opendir("/proc");
  if (dir == nullptr) return out;
  while (const dirent* entry = ::readdir(dir)) {
    const char* name = entry->d_name;
    pid_t pid = 0;
    bool digits = *name != '\0';
    for (const char* c = name; *c != '\0' && digits; ++c) {
      if (*c < '0' || *c > '9' || pid > 100000000) {
        digits = false;
      } else {
        pid = pid * 10 + (*c - '0');
      }
    }
    if (!digits) continue;
    Process p;
    if (Read(pid, p)) out.push_back(std::move(p));
  }
  ::closedir(dir);
  return out;
}

bool ProcessTable::Matches(const Process& p, StringView name) {
  return MatchesAny(p, Candidates(name));
}

std::vector<pid_t> ProcessTable::Find(StringView name) {
  std::vector<pid_t> out;
  const std::vector<String> candidates = Candidates(name);
  if (candidates.empty()) return out;
  for (const Process& p : Snapshot()) {
    if (MatchesAny(p, candidates)) out.push_back(p.pid);
  }
  return out;
}

int ProcessTable::End(StringView name, std::chrono::milliseconds grace) {
  const std::vector<String> candidates = Candidates(name);
  if (candidates.empty()) return 0;
  const pid_t self = ::getpid();
  std::vector<pid_t> asked;
  for (const Process& p : Snapshot()) {
    if (p.pid == self || !MatchesAny(p, candidates)) continue;
    if (::kill(p.pid, SIGTERM) == 0) asked.push_back(p.pid);
  }
  const int count = static_cast<int>(asked.size());

  auto waitFor = [&asked](std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    for (;;) {
      std::erase_if(asked, [](pid_t pid) { return !IsRunning(pid); });
      if (asked.empty() || std::chrono::steady_clock::now() >= deadline) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  };
  waitFor(grace);
  for (pid_t pid : asked) {
    // The number may have passed to a new process meanwhile: only the one
    // still answering to the name is killed.
    Process p;
    if (Read(pid, p) && MatchesAny(p, candidates)) ::kill(pid, SIGKILL);
  }
  // SIGKILL is not instant; callers look again right after this.
  waitFor(std::chrono::milliseconds(500));
  return count;
}

}  // namespace vantor::services
