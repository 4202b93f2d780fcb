#include "services/ShellLauncher.h"

#include <gtest/gtest.h>

#include "SystemTestSupport.h"

namespace vantor::services {
namespace {

using test::EnvVar;
using test::Recorder;
using test::TempFolder;

TEST(ShellLauncher, FindsProgramsAlongThePath) {
  TempFolder dir;
  dir.Write("prog", "#!/bin/sh\n");
  ::chmod(dir.Join("prog").c_str(), 0755);
  dir.Write("texto", "não executável");
  ::chmod(dir.Join("texto").c_str(), 0644);
  ::mkdir(dir.Join("pasta").c_str(), 0755);

  EnvVar path("PATH");
  path.Set("/nao/existe::" + dir.Path() + ":/usr/bin:/bin");
  EXPECT_EQ(ShellLauncher::FindProgram("prog"), dir.Join("prog"));
  EXPECT_EQ(ShellLauncher::FindProgram(dir.Join("prog")), dir.Join("prog"));
  EXPECT_FALSE(ShellLauncher::FindProgram("sh").empty());
  EXPECT_EQ(ShellLauncher::FindProgram("texto"), "");  // not executable
  EXPECT_EQ(ShellLauncher::FindProgram("pasta"), "");  // a folder
  EXPECT_EQ(ShellLauncher::FindProgram(dir.Join("texto")), "");
  EXPECT_EQ(ShellLauncher::FindProgram("nao-existe-programa-vt"), "");
  EXPECT_EQ(ShellLauncher::FindProgram(""), "");
  EXPECT_EQ(ShellLauncher::FindProgram(std::string_view("sh\0x", 4)), "");
  EXPECT_EQ(ShellLauncher::FindProgram(std::string(5000, 'p')), "");

  // Only the folders of PATH: an empty entry is not the current folder.
  path.Set(":");
  EXPECT_EQ(ShellLauncher::FindProgram("prog"), "");
  path.Unset();
  EXPECT_FALSE(ShellLauncher::FindProgram("sh").empty());  // the system's default path
}

TEST(ShellLauncher, StartsThroughTheLauncherDetached) {
  TempFolder dir;
  Recorder recorder(dir);
  EXPECT_TRUE(ShellLauncher::Available("xdg-open-que-nao-existe"));
  EXPECT_TRUE(ShellLauncher::Start("xdg-open-que-nao-existe", {"um", "dois três", "-x"}));
  EXPECT_EQ(recorder.WaitFor(1), "xdg-open-que-nao-existe|um|dois três|-x|\n");
  // The middle child was reaped and the program belongs to init: nothing
  // is left for this process to wait for.
  int status = 0;
  EXPECT_EQ(::waitpid(-1, &status, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
  EXPECT_FALSE(ShellLauncher::Start("x", {std::string("a\0b", 3)}));
}

TEST(ShellLauncher, WithoutTheProgramNothingStarts) {
  TempFolder dir;
  EnvVar launcher("VANTOR_LAUNCHER");
  EnvVar path("PATH");
  launcher.Unset();
  path.Set(dir.Path());
  EXPECT_FALSE(ShellLauncher::Available("xdg-open"));
  EXPECT_FALSE(ShellLauncher::Start("xdg-open", {"http://exemplo.com.br"}));
  // A launcher that cannot be found starts nothing either.
  launcher.Set(dir.Join("nao-existe"));
  EXPECT_FALSE(ShellLauncher::Available("sh"));
  EXPECT_FALSE(ShellLauncher::Start("sh", {}));
  // A program that fails after starting is not this side's failure.
  launcher.Unset();
  path.Set("/usr/bin:/bin");
  EXPECT_TRUE(ShellLauncher::Start("false", {}));
}

}  // namespace
}  // namespace vantor::services
