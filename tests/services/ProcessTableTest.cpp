#include "services/ProcessTable.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "SystemTestSupport.h"

namespace vantor::services {
namespace {

using test::Child;
using test::SleepProgram;
using test::TempFolder;

struct MatchCase {
  const char16_t* exe;
  const char16_t* argv0;
  const char16_t* comm;
  const char16_t* name;
  bool want;
};

void PrintTo(const MatchCase& c, std::ostream* out) {
  *out << ToUtf8(c.name) << " for " << ToUtf8(c.exe) << "/" << ToUtf8(c.argv0) << "/"
       << ToUtf8(c.comm);
}

class ProcessMatch : public ::testing::TestWithParam<MatchCase> {};

TEST_P(ProcessMatch, AnswersToItsNames) {
  const MatchCase& c = GetParam();
  ProcessTable::Process p;
  p.pid = 1234;
  p.exe = c.exe;
  p.argv0 = c.argv0;
  p.comm = c.comm;
  EXPECT_EQ(ProcessTable::Matches(p, c.name), c.want) << ToUtf8(c.name);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProcessMatch,
    ::testing::Values(
        MatchCase{u"sleep", u"sleep", u"sleep", u"sleep", true},
        MatchCase{u"sleep", u"sleep", u"sleep", u"SLEEP", true},      // case, as on Windows
        MatchCase{u"sleep", u"sleep", u"sleep", u"sleep.exe", true},  // Windows' suffix
        MatchCase{u"sleep", u"sleep", u"sleep", u"Sleep.EXE", true},
        MatchCase{u"sleep", u"sleep", u"sleep", u"/usr/bin/sleep", true},  // the file name counts
        MatchCase{u"sleep", u"sleep", u"sleep", u"C:\\Windows\\sleep.exe", true},
        MatchCase{u"sleep", u"sleep", u"sleep", u"slee", false},
        MatchCase{u"sleep", u"sleep", u"sleep", u"sleeps", false},
        MatchCase{u"sleep", u"sleep", u"sleep", u"sleep.ex", false},
        MatchCase{u"sleep", u"sleep", u"sleep", u"", false},
        MatchCase{u"sleep", u"sleep", u"sleep", u"/", false},
        MatchCase{u"sleep", u"sleep", u"sleep", u".exe", false},
        MatchCase{u"app.exe", u"app.exe", u"app.exe", u"app.exe", true},  // a real ".exe" name
        MatchCase{u"app.exe", u"app.exe", u"app.exe", u"app", false},
        MatchCase{u"python3.11", u"python3", u"servidor.py", u"python3.11", true},
        MatchCase{u"python3.11", u"python3", u"servidor.py", u"python3", true},      // argv[0]
        MatchCase{u"python3.11", u"python3", u"servidor.py", u"servidor.py", true},  // a script
        MatchCase{u"", u"", u"kworker/0:1", u"kworker/0:1", false},  // the "/" splits the name
        MatchCase{u"", u"", u"kthreadd", u"kthreadd", true},         // a kernel thread
        MatchCase{u"", u"", u"", u"", false},
        // The kernel keeps 15 bytes of a long name: they alone are no match.
        MatchCase{u"", u"", u"processo-muito-", u"processo-muito-", true},
        MatchCase{u"", u"", u"processo-muito-", u"processo-muito-longo", false},
        MatchCase{u"processo-muito-longo", u"", u"processo-muito-", u"processo-muito-longo", true},
        MatchCase{u"ação", u"", u"ação", u"AÇÃO", true}));

TEST(ProcessTable, SeesItsOwnProcess) {
  ProcessTable::Process self;
  ASSERT_TRUE(ProcessTable::Read(::getpid(), self));
  EXPECT_EQ(self.pid, ::getpid());
  const std::string exe = std::filesystem::read_symlink("/proc/self/exe").filename().string();
  EXPECT_EQ(self.exe, FromUtf8(exe));
  EXPECT_TRUE(ProcessTable::IsRunning(::getpid()));
  bool listed = false;
  for (const auto& p : ProcessTable::Snapshot()) listed |= p.pid == ::getpid();
  EXPECT_TRUE(listed);
  const auto found = ProcessTable::Find(FromUtf8(exe));
  EXPECT_NE(std::find(found.begin(), found.end(), ::getpid()), found.end());

  ProcessTable::Process none;
  EXPECT_FALSE(ProcessTable::Read(0, none));
  EXPECT_FALSE(ProcessTable::Read(-5, none));
  EXPECT_FALSE(ProcessTable::IsRunning(0));
  EXPECT_FALSE(ProcessTable::IsRunning(-1));
}

TEST(ProcessTable, EndsByNameAndCountsAZombieAsGone) {
  TempFolder dir;
  const std::string sleep = SleepProgram();
  ASSERT_FALSE(sleep.empty());
  const std::string name = "vtpt" + std::to_string(::getpid());
  std::filesystem::copy_file(sleep, dir.Join(name));
  ::chmod(dir.Join(name).c_str(), 0755);

  Child first(dir.Join(name), dir.Join(name));
  Child second(dir.Join(name), name);
  ASSERT_GT(first.Pid(), 0);
  auto found = ProcessTable::Find(FromUtf8(name));
  std::sort(found.begin(), found.end());
  std::vector<pid_t> want{first.Pid(), second.Pid()};
  std::sort(want.begin(), want.end());
  EXPECT_EQ(found, want);

  EXPECT_EQ(ProcessTable::End(u"nenhum-processo-" + FromUtf8(name)), 0);
  EXPECT_EQ(ProcessTable::End(u""), 0);
  EXPECT_TRUE(first.Running());

  EXPECT_EQ(ProcessTable::End(FromUtf8(name)), 2);
  // Ended but not reaped yet: a zombie no longer runs.
  EXPECT_FALSE(ProcessTable::IsRunning(first.Pid()));
  EXPECT_TRUE(ProcessTable::Find(FromUtf8(name)).empty());
  EXPECT_EQ(first.EndedBy(), SIGTERM);
  EXPECT_EQ(second.EndedBy(), SIGTERM);
}

TEST(ProcessTable, KillsWhatIgnoresTheRequest) {
  TempFolder dir;
  const std::string sleep = SleepProgram();
  ASSERT_FALSE(sleep.empty());
  const std::string name = "vtteimoso" + std::to_string(::getpid());
  std::filesystem::copy_file(sleep, dir.Join(name));
  ::chmod(dir.Join(name).c_str(), 0755);
  Child stubborn(dir.Join(name), name, /*ignoreTerm=*/true);
  ASSERT_TRUE(ProcessTable::IsRunning(stubborn.Pid()));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(ProcessTable::End(FromUtf8(name), std::chrono::milliseconds(200)), 1);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
  EXPECT_EQ(stubborn.EndedBy(), SIGKILL);
}

}  // namespace
}  // namespace vantor::services
