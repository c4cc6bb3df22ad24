// Which of the indications of one event a subscription gets.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_REPEATPOLICY_H
#define QORQL_SERVER_REPEATPOLICY_H

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

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

  friend bool operator==(const RepeatRule&, const RepeatRule&) = default;
};

// The events of one subscription. One thread at a time. Events that are long over are forgotten,
// and all of them when they become very many: then some indications may be sent that would have been suppressed, or
// later.
class RepeatMemory {
 public:
  using Time = std::chrono::steady_clock::time_point;

  explicit RepeatMemory(const RepeatRule& rule) : _rule(rule) {}

  const RepeatRule& rule() const noexcept { return _rule; }
  // Whether the indication that comes now is sent. Indications of one event have the same text. It counts for good once
  // it is kept.
  bool lets(const std::string& event, Time now);
  // What was asked for since the last time came to pass.
  void keep() noexcept { _steps.clear(); }
  // It did not: the next ones are judged as if it had never been asked for.
  void undo() noexcept;
  // The last one alone did not, which was to be sent.
  void undoLast() noexcept;
  // Goes on where another one of the same rule is, which is left with what this one knew.
  void continueFrom(RepeatMemory& other) noexcept;

 private:
  struct Event {
    Time begin;              // of the interval, where some are suppressed
    std::uint64_t sent = 0;  // within it
    std::deque<Time> seen;   // where they are delayed
    Time silentUntil{};
  };
  // How one indication changed an event, and what that was before.
  struct Step {
    enum class Kind { None, First, Seen, Late };
    Kind kind = Kind::None;
    std::string event{};
    Time begin{};
    std::uint64_t sent = 0;
    Time silentUntil{};
    std::unique_ptr<std::deque<Time>> seen{};  // that a late one ended
  };

  bool letsFirst(Event& event, Time now, Step& step) const;
  bool letsLate(Event& event, Time now, Step& step);
  void undo(Event& event, Step& step) noexcept;
  void forget(Time now);
  void forgetAll();

  const RepeatRule _rule;
  std::unordered_map<std::string, Event> _events;
  std::size_t _times = 0;    // that all events hold
  std::size_t _most = 0;     // before those that are over are looked for
  std::vector<Step> _steps;  // since the last ones were kept or undone
};

#endif
