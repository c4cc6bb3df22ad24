// Users and groups.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <grp.h>
#include <pwd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <set>

#include "Cimom/Providers/LinuxAccounts.h"
#include "Cimom/Providers/LinuxEntryReader.h"
#include "Cimom/Providers/LinuxGroup.h"
#include "Cimom/Providers/LinuxUser.h"
#include "MadeUpFiles.h"
#include "ProviderFixture.h"

namespace {

TEST(LinuxUser, ShowsTheSuperuser) {
  LinuxUser provider;
  const auto rows = enumerateRows(
      provider, {"Name", "UserID", "UserNumber", "GroupNumber", "HomeFolder", "Shell", "CreationClassName", "Unknown"});
  const ProvidedRow root = findRow(rows, "root");
  ASSERT_EQ(root.size(), 8U);
  EXPECT_EQ(textOf(root[1]), "0");
  EXPECT_EQ(typeOf(root[1]), "string");
  EXPECT_EQ(textOf(root[2]), "0");
  EXPECT_EQ(typeOf(root[2]), "uint32");
  EXPECT_EQ(textOf(root[3]), "0");
  EXPECT_EQ(textOf(root[4]), getpwnam("root")->pw_dir);
  EXPECT_EQ(textOf(root[5]), getpwnam("root")->pw_shell);
  EXPECT_EQ(textOf(root[6]), "Linux_User");
  EXPECT_EQ(textOf(root[7]), "(null)");
}

TEST(LinuxUser, TheFullNameEndsAtTheFirstComma) {
  const std::string information = getpwnam("root")->pw_gecos;
  LinuxUser provider;
  const auto rows = enumerateRows(provider, {"Name", "FullName"}, nameOf(provider, "Name", "root"));
  ASSERT_EQ(rows.size(), 1U);
  const std::string expected = information.substr(0, information.find(','));
  EXPECT_EQ(textOf(rows[0][1]), expected.empty() ? "(null)" : expected);
}

TEST(LinuxAccounts, EachNameComesOnce) {
  std::set<std::string> names;
  for (const LinuxAccount& account : readAccounts()) EXPECT_TRUE(names.insert(account.name).second) << account.name;
  EXPECT_TRUE(names.contains("root"));
  names.clear();
  for (const LinuxAccountGroup& group : readAccountGroups()) EXPECT_TRUE(names.insert(group.name).second) << group.name;
  EXPECT_TRUE(names.contains("root"));
}

// The groups of a made-up file, as the C library reads them.
class GroupFile {
 public:
  explicit GroupFile(const std::string& content) : _file(std::fopen(_files.write("group", content).c_str(), "r")) {}

  LinuxEntryReader<group> reader(std::size_t buffer) {
    return LinuxEntryReader<group>(
        [this](group* entry, char* memory, std::size_t size, group** found) {
          ++reads;
          return fgetgrent_r(_file.get(), entry, memory, size, found);
        },
        buffer);
  }

  int reads = 0;

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  const MadeUpFiles _files;
  const std::unique_ptr<std::FILE, Close> _file;
};

TEST(LinuxEntryReader, AnEntryThatTheBufferIsTooSmallForIsReadOnceMoreAndNoneIsLost) {
  constexpr int kMembers = 20000;
  std::string crowd = "member0";
  for (int i = 1; i < kMembers; ++i) crowd += ",member" + std::to_string(i);
  GroupFile file("few:x:7:anna,bert\ncrowd:x:8:" + crowd + "\nlast:x:9:\n");
  LinuxEntryReader<group> reader = file.reader(256);
  std::vector<std::string> shown;
  while (const group* const entry = reader.next()) {
    int members = 0;
    while (entry->gr_mem[members] != nullptr) ++members;
    const std::string last = members == 0 ? "nobody" : entry->gr_mem[members - 1];
    shown.push_back(std::string(entry->gr_name) + " " + std::to_string(members) + " " + last);
  }
  EXPECT_THAT(shown, testing::ElementsAre("few 2 bert", "crowd 20000 member19999", "last 0 nobody"));
  EXPECT_GT(file.reads, 4) << "the buffer was large enough";
  EXPECT_TRUE(reader.error() == 0 || reader.error() == ENOENT) << reader.error();
}

TEST(LinuxEntryReader, AnEntryWithoutEndIsAnErrorAndNotAllMemory) {
  std::size_t greatest = 0;
  LinuxEntryReader<group> reader([&](group*, char*, std::size_t size, group**) {
    greatest = std::max(greatest, size);
    return ERANGE;
  });
  EXPECT_EQ(reader.next(), nullptr);
  EXPECT_EQ(reader.error(), ERANGE);
  EXPECT_EQ(greatest, LinuxEntryReader<group>::kGreatestBuffer);
}

TEST(LinuxEntryReader, TellsADatabaseThatCannotBeOpenedFromTheEnd) {
  const auto endBecause = [](int reason) {
    return LinuxEntryReader<group>([reason](group*, char*, std::size_t, group**) {
      errno = reason;
      return ENOENT;
    });
  };
  LinuxEntryReader<group> closed = endBecause(EACCES);
  EXPECT_EQ(closed.next(), nullptr);
  EXPECT_EQ(closed.error(), EACCES);
  LinuxEntryReader<group> ended = endBecause(0);
  EXPECT_EQ(ended.next(), nullptr);
  EXPECT_EQ(ended.error(), ENOENT);
}

TEST(LinuxGroup, ShowsItsNumberAndMembers) {
  LinuxGroup provider;
  const auto rows = enumerateRows(provider, {"Name", "GroupNumber", "CommonName", "Members"});
  EXPECT_EQ(rows.size(), readAccountGroups().size());
  for (const LinuxAccountGroup& group : readAccountGroups()) {
    const ProvidedRow row = findRow(rows, group.name);
    ASSERT_EQ(row.size(), 4U) << group.name;
    EXPECT_EQ(textOf(row[1]), std::to_string(getgrnam(group.name.c_str())->gr_gid));
    EXPECT_EQ(textOf(row[2]), group.name);
    EXPECT_EQ(row[3]->getArray()->entries(), group.members.size());
  }
}

}  // namespace
