// Calls to systemd's manager and to the objects of its units.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxUnits.h"

#include <systemd/sd-bus.h>
#include <systemd/sd-daemon.h>

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <memory>

#include "Cimom/Embedded/InstanceProvider.h"
#include "cimom/CQoriProviderException.h"

namespace {

constexpr QORuint64 kTimeoutMicroseconds = 5000000;
constexpr QORuint64 kMicroseconds = 1000000;  // in a second
constexpr const char* kDestination = "org.freedesktop.systemd1";

[[noreturn]] void raiseUnreachable(int error) {
  logUnreadable("the units of systemd", error);
  throw CQoriProviderException("Linux services", "The units of systemd cannot be listed",
                               InstanceProvider::kUnreadable);
}

[[noreturn]] void raiseAbsent() {
  throw CQoriProviderException("Linux services", "systemd does not run here, which lists the services",
                               InstanceProvider::kNoSource);
}

struct ReleaseMessage {
  void operator()(sd_bus_message* message) const noexcept { sd_bus_message_unref(message); }
  void operator()(char* text) const noexcept { std::free(text); }
};
using Message = std::unique_ptr<sd_bus_message, ReleaseMessage>;
using Text = std::unique_ptr<char, ReleaseMessage>;

// One entry of the list; false at its end.
bool readUnit(sd_bus_message* list, LinuxUnits::Unit& unit) {
  const char* name = nullptr;
  const char* description = nullptr;
  const char* loadState = nullptr;
  const char* activeState = nullptr;
  const char* subState = nullptr;
  const char* path = nullptr;
  const int result = sd_bus_message_read(list, "(ssssssouso)", &name, &description, &loadState, &activeState, &subState,
                                         nullptr, &path, nullptr, nullptr, nullptr);
  if (result < 0) raiseUnreachable(-result);
  if (result > 0) unit = {name, description, loadState, activeState, subState, path};
  return result > 0;
}

}  // namespace

sd_bus* LinuxUnits::connectSystem() {
  if (sd_booted() <= 0) return nullptr;
  sd_bus* bus = nullptr;
  const int result = sd_bus_open_system(&bus);
  if (result < 0) raiseUnreachable(-result);
  return bus;
}

LinuxUnits::LinuxUnits(const Connect& connect) : _bus(connect()) {
  if (_bus != nullptr) sd_bus_set_method_call_timeout(_bus, kTimeoutMicroseconds);
}

LinuxUnits::~LinuxUnits() { sd_bus_flush_close_unref(_bus); }

std::vector<LinuxUnits::Unit> LinuxUnits::list(const char* pattern) {
  if (_bus == nullptr) raiseAbsent();
  sd_bus_message* reply = nullptr;
  const int result =
      sd_bus_call_method(_bus, kDestination, "/org/freedesktop/systemd1", "org.freedesktop.systemd1.Manager",
                         "ListUnitsByPatterns", nullptr, &reply, "asas", 0, 1, pattern);
  const Message list(reply);
  if (result < 0) raiseUnreachable(-result);
  const int entered = sd_bus_message_enter_container(reply, SD_BUS_TYPE_ARRAY, "(ssssssouso)");
  if (entered < 0) raiseUnreachable(-entered);
  std::vector<Unit> units;
  for (Unit unit; readUnit(reply, unit);) {
    if (unit.loadState != "not-found") units.push_back(unit);
  }
  return units;
}

QORuint32 LinuxUnits::mainProcess(const Unit& unit) {
  uint32_t pid = 0;
  const int result = sd_bus_get_property_trivial(_bus, kDestination, unit.path.c_str(),
                                                 "org.freedesktop.systemd1.Service", "MainPID", nullptr, 'u', &pid);
  if (result < 0) _unreadable.note("the main process of " + unit.name, -result);
  return result < 0 ? 0 : pid;
}

std::string LinuxUnits::fileState(const Unit& unit) {
  return text(unit, "org.freedesktop.systemd1.Unit", "UnitFileState");
}

std::string LinuxUnits::text(const Unit& unit, const char* interface, const char* property) {
  char* found = nullptr;
  const int result =
      sd_bus_get_property_string(_bus, kDestination, unit.path.c_str(), interface, property, nullptr, &found);
  const Text text(found);
  if (result < 0) _unreadable.note(std::string(property).append(" of ").append(unit.name), -result);
  return result < 0 || found == nullptr ? "" : found;
}

QORuint64 LinuxUnits::number(const Unit& unit, const char* interface, const char* property) {
  uint64_t found = 0;
  const int result =
      sd_bus_get_property_trivial(_bus, kDestination, unit.path.c_str(), interface, property, nullptr, 't', &found);
  if (result < 0) _unreadable.note(std::string(property).append(" of ").append(unit.name), -result);
  return result < 0 ? 0 : found;
}

// "900", "0.5".
static std::string secondsText(QORuint64 microseconds) {
  const std::string seconds = std::to_string(microseconds / kMicroseconds);
  const QORuint64 rest = microseconds % kMicroseconds;
  if (rest == 0) return seconds;
  std::string fraction = std::to_string(kMicroseconds + rest).substr(1);
  fraction.erase(fraction.find_last_not_of('0') + 1);
  return seconds + '.' + fraction;
}

// `take` reads one element of the list and returns what the bus does: below 0 for an error, 0 at the end.
template <class Take>
void LinuxUnits::readList(const Unit& unit, const char* property, const char* type, Take take) {
  sd_bus_message* reply = nullptr;
  int result = sd_bus_get_property(_bus, kDestination, unit.path.c_str(), "org.freedesktop.systemd1.Timer", property,
                                   nullptr, &reply, (std::string("a") + type).c_str());
  const Message list(reply);
  if (result >= 0) result = sd_bus_message_enter_container(reply, SD_BUS_TYPE_ARRAY, type);
  while (result > 0) result = take(reply);
  if (result < 0) _unreadable.note(std::string(property).append(" of ").append(unit.name), -result);
}

std::vector<std::string> LinuxUnits::schedule(const Unit& timer) {
  std::vector<std::string> times;
  const char* base = nullptr;
  readList(timer, "TimersCalendar", "(sst)", [&](sd_bus_message* list) {
    const char* specification = nullptr;
    const int result = sd_bus_message_read(list, "(sst)", &base, &specification, nullptr);
    if (result > 0) times.emplace_back(specification);
    return result;
  });
  readList(timer, "TimersMonotonic", "(stt)", [&](sd_bus_message* list) {
    uint64_t microseconds = 0;
    const int result = sd_bus_message_read(list, "(stt)", &base, &microseconds, nullptr);
    // "OnBootUSec", as the bus has it, is "OnBootSec" in the timer's file.
    std::string name = result > 0 ? base : "";
    if (name.ends_with("USec")) name.replace(name.size() - 4, 4, "Sec");
    if (result > 0) times.push_back(name + '=' + secondsText(microseconds) + 's');
    return result;
  });
  return times;
}

// How far the clocks are apart, in microseconds. Two readings of them are some microseconds apart, so that one and the
// same moment would be another one each time: the first difference holds until the machine sleeps or its clock is set.
static QORsint64 clockDifference() {
  static std::atomic<QORsint64> kept{0};
  const auto microsecondsOf = [](clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<QORsint64>(now.tv_sec) * static_cast<QORsint64>(kMicroseconds) + now.tv_nsec / 1000;
  };
  const QORsint64 difference = microsecondsOf(CLOCK_REALTIME) - microsecondsOf(CLOCK_MONOTONIC);
  QORsint64 known = kept;
  if (std::abs(difference - known) < static_cast<QORsint64>(kMicroseconds)) return known;
  // Of several threads that see the change the first one decides.
  return kept.compare_exchange_strong(known, difference) ? difference : known;
}

QORuint64 LinuxUnits::realTimeOf(QORuint64 monotonicMicroseconds) {
  return monotonicMicroseconds + static_cast<QORuint64>(clockDifference());
}
