// What parsing keeps while it nests.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_ParseContext.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

namespace {

TEST(UpdatedFlagScope, RestoresTheFlagAfterAnException) {
  QORQL_SymbolTable symbols(nullptr);
  try {
    const QORQL_UpdatedFlagScope scope(symbols, true);
    EXPECT_TRUE(symbols.isSymbolTableUpdated());
    throw 1;
  } catch (int) {
    EXPECT_FALSE(symbols.isSymbolTableUpdated());
  }
}

}  // namespace
