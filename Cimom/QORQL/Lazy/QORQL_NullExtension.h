// The rows that an outer join adds for objects without a partner.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_NULLEXTENSION_H
#define QORQL_NULLEXTENSION_H

#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "cmpbase.h"

// A row for one object, null in every other column.
struct QORQL_NullExtension {
  QORuint32 bucket;  // of the map by path, whose order the rows follow
  QORuint32 column;
  QORuint32 index;
};

// Appends what the unmatched rows of a block over one column need, in the order
// in which the rows are added. False when two objects of the block share a path,
// since an object's record is kept by path: the rows must not be used then.
bool QORQL_collectExtensions(const QORQL_LazyRows& rows, const QORQL_RowBlock& block,
                             const std::vector<bool>& isUnmatched, std::vector<QORQL_NullExtension>& extensions);

// Appends a row for an object of one column, null in every other. REQUIRES one block over all columns.
void QORQL_appendExtendedRow(QORQL_LazyRows& rows, QORuint32 column, QORuint32 index);

// The same for each of them, in one go.
void QORQL_appendExtendedRows(QORQL_LazyRows& rows, const std::vector<QORQL_NullExtension>& extensions);

#endif
