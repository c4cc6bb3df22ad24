// Which conditions join by keys, by the types that classes declare.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ExplanationWorld.h"

namespace {

using KeyKind = ExplanationWorld;

TEST_F(KeyKind, JoinsByKeysOfDeclaredTypes) {
  const std::string select = "SELECT h.Name, d.Name FROM Host AS h, Disk AS d WHERE ";
  EXPECT_EQ(steps(select + "h.Name = d.HostName")[2], "hash h.Name = d.HostName");
  EXPECT_EQ(steps(select + "h.Memory < d.Size")[2], "keys h.Memory < d.Size");
  EXPECT_EQ(steps(select + "h.Memory + 1 = d.Size")[2], "hash? h.Memory + 1 = d.Size");
  EXPECT_EQ(steps(select + "h.Name *= d.HostName")[2], "hash h.Name *= d.HostName");
  EXPECT_EQ(steps(select + "(h.Name) = (d.HostName)")[2], "hash (h.Name) = (d.HostName)");
}

TEST_F(KeyKind, TestsEveryPairWhereKeysDoNotJoin) {
  const std::string select = "SELECT h.Name, d.Name FROM Host AS h, Disk AS d WHERE ";
  EXPECT_EQ(steps(select + "h.Memory + d.Size = 3")[2], "product h.Memory + d.Size = 3");
  EXPECT_EQ(steps(select + "NOT h.Name = d.HostName")[2], "product NOT h.Name = d.HostName");
  EXPECT_EQ(steps(select + "h.Name = d.Size")[2], "product? h.Name = d.Size");
  EXPECT_EQ(steps(select + "h.Memory = ANY d.Ports")[2], "product h.Memory = ANY d.Ports");
  EXPECT_EQ(steps(select + "h.Name LIKE d.Name")[2], "product h.Name LIKE d.Name");
  EXPECT_EQ(steps(select + "h.Memory = d.Ports[0]")[2], "product h.Memory = d.Ports[0]");
  EXPECT_EQ(steps(select + "h <> d")[2], "product h <> d") << "whole objects are no keys";
}

}  // namespace
