// Every allocation of a query and of a match fails once, alone or with all after
// it. What comes out is the result, or an error that says so; nothing leaks, and
// the next run is as if nothing had been.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "AllocationFaults.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/CQLFilterSet.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_StatementPlaces.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "FaultRun.h"

namespace {

constexpr unsigned long kNever = ~0UL;
constexpr int kWarmUps = 10;  // until the object manager's caches hold what they will

using Mode = QORQL_DataTable::ExecutionMode;

// A row function that cannot be computed leaves the value of the row before; the column after them is untouched.
bool differsInRowFunctions(const FaultOutcome& outcome, const FaultOutcome& expected) {
  const auto last = [](const std::string& row) { return row.substr(row.rfind('|')); };
  return outcome.error.empty() &&
         std::equal(outcome.rows.begin(), outcome.rows.end(), expected.rows.begin(), expected.rows.end(),
                    [&](const std::string& a, const std::string& b) { return last(a) == last(b); });
}

// Failures that the engine reports by log line and goes on, or by an error of its own.
bool isStated(const std::string& query, const FaultOutcome& outcome, const FaultOutcome& expected) {
  if (outcome == expected || outcome.error == "std: std::bad_alloc") return true;
  if (query.find("OBJECTPATH") != query.npos && differsInRowFunctions(outcome, expected)) return true;
  if (outcome.error == "runtime 3: Caught an exception while sorting the data.") return true;
  return outcome.hasLogged("Caught an exception occured while building the results table.") ||
         outcome.hasLogged("Caught an exception occured while streaming the data.") ||
         outcome.hasLogged("An unknown exception occured when retrieving") ||
         outcome.hasLogged("GetInstance failed while evaluating row for function 'INSTANCEOF'");
}

// Blocks that an action leaves behind each time. A first time may fill a cache of the object manager.
template <class Action>
long leakOf(Action action) {
  const long before = AllocationFaults::live();
  action();
  if (AllocationFaults::live() == before) return 0;
  const long once = AllocationFaults::live();
  action();
  return AllocationFaults::live() - once;
}

// In a thread of its own, so that what the object manager keeps for a thread is gone afterwards.
template <class Action>
void inThread(Action action) {
  std::thread(action).join();
}

// Even a statement that does not parse allocates more often; objects in slabs do so by themselves only where addresses
// are watched.
constexpr unsigned long kFewest = QORQL_ADDRESSES_ARE_WATCHED == 1 ? 20 : 8;

class FailingQuery : public testing::TestWithParam<std::tuple<std::size_t, Mode, bool>> {
 protected:
  // Whether an allocation failed.
  bool failAt(unsigned long k, const FaultOutcome& expected) {
    const auto [index, mode, isLasting] = GetParam();
    AllocationFaults::arm(k, isLasting);
    const FaultOutcome outcome = world.query(kFaultQueries.at(index), mode);
    AllocationFaults::disarm();
    const bool hasFailed = AllocationFaults::hasFailed();
    EXPECT_TRUE(hasFailed ? isStated(kFaultQueries.at(index), outcome, expected) : outcome == expected)
        << testing::PrintToString(outcome);
    EXPECT_EQ(world.query(kFaultQueries.at(index), mode), expected) << "the query after the failure";
    return hasFailed;
  }

  FaultWorld world;
};

TEST_P(FailingQuery, AtEveryAllocation) {
  const auto [index, mode, isLasting] = GetParam();
  const FaultOutcome expected = world.query(kFaultQueries.at(index), mode);
  for (int i = 0; i < kWarmUps; ++i) inThread([&] { failAt(kNever, expected); });
  bool hasFailed = true;
  for (unsigned long k = 1; hasFailed; ++k) {
    EXPECT_EQ(leakOf([&] { inThread([&, k] { hasFailed = failAt(k, expected); }); }), 0) << "blocks leak";
    if (HasFailure()) FAIL() << "allocation " << k << " of " << kFaultQueries.at(index);
    ASSERT_TRUE(hasFailed || k > kFewest) << "faults struck";
  }
}

INSTANTIATE_TEST_SUITE_P(Each, FailingQuery,
                         testing::Combine(testing::Range<std::size_t>(0, kFaultQueries.size()),
                                          testing::Values(QORQL_DataTable::kExecutionLazy,
                                                          QORQL_DataTable::kExecutionPlain),
                                          testing::Bool()));

// A change of a set that fails changes nothing, and a later one succeeds.
class FailingSet : public testing::TestWithParam<bool> {
 protected:
  using Statement = CQLFilterSet::Statement;

  // The properties are many, so that a change is often the first of its property.
  static constexpr std::size_t kProperties = 30;

  static std::string propertyOf(std::size_t number) { return "P" + std::to_string(number % kProperties); }
  static std::string conditionOf(std::size_t number) {
    if (number % 3 == 2) return "ANY Numbers[*] = 3";
    return propertyOf(number) + (number % 3 == 0 ? " = " : " > ") + std::to_string(number);
  }
  Statement statement(const std::string& condition) {
    Statement made(
        new CQLQueryStatement("CQL", QORString("SELECT * FROM T_Fault WHERE " + condition), "root/cimv2", ""));
    EXPECT_EQ(made->validate(), QUERY_VALIDATE_SUCCESS);
    return made;
  }
  // Whether an allocation failed during the change.
  template <class Change>
  static bool failAt(unsigned long k, bool isLasting, Change change) {
    AllocationFaults::arm(k, isLasting);
    try {
      change();
    } catch (const std::bad_alloc&) {
    }
    AllocationFaults::disarm();
    return AllocationFaults::hasFailed();
  }
  // Tries the change with each allocation failing until it succeeds, and looks at the set after each failure.
  template <class Change>
  void insist(CQLFilterSet& set, const QORSmrPtr<IQoriObject>& instance, const Statement& later, Change change) {
    constexpr CQLFilterSet::Handle kLater = 1000;
    std::vector<CQLFilterSet::Handle> before;
    std::vector<CQLFilterSet::Handle> after;
    set.match(instance, "root/cimv2", before);
    const std::size_t size = set.size();
    for (unsigned long k = 1; failAt(k, GetParam(), change) && set.size() == size; ++k) {
      set.match(instance, "root/cimv2", after);
      ASSERT_EQ(after, before) << "allocation " << k;
      // A later filter by the same property is found.
      ASSERT_TRUE(set.add(kLater, later));
      set.match(instance, "root/cimv2", after);
      ASSERT_EQ(after.size(), before.size() + 1) << "allocation " << k;
      ASSERT_EQ(after.back(), kLater);
      ASSERT_TRUE(set.remove(kLater));
    }
  }
};

TEST_P(FailingSet, AtEveryAllocationOfEachChange) {
  std::string declared;
  std::string given;
  for (std::size_t i = 0; i < kProperties; ++i) {
    declared += " uint8 " + propertyOf(i) + ";";
    given += " " + propertyOf(i) + " = 9;";
  }
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  MofLoader(manager.sink()).loadText("class T_Fault { [key] uint8 U8; uint8 Numbers[];" + declared + " };", "model");
  const QORSmrPtr<IQoriObject> instance =
      MofLoader(manager.sink())
          .readInstances("instance of T_Fault { U8 = 1; Numbers = {3};" + given + " };", "instance")
          .at(0);
  const long before = AllocationFaults::live();
  {
    CQLFilterSet set;
    std::vector<Statement> statements;
    std::vector<Statement> later;
    for (std::size_t i = 0; i < 60; ++i) {
      statements.push_back(statement(conditionOf(i)));
      later.push_back(statement(propertyOf(i) + " = 9"));
    }
    for (std::size_t i = 0; i < statements.size(); ++i) {
      insist(set, instance, later[i], [&] { set.add(i, statements[i]); });
      ASSERT_EQ(set.size(), i + 1);
    }
    for (std::size_t i = 0; i < statements.size(); ++i) {
      insist(set, instance, later[i], [&] { set.remove(i); });
      ASSERT_EQ(set.size(), statements.size() - i - 1);
    }
  }
  EXPECT_LE(AllocationFaults::live(), before + 16) << "blocks leak";
}

INSTANTIATE_TEST_SUITE_P(Each, FailingSet, testing::Bool());

// A match says no where it cannot know, validation refuses, lists throw.
bool isStatedStep(const std::string& step, const std::string& expected) {
  return step == expected || step == "no match" || step == "validity " + std::to_string(QUERY_INVALID_QUERY) ||
         step == "std: std::bad_alloc" || step.ends_with("CQL internal error") ||
         step.ends_with("query is not validated ");
}

class FailingMatch : public testing::TestWithParam<std::tuple<std::size_t, bool>> {
 protected:
  // Whether an allocation failed.
  bool failAt(unsigned long k, const QORSmrPtr<IQoriObject>& indication, const FaultOutcome& expected) {
    const auto [index, isLasting] = GetParam();
    AllocationFaults::arm(k, isLasting);
    const FaultOutcome outcome = world.match(kFaultFilters.at(index), indication);
    AllocationFaults::disarm();
    const bool hasFailed = AllocationFaults::hasFailed();
    EXPECT_TRUE(hasFailed || outcome == expected) << testing::PrintToString(outcome);
    EXPECT_NE(outcome.rows.at(0), "std: std::bad_alloc") << "validation never throws";
    for (std::size_t i = 0; i < outcome.rows.size(); ++i) {
      EXPECT_TRUE(isStatedStep(outcome.rows[i], expected.rows.size() > i ? expected.rows[i] : ""))
          << testing::PrintToString(outcome);
    }
    EXPECT_EQ(world.match(kFaultFilters.at(index), indication), expected) << "the match after the failure";
    return hasFailed;
  }
  void failAtEach(const QORSmrPtr<IQoriObject>& indication) {
    const FaultOutcome expected = world.match(kFaultFilters.at(std::get<0>(GetParam())), indication);
    for (int i = 0; i < kWarmUps; ++i) inThread([&] { failAt(kNever, indication, expected); });
    bool hasFailed = true;
    for (unsigned long k = 1; hasFailed; ++k) {
      EXPECT_EQ(leakOf([&] { inThread([&, k] { hasFailed = failAt(k, indication, expected); }); }), 0) << "blocks leak";
      if (HasFailure()) FAIL() << "allocation " << k << " of " << kFaultFilters.at(std::get<0>(GetParam()));
      ASSERT_TRUE(hasFailed || k > 10) << "faults struck";
    }
  }

  FaultWorld world;
};

TEST_P(FailingMatch, AtEveryAllocation) {
  for (const QORSmrPtr<IQoriObject>& indication : world.indications(kFaultIndications)) failAtEach(indication);
}

INSTANTIATE_TEST_SUITE_P(Each, FailingMatch,
                         testing::Combine(testing::Range<std::size_t>(0, kFaultFilters.size()), testing::Bool()));

// The error matters more than where it is.
TEST(FailingPlace, LeavesTheErrorAsItIs) {
  const FaultWorld world;
  const QORString text("SELECT t.Name FROM T_Disk AS t WHERE t.Nope = 1");
  QORQL_Lexer lexer(text, false);
  QORQL_SymbolTable symbols(nullptr);
  const auto query = QORQL_Query::parse(symbols, lexer, false, text, "CQL", "root/cimv2").StaticCast<QORQL_Query>();
  QORQL_Exception error(QORQL_Exception::QORQL_INTERNAL_ERROR, "it fails",
                        {QORQL_Fault::kPropertyMissing, "Nope", "t", QORQL_Fault::kNowhere});
  AllocationFaults::arm(1, true);
  EXPECT_NO_THROW(QORQL_placeFault(*query, error));
  AllocationFaults::disarm();
  EXPECT_TRUE(AllocationFaults::hasFailed());
  EXPECT_FALSE(error.getFault().hasPlace());
  EXPECT_EQ(error.getMessage(), "it fails");
  QORQL_placeFault(*query, error);
  EXPECT_EQ(error.getFault().offset, text.find("Nope"));
}

}  // namespace
