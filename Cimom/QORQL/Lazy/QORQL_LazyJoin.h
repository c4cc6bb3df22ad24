// The join of two blocks of lazy rows on keys that are computed once per row of
// either block.
#ifndef QORQL_LAZYJOIN_H
#define QORQL_LAZYJOIN_H

#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyFilter.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"

// Tries to join the two blocks that the condition reads, each side of it one
// block. On success the blocks are replaced, outer rows are added, and true is
// returned. False, with nothing changed, when only evaluation row by row is sure
// to give the same rows and errors.
bool QORQL_joinLazily(const QORQL_DataTable& table, QORQL_LazyRows& rows, const QORQL_Condition& condition,
                      const std::vector<std::size_t>& blockNumbers);

#endif
