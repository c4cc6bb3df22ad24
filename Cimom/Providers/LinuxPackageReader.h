// What the provider of packages and the libraries that read the lists of dpkg and rpm agree on.
// Tested by tests/unit/Providers/LinuxPackageTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPACKAGEREADER_H
#define QORQL_PROVIDERS_LINUXPACKAGEREADER_H

#include <cstdint>
#include <functional>
#include <string>

// One package of a list; empty fields are not told.
struct LinuxPackageRecord {
  std::string id;  // which no other package of the machine has: the package system, a colon, and its own name for it
  std::string name;
  std::string architecture;
  std::string version;
  std::string status;  // "install ok installed"
  std::string section;
  std::string priority;
  std::string source;
  std::string maintainer;
  std::string description;     // the first line
  std::string size;            // installed, in units of
  std::uint64_t sizeUnit = 1;  // bytes
};

using LinuxPackageTake = std::function<void(const LinuxPackageRecord&)>;

// Hands over the packages of the list in their order. `wrong` becomes what went
// wrong; it stays empty when nothing did. The list is dpkg's status file, or the
// folder of rpm's database, where an empty text means the one that rpm itself is
// set up for; a folder without a database has no packages.
using LinuxPackageReader = void (*)(const char* list, const LinuxPackageTake& take, std::string& wrong);

// Each is a library of its own, which is loaded when packages are asked for, since
// what it needs would slow down every start. Where they lie, from the folder of
// the library of the object manager on. The one for rpm is there where it was built.
inline constexpr const char* kLinuxAptLibrary = "qorql/libqorqlapt.so";
inline constexpr const char* kLinuxRpmLibrary = "qorql/libqorqlrpm.so";
inline constexpr const char* kLinuxPackageFunction = "qorqlReadPackages";

#endif
