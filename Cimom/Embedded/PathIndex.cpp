// A table of pointers with hashes beside them, so that most strangers are
// passed over without a look at the instance.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/PathIndex.h"

#include <functional>
#include <string>

namespace embedded {

QORuint32 hashOfPath(std::string_view path) noexcept {
  const std::size_t hash = std::hash<std::string_view>()(path);
  return static_cast<QORuint32>(hash ^ hash >> 32U);
}

StoredInstance* PathIndex::find(std::string_view path, QORuint32 hash) const {
  if (_places.empty()) return nullptr;
  for (std::size_t at = home(hash); _places[at].instance != nullptr; at = next(at)) {
    if (_places[at].hash == hash && _places[at].instance->path() == path) return _places[at].instance;
  }
  return nullptr;
}

void PathIndex::reserveOne() {
  constexpr std::size_t kLeast = 16;
  if (_places.size() * 3 > (_count + 1) * 4) return;
  std::vector<Place> old(_places.empty() ? kLeast : 2 * _places.size());
  old.swap(_places);
  for (const Place& place : old) {
    if (place.instance != nullptr) put(place.instance, place.hash);
  }
}

void PathIndex::insert(StoredInstance& instance) noexcept {
  put(&instance, instance.pathHash);
  ++_count;
}

void PathIndex::put(StoredInstance* instance, QORuint32 hash) noexcept {
  std::size_t at = home(hash);
  while (_places[at].instance != nullptr) at = next(at);
  _places[at] = {instance, hash};
}

// What stands behind a gap moves up when its way would lead over the gap.
void PathIndex::remove(const StoredInstance& instance) noexcept {
  std::size_t gap = home(instance.pathHash);
  while (_places[gap].instance != &instance) gap = next(gap);
  for (std::size_t at = next(gap); _places[at].instance != nullptr; at = next(at)) {
    const std::size_t mask = _places.size() - 1;
    const std::size_t way = (at - home(_places[at].hash)) & mask;
    if (way < ((at - gap) & mask)) continue;
    _places[gap] = _places[at];
    gap = at;
  }
  _places[gap] = {};
  --_count;
}

}  // namespace embedded
