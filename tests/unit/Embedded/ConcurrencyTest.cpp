// Queries on several threads while instances, loads and providers change.
// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <thread>

#include "Cimom/Embedded/ManagerScope.h"
#include "EmbeddedFixture.h"

using namespace embeddedtest;

namespace {

class Concurrency : public EmbeddedTest {};

TEST_F(Concurrency, AThreadAsksTheObjectManagerOfItsScope) {
  EmbeddedObjectManager other;
  const auto knows = [] { return !enumerate("CIM_Device").IsNull(); };
  ASSERT_TRUE(knows());
  {
    const ManagerScope scope(other);
    EXPECT_FALSE(knows());
    bool doesAnotherThreadKnow = false;
    std::thread([&] { doesAnotherThreadKnow = knows(); }).join();
    EXPECT_TRUE(doesAnotherThreadKnow);
    const ManagerScope inner(manager);
    EXPECT_TRUE(knows());
  }
  EXPECT_TRUE(knows());
}

TEST_F(Concurrency, EnumerationsSeeLoadsWholeOrNotAtAll) {
  constexpr QORuint32 kPerLoad = 10;
  std::atomic<bool> isDone{false};
  std::atomic<int> partial{0};
  std::vector<std::thread> readers;
  for (int i = 0; i < 3; ++i) {
    readers.emplace_back([&, i] {
      const CIMApi::PropertyNames wanted = i == 0 ? CIMApi::PropertyNames() : names({"Size"});
      do {
        if (enumerate("CIM_Device", wanted)->entries() % kPerLoad != 0) ++partial;
      } while (!isDone);
    });
  }
  for (int load = 0; load < 60; ++load) {
    sink().begin();
    for (QORuint32 i = 0; i < kPerLoad; ++i) {
      const std::string id = std::to_string(load) + "-" + std::to_string(i);
      sink().createInstance(kSpace, instanceOf("CIM_Disk", {{"DeviceID", text(id.c_str())}}));
    }
    if (load % 3 == 0) {
      sink().rollback();
    } else {
      sink().commit();
    }
  }
  isDone = true;
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(0, partial);
  EXPECT_EQ(40u * kPerLoad, enumerate("CIM_Disk")->entries());
}

TEST_F(Concurrency, InstancesMayBeChangedAndDeletedWhileOthersReadThem) {
  std::vector<Name> disks;
  for (int i = 0; i < 50; ++i) disks.push_back(createDisk(std::to_string(i).c_str(), 1));
  for (int i = 1; i < 50; ++i) createUses(disks[0], disks[static_cast<std::size_t>(i)]);
  std::atomic<bool> isDone{false};
  std::atomic<int> wrong{0};
  std::vector<std::thread> readers;
  for (int i = 0; i < 3; ++i) {
    readers.emplace_back([&, i] {
      do {
        const CIMApi::Instances found =
            i == 0 ? associators(disks[0], "CIM_Uses", "CIM_Disk", names({"Size"})) : enumerate("CIM_Disk");
        for (const std::string& size : values(found, "Size")) wrong += size != "1" && size != "2";
        const Object first = get(disks[1]);
        if (!first.IsNull()) wrong += first->getInstanceName()->toString() == disks[1]->toString() ? 0 : 1;
      } while (!isDone);
    });
  }
  for (int round = 0; round < 20; ++round) {
    for (const Name& disk : disks) manager.modifyInstance(disk, {{"Size", number(round % 2 == 0 ? 2 : 1)}});
    manager.deleteInstance(disks[1]);
    createDisk("1", 1);
  }
  isDone = true;
  for (std::thread& reader : readers) reader.join();
  EXPECT_EQ(0, wrong);
}

TEST_F(Concurrency, TheCurrentObjectManagerMayChangeUnderARunningCall) {
  createDisk("a");
  std::atomic<bool> isDone{false};
  std::atomic<int> wrong{0};
  std::thread reader([&] {
    do {
      const CIMApi::Instances found = enumerate("CIM_Disk");
      if (!found.IsNull() && found->entries() != 1) ++wrong;
      QORLog::log("CQL", "line", QoriTraceLog::kTrace, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
    } while (!isDone);
  });
  for (int i = 0; i < 200; ++i) {
    EmbeddedObjectManager other;
    other.setLogSink([](const QORString&, const QORString&, QORuint32) {}, QoriTraceLog::kTrace);
    other.makeCurrent();
    if (i % 2 == 0) manager.makeCurrent();
  }
  isDone = true;
  reader.join();
  EXPECT_EQ(0, wrong);
}

}  // namespace
