// What was replaced is freed when nobody can be reading it any more, and not before.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

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

}  // namespace
