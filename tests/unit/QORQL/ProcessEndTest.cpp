// What runs at the very end of the process shows what it shows before: nothing that it needs has been destroyed.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "Cimom/QORQL/CQLFilterSet.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "cimom/CQoriType.h"
#include "tests/support/QueryRun.h"

namespace {

constexpr char kModel[] = R"(
Qualifier YRK_TRBS_ProviderFiltered : boolean = false, Scope(class);
[YRK_TRBS_ProviderFiltered] class A { [key] uint32 K; string Listed[]; };
class B : A { datetime When; };
[indication] class Made { uint32 U; [EmbeddedObject] string Source; };
instance of A { K = 1; };
instance of B { K = 2; Listed = {"a", "b"}; When = "20260102030405.000006+000"; };
)";

// Of a class that its source filters, so that the schema is asked for the qualifier that says so, lines are logged,
// objects are restricted, and types are named: of values, of an array, and of columns that are worked out.
void askQuery(QueryRun& world, std::ostream& shown) {
  const std::string query = "SELECT K, Listed, OBJECTPATH(A) AS Path, K + 1 AS Next FROM A WHERE K > 1 ORDER BY K ASC";
  PrintTo(world.runIn(query, QORQL_DataTable::kExecutionPlain), &shown);
  PrintTo(world.runIn(query, QORQL_DataTable::kExecutionLazy), &shown);
}

// One filter, and a set of so many that it has its index.
void askFilters(QueryRun& world, std::ostream& shown) {
  const std::vector<QORSmrPtr<IQoriObject>> read =
      MofLoader(world.manager().sink())
          .readInstances("instance of Made { U = 7; Source = instance of B { K = 3; }; };", "made");
  CQLFilterSet set;
  for (CQLFilterSet::Handle handle = 0; handle < 40; ++handle) {
    CQLFilterSet::Statement statement(new CQLQueryStatement(
        "DMTF:CQL", QORString("SELECT * FROM Made WHERE U = " + std::to_string(handle) + " AND Source ISA A"),
        "root/cimv2", "root/cimv2"));
    shown << statement->validate() << ' ' << statement->isMatch(read.at(0), "root/cimv2") << '\n';
    set.add(handle, statement);
  }
  std::vector<CQLFilterSet::Handle> handles;
  set.match(read.at(0), "root/cimv2", handles);
  for (const CQLFilterSet::Handle handle : handles) shown << "matched: " << handle << '\n';
}

std::string run() {
  std::ostringstream shown;
  QueryRun world(kModel);
  askQuery(world, shown);
  askFilters(world, shown);
  return shown.str();
}

// What the end of this process is to do; null where it is not asked for.
void (*theEnd)() = nullptr;

// Entered before the libraries make their objects, and for none of them: it comes after the last of their
// destructors. What belongs to the thread, and what is made once for the process, is gone before.
void enterTheEnd() {
  on_exit(
      [](int /*status*/, void* /*argument*/) {
        if (theEnd != nullptr) theEnd();
      },
      nullptr);
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const atTheBeginning)() = enterTheEnd;

const std::string* theFirst = nullptr;  // stays to the end

void runAgain() {
  const std::string last = run();
  std::cerr << last << (last == *theFirst ? "the same\n" : "something else\n");
}

void endAfterRun() {
  theFirst = new std::string(run());
  const bool isWhole = theFirst->find("2|a,b|root/cimv2:B.K=2|3") != std::string::npos &&
                       theFirst->find("Issued an enumerate instance call") != std::string::npos &&
                       theFirst->find("matched: 7\n") != std::string::npos;
  theEnd = runAgain;
  std::exit(isWhole ? 0 : 1);
}

void nameTypes() {
  for (const QORSmrPtr<IQoriType>* type : {&CQoriType::sint8, &CQoriType::datetime, &CQoriType::object}) {
    const QORSmrPtr<IQoriType> copy(*type);
    std::cerr << copy->getName().view() << '\n';
  }
}

void endWithTypes() {
  theEnd = nameTypes;
  std::exit(0);
}

}  // namespace

// Each in a process in which nothing has run yet.
struct ProcessEnd : testing::Test {
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(ProcessEnd, LastRunShowsWhatTheFirstDid) {
  EXPECT_EXIT(endAfterRun(), testing::ExitedWithCode(0), "the same\n");
}

TEST_F(ProcessEnd, TypesThatNobodyHasLookedUpAreThere) {
  EXPECT_EXIT(endWithTypes(), testing::ExitedWithCode(0), "sint8\ndatetime\nobject\n");
}
