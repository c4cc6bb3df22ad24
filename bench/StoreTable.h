// What an instance costs in the object manager's store.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_STORETABLE_H
#define QORQL_BENCH_STORETABLE_H

#include <cstdint>
#include <iosfwd>

namespace bench {

// Loads a model of that many disks from MOF, and creates as many one by one: the bytes that the C library has handed
// out for each, all told. Linux only.
void printStoreTable(std::uint64_t size, std::ostream& out);

}  // namespace bench

#endif
