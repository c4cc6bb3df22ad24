// The table of filter sets: one indication against up to 100,000 filters.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_FILTERSETTABLE_H
#define QORQL_BENCH_FILTERSETTABLE_H

#include <iosfwd>

#include "bench/Table.h"

namespace bench {

// Checks that a set answers as its filters do, then times both. THROWS std::runtime_error when it does not.
void printFilterSetTable(const TableOptions& options, std::ostream& out);

}  // namespace bench

#endif
