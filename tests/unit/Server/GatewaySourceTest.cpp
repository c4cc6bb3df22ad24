// Many threads ask the outer servers, each source one question after the other.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Embedded/ManagerScope.h"
#include "Cimom/Server/GatewaySource.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProviderException.h"
#include "qorql.h"

namespace {

// Counts who asks.
class CountingSource final : public OuterSource {
 public:
  void beginStatement() override { ++begun; }
  std::vector<std::string> serverNames() const override { return {"one"}; }
  std::vector<QORString> nameSpaces() override { return ask(), std::vector<QORString>{"root/far"}; }
  bool provideClass(CimDeclarationSink&, const QORString&, const QORString&) override { return ask(), false; }
  void provideQualifiers(CimDeclarationSink&, const QORString&) override { ask(); }
  std::vector<QORString> classNames(const QORString&) override { return ask(), names; }
  void forgetLists() override { ++forgotten; }
  Objects instances(CimDeclarationSink&, const Request&) override { return ask(), Objects(); }
  QORSmrPtr<IQoriObject> instance(CimDeclarationSink&, const Request&, const IQoriInstanceName&) override {
    return ask(), QORSmrPtr<IQoriObject>();
  }
  Associations associations(CimDeclarationSink&, const Request&) override { return ask(), Associations(); }
  Objects references(CimDeclarationSink&, const Request&, const IQoriInstanceName&) override {
    return ask(), Objects();
  }

  std::vector<QORString> names{"A"};
  std::atomic<int> forgotten = 0;
  std::atomic<int> begun = 0;
  std::atomic<int> asked = 0;
  std::atomic<bool> wasTogether = false;

 private:
  void ask() {
    if (_inside.fetch_add(1) != 0) wasTogether = true;
    std::this_thread::yield();
    ++asked;
    --_inside;
  }

  std::atomic<int> _inside = 0;
};

class Gateway : public ::testing::Test {
 protected:
  const std::shared_ptr<CountingSource> source = std::make_shared<CountingSource>();
  GatewaySource gateway{source, std::chrono::milliseconds(0)};
  EmbeddedObjectManager manager;
  CimDeclarationSink& sink = manager.sink();
  const QORSmrPtr<IQoriInstanceName> name{new CQoriInstanceName(
      "A", {}, QORSmrPtr<IQoriNameSpacePath>(new CQoriNameSpacePath(QORString::emptyString(), "root/cimv2")))};
};

TEST_F(Gateway, QuestionsDoNotMeet) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      for (int each = 0; each < 200; ++each) {
        gateway.classNames("root/cimv2");
        gateway.instances(sink, {"root/cimv2", "A", {}});
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(source->asked, 1600);
  EXPECT_FALSE(source->wasTogether);
}

// A source of which there are others; questions for class Slow wait.
class ManySource final : public OuterSource {
 public:
  // Of all of them.
  struct Shared {
    std::mutex mutex;
    std::condition_variable changed;
    int waiting = 0;
    bool isOver = false;
    int sources = 1;
  };

  explicit ManySource(std::shared_ptr<Shared> shared) : _shared(std::move(shared)) {}
  std::shared_ptr<OuterSource> another() const override {
    ++_shared->sources;
    return std::make_shared<ManySource>(_shared);
  }
  bool mayHave(const QORString&, const QORString& className) const override {
    return !className.isEqualCaseInsensitive("Own");
  }
  bool provideClass(CimDeclarationSink&, const QORString&, const QORString&) override { return false; }
  void provideQualifiers(CimDeclarationSink&, const QORString&) override {}
  std::vector<QORString> classNames(const QORString&) override { return {}; }
  Objects instances(CimDeclarationSink&, const Request& request) override {
    if (!request.className.isEqualCaseInsensitive("Slow")) return {};
    std::unique_lock lock(_shared->mutex);
    ++_shared->waiting;
    _shared->changed.notify_all();
    _shared->changed.wait(lock, [this] { return _shared->isOver; });
    return {};
  }
  QORSmrPtr<IQoriObject> instance(CimDeclarationSink&, const Request&, const IQoriInstanceName&) override { return {}; }
  Associations associations(CimDeclarationSink&, const Request&) override { return {}; }
  Objects references(CimDeclarationSink&, const Request&, const IQoriInstanceName&) override { return {}; }

 private:
  const std::shared_ptr<Shared> _shared;
};

// Some questions that do not end until the test does.
class SlowQuestions : public Gateway {
 protected:
  ~SlowQuestions() override {
    {
      const std::lock_guard lock(shared->mutex);
      shared->isOver = true;
    }
    shared->changed.notify_all();
    for (std::thread& thread : threads) thread.join();
  }
  void ask(int count) {
    for (int i = 0; i < count; ++i) threads.emplace_back([this] { many.instances(sink, {"root/cimv2", "Slow", {}}); });
    std::unique_lock lock(shared->mutex);
    shared->changed.wait(lock, [&] { return shared->waiting == count; });
  }

  const std::shared_ptr<ManySource::Shared> shared = std::make_shared<ManySource::Shared>();
  GatewaySource many{std::make_shared<ManySource>(shared)};
  std::vector<std::thread> threads;
};

TEST_F(SlowQuestions, HoldUpNobody) {
  ask(3);
  many.instances(sink, {"root/cimv2", "Quick", {}});
  many.instances(sink, {"root/cimv2", "Quick", {}});
  EXPECT_EQ(shared->sources, 4) << "one that is free is asked again";
}

TEST_F(SlowQuestions, HoldUpNoneThatNeedNotBeAskedHoweverManyThereAre) {
  ask(16);
  EXPECT_TRUE(many.instances(sink, {"root/cimv2", "Own", {}}).empty());
}

TEST_F(SlowQuestions, LeaveOthersWaitingUntilTheyAreGivenUp) {
  class Impatient final : public QORQL_ExecutionMonitor {
   public:
    bool isStopRequested() noexcept override { return ++questions > 2; }
    int questions = 0;
  };
  ask(16);
  Impatient monitor;
  const QORQL_MonitorScope scope(monitor);
  EXPECT_THROW(many.instances(sink, {"root/cimv2", "Quick", {}}), CQoriProviderException);
  EXPECT_EQ(shared->sources, 16);
}

TEST_F(Gateway, TheServersAndTheirNamespacesAreTold) {
  EXPECT_EQ(gateway.serverNames(), std::vector<std::string>{"one"});
  EXPECT_EQ(gateway.nameSpaces(), std::vector<QORString>{"root/far"});
  EXPECT_EQ(source->asked, 1);
}

TEST_F(Gateway, ListsAreAskedForOnceInAWhileAlsoThoseOfNothing) {
  GatewaySource patient(source, std::chrono::hours(1));
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(patient.classNames("root/cimv2"), std::vector<QORString>{"A"});
    EXPECT_EQ(patient.nameSpaces(), std::vector<QORString>{"root/far"});
    EXPECT_EQ(patient.classNames("ROOT/cimv2"), std::vector<QORString>{"A"});
  }
  EXPECT_EQ(source->asked, 2);
  source->names.clear();
  EXPECT_TRUE(patient.classNames("root/none").empty());
  EXPECT_TRUE(patient.classNames("root/None").empty());
  EXPECT_EQ(source->asked, 3);
  EXPECT_TRUE(gateway.classNames("root/none").empty());
  source->names = {"B"};
  EXPECT_EQ(gateway.classNames("root/none"), std::vector<QORString>{"B"}) << "its time is over";
  EXPECT_EQ(source->forgotten, 5) << "what a source remembers itself is no answer";
}

TEST_F(Gateway, AClassThatIsNowhereAnyMoreIsToldInTheLog) {
  std::vector<std::string> told;
  manager.setLogSink([&](const QORString&, const QORString& message, QORuint32) { told.emplace_back(message.view()); },
                     QoriTraceLog::kWarning);
  const ManagerScope scope(manager);
  source->names = {"A", "B"};
  gateway.classNames("root/cimv2");
  source->names = {"C", "a"};
  gateway.classNames("root/cimv2");
  gateway.classNames("root/cimv2");
  manager.setLogSink({}, QoriTraceLog::kFatal);
  EXPECT_EQ(told, std::vector<std::string>{"class ROOT/CIMV2:B is on none of the other servers any more: what is known "
                                           "of it stays until everything is read anew"});
}

TEST_F(Gateway, InteropNamespacesAreNotAskedFor) {
  for (const char* const nameSpace : {"Root/Interop", "INTEROP"}) {
    const OuterSource::Request request{nameSpace, "A", {}};
    EXPECT_FALSE(gateway.provideClass(sink, request.nameSpace, "A"));
    gateway.provideQualifiers(sink, request.nameSpace);
    EXPECT_TRUE(gateway.classNames(request.nameSpace).empty());
    EXPECT_TRUE(gateway.instances(sink, request).empty());
    EXPECT_TRUE(gateway.instance(sink, request, *name).IsNull());
    EXPECT_TRUE(gateway.associations(sink, request).objects.empty());
    EXPECT_TRUE(gateway.references(sink, request, *name).empty());
  }
  EXPECT_EQ(source->asked, 0);
}

TEST_F(Gateway, AClassThatIsThereIsNotAskedFor) {
  CimClassDeclaration declaration;
  declaration.name = "Known";
  sink.declareClass("root/cimv2", declaration);
  EXPECT_TRUE(gateway.provideClass(sink, "root/cimv2", "known"));
  EXPECT_EQ(source->asked, 0);
  EXPECT_FALSE(gateway.provideClass(sink, "root/cimv2", "Other"));
  EXPECT_EQ(source->asked, 1);
}

TEST_F(Gateway, ASingleInstanceIsAskedForAnew) {
  const OuterSource::Request request{"root/cimv2", "A", {}};
  gateway.instances(sink, request);
  const int before = source->begun;
  gateway.instances(sink, request);
  EXPECT_EQ(source->begun, before);
  gateway.instance(sink, request, *name);
  EXPECT_EQ(source->begun, before + 1);
}

}  // namespace
