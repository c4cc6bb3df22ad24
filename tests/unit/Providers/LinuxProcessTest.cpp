// The provider of Linux_Process finds the test's own process and its children.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <set>
#include <thread>

#include "Cimom/Providers/LinuxProcess.h"
#include "ProviderFixture.h"

namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

ProvidedRow ownRow(const std::vector<std::string>& properties) {
  LinuxProcess provider;
  std::vector<std::string> all = {"Handle"};
  all.insert(all.end(), properties.begin(), properties.end());
  return findRow(enumerateRows(provider, all), std::to_string(getpid()));
}

// A child that lives until the object goes.
class Child {
 public:
  explicit Child(bool endsAtOnce = false) : _pid(fork()) {
    if (_pid != 0) return;
    if (!endsAtOnce) pause();
    _exit(0);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() { reap(); }
  pid_t pid() const { return _pid; }
  void waitUntilZombie() const {
    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(_pid), &info, WEXITED | WNOWAIT);
  }
  void reap() {
    if (_pid <= 0) return;
    kill(_pid, SIGKILL);
    waitpid(_pid, nullptr, 0);
    _pid = -1;
  }

 private:
  pid_t _pid;
};

TEST(LinuxProcess, ServesItsClass) { EXPECT_EQ(LinuxProcess().getClassName(), "Linux_Process"); }

TEST(LinuxProcess, FindsTheCurrentProcessWithItsIdentity) {
  const ProvidedRow row = ownRow({"ProcessID", "ParentProcessID", "SessionID", "Name", "Executable"});
  ASSERT_EQ(row.size(), 6u);
  EXPECT_EQ(textOf(row[1]), std::to_string(getpid()));
  EXPECT_EQ(textOf(row[2]), std::to_string(getppid()));
  EXPECT_EQ(textOf(row[3]), std::to_string(getsid(0)));
  EXPECT_THAT(textOf(row[4]), StartsWith("unit_Providers"));
  EXPECT_EQ(textOf(row[5]), std::filesystem::read_symlink("/proc/self/exe").string());
}

TEST(LinuxProcess, GivesEachPropertyTheDeclaredType) {
  const ProvidedRow row = ownRow({"ProcessID", "WorkingSetSize", "KernelModeTime", "Nice", "ExecutionState",
                                  "CreationDate", "ThreadCount", "OwnerUser", "VirtualMemorySize", "Priority"});
  std::vector<std::string> types;
  for (const auto& value : row) types.push_back(typeOf(value));
  EXPECT_THAT(types, testing::ElementsAre("string", "uint32", "uint64", "uint64", "sint32", "uint16", "datetime",
                                          "uint32", "string", "uint64", "uint32"));
}

TEST(LinuxProcess, MeasuresMemoryInBytes) {
  const ProvidedRow row = ownRow({"WorkingSetSize", "VirtualMemorySize"});
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  EXPECT_GT(row[1]->getUint64(), 100u * 1024);
  EXPECT_LE(row[1]->getUint64(), static_cast<QORuint64>(usage.ru_maxrss) * 1024 * 2);
  EXPECT_GT(row[2]->getUint64(), row[1]->getUint64());
}

TEST(LinuxProcess, MeasuresProcessorTimeInMilliseconds) {
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
  rusage usage{};
  volatile unsigned work = 0;
  do {
    for (unsigned i = 0; i < 100000; ++i) work = work + i;
    getrusage(RUSAGE_SELF, &usage);
  } while (std::chrono::steady_clock::now() < until ||
           usage.ru_utime.tv_usec + usage.ru_utime.tv_sec * 1000000 < 100000);
  const ProvidedRow row = ownRow({"UserModeTime", "KernelModeTime"});
  getrusage(RUSAGE_SELF, &usage);
  const auto milliseconds = [](const timeval& time) { return time.tv_sec * 1000 + time.tv_usec / 1000; };
  const long total = milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
  const long found = static_cast<long>(row[1]->getUint64() + row[2]->getUint64());
  EXPECT_NEAR(static_cast<double>(found), static_cast<double>(total), 60.0);
}

TEST(LinuxProcess, CountsThreads) {
  std::atomic<bool> isOver = false;
  const auto wait = [&] {
    while (!isOver) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  };
  const QORuint32 before = ownRow({"ThreadCount"})[1]->getUint32();
  std::thread first(wait);
  std::thread second(wait);
  const QORuint32 during = ownRow({"ThreadCount"})[1]->getUint32();
  isOver = true;
  first.join();
  second.join();
  EXPECT_EQ(during, before + 2);
}

TEST(LinuxProcess, NamesTheEffectiveUser) {
  const passwd* entry = getpwuid(geteuid());
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(textOf(ownRow({"OwnerUser"})[1]), entry->pw_name);
}

TEST(LinuxProcess, JoinsTheArgumentsByBlanks) {
  EXPECT_THAT(textOf(ownRow({"CommandLine"})[1]), HasSubstr("unit_Providers"));
}

TEST(LinuxProcess, ShowsWhatAProcessDoes) {
  EXPECT_EQ(textOf(ownRow({"State"})[1]), "Running");
  EXPECT_EQ(textOf(ownRow({"ExecutionState"})[1]), "3");
}

TEST(LinuxProcess, ShowsAProcessThatEndedButWasNotReaped) {
  Child child(true);
  child.waitUntilZombie();
  LinuxProcess provider;
  const ProvidedRow row =
      findRow(enumerateRows(provider, {"Handle", "State", "ExecutionState", "CommandLine", "Executable", "BytesRead"}),
              std::to_string(child.pid()));
  ASSERT_EQ(row.size(), 6u);
  EXPECT_EQ(textOf(row[1]), "Zombie");
  EXPECT_EQ(textOf(row[2]), "7");
  EXPECT_EQ(textOf(row[3]), "(null)");
  EXPECT_EQ(textOf(row[4]), "(null)");
}

TEST(LinuxProcess, ShowsPriorityFromZeroAndNiceAsItIs) {
  Child child;
  ASSERT_EQ(setpriority(PRIO_PROCESS, static_cast<id_t>(child.pid()), 7), 0);
  LinuxProcess provider;
  const ProvidedRow row = findRow(enumerateRows(provider, {"Handle", "Nice", "Priority"}), std::to_string(child.pid()));
  ASSERT_EQ(row.size(), 3u);
  EXPECT_EQ(textOf(row[1]), "7");
  EXPECT_EQ(textOf(row[2]), "127");
}

TEST(LinuxProcess, PriorityIsNeverBelowZero) {
  EXPECT_EQ(LinuxProcess::priorityOf(39), 139U);
  EXPECT_EQ(LinuxProcess::priorityOf(0), 100U);
  EXPECT_EQ(LinuxProcess::priorityOf(-100), 0U);
  EXPECT_EQ(LinuxProcess::priorityOf(-101), 0U) << "a process with a deadline";
}

TEST(LinuxProcess, DatesTheCreationNowAndAlwaysAlike) {
  const time_t before = time(nullptr);
  Child child;
  LinuxProcess provider;
  const auto creationDate = [&] {
    return textOf(findRow(enumerateRows(provider, {"Handle", "CreationDate"}), std::to_string(child.pid())).at(1));
  };
  const std::string date = creationDate();
  ASSERT_THAT(date, MatchesRegex("[0-9]{14}\\.[0-9]{6}[+-][0-9]{3}"));
  std::tm parsed{};
  ASSERT_NE(strptime(date.substr(0, 14).c_str(), "%Y%m%d%H%M%S", &parsed), nullptr);
  parsed.tm_isdst = -1;
  EXPECT_NEAR(static_cast<double>(mktime(&parsed)), static_cast<double>(before), 3.0);
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  EXPECT_EQ(creationDate(), date);
}

TEST(LinuxProcess, CountsBytesWritten) {
  const ProvidedRow row = ownRow({"BytesRead", "BytesWritten"});
  EXPECT_EQ(typeOf(row[1]), "uint64");
  EXPECT_EQ(typeOf(row[2]), "uint64");
}

// Without the right to trace it, a process does not tell its program; the
// others are all there.
TEST(LinuxProcess, GivesNullWherePermissionLacks) {
  if (geteuid() != 0) {
    EXPECT_EQ(textOf(ownRow({"Executable"})[1]), std::filesystem::read_symlink("/proc/self/exe").string());
    LinuxProcess provider;
    const ProvidedRow init = findRow(enumerateRows(provider, {"Handle", "Executable", "BytesRead"}), "1");
    EXPECT_EQ(textOf(init.at(1)), "(null)");
    EXPECT_EQ(textOf(init.at(2)), "(null)");
    return;
  }
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) {
    if (setgid(65534) != 0 || setuid(65534) != 0) _exit(10);
    LinuxProcess provider;
    const ProvidedRow row = findRowIfAny(enumerateRows(provider, {"Handle", "Executable", "BytesRead", "ThreadCount"}),
                                         std::to_string(parent));
    if (row.size() != 4) _exit(11);
    if (!row[1].IsNull() || !row[2].IsNull()) _exit(12);
    _exit(row[3].IsNull() ? 13 : 0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(LinuxProcess, GivesNullForAPropertyItDoesNotKnow) {
  const ProvidedRow row = ownRow({"TerminationDate", "Name"});
  ASSERT_EQ(row.size(), 3u);
  EXPECT_EQ(textOf(row[1]), "(null)");
  EXPECT_NE(textOf(row[2]), "(null)");
}

TEST(LinuxProcess, FindsPropertiesIgnoringCaseAndKeepsTheRequestsOrder) {
  LinuxProcess provider;
  const auto rows = enumerateRows(provider, {"processID", "HANDLE", "processid"});
  ASSERT_FALSE(rows.empty());
  for (const ProvidedRow& row : rows) {
    EXPECT_EQ(textOf(row.at(0)), textOf(row.at(1)));
    EXPECT_EQ(textOf(row.at(2)), textOf(row.at(1)));
  }
}

TEST(LinuxProcess, EmitsEachProcessOnce) {
  LinuxProcess provider;
  std::set<std::string> handles;
  const auto rows = enumerateRows(provider, {"Handle"});
  for (const ProvidedRow& row : rows) handles.insert(textOf(row.at(0)));
  EXPECT_EQ(handles.size(), rows.size());
}

TEST(LinuxProcess, ReadsOneProcessAloneWhenOneIsWanted) {
  LinuxProcess provider;
  const std::string self = std::to_string(getpid());
  const auto rows = enumerateRows(provider, {"Handle", "ThreadCount"}, nameOf(provider, "handle", self));
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(textOf(rows[0][0]), self);
  EXPECT_EQ(textOf(rows[0][1]), "1");
}

TEST(LinuxProcess, ReadsNoneWhenTheOneWantedIsNotThere) {
  LinuxProcess provider;
  for (const char* handle : {"", "0", "-1", "999999999", "99999999999999", "x"}) {
    const auto rows = enumerateRows(provider, {"Handle"}, nameOf(provider, "Handle", handle));
    EXPECT_EQ(rows.size(), 0u) << handle;
  }
}

TEST(LinuxProcess, FillsTheKeysOfAFullerSchema) {
  const ProvidedRow row =
      ownRow({"CreationClassName", "CSCreationClassName", "OSCreationClassName", "OSName", "CSName"});
  EXPECT_EQ(textOf(row[1]), "Linux_Process");
  EXPECT_EQ(textOf(row[2]), "Linux_ComputerSystem");
  EXPECT_EQ(textOf(row[3]), "Linux_OperatingSystem");
  EXPECT_NE(textOf(row[4]), "(null)");
  std::array<char, 256> host{};
  ASSERT_EQ(gethostname(host.data(), host.size()), 0);
  EXPECT_EQ(textOf(row[5]), host.data());
}

// Processes come and go while others look.
TEST(LinuxProcess, SurvivesProcessesThatEndMeanwhileAndSeveralThreads) {
  std::atomic<bool> isOver = false;
  std::atomic<int> missing = 0;
  const std::string self = std::to_string(getpid());
  const auto look = [&] {
    LinuxProcess provider;
    while (!isOver) {
      const auto rows =
          enumerateRows(provider, {"Handle", "Name", "CommandLine", "Executable", "BytesRead", "OwnerUser"});
      if (findRowIfAny(rows, self).size() != 6) ++missing;
    }
  };
  std::thread first(look);
  std::thread second(look);
  for (int i = 0; i < 200; ++i) {
    Child child(true);
    child.reap();
  }
  isOver = true;
  first.join();
  second.join();
  EXPECT_EQ(missing, 0);
}

}  // namespace
