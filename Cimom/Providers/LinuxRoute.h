// The routes of this machine: class Linux_Route.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXROUTE_H
#define QORQL_PROVIDERS_LINUXROUTE_H

#include <string>
#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxRouteSocket.h"

// One instance for each hop of each route that leads out of this machine, of all
// tables, in the kernel's order, those of IPv4 first. Where the kernel refuses to be
// asked, those that its files show, with a warning. Several threads may enumerate at
// once.
class LinuxRoute : public InstanceProvider {
 public:
  static const char* const kClassName;
  // RETURNS 0 and all routes, or an errno and none.
  using Ask = int (*)(LinuxRouteEntries& routes);

  // The folder holds the tables "route" and "ipv6_route".
  explicit LinuxRoute(Ask ask = askForRoutes, std::string folder = "/proc/self/net")
      : _ask(ask), _folder(std::move(folder)) {}

  QORString getClassName() const override { return kClassName; }
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  LinuxRouteEntries routes() const;

  const Ask _ask;
  const std::string _folder;
};

#endif
