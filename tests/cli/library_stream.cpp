// Prints the library's own stream of a query over a MOF file: library_stream MOF QUERY.
// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  const QORString nameSpace = EmbeddedObjectManager::kDefaultNamespace;
  MofLoader(manager.sink(), nameSpace).loadFiles({argv[1]});
  const QORString text = argv[2];
  const QORString language = "DMTF:CQL";
  QORQL_Lexer lexer(text, false);
  QORQL_SymbolTable symbols(nullptr);
  const QORSmrPtr<QORQL_Executable> query = QORQL_Query::parse(symbols, lexer, false, text, language, nameSpace);
  QORSmrPtr<QORQL_DataTable> table = new QORQL_DataTable();
  query->execute(symbols, table, &std::cout, nameSpace);
  return 0;
}
