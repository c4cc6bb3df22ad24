// Applies one condition to lazy rows: filters an extent, joins two by hash or by
// a filtered product, and adds the rows of outer joins.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_LAZYFILTER_H
#define QORQL_LAZYFILTER_H

#include "Cimom/QORQL/Lazy/QORQL_ConditionPlan.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "cmpbase.h"

// Leaves the table's rows exactly as evaluation row by row would, in the same
// order, with the same errors. Returns how it was done.
// REQUIRES a table with lazy rows, at least one, that is not projected, and the
// plan for its sets of rows.
QORQL_ExecutionMonitor::Method QORQL_filterLazily(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                                  const QORQL_ConditionPlan& plan, const QORString& nameSpace);

#endif
