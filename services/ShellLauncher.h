#pragma once
// Starts the desktop's programs for the shell members of VT (xdg-open for
// files, folders and addresses; a sound player for WAV files), detached: the
// caller neither waits for them nor is left with a child to reap, as the
// platform's ShellExecute does.
//
// The environment variable VANTOR_LAUNCHER, when set, names a program that is
// started instead, with the would-be program's name and arguments after it,
// whether or not that program is installed. Tests point it at a recorder so
// that nothing opens on the desktop; a user can point it at a program of
// their own choice.
#include <string>
#include <string_view>
#include <vector>

namespace vantor::services {

class ShellLauncher {
 public:
  // The program's full path: a name with "/" as it stands when it can be run,
  // else the first match along PATH; empty when there is none.
  static std::string FindProgram(std::string_view name);

  // Whether `program` (a name looked up on PATH) can be started, through
  // VANTOR_LAUNCHER when set.
  static bool Available(std::string_view program);

  // Starts the program with the arguments; false when neither it nor the
  // launcher can be found or the start fails.
  static bool Start(std::string_view program, const std::vector<std::string>& args);
};

}  // namespace vantor::services
