// Values of the live providers: points in time in every zone and at every edge.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <limits>

#include "Cimom/Providers/LinuxValues.h"
#include "MadeUpFiles.h"
#include "ProviderFixture.h"

namespace {

class DateTimeValue : public testing::Test {
 protected:
  void useZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
  void SetUp() override {
    const char* const zone = getenv("TZ");
    _hadZone = zone != nullptr;
    if (_hadZone) _zone = zone;
  }
  void TearDown() override {
    if (_hadZone) {
      setenv("TZ", _zone.c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }

 private:
  bool _hadZone = false;
  std::string _zone;
};

TEST_F(DateTimeValue, HasTheFormOfCim) {
  useZone("UTC0");
  EXPECT_EQ(textOf(dateTimeValue(0, 0)), "19700101000000.000000+000");
  EXPECT_EQ(textOf(dateTimeValue(1700000000, 123456)), "20231114221320.123456+000");
  EXPECT_EQ(typeOf(dateTimeValue(0, 0)), "datetime");
}

TEST_F(DateTimeValue, CarriesMicrosecondsBothWays) {
  useZone("UTC0");
  EXPECT_EQ(textOf(dateTimeValue(0, 2500000)), "19700101000002.500000+000");
  EXPECT_EQ(textOf(dateTimeValue(10, -1)), "19700101000009.999999+000");
  EXPECT_EQ(textOf(dateTimeValue(10, -1000000)), "19700101000009.000000+000");
}

TEST_F(DateTimeValue, CountsTheZoneInMinutesEastOfGreenwich) {
  useZone("AAA-5:30");
  EXPECT_EQ(textOf(dateTimeValue(0, 0)), "19700101053000.000000+330");
  useZone("BBB8");
  EXPECT_EQ(textOf(dateTimeValue(0, 0)), "19691231160000.000000-480");
}

TEST_F(DateTimeValue, IsNullOutsideTheCalendar) {
  EXPECT_EQ(textOf(dateTimeValue(std::numeric_limits<QORsint64>::max() / 2, 0)), "(null)");
  EXPECT_EQ(textOf(dateTimeValue(300000000000, 0)), "(null)");
}

TEST(LinuxValues, TextIsNullWhenThereIsNone) {
  EXPECT_EQ(textOf(textOrNull(nullptr)), "(null)");
  EXPECT_EQ(textOf(textOrNull("")), "(null)");
  EXPECT_EQ(textOf(textOrNull("x")), "x");
  EXPECT_EQ(textOf(textValue("")), "");
}

TEST(LinuxValues, ReadsSmallFilesAndTellsWhyNot) {
  EXPECT_EQ(readSmallFile("/proc/self/comm").substr(0, 5), "unit_");
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(readSmallFile("/nonexistent/file"), "");
  EXPECT_EQ(errno, ENOENT);
}

TEST(LinuxValues, ReadsNeitherFoldersNorPipesNorDevices) {
  const MadeUpFiles files;
  ASSERT_EQ(mkfifo(files.path("pipe").c_str(), 0600), 0);
  for (const auto& [path, error] :
       {std::pair(files.path(), EISDIR), {files.path("pipe"), EINVAL}, {std::string("/dev/zero"), EINVAL}}) {
    EXPECT_EQ(readSmallFile(path), "") << path;
    EXPECT_EQ(errno, error) << path;
  }
}

TEST(LinuxValues, ReadsNoMoreThanASmallFile) {
  constexpr std::uintmax_t kGreatest = 16 << 20;
  const MadeUpFiles files;
  const std::string path = files.write("large", "");
  std::filesystem::resize_file(path, kGreatest);
  EXPECT_EQ(readSmallFile(path).size(), kGreatest);
  EXPECT_EQ(errno, 0);
  std::filesystem::resize_file(path, kGreatest + 1);
  EXPECT_EQ(readSmallFile(path), "");
  EXPECT_EQ(errno, EFBIG);
  EXPECT_EQ(readKernelTable(path).size(), kGreatest + 1);
  EXPECT_EQ(errno, 0);
}

TEST(TextValue, KeepsWhatIsUtf8) {
  for (const char* text : {"", "plain",
                           "gr\xC3\xB6\xC3\x9F"
                           "er",
                           "\xE6\x97\xA5", "\xF0\x9F\x98\x80", "\xF4\x8F\xBF\xBF", "\x1B["}) {
    EXPECT_EQ(textOf(textValue(text)), text);
  }
}

TEST(TextValue, ReplacesBytesThatAreNoUtf8) {
  EXPECT_EQ(textOf(textValue("a\xFF\xFE"
                             "b")),
            "a\xEF\xBF\xBD\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(textOf(textValue("\xC3")), "\xEF\xBF\xBD");
  EXPECT_EQ(textOf(textValue("\xE6\x97z")), "\xEF\xBF\xBD\xEF\xBF\xBDz");
  const std::string three = "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD";
  EXPECT_EQ(textOf(textValue("\xE0\x80\x80")), three) << "longer than need be";
  EXPECT_EQ(textOf(textValue("\xED\xA0\x80")), three) << "a surrogate";
  EXPECT_EQ(textOf(textValue("\xF4\x90\x80\x80")), three + "\xEF\xBF\xBD") << "past the last character";
}

}  // namespace
