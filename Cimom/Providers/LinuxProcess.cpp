// Processes, read through libproc2. The request's properties become the list of
// items that the library fetches, one item for each property in the request's
// order, so that the kernel is asked for nothing else; the process id follows
// as the last item. What the library cannot tell apart from "none" (a file that
// may not be read) is read here instead.
#include "Cimom/Providers/LinuxProcess.h"

#include <libproc2/pids.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <map>
#include <memory>
#include <string>

#include "Cimom/Providers/LinuxOperatingSystem.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "cimom/CQoriProviderException.h"

const char* const LinuxProcess::kClassName = "Linux_Process";

namespace {

constexpr QORuint32 kCimErrFailed = 1;

// The process that is being read.
struct Sample {
  const pids_result* item = nullptr;  // the property's own item
  int pid = 0;
  bool hasEnded = false;  // noticed while reading it
  std::map<unsigned, std::string> userNames{};
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
LinuxValue readSint32(Sample& sample) { return sint32Value(sample.item->result.s_int); }
LinuxValue readBytes(Sample& sample) { return uint64Value(sample.item->result.ul_int); }
LinuxValue readKibibytes(Sample& sample) { return uint64Value(QORuint64{sample.item->result.ul_int} * 1024); }

// The kernel reports -100 (most urgent) to 39; CIM counts from 0.
LinuxValue readPriority(Sample& sample) { return uint32Value(static_cast<QORuint32>(sample.item->result.s_int + 100)); }

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

// Null for a kernel thread and where the caller lacks the permission.
LinuxValue readExecutable(Sample& sample) {
  std::array<char, 4096> target;
  const std::string path = sample.path("exe");
  const ssize_t length = readlink(path.c_str(), target.data(), target.size());
  if (length < 0) {
    noteFailure(sample, path, errno);
    return {};
  }
  return textValue({target.data(), static_cast<std::size_t>(length)});
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

constexpr ProcessProperty kProperties[] = {
    {"Handle", PIDS_noop, readHandle},
    {"ProcessID", PIDS_noop, readProcessId},
    {"ParentProcessID", PIDS_ID_PPID, readUint32},
    {"Name", PIDS_CMD, readCommandName},
    {"Caption", PIDS_CMD, readCommandName},
    {"ElementName", PIDS_CMD, readCommandName},
    {"CommandLine", PIDS_CMDLINE_V, readCommandLine},
    {"Executable", PIDS_noop, readExecutable},
    {"OwnerUser", PIDS_ID_EUID, readOwner},
    {"State", PIDS_STATE, readState},
    {"ExecutionState", PIDS_STATE, readExecutionState},
    {"Priority", PIDS_PRIORITY, readPriority},
    {"Nice", PIDS_NICE, readSint32},
    {"ThreadCount", PIDS_NLWP, readUint32},
    {"SessionID", PIDS_ID_SESSION, readUint32},
    {"CreationDate", PIDS_TICS_BEGAN, readCreationDate},
    {"KernelModeTime", PIDS_TICS_SYSTEM, readMilliseconds},
    {"UserModeTime", PIDS_TICS_USER, readMilliseconds},
    {"WorkingSetSize", PIDS_MEM_RES, readKibibytes},
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

[[noreturn]] void raiseUnreadable(int error) {
  logUnreadable("/proc", error);
  throw CQoriProviderException(LinuxProcess::kClassName, "The process table cannot be read", kCimErrFailed);
}

Processes openProcesses(std::vector<pids_item> items) {
  if (access("/proc/self/stat", R_OK) != 0) raiseUnreadable(errno);
  pids_info* processes = nullptr;
  const int result = procps_pids_new(&processes, items.data(), static_cast<int>(items.size()));
  if (result < 0) raiseUnreadable(-result);
  return Processes(processes);
}

// The items of the bound properties, then the process id.
Processes openProcesses(const BoundProperties& properties) {
  std::vector<pids_item> items;
  items.reserve(properties.size() + 1);
  for (const ProcessProperty* property : properties) items.push_back(property == nullptr ? PIDS_noop : property->item);
  items.push_back(PIDS_ID_PID);
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

void emitOne(pids_info* processes, const QORString& handle, const BoundProperties& properties,
             const InstanceProvider::Emit& emit) {
  unsigned pid = static_cast<unsigned>(handle.atoi());
  const pids_fetch* const fetched = procps_pids_select(processes, &pid, 1, PIDS_SELECT_PID);
  if (fetched == nullptr || fetched->counts->total == 0) return;
  Sample sample;
  emitProcess(sample, properties, *fetched->stacks[0], emit);
}

}  // namespace

void LinuxProcess::enumerate(const Request& request, const Emit& emit) {
  const BoundProperties properties = bindProperties<ProcessProperty>(request, kProperties);
  const Processes processes = openProcesses(properties);
  const QORString wanted = wantedKey(request, "Handle");
  if (!wanted.isNull()) return emitOne(processes.get(), wanted, properties, emit);
  // The first process is always there, unless those of other users are hidden.
  if (access("/proc/1", F_OK) != 0) warnUnreadable("the processes of other users", errno);
  Sample sample;
  while (const pids_stack* stack = procps_pids_get(processes.get(), PIDS_FETCH_TASKS_ONLY)) {
    emitProcess(sample, properties, *stack, emit);
  }
}

std::vector<LinuxProcess::Owner> LinuxProcess::owners() {
  const Processes processes = openProcesses(std::vector<pids_item>{PIDS_ID_PID, PIDS_ID_EUID});
  std::vector<Owner> owners;
  while (const pids_stack* stack = procps_pids_get(processes.get(), PIDS_FETCH_TASKS_ONLY)) {
    owners.push_back({stack->head[0].result.s_int, stack->head[1].result.u_int});
  }
  return owners;
}
