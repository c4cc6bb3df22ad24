// Answers of the kernel that are made up, whole and broken ones.
// SPDX-License-Identifier: Apache-2.0
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "Cimom/Providers/LinuxRouteMessages.h"

namespace {

using Packet = std::vector<std::byte>;

constexpr QORuint32 kNumber = 4;

template <class Part>
void append(Packet& packet, const Part& part) {
  const std::size_t end = packet.size();
  packet.resize(end + sizeof(part));
  std::memcpy(packet.data() + end, &part, sizeof(part));
}
void appendAll(Packet& packet, const Packet& other) { packet.insert(packet.end(), other.begin(), other.end()); }

Packet attribute(unsigned short type, Packet content) {
  Packet packet;
  append(packet, rtattr{static_cast<unsigned short>(sizeof(rtattr) + content.size()), type});
  content.resize((content.size() + 3) & ~std::size_t{3});
  appendAll(packet, content);
  return packet;
}
Packet number(unsigned short type, QORuint32 value) {
  Packet content;
  append(content, value);
  return attribute(type, content);
}
Packet address(unsigned short type, const char* text) {
  const int family = std::strchr(text, ':') == nullptr ? AF_INET : AF_INET6;
  Packet content(family == AF_INET ? 4 : 16);
  EXPECT_EQ(inet_pton(family, text, content.data()), 1);
  return attribute(type, content);
}
Packet message(unsigned short type, const Packet& content, unsigned short flags = 0, QORuint32 sequence = kNumber) {
  nlmsghdr head{};
  head.nlmsg_len = static_cast<QORuint32>(sizeof(head) + content.size());
  head.nlmsg_type = type;
  head.nlmsg_flags = flags;
  head.nlmsg_seq = sequence;
  Packet packet;
  append(packet, head);
  appendAll(packet, content);
  return packet;
}
Packet end(unsigned short type, int code) {
  Packet content;
  append(content, code);
  return message(type, content);
}
// A route of IPv4 to 10.0.0.0/8.
Packet route(const std::vector<Packet>& attributes, unsigned char type = RTN_UNICAST, unsigned flags = 0,
             unsigned char family = AF_INET) {
  rtmsg head{};
  head.rtm_family = family;
  head.rtm_dst_len = 8;
  head.rtm_table = RT_TABLE_MAIN;
  head.rtm_type = type;
  head.rtm_flags = flags;
  Packet content;
  append(content, head);
  if (family == AF_INET) appendAll(content, address(RTA_DST, "10.0.0.0"));
  for (const Packet& each : attributes) appendAll(content, each);
  return message(RTM_NEWROUTE, content);
}

std::string interfaceName(int index) { return index > 0 ? "eth" + std::to_string(index) : ""; }

struct Read {
  LinuxRouteAnswer answer;
  LinuxRouteEntries routes;
};
Read read(const std::vector<Packet>& messages) {
  Packet packet;
  for (const Packet& each : messages) appendAll(packet, each);
  Read result;
  result.answer = readRouteMessages(packet, kNumber, interfaceName, result.routes);
  return result;
}

TEST(LinuxRouteMessages, OneHop) {
  const Read result = read({route({address(RTA_GATEWAY, "192.0.2.1"), number(RTA_OIF, 2), number(RTA_PRIORITY, 70000),
                                   number(RTA_TABLE, 1000)}),
                            end(NLMSG_DONE, 0)});
  EXPECT_TRUE(result.answer.isDone);
  EXPECT_EQ(result.answer.error, 0);
  ASSERT_EQ(result.routes.size(), 1U);
  const LinuxRouteEntry& found = result.routes[0];
  EXPECT_EQ(found.destination, "10.0.0.0");
  EXPECT_EQ(found.prefixLength, 8U);
  EXPECT_EQ(found.gateway, "192.0.2.1");
  EXPECT_EQ(found.interface, "eth2");
  EXPECT_EQ(found.metric, 70000U);
  EXPECT_EQ(found.table, 1000U);
  EXPECT_EQ(found.weight, 0U);
  EXPECT_FALSE(found.isRejected);
}

Packet hop(unsigned char share, int index, const Packet& attributes) {
  rtnexthop head{};
  head.rtnh_len = static_cast<unsigned short>(sizeof(head) + attributes.size());
  head.rtnh_hops = share;
  head.rtnh_ifindex = index;
  Packet packet;
  append(packet, head);
  appendAll(packet, attributes);
  return packet;
}

TEST(LinuxRouteMessages, SeveralHops) {
  Packet via;
  append(via, sa_family_t{AF_INET6});
  in6_addr other{};
  ASSERT_EQ(inet_pton(AF_INET6, "fe80::1", &other), 1);
  append(via, other);
  Packet hops = hop(2, 1, address(RTA_GATEWAY, "192.0.2.1"));
  appendAll(hops, hop(0, 2, attribute(RTA_VIA, via)));
  appendAll(hops, hop(0, 3, {}));
  const Read result = read({route({attribute(RTA_MULTIPATH, hops)})});
  EXPECT_FALSE(result.answer.isDone);
  ASSERT_EQ(result.routes.size(), 3U);
  const auto told = [](const LinuxRouteEntry& entry) {
    return entry.gateway + ' ' + entry.interface + ' ' + std::to_string(entry.weight);
  };
  EXPECT_EQ(told(result.routes[0]), "192.0.2.1 eth1 3");
  EXPECT_EQ(told(result.routes[1]), "fe80::1 eth2 1");
  EXPECT_EQ(told(result.routes[2]), " eth3 1");
}

TEST(LinuxRouteMessages, WhatStaysHereOrIsNoRouteOfATableIsLeftOut) {
  const Read result = read({route({}, RTN_LOCAL), route({}, RTN_BROADCAST), route({}, RTN_ANYCAST),
                            route({}, RTN_MULTICAST), route({}, RTN_UNICAST, RTM_F_CLONED),
                            route({}, RTN_UNICAST, 0, AF_PACKET), message(RTM_NEWLINK, Packet(32)),
                            route({}, RTN_BLACKHOLE), route({}, RTN_THROW), route({}, RTN_UNICAST, 0, AF_INET6)});
  ASSERT_EQ(result.routes.size(), 3U);
  EXPECT_TRUE(result.routes[0].isRejected);
  EXPECT_TRUE(result.routes[1].isRejected);
  EXPECT_EQ(result.routes[2].destination, "::");
}

TEST(LinuxRouteMessages, AnswersToOthersAreSkipped) {
  Packet other = route({});
  const QORuint32 sequence = kNumber + 1;
  std::memcpy(other.data() + offsetof(nlmsghdr, nlmsg_seq), &sequence, sizeof(sequence));
  EXPECT_TRUE(read({other}).routes.empty());
}

TEST(LinuxRouteMessages, TellTheEndAndItsReason) {
  EXPECT_EQ(read({end(NLMSG_ERROR, -EPERM)}).answer.error, EPERM);
  EXPECT_EQ(read({end(NLMSG_DONE, -EOPNOTSUPP)}).answer.error, EOPNOTSUPP);
  EXPECT_EQ(read({end(NLMSG_ERROR, 0)}).answer.error, EPROTO);
  EXPECT_EQ(read({message(NLMSG_DONE, {})}).answer.error, 0);
  EXPECT_TRUE(read({message(NLMSG_DONE, {}, NLM_F_DUMP_INTR)}).answer.isInterrupted);
  EXPECT_FALSE(read({end(NLMSG_DONE, 0)}).answer.isInterrupted);
}

// Whatever is cut off or claims another length: nothing is read beyond the packet, which a sanitizer watches.
TEST(LinuxRouteMessages, BoundedByThePacket) {
  Packet hops = hop(2, 1, address(RTA_GATEWAY, "192.0.2.1"));
  appendAll(hops, hop(0, 2, {}));
  Packet whole = route({number(RTA_OIF, 2), attribute(RTA_MULTIPATH, hops)});
  appendAll(whole, end(NLMSG_DONE, 0));
  for (std::size_t size = 1; size < whole.size(); ++size) {
    const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    LinuxRouteEntries routes;
    const LinuxRouteAnswer answer = readRouteMessages(cut, kNumber, interfaceName, routes);
    EXPECT_EQ(answer.error == EPROTO, answer.isDone) << size;
  }
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const int value : {0, 1, 3, 0x7F, 0xFF}) {
      Packet changed = whole;
      changed[at] = static_cast<std::byte>(value);
      LinuxRouteEntries routes;
      readRouteMessages(changed, kNumber, interfaceName, routes);
      EXPECT_LE(routes.size(), 8U);
    }
  }
}

}  // namespace
