// Keys of a sort by themselves: whatever the keys and however many, the order is that of a stable sort of the rows from
// the last to the first.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_SortKeys.h"
#include "NumberViews.h"
#include "QueryWorld.h"
#include "cimom/CQoriValue.h"

namespace {

using Rows = std::vector<QORuint32>;

// Round these sizes another way of sorting begins.
const std::vector<std::size_t> kSizes = {1, 2, 15, 16, 17, 100, 511, 512, 513, 1500};

QoriScalar textView(const QORString& text) {
  QoriScalar key;
  key.kind = QoriScalarKind::Text;
  key.text = &text;
  return key;
}

Rows sorted(const std::vector<QoriScalar>& keys, bool isAscending) {
  QORQL_SortKeys sort;
  sort.reserve(keys.size());
  for (const QoriScalar& key : keys) EXPECT_TRUE(sort.add(key, {}));
  EXPECT_TRUE(sort.areSortable());
  QORQL_SortKeys runs;  // the same keys in two runs
  const std::size_t first = keys.size() / 3;
  EXPECT_TRUE(runs.add(keys.data(), first) && runs.add(keys.data() + first, keys.size() - first));
  EXPECT_TRUE(runs.areSortable());
  const Rows rows = sort.takeSorted(isAscending);
  EXPECT_EQ(runs.takeSorted(isAscending), rows);
  return rows;
}

// Sorts both ways and compares with what `isLess` on rows makes of them.
template <class Less>
void expectSorted(const std::vector<QoriScalar>& keys, const Less& isLess) {
  for (const bool isAscending : {true, false}) {
    Rows expected(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i) expected[i] = static_cast<QORuint32>(keys.size() - 1 - i);
    std::stable_sort(expected.begin(), expected.end(),
                     [&](QORuint32 a, QORuint32 b) { return isAscending ? isLess(a, b) : isLess(b, a); });
    EXPECT_EQ(sorted(keys, isAscending), expected) << keys.size() << (isAscending ? " ascending" : " descending");
  }
}

template <class Number>
void expectNumbersSorted(const std::vector<Number>& numbers) {
  std::vector<QoriScalar> keys;
  for (const Number one : numbers) keys.push_back(number(one));
  expectSorted(keys, [&](QORuint32 a, QORuint32 b) { return numbers[a] < numbers[b]; });
}

void expectTextsSorted(const std::vector<std::string>& texts) {
  const std::vector<QORString> held(texts.begin(), texts.end());
  std::vector<QoriScalar> keys;
  for (const QORString& text : held) keys.push_back(textView(text));
  expectSorted(keys, [&](QORuint32 a, QORuint32 b) { return texts[a] < texts[b]; });
}

TEST(SortKeys, EqualKeysComeLastRowFirst) {
  const std::vector<QoriScalar> keys = {number(2ULL), number(1ULL), number(2ULL), number(1ULL)};
  EXPECT_EQ(sorted(keys, true), (Rows{3, 1, 2, 0}));
  EXPECT_EQ(sorted(keys, false), (Rows{2, 0, 3, 1}));
  EXPECT_EQ(sorted({}, true), Rows());
}

TEST(SortKeys, NumbersOfEveryKind) {
  std::mt19937_64 random(5);
  for (const std::size_t size : kSizes) {
    std::vector<long long> integers(size);
    std::vector<unsigned long long> great(size);
    std::vector<double> reals(size);
    for (std::size_t i = 0; i < size; ++i) {
      integers[i] = static_cast<long long>(random() % 2000) - 1000;
      great[i] = ~0ULL - random() % 1000 * (random() % 2 << 50U);
      reals[i] = static_cast<double>(integers[i]) / 4;
    }
    integers[size / 2] = std::numeric_limits<long long>::min();
    integers[size - 1] = std::numeric_limits<long long>::max();
    great[size / 3] = 0;
    reals[0] = -0.0;
    reals[size / 2] = 0.0;
    reals[size - 1] = -std::numeric_limits<double>::infinity();
    expectNumbersSorted(integers);
    expectNumbersSorted(great);
    expectNumbersSorted(reals);
  }
}

TEST(SortKeys, NumbersThatDifferInOneDigitOrInNone) {
  for (const std::size_t size : kSizes) {
    expectNumbersSorted(std::vector<long long>(size, -3));
    for (unsigned shift = 0; shift < 64; shift += 8) {
      std::vector<unsigned long long> numbers(size);
      for (std::size_t i = 0; i < size; ++i) numbers[i] = (i * 7919 % 13) << shift | 1ULL << 40U;
      expectNumbersSorted(numbers);
    }
  }
}

TEST(SortKeys, TextsBeyondTheirFirstBytes) {
  expectTextsSorted({"abcdefghij", "abcdefgh", std::string("abcdefgh\0", 9), "abcdefghia", "", "b", "\xff", "abcdefg",
                     std::string("abcdefg\0", 8), std::string("\0", 1), "abcdef", std::string("abcdef\0", 7)});
}

// Behind a common front of any length: ends of every length, of bytes that are easily taken for an end.
TEST(SortKeys, TextsThatShareTheirFronts) {
  std::mt19937_64 random(7);
  for (const std::size_t front : {0U, 1U, 6U, 7U, 8U, 13U, 14U, 15U, 500U}) {
    for (const std::size_t size : kSizes) {
      std::vector<std::string> texts(size);
      for (std::string& text : texts) {
        text.assign(front, 'x');
        for (std::size_t more = random() % 18; more != 0; --more)
          text +=
              "\0\x01"
              "b\xff"[random() % 4];
      }
      expectTextsSorted(texts);
    }
  }
}

TEST(SortKeys, TextsOfFewKindsAndOfOne) {
  for (const std::size_t size : kSizes) {
    for (const std::size_t length : {0U, 3U, 7U, 8U, 14U, 20U, 300U}) {
      expectTextsSorted(std::vector<std::string>(size, std::string(length, 'x')));
      std::vector<std::string> texts(size);
      for (std::size_t i = 0; i < size; ++i)
        texts[i] = std::string(length, "ab"[i % 2]) + "end" + std::to_string(i % 3);
      expectTextsSorted(texts);
    }
  }
}

// Each text is the front of the next one.
TEST(SortKeys, TextsOfWhichOneGoesOnWhereAnotherEnds) {
  std::vector<std::string> texts;
  for (std::size_t length = 0; length < 600; ++length) texts.emplace_back(length * 331 % 600, 'x');
  expectTextsSorted(texts);
}

TEST(SortKeys, TextsThatWereMadeForTheSortAreKept) {
  QORQL_SortKeys sort;
  for (int i = 0; i < 600; ++i) {
    const QORSmrPtr<IQoriValue> made(new CQoriValue(QORString("a made text " + std::to_string(i * 7 % 600))));
    EXPECT_TRUE(sort.add(made->scalar(), made));
  }
  const Rows rows = sort.takeSorted(true);
  EXPECT_EQ(rows[0], 0U);
  EXPECT_EQ(rows[1], 343U);  // 343 * 7 = 4 * 600 + 1
}

TEST(SortKeys, RefusesWhatDoesNotGoTogether) {
  const QORString text("x");
  QORQL_SortKeys numbers;
  EXPECT_FALSE(numbers.add(QoriScalar(), {}));
  EXPECT_TRUE(numbers.add(number(1ULL), {}));
  EXPECT_FALSE(numbers.add(textView(text), {}));
  QORQL_SortKeys texts;
  EXPECT_TRUE(texts.add(textView(text), {}));
  EXPECT_FALSE(texts.add(number(1ULL), {}));
  QORQL_SortKeys mixed;
  for (const QoriScalar& key : {number(-1LL), number(~0ULL)}) EXPECT_TRUE(mixed.add(key, {}));
  EXPECT_FALSE(mixed.areSortable());
}

QoriScalar dateTimeView(const QORString& text) {
  QoriScalar key = textView(text);
  key.kind = QoriScalarKind::DateTime;
  return key;
}

TEST(SortKeys, DatetimesByTheirMoment) {
  std::vector<QORString> timestamps;
  std::vector<QORString> intervals;
  std::mt19937_64 random(5);
  for (int i = 0; i < 600; ++i) {
    std::array<char, 64> text{};
    const unsigned day = static_cast<unsigned>(random() % 3 + 1);
    const unsigned hour = static_cast<unsigned>(random() % 24);
    std::snprintf(text.data(), text.size(), "%s02%02u%02u0000.00000%u%c%03u", i % 7 == 0 ? "0004" : "2024", day, hour,
                  static_cast<unsigned>(random() % 2), random() % 2 == 0 ? '+' : '-',
                  static_cast<unsigned>(random() % 3 * 60));
    timestamps.emplace_back(text.data());
    std::snprintf(text.data(), text.size(), "%08u%02u0000.000000:000", day * 11111111, hour);
    intervals.emplace_back(text.data());
  }
  for (const std::vector<QORString>& texts : {timestamps, intervals}) {
    std::vector<QoriScalar> keys;
    std::vector<QORSmrPtr<IQoriValue>> values;
    for (const QORString& text : texts) {
      keys.push_back(dateTimeView(text));
      values.emplace_back(new CQoriValue(text, CQoriType::datetime));
    }
    expectSorted(keys, [&](QORuint32 a, QORuint32 b) { return *values[a] < *values[b]; });
  }
}

// Whether a run of timestamps goes with another key before it.
bool begunWith(const QoriScalar& other, const std::array<QoriScalar, 3>& run) {
  QORQL_SortKeys keys;
  return keys.add(&other, 1) && keys.add(run.data(), 1);
}

TEST(SortKeys, DatetimesThatAreComparedAsTextsAreLeftToOthers) {
  const QORString timestamp("20240131110000.000000+000");
  const QORString interval("00000009000000.000000:000");
  const QORString incomplete("20240131******.******+000");
  for (const QORString* const other : {&interval, &incomplete}) {
    QORQL_SortKeys keys;
    EXPECT_TRUE(keys.add(dateTimeView(timestamp), {}));
    EXPECT_FALSE(keys.add(dateTimeView(*other), {}));
    EXPECT_FALSE(keys.add(textView(timestamp), {}));
    EXPECT_FALSE(keys.add(number(1ULL), {}));
  }
  for (const QoriScalar& other :
       {dateTimeView(interval), dateTimeView(incomplete), textView(timestamp), number(1ULL), QoriScalar()}) {
    const std::array<QoriScalar, 3> run{dateTimeView(timestamp), other, dateTimeView(timestamp)};
    EXPECT_FALSE(QORQL_SortKeys().add(run.data(), 3));
    QORQL_SortKeys begun;
    EXPECT_TRUE(begun.add(run.data(), 1));
    EXPECT_FALSE(begun.add(run.data() + 1, 2));
    if (begunWith(other, run)) ADD_FAILURE() << "timestamps joined other keys";
  }
}

// Rows of one class and pairs of rows, in both modes.
TEST(SortKeys, OfWholeQueries) {
  std::string mof =
      "class N { [key] uint32 k; string t; sint64 s; real64 r; };\nclass Two { [key] uint32 k; };\n"
      "instance of Two { k = 0; };\ninstance of Two { k = 1; };\n";
  for (int i = 0; i < 600; ++i) {
    const std::string other = std::to_string(i * 7919 % 601 / 2);
    mof += "instance of N { k = " + std::to_string(i) + "; t = \"a name that is long " + other +
           "\"; s = " + (i % 2 != 0 ? "-" : "") + other + "; r = " + (i % 3 != 0 ? "-" : "") + other + ".5; };\n";
  }
  QueryWorld world(mof);
  for (const char* const key : {"t", "s", "r", "N.k * 0", "-s", "t + 'x'"}) {
    for (const char* const order : {" ASC", " DESC"}) {
      EXPECT_EQ(world.error("SELECT N.k FROM N ORDER BY " + std::string(key) + order), "");
      EXPECT_EQ(world.error("SELECT N.k FROM N WHERE N.k > 40 ORDER BY " + std::string(key) + order), "");
      EXPECT_EQ(world.error("SELECT N.k, Two.k FROM N, Two ORDER BY " + std::string(key) + order), "");
    }
  }
}

}  // namespace
