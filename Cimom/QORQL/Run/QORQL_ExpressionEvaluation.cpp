// The OR and AND levels: on a row only without operator, on a table as filters.
// SPDX-License-Identifier: Apache-2.0
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"

QORSmrPtr<IQoriValue> QORQL_Expression::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  return _operator == QORQL_OperatorNONE ? _expressionTerm->evaluate(symbolTable, row) : QORSmrPtr<IQoriValue>();
}

QORSmrPtr<IQoriValue> QORQL_ExpressionTerm::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  return _operator == QORQL_OperatorNONE ? _expressionFactor->evaluate(symbolTable, row) : QORSmrPtr<IQoriValue>();
}

namespace {

using Table = QORSmrPtr<QORQL_DataTable>;

// The row's cells in the columns of a table whose columns stand in reverse order.
QORSmrPtr<QORQL_DataRow> reversedRow(const QORQL_DataRow& row, QORuint32 columnCount) {
  QORSmrPtr<QORQL_DataRow> copy(new QORQL_DataRow());
  for (QORuint32 column = columnCount; column-- != 0;) {
    const bool isPresent = column < row.getCellCount();
    copy->getAllCells()->append(isPresent ? row.getCell(column) : QORSmrPtr<IQoriObject>());
  }
  return copy;
}

// A copy of the rows before the last operand changes them.
Table copyInOrder(const Table& table) {
  Table copy(new QORQL_DataTable());
  copy->inherit(*table);
  QORValSlistIterator<QORSmrPtr<QORQL_TableHeader>> headers(*table->getColumnHeaderList());
  while (++headers) copy->addColumn(headers.key(), copy->getColumnCount(), false);
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> rows(*table->getRows());
  while (++rows) {
    if (rows.key().IsNull()) continue;
    QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow(*rows.key()));
    copy->addRow(row);
  }
  return copy;
}

// The table that a left operand of OR filters, so that the given table stays as it is.
Table copyForDiscard(const Table& table) {
  Table copy(new QORQL_DataTable());
  copy->inherit(*table);
  copy->addColumns(table->getColumnHeaderList(), false);
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> rows(*table->getRows());
  while (++rows) {
    if (!rows.key().IsNull()) copy->addRow(reversedRow(*rows.key(), table->getColumnCount()));
  }
  return copy;
}

// The same for lazy rows, which are shared until one side changes them. The
// columns keep their order: nobody sees the copy.
Table copyLazily(const Table& table) {
  Table copy(new QORQL_DataTable());
  copy->inherit(*table);
  QORValSlistIterator<QORSmrPtr<QORQL_TableHeader>> headers(*table->getColumnHeaderList());
  while (++headers) copy->addColumn(headers.key(), copy->getColumnCount(), false);
  copy->setLazy(std::make_unique<QORQL_LazyTable>(*table->lazy()));
  return copy;
}

// An outer join may fall back to the first column, which the reversal decides:
// then the rows of the copy are made.
Table copyFor(QORQL_Evaluatable& operand, const Table& table) {
  if (table->lazy() == nullptr) return copyForDiscard(table);
  Table copy(copyLazily(table));
  return QORQL_containsOuterJoin(operand) ? copyForDiscard(copy) : copy;
}

}  // namespace

// The last operand of a chain of ORs decides alone. The others are evaluated on
// copies of the table as it came, from the last but one to the first, for their
// fetches and errors.
void QORQL_Expression::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                const QORString& nameSpace) {
  std::vector<QORQL_Evaluatable*> discarded;
  const QORQL_Expression* last = this;
  for (const QORQL_Expression& link : QORQL_linksOf(*this)) {
    if (QORQL_continues(link)) discarded.push_back(link._expressionTerm.Get());
    last = &link;
  }
  if (last->_operator != QORQL_OperatorNONE) return;
  if (discarded.empty()) {
    last->_expressionTerm->evaluate(symbolTable, table, nameSpace);
    return;
  }
  const Table original(table->lazy() == nullptr ? copyInOrder(table) : copyLazily(table));
  last->_expressionTerm->evaluate(symbolTable, table, nameSpace);
  while (!discarded.empty()) {
    Table copy(copyFor(*discarded.back(), original));
    discarded.back()->evaluate(symbolTable, copy, nameSpace);
    discarded.pop_back();
  }
}

// AND is successive filtering.
void QORQL_ExpressionTerm::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                    const QORString& nameSpace) {
  for (const QORQL_ExpressionTerm& link : QORQL_linksOf(*this)) {
    link._expressionFactor->evaluate(symbolTable, table, nameSpace);
  }
}
