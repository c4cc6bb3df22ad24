// The join of two blocks of lazy rows on keys that are computed once per row of
// either block.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_LAZYJOIN_H
#define QORQL_LAZYJOIN_H

#include "Cimom/QORQL/Lazy/QORQL_BoundExpression.h"
#include "Cimom/QORQL/Lazy/QORQL_ConditionPlan.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"

// Joins as the plan says, by the sides of its comparison on rows with these
// extents. On success the two blocks are replaced, outer rows are added, and
// true is returned. False, with nothing changed, when only testing row by row is
// sure to give the same rows and errors: a side has no bound form, keys do not
// go together, or objects of one side share a path. THROWS what computing a key
// throws, with nothing changed. REQUIRES a plan that is a join.
bool QORQL_joinLazily(QORQL_LazyRows& rows, const QORQL_ConditionPlan& plan, const QORQL_BoundSides& sides);

#endif
