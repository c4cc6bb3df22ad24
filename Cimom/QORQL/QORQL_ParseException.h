// The error of a query text, found while parsing or resolving names.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PARSEEXCEPTION_H
#define QORQL_PARSEEXCEPTION_H

#include "Cimom/QORQL/QORQL_Fault.h"
#include "cmpbase.h"

// Type "parse", who "CQL". Line 0 marks a fault found after the text was read: getFault() tells the place of those too,
// and what they are about.
class QORQL_ParseException : public QoriBaseException {
 public:
  // By code, message and line.
  QORQL_ParseException(QORuint32 code, const QORString& message, QORuint32 lineNr, QORQL_Fault fault = {});
  QORQL_ParseException(const QORQL_ParseException&) = default;
  QORQL_ParseException& operator=(const QORQL_ParseException&) = default;
  ~QORQL_ParseException() override;

  // Lines count from 1.
  QORuint32 getLineNr() const noexcept { return _lineNr; }
  // See QORQL_Fault: the name at fault, and with QORQL_placeOf its line and column.
  const QORQL_Fault& getFault() const noexcept { return _fault; }
  // The CIM status that the object manager reports: 1 or 16.
  QORuint32 getCIMErrorCode() const;

 private:
  QORuint32 _lineNr;
  QORQL_Fault _fault;
};

#endif
