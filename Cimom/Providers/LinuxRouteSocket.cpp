// One request, whose answer comes in as many packets as it takes.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxRouteSocket.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <span>
#include <string>
#include <unordered_map>

#include "Cimom/Providers/LinuxRouteMessages.h"
#include "Cimom/Providers/LinuxValues.h"

namespace {

constexpr int kAttempts = 3;
constexpr timeval kPatience = {5, 0};
// The kernel's packets have up to 32 KB.
constexpr std::size_t kPacketSize = 65536;

class RouteSocket {
 public:
  RouteSocket() noexcept : _socket(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)) {
    if (_socket < 0) _error = errno;
    if (_socket >= 0) setsockopt(_socket, SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof(kPatience));
  }
  RouteSocket(const RouteSocket&) = delete;
  RouteSocket& operator=(const RouteSocket&) = delete;
  ~RouteSocket() {
    if (_socket >= 0) close(_socket);
  }

  // One attempt, whose answers have that number.
  LinuxRouteAnswer ask(QORuint32 number, LinuxRouteEntries& routes) {
    if (_error != 0 || !send(number)) return {true, false, _error};
    LinuxRouteAnswer answer;
    bool isInterrupted = false;
    while (!answer.isDone) {
      answer = receive(number, routes);
      isInterrupted = isInterrupted || answer.isInterrupted;
    }
    answer.isInterrupted = isInterrupted;
    return answer;
  }

 private:
  struct Request {
    nlmsghdr head;
    rtmsg route;
  };

  bool send(QORuint32 number) noexcept {
    Request request{};
    request.head.nlmsg_len = sizeof(request);
    request.head.nlmsg_type = RTM_GETROUTE;
    request.head.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.head.nlmsg_seq = number;
    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    const auto* const address = reinterpret_cast<const sockaddr*>(&kernel);
    if (sendto(_socket, &request, sizeof(request), 0, address, sizeof(kernel)) < 0) _error = errno;
    return _error == 0;
  }

  // One packet; one that another process sent says nothing.
  LinuxRouteAnswer receive(QORuint32 number, LinuxRouteEntries& routes) {
    sockaddr_nl sender{};
    socklen_t length = sizeof(sender);
    auto* const address = reinterpret_cast<sockaddr*>(&sender);
    const ssize_t size = recvfrom(_socket, _packet.data(), _packet.size(), MSG_TRUNC, address, &length);
    if (size < 0 && errno == EINTR) return {};
    if (size < 0) return {true, false, errno};
    if (static_cast<std::size_t>(size) > _packet.size()) return {true, false, EMSGSIZE};
    if (sender.nl_pid != 0) return {};
    const std::span<const std::byte> packet(_packet.data(), static_cast<std::size_t>(size));
    return readRouteMessages(
        packet, number, [this](int index) { return interfaceName(index); }, routes);
  }

  // Asked once for each number, since thousands of routes share few interfaces.
  const std::string& interfaceName(int index) {
    const auto [known, isNew] = _interfaces.try_emplace(index);
    std::array<char, IF_NAMESIZE> name{};
    const bool isAsked = isNew && index > 0;
    if (isAsked && if_indextoname(static_cast<unsigned>(index), name.data()) != nullptr) known->second = name.data();
    return known->second;
  }

  const int _socket;
  int _error = 0;
  std::unordered_map<int, std::string> _interfaces;
  std::array<std::byte, kPacketSize> _packet{};
};

}  // namespace

int askForRoutes(LinuxRouteEntries& routes) {
  RouteSocket socket;
  LinuxRouteAnswer answer;
  for (int attempt = 1; attempt <= kAttempts; ++attempt) {
    routes.clear();
    answer = socket.ask(static_cast<QORuint32>(attempt), routes);
    if (answer.error != 0 || !answer.isInterrupted) break;
  }
  if (answer.error != 0) routes.clear();
  if (answer.error == 0 && answer.isInterrupted) warn("The routes changed while they were read: some may be missing");
  return answer.error;
}
