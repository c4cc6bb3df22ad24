// The error of using a counted pointer that holds nothing.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORNULLPOINTEREXCEPTION_H
#define QORQL_CMPBASE_QORNULLPOINTEREXCEPTION_H

#include "cmpbase/QoriBaseException.h"

// Type "NullPointer", who "QORSmrPtr", where the operation ("operator->()"),
// message "Null pointer in " followed by the operation, code 0.
class QORNullPointerException : public QoriBaseException {
 public:
  // See above.
  explicit QORNullPointerException(const QORString& operation);
  QORNullPointerException(const QORNullPointerException&) = default;
  QORNullPointerException& operator=(const QORNullPointerException&) = default;
  ~QORNullPointerException() override;
};

#endif
