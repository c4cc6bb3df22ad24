// Rows that become instances when somebody needs them: nobody must be able to tell.
// SPDX-License-Identifier: Apache-2.0
#include <thread>

#include "Cimom/Embedded/CimDeclarationRows.h"
#include "EmbeddedFixture.h"

using namespace embeddedtest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kBase = "T_Base";
constexpr const char* kSub = "T_Sub";

class LaterRowsLoads : public EmbeddedTest {
 protected:
  LaterRowsLoads() {
    declare(classOf(kBase, "",
                    {property("K", CQoriType::string, {flag("Key")}), property("N", CQoriType::uint32),
                     property("L", CQoriType::arrayOf(CQoriType::uint16)),
                     property("Kept", CQoriType::string, {}, text("default"))}));
    declare(classOf(kSub, kBase, {property("More", CQoriType::string)}));
  }

  static void putRow(std::string& rows, const std::string& row) {
    const QORuint32 length = static_cast<QORuint32>(row.size());
    rows.append(reinterpret_cast<const char*>(&length), sizeof length).append(row);
  }
  static std::string rowOf(const std::string& key, QORuint32 number) {
    std::string row;
    CimRowWriter writer(row);
    writer.putText(key);
    writer.putUnsigned(number);
    const std::size_t begun = writer.beginArray();
    writer.putUnsigned(number);
    writer.endArray(begun, 1);
    return row;
  }
  bool addLater(const char* className, const std::vector<std::string>& keys) {
    const auto rows = std::make_shared<std::string>();
    QORuint32 number = 0;
    for (const std::string& key : keys) putRow(*rows, rowOf(key, ++number));
    const auto maker = manager.sink().instanceMaker("root/cimv2", className, {"K", "N", "L"});
    return maker->createLater(*rows, static_cast<QORuint32>(keys.size()), rows);
  }
  void load(const char* className, const std::vector<std::string>& keys) {
    manager.sink().begin();
    EXPECT_TRUE(addLater(className, keys));
    manager.sink().commit();
  }
  static std::string pathOf(const char* className, const std::string& key) {
    return std::string("root/cimv2:") + className + ".K=\"" + key + '"';
  }
  Object find(const char* key) { return get(nameOf("root/cimv2", kBase, {{"K", text(key)}})); }
};

TEST_F(LaterRowsLoads, AListOfSomePropertiesIsMadeOfTheRows) {
  manager.sink().begin();
  EXPECT_TRUE(addLater(kBase, {"a", "b"}));
  EXPECT_TRUE(addLater(kSub, {"c"}));
  manager.sink().commit();
  const CIMApi::Instances list = enumerate(kBase, names({"N", "kept"}));
  EXPECT_THAT(values(list, "N"), ElementsAre("1", "2", "1"));
  EXPECT_THAT(values(list, "Kept"), ElementsAre("default", "default", "default"));
  EXPECT_THAT(values(list, "K"), ElementsAre("absent", "absent", "absent"));
  EXPECT_THAT(paths(list), ElementsAre(pathOf(kBase, "a"), pathOf(kBase, "b"), pathOf(kSub, "c")));
  EXPECT_EQ(2U, propertyNames(list->at(0)).size());
  EXPECT_STREQ(kSub, list->at(2)->getClassName().c_str());
  EXPECT_STREQ("root/cimv2", list->at(2)->getNameSpace().c_str());
  EXPECT_THAT(paths(enumerate(kSub, names({"N"}))), ElementsAre(pathOf(kSub, "c")));
}

TEST_F(LaterRowsLoads, ItsObjectsAreAsThoseOfStoredInstances) {
  load(kBase, {"a", "b"});
  const CIMApi::Instances early = enumerate(kBase, names({"N", "L"}));
  const CIMApi::Instances all = enumerate(kBase);
  const CIMApi::Instances late = enumerate(kBase, names({"L", "N", "N"}));
  for (QORuint32 i = 0; i < 2; ++i) {
    const IQoriObject& row = *early->at(i);
    const IQoriObject& stored = *late->at(i);
    EXPECT_EQ(stored.getIdentity(), row.getIdentity());
    EXPECT_EQ(all->at(i)->getIdentity(), row.getIdentity());
    EXPECT_EQ(stored.getPathHash(), row.getPathHash());
    ASSERT_EQ(stored.getPropertyCount(), row.getPropertyCount());
    for (QORuint32 at = 0; at < row.getPropertyCount(); ++at) {
      EXPECT_TRUE(row.getLayout()->getName(at) == stored.getLayout()->getName(at));
      EXPECT_STREQ(stored.getPropertyAt(at)->getValue()->toString().c_str(),
                   row.getPropertyAt(at)->getValue()->toString().c_str());
      EXPECT_EQ(stored.getScalarAt(at).kind, row.getScalarAt(at).kind);
    }
  }
}

TEST_F(LaterRowsLoads, TheyAreFoundByTheirPaths) {
  load(kBase, {"a", "b"});
  ASSERT_FALSE(find("b").IsNull());
  EXPECT_TRUE(find("c").IsNull());
  EXPECT_THAT(values(enumerate(kBase), "N"), ElementsAre("1", "2"));
}

TEST_F(LaterRowsLoads, TheyMayBeChangedAndDeleted) {
  load(kBase, {"a", "b", "c"});
  EXPECT_TRUE(manager.deleteInstance(nameOf("root/cimv2", kBase, {{"K", text("b")}})));
  EXPECT_THAT(values(enumerate(kBase, names({"N"})), "N"), ElementsAre("1", "3"));
  manager.modifyInstance(nameOf("root/cimv2", kBase, {{"K", text("c")}}),
                         {{"N", new CQoriValue(QORuint32{9}, CQoriType::uint32)}});
  EXPECT_THAT(values(enumerate(kBase, names({"N"})), "N"), ElementsAre("1", "9"));
}

TEST_F(LaterRowsLoads, TheirPathsAreTaken) {
  load(kBase, {"a", "b"});
  EXPECT_EQ("instance root/cimv2:T_Base.K=\"a\" exists already", refusal(
                                                                     [&] {
                                                                       create(instanceOf(kBase, {{"K", text("a")}}));
                                                                     },
                                                                     kAlreadyExists));
  create(instanceOf(kBase, {{"K", text("z")}}));
  EXPECT_THAT(paths(enumerate(kBase, names({"N"}))),
              ElementsAre(pathOf(kBase, "a"), pathOf(kBase, "b"), pathOf(kBase, "z")));
}

TEST_F(LaterRowsLoads, AmongInstancesTheyAreStoredAtOnce) {
  create(instanceOf(kBase, {{"K", text("a")}}));
  manager.sink().begin();
  EXPECT_FALSE(addLater(kBase, {"b", "a"}));
  manager.sink().rollback();
  load(kBase, {"b"});
  EXPECT_THAT(paths(enumerate(kBase, names({"N"}))), ElementsAre(pathOf(kBase, "a"), pathOf(kBase, "b")));
}

TEST_F(LaterRowsLoads, ThePathsOfTheLoadBeforeAreTaken) {
  load(kBase, {"a", "b"});
  manager.sink().begin();
  EXPECT_FALSE(addLater(kBase, {"c", "b"}));
  manager.sink().rollback();
  EXPECT_THAT(paths(enumerate(kBase, names({"N"}))), ElementsAre(pathOf(kBase, "a"), pathOf(kBase, "b")));
  load(kBase, {"c"});
  EXPECT_THAT(paths(enumerate(kBase, names({"N"}))),
              ElementsAre(pathOf(kBase, "a"), pathOf(kBase, "b"), pathOf(kBase, "c")));
}

TEST_F(LaterRowsLoads, ALoadShowsThemWhenItIsCommitted) {
  CimDeclarationSink& sink = manager.sink();
  sink.begin();
  EXPECT_TRUE(addLater(kBase, {"a"}));
  EXPECT_THAT(paths(enumerate(kBase, names({"N"}))), IsEmpty());
  EXPECT_THAT(paths(enumerate(kBase)), IsEmpty()) << "which has made them instances that are pending";
  sink.commit();
  EXPECT_THAT(paths(enumerate(kBase, names({"N"}))), ElementsAre(pathOf(kBase, "a")));
}

TEST_F(LaterRowsLoads, ARollbackForgetsThem) {
  CimDeclarationSink& sink = manager.sink();
  for (const bool isLookedAt : {false, true}) {
    sink.begin();
    EXPECT_TRUE(addLater(kBase, {"a"}));
    if (isLookedAt) find("a");
    sink.rollback();
    EXPECT_THAT(paths(enumerate(kBase, names({"N"}))), IsEmpty());
    EXPECT_TRUE(find("a").IsNull());
  }
  load(kBase, {"a"});
  EXPECT_FALSE(find("a").IsNull());
}

TEST_F(LaterRowsLoads, UnsoundRowsAreRefusedAtOnce) {
  const auto maker = manager.sink().instanceMaker("root/cimv2", kBase, {"K", "N", "L"});
  const auto rows = std::make_shared<std::string>();
  putRow(*rows, rowOf("a", 1));
  EXPECT_FALSE(maker->createLater(*rows, 2, rows)) << "there is one";
  putRow(*rows, rowOf("b", 70000));
  EXPECT_FALSE(maker->createLater(*rows, 2, rows)) << "an element is too large";
  EXPECT_FALSE(maker->createLater(std::string_view(*rows).substr(0, 3), 1, rows));
}

TEST_F(LaterRowsLoads, AListOutlivesTheObjectManager) {
  auto other = std::make_unique<EmbeddedObjectManager>();
  CIMApi::Instances list;
  {
    const auto rows = std::make_shared<std::string>();
    putRow(*rows, rowOf("a", 1));
    other->sink().createNamespace("root/cimv2");
    other->sink().declareClass(
        "root/cimv2", classOf(kBase, "",
                              {property("K", CQoriType::string, {flag("Key")}), property("N", CQoriType::uint32),
                               property("L", CQoriType::arrayOf(CQoriType::uint16))}));
    EXPECT_TRUE(other->sink().instanceMaker("root/cimv2", kBase, {"K", "N", "L"})->createLater(*rows, 1, rows));
    list = other->ownInstances("root/cimv2", kBase, names({"N"}));
    other->makeCurrent();
    list = enumerate(kBase, names({"N"}));
  }
  other.reset();
  manager.makeCurrent();
  EXPECT_THAT(paths(list), ElementsAre(pathOf(kBase, "a")));
  EXPECT_THAT(values(list, "N"), ElementsAre("1"));
}

TEST_F(LaterRowsLoads, ThreadsMayMeetAtTheFirstLook) {
  std::vector<std::string> keys;
  for (int i = 0; i < 200; ++i) keys.push_back(std::to_string(i));
  load(kBase, keys);
  const CIMApi::Instances list = enumerate(kBase, names({"N"}));
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      EXPECT_EQ(200U, paths(list).size());
      EXPECT_EQ(200U, enumerate(kBase)->entries());
      EXPECT_EQ(200U, enumerate(kBase, names({"K"}))->entries());
      EXPECT_FALSE(find("77").IsNull());
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
