// Counts who changes what the object manager holds.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerModel.h"

#include <utility>

ServerModel::Manager CountedModel::lease() {
  const std::lock_guard lock(_mutex);
  return _manager;
}

ServerModel::Manager CountedModel::leaseForChange() {
  std::unique_lock lock(_mutex);
  _changed.wait(lock, [this] { return !_isReplacing; });
  ++_changes;
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
  --_changes;
  _changed.notify_all();
}

bool CountedModel::replace(Manager next, const std::function<void()>& takeOver, std::chrono::milliseconds patience) {
  std::unique_lock lock(_mutex);
  _isReplacing = true;
  const bool isFree = _changed.wait_for(lock, patience, [this] { return _changes == 0; });
  // Who only reads goes on while the other one is brought up.
  lock.unlock();
  try {
    if (isFree) takeOver();
  } catch (...) {
    settle();
    throw;
  }
  lock.lock();
  if (isFree) _manager.swap(next);
  lock.unlock();
  settle();
  return isFree;
}

void CountedModel::settle() {
  const std::lock_guard lock(_mutex);
  _isReplacing = false;
  _changed.notify_all();
}
