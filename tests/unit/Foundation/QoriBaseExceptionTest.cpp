// The exceptions of the foundation, and its start-up checks.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <utility>

#include "cmpbase/QORAtomicInt.h"
#include "cmpbase/QORBoundsException.h"
#include "cmpbase/QORModule.h"
#include "cmpbase/QORNullPointerException.h"
#include "cmpbase/QoriBaseException.h"

namespace {

TEST(QoriBaseException, CarriesItsFields) {
  const QoriBaseException error("type", "who", "where", "message", 7);
  EXPECT_EQ(error.getType(), "type");
  EXPECT_EQ(error.getWho(), "who");
  EXPECT_EQ(error.getWhere(), "where");
  EXPECT_EQ(error.getMessage(), "message");
  EXPECT_EQ(error.getCode(), 7U);
  EXPECT_TRUE(error.getInstances().IsNull());
  EXPECT_STREQ(error.what(), "message");
}

TEST(QoriBaseException, UnsetTextsAreNull) {
  const QoriBaseException error;
  EXPECT_TRUE(error.getType().isNull());
  EXPECT_TRUE(error.getWho().isNull());
  EXPECT_TRUE(error.getWhere().isNull());
  EXPECT_TRUE(error.getMessage().isNull());
  EXPECT_EQ(error.getCode(), 0U);
  EXPECT_STREQ(error.what(), "");
}

TEST(QoriBaseException, CopiesAreIndependent) {
  QoriBaseException a("a", "", "", "first", 1);
  const QoriBaseException b(a);
  a = QoriBaseException("c", "", "", "second", 2);
  EXPECT_EQ(b.getMessage(), "first");
  EXPECT_EQ(a.getMessage(), "second");
  EXPECT_EQ(a.getCode(), 2U);
}

TEST(QoriBaseException, IsAStandardException) {
  try {
    throw QoriBaseException("type", "who", "where", "message", 0);
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(), "message");
  }
}

TEST(QORBoundsException, DefaultSaysOutOfBounds) {
  const QORBoundsException error;
  EXPECT_TRUE(error.getType().isNull());
  EXPECT_TRUE(error.getWho().isNull());
  EXPECT_EQ(error.getMessage(), "Out of Bounds");
  EXPECT_EQ(error.getCode(), 0U);
}

TEST(QORBoundsException, WithArgumentsIsOfTypeBounds) {
  const QORBoundsException error("list", "too far", 3);
  EXPECT_EQ(error.getType(), "Bounds");
  EXPECT_EQ(error.getWho(), "list");
  EXPECT_EQ(error.getMessage(), "too far");
  EXPECT_EQ(error.getCode(), 3U);
}

TEST(QORNullPointerException, NamesTheOperation) {
  const QORNullPointerException error("operator->()");
  EXPECT_EQ(error.getType(), "NullPointer");
  EXPECT_EQ(error.getWho(), "QORSmrPtr");
  EXPECT_EQ(error.getWhere(), "operator->()");
  EXPECT_EQ(error.getMessage(), "Null pointer in operator->()");
}

TEST(QORAtomicInt, StepsReturnTheNewValue) {
  QORAtomicInt count;
  EXPECT_EQ(count.getValue(), 0);
  EXPECT_EQ(count.atomicInc(), 1);
  EXPECT_EQ(count.atomicInc(), 2);
  EXPECT_EQ(count.atomicDec(), 1);
  count.setValue(-5);
  EXPECT_EQ(count.getValue(), -5);
  EXPECT_EQ(QORAtomicInt(9).getValue(), 9);
}

TEST(QORModule, StartUpSucceedsAndMayBeRepeated) {
  EXPECT_TRUE(qorInitThreading());
  EXPECT_TRUE(qorInitModule());
  EXPECT_TRUE(qorInitModule());
}

TEST(QORModuleDeathTest, FailingCheckStopsTheProcessNamingHeaderAndLine) {
  EXPECT_DEATH(qorInitModule([]() noexcept { return false; }), "panic: cmpbase:1113");
}

}  // namespace
