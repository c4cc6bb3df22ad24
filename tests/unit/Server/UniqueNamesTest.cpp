// No two names are the same, and the first keeps its own.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/Server/UniqueNames.h"

using testing::ElementsAre;

namespace {

TEST(UniqueNames, ALaterColumnOfANameIsNumbered) {
  EXPECT_THAT(uniqueNames({"a", "a", "b", "a"}), ElementsAre("a", "a_2", "b", "a_3"));
}

TEST(UniqueNames, ANumberThatIsANameAlreadyIsLeftOut) {
  EXPECT_THAT(uniqueNames({"a", "a", "a_2"}), ElementsAre("a", "a_3", "a_2"));
}

TEST(UniqueNames, CaseMattersUnlessItIsIgnored) {
  EXPECT_THAT(uniqueNames({"a", "A"}), ElementsAre("a", "A"));
  EXPECT_THAT(uniqueNames({"a", "A", "A_2"}, SameNames::IgnoringCase), ElementsAre("a", "A_3", "A_2"));
}

}  // namespace
