// The row functions of a select list over lazy rows.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_LAZYFUNCTIONS_H
#define QORQL_LAZYFUNCTIONS_H

#include <memory>

#include "Cimom/QORQL/Lazy/QORQL_LazyResults.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_SelectList.h"

class QORQL_SymbolTable;

// Object paths are left to whoever reads them. Everything else is computed at once, in the order of the rows and of the
// entries, since it may ask the object manager and write to the log; the rows become one block for it. Null, with
// nothing done, when only building the rows is sure to give the same result.
// REQUIRES a table with lazy rows that is not projected.
std::shared_ptr<QORQL_LazyResults> QORQL_computeLazily(const QORQL_SelectList& list, QORQL_SymbolTable& symbols,
                                                       QORSmrPtr<QORQL_DataTable>& table);

#endif
