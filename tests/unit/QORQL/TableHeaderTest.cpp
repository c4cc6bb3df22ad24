// The description of a column: what it is called.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_TableHeader.h"

namespace {

TEST(TableHeader, IsNamedByClassOrAliasInAnyCase) {
  const QORQL_TableHeader header("CIM_Disk", "D", "scope");
  EXPECT_TRUE(header.isNamed("cim_disk"));
  EXPECT_TRUE(header.isNamed("d"));
  EXPECT_FALSE(header.isNamed("scope"));
  EXPECT_FALSE(header.isNamed("CIM_"));
  EXPECT_EQ(header.getScope(), "scope");
}

TEST(TableHeader, HasEmptyTextsByDefault) {
  const QORQL_TableHeader header;
  for (const QORString& text : {header.getName(), header.getAlias(), header.getScope()}) {
    EXPECT_TRUE(text.isEmpty());
    EXPECT_FALSE(text.isNull());
  }
}

}  // namespace
