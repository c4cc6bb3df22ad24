// What counts as a repetition when the store fails, and when everything is read anew.
// SPDX-License-Identifier: Apache-2.0
#include "FullDisk.h"
#include "PlayedListeners.h"
#include "StoreFolder.h"

namespace {

using namespace embeddedtest;
using servertest::PlayedListeners;
using servertest::Server;
using servertest::statusOf;

constexpr const char* kUrl = "http://a";
constexpr const char* kAlerts = "SELECT * FROM CIM_AlertIndication";
constexpr QORuint64 kSuppress = 3;
constexpr QORuint64 kDelay = 4;

std::vector<CimInstanceProperty> repeating(QORuint64 policy, QORuint64 count) {
  return {{"RepeatNotificationPolicy", number(policy, CQoriType::uint16)},
          {"RepeatNotificationInterval", number(1000)},
          {"RepeatNotificationGap", number(1000)},
          {"RepeatNotificationCount", number(count, CQoriType::uint16)}};
}

// A server with a store on disk and one subscription.
struct Repetitions {
  Repetitions(QORuint64 policy, QORuint64 count) : server(listeners, folder.file()) {
    subscription = server.subscribe(kAlerts, kUrl, repeating(policy, count));
  }
  void publish() { server.publish(server.alert("a")); }
  void publishInVain() {
    const FullDisk full(1024);
    EXPECT_EQ(statusOf([&] { publish(); }), 1U);
  }
  // How many have been put into the queue.
  std::string queued() const { return server.queueValue("NextSequenceNumber"); }
  void readAnew() {
    const auto next = std::make_shared<EmbeddedObjectManager>();
    servertest::declareDisks(*next);
    server.service.prepare(*next);
    next->makeCurrent();
    server.service.attach(next);
    server.manager = next;
  }

  const StoreFolder folder;
  PlayedListeners listeners;
  Server server;
  Name subscription;
};

TEST(Repetitions, AnIndicationThatTheStoreDidNotTakeIsNotSuppressedAfterwards) {
  Repetitions repetitions(kSuppress, 1);
  repetitions.publishInVain();
  EXPECT_EQ(repetitions.queued(), "0");
  repetitions.publish();
  EXPECT_EQ(repetitions.queued(), "1");
  repetitions.publish();
  EXPECT_EQ(repetitions.queued(), "1");
}

TEST(Repetitions, AnIndicationThatTheStoreDidNotTakeSendsNoDelayedOneEarly) {
  Repetitions repetitions(kDelay, 1);
  repetitions.publish();
  EXPECT_EQ(repetitions.queued(), "0");
  repetitions.publishInVain();
  repetitions.publish();
  EXPECT_EQ(repetitions.queued(), "1");
}

TEST(Repetitions, AChangeThatTheStoreDidNotTakeDoesNotCount) {
  Repetitions repetitions(kSuppress, 0);
  Server& server = repetitions.server;
  server.subscribe("SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA Disk", "http://b", repeating(kSuppress, 1));
  {
    const FullDisk full(1024);
    EXPECT_EQ(statusOf([&] { server.createDisk("a"); }), 1U);
  }
  server.createDisk("a");
  EXPECT_EQ(repetitions.listeners.messages("http://b", 1).size(), 1U);
}

// What the queue has no room for has been sent to nobody.
TEST(Repetitions, AnIndicationThatAFullQueueDropsDoesNotCount) {
  for (const QORuint64 policy : {kSuppress, kDelay}) {
    std::atomic<bool> isOpen{false};
    PlayedListeners listeners;
    listeners.answer(kUrl, [&](const std::string& message, const std::string& id) {
      if (!isOpen) throw std::runtime_error("refused");
      return PlayedListeners::take(message, id);
    });
    IndicationOptions options;
    options.queueLimit = 1;
    Server server(listeners, "", options);
    server.setRetry(10000, 1);
    server.subscribe(server.createFilter("f", kAlerts), server.createHandler("h", kUrl),
                     repeating(policy, policy == kSuppress ? 1 : 0));
    server.publish(server.alert("a", "first"));
    server.publish(server.alert("b", "second"));
    EXPECT_EQ(server.queueValue("Dropped"), "1");
    isOpen = true;
    ASSERT_TRUE(servertest::comesTrue([&] { return server.queueValue("Queued") == "0"; }));
    server.publish(server.alert("c", "second"));
    server.publish(server.alert("d", "second"));
    EXPECT_TRUE(servertest::comesTrue([&] { return server.queueValue("Delivered") == "2"; })) << policy;
    EXPECT_EQ(server.queueValue("NextSequenceNumber"), "3");
  }
}

TEST(Repetitions, WhatWasCountedIsKeptWhenEverythingIsReadAnew) {
  Repetitions repetitions(kSuppress, 1);
  repetitions.publish();
  repetitions.readAnew();
  repetitions.publish();
  EXPECT_EQ(repetitions.queued(), "1");
}

TEST(Repetitions, AnotherRuleBeginsAnewAndTheSameOneGoesOn) {
  Repetitions repetitions(kSuppress, 1);
  InstanceWriter& writer = repetitions.server.service.writer();
  repetitions.publish();
  writer.modify(*repetitions.server.manager, repetitions.subscription,
                {{"OnFatalErrorPolicy", number(2, CQoriType::uint16)}});
  repetitions.publish();
  EXPECT_EQ(repetitions.queued(), "1");
  writer.modify(*repetitions.server.manager, repetitions.subscription, {{"RepeatNotificationInterval", number(999)}});
  repetitions.publish();
  EXPECT_EQ(repetitions.queued(), "2");
}

}  // namespace
