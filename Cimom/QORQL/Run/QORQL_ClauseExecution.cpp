// Running the FROM and WHERE clauses.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Helper.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

void QORQL_FromClause::execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* /*out*/,
                               const QORString& nameSpace) {
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*_fromSpecifierList);
  while (++specifiers) {
    const QORQL_FromSpecifier& specifier = *specifiers.key();
    if (!specifier.getSubQuery().IsNull() || _skippedClasses.contains(specifier.getTableName())) continue;
    QORQL_Helper::updateTable(specifier.getTableName(), symbolTable, table, nameSpace, _queryString, _queryLanguage);
  }
}

// A nested query runs on a table of its own, with the names of its own symbol table.
void QORQL_FromSpecifier::execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                  std::ostream* /*out*/, const QORString& /*nameSpace*/) {
  const QORSmrPtr<QORQL_Symbol> symbol(symbolTable.lookupIgnoringCase(_tableName));
  if (symbol.IsNull()) {
    throw QORQL_Exception(QORQL_Exception::QORQL_UNDEFINED_SYMBOL,
                          QORString(QORQL_ExecutionMessages::kSubquerySymbolUnknown) + _tableName + "'",
                          {QORQL_Fault::kFromNameUnknown, _tableName});
  }
  QORSmrPtr<QORQL_DataTable> nested(new QORQL_DataTable());
  nested->inherit(*table);
  QORQL_SymbolTable* const names = symbol->getSymbolTable();
  if (!_subQuery.IsNull() && names != nullptr) _subQuery->execute(*names, nested, nullptr, QORQL_kFixedNameSpace);
  table = nested;
}

void QORQL_WhereClause::execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                std::ostream* /*out*/, const QORString& nameSpace) {
  const QORQL_StepScope step(QORQL_ExecutionMonitor::kStepCondition, QORString::emptyString());
  _expression->evaluate(symbolTable, table, nameSpace);
}
