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

// Any thread may call. REQUIRES to outlive its leases. An interface, since a program calls it that has loaded what
// implements it at run time.
class ServerModel {
 public:
  using Manager = std::shared_ptr<EmbeddedObjectManager>;

  ServerModel() = default;
  ServerModel(const ServerModel&) = delete;
  ServerModel& operator=(const ServerModel&) = delete;
  virtual ~ServerModel() = default;

  // The object manager, which stays the process's own as long as the pointer or a copy of it is held. Waits while
  // another one takes its place. One thread holds one lease at a time.
  virtual Manager lease() = 0;

  // Waits until no lease is held, calls `takeOver`, which throws nothing and makes the other one the process's object
  // manager, and gives leases of that from then on. New leases wait meanwhile. Returns false, with all as it was, when
  // leases are still held after the patience. One at a time.
  virtual bool replace(Manager next, const std::function<void()>& takeOver, std::chrono::milliseconds patience) = 0;
};

// Counts its leases.
class CountedModel : public ServerModel {
 public:
  // `manager` is the process's object manager.
  explicit CountedModel(Manager manager) : _manager(std::move(manager)) {}

  Manager lease() override;
  bool replace(Manager next, const std::function<void()>& takeOver, std::chrono::milliseconds patience) override;

 private:
  void giveBack();

  std::mutex _mutex;
  std::condition_variable _changed;
  Manager _manager;
  std::size_t _leases = 0;
  bool _isReplacing = false;
};

#endif
