// What the kernel answers to a request for its routes (rtnetlink).
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXROUTEMESSAGES_H
#define QORQL_PROVIDERS_LINUXROUTEMESSAGES_H

#include <cstddef>
#include <functional>
#include <span>
#include <string>

#include "Cimom/Providers/LinuxRouteEntry.h"

struct LinuxRouteAnswer {
  bool isDone = false;         // the last message was among those that were read
  bool isInterrupted = false;  // the tables changed meanwhile: routes may be missing or doubled
  int error = 0;               // an errno with which the kernel ended the answer, EPROTO for one that is malformed
};

// The name of an interface by its number; empty where there is none.
using LinuxInterfaceName = std::function<std::string(int)>;

// Reads the messages of one packet of the answer to the request of that number and
// adds an entry for each hop of each route that leads out of this machine; what
// belongs to other requests is skipped. Reads nothing beyond the packet, whatever
// lengths it claims. Any thread may call.
LinuxRouteAnswer readRouteMessages(std::span<const std::byte> packet, QORuint32 requestNumber,
                                   const LinuxInterfaceName& interfaceName, LinuxRouteEntries& routes);

#endif
