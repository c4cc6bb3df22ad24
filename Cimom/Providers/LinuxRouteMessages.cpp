// A packet is messages; one of a route is a fixed part and attributes after it, and
// its attribute of several hops holds hops with attributes of their own. All of them
// begin at multiples of four bytes.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxRouteMessages.h"

#include <arpa/inet.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

using Bytes = std::span<const std::byte>;

// The fixed part at the beginning of bytes that are long enough for it.
template <class Part>
Part partOf(Bytes bytes) {
  Part part{};
  std::memcpy(&part, bytes.data(), sizeof(Part));
  return part;
}

Bytes withoutFirst(Bytes bytes, std::size_t count) { return bytes.subspan(std::min(bytes.size(), count)); }

constexpr std::size_t aligned(std::size_t length) { return (length + 3) & ~std::size_t{3}; }

// Hands over the type and the content of each attribute, up to one that is malformed.
template <class Take>
void eachAttribute(Bytes bytes, Take take) {
  while (bytes.size() >= sizeof(rtattr)) {
    const auto head = partOf<rtattr>(bytes);
    if (head.rta_len < sizeof(rtattr) || head.rta_len > bytes.size()) return;
    take(head.rta_type & NLA_TYPE_MASK, bytes.subspan(sizeof(rtattr), head.rta_len - sizeof(rtattr)));
    bytes = withoutFirst(bytes, aligned(head.rta_len));
  }
}

QORuint32 numberOf(Bytes content) { return content.size() < sizeof(QORuint32) ? 0 : partOf<QORuint32>(content); }

// Nothing where the length is not that of an address.
std::string addressOf(int family, Bytes content) {
  const std::size_t length = family == AF_INET6 ? sizeof(in6_addr) : sizeof(in_addr);
  std::array<char, INET6_ADDRSTRLEN> text{};
  if (content.size() != length) return {};
  return inet_ntop(family, content.data(), text.data(), text.size()) == nullptr ? "" : text.data();
}

// A gateway of another version of IP than the route's stands behind its family.
std::string otherGateway(Bytes content) {
  if (content.size() < sizeof(sa_family_t)) return {};
  return addressOf(partOf<sa_family_t>(content), content.subspan(sizeof(sa_family_t)));
}

// The attributes that a hop has of its own, or the route where it has one hop alone.
void readHopAttribute(int type, Bytes content, LinuxRouteEntry& route) {
  if (type == RTA_GATEWAY) route.gateway = addressOf(route.isVersion6 ? AF_INET6 : AF_INET, content);
  if (type == RTA_VIA) route.gateway = otherGateway(content);
}

// Adds the route once for each hop.
void addHops(const LinuxRouteEntry& route, Bytes hops, const LinuxInterfaceName& interfaceName,
             LinuxRouteEntries& routes) {
  while (hops.size() >= sizeof(rtnexthop)) {
    const auto head = partOf<rtnexthop>(hops);
    if (head.rtnh_len < sizeof(rtnexthop) || head.rtnh_len > hops.size()) return;
    LinuxRouteEntry hop = route;
    hop.interface = interfaceName(head.rtnh_ifindex);
    hop.weight = head.rtnh_hops + 1U;
    eachAttribute(hops.subspan(sizeof(rtnexthop), head.rtnh_len - sizeof(rtnexthop)),
                  [&hop](int type, Bytes content) { readHopAttribute(type, content, hop); });
    routes.push_back(std::move(hop));
    hops = withoutFirst(hops, aligned(head.rtnh_len));
  }
}

// Whether the route leads out of this machine, and is in a table: the kernel also lists what it found lately.
bool isWanted(const rtmsg& head) {
  const bool isOfIp = head.rtm_family == AF_INET || head.rtm_family == AF_INET6;
  const bool isOut = head.rtm_type == RTN_UNICAST || (head.rtm_type >= RTN_BLACKHOLE && head.rtm_type <= RTN_THROW);
  return isOfIp && isOut && (head.rtm_flags & RTM_F_CLONED) == 0;
}

void readRoute(Bytes message, const LinuxInterfaceName& interfaceName, LinuxRouteEntries& routes) {
  if (message.size() < sizeof(rtmsg)) return;
  const auto head = partOf<rtmsg>(message);
  if (!isWanted(head)) return;
  LinuxRouteEntry route;
  route.isVersion6 = head.rtm_family == AF_INET6;
  route.destination = route.isVersion6 ? "::" : "0.0.0.0";
  route.prefixLength = head.rtm_dst_len;
  route.table = head.rtm_table;
  route.isRejected = head.rtm_type != RTN_UNICAST;
  Bytes hops;
  eachAttribute(withoutFirst(message, aligned(sizeof(rtmsg))), [&](int type, Bytes content) {
    if (type == RTA_DST) route.destination = addressOf(head.rtm_family, content);
    if (type == RTA_TABLE) route.table = numberOf(content);
    if (type == RTA_PRIORITY) route.metric = numberOf(content);
    if (type == RTA_OIF) route.interface = interfaceName(static_cast<int>(numberOf(content)));
    if (type == RTA_MULTIPATH) hops = content;
    readHopAttribute(type, content, route);
  });
  if (route.destination.empty()) return;
  if (hops.empty()) {
    routes.push_back(std::move(route));
  } else {
    addHops(route, hops, interfaceName, routes);
  }
}

// The errno with which a message ends the answer; 0 for its proper end.
int errorOf(const nlmsghdr& head, Bytes content) {
  const int code = content.size() < sizeof(int) ? 0 : -partOf<int>(content);
  return head.nlmsg_type == NLMSG_ERROR && code == 0 ? EPROTO : code;
}

}  // namespace

LinuxRouteAnswer readRouteMessages(std::span<const std::byte> packet, QORuint32 requestNumber,
                                   const LinuxInterfaceName& interfaceName, LinuxRouteEntries& routes) {
  LinuxRouteAnswer answer;
  while (!packet.empty() && !answer.isDone) {
    if (packet.size() < sizeof(nlmsghdr)) return {true, answer.isInterrupted, EPROTO};
    const auto head = partOf<nlmsghdr>(packet);
    if (head.nlmsg_len < sizeof(nlmsghdr) || head.nlmsg_len > packet.size()) {
      return {true, answer.isInterrupted, EPROTO};
    }
    const Bytes content = packet.subspan(sizeof(nlmsghdr), head.nlmsg_len - sizeof(nlmsghdr));
    packet = withoutFirst(packet, aligned(head.nlmsg_len));
    if (head.nlmsg_seq != requestNumber) continue;
    answer.isInterrupted = answer.isInterrupted || (head.nlmsg_flags & NLM_F_DUMP_INTR) != 0;
    answer.isDone = head.nlmsg_type == NLMSG_DONE || head.nlmsg_type == NLMSG_ERROR;
    if (answer.isDone) answer.error = errorOf(head, content);
    if (head.nlmsg_type == RTM_NEWROUTE) readRoute(content, interfaceName, routes);
  }
  return answer;
}
