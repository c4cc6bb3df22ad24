// The packages of this machine: class Linux_Package.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPACKAGE_H
#define QORQL_PROVIDERS_LINUXPACKAGE_H

#include <string>
#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per package that dpkg knows to be installed, or to have left its
// configuration behind, in the order of its list. A machine without that list,
// which a warning tells, has none. Several threads may enumerate at once.
class LinuxPackage : public InstanceProvider {
 public:
  static const char* const kClassName;

  // dpkg's list of packages.
  explicit LinuxPackage(std::string list = "/var/lib/dpkg/status") : _list(std::move(list)) {}

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when there is a list and it cannot be read.
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  const std::string _list;
};

#endif
