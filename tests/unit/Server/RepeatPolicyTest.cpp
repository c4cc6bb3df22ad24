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
  memory.keep();
  return text;
}

// Asked for, and then it could not be sent.
std::string asked(RepeatMemory& memory, std::initializer_list<int> times) {
  std::string text;
  for (const int time : times) text += memory.lets("e", RepeatMemory::Time(seconds(time))) ? '1' : '0';
  memory.undo();
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

TEST(RepeatPolicy, WhatWasUndoneDoesNotCountAsSent) {
  RepeatMemory memory({RepeatRule::Policy::Suppress, 2, seconds(10), seconds(0)});
  EXPECT_EQ(asked(memory, {90, 91, 92}), "110");
  EXPECT_EQ(sent(memory, {100}), "1");
  EXPECT_EQ(asked(memory, {101, 102}), "10");
  EXPECT_EQ(asked(memory, {111, 112, 113}), "110");  // would have begun another interval
  EXPECT_EQ(sent(memory, {103, 104, 110}), "101");
}

TEST(RepeatPolicy, WhatWasUndoneSendsNoDelayedOneEarly) {
  RepeatMemory memory({RepeatRule::Policy::Delay, 2, seconds(10), seconds(20)});
  EXPECT_EQ(sent(memory, {100}), "0");
  EXPECT_EQ(asked(memory, {101}), "0");
  EXPECT_EQ(asked(memory, {101, 102}), "01");  // nor does the gap begin
  EXPECT_EQ(asked(memory, {101, 102, 122, 123, 124}), "01001");
  EXPECT_EQ(sent(memory, {103, 104, 105}), "010");
}

TEST(RepeatPolicy, WhatIsOverStaysForgottenWhenLaterOnesAreUndone) {
  RepeatMemory memory({RepeatRule::Policy::Delay, 2, seconds(10), seconds(0)});
  EXPECT_EQ(sent(memory, {100, 101}), "00");
  EXPECT_EQ(asked(memory, {111, 125}), "00");
  EXPECT_EQ(sent(memory, {126, 127, 128}), "001");
}

TEST(RepeatPolicy, AnotherOneGoesOnWhereTheFirstWas) {
  const RepeatRule rule{RepeatRule::Policy::Suppress, 2, seconds(10), seconds(0)};
  RepeatMemory before(rule), after(rule);
  EXPECT_EQ(sent(before, {100}), "1");
  after.continueFrom(before);
  EXPECT_EQ(sent(after, {101, 102}), "10");
}

// A hundred thousand of them are too many to be remembered each.
TEST(RepeatPolicy, WhenThereAreTooManyEventsAllAreForgotten) {
  RepeatMemory memory({RepeatRule::Policy::Suppress, 1, seconds(1000), seconds(0)});
  const RepeatMemory::Time now(seconds(100));
  const auto lets = [&](int event) { return memory.lets(std::to_string(event), now); };
  for (int i = 0; i < 100000; ++i) ASSERT_TRUE(lets(i));
  memory.keep();
  EXPECT_TRUE(lets(100000));
  EXPECT_TRUE(lets(0));
  memory.undo();
  EXPECT_TRUE(lets(0));
  EXPECT_FALSE(lets(0));
}

TEST(RepeatPolicy, UpToManyEventsNoneIsForgotten) {
  RepeatMemory memory({RepeatRule::Policy::Suppress, 1, seconds(1000), seconds(0)});
  const RepeatMemory::Time now(seconds(100));
  for (int i = 0; i < 99999; ++i) ASSERT_TRUE(memory.lets(std::to_string(i), now));
  memory.keep();
  EXPECT_FALSE(memory.lets("0", now));
  EXPECT_FALSE(memory.lets("99998", now));
}

TEST(RepeatPolicy, WhatIsRememberedIsBounded) {
  RepeatMemory memory({RepeatRule::Policy::Delay, ~std::uint64_t{0}, seconds(1000000), seconds(0)});
  const auto before = mallinfo2().uordblks;
  for (int i = 0; i < 5000000; ++i) {
    memory.lets("e", RepeatMemory::Time(seconds(1)));
    memory.keep();
  }
  EXPECT_LT(mallinfo2().uordblks - before, std::size_t{20} << 20U);
  for (int i = 0; i < 300000; ++i) {
    memory.lets(std::to_string(i), RepeatMemory::Time(seconds(1)));
    memory.keep();
  }
  EXPECT_LT(mallinfo2().uordblks - before, std::size_t{200} << 20U);
}

}  // namespace
