// One comparison applied to the whole table: fetches the classes that it names,
// keeps the rows that satisfy it and, for an outer join, adds the null-extended rows.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_ConditionPlan.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyFilter.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_Helper.h"
#include "Cimom/QORQL/QORQL_OuterJoin.h"
#include "Cimom/QORQL/QORQL_RowFault.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using RowList = QORQL_DataTable::RowList;

// The cell of one side; null when the side has no column or the row no such cell.
Object sideCell(const QORQL_DataRow& row, QORsint32 column) {
  const bool hasCell = column >= 0 && static_cast<QORuint32>(column) < row.getCellCount();
  return hasCell ? row.getCell(static_cast<QORuint32>(column)) : Object();
}

void recordRow(QORQL_OuterJoin<Object>& join, const QORQL_DataRow& row, const QORQL_ConditionPlan& plan, bool isMatch) {
  const Object left(sideCell(row, plan.left.recordedColumn));
  if (!left.IsNull()) join.recordLeft(QORQL_instanceKey(*left), left, isMatch);
  const Object right(sideCell(row, plan.right.recordedColumn));
  if (!right.IsNull()) join.recordRight(QORQL_instanceKey(*right), right, isMatch);
}

// A row that holds one object and null cells elsewhere.
QORSmrPtr<QORQL_DataRow> extendedRow(QORQL_DataTable& table, QORsint32 column, const Object& object) {
  QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow());
  for (QORuint32 i = 0; i < table.getColumnCount(); ++i) {
    row->addCell(i, static_cast<QORsint32>(i) == column ? object : Object());
  }
  row->setParentTable(&table);
  return row;
}

QoriTruth truthOn(QORSmrPtr<QORQL_DataRow>& row, QORQL_Comparison& comparison, QORQL_SymbolTable& symbolTable,
                  const QORString& nameSpace) {
  try {
    return QORQL_truthOf(comparison.evaluate(symbolTable, row, nameSpace));
  } catch (const QoriBaseException&) {
    QORQL_throwWithFault(comparison, symbolTable, row);
  }
}

void filterRows(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, const QORQL_ConditionPlan& plan,
                const QORString& nameSpace) {
  QORQL_OuterJoin<Object> join(plan.joinType);
  RowList kept(new QORValSlist<QORSmrPtr<QORQL_DataRow>>());
  QORQL_StopCheck stopCheck;
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> rows(*table->getRows());
  while (++rows) {
    stopCheck.count();
    QORSmrPtr<QORQL_DataRow>& row = rows.key();
    if (row.IsNull()) continue;
    const QoriTruth truth = truthOn(row, *plan.comparison, symbolTable, nameSpace);
    if (join.isOuter()) recordRow(join, *row, plan, truth == QoriTruth::True);
    if (plan.keeps(truth)) kept->append(row);
  }
  const auto extend = [&](const QORQL_PlannedSide& side, const Object& object) {
    kept->append(extendedRow(*table, side.recordedColumn, object));
  };
  join.forEachLeft([&](const Object& object) { extend(plan.left, object); });
  join.forEachRight([&](const Object& object) { extend(plan.right, object); });
  table->setRows(kept);
}

}  // namespace

QORSmrPtr<IQoriValue> QORQL_ExpressionFactor::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  return _operator == QORQL_OperatorNONE ? _comparison->evaluate(symbolTable, row) : QORSmrPtr<IQoriValue>();
}

void QORQL_ExpressionFactor::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                      const QORString& nameSpace) {
  if (_operator == QORQL_OperatorNONE || _operator == QORQL_OperatorNOT) {
    _evaluateHelper(symbolTable, table, nameSpace);
  }
}

void QORQL_ExpressionFactor::evaluateOR(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& /*table*/,
                                        QORSmrPtr<QORQL_DataTable>& other, const QORString& nameSpace) {
  evaluate(symbolTable, other, nameSpace);
}

void QORQL_ExpressionFactor::_evaluateHelper(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                             const QORString& nameSpace) {
  if (QORQL_nodeAs<QORQL_Comparison>(_comparison) == nullptr) {
    throw QORQL_Exception(QORQL_Exception::QORQL_INTERNAL_ERROR, QORQL_ExecutionMessages::kNotAComparison);
  }
  const QORQL_Condition condition(*this);
  condition.forEachFetched([&](const QORString& name) {
    QORQL_Helper::updateTable(name, symbolTable, table, nameSpace, _comparison, _operator, _queryString,
                              _queryLanguage);
  });
  if (table->getRowCount() == 0) return;

  const QORQL_ConditionPlan plan = QORQL_planCondition(condition, QORQL_rowSetsOf(*table));
  QORQL_ExecutionMonitor::Method method = QORQL_ConditionPlan::methodOf(plan.way);
  if (table->lazy() == nullptr) {
    filterRows(symbolTable, table, plan, nameSpace);
  } else {
    method = QORQL_filterLazily(symbolTable, table, plan, nameSpace);
  }
  QORQL_ExecutionMonitor* const monitor = QORQL_currentMonitor();
  if (monitor != nullptr) monitor->conditionApplied(*plan.comparison, method);
}
