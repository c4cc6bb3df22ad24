// The provider of Linux_OperatingSystem agrees with the kernel.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <sys/sysinfo.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <ctime>

#include "Cimom/Providers/LinuxOperatingSystem.h"
#include "Cimom/Providers/LinuxProcess.h"
#include "ProviderFixture.h"

namespace {

using ::testing::MatchesRegex;

ProvidedRow systemRow(const std::vector<std::string>& properties) {
  LinuxOperatingSystem provider;
  const auto rows = enumerateRows(provider, properties);
  EXPECT_EQ(rows.size(), 1u);
  return rows.at(0);
}

TEST(LinuxOperatingSystem, ServesItsClass) {
  EXPECT_EQ(LinuxOperatingSystem().getClassName(), "Linux_OperatingSystem");
}

TEST(LinuxOperatingSystem, NamesKernelAndHost) {
  utsname names{};
  ASSERT_EQ(uname(&names), 0);
  const ProvidedRow row = systemRow({"KernelName", "KernelRelease", "KernelVersion", "Architecture", "HostName"});
  EXPECT_EQ(textOf(row[0]), names.sysname);
  EXPECT_EQ(textOf(row[1]), names.release);
  EXPECT_EQ(textOf(row[2]), names.version);
  EXPECT_EQ(textOf(row[3]), names.machine);
  EXPECT_EQ(textOf(row[4]), names.nodename);
}

TEST(LinuxOperatingSystem, TakesItsKeyFromTheReleaseFile) {
  const ProvidedRow row = systemRow({"Name", "ElementName"});
  EXPECT_EQ(textOf(row[0]), std::string(LinuxOperatingSystem::name().view()));
  EXPECT_EQ(textOf(row[1]), textOf(row[0]));
  EXPECT_FALSE(textOf(row[0]).empty());
  EXPECT_EQ(textOf(row[0]).find('"'), std::string::npos);
}

TEST(LinuxOperatingSystem, CountsMemoryInKibibytes) {
  struct sysinfo info {};
  ASSERT_EQ(sysinfo(&info), 0);
  const ProvidedRow row =
      systemRow({"TotalVisibleMemorySize", "FreePhysicalMemory", "AvailableMemory", "TotalSwapSpaceSize",
                 "FreeSpaceInPagingFiles", "TotalVirtualMemorySize", "FreeVirtualMemory"});
  const QORuint64 total = QORuint64{info.totalram} * info.mem_unit / 1024;
  EXPECT_EQ(row[0]->getUint64(), total);
  EXPECT_GT(row[1]->getUint64(), 0u);
  EXPECT_LT(row[1]->getUint64(), total);
  EXPECT_LE(row[2]->getUint64(), total);
  EXPECT_EQ(row[3]->getUint64(), QORuint64{info.totalswap} * info.mem_unit / 1024);
  EXPECT_LE(row[4]->getUint64(), row[3]->getUint64());
  EXPECT_EQ(row[5]->getUint64(), row[0]->getUint64() + row[3]->getUint64());
  EXPECT_LE(row[6]->getUint64(), row[5]->getUint64());
}

TEST(LinuxOperatingSystem, GivesTheThreeLoadAverages) {
  const ProvidedRow row = systemRow({"LoadAverage"});
  ASSERT_FALSE(row[0].IsNull());
  EXPECT_TRUE(row[0]->isArray());
  EXPECT_EQ(typeOf(row[0]), "real64");
  const auto averages = row[0]->getArray();
  ASSERT_EQ(averages->entries(), 3u);
  double expected[3] = {};
  ASSERT_EQ(getloadavg(expected, 3), 3);
  for (QORuint32 i = 0; i < 3; ++i) EXPECT_NEAR(averages->at(i)->getReal64(), expected[i], 1.0);
}

TEST(LinuxOperatingSystem, CountsProcessesAndProcessors) {
  const ProvidedRow row = systemRow({"NumberOfProcesses", "NumberOfProcessors"});
  LinuxProcess processes;
  const double count = static_cast<double>(enumerateRows(processes, {"Handle"}).size());
  EXPECT_NEAR(row[0]->getReal64(), count, 50.0);
  EXPECT_EQ(row[1]->getUint32(), static_cast<QORuint32>(sysconf(_SC_NPROCESSORS_ONLN)));
}

TEST(LinuxOperatingSystem, TellsTheTimeInTheLocalZone) {
  const ProvidedRow row = systemRow({"LocalDateTime", "LastBootUpTime", "CurrentTimeZone"});
  EXPECT_THAT(textOf(row[0]), MatchesRegex("[0-9]{14}\\.[0-9]{6}[+-][0-9]{3}"));
  const time_t now = time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  EXPECT_EQ(row[2]->getSint16(), local.tm_gmtoff / 60);
  std::tm parsed{};
  strptime(textOf(row[0]).substr(0, 14).c_str(), "%Y%m%d%H%M%S", &parsed);
  parsed.tm_isdst = -1;
  EXPECT_NEAR(static_cast<double>(mktime(&parsed)), static_cast<double>(now), 2.0);
  EXPECT_LT(textOf(row[1]), textOf(row[0]));
}

TEST(LinuxOperatingSystem, GivesNullForAPropertyItDoesNotKnow) {
  const ProvidedRow row = systemRow({"MaxNumberOfProcesses", "CreationClassName"});
  EXPECT_EQ(textOf(row[0]), "(null)");
  EXPECT_EQ(textOf(row[1]), "Linux_OperatingSystem");
}

}  // namespace
