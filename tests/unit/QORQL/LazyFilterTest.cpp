// Conditions on one class that are decided for runs of rows.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/Lazy/QORQL_ClassTest.h"
#include "FetchedStatement.h"
#include "RunsWorld.h"

namespace {

using Strings = std::vector<std::string>;

using LazyFilter = RunsWorld;

TEST_F(LazyFilter, EveryRelationOfEveryKindWithALiteral) {
  for (const char* const relation : {"=", "<>", "<", ">", "<=", ">="}) {
    for (const char* const side : {"u # 50", "u # 50.5", "s # 0", "s # -20", "s # 99.5", "r # 10.25", "r # 3",
                                   "t # 'text5'", "50 # u", "b # 'true'", "u # s", "t # t", "k # u", "a # 3"}) {
      std::string condition = side;
      condition.replace(condition.find('#'), 1, relation);
      EXPECT_EQ(world.error("SELECT k FROM N WHERE " + condition), "") << condition;
      EXPECT_EQ(world.error("SELECT k FROM N WHERE NOT " + condition + " AND g = 3"), "") << condition;
    }
  }
}

TEST_F(LazyFilter, NullTestsAndSearches) {
  EXPECT_EQ(world.rows("SELECT k FROM N WHERE u IS NULL"), (Strings{"150"}));
  EXPECT_EQ(world.rows("SELECT k FROM N WHERE t IS NOT NULL").size(), 150U);
  EXPECT_EQ(world.rows("SELECT k FROM N WHERE k < 150 AND t LIKE 'xt12'").size(), 11U);
}

TEST_F(LazyFilter, AnErrorBehindWholeRunsIsTheErrorOfItsRow) {
  EXPECT_NE(world.error("SELECT k FROM N WHERE t LIKE 'text'"), "");  // the last row's t is NULL
  EXPECT_NE(world.error("SELECT k FROM N WHERE k > 70 AND b = 'maybe'"), "");
  EXPECT_EQ(world.error("SELECT k FROM N WHERE k = 150 AND b = 'maybe'"), "");  // NULL is compared with nothing
  EXPECT_NE(world.error("SELECT k FROM M WHERE more = 3"), "");
}

// Mixed kinds, missing values and elements, on either side.
TEST_F(LazyFilter, ElementsAreComparedAsValuesAre) {
  QueryWorld arrays(R"(
class A { [key] uint32 k; uint16 n[]; string t[]; boolean b[]; real64 r[]; sint64 s; string w; };
instance of A { k = 1; n = {1, 2, 300}; t = {"x", "true"}; b = {TRUE, NULL}; r = {0.5, 2.0}; s = 2; w = "true"; };
instance of A { k = 2; n = {NULL, 2}; t = {}; b = {FALSE}; r = {-1.5}; s = -1; w = "x"; };
instance of A { k = 3; };
instance of A { k = 4; n = {2}; t = {NULL, "y"}; b = {}; r = {2.0, 2.0}; s = 300; };
)");
  for (const char* const relation : {" = ", " <> ", " < ", " > ", " <= ", " >= "}) {
    for (const char* const word : {"ANY ", "EVERY "}) {
      for (const char* const other : {"2", "2.0", "s", "w", "'true'", "k", "'y'", "TRUE"}) {
        for (const char* const array : {"n", "t", "b", "r"}) {
          const std::string left = std::string(word) + array + relation + other;
          const std::string right = other + std::string(relation) + word + array;
          for (const std::string& condition : {left, right}) {
            arrays.run("SELECT k FROM A WHERE " + condition);
            arrays.run("SELECT k FROM A WHERE NOT " + condition + " AND k > 1");
          }
        }
      }
    }
  }
}

TEST_F(LazyFilter, IsaOfClassesWithAndWithoutObjects) {
  EXPECT_EQ(world.rows("SELECT k FROM M WHERE M ISA Sub").size(), 14U);
  EXPECT_EQ(world.rows("SELECT k FROM M WHERE NOT M ISA Sub").size(), 26U);
  EXPECT_EQ(world.rows("SELECT M.k FROM M, N WHERE N.k = 3 AND M ISA Sub AND N ISA N").size(), 14U);
  EXPECT_TRUE(world.rows("SELECT M.k FROM M, Z WHERE M.k *= Z.k AND Z ISA Z").empty());
}

// The repository is asked once for a layout, until its classes change.
TEST_F(LazyFilter, WhatTheRepositorySaysOfAClassIsRemembered) {
  FetchedStatement fetched("SELECT k FROM M");
  const IQoriObject& sub = *fetched.rows().extent(0).object(0);
  const IQoriObject& plain = *fetched.rows().extent(0).object(1);
  QORQL_ClassTest test("root/cimv2", "sub");
  test.beginRun();
  EXPECT_EQ(test.remembered(sub), QORQL_ViewTruth::Undecided);
  EXPECT_EQ(test.test(sub), QoriTruth::True);
  EXPECT_EQ(test.remembered(sub), QORQL_ViewTruth::True);
  EXPECT_EQ(test.remembered(plain), QORQL_ViewTruth::Undecided);
  EXPECT_EQ(test.test(plain), QoriTruth::False);
  test.beginRun();
  EXPECT_EQ(test.remembered(plain), QORQL_ViewTruth::False);
  MofLoader(world.manager().sink(), "root/cimv2").loadText("class Later : M { };", "later");
  test.beginRun();
  EXPECT_EQ(test.remembered(sub), QORQL_ViewTruth::Undecided);
  EXPECT_EQ(test.test(sub), QoriTruth::True);
}

// Many objects are told by their layouts; no object is of no class.
TEST_F(LazyFilter, TheClassesOfManyObjectsAreLookedUpByLayout) {
  using Truth = QORQL_ViewTruth;
  FetchedStatement fetched("SELECT k FROM M");
  const QORQL_Extent& extent = fetched.rows().extent(0);
  const IQoriLayout* const sub = extent.layout(0);
  const IQoriLayout* const plain = extent.layout(1);
  ASSERT_NE(sub, plain);
  const std::array<const IQoriLayout*, 5> layouts{sub, plain, nullptr, sub, plain};
  QORQL_ClassTest test("root/cimv2", "Sub");
  const auto look = [&] {
    std::array<Truth, 5> truths{};
    test.look(layouts.data(), layouts.size(), truths.data());
    return truths;
  };
  EXPECT_EQ(look(), (std::array<Truth, 5>{Truth::Undecided, Truth::Undecided, Truth::Null, Truth::Undecided,
                                          Truth::Undecided}));
  EXPECT_EQ(test.test(*extent.object(1)), QoriTruth::False);
  EXPECT_EQ(look(),
            (std::array<Truth, 5>{Truth::Undecided, Truth::False, Truth::Null, Truth::Undecided, Truth::False}));
  EXPECT_EQ(test.test(*extent.object(0)), QoriTruth::True);
  EXPECT_EQ(look(), (std::array<Truth, 5>{Truth::True, Truth::False, Truth::Null, Truth::True, Truth::False}));
}

// Two of four classes are of it; all of them are known after the first rows, and in the second condition at once.
TEST(LazyFilterOfFourClasses, RowsBeyondTheFirstRunsAreToldByWhatIsKnown) {
  std::string mof = "class P { [key] uint32 k; }; class A : P { }; class B : A { uint8 b; }; class C : P { };";
  const std::array<const char*, 5> classes{"P", "A", "B", "C", "P"};
  for (int i = 0; i < 1000; ++i)
    mof += std::string("instance of ") + classes.at(i % 5) + " { k = " + std::to_string(i) + "; };\n";
  QueryWorld four(mof);
  Strings expected;
  for (int i = 0; i < 1000; ++i) {
    if (i % 5 == 1 || i % 5 == 2) expected.push_back(std::to_string(i));
  }
  EXPECT_EQ(four.rows("SELECT k FROM P WHERE P ISA A"), expected);
  EXPECT_EQ(four.rows("SELECT k FROM P WHERE k >= 0 AND P ISA A"), expected);
  EXPECT_EQ(four.rows("SELECT k FROM P WHERE NOT P ISA A").size(), 600U);
  EXPECT_EQ(four.rows("SELECT k FROM P WHERE P ISA A AND NOT P ISA B").size(), 200U);
  EXPECT_EQ(four.rows("SELECT k FROM P WHERE P ISA A AND P ISA C").size(), 0U);
  EXPECT_EQ(four.rows("SELECT k FROM A WHERE A ISA P AND A ISA B").size(), 200U);
}

TEST_F(LazyFilter, MembersAreSelectedOnceAllLayoutsAreKnown) {
  FetchedStatement fetched("SELECT k FROM M");
  const QORQL_Extent& extent = fetched.rows().extent(0);
  const IQoriLayout* const sub = extent.layout(0);
  const IQoriLayout* const plain = extent.layout(1);
  const std::array<const IQoriLayout*, 5> layouts{sub, plain, nullptr, sub, plain};
  const auto selected = [&](const char* className, bool knowsPlain) {
    QORQL_ClassTest test("root/cimv2", className);
    test.test(*extent.object(0));
    EXPECT_FALSE(test.remembersAll(extent.layouts()));
    if (!knowsPlain) return std::vector<QORuint32>();
    test.test(*extent.object(1));
    EXPECT_TRUE(test.remembersAll(extent.layouts()));
    std::array<QORuint32, 5> places{};
    const std::size_t count = test.select(layouts.data(), layouts.size(), places.data());
    return std::vector<QORuint32>(places.begin(), places.begin() + static_cast<std::ptrdiff_t>(count));
  };
  EXPECT_TRUE(selected("Sub", false).empty());
  EXPECT_EQ(selected("Sub", true), (std::vector<QORuint32>{0, 3}));
  EXPECT_EQ(selected("M", true), (std::vector<QORuint32>{0, 1, 3, 4}));
  EXPECT_EQ(selected("Z", true), (std::vector<QORuint32>{}));
}

TEST_F(LazyFilter, ObjectsOfSeveralClassesInOneColumn) {
  EXPECT_EQ(world.rows("SELECT k, t FROM M WHERE s < -10").size(), 10U);
  EXPECT_EQ(world.rows("SELECT M.* FROM M WHERE k < 2"),
            (Strings{"0|-20|-20.5|0|text0|NULL", "1|-19|-19.5|11|text1|NULL"}));
}

}  // namespace
