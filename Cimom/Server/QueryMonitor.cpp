// Time is asked for at each question, the connection once in a while.
// Tested by tests/unit/Server/QueryOperationsTest.cpp, tests/unit/Server/ServerOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/QueryMonitor.h"

#include <exception>
#include <string>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/StatusCodes.h"

bool isCallStopped() {
  QORQL_ExecutionMonitor* const monitor = QORQL_currentMonitor();
  return monitor != nullptr && monitor->isStopRequested();
}

bool QueryMonitor::isStopRequested() noexcept {
  const Clock::time_point now = Clock::now();
  _isLate = _isLate || now >= _end;
  if (now >= _nextLook && _reason == StopReason::None) look(now);
  return _isLate || _reason != StopReason::None;
}

// Looking at the connection costs a call of the system.
void QueryMonitor::look(Clock::time_point now) noexcept {
  constexpr std::chrono::milliseconds kInterval(50);
  _nextLook = now + kInterval;
  try {
    _reason = _client.stopReason();
  } catch (const std::exception&) {
    _reason = StopReason::ClientGone;
  }
}

void QueryMonitor::raiseStopped(const char* subject) const {
  const std::string stopped = std::string("the ") + subject + " was stopped: ";
  switch (_reason) {
    case StopReason::ShuttingDown:
      throw CimStatusException(cimstatus::kServerIsShuttingDown, stopped + "the server is shutting down");
    case StopReason::ClientGone:
      throw CimStatusException(cimstatus::kFailed, "the client has gone");
    case StopReason::None:
      break;
  }
  const long long seconds = std::chrono::duration_cast<std::chrono::seconds>(_limit).count();
  throw CimStatusException(cimstatus::kServerLimitsExceeded,
                           stopped + "it took more than " + std::to_string(seconds) + " seconds");
}
