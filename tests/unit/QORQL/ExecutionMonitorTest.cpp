// What a monitor sees of a query, and how it stops one, in both modes.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "QueryWorld.h"

namespace {

using testing::ElementsAre;

std::string modelText() {
  std::string text =
      "class A { [key] uint32 Id; string T; };\n"
      "class B { [key] uint32 Id; uint32 K; };\n"
      "[association] class L { [key] A REF Left; [key] B REF Right; };\n";
  for (int i = 0; i < 110; ++i) {
    const std::string id = std::to_string(i);
    text += "instance of A { Id = " + id + "; T = \"t" + id + "\"; };\n";
    text += "instance of B { Id = " + id + "; K = 7; };\n";
  }
  return text + "instance of L { Left = \"A.Id=1\"; Right = \"B.Id=2\"; };\n";
}

// Notes what it is told; stops when it has been asked often enough.
class Recorder : public QORQL_ExecutionMonitor {
 public:
  explicit Recorder(int limit = INT_MAX) : _limit(limit) {}
  bool isStopRequested() noexcept override { return ++questions > _limit; }
  void stepBegins(Step step, const QORString& subject) noexcept override {
    constexpr const char* kNames[] = {"fetch", "condition", "sort", "project"};
    steps.push_back(std::string(depth++, ' ') + kNames[step] + (subject.isEmpty() ? "" : " ") +
                    QueryWorld::textOf(subject));
  }
  void stepEnds(Step /*step*/) noexcept override { --depth; }
  void conditionApplied(const QORQL_Comparison& /*comparison*/, Method method) noexcept override {
    methods.push_back(method);
  }

  std::vector<std::string> steps;
  std::vector<Method> methods;
  int questions = 0;
  std::size_t depth = 0;

 private:
  int _limit;
};

struct ExecutionMonitor : testing::Test {
  QueryWorld world{modelText()};

  QueryOutcome run(QORQL_ExecutionMonitor& monitor, const char* query,
                   QORQL_DataTable::ExecutionMode mode = QORQL_DataTable::kExecutionLazy) {
    const QORQL_MonitorScope scope(monitor);
    return world.runIn(query, mode);
  }
};

TEST_F(ExecutionMonitor, SeesTheStepsInOrder) {
  Recorder recorder;
  EXPECT_EQ(run(recorder, "SELECT T FROM A WHERE Id < 5 ORDER BY T ASC").rows.size(), 5U);
  EXPECT_THAT(recorder.steps, ElementsAre("fetch A", "condition", "project", "sort", "project"));
  EXPECT_EQ(recorder.depth, 0U);
}

TEST_F(ExecutionMonitor, SeesTheFetchesInsideACondition) {
  Recorder recorder;
  run(recorder, "SELECT A.T, B.K FROM A, B, L WHERE L = A AND L = B AND A.Id = 1");
  EXPECT_THAT(recorder.steps, testing::IsSupersetOf({"fetch A", " fetch B"}));
}

TEST_F(ExecutionMonitor, SeesHowConditionsAreApplied) {
  const auto methodsOf = [this](const char* query) {
    Recorder recorder;
    run(recorder, query);
    return recorder.methods;
  };
  using Monitor = QORQL_ExecutionMonitor;
  EXPECT_THAT(methodsOf("SELECT T FROM A WHERE Id < 5 AND Id > 2"),
              ElementsAre(Monitor::kMethodFilter, Monitor::kMethodFilter));
  EXPECT_THAT(methodsOf("SELECT T FROM A, B WHERE A.Id = B.Id"), ElementsAre(Monitor::kMethodHashJoin));
  EXPECT_THAT(methodsOf("SELECT T FROM A, B WHERE A.Id < B.Id"), ElementsAre(Monitor::kMethodKeyJoin));
  EXPECT_THAT(methodsOf("SELECT T FROM A, B WHERE A.Id + B.Id = 4"), ElementsAre(Monitor::kMethodFilteredProduct));
}

TEST_F(ExecutionMonitor, ChangesNothingThatAQueryGives) {
  for (const char* query : {"SELECT * FROM A", "SELECT T, K FROM A, B WHERE A.Id = B.Id ORDER BY T DESC",
                            "SELECT MAX(Id) AS M FROM A", "SELECT T FROM A WHERE T + 1 = 2"}) {
    Recorder recorder;
    EXPECT_EQ(run(recorder, query), world.run(query)) << query;
  }
}

// Stops at every question that a query asks, and expects an end in order each time.
TEST_F(ExecutionMonitor, StopsAQueryWhereverItIs) {
  for (const auto mode : {QORQL_DataTable::kExecutionLazy, QORQL_DataTable::kExecutionPlain}) {
    for (const char* query :
         {"SELECT A.T FROM A, B WHERE A.Id + B.Id = 4 ORDER BY A.T ASC", "SELECT A.Id FROM A, B WHERE A.Id < B.Id",
          "SELECT A.Id, B.Id FROM A, B", "SELECT SUM(A.Id) AS S FROM A, B", "SELECT A.T FROM A, B WHERE A.Id *= B.Id",
          "SELECT B.K FROM A, B, L WHERE L = A AND L = B"}) {
      Recorder whole;
      const QueryOutcome expected = run(whole, query, mode);
      ASSERT_EQ(expected.error, "") << query;
      for (int limit = 0; limit < whole.questions; limit += 1 + whole.questions / 12) {
        Recorder recorder(limit);
        const QueryOutcome outcome = run(recorder, query, mode);
        EXPECT_EQ(outcome.error, "runtime 3: The query was stopped.") << query << " at question " << limit;
        EXPECT_EQ(recorder.questions, limit + 1) << query;
        EXPECT_EQ(recorder.depth, 0U) << query;
      }
      EXPECT_EQ(world.runIn(query, mode), expected) << query;
    }
  }
}

// Asks for the stop once the sort has begun.
class SortStopper : public QORQL_ExecutionMonitor {
 public:
  bool isStopRequested() noexcept override { return _isSorting; }
  void stepBegins(Step step, const QORString& /*subject*/) noexcept override {
    _isSorting = _isSorting || step == kStepSort;
  }

 private:
  bool _isSorting = false;
};

TEST_F(ExecutionMonitor, StopsASortOnItsWay) {
  for (const auto mode : {QORQL_DataTable::kExecutionLazy, QORQL_DataTable::kExecutionPlain}) {
    for (const char* key : {"A.T", "A.Id", "A.Id + B.Id"}) {
      SortStopper stopper;
      const std::string query = std::string("SELECT A.T FROM A, B ORDER BY ") + key + " ASC";
      const QueryOutcome outcome = run(stopper, query.c_str(), mode);
      EXPECT_EQ(outcome.error, "runtime 3: The query was stopped.") << query;
    }
  }
}

TEST_F(ExecutionMonitor, LogsNothingWhenItStops) {
  Recorder recorder(4);
  const QueryOutcome outcome = run(recorder, "SELECT A.Id, B.Id FROM A, B");
  EXPECT_EQ(outcome.error, "runtime 3: The query was stopped.");
  for (const std::string& line : outcome.log) EXPECT_THAT(line, testing::Not(testing::HasSubstr("CQL/1"))) << line;
}

class EarlyEndRecorder : public QORQL_ExecutionMonitor {
 public:
  void resultEndsEarly(const std::exception_ptr& cause) noexcept override { causes.push_back(cause); }
  std::vector<std::exception_ptr> causes;
};

std::string messageOf(const std::exception_ptr& cause) {
  try {
    std::rethrow_exception(cause);
  } catch (const QoriBaseException& error) {
    return QueryWorld::textOf(error.getMessage());
  }
}

TEST_F(ExecutionMonitor, IsToldWhatEndsAResultEarly) {
  for (const auto mode : {QORQL_DataTable::kExecutionLazy, QORQL_DataTable::kExecutionPlain}) {
    EarlyEndRecorder recorder;
    const QueryOutcome outcome = run(recorder, "SELECT A.T, A.Nope FROM A", mode);
    EXPECT_EQ(outcome.error, "");
    EXPECT_THAT(outcome.log, testing::Contains("CQL/1: Caught an exception occured while building the results table."));
    ASSERT_EQ(recorder.causes.size(), 1U);
    EXPECT_EQ(messageOf(recorder.causes.front()), "A non-existent property - 'Nope' was requested from class - 'A'");
  }
}

TEST_F(ExecutionMonitor, IsToldWhatEndsTheStreamEarly) {
  for (const auto mode : {QORQL_DataTable::kExecutionLazy, QORQL_DataTable::kExecutionPlain}) {
    EarlyEndRecorder recorder;
    const QORQL_MonitorScope scope(recorder);
    world.runIn("SELECT Id, 1 / (Id - 1) AS Q FROM A", mode);
    ASSERT_EQ(recorder.causes.size(), 1U);
    EXPECT_EQ(messageOf(recorder.causes.front()), "Division by zero");
  }
}

TEST_F(ExecutionMonitor, InnerScopesHideOuterOnes) {
  Recorder outer;
  const QORQL_MonitorScope scope(outer);
  Recorder inner;
  run(inner, "SELECT T FROM A");
  EXPECT_TRUE(outer.steps.empty());
  world.runIn("SELECT T FROM A", QORQL_DataTable::kExecutionLazy);
  EXPECT_FALSE(outer.steps.empty());
}

constexpr const char* kGrowing[] = {"SELECT A.T, B.K FROM A, B", "SELECT A.T, B.K FROM A, B WHERE B.K = 7",
                                    "SELECT A.T, B.K FROM A, B WHERE A.Id < B.K + 200",
                                    "SELECT A.T, B.K FROM A, B WHERE A.Id * B.K >= 0",
                                    "SELECT A.Id + B.Id AS S FROM A, B"};

TEST_F(ExecutionMonitor, ABudgetBoundsTheRowsOfATable) {
  for (const char* const query : kGrowing) {
    for (const auto mode : {QORQL_DataTable::kExecutionLazy, QORQL_DataTable::kExecutionPlain}) {
      const QORQL_RowBudget small(40000);
      const QueryOutcome stopped = world.runIn(query, mode);
      EXPECT_TRUE(small.isExceeded()) << query;
      EXPECT_EQ(stopped.rows.size(), 0U) << query;
      const QORQL_RowBudget large(100000000);
      EXPECT_EQ(world.runIn(query, mode).rows.size(), 12100U) << query;
      EXPECT_FALSE(large.isExceeded());
      EXPECT_GT(large.greatest(), 40000U) << query;
    }
  }
}

TEST_F(ExecutionMonitor, AQueryWithoutABudgetHoldsWhatItNeeds) {
  { const QORQL_RowBudget over(10); }
  EXPECT_EQ(QORQL_currentRowBudget(), nullptr);
  EXPECT_EQ(world.runIn("SELECT A.T, B.K FROM A, B", QORQL_DataTable::kExecutionLazy).rows.size(), 12100U);
}

}  // namespace
