// The names of functions.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_FunctionID.h"

namespace {

TEST(FunctionNames, AreFoundInAnyCase) {
  for (QORuint32 id = QORQL_FUNCTIONID_OBJECTPATH; id <= QORQL_FUNCTIONID_INSTANCEOF; ++id) {
    EXPECT_EQ(QORQL_findFunction(QORQL_functionName(id)), static_cast<QORQL_FunctionID>(id));
  }
  EXPECT_EQ(QORQL_findFunction("cOuNt"), QORQL_FUNCTIONID_COUNT);
  EXPECT_EQ(QORQL_findFunction("UNKNOWN"), QORQL_FUNCTIONID_UNKNOWN);
  EXPECT_EQ(QORQL_findFunction(""), QORQL_FUNCTIONID_UNKNOWN);
  EXPECT_STREQ(QORQL_functionName(0), "UNKNOWN");
  EXPECT_STREQ(QORQL_functionName(8), "UNKNOWN");
}

TEST(FunctionNames, TellTheAggregates) {
  for (QORuint32 id = 0; id <= 9; ++id) EXPECT_EQ(QORQL_isAggregate(id), id >= 2 && id <= 6) << id;
}

}  // namespace
