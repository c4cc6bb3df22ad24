// How much of a server one client may take.
// Tested by tests/unit/Server/EnumerationContextsTest.cpp, tests/unit/Server/QueryOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVERLIMITS_H
#define QORQL_SERVER_SERVERLIMITS_H

#include <chrono>
#include <cstddef>
#include <cstdint>

struct ServerLimits {
  std::chrono::milliseconds query = std::chrono::seconds(300);  // that one runs, or any other operation
  std::size_t enumerations = 64;                                // open ones of a client
  // Bytes of the rows of a query, and of what a client's open enumerations and the rows that it is sent hold together.
  std::uint64_t memory = std::uint64_t{1} << 30;
  // That an enumeration waits for its next pull, where the client asks for nothing else, and at most.
  std::chrono::milliseconds betweenPulls = std::chrono::seconds(300);
  std::chrono::milliseconds longestBetweenPulls = std::chrono::hours(1);
};

#endif
