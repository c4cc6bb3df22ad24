// Entries of a sort are in the order of their keys.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_OrderByHelper.h"
#include "cimom/CQoriValue.h"

namespace {

QORQL_OrderByHelper entry(unsigned int key, QORuint32 number) {
  return {QORSmrPtr<IQoriValue>(new CQoriValue(key, CQoriType::uint32)), number};
}

TEST(OrderByHelper, IsInTheOrderOfTheKeys) {
  EXPECT_TRUE(entry(1, 9) < entry(2, 0));
  EXPECT_TRUE(entry(2, 0) > entry(1, 9));
  EXPECT_TRUE(entry(1, 0) <= entry(1, 1));
  EXPECT_TRUE(entry(1, 1) >= entry(1, 0));
  EXPECT_FALSE(entry(1, 0) < entry(1, 1));
  EXPECT_FALSE(entry(1, 1) > entry(1, 0));
}

TEST(OrderByHelper, StandsForARowOrItsNumber) {
  EXPECT_EQ(entry(1, 7).getNumber(), 7U);
  EXPECT_TRUE(entry(1, 7).GetRow().IsNull());
  const QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow());
  EXPECT_EQ(QORQL_OrderByHelper(QORSmrPtr<IQoriValue>(), row).GetRow().Get(), row.Get());
}

TEST(OrderByHelper, WithoutAKeyIsNotCompared) {
  const QORQL_OrderByHelper none(QORSmrPtr<IQoriValue>(), 0);
  EXPECT_THROW(static_cast<void>(none < entry(1, 0)), QORNullPointerException);
}

}  // namespace
