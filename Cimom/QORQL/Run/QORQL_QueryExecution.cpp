// The execution driver: FROM, WHERE, ORDER BY and the select list on one table.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_StatementPlaces.h"

// Providers that filter at the source know nothing of associations: their ends come from elsewhere.
bool QORQL_Query::_isLeftToProviders(const QORQL_DataTable& table) const noexcept {
  return !_whereHasAssociation && table.allCellsPreFiltered();
}

void QORQL_Query::_executeClauses(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
                                  const QORString& nameSpace) {
  _fromClause->execute(symbolTable, table, nullptr, nameSpace);
  if (!_whereClause.IsNull() && !_isLeftToProviders(*table)) {
    _whereClause->execute(symbolTable, table, nullptr, nameSpace);
  }
  if (_isNestedQuery) return;
  if (!_orderbyClause.IsNull()) {
    _selectList->execute(symbolTable, table, nullptr, nameSpace);
    if (!_isLeftToProviders(*table)) _orderbyClause->execute(symbolTable, table, nullptr, QORQL_kFixedNameSpace);
  }
  _selectList->execute(symbolTable, table, out, nameSpace);
}

void QORQL_Query::execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
                          const QORString& nameSpace) {
  try {
    _executeClauses(symbolTable, table, out, nameSpace);
  } catch (QORQL_Exception& error) {
    QORQL_placeFault(*this, error);
    throw;
  }
}
