// What a condition of a filter tells an index: a value that the instance must
// have for the condition to hold.
// Tested by tests/unit/Filters/CQLFilterSetTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLACCESS_H
#define QORQL_CQLACCESS_H

#include "cimom/QoriScalar.h"
#include "cmpbase.h"

class CQLIsa;
class CQLPropertyPath;

// BORROWS what it points at from the condition.
struct CQLAccess {
  enum class Kind : QORuint8 {
    None,      // nothing that an index could use
    Never,     // the condition holds for no instance
    Relation,  // `path relation constant`
    Isa        // the test of a class
  };

  Kind kind = Kind::None;
  QoriRelation relation = QoriRelation::Equal;
  const CQLPropertyPath* path = nullptr;
  QoriScalar constant;
  const CQLIsa* isa = nullptr;
};

#endif
