// Kernel modules in a made-up list.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "Cimom/Providers/LinuxKernelModule.h"
#include "MadeUpFiles.h"
#include "ProviderFixture.h"

namespace {

using ::testing::ElementsAre;

std::vector<std::string> textsOf(const ProvidedRow& row) {
  std::vector<std::string> texts;
  for (const auto& value : row) texts.push_back(textOf(value));
  return texts;
}

TEST(LinuxKernelModule, ShowsWhatTheKernelLists) {
  const MadeUpFiles files;
  LinuxKernelModule provider(files.write("modules",
                                         "nf_nat 57344 2 nft_chain_nat,xt_nat, Live 0x0000000000000000\n"
                                         "loop 32768 0 - Live 0x0000000000000000 (E)\n"
                                         "fixed 4096 1 [permanent], Loading 0x0000000000000000\n"
                                         "uncounted 8192 - - Live 0x0\n"
                                         "\nnonsense\n"));
  const auto rows = enumerateRows(provider, {"Name", "Size", "UseCount", "UsedBy", "State", "SystemCreationClassName"});
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_THAT(textsOf(rows[0]),
              ElementsAre("nf_nat", "57344", "2", "nft_chain_nat,xt_nat", "Live", "Linux_ComputerSystem"));
  EXPECT_THAT(textsOf(rows[1]), ElementsAre("loop", "32768", "0", "", "Live", "Linux_ComputerSystem"));
  EXPECT_THAT(textsOf(rows[2]), ElementsAre("fixed", "4096", "1", "", "Loading", "Linux_ComputerSystem"));
  EXPECT_THAT(textsOf(rows[3]), ElementsAre("uncounted", "8192", "(null)", "", "Live", "Linux_ComputerSystem"));
  EXPECT_EQ(typeOf(rows[0][1]), "uint64");
  EXPECT_EQ(typeOf(rows[0][2]), "uint32");
  EXPECT_EQ(enumerateRows(provider, {"Name"}, nameOf(provider, "Name", "loop")).size(), 1U);
}

TEST(LinuxKernelModule, WarnsWhereThereIsNoList) {
  const MadeUpFiles files;
  const KeptWarnings warnings;
  LinuxKernelModule provider(files.path("modules"));
  EXPECT_TRUE(enumerateRows(provider, {"Name"}).empty());
  EXPECT_THAT(warnings.lines(), ElementsAre("Cannot read " + files.path("modules") + ": No such file or directory"));
}

TEST(LinuxKernelModule, AnEmptyListIsNoReasonToWarn) {
  const MadeUpFiles files;
  const KeptWarnings warnings;
  LinuxKernelModule provider(files.write("modules", ""));
  EXPECT_TRUE(enumerateRows(provider, {"Name"}).empty());
  EXPECT_THAT(warnings.lines(), ElementsAre());
}

}  // namespace
