// Filtering and joining tables: OR, AND, NOT, inner and outer joins, associations.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "QueryWorld.h"

namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

constexpr char kModel[] = R"(
class A { [key] uint32 Id; uint32 K; string Text; };
class B { [key] uint32 Id; uint32 K; };
class C { [key] uint32 Id; uint32 K; };
class E { [key] uint32 Id; uint32 K; };
instance of A { Id = 1; K = 10; Text = "x"; };
instance of A { Id = 2; K = 20; Text = "y"; };
instance of A { Id = 3; };
instance of B { Id = 1; K = 20; };
instance of B { Id = 2; K = 10; };
instance of B { Id = 3; K = 20; };
instance of B { Id = 4; };
instance of C { Id = 1; K = 20; };
instance of C { Id = 2; K = 99; };
)";

struct Where : testing::Test {
  QueryWorld world{kModel};
};

TEST_F(Where, orIsDecidedByItsLastOperand) {
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE K = 10 OR K = 20"), ElementsAre("2"));
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE K = 10 OR K = 20 OR Id = 3"), ElementsAre("3"));
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE K = 10 OR K = 20 AND Id = 3"), IsEmpty());
}

TEST_F(Where, errorsOfTheOtherOperandsStillHappen) {
  EXPECT_EQ(world.error("SELECT Id FROM A WHERE Id LIKE 'x' OR K = 20"),
            "runtime 6: Invalid data type specified for LIKE operator");
}

TEST_F(Where, theRightOperandOfOrRunsFirst) {
  EXPECT_THAT(world.error("SELECT Id FROM A WHERE Id LIKE 'x' OR 1 / (Id - 1) = 1"), HasSubstr("CIM_Value"));
}

TEST_F(Where, andIsSuccessiveFiltering) {
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE K > 5 AND K < 15"), ElementsAre("1"));
  // The second condition is not evaluated on rows that are gone.
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE Id > 1 AND 1 / (Id - 1) = 1"), ElementsAre("2"));
}

TEST_F(Where, notKeepsTheRowsWhereTheComparisonIsFalse) {
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE NOT K = 10"), ElementsAre("2"));
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE NOT K = 10 AND Id = 2"), ElementsAre("2"));
}

TEST_F(Where, aConditionWithoutClassHoldsForAllRowsOrNone) {
  EXPECT_THAT(world.rows("SELECT A.Id, C.Id FROM A, C WHERE 1 = 1"),
              ElementsAre("1|1", "1|2", "2|1", "2|2", "3|1", "3|2"));
  EXPECT_THAT(world.rows("SELECT A.Id, C.Id FROM A, C WHERE 1 = 2"), IsEmpty());
}

TEST_F(Where, equalityJoinKeepsTheOrderOfTheProduct) {
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K = B.K"), ElementsAre("1|2", "2|1", "2|3"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM B, A WHERE A.K = B.K"), ElementsAre("2|1", "1|2", "2|3"));
}

TEST_F(Where, otherRelationsJoinToo) {
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K < B.K"), ElementsAre("1|1", "1|3"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K <> B.K"), ElementsAre("1|1", "1|3", "2|2"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K + 10 = B.K"), ElementsAre("1|1", "1|3"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K - B.K = 0"), ElementsAre("1|2", "2|1", "2|3"));
}

TEST_F(Where, threeClassesJoinInTheOrderOfTheProduct) {
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id, C.Id FROM A, B, C WHERE A.K = C.K"),
              ElementsAre("2|1|1", "2|2|1", "2|3|1", "2|4|1"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id, C.Id FROM A, B, C WHERE A.K = C.K AND B.K = A.K"),
              ElementsAre("2|1|1", "2|3|1"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id, C.Id FROM A, B, C WHERE A.K < C.K AND B.Id = 1"),
              ElementsAre("1|1|1", "1|1|2", "2|1|2"));
}

TEST_F(Where, leftOuterJoinAddsARowForEachLeftObjectWhoseFirstRowFails) {
  const std::vector<std::string> rows = world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K *= B.K");
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_THAT(std::vector<std::string>(rows.begin(), rows.begin() + 3), ElementsAre("1|2", "2|1", "2|3"));
  // A 1 matches B 2, but its row with B 1 came first and failed.
  EXPECT_THAT(std::vector<std::string>(rows.begin() + 3, rows.end()), UnorderedElementsAre("1|NULL", "3|NULL"));
}

TEST_F(Where, leftOuterJoinWithEveryFirstRowMatchingAddsNothing) {
  EXPECT_THAT(world.rows("SELECT A.Id, C.Id FROM A, C WHERE A.Id *= C.Id AND A.Id = 1"), ElementsAre("1|1"));
}

TEST_F(Where, rightOuterJoinAddsRightObjectsWithoutAnyMatch) {
  const std::vector<std::string> rows = world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K =* B.K");
  EXPECT_THAT(rows, ElementsAre("1|2", "2|1", "2|3", "NULL|4"));
}

TEST_F(Where, fullOuterJoinAddsLeftRowsBeforeRightRows) {
  const std::vector<std::string> rows = world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K *=* B.K");
  ASSERT_EQ(rows.size(), 6U);
  EXPECT_EQ(rows.back(), "NULL|4");
  EXPECT_THAT(rows, Contains("3|NULL"));
}

TEST_F(Where, leftOuterJoinWithAnEmptyClassKeepsEveryLeftObject) {
  EXPECT_THAT(world.rows("SELECT A.Id, E.Id FROM A, E WHERE A.K *= E.K"),
              UnorderedElementsAre("1|NULL", "2|NULL", "3|NULL"));
  EXPECT_THAT(world.rows("SELECT A.Id, E.Id FROM A, E WHERE E.K *= A.K"), IsEmpty());
}

// Objects of one bucket of the map by path stand in the order of their first rows,
// though the last rows of some come behind those of others.
TEST(OuterRows, ofOneBucketStandInTheOrderOfTheirFirstRows) {
  std::string mof =
      "class A { [key] uint32 Id; uint32 K; }; class B { [key] uint32 Id; uint32 K; };"
      "instance of A { Id = 1; K = 1; }; instance of A { Id = 2; K = 1; };";
  QORValMap<QORString, QORuint32> byPath(hashKeyQORString, 150);
  for (QORuint32 id = 1; id <= 300; ++id) {
    mof += "instance of B { Id = " + std::to_string(id) + "; K = 2; };";
    byPath.insert(QORString("root/cimv2:B.Id=" + std::to_string(id)), id);
  }
  std::vector<std::string> expected;
  QORValMapIterator<QORString, QORuint32> paths(byPath);
  while (++paths) expected.push_back(std::to_string(paths.value()));
  EXPECT_EQ(QueryWorld(mof).rows("SELECT B.Id FROM A, B WHERE A.Id * B.Id <= 300 AND A.K =* B.K"), expected);
}

TEST_F(Where, anEmptyTableGetsNoOuterRows) {
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.Id = 99 AND A.K *= B.K"), IsEmpty());
}

TEST_F(Where, anOuterRowIsNullInAThirdClassToo) {
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id, C.Id FROM A, B, C WHERE A.K =* B.K AND B.Id IS NOT NULL"),
              ElementsAre("1|2|1", "1|2|2", "2|1|1", "2|1|2", "2|3|1", "2|3|2", "NULL|4|NULL"));
}

TEST_F(Where, anOuterJoinWhoseSidesNameNoSingleClassUsesTheFirstColumn) {
  // Both sides' bookkeeping is on column 0: A 2 and A 3 never match, A 1 does in one of its rows.
  const std::vector<std::string> rows = world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K + B.K *= 20");
  EXPECT_THAT(rows, UnorderedElementsAre("1|2", "1|NULL", "2|NULL", "3|NULL"));
}

TEST_F(Where, notBeforeAnOuterJoinKeepsTheRowsThatFail) {
  const std::vector<std::string> rows = world.rows("SELECT A.Id, C.Id FROM A, C WHERE NOT A.K *= C.K");
  EXPECT_THAT(rows, Contains("1|1"));
  EXPECT_THAT(rows, Not(Contains("2|1")));
}

TEST_F(Where, mismatchedKeysRaiseTheErrorOfTheFirstPair) {
  EXPECT_THAT(world.error("SELECT A.Id, B.Id FROM A, B WHERE A.Text = B.K"), HasSubstr("CIM_Value: "));
}

TEST_F(Where, nothingIsEvaluatedOverNoRows) {
  EXPECT_THAT(world.rows("SELECT E.Id FROM E WHERE Id LIKE 'x'"), IsEmpty());
}

TEST(ExpressionFactor, whatIsNoComparisonIsRefused) {
  QORQL_SymbolTable symbols(nullptr);
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  QORQL_ExpressionFactor factor(QORSmrPtr<QORQL_Evaluatable>(), QORQL_OperatorNONE, "", "");
  try {
    factor.evaluate(symbols, table, "root/cimv2");
    FAIL();
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getCode(), 3U);
    EXPECT_EQ(error.getMessage(), "Unable to evaluate the expression - comparison object was NULL");
  }
}

TEST(ExpressionFactor, anotherOperatorDoesNothing) {
  QORQL_SymbolTable symbols(nullptr);
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  QORQL_ExpressionFactor factor(QORSmrPtr<QORQL_Evaluatable>(), QORQL_OperatorPLUS, "", "");
  factor.evaluate(symbols, table, "root/cimv2");
  EXPECT_EQ(table->getRowCount(), 0U);
}

constexpr char kAssociations[] = R"(
class S { [key] string Name; };
class D { [key] string Name; uint32 Size; };
class X { [key] string Name; };
[association] class Assoc { [key] S REF Ante; [key] D REF Dep; uint32 Weight; };
[association] class Other { [key] S REF Ante; [key] X REF Dep; };
instance of S as $s1 { Name = "s1"; };
instance of S as $s2 { Name = "s2"; };
instance of S as $s3 { Name = "s3"; };
instance of D as $d1 { Name = "d1"; Size = 1; };
instance of D as $d2 { Name = "d2"; Size = 2; };
instance of D as $d3 { Name = "d3"; Size = 3; };
instance of X as $x1 { Name = "x1"; };
instance of Assoc { Ante = $s1; Dep = $d2; Weight = 5; };
instance of Assoc { Ante = $s1; Dep = $d1; Weight = 6; };
instance of Assoc { Ante = $s2; Dep = $d3; Weight = 7; };
instance of Other { Ante = $s2; Dep = $x1; };
)";

struct Associations : testing::Test {
  QueryWorld world{kAssociations};
};

TEST_F(Associations, theSourceIsEnumeratedAndAskedForItsAssociates) {
  const QueryOutcome outcome = world.run("SELECT S.Name, D.Name FROM S, D WHERE Assoc = S AND Assoc = D");
  EXPECT_THAT(outcome.rows, ElementsAre("s1|d2", "s1|d1", "s2|d3"));
  ASSERT_EQ(outcome.log.size(), 4U);
  EXPECT_EQ(outcome.log[0], "CQL/4: Issued an enumerate instance call for 'S'");
  EXPECT_THAT(outcome.log[1], HasSubstr("CQL/4: Issued an associator request call 'Assoc' on 'S' with instance name "));
  EXPECT_THAT(outcome.log[1], HasSubstr(" and result class 'D'"));
}

TEST_F(Associations, referencesAreWrittenOutToo) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Assoc.firstref = OBJECTPATH(S) AND "
                         "Assoc.secondref = OBJECTPATH(D)"),
              ElementsAre("s1|d2", "s1|d1", "s2|d3"));
}

TEST_F(Associations, leftOuterKeepsSourcesWithoutAssociates) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Assoc *= S AND Assoc = D"),
              ElementsAre("s1|d2", "s1|d1", "s2|d3", "s3|NULL"));
}

TEST_F(Associations, aSourceInSeveralRowsIsAskedOnce) {
  const QueryOutcome outcome = world.run("SELECT S.Name, X.Name, D.Name FROM X, S, D WHERE Assoc = S AND Assoc = D");
  EXPECT_THAT(outcome.rows, ElementsAre("s1|x1|d2", "s1|x1|d1", "s2|x1|d3"));
  EXPECT_EQ(outcome.log.size(), 5U);  // two enumerations, three sources
}

TEST_F(Associations, twoAssociationsChain) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name, X.Name FROM S, D, X WHERE Assoc = S AND Assoc = D AND Other = S AND "
                         "Other = X"),
              ElementsAre("s2|d3|x1"));
}

TEST_F(Associations, anEnumeratedDestinationIsFiltered) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Assoc = D AND Assoc = S AND Assoc = S AND Assoc = D"),
              UnorderedElementsAre("s1|d2", "s1|d1", "s2|d3"));
}

TEST_F(Associations, conditionsOnBothSidesGoOn) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Assoc = S AND Assoc = D AND D.Size < 3 ORDER BY "
                         "D.Name ASC"),
              ElementsAre("s1|d1", "s1|d2"));
}

TEST_F(Associations, theAssociationClassIsAColumnWhenItIsSelected) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name, a.Weight FROM S, D, Assoc AS a WHERE a = S AND a = D"),
              UnorderedElementsAre("s1|d2|5", "s1|d1|6", "s2|d3|7"));
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name, a.Weight FROM S, D, Assoc AS a WHERE a *= S AND a = D"),
              UnorderedElementsAre("s1|d2|5", "s1|d1|6", "s2|d3|7", "s3|NULL|NULL"));
}

TEST_F(Associations, anAssociationClassInFromThatNobodyNamesIsNotFetched) {
  const QueryOutcome outcome = world.run("SELECT S.Name, D.Name FROM S, D, Assoc WHERE Assoc = S AND Assoc = D");
  EXPECT_THAT(outcome.rows, ElementsAre("s1|d2", "s1|d1", "s2|d3"));
  EXPECT_THAT(outcome.log, Not(Contains(HasSubstr("enumerate instance call for 'ASSOC'"))));
}

TEST_F(Associations, underOrTheLastOperandDecides) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE D.Size = 1 OR Assoc = S AND Assoc = D"),
              ElementsAre("s1|d2", "s1|d1", "s2|d3"));
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Assoc = S AND Assoc = D OR D.Size = 1"),
              ElementsAre("s1|d1", "s2|d1", "s3|d1"));
}

TEST_F(Associations, parseFaults) {
  EXPECT_EQ(world.error("SELECT S.Name FROM S, D WHERE Assoc = S"),
            "parse 6 line 1: 'AND' expected for an association");
  EXPECT_EQ(world.error("SELECT S.Name FROM S, D WHERE Assoc = S AND D.Size = 1"),
            "parse 14 line 1: Invalid syntax specified for an Association");
  EXPECT_EQ(world.error("SELECT S.Name FROM S, D WHERE Assoc = S AND Other = D"),
            "parse 14 line 1: Invalid syntax specified for an Association");
  for (const char* op : {"=*", "*=*"}) {
    EXPECT_EQ(world.error(std::string("SELECT S.Name FROM S, D WHERE Assoc ") + op + " S AND Assoc = D"),
              "parse 14 line 1: Right and Full outer joins are not supported on associations");
  }
}

TEST_F(Associations, anUnknownAssociationHasNoAssociates) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Nope = S AND Nope = D"), IsEmpty());
}

}  // namespace
