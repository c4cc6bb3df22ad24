// What an association condition says of three columns: each object of the
// association class ties an object of the source to one of the destination.
// Tested by tests/queries/ties.qtest.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_ASSOCIATIONTIE_H
#define QORQL_ASSOCIATIONTIE_H

#include "cmpbase.h"

// By class names, as columns have them. A tie is open from the condition that
// says it until its association class is a column.
struct QORQL_AssociationTie {
  QORString association;
  QORString source;
  QORString destination;
  bool isOuter = false;  // of a left outer association
};

#endif
