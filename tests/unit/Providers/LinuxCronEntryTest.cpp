// Entries of made-up tables of cron.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "Cimom/Providers/LinuxCronEntry.h"
#include "MadeUpFiles.h"
#include "ProviderFixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

LinuxCronEntry::Sources sourcesIn(const MadeUpFiles& files) {
  return {files.path("crontab"), files.path("cron.d"), files.path("crontabs")};
}

// Schedule, user and command of each entry.
std::vector<std::string> entriesIn(const MadeUpFiles& files) {
  LinuxCronEntry provider(sourcesIn(files));
  std::vector<std::string> texts;
  for (const ProvidedRow& row : enumerateRows(provider, {"Schedule", "Owner", "Command"})) {
    texts.push_back(textOf(row[0]) + " | " + textOf(row[1]) + " | " + textOf(row[2]));
  }
  return texts;
}

TEST(LinuxCronEntry, ReadsTheSystemsTable) {
  const MadeUpFiles files;
  files.write("crontab",
              "# comment = none\n"
              "SHELL=/bin/sh\n"
              "MAIL TO = x\n"
              "  PATH = /usr/bin:/bin\n"
              "\n"
              "17 *\t* * *\troot\tcd / && A=1 run-parts /etc/cron.hourly\n"
              "@reboot  anna  /usr/bin/start  --now\n"
              "*/5 8-18 * jan mon-fri www %s = 5\n");
  const KeptWarnings warnings;
  EXPECT_THAT(entriesIn(files),
              ElementsAre("17 * * * * | root | cd / && A=1 run-parts /etc/cron.hourly",
                          "@reboot | anna | /usr/bin/start  --now", "*/5 8-18 * jan mon-fri | www | %s = 5"));
  EXPECT_THAT(warnings.lines(), ElementsAre("Cannot read " + files.path("crontab") + ":3: Invalid argument"));
}

TEST(LinuxCronEntry, AVariablesNameMayBeQuoted) {
  const MadeUpFiles files;
  files.write("crontab", "\"Q R\"=3\n'S  T' = 4\n\"U=V\"=5\n\"\" = 6\n@daily root \"A B\"=7\n");
  const KeptWarnings warnings;
  EXPECT_THAT(entriesIn(files), ElementsAre("@daily | root | \"A B\"=7"));
  EXPECT_THAT(warnings.lines(), SizeIs(0));
}

TEST(LinuxCronEntry, AQuotedWordAloneIsNoVariable) {
  const MadeUpFiles files;
  for (const char* line : {"\"Q R\"", "\"Q R=3", "'Q\"=3", "= 3"}) {
    const std::string table = files.write("crontab", line);
    const KeptWarnings warnings;
    EXPECT_THAT(entriesIn(files), SizeIs(0)) << line;
    EXPECT_THAT(warnings.lines(), ElementsAre("Cannot read " + table + ":1: Invalid argument")) << line;
  }
}

TEST(LinuxCronEntry, PassesOverAPipeWithAWarning) {
  const MadeUpFiles files;
  files.write("cron.d/a", "@daily root first\n");
  ASSERT_EQ(mkfifo(files.path("cron.d/pipe").c_str(), 0600), 0);
  const KeptWarnings warnings;
  EXPECT_THAT(entriesIn(files), ElementsAre("@daily | root | first"));
  EXPECT_THAT(warnings.lines(), ElementsAre("Cannot read " + files.path("cron.d/pipe") + ": Invalid argument"));
}

TEST(LinuxCronEntry, ReadsPackagesTablesByNameAndUsersOwn) {
  const MadeUpFiles files;
  files.write("cron.d/b", "0 0 * * * root second\n");
  files.write("cron.d/a", "0 0 * * * root first\n");
  files.write("cron.d/a.dpkg-dist", "0 0 * * * root never\n");
  files.write("cron.d/.placeholder", "0 0 * * * root never\n");
  files.write("crontabs/anna", "@daily own command\n");
  const KeptWarnings warnings;
  EXPECT_THAT(entriesIn(files),
              ElementsAre("0 0 * * * | root | first", "0 0 * * * | root | second", "@daily | anna | own command"));
  EXPECT_THAT(warnings.lines(), SizeIs(0));
}

TEST(LinuxCronEntry, IsNamedByFileAndLine) {
  const MadeUpFiles files;
  const std::string table = files.write("crontab", "\n0 0 * * * root first\n");
  LinuxCronEntry provider(sourcesIn(files));
  const auto rows = enumerateRows(provider, {"Name", "FileName", "LineNumber", "CreationClassName"},
                                  nameOf(provider, "Name", table + ":2"));
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(textOf(rows[0][0]), table + ":2");
  EXPECT_EQ(textOf(rows[0][1]), table);
  EXPECT_EQ(rows[0][2]->getUint32(), 2U);
  EXPECT_EQ(textOf(rows[0][3]), "Linux_CronEntry");
}

TEST(LinuxCronEntry, WarnsOfLinesThatAreNone) {
  const MadeUpFiles files;
  for (const char* line : {"0 0 * * *", "0 0 * * * root", "@daily", "@daily root", "word"}) {
    const std::string table = files.write("crontab", line);
    const KeptWarnings warnings;
    EXPECT_THAT(entriesIn(files), SizeIs(0)) << line;
    EXPECT_THAT(warnings.lines(), ElementsAre("Cannot read " + table + ":1: Invalid argument")) << line;
  }
}

TEST(LinuxCronEntry, WarnsWhereThereIsNoTableAtAll) {
  const MadeUpFiles files;
  const KeptWarnings warnings;
  EXPECT_THAT(entriesIn(files), SizeIs(0));
  EXPECT_THAT(warnings.lines(), ElementsAre("Cannot read " + files.path("crontab") + ": No such file or directory"));
}

}  // namespace
