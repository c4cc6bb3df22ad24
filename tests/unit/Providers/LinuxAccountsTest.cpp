// Users and groups.
// SPDX-License-Identifier: Apache-2.0
#include <grp.h>
#include <pwd.h>

#include <set>

#include "Cimom/Providers/LinuxAccounts.h"
#include "Cimom/Providers/LinuxGroup.h"
#include "Cimom/Providers/LinuxUser.h"
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
