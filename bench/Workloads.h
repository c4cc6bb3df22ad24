// What is measured: each workload as the engine's query and as the SQL that means the same.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_WORKLOADS_H
#define QORQL_BENCH_WORKLOADS_H

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

enum class Task {
  Scan,
  Filter,
  Substring,
  Sort,
  Aggregates,
  Join,
  InequalityJoin,
  LeftJoin,
  LeftJoinExtraRows,
  Xml,
  XmlCounted,
  ParseFilter,
  ParseJoin,
  Count
};

struct Workload {
  Task task;
  const char* id;     // as --only takes it
  const char* title;  // as the table shows it
  std::string query;
  std::string sql;
  const char* columns;  // a letter each: t text, o text or NULL, u unsigned, r real
  int sortColumn;       // whose order counts; -1: none
  double smallGoal;     // how often the engine fits into SQLite's time at 1,000 instances
  double goal;          // the same from 100,000 on
  bool isSmallOnly;     // measured at 1,000 instances alone
  std::uint64_t pairs;  // what a time per row is per; 0: the disks

  bool isXml() const noexcept { return task == Task::Xml || task == Task::XmlCounted; }
  bool isParse() const noexcept { return task == Task::ParseFilter || task == Task::ParseJoin; }
};

// In the order of the tasks.
const std::vector<Workload>& workloads();

}  // namespace bench

#endif
