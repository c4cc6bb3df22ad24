// What each source file runs when its library is loaded: the error table and
// the check that the platform's threading primitives work.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORMODULE_H
#define QORQL_CMPBASE_QORMODULE_H

#include "cmpbase/QORTypes.h"

// Prepares the module's error table. Idempotent; threads may call it together.
void qorInitErrorTable() noexcept;

// True when atomic counting works on this platform.
bool qorInitThreading() noexcept;

// Prints "panic: <header>:<line>" to standard error and stops the process.
[[noreturn]] void qorPanic(const char* header, QORuint32 line) noexcept;

// Runs both initialisers; panics, naming this header, when the check fails.
inline bool qorInitModule(bool (*initThreading)() noexcept = &qorInitThreading) noexcept {
  constexpr QORuint32 kReportedLine = 1113;
  qorInitErrorTable();
  if (!initThreading()) qorPanic("cmpbase", kReportedLine);
  return true;
}

namespace {
[[maybe_unused]] const bool qorModuleInitialised = qorInitModule();
}

#endif
