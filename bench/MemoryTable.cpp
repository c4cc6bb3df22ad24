// Each query runs twice: its first run includes the lists that are made once.
// SPDX-License-Identifier: Apache-2.0
#include "bench/MemoryTable.h"

#include <iomanip>
#include <ostream>
#include <string>
#include <vector>

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "bench/Data.h"
#include "bench/ResidentPeak.h"
#include "bench/Statement.h"
#include "bench/StoreTable.h"
#include "bench/World.h"

namespace bench {

namespace {

struct Usage {
  double bytes = 0;  // at the peak, beyond what was there before
  std::uint64_t rows = 0;
};

// To the finished table, which goes away afterwards.
Usage usageOf(Statement& statement) {
  const ResidentPeak peak;
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  statement.parsed->execute(statement.symbols, table, nullptr, statement.nameSpace);
  return {peak.bytes(), table->getRowCount()};
}

struct Query {
  const char* title;
  std::string text;
  const char* goal;
};

std::vector<Query> queries() {
  const std::string disks = " FROM EX_Disk";
  return {
      {"scan, 3 columns", "SELECT DeviceID, Name, Size" + disks, "200 bytes a row"},
      {"filter that keeps 1 in 10",
       "SELECT DeviceID, Size" + disks + " WHERE Size > " + std::to_string(kMiddleSize) + " AND Status = 2", "-"},
      {"filter that keeps nothing", "SELECT DeviceID, Size" + disks + " WHERE Size < 0 AND Status = 2", "1 MiB"},
      {"sort by a number", "SELECT DeviceID, Size" + disks + " ORDER BY Size ASC", "200 bytes a row"},
      {"sort by a text", "SELECT DeviceID, Name" + disks + " ORDER BY Name ASC", "200 bytes a row"},
      {"COUNT, MIN, MAX, SUM, AVG",
       "SELECT COUNT(DeviceID) AS n, MIN(Size) AS a, MAX(Size) AS b, SUM(Size) AS c, AVG(Load) AS d" + disks, "1 MiB"},
      {"equality join with pools",
       "SELECT d.DeviceID, p.Name, d.Size FROM EX_Disk AS d, EX_Pool AS p WHERE d.PoolID = p.PoolID", "-"},
  };
}

void printUsage(const Usage& usage, std::ostream& out) {
  out << " | " << std::fixed << std::setprecision(2) << usage.bytes / kMebibyte << " MiB";
  if (usage.rows > 1)
    out << ", " << std::setprecision(0) << usage.bytes / static_cast<double>(usage.rows) << " bytes a row";
}

}  // namespace

void printMemoryTable(std::uint64_t size, std::ostream& out) {
  printStoreTable(size, out);
  DiskWorld world(size);
  world.makeCurrent();
  out << "\n### Memory added by a query, " << size << " instances\n\n"
      << "| query | rows | first run | later run | goal of a later run |\n|---|--:|--:|--:|---|\n";
  for (const Query& query : queries()) {
    Statement statement(query.text);
    const Usage first = usageOf(statement);
    out << "| " << query.title << " | " << first.rows;
    printUsage(first, out);
    printUsage(usageOf(statement), out);
    out << " | " << query.goal << " |\n";
    out.flush();
  }
}

}  // namespace bench
