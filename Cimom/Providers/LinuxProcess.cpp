// Processes, read through libproc2. The request's properties become the list of
// items that the library fetches, one item for each property in the request's
// order, so that the kernel is asked for nothing else; the process id follows
// as the last item. What the library cannot tell apart from "none" (a file that
// may not be read) is read here instead.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxProcess.h"

#include <libproc2/pids.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxOperatingSystem.h"
#include "Cimom/Providers/LinuxProcessFiles.h"
#include "Cimom/Providers/LinuxProcessorUse.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "cimom/CQoriProviderException.h"

const char* const LinuxProcess::kClassName = "Linux_Process";

namespace {

// The process that is being read.
struct Sample {
  const pids_result* item = nullptr;  // the property's own item
  int pid = 0;
  bool hasEnded = false;                            // noticed while reading it
  const LinuxProcessorUse* processorUse = nullptr;  // null unless it is asked for
  QORuint64 began = 0;                              // told where processorUse is there
  std::map<unsigned, std::string> userNames{};
  std::map<int, std::string> parentNames{};
  std::string ioCounters{};  // of the process `ioPid`
  int ioPid = 0;
  UnreadableParts unreadable{};
  std::map<std::string_view, LinuxValue> systemKeys{};  // the same for every process, by what they are

  std::string path(const char* file) const { return "/proc/" + std::to_string(pid) + "/" + file; }
};

struct ProcessProperty {
  const char* name;
  pids_item item;
  LinuxValue (*read)(Sample& sample);
};

LinuxValue readCommandName(Sample& sample) { return textOrNull(sample.item->result.str); }

// Arguments as they are, joined by blanks. A process without any (a kernel
// thread) has the library's single "-".
LinuxValue readCommandLine(Sample& sample) {
  char* const* const arguments = sample.item->result.strv;
  if (arguments == nullptr || arguments[0] == nullptr) return {};
  if (arguments[1] == nullptr && std::string_view(arguments[0]) == "-") return {};
  std::string line = arguments[0];
  for (char* const* argument = arguments + 1; *argument != nullptr; ++argument) line.append(" ").append(*argument);
  return textValue(line);
}

struct StateName {
  char code;
  const char* name;
  QORuint16 executionState;  // CIM_Process.ExecutionState
};
constexpr StateName kStates[] = {{'R', "Running", 3}, {'S', "Sleeping", 4}, {'D', "Waiting", 4}, {'I', "Idle", 4},
                                 {'T', "Stopped", 8}, {'t', "Traced", 8},   {'Z', "Zombie", 7},  {'X', "Dead", 7}};
constexpr StateName kUnknownState = {'?', "Unknown", 0};

const StateName& stateOf(const Sample& sample) {
  for (const StateName& state : kStates) {
    if (state.code == sample.item->result.s_ch) return state;
  }
  return kUnknownState;
}
LinuxValue readState(Sample& sample) { return textValue(stateOf(sample).name); }
LinuxValue readExecutionState(Sample& sample) { return uint16Value(stateOf(sample).executionState); }

LinuxValue readUint32(Sample& sample) { return uint32Value(static_cast<QORuint32>(sample.item->result.s_int)); }
LinuxValue readUserNumber(Sample& sample) { return uint32Value(sample.item->result.u_int); }
LinuxValue readSint32(Sample& sample) { return sint32Value(sample.item->result.s_int); }
LinuxValue readBytes(Sample& sample) { return uint64Value(sample.item->result.ul_int); }
LinuxValue readKibibytes(Sample& sample) { return uint64Value(QORuint64{sample.item->result.ul_int} * 1024); }

LinuxValue readPriority(Sample& sample) { return uint32Value(LinuxProcess::priorityOf(sample.item->result.s_int)); }

QORuint64 ticksPerSecond() {
  static const QORuint64 ticks = static_cast<QORuint64>(sysconf(_SC_CLK_TCK));
  return ticks;
}
LinuxValue readMilliseconds(Sample& sample) {
  return uint64Value(sample.item->result.ull_int * 1000 / ticksPerSecond());
}
LinuxValue readCreationDate(Sample& sample) {
  if (bootTimeMicroseconds() == 0) return {};
  const QORuint64 sinceBoot = sample.item->result.ull_int * 1000000 / ticksPerSecond();
  return dateTimeValue(0, bootTimeMicroseconds() + static_cast<QORsint64>(sinceBoot));
}

LinuxValue readElapsedTime(Sample& sample) {
  timespec now{};
  if (clock_gettime(CLOCK_BOOTTIME, &now) != 0) return {};
  const QORuint64 began = sample.item->result.ull_int / ticksPerSecond();
  const QORuint64 sinceBoot = static_cast<QORuint64>(now.tv_sec);
  return uint64Value(sinceBoot > began ? sinceBoot - began : 0);
}
LinuxValue readProcessorUse(Sample& sample) {
  if (sample.processorUse == nullptr) return {};
  const LinuxProcessorUse::Reading now{sample.item->result.ull_int, sample.began, LinuxProcessorUse::Clock::now()};
  // More digits than one say nothing: a tick is two percent of the window.
  return real64Value(std::round(sample.processorUse->percent(sample.pid, now) * 10) / 10);
}

// The library has "?" for a process without one.
LinuxValue readTerminal(Sample& sample) {
  const char* const name = sample.item->result.str;
  return name == nullptr || *name == '?' ? LinuxValue() : textOrNull(name);
}

LinuxValue readParentName(Sample& sample) {
  const int parent = sample.item->result.s_int;
  const auto [entry, isNew] = sample.parentNames.try_emplace(parent);
  if (isNew && parent > 0) entry->second = processName(parent);
  return textOrNull(entry->second.c_str());
}

std::string userName(unsigned id) {
  std::array<char, 16384> buffer;
  passwd entry{};
  passwd* found = nullptr;
  const int error = getpwuid_r(id, &entry, buffer.data(), buffer.size(), &found);
  return error == 0 && found != nullptr ? entry.pw_name : std::to_string(id);
}
LinuxValue readOwner(Sample& sample) {
  const unsigned id = sample.item->result.u_int;
  const auto [entry, isNew] = sample.userNames.try_emplace(id);
  if (isNew) entry->second = userName(id);
  return textValue(entry->second);
}

void noteFailure(Sample& sample, const std::string& path, int error) {
  const bool isGone = error == ENOENT || error == ESRCH;
  if (isGone && access(sample.path("").c_str(), F_OK) != 0) sample.hasEnded = true;
  if (!isGone) sample.unreadable.note(path, error);
}

// A fact that a file of the process tells: null for a kernel thread, where the caller lacks the permission, and where
// there is nothing to tell (errno 0).
template <class Fact>
LinuxValue readFact(Sample& sample, const char* file, Fact fact) {
  const std::string path = sample.path(file);
  const auto found = fact(path);
  if (!found && errno != 0) noteFailure(sample, path, errno);
  if constexpr (std::is_same_v<Fact, decltype(&readProcessLink)>) return found ? textValue(*found) : LinuxValue();
  if constexpr (std::is_same_v<Fact, decltype(&countEntries)>) return found ? uint32Value(*found) : LinuxValue();
  if constexpr (std::is_same_v<Fact, decltype(&executableExists)>) return found ? booleanValue(*found) : LinuxValue();
}
LinuxValue readExecutable(Sample& sample) { return readFact(sample, "exe", &readProcessLink); }
LinuxValue readExecutableExists(Sample& sample) { return readFact(sample, "exe", &executableExists); }
LinuxValue readWorkingDirectory(Sample& sample) { return readFact(sample, "cwd", &readProcessLink); }
LinuxValue readOpenFileCount(Sample& sample) { return readFact(sample, "fd", &countEntries); }

LinuxValue readControlGroup(Sample& sample) {
  const std::string path = sample.path("cgroup");
  const std::string content = readSmallFile(path);
  if (errno != 0) noteFailure(sample, path, errno);
  const QORString group = controlGroupIn(content);
  return group.isNull() ? LinuxValue() : textValue(group.view());
}

const std::string& ioCounters(Sample& sample) {
  if (sample.ioPid != sample.pid) {
    sample.ioPid = sample.pid;
    const std::string path = sample.path("io");
    sample.ioCounters = "\n" + readSmallFile(path);
    if (errno != 0) noteFailure(sample, path, errno);
  }
  return sample.ioCounters;
}
LinuxValue readIoCounter(Sample& sample, std::string_view line) {
  const std::string& counters = ioCounters(sample);
  const std::size_t found = counters.find(line);
  if (found == std::string::npos) return {};
  return uint64Value(QORString(std::string_view(counters).substr(found + line.size())).atoui64());
}
LinuxValue readBytesRead(Sample& sample) { return readIoCounter(sample, "\nread_bytes: "); }
LinuxValue readBytesWritten(Sample& sample) { return readIoCounter(sample, "\nwrite_bytes: "); }

LinuxValue readHandle(Sample& sample) { return textValue(std::to_string(sample.pid)); }
LinuxValue readProcessId(Sample& sample) { return uint32Value(static_cast<QORuint32>(sample.pid)); }

// The keys that tie a process to its system, made once for all processes.
template <class Make>
LinuxValue systemKey(Sample& sample, std::string_view name, Make make) {
  LinuxValue& value = sample.systemKeys[name];
  if (value.IsNull()) value = make();
  return value;
}
LinuxValue readClassName(Sample& sample) {
  return systemKey(sample, "class", [] { return textValue(LinuxProcess::kClassName); });
}
LinuxValue readSystemClassName(Sample& sample) {
  return systemKey(sample, "system class", [] { return textValue(kLinuxComputerSystem); });
}
LinuxValue readSystemName(Sample& sample) {
  return systemKey(sample, "system", [] { return textValue(hostName()); });
}
LinuxValue readOsClassName(Sample& sample) {
  return systemKey(sample, "OS class", [] { return textValue(LinuxOperatingSystem::kClassName); });
}
LinuxValue readOsName(Sample& sample) {
  return systemKey(sample, "OS", [] { return textValue(LinuxOperatingSystem::name().view()); });
}

constexpr const char* kProcessorUse = "CPUPercent";

constexpr ProcessProperty kProcessProperties[] = {
    {"Handle", PIDS_noop, readHandle},
    {"ProcessID", PIDS_noop, readProcessId},
    {"ParentProcessID", PIDS_ID_PPID, readUint32},
    {"ParentName", PIDS_ID_PPID, readParentName},
    {"Name", PIDS_CMD, readCommandName},
    {"Caption", PIDS_CMD, readCommandName},
    {"ElementName", PIDS_CMD, readCommandName},
    {"CommandLine", PIDS_CMDLINE_V, readCommandLine},
    {"Executable", PIDS_noop, readExecutable},
    {"ExecutableExists", PIDS_noop, readExecutableExists},
    {"WorkingDirectory", PIDS_noop, readWorkingDirectory},
    {"OpenFileCount", PIDS_noop, readOpenFileCount},
    {"ControlGroup", PIDS_noop, readControlGroup},
    {"Terminal", PIDS_TTY_NAME, readTerminal},
    {"OwnerUser", PIDS_ID_EUID, readOwner},
    {"UserID", PIDS_ID_EUID, readUserNumber},
    {"GroupID", PIDS_ID_EGID, readUserNumber},
    {"State", PIDS_STATE, readState},
    {"ExecutionState", PIDS_STATE, readExecutionState},
    {"Priority", PIDS_PRIORITY, readPriority},
    {"Nice", PIDS_NICE, readSint32},
    {"ThreadCount", PIDS_NLWP, readUint32},
    {"SessionID", PIDS_ID_SESSION, readUint32},
    {"CreationDate", PIDS_TICS_BEGAN, readCreationDate},
    {"ElapsedTime", PIDS_TICS_BEGAN, readElapsedTime},
    {kProcessorUse, PIDS_TICS_ALL, readProcessorUse},
    {"KernelModeTime", PIDS_TICS_SYSTEM, readMilliseconds},
    {"UserModeTime", PIDS_TICS_USER, readMilliseconds},
    {"WorkingSetSize", PIDS_MEM_RES, readKibibytes},
    {"SwapSize", PIDS_VM_SWAP, readKibibytes},
    {"VirtualMemorySize", PIDS_VSIZE_BYTES, readBytes},
    {"BytesRead", PIDS_noop, readBytesRead},
    {"BytesWritten", PIDS_noop, readBytesWritten},
    {"CreationClassName", PIDS_noop, readClassName},
    {"CSCreationClassName", PIDS_noop, readSystemClassName},
    {"CSName", PIDS_noop, readSystemName},
    {"OSCreationClassName", PIDS_noop, readOsClassName},
    {"OSName", PIDS_noop, readOsName},
};

using BoundProperties = std::vector<const ProcessProperty*>;

struct ReleaseProcesses {
  void operator()(pids_info* processes) const noexcept { procps_pids_unref(&processes); }
};
using Processes = std::unique_ptr<pids_info, ReleaseProcesses>;

[[noreturn]] void raiseProcessesUnreadable(int error) {
  logUnreadable("/proc", error);
  throw CQoriProviderException(LinuxProcess::kClassName, "The process table cannot be read",
                               InstanceProvider::kUnreadable);
}

Processes openProcesses(std::vector<pids_item> items) {
  if (access("/proc/self/stat", R_OK) != 0) raiseProcessesUnreadable(errno);
  pids_info* processes = nullptr;
  const int result = procps_pids_new(&processes, items.data(), static_cast<int>(items.size()));
  if (result < 0) raiseProcessesUnreadable(-result);
  return Processes(processes);
}

// The items of the bound properties, then the process id, and when it began where that is needed.
Processes openProcesses(const BoundProperties& properties, bool needsBegin) {
  std::vector<pids_item> items;
  items.reserve(properties.size() + 2);
  for (const ProcessProperty* property : properties) items.push_back(property == nullptr ? PIDS_noop : property->item);
  items.push_back(PIDS_ID_PID);
  if (needsBegin) items.push_back(PIDS_TICS_BEGAN);
  return openProcesses(std::move(items));
}

// An item that several properties need: the library gives its text to the first
// alone, the others get a text that says so.
std::size_t placeOfItem(const BoundProperties& properties, std::size_t property) {
  for (std::size_t i = 0; i < property; ++i) {
    if (properties[i] != nullptr && properties[i]->item == properties[property]->item) return i;
  }
  return property;
}

void emitProcess(Sample& sample, const BoundProperties& properties, const pids_stack& stack,
                 const InstanceProvider::Emit& emit) {
  std::vector<LinuxValue> values;
  values.reserve(properties.size());
  sample.pid = stack.head[properties.size()].result.s_int;
  if (sample.processorUse != nullptr) sample.began = stack.head[properties.size() + 1].result.ull_int;
  sample.hasEnded = false;
  for (std::size_t i = 0; i < properties.size() && !sample.hasEnded; ++i) {
    if (properties[i] == nullptr) {
      values.emplace_back();
      continue;
    }
    sample.item = &stack.head[placeOfItem(properties, i)];
    values.push_back(properties[i]->read(sample));
  }
  if (!sample.hasEnded) emit(std::move(values));
}

// The processes of an enumeration: all, or the one that is wanted.
template <class Take>
void forEachProcess(pids_info* processes, const QORString& wanted, Take take) {
  if (wanted.isNull()) {
    while (const pids_stack* stack = procps_pids_get(processes, PIDS_FETCH_TASKS_ONLY)) take(*stack);
    return;
  }
  unsigned pid = static_cast<unsigned>(wanted.atoi());
  const pids_fetch* const fetched = procps_pids_select(processes, &pid, 1, PIDS_SELECT_PID);
  if (fetched != nullptr && fetched->counts->total != 0) take(*fetched->stacks[0]);
}

// The first reading, and the time until the second one.
LinuxProcessorUse watchProcessorUse(const QORString& wanted) {
  LinuxProcessorUse use(ticksPerSecond(), LinuxProcessorUse::Clock::now());
  const Processes processes = openProcesses(std::vector<pids_item>{PIDS_ID_PID, PIDS_TICS_ALL, PIDS_TICS_BEGAN});
  forEachProcess(processes.get(), wanted, [&](const pids_stack& stack) {
    use.note(stack.head[0].result.s_int,
             {stack.head[1].result.ull_int, stack.head[2].result.ull_int, LinuxProcessorUse::Clock::now()});
  });
  use.waitForEnd();
  return use;
}

}  // namespace

void LinuxProcess::enumerate(const Request& request, const Emit& emit) {
  const BoundProperties properties = bindProperties<ProcessProperty>(request, kProcessProperties);
  const QORString wanted = wantedKey(request, "Handle");
  std::optional<LinuxProcessorUse> processorUse;
  if (request.needs(kProcessorUse)) processorUse = watchProcessorUse(wanted);
  const Processes processes = openProcesses(properties, processorUse.has_value());
  if (wanted.isNull()) warnOfHiddenProcesses();
  Sample sample;
  sample.processorUse = processorUse ? &*processorUse : nullptr;
  forEachProcess(processes.get(), wanted,
                 [&](const pids_stack& stack) { emitProcess(sample, properties, stack, emit); });
}

QORuint32 LinuxProcess::priorityOf(int kernelPriority) {
  return static_cast<QORuint32>(std::max(kernelPriority, -100) + 100);
}

std::vector<LinuxProcess::Owner> LinuxProcess::owners() {
  const Processes processes = openProcesses(std::vector<pids_item>{PIDS_ID_PID, PIDS_ID_EUID});
  warnOfHiddenProcesses();
  std::vector<Owner> owners;
  while (const pids_stack* stack = procps_pids_get(processes.get(), PIDS_FETCH_TASKS_ONLY)) {
    owners.push_back({stack->head[0].result.s_int, stack->head[1].result.u_int});
  }
  return owners;
}

std::map<uid_t, LinuxProcess::Share> LinuxProcess::sharesOfUsers() {
  const Processes processes = openProcesses(std::vector<pids_item>{PIDS_ID_EUID, PIDS_MEM_RES});
  warnOfHiddenProcesses();
  std::map<uid_t, Share> shares;
  while (const pids_stack* stack = procps_pids_get(processes.get(), PIDS_FETCH_TASKS_ONLY)) {
    Share& share = shares[stack->head[0].result.u_int];
    ++share.processes;
    share.memory += QORuint64{stack->head[1].result.ul_int} * 1024;
  }
  return shares;
}
