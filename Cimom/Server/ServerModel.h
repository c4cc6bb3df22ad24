// The object manager that a server answers from, and how another one takes its place.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVERMODEL_H
#define QORQL_SERVER_SERVERMODEL_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "Cimom/Embedded/EmbeddedObjectManager.h"

// Any thread may call. REQUIRES to outlive its leases for changes. An interface, since a program calls it that has
// loaded what implements it at run time.
class ServerModel {
 public:
  using Manager = std::shared_ptr<EmbeddedObjectManager>;

  ServerModel() = default;
  ServerModel(const ServerModel&) = delete;
  ServerModel& operator=(const ServerModel&) = delete;
  virtual ~ServerModel() = default;

  // The object manager, which lives as long as it is held, though another one takes its place. Waits for nothing.
  virtual Manager lease() = 0;
  // For changes of what it holds: no other one takes its place while the pointer or a copy of it is held. Waits while
  // another one takes its place. One thread holds one at a time.
  virtual Manager leaseForChange() = 0;

  // Waits until nobody changes anything, calls `takeOver`, which brings the other one to the state that the first one
  // is in, and gives leases of that from then on. Changes wait meanwhile, and nobody else. Returns false, with all as
  // it was, when changes go on after the patience. THROWS what `takeOver` throws; then the first one stays. One at a
  // time.
  virtual bool replace(Manager next, const std::function<void()>& takeOver, std::chrono::milliseconds patience) = 0;
};

// Counts the leases for changes.
class CountedModel : public ServerModel {
 public:
  explicit CountedModel(Manager manager) : _manager(std::move(manager)) {}

  Manager lease() override;
  Manager leaseForChange() override;
  bool replace(Manager next, const std::function<void()>& takeOver, std::chrono::milliseconds patience) override;

 private:
  void giveBack();
  void settle();

  std::mutex _mutex;
  std::condition_variable _changed;
  Manager _manager;
  std::size_t _changes = 0;
  bool _isReplacing = false;
};

#endif
