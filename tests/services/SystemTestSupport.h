#pragma once
// What the tests of the system members share: a folder of their own under
// /tmp that goes with them, environment variables put back as they were, a
// recorder that stands in for the desktop's programs, and child processes
// under names no other process has.
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <thread>

#include "runtime/String.h"

namespace vantor::services::test {

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

class TempFolder {
 public:
  TempFolder() {
    std::string pattern = "/tmp/vt-sistema-XXXXXX";
    if (::mkdtemp(pattern.data()) != nullptr) path_ = pattern;
  }
  ~TempFolder() {
    if (path_.empty()) return;
    std::error_code ec;
    // Tests take write permission away; give it back so that all can go.
    for (auto it = std::filesystem::recursive_directory_iterator(path_, ec);
         !ec && it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
      ::chmod(it->path().c_str(), 0755);
    }
    std::filesystem::remove_all(path_, ec);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& Path() const { return path_; }
  std::string Join(std::string_view name) const { return path_ + "/" + std::string(name); }
  // The path as a host hands it over, with "/" or with Windows' "\".
  String U(std::string_view name) const { return FromUtf8(Join(name)); }
  String Win(std::string_view name) const {
    String s = U(name);
    for (char16_t& c : s) {
      if (c == u'/') c = u'\\';
    }
    return s;
  }

  void Write(std::string_view name, std::string_view bytes) const {
    std::ofstream out(Join(name), std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  std::string Read(std::string_view name) const { return ReadFile(Join(name)); }
  bool Exists(std::string_view name) const {
    struct stat st {};
    return ::lstat(Join(name).c_str(), &st) == 0;
  }
  bool IsDir(std::string_view name) const {
    struct stat st {};
    return ::stat(Join(name).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
  }
  mode_t Mode(std::string_view name) const {
    struct stat st {};
    ::stat(Join(name).c_str(), &st);
    return st.st_mode & 07777;
  }

 private:
  std::string path_;
};

// Sets or clears a variable for one test and puts the old value back.
class EnvVar {
 public:
  explicit EnvVar(const char* name) : name_(name) {
    if (const char* v = ::getenv(name)) old_ = v;
  }
  ~EnvVar() {
    if (old_) {
      ::setenv(name_.c_str(), old_->c_str(), 1);
    } else {
      ::unsetenv(name_.c_str());
    }
  }
  EnvVar(const EnvVar&) = delete;
  EnvVar& operator=(const EnvVar&) = delete;
  void Set(const std::string& value) { ::setenv(name_.c_str(), value.c_str(), 1); }
  void Unset() { ::unsetenv(name_.c_str()); }

 private:
  std::string name_;
  std::optional<std::string> old_;
};

// A shell script that VANTOR_LAUNCHER points at: each start appends one line,
// the program's name and arguments each followed by "|".
class Recorder {
 public:
  explicit Recorder(const TempFolder& dir) : dir_(dir), launcher_("VANTOR_LAUNCHER") {
    script_ = dir.Join("registrador.sh");
    dir.Write("registrador.sh",
              "#!/bin/sh\nline=$(printf '%s|' \"$@\")\necho \"$line\" >> \"$0.log\"\n");
    ::chmod(script_.c_str(), 0755);
    launcher_.Set(script_);
  }
  std::string Log() const { return dir_.Read("registrador.sh.log"); }
  // Waits for the log to hold `lines` lines (the programs run detached).
  std::string WaitFor(size_t lines) const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    std::string log;
    for (;;) {
      log = Log();
      if (static_cast<size_t>(std::count(log.begin(), log.end(), '\n')) >= lines ||
          std::chrono::steady_clock::now() > deadline) {
        return log;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }

 private:
  const TempFolder& dir_;
  EnvVar launcher_;
  std::string script_;
};

// A child process running `program` ("sleep 30") under argv[0] `name`,
// killed and reaped when the test ends if the test has not done it.
class Child {
 public:
  Child(const std::string& program, const std::string& name, bool ignoreTerm = false) {
    pid_ = ::fork();
    if (pid_ == 0) {
      if (ignoreTerm) ::signal(SIGTERM, SIG_IGN);
      ::execl(program.c_str(), name.c_str(), "30", static_cast<char*>(nullptr));
      ::_exit(127);
    }
    // Until exec the child is a copy of this program; wait for it to be
    // the other one.
    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (pid_ > 0 && std::chrono::steady_clock::now() < deadline) {
      std::error_code ec;
      const auto exe = std::filesystem::read_symlink("/proc/" + std::to_string(pid_) + "/exe", ec);
      if (!ec && exe.string() != self) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }
  ~Child() {
    if (pid_ > 0 && !reaped_) {
      ::kill(pid_, SIGKILL);
      Wait();
    }
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  pid_t Pid() const { return pid_; }
  // Whether the child has not ended, asked once without waiting.
  bool Running() {
    if (reaped_) return false;
    int status = 0;
    if (::waitpid(pid_, &status, WNOHANG) != pid_) return true;
    reaped_ = true;
    signal_ = WIFSIGNALED(status) ? WTERMSIG(status) : -1;
    return false;
  }
  // The signal that ended the child, waiting for it up to 10 seconds; 0
  // while it runs.
  int EndedBy() {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!reaped_ && std::chrono::steady_clock::now() < deadline) {
      int status = 0;
      if (::waitpid(pid_, &status, WNOHANG) == pid_) {
        reaped_ = true;
        signal_ = WIFSIGNALED(status) ? WTERMSIG(status) : -1;
        break;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return signal_;
  }

 private:
  void Wait() {
    int status = 0;
    ::waitpid(pid_, &status, 0);
    reaped_ = true;
  }
  pid_t pid_ = -1;
  bool reaped_ = false;
  int signal_ = 0;
};

inline std::string SleepProgram() {
  for (const char* p : {"/usr/bin/sleep", "/bin/sleep"}) {
    if (::access(p, X_OK) == 0) return p;
  }
  return {};
}

}  // namespace vantor::services::test
