// Associations between live instances: both ends exist, and they are walked by the object manager.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Providers/LinuxAccounts.h"
#include "Cimom/Providers/LinuxProviders.h"
#include "ProviderFixture.h"
#include "cimom/CIMApi.h"

namespace {

constexpr const char* kNamespace = "root/cimv2";

class LinuxAssociations : public testing::Test {
 protected:
  void SetUp() override { _manager.makeCurrent(); }

  void addLiveClasses(const std::string& before = "") {
    if (!before.empty()) MofLoader(_manager.sink(), kNamespace).loadText(before, "before");
    LinuxSchemaSink sink(_manager.sink());
    MofLoader(sink, kNamespace).loadText(linuxSchemaMof(), "live classes");
    registerLinuxProviders(_manager, kNamespace);
  }
  static std::vector<QORSmrPtr<IQoriObject>> instancesOf(const char* className) {
    return toVector(
        CIMApi().enumerateInstances(kNamespace, className, {}, CIMApi::DefaultTimeout, nullptr, nullptr, nullptr, {}));
  }
  static std::vector<QORSmrPtr<IQoriObject>> associatedWith(const QORSmrPtr<IQoriObject>& object,
                                                            const char* association, const char* resultClass) {
    return toVector(CIMApi().associators(kNamespace, object->getInstanceName(), association, resultClass, {},
                                         CIMApi::DefaultTimeout, "", "", ""));
  }
  static std::vector<QORSmrPtr<IQoriObject>> toVector(const CIMApi::Instances& list) {
    std::vector<QORSmrPtr<IQoriObject>> found;
    if (list.IsNull()) return found;
    QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*list);
    while (++each) found.push_back(each.key());
    return found;
  }
  static std::string property(const QORSmrPtr<IQoriObject>& object, const char* name) {
    return textOf(object->getProperty(name, true)->getValue());
  }
  static QORSmrPtr<IQoriObject> find(const char* className, const char* key, const std::string& value) {
    for (const auto& object : instancesOf(className)) {
      if (property(object, key) == value) return object;
    }
    return {};
  }

  EmbeddedObjectManager _manager;
};

TEST_F(LinuxAssociations, AProcessBelongsToItsUser) {
  addLiveClasses();
  const auto self = find("Linux_Process", "Handle", std::to_string(getpid()));
  ASSERT_FALSE(self.IsNull());
  const auto users = associatedWith(self, "Linux_ProcessOwner", "Linux_User");
  const std::vector<LinuxAccount> accounts = readAccounts();
  const bool isKnown = std::any_of(accounts.begin(), accounts.end(),
                                   [](const LinuxAccount& account) { return account.number == geteuid(); });
  ASSERT_EQ(users.size(), isKnown ? 1U : 0U);
  if (isKnown) {
    EXPECT_EQ(property(users[0], "UserID"), std::to_string(geteuid()));
  }
}

TEST_F(LinuxAssociations, AUserHasItsProcesses) {
  addLiveClasses();
  const auto root = find("Linux_User", "Name", "root");
  ASSERT_FALSE(root.IsNull());
  const auto processes = associatedWith(root, "Linux_ProcessOwner", "CIM_Process");
  for (const auto& process : processes) EXPECT_EQ(property(process, "OwnerUser"), "root");
}

TEST_F(LinuxAssociations, AGroupHasTheUsersWhosePrimaryGroupItIs) {
  addLiveClasses();
  const auto group = find("Linux_Group", "Name", "root");
  ASSERT_FALSE(group.IsNull());
  std::vector<std::string> names;
  for (const auto& user : associatedWith(group, "Linux_GroupMember", "Linux_User"))
    names.push_back(property(user, "Name"));
  EXPECT_THAT(names, ::testing::Contains("root"));
}

TEST_F(LinuxAssociations, AFileSystemIsOnTheDeviceThatTheKernelNames) {
  addLiveClasses();
  struct stat root {};
  ASSERT_EQ(stat("/", &root), 0);
  const std::string number = std::to_string(major(root.st_dev)) + ':' + std::to_string(minor(root.st_dev));
  const auto fileSystem = find("Linux_FileSystem", "Name", "/");
  const auto device = find("Linux_BlockDevice", "DeviceNumber", number);
  if (fileSystem.IsNull() || device.IsNull()) return;  // a machine whose root is on no block device
  const auto devices = associatedWith(fileSystem, "Linux_FileSystemDevice", "CIM_StorageExtent");
  ASSERT_EQ(devices.size(), 1U);
  EXPECT_EQ(property(devices[0], "DeviceNumber"), number);
}

TEST_F(LinuxAssociations, BothEndsAreInstances) {
  addLiveClasses();
  struct Ends {
    const char* association;
    const char* first;
    const char* firstClass;
    const char* second;
    const char* secondClass;
  };
  constexpr Ends kEnds[] = {
      {"Linux_ProcessPort", "Antecedent", "Linux_Process", "Dependent", "Linux_ListeningPort"},
      {"Linux_FileSystemDevice", "Antecedent", "Linux_BlockDevice", "Dependent", "Linux_FileSystem"},
      {"Linux_GroupMember", "Collection", "Linux_Group", "Member", "Linux_User"},
      {"Linux_ServiceProcess", "Service", "Linux_Service", "Process", "Linux_Process"}};
  const auto pathsOf = [](const char* className) {
    std::set<std::string> paths;
    for (const auto& object : instancesOf(className)) paths.emplace(object->getInstanceName()->toString().view());
    return paths;
  };
  const auto missing = [&](const Ends& ends) {
    std::set<std::string> first = pathsOf(ends.firstClass);
    std::set<std::string> second = pathsOf(ends.secondClass);
    const auto pairs = instancesOf(ends.association);
    // What began meanwhile is there afterwards.
    first.merge(pathsOf(ends.firstClass));
    second.merge(pathsOf(ends.secondClass));
    std::vector<std::string> names;
    for (const auto& pair : pairs) {
      if (!first.contains(property(pair, ends.first))) names.push_back(property(pair, ends.first));
      if (!second.contains(property(pair, ends.second))) names.push_back(property(pair, ends.second));
    }
    return names;
  };
  for (const Ends& ends : kEnds) {
    const bool isOfServices = std::string_view(ends.firstClass) == "Linux_Service";
    if (isOfServices && access("/run/systemd/system", F_OK) != 0) continue;  // no systemd, no services
    std::vector<std::string> names = missing(ends);
    // What began and ended between two looks is gone in the next ones.
    for (int look = 0; look < 20 && !names.empty(); ++look) names = missing(ends);
    EXPECT_THAT(names, ::testing::IsEmpty()) << ends.association;
  }
}

TEST_F(LinuxAssociations, ASchemaWithFewerKeysIsServedAsWell) {
  addLiveClasses(
      "class CIM_ManagedElement { string Caption; };\n"
      "class CIM_Process : CIM_ManagedElement { [Key] string Handle; };\n"
      "class CIM_Account : CIM_ManagedElement { [Key] string Name; string UserID; };\n");
  const auto self = find("Linux_Process", "Handle", std::to_string(getpid()));
  ASSERT_FALSE(self.IsNull());
  EXPECT_EQ(std::string(self->getInstanceName()->toString().view()),
            "root/cimv2:Linux_Process.Handle=\"" + std::to_string(getpid()) + '"');
  const auto pairs = instancesOf("Linux_ProcessOwner");
  ASSERT_FALSE(pairs.empty());
  EXPECT_EQ(property(pairs[0], "Antecedent").find("CreationClassName"), std::string::npos);
  const auto processes = associatedWith(find("Linux_User", "Name", "root"), "Linux_ProcessOwner", "Linux_Process");
  if (geteuid() == 0) {
    EXPECT_FALSE(processes.empty());
  }
}

}  // namespace
