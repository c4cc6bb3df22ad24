// What calls name is found as they ask for it, or refused with the status that tells why.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerObjects.h"
#include "ServerFixture.h"

using namespace embeddedtest;
using servertest::Asked;
using servertest::statusOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Want = ServerObjects::Want;

class CallsForObjects : public ServerTest {
 protected:
  CIMApi::Instances instances(Asked& asked, bool isLocalOnly = false) {
    return ServerObjects(asked.on(held)).instances(Want::Instances, isLocalOnly);
  }
  CIMApi::Instances references(Asked& asked) {
    return ServerObjects(asked.on(held)).references(Want::Instances, "ObjectName");
  }
  CIMApi::Instances associators(Asked& asked) {
    return ServerObjects(asked.on(held)).associators(Want::Instances, "ObjectName");
  }
};

TEST_F(CallsForObjects, InstancesOfAClassAndOfThoseBelowItComeWhole) {
  createDisk("a", 1);
  createDisk("b", 2, "CIM_FastDisk");
  Asked asked("EnumerateInstances");
  const CIMApi::Instances found = instances(asked.className("ClassName", "cim_disk"));
  EXPECT_THAT(values(found, "DeviceID"), ElementsAre("a", "b"));
  EXPECT_THAT(propertyNames(found->last()), ElementsAre("DeviceID", "Caption", "Size", "Online", "Speed"));
  EXPECT_EQ(asked.note.subject, "cim_disk");
}

TEST_F(CallsForObjects, WithoutDeepInheritanceClassesBelowShowWhatTheClassHas) {
  createDisk("b", 2, "CIM_FastDisk");
  Asked asked("EnumerateInstances");
  asked.className("ClassName", "CIM_Disk").text("DeepInheritance", "FALSE");
  EXPECT_THAT(propertyNames(instances(asked)->first()), ElementsAre("DeviceID", "Caption", "Size", "Online"));
  asked.texts("PropertyList", {"SPEED", "size"});
  EXPECT_THAT(propertyNames(instances(asked)->first()), ElementsAre("Size"));
}

TEST_F(CallsForObjects, LocalOnlyShowsWhatTheInstancesOwnClassDeclares) {
  createDisk("a");
  createDisk("b", 2, "CIM_FastDisk");
  Asked asked("EnumerateInstances");
  asked.className("ClassName", "CIM_Disk");
  const CIMApi::Instances found = instances(asked, true);
  EXPECT_THAT(propertyNames(found->first()), ElementsAre("Size", "Online"));
  EXPECT_THAT(propertyNames(found->last()), ElementsAre("Speed"));
  EXPECT_THAT(paths(found),
              ElementsAre("root/cimv2:CIM_Disk.DeviceID=\"a\"", "root/cimv2:CIM_FastDisk.DeviceID=\"b\""));
  asked.text("LocalOnly", "false");
  EXPECT_EQ(instances(asked, true)->first()->getPropertyCount(), 4U) << "what the call says counts";
}

TEST_F(CallsForObjects, APropertyListChoosesAndAnEmptyOneLeavesNothing) {
  createDisk("a", 7);
  Asked some("EnumerateInstances");
  some.className("ClassName", "CIM_Disk").texts("PropertyList", {"size", "None"});
  EXPECT_THAT(propertyNames(instances(some)->first()), ElementsAre("Size"));
  Asked none("EnumerateInstances");
  none.className("ClassName", "CIM_Disk").texts("PropertyList", {});
  EXPECT_THAT(propertyNames(instances(none)->first()), IsEmpty());
}

TEST_F(CallsForObjects, NamesComeWithoutProperties) {
  createDisk("a");
  Asked asked("EnumerateInstanceNames");
  asked.className("ClassName", "CIM_Device").text("LocalOnly", "TRUE").texts("PropertyList", {"Size"});
  const CIMApi::Instances found = ServerObjects(asked.on(held)).instances(Want::Names);
  EXPECT_THAT(paths(found), ElementsAre("root/cimv2:CIM_Disk.DeviceID=\"a\""));
  EXPECT_THAT(propertyNames(found->first()), IsEmpty());
}

TEST_F(CallsForObjects, WhatNobodyHasIsRefused) {
  Asked unknownSpace("EnumerateInstances", "root/none");
  EXPECT_EQ(statusOf([&] { instances(unknownSpace.className("ClassName", "CIM_Disk")); }), 3U);
  Asked without("EnumerateInstances");
  EXPECT_EQ(statusOf([&] { instances(without); }), 4U);
  Asked unknownClass("EnumerateInstances");
  EXPECT_EQ(statusOf([&] { instances(unknownClass.className("ClassName", "CIM_None")); }), 5U);
}

TEST_F(CallsForObjects, AssociatorsFollowClassesAndRoles) {
  const Name source = createDisk("s");
  const Name used = createDisk("u", 0, "CIM_FastDisk");
  const Name user = createDisk("w");
  createUses(source, used);
  createUses(user, source);
  Asked all("Associators");
  EXPECT_THAT(values(associators(all.path("ObjectName", source)), "DeviceID"), ElementsAre("u", "w"));
  Asked byRole("Associators");
  byRole.path("ObjectName", source).text("Role", "user").className("AssocClass", "CIM_Uses");
  EXPECT_THAT(values(associators(byRole), "DeviceID"), ElementsAre("u"));
  Asked byResult("Associators");
  byResult.path("ObjectName", source).className("ResultClass", "CIM_FastDisk").text("ResultRole", "Used");
  EXPECT_THAT(values(associators(byResult), "DeviceID"), ElementsAre("u"));
}

TEST_F(CallsForObjects, ReferencesAreTheAssociationsThemselves) {
  declare(classOf("CIM_UsesToo", "CIM_Uses", {property("Since", CQoriType::string)}));
  const Name source = createDisk("s");
  const Name other = createDisk("o");
  const Name first = createUses(source, other);
  const Name second = createUses(other, source, "CIM_UsesToo");
  createUses(other, other);
  Asked all("References");
  EXPECT_THAT(paths(references(all.path("ObjectName", source))),
              ElementsAre(std::string(first->toString().view()), std::string(second->toString().view())));
  Asked byRole("References");
  byRole.path("ObjectName", source).text("Role", "USED").texts("PropertyList", {"Since"});
  const CIMApi::Instances found = references(byRole);
  ASSERT_EQ(found->entries(), 1U);
  EXPECT_THAT(propertyNames(found->first()), ElementsAre("Since"));
  Asked byClass("References");
  byClass.path("ObjectName", source).className("ResultClass", "CIM_UsesToo");
  EXPECT_EQ(references(byClass)->entries(), 1U);
}

TEST_F(CallsForObjects, AnAssociationOfAnObjectWithItselfIsReferredToOnce) {
  const Name source = createDisk("s");
  createUses(source, source);
  Asked asked("References");
  EXPECT_EQ(references(asked.path("ObjectName", source))->entries(), 1U);
}

TEST_F(CallsForObjects, TheSourceOfAnAssociationMustExist) {
  Asked none("Associators");
  EXPECT_EQ(statusOf([&] { associators(none); }), 4U);
  Asked unknown("Associators");
  unknown.path("ObjectName", nameOf("root/cimv2", "CIM_Disk", {{"DeviceID", text("x")}}));
  EXPECT_EQ(statusOf([&] { associators(unknown); }), 6U);
  Asked classless("References");
  classless.path("ObjectName", nameOf("root/cimv2", "CIM_None", {{"DeviceID", text("x")}}));
  EXPECT_EQ(statusOf([&] { references(classless); }), 5U);
  Asked association("Associators");
  association.path("ObjectName", createDisk("s")).className("AssocClass", "CIM_None");
  EXPECT_EQ(statusOf([&] { associators(association); }), 5U);
}

}  // namespace
