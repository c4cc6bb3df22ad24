// An instance path as a person types it, and the instances that it may mean.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_INSTANCEPATH_H
#define QORQL_TOOL_INSTANCEPATH_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"

struct InstancePath {
  QORString nameSpace;
  QORString className;
  std::vector<CimInstanceProperty> keys;  // those given, as values of their declared types
  std::string server;                     // of the given ones, that the path names; empty: none
};

// Reads `[[//server/]namespace:]Class.Key="v",Key2=2`; not all keys need be given. THROWS std::runtime_error for a text
// that is no path, a host that is none of the servers, an unknown class or key, and a value that does not suit its key.
InstancePath readInstancePath(EmbeddedObjectManager& manager, const std::string& text, const std::string& nameSpace,
                              const std::vector<std::string>& servers);

// The names of the instances of the class, derived classes included, that have the given keys and are of the server, if
// the path names one. THROWS what
// enumerating throws. REQUIRES the current object manager.
std::vector<QORSmrPtr<IQoriInstanceName>> instancesAt(const InstancePath& path);

#endif
