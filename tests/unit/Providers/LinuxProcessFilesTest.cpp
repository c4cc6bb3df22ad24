// What the kernel's files about one process tell: made-up files, and those of processes that this test starts.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "Cimom/Providers/LinuxOperatingSystem.h"
#include "Cimom/Providers/LinuxProcess.h"
#include "Cimom/Providers/LinuxProcessFiles.h"
#include "Cimom/Providers/LinuxProcessorUse.h"
#include "Cimom/Providers/LinuxUser.h"
#include "Cimom/Providers/LinuxValues.h"
#include "MadeUpFiles.h"
#include "ProviderFixture.h"

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using ::testing::DoubleNear;
using ::testing::SizeIs;

std::string groupIn(const char* content) {
  const QORString group = controlGroupIn(content);
  return group.isNull() ? "(null)" : std::string(group.view());
}

TEST(ControlGroup, IsThatOfTheUnifiedHierarchy) {
  EXPECT_EQ(groupIn("0::/user.slice/a.scope\n"), "/user.slice/a.scope");
  EXPECT_EQ(groupIn("4:memory:/limits\n0::/user.slice\n"), "/user.slice");
  EXPECT_EQ(groupIn("0::/with:colon"), "/with:colon");
}

TEST(ControlGroup, IsAnotherOneWhereThatIsTheRoot) {
  EXPECT_EQ(groupIn("9:name=systemd:/\n4:memory:/limits\n3:cpuset:/other\n0::/\n"), "/limits");
  EXPECT_EQ(groupIn("9:name=systemd:/\n4:memory:/\n0::/\n"), "/");
  EXPECT_EQ(groupIn("4:memory:/limits\n"), "/limits");
}

TEST(ControlGroup, IsNoneInAFileWithoutLines) {
  EXPECT_EQ(groupIn(""), "(null)");
  EXPECT_EQ(groupIn("nonsense\n1:memory\n"), "(null)");
}

TEST(ProcessFiles, EntriesOfAFolderAreCounted) {
  const MadeUpFiles files;
  for (const char* name : {"fd/0", "fd/1", "fd/10"}) files.write(name, "");
  EXPECT_EQ(countEntries(files.path("fd")), 3U);
  EXPECT_FALSE(countEntries(files.path("none")).has_value());
  EXPECT_EQ(errno, ENOENT);
}

TEST(ProcessFiles, AnExecutableIsGoneWhenTheKernelSaysSo) {
  const MadeUpFiles files;
  const std::string program = files.write("program", "");
  const std::string oddlyNamed = files.write("odd (deleted)", "");
  const auto exists = [&](const std::string& target) {
    fs::remove(files.path("exe"));
    fs::create_symlink(target, files.path("exe"));
    return executableExists(files.path("exe"));
  };
  EXPECT_EQ(exists(program), true);
  EXPECT_EQ(exists(program + " (deleted)"), false);
  EXPECT_EQ(exists(oddlyNamed), true) << "a file may be called so";
  EXPECT_FALSE(executableExists(files.path("none")).has_value());
}

TEST(ProcessorUse, IsTheDifferenceOfTwoReadings) {
  const auto start = LinuxProcessorUse::Clock::now();
  LinuxProcessorUse use(100, start);
  use.note(7, {1000, 5, start});
  EXPECT_THAT(use.percent(7, {1025, 5, start + milliseconds(500)}), DoubleNear(50, 1e-9));
  EXPECT_THAT(use.percent(7, {1200, 5, start + milliseconds(500)}), DoubleNear(400, 1e-9)) << "several threads";
  EXPECT_EQ(use.percent(7, {1000, 5, start + milliseconds(500)}), 0);
  EXPECT_EQ(use.percent(7, {999, 5, start + milliseconds(500)}), 0);
  EXPECT_EQ(use.percent(7, {1025, 5, start}), 0) << "no time has passed";
}

TEST(ProcessorUse, OfAProcessThatBeganMeanwhileCountsFromTheStart) {
  const auto start = LinuxProcessorUse::Clock::now();
  LinuxProcessorUse use(100, start);
  use.note(7, {1000, 5, start});
  EXPECT_THAT(use.percent(8, {10, 9, start + milliseconds(500)}), DoubleNear(20, 1e-9));
  EXPECT_THAT(use.percent(7, {10, 9, start + milliseconds(500)}), DoubleNear(20, 1e-9)) << "another one of the same id";
}

TEST(ProcessorUse, WaitsUntilTheWindowHasPassed) {
  const auto start = LinuxProcessorUse::Clock::now();
  LinuxProcessorUse(100, start).waitForEnd();
  EXPECT_GE(LinuxProcessorUse::Clock::now() - start, LinuxProcessorUse::kWindow);
}

// A child that works, or waits, until the object goes.
class Child {
 public:
  explicit Child(bool works) : _pid(fork()) {
    if (_pid != 0) return;
    for (volatile unsigned work = 0; works;) work = work + 1;
    pause();
    _exit(0);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    kill(_pid, SIGKILL);
    waitpid(_pid, nullptr, 0);
  }
  std::string handle() const { return std::to_string(_pid); }

 private:
  pid_t _pid;
};

TEST(LinuxProcess, MeasuresTheProcessorUseOfNow) {
  const Child busy(true);
  const Child idle(false);
  LinuxProcess provider;
  const auto rows = enumerateRows(provider, {"Handle", "CPUPercent"});
  EXPECT_GT(findRow(rows, busy.handle()).at(1)->getReal64(), 2.0);
  EXPECT_EQ(findRow(rows, idle.handle()).at(1)->getReal64(), 0);
  const auto one = enumerateRows(provider, {"CPUPercent"}, nameOf(provider, "Handle", busy.handle()));
  ASSERT_EQ(one.size(), 1U);
  EXPECT_GT(one[0][0]->getReal64(), 2.0);
}

TEST(LinuxProcess, TakesTheTimeForThatOnlyWhenItIsAskedFor) {
  LinuxProcess provider;
  const auto timeOf = [&](const char* property) {
    const auto start = std::chrono::steady_clock::now();
    enumerateRows(provider, {"Handle", property}, nameOf(provider, "Handle", std::to_string(getpid())));
    return std::chrono::steady_clock::now() - start;
  };
  EXPECT_GE(timeOf("CPUPercent"), LinuxProcessorUse::kWindow);
  EXPECT_LT(timeOf("KernelModeTime"), LinuxProcessorUse::kWindow);
}

TEST(LinuxProcess, TellsWhereAProcessIsAndWhatItHolds) {
  const MadeUpFiles files;
  const Child child(false);
  LinuxProcess provider;
  const auto rows = enumerateRows(provider, {"Handle", "WorkingDirectory", "ExecutableExists", "OpenFileCount",
                                             "UserID", "GroupID", "ParentName", "SwapSize", "ElapsedTime"});
  const ProvidedRow row = findRow(rows, child.handle());
  EXPECT_EQ(textOf(row[1]), fs::current_path().string());
  EXPECT_EQ(textOf(row[2]), "TRUE");
  const fs::directory_iterator open("/proc/" + child.handle() + "/fd");
  EXPECT_EQ(row[3]->getUint32(), static_cast<QORuint32>(std::distance(begin(open), end(open))));
  EXPECT_EQ(row[4]->getUint32(), geteuid());
  EXPECT_EQ(row[5]->getUint32(), getegid());
  EXPECT_EQ(textOf(row[6]), processName(getpid()));
  EXPECT_EQ(typeOf(row[7]), "uint64");
  EXPECT_LT(row[8]->getUint64(), 60U);
}

TEST(LinuxProcess, TellsThatTheExecutableWasDeleted) {
  const MadeUpFiles files;
  fs::copy_file("/bin/sleep", files.path("sleeper"));
  const pid_t child = fork();
  if (child == 0) {
    execl(files.path("sleeper").c_str(), "sleeper", "60", nullptr);
    _exit(1);
  }
  LinuxProcess provider;
  const auto exists = [&] {
    const auto rows =
        enumerateRows(provider, {"ExecutableExists", "Name"}, nameOf(provider, "Handle", std::to_string(child)));
    return rows.empty() ? "gone" : textOf(rows[0][1]) == "sleeper" ? textOf(rows[0][0]) : "not yet";
  };
  for (int i = 0; i < 500 && exists() == "not yet"; ++i) std::this_thread::sleep_for(milliseconds(10));
  EXPECT_EQ(exists(), "TRUE");
  fs::remove(files.path("sleeper"));
  EXPECT_EQ(exists(), "FALSE");
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
}

TEST(LinuxProcess, WhetherAProgramThatWasNeverAFileExistsIsNotTold) {
  const int program = memfd_create("program", 0);
  ASSERT_GE(program, 0);
  const std::string content = readSmallFile("/bin/sleep");
  ASSERT_EQ(write(program, content.data(), content.size()), static_cast<ssize_t>(content.size()));
  const pid_t child = fork();
  if (child == 0) {
    const char* const arguments[] = {"sleeper", "60", nullptr};
    fexecve(program, const_cast<char* const*>(arguments), environ);
    _exit(1);
  }
  close(program);
  const KeptWarnings warnings;
  LinuxProcess provider;
  const auto told = [&] {
    const auto rows =
        enumerateRows(provider, {"Executable", "ExecutableExists"}, nameOf(provider, "Handle", std::to_string(child)));
    return rows.empty() ? "gone" : textOf(rows[0][0]) + ' ' + textOf(rows[0][1]);
  };
  for (int i = 0; i < 500 && !told().starts_with("/memfd:"); ++i) std::this_thread::sleep_for(milliseconds(10));
  EXPECT_EQ(told(), "/memfd:program (deleted) (null)");
  EXPECT_THAT(warnings.lines(), SizeIs(0));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
}

TEST(LinuxUser, AddsUpItsProcesses) {
  LinuxUser provider;
  const auto rows = enumerateRows(provider, {"UserNumber", "ProcessCount", "WorkingSetSize"});
  const ProvidedRow own = findRow(rows, std::to_string(geteuid()));
  EXPECT_GT(own[1]->getUint32(), 0U);
  EXPECT_GT(own[2]->getUint64(), 100U * 1024);
  for (const ProvidedRow& row : rows) EXPECT_EQ(row[1]->getUint32() == 0, row[2]->getUint64() == 0) << textOf(row[0]);
}

TEST(TimeZone, IsWhatTheLinkNames) {
  const MadeUpFiles files;
  const auto zoneOf = [&](const char* target) {
    fs::remove(files.path("localtime"));
    fs::create_symlink(target, files.path("localtime"));
    return LinuxOperatingSystem::timeZoneOf(files.path("localtime"));
  };
  EXPECT_EQ(zoneOf("/usr/share/zoneinfo/Europe/Berlin"), "Europe/Berlin");
  EXPECT_EQ(zoneOf("../usr/share/zoneinfo/Etc/UTC"), "Etc/UTC");
  EXPECT_EQ(zoneOf("/somewhere/else"), "");
  EXPECT_EQ(LinuxOperatingSystem::timeZoneOf(files.path("none")), "UTC");
  EXPECT_EQ(LinuxOperatingSystem::timeZoneOf(files.write("copy", "TZif")), "");
}

}  // namespace
