// The execution driver: FROM, WHERE, ORDER BY and the select list on one table.
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Query.h"

namespace {

// The namespace that ORDER BY is always given, whatever the caller's.
constexpr char kOrderByNameSpace[] = "root/yrk/zemo";

}  // namespace

void QORQL_Query::execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
                          const QORString& nameSpace) {
  _fromClause->execute(symbolTable, table, nullptr, nameSpace);
  if (!_whereClause.IsNull() && (_whereHasAssociation || !table->allCellsPreFiltered())) {
    _whereClause->execute(symbolTable, table, nullptr, nameSpace);
  }
  if (_isNestedQuery) return;
  if (!_orderbyClause.IsNull()) {
    _selectList->execute(symbolTable, table, nullptr, nameSpace);
    if (!table->allCellsPreFiltered()) {
      _orderbyClause->execute(symbolTable, table, nullptr, kOrderByNameSpace);
    }
  }
  _selectList->execute(symbolTable, table, out, nameSpace);
}
