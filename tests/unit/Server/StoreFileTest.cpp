// Files of stores: made, opened again, refused.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "Cimom/Server/StoreFile.h"
#include "StoreFolder.h"

namespace {

using ::testing::HasSubstr;

std::string refusalOf(const std::string& path) {
  try {
    const StoreFile file(path);
  } catch (const QoriBaseException& refusal) {
    return refusal.getMessage().c_str();
  }
  return "";
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(StoreFile, IsMadeForItsOwnerAlone) {
  const StoreFolder folder;
  { const StoreFile file(folder.file()); }
  struct stat state {};
  ASSERT_EQ(stat(folder.file().c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777U, 0600U);
  EXPECT_EQ(refusalOf(folder.file()), "");
}

TEST(StoreFile, ASymbolicLinkIsRefusedAndMakesNothing) {
  const StoreFolder folder;
  const std::string target = folder.file() + "-target";
  std::filesystem::create_symlink(target, folder.file());
  EXPECT_THAT(refusalOf(folder.file()), HasSubstr("it is a symbolic link"));
  EXPECT_FALSE(std::filesystem::exists(target));
}

TEST(StoreFile, AnEmptyFileOfAllIsForItsOwnerAloneThen) {
  const StoreFolder folder;
  { const std::ofstream made(folder.file()); }
  ASSERT_EQ(chmod(folder.file().c_str(), 0644), 0);
  EXPECT_EQ(refusalOf(folder.file()), "");
  struct stat state {};
  ASSERT_EQ(stat(folder.file().c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777U, 0600U);
}

TEST(StoreFile, AnEmptyFileBecomesAStore) {
  const StoreFolder folder;
  std::ofstream(folder.file()).flush();
  EXPECT_EQ(refusalOf(folder.file()), "");
  EXPECT_THAT(contentOf(folder.file()), HasSubstr("SQLite format 3"));
}

TEST(StoreFile, AFileOfAnotherKindIsRefusedAndStays) {
  const StoreFolder folder;
  std::ofstream(folder.file()) << "a letter";
  EXPECT_THAT(refusalOf(folder.file()), HasSubstr("is not a store of this program"));
  EXPECT_EQ(contentOf(folder.file()), "a letter");
}

TEST(StoreFile, ADatabaseOfOthersIsRefusedAndStays) {
  const StoreFolder folder;
  { const StoreFile file(folder.file()); }
  folder.overwrite(68, "XXXX");
  const std::string before = contentOf(folder.file());
  EXPECT_THAT(refusalOf(folder.file()), HasSubstr("is not a store of this program"));
  EXPECT_EQ(contentOf(folder.file()), before);
}

TEST(StoreFile, AnotherFormatIsRefusedByItsNumber) {
  const StoreFolder folder;
  { const StoreFile file(folder.file()); }
  folder.overwrite(60, std::string("\0\0\0\7", 4));
  EXPECT_THAT(refusalOf(folder.file()), HasSubstr("it has format 7, and this version knows format 1"));
}

TEST(StoreFile, ADamagedStoreIsRefusedAndStays) {
  const StoreFolder folder;
  { const StoreFile file(folder.file()); }
  folder.overwrite(4096, std::string(3000, 'x'));
  const std::string before = contentOf(folder.file());
  EXPECT_THAT(refusalOf(folder.file()), HasSubstr("cannot be opened"));
  EXPECT_EQ(contentOf(folder.file()), before);
}

TEST(StoreFile, AStoreInUseIsRefused) {
  const StoreFolder folder;
  const StoreFile first(folder.file());
  EXPECT_THAT(refusalOf(folder.file()), HasSubstr("another server uses it"));
}

TEST(StoreFile, AFolderThatIsNotThereIsTold) {
  const StoreFolder folder;
  EXPECT_THAT(refusalOf(folder.file() + ".d/store.db"), HasSubstr("No such file or directory"));
}

TEST(StoreFile, WhatIsNotCommittedIsForgotten) {
  StoreFile file("");
  {
    StoreTransaction transaction(file, StoreTransaction::Lasting::Machine);
    file.run("INSERT INTO listener(path, context, next, dropped) VALUES('a', 'b', 1, 2)").finish();
  }
  StoreTransaction transaction(file, StoreTransaction::Lasting::Process);
  StoreFile::Run count = file.run("SELECT count(*) FROM listener");
  ASSERT_TRUE(count.next());
  EXPECT_EQ(count.number(0), 0);
}

}  // namespace
