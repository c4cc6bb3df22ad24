// The list and its iterator.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "cmpbase/QORBoundsException.h"
#include "cmpbase/QORString.h"
#include "cmpbase/QORValSlist.h"

namespace {

using List = QORValSlist<int>;
using Texts = QORValSlist<QORString>;

List listOf(std::initializer_list<int> values) {
  List list;
  for (const int value : values) list.append(value);
  return list;
}

std::vector<int> contents(const List& list) {
  std::vector<int> values;
  QORValSlistIterator<int> it(list);
  while (++it) values.push_back(it.key());
  return values;
}

using Values = std::vector<int>;

// The bounds error that the action raises, as "type|who|message|code".
template <class Action>
std::string boundsError(const Action& action) {
  try {
    action();
  } catch (const QORBoundsException& error) {
    return std::string(error.getType().c_str()) + "|" + error.getWho().c_str() + "|" + error.getMessage().c_str() +
           "|" + std::to_string(error.getCode());
  }
  return "no error";
}

constexpr char kOutOfBounds[] = "||Out of Bounds|0";

TEST(QORValSlist, FreshListIsEmpty) {
  const List list;
  EXPECT_TRUE(list.isEmpty());
  EXPECT_EQ(list.entries(), 0U);
  EXPECT_EQ(list.sort(), List::NotSorted);
}

TEST(QORValSlist, AppendPrependAndInsertKeepOrder) {
  List list = listOf({2, 4});
  list.prepend(1);
  list.insertAt(2, 3);
  list.insertAt(4, 5);
  list.insertAt(0, 0);
  EXPECT_EQ(contents(list), (Values{0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(list.first(), 0);
  EXPECT_EQ(list.last(), 5);
}

TEST(QORValSlist, InsertPastTheEndIsOutOfBounds) {
  List list = listOf({1});
  EXPECT_EQ(boundsError([&] { list.insertAt(2, 9); }), kOutOfBounds);
  EXPECT_EQ(contents(list), (Values{1}));
  List empty;
  empty.insertAt(0, 7);
  EXPECT_EQ(contents(empty), (Values{7}));
}

TEST(QORValSlist, IndexPastTheEndIsOutOfBounds) {
  List list = listOf({1, 2});
  const List& constant = list;
  EXPECT_EQ(boundsError([&] { list.at(2); }), kOutOfBounds);
  EXPECT_EQ(boundsError([&] { list[2]; }), kOutOfBounds);
  EXPECT_EQ(boundsError([&] { constant.at(UINT32_MAX); }), kOutOfBounds);
  EXPECT_EQ(boundsError([&] { constant[7]; }), kOutOfBounds);
  EXPECT_EQ(boundsError([&] { list.removeAt(2); }), kOutOfBounds);
}

TEST(QORValSlist, EmptyListHasNoEnds) {
  List list;
  EXPECT_EQ(boundsError([&] { list.first(); }), kOutOfBounds);
  EXPECT_EQ(boundsError([&] { list.last(); }), kOutOfBounds);
  EXPECT_EQ(boundsError([&] { list.removeFirst(); }), kOutOfBounds);
  EXPECT_EQ(boundsError([&] { list.removeLast(); }), kOutOfBounds);
  EXPECT_EQ(boundsError([&] { list.removeAt(0); }), kOutOfBounds);
  EXPECT_EQ(boundsError([&] { list.at(0); }), kOutOfBounds);
}

TEST(QORValSlist, ExtremesOfAnEmptyListNameTheOperation) {
  const List list;
  EXPECT_EQ(boundsError([&] { list.Min(); }), "Bounds|QORValSlist::Min|Empty List|0");
  EXPECT_EQ(boundsError([&] { list.Max(); }), "Bounds|QORValSlist::Max|Empty List|0");
}

TEST(QORValSlist, RemovesByPosition) {
  List list = listOf({1, 2, 3, 4});
  EXPECT_EQ(list.removeAt(0), 1);
  EXPECT_EQ(list.removeAt(2), 4);
  EXPECT_EQ(list.removeFirst(), 2);
  EXPECT_EQ(list.removeLast(), 3);
  EXPECT_TRUE(list.isEmpty());
  list.append(9);
  EXPECT_EQ(contents(list), (Values{9}));
}

TEST(QORValSlist, RemovesTheFirstEqualObject) {
  List list = listOf({1, 2, 1});
  EXPECT_TRUE(list.removeObject(1));
  EXPECT_EQ(contents(list), (Values{2, 1}));
  EXPECT_FALSE(list.removeObject(7));
}

TEST(QORValSlist, FindsEqualObjects) {
  Texts list;
  list.append("a");
  list.append("b");
  list.append("b");
  EXPECT_TRUE(list.contains("b"));
  EXPECT_FALSE(list.contains("B"));
  EXPECT_EQ(list.getIndex("b"), 1);
  EXPECT_EQ(list.getIndex("c"), -1);
  EXPECT_EQ(list.findItem("b"), &list.at(1));
  EXPECT_EQ(list.findItem("c"), nullptr);
}

TEST(QORValSlist, FoundItemIsTheStoredValue) {
  List list = listOf({1, 2});
  *list.findItem(2) = 5;
  EXPECT_EQ(contents(list), (Values{1, 5}));
}

TEST(QORValSlist, CopiesAreIndependent) {
  List list = listOf({2, 1});
  list.sort(List::Ascending);
  List copy(list);
  copy.append(3);
  EXPECT_EQ(contents(list), (Values{1, 2}));
  EXPECT_EQ(contents(copy), (Values{1, 2, 3}));
  EXPECT_EQ(List(list).sort(), List::Ascending) << "a copy is as sorted as its original";
  list = copy;
  const List& self = list;
  list = self;
  EXPECT_EQ(contents(list), (Values{1, 2, 3}));
}

TEST(QORValSlist, AppendsAListEvenItself) {
  List list = listOf({1, 2});
  list.append(listOf({3}));
  list.append(list);
  EXPECT_EQ(contents(list), (Values{1, 2, 3, 1, 2, 3}));
}

TEST(QORValSlist, ComparesElementByElement) {
  EXPECT_TRUE(listOf({1, 2}) == listOf({1, 2}));
  EXPECT_TRUE(listOf({1, 2}) != listOf({1, 3}));
  EXPECT_TRUE(listOf({1, 2}) != listOf({1}));
  EXPECT_TRUE(List() == List());
}

TEST(QORValSlist, ClearEmptiesIt) {
  List list = listOf({1, 2});
  list.clear();
  EXPECT_TRUE(list.isEmpty());
  EXPECT_EQ(boundsError([&] { list.at(0); }), kOutOfBounds);
  list.append(3);
  EXPECT_EQ(list.at(0), 3);
}

TEST(QORValSlist, AppendingToANonEmptyListForgetsItsOrder) {
  List list;
  list.sort(List::Descending);
  EXPECT_EQ(list.sort(), List::Descending);
  list.append(1);
  EXPECT_EQ(list.sort(), List::Descending) << "the first value keeps the order";
  list.append(2);
  EXPECT_EQ(list.sort(), List::NotSorted);
}

TEST(QORValSlist, SortsBothWays) {
  List list = listOf({3, 1, 4, 1, 5, 9, 2, 6});
  list.sort(List::Ascending);
  EXPECT_EQ(contents(list), (Values{1, 1, 2, 3, 4, 5, 6, 9}));
  EXPECT_EQ(list.sort(), List::Ascending);
  EXPECT_EQ(list.first(), 1);
  EXPECT_EQ(list.last(), 9);
  list.sort(List::Descending);
  EXPECT_EQ(contents(list), (Values{9, 6, 5, 4, 3, 2, 1, 1}));
  EXPECT_EQ(list.removeLast(), 1);
  EXPECT_EQ(list.last(), 1);
}

TEST(QORValSlist, AnyOtherOrderValueLeavesTheListAsItIs) {
  List list = listOf({2, 1});
  list.sort(List::Ascending);
  list.sort(static_cast<List::SortOrder>(3));
  EXPECT_EQ(list.sort(), List::NotSorted);
  EXPECT_EQ(contents(list), (Values{1, 2}));
  List other = listOf({2, 1});
  other.sort(List::NotSorted);
  EXPECT_EQ(contents(other), (Values{2, 1}));
}

// Ordered by its key alone; the tag tells equal ones apart.
struct Tagged {
  int key = 0;
  char tag = ' ';
  bool operator<(const Tagged& other) const { return key < other.key; }
  bool operator>(const Tagged& other) const { return key > other.key; }
};

std::string tagsAfterSort(std::initializer_list<Tagged> values, QORValSlist<Tagged>::SortOrder order) {
  QORValSlist<Tagged> list;
  for (const Tagged& value : values) list.append(value);
  list.sort(order);
  std::string tags;
  QORValSlistIterator<Tagged> it(list);
  while (++it) tags += it.key().tag;
  return tags;
}

TEST(QORValSlist, EqualElementsTakeTheRightRunFirst) {
  using Order = QORValSlist<Tagged>;
  EXPECT_EQ(tagsAfterSort({{2, 'b'}, {1, 'a'}, {2, 'c'}}, Order::Ascending), "acb") << "[b1, a, b2] gives [a, b2, b1]";
  EXPECT_EQ(tagsAfterSort({{1, 'a'}, {1, 'b'}}, Order::Ascending), "ba");
  EXPECT_EQ(tagsAfterSort({{1, 'a'}, {1, 'b'}}, Order::Descending), "ba");
  EXPECT_EQ(tagsAfterSort({{1, 'a'}, {1, 'b'}, {1, 'c'}, {1, 'd'}}, Order::Ascending), "dcba");
  EXPECT_EQ(tagsAfterSort({{1, 'a'}, {1, 'b'}, {1, 'c'}, {1, 'd'}, {1, 'e'}}, Order::Ascending), "edcba");
}

// The same merge over a vector, as the judge of larger sorts.
std::vector<Tagged> mergeSorted(std::vector<Tagged> values) {
  for (std::size_t width = 1; width < values.size(); width *= 2) {
    std::vector<Tagged> merged;
    for (std::size_t start = 0; start < values.size(); start += 2 * width) {
      std::size_t left = start;
      std::size_t right = std::min(start + width, values.size());
      const std::size_t leftEnd = right;
      const std::size_t rightEnd = std::min(start + 2 * width, values.size());
      while (left < leftEnd || right < rightEnd) {
        const bool takeLeft = right == rightEnd || (left < leftEnd && values[left] < values[right]);
        merged.push_back(takeLeft ? values[left++] : values[right++]);
      }
    }
    values = merged;
  }
  return values;
}

TEST(QORValSlist, SortAgreesWithThePlainMergeOnRandomLists) {
  std::mt19937 random(42);
  for (unsigned size = 0; size < 70; ++size) {
    std::vector<Tagged> values;
    QORValSlist<Tagged> list;
    for (unsigned i = 0; i < size; ++i) {
      values.push_back({static_cast<int>(random() % 5), static_cast<char>('!' + i)});
      list.append(values.back());
    }
    list.sort(QORValSlist<Tagged>::Ascending);
    const std::vector<Tagged> expected = mergeSorted(values);
    ASSERT_EQ(list.entries(), size);
    for (unsigned i = 0; i < size; ++i) ASSERT_EQ(list.at(i).tag, expected[i].tag) << size << " at " << i;
    for (unsigned i = size; i-- > 0;) ASSERT_EQ(list.removeLast().tag, expected[i].tag) << "backward links";
  }
}

TEST(QORValSlist, SortOfAHundredThousandIsQuick) {
  List list;
  for (int i = 0; i < 100000; ++i) list.append((i * 7919) % 100003);
  list.sort(List::Ascending);
  EXPECT_EQ(list.first(), 0);
  EXPECT_EQ(list.entries(), 100000U);
}

struct Thrower {
  int value = 0;
  bool operator<(const Thrower& other) const {
    if (value == 13 || other.value == 13) throw 13;
    return value < other.value;
  }
  bool operator>(const Thrower& other) const { return other < *this; }
};

TEST(QORValSlist, SortKeepsAllElementsWhenAComparisonThrows) {
  for (int bad = 0; bad < 9; ++bad) {
    QORValSlist<Thrower> list;
    for (int i = 0; i < 9; ++i) list.append(Thrower{i == bad ? 13 : i});
    EXPECT_THROW(list.sort(QORValSlist<Thrower>::Ascending), int);
    EXPECT_EQ(list.sort(), QORValSlist<Thrower>::NotSorted);
    EXPECT_EQ(list.entries(), 9U);
    int sum = 0;
    QORValSlistIterator<Thrower> it(list);
    while (++it) sum += it.key().value;
    EXPECT_EQ(sum, 36 - bad + 13);
    while (!list.isEmpty()) list.removeLast();
  }
}

TEST(QORValSlist, AddSortedFollowsTheListsOrder) {
  List list = listOf({1, 5});
  list.sort(List::Ascending);
  list.addSorted(3);
  list.addSorted(9);
  list.addSorted(0);
  EXPECT_EQ(contents(list), (Values{0, 1, 3, 5, 9}));
  EXPECT_EQ(list.sort(), List::Ascending);
  list.sort(List::Descending);
  list.addSorted(4);
  EXPECT_EQ(contents(list), (Values{9, 5, 4, 3, 1, 0}));
  List unsorted = listOf({2, 1});
  unsorted.addSorted(0);
  EXPECT_EQ(contents(unsorted), (Values{2, 1, 0}));
}

TEST(QORValSlist, FirstOfEqualExtremesWins) {
  QORValSlist<Tagged> list;
  for (const Tagged& value : {Tagged{2, 'a'}, Tagged{1, 'b'}, Tagged{3, 'c'}, Tagged{1, 'd'}, Tagged{3, 'e'}}) {
    list.append(value);
  }
  EXPECT_EQ(list.Min().tag, 'b');
  EXPECT_EQ(list.Max().tag, 'c');
  EXPECT_EQ(listOf({7}).Min(), 7);
}

TEST(QORValSlist, AccessByIndexSurvivesEveryChange) {
  List list;
  Values mirror;
  std::mt19937 random(7);
  for (int step = 0; step < 5000; ++step) {
    const unsigned size = static_cast<unsigned>(mirror.size());
    const unsigned place = static_cast<unsigned>(size == 0 ? 0 : random() % size);
    switch (random() % 7) {
      case 0:
        list.insertAt(place, step);
        mirror.insert(mirror.begin() + place, step);
        break;
      case 1:
        list.append(step);
        mirror.push_back(step);
        break;
      case 2:
        list.prepend(step);
        mirror.insert(mirror.begin(), step);
        break;
      case 3:
        if (size > 20) {
          ASSERT_EQ(list.removeAt(place), mirror[place]);
          mirror.erase(mirror.begin() + place);
        }
        break;
      case 4:
        if (random() % 50 == 0) {
          list.sort(List::Ascending);
          std::sort(mirror.begin(), mirror.end());
        }
        break;
      default:
        if (size > 0) {
          ASSERT_EQ(list.at(place), mirror[place]);
        }
    }
  }
  EXPECT_EQ(contents(list), mirror);
}

TEST(QORValSlist, WalkingByIndexIsConstantTimePerStep) {
  List list;
  const int count = 200000;
  for (int i = 0; i < count; ++i) list.append(i);
  long long sum = 0;
  for (int i = 0; i < count; ++i) sum += list.at(static_cast<QORuint32>(i));
  for (int i = count; i-- > 0;) sum -= list.at(static_cast<QORuint32>(i));
  EXPECT_EQ(sum, 0);
}

TEST(QORValSlistIterator, FreshIteratorHasNoCurrentElement) {
  const List list = listOf({1, 2});
  QORValSlistIterator<int> it(list);
  EXPECT_EQ(boundsError([&] { it.key(); }), kOutOfBounds);
  EXPECT_TRUE(it.hasNext());
  EXPECT_TRUE(++it);
  EXPECT_EQ(it.key(), 1);
  EXPECT_TRUE(it());
  EXPECT_EQ(it.key(), 2);
  EXPECT_FALSE(it.hasNext());
}

TEST(QORValSlistIterator, StaysAtTheEnd) {
  List list = listOf({1});
  QORValSlistIterator<int> it(list);
  EXPECT_TRUE(++it);
  EXPECT_FALSE(++it);
  EXPECT_EQ(boundsError([&] { it.key(); }), kOutOfBounds);
  list.append(2);
  EXPECT_FALSE(++it) << "past the end for good";
  EXPECT_FALSE(it());
  EXPECT_FALSE(it.hasNext());
  it.reset();
  EXPECT_TRUE(++it);
  EXPECT_EQ(it.key(), 1);
}

TEST(QORValSlistIterator, EmptyListEndsAtOnce) {
  const List list;
  QORValSlistIterator<int> it(list);
  EXPECT_FALSE(it.hasNext());
  EXPECT_FALSE(++it);
}

TEST(QORValSlistIterator, MovesSeveralSteps) {
  const List list = listOf({1, 2, 3, 4});
  QORValSlistIterator<int> it(list);
  EXPECT_TRUE(it += 3);
  EXPECT_EQ(it.key(), 3);
  EXPECT_TRUE(it += 0);
  EXPECT_EQ(it.key(), 3);
  EXPECT_FALSE(it += 5);
}

TEST(QORValSlistIterator, KeyIsTheStoredValue) {
  List list = listOf({1});
  QORValSlistIterator<int> it(list);
  ++it;
  it.key() = 5;
  EXPECT_EQ(list.first(), 5);
}

TEST(QORValSlistIterator, RemoveMovesOnToTheElementAfter) {
  List list = listOf({1, 2, 3, 4});
  QORValSlistIterator<int> it(list);
  ++it;
  EXPECT_EQ(it.remove(), 1);
  EXPECT_TRUE(it.hasNext());
  EXPECT_TRUE(++it);
  EXPECT_EQ(it.key(), 2);
  ++it;
  EXPECT_EQ(it.remove(), 3);
  EXPECT_EQ(boundsError([&] { it.remove(); }), kOutOfBounds) << "one removal per element";
  ++it;
  EXPECT_EQ(it.remove(), 4);
  EXPECT_FALSE(it.hasNext());
  EXPECT_FALSE(++it);
  EXPECT_FALSE(++it);
  EXPECT_EQ(contents(list), (Values{2}));
}

TEST(QORValSlistIterator, RemovesEveryElement) {
  List list = listOf({1, 2, 3});
  QORValSlistIterator<int> it(list);
  int count = 0;
  while (++it) {
    it.remove();
    ++count;
  }
  EXPECT_EQ(count, 3);
  EXPECT_TRUE(list.isEmpty());
}

}  // namespace
