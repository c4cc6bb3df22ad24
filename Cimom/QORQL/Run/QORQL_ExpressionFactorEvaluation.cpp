// One comparison applied to the whole table: fetches the classes that it names,
// keeps the rows that satisfy it and, for an outer join, adds the null-extended rows.
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyFilter.h"
#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Helper.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_OuterJoin.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using RowList = QORQL_DataTable::RowList;
using ClassName = QORSmrPtr<QORString>;

// The class names that a side of a comparison has, in order, empty ones too.
class SideNames {
 public:
  explicit SideNames(const QORSmrPtr<QORQL_Evaluatable>& side) {
    if (const QORQL_Factor* const sole = QORQL_soleFactorOf(side)) {
      _only = sole->getClassName();
    } else if (QORQL_nodeAs<QORQL_Arithmetic>(side) != nullptr) {
      QORQL_IdentifierFinder* const finder = new QORQL_IdentifierFinder();
      QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
      side->accept(visitor);
      _several = finder->getClassNameList();
      if (_several->entries() == 1) _only = _several->first();
    }
  }
  // The one class name; null when there is none or several.
  const ClassName& only() const noexcept { return _only; }
  template <class Use>
  void forEach(const Use& use) const {
    if (!_only.IsNull()) return use(*_only);
    if (_several.IsNull()) return;
    QORValSlistIterator<ClassName> names(*_several);
    while (++names) use(*names.key());
  }

 private:
  ClassName _only;
  QORQL_IdentifierFinder::ClassNameList _several;
};

// The cell of one side; null when the side has no column or the row no such cell.
Object sideCell(const QORQL_DataRow& row, QORsint32 column) {
  const bool hasCell = column >= 0 && static_cast<QORuint32>(column) < row.getCellCount();
  return hasCell ? row.getCell(static_cast<QORuint32>(column)) : Object();
}

void recordRow(QORQL_OuterJoin<Object>& join, const QORQL_DataRow& row, const QORQL_Condition& condition,
               bool isMatch) {
  const Object left(sideCell(row, condition.leftColumn));
  if (!left.IsNull()) join.recordLeft(QORQL_instanceKey(*left), left, isMatch);
  const Object right(sideCell(row, condition.rightColumn));
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

void filterRows(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, const QORQL_Condition& condition,
                const QORString& nameSpace) {
  QORQL_Comparison& comparison = condition.comparison();
  QORQL_OuterJoin<Object> join(comparison.getJoinType());
  RowList kept(new QORValSlist<QORSmrPtr<QORQL_DataRow>>());
  QORQL_StopCheck stopCheck;
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> rows(*table->getRows());
  while (++rows) {
    stopCheck.count();
    QORSmrPtr<QORQL_DataRow>& row = rows.key();
    if (row.IsNull()) continue;
    const QoriTruth truth = QORQL_truthOf(comparison.evaluate(symbolTable, row, nameSpace));
    if (join.isOuter()) recordRow(join, *row, condition, truth == QoriTruth::True);
    if (QORQL_keepsRow(truth, condition.isNegated, condition.isArrayNotEqual())) kept->append(row);
  }
  join.forEachLeft([&](const Object& object) { kept->append(extendedRow(*table, condition.leftColumn, object)); });
  join.forEachRight([&](const Object& object) { kept->append(extendedRow(*table, condition.rightColumn, object)); });
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

void QORQL_ExpressionFactor::_fetchClass(const QORString& name, QORQL_SymbolTable& symbolTable,
                                         QORSmrPtr<QORQL_DataTable>& table, const QORString& nameSpace) {
  if (name.isEmpty()) return;
  QORQL_Helper::updateTable(name, symbolTable, table, nameSpace, _comparison, _operator, _queryString, _queryLanguage);
}

void QORQL_ExpressionFactor::_evaluateHelper(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                             const QORString& nameSpace) {
  const QORQL_Comparison* const comparison = dynamic_cast<QORQL_Comparison*>(_comparison.Get());
  if (comparison == nullptr) {
    throw QORQL_Exception(QORQL_Exception::QORQL_INTERNAL_ERROR, QORQL_ExecutionMessages::kNotAComparison);
  }
  const auto fetch = [&](const QORString& name) { _fetchClass(name, symbolTable, table, nameSpace); };
  const SideNames left(comparison->getLHSArithmeticExpression());
  left.forEach(fetch);
  const bool isIsa = comparison->getOperator() == QORQL_OperatorISA;
  const SideNames right(isIsa ? QORSmrPtr<QORQL_Evaluatable>() : comparison->getRHSArithmeticExpression());
  right.forEach(fetch);
  if (table->getRowCount() == 0) return;

  QORQL_Condition condition;
  condition.node = _comparison;
  condition.isNegated = _operator == QORQL_OperatorNOT;
  const bool isOuter = comparison->getJoinType() != QORQL_JOIN_TYPE_INNER;
  if (isOuter && !left.only().IsNull() && !right.only().IsNull()) {
    condition.leftColumn = table->getColumnIndex(*left.only());
    condition.rightColumn = table->getColumnIndex(*right.only());
  }
  QORQL_ExecutionMonitor::Method method = QORQL_ExecutionMonitor::kMethodFilter;
  if (table->lazy() == nullptr) {
    filterRows(symbolTable, table, condition, nameSpace);
  } else {
    method = QORQL_filterLazily(symbolTable, table, condition, nameSpace);
  }
  QORQL_ExecutionMonitor* const monitor = QORQL_currentMonitor();
  if (monitor != nullptr) monitor->conditionApplied(*comparison, method);
}
