// The names of live instances. They carry the keys of the full CIM schema; where
// the classes in force have fewer, the object manager leaves the others out.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxReferences.h"

#include <string>

#include "Cimom/Providers/LinuxBlockDevice.h"
#include "Cimom/Providers/LinuxFileSystem.h"
#include "Cimom/Providers/LinuxGroup.h"
#include "Cimom/Providers/LinuxListeningPort.h"
#include "Cimom/Providers/LinuxOperatingSystem.h"
#include "Cimom/Providers/LinuxProcess.h"
#include "Cimom/Providers/LinuxService.h"
#include "Cimom/Providers/LinuxUser.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

LinuxReferences::LinuxReferences(const QORString& nameSpace)
    : _path(new CQoriNameSpacePath(QORString::emptyString(), nameSpace)),
      _systemClass(textValue(kLinuxComputerSystem)),
      _systemName(textValue(hostName())),
      _osClass(textValue(LinuxOperatingSystem::kClassName)),
      _osName(textValue(LinuxOperatingSystem::name().view())) {}

LinuxValue LinuxReferences::make(const char* className, std::vector<Key> keys) const {
  keys.emplace_back("CreationClassName", textValue(className));
  QORSmrPtr<IQoriInstanceName::KeyList> list(new IQoriInstanceName::KeyList());
  for (const Key& key : keys) list->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(key.first, key.second, true)));
  const QORSmrPtr<IQoriInstanceName> name(new CQoriInstanceName(className, list, _path));
  return LinuxValue(new CQoriValue(name));
}

LinuxValue LinuxReferences::onSystem(const char* className, const char* keyName, std::string_view key) const {
  return make(className,
              {{"SystemCreationClassName", _systemClass}, {"SystemName", _systemName}, {keyName, textValue(key)}});
}

LinuxValue LinuxReferences::process(int pid) const {
  return make(LinuxProcess::kClassName, {{"CSCreationClassName", _systemClass},
                                         {"CSName", _systemName},
                                         {"OSCreationClassName", _osClass},
                                         {"OSName", _osName},
                                         {"Handle", textValue(std::to_string(pid))}});
}

LinuxValue LinuxReferences::fileSystem(std::string_view mountPoint) const {
  return make(LinuxFileSystem::kClassName,
              {{"CSCreationClassName", _systemClass}, {"CSName", _systemName}, {"Name", textValue(mountPoint)}});
}

LinuxValue LinuxReferences::blockDevice(std::string_view deviceId) const {
  return onSystem(LinuxBlockDevice::kClassName, "DeviceID", deviceId);
}

LinuxValue LinuxReferences::listeningPort(std::string_view name) const {
  return onSystem(LinuxListeningPort::kClassName, "Name", name);
}

LinuxValue LinuxReferences::user(std::string_view name) const { return onSystem(LinuxUser::kClassName, "Name", name); }

LinuxValue LinuxReferences::group(std::string_view name) const {
  return make(LinuxGroup::kClassName, {{"Name", textValue(name)}});
}

LinuxValue LinuxReferences::service(std::string_view name) const {
  return onSystem(LinuxService::kClassName, "Name", name);
}
