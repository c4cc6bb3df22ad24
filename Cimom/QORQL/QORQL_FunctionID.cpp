// The names of the language's functions.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_FunctionID.h"

namespace {

// By function id.
constexpr const char* _functionIDStr[] = {"UNKNOWN", "OBJECTPATH", "MIN", "MAX", "COUNT", "AVG", "SUM", "INSTANCEOF"};
constexpr QORuint32 kNameCount = sizeof(_functionIDStr) / sizeof(_functionIDStr[0]);

}  // namespace

const char* QORQL_functionName(QORuint32 functionID) noexcept {
  return _functionIDStr[functionID < kNameCount ? functionID : 0];
}

QORQL_FunctionID QORQL_findFunction(const QORString& name) noexcept {
  for (QORuint32 id = QORQL_FUNCTIONID_UNKNOWN + 1; id < kNameCount; ++id) {
    if (QORString::equalIgnoringCase(name.view(), _functionIDStr[id])) return static_cast<QORQL_FunctionID>(id);
  }
  return QORQL_FUNCTIONID_UNKNOWN;
}

bool QORQL_isAggregate(QORuint32 functionID) noexcept {
  return functionID >= QORQL_FUNCTIONID_MIN && functionID <= QORQL_FUNCTIONID_SUM;
}
