// What the services of a process's object manager share.
// Tested by tests/unit/Embedded/ServicesTest.cpp, tests/unit/Embedded/ConcurrencyTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_EMBEDDEDSTATE_H
#define QORQL_EMBEDDED_EMBEDDEDSTATE_H

#include <atomic>
#include <memory>

#include "Cimom/Embedded/Configuration.h"
#include "Cimom/Embedded/DeclarationSink.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Embedded/ListCache.h"
#include "Cimom/Embedded/LogChannel.h"
#include "Cimom/Embedded/ObjectStore.h"
#include "Cimom/Embedded/OuterSource.h"

struct EmbeddedObjectManager::State {
  struct Counters {
    std::atomic<QORuint64> enumerateCalls{0};
    std::atomic<QORuint64> associatorCalls{0};
    std::atomic<QORuint64> getInstanceCalls{0};
    std::atomic<QORuint64> instancesReturned{0};
  };

  State();

  std::shared_ptr<embedded::ObjectStore> store;
  embedded::DeclarationSink sink;
  QORSmrPtr<IQoriRepository> repository;
  embedded::ListCache lists;
  embedded::Configuration configuration;
  embedded::LogChannel log;
  Counters counters;
  std::shared_ptr<OuterSource> outer;  // null: nobody else is asked
};

namespace embedded {

// The state of the object manager that this thread asks (ManagerScope), else of the current one, kept alive by the
// caller's copy; null when there is none.
std::shared_ptr<EmbeddedObjectManager::State> currentState();

}  // namespace embedded

#endif
