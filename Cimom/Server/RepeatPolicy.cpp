// Counts the indications of each event.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/RepeatPolicy.h"

#include <algorithm>

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
  return _rule.policy == RepeatRule::Policy::Suppress ? letsFirst(known, now) : letsLate(known, now);
}

// An interval begins with the indication that finds the last one over.
bool RepeatMemory::letsFirst(Event& event, Time now) const {
  if (event.sent == 0 || now - event.begin >= _rule.interval) {
    event.begin = now;
    event.sent = 0;
  }
  return ++event.sent <= _rule.count;
}

bool RepeatMemory::letsLate(Event& event, Time now) {
  if (now < event.silentUntil) return false;
  event.begin = now;
  while (!event.seen.empty() && now - event.seen.front() >= _rule.interval) {
    event.seen.pop_front();
    --_times;
  }
  event.seen.push_back(now);
  ++_times;
  if (event.seen.size() <= _rule.count) return false;
  _times -= event.seen.size();
  event.seen.clear();
  event.silentUntil = now + _rule.gap;
  return true;
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
  _times = 0;
  _most = kFew;
}
