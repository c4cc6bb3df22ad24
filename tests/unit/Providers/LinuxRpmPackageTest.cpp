// Packages in a database that rpm itself makes here, and says what is in it.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <stdlib.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>
#include <thread>

#include "Cimom/Providers/LinuxPackage.h"
#include "MadeUpFiles.h"
#include "ProviderFixture.h"
#include "cimom/CQoriProviderException.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

constexpr const char* kList =
    "Package: tiny\nStatus: install ok installed\nArchitecture: all\nVersion: 1.5-2\nInstalled-Size: 7\n";

// What the shell's command prints.
std::string outputOf(const std::string& command) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen((command + " 2>/dev/null").c_str(), "r"), &pclose);
  std::string output;
  for (int c = fgetc(pipe.get()); c != EOF; c = fgetc(pipe.get())) output += static_cast<char>(c);
  return output;
}

std::vector<std::string> sortedLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  return lines;
}

// A database with two packages and two versions of a third. rpm's own settings of this user stay out of it.
class RpmDatabase {
 public:
  RpmDatabase() {
    add("tiny", "1.5", "Epoch: 3\nVendor: Nobody\nGroup: Tools/Tiny\nPackager: Anna <anna@example.org>\n");
    add("many-parts", "1", "Vendor: Somebody\n");
    add("kernel", "6.1", "");
    add("kernel", "6.2", "");
  }
  std::string folder() const { return _files.path("db"); }
  // The lines that rpm prints, without their order.
  std::vector<std::string> query(const std::string& options) const {
    return sortedLines(outputOf(_rpm + " -qa " + options));
  }

 private:
  // Builds a package with a file of 5000 bytes, and enters it without unpacking.
  void add(const std::string& name, const std::string& version, const std::string& tags) {
    const std::string recipe =
        _files.write("recipe", "Name: " + name + "\nVersion: " + version + "\nRelease: 2\nSummary: A package\n" + tags +
                                   "License: none\nBuildArch: noarch\n%description\nMore.\n%install\n"
                                   "mkdir -p %{buildroot}/made-up && head -c 5000 /dev/zero >%{buildroot}/made-up/" +
                                   name + version + "\n%files\n/made-up/" + name + version + "\n");
    outputOf("HOME=" + _files.path() + " rpmbuild -bb --define '_topdir " + _files.path("top") + "' " + recipe);
    outputOf(_rpm + " -i --justdb --nodeps " + _files.path("top/RPMS/noarch/") + name + "-" + version +
             "-2.noarch.rpm");
  }

  const MadeUpFiles _files;
  const std::string _rpm = "HOME=" + _files.path() + " rpm --dbpath " + _files.path("db");
};

class LinuxRpmPackage : public testing::Test {
 protected:
  static void SetUpTestSuite() { made = std::make_unique<RpmDatabase>(); }
  static void TearDownTestSuite() { made.reset(); }
  void SetUp() override { ASSERT_EQ(made->query("").size(), 4U) << "rpm and rpmbuild make the database"; }
  static std::string database() { return made->folder(); }

  static inline std::unique_ptr<RpmDatabase> made;
  const MadeUpFiles _files;
};

std::vector<std::string> textsOf(const ProvidedRow& row) {
  std::vector<std::string> texts;
  for (const auto& value : row) texts.push_back(textOf(value));
  return texts;
}

TEST_F(LinuxRpmPackage, ShowsWhatRpmShows) {
  LinuxPackage provider(_files.path("status"), database());
  const auto rows =
      enumerateRows(provider, {"Name", "InstanceID", "PackageSystem", "VersionString", "Architecture", "State",
                               "Section", "Priority", "SourceName", "InstalledSize", "Manufacturer", "Description"});
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_THAT(textsOf(findRow(rows, "tiny")),
              ElementsAre("tiny", "rpm:tiny-3:1.5-2.noarch", "rpm", "3:1.5-2", "noarch", "installed", "Tools/Tiny",
                          "(null)", "tiny", "5000", "Anna <anna@example.org>", "A package"));
  EXPECT_THAT(textsOf(findRow(rows, "many-parts")),
              ElementsAre("many-parts", "rpm:many-parts-1-2.noarch", "rpm", "1-2", "noarch", "installed", "Unspecified",
                          "(null)", "many-parts", "5000", "Somebody", "A package"));
  std::string told;
  for (const auto& row : rows) {
    const std::vector<std::string> texts = textsOf(row);
    told += texts[0] + ' ' + texts[1].substr(4) + ' ' + texts[3] + ' ' + texts[4] + ' ' + texts[9] + '\n';
  }
  EXPECT_EQ(sortedLines(told), made->query("--qf '%{NAME} %{NEVRA} %{EVR} %{ARCH} %{SIZE}\\n'"));
}

TEST_F(LinuxRpmPackage, VersionsOfOnePackageHaveKeysOfTheirOwn) {
  LinuxPackage provider(_files.path("status"), database());
  const auto rows =
      enumerateRows(provider, {"Name", "Manufacturer"}, nameOf(provider, "InstanceID", "rpm:kernel-6.2-2.noarch"));
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_THAT(textsOf(rows[0]), ElementsAre("kernel", "(null)"));
}

TEST_F(LinuxRpmPackage, AMachineWithBothListsHasThePackagesOfBoth) {
  const KeptWarnings warnings;
  LinuxPackage provider(_files.write("status", kList), database());
  std::vector<std::string> keys;
  for (const auto& row : enumerateRows(provider, {"InstanceID"})) keys.push_back(textOf(row[0]));
  EXPECT_THAT(keys, UnorderedElementsAre("dpkg:tiny:all", "rpm:tiny-3:1.5-2.noarch", "rpm:many-parts-1-2.noarch",
                                         "rpm:kernel-6.1-2.noarch", "rpm:kernel-6.2-2.noarch"));
  EXPECT_EQ(keys.front(), "dpkg:tiny:all");
  EXPECT_THAT(warnings.lines(), ElementsAre());
}

TEST_F(LinuxRpmPackage, AMachineOfRpmMissesNoListOfDpkg) {
  const KeptWarnings warnings;
  LinuxPackage provider(_files.path("status"), database());
  EXPECT_EQ(enumerateRows(provider, {"Name"}).size(), 4U);
  EXPECT_THAT(warnings.lines(), ElementsAre());
}

TEST_F(LinuxRpmPackage, AMachineWithoutADatabaseStaysWithoutOne) {
  const KeptWarnings warnings;
  std::filesystem::create_directories(_files.path("empty"));
  for (const char* folder : {"empty", "missing"}) {
    LinuxPackage provider(_files.write("status", kList), _files.path(folder));
    EXPECT_EQ(enumerateRows(provider, {"Name"}).size(), 1U) << folder;
  }
  EXPECT_TRUE(std::filesystem::is_empty(_files.path("empty")));
  EXPECT_FALSE(std::filesystem::exists(_files.path("missing")));
  EXPECT_THAT(warnings.lines(), ElementsAre());
}

TEST_F(LinuxRpmPackage, ADatabaseThatIsNoneIsAFailureThatNamesIt) {
  _files.write("broken/rpmdb.sqlite", "this is no database\n");
  LinuxPackage broken(_files.write("status", kList), _files.path("broken"));
  std::size_t told = 0;
  testing::internal::CaptureStderr();
  try {
    broken.enumerate(requestFor(broken, {"Name"}), [&](ProvidedRow&&) { ++told; });
    ADD_FAILURE() << "nothing is wrong";
  } catch (const CQoriProviderException& failure) {
    EXPECT_THAT(std::string(failure.getMessage().view()),
                HasSubstr("The packages cannot be listed: rpm's database in " + _files.path("broken") + ": "));
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "librpm says nothing past the provider";
  EXPECT_EQ(told, 1U) << "the packages of dpkg are told";
  LinuxPackage sound(_files.path("missing"), database());
  EXPECT_EQ(enumerateRows(sound, {"Name"}).size(), 4U);
}

TEST_F(LinuxRpmPackage, WhoThrowsAwayTheRestLetsTheNextRead) {
  LinuxPackage provider(_files.path("status"), database());
  const auto refuse = [](ProvidedRow&&) { throw std::runtime_error("no more"); };
  EXPECT_THROW(provider.enumerate(requestFor(provider, {"Name"}), refuse), std::runtime_error);
  EXPECT_EQ(enumerateRows(provider, {"Name"}).size(), 4U);
}

TEST_F(LinuxRpmPackage, SeveralThreadsReadAtOnce) {
  LinuxPackage provider(_files.path("status"), database());
  std::vector<std::size_t> counts(4);
  std::vector<std::thread> threads;
  for (std::size_t& count : counts) {
    threads.emplace_back([&] { count = enumerateRows(provider, {"Name", "VersionString"}).size(); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(counts, ElementsAre(4, 4, 4, 4));
}

}  // namespace
