// One condition applied to lazy rows: filters an extent, joins two by hash or by
// a filtered product, and adds the rows of outer joins.
#ifndef QORQL_LAZYFILTER_H
#define QORQL_LAZYFILTER_H

#include <vector>

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "cmpbase.h"

// A condition as the expression factor found it.
struct QORQL_Condition {
  QORSmrPtr<QORQL_Evaluatable> node;  // the comparison
  bool isNegated = false;
  // Columns of the two sides for an outer join; -1: no bookkeeping for the side.
  QORsint32 leftColumn = 0;
  QORsint32 rightColumn = 0;

  QORQL_Comparison& comparison() const { return static_cast<QORQL_Comparison&>(*node); }
  bool isArrayNotEqual() const {
    return comparison().isArrayComp() && comparison().getOperator() == QORQL_OperatorNOTEQUAL;
  }
};

// Adds the columns of the classes that an expression names (null: none).
void QORQL_addColumnsRead(const QORSmrPtr<QORQL_Evaluatable>& side, const QORQL_DataTable& table,
                          std::vector<QORuint32>& columns);

// Leaves the table's rows exactly as evaluation row by row would, in the same
// order, with the same errors. Returns how it was done.
// REQUIRES a table with lazy rows, at least one, that is not projected.
QORQL_ExecutionMonitor::Method QORQL_filterLazily(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                                  const QORQL_Condition& condition, const QORString& nameSpace);

#endif
