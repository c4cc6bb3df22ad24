// An object manager of one's own over an installed engine: one query, its rows printed.
// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "tests/layout/fake/FakeObjectManager.h"

int main() {
  FakeObjectManager& manager = FakeObjectManager::instance();
  manager.addClass({"Fake_Disk", {"Name", "Size"}, {}});
  manager.addInstance("Fake_Disk", {{"Name", "a"}, {"Size", "10"}});
  manager.addInstance("Fake_Disk", {{"Name", "b"}, {"Size", "30"}});
  const QORString query("SELECT Name FROM Fake_Disk WHERE Size > 20");
  QORQL_Lexer lexer(query, false);
  QORQL_SymbolTable symbols(nullptr);
  const QORSmrPtr<QORQL_Executable> statement =
      QORQL_Query::parse(symbols, lexer, false, query, "DMTF:CQL", "root/fake");
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable);
  statement->execute(symbols, table, nullptr, "root/fake");
  for (QORuint32 i = 0; i < table->getRowCount(); ++i) {
    std::cout << "found " << table->getRow(i)->getPropertyValueByName("Fake_Disk", "Name")->toString() << '\n';
  }
}
