// This machine: class Linux_ComputerSystem.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXCOMPUTERSYSTEM_H
#define QORQL_PROVIDERS_LINUXCOMPUTERSYSTEM_H

#include <string>
#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"

// Always one instance. What the maker wrote into the firmware (DMI) is NULL where
// there is none, and its serial numbers also where only the superuser may read
// them; a warning tells so. Several threads may enumerate at once.
class LinuxComputerSystem : public InstanceProvider {
 public:
  static const char* const kClassName;

  // The folders of the kernel's files about the firmware and about the processors, and the description of the latter.
  struct Sources {
    std::string firmware = "/sys/class/dmi/id";
    std::string processors = "/sys/devices/system/cpu";
    std::string description = "/proc/cpuinfo";
  };

  LinuxComputerSystem() = default;
  explicit LinuxComputerSystem(Sources sources) : _sources(std::move(sources)) {}

  QORString getClassName() const override { return kClassName; }
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  const Sources _sources{};
};

#endif
