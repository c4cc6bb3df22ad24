// Watches a statement: where it is, how long each step takes, and whether it should stop.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_RUNMONITOR_H
#define QORQL_TOOL_RUNMONITOR_H

#include <array>
#include <chrono>
#include <exception>
#include <vector>

#include "Activity.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"

// Time is counted for the innermost step alone: a fetch inside a condition is a
// fetch. BORROWS the activity.
class RunMonitor : public QORQL_ExecutionMonitor {
 public:
  explicit RunMonitor(Activity& activity) : _activity(activity) {}

  bool isStopRequested() noexcept override;
  void stepBegins(Step step, const QORString& subject) noexcept override;
  void stepEnds(Step step) noexcept override;
  void resultEndsEarly(const std::exception_ptr& cause) noexcept override;

  // What ended the result before its last row; null when nothing did.
  const std::exception_ptr& causeOfEarlyEnd() const noexcept { return _causeOfEarlyEnd; }
  double milliseconds(Step step) const noexcept { return _milliseconds[step]; }

 private:
  using Clock = std::chrono::steady_clock;

  void countTime() noexcept;
  void describe() noexcept;

  struct Running {
    Step step;
    QORString subject;
  };

  Activity& _activity;
  std::vector<Running> _running;
  std::array<double, 4> _milliseconds{};
  Clock::time_point _since;
  std::exception_ptr _causeOfEarlyEnd;
};

#endif
