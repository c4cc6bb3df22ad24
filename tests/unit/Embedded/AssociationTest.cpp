// What associators returns: ends of stored and live associations, once each, in order.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/StopScope.h"
#include "EmbeddedFixture.h"
#include "cimom/CQoriProviderException.h"

using namespace embeddedtest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class AssociationCalls : public EmbeddedTest {
 protected:
  std::vector<std::string> ids(const CIMApi::Instances& instances) { return values(instances, "DeviceID"); }
};

TEST_F(AssociationCalls, EndsComeInTheOrderInWhichTheAssociationsWereCreated) {
  const Name source = createDisk("s");
  const Name a = createDisk("a");
  const Name b = createDisk("b");
  createUses(source, b);
  createUses(source, a);
  EXPECT_THAT(ids(associators(source)), ElementsAre("b", "a"));
  EXPECT_THAT(ids(associators(a)), ElementsAre("s"));
}

TEST_F(AssociationCalls, ALongWalkEndsWhenItIsToEnd) {
  const Name source = createDisk("s");
  for (int i = 0; i < 2000; ++i) createUses(source, createDisk(std::to_string(i).c_str()));
  const Name few = createDisk("few");
  createUses(few, source);
  const StopScope stop([] { return true; });
  EXPECT_THROW(associators(source), CQoriProviderException);
  EXPECT_THROW(manager.references(kSpace, source, "", {}, ""), CQoriProviderException);
  EXPECT_THAT(ids(associators(few)), ElementsAre("s")) << "a short one asks nobody";
}

TEST_F(AssociationCalls, AnObjectIsReturnedOnce) {
  declare(classOf("CIM_UsesToo", "CIM_Uses", {}));
  const Name source = createDisk("s");
  const Name a = createDisk("a");
  const Name b = createDisk("b");
  createUses(source, a);
  createUses(source, b);
  createUses(source, a, "CIM_UsesToo");
  createUses(a, source);
  EXPECT_THAT(ids(associators(source)), ElementsAre("a", "b"));
}

TEST_F(AssociationCalls, AssociationAndResultClassIncludeSubclassesAndIgnoreCase) {
  declare(classOf("CIM_UsesToo", "CIM_Uses", {}));
  declare(classOf("CIM_Likes", "", {refer("Who", "CIM_Device"), refer("Whom", "CIM_Device")}, {flag("Association")}));
  const Name source = createDisk("s");
  const Name a = createDisk("a", 0, "CIM_FastDisk");
  const Name b = createDisk("b");
  createUses(source, a, "CIM_UsesToo");
  createUses(source, b);
  EXPECT_THAT(ids(associators(source, "cim_uses")), ElementsAre("a", "b"));
  EXPECT_THAT(ids(associators(source, "CIM_UsesToo")), ElementsAre("a"));
  EXPECT_THAT(ids(associators(source, "CIM_Likes")), IsEmpty());
  EXPECT_THAT(ids(associators(source, "", "cim_device")), ElementsAre("a", "b"));
  EXPECT_THAT(ids(associators(source, "CIM_Uses", "CIM_FastDisk")), ElementsAre("a"));
  EXPECT_THAT(ids(associators(source, "CIM_Disk")), IsEmpty()) << "no association at all";
}

TEST_F(AssociationCalls, ReferencesAreTheAssociationsInTheOrderOfTheirCreation) {
  const Name source = createDisk("s");
  const Name a = createDisk("a");
  const Name second = createUses(a, source);
  const Name first = createUses(source, a);
  const auto found = manager.references(kSpace, source, "", {}, "");
  EXPECT_THAT(paths(found), ElementsAre(second->toString().c_str(), first->toString().c_str()));
  EXPECT_THAT(propertyNames(found->first()), ElementsAre("User", "Used"));
  EXPECT_EQ(1u, manager.references(kSpace, source, "CIM_Uses", {}, "User")->entries());
  EXPECT_TRUE(manager.references(kSpace, source, "CIM_None", {}, "").IsNull());
  EXPECT_TRUE(manager.references(kSpace, {}, "", {}, "").IsNull());
}

TEST_F(AssociationCalls, UnknownNamesAndANullSourceGiveANullList) {
  const Name source = createDisk("s");
  EXPECT_TRUE(associators(source, "CIM_None").IsNull());
  EXPECT_TRUE(associators(source, "", "CIM_None").IsNull());
  EXPECT_TRUE(associators({}).IsNull());
  EXPECT_TRUE(CIMApi().associators("root/none", source, "", "", {}, 1, "", "", "").IsNull());
  ASSERT_FALSE(associators(source).IsNull());
  EXPECT_EQ(0u, associators(source)->entries());
}

TEST_F(AssociationCalls, PropertiesAreRestrictedAsListed) {
  const Name source = createDisk("s");
  createUses(source, createDisk("a", 5));
  const CIMApi::Instances found = associators(source, "CIM_Uses", "CIM_Disk", names({"size"}));
  ASSERT_EQ(1u, found->entries());
  EXPECT_THAT(propertyNames(found->first()), ElementsAre("Size"));
  EXPECT_THAT(paths(found), ElementsAre("root/cimv2:CIM_Disk.DeviceID=\"a\""));
}

TEST_F(AssociationCalls, RolesSelectTheReferenceProperties) {
  const Name s = createDisk("s");
  const Name a = createDisk("a");
  const Name b = createDisk("b");
  createUses(s, a);
  createUses(b, s);
  EXPECT_THAT(ids(associators(s, "", "", {}, "USER")), ElementsAre("a"));
  EXPECT_THAT(ids(associators(s, "", "", {}, "Used")), ElementsAre("b"));
  EXPECT_THAT(ids(associators(s, "", "", {}, "", "user")), ElementsAre("b"));
  EXPECT_THAT(ids(associators(s, "", "", {}, "User", "User")), IsEmpty());
  EXPECT_THAT(ids(associators(s, "", "", {}, "Nobody")), IsEmpty());
}

TEST_F(AssociationCalls, AnAssociationOfAnObjectWithItselfReturnsIt) {
  const Name s = createDisk("s");
  createUses(s, s);
  EXPECT_THAT(ids(associators(s)), ElementsAre("s"));
}

TEST_F(AssociationCalls, AllOtherReferencesOfAnAssociationAreEnds) {
  declare(classOf("CIM_Triple", "", {refer("A", "CIM_Disk"), refer("B", "CIM_Disk"), refer("C", "CIM_Disk", {})},
                  {flag("Association")}));
  const Name a = createDisk("a");
  const Name b = createDisk("b");
  const Name c = createDisk("c");
  create(instanceOf("CIM_Triple", {{"A", reference(a)}, {"B", reference(b)}, {"C", reference(c)}}));
  create(instanceOf("CIM_Triple", {{"A", reference(b)}, {"B", reference(a)}, {"C", Value()}}));
  EXPECT_THAT(ids(associators(a)), ElementsAre("b", "c"));
  EXPECT_THAT(ids(associators(c)), ElementsAre("a", "b"));
}

TEST_F(AssociationCalls, ReferencesToObjectsThatDoNotExistAreLeftOut) {
  const Name s = createDisk("s");
  createUses(s, nameOf(kSpace, "CIM_Disk", {{"DeviceID", text("gone")}}));
  createUses(s, nameOf("root/none", "CIM_Disk", {{"DeviceID", text("a")}}));
  createUses(s, nameOf(kSpace, "CIM_None", {{"DeviceID", text("a")}}));
  EXPECT_THAT(ids(associators(s)), IsEmpty());
  createDisk("gone");
  EXPECT_THAT(ids(associators(s)), ElementsAre("gone")) << "the object may be created later";
}

TEST_F(AssociationCalls, TheSourceIsFoundInAnySpelling) {
  createUses(createDisk("s"), createDisk("a"));
  EXPECT_THAT(ids(associators(nameOf("", "cim_DISK", {{"deviceid", text("s")}}))), ElementsAre("a"));
}

TEST_F(AssociationCalls, TheSourceNeedNotExist) {
  const Name gone = nameOf(kSpace, "CIM_Disk", {{"DeviceID", text("gone")}});
  createUses(gone, createDisk("a"));
  EXPECT_THAT(ids(associators(gone)), ElementsAre("a"));
}

TEST_F(AssociationCalls, EndsMayLieInAnotherNamespace) {
  sink().createNamespace("root/far");
  sink().declareClass("root/far", classOf("CIM_DEVICE", "", {property("DeviceID", CQoriType::string, {flag("Key")})}));
  const Name far = manager.createInstance("root/far", instanceOf("CIM_Device", {{"DeviceID", text("f")}}));
  const Name s = createDisk("s");
  createUses(s, far);
  EXPECT_THAT(paths(associators(s)), ElementsAre("root/far:CIM_DEVICE.DeviceID=\"f\""));
  EXPECT_THAT(ids(associators(s, "", "CIM_Device")), ElementsAre("f"));
  EXPECT_THAT(ids(associators(s, "", "CIM_Disk")), IsEmpty());
  EXPECT_THAT(ids(associators(far)), ElementsAre("s"));
}

TEST_F(AssociationCalls, DeletedAssociationsAndObjectsNoLongerCount) {
  const Name s = createDisk("s");
  const Name a = createDisk("a");
  const Name b = createDisk("b");
  const Name toA = createUses(s, a);
  createUses(s, b);
  EXPECT_TRUE(manager.deleteInstance(toA));
  EXPECT_THAT(ids(associators(s)), ElementsAre("b"));
  EXPECT_TRUE(manager.deleteInstance(b));
  EXPECT_THAT(ids(associators(s)), IsEmpty());
}

TEST_F(AssociationCalls, ChangedReferencesMoveTheAssociationAndKeepItsPlaceInTheOrder) {
  declare(classOf("CIM_Tag", "",
                  {property("K", CQoriType::string, {flag("Key")}), refer("Object", "CIM_Device", {}),
                   refer("Tag", "CIM_Device", {})},
                  {flag("Association")}));
  const Name s = createDisk("s");
  const Name a = createDisk("a");
  const Name b = createDisk("b");
  const Name first = create(instanceOf("CIM_Tag", {{"K", text("1")}, {"Tag", reference(a)}}));
  create(instanceOf("CIM_Tag", {{"K", text("2")}, {"Object", reference(s)}, {"Tag", reference(b)}}));
  EXPECT_THAT(ids(associators(s)), ElementsAre("b"));
  manager.modifyInstance(first, {{"Object", reference(s)}});
  EXPECT_THAT(ids(associators(s)), ElementsAre("a", "b"));
  manager.modifyInstance(first, {{"Tag", reference(s)}});
  EXPECT_THAT(ids(associators(s)), ElementsAre("s", "b"));
  EXPECT_THAT(ids(associators(a)), IsEmpty());
  manager.modifyInstance(first, {{"Object", Value()}, {"Tag", Value()}});
  EXPECT_THAT(ids(associators(s)), ElementsAre("b"));
}

TEST_F(AssociationCalls, AHubOfManyAssociationsSurvivesTheirDeletion) {
  const Name hub = createDisk("hub");
  std::vector<Name> uses;
  for (int i = 0; i < 2000; ++i) uses.push_back(createUses(hub, createDisk(std::to_string(i).c_str())));
  EXPECT_EQ(2000u, associators(hub)->entries());
  for (int i = 0; i < 1999; ++i) manager.deleteInstance(uses[static_cast<std::size_t>(i)]);
  EXPECT_THAT(ids(associators(hub)), ElementsAre("1999"));
}

}  // namespace
