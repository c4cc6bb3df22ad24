// Services, as systemd lists them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxService.h"

#include "Cimom/Providers/LinuxProperty.h"

const char* const LinuxService::kClassName = "Linux_Service";

namespace {

// The service that is being read; what costs a call of its own is asked for once.
struct Service {
  const LinuxUnits::Unit& unit;
  LinuxUnits& units;
  std::string fileState{};
  bool hasFileState = false;
};

const std::string& fileStateOf(Service& service) {
  if (!service.hasFileState) {
    service.fileState = service.units.fileState(service.unit);
    service.hasFileState = true;
  }
  return service.fileState;
}

LinuxValue readName(Service& service) { return textValue(service.unit.name); }
LinuxValue readDescription(Service& service) { return textOrNull(service.unit.description.c_str()); }
LinuxValue readLoadState(Service& service) { return textValue(service.unit.loadState); }
LinuxValue readActiveState(Service& service) { return textValue(service.unit.activeState); }
LinuxValue readSubState(Service& service) { return textValue(service.unit.subState); }
LinuxValue readIsStarted(Service& service) {
  const std::string& state = service.unit.activeState;
  return booleanValue(state == "active" || state == "reloading");
}
LinuxValue readFileState(Service& service) { return textOrNull(fileStateOf(service).c_str()); }
// The two words that the CIM schema has for it.
LinuxValue readStartMode(Service& service) {
  const std::string& state = fileStateOf(service);
  if (state.empty()) return {};
  return textValue(state.rfind("enabled", 0) == 0 ? "Automatic" : "Manual");
}
LinuxValue readMainProcess(Service& service) {
  const QORuint32 pid = service.units.mainProcess(service.unit);
  return pid == 0 ? LinuxValue() : uint32Value(pid);
}

// The keys that tie a service to its system.
LinuxValue readClassName(Service&) { return textValue(LinuxService::kClassName); }
LinuxValue readSystemClassName(Service&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Service&) { return textValue(hostName()); }

constexpr LinuxProperty<Service> kServiceProperties[] = {
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"Description", readDescription},
    {"Started", readIsStarted},
    {"StartMode", readStartMode},
    {"LoadState", readLoadState},
    {"ActiveState", readActiveState},
    {"SubState", readSubState},
    {"UnitFileState", readFileState},
    {"MainProcessID", readMainProcess},
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

}  // namespace

void LinuxService::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Service>>(request, kServiceProperties);
  const QORString wanted = wantedKey(request, "Name");
  LinuxUnits units(_connect);
  for (const LinuxUnits::Unit& unit : units.services()) {
    Service service{unit, units};
    if (wanted.isNull() || wanted == unit.name.c_str()) emitInstance(service, properties, emit);
  }
}
