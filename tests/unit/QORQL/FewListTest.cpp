// A list of few values does what a vector does, across the border between both.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "AllocationCount.h"
#include "Cimom/QORQL/QORQL_FewList.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using List = QORQL_FewList<std::string, 3>;

// Longer than what a string keeps within itself, so that one that is lost or freed twice is noticed.
std::string text(int number) { return "a text of some length, with the number " + std::to_string(number); }

List listOf(int count) {
  List list;
  for (int i = 0; i < count; ++i) list.push_back(text(i));
  return list;
}

std::vector<std::string> vectorOf(int count) {
  std::vector<std::string> values(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) values[static_cast<std::size_t>(i)] = text(i);
  return values;
}

TEST(FewList, IsEmptyAtFirst) {
  const List list;
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.size(), 0U);
  EXPECT_THAT(list, IsEmpty());
}

TEST(FewList, HasTheValuesThatWereAdded) {
  for (int count = 0; count < 9; ++count) {
    List list = listOf(count);
    EXPECT_THAT(list, ElementsAreArray(vectorOf(count)));
    EXPECT_EQ(list.size(), static_cast<std::size_t>(count));
    if (count == 0) continue;
    EXPECT_EQ(list.front(), text(0));
    EXPECT_EQ(list.back(), text(count - 1));
    list[static_cast<std::size_t>(count) / 2] = "changed";
    EXPECT_EQ(std::as_const(list)[static_cast<std::size_t>(count) / 2], "changed");
  }
}

TEST(FewList, KeepsFewValuesInItself) {
  const List few = listOf(3);
  const List more = listOf(4);
  const auto liesIn = [](const List& list) {
    const auto* const place = reinterpret_cast<const char*>(list.data());
    const auto* const start = reinterpret_cast<const char*>(&list);
    return place >= start && place < start + sizeof list;
  };
  EXPECT_TRUE(liesIn(few));
  EXPECT_FALSE(liesIn(more));
}

TEST(FewList, CopiesAreListsOfTheirOwn) {
  for (int count = 0; count < 7; ++count) {
    const List original = listOf(count);
    List copy(original);
    List assigned = listOf(6 - count);
    assigned = original;
    copy.push_back("further");
    EXPECT_EQ(original, listOf(count));
    EXPECT_EQ(assigned, original);
    EXPECT_EQ(copy.size(), original.size() + 1);
    const List& itself = assigned;
    assigned = itself;
    EXPECT_EQ(assigned, original);
  }
}

TEST(FewList, OneThatIsMovedFromIsEmptyAndCanBeFilled) {
  for (int count = 0; count < 7; ++count) {
    List from = listOf(count);
    List& left = from;
    const List to(std::move(from));
    EXPECT_EQ(to, listOf(count));
    EXPECT_THAT(left, IsEmpty());
    left.push_back("again");
    EXPECT_THAT(left, ElementsAre("again"));
  }
}

TEST(FewList, AssigningMovesAndDropsWhatWasThere) {
  for (int count = 0; count < 7; ++count) {
    List from = listOf(count);
    List& left = from;
    List to = listOf(6 - count);
    to = std::move(from);
    EXPECT_EQ(to, listOf(count));
    EXPECT_THAT(left, IsEmpty());
    left.push_back("again");
    EXPECT_THAT(left, ElementsAre("again"));
  }
}

TEST(FewList, GrowsAndShrinksAcrossTheBorder) {
  std::mt19937 random(5);
  List list;
  std::vector<std::string> expected;
  for (int i = 0; i < 1000; ++i) {
    const std::size_t size = random() % 8;
    list.resize(size);
    expected.resize(size);
    EXPECT_THAT(list, ElementsAreArray(expected));
    const int added = static_cast<int>(random() % 3);
    for (int k = 0; k < added; ++k) {
      list.push_back(text(i));
      expected.push_back(text(i));
    }
    if (random() % 10 == 0) {
      list.clear();
      expected.clear();
    }
    EXPECT_THAT(list, ElementsAreArray(expected));
  }
}

TEST(FewList, AppendsTheValuesOfAnother) {
  for (int count = 0; count < 6; ++count) {
    List list = {"first", "second"};
    const std::vector<std::string> values = vectorOf(count);
    list.append(values.begin(), values.end());
    std::vector<std::string> expected = {"first", "second"};
    expected.insert(expected.end(), values.begin(), values.end());
    EXPECT_THAT(list, ElementsAreArray(expected));
  }
}

TEST(FewList, HasRoomForWhatWasReserved) {
  for (std::size_t size = 1; size < 12; ++size) {
    QORQL_FewList<std::size_t, 3> list;
    list.reserve(size);
    const unsigned long before = allocationCount();
    for (std::size_t i = 0; i < size; ++i) list.push_back(i);
    EXPECT_EQ(allocationCount(), before) << size;
    EXPECT_EQ(list.size(), size);
    EXPECT_EQ(list.back(), size - 1);
  }
}

TEST(FewList, EqualsAListOfTheSameValues) {
  EXPECT_EQ(listOf(2), listOf(2));
  EXPECT_EQ(listOf(5), listOf(5));
  EXPECT_FALSE(listOf(2) == listOf(3));
  EXPECT_FALSE(listOf(4) == listOf(5));
  EXPECT_FALSE((List{"a", "b"}) == (List{"a", "c"}));
}

}  // namespace
