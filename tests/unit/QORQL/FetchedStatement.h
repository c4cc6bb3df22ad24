// A statement whose FROM has run: its nodes, its table and the table's lazy rows.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_QORQL_FETCHEDSTATEMENT_H
#define QORQL_TESTS_UNIT_QORQL_FETCHEDSTATEMENT_H

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "QueryWorld.h"

struct FetchedStatement {
  explicit FetchedStatement(const char* statement,
                            QORQL_DataTable::ExecutionMode mode = QORQL_DataTable::kExecutionLazy)
      : text(statement),
        lexer(text, false),
        query(QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", "root/cimv2").StaticCast<QORQL_Query>()) {
    table->setExecutionMode(mode);
    query->getFromClause()->execute(symbols, table, nullptr, "root/cimv2");
  }

  // REQUIRES rows that do not exist yet.
  const QORQL_LazyRows& rows() const { return *table->lazy()->rows(); }
  const QORQL_SelectList& selectList() const { return static_cast<const QORQL_SelectList&>(*query->getSelectList()); }
  const QORSmrPtr<QORQL_SelectedEntry>& entry(QORuint32 index) const {
    return selectList().getSelectedEntries()->at(index);
  }

  QORString text;
  QORQL_SymbolTable symbols{nullptr};
  QORQL_Lexer lexer;
  QORSmrPtr<QORQL_Query> query;
  QORSmrPtr<QORQL_DataTable> table{new QORQL_DataTable()};
};

#endif
