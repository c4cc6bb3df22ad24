// The select list at work: kept properties, header and cell order, functions,
// aggregates, sorting between its two runs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_SelectList.h"
#include "QueryWorld.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kModel[] = R"(
class X { [key] uint32 Id; uint32 P; sint32 S; real32 R; string Name; uint64 Big; uint8 Small; boolean Flag; };
class XX : X { string Extra; };
class Y { [key] uint32 Id; uint32 Q; };
class None { [key] uint32 Id; uint32 P; };
instance of X { Id = 1; P = 10; S = -1; R = 0.5; Name = "one"; Big = 18446744073709551615; Small = 1; };
instance of X { Id = 2; P = 30; S = 2; Name = "two"; Big = 1; Small = 2; };
instance of XX { Id = 3; S = 3; R = 1.5; Name = "three"; Extra = "e"; Small = 3; };
instance of X { Id = 4; P = 20; Name = "two"; };
instance of Y { Id = 7; Q = 10; };
)";

struct Projection : testing::Test {
  QueryWorld world{kModel};

  // The projected table of a query, run in one mode.
  QORSmrPtr<QORQL_DataTable> tableOf(const char* text, QORQL_DataTable::ExecutionMode mode) {
    const QORString query(text);
    QORQL_Lexer lexer(query, false);
    QORQL_SymbolTable symbols(nullptr);
    const QORSmrPtr<QORQL_Executable> parsed(
        QORQL_Query::parse(symbols, lexer, false, query, "DMTF:CQL", "root/cimv2"));
    QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
    table->setExecutionMode(mode);
    parsed->execute(symbols, table, nullptr, "root/cimv2");
    return table;
  }
  static std::string cellText(const QORSmrPtr<IQoriObject>& object) {
    if (object.IsNull()) return "null";
    std::string text = QueryWorld::textOf(object->getClassName()) + "{";
    for (QORuint32 i = 0; i < object->getPropertyCount(); ++i) {
      text += (i == 0 ? "" : ",") + QueryWorld::textOf(object->getPropertyAt(i)->getName());
    }
    return text + "}";
  }
  // Headers as name/alias, then the first row's cells.
  std::string shapeOf(const char* query) {
    std::string lazy = shape(*tableOf(query, QORQL_DataTable::kExecutionLazy));
    EXPECT_EQ(lazy, shape(*tableOf(query, QORQL_DataTable::kExecutionPlain)));
    return lazy;
  }
  static std::string shape(QORQL_DataTable& table) {
    std::string text = "[";
    for (QORuint32 i = 0; i < table.getColumnCount(); ++i) {
      const QORSmrPtr<QORQL_TableHeader> header(table.getColumnHeader(i));
      text +=
          (i == 0 ? "" : " ") + QueryWorld::textOf(header->getName()) + "/" + QueryWorld::textOf(header->getAlias());
    }
    text += "]";
    const QORSmrPtr<QORQL_DataRow> row(table.getRow(0));
    for (QORuint32 i = 0; i < row->getCellCount(); ++i) text += " " + cellText(row->getCell(i));
    return text;
  }
};

TEST_F(Projection, cellsKeepOnlyWhatIsSelected) {
  EXPECT_EQ(shapeOf("SELECT X.P, X.Name FROM X"), "[X/X] X{P,Name}");
  EXPECT_EQ(shapeOf("SELECT a.P FROM X AS a"), "[X/A] X{P}");
  EXPECT_EQ(shapeOf("SELECT P + 1 AS Q2 FROM X"), "[X/X] X{P}");
  EXPECT_EQ(shapeOf("SELECT X.P + Y.Q AS Sum2 FROM X, Y"), "[Y/Y X/X] X{P} Y{Q}");
  EXPECT_EQ(shapeOf("SELECT X.P, Y.* FROM X, Y"), "[Y/Y X/X] X{P} Y{Id,Q}");
  EXPECT_EQ(shapeOf("SELECT X FROM X"), "[X/X] X{Id,P,S,R,Name,Big,Small,Flag}");
  EXPECT_EQ(shapeOf("SELECT * FROM Y, X"), "[X/X Y/Y] Y{Id,Q} X{Id,P,S,R,Name,Big,Small,Flag}");
}

TEST_F(Projection, functionsAreInAPseudoObjectWhoseColumnIsFirstAndCellLast) {
  EXPECT_EQ(shapeOf("SELECT X.P, OBJECTPATH(X) AS OP FROM X"), "[VALUES/ X/X] X{P} VALUES{OP}");
  EXPECT_EQ(shapeOf("SELECT OBJECTPATH(X) AS OP FROM X"), "[VALUES/] VALUES{OP}");
  EXPECT_THAT(world.rows("SELECT X.P, OBJECTPATH(X) AS OP FROM X WHERE Id = 2"), ElementsAre("30|root/cimv2:X.Id=2"));
}

TEST_F(Projection, whatTheSortKeyNeedsIsDroppedByTheSecondRun) {
  EXPECT_EQ(shapeOf("SELECT X.Name FROM X, Y WHERE P IS NOT NULL ORDER BY X.P + Y.Q ASC"), "[X/X] X{Name}");
}

TEST_F(Projection, aClassNamedOnlyBySelectIsAnUnknownSymbol) {
  EXPECT_EQ(world.error("SELECT Y.Q FROM X"), "runtime 4: Invalid symbol specified in the select clause -'Y'");
}

TEST_F(Projection, columnNames) {
  EXPECT_THAT(world.run("SELECT X.Id, Y.Id, P AS price, X.Name FROM X, Y").columns,
              ElementsAre("X.Id", "Y.Id", "PRICE", "Name"));
}

TEST_F(Projection, starWithAnotherEntryIsNoSelectAll) {
  const QueryOutcome outcome = world.run("SELECT *, P FROM X");
  EXPECT_EQ(outcome.rows.size(), 4U);
  const QueryOutcome all = world.run("SELECT P, * FROM X");
  EXPECT_EQ(all.columns.size(), 10U);  // P, eight of X, Extra
}

TEST_F(Projection, firstLimitsTheStreamAndNotTheTable) {
  const QueryOutcome outcome = world.run("SELECT FIRST 2 Id FROM X");
  EXPECT_THAT(outcome.rows, ElementsAre("1", "2"));
  EXPECT_EQ(outcome.tableRows, 4U);
  EXPECT_THAT(world.run("SELECT FIRST 0 Id FROM X").rows, IsEmpty());
  EXPECT_EQ(world.run("SELECT FIRST 9 Id FROM X").rows.size(), 4U);
}

TEST_F(Projection, instanceOfFetchesTheWholeInstanceOncePerRow) {
  const QueryOutcome outcome = world.run("SELECT X.Id, INSTANCEOF(X) AS I FROM X WHERE X.Id = 3 ORDER BY X.Id ASC");
  ASSERT_EQ(outcome.rows.size(), 1U);
  EXPECT_THAT(outcome.rows.front(), HasSubstr("Extra"));
  world.manager().resetStatistics();
  world.runIn("SELECT INSTANCEOF(X) AS I, X.Id FROM X ORDER BY X.Id ASC", QORQL_DataTable::kExecutionLazy);
  EXPECT_EQ(world.manager().statistics().getInstanceCalls, 4U);
  world.manager().resetStatistics();
  world.runIn("SELECT INSTANCEOF(X) AS I, X.* FROM X", QORQL_DataTable::kExecutionLazy);
  EXPECT_EQ(world.manager().statistics().getInstanceCalls, 0U);  // everything is there already
}

struct Aggregates : Projection {};

TEST_F(Aggregates, countSkipsNullsAndIsUint64) {
  EXPECT_THAT(world.rows("SELECT COUNT(P) AS N FROM X"), ElementsAre("3"));
  EXPECT_THAT(world.rows("SELECT COUNT(X) AS N FROM X"), ElementsAre("4"));
  EXPECT_THAT(world.rows("SELECT COUNT(Name) AS N FROM X"), ElementsAre("4"));
  EXPECT_THAT(world.run("SELECT COUNT(P) AS N FROM X").stream, HasSubstr("NAME=\"N\" TYPE=\"uint64\""));
}

TEST_F(Aggregates, minMaxSumAvg) {
  EXPECT_THAT(world.rows("SELECT MIN(P) AS A, MAX(P) AS B, SUM(P) AS C FROM X"), ElementsAre("10|30|60"));
  EXPECT_THAT(world.rows("SELECT MIN(S) AS A, MAX(S) AS B, SUM(S) AS C FROM X"), ElementsAre("-1|3|4"));
  EXPECT_THAT(world.rows("SELECT MIN(R) AS A, MAX(R) AS B, SUM(R) AS C FROM X"), ElementsAre("0.5|1.5|2"));
  EXPECT_THAT(world.rows("SELECT AVG(P) AS A FROM X"), ElementsAre("20"));
  EXPECT_THAT(world.rows("SELECT AVG(R) AS A FROM X"), ElementsAre("1"));
}

TEST_F(Aggregates, theDivisorOfAvgIsSharedAmongAggregates) {
  EXPECT_THAT(world.rows("SELECT AVG(P) AS A, COUNT(Name) AS N FROM X"),
              ElementsAre("8.571428571428571|4"));  // 60 / (3 + 4)
}

TEST_F(Aggregates, theFirstValueIsWidenedAndALaterExtremeKeepsItsType) {
  EXPECT_THAT(world.run("SELECT MAX(Small) AS M FROM X WHERE Id = 1").stream, HasSubstr("TYPE=\"uint64\""));
  EXPECT_THAT(world.run("SELECT MAX(Small) AS M FROM X").stream, HasSubstr("TYPE=\"uint8\""));
}

TEST_F(Aggregates, anArgumentMayBeComputed) {
  EXPECT_THAT(world.rows("SELECT SUM(P * 2) AS D FROM X"), ElementsAre("120"));
  EXPECT_THAT(world.rows("SELECT SUM(-S) AS D FROM X"), ElementsAre("-4"));
}

TEST_F(Aggregates, anExpressionAroundOneAggregateIsApplied) {
  EXPECT_THAT(world.rows("SELECT MAX(P) / 3 AS M FROM X"), ElementsAre("10"));
  EXPECT_THAT(world.rows("SELECT -SUM(S) AS M FROM X"), ElementsAre("-4"));
  EXPECT_THAT(world.rows("SELECT COUNT(P) > 2 AS M FROM X"), ElementsAre("TRUE"));
  EXPECT_EQ(world.error("SELECT MAX(P) > 2 AS M FROM X"),
            "parse 15 line 0: Aggregate functions must contain an expression that results in a numeric value.");
}

TEST_F(Aggregates, severalInOneEntryAreNull) {
  EXPECT_EQ(world.error("SELECT MAX(P) - MIN(P) AS D FROM X"),
            "parse 15 line 0: Aggregate functions must contain a valid expression.");
}

TEST_F(Aggregates, aSumThatFitsNoTypeIsNull) {
  EXPECT_EQ(world.error("SELECT SUM(Big) AS B FROM X"),
            "parse 15 line 0: Aggregate functions must contain a valid expression.");
}

TEST_F(Aggregates, overNoRowsTheOneRowIsNullAndCannotBeStreamed) {
  const QORSmrPtr<QORQL_DataTable> table(
      tableOf("SELECT COUNT(P) AS N, MAX(P) AS M FROM None", QORQL_DataTable::kExecutionLazy));
  ASSERT_EQ(table->getRowCount(), 1U);
  const QORSmrPtr<IQoriObject> values(table->getRow(0)->getCell(0U));
  EXPECT_EQ(values->getClassName(), "VALUES");
  EXPECT_TRUE(values->getProperty("N", true)->getValue().IsNull());
  EXPECT_EQ(world.error("SELECT COUNT(P) AS N FROM None"),
            "parse 15 line 0: Aggregate functions must contain a valid expression.");
}

TEST_F(Aggregates, otherTypesAreRefused) {
  EXPECT_EQ(world.error("SELECT MIN(Name) AS M FROM X"),
            "runtime 6: Property data type must be numeric for function MIN");
  EXPECT_EQ(world.error("SELECT SUM(X) AS M FROM X"), "runtime 6: Property data type must be numeric for function SUM");
}

TEST_F(Aggregates, withoutAliasTheSlotIsNamedAfterFunctionClassAndProperty) {
  QORQL_SelectedEntry entry("CIM_Disk", "Size", "", QORSmrPtr<QORQL_Evaluatable>(),
                            QORQL_SelectedEntry::ClassNameList(), false, true, QORQL_FUNCTIONID_COUNT);
  EXPECT_EQ(QORQL_SelectList::_functionID(entry), "COUNT_CIM_Disk_Size");
}

struct OrderBy : Projection {};

TEST_F(OrderBy, ascendingAndDescending) {
  EXPECT_THAT(world.rows("SELECT Id FROM X WHERE P IS NOT NULL ORDER BY P ASC"), ElementsAre("1", "4", "2"));
  EXPECT_THAT(world.rows("SELECT Id FROM X WHERE P IS NOT NULL ORDER BY P DESC"), ElementsAre("2", "4", "1"));
  EXPECT_THAT(world.rows("SELECT Id FROM X ORDER BY Name ASC"), ElementsAre("1", "3", "4", "2"));
}

TEST_F(OrderBy, equalKeysComeOutReversed) {
  EXPECT_THAT(world.rows("SELECT Id FROM X ORDER BY 1 ASC"), ElementsAre("4", "3", "2", "1"));
  EXPECT_THAT(world.rows("SELECT Id FROM X ORDER BY 1 DESC"), ElementsAre("4", "3", "2", "1"));
}

TEST_F(OrderBy, theKeyMayBeAnAliasOrAnExpression) {
  EXPECT_THAT(world.rows("SELECT Id, 0 - P AS Neg FROM X WHERE P IS NOT NULL ORDER BY neg ASC"),
              ElementsAre("2|-30", "4|-20", "1|-10"));
  EXPECT_THAT(world.rows("SELECT Id AS P FROM X ORDER BY P DESC"), ElementsAre("4", "3", "2", "1"));
  EXPECT_THAT(world.rows("SELECT Id FROM X ORDER BY Id * -1 ASC"), ElementsAre("4", "3", "2", "1"));
  EXPECT_THAT(world.rows("SELECT Id FROM X ORDER BY OBJECTPATH(X) DESC"), testing::SizeIs(4));
}

TEST_F(OrderBy, aNullKeyFailsTheSortOfTwoRows) {
  EXPECT_EQ(world.error("SELECT Id FROM X ORDER BY P ASC"), "runtime 3: Caught an exception while sorting the data.");
  EXPECT_THAT(world.rows("SELECT Id FROM X WHERE Id = 3 ORDER BY P ASC"), ElementsAre("3"));
  EXPECT_THAT(world.rows("SELECT Id FROM None ORDER BY P ASC"), IsEmpty());
}

TEST_F(OrderBy, aNameThatCannotBeBoundFailsTheSort) {
  EXPECT_EQ(world.error("SELECT Id FROM X ORDER BY Nope ASC"),
            "runtime 3: Caught an exception while sorting the data.");
}

TEST_F(OrderBy, arraysAndMixedTypes) {
  EXPECT_EQ(world.error("SELECT Id FROM X ORDER BY Flag + 1 ASC"),
            "runtime 3: Caught an exception while sorting the data.");
}

}  // namespace
