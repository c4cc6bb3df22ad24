// Another object manager takes the place of the first with its subscriptions, or all stays as it was.
// SPDX-License-Identifier: Apache-2.0
#include <future>
#include <new>

#include "AllocationFaults.h"
#include "Cimom/Embedded/InstanceProvider.h"
#include "FullDisk.h"
#include "PlayedListeners.h"
#include "StoreFolder.h"

namespace {

using namespace embeddedtest;
using servertest::comesTrue;
using servertest::PlayedListeners;
using servertest::Server;
using servertest::statusOf;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

constexpr const char* kUrl = "http://a";
constexpr const char* kAlerts = "SELECT * FROM CIM_AlertIndication";

std::shared_ptr<EmbeddedObjectManager> anotherManager(Server& server) {
  auto next = std::make_shared<EmbeddedObjectManager>();
  servertest::declareDisks(*next);
  server.service.prepare(*next);
  return next;
}

void declareHandler(EmbeddedObjectManager& manager, const char* name) {
  manager.createInstance(kSubscriptionSpace, instanceOf(kHandlerClass, {{"SystemCreationClassName", text("s")},
                                                                        {"SystemName", text("s")},
                                                                        {"CreationClassName", text(kHandlerClass)},
                                                                        {"Name", text(name)},
                                                                        {"Destination", text(kUrl)}}));
}

// Fails while the class is read that comes last.
class FailingProvider final : public InstanceProvider {
 public:
  QORString getClassName() const override { return kSubscriptionClass; }
  void enumerate(const Request&, const Emit&) override { throw std::bad_alloc(); }
};

TEST(Attachment, WhatCannotBeReadLeavesTheSubscriptionsOfBefore) {
  PlayedListeners listeners;
  Server server(listeners, "");
  const Name subscription(server.subscribe(kAlerts, kUrl));
  const QORuint64 version = server.service.filtersVersion();
  const auto next = anotherManager(server);
  next->registerProvider(kSubscriptionSpace, std::make_shared<FailingProvider>());
  EXPECT_THROW(server.service.attach(next), std::bad_alloc);
  server.publish(server.alert("a"));
  EXPECT_THAT(listeners.numbers(kUrl, 1), ElementsAre("0"));
  EXPECT_EQ(server.service.filtersVersion(), version);
}

// What the policy of a subscription asks for is done to the object manager that serves.
TEST(Attachment, WhatFailsAfterwardsChangesTheObjectManagerOfBefore) {
  PlayedListeners listeners;
  listeners.answer(kUrl,
                   [](const std::string&, const std::string&) -> std::string { throw std::runtime_error("refused"); });
  Server server(listeners, "");
  server.setRetry(0, 1);
  server.subscribe(kAlerts, kUrl, {{"OnFatalErrorPolicy", number(4, CQoriType::uint16)}});
  const auto next = anotherManager(server);
  next->registerProvider(kSubscriptionSpace, std::make_shared<FailingProvider>());
  EXPECT_THROW(server.service.attach(next), std::bad_alloc);
  server.publish(server.alert("a"));
  EXPECT_TRUE(comesTrue([&] { return server.countOf(kSubscriptionClass) == 0; }));
}

TEST(Attachment, WhatTheStoreDoesNotTakeIsRefused) {
  PlayedListeners listeners;
  const StoreFolder folder;
  Server server(listeners, folder.file());
  server.subscribe(kAlerts, kUrl);
  const auto next = anotherManager(server);
  declareHandler(*next, "new");
  {
    const FullDisk full(1024);
    EXPECT_EQ(statusOf([&] { server.service.attach(next); }), 1U);
  }
  server.publish(server.alert("a"));
  EXPECT_THAT(listeners.numbers(kUrl, 1), ElementsAre("0"));
  EXPECT_EQ(server.store.listeners().size(), 1U);
}

TEST(Attachment, WithoutTakingNothingChanges) {
  PlayedListeners listeners;
  Server server(listeners, "");
  server.subscribe(kAlerts, kUrl);
  const auto next = anotherManager(server);
  declareHandler(*next, "new");
  server.service.read(next);
  server.publish(server.alert("a"));
  EXPECT_THAT(listeners.numbers(kUrl, 1), ElementsAre("0"));
}

// Of each a line, as whoever declares them in MOF has to know.
TEST(Attachment, WhatIsNotInForceIsNamed) {
  PlayedListeners listeners;
  Server server(listeners, "");
  const auto next = anotherManager(server);
  std::vector<std::string> told;
  next->setLogSink([&](const QORString&, const QORString& message, QORuint32) { told.emplace_back(message.view()); },
                   QoriTraceLog::kWarning);
  for (const char* known : {kFilterClass, kHandlerClass}) {
    const std::string below = std::string("My_") + known;
    next->sink().declareClass(kSubscriptionSpace, classOf(below.c_str(), known, {}));
    next->createInstance(kSubscriptionSpace, instanceOf(below.c_str(), {{"SystemCreationClassName", text("s")},
                                                                        {"SystemName", text("s")},
                                                                        {"CreationClassName", text(below.c_str())},
                                                                        {"Name", text("b")}}));
  }
  const auto end = [](const char* className) {
    return reference(nameOf(kSubscriptionSpace, className, {{"Name", text("none")}}));
  };
  next->createInstance(kSubscriptionSpace, instanceOf(kSubscriptionClass, {{"Filter", end(kFilterClass)},
                                                                           {"Handler", end(kHandlerClass)}}));
  next->makeCurrent();
  server.service.attach(next);
  next->setLogSink({}, QoriTraceLog::kFatal);
  server.manager = next;
  EXPECT_THAT(told,
              UnorderedElementsAre(
                  AllOf(HasSubstr("My_CIM_IndicationFilter."),
                        HasSubstr(" is not in force: only instances of CIM_IndicationFilter itself are")),
                  AllOf(HasSubstr("My_CIM_ListenerDestinationCIMXML."), HasSubstr(" is not in force: only instances")),
                  AllOf(HasSubstr("CIM_IndicationSubscription."), HasSubstr(" is not in force: there is no filter"))));
}

// Each allocation fails once; the last attempt meets no failure.
TEST(Attachment, WithoutMemoryAllStaysAsItWas) {
  PlayedListeners listeners;
  Server server(listeners, "");
  server.subscribe(kAlerts, kUrl);
  const auto next = anotherManager(server);
  declareHandler(*next, "new");
  unsigned long refusals = 0;
  for (unsigned long first = 1;; ++first) {
    bool isRefused = false;
    AllocationFaults::arm(first, false);
    try {
      server.service.attach(next);
    } catch (const std::exception&) {
      isRefused = true;
    }
    const bool hasFailed = AllocationFaults::hasFailed();
    AllocationFaults::disarm();
    refusals += isRefused ? 1U : 0U;
    if (isRefused) {
      ASSERT_EQ(server.countOf(kQueueClass), 1U) << first;
    }
    if (!hasFailed) break;
    if (!isRefused) server.service.attach(server.manager);
  }
  EXPECT_GT(refusals, 0U);
  next->makeCurrent();
  server.manager = next;
  server.publish(server.alert("a"));
  EXPECT_EQ(listeners.numbers(kUrl, 1).size(), 1U);
}

// A listener whose thread is busy is deleted, while each allocation fails once: nobody waits for the thread.
TEST(Attachment, ADeletedListenerIsNotWaitedForWithoutMemoryEither) {
  for (unsigned long first = 1;; ++first) {
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future().share();
    PlayedListeners listeners;
    listeners.answer(kUrl, [released](const std::string& message, const std::string& id) {
      released.wait();
      return PlayedListeners::take(message, id);
    });
    Server server(listeners, "");
    const Name handler(server.createHandler("h", kUrl));
    const Name subscription(server.subscribe(server.createFilter("f", kAlerts), handler));
    server.publish(server.alert("a"));
    listeners.messages(kUrl, 1);
    server.service.writer().remove(*server.manager, subscription);
    bool hasFailed = false;
    std::promise<void> done;
    std::thread client([&] {
      AllocationFaults::arm(first, false);
      try {
        server.service.writer().remove(*server.manager, handler);
      } catch (const std::exception&) {
        // It was refused, and stays.
      }
      hasFailed = AllocationFaults::hasFailed();
      AllocationFaults::disarm();
      done.set_value();
    });
    const bool isDone = done.get_future().wait_for(std::chrono::seconds(20)) == std::future_status::ready;
    release.set_value();
    client.join();
    ASSERT_TRUE(isDone) << first;
    if (!hasFailed) break;
  }
}

// However much the disk still takes.
TEST(Attachment, AListenerThatAClientCreatesIsInForceOrRefused) {
  const StoreFolder folder;
  PlayedListeners listeners;
  Server server(listeners, folder.file());
  const rlim_t before = std::filesystem::file_size(folder.file() + "-wal");
  int count = 0;
  for (rlim_t more = 0; count < 2; more += 1024) {
    const std::string name = "h" + std::to_string(more);
    {
      const FullDisk full(before + more);
      if (statusOf([&] { server.createHandler(name.c_str(), kUrl); }) == 0) ++count;
    }
    ASSERT_EQ(server.countOf(kHandlerClass), server.countOf(kQueueClass)) << more;
  }
}

}  // namespace
