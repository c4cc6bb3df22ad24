// Where the two languages part, the SQL says what the query means: LIKE searches
// a part with regard to case, AVG divides by the values of all aggregates, and
// `*=` adds a row for each left object that met another object before its partner.
// SPDX-License-Identifier: Apache-2.0
#include "bench/Workloads.h"

#include "bench/Data.h"
#include "bench/MixedData.h"

namespace bench {

namespace {

const std::string kScanQuery = "SELECT DeviceID, Name, Size FROM EX_Disk";

std::string filterQuery() {
  return "SELECT DeviceID, Size FROM EX_Disk WHERE Size > " + std::to_string(kMiddleSize) + " AND Status = 2";
}

const char* const kJoinQuery =
    "SELECT d.DeviceID, p.Name, d.Size FROM EX_Disk AS d, EX_Pool AS p WHERE d.PoolID = p.PoolID";
const char* const kJoinSql =
    "SELECT d.DeviceID, p.Name, d.Size FROM EX_Disk AS d JOIN EX_Pool AS p ON d.PoolID = p.PoolID";
const char* const kLeftJoinSql =
    "SELECT d.DeviceID, p.Name FROM EX_Disk AS d LEFT JOIN EX_Pool AS p ON d.PoolID = p.PoolID";

// A workload on the mixed world, whose goals are about the C++ alone.
Workload mixedWorkload(Task task, const char* id, const char* title, const std::string& query, const std::string& sql,
                       const char* columns, int sortColumn = -1) {
  return {task, id, title, query, sql, columns, sortColumn, 0, 0, false, 0, Field::Mixed};
}

std::vector<Workload> makeMixedWorkloads() {
  const std::string byNumber = "SELECT DeviceID, Size FROM EX_Device ORDER BY Size ASC";
  const std::string byDate = "SELECT DeviceID, InstallDate FROM EX_Device ORDER BY InstallDate ASC";
  const std::string warm = "SELECT DeviceID, Temperature FROM EX_Device WHERE Temperature > " + std::to_string(kWarm);
  return {
      mixedWorkload(Task::NumberOrder, "number-order", "ORDER BY a number", byNumber, byNumber, "tu", 1),
      mixedWorkload(Task::DateTimeOrder, "datetime-order", "ORDER BY a datetime", byDate, byDate, "td", 1),
      mixedWorkload(Task::HalfNull, "half-null", "filter on a number that half lack", warm, warm, "ts"),
      mixedWorkload(Task::ObjectPath, "objectpath", "OBJECTPATH as a column",
                    "SELECT OBJECTPATH(EX_Device) AS Path FROM EX_Device", "", "p"),
      mixedWorkload(Task::InstanceOf, "instanceof", "INSTANCEOF as a column",
                    "SELECT INSTANCEOF(EX_Device) AS Whole FROM EX_Device", "", "i"),
      mixedWorkload(Task::IsA, "isa", "ISA (1 in 3)",
                    "SELECT DeviceID FROM EX_Device WHERE EX_Device ISA EX_SolidState", "", "t"),
      mixedWorkload(Task::Any, "any", "ANY over an array (1 in 3)",
                    "SELECT DeviceID FROM EX_Device WHERE ANY State = " + std::to_string(kWantedState), "", "t"),
      mixedWorkload(Task::Association, "association", "association join",
                    "SELECT t.Name, d.DeviceID FROM EX_Tray AS t, EX_Device AS d WHERE EX_InTray = t AND EX_InTray = d",
                    "SELECT t.Name, d.DeviceID FROM EX_InTray AS i JOIN EX_Tray AS t ON t.TrayID = i.GroupComponent "
                    "JOIN EX_Device AS d ON d.DeviceID = i.PartComponent",
                    "tt"),
  };
}

std::vector<Workload> makeWorkloads() {
  const std::string needle(kNeedle);
  return {
      {Task::Scan, "scan", "scan, 3 columns", kScanQuery, kScanQuery, "ttu", -1, 3, 1.5, false, 0},
      {Task::Filter, "filter", "filter `Size > x AND Status = 2` (1 in 10)", filterQuery(), filterQuery(), "tu", -1, 3,
       1.5, false, 0},
      {Task::Substring, "substring", "substring (1 in 10)",
       "SELECT DeviceID, Name FROM EX_Disk WHERE Name LIKE '" + needle + "'",
       "SELECT DeviceID, Name FROM EX_Disk WHERE instr(Name, '" + needle + "') > 0", "tt", -1, 3, 1.5, false, 0},
      {Task::Sort, "sort", "sort by a number", "SELECT DeviceID, Size FROM EX_Disk ORDER BY Size ASC",
       "SELECT DeviceID, Size FROM EX_Disk ORDER BY Size ASC", "tu", 1, 3, 1.5, false, 0},
      {Task::Aggregates, "aggregates", "COUNT, MIN, MAX, SUM, AVG",
       "SELECT COUNT(DeviceID) AS n, MIN(Size) AS least, MAX(Size) AS most, SUM(Size) AS total, AVG(Load) AS mean "
       "FROM EX_Disk",
       "SELECT COUNT(DeviceID), MIN(Size), MAX(Size), SUM(Size), SUM(Load) / (5 * COUNT(Load)) FROM EX_Disk", "uuuur",
       -1, 3, 1.5, false, 0},
      {Task::Join, "join", "equality join with pools", kJoinQuery, kJoinSql, "ttu", -1, 3, 2.5, false, 0},
      {Task::InequalityJoin, "inequality", "inequality join, 1,000 by 1,000 (1 pair in 20)",
       "SELECT d.DeviceID, q.PoolID FROM EX_Disk AS d, EX_Quota AS q WHERE d.Size > q.Capacity",
       "SELECT d.DeviceID, q.PoolID FROM EX_Disk AS d, EX_Quota AS q WHERE d.Size > q.Capacity", "tt", -1, 20, 20, true,
       1000000},
      {Task::LeftJoin, "left", "left outer join, written `=*`",
       "SELECT d.DeviceID, p.Name FROM EX_Disk AS d, EX_Pool AS p WHERE p.PoolID =* d.PoolID", kLeftJoinSql, "to", -1,
       3, 2.5, false, 0},
      {Task::LeftJoinExtraRows, "left-extra", "left outer join `*=`, with its extra rows",
       "SELECT d.DeviceID, p.Name FROM EX_Disk AS d, EX_Pool AS p WHERE d.PoolID *= p.PoolID",
       std::string(kLeftJoinSql) +
           " UNION ALL SELECT d.DeviceID, NULL FROM EX_Disk AS d JOIN EX_Pool AS p ON d.PoolID = p.PoolID "
           "WHERE d.PoolID <> 'pool000000'",
       "to", -1, 3, 2.5, false, 0},
      {Task::Xml, "xml", "the scan as XML text", kScanQuery, kScanQuery, "ttu", -1, 1.3, 1.2, false, 0},
      {Task::XmlCounted, "xml-counted", "the same into a stream that counts bytes", kScanQuery, kScanQuery, "ttu", -1,
       1.3, 1.2, false, 0},
      {Task::ParseFilter, "parse-filter", "parse and resolve the filter", filterQuery(), filterQuery(), "", -1, 2, 2,
       true, 1},
      {Task::ParseJoin, "parse-join", "parse and resolve the join", kJoinQuery, kJoinSql, "", -1, 2, 2, true, 1},
  };
}

}  // namespace

const std::vector<Workload>& workloads() {
  static const std::vector<Workload> all = [] {
    std::vector<Workload> made = makeWorkloads();
    for (Workload& workload : makeMixedWorkloads()) made.push_back(std::move(workload));
    return made;
  }();
  return all;
}

}  // namespace bench
