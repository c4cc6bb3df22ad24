// The errors that values raise.
// Tested by tests/unit/Model/CQoriValueTest.cpp, tests/unit/Model/CQoriValueArithmeticTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELERROR_H
#define QORQL_MODEL_MODELERROR_H

#include "cimom/IQoriType.h"
#include "cmpbase.h"

namespace model {

// THROWS QoriBaseException: type "CIM_Value", who "CQoriValue", where the operation, code 0.
[[noreturn]] void raiseValueError(const char* operation, const QORString& message);

// The type as messages show it: its name, with "[]" after it for an array.
QORString typeText(const IQoriType& type);

// Bounds the recursion over nested values, which could exhaust the stack: one lives in each
// activation that may recurse. THROWS as raiseValueError past the limit.
class NestingGuard {
 public:
  static constexpr int kMaximumNesting = 64;

  explicit NestingGuard(const char* operation);
  NestingGuard(const NestingGuard&) = delete;
  NestingGuard& operator=(const NestingGuard&) = delete;
  ~NestingGuard();
};

}  // namespace model

#endif
