// Length without bound, nesting with one: long chains, deep trees, wide lists.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

#include "Cimom/QORQL/Explain/QORQL_Explanation.h"
#include "QueryWorld.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::size_t kMany = 100000;

std::string repeat(const std::string& item, const std::string& separator, std::size_t count) {
  std::string text = item;
  for (std::size_t i = 1; i < count; ++i) text += separator + item;
  return text;
}

struct Bounds : testing::Test {
  QueryWorld world{R"(
class C { [key] uint32 Id; };
instance of C { Id = 1; };
instance of C { Id = 2; };
)"};
  QueryOutcome run(const std::string& query) { return world.runIn(query, QORQL_DataTable::kExecutionLazy); }
};

TEST_F(Bounds, ChainsOfAHundredThousandTerms) {
  EXPECT_THAT(run("SELECT Id FROM C WHERE " + repeat("Id = 1", " AND ", kMany)).rows, ElementsAre("1"));
  EXPECT_THAT(run("SELECT Id FROM C WHERE " + repeat("Id = 1", " OR ", kMany)).rows, ElementsAre("1"));
  EXPECT_THAT(run("SELECT Id FROM C WHERE 100000 = " + repeat("1", " + ", kMany)).rows, SizeIs(2));
  EXPECT_THAT(run("SELECT Id FROM C WHERE 0 = " + repeat("1", " - ", kMany)).rows, SizeIs(2));
  EXPECT_THAT(run("SELECT Id FROM C WHERE 1 = " + repeat("1", " * ", kMany)).rows, SizeIs(2));
  EXPECT_THAT(run("SELECT Id FROM C WHERE 1 = " + repeat("1", " / ", kMany)).rows, SizeIs(2));
}

TEST_F(Bounds, ListsOfManyEntries) {
  EXPECT_THAT(run("SELECT " + repeat("Id", ",", 10000) + " FROM C").columns, SizeIs(10000));
  EXPECT_THAT(run("SELECT C.Id FROM " + repeat("C", ",", 1000)).rows, ElementsAre("1", "2"));
}

TEST_F(Bounds, NestingUpToTheBoundWorksAndBeyondItIsAnError) {
  const auto nested = [](const std::string& open, const std::string& close, std::size_t depth) {
    return "SELECT Id FROM C WHERE " + repeat(open, "", depth) + "1" + repeat(close, "", depth) + " = 1";
  };
  EXPECT_THAT(run(nested("(", ")", 1000)).rows, SizeIs(2));
  EXPECT_EQ(run(nested("(", ")", 1001)).error, "parse 2 line 1: expression nested too deeply");
  EXPECT_EQ(run(nested("(", ")", kMany)).error, "parse 2 line 1: expression nested too deeply");
  EXPECT_EQ(run("SELECT Id FROM C WHERE " + std::string(kMany, '-') + "1 = 1").error,
            "parse 2 line 1: expression nested too deeply");
  EXPECT_EQ(run(nested("SUM(", ")", kMany)).error, "parse 2 line 1: expression nested too deeply");
  EXPECT_EQ(run(nested("-(", ")", kMany)).error, "parse 2 line 1: expression nested too deeply");
}

// Unoptimised and sanitized frames are several times as large as those that are shipped.
#if defined(__OPTIMIZE__) && !defined(QORQL_ENGINE_IS_UNOPTIMISED) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__) && !defined(__clang__)
constexpr std::size_t kMegabyte = std::size_t{1} << 20U;
#else
constexpr std::size_t kMegabyte = std::size_t{32} << 20U;
#endif

void runOnStackOf(std::size_t size, std::function<void()> work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, size), 0);
  const auto start = [](void* given) -> void* {
    (*static_cast<std::function<void()>*>(given))();
    return nullptr;
  };
  pthread_t thread{};
  ASSERT_EQ(pthread_create(&thread, &attributes, start, &work), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

// Object managers give their threads less than a program has.
TEST_F(Bounds, TheDeepestStatementsFitASmallStack) {
  for (const std::string open : {"(", "-", "(1 + ", "(NOT ", "SUM(", "UPPERCASE(", "-("}) {
    const std::size_t levels = 1000 / (open == "-(" ? 2 : 1);
    const std::string close = open == "-" ? "" : repeat(")", "", levels);
    for (const std::string clause : {"WHERE 1 = ", "WHERE ", "ORDER BY "}) {
      const bool isSort = clause == "ORDER BY ";
      const std::string query =
          "SELECT Id FROM C " + clause + repeat(open, "", levels) + "Id" + close + (isSort ? " ASC" : " = 1");
      QueryOutcome outcome;
      runOnStackOf(2 * kMegabyte, [&] { outcome = run(query); });
      EXPECT_EQ(outcome, run(query)) << open << " in " << clause;
    }
  }
}

TEST_F(Bounds, TheDeepestStatementIsExplainedOnASmallStack) {
  const QORString text(
      ("SELECT Id FROM C WHERE " + repeat("(1 + ", "", 1000) + "Id" + repeat(")", "", 1000) + " = 1001").c_str());
  std::size_t steps = 0;
  runOnStackOf(4 * kMegabyte, [&] {
    const QORString nameSpace("root/cimv2");
    QORQL_Lexer lexer(text, false);
    QORQL_SymbolTable symbols(nullptr);
    const auto parsed =
        QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", nameSpace).StaticCast<QORQL_Query>();
    steps = QORQL_Explanation(*parsed, symbols, nameSpace).steps().size();
  });
  EXPECT_EQ(steps, 3U);
}

TEST_F(Bounds, LongLiteralsAndNames) {
  EXPECT_THAT(run("SELECT Id FROM C WHERE '" + std::string(10000000, 'x') + "' LIKE 'y'").rows, IsEmpty());
  const std::string name(1000000, 'n');
  EXPECT_EQ(run("SELECT " + name + " FROM C").error, "parse 12 line 0: property '" + name + "' not found in any class");
}

TEST_F(Bounds, AJoinOfManyByManyDoesNotMakeTheProduct) {
  std::string mof = "class L { [key] uint32 Id; uint32 K; }; class M { [key] uint32 Id; uint32 K; };";
  for (int i = 0; i < 20000; ++i) {
    mof += "instance of L { Id = " + std::to_string(i) + "; K = " + std::to_string(i % 4000) + "; };";
  }
  for (int i = 0; i < 2000; ++i) {
    mof += "instance of M { Id = " + std::to_string(i) + "; K = " + std::to_string(i * 2) + "; };";
  }
  MofLoader(world.manager().sink()).loadText(mof, "join");
  const QueryOutcome outcome = run("SELECT L.Id, M.Id FROM L, M WHERE L.K = M.K");
  ASSERT_EQ(outcome.rows.size(), 10000U);
  EXPECT_EQ(outcome.rows[0], "0|0");
  EXPECT_EQ(outcome.rows[1], "2|1");
  EXPECT_EQ(outcome.rows[9999], "19998|1999");
}

}  // namespace
