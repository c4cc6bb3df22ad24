// The table of the codec: instances of CIM-XML made objects while they arrive.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_CODECTABLE_H
#define QORQL_BENCH_CODECTABLE_H

#include <iosfwd>

#include "bench/Table.h"

namespace bench {

// THROWS std::runtime_error when instances are missing.
void printCodecTable(const TableOptions& options, std::ostream& out);

}  // namespace bench

#endif
