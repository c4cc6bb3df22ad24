// The error of an index outside a container.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORBOUNDSEXCEPTION_H
#define QORQL_CMPBASE_QORBOUNDSEXCEPTION_H

#include "cmpbase/QoriBaseException.h"

// Default: message "Out of Bounds", code 0, type and who unset. With arguments:
// type "Bounds", and who, message and code as given.
class QORBoundsException : public QoriBaseException {
 public:
  // See above.
  QORBoundsException();
  QORBoundsException(const QORString& who, const QORString& message, int code);
  QORBoundsException(const QORBoundsException&) = default;
  QORBoundsException& operator=(const QORBoundsException&) = default;
  ~QORBoundsException() override;
};

#endif
