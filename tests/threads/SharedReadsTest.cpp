// What several threads may do with one object at the same time without a lock:
// read lists, maps and values, and copy strings and pointers.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "cimom/IQoriValue.h"
#include "cmpbase.h"

namespace {

constexpr int kThreads = 8;

// Runs the check on all threads at once; each returns what is wrong.
void runTogether(const std::function<std::string(int thread)>& check) {
  std::atomic<int> waiting{kThreads};
  std::vector<std::string> wrong(kThreads);
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      --waiting;
      while (waiting != 0) std::this_thread::yield();
      wrong[static_cast<std::size_t>(i)] = check(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < kThreads; ++i) EXPECT_EQ(wrong[static_cast<std::size_t>(i)], "") << "thread " << i;
}

std::string expectThat(bool isRight, const char* what) { return isRight ? std::string() : std::string(what); }

using List = QORValSlist<QORString>;

QORString textOf(QORuint32 i) { return QORString::number(QORuint64{100000} + i); }

QORSmrPtr<List> makeList(QORuint32 count) {
  QORSmrPtr<List> list(new List);
  for (QORuint32 i = 0; i < count; ++i) list->append(textOf(i));
  return list;
}

TEST(SharedReads, AListIsReadByIndexInAllDirections) {
  constexpr QORuint32 kCount = 2000;
  const QORSmrPtr<List> list = makeList(kCount);
  runTogether([&](int thread) {
    for (QORuint32 i = 0; i < kCount; ++i) {
      const QORuint32 index = thread % 3 == 0 ? i : thread % 3 == 1 ? kCount - 1 - i : i * 7 % kCount;
      if (!(list->at(index) == textOf(index))) return std::string("at()");
      const List& constant = *list;
      if (!(constant[index] == textOf(index))) return std::string("operator[]");
    }
    return std::string();
  });
}

// Threads find the list with a note of fewer places than it has items.
TEST(SharedReads, AListThatHasGrownSinceItWasReadIsReadByIndex) {
  constexpr QORuint32 kCount = 600;
  const QORSmrPtr<List> list = makeList(kCount / 3);
  for (QORuint32 i = 0; i < list->entries(); ++i) ASSERT_EQ(list->at(i), textOf(i));
  for (QORuint32 i = kCount / 3; i < kCount; ++i) list->append(textOf(i));
  runTogether([&](int thread) {
    for (QORuint32 i = 0; i < kCount; ++i) {
      const QORuint32 index = (i + static_cast<QORuint32>(thread) * 75) % kCount;
      if (!(list->at(index) == textOf(index))) return std::string("at()");
    }
    return std::string();
  });
}

TEST(SharedReads, AListIsSearchedIteratedAndCopied) {
  constexpr QORuint32 kCount = 60;
  const QORSmrPtr<QORValSlist<int>> list(new QORValSlist<int>);
  for (QORuint32 i = 0; i < kCount; ++i) list->append(static_cast<int>(i));
  runTogether([&](int) {
    for (int round = 0; round < 30; ++round) {
      if (list->first() != 0 || list->last() != 59 || list->Min() != 0 || list->Max() != 59) return std::string("ends");
      if (!list->contains(30) || list->contains(60) || list->getIndex(31) != 31) return std::string("search");
      if (list->findItem(32) == nullptr || *list->findItem(32) != 32) return std::string("findItem");
      int sum = 0;
      list->forEach([&](int value) { sum += value; });
      QORValSlistIterator<int> it(*list);
      while (++it) sum -= it.key();
      if (sum != 0) return std::string("iterators");
      const QORValSlist<int> copy(*list);
      if (copy != *list || copy.entries() != list->entries() || list->isEmpty()) return std::string("copy");
      if (copy.at(40) != 40 || list->at(40) != 40) return std::string("at()");
      if (list->sort() != QORValSlist<int>::NotSorted) return std::string("order");
    }
    return std::string();
  });
}

TEST(SharedReads, AMapIsSearchedIteratedAndCopied) {
  for (const QORuint32 count : {5U, 200U}) {  // in one chain, and in one for each bucket
    QORValMap<QORString, QORString> map(hashKeyQORString, 150);
    for (QORuint32 i = 0; i < count; ++i) map.insert(textOf(i), textOf(i + 1));
    runTogether([&](int) {
      for (int round = 0; round < 10; ++round) {
        QORString found;
        if (!map.find(textOf(3), found) || !(found == textOf(4))) return std::string("find");
        if (!map.contains(textOf(0)) || map.contains("x") || map.peek(textOf(2)) == nullptr)
          return std::string("search");
        QORuint32 seen = 0;
        QORValMapIterator<QORString, QORString> it(map);
        while (++it) seen += it.key() == "" || it.value() == it.peekKey() ? 0 : 1;
        if (seen != count || map.entries() != count || map.isEmpty()) return std::string("iterators");
        const QORValMap<QORString, QORString> copy(map);
        if (copy.entries() != count) return std::string("copy");
        int used = 0;
        map.examineHash(&used, nullptr, nullptr);
        if (used == 0) return std::string("statistics");
      }
      return std::string();
    });
  }
}

TEST(SharedReads, AStringIsCopiedReadAndChangedInCopies) {
  const QORString text("the text that all of them hold");
  runTogether([&](int thread) {
    for (int round = 0; round < 200; ++round) {
      QORString copy(text);
      const QORString other = copy;
      copy += "!";
      copy.toUpper();
      if (!(other == text) || copy.length() != text.length() + 1 || !other.contains("all", true)) {
        return "thread " + std::to_string(thread);
      }
      if (hashKeyQORString(other) != hashKeyQORString(text) || text.compareTo(other) != 0)
        return std::string("compare");
      if (!(QORString::emptyString() == QORString())) return std::string("empty");
    }
    return std::string();
  });
}

struct Base {
  virtual ~Base() = default;
  int number = 7;
};
struct Derived : Base {};

TEST(SharedReads, APointerIsCopiedConvertedAndDropped) {
  const QORSmrPtr<Derived> shared(new Derived);
  const QORSmrPtr<Base> inPlace(QORSmrPtr<Base>::Make<Derived>());
  const QORSmrPtr<Base> null;
  runTogether([&](int) {
    for (int round = 0; round < 300; ++round) {
      QORSmrPtr<Base> copy(shared);
      const QORSmrPtr<Derived> back(copy.DynamicCast<Derived>());
      copy = inPlace;
      const QORSmrPtr<Base> nothing(null);
      if (back->number != 7 || copy->number != 7 || !nothing.IsNull() || shared.IsUnique())
        return std::string("pointer");
    }
    return std::string();
  });
  EXPECT_TRUE(shared.IsUnique());
  EXPECT_TRUE(inPlace.IsUnique());
}

TEST(SharedReads, OneTextIsMadeForAllThatAskForIt) {
  const QoriMadeText text;
  std::atomic<const QORString*> seen{nullptr};
  runTogether([&](int) {
    const QORString* const mine = &text.get([] { return QORString("made"); });
    const QORString* expected = nullptr;
    const bool isFirst = seen.compare_exchange_strong(expected, mine);
    return expectThat((isFirst || expected == mine) && *mine == "made", "another text");
  });
}

}  // namespace
