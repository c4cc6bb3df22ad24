// Counts who uses the object manager.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerModel.h"

#include <utility>

ServerModel::Manager CountedModel::lease() {
  std::unique_lock lock(_mutex);
  _changed.wait(lock, [this] { return !_isReplacing; });
  ++_leases;
  Manager held = _manager;
  // Even when there is no memory for the pointer its deleter is called, which locks.
  lock.unlock();
  EmbeddedObjectManager* const manager = held.get();
  return Manager(manager, [this, held = std::move(held)](EmbeddedObjectManager*) mutable {
    held.reset();
    giveBack();
  });
}

void CountedModel::giveBack() {
  // Under the lock, so that whoever waits for this may end the model right after.
  const std::lock_guard lock(_mutex);
  --_leases;
  _changed.notify_all();
}

bool CountedModel::replace(Manager next, const std::function<void()>& takeOver, std::chrono::milliseconds patience) {
  std::unique_lock lock(_mutex);
  _isReplacing = true;
  const bool isFree = _changed.wait_for(lock, patience, [this] { return _leases == 0; });
  if (isFree) {
    try {
      takeOver();
    } catch (...) {
      _isReplacing = false;
      _changed.notify_all();
      throw;
    }
    _manager.swap(next);
  }
  _isReplacing = false;
  lock.unlock();
  _changed.notify_all();
  return isFree;
}
