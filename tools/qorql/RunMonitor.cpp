// Watches a statement: where it is, how long each step takes, and whether it should stop.
// SPDX-License-Identifier: Apache-2.0
#include "RunMonitor.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string>

#include "Interrupt.h"
#include "Pager.h"

namespace {

constexpr double kLongestTimeout = 1e9;  // seconds that a clock can count; nobody waits for as long as that

}  // namespace

RunMonitor::RunMonitor(Activity& activity, double timeout) : _activity(activity), _timeout(timeout) {
  using std::chrono::duration;
  if (timeout == 0) return;
  const duration<double> seconds(std::min(timeout, kLongestTimeout));
  _deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(seconds);
}

bool RunMonitor::isStopRequested() noexcept { return Interrupt::isRequested() || isTimeOver(); }

// The time of a person who reads does not count.
bool RunMonitor::isTimeOver() noexcept {
  if (!_deadline) return false;
  if (_late.empty() && !Pager::isRunning() && Clock::now() >= *_deadline) _late = _activity.get();
  return !_late.empty();
}

std::string RunMonitor::lateness() const {
  std::ostringstream text;
  text << " after " << _timeout << (_timeout == 1 ? " second" : " seconds") << " (--timeout)";
  return text.str();
}

void RunMonitor::requireTime() {
  if (isTimeOver()) throw std::runtime_error("the statement was stopped" + lateness() + ", " + _late);
}

// A step that nothing stops, such as a call of the object manager, is noticed at its end.
void RunMonitor::countTime() noexcept {
  isTimeOver();
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
