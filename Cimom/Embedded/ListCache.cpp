// What leaves the cache is destroyed after the lock is released: a list may
// hold a hundred thousand objects.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/ListCache.h"

#include <algorithm>

namespace embedded {

std::list<ListCache::Kept>::iterator ListCache::locate(const ClassEntry& entry, const std::string& names) {
  return std::find_if(_kept.begin(), _kept.end(),
                      [&](const Kept& kept) { return kept.entry == &entry && kept.names == names; });
}

CIMApi::Instances ListCache::find(const ClassEntry& entry, const std::string& names, QORuint64 version) {
  std::list<Kept> stale;
  const std::lock_guard<std::mutex> lock(_mutex);
  const auto found = locate(entry, names);
  if (found == _kept.end()) return {};
  if (found->version != version) {
    _instances -= found->instances->entries();
    stale.splice(stale.begin(), _kept, found);
    return {};
  }
  _kept.splice(_kept.begin(), _kept, found);
  return found->instances;
}

void ListCache::put(const ClassEntry& entry, const std::string& names, QORuint64 version,
                    const CIMApi::Instances& instances) {
  if (instances->entries() > kMaximumInstances) return;
  std::list<Kept> fresh;
  fresh.push_back({&entry, names, version, instances});
  std::list<Kept> dropped;
  const std::lock_guard<std::mutex> lock(_mutex);
  const auto drop = [&](std::list<Kept>::iterator which) {
    _instances -= which->instances->entries();
    dropped.splice(dropped.begin(), _kept, which);
  };
  const auto old = locate(entry, names);
  if (old != _kept.end()) drop(old);
  _kept.splice(_kept.begin(), fresh);
  _instances += instances->entries();
  while (_kept.size() > kMaximumLists || _instances > kMaximumInstances) drop(std::prev(_kept.end()));
}

}  // namespace embedded
