// The packages of this machine: class Linux_Package.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPACKAGE_H
#define QORQL_PROVIDERS_LINUXPACKAGE_H

#include <string>
#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per package that dpkg knows to be installed, or to have left its
// configuration behind, in the order of its list, then one per package of rpm's
// database, in its order, where the library that reads it was built. A machine
// with neither, which a warning tells, has none. Several threads may enumerate at once.
class LinuxPackage : public InstanceProvider {
 public:
  static const char* const kClassName;

  // dpkg's list of packages, and the folder of rpm's database; an empty text for the one that rpm is set up for.
  explicit LinuxPackage(std::string list = "/var/lib/dpkg/status", std::string rpmDatabase = "")
      : _list(std::move(list)), _rpmDatabase(std::move(rpmDatabase)) {}

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when there is a list or a database and it cannot be read.
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  const std::string _list;
  const std::string _rpmDatabase;
};

#endif
