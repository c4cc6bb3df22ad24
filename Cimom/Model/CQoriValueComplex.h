// The parts of a value that is no scalar.
// Tested by tests/unit/Model/CQoriValueTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_CQORIVALUECOMPLEX_H
#define QORQL_MODEL_CQORIVALUECOMPLEX_H

#include "cimom/CQoriValue.h"
#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriObject.h"

// One of the three is set, by the value's type.
struct CQoriValue::Complex {
  QORSmrPtr<List> elements;
  QORSmrPtr<IQoriInstanceName> reference;
  QORSmrPtr<IQoriObject> object;
};

#endif
