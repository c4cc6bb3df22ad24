// Timers, as systemd lists them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxTimer.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include "Cimom/Providers/LinuxProperty.h"
#include "cimom/CQoriProviderException.h"

const char* const LinuxTimer::kClassName = "Linux_Timer";

namespace {

constexpr const char* kInterface = "org.freedesktop.systemd1.Timer";
constexpr QORuint64 kNever = std::numeric_limits<QORuint64>::max();

// The timer that is being read.
struct Timer {
  const LinuxUnits::Unit& unit;
  LinuxUnits& units;
};

LinuxValue momentOrNull(QORuint64 microseconds) {
  if (microseconds == 0 || microseconds == kNever) return {};
  return dateTimeValue(0, static_cast<QORsint64>(microseconds));
}

LinuxValue readName(Timer& timer) { return textValue(timer.unit.name); }
LinuxValue readDescription(Timer& timer) { return textOrNull(timer.unit.description.c_str()); }
LinuxValue readLoadState(Timer& timer) { return textValue(timer.unit.loadState); }
LinuxValue readActiveState(Timer& timer) { return textValue(timer.unit.activeState); }
LinuxValue readSubState(Timer& timer) { return textValue(timer.unit.subState); }
LinuxValue readFileState(Timer& timer) { return textOrNull(timer.units.fileState(timer.unit).c_str()); }
LinuxValue readUnit(Timer& timer) { return textOrNull(timer.units.text(timer.unit, kInterface, "Unit").c_str()); }
LinuxValue readLast(Timer& timer) {
  return momentOrNull(timer.units.number(timer.unit, kInterface, "LastTriggerUSec"));
}
// By the calendar, or counted from a moment such as the start of the machine: systemd tells the latter by the clock
// that stands still with the machine.
LinuxValue readNext(Timer& timer) {
  const QORuint64 byCalendar = timer.units.number(timer.unit, kInterface, "NextElapseUSecRealtime");
  const QORuint64 counted = timer.units.number(timer.unit, kInterface, "NextElapseUSecMonotonic");
  const QORuint64 first = byCalendar == 0 ? kNever : byCalendar;
  const QORuint64 second = counted == 0 || counted == kNever ? kNever : LinuxUnits::realTimeOf(counted);
  return momentOrNull(std::min(first, second));
}
LinuxValue readSchedule(Timer& timer) { return textsValue(timer.units.schedule(timer.unit)); }

// The keys that tie it to its system.
LinuxValue readClassName(Timer&) { return textValue(LinuxTimer::kClassName); }
LinuxValue readSystemClassName(Timer&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Timer&) { return textValue(hostName()); }

constexpr LinuxProperty<Timer> kTimerProperties[] = {
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"Description", readDescription},
    {"LoadState", readLoadState},
    {"ActiveState", readActiveState},
    {"SubState", readSubState},
    {"UnitFileState", readFileState},
    {"Unit", readUnit},
    {"Schedule", readSchedule},
    {"LastTime", readLast},
    {"NextTime", readNext},
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

}  // namespace

void LinuxTimer::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Timer>>(request, kTimerProperties);
  const QORString wanted = wantedKey(request, "Name");
  LinuxUnits units(_connect);
  if (!units.isThere()) return warnUnreadable(LinuxUnits::kRuntimeFolder, ENOENT);
  for (const LinuxUnits::Unit& unit : units.timers()) {
    Timer timer{unit, units};
    if (wanted.isNull() || wanted == unit.name.c_str()) emitInstance(timer, properties, emit);
  }
}
