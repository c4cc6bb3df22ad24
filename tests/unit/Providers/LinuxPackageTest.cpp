// Packages in made-up lists of dpkg, on machines without rpm.
// SPDX-License-Identifier: Apache-2.0
#include <apt-pkg/error.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <thread>

#include "Cimom/Providers/LinuxPackage.h"
#include "MadeUpFiles.h"
#include "ProviderFixture.h"
#include "cimom/CQoriProviderException.h"

namespace {

using ::testing::ElementsAre;

constexpr const char* kList =
    "Package: bash\nEssential: yes\nStatus: install ok installed\nPriority: required\nSection: shells\n"
    "Installed-Size: 7164\nMaintainer: Anna <anna@example.org>\nArchitecture: amd64\nSource: bash (5.2.15-2)\n"
    "Version: 5.2.15-2+b8\nDescription: GNU Bourne Again SHell\n Bash is a shell.\n .\n Package: not this\n"
    "\n"
    "Package: libc6\nStatus: deinstall ok config-files\nArchitecture: i386\nVersion: 2.36-9\n"
    "\n"
    "Package: gone\nStatus: purge ok not-installed\nArchitecture: amd64\n";

std::vector<std::string> textsOf(const ProvidedRow& row) {
  std::vector<std::string> texts;
  for (const auto& value : row) texts.push_back(textOf(value));
  return texts;
}

TEST(LinuxPackage, ShowsWhatDpkgKnows) {
  const MadeUpFiles files;
  LinuxPackage provider(files.write("status", kList), files.path("rpm"));
  const auto rows =
      enumerateRows(provider, {"InstanceID", "Name", "VersionString", "Architecture", "State", "Section", "Priority",
                               "SourceName", "InstalledSize", "Manufacturer", "Description", "PackageSystem"});
  ASSERT_EQ(rows.size(), 2U) << "what is not installed is not there";
  EXPECT_THAT(textsOf(rows[0]),
              ElementsAre("dpkg:bash:amd64", "bash", "5.2.15-2+b8", "amd64", "installed", "shells", "required", "bash",
                          std::to_string(7164 * 1024), "Anna <anna@example.org>", "GNU Bourne Again SHell", "dpkg"));
  EXPECT_THAT(textsOf(rows[1]), ElementsAre("dpkg:libc6:i386", "libc6", "2.36-9", "i386", "config-files", "(null)",
                                            "(null)", "libc6", "(null)", "(null)", "(null)", "dpkg"));
  EXPECT_EQ(enumerateRows(provider, {"Name"}, nameOf(provider, "InstanceID", "dpkg:libc6:i386")).size(), 1U);
}

TEST(LinuxPackage, ASizeThatIsNoneOrTooGreatIsNotTold) {
  const MadeUpFiles files;
  for (const auto& [size, shown] :
       std::vector<std::pair<std::string, std::string>>{{"0", "0"},
                                                        {"18014398509481983", "18446744073709550592"},
                                                        {"18014398509481984", "(null)"},
                                                        {"99999999999999999999", "(null)"},
                                                        {"-5", "(null)"},
                                                        {"7 KiB", "(null)"},
                                                        {"1.5", "(null)"}}) {
    LinuxPackage provider(files.write("status",
                                      "Package: a\nStatus: install ok installed\nArchitecture: all\n"
                                      "Installed-Size: " +
                                          size + "\nVersion: 1\n"),
                          files.path("rpm"));
    const auto rows = enumerateRows(provider, {"InstalledSize"});
    ASSERT_EQ(rows.size(), 1U) << size;
    EXPECT_EQ(textOf(rows[0][0]), shown) << size;
  }
}

TEST(LinuxPackage, WarnsWhereThereIsNoList) {
  const MadeUpFiles files;
  const KeptWarnings warnings;
  LinuxPackage provider(files.path("status"), files.path("rpm"));
  EXPECT_TRUE(enumerateRows(provider, {"Name"}).empty());
  EXPECT_THAT(warnings.lines(), ElementsAre("Cannot read " + files.path("status") + ": No such file or directory"));
}

TEST(LinuxPackage, AListThatIsNoneIsTheProvidersFailureAndTheNextIsRead) {
  const MadeUpFiles files;
  LinuxPackage broken(files.write("broken", "Package bash\nthis is no list\n"), files.path("rpm"));
  EXPECT_THROW(enumerateRows(broken, {"Name"}), CQoriProviderException);
  LinuxPackage sound(files.write("status", kList), files.path("rpm"));
  EXPECT_EQ(enumerateRows(sound, {"Name"}).size(), 2U);
  LinuxPackage empty(files.write("empty", ""), files.path("rpm"));
  EXPECT_TRUE(enumerateRows(empty, {"Name"}).empty());
}

TEST(LinuxPackage, WhoThrowsAwayTheRestLeavesTheLibrarysMessagesAsTheyWere) {
  const MadeUpFiles files;
  LinuxPackage provider(files.write("status", kList), files.path("rpm"));
  const std::size_t before = _error->StackCount();
  const auto refuse = [](ProvidedRow&&) { throw std::runtime_error("no more"); };
  EXPECT_THROW(provider.enumerate(requestFor(provider, {"Name"}), refuse), std::runtime_error);
  EXPECT_EQ(_error->StackCount(), before);
}

TEST(LinuxPackage, SeveralThreadsReadAtOnce) {
  const MadeUpFiles files;
  std::string list;
  for (int i = 0; i < 300; ++i) {
    list += "Package: p" + std::to_string(i) + "\nStatus: install ok installed\nArchitecture: all\nVersion: 1\n\n";
  }
  LinuxPackage provider(files.write("status", list), files.path("rpm"));
  std::vector<std::size_t> counts(4);
  std::vector<std::thread> threads;
  for (std::size_t& count : counts) {
    threads.emplace_back([&] { count = enumerateRows(provider, {"Name", "VersionString"}).size(); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(counts, ElementsAre(300, 300, 300, 300));
}

}  // namespace
