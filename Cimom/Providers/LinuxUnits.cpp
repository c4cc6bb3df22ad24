// Calls to systemd's manager and to the objects of its units.
#include "Cimom/Providers/LinuxUnits.h"

#include <systemd/sd-bus.h>
#include <systemd/sd-daemon.h>

#include <cstdlib>
#include <memory>

#include "Cimom/Embedded/InstanceProvider.h"
#include "cimom/CQoriProviderException.h"

namespace {

constexpr QORuint32 kCimErrFailed = 1;
constexpr QORuint64 kTimeoutMicroseconds = 5000000;
constexpr const char* kDestination = "org.freedesktop.systemd1";

[[noreturn]] void raiseUnreachable(int error) {
  logUnreadable("the services of systemd", error);
  throw CQoriProviderException("Linux services", "The services of systemd cannot be listed", kCimErrFailed);
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

std::vector<LinuxUnits::Unit> LinuxUnits::services() {
  if (_bus == nullptr) raiseAbsent();
  sd_bus_message* reply = nullptr;
  const int result =
      sd_bus_call_method(_bus, kDestination, "/org/freedesktop/systemd1", "org.freedesktop.systemd1.Manager",
                         "ListUnitsByPatterns", nullptr, &reply, "asas", 0, 1, "*.service");
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
  char* state = nullptr;
  const int result = sd_bus_get_property_string(_bus, kDestination, unit.path.c_str(), "org.freedesktop.systemd1.Unit",
                                                "UnitFileState", nullptr, &state);
  const Text text(state);
  if (result < 0) _unreadable.note("the file state of " + unit.name, -result);
  return result < 0 || state == nullptr ? "" : state;
}
