// Real queries and filters over objects that offer the listed operations and no
// more: no layouts, no views, no numbers, no arithmetic. In both ways of running.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "tests/layout/fake/FakeObjectManager.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr char kNameSpace[] = "root/fake";
using Rows = std::vector<std::string>;

class ForeignModel : public ::testing::TestWithParam<QORQL_DataTable::ExecutionMode> {
 protected:
  ForeignModel() {
    _manager.reset();
    _manager.addClass({"Fake_Disk", {"Name", "Size", "Kind", "Flag", "Codes", "Made", "Temp", "Load", "Host"}, {}});
    _manager.addClass({"Fake_Host", {"Name", "Quota"}, {}});
    _manager.addClass({"Fake_Change", {"Id", "SourceInstance"}, {}});
    addDisk({"a", "10", "ssd", "TRUE", "{1,2}", "20200101000000.000000+000", "-5", "1.5",
             "->root/fake:Fake_Host.Name=\"h\""});
    addDisk({"b", "30", "hdd & co", "FALSE", "{3}", "20210101000000.000000+000", "7", "0.5", ""});
    addDisk({"c", "20", "", "TRUE", "{}", "20190101000000.000000+000", "-1", "2.5", ""});
    for (const auto& [name, quota] : {std::pair("h", "10"), std::pair("g", "30"), std::pair("f", "99")}) {
      _manager.addInstance("Fake_Host", {{"Name", name}, {"Quota", quota}});
    }
  }

  void addDisk(const std::vector<std::string>& values) {
    const char* const names[] = {"Name", "Size", "Kind", "Flag", "Codes", "Made", "Temp", "Load", "Host"};
    FakeProperties properties;
    for (std::size_t i = 0; i < values.size(); ++i) properties.emplace_back(names[i], values[i]);
    _manager.addInstance("Fake_Disk", properties);
  }

  // The rows of the stream, their cells behind one another with a bar between them.
  static Rows rowsOf(const char* text) {
    const QORString query(text);
    QORQL_Lexer lexer(query, false);
    QORQL_SymbolTable symbols(nullptr);
    const QORSmrPtr<QORQL_Executable> statement = QORQL_Query::parse(symbols, lexer, false, query, "QORQL", kNameSpace);
    QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable);
    table->setExecutionMode(GetParam());
    std::ostringstream out;
    statement->execute(symbols, table, &out, kNameSpace);
    return rowsIn(out.str());
  }

  static Rows rowsIn(const std::string& stream) {
    Rows rows;
    std::istringstream lines(stream);
    for (std::string line; std::getline(lines, line);) {
      if (line == "<TABLEROW>") rows.emplace_back();
      if (!line.starts_with("<VALUE") || rows.empty()) continue;
      const std::size_t start = line.find('>') + 1;
      const std::string cell = line.starts_with("<VALUE.NULL") ? "NULL" : line.substr(start, line.find("</") - start);
      if (!line.starts_with("<VALUE.ARRAY")) rows.back() += (rows.back().empty() ? "" : "|") + cell;
    }
    return rows;
  }

  static Rows disksWhere(const std::string& condition) {
    return rowsOf(("SELECT Name FROM Fake_Disk WHERE " + condition).c_str());
  }

  FakeObjectManager& _manager = FakeObjectManager::instance();
};

TEST_P(ForeignModel, Scans) {
  EXPECT_THAT(rowsOf("SELECT Name, Size, Kind, Temp FROM Fake_Disk"),
              ElementsAre("a|10|ssd|-5", "b|30|{hdd & co}|7", "c|20|NULL|-1"));
  EXPECT_THAT(rowsOf("SELECT h.* FROM Fake_Host AS h"), ElementsAre("h|10", "g|30", "f|99"));
  EXPECT_THAT(rowsOf("SELECT Codes, Flag, Load FROM Fake_Disk WHERE Size < 20"), ElementsAre("1|2|TRUE|1.5"));
  EXPECT_THAT(rowsOf("SELECT FIRST 2 Name FROM Fake_Disk"), ElementsAre("a", "b"));
}

TEST_P(ForeignModel, Filters) {
  EXPECT_THAT(disksWhere("Size > 15 AND Kind IS NOT NULL"), ElementsAre("b"));
  EXPECT_THAT(disksWhere("15 < Size"), ElementsAre("b", "c"));
  EXPECT_THAT(disksWhere("Kind IS NULL"), ElementsAre("c"));
  EXPECT_THAT(disksWhere("Kind = 'ssd'"), ElementsAre("a"));
  EXPECT_THAT(disksWhere("'ssd' <> Kind"), ElementsAre("b"));
  EXPECT_THAT(disksWhere("Name < 'c' AND Kind LIKE 'd & c'"), ElementsAre("b"));
  EXPECT_THAT(disksWhere("Flag = TRUE"), ElementsAre("a", "c"));
  EXPECT_THAT(disksWhere("TRUE = Flag"), ElementsAre("a", "c"));
  EXPECT_THAT(disksWhere("Flag"), ElementsAre("a", "c"));
  EXPECT_THAT(disksWhere("NOT Temp < 0"), ElementsAre("b"));
  EXPECT_THAT(disksWhere("Temp < Size AND Load >= 1.5"), ElementsAre("a", "c"));
  EXPECT_THAT(disksWhere("Made > '20191231000000.000000+000'"), ElementsAre("a", "b"));
  EXPECT_THAT(disksWhere("ANY Codes = 3"), ElementsAre("b"));
  EXPECT_THAT(disksWhere("2 = ANY Codes"), ElementsAre("a"));
  EXPECT_THAT(disksWhere("Codes = Codes"), ElementsAre("a", "b", "c"));
  EXPECT_THAT(disksWhere("Name = 'a' AND Codes[1] = 2"), ElementsAre("a"));
  EXPECT_THAT(disksWhere("Host ISA Fake_Host"), ElementsAre("a"));
  EXPECT_THAT(disksWhere("Size > 99"), IsEmpty());
}

TEST_P(ForeignModel, Computes) {
  EXPECT_THAT(rowsOf("SELECT Size * 2 + 1 AS X, Load / 2 AS Y, Temp - Size AS Z FROM Fake_Disk"),
              ElementsAre("21|0.75|-15", "61|0.25|-23", "41|1.25|-21"));
  EXPECT_THAT(rowsOf("SELECT Name + '-' + Kind AS S FROM Fake_Disk"), ElementsAre("a-ssd", "{b-hdd & co}", "NULL"));
  EXPECT_THAT(rowsOf("SELECT -Temp AS N FROM Fake_Disk WHERE Temp < 0"), ElementsAre("5", "1"));
  EXPECT_THAT(disksWhere("Load * 2 = 5"), ElementsAre("c"));
  EXPECT_THAT(disksWhere("Name + Kind = 'assd'"), ElementsAre("a"));
}

TEST_P(ForeignModel, Joins) {
  const std::string from = "SELECT d.Name, h.Name FROM Fake_Disk AS d, Fake_Host AS h WHERE ";
  EXPECT_THAT(rowsOf((from + "d.Size = h.Quota").c_str()), ElementsAre("a|h", "b|g"));
  EXPECT_THAT(rowsOf((from + "d.Size < h.Quota").c_str()), ElementsAre("a|g", "a|f", "b|f", "c|g", "c|f"));
  EXPECT_THAT(rowsOf((from + "d.Size + 10 = h.Quota").c_str()), ElementsAre("c|g"));
  EXPECT_THAT(rowsOf((from + "d.Host = OBJECTPATH(h)").c_str()), ElementsAre("a|h"));
  // b meets h before its partner, which gives it a row without one too.
  EXPECT_THAT(rowsOf((from + "d.Size *= h.Quota").c_str()), UnorderedElementsAre("a|h", "b|g", "b|NULL", "c|NULL"));
}

TEST_P(ForeignModel, WalksAssociations) {
  _manager.addAssociate("root/fake:Fake_Disk.Name=\"a\"", "root/fake:Fake_Host.Name=\"g\"");
  _manager.addAssociate("root/fake:Fake_Disk.Name=\"a\"", "root/fake:Fake_Host.Name=\"f\"");
  _manager.addAssociate("root/fake:Fake_Disk.Name=\"c\"", "root/fake:Fake_Host.Name=\"f\"");
  const std::string from = "SELECT d.Name, h.Quota FROM Fake_Disk AS d, Fake_Host AS h WHERE ";
  EXPECT_THAT(rowsOf((from + "Fake_On = d AND Fake_On = h").c_str()), ElementsAre("a|30", "a|99", "c|99"));
  EXPECT_THAT(rowsOf((from + "Fake_On = d AND Fake_On = h AND h.Quota > d.Size * 4").c_str()),
              ElementsAre("a|99", "c|99"));
}

TEST_P(ForeignModel, Aggregates) {
  EXPECT_THAT(rowsOf("SELECT COUNT(Kind) AS N, SUM(Size) AS S, MIN(Load) AS L, MAX(Temp) AS M FROM Fake_Disk"),
              ElementsAre("2|60|0.5|7"));
  EXPECT_THAT(rowsOf("SELECT AVG(Size) AS A FROM Fake_Disk WHERE Flag = TRUE"), ElementsAre("15"));
}

TEST_P(ForeignModel, Sorts) {
  const std::string from = "SELECT Name FROM Fake_Disk ORDER BY ";
  EXPECT_THAT(rowsOf((from + "Load ASC").c_str()), ElementsAre("b", "a", "c"));
  EXPECT_THAT(rowsOf((from + "Size DESC").c_str()), ElementsAre("b", "c", "a"));
  EXPECT_THAT(rowsOf((from + "Name DESC").c_str()), ElementsAre("c", "b", "a"));
  EXPECT_THAT(rowsOf((from + "Made ASC").c_str()), ElementsAre("c", "a", "b"));
  EXPECT_THAT(rowsOf((from + "Temp ASC").c_str()), ElementsAre("a", "c", "b"));
}

INSTANTIATE_TEST_SUITE_P(BothModes, ForeignModel,
                         ::testing::Values(QORQL_DataTable::kExecutionLazy, QORQL_DataTable::kExecutionPlain));

class ForeignFilter : public ForeignModel {
 protected:
  // The disks that match; what is wrong with the filter when it is refused.
  Rows matching(const std::string& condition) {
    CQLQueryStatement filter("CQL", ("SELECT * FROM Fake_Disk WHERE " + condition).c_str(), kNameSpace, kNameSpace);
    Rows matched;
    if (filter.validate() != QUERY_VALIDATE_SUCCESS) return {filter.getFault().message.c_str()};
    const FakeObjectManager::Instances all = _manager.instancesOf("Fake_Disk");
    QORValSlistIterator<QORSmrPtr<IQoriObject>> disks(*all);
    while (++disks) {
      if (filter.isMatch(disks.key(), kNameSpace)) {
        matched.emplace_back(disks.key()->getProperty("Name", true)->getValue()->toString().c_str());
      }
    }
    return matched;
  }
};

TEST_P(ForeignFilter, MatchesConditions) {
  EXPECT_THAT(matching("Size > 15"), ElementsAre("b", "c"));
  EXPECT_THAT(matching("Kind = 'hdd & co' AND Flag = FALSE AND Load < 1.0 AND Temp >= 7"), ElementsAre("b"));
  EXPECT_THAT(matching("ANY Codes = 3"), ElementsAre("b"));
  EXPECT_THAT(matching("Codes[0] = 1"), ElementsAre("a"));
  EXPECT_THAT(matching("Made = Made AND Size + 1 = 21"), ElementsAre("c"));
  EXPECT_THAT(matching("Temp < 0"), ElementsAre("a", "c"));
  EXPECT_THAT(matching("Kind = 7"), IsEmpty());
}

TEST_P(ForeignFilter, FollowsEmbeddedObjects) {
  CQLQueryStatement filter("CQL",
                           "SELECT * FROM Fake_Change WHERE SourceInstance ISA Fake_Disk AND "
                           "SourceInstance.Fake_Disk::Size = 30 AND SourceInstance.Kind = 'hdd & co'",
                           kNameSpace, kNameSpace);
  ASSERT_EQ(filter.validate(), QUERY_VALIDATE_SUCCESS) << filter.getFault().message.c_str();
  const FakeObjectManager::Instances disks = _manager.instancesOf("Fake_Disk");
  const auto change = [&](QORuint32 disk) {
    return makeFakeObject(kNameSpace, "Fake_Change", {{"Id", "1"}}, {{"SourceInstance", disks->at(disk)}});
  };
  EXPECT_TRUE(filter.isMatch(change(1), kNameSpace));
  EXPECT_FALSE(filter.isMatch(change(0), kNameSpace));
}

INSTANTIATE_TEST_SUITE_P(Filters, ForeignFilter, ::testing::Values(QORQL_DataTable::kExecutionLazy));

}  // namespace
