// The routes of this machine: class Linux_Route.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXROUTE_H
#define QORQL_PROVIDERS_LINUXROUTE_H

#include <string>
#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per route that leads out of this machine, in the kernel's order:
// first those of IPv4, of the main table and of a route over several ways the
// first of them; then those of IPv6, of all tables. Several threads may enumerate at once.
class LinuxRoute : public InstanceProvider {
 public:
  static const char* const kClassName;

  // The folder that holds the tables "route" and "ipv6_route".
  explicit LinuxRoute(std::string folder = "/proc/self/net") : _folder(std::move(folder)) {}

  QORString getClassName() const override { return kClassName; }
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  const std::string _folder;
};

#endif
