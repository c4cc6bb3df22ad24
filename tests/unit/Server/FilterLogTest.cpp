// What whoever follows the filters of subscriptions gets to know of them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/FilterLog.h"
#include "PlayedListeners.h"

namespace {

using namespace embeddedtest;
using servertest::PlayedListeners;
using servertest::Server;

constexpr const char* kAlerts = "SELECT * FROM CIM_AlertIndication";

std::vector<FilterChange> one(bool isAsked) { return {{CQLFilterSet::Statement(), isAsked}}; }

TEST(FilterLog, TellsWhatBecameOfThemSinceAVersion) {
  FilterLog log;
  const QORuint64 first = log.version();
  log.note(one(true));
  const QORuint64 second = log.version();
  log.note(one(false));
  ASSERT_TRUE(log.since(first));
  EXPECT_EQ(log.since(first)->size(), 2U);
  ASSERT_EQ(log.since(second)->size(), 1U);
  EXPECT_FALSE(log.since(second)->front().isAsked);
  EXPECT_EQ(log.since(log.version())->size(), 0U);
}

TEST(FilterLog, AllAreToBeAskedForAtFirstAndAfterAReset) {
  FilterLog log;
  EXPECT_FALSE(log.since(0));
  const QORuint64 before = log.version();
  log.note(one(true));
  log.reset();
  EXPECT_FALSE(log.since(before));
  EXPECT_TRUE(log.since(log.version()));
}

TEST(FilterLog, IsBounded) {
  FilterLog log;
  const QORuint64 first = log.version();
  for (std::size_t i = 0; i < FilterLog::kMost; ++i) log.note(one(true));
  EXPECT_EQ(log.since(first)->size(), FilterLog::kMost);
  log.note(one(true));
  EXPECT_FALSE(log.since(first));
  EXPECT_FALSE(log.since(0));
}

// "+" for each statement that is asked for now, "-" for each that no longer is.
std::string newsSince(const Server& server, QORuint64& version) {
  const ServerEvents::FilterNews news = server.service.filtersSince(version);
  std::string text = news.areAll ? "all " : "";
  for (const FilterChange& change : news.changes) text += change.isAsked ? '+' : '-';
  version = news.version;
  return text;
}

TEST(FilterLog, HasWhatEnabledSubscriptionsAskForAndNothingElse) {
  PlayedListeners listeners;
  Server server(listeners, "");
  InstanceWriter& writer = server.service.writer();
  QORuint64 version = 0;
  EXPECT_EQ(newsSince(server, version), "all ");
  const Name filter(server.createFilter("f", kAlerts));
  const Name handler(server.createHandler("h", "http://a"));
  server.createDisk("a");
  EXPECT_EQ(newsSince(server, version), "");
  const Name subscription(server.subscribe(filter, handler));
  EXPECT_EQ(newsSince(server, version), "+");
  const Name second(server.subscribe(filter, server.createHandler("i", "http://b")));
  EXPECT_EQ(newsSince(server, version), "");
  writer.modify(*server.manager, filter, {{"Query", text("SELECT Message FROM CIM_AlertIndication")}});
  EXPECT_EQ(newsSince(server, version), "-+");
  writer.remove(*server.manager, subscription);
  EXPECT_EQ(newsSince(server, version), "");
  writer.modify(*server.manager, second, {{"SubscriptionState", number(4, CQoriType::uint16)}});
  EXPECT_EQ(newsSince(server, version), "-");
  writer.modify(*server.manager, second, {{"SubscriptionState", number(2, CQoriType::uint16)}});
  EXPECT_EQ(newsSince(server, version), "+");
  server.service.attach(server.manager);
  EXPECT_EQ(newsSince(server, version), "all +");
}

}  // namespace
