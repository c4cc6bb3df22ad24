// What the provider of packages and the library that reads dpkg's list of them agree on.
// Tested by tests/unit/Providers/LinuxPackageTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPACKAGEREADER_H
#define QORQL_PROVIDERS_LINUXPACKAGEREADER_H

#include <functional>
#include <string>

// One package of the list; empty fields are not told.
struct LinuxPackageRecord {
  std::string name;
  std::string architecture;
  std::string version;
  std::string status;  // "install ok installed"
  std::string section;
  std::string priority;
  std::string source;
  std::string maintainer;
  std::string description;  // the first line
  std::string size;         // installed, in KiB
};

using LinuxPackageTake = std::function<void(const LinuxPackageRecord&)>;

// Hands over the packages of the list in their order. `wrong` becomes what went
// wrong; it stays empty when nothing did.
using LinuxPackageReader = void (*)(const char* list, const LinuxPackageTake& take, std::string& wrong);

// It is a library of its own, which is loaded when packages are asked for, since
// what it needs would slow down every start. Where it lies, from the folder of
// the library of the object manager on.
inline constexpr const char* kLinuxPackageLibrary = "qorql/libqorqlapt.so";
inline constexpr const char* kLinuxPackageFunction = "qorqlReadPackages";

#endif
