// Timers, asked of a systemd that this test plays.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include "Cimom/Providers/LinuxTimer.h"
#include "MadeUpFiles.h"
#include "PlayedSystemd.h"
#include "ProviderFixture.h"
#include "cimom/CQoriProviderException.h"

namespace {

using ::testing::ElementsAre;

constexpr uint64_t kNever = UINT64_MAX;
constexpr uint64_t kLast = 1700000000000000;
constexpr uint64_t kNext = 4100000000000000;

// What the other end of the bus answers.
enum class Mood { Healthy, RefusesProperties, RefusesList };

uint64_t monotonicInAnHour() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return (static_cast<uint64_t>(now.tv_sec) + 3600) * 1000000;
}

int answerProperty(sd_bus_message* call) {
  const char* interface = nullptr;
  const char* property = nullptr;
  if (sd_bus_message_read(call, "ss", &interface, &property) < 0) return -EINVAL;
  const bool isFirst = std::strcmp(sd_bus_message_get_path(call), "/unit/a") == 0;
  const auto is = [&](const char* name) { return std::strcmp(property, name) == 0; };
  if (is("Unit")) return sd_bus_reply_method_return(call, "v", "s", isFirst ? "a.service" : "b.service");
  if (is("UnitFileState")) return sd_bus_reply_method_return(call, "v", "s", "enabled");
  if (is("LastTriggerUSec")) return sd_bus_reply_method_return(call, "v", "t", isFirst ? kLast : uint64_t{0});
  if (is("NextElapseUSecRealtime")) return sd_bus_reply_method_return(call, "v", "t", isFirst ? kNext : kNever);
  if (is("NextElapseUSecMonotonic")) {
    return sd_bus_reply_method_return(call, "v", "t", isFirst ? uint64_t{0} : monotonicInAnHour());
  }
  if (is("TimersCalendar")) {
    return isFirst ? sd_bus_reply_method_return(call, "v", "a(sst)", 2, "OnCalendar", "*-*-* 06:00:00", kNext,
                                                "OnCalendar", "Mon *-*-*", kNext)
                   : sd_bus_reply_method_return(call, "v", "a(sst)", 0);
  }
  if (is("TimersMonotonic")) {
    return isFirst ? sd_bus_reply_method_return(call, "v", "a(stt)", 0)
                   : sd_bus_reply_method_return(call, "v", "a(stt)", 4, "OnBootUSec", uint64_t{900000000}, kNever,
                                                "OnUnitActiveUSec", uint64_t{500000}, kNever, "OnStartupUSec",
                                                uint64_t{61000001}, kNever, "OnActiveUSec", uint64_t{0}, kNever);
  }
  return 0;
}

int answer(sd_bus_message* call, void* mood, sd_bus_error*) {
  const Mood given = *static_cast<const Mood*>(mood);
  if (sd_bus_message_is_method_call(call, "org.freedesktop.systemd1.Manager", "ListUnitsByPatterns") > 0) {
    if (given == Mood::RefusesList) return sd_bus_reply_method_errnof(call, EACCES, "no");
    return sd_bus_reply_method_return(call, "a(ssssssouso)", 2,  //
                                      "a.timer", "The first", "loaded", "active", "waiting", "", "/unit/a", 0, "",
                                      "/",  //
                                      "b.timer", "The second", "loaded", "inactive", "dead", "", "/unit/b", 0, "", "/");
  }
  if (sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Properties", "Get") <= 0) return 0;
  if (given == Mood::RefusesProperties) return sd_bus_reply_method_errnof(call, EACCES, "no");
  return answerProperty(call);
}

std::vector<ProvidedRow> timersOf(Mood mood, const std::vector<std::string>& properties) {
  PlayedSystemd systemd(answer, &mood);
  LinuxTimer provider([&systemd] { return systemd.connect(); });
  return enumerateRows(provider, properties);
}

std::vector<std::string> textsOf(const ProvidedRow& row) {
  std::vector<std::string> texts;
  for (const auto& value : row) texts.push_back(textOf(value));
  return texts;
}

TEST(LinuxTimer, ShowsWhatSystemdHasLoaded) {
  const auto rows = timersOf(Mood::Healthy, {"Name", "Description", "LoadState", "ActiveState", "SubState",
                                             "UnitFileState", "Unit", "Schedule"});
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_THAT(textsOf(rows[0]), ElementsAre("a.timer", "The first", "loaded", "active", "waiting", "enabled",
                                            "a.service", "*-*-* 06:00:00,Mon *-*-*"));
  EXPECT_THAT(textsOf(rows[1]),
              ElementsAre("b.timer", "The second", "loaded", "inactive", "dead", "enabled", "b.service",
                          "OnBootSec=900s,OnUnitActiveSec=0.5s,OnStartupSec=61.000001s,"
                          "OnActiveSec=0s"));
}

TEST(LinuxTimer, TellsWhenByTheCalendar) {
  const auto rows = timersOf(Mood::Healthy, {"LastTime", "NextTime"});
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(textOf(rows[0][0]).substr(0, 6), "202311");
  EXPECT_EQ(textOf(rows[0][1]).substr(0, 4), "2099");
  EXPECT_EQ(textOf(rows[1][0]), "(null)");
}

TEST(LinuxTimer, TellsWhenWhatIsCountedFromTheStartComes) {
  const auto rows = timersOf(Mood::Healthy, {"NextTime"});
  ASSERT_EQ(rows.size(), 2U);
  std::tm parsed{};
  ASSERT_NE(strptime(textOf(rows[1][0]).substr(0, 14).c_str(), "%Y%m%d%H%M%S", &parsed), nullptr);
  parsed.tm_isdst = -1;
  EXPECT_NEAR(static_cast<double>(mktime(&parsed) - time(nullptr)), 3600, 60);
}

TEST(LinuxTimer, AMomentIsTheSameEachTimeItIsAskedFor) {
  const uint64_t first = LinuxUnits::realTimeOf(5);
  for (int i = 0; i < 10000; ++i) ASSERT_EQ(LinuxUnits::realTimeOf(5), first) << "after " << i << " times";
  EXPECT_EQ(LinuxUnits::realTimeOf(6), first + 1);
}

TEST(LinuxTimer, APropertyThatIsRefusedIsNull) {
  const KeptWarnings warnings;
  const auto rows = timersOf(Mood::RefusesProperties, {"Name", "Unit", "NextTime", "Schedule", "ActiveState"});
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_THAT(textsOf(rows[0]), ElementsAre("a.timer", "(null)", "(null)", "", "active"));
  EXPECT_THAT(warnings.lines(), ElementsAre("Cannot read Unit of a.timer: Permission denied, and 9 more"));
}

TEST(LinuxTimer, AListThatIsRefusedIsTheProvidersFailure) {
  EXPECT_THROW(timersOf(Mood::RefusesList, {"Name"}), CQoriProviderException);
}

TEST(LinuxTimer, WarnsWhereSystemdDoesNotRun) {
  const KeptWarnings warnings;
  LinuxTimer provider([]() -> sd_bus* { return nullptr; });
  EXPECT_TRUE(enumerateRows(provider, {"Name"}).empty());
  EXPECT_THAT(warnings.lines(), ElementsAre("Cannot read /run/systemd/system: No such file or directory"));
}

}  // namespace
