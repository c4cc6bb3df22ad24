// The engine against the naive implementation on every small world.
// SPDX-License-Identifier: Apache-2.0
#include "EngineAnswer.h"

namespace {

using Field = Operand::Field;
using Op = Comparison::Operator;

const int kA = 0;
const int kB = 1;
const int kC = 2;

Operand id(int table) { return Operand::of(table, Field::Id); }
Operand k(int table) { return Operand::of(table, Field::K); }
Operand v(int table) { return Operand::of(table, Field::V); }
Operand number(int value) { return Operand::of(value); }

Comparison compare(const Operand& left, Op op, const Operand& right) { return {left, op, right, false}; }
Comparison test(const Operand& left, Op op) { return {left, op, Operand(), false}; }

// Fails the test and says whether to go on: a handful of failures tells enough.
bool check(Judge& judge, const World& world) {
  const testing::AssertionResult result = judge.judge(world);
  EXPECT_TRUE(result);
  return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count() < 5;
}

bool checkAll(const Statement& statement, const std::vector<World>& worlds) {
  Judge judge(statement);
  for (const World& world : worlds) {
    if (!check(judge, world)) return false;
  }
  return true;
}

std::vector<World> worldsOfTwo(const std::vector<std::vector<Key>>& a, const std::vector<std::vector<Key>>& b) {
  std::vector<World> worlds;
  for (const auto& first : a) {
    for (const auto& second : b) worlds.push_back({first, second, {}});
  }
  return worlds;
}

// Every condition of `count` comparisons joined by AND and OR, with at most `nots` NOTs.
void addConditions(const std::vector<Comparison>& comparisons, std::size_t count, std::size_t nots, Condition& begun,
                   std::vector<Condition>& all) {
  for (const bool isNegated : {false, true}) {
    if (isNegated && nots == 0) continue;
    for (Comparison comparison : comparisons) {
      comparison.isNegated = isNegated;
      begun.back().push_back(comparison);
      if (count == 1) {
        all.push_back(begun);
      } else {
        const std::size_t left = nots - (isNegated ? 1 : 0);
        addConditions(comparisons, count - 1, left, begun, all);
        begun.emplace_back();
        addConditions(comparisons, count - 1, left, begun, all);
        begun.pop_back();
      }
      begun.back().pop_back();
    }
  }
}

// Every condition with at most `connectives` of AND, OR and NOT.
std::vector<Condition> conditionsOf(const std::vector<Comparison>& comparisons, std::size_t connectives) {
  std::vector<Condition> all;
  for (std::size_t count = 1; count <= connectives + 1; ++count) {
    Condition begun = {{}};
    addConditions(comparisons, count, connectives - (count - 1), begun, all);
  }
  return all;
}

const std::vector<Key> kTwoKeys = {Key(), Key(1), Key(2)};

}  // namespace

TEST(Oracle, EveryConditionOfThreeConnectives) {
  const std::vector<Comparison> comparisons = {
      compare(k(kA), Op::Equal, number(1)), compare(k(kA), Op::Less, number(2)), test(k(kA), Op::IsNull),
      compare(v(kA), Op::GreaterEqual, number(1)), compare(number(1), Op::Equal, number(2))};
  const World world = {std::vector<Key>{Key(), Key(1), Key(2), Key(1)}, {}, {}};
  for (const Condition& where : conditionsOf(comparisons, 3)) {
    if (!checkAll({{id(kA)}, {kA}, where, {}, {}}, {world})) return;
  }
}

TEST(Oracle, EveryConditionOfTwoConnectivesOverTwoTables) {
  const std::vector<Comparison> comparisons = {compare(k(kA), Op::Equal, k(kB)), compare(k(kA), Op::LeftJoin, k(kB)),
                                               compare(k(kA), Op::FullJoin, k(kB)),
                                               compare(k(kB), Op::Equal, number(1)), test(k(kA), Op::IsNull)};
  const std::vector<std::vector<Key>> lists = {{}, {Key()}, {Key(1)}, {Key(2), Key(1)}, {Key(1), Key(), Key(1)}};
  const std::vector<World> worlds = worldsOfTwo(lists, lists);
  for (const Condition& where : conditionsOf(comparisons, 2)) {
    if (!checkAll({{id(kA), id(kB)}, {kA, kB}, where, {}, {}}, worlds)) return;
  }
}

// `A.Id < 1` fails on a row that has an A: conditions before it may keep such
// rows away, and operands of OR before the last still fail.
TEST(Oracle, EveryConditionOfTwoConnectivesThatMayFail) {
  const std::vector<Comparison> comparisons = {
      compare(k(kA), Op::Equal, k(kB)), compare(k(kB), Op::LeftJoin, number(1)),
      compare(number(2), Op::FullJoin, k(kA)), test(k(kB), Op::IsNull), compare(id(kA), Op::Less, number(1))};
  const std::vector<std::vector<Key>> lists = {{}, {Key()}, {Key(1)}, {Key(2), Key(1)}};
  const std::vector<World> worlds = worldsOfTwo(lists, lists);
  for (const Condition& where : conditionsOf(comparisons, 2)) {
    if (!checkAll({{id(kA), id(kB)}, {kA, kB}, where, {}, {}}, worlds)) return;
  }
}

TEST(Oracle, EveryJoinOfTwoTables) {
  const std::vector<std::vector<Key>> lists = allKeyLists(kTwoKeys, 3);
  const std::vector<World> worlds = worldsOfTwo(lists, lists);
  for (const Op op : {Op::Equal, Op::LeftJoin, Op::RightJoin, Op::FullJoin, Op::Less, Op::NotEqual}) {
    for (const std::vector<int>& from : {std::vector<int>{kA, kB}, {kB, kA}}) {
      const Statement statement{{id(kA), k(kA), id(kB), k(kB)}, from, {{compare(k(kA), op, k(kB))}}, {}, {}};
      if (!checkAll(statement, worlds)) return;
    }
  }
}

TEST(Oracle, EveryJoinAgainstANumber) {
  const std::vector<World> worlds = worldsOfTwo(allKeyLists(kTwoKeys, 3), allKeyLists(kTwoKeys, 1));
  for (const Op op : {Op::LeftJoin, Op::RightJoin, Op::FullJoin}) {
    for (const Comparison& comparison : {compare(k(kA), op, number(1)), compare(number(1), op, k(kB)),
                                         compare(k(kA), op, v(kA)), compare(number(1), op, number(1))}) {
      for (const std::vector<int>& from : {std::vector<int>{kA, kB}, {kB, kA}}) {
        if (!checkAll({{id(kA), id(kB)}, from, {{comparison}}, {}, {}}, worlds)) return;
      }
    }
  }
}

TEST(Oracle, EveryJoinWithAConditionOnOneSide) {
  const std::vector<std::vector<Key>> lists = allKeyLists(kTwoKeys, 2);
  const std::vector<World> worlds = worldsOfTwo(lists, lists);
  for (const Op op : {Op::Equal, Op::LeftJoin, Op::RightJoin, Op::FullJoin}) {
    const Comparison join = compare(k(kA), op, k(kB));
    for (const Comparison& other : {compare(k(kA), Op::NotEqual, number(1)), compare(v(kB), Op::Less, number(1)),
                                    test(k(kB), Op::IsNull), test(v(kA), Op::IsNotNull)}) {
      for (const Condition& where : {Condition{{join, other}}, Condition{{other, join}}}) {
        if (!checkAll({{id(kA), id(kB)}, {kA, kB}, where, {}, {}}, worlds)) return;
      }
    }
  }
}

TEST(Oracle, ThreeTables) {
  const std::vector<std::vector<Key>> lists = allKeyLists({Key(), Key(1)}, 2);
  std::vector<World> worlds;
  for (const World& two : worldsOfTwo(lists, lists)) {
    for (const auto& third : lists) worlds.push_back({two[0], two[1], third});
  }
  for (const Op first : {Op::Equal, Op::LeftJoin, Op::FullJoin}) {
    for (const Op second : {Op::Equal, Op::RightJoin, Op::NotEqual}) {
      const Comparison ab = compare(k(kA), first, k(kB));
      const Comparison bc = compare(k(kB), second, k(kC));
      for (const Condition& where : {Condition{{ab, bc}}, Condition{{bc, ab}}, Condition{{bc}, {ab}}}) {
        if (!checkAll({{id(kA), id(kB), id(kC)}, {kC, kA, kB}, where, {}, {}}, worlds)) return;
      }
    }
  }
}

TEST(Oracle, EveryOrderOfFiveKeys) {
  std::vector<World> worlds;
  for (const auto& keys : allKeyLists({Key(1), Key(2), Key(3)}, 5)) worlds.push_back({keys, {}, {}});
  for (const auto& keys : allKeyLists({Key(), Key(1)}, 3)) worlds.push_back({keys, {}, {}});
  for (const bool isAscending : {true, false}) {
    if (!checkAll({{id(kA)}, {kA}, {}, OrderKey{k(kA), isAscending}, {}}, worlds)) return;
    if (!checkAll({{v(kA)}, {kA}, {}, OrderKey{k(kA), isAscending}, 2}, worlds)) return;
  }
}

TEST(Oracle, OrderOfJoins) {
  const std::vector<std::vector<Key>> lists = allKeyLists({Key(1), Key(2)}, 3);
  const std::vector<World> worlds = worldsOfTwo(lists, lists);
  for (const Op op : {Op::Equal, Op::LeftJoin, Op::Less}) {
    for (const Operand& key : {k(kA), v(kB), number(1)}) {
      const Condition where = {{compare(k(kA), op, k(kB))}};
      if (!checkAll({{id(kB), id(kA)}, {kA, kB}, where, OrderKey{key, false}, {}}, worlds)) return;
    }
  }
}

TEST(Oracle, ProjectionAndFirst) {
  const std::vector<std::vector<Key>> lists = allKeyLists(kTwoKeys, 2);
  const std::vector<World> worlds = worldsOfTwo(lists, lists);
  const std::vector<Condition> conditions = {
      {}, {{compare(k(kA), Op::Equal, k(kB))}}, {{compare(k(kA), Op::FullJoin, k(kB))}}};
  for (const std::vector<Operand>& select :
       {std::vector<Operand>{id(kA)}, {id(kB)}, {k(kB), id(kA), v(kB)}, {v(kA), k(kA)}}) {
    for (const std::optional<unsigned>& first : {std::optional<unsigned>(), {0U}, {1U}, {3U}}) {
      for (const Condition& where : conditions) {
        if (!checkAll({select, {kB, kA}, where, {}, first}, worlds)) return;
      }
    }
  }
}
