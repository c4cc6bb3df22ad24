// Which FROM classes an association condition brings into the table, so that
// FROM need not enumerate them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_ASSOCIATIONPLAN_H
#define QORQL_ASSOCIATIONPLAN_H

#include <vector>

#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "cmpbase.h"

class QORQL_SelectList;
class QORQL_SymbolTable;

// What the association conditions of a statement decide before it runs.
struct QORQL_AssociationPlan {
  // Whether WHERE has an association; without one the lists are empty.
  bool hasAssociation = false;
  // The classes (upper case) that FROM does not enumerate.
  QORValSlist<QORString> skippedClasses;
  // The association classes, as written: those that FROM names must come with all their properties.
  std::vector<QORString> wholeClasses;
};

// For a statement whose names are resolved; the sort key may be null. Linear in the statement.
QORQL_AssociationPlan QORQL_planAssociations(const QORSmrPtr<QORQL_Evaluatable>& condition,
                                             const QORQL_SelectList& selectList,
                                             const QORSmrPtr<QORQL_Evaluatable>& sortKey,
                                             const QORQL_SymbolTable& symbolTable);

#endif
