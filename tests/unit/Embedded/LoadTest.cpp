// Loads as one unit: what a loader declares is invisible until commit and gone after rollback.
// SPDX-License-Identifier: Apache-2.0
#include "EmbeddedFixture.h"

using namespace embeddedtest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Loading : public EmbeddedTest {
 protected:
  Name load(const CimInstanceDeclaration& declaration) { return sink().createInstance(kSpace, declaration); }
  std::vector<std::string> ids() { return values(enumerate("CIM_Device"), "DeviceID"); }
};

TEST_F(Loading, NothingIsVisibleBeforeCommit) {
  createDisk("old");
  sink().begin();
  declare(classOf("CIM_New", "CIM_Disk", {property("P", CQoriType::string)}));
  sink().createNamespace("root/new");
  sink().declareClass("root/new", classOf("CIM_X", "", {}));
  const Name loaded = load(instanceOf("CIM_Disk", {{"DeviceID", text("loaded")}}));
  const Name ofNewClass = load(instanceOf("CIM_New", {{"DeviceID", text("new")}}));

  EXPECT_THAT(ids(), ElementsAre("old"));
  EXPECT_TRUE(get(loaded).IsNull());
  EXPECT_TRUE(enumerate("CIM_New").IsNull());
  EXPECT_TRUE(manager.repository()->getClass(kSpace, "CIM_New").IsNull());
  EXPECT_EQ(1u, manager.namespaces().size());
  EXPECT_EQ(4u, manager.classNames(kSpace).size());
  EXPECT_TRUE(manager.classNames("root/new").empty());
  EXPECT_FALSE(manager.deleteInstance(loaded));

  sink().commit();
  EXPECT_THAT(ids(), ElementsAre("old", "loaded", "new"));
  EXPECT_FALSE(get(ofNewClass).IsNull());
  EXPECT_EQ(1u, enumerate("CIM_New")->entries());
  EXPECT_EQ(2u, manager.namespaces().size());
  EXPECT_EQ(5u, manager.classNames(kSpace).size());
  EXPECT_EQ(1u, manager.classNames("root/new").size());
}

TEST_F(Loading, TheLoaderSeesItsOwnWork) {
  sink().begin();
  declare(classOf("CIM_New", "CIM_Disk", {property("P", CQoriType::string)}));
  EXPECT_FALSE(sink().findClass(kSpace, "cim_new").IsNull());
  CimPropertyDeclaration described;
  EXPECT_TRUE(sink().describeProperty(kSpace, "CIM_New", "p", described));
  load(instanceOf("CIM_New", {{"DeviceID", text("a")}}));
  EXPECT_EQ("instance root/cimv2:CIM_New.DeviceID=\"a\" exists already",
            refusal(
                [&] {
                  load(instanceOf("CIM_New", {{"DeviceID", text("a")}}));
                },
                kAlreadyExists));
  EXPECT_FALSE(sink().makeObject(kSpace, instanceOf("CIM_New", {})).IsNull());
  sink().rollback();
}

TEST_F(Loading, RollbackForgetsEverything) {
  const Name old = createDisk("old");
  sink().begin();
  CimQualifierDeclaration qualifier;
  qualifier.name = "Colour";
  qualifier.type = CQoriType::string;
  sink().declareQualifier(kSpace, qualifier);
  sink().createNamespace("root/new");
  sink().declareClass("root/new", classOf("CIM_X", "", {}));
  declare(classOf("CIM_New", "CIM_Disk", {}));
  declare(classOf("CIM_Newer", "CIM_New", {}));
  const Name fresh = load(instanceOf("CIM_Newer", {{"DeviceID", text("a")}}));
  load(instanceOf("CIM_Uses", {{"User", reference(old)}, {"Used", reference(fresh)}}));
  sink().rollback();

  EXPECT_THAT(ids(), ElementsAre("old"));
  EXPECT_THAT(paths(associators(old)), IsEmpty());
  EXPECT_TRUE(sink().findClass(kSpace, "CIM_New").IsNull());
  EXPECT_EQ(4u, manager.classNames(kSpace).size());
  EXPECT_EQ(1u, manager.namespaces().size());
  EXPECT_FALSE(sink().describeQualifier(kSpace, "Colour", qualifier));

  declare(classOf("CIM_New", "CIM_Device", {}));
  create(instanceOf("CIM_New", {{"DeviceID", text("a")}}));
  sink().createNamespace("root/new");
  EXPECT_THAT(ids(), ElementsAre("old", "a"));
}

TEST_F(Loading, WhatWasThereBeforeSurvivesARollbackThatDeclaredItAgain) {
  sink().begin();
  declare(classOf("CIM_FastDisk", "CIM_Disk", {property("Speed", CQoriType::uint32)}));
  sink().createNamespace(kSpace);
  sink().rollback();
  EXPECT_EQ(4u, manager.classNames(kSpace).size());
  EXPECT_EQ(1u, manager.namespaces().size());
}

TEST_F(Loading, PendingAssociationsDoNotCountBeforeCommit) {
  const Name s = createDisk("s");
  const Name a = createDisk("a");
  sink().begin();
  load(instanceOf("CIM_Uses", {{"User", reference(s)}, {"Used", reference(a)}}));
  EXPECT_THAT(paths(associators(s)), IsEmpty());
  sink().commit();
  EXPECT_EQ(1u, associators(s)->entries());
}

TEST_F(Loading, PendingObjectsAreNoEndsOfAssociations) {
  const Name s = createDisk("s");
  createUses(s, nameOf(kSpace, "CIM_Disk", {{"DeviceID", text("later")}}));
  sink().begin();
  load(instanceOf("CIM_Disk", {{"DeviceID", text("later")}}));
  EXPECT_THAT(paths(associators(s)), IsEmpty());
  sink().commit();
  EXPECT_EQ(1u, associators(s)->entries());
}

TEST_F(Loading, ChangesBesideALoadTakeEffectAtOnceAndKeepCreationOrder) {
  sink().begin();
  load(instanceOf("CIM_Disk", {{"DeviceID", text("loaded1")}}));
  createDisk("beside");
  load(instanceOf("CIM_Disk", {{"DeviceID", text("loaded2")}}));
  EXPECT_THAT(ids(), ElementsAre("beside"));
  sink().commit();
  EXPECT_THAT(ids(), ElementsAre("loaded1", "beside", "loaded2"));
}

TEST_F(Loading, ChangesBesideALoadSurviveItsRollback) {
  sink().begin();
  load(instanceOf("CIM_Disk", {{"DeviceID", text("loaded")}}));
  createDisk("beside");
  sink().rollback();
  EXPECT_THAT(ids(), ElementsAre("beside"));
}

TEST_F(Loading, ChangesBesideALoadCannotUseWhatIsPending) {
  sink().begin();
  declare(classOf("CIM_New", "CIM_Disk", {}));
  sink().createNamespace("root/new");
  load(instanceOf("CIM_Disk", {{"DeviceID", text("a")}}));
  EXPECT_EQ("instance of CIM_New: the class is not declared",
            refusal(
                [&] {
                  create(instanceOf("CIM_New", {{"DeviceID", text("a")}}));
                },
                kInvalidClass));
  EXPECT_EQ("namespace root/new does not exist",
            refusal([&] { manager.createInstance("root/new", instanceOf("X", {})); }, kInvalidNamespace));
  EXPECT_EQ("instance root/cimv2:CIM_Disk.DeviceID=\"a\" exists already",
            refusal([&] { createDisk("a"); }, kAlreadyExists));
  sink().commit();
}

TEST_F(Loading, AfterARefusalTheLoadMayGoOn) {
  sink().begin();
  load(instanceOf("CIM_Disk", {{"DeviceID", text("a")}}));
  EXPECT_THROW(load(instanceOf("CIM_None", {})), QoriBaseException);
  EXPECT_THROW(load(instanceOf("CIM_Disk", {{"DeviceID", text("a")}})), QoriBaseException);
  load(instanceOf("CIM_Disk", {{"DeviceID", text("b")}}));
  sink().commit();
  EXPECT_THAT(ids(), ElementsAre("a", "b"));
}

TEST_F(Loading, LoadsDoNotNest) {
  EXPECT_EQ("no load is open", refusal([&] { sink().commit(); }, kFailed));
  sink().rollback();
  sink().begin();
  EXPECT_EQ("another load is open", refusal([&] { sink().begin(); }, kFailed));
  sink().commit();
  sink().begin();
  sink().rollback();
}

TEST_F(Loading, OutsideALoadDeclarationsTakeEffectAtOnce) {
  load(instanceOf("CIM_Disk", {{"DeviceID", text("a")}}));
  EXPECT_THAT(ids(), ElementsAre("a"));
}

TEST_F(Loading, ManyPendingInstancesAndClassesRollBack) {
  createDisk("old");
  sink().begin();
  for (int i = 0; i < 3000; ++i) {
    declare(classOf(("CIM_C" + std::to_string(i)).c_str(), "CIM_Disk", {}));
    load(instanceOf("CIM_Disk", {{"DeviceID", text(std::to_string(i).c_str())}}));
  }
  sink().rollback();
  EXPECT_THAT(ids(), ElementsAre("old"));
  EXPECT_EQ(4u, manager.classNames(kSpace).size());
}

}  // namespace
