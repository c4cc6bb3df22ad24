// A query that runs at the very end of the process gives what it gives before: nothing that it needs has been
// destroyed. SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

#include "tests/support/QueryRun.h"

namespace {

// Both stay to the end, as the object manager of a process does.
struct Outcomes {
  QueryOutcome plain;
  QueryOutcome lazy;

  friend bool operator==(const Outcomes&, const Outcomes&) = default;
};

// Both stay to the end, as the object manager of a process does.
QueryRun* theWorld = nullptr;
const Outcomes* theFirst = nullptr;

// Of a class that its source filters, so that the schema is asked for the qualifier that says so, lines are logged,
// objects are restricted, and types are named: of values, of an array, and of a column that no one type holds.
Outcomes run() {
  const std::string query = "SELECT K, Listed, OBJECTPATH(A) AS Path, K + 1 AS Next FROM A WHERE K > 1 ORDER BY K ASC";
  return {theWorld->runIn(query, QORQL_DataTable::kExecutionPlain),
          theWorld->runIn(query, QORQL_DataTable::kExecutionLazy)};
}

void runAgain() {
  if (theWorld == nullptr) return;
  const Outcomes last = run();
  PrintTo(last.plain, &std::cerr);
  PrintTo(last.lazy, &std::cerr);
  std::cerr << (last == *theFirst ? "the same\n" : "something else\n");
}

// Entered before the libraries make their objects, and so called when those are destroyed; what belongs
// to the thread, and what a query made once for the process, is gone long before.
void enterTheEnd() { std::atexit(runAgain); }

[[gnu::section(".preinit_array"), gnu::used]] void (*const atTheBeginning)() = enterTheEnd;

void endWithQuery() {
  theWorld = new QueryRun(
      "Qualifier YRK_TRBS_ProviderFiltered : boolean = false, Scope(class);\n"
      "[YRK_TRBS_ProviderFiltered] class A { [key] uint32 K; string Listed[]; };\n"
      "instance of A { K = 1; };\ninstance of A { K = 2; Listed = {\"a\", \"b\"}; };\n");
  theFirst = new Outcomes(run());
  std::exit(theFirst->plain.rows.size() == 2 && !theFirst->plain.log.empty() ? 0 : 1);
}

}  // namespace

TEST(ProcessEnd, LastQueryShowsAndLogsWhatTheFirstDid) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process in which no query has run yet
  EXPECT_EXIT(endWithQuery(), testing::ExitedWithCode(0), "the same\n");
}
