// This machine, made up of files.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "Cimom/Providers/LinuxComputerSystem.h"
#include "MadeUpFiles.h"
#include "ProviderFixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

LinuxComputerSystem::Sources sourcesIn(const MadeUpFiles& files) {
  return {files.path("dmi"), files.path("cpu"), files.path("cpuinfo")};
}

void writeProcessor(const MadeUpFiles& files, const std::string& name, const char* socket, const char* core) {
  files.write("cpu/" + name + "/topology/physical_package_id", socket);
  files.write("cpu/" + name + "/topology/core_id", core);
}

std::vector<std::string> textsOf(const MadeUpFiles& files, const std::vector<std::string>& properties) {
  LinuxComputerSystem provider(sourcesIn(files));
  const auto rows = enumerateRows(provider, properties);
  EXPECT_EQ(rows.size(), 1U);
  std::vector<std::string> texts;
  for (const auto& value : rows.at(0)) texts.push_back(textOf(value));
  return texts;
}

TEST(LinuxComputerSystem, TellsWhatTheFirmwareTells) {
  const MadeUpFiles files;
  const char* const names[] = {"sys_vendor",   "product_name", "product_version", "product_serial", "product_uuid",
                               "board_vendor", "board_name",   "bios_vendor",     "bios_version",   "bios_date"};
  for (const char* name : names) files.write(std::string("dmi/") + name, std::string("the ") + name + "  \n");
  const KeptWarnings warnings;
  EXPECT_THAT(
      textsOf(files, {"Vendor", "Model", "ModelVersion", "SerialNumber", "UUID", "BoardVendor", "BoardModel",
                      "FirmwareVendor", "FirmwareVersion", "FirmwareDate"}),
      ElementsAre("the sys_vendor", "the product_name", "the product_version", "the product_serial", "the product_uuid",
                  "the board_vendor", "the board_name", "the bios_vendor", "the bios_version", "the bios_date"));
  EXPECT_THAT(warnings.lines(), ElementsAre());
}

TEST(LinuxComputerSystem, AnEmptyFieldOfTheFirmwareIsNull) {
  const MadeUpFiles files;
  files.write("dmi/sys_vendor", "   \n");
  EXPECT_THAT(textsOf(files, {"Vendor"}), ElementsAre("(null)"));
}

TEST(LinuxComputerSystem, CountsSocketsCoresAndProcessors) {
  const MadeUpFiles files;
  // Two sockets of two cores, each of which is two processors, and one processor that is switched off.
  int number = 0;
  for (const char* socket : {"0\n", "1\n"}) {
    for (const char* core : {"0\n", "0\n", "1\n", "1\n"}) {
      writeProcessor(files, "cpu" + std::to_string(number++), socket, core);
    }
  }
  files.write("cpu/cpu8/online", "0\n");
  files.write("cpu/cpufreq/policy0", "");
  files.write("cpuinfo", "processor\t: 0\nmodel name\t: Quick 9000 @ 3 GHz\n\nprocessor\t: 1\nmodel name\t: Other\n");
  EXPECT_THAT(textsOf(files, {"NumberOfSockets", "NumberOfCores", "NumberOfProcessors", "ProcessorModel"}),
              ElementsAre("2", "4", "8", "Quick 9000 @ 3 GHz"));
}

TEST(LinuxComputerSystem, WarnsOnceOfWhatIsNotThere) {
  const MadeUpFiles files;
  const KeptWarnings warnings;
  EXPECT_THAT(textsOf(files, {"Vendor", "SerialNumber", "NumberOfSockets", "NumberOfCores", "ProcessorModel"}),
              ElementsAre("(null)", "(null)", "(null)", "(null)", "(null)"));
  ASSERT_EQ(warnings.lines().size(), 1U);
  EXPECT_THAT(warnings.lines()[0], HasSubstr("dmi/sys_vendor: No such file or directory, and 3 more"));
}

TEST(LinuxComputerSystem, ReadsNoFileThatIsNotAskedFor) {
  const MadeUpFiles files;
  const KeptWarnings warnings;
  const auto texts = textsOf(files, {"Name", "CreationClassName"});
  EXPECT_EQ(texts[1], "Linux_ComputerSystem");
  EXPECT_THAT(warnings.lines(), ElementsAre());
}

}  // namespace
