// What runs when a library that uses the foundation is loaded.
// Tested by tests/unit/Foundation/QoriBaseExceptionTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "cmpbase/QORModule.h"

#include <cstdio>
#include <cstdlib>

#include "Cimom/Foundation/QORErrorTable.h"
#include "cmpbase/QORAtomicInt.h"

const QORErrorTable& qorErrorTable() {
  // Never destroyed: errors may still be raised while the process ends.
  static const QORErrorTable& table = *new QORErrorTable;
  return table;
}

void qorInitErrorTable() noexcept { qorErrorTable(); }

bool qorInitThreading() noexcept {
  QORAtomicInt probe;
  const bool counts = probe.atomicInc() == 1 && probe.atomicInc() == 2 && probe.atomicDec() == 1;
  return counts && probe.getValue() == 1;
}

void qorPanic(const char* header, QORuint32 line) noexcept {
  std::fprintf(stderr, "panic: %s:%u\n", header, static_cast<unsigned>(line));
  std::fflush(stderr);
  std::abort();
}
