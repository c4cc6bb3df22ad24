// The filters of a server's subscriptions, and what they ask for of the live classes.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LIVEFILTERS_H
#define QORQL_TOOL_LIVEFILTERS_H

#include <cstddef>
#include <map>
#include <optional>

#include "Cimom/Server/ServerEvents.h"
#include "Cimom/Server/ServerModel.h"
#include "LiveDemand.h"

// Reads each filter once for an object manager. One thread at a time. BORROWS the events.
class LiveFilters {
 public:
  LiveFilters(const ServerEvents& events, const QORString& nameSpace) : _events(events), _nameSpace(nameSpace) {}

  // What those that there are now ask for together. Costs what has changed since the last time, unless that was another
  // object manager. REQUIRES it to be the one that the thread asks.
  LiveDemand follow(const ServerModel::Manager& manager);

 private:
  struct Known {
    CQLFilterSet::Statement filter;  // so that no other one has its address
    LiveDemand demand;
    std::size_t times = 0;
  };

  void take(const ServerEvents::FilterNews& news);
  void add(const CQLFilterSet::Statement& filter);
  void remove(const CQLFilterSet::Statement& filter);
  LiveDemand read(const CQLQueryStatement& filter) const;

  const ServerEvents& _events;
  const QORString _nameSpace;
  ServerModel::Manager _manager;  // null: nothing is known
  std::optional<LiveDemandReader> _reader;
  QORuint64 _version = 0;
  std::map<const CQLQueryStatement*, Known> _known;
  LiveDemandSum _sum;
};

#endif
