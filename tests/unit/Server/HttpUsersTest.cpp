// Requests bring user and password; an address that brings wrong ones has to wait.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>
#include <vector>

#include "Cimom/Server/HttpUsers.h"

namespace {

using std::chrono::seconds;
using Verdict = HttpUsers::Verdict;

constexpr unsigned kAllowed = 3;
constexpr seconds kWait{60};

// The users "anna" ("secret") and "bert" ("a:b").
class UsersOfRequests : public ::testing::Test {
 protected:
  UsersOfRequests() {
    std::string folder = std::filesystem::temp_directory_path() / "qorql-users-XXXXXX";
    EXPECT_NE(mkdtemp(folder.data()), nullptr);
    setPassword(folder + "/users", "anna", "secret");
    setPassword(folder + "/users", "bert", "a:b");
    both = UserFile::read(folder + "/users");
    removeUser(folder + "/users", "anna");
    bertAlone = UserFile::read(folder + "/users");
    std::filesystem::remove_all(folder);
  }
  Verdict judge(HttpUsers& users, const std::string& header, const std::string& address = "10.0.0.1") {
    return users.judge(address, &header, kAllowed, kWait, user);
  }

  UserFile both;
  UserFile bertAlone;
  std::string user;
};

const char* const kAnna = "Basic YW5uYTpzZWNyZXQ=";
const char* const kBert = "Basic YmVydDphOmI=";
const char* const kWrong = "Basic YW5uYTp3cm9uZw==";

TEST_F(UsersOfRequests, ARightPasswordTellsTheUser) {
  HttpUsers users(both);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(judge(users, kAnna), Verdict::Right);
    EXPECT_EQ(user, "anna");
  }
  EXPECT_EQ(judge(users, kBert), Verdict::Right);
  EXPECT_EQ(user, "bert");
  EXPECT_EQ(judge(users, "basic YmVydDphOmI="), Verdict::Right);
}

TEST_F(UsersOfRequests, WhatIsNoLoginIsWrong) {
  for (const char* const header :
       {"", "Basic", "Basic ", "Basic !", "Basic YW5uYQ==", "Bearer YW5uYTpzZWNyZXQ=", kWrong}) {
    HttpUsers users(both);
    user.clear();
    EXPECT_EQ(judge(users, header), Verdict::Wrong) << header;
    EXPECT_EQ(user, "");
  }
}

TEST_F(UsersOfRequests, AnAddressWithWrongPasswordsHasToWait) {
  HttpUsers users(both);
  for (unsigned i = 0; i < kAllowed; ++i) EXPECT_EQ(judge(users, kWrong), Verdict::Wrong);
  EXPECT_EQ(judge(users, kAnna), Verdict::MustWait);
  EXPECT_EQ(judge(users, kAnna, "10.0.0.2"), Verdict::Right);
}

TEST_F(UsersOfRequests, ARightPasswordIsForgiveness) {
  HttpUsers users(both);
  for (unsigned i = 0; i < 3 * kAllowed; ++i) {
    EXPECT_EQ(judge(users, i % 2 == 0 ? kWrong : kAnna), i % 2 == 0 ? Verdict::Wrong : Verdict::Right);
  }
}

TEST_F(UsersOfRequests, ARightPasswordForgivesItsUserAlone) {
  HttpUsers users(both);
  for (unsigned i = 0; i < kAllowed; ++i) {
    EXPECT_EQ(judge(users, kBert), Verdict::Right);
    EXPECT_EQ(judge(users, kWrong), Verdict::Wrong);
  }
  EXPECT_EQ(judge(users, kBert), Verdict::MustWait);
}

TEST_F(UsersOfRequests, GuessesAtOnceAreNotMoreThanAreAllowed) {
  HttpUsers users(both);
  std::atomic<unsigned> wrong{0};
  std::vector<std::thread> guesses;
  for (unsigned i = 0; i < 4 * kAllowed; ++i) {
    guesses.emplace_back([&] {
      const std::string header = kWrong;
      std::string nobody;
      if (users.judge("10.0.0.1", &header, kAllowed, kWait, nobody) == Verdict::Wrong) ++wrong;
    });
  }
  for (std::thread& each : guesses) each.join();
  EXPECT_EQ(wrong, kAllowed);
}

TEST_F(UsersOfRequests, NoPasswordAtAllCountsForNothing) {
  HttpUsers users(both);
  for (unsigned i = 0; i < 3 * kAllowed; ++i) {
    EXPECT_EQ(users.judge("10.0.0.1", nullptr, kAllowed, kWait, user), Verdict::Wrong);
  }
  EXPECT_EQ(judge(users, kAnna), Verdict::Right);
}

TEST_F(UsersOfRequests, AUserWhoIsTakenOutIsNotKnownAnyMore) {
  HttpUsers users(both);
  EXPECT_EQ(judge(users, kAnna), Verdict::Right);
  users.replace(bertAlone);
  EXPECT_EQ(judge(users, kAnna), Verdict::Wrong);
  EXPECT_EQ(judge(users, kBert), Verdict::Right);
}

TEST(FailureLimit, ItEndsWithItsTime) {
  FailureLimit limit;
  const FailureLimit::Clock::time_point now{};
  for (unsigned i = 0; i < kAllowed; ++i) {
    EXPECT_FALSE(limit.mustWait("10.0.0.1", now));
    limit.note("10.0.0.1", "anna", kAllowed, kWait, now);
  }
  EXPECT_TRUE(limit.mustWait("10.0.0.1", now + kWait - seconds(1)));
  EXPECT_FALSE(limit.mustWait("10.0.0.1", now + kWait));
}

TEST(FailureLimit, TheAddressesOfOneHolderCountTogether) {
  FailureLimit limit;
  const FailureLimit::Clock::time_point now{};
  limit.note("2001:db8:0:1::1", "anna", 1, kWait, now);
  EXPECT_TRUE(limit.mustWait("2001:db8:0:1:ffff::2", now));
  EXPECT_FALSE(limit.mustWait("2001:db8:0:2::1", now));
}

}  // namespace
