// The record of what a query needs of a class.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ParserSupport.h"

namespace {

using parsertest::plain;

TEST(ClassInfo, ReplacesANullListByAnEmptyOne) {
  const QORQL_ClassInfo info("A", nullptr, true);
  EXPECT_FALSE(info.getPropertyList().IsNull());
  EXPECT_EQ(info.getPropertyList()->entries(), 0U);
  EXPECT_EQ(plain(info.getClassName()), "A");
  EXPECT_TRUE(info.needAllProperties());
  EXPECT_FALSE(info.fetchAllProperties());
}

TEST(ClassInfo, SharesItsList) {
  QORQL_ClassInfo info("A", nullptr, false);
  info.getPropertyList()->append("x");
  info.addProperty("x");
  EXPECT_EQ(info.getPropertyList()->entries(), 2U);
}

TEST(ClassInfo, AddsAPropertyOnceIgnoringCase) {
  QORSlabs slabs;
  QORQL_ClassInfo info("A", nullptr, false);
  info.addPropertyOnce("Name", slabs);
  info.addPropertyOnce("NAME", slabs);
  info.addPropertyOnce("name2", slabs);
  EXPECT_EQ(info.getPropertyList()->entries(), 2U);
  EXPECT_EQ(plain(info.getPropertyList()->first()), "Name");
}

TEST(ClassInfo, AddsManyPropertiesOnce) {
  QORSlabs slabs;
  constexpr QORuint32 kCount = 50'000;
  QORQL_ClassInfo info("A", nullptr, false);
  for (int round = 0; round < 2; ++round) {
    for (QORuint32 i = 0; i < kCount; ++i) {
      info.addPropertyOnce(QORString(round == 0 ? "Name" : "NAME") + QORString::number(QORuint64{i}), slabs);
    }
  }
  EXPECT_EQ(info.getPropertyList()->entries(), kCount);
}

TEST(ClassInfo, SeesNamesThatWereAppendedToTheSharedList) {
  QORSlabs slabs;
  QORQL_ClassInfo info("A", nullptr, false);
  for (QORuint64 i = 0; i < 40; ++i) info.addPropertyOnce("a" + QORString::number(i), slabs);
  for (QORuint64 i = 0; i < 300; ++i) info.getPropertyList()->append("b" + QORString::number(i));
  EXPECT_TRUE(info.listsProperty("B299"));
  EXPECT_TRUE(info.listsProperty("A0"));
  EXPECT_FALSE(info.listsProperty("b300"));
}

TEST(ClassInfo, SeesNamesAfterTheSharedListWasCleared) {
  QORSlabs slabs;
  QORQL_ClassInfo info("A", nullptr, false);
  for (QORuint64 i = 0; i < 40; ++i) info.addPropertyOnce("a" + QORString::number(i), slabs);
  info.getPropertyList()->clear();
  for (QORuint64 i = 0; i < 20; ++i) info.addPropertyOnce("c" + QORString::number(i), slabs);
  EXPECT_FALSE(info.listsProperty("a1"));
  EXPECT_TRUE(info.listsProperty("c19"));
}

}  // namespace
