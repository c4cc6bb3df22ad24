// Ends a query that nobody waits for any more, or that takes too long.
// Tested by tests/unit/Server/QueryOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_QUERYMONITOR_H
#define QORQL_SERVER_QUERYMONITOR_H

#include <chrono>
#include <exception>

#include "Cimom/Server/HttpService.h"
#include "qorql.h"

// BORROWS the client. One thread at a time.
class QueryMonitor final : public QORQL_ExecutionMonitor {
 public:
  QueryMonitor(const ServerClient& client, std::chrono::milliseconds limit)
      : _client(client), _end(Clock::now() + limit), _nextLook(Clock::now()) {}

  bool isStopRequested() noexcept override {
    const Clock::time_point now = Clock::now();
    _isLate = _isLate || now >= _end;
    if (now >= _nextLook && !_isGone) look(now);
    return _isLate || _isGone;
  }
  // Whether it was time that ended the query.
  bool isLate() const noexcept { return _isLate; }

 private:
  using Clock = std::chrono::steady_clock;

  // Looking at the connection costs a call of the system.
  void look(Clock::time_point now) noexcept {
    constexpr std::chrono::milliseconds kInterval(50);
    _nextLook = now + kInterval;
    try {
      _isGone = _client.isGone();
    } catch (const std::exception&) {
      _isGone = true;
    }
  }

  const ServerClient& _client;
  const Clock::time_point _end;
  Clock::time_point _nextLook;
  bool _isLate = false;
  bool _isGone = false;
};

#endif
