// Which of the indications of one event are sent.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <malloc.h>

#include <string>

#include "Cimom/Server/RepeatPolicy.h"

namespace {

using std::chrono::seconds;

std::string sent(RepeatMemory& memory, std::initializer_list<int> times) {
  std::string text;
  for (const int time : times) text += memory.lets("e", RepeatMemory::Time(seconds(time))) ? '1' : '0';
  return text;
}

TEST(RepeatPolicy, WithoutAPolicyAllAreSent) {
  RepeatMemory memory({RepeatRule::Policy::None, 0, seconds(0), seconds(0)});
  EXPECT_EQ(sent(memory, {1, 1, 1}), "111");
}

TEST(RepeatPolicy, TheFirstOfAnIntervalAreSent) {
  RepeatMemory memory({RepeatRule::Policy::Suppress, 2, seconds(10), seconds(0)});
  EXPECT_EQ(sent(memory, {100, 101, 102, 109, 110, 111, 112}), "1100110");
}

TEST(RepeatPolicy, WithCountNoneNothingIsSent) {
  RepeatMemory memory({RepeatRule::Policy::Suppress, 0, seconds(10), seconds(0)});
  EXPECT_EQ(sent(memory, {100, 120}), "00");
}

TEST(RepeatPolicy, TheOneAfterSeveralIsSentThenNoneUntilTheGapIsOver) {
  RepeatMemory memory({RepeatRule::Policy::Delay, 2, seconds(10), seconds(20)});
  EXPECT_EQ(sent(memory, {100, 101, 102, 103, 121, 122, 123, 124}), "00100001");
}

TEST(RepeatPolicy, WhatLiesFurtherApartThanTheIntervalIsNotCountedTogether) {
  RepeatMemory memory({RepeatRule::Policy::Delay, 1, seconds(10), seconds(0)});
  EXPECT_EQ(sent(memory, {100, 111, 122, 123}), "0001");
}

TEST(RepeatPolicy, EventsAreCountedEachByItself) {
  RepeatMemory memory({RepeatRule::Policy::Suppress, 1, seconds(10), seconds(0)});
  const RepeatMemory::Time now(seconds(100));
  EXPECT_TRUE(memory.lets("a", now));
  EXPECT_TRUE(memory.lets("b", now));
  EXPECT_FALSE(memory.lets("a", now));
}

TEST(RepeatPolicy, WhatIsRememberedIsBounded) {
  RepeatMemory memory({RepeatRule::Policy::Delay, ~std::uint64_t{0}, seconds(1000000), seconds(0)});
  const auto before = mallinfo2().uordblks;
  for (int i = 0; i < 5000000; ++i) memory.lets("e", RepeatMemory::Time(seconds(1)));
  EXPECT_LT(mallinfo2().uordblks - before, std::size_t{20} << 20U);
  for (int i = 0; i < 300000; ++i) memory.lets(std::to_string(i), RepeatMemory::Time(seconds(1)));
  EXPECT_LT(mallinfo2().uordblks - before, std::size_t{200} << 20U);
}

}  // namespace
