// Watches a statement: where it is, how long each step takes, and whether it should stop.
// SPDX-License-Identifier: Apache-2.0
#include "RunMonitor.h"

#include <string>

#include "Interrupt.h"

bool RunMonitor::isStopRequested() noexcept { return Interrupt::isRequested(); }

void RunMonitor::countTime() noexcept {
  const Clock::time_point now = Clock::now();
  if (!_running.empty()) {
    _milliseconds[_running.back().step] += std::chrono::duration<double, std::milli>(now - _since).count();
  }
  _since = now;
}

void RunMonitor::describe() noexcept {
  constexpr const char* kNames[] = {"fetching ", "joining and filtering", "sorting", "building the result"};
  if (_running.empty()) {
    _activity.set("running");
  } else {
    _activity.set(kNames[_running.back().step] + std::string(_running.back().subject.view()));
  }
}

void RunMonitor::stepBegins(Step step, const QORString& subject) noexcept {
  countTime();
  _running.push_back({step, subject});
  describe();
}

void RunMonitor::stepEnds(Step /*step*/) noexcept {
  countTime();
  _running.pop_back();
  describe();
}

void RunMonitor::resultEndsEarly(const std::exception_ptr& cause) noexcept {
  if (_causeOfEarlyEnd == nullptr) _causeOfEarlyEnd = cause;
}
