// Which of the indications of one event a subscription gets.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_REPEATPOLICY_H
#define QORQL_SERVER_REPEATPOLICY_H

#include <chrono>
#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>

#include "cmpbase.h"

struct RepeatRule {
  enum class Policy {
    None = 2,      // all of them
    Suppress = 3,  // the first `count` within each interval
    Delay = 4      // the one after `count` within an interval; then none until the gap is over
  };
  Policy policy = Policy::None;
  std::uint64_t count = 0;
  std::chrono::seconds interval{0};
  std::chrono::seconds gap{0};
};

// The events of one subscription. One thread at a time. Events that are long over are forgotten,
// and all of them when they become very many: then some indications may be sent that would have been suppressed, or
// later.
class RepeatMemory {
 public:
  using Time = std::chrono::steady_clock::time_point;

  explicit RepeatMemory(const RepeatRule& rule) : _rule(rule) {}

  // Whether the indication that comes now is sent. Indications of one event have the same text.
  bool lets(const std::string& event, Time now);

 private:
  struct Event {
    Time begin;              // of the interval, where some are suppressed
    std::uint64_t sent = 0;  // within it
    std::deque<Time> seen;   // where they are delayed
    Time silentUntil{};
  };

  bool letsFirst(Event& event, Time now) const;
  bool letsLate(Event& event, Time now);
  void forget(Time now);
  void forgetAll();

  const RepeatRule _rule;
  std::unordered_map<std::string, Event> _events;
  std::size_t _times = 0;  // that all events hold
  std::size_t _most = 0;   // before those that are over are looked for
};

#endif
