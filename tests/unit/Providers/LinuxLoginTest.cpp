// Logins in made-up lists.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utmpx.h>

#include <cstring>

#include "Cimom/Providers/LinuxLogin.h"
#include "MadeUpFiles.h"
#include "ProviderFixture.h"

namespace {

using ::testing::ElementsAre;

std::string record(short type, const char* user, const char* line, const char* host, pid_t pid) {
  utmpx entry{};
  entry.ut_type = type;
  entry.ut_pid = pid;
  std::strncpy(entry.ut_user, user, sizeof entry.ut_user - 1);
  std::strncpy(entry.ut_line, line, sizeof entry.ut_line - 1);
  std::strncpy(entry.ut_host, host, sizeof entry.ut_host - 1);
  entry.ut_tv.tv_sec = 1700000000;
  return {reinterpret_cast<const char*>(&entry), sizeof entry};
}

// One that has ended and was reaped.
pid_t formerProcess() {
  const pid_t child = fork();
  if (child == 0) _exit(0);
  waitpid(child, nullptr, 0);
  return child;
}

std::vector<std::string> namesIn(const std::string& content) {
  const MadeUpFiles files;
  LinuxLogin provider(files.write("utmp", content));
  std::vector<std::string> names;
  for (const ProvidedRow& row : enumerateRows(provider, {"Name"})) names.push_back(textOf(row[0]));
  return names;
}

TEST(LinuxLogin, ShowsTheUsersOfTheList) {
  const MadeUpFiles files;
  LinuxLogin provider(files.write("utmp", record(USER_PROCESS, "anna", "pts/0", "10.0.0.7", getpid()) +
                                              record(USER_PROCESS, "ben", "tty1", "", getpid())));
  const auto rows =
      enumerateRows(provider, {"Name", "UserName", "Terminal", "RemoteHost", "ProcessID", "LoginTime", "SystemName"});
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(textOf(rows[0][0]), "anna@pts/0");
  EXPECT_EQ(textOf(rows[0][1]), "anna");
  EXPECT_EQ(textOf(rows[0][2]), "pts/0");
  EXPECT_EQ(textOf(rows[0][3]), "10.0.0.7");
  EXPECT_EQ(textOf(rows[0][4]), std::to_string(getpid()));
  EXPECT_EQ(typeOf(rows[0][5]), "datetime");
  EXPECT_FALSE(rows[0][6].IsNull());
  EXPECT_EQ(textOf(rows[1][3]), "(null)");
  EXPECT_EQ(enumerateRows(provider, {"Name"}, nameOf(provider, "Name", "ben@tty1")).size(), 1U);
}

TEST(LinuxLogin, LeavesOutWhatIsNoLoginAndWhoHasGone) {
  EXPECT_THAT(namesIn(record(BOOT_TIME, "reboot", "~", "", 0) + record(LOGIN_PROCESS, "LOGIN", "tty2", "", getpid()) +
                      record(DEAD_PROCESS, "", "pts/1", "", getpid()) +
                      record(USER_PROCESS, "gone", "pts/2", "", formerProcess()) +
                      record(USER_PROCESS, "anna", "pts/3", "", getpid())),
              ElementsAre("anna@pts/3"));
}

TEST(LinuxLogin, TwoOfOneNameAreToldApartAndABrokenEndIsPassedOver) {
  const std::string one = record(USER_PROCESS, "anna", "pts/3", "", getpid());
  EXPECT_THAT(namesIn(one + one + one.substr(0, 100)),
              ElementsAre("anna@pts/3", "anna@pts/3#" + std::to_string(getpid())));
}

TEST(LinuxLogin, AFieldMayBeFull) {
  const std::string user(sizeof(utmpx::ut_user), 'u');
  std::string full = record(USER_PROCESS, "", "pts/3", "", getpid());
  std::memcpy(full.data() + offsetof(utmpx, ut_user), user.data(), user.size());
  EXPECT_THAT(namesIn(full), ElementsAre(user + "@pts/3"));
}

TEST(LinuxLogin, WarnsWhereThereIsNoList) {
  const MadeUpFiles files;
  const KeptWarnings warnings;
  LinuxLogin provider(files.path("utmp"));
  EXPECT_TRUE(enumerateRows(provider, {"Name"}).empty());
  EXPECT_THAT(warnings.lines(), ElementsAre("Cannot read " + files.path("utmp") + ": No such file or directory"));
}

}  // namespace
