// The folding of one aggregate's argument over the rows of a table.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_AGGREGATES_H
#define QORQL_AGGREGATES_H

#include "Cimom/QORQL/QORQL_SelectList.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

class QORQL_Function;

// Adds a row's argument value to the fold. `counter` is shared by all aggregates
// of a select list. THROWS QORQL_Exception (QORQL_INVALID_DATA_TYPE) for a value
// that is no number, unless the function is COUNT.
void QORQL_foldAggregate(QORQL_SelectList::Function& function, const QORSmrPtr<IQoriValue>& value, QORuint64& counter);
// The fold's result: for AVG the sum divided by the shared counter.
QORSmrPtr<IQoriValue> QORQL_finishAggregate(const QORQL_SelectList::Function& function, QORuint64 counter);

// BORROWS: the one aggregate call of an entry; null when it has none or several.
QORQL_Function* QORQL_findAggregate(const QORQL_SelectedEntry& entry);

#endif
