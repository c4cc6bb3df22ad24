// What was replaced is freed when nobody can be reading it any more, and not before.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <thread>

#include "AllocationCount.h"
#include "Cimom/QORQL/Filter/CQLReadSection.h"

namespace {

int freed = 0;
void countFreed(const void*) noexcept { ++freed; }

struct CQLReadSections : testing::Test {
  CQLReadSections() { freed = 0; }
  // Adds so much that the next collection looks.
  static void addMany(CQLRetired& retired) {
    for (int i = 0; i < 200; ++i) retired.add(&freed, countFreed);
  }
};

TEST_F(CQLReadSections, FreesAtOnceWhatNobodyReads) {
  CQLRetired retired;
  addMany(retired);
  retired.collect();
  EXPECT_EQ(freed, 200);
  EXPECT_EQ(retired.count(), 0U);
}

TEST_F(CQLReadSections, KeepsWhatASectionMayStillRead) {
  CQLRetired retired;
  {
    const CQLReadSection outer;
    { const CQLReadSection inner; }
    addMany(retired);
    retired.collect();
    EXPECT_EQ(freed, 0);
  }
  addMany(retired);
  retired.collect();
  EXPECT_EQ(freed, 400);
}

TEST_F(CQLReadSections, KeepsWhatAnotherThreadMayStillRead) {
  CQLRetired retired;
  std::atomic<int> step{0};
  std::thread reader([&step] {
    const CQLReadSection section;
    step = 1;
    while (step != 2) std::this_thread::yield();
  });
  while (step != 1) std::this_thread::yield();
  addMany(retired);
  retired.collect();
  EXPECT_EQ(freed, 0);
  step = 2;
  reader.join();
  addMany(retired);
  retired.collect();
  EXPECT_EQ(freed, 400);
}

TEST_F(CQLReadSections, FreesTheRestAtItsEnd) {
  {
    CQLRetired retired;
    retired.reserve(3);
    retired.add(&freed, countFreed);
    EXPECT_EQ(retired.count(), 1U);
  }
  EXPECT_EQ(freed, 1);
}

// Room for each change alone would be made anew for each.
TEST_F(CQLReadSections, RoomGrowsInLeapsWhileASectionStays) {
  CQLRetired retired;
  const CQLReadSection section;
  const unsigned long before = allocationCount();
  for (int change = 0; change < 4000; ++change) {
    retired.reserve(2);
    retired.add(&freed, countFreed);
    retired.add(&freed, countFreed);
    retired.collect();
  }
  EXPECT_EQ(retired.count(), 8000U);
  EXPECT_LT(allocationCount() - before, 20U);
}

// Made before the thread's first section, and so destroyed after what belongs to sections.
struct Late {
  Late() = default;
  Late(const Late&) = delete;
  Late& operator=(const Late&) = delete;
  ~Late() {
    for (int i = 0; i < 2; ++i) {
      const CQLReadSection outer;
      const CQLReadSection inner;
    }
  }
};

// What a thread needs for its sections, another one can use after it; otherwise each would leave something behind.
TEST_F(CQLReadSections, ThreadsThatReadAtTheirVeryEndLeaveNothingBehind) {
  unsigned long allocations = 0;
  const auto read = [&allocations] {
    thread_local const Late late;
    [[maybe_unused]] const Late* const made = &late;  // now
    const unsigned long before = allocationCount();
    const CQLReadSection section;
    allocations += allocationCount() - before;
  };
  std::thread(read).join();
  allocations = 0;
  for (int i = 0; i < 100; ++i) std::thread(read).join();
  EXPECT_EQ(allocations, 0U);
}

// A section that a thread keeps to its very end.
TEST_F(CQLReadSections, ASectionMayOutliveWhatBelongsToItsThread) {
  const auto keep = [] {
    struct Kept {
      std::optional<CQLReadSection> section;
    };
    thread_local Kept kept;
    kept.section.emplace();
  };
  std::thread(keep).join();
  CQLRetired retired;
  addMany(retired);
  retired.collect();
  EXPECT_EQ(freed, 200);
}

}  // namespace
