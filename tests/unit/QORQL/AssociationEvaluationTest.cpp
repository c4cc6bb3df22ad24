// Association conditions at work: whom they ask, and what they add to the table.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FetchedStatement.h"
#include "QueryWorld.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

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

TEST_F(Associations, TheSourceIsEnumeratedAndAskedForItsAssociates) {
  const QueryOutcome outcome = world.run("SELECT S.Name, D.Name FROM S, D WHERE Assoc = S AND Assoc = D");
  EXPECT_THAT(outcome.rows, ElementsAre("s1|d2", "s1|d1", "s2|d3"));
  ASSERT_EQ(outcome.log.size(), 4U);
  EXPECT_EQ(outcome.log[0], "CQL/4: Issued an enumerate instance call for 'S'");
  EXPECT_THAT(outcome.log[1], HasSubstr("CQL/4: Issued an associator request call 'Assoc' on 'S' with instance name "));
  EXPECT_THAT(outcome.log[1], HasSubstr(" and result class 'D'"));
}

TEST_F(Associations, ReferencesAreWrittenOutToo) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Assoc.firstref = OBJECTPATH(S) AND "
                         "Assoc.secondref = OBJECTPATH(D)"),
              ElementsAre("s1|d2", "s1|d1", "s2|d3"));
}

TEST_F(Associations, LeftOuterKeepsSourcesWithoutAssociates) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Assoc *= S AND Assoc = D"),
              ElementsAre("s1|d2", "s1|d1", "s2|d3", "s3|NULL"));
}

TEST_F(Associations, ASourceInSeveralRowsIsAskedOnce) {
  const QueryOutcome outcome = world.run("SELECT S.Name, X.Name, D.Name FROM X, S, D WHERE Assoc = S AND Assoc = D");
  EXPECT_THAT(outcome.rows, ElementsAre("s1|x1|d2", "s1|x1|d1", "s2|x1|d3"));
  EXPECT_EQ(outcome.log.size(), 5U);  // two enumerations, three sources
}

TEST_F(Associations, TwoAssociationsChain) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name, X.Name FROM S, D, X WHERE Assoc = S AND Assoc = D AND Other = S AND "
                         "Other = X"),
              ElementsAre("s2|d3|x1"));
}

TEST_F(Associations, AnEnumeratedDestinationIsFiltered) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Assoc = D AND Assoc = S AND Assoc = S AND Assoc = D"),
              UnorderedElementsAre("s1|d2", "s1|d1", "s2|d3"));
}

TEST_F(Associations, ConditionsOnBothSidesGoOn) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Assoc = S AND Assoc = D AND D.Size < 3 ORDER BY "
                         "D.Name ASC"),
              ElementsAre("s1|d1", "s1|d2"));
}

TEST_F(Associations, TheAssociationClassIsAColumnWhenItIsSelected) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name, a.Weight FROM S, D, Assoc AS a WHERE a = S AND a = D"),
              UnorderedElementsAre("s1|d2|5", "s1|d1|6", "s2|d3|7"));
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name, a.Weight FROM S, D, Assoc AS a WHERE a *= S AND a = D"),
              UnorderedElementsAre("s1|d2|5", "s1|d1|6", "s2|d3|7", "s3|NULL|NULL"));
}

TEST_F(Associations, AnAssociationClassInFromThatNobodyNamesIsNotFetched) {
  const QueryOutcome outcome = world.run("SELECT S.Name, D.Name FROM S, D, Assoc WHERE Assoc = S AND Assoc = D");
  EXPECT_THAT(outcome.rows, ElementsAre("s1|d2", "s1|d1", "s2|d3"));
  EXPECT_THAT(outcome.log, Not(Contains(HasSubstr("enumerate instance call for 'ASSOC'"))));
}

TEST_F(Associations, UnderOrTheLastOperandDecides) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE D.Size = 1 OR Assoc = S AND Assoc = D"),
              ElementsAre("s1|d2", "s1|d1", "s2|d3"));
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Assoc = S AND Assoc = D OR D.Size = 1"),
              ElementsAre("s1|d1", "s2|d1", "s3|d1"));
}

TEST_F(Associations, ParseFaults) {
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

// The destination is one more column of rows that do not exist yet, whatever is done with them next.
TEST_F(Associations, RowsNeedNotExistForThem) {
  FetchedStatement fetched("SELECT S.Name, D.Name FROM S, D WHERE Assoc *= S AND Assoc = D");
  fetched.query->getWhereClause()->execute(fetched.symbols, fetched.table, nullptr, "root/cimv2");
  ASSERT_NE(fetched.table->lazy(), nullptr);
  EXPECT_EQ(fetched.table->getRowCount(), 4U);
  for (const char* const rest : {"ORDER BY D.Size DESC", "AND D.Size > 1", "AND S.Name <> 's1' ORDER BY S.Name ASC",
                                 "AND D.Name IS NULL", "AND S.Name *= D.Name"}) {
    for (const char* const op : {"=", "*="}) {
      const std::string condition = std::string(" WHERE Assoc ") + op + " S AND Assoc = D " + rest;
      world.run("SELECT S.Name, D.Name, OBJECTPATH(D) AS P FROM S, D" + condition);
      world.run("SELECT FIRST 2 D.*, INSTANCEOF(S) AS W FROM S, D" + condition);
      world.run("SELECT COUNT(D.Name) AS N FROM S, D" + condition);
    }
  }
}

TEST_F(Associations, AnUnknownAssociationHasNoAssociates) {
  EXPECT_THAT(world.rows("SELECT S.Name, D.Name FROM S, D WHERE Nope = S AND Nope = D"), IsEmpty());
}

}  // namespace
