// The reply to a change waits for the watcher of filters, and nobody else does.
// SPDX-License-Identifier: Apache-2.0
#include <future>

#include "Cimom/Server/FollowedService.h"
#include "Cimom/Server/ServerModel.h"
#include "PlayedListeners.h"

namespace {

using namespace embeddedtest;
using servertest::comesTrue;
using servertest::PlayedListeners;
using servertest::Server;
using ::testing::ElementsAre;

// Creates a filter with a subscription, as an operation does: with a lease of the object manager for that.
class Subscribing final : public HttpService {
 public:
  explicit Subscribing(Server& server) : model(server.manager), _server(server) {}
  HttpReply serve(const HttpRequest& request) override {
    const ServerModel::Manager lease = model.leaseForChange();
    const char* const url = request.path.c_str();
    _server.subscribe(_server.createFilter(url, "SELECT * FROM CIM_AlertIndication"), _server.createHandler(url, url));
    HttpReply reply;
    reply.body = std::make_unique<WholeReply>("");
    reply.note.operation = request.method;
    reply.note.status = status;
    return reply;
  }

  CountedModel model;
  QORuint32 status = 0;

 private:
  Server& _server;
};

HttpRequest requestOf(const char* operation, const char* url) {
  HttpRequest request;
  request.method = operation;
  request.path = url;
  return request;
}

struct Followed {
  Followed() : server(listeners, ""), inner(server), service(inner, server.service) {}

  PlayedListeners listeners;
  Server server;
  Subscribing inner;
  FollowedService service;
};

TEST(FollowedService, TheWatcherIsCalledAfterAChangeAndBeforeItsReply) {
  Followed followed;
  std::vector<std::size_t> heard;
  followed.server.service.setWatcher([&] { heard.push_back(followed.server.service.filtersSince(0).changes.size()); });
  followed.service.serve(requestOf("CreateInstance", "http://a"));
  EXPECT_THAT(heard, ElementsAre(1U));
  followed.service.serve(requestOf("ModifyInstance", "http://b"));
  EXPECT_THAT(heard, ElementsAre(1U, 2U));
  followed.service.serve(requestOf("DeleteInstance", "http://e"));
  followed.service.serve(requestOf("GetInstance", "http://f"));
  followed.inner.status = 1;
  followed.service.serve(requestOf("CreateInstance", "http://c"));
  followed.server.service.setWatcher({});
  followed.inner.status = 0;
  followed.service.serve(requestOf("CreateInstance", "http://d"));
  EXPECT_EQ(heard.size(), 2U);
}

// Writers, other clients that wait for the watcher, and another object manager that takes the place of the first.
TEST(FollowedService, ASlowWatcherHoldsUpNobodyElse) {
  Followed followed;
  std::atomic<int> waiting{0};
  std::promise<void> release;
  const std::shared_future<void> released = release.get_future().share();
  followed.server.service.setWatcher([&, released] {
    ++waiting;
    released.wait_for(std::chrono::seconds(60));
  });
  std::vector<std::thread> clients;
  for (const char* url : {"http://a", "http://b"}) {
    clients.emplace_back([&followed, url] { followed.service.serve(requestOf("CreateInstance", url)); });
  }
  EXPECT_TRUE(comesTrue([&] { return waiting == 2; }));
  followed.server.createDisk("a");
  EXPECT_TRUE(followed.inner.model.replace(
      followed.server.manager, [] {}, std::chrono::seconds(20)));
  EXPECT_EQ(waiting, 2);
  release.set_value();
  for (std::thread& client : clients) client.join();
}

// Who takes the watcher away can end what it borrows.
TEST(FollowedService, TakingTheWatcherAwayWaitsForItsCalls) {
  Followed followed;
  std::atomic<bool> isIn{false};
  std::atomic<bool> isOut{false};
  std::promise<void> release;
  followed.server.service.setWatcher([&, released = release.get_future().share()] {
    isIn = true;
    released.wait();
    isOut = true;
  });
  std::thread client([&] { followed.service.serve(requestOf("CreateInstance", "http://a")); });
  EXPECT_TRUE(comesTrue([&] { return isIn.load(); }));
  std::thread releasing([&] { release.set_value(); });
  followed.server.service.setWatcher({});
  EXPECT_TRUE(isOut);
  client.join();
  releasing.join();
}

}  // namespace
