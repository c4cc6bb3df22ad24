// The error of a filter statement's operations.
// Tested by tests/unit/Filters/CQLQueryStatementTest.cpp, tests/unit/Filters/CQLQueryFaultTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLQUERYEXCEPTION_H
#define QORQL_CQLQUERYEXCEPTION_H

#include "cmpbase.h"

enum CQLQueryExceptionCode {
  CQL_QUERY_SUCCESS = 0,
  CQL_QUERY_VALIDATE_ERROR = 1,
  CQL_QUERY_VALIDATE_METHOD_NOT_CALLED = 2,
  CQL_QUERY_INVALID_OR_NULL_PARM_ERROR = 3,
  CQL_QUERY_INTERNAL_ERROR = 4,
  CQL_QUERY_ISMATCH_FAILURE = 5
};

// Type "CQL_Query", who "CQL", where the operation that failed.
class CQLQueryException : public QoriBaseException {
 public:
  // By the operation, the message and the code.
  CQLQueryException(const QORString& where, const QORString& message, CQLQueryExceptionCode code);
  CQLQueryException(const CQLQueryException&) = default;
  CQLQueryException& operator=(const CQLQueryException&) = default;
  ~CQLQueryException() override;

  // THROWS the exception of a building step's code, with the message that belongs to it.
  [[noreturn]] static void raise(const char* where, CQLQueryExceptionCode code);
};

#endif
