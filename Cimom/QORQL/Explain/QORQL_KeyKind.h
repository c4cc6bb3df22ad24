// What the values of a join's side are by the types that classes declare.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_KEYKIND_H
#define QORQL_KEYKIND_H

#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

enum class QORQL_KeyKind {
  kNumber,
  kText,
  kBoolean,
  kReference,
  kOther,      // arrays, datetimes, embedded objects: no keys, unless all of them are null
  kUnbound,    // read row by row: elements of arrays, paths through embedded objects, whole objects
  kUndeclared  // a property that the class does not declare
};

struct QORQL_KeyFacts {
  QORQL_KeyKind kind = QORQL_KeyKind::kUnbound;
  bool isComputed = false;  // by operators: whether a value can be computed shows only when it is
};

// Of one side of a comparison. Asks the class repository.
QORQL_KeyFacts QORQL_keyFactsOf(const QORQL_Evaluatable* side, const QORQL_SymbolTable& symbolTable,
                                const QORString& nameSpace);

// Whether sides of these kinds are joined by keys, by equality or by another relation.
bool QORQL_joinsByKey(const QORQL_KeyFacts& left, const QORQL_KeyFacts& right, bool isEquality) noexcept;
// Whether that depends on the values, because the declared types do not decide it.
bool QORQL_keysDependOnValues(const QORQL_KeyFacts& left, const QORQL_KeyFacts& right) noexcept;

#endif
