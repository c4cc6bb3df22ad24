// Which FROM classes an association condition brings into the table, so that
// FROM need not enumerate them.
#ifndef QORQL_ASSOCIATIONPLAN_H
#define QORQL_ASSOCIATIONPLAN_H

#include "cmpbase.h"

class QORQL_Query;
class QORQL_SymbolTable;

class QORQL_AssociationPlan {
 public:
  // Called once at the end of parsing a statement that has an association: records in the query's FROM clause the
  // classes to skip, and in the symbol of each association class that FROM names
  // that it must come with all its properties.
  static void apply(QORQL_Query& query, QORQL_SymbolTable& symbolTable);
};

#endif
