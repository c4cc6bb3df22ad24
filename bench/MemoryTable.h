// What instances and queries add to the process's memory.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_MEMORYTABLE_H
#define QORQL_BENCH_MEMORYTABLE_H

#include <cstdint>
#include <iosfwd>

namespace bench {

// What the store takes for each instance; then runs the engine's queries on a world of that many disks: each twice,
// since the object manager makes and keeps the list of instances in the first run. Linux only: reads and resets the
// peak in /proc/self.
void printMemoryTable(std::uint64_t size, std::ostream& out);

}  // namespace bench

#endif
