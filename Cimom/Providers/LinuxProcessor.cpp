// Processors: the lines "cpuN user nice system idle iowait irq softirq steal ..."
// of /proc/stat, in clock ticks since the start, and the paragraphs of /proc/cpuinfo.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxProcessor.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <string>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "cimom/CQoriProviderException.h"

const char* const LinuxProcessor::kClassName = "Linux_Processor";

namespace {

enum Ticks { kUser, kNice, kSystem, kIdle, kIoWait, kInterrupt, kSoftInterrupt, kSteal, kTickCount };

// The processor that is being read.
struct Processor {
  std::string number;
  std::array<QORuint64, kTickCount> ticks{};
  const std::string* description;  // of all processors
};

LinuxValue milliseconds(QORuint64 ticks) {
  static const QORuint64 ticksPerSecond = static_cast<QORuint64>(sysconf(_SC_CLK_TCK));
  return uint64Value(ticks * 1000 / ticksPerSecond);
}

// The entry of the processor's paragraph, "name<tabs>: text"; empty when there is none.
std::string describe(const Processor& processor, std::string_view name) {
  std::istringstream lines(*processor.description);
  bool isOwn = false;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t colon = line.find(": ");
    const std::string_view entry = std::string_view(line).substr(0, line.find_first_of("\t:"));
    if (colon == std::string::npos) continue;
    std::string text = line.substr(colon + 2);
    if (entry == "processor") isOwn = text == processor.number;
    if (isOwn && entry == name) return text;
  }
  return {};
}

LinuxValue readNumber(Processor& processor) { return textValue(processor.number); }
LinuxValue readName(Processor& processor) { return textOrNull(describe(processor, "model name").c_str()); }
LinuxValue readVendor(Processor& processor) { return textOrNull(describe(processor, "vendor_id").c_str()); }
LinuxValue readClockSpeed(Processor& processor) {
  const double megahertz = std::strtod(describe(processor, "cpu MHz").c_str(), nullptr);
  return megahertz > 0 && megahertz < 1e9 ? uint32Value(static_cast<QORuint32>(std::lround(megahertz))) : LinuxValue();
}
LinuxValue readUserTime(Processor& processor) { return milliseconds(processor.ticks[kUser] + processor.ticks[kNice]); }
LinuxValue readSystemTime(Processor& processor) {
  return milliseconds(processor.ticks[kSystem] + processor.ticks[kInterrupt] + processor.ticks[kSoftInterrupt]);
}
LinuxValue readIdleTime(Processor& processor) { return milliseconds(processor.ticks[kIdle]); }
LinuxValue readWaitTime(Processor& processor) { return milliseconds(processor.ticks[kIoWait]); }

// The keys that tie a processor to its system in fuller schemas.
LinuxValue readClassName(Processor&) { return textValue(LinuxProcessor::kClassName); }
LinuxValue readSystemClassName(Processor&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Processor&) { return textValue(hostName()); }

constexpr LinuxProperty<Processor> kProcessorProperties[] = {
    {"DeviceID", readNumber},
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"Vendor", readVendor},
    {"CurrentClockSpeed", readClockSpeed},
    {"UserModeTime", readUserTime},
    {"KernelModeTime", readSystemTime},
    {"IdleTime", readIdleTime},
    {"WaitTime", readWaitTime},
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

}  // namespace

void LinuxProcessor::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Processor>>(request, kProcessorProperties);
  const QORString wanted = wantedKey(request, "DeviceID");
  const bool isDescribed = request.needs("Name") || request.needs("Caption") || request.needs("ElementName") ||
                           request.needs("Vendor") || request.needs("CurrentClockSpeed");
  std::istringstream lines(readSmallFile("/proc/stat"));
  if (lines.str().empty()) {
    logUnreadable("/proc/stat", errno);
    throw CQoriProviderException(kClassName, "The processors cannot be listed", InstanceProvider::kUnreadable);
  }
  const std::string description = isDescribed ? readSmallFile("/proc/cpuinfo") : std::string();
  if (isDescribed && description.empty()) warnUnreadable("/proc/cpuinfo", errno);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("cpu") || line.starts_with("cpu ")) continue;
    Processor processor{{}, {}, &description};
    std::istringstream fields(line.substr(3));
    fields >> processor.number;
    for (QORuint64& ticks : processor.ticks) fields >> ticks;
    if (wanted.isNull() || wanted == processor.number.c_str()) emitInstance(processor, properties, emit);
  }
}
