// The classes of the current object manager as tables of SQLite.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_VIRTUALTABLE_H
#define QORQL_BENCH_VIRTUALTABLE_H

#include <sqlite3.h>

namespace bench {

// Registers the module "cim": `CREATE VIRTUAL TABLE t USING cim(ClassName)`. A
// table shows the instances that the object manager has when a statement begins,
// reads cells in place without a copy, and has an index on the class's first
// property, for equality, that is kept as long as the instances stay the same.
// Returns SQLite's status.
int registerVirtualTables(sqlite3* database);

}  // namespace bench

#endif
