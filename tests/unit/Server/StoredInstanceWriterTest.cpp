// Instances that clients change, and what a store brings back of them.
// SPDX-License-Identifier: Apache-2.0

#include <memory>
#include <optional>
#include <thread>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/InstanceDocument.h"
#include "Cimom/Server/StoredInstanceWriter.h"
#include "FullDisk.h"
#include "StoreFolder.h"
#include "tests/unit/Embedded/EmbeddedFixture.h"

namespace {

using namespace embeddedtest;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kSpace = "root/cimv2";

// A server with a class of disks, one of which the model declares.
struct Server {
  explicit Server(const std::string& path) : store(path), writer(store, nullptr) {
    manager.sink().declareClass(
        kSpace, classOf("Disk", "",
                        {property("Name", CQoriType::string, {flag("Key")}), property("Size", CQoriType::uint64),
                         property("Labels", CQoriType::arrayOf(CQoriType::string)), refer("Other", "Disk", {})},
                        {flag("Association")}));
    manager.createInstance(kSpace, instanceOf("Disk", {{"Name", text("declared")}, {"Size", number(1)}}));
    writer.restore(manager, [&](const std::string& path, const std::string& reason) { reports += path + reason; });
  }
  std::vector<std::string> disks() const {
    std::vector<std::string> found;
    const auto instances = manager.ownInstances(kSpace, "Disk", {});
    QORValSlistIterator<Object> each(*instances);
    while (++each) {
      const Value size(each.key()->getProperty("Size", true)->getValue());
      found.push_back(std::string(each.key()->getProperty("Name", true)->getValue()->toString().view()) + "=" +
                      (size.IsNull() ? "NULL" : size->toString().c_str()));
    }
    return found;
  }
  Name create(const char* name, QORuint64 size) {
    return writer.create(manager, kSpace, instanceOf("Disk", {{"Name", text(name)}, {"Size", number(size)}}));
  }
  static Name nameOfDisk(const char* name) { return nameOf(kSpace, "Disk", {{"Name", text(name)}}); }

  ServerStore store;
  EmbeddedObjectManager manager;
  StoredInstanceWriter writer;
  std::string reports;
};

QORuint32 statusOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const QoriBaseException& refusal) {
    return refusal.getCode();
  }
  return 0;
}

TEST(StoredInstanceWriter, ChangesComeBackInTheirOrder) {
  const StoreFolder folder;
  {
    Server server(folder.file());
    server.create("b", 2);
    server.create("a", 3);
    server.create("gone", 4);
    server.writer.modify(server.manager, Server::nameOfDisk("a"), {{"Size", number(5)}});
    server.writer.modify(server.manager, Server::nameOfDisk("declared"), {{"Size", {}}});
    server.writer.remove(server.manager, Server::nameOfDisk("gone"));
    EXPECT_THAT(server.disks(), ElementsAre("declared=NULL", "b=2", "a=5"));
  }
  Server server(folder.file());
  EXPECT_THAT(server.disks(), ElementsAre("declared=NULL", "b=2", "a=5"));
  EXPECT_EQ(server.reports, "");
}

TEST(StoredInstanceWriter, WhatTheModelDeclaresStaysDeletedUntilItIsCreatedAgain) {
  const StoreFolder folder;
  {
    Server server(folder.file());
    server.writer.remove(server.manager, Server::nameOfDisk("declared"));
  }
  {
    Server server(folder.file());
    EXPECT_THAT(server.disks(), IsEmpty());
    server.create("declared", 9);
    server.writer.remove(server.manager, Server::nameOfDisk("declared"));
  }
  Server server(folder.file());
  EXPECT_THAT(server.disks(), IsEmpty());
}

TEST(StoredInstanceWriter, NothingIsKeptOfAnInstanceThatAClientMadeAndDeleted) {
  Server server("");
  server.create("a", 1);
  server.writer.remove(server.manager, Server::nameOfDisk("a"));
  EXPECT_THAT(server.store.instances(), IsEmpty());
}

TEST(StoredInstanceWriter, EachKindOfValueComesBack) {
  const StoreFolder folder;
  std::string before;
  {
    Server server(folder.file());
    const QORSmrPtr<IQoriValue::List> labels(new IQoriValue::List);
    labels->append(text("<a> & \"b\"\n"));
    labels->append(text(""));
    const Name name(server.writer.create(
        server.manager, kSpace,
        instanceOf("Disk", {{"Name", text("x \xC3\xA4 \\ \"")},
                            {"Labels", Value(new CQoriValue(labels, CQoriType::arrayOf(CQoriType::string)))},
                            {"Other", reference(Server::nameOfDisk("declared"))}})));
    before = instanceDocument(*findInstance(server.manager, name));
  }
  Server server(folder.file());
  EXPECT_EQ(instanceDocument(*findInstance(server.manager, Server::nameOfDisk("x \xC3\xA4 \\ \""))), before);
}

TEST(StoredInstanceWriter, WhatFitsNoLongerIsToldAndKept) {
  const StoreFolder folder;
  {
    Server server(folder.file());
    server.manager.sink().declareClass(kSpace,
                                       classOf("Later", "", {property("Id", CQoriType::uint32, {flag("Key")})}));
    server.writer.create(server.manager, kSpace, instanceOf("Later", {{"Id", number(1, CQoriType::uint32)}}));
  }
  Server server(folder.file());
  EXPECT_THAT(server.reports, HasSubstr("Later"));
  EXPECT_EQ(server.store.instances().size(), 1U);
}

TEST(StoredInstanceWriter, RefusalsHaveTheirStatus) {
  Server server("");
  EXPECT_EQ(statusOf([&] { server.create("declared", 1); }), 11U);
  EXPECT_EQ(statusOf([&] { server.writer.modify(server.manager, Server::nameOfDisk("none"), {}); }), 6U);
  EXPECT_EQ(statusOf([&] { server.writer.remove(server.manager, Server::nameOfDisk("none")); }), 6U);
}

TEST(StoredInstanceWriter, OnAFullDiskNothingChanges) {
  const StoreFolder folder;
  {
    Server server(folder.file());
    server.create("a", 1);
    {
      const FullDisk full(1024);
      EXPECT_EQ(statusOf([&] { server.create("b", 2); }), 1U);
      EXPECT_EQ(statusOf([&] {
                  server.writer.modify(server.manager, Server::nameOfDisk("a"), {{"Size", number(7)}});
                }),
                1U);
      EXPECT_EQ(statusOf([&] { server.writer.remove(server.manager, Server::nameOfDisk("declared")); }), 1U);
    }
    EXPECT_THAT(server.disks(), ::testing::UnorderedElementsAre("declared=1", "a=1"));
    server.create("c", 3);
  }
  Server server(folder.file());
  EXPECT_THAT(server.disks(), ElementsAre("declared=1", "a=1", "c=3"));
}

TEST(StoredInstanceWriter, ManyWriteAtOnce) {
  const StoreFolder folder;
  constexpr int kThreads = 4;
  constexpr int kEach = 25;
  {
    Server server(folder.file());
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
      threads.emplace_back([&server, thread] {
        for (int i = 0; i < kEach; ++i) server.create(std::to_string(thread * kEach + i).c_str(), 1);
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
  Server server(folder.file());
  EXPECT_EQ(server.disks().size(), 1U + kThreads * kEach);
}

}  // namespace
