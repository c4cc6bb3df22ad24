// Ends what a client asked for when nobody waits for it any more, when it takes too long, or when the server is not to
// go on with it.
// Tested by tests/unit/Server/QueryOperationsTest.cpp, tests/unit/Server/ServerOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_QUERYMONITOR_H
#define QORQL_SERVER_QUERYMONITOR_H

#include <chrono>

#include "Cimom/Server/HttpService.h"
#include "qorql.h"

// Whether the operation that this thread answers is to end, as its monitor says.
bool isCallStopped();

// BORROWS the client. One thread at a time.
class QueryMonitor final : public QORQL_ExecutionMonitor {
 public:
  QueryMonitor(const ServerClient& client, std::chrono::milliseconds limit)
      : _client(client), _limit(limit), _end(Clock::now() + limit), _nextLook(Clock::now()) {}

  bool isStopRequested() noexcept override;
  // Why it was stopped, for the client: `subject` is what was, "query". THROWS CimStatusException: 27 when it took too
  // long, 28 when the server is shutting down, else 1. REQUIRES isStopRequested().
  [[noreturn]] void raiseStopped(const char* subject) const;

 private:
  using Clock = std::chrono::steady_clock;

  void look(Clock::time_point now) noexcept;

  const ServerClient& _client;
  const std::chrono::milliseconds _limit;
  const Clock::time_point _end;
  Clock::time_point _nextLook;
  bool _isLate = false;
  StopReason _reason = StopReason::None;
};

#endif
