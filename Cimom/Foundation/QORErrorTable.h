// The texts of the foundation's own errors.
// Tested by tests/unit/Foundation/QoriBaseExceptionTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_FOUNDATION_QORERRORTABLE_H
#define QORQL_FOUNDATION_QORERRORTABLE_H

#include "cmpbase/QORString.h"

// Made when the first module is loaded and shared from then on, so that raising
// an error copies no text.
struct QORErrorTable {
  const QORString outOfBounds{"Out of Bounds"};
  const QORString emptyList{"Empty List"};
  const QORString boundsType{"Bounds"};
  const QORString pointerWho{"QORSmrPtr"};
  const QORString nullPointerType{"NullPointer"};
  const QORString nullPointerIn{"Null pointer in "};
};

// Any thread may call.
const QORErrorTable& qorErrorTable();

#endif
