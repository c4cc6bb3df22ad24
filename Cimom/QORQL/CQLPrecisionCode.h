// How a filter brings two numeric types together for a comparison.
// Tested by tests/unit/Filters/CQLComparisonTest.cpp, tests/unit/Filters/CQLQueryStatementTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLPRECISIONCODE_H
#define QORQL_CQLPRECISIONCODE_H

enum CQLPrecisionCode {
  CQL_LHS_EQUAL_RHS = 0,
  CQL_LHS_LOWER = 1,
  CQL_RHS_LOWER = 2,
  CQL_LHS_AND_RHS_CONVERT_TO_SINT16 = 3,
  CQL_LHS_AND_RHS_CONVERT_TO_SINT32 = 4,
  CQL_LHS_AND_RHS_CONVERT_TO_SINT64 = 5
};

#endif
