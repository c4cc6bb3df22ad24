// Fetching: one enumeration per class with the properties that the query needs,
// the cross product's order, and the filtered fetch.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_Helper.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "QueryWorld.h"
#include "cimom/CQoriValue.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kModel[] = R"(
class A { [key] uint32 Id; string Name; uint32 Size; };
class B { [key] uint32 Id; string Title; uint32 Size; };
class Empty { [key] uint32 Id; };
instance of A { Id = 1; Name = "a1"; Size = 10; };
instance of A { Id = 2; Name = "a2"; Size = 20; };
instance of B { Id = 1; Title = "b1"; Size = 10; };
instance of B { Id = 2; Title = "b2"; Size = 30; };
instance of B { Id = 3; Title = "b3"; Size = 20; };
)";

// Serves two instances of a class and records what it was asked.
class RecordingProvider : public InstanceProvider {
 public:
  explicit RecordingProvider(const char* className) : _className(className) {}
  QORString getClassName() const override { return _className; }
  void enumerate(const Request& request, const Emit& emit) override {
    std::vector<std::string> names;
    for (const QORString& name : request.propertyNames) names.push_back(QueryWorld::textOf(name));
    std::sort(names.begin(), names.end());
    requests.push_back(names);
    queries.push_back(request.transaction.IsNull() ? "" : QueryWorld::textOf(request.transaction->getQueryString()));
    for (unsigned int id = 1; id <= 2; ++id) {
      std::vector<QORSmrPtr<IQoriValue>> values;
      for (const QORString& name : request.propertyNames) {
        values.push_back(name == "Id" ? QORSmrPtr<IQoriValue>(new CQoriValue(id, CQoriType::uint32))
                                      : QORSmrPtr<IQoriValue>());
      }
      emit(std::move(values));
    }
  }
  std::vector<std::vector<std::string>> requests;
  std::vector<std::string> queries;

 private:
  QORString _className;
};

struct LiveWorld : QueryWorld {
  LiveWorld()
      : QueryWorld("class L { [key] uint32 Id; string P; string Q; string R; };"),
        provider(std::make_shared<RecordingProvider>("L")) {
    manager().registerProvider("root/cimv2", provider);
  }
  std::vector<std::string> requestOf(const std::string& query) {
    provider->requests.clear();
    provider->queries.clear();
    const QueryOutcome outcome = runIn(query, QORQL_DataTable::kExecutionLazy);
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(provider->requests.size(), 1U) << query;
    return provider->requests.empty() ? std::vector<std::string>() : provider->requests.front();
  }
  std::shared_ptr<RecordingProvider> provider;
};

TEST(Retrieval, ExactlyThePropertiesOfTheQueryAreRequested) {
  LiveWorld world;
  EXPECT_THAT(world.requestOf("SELECT P FROM L"), ElementsAre("Id", "P"));
  EXPECT_THAT(world.requestOf("SELECT P FROM L WHERE Q = 'x'"), ElementsAre("Id", "P", "Q"));
  EXPECT_THAT(world.requestOf("SELECT P FROM L WHERE L.Q = 'x'"), ElementsAre("Id", "P", "Q"));
  EXPECT_THAT(world.requestOf("SELECT P FROM L ORDER BY Id ASC"), ElementsAre("Id", "P"));
  EXPECT_THAT(world.requestOf("SELECT p AS X FROM L WHERE P = 'x' AND l.p = 'y'"), ElementsAre("Id", "P"));
  EXPECT_THAT(world.requestOf("SELECT * FROM L"), ElementsAre("Id", "P", "Q", "R"));
  EXPECT_THAT(world.requestOf("SELECT L.* FROM L"), ElementsAre("Id", "P", "Q", "R"));
  EXPECT_THAT(world.requestOf("SELECT OBJECTPATH(L) AS O FROM L"), ElementsAre("Id"));
}

TEST(Retrieval, TheQueryTextReachesTheProvider) {
  LiveWorld world;
  world.requestOf("SELECT P FROM L");
  EXPECT_THAT(world.provider->queries, ElementsAre("SELECT P FROM L"));
}

TEST(Retrieval, EachClassIsFetchedOnce) {
  QueryWorld world(kModel);
  const QueryOutcome outcome =
      world.run("SELECT A.Name FROM A, B WHERE A.Size = B.Size AND A.Name <> 'x' ORDER BY A.Name ASC");
  EXPECT_THAT(outcome.log, ElementsAre("CQL/4: Issued an enumerate instance call for 'A'",
                                       "CQL/4: Issued an enumerate instance call for 'B'"));
}

TEST(Retrieval, CrossProductIsRowMajor) {
  QueryWorld world(kModel);
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B"), ElementsAre("1|1", "1|2", "1|3", "2|1", "2|2", "2|3"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM B, A"), ElementsAre("1|1", "2|1", "1|2", "2|2", "1|3", "2|3"));
}

TEST(Retrieval, ClassWithoutInstancesGivesAColumnWithoutRows) {
  QueryWorld world(kModel);
  EXPECT_THAT(world.rows("SELECT Id FROM Empty"), IsEmpty());
}

TEST(Retrieval, EmptyClassAfterRowsGivesNullCells) {
  QueryWorld world(kModel);
  EXPECT_THAT(world.rows("SELECT A.Id, Empty.Id FROM A, Empty"), ElementsAre("1|NULL", "2|NULL"));
}

TEST(Retrieval, EmptyClassBeforeRowsGivesNullCells) {
  QueryWorld world(kModel);
  EXPECT_THAT(world.rows("SELECT Empty.Id, A.Id FROM Empty, A"), ElementsAre("NULL|1", "NULL|2"));
}

TEST(Retrieval, UnknownClassFails) {
  QueryWorld world(kModel);
  EXPECT_EQ(world.error("SELECT * FROM Nope"), "runtime 3: Enumerateinstance call for 'NOPE' returned NULL");
  EXPECT_THAT(world.run("SELECT * FROM Nope").log,
              ElementsAre("CQL/4: Issued an enumerate instance call for 'NOPE'",
                          "CQL/1: Enumerateinstance call for 'NOPE' returned NULL"));
}

struct HelperWorld : QueryWorld {
  HelperWorld() : QueryWorld(kModel), table(new QORQL_DataTable()) {}
  // Parses a statement and returns its one condition.
  QORSmrPtr<QORQL_Evaluatable> conditionOf(const char* text) {
    const QORString query(text);
    QORQL_Lexer lexer(query, false);
    parsed = QORQL_Query::parse(symbols, lexer, false, query, "", "root/cimv2");
    const auto& where = dynamic_cast<QORQL_WhereClause&>(*dynamic_cast<QORQL_Query&>(*parsed).getWhereClause());
    const auto& expression = dynamic_cast<QORQL_Expression&>(*where.getExpression());
    const auto& term = dynamic_cast<QORQL_ExpressionTerm&>(*expression.getExpressionTerm());
    return dynamic_cast<QORQL_ExpressionFactor&>(*term.getExpressionFactor()).getComparison();
  }
  void fetch(const char* name) { QORQL_Helper::updateTable(name, symbols, table, "root/cimv2", "", ""); }
  void fetchFiltered(const char* name, const QORSmrPtr<QORQL_Evaluatable>& condition, int op) {
    QORQL_Helper::updateTable(name, symbols, table, "root/cimv2", condition, static_cast<QORQL_Operator>(op), "", "");
  }
  QORSmrPtr<QORQL_Executable> parsed;
  QORQL_SymbolTable symbols{nullptr};
  QORSmrPtr<QORQL_DataTable> table;
};

TEST(Retrieval, UnknownNameIsRefusedAsWritten) {
  HelperWorld world;
  try {
    world.fetch("nope");
    FAIL();
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getCode(), 5U);
    EXPECT_EQ(error.getMessage(), "Unable to locate the symbol for 'nope'");
  }
}

TEST(Retrieval, FilteredFetchKeepsRowsThatSatisfyTheComparison) {
  HelperWorld world;
  const QORSmrPtr<QORQL_Evaluatable> condition(world.conditionOf("SELECT A.Id FROM A, B WHERE A.Size = B.Size"));
  world.fetch("A");
  world.fetchFiltered("B", condition, QORQL_OperatorNONE);
  EXPECT_EQ(world.table->getRowCount(), 2U);
}

TEST(Retrieval, FilteredFetchInvertsForTheTokenCodeOfNotAlone) {
  HelperWorld world;
  const QORSmrPtr<QORQL_Evaluatable> condition(world.conditionOf("SELECT A.Id FROM A WHERE A.Size = 10"));
  world.fetchFiltered("A", condition, TokenNOT);
  ASSERT_EQ(world.table->getRowCount(), 1U);
  EXPECT_EQ(world.table->getRow(0)->getPropertyValueByName("A", "Size")->toString(), "20");
  world.table = new QORQL_DataTable();
  world.fetchFiltered("A", condition, QORQL_OperatorNOT);  // 14 is not 273
  ASSERT_EQ(world.table->getRowCount(), 1U);
  EXPECT_EQ(world.table->getRow(0)->getPropertyValueByName("A", "Size")->toString(), "10");
}

TEST(Retrieval, FilteredFetchKeepsRowsThatCannotBeCompared) {
  HelperWorld world;
  const QORSmrPtr<QORQL_Evaluatable> condition(world.conditionOf("SELECT A.Id FROM A, B WHERE A.Size LIKE B.Title"));
  world.fetchFiltered("A", condition, QORQL_OperatorNONE);  // LIKE throws: kept
  EXPECT_EQ(world.table->getRowCount(), 2U);
}

TEST(Retrieval, FilteredFetchKeepsRowsWhoseComparisonIsNull) {
  HelperWorld world;
  const QORSmrPtr<QORQL_Evaluatable> condition(world.conditionOf("SELECT A.Id FROM A, B WHERE A.Size = B.Size"));
  world.fetchFiltered("A", condition, QORQL_OperatorNONE);  // there is no B yet
  EXPECT_EQ(world.table->getRowCount(), 2U);
  world.fetchFiltered("B", condition, QORQL_OperatorNONE);
  EXPECT_EQ(world.table->getRowCount(), 2U);
}

TEST(Retrieval, FilteredFetchOfAnOuterJoinKeepsEveryCombination) {
  HelperWorld world;
  const QORSmrPtr<QORQL_Evaluatable> condition(world.conditionOf("SELECT A.Id FROM A, B WHERE A.Size *= B.Size"));
  world.fetch("A");
  world.fetchFiltered("B", condition, QORQL_OperatorNONE);
  EXPECT_EQ(world.table->getRowCount(), 6U);
}

TEST(Retrieval, NullTableOrListIsRefused) {
  QORSmrPtr<QORQL_DataTable> none;
  const auto message = [&](QORSmrPtr<QORQL_DataTable>& table, const QORQL_Helper::ObjectList& objects) {
    try {
      QORQL_Helper::addObjectToTable(table, objects, "A", "A");
    } catch (const QORQL_Exception& error) {
      EXPECT_EQ(error.getCode(), 3U);
      return QueryWorld::textOf(error.getMessage());
    }
    return std::string();
  };
  EXPECT_EQ(message(none, QORQL_Helper::ObjectList()), "Error occured when adding object to table - table is null");
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  EXPECT_EQ(message(table, QORQL_Helper::ObjectList()),
            "Error occured when adding object to table - qoriobject is null");
}

TEST(Retrieval, NullObjectsAreSkipped) {
  HelperWorld world;
  QORQL_Helper::ObjectList objects(new QORValSlist<QORSmrPtr<IQoriObject>>());
  objects->append(QORSmrPtr<IQoriObject>());
  QORQL_Helper::addObjectToTable(world.table, objects, "A", "A");
  EXPECT_EQ(world.table->getRowCount(), 0U);
  EXPECT_EQ(world.table->getColumnCount(), 1U);
}

TEST(Retrieval, NumericTypeNames) {
  for (const char* name :
       {"uint8", "UINT16", "uint32", "uint64", "sint8", "sint16", "sint32", "Sint64", "real32", "real64"}) {
    EXPECT_TRUE(QORQL_Helper::isNumeric(name)) << name;
  }
  for (const char* name : {"string", "boolean", "datetime", "char16", "uint", "reference", ""}) {
    EXPECT_FALSE(QORQL_Helper::isNumeric(name)) << name;
  }
}

}  // namespace
