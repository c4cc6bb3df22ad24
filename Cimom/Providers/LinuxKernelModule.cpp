// Kernel modules: lines "name size uses user,user, state address".
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxKernelModule.h"

#include <cerrno>
#include <sstream>

#include "Cimom/Providers/LinuxProperty.h"

const char* const LinuxKernelModule::kClassName = "Linux_KernelModule";

namespace {

// The module that is being read.
struct Module {
  std::string name;
  QORuint64 size = 0;
  std::string uses;  // "-" where the kernel does not count them
  std::string users;
  std::string state;
};

LinuxValue readName(Module& module) { return textValue(module.name); }
LinuxValue readSize(Module& module) { return uint64Value(module.size); }
LinuxValue readState(Module& module) { return textOrNull(module.state.c_str()); }
LinuxValue readUseCount(Module& module) {
  const QORString uses(module.uses);
  return uses.isNumeric() ? uint32Value(static_cast<QORuint32>(uses.atoui64())) : LinuxValue();
}
// Each has a comma after it; "-" stands for none, "[permanent]" for a module that cannot be unloaded.
LinuxValue readUsers(Module& module) {
  std::vector<std::string> names;
  std::istringstream users(module.users);
  for (std::string name; std::getline(users, name, ',');) {
    if (name != "-" && !name.starts_with('[')) names.push_back(name);
  }
  return textsValue(names);
}

// The keys that tie it to its system.
LinuxValue readClassName(Module&) { return textValue(LinuxKernelModule::kClassName); }
LinuxValue readSystemClassName(Module&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Module&) { return textValue(hostName()); }

constexpr LinuxProperty<Module> kKernelModuleProperties[] = {
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"Size", readSize},
    {"UseCount", readUseCount},
    {"UsedBy", readUsers},
    {"State", readState},
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

}  // namespace

void LinuxKernelModule::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Module>>(request, kKernelModuleProperties);
  const QORString wanted = wantedKey(request, "Name");
  const std::string content = readSmallFile(_list);
  if (errno != 0) warnUnreadable(_list, errno);
  std::istringstream lines(content);
  for (std::string line; std::getline(lines, line);) {
    Module module;
    std::istringstream words(line);
    if (!(words >> module.name >> module.size)) continue;
    words >> module.uses >> module.users >> module.state;
    if (wanted.isNull() || wanted == module.name.c_str()) emitInstance(module, properties, emit);
  }
}
