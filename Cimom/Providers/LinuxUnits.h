// The units that systemd manages, asked for over its bus.
// Tested by tests/unit/Providers/LinuxServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXUNITS_H
#define QORQL_PROVIDERS_LINUXUNITS_H

#include <functional>
#include <string>
#include <vector>

#include "Cimom/Providers/LinuxValues.h"
#include "cmpbase.h"

struct sd_bus;

// One connection; belongs to one thread at a time.
class LinuxUnits {
 public:
  // Hands over a connection to systemd's bus, or null where systemd does not
  // run. THROWS CQoriProviderException when it runs and cannot be reached.
  using Connect = std::function<sd_bus*()>;
  static sd_bus* connectSystem();

  struct Unit {
    std::string name;  // "ssh.service"
    std::string description;
    std::string loadState;    // loaded, masked, error, ...
    std::string activeState;  // active, inactive, failed, ...
    std::string subState;     // running, exited, dead, ...
    std::string path;         // the bus object of it
  };

  explicit LinuxUnits(const Connect& connect);
  LinuxUnits(const LinuxUnits&) = delete;
  LinuxUnits& operator=(const LinuxUnits&) = delete;
  ~LinuxUnits();

  // The services in the order in which systemd lists them, without those that
  // are only mentioned by others. THROWS CQoriProviderException when it does not
  // answer, and (kNoSource) where it does not run.
  std::vector<Unit> services() { return list("*.service"); }
  // The timers, likewise.
  std::vector<Unit> timers() { return list("*.timer"); }
  // Whether systemd runs, and the folder by which one sees that.
  bool isThere() const noexcept { return _bus != nullptr; }
  static constexpr const char* kRuntimeFolder = "/run/systemd/system";
  // 0 when it has none or when systemd does not tell, which is logged.
  QORuint32 mainProcess(const Unit& unit);
  // "enabled", "disabled", "static", ...; empty when it has none or when systemd does not tell.
  std::string fileState(const Unit& unit);
  // A property of the unit's bus object; empty or 0 when systemd does not tell, which is logged.
  std::string text(const Unit& unit, const char* interface, const char* property);
  QORuint64 number(const Unit& unit, const char* interface, const char* property);
  // When a timer is to elapse: "*-*-* 06:00:00", "OnBootSec=900s", "OnUnitActiveSec=0.5s".
  std::vector<std::string> schedule(const Unit& timer);
  // A moment by the clock that stands still with the machine, in microseconds since the epoch. The same for the same
  // moment, unless the machine has slept or its clock was set meanwhile. Any thread may call.
  static QORuint64 realTimeOf(QORuint64 monotonicMicroseconds);

 private:
  std::vector<Unit> list(const char* pattern);
  template <class Take>
  void readList(const Unit& unit, const char* property, const char* type, Take take);

  sd_bus* _bus;  // OWNS; null where systemd does not run
  UnreadableParts _unreadable;
};

#endif
