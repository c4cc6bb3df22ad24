// The errors that values raise.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Model/ModelError.h"

namespace model {

namespace {
thread_local int currentNesting = 0;
}

void raiseValueError(const char* operation, const QORString& message) {
  throw QoriBaseException("CIM_Value", "CQoriValue", operation, message, 0);
}

QORString typeText(const IQoriType& type) { return type.isArray() ? type.getName() + "[]" : type.getName(); }

NestingGuard::NestingGuard(const char* operation) {
  if (currentNesting >= kMaximumNesting) raiseValueError(operation, "Values are nested too deeply");
  ++currentNesting;
}

NestingGuard::~NestingGuard() { --currentNesting; }

}  // namespace model
