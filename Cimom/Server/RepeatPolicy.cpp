// Counts the indications of each event.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/RepeatPolicy.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kFew = 1024;
constexpr std::size_t kMostEvents = 100000;
constexpr std::size_t kMostTimes = 1000000;  // of all events together

}  // namespace

bool RepeatMemory::lets(const std::string& event, Time now) {
  if (_rule.policy == RepeatRule::Policy::None) return true;
  if (_events.size() >= _most) forget(now);
  if (_times >= kMostTimes || _events.size() >= kMostEvents) forgetAll();
  Event& known = _events[event];
  Step& step = _steps.emplace_back();
  step.event = event;
  return _rule.policy == RepeatRule::Policy::Suppress ? letsFirst(known, now, step) : letsLate(known, now, step);
}

// An interval begins with the indication that finds the last one over.
bool RepeatMemory::letsFirst(Event& event, Time now, Step& step) const {
  step.kind = Step::Kind::First;
  step.begin = event.begin;
  step.sent = event.sent;
  if (event.sent == 0 || now - event.begin >= _rule.interval) {
    event.begin = now;
    event.sent = 0;
  }
  return ++event.sent <= _rule.count;
}

bool RepeatMemory::letsLate(Event& event, Time now, Step& step) {
  if (now < event.silentUntil) return false;
  event.begin = now;
  while (!event.seen.empty() && now - event.seen.front() >= _rule.interval) {
    event.seen.pop_front();
    --_times;
  }
  if (event.seen.size() < _rule.count) {
    event.seen.push_back(now);
    ++_times;
    step.kind = Step::Kind::Seen;
    return false;
  }
  step.seen = std::make_unique<std::deque<Time>>();
  step.silentUntil = event.silentUntil;
  step.kind = Step::Kind::Late;
  step.seen->swap(event.seen);
  _times -= step.seen->size();
  event.silentUntil = now + _rule.gap;
  return true;
}

void RepeatMemory::undo() noexcept {
  while (!_steps.empty()) undoLast();
}

// An event that has been forgotten meanwhile was over.
void RepeatMemory::undoLast() noexcept {
  if (_steps.empty()) return;
  Step& step = _steps.back();
  const auto known = _events.find(step.event);
  if (known != _events.end()) undo(known->second, step);
  _steps.pop_back();
}

void RepeatMemory::undo(Event& event, Step& step) noexcept {
  if (step.kind == Step::Kind::First) {
    event.begin = step.begin;
    event.sent = step.sent;
  } else if (step.kind == Step::Kind::Seen && !event.seen.empty()) {
    event.seen.pop_back();
    --_times;
  } else if (step.kind == Step::Kind::Late) {
    event.seen.swap(*step.seen);
    _times += event.seen.size();
    _times -= step.seen->size();
    event.silentUntil = step.silentUntil;
  }
}

void RepeatMemory::continueFrom(RepeatMemory& other) noexcept {
  _events.swap(other._events);
  _steps.swap(other._steps);
  std::swap(_times, other._times);
  std::swap(_most, other._most);
}

void RepeatMemory::forget(Time now) {
  std::erase_if(_events, [&](const auto& each) {
    const bool isOver = now - each.second.begin >= _rule.interval && now >= each.second.silentUntil;
    if (isOver) _times -= each.second.seen.size();
    return isOver;
  });
  _most = std::max(kFew, 2 * _events.size());
}

void RepeatMemory::forgetAll() {
  _events.clear();
  _steps.clear();
  _times = 0;
  _most = kFew;
}
