// A CIM data type as the engine sees it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_IQORITYPE_H
#define QORQL_CIMOM_IQORITYPE_H

#include "cmpbase.h"

// Immutable; threads may share one.
class IQoriType {
 public:
  virtual ~IQoriType() = default;
  // "uint8" "uint16" "uint32" "uint64" "sint8" "sint16" "sint32" "sint64" "real32" "real64"
  // "boolean" "string" "datetime" "char16" "reference" "object". An array's name is its element's.
  virtual const QORString& getName() const noexcept = 0;
  virtual bool isArray() const noexcept = 0;
};

#endif
