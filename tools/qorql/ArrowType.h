// The types that columns have in Arrow.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_ARROWTYPE_H
#define QORQL_TOOL_ARROWTYPE_H

#include "ResultWriter.h"

struct ArrowType {
  enum class Kind { Null, Boolean, Unsigned, Signed, Real, Text, Timestamp, Duration };
  Kind kind = Kind::Null;
  int bits = 0;  // of a number: 8, 16, 32 or 64
  bool isList = false;
};

// What the column's CIM type, and the kind of its datetimes, say. A column without a type is Null.
ArrowType arrowTypeOf(const ResultColumn& column);

#endif
