// An instance name that is made when it is first asked for, whichever thread asks.
// Tested by tests/unit/Model/ModelInstanceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELNAMECACHE_H
#define QORQL_MODEL_MODELNAMECACHE_H

#include <atomic>
#include <memory>

#include "cimom/IQoriInstanceName.h"
#include "cmpbase.h"

// Threads that meet at the first request may each make the name; one of them
// is kept, so all see the same object.
class ModelNameCache {
 public:
  using Name = QORSmrPtr<IQoriInstanceName>;

  ModelNameCache() noexcept = default;
  ModelNameCache(const ModelNameCache&) = delete;
  ModelNameCache& operator=(const ModelNameCache&) = delete;
  ~ModelNameCache() { delete _name.load(std::memory_order_acquire); }

  // The name, from `make()` at the first call; may be null. THROWS what make throws.
  template <class Make>
  const Name& get(const Make& make) const {
    const Name* const known = _name.load(std::memory_order_acquire);
    return known != nullptr ? *known : keep(make());
  }
  // Makes the name known; one that is known already stays. Returns the kept one.
  const Name& keep(const Name& name) const {
    std::unique_ptr<Name> made = std::make_unique<Name>(name);
    Name* known = nullptr;
    if (_name.compare_exchange_strong(known, made.get(), std::memory_order_acq_rel)) return *made.release();
    return *known;
  }

 private:
  mutable std::atomic<Name*> _name{nullptr};  // OWNS
};

#endif
