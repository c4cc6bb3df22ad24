// The provider of Linux_Processor agrees with the kernel.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <unistd.h>

#include <fstream>

#include "Cimom/Providers/LinuxProcessor.h"
#include "Cimom/Providers/LinuxValues.h"
#include "ProviderFixture.h"

namespace {

TEST(LinuxProcessor, ServesItsClass) { EXPECT_EQ(LinuxProcessor().getClassName(), "Linux_Processor"); }

TEST(LinuxProcessor, ShowsEachProcessorInUse) {
  LinuxProcessor provider;
  const auto rows = enumerateRows(provider, {"DeviceID"});
  ASSERT_EQ(rows.size(), static_cast<std::size_t>(sysconf(_SC_NPROCESSORS_ONLN)));
  EXPECT_EQ(textOf(rows[0][0]), "0");
  EXPECT_EQ(typeOf(rows[0][0]), "string");
}

TEST(LinuxProcessor, CountsTheTimeSinceTheStart) {
  LinuxProcessor provider;
  double upSeconds = 0;
  std::ifstream("/proc/uptime") >> upSeconds;
  const double upTime = upSeconds * 1000;
  for (const ProvidedRow& row :
       enumerateRows(provider, {"DeviceID", "UserModeTime", "KernelModeTime", "IdleTime", "WaitTime"})) {
    double total = 0;
    for (std::size_t i = 1; i < row.size(); ++i) total += row[i]->getReal64();
    EXPECT_GT(total, 0);
    EXPECT_LT(total, upTime * 1.1 + 1000);
  }
}

TEST(LinuxProcessor, TakesTheDescriptionFromTheProcessorsOwnParagraph) {
  LinuxProcessor provider;
  const std::string description = readSmallFile("/proc/cpuinfo");
  for (const ProvidedRow& row : enumerateRows(provider, {"DeviceID", "Name", "Vendor", "CurrentClockSpeed"})) {
    const bool isFound = description.find("\t: " + textOf(row[1]) + "\n") != std::string::npos;
    EXPECT_EQ(isFound, !row[1].IsNull());
    EXPECT_EQ(row[1].IsNull(), description.find("model name") == std::string::npos);
    EXPECT_EQ(row[2].IsNull(), description.find("vendor_id") == std::string::npos);
    EXPECT_EQ(row[3].IsNull(), description.find("cpu MHz") == std::string::npos);
  }
}

TEST(LinuxProcessor, ReadsOneProcessorAloneWhenOneIsWanted) {
  LinuxProcessor provider;
  EXPECT_EQ(enumerateRows(provider, {"DeviceID"}, nameOf(provider, "DeviceID", "0")).size(), 1u);
  EXPECT_EQ(enumerateRows(provider, {"DeviceID"}, nameOf(provider, "DeviceID", "")).size(), 0u);
}

}  // namespace
