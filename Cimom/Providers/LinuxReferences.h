// The names of live instances, as associations between them need them.
// Tested by tests/unit/Providers/LinuxAssociationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXREFERENCES_H
#define QORQL_PROVIDERS_LINUXREFERENCES_H

#include <string_view>
#include <utility>
#include <vector>

#include "Cimom/Providers/LinuxValues.h"
#include "cimom/IQoriInstanceName.h"

// Makes reference values in one namespace. The keys that tie an instance to its
// system are made once. Belongs to one enumeration.
class LinuxReferences {
 public:
  explicit LinuxReferences(const QORString& nameSpace);

  LinuxValue process(int pid) const;
  LinuxValue fileSystem(std::string_view mountPoint) const;
  LinuxValue blockDevice(std::string_view deviceId) const;
  LinuxValue listeningPort(std::string_view name) const;
  LinuxValue user(std::string_view name) const;
  LinuxValue group(std::string_view name) const;
  LinuxValue service(std::string_view name) const;

 private:
  using Key = std::pair<const char*, LinuxValue>;

  LinuxValue make(const char* className, std::vector<Key> keys) const;
  LinuxValue onSystem(const char* className, const char* keyName, std::string_view key) const;

  QORSmrPtr<IQoriNameSpacePath> _path;
  LinuxValue _systemClass;
  LinuxValue _systemName;
  LinuxValue _osClass;
  LinuxValue _osName;
};

#endif
