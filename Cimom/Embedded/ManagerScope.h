// Which object manager a thread asks, in a process that has several.
// Tested by tests/unit/Embedded/ConcurrencyTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_MANAGERSCOPE_H
#define QORQL_EMBEDDED_MANAGERSCOPE_H

#include <memory>

#include "Cimom/Embedded/EmbeddedObjectManager.h"

// While it lives, the services that its thread calls ask this object manager in the place of the process's own. The
// innermost counts. For automatic variables.
class ManagerScope {
 public:
  explicit ManagerScope(const EmbeddedObjectManager& manager) noexcept;
  ManagerScope(const ManagerScope&) = delete;
  ManagerScope& operator=(const ManagerScope&) = delete;
  ~ManagerScope();

  // Null outside of any.
  static const ManagerScope* innermost() noexcept;
  const std::shared_ptr<EmbeddedObjectManager::State>& state() const noexcept { return _state; }

 private:
  const std::shared_ptr<EmbeddedObjectManager::State> _state;
  const ManagerScope* const _outer;
};

#endif
