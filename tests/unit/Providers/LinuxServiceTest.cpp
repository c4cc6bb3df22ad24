// Services, asked of a systemd that this test plays over a socket pair.
// SPDX-License-Identifier: Apache-2.0
#include <systemd/sd-bus.h>

#include <cerrno>
#include <cstring>

#include "Cimom/Providers/LinuxService.h"
#include "Cimom/Providers/LinuxServiceProcess.h"
#include "PlayedSystemd.h"
#include "ProviderFixture.h"
#include "cimom/CQoriProviderException.h"

namespace {

constexpr const char* kManager = "org.freedesktop.systemd1.Manager";

// What the other end of the bus answers.
enum class Mood { Healthy, RefusesList, RefusesProperties, AnswersNonsense };

int answerList(sd_bus_message* call, Mood mood) {
  if (mood == Mood::RefusesList) return sd_bus_reply_method_errnof(call, EACCES, "no");
  if (mood == Mood::AnswersNonsense) return sd_bus_reply_method_return(call, "s", "nonsense");
  return sd_bus_reply_method_return(
      call, "a(ssssssouso)", 3,                                                            //
      "a.service", "The first", "loaded", "active", "running", "", "/unit/a", 0, "", "/",  //
      "b.service", "The second", "loaded", "inactive", "dead", "", "/unit/b", 0, "", "/",  //
      "c.service", "c.service", "not-found", "inactive", "dead", "", "/unit/c", 0, "", "/");
}

int answerProperty(sd_bus_message* call, Mood mood) {
  const char* interface = nullptr;
  const char* property = nullptr;
  if (sd_bus_message_read(call, "ss", &interface, &property) < 0) return -EINVAL;
  const bool isFirst = std::strcmp(sd_bus_message_get_path(call), "/unit/a") == 0;
  if (mood == Mood::RefusesProperties && isFirst) return sd_bus_reply_method_errnof(call, EACCES, "no");
  if (std::strcmp(property, "MainPID") == 0) return sd_bus_reply_method_return(call, "v", "u", isFirst ? 4711U : 0U);
  return sd_bus_reply_method_return(call, "v", "s", isFirst ? "enabled" : "");
}

int answer(sd_bus_message* call, void* mood, sd_bus_error*) {
  const Mood given = *static_cast<const Mood*>(mood);
  if (sd_bus_message_is_method_call(call, kManager, "ListUnitsByPatterns") > 0) return answerList(call, given);
  if (sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Properties", "Get") > 0)
    return answerProperty(call, given);
  return 0;
}

std::vector<ProvidedRow> servicesOf(Mood mood, const std::vector<std::string>& properties,
                                    const QORSmrPtr<IQoriInstanceName>& only = {}) {
  PlayedSystemd systemd(answer, &mood);
  LinuxService provider([&systemd] { return systemd.connect(); });
  return enumerateRows(provider, properties, only);
}

TEST(LinuxService, ShowsWhatSystemdHasLoaded) {
  const auto rows = servicesOf(Mood::Healthy, {"Name", "Description", "Started", "ActiveState", "SubState", "LoadState",
                                               "StartMode", "UnitFileState", "MainProcessID"});
  ASSERT_EQ(rows.size(), 2U) << "what is only mentioned is no service";
  std::vector<std::string> first;
  std::vector<std::string> second;
  for (const auto& value : rows[0]) first.push_back(textOf(value));
  for (const auto& value : rows[1]) second.push_back(textOf(value));
  EXPECT_EQ(first, (std::vector<std::string>{"a.service", "The first", "TRUE", "active", "running", "loaded",
                                             "Automatic", "enabled", "4711"}));
  EXPECT_EQ(second, (std::vector<std::string>{"b.service", "The second", "FALSE", "inactive", "dead", "loaded",
                                              "(null)", "(null)", "(null)"}));
}

TEST(LinuxService, GivesTheOneThatIsWanted) {
  LinuxService named;
  const auto rows = servicesOf(Mood::Healthy, {"Name"}, nameOf(named, "Name", "b.service"));
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(textOf(rows[0][0]), "b.service");
}

TEST(LinuxService, APropertyThatIsRefusedIsNullOfThatServiceAlone) {
  const auto rows = servicesOf(Mood::RefusesProperties, {"Name", "MainProcessID", "UnitFileState", "ActiveState"});
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_TRUE(rows[0][1].IsNull());
  EXPECT_TRUE(rows[0][2].IsNull());
  EXPECT_EQ(textOf(rows[0][3]), "active");
}

TEST(LinuxService, AListThatIsRefusedOrUnreadableIsTheProvidersFailure) {
  EXPECT_THROW(servicesOf(Mood::RefusesList, {"Name"}), CQoriProviderException);
  EXPECT_THROW(servicesOf(Mood::AnswersNonsense, {"Name"}), CQoriProviderException);
}

TEST(LinuxService, SaysSoWhereSystemdDoesNotRun) {
  LinuxService services([]() -> sd_bus* { return nullptr; });
  LinuxServiceProcess processes([]() -> sd_bus* { return nullptr; });
  for (InstanceProvider* provider : std::initializer_list<InstanceProvider*>{&services, &processes}) {
    try {
      enumerateRows(*provider, {});
      FAIL() << provider->getClassName().view() << " threw nothing";
    } catch (const CQoriProviderException& failure) {
      EXPECT_EQ(failure.getCode(), InstanceProvider::kNoSource);
      EXPECT_STREQ(failure.what(), "systemd does not run here, which lists the services");
    }
  }
}

TEST(LinuxServiceProcess, TiesAServiceToItsMainProcess) {
  Mood mood = Mood::Healthy;
  PlayedSystemd systemd(answer, &mood);
  LinuxServiceProcess provider([&systemd] { return systemd.connect(); });
  const auto rows = enumerateRows(provider, {"Service", "Process"});
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_NE(textOf(rows[0][0]).find("Name=\"a.service\""), std::string::npos);
  EXPECT_NE(textOf(rows[0][1]).find("Handle=\"4711\""), std::string::npos);
}

}  // namespace
