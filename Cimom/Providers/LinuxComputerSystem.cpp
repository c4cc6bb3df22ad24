// This machine: the firmware's texts, and the sockets and cores of its processors.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxComputerSystem.h"

#include <dirent.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <memory>
#include <optional>
#include <set>
#include <sstream>

#include "Cimom/Providers/LinuxProperty.h"

const char* const LinuxComputerSystem::kClassName = kLinuxComputerSystem;

namespace {

// How the processors are spread.
struct Topology {
  std::set<std::string> sockets{};
  std::set<std::string> cores{};  // with their sockets, which count them apart
  QORuint32 processors = 0;
};

struct Machine {
  const LinuxComputerSystem::Sources& sources;
  UnreadableParts unreadable{};
  std::optional<Topology> topology{};
};

// What the firmware tells; makers leave fields empty or full of blanks.
LinuxValue firmwareText(Machine& machine, const char* file) {
  const std::string path = machine.sources.firmware + '/' + file;
  QORString text(readLine(path));
  if (errno != 0) machine.unreadable.note(path, errno);
  return textOrNull(text.trim(" ").c_str());
}
template <const char* File>
LinuxValue readFirmware(Machine& machine) {
  return firmwareText(machine, File);
}
constexpr char kVendor[] = "sys_vendor";
constexpr char kModel[] = "product_name";
constexpr char kModelVersion[] = "product_version";
constexpr char kSerialNumber[] = "product_serial";
constexpr char kUuid[] = "product_uuid";
constexpr char kBoardVendor[] = "board_vendor";
constexpr char kBoardModel[] = "board_name";
constexpr char kFirmwareVendor[] = "bios_vendor";
constexpr char kFirmwareVersion[] = "bios_version";
constexpr char kFirmwareDate[] = "bios_date";

bool isProcessor(std::string_view name) {
  return name.size() > 3 && name.starts_with("cpu") && std::isdigit(static_cast<unsigned char>(name[3])) != 0;
}

// A processor that is switched off has no place.
void addProcessor(const std::string& folder, Topology& topology) {
  const std::string socket = readLine(folder + "/topology/physical_package_id");
  const std::string core = readLine(folder + "/topology/core_id");
  if (socket.empty() || core.empty()) return;
  topology.sockets.insert(socket);
  topology.cores.insert(socket + ' ' + core);
  ++topology.processors;
}

const Topology& topologyOf(Machine& machine) {
  if (machine.topology) return *machine.topology;
  machine.topology.emplace();
  const std::string& path = machine.sources.processors;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
  const int error = folder == nullptr ? errno : ENOENT;
  while (const dirent* entry = folder == nullptr ? nullptr : readdir(folder.get())) {
    if (isProcessor(entry->d_name)) addProcessor(path + '/' + entry->d_name, *machine.topology);
  }
  if (machine.topology->processors == 0) machine.unreadable.note(path, error);
  return *machine.topology;
}
LinuxValue countOrNull(std::size_t count) {
  return count == 0 ? LinuxValue() : uint32Value(static_cast<QORuint32>(count));
}
LinuxValue readSockets(Machine& machine) { return countOrNull(topologyOf(machine).sockets.size()); }
LinuxValue readCores(Machine& machine) { return countOrNull(topologyOf(machine).cores.size()); }
LinuxValue readProcessors(Machine& machine) { return countOrNull(topologyOf(machine).processors); }

// The first processor's; not every architecture names them.
LinuxValue readProcessorModel(Machine& machine) {
  const std::string content = readSmallFile(machine.sources.description);
  if (errno != 0) machine.unreadable.note(machine.sources.description, errno);
  std::istringstream lines(content);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t colon = line.find(": ");
    if (line.starts_with("model name") && colon != std::string::npos) return textOrNull(line.substr(colon + 2).c_str());
  }
  return {};
}

LinuxValue readName(Machine&) { return textValue(hostName()); }
LinuxValue readClassName(Machine&) { return textValue(LinuxComputerSystem::kClassName); }

constexpr LinuxProperty<Machine> kComputerSystemProperties[] = {
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"CreationClassName", readClassName},
    {"Vendor", readFirmware<kVendor>},
    {"Model", readFirmware<kModel>},
    {"ModelVersion", readFirmware<kModelVersion>},
    {"SerialNumber", readFirmware<kSerialNumber>},
    {"UUID", readFirmware<kUuid>},
    {"BoardVendor", readFirmware<kBoardVendor>},
    {"BoardModel", readFirmware<kBoardModel>},
    {"FirmwareVendor", readFirmware<kFirmwareVendor>},
    {"FirmwareVersion", readFirmware<kFirmwareVersion>},
    {"FirmwareDate", readFirmware<kFirmwareDate>},
    {"ProcessorModel", readProcessorModel},
    {"NumberOfSockets", readSockets},
    {"NumberOfCores", readCores},
    {"NumberOfProcessors", readProcessors},
};

}  // namespace

void LinuxComputerSystem::enumerate(const Request& request, const Emit& emit) {
  Machine machine{_sources};
  emitInstance(machine, bindProperties<LinuxProperty<Machine>>(request, kComputerSystemProperties), emit);
}
