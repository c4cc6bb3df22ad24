// Addresses are read, resolved and listened at.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "Cimom/Server/HttpAddress.h"

namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

TEST(HttpAddress, PortZeroIsAnyThatIsFree) {
  const std::vector<ListeningSocket> sockets = listenAt("127.0.0.1:0");
  ASSERT_EQ(sockets.size(), 1U);
  EXPECT_THAT(sockets[0].address(), MatchesRegex("127\\.0\\.0\\.1:[1-9][0-9]*"));
  EXPECT_TRUE(sockets[0].isLoopback());
}

TEST(HttpAddress, AnAddressOfManyPartsStandsInBrackets) {
  const std::vector<ListeningSocket> sockets = listenAt("[::1]:0");
  ASSERT_EQ(sockets.size(), 1U);
  EXPECT_THAT(sockets[0].address(), MatchesRegex("\\[::1\\]:[1-9][0-9]*"));
  EXPECT_TRUE(sockets[0].isLoopback());
}

TEST(HttpAddress, AllAddressesOfAMachineAreNotItsOwnAlone) {
  EXPECT_FALSE(listenAt("0.0.0.0:0")[0].isLoopback());
  EXPECT_FALSE(listenAt("[::]:0")[0].isLoopback());
}

TEST(HttpAddress, WhatIsNoAddressIsToldByItsSpelling) {
  for (const char* const wrong : {"", ":", ":5988", "127.0.0.1", "127.0.0.1:", "127.0.0.1:x", "127.0.0.1:65536",
                                  "127.0.0.1:-1", "::1:5988", "[]:5988"}) {
    EXPECT_THAT(faultOfAddress(wrong), HasSubstr("is not of the form ADDRESS:PORT")) << wrong;
    EXPECT_THROW(listenAt(wrong), std::runtime_error) << wrong;
  }
  for (const char* const good : {"127.0.0.1:0", "[::1]:65535", "localhost:5988"}) EXPECT_EQ(faultOfAddress(good), "");
}

TEST(HttpAddress, AnAddressThatIsTakenIsTold) {
  const std::vector<ListeningSocket> sockets = listenAt("127.0.0.1:0");
  try {
    listenAt(sockets[0].address());
    ADD_FAILURE() << "it was had twice";
  } catch (const std::runtime_error& refusal) {
    EXPECT_EQ(refusal.what(), "cannot listen at " + sockets[0].address() + ": Address already in use");
  }
}

}  // namespace
