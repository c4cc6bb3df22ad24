// What is measured: each workload as the engine's query and as the SQL that means the same.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_WORKLOADS_H
#define QORQL_BENCH_WORKLOADS_H

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

// Which instances a workload is about: disks of one class, or devices of a class and its subclass.
enum class Field { Disks, Mixed };

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
  NumberOrder,
  DateTimeOrder,
  HalfNull,
  ObjectPath,
  InstanceOf,
  IsA,
  Any,
  Association,
  Count
};

struct Workload {
  Task task;
  const char* id;     // as --only takes it
  const char* title;  // as the table shows it
  std::string query;
  std::string sql;      // empty: SQLite cannot say it
  const char* columns;  // a letter each: t text, o text or NULL, u unsigned, s signed, r real, d datetime
  int sortColumn;       // whose order counts; -1: none
  double smallGoal;     // how often the engine fits into SQLite's time at 1,000 instances
  double goal;          // the same from 100,000 on
  bool isSmallOnly;     // measured at 1,000 instances alone
  std::uint64_t pairs;  // what a time per row is per; 0: the disks
  Field field = Field::Disks;

  bool isXml() const noexcept { return task == Task::Xml || task == Task::XmlCounted; }
  bool hasSql() const noexcept { return !sql.empty(); }
  bool isParse() const noexcept { return task == Task::ParseFilter || task == Task::ParseJoin; }
};

// In the order of the tasks.
const std::vector<Workload>& workloads();

}  // namespace bench

#endif
