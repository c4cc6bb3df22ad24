// What counts as delivered, with listeners as they are met.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/IndicationListener.h"
#include "FullDisk.h"
#include "PlayedListeners.h"
#include "StoreFolder.h"

namespace {

using servertest::comesTrue;
using servertest::PlayedListeners;
using ::testing::ElementsAre;

constexpr const char* kUrl = "http://a";

// One listener with indications in its queue, and what is heard of them.
class Delivery final : public DeliveryObserver {
 public:
  explicit Delivery(PlayedListeners::Answer answer, unsigned attempts = 2, int interval = 1,
                    const std::string& file = "")
      : store(file), _attempts(attempts), _interval(interval), _maker(_listeners.maker()) {
    _listeners.answer(kUrl, std::move(answer));
    _state = store.listener("handler", "context");
    ServerStore::Change change(store);
    for (int i = 0; i < 2; ++i) change.queue(_state.id, {i, "subscription", "<INSTANCE CLASSNAME=\"A\"/>"});
    change.commit();
    _listener = std::make_unique<IndicationListener>(store, _maker, *this, "handler", kUrl, _state.id);
    _listener->wake(2);
  }
  RetrySettings retrySettings() const noexcept override { return {_attempts, _interval}; }
  void delivered(const std::string&) noexcept override { ++taken; }
  void failed(const std::string&, const std::string&, const std::string&) noexcept override { ++lost; }

  // Once the queue is empty.
  std::string outcome() {
    if (!comesTrue([this] { return _listener->waiting() == 0; })) return "waits for ever";
    _listener.reset();
    return std::to_string(taken) + " taken, " + std::to_string(lost) + " lost, " +
           std::to_string(_listeners.messages(kUrl, 0).size()) + " messages";
  }
  IndicationListener& listener() { return *_listener; }
  void end() { _listener.reset(); }

  ServerStore store;
  std::atomic<int> taken{0};
  std::atomic<int> lost{0};

 private:
  const unsigned _attempts;
  const std::chrono::milliseconds _interval;
  PlayedListeners _listeners;
  const ExportTransportMaker _maker;
  ServerStore::Listener _state;
  std::unique_ptr<IndicationListener> _listener;
};

// Answers the first so many messages in one way, and takes the others.
PlayedListeners::Answer first(int count, PlayedListeners::Answer answer) {
  return
      [count, answer, seen = std::make_shared<std::atomic<int>>(0)](const std::string& message, const std::string& id) {
        return ++*seen <= count ? answer(message, id) : PlayedListeners::take(message, id);
      };
}

std::string brokenConnection(const std::string& /*message*/, const std::string& /*id*/) {
  throw std::runtime_error("Connection refused");
}

std::string fullQueue(const std::string& /*message*/, const std::string& id) {
  return exportRefusal(id, 1, "queue full");
}

TEST(IndicationListener, TakesOneAfterTheOther) {
  EXPECT_EQ(Delivery(PlayedListeners::take).outcome(), "2 taken, 0 lost, 2 messages");
}

TEST(IndicationListener, TriesAgainAfterABrokenConnection) {
  EXPECT_EQ(Delivery(first(2, brokenConnection)).outcome(), "2 taken, 0 lost, 4 messages");
}

TEST(IndicationListener, TriesAgainWhenTheQueueOfTheListenerIsFull) {
  EXPECT_EQ(Delivery(first(1, fullQueue)).outcome(), "2 taken, 0 lost, 3 messages");
}

TEST(IndicationListener, GivesUpAfterTheLastAttempt) {
  EXPECT_EQ(Delivery(first(3, brokenConnection)).outcome(), "1 taken, 1 lost, 4 messages");
  EXPECT_EQ(Delivery(first(1, brokenConnection), 0).outcome(), "1 taken, 1 lost, 2 messages");
}

TEST(IndicationListener, DoesNotRepeatWhatTheListenerRefuses) {
  Delivery delivery(first(1, [](const std::string&, const std::string& id) { return exportRefusal(id, 4, "no"); }));
  EXPECT_EQ(delivery.outcome(), "1 taken, 0 lost, 2 messages");
  EXPECT_EQ(delivery.store.listener("handler", "").dropped, 1);
}

TEST(IndicationListener, OnlyTheBeginOfALongRefusalIsKept) {
  Delivery delivery(
      [](const std::string&, const std::string& id) { return exportRefusal(id, 2, std::string(100000, 'x')); });
  EXPECT_TRUE(comesTrue([&] { return delivery.listener().waiting() == 0; }));
  EXPECT_LT(delivery.listener().numbers().lastError.size(), 1100U);
}

TEST(IndicationListener, RepliesThatAreNoneAreFailures) {
  const char* const kReplies[] = {"", "<html>hello</html>",
                                  "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">", "\x01\xFF"};
  for (const char* reply : kReplies) {
    const auto garbage = [reply](const std::string&, const std::string&) { return std::string(reply); };
    EXPECT_EQ(Delivery(first(1, garbage)).outcome(), "2 taken, 0 lost, 3 messages") << reply;
  }
  const auto anotherMessage = [](const std::string&, const std::string&) { return exportResponse("4711"); };
  EXPECT_EQ(Delivery(first(1, anotherMessage)).outcome(), "2 taken, 0 lost, 3 messages");
}

TEST(IndicationListener, AnIndicationThatIsTakenOutOfTheQueueIsNotTriedAgain) {
  Delivery delivery(first(100, brokenConnection), 1000000);
  EXPECT_TRUE(comesTrue([&] { return delivery.listener().numbers().failedAttempts > 0; }));
  {
    ServerStore::Change change(delivery.store);
    delivery.listener().forget(change.removeOf(delivery.listener().id(), "subscription"));
    change.commit();
  }
  EXPECT_TRUE(comesTrue([&] { return delivery.listener().waiting() == 0; }));
  const std::uint64_t attempts = delivery.listener().numbers().failedAttempts;
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_LE(delivery.listener().numbers().failedAttempts, attempts + 1);
}

TEST(IndicationListener, EndsWithinMomentsAndLeavesWhatWaits) {
  Delivery delivery(brokenConnection, 1000000);
  EXPECT_TRUE(comesTrue([&] { return delivery.listener().numbers().failedAttempts > 0; }));
  const std::int64_t id = delivery.listener().id();
  const auto begin = std::chrono::steady_clock::now();
  delivery.end();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
  EXPECT_EQ(delivery.store.queued(id, 10).size(), 2U);
}

TEST(IndicationListener, OtherChangesOfTheQueueTakeNoAttempt) {
  Delivery delivery(brokenConnection, 3, 60000);
  EXPECT_TRUE(comesTrue([&] { return delivery.listener().numbers().failedAttempts == 1; }));
  for (int i = 0; i < 20; ++i) {
    delivery.listener().forget(0);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_EQ(delivery.listener().numbers().failedAttempts, 1U);
  EXPECT_EQ(delivery.lost, 0);
}

TEST(IndicationListener, AnotherAddressIsTriedAtOnce) {
  Delivery delivery(brokenConnection, 3, 60000);
  EXPECT_TRUE(comesTrue([&] { return delivery.listener().numbers().failedAttempts == 1; }));
  delivery.listener().redirect("http://another");
  EXPECT_TRUE(comesTrue([&] { return delivery.taken == 2; }));
  EXPECT_EQ(delivery.lost, 0);
}

TEST(IndicationListener, AnotherAddressThatComesDuringTheLastAttemptIsTried) {
  std::atomic<bool> isAsked{false};
  std::atomic<bool> isRedirected{false};
  Delivery delivery(
      [&](const std::string&, const std::string&) -> std::string {
        isAsked = true;
        while (!isRedirected) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        throw std::runtime_error("timed out");
      },
      0);
  EXPECT_TRUE(comesTrue([&] { return isAsked.load(); }));
  delivery.listener().redirect("http://another");
  isRedirected = true;
  EXPECT_EQ(delivery.outcome(), "2 taken, 0 lost, 1 messages");
}

TEST(IndicationListener, WhatWasTakenIsNotSentAgainWhileTheStoreCannotBeWritten) {
  const StoreFolder folder;
  std::atomic<bool> isOpen{false};
  Delivery delivery(
      [&](const std::string& message, const std::string& id) {
        while (!isOpen) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return PlayedListeners::take(message, id);
      },
      2, 1, folder.file());
  {
    const FullDisk full(1024);
    isOpen = true;
    // The fault is told beside the success; then the store is asked again.
    EXPECT_TRUE(comesTrue([&] { return delivery.listener().numbers().failedAttempts == 2; }));
    EXPECT_EQ(delivery.listener().waiting(), 2);
  }
  EXPECT_EQ(delivery.outcome(), "2 taken, 0 lost, 2 messages");
}

}  // namespace
