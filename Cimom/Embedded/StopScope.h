// Whether somebody still waits for what a thread asks the object manager for.
// Tested by tests/unit/Embedded/ProviderTest.cpp, tests/unit/Embedded/AssociationTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_STOPSCOPE_H
#define QORQL_EMBEDDED_STOPSCOPE_H

#include "cmpbase.h"

// While it lives, its thread's calls that take long are ended when the request says so: they are asked between two live
// instances, and once in a while on a walk along associations. The innermost counts. For automatic variables.
class StopScope {
 public:
  // Whether to end; must not throw.
  using Request = bool (*)();

  explicit StopScope(Request isStopRequested) noexcept;
  StopScope(const StopScope&) = delete;
  StopScope& operator=(const StopScope&) = delete;
  ~StopScope();

  // Asks the innermost scope of this thread, if there is any. THROWS CQoriProviderException, status 1.
  static void requireGoing();

 private:
  const Request _isStopRequested;
  const StopScope* const _outer;
};

// Counts the steps of one piece of work, and asks once in many.
class StopCount {
 public:
  void step() {
    if (++_steps % kInterval == 0) StopScope::requireGoing();
  }

 private:
  static constexpr QORuint32 kInterval = 1024;

  QORuint32 _steps = 0;
};

#endif
