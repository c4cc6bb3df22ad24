// A finished result as columns and rows: their names, types and numbers.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Cimom/QORQL/Out/QORQL_ResultReader.h"
#include "FetchedStatement.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kModel[] = R"(
class A { [key] uint32 Id; string S; uint16 L[]; };
class Sub : A { real64 More; };
class B { [key] uint32 Id; };
class None { [key] uint32 Id; string S; };
instance of A { Id = 1; S = "x"; L = {1}; };
instance of Sub { Id = 2; More = 2.5; };
instance of B { Id = 7; };
)";

struct ResultReader : testing::Test {
  QueryWorld world{kModel};
};

// A statement that has run.
struct Result : FetchedStatement {
  explicit Result(const char* statement) : FetchedStatement(statement) {
    table = QORSmrPtr<QORQL_DataTable>(new QORQL_DataTable());
    query->execute(symbols, table, nullptr, "root/cimv2");
  }
  // "name type", with "[]" for an array.
  std::vector<std::string> columns(const QORQL_ResultReader::Declared& declared = {}) {
    std::vector<std::string> texts;
    const QORQL_ResultReader reader(*query, symbols, table, declared);
    for (const auto& column : reader.columns()) {
      texts.push_back(QueryWorld::textOf(column.name) + " " + QueryWorld::textOf(column.typeName) +
                      (column.isArray ? "[]" : ""));
    }
    return texts;
  }
};

TEST_F(ResultReader, NamesAndTypesItsColumns) {
  EXPECT_THAT(Result("SELECT * FROM A").columns(), ElementsAre("Id uint32", "S string", "L uint16[]", "More real64"));
  EXPECT_THAT(Result("SELECT A.Id, B.Id, S AS T, A.Id + 1 AS U FROM A, B").columns(),
              ElementsAre("A.Id uint32", "B.Id uint32", "T string", "U uint64"));
}

// "class.property" of each column.
std::vector<std::string> propertiesOf(Result&& result) {
  const QORQL_ResultReader reader(*result.query, result.symbols, result.table);
  std::vector<std::string> texts;
  for (const auto& column : reader.columns()) {
    EXPECT_EQ(column.className.isEmpty(), column.propertyName.isEmpty());
    texts.push_back(QueryWorld::textOf(QORString::toUpperCase(column.className + "." + column.propertyName)));
  }
  return texts;
}

TEST_F(ResultReader, KnowsThePropertiesThatItsColumnsShow) {
  EXPECT_THAT(propertiesOf(Result("SELECT Id, S AS T, x.L, x.* FROM A AS x")),
              ElementsAre("A.ID", "A.S", "A.L", "A.ID", "A.S", "A.L", "A.MORE"));
  EXPECT_THAT(propertiesOf(Result("SELECT x.Id, B.Id, y.S FROM A AS x, B, Sub AS y")),
              ElementsAre("A.ID", "B.ID", "SUB.S"));
}

TEST_F(ResultReader, KnowsNoPropertyOfWhatIsComputed) {
  EXPECT_THAT(propertiesOf(Result("SELECT Id + 1 AS I, -Id AS J, 'x' AS K, OBJECTPATH(A) AS L FROM A")),
              ElementsAre(".", ".", ".", "."));
  EXPECT_THAT(propertiesOf(Result("SELECT COUNT(Id), MIN(Id) AS M FROM A")), ElementsAre(".", "."));
}

TEST_F(ResultReader, ExpandsAStarWithoutObjectsByWhatIsDeclared) {
  EXPECT_THAT(Result("SELECT * FROM None").columns(), IsEmpty());
  const auto declared = [](const QORString& className) {
    EXPECT_TRUE(className.isEqualCaseInsensitive("None"));
    return std::vector<QORString>{"Id", "S"};
  };
  EXPECT_THAT(Result("SELECT * FROM None").columns(declared), ElementsAre("Id ", "S "));
}

TEST_F(ResultReader, CountsWhatFirstLeaves) {
  Result result("SELECT FIRST 1 Id FROM A");
  QORQL_ResultReader reader(*result.query, result.symbols, result.table);
  EXPECT_EQ(reader.rowCount(), 1U);
  EXPECT_TRUE(reader.next());
  EXPECT_FALSE(reader.next());
}

TEST_F(ResultReader, KnowsTheOneClassOfItsRows) {
  Result one("SELECT Id, S FROM A");
  QORQL_ResultReader ofA(*one.query, one.symbols, one.table);
  ASSERT_TRUE(ofA.next());
  EXPECT_EQ(ofA.rowClass(), "A");
  ASSERT_TRUE(ofA.next());
  EXPECT_EQ(ofA.rowClass(), "Sub");
  Result two("SELECT A.Id, B.Id FROM A, B");
  QORQL_ResultReader ofBoth(*two.query, two.symbols, two.table);
  ASSERT_TRUE(ofBoth.next());
  EXPECT_TRUE(ofBoth.rowClass().isEmpty());
}

TEST_F(ResultReader, ReadsAggregatesAsOneRow) {
  Result result("SELECT COUNT(Id) AS N, MAX(Id) AS M FROM A");
  QORQL_ResultReader reader(*result.query, result.symbols, result.table);
  ASSERT_TRUE(reader.next());
  EXPECT_EQ(reader.value(0)->toString(), "2");
  EXPECT_EQ(reader.view(1).u, 2U);
  EXPECT_FALSE(reader.next());
}

}  // namespace
