// The file of users keeps hashes alone, is replaced as a whole, and is refused where it cannot be trusted.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include "Cimom/Server/UserFile.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

// A folder of the test's own.
class UsersInAFile : public ::testing::Test {
 protected:
  UsersInAFile() { EXPECT_NE(mkdtemp(_folder.data()), nullptr); }
  ~UsersInAFile() override { std::filesystem::remove_all(_folder); }

  std::string path() const { return _folder + "/users"; }
  std::string text() const {
    std::ostringstream text;
    text << std::ifstream(path()).rdbuf();
    return text.str();
  }
  void write(const std::string& text) const {
    std::ofstream(path()) << text;
    chmod(path().c_str(), 0600);
  }
  std::string refusal() const {
    try {
      UserFile::read(path());
      return "none";
    } catch (const std::runtime_error& refusal) {
      return refusal.what();
    }
  }

 private:
  std::string _folder = std::filesystem::temp_directory_path() / "qorql-users-XXXXXX";
};

TEST_F(UsersInAFile, APasswordIsRightForItsUserAlone) {
  setPassword(path(), "anna", "secret");
  setPassword(path(), "b\xc3\xa4rbel x", "other");
  const UserFile users = UserFile::read(path());
  EXPECT_TRUE(users.isRight("anna", "secret"));
  EXPECT_TRUE(users.isRight("b\xc3\xa4rbel x", "other"));
  EXPECT_FALSE(users.isRight("anna", "other"));
  EXPECT_FALSE(users.isRight("anna", "secret2"));
  EXPECT_FALSE(users.isRight("Anna", "secret"));
  EXPECT_FALSE(users.isRight("carl", "secret"));
  EXPECT_FALSE(users.isRight("", ""));
  EXPECT_FALSE(users.isRight("anna", ""));
}

TEST_F(UsersInAFile, TheFileIsItsOwnersAndKeepsNoPassword) {
  setPassword(path(), "anna", "secret");
  EXPECT_THAT(text(), StartsWith("anna:$y$"));
  EXPECT_THAT(text(), Not(HasSubstr("secret")));
  struct stat status {};
  ASSERT_EQ(stat(path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(UsersInAFile, ItsGroupGoesOnReadingIt) {
  setPassword(path(), "anna", "secret");
  chmod(path().c_str(), 0644);
  setPassword(path(), "bert", "secret");
  struct stat status {};
  ASSERT_EQ(stat(path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(UsersInAFile, AnotherPasswordTakesThePlaceAndTheRestStays) {
  write("# ours\n\nanna:$y$j9T$abc$x\nbert:$y$j9T$abc$y\n");
  setPassword(path(), "anna", "new");
  EXPECT_THAT(text(), StartsWith("# ours\n\nanna:$y$"));
  EXPECT_THAT(text(), HasSubstr("\nbert:$y$j9T$abc$y\n"));
  EXPECT_THAT(text(), Not(HasSubstr("$abc$x")));
  EXPECT_TRUE(UserFile::read(path()).isRight("anna", "new"));
}

TEST_F(UsersInAFile, AUserIsTakenOut) {
  setPassword(path(), "anna", "secret");
  removeUser(path(), "anna");
  EXPECT_TRUE(UserFile::read(path()).isEmpty());
  EXPECT_FALSE(UserFile::read(path()).isRight("anna", "secret"));
  EXPECT_THROW(removeUser(path(), "anna"), std::invalid_argument);
}

TEST_F(UsersInAFile, WhatCannotBeAUserOrAPasswordIsRefused) {
  for (const char* const user : {"", "a:b", "a\nb", "#a", " a", "a "}) {
    EXPECT_THROW(setPassword(path(), user, "secret"), std::invalid_argument) << user;
  }
  for (const std::string& password : {std::string(), std::string(512, 'x'), std::string("a\0b", 3)}) {
    EXPECT_THROW(setPassword(path(), "anna", password), std::invalid_argument) << password;
  }
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(UsersInAFile, ALineThatIsNoUserIsToldByItsNumber) {
  for (const char* const line : {"anna", "anna:", "anna:secret", ":$y$j9T$abc$x"}) {
    write(std::string("# ours\n") + line + '\n');
    EXPECT_EQ(refusal(), path() + ":2: this is no user with a hashed password") << line;
  }
}

TEST_F(UsersInAFile, AnotherFileIsNotChanged) {
  const std::string hosts = "# who is near\n127.0.0.1 localhost\n";
  write(hosts);
  EXPECT_THROW(setPassword(path(), "anna", "secret"), std::runtime_error);
  EXPECT_THROW(removeUser(path(), "anna"), std::runtime_error);
  EXPECT_EQ(text(), hosts);
}

TEST_F(UsersInAFile, ADamagedLineIsMendedByItsUsersNewPassword) {
  write("anna:plain\n");
  EXPECT_THROW(setPassword(path(), "bert", "other"), std::runtime_error);
  setPassword(path(), "anna", "secret");
  EXPECT_TRUE(UserFile::read(path()).isRight("anna", "secret"));
  write(":x\nanna:plain\n");
  EXPECT_THAT(refusal(), HasSubstr(":1: this is no user"));
}

TEST_F(UsersInAFile, AFileThatOthersMayWriteIsRefused) {
  setPassword(path(), "anna", "secret");
  chmod(path().c_str(), 0620);
  EXPECT_EQ(refusal(), "others than its owner may write to " + path() + ": chmod 600 " + path());
}

TEST_F(UsersInAFile, AFileThatAllMayReadIsToldOf) {
  setPassword(path(), "anna", "secret");
  EXPECT_EQ(UserFile::read(path()).warning(), "");
  chmod(path().c_str(), 0640);
  EXPECT_EQ(UserFile::read(path()).warning(), "");
  chmod(path().c_str(), 0644);
  EXPECT_EQ(UserFile::read(path()).warning(),
            "everybody may read " + path() + ", and guess its passwords: chmod o-r " + path());
}

TEST_F(UsersInAFile, ASymbolicLinkStaysOne) {
  const std::string link = path() + "-link";
  setPassword(path(), "anna", "secret");
  std::filesystem::create_symlink(path(), link);
  setPassword(link, "bert", "secret");
  removeUser(link, "anna");
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_TRUE(UserFile::read(path()).isRight("bert", "secret"));
  EXPECT_FALSE(UserFile::read(path()).isRight("anna", "secret"));
}

TEST_F(UsersInAFile, NobodyIsLostWhereSeveralAreChangedAtOnce) {
  std::vector<std::thread> changes;
  for (int i = 0; i < 8; ++i) changes.emplace_back([&, i] { setPassword(path(), "u" + std::to_string(i), "secret"); });
  for (std::thread& each : changes) each.join();
  const std::string all = text();
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 8);
}

TEST_F(UsersInAFile, AFileThatIsNotThereIsTold) {
  EXPECT_EQ(refusal(), "cannot read the users of " + path() + ": No such file or directory");
}

}  // namespace
