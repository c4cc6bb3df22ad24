// What enumerateInstances returns, in which order and with which properties.
// SPDX-License-Identifier: Apache-2.0
#include "EmbeddedFixture.h"

using namespace embeddedtest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Enumeration : public EmbeddedTest {};

TEST_F(Enumeration, InstancesComeInCreationOrderAcrossSubclasses) {
  createDisk("c");
  createDisk("a", 1, "CIM_FastDisk");
  createDisk("b");
  EXPECT_THAT(values(enumerate("CIM_Device"), "DeviceID"), ElementsAre("c", "a", "b"));
  EXPECT_THAT(values(enumerate("CIM_Disk"), "DeviceID"), ElementsAre("c", "a", "b"));
  EXPECT_THAT(values(enumerate("CIM_FastDisk"), "DeviceID"), ElementsAre("a"));
}

TEST_F(Enumeration, NumbersAscendAndStayWithAnInstanceThatChanges) {
  createDisk("c");
  createDisk("a", 1, "CIM_FastDisk");
  createDisk("b");
  manager.modifyInstance(enumerate("CIM_Disk")->first()->getInstanceName(), {{"Caption", text("changed")}});
  for (const CIMApi::PropertyNames& wanted : {CIMApi::PropertyNames(), names({"Size"})}) {
    QORuint64 last = 0;
    const CIMApi::Instances disks = enumerate("CIM_Disk", wanted);
    QORValSlistIterator<Object> each(*disks);
    while (++each) {
      EXPECT_GT(each.key()->getIdentity(), last);
      last = each.key()->getIdentity();
    }
    EXPECT_EQ(3u, disks->entries());
  }
}

TEST_F(Enumeration, NamesOfClassAndNamespaceIgnoreCase) {
  createDisk("a");
  EXPECT_EQ(1u, enumerate("cim_DISK", {}, "ROOT/cimV2")->entries());
}

TEST_F(Enumeration, UnknownClassOrNamespaceIsNullAndNoInstancesAreAnEmptyList) {
  EXPECT_TRUE(enumerate("CIM_Nothing").IsNull());
  EXPECT_TRUE(enumerate("CIM_Disk", {}, "root/elsewhere").IsNull());
  EXPECT_TRUE(enumerate("", {}, "").IsNull());
  ASSERT_FALSE(enumerate("CIM_Disk").IsNull());
  EXPECT_EQ(0u, enumerate("CIM_Disk")->entries());
}

TEST_F(Enumeration, NullPropertyListGivesAllInheritedFirstWithDefaults) {
  createDisk("a", 7, "CIM_FastDisk");
  const Object disk = enumerate("CIM_Device")->first();
  EXPECT_THAT(propertyNames(disk), ElementsAre("DeviceID", "Caption", "Size", "Online", "Speed"));
  EXPECT_STREQ("TRUE", disk->getProperty("online", true)->getValue()->toString().c_str());
  EXPECT_TRUE(disk->getProperty("Caption", true)->getValue().IsNull());
  EXPECT_STREQ("CIM_FastDisk", disk->getClassName().c_str());
  EXPECT_STREQ("root/cimv2", disk->getNameSpace().c_str());
}

TEST_F(Enumeration, ListedPropertiesAloneArePresentInTheSourcesOrderAndTheNameIsComplete) {
  createDisk("a", 7);
  const Object disk = enumerate("CIM_Disk", names({"SIZE", "caption", "size", "NoSuch"}))->first();
  EXPECT_THAT(propertyNames(disk), ElementsAre("Caption", "Size"));
  EXPECT_STREQ("root/cimv2:CIM_Disk.DeviceID=\"a\"", disk->getInstanceName()->toString().c_str());
  EXPECT_STREQ("CIM_Disk", disk->getClassName().c_str());
  EXPECT_STREQ("root/cimv2", disk->getNameSpace().c_str());
}

TEST_F(Enumeration, EmptyPropertyListKeepsNoProperty) {
  createDisk("a", 7);
  const Object disk = enumerate("CIM_Disk", names({}))->first();
  EXPECT_EQ(0u, disk->getPropertyCount());
  EXPECT_FALSE(disk->getInstanceName().IsNull());
}

TEST_F(Enumeration, AskingForEveryPropertyGivesTheInstanceItself) {
  createDisk("a", 7);
  const Object whole = enumerate("CIM_Disk")->first();
  const Object listed = enumerate("CIM_Disk", names({"DeviceID", "Caption", "Size", "Online"}))->first();
  EXPECT_TRUE(whole == listed);
}

TEST_F(Enumeration, SubclassPropertiesOfTheListAreKeptForSubclassInstances) {
  createDisk("a");
  createDisk("b", 1, "CIM_FastDisk");
  EXPECT_THAT(values(enumerate("CIM_Device", names({"Speed"})), "Speed"), ElementsAre("absent", "NULL"));
}

TEST_F(Enumeration, InstancesOfOneClassShareOneLayout) {
  createDisk("a");
  createDisk("b");
  const CIMApi::Instances all = enumerate("CIM_Disk", names({"Size"}));
  ASSERT_NE(nullptr, all->first()->getLayout());
  EXPECT_EQ(all->first()->getLayout(), all->last()->getLayout());
}

TEST_F(Enumeration, ListsAreSharedUntilAnInstanceOfTheClassOrASubclassChanges) {
  createDisk("a");
  const CIMApi::Instances first = enumerate("CIM_Device", names({"Size"}));
  EXPECT_TRUE(first == enumerate("cim_device", names({"size"})));
  EXPECT_FALSE(first == enumerate("CIM_Device", names({"Caption"})));
  createDisk("b", 1, "CIM_FastDisk");
  EXPECT_THAT(values(enumerate("CIM_Device", names({"Size"})), "Size"), ElementsAre("0", "1"));
  EXPECT_EQ(1u, first->entries()) << "a list that has been handed out does not change";
}

TEST_F(Enumeration, PropertyNamesThatJoinToTheSameTextAreDifferentLists) {
  declare(
      classOf("CIM_Odd", "", {property("a", CQoriType::string, {flag("Key")}), property("a1:b", CQoriType::string)}));
  create(instanceOf("CIM_Odd", {{"a", text("1")}}));
  EXPECT_THAT(propertyNames(enumerate("CIM_Odd", names({"a", "b"}))->first()), ElementsAre("a"));
  EXPECT_THAT(propertyNames(enumerate("CIM_Odd", names({"a1:b"}))->first()), ElementsAre("a1:b"));
}

TEST_F(Enumeration, DeletedInstancesLeaveAndTheOthersKeepTheirOrder) {
  std::vector<Name> made;
  for (int i = 0; i < 100; ++i) made.push_back(createDisk(std::to_string(i).c_str()));
  for (int i = 0; i < 100; ++i) {
    if (i % 10 != 0) {
      EXPECT_TRUE(manager.deleteInstance(made[static_cast<std::size_t>(i)]));
    }
  }
  EXPECT_THAT(values(enumerate("CIM_Device"), "DeviceID"),
              ElementsAre("0", "10", "20", "30", "40", "50", "60", "70", "80", "90"));
  createDisk("again");
  EXPECT_THAT(enumerate("CIM_Device")->entries(), 11u);
}

TEST_F(Enumeration, AClassInAnotherNamespaceIsAnotherClass) {
  sink().createNamespace("root/other");
  EXPECT_TRUE(enumerate("CIM_Disk", {}, "root/other").IsNull());
  sink().declareClass("root/other", classOf("CIM_Disk", "", {property("Name", CQoriType::string, {flag("Key")})}));
  manager.createInstance("ROOT/OTHER", instanceOf("cim_disk", {{"NAME", text("x")}}));
  EXPECT_THAT(paths(enumerate("CIM_Disk", {}, "root/other")), ElementsAre("root/other:CIM_Disk.Name=\"x\""));
  EXPECT_THAT(paths(enumerate("CIM_Disk")), IsEmpty());
}

TEST_F(Enumeration, StatisticsCountCallsAndInstances) {
  const Name disk = createDisk("a");
  createDisk("b");
  manager.resetStatistics();
  enumerate("CIM_Disk");
  enumerate("CIM_Nothing");
  associators(disk);
  get(disk);
  const EmbeddedObjectManager::Statistics counted = manager.statistics();
  EXPECT_EQ(2u, counted.enumerateCalls);
  EXPECT_EQ(1u, counted.associatorCalls);
  EXPECT_EQ(1u, counted.getInstanceCalls);
  EXPECT_EQ(3u, counted.instancesReturned);
  manager.resetStatistics();
  EXPECT_EQ(0u, manager.statistics().enumerateCalls);
}

}  // namespace
