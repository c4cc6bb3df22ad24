// The face of the engine: one call from text to columns and rows, and what it throws.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/Face/QORQL_Statement.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/CQoriType.h"
#include "qorql.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kNameSpace = "root/face";

constexpr const char* kModel = R"mof(
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
class Face_Item { [Key] string Name; uint32 Stock; string Notes[]; };
class Face_Empty { [Key] string Id; uint8 Level; };
class Face_Broken { [Key] string Id; };
instance of Face_Item { Name = "lamp"; Stock = 3; };
instance of Face_Item { Name = "chair"; Notes = {"red"}; };
)mof";

class BrokenProvider : public InstanceProvider {
 public:
  QORString getClassName() const override { return "Face_Broken"; }
  void enumerate(const Request& /*request*/, const Emit& /*emit*/) override {
    throw CQoriProviderException("Face_Broken", "no source", 1);
  }
};

class Watcher : public QORQL_ExecutionMonitor {
 public:
  bool isStopRequested() noexcept override { return isStopping; }
  void stepBegins(Step /*step*/, const QORString& /*subject*/) noexcept override { ++begins; }
  void stepEnds(Step /*step*/) noexcept override { ++ends; }
  void conditionApplied(const QORQL_Comparison& /*comparison*/, Method /*method*/) noexcept override { ++conditions; }

  bool isStopping = false;
  int begins = 0;
  int ends = 0;
  int conditions = 0;
};

class Face : public ::testing::Test {
 protected:
  Face() {
    _manager.makeCurrent();
    MofLoader(_manager.sink(), kNameSpace).loadText(kModel, "model");
    _manager.registerProvider(kNameSpace, std::make_shared<BrokenProvider>());
  }

  static QORQL_Statement statement(const char* text) { return QORQL_Statement(text, kNameSpace); }

  // Its rows, their cells behind one another with a bar between them.
  static std::vector<std::string> rowsOf(QORQL_Result result) {
    std::vector<std::string> rows;
    while (result.next()) {
      std::string& row = rows.emplace_back();
      for (std::size_t i = 0; i < result.columns().size(); ++i) {
        const QORString text(result.text(i));
        row += (i == 0 ? "" : "|") + (text.isNull() ? "NULL" : std::string(text.view()));
      }
    }
    return rows;
  }

  EmbeddedObjectManager _manager;
};

TEST_F(Face, OneCallGivesColumnsAndRows) {
  QORQL_Result result = statement("SELECT Name, Stock AS Left, Notes FROM Face_Item ORDER BY Name ASC").run();
  ASSERT_EQ(result.columns().size(), 3U);
  EXPECT_EQ(result.columns()[1].name, "LEFT");
  EXPECT_EQ(result.columns()[1].typeName, "uint32");
  EXPECT_TRUE(result.columns()[2].isArray);
  EXPECT_EQ(result.rowCount(), 2U);
  EXPECT_THAT(rowsOf(std::move(result)), ElementsAre("chair|NULL|red", "lamp|3|NULL"));
}

TEST_F(Face, ValuesAndViewsAreThoseOfTheRow) {
  QORQL_Result result = statement("SELECT Name, Stock FROM Face_Item WHERE Stock = 3").run();
  ASSERT_TRUE(result.next());
  EXPECT_EQ(result.value(1)->getUint32(), 3U);
  EXPECT_EQ(result.view(1).u, 3U);
  EXPECT_EQ(*result.view(0).text, "lamp");
  EXPECT_EQ(result.rowClass(), "Face_Item");
  EXPECT_FALSE(result.next());
}

TEST_F(Face, AResultIsWalkedAgain) {
  QORQL_Result result = statement("SELECT FIRST 1 Name, Stock + 1 AS S FROM Face_Item WHERE Stock = 3").run();
  ASSERT_TRUE(result.next());
  EXPECT_EQ(result.view(0).text->view(), "lamp");
  EXPECT_FALSE(result.next());
  result.restart();
  EXPECT_THAT(rowsOf(std::move(result)), ElementsAre("lamp|4"));
}

TEST_F(Face, WhatIsComputedHasATypeBeforeItRuns) {
  const auto typesOf = [](const char* text) {
    std::vector<std::string> types;
    for (const QORString& type : statement(text).computedTypes()) types.emplace_back(type.view());
    return types;
  };
  EXPECT_THAT(typesOf("SELECT Name, Stock AS S, Stock + 1 AS M, Stock * 1.5 AS R, -Stock AS N FROM Face_Item"),
              ElementsAre("", "", "uint64", "real64", "sint64"));
  EXPECT_THAT(typesOf("SELECT MIN(Stock) AS L, MAX(Stock) AS M, SUM(Stock - 5) AS S, AVG(Stock) AS A, COUNT(Name) AS N "
                      "FROM Face_Item"),
              ElementsAre("uint64", "uint64", "sint64", "real64", "uint64"));
  EXPECT_THAT(typesOf("SELECT MAX(Name) AS M FROM Face_Item"), ElementsAre(""));
  EXPECT_THAT(typesOf("SELECT OBJECTPATH(Face_Item) AS O FROM Face_Item"), ElementsAre(""));
  EXPECT_THAT(typesOf("SELECT *, Stock + 1 AS M FROM Face_Item"), IsEmpty());
}

TEST_F(Face, AResultOutlivesItsStatement) {
  std::optional<QORQL_Statement> kept(statement("SELECT Name FROM Face_Item WHERE Stock IS NULL"));
  QORQL_Result result = kept->run();
  kept.reset();
  EXPECT_THAT(rowsOf(std::move(result)), ElementsAre("chair"));
}

TEST_F(Face, AStatementRunsAgainOverWhatThereIsThen) {
  QORQL_Statement counting = statement("SELECT COUNT(Name) AS N FROM Face_Item");
  EXPECT_THAT(rowsOf(counting.run()), ElementsAre("2"));
  MofLoader(_manager.sink(), kNameSpace).loadText("instance of Face_Item { Name = \"desk\"; };", "more");
  EXPECT_THAT(rowsOf(counting.run()), ElementsAre("3"));
}

TEST_F(Face, AStreamTakesTheSameRows) {
  std::ostringstream xml;
  EXPECT_THAT(rowsOf(statement("SELECT Name FROM Face_Item WHERE Stock = 3").run(&xml)), ElementsAre("lamp"));
  EXPECT_THAT(xml.str(), HasSubstr("<TABLEROW>\n<VALUE>lamp</VALUE>\n</TABLEROW>\n"));
}

TEST_F(Face, TheStarOfAnEmptyClassHasTheColumnsThatAreDeclared) {
  QORQL_Statement all = statement("SELECT * FROM Face_Empty");
  EXPECT_THAT(all.run().columns(), IsEmpty());
  all.setDeclaredProperties([this](const QORString& className) {
    std::vector<QORString> names;
    for (const CimPropertyDeclaration& property : _manager.allProperties(kNameSpace, className)) {
      names.push_back(property.name);
    }
    return names;
  });
  const QORQL_Result result = all.run();
  ASSERT_EQ(result.columns().size(), 2U);
  EXPECT_EQ(result.columns()[1].name, "Level");
}

TEST_F(Face, AFaultOfTheTextHasItsLine) {
  try {
    statement("SELECT Name\nFROM Face_Item\nWHERE Stock >").run();
    FAIL() << "it ran";
  } catch (const QORQL_ParseException& error) {
    EXPECT_EQ(error.getLineNr(), 3U);
  }
}

TEST_F(Face, AFaultOfANameHasItsPlaceAndTheName) {
  QORQL_Statement wrong = statement("SELECT Name\nFROM Face_Item WHERE Price = 1");
  try {
    wrong.run();
    FAIL() << "it ran";
  } catch (const QoriBaseException& error) {
    const QORQL_Fault* const fault = QORQL_faultOf(error);
    ASSERT_NE(fault, nullptr);
    EXPECT_EQ(fault->kind, QORQL_Fault::kPropertyUnknown);
    EXPECT_EQ(fault->name, "Price");
    const QORQL_Place place = QORQL_placeOf(wrong.text().view(), fault->offset);
    EXPECT_EQ(place.line, 2U);
    EXPECT_EQ(place.column, 22U);
  }
}

TEST_F(Face, ATextThatFailedMayBeTriedAgain) {
  QORQL_Statement later = statement("SELECT Id FROM Face_Later WHERE Id = 'a'");
  EXPECT_THROW(later.parse(), QoriBaseException);
  MofLoader(_manager.sink(), kNameSpace)
      .loadText("class Face_Later { [Key] string Id; };\ninstance of Face_Later { Id = \"a\"; };", "later");
  EXPECT_THAT(rowsOf(later.run()), ElementsAre("a"));
}

TEST_F(Face, AProviderThatFailsIsHeard) {
  EXPECT_THROW(statement("SELECT Id FROM Face_Broken").run(), CQoriProviderException);
}

// The engine logs this and keeps the rows that it has; here nobody takes them for all.
TEST_F(Face, AResultThatEndsEarlyIsNone) {
  EXPECT_THROW(statement("SELECT Name, Stock / 0 AS X FROM Face_Item").run(), QoriBaseException);
}

TEST_F(Face, AFaultThatEndsAResultEarlyHasItsPlace) {
  QORQL_Statement wrong = statement("SELECT Name AS Price,\n i.Price FROM Face_Item AS i");
  try {
    wrong.run();
    FAIL() << "it ran";
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getFault().kind, QORQL_Fault::kPropertyMissing);
    ASSERT_TRUE(error.getFault().hasPlace());
    EXPECT_EQ(wrong.text().view().substr(error.getFault().offset), "Price FROM Face_Item AS i");
  }
}

TEST_F(Face, ALaterRunLeavesTheAggregatesOfAnEarlierResult) {
  QORQL_Statement last = statement("SELECT MAX(Stock) AS M, COUNT(Name) AS C FROM Face_Item");
  QORQL_Result before = last.run();
  ASSERT_TRUE(before.next());
  MofLoader(_manager.sink(), kNameSpace).loadText("instance of Face_Item { Name = \"mirror\"; Stock = 7; };", "more");
  EXPECT_THAT(rowsOf(last.run()), ElementsAre("7|3"));
  EXPECT_EQ(before.text(0), "3");
  EXPECT_EQ(before.view(1).u, 2U);
}

TEST_F(Face, TheMonitorOfTheThreadSeesTheRun) {
  Watcher watcher;
  const QORQL_MonitorScope scope(watcher);
  statement("SELECT Name FROM Face_Item WHERE Stock = 3").run();
  EXPECT_GE(watcher.begins, 3);
  EXPECT_EQ(watcher.begins, watcher.ends);
  EXPECT_EQ(watcher.conditions, 1);
  watcher.isStopping = true;
  EXPECT_THROW(statement("SELECT Name FROM Face_Item").run(), QORQL_StoppedException);
}

TEST_F(Face, SurprisesAndTheTreeAreThere) {
  QORQL_Statement wide = statement("SELECT Name FROM Face_Item WHERE Stock = 1 OR Stock = 3");
  EXPECT_FALSE(wide.surprises().empty());
  EXPECT_THAT(statement("SELECT Name FROM Face_Item").surprises(), IsEmpty());
  const QORQL_Explanation explanation(wide.query(), wide.symbols(), wide.nameSpace());
  EXPECT_EQ(explanation.steps().front().className, "Face_Item");
  EXPECT_EQ(wide.text(), "SELECT Name FROM Face_Item WHERE Stock = 1 OR Stock = 3");
}

TEST_F(Face, StatementsAndResultsMove) {
  QORQL_Statement first = statement("SELECT Name FROM Face_Item WHERE Stock = 3");
  QORQL_Statement second(std::move(first));
  QORQL_Result result = statement("SELECT Id FROM Face_Empty").run();
  result = second.run();
  EXPECT_THAT(rowsOf(std::move(result)), ElementsAre("lamp"));
}

}  // namespace
