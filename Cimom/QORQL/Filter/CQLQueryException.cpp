// The messages of a filter statement's errors.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/CQLQueryException.h"

CQLQueryException::CQLQueryException(const QORString& where, const QORString& message, CQLQueryExceptionCode code)
    : QoriBaseException("CQL_Query", "CQL", where, message, static_cast<QORuint32>(code)) {}

CQLQueryException::~CQLQueryException() = default;

void CQLQueryException::raise(const char* where, CQLQueryExceptionCode code) {
  switch (code) {
    case CQL_QUERY_VALIDATE_ERROR:
      throw CQLQueryException(where, "Query validation failed", code);
    case CQL_QUERY_INVALID_OR_NULL_PARM_ERROR:
      throw CQLQueryException(where, "Invalid or NULL param encountered", code);
    default:
      throw CQLQueryException(where, "CQL internal error", CQL_QUERY_INTERNAL_ERROR);
  }
}
