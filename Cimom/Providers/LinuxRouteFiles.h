// Routes as files of the kernel show them: fewer than there are.
// Tested by tests/unit/Providers/LinuxRouteTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXROUTEFILES_H
#define QORQL_PROVIDERS_LINUXROUTEFILES_H

#include <string>

#include "Cimom/Providers/LinuxRouteEntry.h"

// Those of the tables "route" (IPv4: of the main table, and of a route of several
// hops the first one) and "ipv6_route" (IPv6: of all tables, without telling which)
// in the folder that lead out of this machine. Lines that are no routes are skipped;
// a file that cannot be read is a warning. Any thread may call.
LinuxRouteEntries readRouteFiles(const std::string& folder);

#endif
