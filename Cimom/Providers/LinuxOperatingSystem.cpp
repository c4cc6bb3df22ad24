// The operating system: the release file, uname, libproc2's memory counters and load averages.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxOperatingSystem.h"

#include <dirent.h>
#include <libproc2/meminfo.h>
#include <libproc2/misc.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <memory>
#include <string>
#include <utility>

#include "Cimom/Providers/LinuxProcessFiles.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "cimom/CQoriValue.h"

const char* const LinuxOperatingSystem::kClassName = "Linux_OperatingSystem";

namespace {

struct ReleaseMemory {
  void operator()(meminfo_info* memory) const noexcept { procps_meminfo_unref(&memory); }
};

constexpr const char* kReleaseFile = "/etc/os-release";

// What several properties share, fetched by the first that needs it.
struct System {
  std::string release{};
  bool hasRelease = false;
  int releaseError = 0;
  UnreadableParts unreadable{};
  utsname names{};
  bool hasNames = false;
  std::unique_ptr<meminfo_info, ReleaseMemory> memory{};
};

// The value of a key of the release file, without its quotes.
std::string releaseEntry(System& system, const std::string& key) {
  if (!system.hasRelease) {
    system.hasRelease = true;
    system.release = "\n" + readSmallFile(kReleaseFile);
    system.releaseError = errno;
  }
  const std::string start = "\n" + key + "=";
  const std::size_t found = system.release.find(start);
  if (found == std::string::npos) return {};
  const std::size_t from = found + start.size();
  QORString value(std::string_view(system.release).substr(from, system.release.find('\n', from) - from));
  return std::string(value.trim("\"'\r").view());
}
LinuxValue releaseValue(System& system, const char* key) {
  const std::string entry = releaseEntry(system, key);
  if (const int error = std::exchange(system.releaseError, 0); error != 0) system.unreadable.note(kReleaseFile, error);
  return textOrNull(entry.c_str());
}

std::string systemName(System& system) {
  const std::string name = releaseEntry(system, "NAME");
  return name.empty() ? "Linux" : name;
}
LinuxValue readName(System& system) { return textValue(systemName(system)); }
LinuxValue readCaption(System& system) { return releaseValue(system, "PRETTY_NAME"); }
LinuxValue readVersion(System& system) { return releaseValue(system, "VERSION_ID"); }

const utsname& names(System& system) {
  if (!system.hasNames) system.hasNames = uname(&system.names) == 0;
  return system.names;
}
LinuxValue readKernelName(System& system) { return textOrNull(names(system).sysname); }
LinuxValue readKernelRelease(System& system) { return textOrNull(names(system).release); }
LinuxValue readKernelVersion(System& system) { return textOrNull(names(system).version); }
LinuxValue readArchitecture(System& system) { return textOrNull(names(system).machine); }
LinuxValue readHostName(System& system) { return textOrNull(names(system).nodename); }

LinuxValue readBootTime(System& system) {
  if (bootTimeMicroseconds() != 0) return dateTimeValue(0, bootTimeMicroseconds());
  system.unreadable.note("/proc/stat", ENOENT);
  return {};
}
// In seconds, and sleep counts.
LinuxValue readUpTime(System&) {
  timespec sinceBoot{};
  const bool isKnown = clock_gettime(CLOCK_BOOTTIME, &sinceBoot) == 0;
  return isKnown ? uint64Value(static_cast<QORuint64>(sinceBoot.tv_sec)) : LinuxValue();
}
LinuxValue readTimeZoneName(System&) { return textOrNull(LinuxOperatingSystem::timeZoneOf("/etc/localtime").c_str()); }
LinuxValue readLocalTime(System&) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return dateTimeValue(now.tv_sec, now.tv_nsec / 1000);
}
LinuxValue readTimeZone(System&) {
  const time_t now = time(nullptr);
  std::tm local{};
  return localtime_r(&now, &local) == nullptr ? LinuxValue()
                                              : sint16Value(static_cast<QORsint16>(local.tm_gmtoff / 60));
}

// The names in /proc that are numbers; none when the kernel's files are not there.
LinuxValue readProcessCount(System& system) {
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc"), closedir);
  if (folder == nullptr) {
    system.unreadable.note("/proc", errno);
    return {};
  }
  QORuint32 count = 0;
  while (const dirent* entry = readdir(folder.get())) {
    if (entry->d_name[0] >= '1' && entry->d_name[0] <= '9') ++count;
  }
  if (count == 0) {
    system.unreadable.note("the processes in /proc", ENOENT);
    return {};
  }
  warnOfHiddenProcesses();
  return uint32Value(count);
}
LinuxValue readProcessorCount(System&) {
  const long count = sysconf(_SC_NPROCESSORS_ONLN);
  return count > 0 ? uint32Value(static_cast<QORuint32>(count)) : LinuxValue();
}

// The last 1, 5 and 15 minutes.
LinuxValue readLoadAverage(System& system) {
  double minutes[3] = {};
  if (const int result = procps_loadavg(&minutes[0], &minutes[1], &minutes[2]); result < 0) {
    system.unreadable.note("/proc/loadavg", -result);
    return {};
  }
  QORSmrPtr<IQoriValue::List> elements = new IQoriValue::List();
  for (const double average : minutes) elements->append(real64Value(average));
  return new CQoriValue(elements, CQoriType::real64);
}

// In KiB, as CIM counts memory.
LinuxValue memoryValue(System& system, meminfo_item item) {
  if (system.memory == nullptr) {
    meminfo_info* memory = nullptr;
    if (const int result = procps_meminfo_new(&memory); result < 0) {
      system.unreadable.note("/proc/meminfo", -result);
      return {};
    }
    system.memory.reset(memory);
  }
  const meminfo_result* const result = procps_meminfo_get(system.memory.get(), item);
  return result == nullptr ? LinuxValue() : uint64Value(result->result.ul_int);
}
LinuxValue memorySum(System& system, meminfo_item a, meminfo_item b) {
  const LinuxValue first = memoryValue(system, a);
  const LinuxValue second = memoryValue(system, b);
  return first.IsNull() || second.IsNull() ? LinuxValue() : uint64Value(first->getUint64() + second->getUint64());
}
LinuxValue readTotalMemory(System& system) { return memoryValue(system, MEMINFO_MEM_TOTAL); }
LinuxValue readFreeMemory(System& system) { return memoryValue(system, MEMINFO_MEM_FREE); }
LinuxValue readAvailableMemory(System& system) { return memoryValue(system, MEMINFO_MEM_AVAILABLE); }
LinuxValue readTotalSwap(System& system) { return memoryValue(system, MEMINFO_SWAP_TOTAL); }
LinuxValue readFreeSwap(System& system) { return memoryValue(system, MEMINFO_SWAP_FREE); }
LinuxValue readTotalVirtual(System& system) { return memorySum(system, MEMINFO_MEM_TOTAL, MEMINFO_SWAP_TOTAL); }
LinuxValue readFreeVirtual(System& system) { return memorySum(system, MEMINFO_MEM_FREE, MEMINFO_SWAP_FREE); }

// The keys that tie an operating system to its system in fuller schemas.
LinuxValue readClassName(System&) { return textValue(LinuxOperatingSystem::kClassName); }
LinuxValue readSystemClassName(System&) { return textValue(kLinuxComputerSystem); }

constexpr LinuxProperty<System> kOperatingSystemProperties[] = {
    {"Name", readName},
    {"Caption", readCaption},
    {"ElementName", readName},
    {"Version", readVersion},
    {"KernelName", readKernelName},
    {"KernelRelease", readKernelRelease},
    {"KernelVersion", readKernelVersion},
    {"Architecture", readArchitecture},
    {"HostName", readHostName},
    {"LastBootUpTime", readBootTime},
    {"UpTime", readUpTime},
    {"TimeZone", readTimeZoneName},
    {"LocalDateTime", readLocalTime},
    {"CurrentTimeZone", readTimeZone},
    {"NumberOfProcesses", readProcessCount},
    {"NumberOfProcessors", readProcessorCount},
    {"LoadAverage", readLoadAverage},
    {"TotalVisibleMemorySize", readTotalMemory},
    {"FreePhysicalMemory", readFreeMemory},
    {"AvailableMemory", readAvailableMemory},
    {"TotalSwapSpaceSize", readTotalSwap},
    {"FreeSpaceInPagingFiles", readFreeSwap},
    {"TotalVirtualMemorySize", readTotalVirtual},
    {"FreeVirtualMemory", readFreeVirtual},
    {"CreationClassName", readClassName},
    {"CSCreationClassName", readSystemClassName},
    {"CSName", readHostName},
};

}  // namespace

QORString LinuxOperatingSystem::name() {
  System system;
  return QORString(systemName(system));
}

// A link into the folder of the zones; a system without one is in UTC. A copy of a zone's file has no name to tell.
std::string LinuxOperatingSystem::timeZoneOf(const std::string& link) {
  constexpr std::string_view kZones = "/zoneinfo/";
  std::array<char, 4096> target;
  const ssize_t length = readlink(link.c_str(), target.data(), target.size());
  if (length < 0) return errno == ENOENT ? "UTC" : "";
  const std::string_view path(target.data(), static_cast<std::size_t>(length));
  const std::size_t zones = path.find(kZones);
  return zones == std::string_view::npos ? "" : std::string(path.substr(zones + kZones.size()));
}

void LinuxOperatingSystem::enumerate(const Request& request, const Emit& emit) {
  System system;
  emitInstance(system, bindProperties<LinuxProperty<System>>(request, kOperatingSystemProperties), emit);
}
