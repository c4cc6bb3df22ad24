// The error of executing a query: its words and its CIM status.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Exception.h"

#include <utility>

namespace {

constexpr QORuint32 kFailed = 1;
constexpr QORuint32 kInvalidParameter = 4;
constexpr QORuint32 kInvalidQuery = 16;

}  // namespace

QORQL_Exception::QORQL_Exception(QORQL_ExceptionCode code, const QORString& message, QORQL_Fault fault)
    : QoriBaseException("CQL_Runtime", "CQL", QORString(), message, static_cast<QORuint32>(code)),
      _fault(std::move(fault)) {}

QORQL_Exception::~QORQL_Exception() = default;

QORuint32 QORQL_Exception::getCIMErrorCode() const {
  switch (getCode()) {
    case QORQL_INVALID_COLUMN_NAME:
    case QORQL_ROW_COLUMN_ENTRIES_MISMATCH:
      return kInvalidParameter;
    case QORQL_INCORRECT_SELECT_STATEMENT:
    case QORQL_UNDEFINED_SYMBOL:
    case QORQL_UNIDENTIFIED_IDENTIFIER:
    case QORQL_INVALID_DATA_TYPE:
      return kInvalidQuery;
    default:
      return kFailed;
  }
}

QORQL_ValueException::QORQL_ValueException(const QoriBaseException& error, QORQL_Fault fault)
    : QoriBaseException(error), _fault(std::move(fault)) {}

QORQL_ValueException::~QORQL_ValueException() = default;
