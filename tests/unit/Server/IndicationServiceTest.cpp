// Indications find their subscriptions and reach their listeners.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <mutex>
#include <optional>

#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Server/IndicationService.h"
#include "PlayedListeners.h"
#include "StoreFolder.h"

namespace {

using namespace embeddedtest;
using servertest::comesTrue;
using servertest::PlayedListeners;
using servertest::Server;
using servertest::statusOf;
using servertest::valueIn;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kUrl = "http://a";
constexpr const char* kAlerts = "SELECT * FROM CIM_AlertIndication";

Value small(QORuint64 value) { return number(value, CQoriType::uint16); }

TEST(IndicationService, ChangesOfStoredInstancesAreDelivered) {
  PlayedListeners listeners;
  Server server(listeners, "");
  server.subscribe("SELECT * FROM CIM_InstIndication WHERE SourceInstance ISA Disk", kUrl);
  const Name disk(server.createDisk("a"));
  server.service.writer().modify(*server.manager, disk, {{"Size", number(7)}});
  server.service.writer().remove(*server.manager, disk);
  const std::vector<std::string> messages = listeners.messages(kUrl, 3);
  ASSERT_EQ(messages.size(), 3U);
  EXPECT_THAT(messages[0], HasSubstr("<INSTANCE CLASSNAME=\"CIM_InstCreation\">"));
  EXPECT_THAT(messages[1], HasSubstr("<INSTANCE CLASSNAME=\"CIM_InstModification\">"));
  EXPECT_THAT(valueIn(messages[1], "SourceInstance"), HasSubstr("&lt;VALUE&gt;7&lt;/VALUE&gt;"));
  EXPECT_THAT(valueIn(messages[1], "PreviousInstance"), HasSubstr("&lt;VALUE&gt;1&lt;/VALUE&gt;"));
  EXPECT_THAT(messages[2], HasSubstr("<INSTANCE CLASSNAME=\"CIM_InstDeletion\">"));
  EXPECT_THAT(listeners.numbers(kUrl, 3), ElementsAre("0", "1", "2"));
}

TEST(IndicationService, OnlyWhatAFilterSelectsAndTheMarksAreSent) {
  PlayedListeners listeners;
  Server server(listeners, "");
  server.subscribe("SELECT EventID FROM CIM_AlertIndication WHERE Message = 'b'", kUrl);
  server.publish(server.alert("a"));
  server.publish(server.alert("b", "x"));
  const std::string message = listeners.messages(kUrl, 1).at(0);
  EXPECT_EQ(valueIn(message, "EventID"), "x");
  EXPECT_THAT(message, Not(HasSubstr("NAME=\"Message\"")));
  EXPECT_THAT(valueIn(message, "IndicationFilterName"), HasSubstr("SELECT EventID"));
  EXPECT_THAT(valueIn(message, "SequenceContext"), HasSubstr("listener-"));
  EXPECT_EQ(valueIn(message, "SequenceNumber"), "0");
}

TEST(IndicationService, ThousandSubscriptionsGetTheirIndicationsOnceAndInOrder) {
  constexpr int kSubscriptions = 1000;
  constexpr int kIndications = 10000;
  PlayedListeners listeners;
  const StoreFolder folder;
  Server server(listeners, folder.file());
  const Name handler(server.createHandler("h", kUrl));
  for (int i = 0; i < kSubscriptions; ++i) {
    const std::string event = std::to_string(i);
    const std::string query = std::string(kAlerts) + " WHERE EventID = '" + event + "'";
    server.subscribe(server.createFilter(event.c_str(), query.c_str()), handler);
  }
  std::vector<Object> batch;
  for (int i = 0; i < kIndications; ++i) {
    batch.push_back(server.alert(std::to_string(i), std::to_string(i % kSubscriptions).c_str()));
    if (batch.size() < 100) continue;
    server.service.publish(batch, EmbeddedObjectManager::kDefaultNamespace);
    batch.clear();
  }
  const std::vector<std::string> messages = listeners.messages(kUrl, kIndications);
  ASSERT_EQ(messages.size(), static_cast<std::size_t>(kIndications));
  for (int i = 0; i < kIndications; ++i) {
    ASSERT_EQ(valueIn(messages[static_cast<std::size_t>(i)], "SequenceNumber"), std::to_string(i));
    ASSERT_EQ(valueIn(messages[static_cast<std::size_t>(i)], "Message"), std::to_string(i));
  }
  EXPECT_TRUE(comesTrue([&] { return server.queueValue("Queued") == "0"; }));
  EXPECT_EQ(server.queueValue("Delivered"), "10000");
  EXPECT_EQ(server.queueValue("Dropped"), "0");
}

TEST(IndicationService, WhatWaitsAndWhoWaitsSurvive) {
  PlayedListeners listeners;
  const StoreFolder folder;
  listeners.answer(kUrl,
                   [](const std::string&, const std::string&) -> std::string { throw std::runtime_error("refused"); });
  std::string context;
  {
    Server server(listeners, folder.file());
    server.setRetry(1000, 1000);
    server.subscribe(kAlerts, kUrl);
    for (int i = 0; i < 100; ++i) server.publish(server.alert(std::to_string(i)));
    context = valueIn(listeners.messages(kUrl, 1).at(0), "SequenceContext");
    EXPECT_EQ(server.queueValue("Queued"), "100");
  }
  listeners.answer(kUrl, PlayedListeners::take);
  const std::size_t before = listeners.messages(kUrl, 0).size();
  Server server(listeners, folder.file());
  server.publish(server.alert("100"));
  const std::vector<std::string> messages = listeners.messages(kUrl, before + 101);
  ASSERT_EQ(messages.size(), before + 101);
  for (std::size_t i = 0; i <= 100; ++i) {
    EXPECT_EQ(valueIn(messages[before + i], "SequenceNumber"), std::to_string(i));
    EXPECT_EQ(valueIn(messages[before + i], "SequenceContext"), context);
  }
}

TEST(IndicationService, AnObjectManagerInThePlaceOfAnotherKeepsTheSubscriptions) {
  PlayedListeners listeners;
  Server server(listeners, "");
  server.subscribe(kAlerts, kUrl);
  server.publish(server.alert("a"));
  const auto next = std::make_shared<EmbeddedObjectManager>();
  servertest::declareDisks(*next);
  server.service.prepare(*next);
  next->makeCurrent();
  server.service.attach(next);
  server.manager = next;
  server.publish(server.alert("b"));
  EXPECT_THAT(listeners.numbers(kUrl, 2), ElementsAre("0", "1"));
}

// What is told while it lives. A thread that tells something at its end may still do so a little later.
class HeardLog {
 public:
  explicit HeardLog(EmbeddedObjectManager& manager) : _manager(manager) {
    _manager.setLogSink(
        [heard = _heard](const QORString&, const QORString& message, QORuint32) {
          const std::lock_guard lock(heard->mutex);
          heard->lines.emplace_back(message.view());
        },
        QoriTraceLog::kWarning);
  }
  HeardLog(const HeardLog&) = delete;
  HeardLog& operator=(const HeardLog&) = delete;
  ~HeardLog() { _manager.setLogSink({}, QoriTraceLog::kFatal); }
  // Of lines that have the text.
  std::ptrdiff_t count(const char* text) const {
    const std::lock_guard lock(_heard->mutex);
    return std::count_if(_heard->lines.begin(), _heard->lines.end(),
                         [&](const std::string& line) { return line.find(text) != std::string::npos; });
  }

 private:
  struct Heard {
    std::mutex mutex;
    std::vector<std::string> lines;
  };
  EmbeddedObjectManager& _manager;
  const std::shared_ptr<Heard> _heard = std::make_shared<Heard>();
};

TEST(IndicationService, AQueueThatStaysNearlyFullIsToldOfOnce) {
  PlayedListeners listeners;
  std::atomic<int> left{0};
  listeners.answer(kUrl, [&](const std::string& message, const std::string& id) {
    if (left <= 0) throw std::runtime_error("refused");
    --left;
    return PlayedListeners::take(message, id);
  });
  IndicationOptions options;
  options.queueLimit = 4;
  Server server(listeners, "", options);
  server.setRetry(10000, 1);
  server.subscribe(kAlerts, kUrl);
  const HeardLog log(*server.manager);
  for (int i = 0; i < 5; ++i) server.publish(server.alert("a"));
  for (int i = 0; i < 3; ++i) {
    left = 1;
    ASSERT_TRUE(comesTrue([&] { return server.queueValue("Queued") == "3"; }));
    server.publish(server.alert("b"));
    server.publish(server.alert("dropped"));
  }
  EXPECT_EQ(server.queueValue("Dropped"), "4");
  EXPECT_EQ(log.count(" is full "), 1);
  EXPECT_EQ(log.count(" has room again"), 0);
  left = 100000;
  EXPECT_TRUE(comesTrue([&] {
    server.publish(server.alert("c"));
    return log.count(" has room again") == 1;
  }));
}

TEST(IndicationService, AFullQueueDropsWhatComesAndTellsHowMuch) {
  PlayedListeners listeners;
  std::atomic<bool> isOpen{false};
  listeners.answer(kUrl, [&](const std::string& message, const std::string& id) {
    if (!isOpen) throw std::runtime_error("refused");
    return PlayedListeners::take(message, id);
  });
  IndicationOptions options;
  options.queueLimit = 3;
  Server server(listeners, "", options);
  server.setRetry(10000, 1);
  server.subscribe(kAlerts, kUrl);
  for (int i = 0; i < 5; ++i) server.publish(server.alert(std::to_string(i)));
  EXPECT_EQ(server.queueValue("Dropped"), "2");
  EXPECT_EQ(server.queueValue("Queued"), "3");
  EXPECT_EQ(server.queueValue("NextSequenceNumber"), "5");
  isOpen = true;
  EXPECT_TRUE(comesTrue([&] { return server.queueValue("Queued") == "0"; }));
  server.publish(server.alert("5"));
  EXPECT_TRUE(comesTrue([&] { return server.queueValue("Delivered") == "4"; }));
  EXPECT_EQ(valueIn(listeners.messages(kUrl, 0).back(), "SequenceNumber"), "5");
}

TEST(IndicationService, AListenerThatFailsIsIgnoredUnlessThePolicySaysMore) {
  PlayedListeners listeners;
  listeners.answer(kUrl,
                   [](const std::string&, const std::string&) -> std::string { throw std::runtime_error("refused"); });
  Server server(listeners, "");
  server.setRetry(2, 1);
  server.subscribe(kAlerts, kUrl);
  server.publish(server.alert("a"));
  server.publish(server.alert("b"));
  EXPECT_THAT(listeners.numbers(kUrl, 6), ElementsAre("0", "0", "0", "1", "1", "1"));
  EXPECT_TRUE(comesTrue([&] { return server.queueValue("Dropped") == "2"; }));
  EXPECT_EQ(server.queueValue("LastError"), "refused");
  EXPECT_EQ(server.queueValue("FailedAttempts"), "6");
  EXPECT_EQ(server.countOf(kSubscriptionClass), 1U);
}

// What becomes of a subscription whose listener fails at once.
struct FailingSubscription {
  explicit FailingSubscription(std::vector<CimInstanceProperty> properties) : server(listeners, "") {
    listeners.answer(
        kUrl, [](const std::string&, const std::string&) -> std::string { throw std::runtime_error("refused"); });
    server.setRetry(0, 1);
    subscription = server.subscribe(kAlerts, kUrl, std::move(properties));
    server.publish(server.alert("a"));
    server.publish(server.alert("b"));
  }
  std::string state() const {
    const auto all = server.manager->ownInstances(kSubscriptionSpace, kSubscriptionClass, {});
    return all->entries() == 0 ? "gone"
                               : all->first()->getProperty("SubscriptionState", true)->getValue()->toString().c_str();
  }

  PlayedListeners listeners;
  Server server;
  Name subscription;
};

TEST(IndicationService, APolicyDisablesASubscription) {
  FailingSubscription failing({{"OnFatalErrorPolicy", small(3)}});
  EXPECT_TRUE(comesTrue([&] { return failing.state() == "4"; }));
  EXPECT_TRUE(comesTrue([&] { return failing.server.queueValue("Queued") == "0"; }));
  failing.server.publish(failing.server.alert("c"));
  EXPECT_EQ(failing.server.queueValue("Queued"), "0");
  failing.listeners.answer(kUrl, PlayedListeners::take);
  failing.server.service.writer().modify(*failing.server.manager, failing.subscription,
                                         {{"SubscriptionState", small(2)}});
  failing.server.publish(failing.server.alert("d"));
  EXPECT_TRUE(comesTrue([&] { return failing.server.queueValue("Delivered") == "1"; }));
}

TEST(IndicationService, APolicyRemovesASubscription) {
  FailingSubscription failing({{"OnFatalErrorPolicy", small(4)}});
  EXPECT_TRUE(comesTrue([&] { return failing.state() == "gone"; }));
  EXPECT_EQ(failing.server.countOf(kHandlerClass), 1U);
}

TEST(IndicationService, ThePolicyWaitsForTheTimeIntervalOfFailures) {
  FailingSubscription failing({{"OnFatalErrorPolicy", small(4)}, {"FailureTriggerTimeInterval", number(1)}});
  EXPECT_TRUE(comesTrue([&] { return failing.server.queueValue("Dropped") == "2"; }));
  EXPECT_EQ(failing.state(), "2");
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
  failing.server.publish(failing.server.alert("c"));
  EXPECT_TRUE(comesTrue([&] { return failing.state() == "gone"; }));
}

TEST(IndicationService, ASubscriptionThatIsEnabledAgainHasItsTimeAnew) {
  FailingSubscription failing({{"OnFatalErrorPolicy", small(3)}});
  Server& server = failing.server;
  ASSERT_TRUE(comesTrue([&] { return failing.state() == "4" && server.queueValue("Queued") == "0"; }));
  const std::string dropped = server.queueValue("Dropped");
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
  server.service.writer().modify(*server.manager, failing.subscription,
                                 {{"SubscriptionState", small(2)}, {"FailureTriggerTimeInterval", number(1)}});
  server.publish(server.alert("c"));
  EXPECT_TRUE(comesTrue([&] { return server.queueValue("Dropped") != dropped; }));
  server.service.attach(server.manager);
  EXPECT_EQ(failing.state(), "2");
}

TEST(IndicationService, APolicyThatCannotBeFollowedIsTold) {
  PlayedListeners listeners;
  listeners.answer(kUrl,
                   [](const std::string&, const std::string&) -> std::string { throw std::runtime_error("refused"); });
  Server server(listeners, "");
  server.setRetry(0, 1);
  const Name subscription(server.subscribe(kAlerts, kUrl, {{"OnFatalErrorPolicy", small(4)}}));
  const HeardLog log(*server.manager);
  ASSERT_TRUE(server.manager->deleteInstance(subscription));
  server.publish(server.alert("a"));
  EXPECT_TRUE(comesTrue([&] { return log.count("that is not done: ") == 1; }));
}

TEST(IndicationService, ATransientListenerThatFailsIsGoneWithItsSubscriptions) {
  PlayedListeners listeners;
  listeners.answer(kUrl,
                   [](const std::string&, const std::string&) -> std::string { throw std::runtime_error("refused"); });
  Server server(listeners, "");
  server.setRetry(0, 1);
  const Name handler(server.create(
      kSubscriptionSpace, instanceOf(kHandlerClass, {{"Destination", text(kUrl)}, {"PersistenceType", small(3)}})));
  server.subscribe(server.createFilter("f", kAlerts), handler);
  server.publish(server.alert("a"));
  EXPECT_TRUE(comesTrue([&] { return server.countOf(kHandlerClass) == 0; }));
  EXPECT_EQ(server.countOf(kSubscriptionClass), 0U);
  EXPECT_EQ(server.countOf(kFilterClass), 1U);
}

TEST(IndicationService, ASlowListenerHoldsUpNobodyElse) {
  PlayedListeners listeners;
  std::atomic<bool> isOpen{false};
  listeners.answer("http://slow", [&](const std::string& message, const std::string& id) {
    comesTrue([&] { return isOpen.load(); });
    return PlayedListeners::take(message, id);
  });
  Server server(listeners, "");
  const Name filter(server.createFilter("f", kAlerts));
  server.subscribe(filter, server.createHandler("slow", "http://slow"));
  server.subscribe(filter, server.createHandler("fast", "http://fast"));
  for (int i = 0; i < 20; ++i) server.publish(server.alert(std::to_string(i)));
  EXPECT_EQ(listeners.numbers("http://fast", 20).size(), 20U);
  EXPECT_LE(listeners.messages("http://slow", 0).size(), 1U);
  isOpen = true;
  EXPECT_EQ(listeners.numbers("http://slow", 20).size(), 20U);
}

TEST(IndicationService, RepetitionsAreSuppressed) {
  PlayedListeners listeners;
  Server server(listeners, "");
  server.subscribe(kAlerts, kUrl,
                   {{"RepeatNotificationPolicy", small(3)},
                    {"RepeatNotificationInterval", number(1000)},
                    {"RepeatNotificationCount", small(1)}});
  for (const char* event : {"x", "x", "y", "x"}) server.publish(server.alert("a", event));
  ASSERT_EQ(listeners.messages(kUrl, 2).size(), 2U);
  EXPECT_EQ(server.queueValue("NextSequenceNumber"), "2");
}

TEST(IndicationService, ASubscriptionThatIsDeletedGetsNoMore) {
  PlayedListeners listeners;
  listeners.answer(kUrl,
                   [](const std::string&, const std::string&) -> std::string { throw std::runtime_error("refused"); });
  Server server(listeners, "");
  server.setRetry(1000, 10);
  const Name subscription(server.subscribe(kAlerts, kUrl));
  server.publish(server.alert("a"));
  server.service.writer().remove(*server.manager, subscription);
  EXPECT_EQ(server.queueValue("Queued"), "0");
  server.publish(server.alert("b"));
  EXPECT_EQ(server.queueValue("NextSequenceNumber"), "1");
}

// A call that exports an instance, answered.
std::string exported(Server& server, const char* className, const char* property) {
  CimXmlRequest request;
  request.kind = CimXmlRequest::Kind::Export;
  request.messageId = "7";
  request.operation = kExportOperation;
  CimXmlParameter parameter;
  parameter.name = "NewIndication";
  parameter.kind = CimXmlParameter::Kind::Instance;
  parameter.instance.className = className;
  parameter.instance.add(property).value = text("hello");
  request.parameters.push_back(parameter);
  const ServerClient client{"127.0.0.1", ""};
  ServerNote note;
  std::string reply;
  server.service.takeExport({request, client, server.manager, note})->append(reply, 10000);
  return reply;
}

TEST(IndicationService, ClientsPutAlertsIn) {
  PlayedListeners listeners;
  Server server(listeners, "");
  server.subscribe(kAlerts, kUrl);
  EXPECT_THAT(exported(server, "CIM_AlertIndication", "Message"),
              HasSubstr("<EXPMETHODRESPONSE NAME=\"ExportIndication\">"));
  const std::string message = listeners.messages(kUrl, 1).at(0);
  EXPECT_EQ(valueIn(message, "Message"), "hello");
  EXPECT_THAT(valueIn(message, "IndicationTime"), HasSubstr("2026"));
  EXPECT_EQ(statusOf([&] { exported(server, "CIM_Nothing", "Message"); }), 5U);
  EXPECT_EQ(statusOf([&] { exported(server, "Disk", "Name"); }), 4U);
  EXPECT_EQ(statusOf([&] { exported(server, "CIM_AlertIndication", "Nothing"); }), 12U);
}

TEST(IndicationService, ClientsPutInWhatASchemaOfItsOwnCallsAnIndication) {
  PlayedListeners listeners;
  Server server(listeners, "");
  MofLoader(server.manager->sink()).loadText("[Indication] class Alarm { string Message; };", "test.mof");
  server.subscribe("SELECT * FROM Alarm WHERE Message = 'hello'", kUrl);
  EXPECT_THAT(exported(server, "Alarm", "Message"), HasSubstr("<EXPMETHODRESPONSE NAME=\"ExportIndication\">"));
  const std::string message = listeners.messages(kUrl, 1).at(0);
  EXPECT_THAT(message, HasSubstr("<INSTANCE CLASSNAME=\"Alarm\">"));
  EXPECT_EQ(valueIn(message, "Message"), "hello");
}

TEST(IndicationService, ManyPublishSubscribeAndLeaveAtOnce) {
  PlayedListeners listeners;
  const StoreFolder folder;
  Server server(listeners, folder.file());
  server.subscribe(kAlerts, kUrl);
  constexpr int kThreads = 4;
  constexpr int kEach = 25;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      const std::string name = "t" + std::to_string(thread);
      const Name filter(server.createFilter(name.c_str(), kAlerts));
      const Name handler(server.createHandler(name.c_str(), ("http://" + name).c_str()));
      for (int i = 0; i < kEach; ++i) {
        const Name subscription(server.subscribe(filter, handler));
        server.publish(server.alert(name));
        server.service.writer().remove(*server.manager, subscription);
      }
      server.service.writer().remove(*server.manager, handler);
    });
  }
  for (std::thread& thread : threads) thread.join();
  const std::vector<std::string> numbers = listeners.numbers(kUrl, kThreads * kEach);
  ASSERT_EQ(numbers.size(), static_cast<std::size_t>(kThreads * kEach));
  for (std::size_t i = 0; i < numbers.size(); ++i) EXPECT_EQ(numbers[i], std::to_string(i));
}

TEST(IndicationService, QueuesOfListenersThatNobodyDeclaresAreForgotten) {
  PlayedListeners listeners;
  const StoreFolder folder;
  {
    Server server(listeners, folder.file());
    server.createHandler("h", kUrl);
    const std::int64_t id = server.store.listener("root/interop:Other", "c").id;
    ServerStore::Change change(server.store);
    change.queue(id, {0, "s", "<INSTANCE CLASSNAME=\"A\"/>"});
    change.commit();
    EXPECT_EQ(server.store.listeners().size(), 2U);
  }
  Server server(listeners, folder.file());
  ASSERT_EQ(server.store.listeners().size(), 1U);
  EXPECT_THAT(server.store.listeners().front().first, HasSubstr("CIM_ListenerDestinationCIMXML"));
}

}  // namespace
