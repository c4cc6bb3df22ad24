// What became of the filters that enabled subscriptions have, for whoever follows them.
// Tested by tests/unit/Server/FilterLogTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_FILTERLOG_H
#define QORQL_SERVER_FILTERLOG_H

#include <atomic>
#include <cstddef>
#include <deque>
#include <optional>
#include <vector>

#include "cmpbase.h"
#include "qorql.h"

// One statement of a filter is asked for now, or no longer.
struct FilterChange {
  CQLFilterSet::Statement filter;
  bool isAsked = false;
};

// The last changes, each of which makes a version. One thread at a time; any may ask for the version.
class FilterLog {
 public:
  static constexpr std::size_t kMost = 1024;

  // Never 0.
  QORuint64 version() const noexcept { return _version; }
  void note(const std::vector<FilterChange>& changes) noexcept;
  // Others have taken the place of all.
  void reset() noexcept;
  // In their order; nothing when they are not known any more.
  std::optional<std::vector<FilterChange>> since(QORuint64 version) const;

 private:
  std::atomic<QORuint64> _version{1};
  std::deque<FilterChange> _changes;  // the last one made the version
};

#endif
