// Connections end when their time is over, or when they are told to.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Cimom/Server/HttpConnections.h"

namespace {

using std::chrono::milliseconds;
using Clock = HttpConnections::Clock;

// Two ends of a connection.
struct Pair {
  Pair() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0); }
  ~Pair() {
    close(ends[0]);
    if (!isPeerClosed) close(ends[1]);
  }
  void closePeer() { isPeerClosed = close(ends[1]) == 0; }
  bool isEndedWithin(int patience) const {
    pollfd watched{ends[1], POLLRDHUP, 0};
    return poll(&watched, 1, patience) > 0;
  }

  int ends[2]{};
  bool isPeerClosed = false;
};

Clock::time_point in(int count) { return Clock::now() + milliseconds(count); }

TEST(HttpConnections, OneEndsWhenItsTimeIsOver) {
  HttpConnections connections;
  const Pair late;
  const Pair soon;
  const auto first = connections.add(late.ends[0], "a", HttpConnections::kNever);
  const auto second = connections.add(soon.ends[0], "b", in(30));
  EXPECT_TRUE(soon.isEndedWithin(10000));
  EXPECT_FALSE(late.isEndedWithin(0));
  connections.setDeadline(first, in(30), true);
  EXPECT_TRUE(late.isEndedWithin(10000));
  connections.remove(first);
  connections.remove(second);
}

TEST(HttpConnections, OneWhoseTimeIsPutOffGoesOn) {
  HttpConnections connections;
  const Pair pair;
  const auto place = connections.add(pair.ends[0], "a", in(50));
  connections.setDeadline(place, HttpConnections::kNever, false);
  EXPECT_FALSE(pair.isEndedWithin(150));
  connections.remove(place);
}

TEST(HttpConnections, EachKnowsHowManyThereWere) {
  HttpConnections connections;
  const auto first = connections.add(-1, "a", HttpConnections::kNever);
  const auto second = connections.add(-1, "b", HttpConnections::kNever);
  EXPECT_EQ(first->number, 1U);
  EXPECT_EQ(second->number, 2U);
  connections.remove(first);
  EXPECT_EQ(connections.count(), 1U);
  EXPECT_EQ(connections.add(-1, "c", HttpConnections::kNever)->number, 2U);
}

TEST(HttpConnections, TheIdleOnesEndAtOnce) {
  HttpConnections connections;
  const Pair idle;
  const Pair busy;
  connections.add(idle.ends[0], "a", HttpConnections::kNever);
  const auto place = connections.add(busy.ends[0], "b", HttpConnections::kNever);
  connections.setDeadline(place, HttpConnections::kNever, false);
  connections.endIdle();
  EXPECT_TRUE(idle.isEndedWithin(0));
  EXPECT_FALSE(busy.isEndedWithin(0));
  EXPECT_FALSE(connections.waitUntilIdle(in(20)));
  connections.setDeadline(place, HttpConnections::kNever, true);
  EXPECT_TRUE(connections.waitUntilIdle(in(20)));
  connections.endAll();
  EXPECT_TRUE(busy.isEndedWithin(0));
}

TEST(HttpConnections, APeerThatHasClosedIsGone) {
  Pair pair;
  EXPECT_EQ(peerState(pair.ends[0]), PeerState::There);
  shutdown(pair.ends[1], SHUT_WR);
  EXPECT_EQ(peerState(pair.ends[0]), PeerState::SendsNoMore) << "it may wait for an answer";
  pair.closePeer();
  EXPECT_EQ(peerState(pair.ends[0]), PeerState::Gone);
}

TEST(HttpConnections, WhatASocketDoesNotTakeWholeIsTold) {
  Pair pair;
  EXPECT_TRUE(takesMore(pair.ends[0]));
  EXPECT_TRUE(sendNow(pair.ends[0], "interim"));
  const std::string tooMuch(std::size_t{64} << 20, 'x');
  EXPECT_FALSE(sendNow(pair.ends[0], tooMuch)) << "a part was sent";
  EXPECT_FALSE(takesMore(pair.ends[0]));
  EXPECT_FALSE(sendNow(pair.ends[0], "interim"));
  pair.closePeer();
  EXPECT_FALSE(sendNow(pair.ends[0], "interim"));
}

}  // namespace
