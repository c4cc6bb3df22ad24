// The error of a query text: its words and its CIM status.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ParseException.h"

#include <utility>

QORQL_ParseException::QORQL_ParseException(QORuint32 code, const QORString& message, QORuint32 lineNr,
                                           QORQL_Fault fault)
    : QoriBaseException("parse", "CQL", QORString(), message, code), _lineNr(lineNr), _fault(std::move(fault)) {}

QORQL_ParseException::~QORQL_ParseException() = default;

QORuint32 QORQL_ParseException::getCIMErrorCode() const {
  constexpr QORuint32 kFailed = 1;
  constexpr QORuint32 kInvalidQuery = 16;
  constexpr QORuint32 kLastCode = 19;
  const QORuint32 code = getCode();
  // Code 18, a fault in an association, means "failed", although the codes around it mean an invalid query.
  if (code > kLastCode || code == 13 || code == 18) return kFailed;
  return kInvalidQuery;
}
