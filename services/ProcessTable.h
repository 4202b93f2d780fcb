#pragma once
// The running processes, read from /proc, and the rule by which a process
// answers to an executable name as a host written for Windows gives it
// ("sleep", "Sleep.exe", "/usr/bin/sleep").
//
// A process answers to the name of its executable file, to the name its
// command line was started under (argv[0], which is what a symbolic link or a
// renamed start gives) and, for names of up to 15 bytes, to the kernel's own
// short name, which is all a kernel thread or a process of another user
// shows. Names compare without regard to case, as on Windows; a ".exe" at the
// end of the name asked for may be missing from the process's name. Only the
// file name counts: a folder in front of the name asked for is dropped.
// Processes that have ended but not been reaped (zombies) are not running.
#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

#include "runtime/String.h"

namespace vantor::services {

class ProcessTable {
 public:
  struct Process {
    pid_t pid = 0;
    String exe;    // the executable file's name, empty when unreadable
    String argv0;  // the file name of the command line's first word
    String comm;   // the kernel's name, at most 15 bytes
  };

  // The processes running now.
  static std::vector<Process> Snapshot();
  // A process's entry, or nothing when it is gone or a zombie.
  static bool Read(pid_t pid, Process& out);
  static bool IsRunning(pid_t pid);

  static bool Matches(const Process& p, StringView name);
  static std::vector<pid_t> Find(StringView name);

  // Asks every process of that name but the caller's own to end (SIGTERM),
  // waits up to `grace` for them, and kills those still running (SIGKILL),
  // as the platform's TerminateProcess gives a process no choice. Processes
  // the caller may not signal are passed over. The number signalled.
  static int End(StringView name,
                 std::chrono::milliseconds grace = std::chrono::milliseconds(1000));
};

}  // namespace vantor::services
