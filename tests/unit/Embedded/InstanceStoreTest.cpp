// Creating, finding, changing and deleting stored instances.
// SPDX-License-Identifier: Apache-2.0
#include "EmbeddedFixture.h"

using namespace embeddedtest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class InstanceStores : public EmbeddedTest {
 protected:
  std::string refusedInstance(const CimInstanceDeclaration& declaration, QORuint32 code) {
    return refusal([&] { create(declaration); }, code);
  }
};

TEST_F(InstanceStores, CreatingReturnsTheCanonicalName) {
  const Name made = create(instanceOf("cim_DISK", {{"DEVICEID", text("a")}}));
  EXPECT_STREQ("root/cimv2:CIM_Disk.DeviceID=\"a\"", made->toString().c_str());
}

TEST_F(InstanceStores, WhatCannotBeCreatedIsRefused) {
  EXPECT_EQ("instance of CIM_None: the class is not declared",
            refusedInstance(instanceOf("CIM_None", {}), kInvalidClass));
  EXPECT_EQ("instance of CIM_Device: the class is abstract",
            refusedInstance(instanceOf("cim_device", {{"DeviceID", text("a")}}), kInvalidClass));
  EXPECT_EQ(
      "instance of CIM_Disk: the class has no property Colour",
      refusedInstance(instanceOf("CIM_Disk", {{"DeviceID", text("a")}, {"Colour", text("red")}}), kNoSuchProperty));
  EXPECT_EQ(
      "instance of CIM_Disk: property deviceid is given twice",
      refusedInstance(instanceOf("CIM_Disk", {{"DeviceID", text("a")}, {"deviceid", text("a")}}), kInvalidParameter));
  EXPECT_EQ("instance of CIM_Disk: property Size is uint64, the given value is string",
            refusedInstance(instanceOf("CIM_Disk", {{"DeviceID", text("a")}, {"Size", text("1")}}), kTypeMismatch));
  EXPECT_EQ("instance of CIM_Disk: key DeviceID has no value",
            refusedInstance(instanceOf("CIM_Disk", {{"Size", number(1)}}), kInvalidParameter));
  EXPECT_EQ("instance of CIM_Disk: key DeviceID has no value",
            refusedInstance(instanceOf("CIM_Disk", {{"DeviceID", Value()}}), kInvalidParameter));
  EXPECT_EQ("namespace root/none does not exist",
            refusal([&] { manager.createInstance("root/none", instanceOf("CIM_Disk", {})); }, kInvalidNamespace));
  EXPECT_THAT(paths(enumerate("CIM_Device")), IsEmpty());
}

TEST_F(InstanceStores, APathExistsOnce) {
  createDisk("a");
  EXPECT_EQ("instance root/cimv2:CIM_Disk.DeviceID=\"a\" exists already",
            refusedInstance(instanceOf("CIM_DISK", {{"deviceid", text("a")}}), kAlreadyExists));
  createDisk("A");
  createDisk("a", 0, "CIM_FastDisk");
  EXPECT_EQ(3u, enumerate("CIM_Disk")->entries());
}

TEST_F(InstanceStores, AClassWithoutKeysHasNoStoredInstances) {
  declare(classOf("CIM_Loose", "", {property("P", CQoriType::string)}));
  EXPECT_EQ("instance of CIM_Loose: the class has no key property, so its instances have no path",
            refusedInstance(instanceOf("CIM_Loose", {{"P", text("x")}}), kInvalidClass));
}

TEST_F(InstanceStores, AGivenNullReplacesTheDefault) {
  create(instanceOf("CIM_Disk", {{"DeviceID", text("a")}, {"Online", Value()}}));
  create(instanceOf("CIM_Disk", {{"DeviceID", text("b")}}));
  EXPECT_THAT(values(enumerate("CIM_Disk"), "Online"), ElementsAre("NULL", "TRUE"));
}

TEST_F(InstanceStores, AKeyMayTakeItsDefault) {
  declare(classOf("CIM_Single", "", {property("K", CQoriType::string, {flag("Key")}, text("only"))}));
  EXPECT_STREQ("root/cimv2:CIM_Single.K=\"only\"", create(instanceOf("CIM_Single", {}))->toString().c_str());
}

TEST_F(InstanceStores, ObjectsThatAreNotStoredNeedNoKeysAndHaveANameWhenTheKeysAreSet) {
  const Object nameless = sink().makeObject(kSpace, instanceOf("CIM_Disk", {{"Size", number(3)}}));
  EXPECT_TRUE(nameless->getInstanceName().IsNull());
  EXPECT_STREQ("3", nameless->getProperty("size", true)->getValue()->toString().c_str());
  EXPECT_STREQ("TRUE", nameless->getProperty("Online", true)->getValue()->toString().c_str());
  const Object named = sink().makeObject(kSpace, instanceOf("CIM_Disk", {{"DeviceID", text("a")}}));
  EXPECT_STREQ("root/cimv2:CIM_Disk.DeviceID=\"a\"", named->getInstanceName()->toString().c_str());
  EXPECT_THAT(paths(enumerate("CIM_Disk")), IsEmpty());
  EXPECT_EQ("instance of CIM_Disk: the class has no property X",
            refusal(
                [&] {
                  sink().makeObject(kSpace, instanceOf("CIM_Disk", {{"X", text("")}}));
                },
                kNoSuchProperty));
}

TEST_F(InstanceStores, EmbeddedInstancesAreStoredAsObjects) {
  CimQualifier embedded = flag("EmbeddedInstance");
  embedded.value = text("CIM_Disk");
  declare(classOf("CIM_Holder", "",
                  {property("K", CQoriType::string, {flag("Key")}), property("Disk", CQoriType::string, {embedded})}));
  const Object disk = sink().makeObject(kSpace, instanceOf("CIM_Disk", {{"Size", number(3)}}));
  const Name made = create(instanceOf("CIM_Holder", {{"K", text("a")}, {"Disk", Value(new CQoriValue(disk))}}));
  const Object held = get(made)->getProperty("Disk", true)->getValue()->getObject();
  ASSERT_FALSE(held.IsNull());
  EXPECT_STREQ("CIM_Disk", held->getClassName().c_str());
  EXPECT_EQ("instance of CIM_Holder: property Disk is object, the given value is string",
            refusedInstance(instanceOf("CIM_Holder", {{"K", text("b")}, {"Disk", text("instance")}}), kTypeMismatch));
}

TEST_F(InstanceStores, GetInstanceFindsByCanonicalNameWithTheListedProperties) {
  const Name made = createDisk("a", 7);
  createDisk("b", 8);
  EXPECT_STREQ("7", get(made)->getProperty("Size", true)->getValue()->toString().c_str());
  EXPECT_THAT(propertyNames(get(made, names({"size", "DEVICEID"}))), ElementsAre("DeviceID", "Size"));
  EXPECT_TRUE(get(made) == enumerate("CIM_Disk")->first());
}

TEST_F(InstanceStores, GetInstanceFindsNamesInAnySpelling) {
  createDisk("a", 7);
  EXPECT_FALSE(get(nameOf("root/CIMV2", "cim_disk", {{"DEVICEid", text("a")}})).IsNull());
  EXPECT_FALSE(get(nameOf("", "CIM_Disk", {{"DeviceID", text("a")}})).IsNull());
  EXPECT_FALSE(get(nameOf("root/cimv2", "CIM_Disk", {{"DeviceID", text("a")}}), {}, "").IsNull());
  EXPECT_TRUE(get(nameOf("root/cimv2", "CIM_Disk", {{"DeviceID", text("A")}})).IsNull()) << "values keep their case";
}

TEST_F(InstanceStores, GetInstanceIsNullForWhatDoesNotExist) {
  createDisk("a");
  sink().createNamespace("root/other");
  EXPECT_TRUE(get({}).IsNull());
  EXPECT_TRUE(get(nameOf(kSpace, "CIM_Disk", {{"DeviceID", text("z")}})).IsNull());
  EXPECT_TRUE(get(nameOf(kSpace, "CIM_Device", {{"DeviceID", text("a")}})).IsNull());
  EXPECT_TRUE(get(nameOf(kSpace, "CIM_None", {{"DeviceID", text("a")}})).IsNull());
  EXPECT_TRUE(get(nameOf(kSpace, "CIM_Disk", {})).IsNull());
  EXPECT_TRUE(get(nameOf(kSpace, "CIM_Disk", {{"Other", text("a")}})).IsNull());
  EXPECT_TRUE(get(nameOf(kSpace, "CIM_Disk", {{"DeviceID", text("a")}}), {}, "root/other").IsNull());
  EXPECT_TRUE(get(nameOf(kSpace, "CIM_Disk", {{"DeviceID", text("a")}}), {}, "root/none").IsNull());
}

TEST_F(InstanceStores, ModifyingSetsTheGivenPropertiesAndKeepsPlaceAndOldLists) {
  const Name first = createDisk("a", 1);
  createDisk("b", 2);
  const CIMApi::Instances before = enumerate("CIM_Device");
  manager.modifyInstance(nameOf("ROOT/cimv2", "cim_disk", {{"deviceid", text("a")}}),
                         {{"size", number(9)}, {"Online", Value()}});
  EXPECT_THAT(values(enumerate("CIM_Device"), "Size"), ElementsAre("9", "2"));
  EXPECT_THAT(values(enumerate("CIM_Device"), "Online"), ElementsAre("NULL", "TRUE"));
  EXPECT_THAT(values(before, "Size"), ElementsAre("1", "2"));
  EXPECT_STREQ("9", get(first)->getProperty("Size", true)->getValue()->toString().c_str());
}

TEST_F(InstanceStores, ModifyingIsRefusedWhereCreatingIs) {
  const Name made = createDisk("a", 1);
  const auto refused = [&](const std::vector<CimInstanceProperty>& change, QORuint32 code) {
    return refusal([&] { manager.modifyInstance(made, change); }, code);
  };
  const std::string keys = "instance root/cimv2:CIM_Disk.DeviceID=\"a\": keys cannot change";
  EXPECT_EQ(keys, refused({{"DeviceID", text("b")}}, kInvalidParameter));
  EXPECT_EQ(keys, refused({{"DeviceID", Value()}}, kInvalidParameter));
  EXPECT_EQ("instance of CIM_Disk: the class has no property X", refused({{"X", text("b")}}, kNoSuchProperty));
  EXPECT_EQ("instance of CIM_Disk: property Size is uint64, the given value is uint8",
            refused({{"Size", number(1, CQoriType::uint8)}}, kTypeMismatch));
  EXPECT_EQ("instance of CIM_Disk: property SIZE is given twice",
            refused({{"Size", number(1)}, {"SIZE", number(2)}}, kInvalidParameter));
  manager.modifyInstance(made, {{"DeviceID", text("a")}, {"Size", number(5)}});
  EXPECT_THAT(values(enumerate("CIM_Disk"), "Size"), ElementsAre("5"));
  EXPECT_EQ("instance root/cimv2:CIM_Disk.DeviceID=\"z\" does not exist",
            refusal(
                [&] {
                  manager.modifyInstance(nameOf(kSpace, "CIM_Disk", {{"DeviceID", text("z")}}), {});
                },
                kNotFound));
  EXPECT_EQ("there is no instance to modify", refusal([&] { manager.modifyInstance({}, {}); }, kInvalidParameter));
}

TEST_F(InstanceStores, DeletingTellsWhetherTheInstanceExisted) {
  const Name made = createDisk("a");
  EXPECT_TRUE(manager.deleteInstance(nameOf("ROOT/cimv2", "cim_disk", {{"deviceid", text("a")}})));
  EXPECT_FALSE(manager.deleteInstance(made));
  EXPECT_FALSE(manager.deleteInstance({}));
  EXPECT_FALSE(manager.deleteInstance(nameOf("root/none", "CIM_Disk", {{"DeviceID", text("a")}})));
  EXPECT_TRUE(get(made).IsNull());
  EXPECT_THAT(paths(enumerate("CIM_Disk")), IsEmpty());
  createDisk("a", 4);
  EXPECT_THAT(values(enumerate("CIM_Disk"), "Size"), ElementsAre("4"));
}

TEST_F(InstanceStores, AnInstanceThatIsCreatedAgainComesLast) {
  const Name made = createDisk("a");
  createDisk("b");
  manager.deleteInstance(made);
  createDisk("a");
  EXPECT_THAT(values(enumerate("CIM_Device"), "DeviceID"), ElementsAre("b", "a"));
}

TEST_F(InstanceStores, ObjectsOutliveTheirInstanceAndTheObjectManager) {
  Object kept;
  {
    EmbeddedObjectManager other;
    other.makeCurrent();
    other.sink().declareClass(kSpace, classOf("CIM_X", "", {property("K", CQoriType::string, {flag("Key")})}));
    const Name made = other.createInstance(kSpace, instanceOf("CIM_X", {{"K", text("a")}}));
    kept = get(made, names({"K"}));
    other.deleteInstance(made);
  }
  EXPECT_STREQ("a", kept->getProperty("K", true)->getValue()->toString().c_str());
  EXPECT_STREQ("root/cimv2:CIM_X.K=\"a\"", kept->getInstanceName()->toString().c_str());
}

TEST_F(InstanceStores, ReferencesAreStoredInTheRepositorysSpelling) {
  createDisk("a");
  const Name loose = nameOf("", "cim_disk", {{"deviceid", text("a")}});
  const Name made = createUses(loose, nameOf("ROOT/cimv2", "CIM_DISK", {{"DeviceID", text("gone")}}));
  const Object uses = get(made);
  EXPECT_STREQ("root/cimv2:CIM_Disk.DeviceID=\"a\"",
               uses->getProperty("User", true)->getValue()->getReference()->toString().c_str());
  EXPECT_STREQ("root/cimv2:CIM_Disk.DeviceID=\"gone\"",
               uses->getProperty("Used", true)->getValue()->getReference()->toString().c_str());
  EXPECT_FALSE(get(nameOf("", "CIM_USES",
                          {{"used", reference(nameOf("", "cim_disk", {{"deviceID", text("gone")}}))},
                           {"user", reference(loose)}}))
                   .IsNull());
}

TEST_F(InstanceStores, ChainsOfKeyReferencesEndBeforeTheirPathsGrowWithoutBound) {
  declare(classOf("CIM_Link", "", {refer("Next", "CIM_Device")}, {flag("Association")}));
  Name last = createDisk("end");
  std::string message;
  for (int i = 0; i < 40 && message.empty(); ++i) {
    try {
      last = create(instanceOf("CIM_Link", {{"Next", reference(last)}}));
    } catch (const QoriBaseException& error) {
      message = error.what();
    }
  }
  EXPECT_EQ("instance of CIM_Link: the path in key Next is longer than 16384 bytes", message);
  EXPECT_GT(enumerate("CIM_Link")->entries(), 5u);
}

TEST_F(InstanceStores, ReferencesToUnknownClassesKeepTheirSpellingAndGetTheNamespace) {
  const Name made =
      createUses(nameOf("", "X_Unknown", {{"k", text("a")}}), nameOf("root/far", "Y", {{"k", text("b")}}));
  EXPECT_STREQ("root/cimv2:X_Unknown.k=\"a\"",
               get(made)->getProperty("User", true)->getValue()->getReference()->toString().c_str());
  EXPECT_STREQ("root/far:Y.k=\"b\"",
               get(made)->getProperty("Used", true)->getValue()->getReference()->toString().c_str());
}

}  // namespace
