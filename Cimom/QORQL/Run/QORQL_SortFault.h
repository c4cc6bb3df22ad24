// What the failure of a sort is about.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SORTFAULT_H
#define QORQL_SORTFAULT_H

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Fault.h"

class QORQL_SymbolTable;

// What went wrong with the key on some row, of the kind kOther where that is not known. Reads the key of row after row
// once more, unless that asked the object manager. REQUIRES to be called inside a catch clause, with the rows as they
// were before the sort.
QORQL_Fault QORQL_sortFault(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                            const QORSmrPtr<QORQL_Evaluatable>& key);

#endif
