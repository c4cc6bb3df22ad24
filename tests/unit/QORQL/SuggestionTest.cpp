// Which name may have been meant.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/Face/QORQL_Suggestion.h"

namespace {

TEST(Suggestion, CountsLettersThatAreInsertedLeftOutChangedAndSwapped) {
  EXPECT_EQ(QORQL_editDistance("Name", "NAME"), 0U);
  EXPECT_EQ(QORQL_editDistance("Nmae", "Name"), 1U);
  EXPECT_EQ(QORQL_editDistance("Nam", "Name"), 1U);
  EXPECT_EQ(QORQL_editDistance("Named", "Name"), 1U);
  EXPECT_EQ(QORQL_editDistance("Nape", "Name"), 1U);
  EXPECT_EQ(QORQL_editDistance("", "Name"), 4U);
}

std::string bestOf(const char* name) {
  QORQL_Suggestion suggestion(name);
  for (const char* const known : {"SELECT", "FROM", "WHERE", "FORM"}) suggestion.consider(known);
  return suggestion.best();
}

TEST(Suggestion, KeepsTheNearestAndOfEqualsTheFirst) {
  EXPECT_EQ(bestOf("selct"), "SELECT");
  EXPECT_EQ(bestOf("FRM"), "FROM");
  EXPECT_EQ(bestOf("form"), "FORM");
  EXPECT_EQ(bestOf("Wheels"), "");
  EXPECT_EQ(bestOf(""), "");
}

}  // namespace
