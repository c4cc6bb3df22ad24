// The error of executing a query, and of the expression checks made while parsing.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EXCEPTION_H
#define QORQL_EXCEPTION_H

#include <utility>

#include "Cimom/QORQL/QORQL_Fault.h"
#include "cmpbase.h"

// Type "CQL_Runtime", who "CQL".
class QORQL_Exception : public QoriBaseException {
 public:
  enum QORQL_ExceptionCode {
    QORQL_INVALID_COLUMN_NAME = 0,
    QORQL_ROW_COLUMN_ENTRIES_MISMATCH = 1,
    QORQL_INCORRECT_SELECT_STATEMENT = 2,
    QORQL_INTERNAL_ERROR = 3,
    QORQL_UNDEFINED_SYMBOL = 4,
    QORQL_UNIDENTIFIED_IDENTIFIER = 5,
    QORQL_INVALID_DATA_TYPE = 6
  };

  // By code and message.
  QORQL_Exception(QORQL_ExceptionCode code, const QORString& message, QORQL_Fault fault = {});
  QORQL_Exception(const QORQL_Exception&) = default;
  QORQL_Exception& operator=(const QORQL_Exception&) = default;
  ~QORQL_Exception() override;

  // See QORQL_Fault: the name at fault, and with QORQL_placeOf its line and column.
  const QORQL_Fault& getFault() const noexcept { return _fault; }
  // For whoever runs the statement and finds what is at fault, and its place.
  void setFault(QORQL_Fault fault) noexcept { _fault = std::move(fault); }
  void setFaultOffset(QORuint32 offset) noexcept { _fault.offset = offset; }
  // The CIM status that the object manager reports: 1, 4 or 16.
  QORuint32 getCIMErrorCode() const;

 private:
  QORQL_Fault _fault;
};

// The error of values that do not compare while a statement runs: as the values raised it, with its fault.
class QORQL_ValueException : public QoriBaseException {
 public:
  // All but the fault is the error's.
  QORQL_ValueException(const QoriBaseException& error, QORQL_Fault fault);
  QORQL_ValueException(const QORQL_ValueException&) = default;
  QORQL_ValueException& operator=(const QORQL_ValueException&) = default;
  ~QORQL_ValueException() override;

  // See QORQL_Fault: which values these are, and with QORQL_placeOf where they stand.
  const QORQL_Fault& getFault() const noexcept { return _fault; }

 private:
  QORQL_Fault _fault;
};

#endif
