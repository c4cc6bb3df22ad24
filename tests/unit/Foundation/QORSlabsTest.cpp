// Objects made in slabs: they live as long as they are held, wherever the rest of their slab has gone.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "cmpbase/QORSlabs.h"
#include "cmpbase/QORSmrPtr.h"

namespace {

struct Part {
  explicit Part(int value, int* deaths = nullptr) : value(value), deaths(deaths) {}
  virtual ~Part() {
    if (deaths != nullptr) ++*deaths;
  }
  int value;
  int* deaths;
};
struct Other {
  virtual ~Other() = default;
  int other = 7;
};
// As a Part it lies behind the Other part, so that conversion moves the pointer.
struct Both : Other, Part {
  using Part::Part;
};
struct Throwing {
  Throwing() { throw std::runtime_error("no"); }
};

using Pointer = QORSmrPtr<Part>;

TEST(QORSlabs, PlacesLieApartAndAligned) {
  QORSlabs slabs;
  std::vector<std::pair<unsigned char*, QORSlabs::Place>> taken;
  for (std::size_t size = 1; size <= 200; ++size) {
    QORSlabs::Place place = QORSlabs::kNowhere;
    auto* const memory = static_cast<unsigned char*>(slabs.take(size, place));
    EXPECT_NE(place, QORSlabs::kNowhere);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % QORSlabs::kAlignment, 0U);
    std::fill(memory, memory + size, static_cast<unsigned char>(size));
    taken.emplace_back(memory, place);
  }
  for (std::size_t size = 1; size <= 200; ++size) {
    const auto [memory, place] = taken[size - 1];
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(memory[i], size) << i;
    QORSlabs::giveBack(memory, place);
  }
}

TEST(QORSlabs, ObjectsOutliveTheirMaker) {
  int deaths = 0;
  Pointer kept;
  {
    QORSlabs slabs;
    const Pointer gone = Pointer::MakeIn(slabs, 1, &deaths);
    kept = Pointer::MakeIn(slabs, 2, &deaths);
  }
  EXPECT_EQ(deaths, 1);
  EXPECT_EQ(kept->value, 2);
  EXPECT_TRUE(kept.IsUnique());
  kept = nullptr;
  EXPECT_EQ(deaths, 2);
}

TEST(QORSlabs, EachOfThousandsOfObjectsLivesAsLongAsItIsHeld) {
  constexpr int kCount = 20'000;  // of slabs of all sizes
  int deaths = 0;
  std::vector<Pointer> parts;
  {
    QORSlabs slabs;
    for (int i = 0; i < kCount; ++i) parts.push_back(Pointer::MakeIn(slabs, i, &deaths));
  }
  std::mt19937 random(1);
  std::vector<int> order(kCount);
  for (int i = 0; i < kCount; ++i) order[static_cast<std::size_t>(i)] = i;
  std::shuffle(order.begin(), order.end(), random);
  for (int i = 0; i < kCount; ++i) {
    Pointer& part = parts[static_cast<std::size_t>(order[static_cast<std::size_t>(i)])];
    ASSERT_EQ(part->value, order[static_cast<std::size_t>(i)]);
    part.Release();
    ASSERT_EQ(deaths, i + 1);
  }
}

TEST(QORSlabs, AnObjectMayBeGreaterThanSlabsAre) {
  struct Great {
    std::array<char, 200'000> bytes{};
  };
  QORSlabs slabs;
  const Pointer before = Pointer::MakeIn(slabs, 1);
  const auto great = QORSmrPtr<Great>::MakeIn(slabs);
  const Pointer behind = Pointer::MakeIn(slabs, 2);
  great->bytes.fill('x');
  EXPECT_EQ(before->value, 1);
  EXPECT_EQ(behind->value, 2);
}

TEST(QORSlabs, AConstructorThatThrowsLeavesTheSlabInUse) {
  QORSlabs slabs;
  const Pointer before = Pointer::MakeIn(slabs, 1);
  EXPECT_THROW(QORSmrPtr<Throwing>::MakeIn(slabs), std::runtime_error);
  const Pointer behind = Pointer::MakeIn(slabs, 2);
  EXPECT_EQ(before->value + behind->value, 3);
}

TEST(QORSlabs, AConvertedPointerHoldsTheObject) {
  int deaths = 0;
  Pointer part;
  {
    QORSlabs slabs;
    const auto both = QORSmrPtr<Both>::MakeIn(slabs, 5, &deaths);
    part = both;
  }
  EXPECT_EQ(deaths, 0);
  EXPECT_EQ(part->value, 5);
  part = nullptr;
  EXPECT_EQ(deaths, 1);
}

TEST(QORSlabs, ObjectsOfOneSlabMayGoOnSeveralThreads) {
  constexpr int kThreads = 4;
  std::array<int, kThreads> deaths{};
  std::array<std::vector<Pointer>, kThreads> parts;
  auto slabs = std::make_unique<QORSlabs>();
  for (int i = 0; i < 4000; ++i) {
    const std::size_t owner = static_cast<std::size_t>(i % kThreads);
    parts[owner].push_back(Pointer::MakeIn(*slabs, i, &deaths[owner]));
  }
  std::vector<std::thread> threads;
  for (std::vector<Pointer>& own : parts) threads.emplace_back([&own] { own.clear(); });
  slabs.reset();
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(deaths, (std::array<int, kThreads>{1000, 1000, 1000, 1000}));
}

}  // namespace
