// Lists, maps, strings and converted pointers with memory of slabs: they behave as those with memory of their own,
// and outlive the slabs.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "cmpbase/QORSlabs.h"
#include "cmpbase/QORSmrPtr.h"
#include "cmpbase/QORString.h"
#include "cmpbase/QORValMap.h"
#include "cmpbase/QORValSlist.h"

namespace {

using List = QORValSlist<QORString>;
using Map = QORValMap<QORString, QORString>;

std::string text(const QORString& string) { return std::string(string.view()); }

std::string joined(const List& list) {
  std::string all;
  list.forEach([&all](const QORString& value) { all += text(value) + " "; });
  return all;
}

struct Fragile {
  explicit Fragile(bool breaks) : breaks(breaks) {}
  Fragile(const Fragile& other) : breaks(other.breaks) {
    if (breaks) throw std::runtime_error("no copy");
  }
  bool breaks;
};

TEST(SlabList, IsAListThatOutlivesItsSlabs) {
  List list;
  {
    QORSlabs slabs;
    for (const char* value : {"c", "a", "d", "b"}) list.append(QORString(value), slabs);
  }
  EXPECT_EQ(joined(list), "c a d b ");
  list.append("e");
  list.prepend("0");
  list.insertAt(2, "1");
  EXPECT_EQ(joined(list), "0 c 1 a d b e ");
  EXPECT_EQ(text(list.removeAt(2)), "1");
  EXPECT_TRUE(list.removeObject("d"));
  EXPECT_EQ(joined(list), "0 c a b e ");
  QORValSlistIterator<QORString> values(list);
  while (++values) {
    if (!(values.key() == "a")) values.remove();
  }
  EXPECT_EQ(joined(list), "a ");
  list.clear();
  list.append("again");
  EXPECT_EQ(joined(list), "again ");
}

TEST(SlabList, IsSorted) {
  QORValSlist<int> list;
  {
    QORSlabs slabs;
    for (const int value : {3, 1, 4, 1, 5, 9, 2, 6}) list.append(int{value}, slabs);
  }
  list.sort(QORValSlist<int>::Descending);
  list.addSorted(7);
  std::string all;
  list.forEach([&all](int value) { all += std::to_string(value); });
  EXPECT_EQ(all, "976543211");
}

TEST(SlabList, ThatHasBegunWithoutSlabsGoesOnWithoutThem) {
  List list;
  list.append("a");
  {
    QORSlabs slabs;
    list.append(QORString("b"), slabs);
    const QORString value("c");
    list.append(value, slabs);
  }
  EXPECT_EQ(joined(list), "a b c ");
}

TEST(SlabList, IsCopiedMovedAndExchanged) {
  std::optional<QORSlabs> slabs(std::in_place);
  List first;
  List second;
  for (const char* value : {"a", "b"}) first.append(QORString(value), *slabs);
  second.append("x");
  slabs.reset();
  List copy(first);
  EXPECT_EQ(joined(copy), "a b ");
  std::swap(first, second);
  EXPECT_EQ(joined(first) + joined(second), "x a b ");
  first.append("y");
  second.append("c");
  second = first;
  EXPECT_EQ(joined(second), "x y ");
  first = std::move(copy);
  EXPECT_EQ(joined(first), "a b ");
  first.append(first);
  EXPECT_EQ(joined(first), "a b a b ");
}

TEST(SlabList, AValueThatCannotBeCopiedLeavesTheListAsItWas) {
  QORSlabs slabs;
  QORValSlist<Fragile> list;
  list.append(Fragile(false), slabs);
  const Fragile fragile(true);
  EXPECT_THROW(list.append(fragile, slabs), std::runtime_error);
  EXPECT_THROW(list.append(fragile), std::runtime_error);
  EXPECT_EQ(list.entries(), 1U);
}

TEST(SlabMap, IsAMapThatOutlivesItsSlabs) {
  Map map(&hashKeyQORString, 7);
  {
    QORSlabs slabs;
    for (int i = 0; i < 20; ++i) {
      const QORString key = QORString::number(QORuint64{static_cast<unsigned>(i)});
      map.insert(key, QORString("v") + key, slabs);
    }
    map.insert("3", "three", slabs);
  }
  map.insert("4", "four");
  EXPECT_EQ(map.entries(), 20U);
  EXPECT_EQ(text(*map.peek("3")) + text(*map.peek("4")) + text(*map.peek("19")), "threefourv19");
  EXPECT_TRUE(map.remove("19"));
  const Map copy(map);
  map.clear();
  EXPECT_TRUE(map.isEmpty());
  EXPECT_EQ(copy.entries(), 19U);
  EXPECT_EQ(text(*copy.peek("3")), "three");
}

TEST(SlabMap, AKeyMayBeReplacedByItself) {
  QORSlabs slabs;
  Map map(&hashKeyQORString, 7);
  map.insert("k", "v", slabs);
  QORValMapIterator<QORString, QORString> items(map);
  ASSERT_TRUE(++items);
  map.insert(items.peekKey(), items.peekValue(), slabs);
  EXPECT_EQ(map.entries(), 1U);
  EXPECT_EQ(text(*map.peek("k")), "v");
}

TEST(SlabString, IsAStringThatOutlivesItsSlabs) {
  QORString kept;
  QORString changed;
  {
    QORSlabs slabs;
    kept = QORString("some text", slabs);
    changed = kept;
  }
  changed.toUpper();
  changed += " and more than it had room for";
  EXPECT_EQ(text(kept), "some text");
  EXPECT_STREQ(kept.c_str(), "some text");
  EXPECT_EQ(text(changed), "SOME TEXT and more than it had room for");
  kept.toUpper();
  EXPECT_EQ(text(kept), "SOME TEXT");
}

TEST(SlabString, OfEachLengthEndsWithAZero) {
  QORSlabs slabs;
  std::vector<QORString> strings;
  const std::string letters(300, 'x');
  for (std::size_t length = 0; length <= letters.size(); ++length) {
    strings.emplace_back(std::string_view(letters).substr(0, length), slabs);
  }
  for (std::size_t length = 0; length <= letters.size(); ++length) {
    ASSERT_EQ(text(strings[length]), letters.substr(0, length));
    ASSERT_EQ(strings[length].c_str()[length], '\0');
  }
}

TEST(SlabString, WithoutTextIsEmptyAndNotNull) {
  QORSlabs slabs;
  const QORString empty(std::string_view(), slabs);
  EXPECT_TRUE(empty.isEmpty());
  EXPECT_FALSE(empty.isNull());
}

TEST(SlabString, KeepsZeroBytesAndAnyLength) {
  const std::string bytes(200'000, '\0');
  QORString kept;
  {
    QORSlabs slabs;
    kept = QORString(bytes, slabs);
  }
  EXPECT_EQ(text(kept), bytes);
}

struct Base {
  explicit Base(int* deaths) : deaths(deaths) {}
  virtual ~Base() { ++*deaths; }
  int* deaths;
};
struct Derived : Base {
  using Base::Base;
};

TEST(SlabPointer, AConversionInSlabsSharesTheObject) {
  int deaths = 0;
  QORSmrPtr<Derived> derived;
  {
    QORSlabs slabs;
    const QORSmrPtr<Base> base = QORSmrPtr<Base>::MakeIn<Derived>(slabs, &deaths);
    derived = base.StaticCastIn<Derived>(slabs);
    EXPECT_TRUE(QORSmrPtr<Base>().StaticCastIn<Derived>(slabs).IsNull());
    EXPECT_FALSE(derived.IsUnique());
  }
  EXPECT_EQ(deaths, 0);
  const QORSmrPtr<Derived> copy = derived;
  derived.Release();
  EXPECT_EQ(deaths, 0);
  QORSmrPtr<Base> again = copy;
  again.Release();
  EXPECT_EQ(deaths, 0);
}

TEST(SlabPointer, AConversionOfAnObjectWithMemoryOfItsOwn) {
  int deaths = 0;
  {
    QORSmrPtr<Base> base(new Derived(&deaths));
    QORSmrPtr<Derived> derived;
    {
      QORSlabs slabs;
      derived = base.StaticCastIn<Derived>(slabs);
    }
    base.Release();
    EXPECT_EQ(deaths, 0);
  }
  EXPECT_EQ(deaths, 1);
}

TEST(SlabReturns, OfManyObjectsTogetherEndEachOfThem) {
  int deaths = 0;
  std::vector<QORSmrPtr<Base>> objects;
  {
    QORSlabs first;
    QORSlabs second;
    for (int i = 0; i < 3'000; ++i)
      objects.push_back(QORSmrPtr<Base>::MakeIn<Derived>(i % 3 == 0 ? first : second, &deaths));
  }
  {
    const QORSlabs::Returning together;
    objects.resize(2'000);
    {
      const QORSlabs::Returning within;
      objects.resize(1'000);
    }
    objects.resize(500);
  }
  EXPECT_EQ(deaths, 2'500);
  EXPECT_EQ(*objects.front()->deaths, 2'500);
  objects.clear();
  EXPECT_EQ(deaths, 3'000);
}

TEST(SlabReturns, BelongToTheirThread) {
  int deaths = 0;
  int others = 0;
  std::vector<QORSmrPtr<Base>> here;
  std::vector<QORSmrPtr<Base>> there;
  {
    QORSlabs slabs;
    for (int i = 0; i < 1'000; ++i) {
      here.push_back(QORSmrPtr<Base>::MakeIn<Derived>(slabs, &deaths));
      there.push_back(QORSmrPtr<Base>::MakeIn<Derived>(slabs, &others));
    }
  }
  std::thread other([&there] {
    const QORSlabs::Returning together;
    there.clear();
  });
  {
    const QORSlabs::Returning together;
    here.clear();
  }
  other.join();
  EXPECT_EQ(deaths, 1'000);
  EXPECT_EQ(others, 1'000);
}

TEST(SlabReturns, OfASlabThatIsStillOpen) {
  int deaths = 0;
  QORSlabs slabs;
  QORSmrPtr<Base> kept;
  {
    const QORSlabs::Returning together;
    for (int i = 0; i < 100; ++i) {
      const auto gone = QORSmrPtr<Base>::MakeIn<Derived>(slabs, &deaths);
      if (i == 50) kept = QORSmrPtr<Base>::MakeIn<Derived>(slabs, &deaths);
    }
  }
  EXPECT_EQ(deaths, 100);
  EXPECT_EQ(kept->deaths, &deaths);
}

TEST(Slabs, ExpectedBytesLieSideBySide) {
  constexpr std::size_t kObjects = 500;
  constexpr std::size_t kSize = 64;
  QORSlabs slabs(kObjects * kSize + QORSlabs::kAlignment);
  std::vector<std::pair<char*, QORSlabs::Place>> taken;
  for (std::size_t i = 0; i < kObjects; ++i) {
    QORSlabs::Place place = QORSlabs::kNowhere;
    taken.emplace_back(static_cast<char*>(slabs.take(kSize, place)), place);
  }
#if !QORQL_ADDRESSES_ARE_WATCHED
  for (std::size_t i = 1; i < kObjects; ++i) EXPECT_EQ(taken[i].first, taken[i - 1].first + kSize);
#endif
  for (const auto& [memory, place] : taken) QORSlabs::giveBack(memory, place);
}

}  // namespace
