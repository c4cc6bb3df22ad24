// The hash map and its iterator.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "cmpbase/QORBoundsException.h"
#include "cmpbase/QORString.h"
#include "cmpbase/QORValMap.h"

namespace {

constexpr QORuint32 kBuckets = 150;

using Map = QORValMap<QORString, int>;

Map makeMap() { return Map(hashKeyQORString, kBuckets); }

QORuint32 hashNumber(const int& key) { return static_cast<QORuint32>(key); }

std::vector<int> valuesOf(const QORValMap<int, int>& map) {
  std::vector<int> values;
  QORValMapIterator<int, int> it(map);
  while (++it) values.push_back(it.value());
  return values;
}

TEST(QORValMap, FindsWhatWasInserted) {
  Map map = makeMap();
  EXPECT_TRUE(map.isEmpty());
  EXPECT_TRUE(map.insert("a", 1));
  EXPECT_TRUE(map.insert("b", 2));
  int value = 0;
  EXPECT_TRUE(map.find("b", value));
  EXPECT_EQ(value, 2);
  EXPECT_TRUE(map.contains("a"));
  EXPECT_EQ(map.entries(), 2U);
}

TEST(QORValMap, MissingKeyLeavesTheOutValue) {
  const Map map = makeMap();
  int value = 42;
  EXPECT_FALSE(map.find("a", value));
  EXPECT_EQ(value, 42);
  EXPECT_FALSE(map.contains("a"));
}

TEST(QORValMap, KeysCompareExactly) {
  Map map = makeMap();
  map.insert("Name", 1);
  EXPECT_FALSE(map.contains("NAME"));
}

TEST(QORValMap, InsertingAnExistingKeyReplacesItsValue) {
  Map map = makeMap();
  map.insert("a", 1);
  EXPECT_TRUE(map.insert("a", 2));
  EXPECT_EQ(map.entries(), 1U);
  EXPECT_EQ(map["a"], 2);
}

TEST(QORValMap, InsertMayTakeKeyAndValueFromTheMapItself) {
  QORValMap<QORString, QORString> map(hashKeyQORString, kBuckets);
  map.insert("a", "text");
  QORString& value = map["a"];
  map.insert("a", value);
  EXPECT_EQ(map["a"], "text");
}

TEST(QORValMap, SubscriptInsertsADefault) {
  Map map = makeMap();
  EXPECT_EQ(map["new"], 0);
  EXPECT_EQ(map.entries(), 1U);
  map["new"] = 7;
  EXPECT_EQ(map["new"], 7);
}

TEST(QORValMap, RemoveTellsWhetherTheKeyWasThere) {
  Map map = makeMap();
  map.insert("a", 1);
  EXPECT_TRUE(map.remove("a"));
  EXPECT_FALSE(map.remove("a"));
  EXPECT_TRUE(map.isEmpty());
}

TEST(QORValMap, ClearForgetsEverythingAndStaysUsable) {
  Map map = makeMap();
  map.insert("a", 1);
  map.clear();
  EXPECT_EQ(map.entries(), 0U);
  EXPECT_FALSE(map.contains("a"));
  map.insert("a", 2);
  EXPECT_EQ(map["a"], 2);
}

TEST(QORValMap, CopiesAreIndependent) {
  Map map = makeMap();
  map.insert("a", 1);
  Map copy(map);
  copy.insert("b", 2);
  copy.insert("a", 3);
  EXPECT_EQ(map.entries(), 1U);
  EXPECT_EQ(map["a"], 1);
  map = copy;
  const Map& self = map;
  map = self;
  EXPECT_EQ(map.entries(), 2U);
  EXPECT_EQ(map["a"], 3);
}

TEST(QORValMap, HoldsManyMoreItemsThanBuckets) {
  Map map = makeMap();
  for (int i = 0; i < 5000; ++i) map.insert(QORString::number(static_cast<QORsint64>(i)), i);
  EXPECT_EQ(map.entries(), 5000U);
  for (int i = 0; i < 5000; ++i) EXPECT_EQ(map[QORString::number(static_cast<QORsint64>(i))], i);
}

TEST(QORValMap, BucketsAreVisitedInOrderAndItemsByAge) {
  QORValMap<int, int> map(hashNumber, 10);
  for (const int key : {13, 25, 3, 0, 23, 5}) map.insert(key, key);
  EXPECT_EQ(valuesOf(map), (std::vector<int>{0, 13, 3, 23, 25, 5}));
}

TEST(QORValMap, ReplacedKeyMovesToTheTailOfItsBucket) {
  QORValMap<int, int> map(hashNumber, 10);
  for (const int key : {3, 13, 23}) map.insert(key, key);
  map.insert(3, 99);
  EXPECT_EQ(valuesOf(map), (std::vector<int>{13, 23, 99}));
}

TEST(QORValMap, CopyVisitsInTheSameOrder) {
  QORValMap<int, int> map(hashNumber, 10);
  for (const int key : {13, 3, 23}) map.insert(key, key);
  EXPECT_EQ(valuesOf(QORValMap<int, int>(map)), (std::vector<int>{13, 3, 23}));
}

TEST(QORValMap, HashIsTakenModuloTheBucketsAsUnsigned) {
  QORValMap<int, int> map(hashNumber, 10);
  map.insert(-1, 1);  // 4294967295 % 10 == 5
  map.insert(4, 2);
  map.insert(6, 3);
  EXPECT_EQ(valuesOf(map), (std::vector<int>{2, 1, 3}));
}

TEST(QORValMap, NoBucketsIsTakenAsOne) {
  QORValMap<int, int> map(hashNumber, 0);
  map.insert(1, 1);
  map.insert(2, 2);
  EXPECT_EQ(valuesOf(map), (std::vector<int>{1, 2}));
}

TEST(QORValMap, StatisticsCountBuckets) {
  QORValMap<int, int> map(hashNumber, 10);
  for (const int key : {1, 11, 21, 2}) map.insert(key, key);
  int used = -1;
  int longest = -1;
  int empty = -1;
  map.examineHash(&used, &longest, &empty);
  EXPECT_EQ(used, 2);
  EXPECT_EQ(longest, 3);
  EXPECT_EQ(empty, 8);
  map.examineHash(nullptr, nullptr, nullptr);
}

// Beside a plain model: a vector of chains.
TEST(QORValMap, KeepsItsOrderWhileItGrowsAndShrinks) {
  constexpr int kHashSize = 7;
  QORValMap<int, int> map(hashNumber, kHashSize);
  std::vector<std::vector<std::pair<int, int>>> model(kHashSize);
  const auto drop = [&](int key) {
    return std::erase_if(model[static_cast<std::size_t>(key % kHashSize)],
                         [key](const auto& item) { return item.first == key; }) != 0;
  };
  std::mt19937 random(7);
  for (int step = 0; step < 2000; ++step) {
    const int key = static_cast<int>(random() % 30);
    const bool grows = step / 100 % 2 == 0;
    if (random() % 4 == 0 ? grows : !grows) {
      EXPECT_EQ(map.remove(key), drop(key));
    } else {
      map.insert(key, step);
      drop(key);
      model[static_cast<std::size_t>(key % kHashSize)].emplace_back(key, step);
    }
    std::vector<int> expected;
    for (const auto& chain : model) {
      for (const auto& item : chain) expected.push_back(item.second);
    }
    ASSERT_EQ(valuesOf(map), expected) << step;
    ASSERT_EQ(valuesOf(QORValMap<int, int>(map)), expected) << step;
    ASSERT_EQ(map.entries(), expected.size());
  }
}

TEST(QORValMap, AnItemStaysWhereItIsWhenOthersCome) {
  QORValMap<int, int> map(hashNumber, kBuckets);
  map.insert(3, 33);
  const int* const value = map.peek(3);
  ASSERT_NE(value, nullptr);
  for (int key = 100; key < 200; ++key) map.insert(key, key);
  EXPECT_EQ(map.peek(3), value);
  EXPECT_EQ(*value, 33);
  EXPECT_EQ(map.peek(4), nullptr);
}

TEST(QORValMap, FindsAKeyByItsHashAndWhatTellsIt) {
  for (const int count : {4, 40}) {
    Map map = makeMap();
    for (int i = 0; i < count; ++i) map.insert(QORString::number(static_cast<QORuint64>(i)), i);
    const int* const found = map.peekHashed(hashKeyBytes("3"), [](const QORString& key) { return key == "3"; });
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(*found, 3);
    EXPECT_EQ(map.peekHashed(hashKeyBytes("3"), [](const QORString&) { return false; }), nullptr);
  }
}

TEST(QORValMapIterator, ShowsTheMapsOwnItems) {
  Map map = makeMap();
  map.insert("a", 1);
  QORValMapIterator<QORString, int> it(map);
  EXPECT_THROW(it.peekKey(), QORBoundsException);
  EXPECT_THROW(it.peekValue(), QORBoundsException);
  ASSERT_TRUE(++it);
  EXPECT_EQ(it.peekKey(), "a");
  EXPECT_EQ(&it.peekValue(), map.peek("a"));
}

TEST(QORValMapIterator, StaysAtTheEndUntilReset) {
  QORValMap<int, int> map(hashNumber, 10);
  map.insert(5, 50);
  QORValMapIterator<int, int> it(map);
  EXPECT_TRUE(it());
  EXPECT_EQ(it.key(), 5);
  EXPECT_EQ(it.value(), 50);
  EXPECT_FALSE(++it);
  EXPECT_FALSE(++it);
  it.reset();
  EXPECT_TRUE(++it);
  EXPECT_EQ(it.key(), 5);
}

TEST(QORValMapIterator, WithoutCurrentItemIsOutOfBounds) {
  QORValMap<int, int> map(hashNumber, 10);
  QORValMapIterator<int, int> it(map);
  EXPECT_THROW(static_cast<void>(it.key()), QORBoundsException);
  EXPECT_FALSE(++it);
  try {
    static_cast<void>(it.value());
    FAIL() << "nothing was raised";
  } catch (const QORBoundsException& error) {
    EXPECT_EQ(error.getMessage(), "Out of Bounds");
  }
}

TEST(QORValMapIterator, MovesSeveralSteps) {
  QORValMap<int, int> map(hashNumber, 10);
  for (const int key : {1, 2, 3}) map.insert(key, key);
  QORValMapIterator<int, int> it(map);
  EXPECT_TRUE(it += 2);
  EXPECT_EQ(it.key(), 2);
  EXPECT_FALSE(it += 2);
}

}  // namespace
