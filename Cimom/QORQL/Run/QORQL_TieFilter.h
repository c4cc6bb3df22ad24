// Keeps the rows whose association objects tie the other objects of the row.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TIEFILTER_H
#define QORQL_TIEFILTER_H

#include <vector>

#include "Cimom/QORQL/QORQL_DataTable.h"

// The two ends of a tie as a row has them. REQUIRES that both are columns of the table.
class QORQL_TiedEnds {
 public:
  QORQL_TiedEnds(const QORQL_DataTable& table, const QORQL_AssociationTie& tie);

  // Whether one reference property of the association names the row's source and a different one its destination, by
  // path; false where one of the three is null.
  bool areTiedBy(const QORSmrPtr<IQoriObject>& association, const QORQL_DataRow& row) const;

 private:
  QORuint32 _source;
  QORuint32 _destination;
};

// Keeps the rows whose association object ties their ends. With an outer tie, rows that agree in all other cells and of
// which none stays leave one row, with neither association nor destination. REQUIRES that all three are columns of the
// table.
void QORQL_applyTie(QORQL_DataTable& table, const QORQL_AssociationTie& tie);

#endif
