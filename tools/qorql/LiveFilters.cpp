// Follows the filters one by one.
// SPDX-License-Identifier: Apache-2.0
#include "LiveFilters.h"

#include <string>

LiveDemand LiveFilters::follow(const ServerModel::Manager& manager) {
  try {
    if (manager != _manager) {
      _version = 0;
      _reader.emplace(*manager, _nameSpace);
    }
    if (_version != _events.filtersVersion()) take(_events.filtersSince(_version));
    _manager = manager;
  } catch (...) {
    // Half of the changes are counted: all is read anew the next time.
    _manager = nullptr;
    throw;
  }
  return _sum.all();
}

void LiveFilters::take(const ServerEvents::FilterNews& news) {
  if (news.areAll) {
    _known.clear();
    _sum = {};
  }
  for (const FilterChange& change : news.changes) change.isAsked ? add(change.filter) : remove(change.filter);
  _version = news.version;
}

void LiveFilters::add(const CQLFilterSet::Statement& filter) {
  const auto [known, isNew] = _known.try_emplace(filter.Get(), Known{filter, {}, 0});
  ++known->second.times;
  if (!isNew) return;
  known->second.demand = read(*filter);
  _sum.add(known->second.demand);
}

void LiveFilters::remove(const CQLFilterSet::Statement& filter) {
  const auto known = _known.find(filter.Get());
  if (known == _known.end() || --known->second.times > 0) return;
  _sum.remove(known->second.demand);
  _known.erase(known);
}

LiveDemand LiveFilters::read(const CQLQueryStatement& filter) const {
  if (!filter.getNameSpace().isEqualCaseInsensitive(_nameSpace)) return {};
  return _reader->read(filter);
}
