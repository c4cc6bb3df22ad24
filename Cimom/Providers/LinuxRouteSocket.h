// Asks the kernel for its routes.
// Tested by tests/unit/Providers/LinuxRouteTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXROUTESOCKET_H
#define QORQL_PROVIDERS_LINUXROUTESOCKET_H

#include "Cimom/Providers/LinuxRouteEntry.h"

// The routes of all tables that lead out of this machine, an entry for each hop, in
// the kernel's order, IPv4 first. RETURNS 0, or the errno with which the kernel
// refused, and then no routes; EAGAIN where it did not answer for five seconds.
// A warning says so when the tables did not stand still in three attempts. Any
// thread may call.
int askForRoutes(LinuxRouteEntries& routes);

#endif
