// The tables of matching: nanoseconds per match, and indications per second.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_MATCHTABLE_H
#define QORQL_BENCH_MATCHTABLE_H

#include <iosfwd>

#include "bench/Table.h"

namespace bench {

// Checks that the peers agree, then times them. THROWS std::runtime_error when they do not.
void printMatchTables(const TableOptions& options, std::ostream& out);

}  // namespace bench

#endif
