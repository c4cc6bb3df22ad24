// One route of the kernel's tables, one hop of it.
// Tested by tests/unit/Providers/LinuxRouteTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXROUTEENTRY_H
#define QORQL_PROVIDERS_LINUXROUTEENTRY_H

#include <string>
#include <vector>

#include "cmpbase.h"

// A value.
struct LinuxRouteEntry {
  static constexpr QORuint32 kMainTable = 254;

  bool isVersion6 = false;
  std::string destination;  // an address; 0.0.0.0 or :: where the route is for all
  unsigned prefixLength = 0;
  std::string gateway;    // empty: the destination is at the other end of the interface
  std::string interface;  // empty: nothing is sent
  QORuint32 metric = 0;
  QORuint32 table = 0;   // 0: it is not known which
  QORuint32 weight = 0;  // its share where there are several hops; 0: this is the only one
  bool isRejected = false;
};

using LinuxRouteEntries = std::vector<LinuxRouteEntry>;

#endif
