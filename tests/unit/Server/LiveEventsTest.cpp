// Live changes of a class that the test plays reach the listeners that ask for them, each once.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <map>
#include <mutex>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Embedded/ManagerScope.h"
#include "FullDisk.h"
#include "LiveEvents.h"
#include "PlayedListeners.h"
#include "StoreFolder.h"
#include "cimom/CQoriProviderException.h"

namespace {

using namespace embeddedtest;
using servertest::between;
using servertest::comesTrue;
using servertest::PlayedListeners;
using servertest::Server;
using std::chrono::hours;
using std::chrono::milliseconds;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr const char* kSpace = "root/cimv2";
constexpr const char* kUrl = "http://a";
constexpr const char* kCreations = "SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA Live";
constexpr const char* kModifications = "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA Live";

// Instances with a Size and a Load that changes whenever one looks.
class LiveProvider final : public InstanceProvider {
 public:
  QORString getClassName() const override { return "Live"; }
  void enumerate(const Request& request, const Emit& emit) override {
    const std::lock_guard lock(_mutex);
    ++_looks;
    if (_whenLoadIsAsked && request.needs("Load")) _whenLoadIsAsked(_sizes);
    for (const auto& [name, size] : _sizes) {
      std::vector<Value> values;
      for (const QORString& property : request.propertyNames) {
        values.push_back(property == "Name" ? text(name.c_str()) : number(property == "Size" ? size : _looks));
      }
      emit(std::move(values));
    }
  }
  void set(const std::string& name, QORuint64 size) {
    const std::lock_guard lock(_mutex);
    _sizes[name] = size;
  }
  // Happens between what was asked for before and the first question for Load.
  void whenLoadIsAsked(std::function<void(std::map<std::string, QORuint64>&)> change) {
    const std::lock_guard lock(_mutex);
    _whenLoadIsAsked = std::move(change);
  }
  QORuint64 looks() const {
    const std::lock_guard lock(_mutex);
    return _looks;
  }

 private:
  mutable std::mutex _mutex;
  std::map<std::string, QORuint64> _sizes;
  QORuint64 _looks = 0;
  std::function<void(std::map<std::string, QORuint64>&)> _whenLoadIsAsked;
};

void declareLive(EmbeddedObjectManager& manager, const std::shared_ptr<LiveProvider>& provider) {
  manager.sink().declareClass(
      kSpace, classOf("Live", "",
                      {property("Name", CQoriType::string, {flag("Key")}), property("Size", CQoriType::uint64),
                       property("Load", CQoriType::uint64, {flag("Volatile")})}));
  manager.registerProvider(kSpace, provider);
}

// A server with the live class, whose changes are looked for.
struct LiveServer {
  explicit LiveServer(milliseconds interval, const std::string& file = "") : server(listeners, file) {
    declareLive(*server.manager, provider);
    server.manager->setLogSink(
        [this](const QORString&, const QORString& message, QORuint32) {
          const std::lock_guard lock(_mutex);
          _told += std::string(message.view()) + '\n';
        },
        QoriTraceLog::kWarning);
    model = std::make_unique<CountedModel>(server.manager);
    live = std::make_unique<LiveEvents>(*model, server.service, kSpace, interval);
  }
  ~LiveServer() {
    live.reset();
    server.manager->setLogSink({}, QoriTraceLog::kFatal);
  }
  // As a client does, which gets its reply after that.
  Name subscribe(const char* query, const char* url) {
    Name made(server.subscribe(query, url));
    server.service.waitForWatcher();
    return made;
  }
  std::string told() {
    const std::lock_guard lock(_mutex);
    return _told;
  }
  // The names of the instances of which a listener was told, when there are so many of them and no more come.
  std::vector<std::string> names(std::size_t count, const char* url = kUrl) {
    std::vector<std::string> found;
    listeners.messages(url, count);
    const QORuint64 looks = provider->looks();
    comesTrue([&] { return provider->looks() > looks + 1; });
    comesTrue([&] { return waiting() == 0; });
    for (const std::string& message : listeners.messages(url, count)) {
      found.push_back(
          between(between(message, "NAME=\"SourceInstance\"", "</PROPERTY>"), "&lt;VALUE&gt;", "&lt;/VALUE"));
    }
    return found;
  }
  std::int64_t waiting() {
    std::int64_t queued = 0;
    for (const auto& [path, id] : server.store.listeners()) queued += server.store.listener(path, "").queued;
    return queued;
  }

  PlayedListeners listeners;
  Server server;
  std::shared_ptr<LiveProvider> provider = std::make_shared<LiveProvider>();
  std::unique_ptr<CountedModel> model;
  std::unique_ptr<LiveEvents> live;

 private:
  std::mutex _mutex;
  std::string _told;
};

TEST(LiveEvents, WhatChangesAfterTheSubscriptionIsToldOnce) {
  LiveServer live{milliseconds(10)};
  live.provider->set("before", 1);
  live.subscribe(kCreations, kUrl);
  live.provider->set("a", 1);
  live.provider->set("b", 1);
  EXPECT_THAT(live.names(2), ElementsAre("a", "b"));
}

TEST(LiveEvents, WhatAFullDiskDidNotTakeIsNeitherDoubledNorLost) {
  const StoreFolder folder;
  LiveServer live{milliseconds(10), folder.file()};
  live.subscribe(kCreations, kUrl);
  live.provider->set("a", 1);
  EXPECT_THAT(live.names(1), ElementsAre("a"));
  {
    const FullDisk full(1024);
    live.provider->set("b", 1);
    const auto failures = [&] {
      const std::string told = live.told();
      return std::count(told.begin(), told.end(), '\n');
    };
    EXPECT_TRUE(comesTrue([&] { return failures() >= 3; })) << live.told();
    live.provider->set("c", 1);
    const auto before = failures();
    EXPECT_TRUE(comesTrue([&] { return failures() >= before + 3; }));
    EXPECT_THAT(live.told(), HasSubstr("live changes are not seen"));
  }
  EXPECT_THAT(live.names(3), ElementsAre("a", "b", "c"));
}

TEST(LiveEvents, NoChangeIsLostWhenOtherPropertiesAreLookedAt) {
  LiveServer live{hours(1)};
  live.provider->set("a", 1);
  live.subscribe(kModifications, kUrl);
  live.provider->whenLoadIsAsked([](auto& sizes) { sizes["a"] = 2; });
  live.subscribe(
      "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA Live "
      "AND SourceInstance.Live::Load > 1000000",
      "http://b");
  const std::vector<std::string> messages = live.listeners.messages(kUrl, 1);
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_THAT(messages.front(), HasSubstr("&lt;VALUE&gt;2&lt;/VALUE&gt;"));
}

TEST(LiveEvents, ASubscriptionThatAsksForNothingElseCostsNoLook) {
  LiveServer live{hours(1)};
  live.subscribe(kCreations, kUrl);
  const QORuint64 before = live.provider->looks();
  const Name filter(live.server.createFilter("other", "SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA Live"));
  for (const char* url : {"http://b", "http://c"}) {
    const Name subscription(live.server.subscribe(filter, live.server.createHandler(url, url)));
    live.server.service.writer().modify(*live.server.manager, subscription,
                                        {{"SubscriptionState", number(4, CQoriType::uint16)}});
    live.server.service.waitForWatcher();
  }
  live.subscribe("SELECT * FROM CIM_AlertIndication", "http://d");
  EXPECT_EQ(live.provider->looks(), before);
}

TEST(LiveEvents, AnotherIntervalCountsAtOnce) {
  LiveServer live{hours(1)};
  live.subscribe(kCreations, kUrl);
  live.provider->set("a", 1);
  live.live->setInterval(milliseconds(10));
  EXPECT_THAT(live.names(1), ElementsAre("a"));
}

TEST(LiveEvents, WhatNobodyAsksForAnyMoreIsNotLookedAt) {
  LiveServer live{milliseconds(5)};
  const Name subscription(live.subscribe(kCreations, kUrl));
  live.server.service.writer().remove(*live.server.manager, subscription);
  EXPECT_TRUE(comesTrue([&] {
    const QORuint64 looks = live.provider->looks();
    std::this_thread::sleep_for(milliseconds(50));
    return looks == live.provider->looks();
  }));
}

// One of the indications of a look cannot be made.
TEST(LiveWatch, WhatFailsIsToldAndDoublesNothing) {
  EmbeddedObjectManager manager;
  servertest::declareDisks(manager);
  const auto provider = std::make_shared<LiveProvider>();
  declareLive(manager, provider);
  const ManagerScope scope(manager);
  provider->set("b", 1);
  LiveWatch watch(manager, kSpace, {{kInstCreation, kInstModification}, {{"Live", {}}}});
  std::vector<std::string> taken;
  int failures = 0;
  const auto report = [&](const QORString&, const QoriBaseException&) { ++failures; };
  bool isFull = true;
  const auto take = [&](const std::vector<Object>& indications) {
    if (isFull) throw std::bad_alloc();
    for (const Object& each : indications) taken.emplace_back(each->getClassName().view());
  };
  watch.start(report);
  provider->set("a", 1);
  provider->set("b", 2);
  EXPECT_THROW(watch.look(take, report), std::bad_alloc);
  isFull = false;
  watch.look(take, report);
  watch.look(take, report);
  EXPECT_THAT(taken, ElementsAre(kInstCreation, kInstModification));
  EXPECT_EQ(failures, 0);
}

// The namespace's class does not take what an indication of a modification holds.
TEST(LiveWatch, AChangeOfWhichNoIndicationCanBeMadeIsReportedAndTheOthersAreToldOnce) {
  EmbeddedObjectManager manager;
  manager.sink().declareClass(kSpace,
                              classOf("CIM_InstCreation", "", {property("SourceInstanceHost", CQoriType::string)}));
  manager.sink().declareClass(kSpace,
                              classOf("CIM_InstModification", "", {property("PreviousInstance", CQoriType::uint64)}));
  const auto provider = std::make_shared<LiveProvider>();
  declareLive(manager, provider);
  const ManagerScope scope(manager);
  provider->set("b", 1);
  LiveWatch watch(manager, kSpace, {{kInstCreation, kInstModification}, {{"Live", {}}}});
  std::vector<std::string> taken;
  int failures = 0;
  const auto report = [&](const QORString&, const QoriBaseException&) { ++failures; };
  const auto take = [&](const std::vector<Object>& indications) {
    for (const Object& each : indications) taken.emplace_back(each->getClassName().view());
  };
  watch.start(report);
  provider->set("a", 1);
  provider->set("b", 2);
  watch.look(take, report);
  watch.look(take, report);
  EXPECT_THAT(taken, ElementsAre(kInstCreation));
  EXPECT_EQ(failures, 1);
}

// Has no source on this machine.
class AbsentProvider final : public InstanceProvider {
 public:
  explicit AbsentProvider(const char* className) : _className(className) {}
  QORString getClassName() const override { return _className; }
  void enumerate(const Request&, const Emit&) override {
    throw CQoriProviderException(_className, QORString("no source of ") + _className, kNoSource);
  }

 private:
  const QORString _className;
};

TEST(LiveWatch, ClassesWithoutTheirSourcesAreReportedWhereThereIsAnotherOneToWatch) {
  EmbeddedObjectManager manager;
  declareLive(manager, std::make_shared<LiveProvider>());
  for (const char* const name : {"Gone", "Lost"}) {
    manager.sink().declareClass(kSpace, classOf(name, "", {property("Name", CQoriType::string, {flag("Key")})}));
    manager.registerProvider(kSpace, std::make_shared<AbsentProvider>(name));
  }
  const ManagerScope scope(manager);
  std::vector<std::string> reported;
  const auto report = [&](const QORString& name, const QoriBaseException&) { reported.emplace_back(name.view()); };
  LiveWatch(manager, kSpace, {{kInstCreation}, {{"Gone", {}}, {"Live", {}}, {"Lost", {}}}}).start(report);
  EXPECT_THAT(reported, ElementsAre("Gone", "Lost"));
  LiveWatch nothing(manager, kSpace, {{kInstCreation}, {{"Gone", {}}, {"Lost", {}}}});
  EXPECT_THROW(nothing.start(report), CQoriProviderException);
  EXPECT_EQ(reported.size(), 2U) << "what is thrown is not reported besides";
}

}  // namespace
