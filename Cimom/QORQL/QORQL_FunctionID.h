// The functions of the language.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_FUNCTIONID_H
#define QORQL_FUNCTIONID_H

#include "cmpbase.h"

enum QORQL_FunctionID {
  QORQL_FUNCTIONID_UNKNOWN = 0,
  QORQL_FUNCTIONID_OBJECTPATH = 1,
  QORQL_FUNCTIONID_MIN = 2,
  QORQL_FUNCTIONID_MAX = 3,
  QORQL_FUNCTIONID_COUNT = 4,
  QORQL_FUNCTIONID_AVG = 5,
  QORQL_FUNCTIONID_SUM = 6,
  QORQL_FUNCTIONID_INSTANCEOF = 7
};

// The name as written in messages and column ids; "UNKNOWN" for any other value.
const char* QORQL_functionName(QORuint32 functionID) noexcept;
// The function of that name in any case; QORQL_FUNCTIONID_UNKNOWN when there is none.
QORQL_FunctionID QORQL_findFunction(const QORString& name) noexcept;
// MIN, MAX, COUNT, AVG and SUM.
bool QORQL_isAggregate(QORuint32 functionID) noexcept;

#endif
