// Watches a statement: where it is, how long each step takes, and whether it should stop.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_RUNMONITOR_H
#define QORQL_TOOL_RUNMONITOR_H

#include <array>
#include <chrono>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "Activity.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"

// Time is counted for the innermost step alone: a fetch inside a condition is a
// fetch. A statement whose time is over should stop. BORROWS the activity.
class RunMonitor : public QORQL_ExecutionMonitor {
 public:
  // The seconds that the statement has from now on; 0: as many as it takes.
  RunMonitor(Activity& activity, double timeout);

  bool isStopRequested() noexcept override;
  void stepBegins(Step step, const QORString& subject) noexcept override;
  void stepEnds(Step step) noexcept override;
  void resultEndsEarly(const std::exception_ptr& cause) noexcept override;

  // What ended the result before its last row; null when nothing did.
  const std::exception_ptr& causeOfEarlyEnd() const noexcept { return _causeOfEarlyEnd; }
  double milliseconds(Step step) const noexcept { return _milliseconds[step]; }

  // THROWS std::runtime_error once the time is over, which tells what was being done.
  void requireTime();
  bool isLate() const noexcept { return !_late.empty(); }
  // " after 2.5 seconds (--timeout)"
  std::string lateness() const;

 private:
  using Clock = std::chrono::steady_clock;

  bool isTimeOver() noexcept;
  void countTime() noexcept;
  void describe() noexcept;

  struct Running {
    Step step;
    QORString subject;
  };

  Activity& _activity;
  const double _timeout;
  std::optional<Clock::time_point> _deadline;
  std::string _late;  // what was being done when the time was over; empty before
  std::vector<Running> _running;
  std::array<double, 4> _milliseconds{};
  Clock::time_point _since;
  std::exception_ptr _causeOfEarlyEnd;
};

#endif
