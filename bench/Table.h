// The comparison as tables in Markdown, one for each number of instances.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_TABLE_H
#define QORQL_BENCH_TABLE_H

#include <cstdint>
#include <iosfwd>
#include <set>
#include <string>
#include <vector>

namespace bench {

struct TableOptions {
  std::vector<std::uint64_t> sizes{1000, 100000, 1000000};
  std::set<std::string> only;  // ids of workloads and of further tables; empty: all
  int rounds = 9;
  double leastSeconds = 0.03;  // of one turn
};

// Measures and prints as it goes. THROWS std::runtime_error when peers disagree.
void printTables(const TableOptions& options, std::ostream& out);

}  // namespace bench

#endif
