// How a comparison joins the classes of its two sides.
// Tested by tests/unit/QORQL/ComparisonTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_JOINTYPE_H
#define QORQL_JOINTYPE_H

enum QORQL_JoinType {
  QORQL_JOIN_TYPE_INNER = 0,
  QORQL_JOIN_TYPE_LEFT_OUTER = 1,
  QORQL_JOIN_TYPE_RIGHT_OUTER = 2,
  QORQL_JOIN_TYPE_FULL_OUTER = 3
};

#endif
