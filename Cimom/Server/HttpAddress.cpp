// Resolves addresses, and binds sockets to them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/HttpAddress.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <utility>

namespace {

constexpr int kBacklog = 128;

struct Parts {
  std::string host;
  std::string port;
};

bool isPort(std::string_view text) {
  unsigned port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  return error == std::errc() && end == text.data() + text.size() && port <= 65535;
}

Parts partsOf(std::string_view address) {
  const std::size_t colon = address.rfind(':');
  if (colon == std::string_view::npos) return {};
  std::string_view host = address.substr(0, colon);
  const bool isBracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
  if (isBracketed) host = host.substr(1, host.size() - 2);
  if (!isBracketed && host.find(':') != std::string_view::npos) return {};
  return {std::string(host), std::string(address.substr(colon + 1))};
}

[[noreturn]] void refuse(const std::string& address, const char* reason) {
  throw std::runtime_error("cannot listen at " + address + ": " + reason);
}

using Resolved = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

Resolved resolve(const std::string& address) {
  const Parts parts = partsOf(address);
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  addrinfo* found = nullptr;
  const int error = getaddrinfo(parts.host.c_str(), parts.port.c_str(), &hints, &found);
  if (error != 0) refuse(address, gai_strerror(error));
  return {found, &freeaddrinfo};
}

ListeningSocket listenAtOne(const addrinfo& where, const std::string& address) {
  ListeningSocket made(socket(where.ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const int yes = 1;
  const bool isDone =
      made.file() >= 0 && setsockopt(made.file(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) == 0 &&
      (where.ai_family != AF_INET6 || setsockopt(made.file(), IPPROTO_IPV6, IPV6_V6ONLY, &yes, sizeof yes) == 0) &&
      bind(made.file(), where.ai_addr, where.ai_addrlen) == 0 && listen(made.file(), kBacklog) == 0;
  if (!isDone) refuse(address, std::strerror(errno));
  return made;
}

// The socket's own address.
struct Bound {
  explicit Bound(int file) {
    socklen_t size = sizeof storage;
    getsockname(file, reinterpret_cast<sockaddr*>(&storage), &size);
  }
  const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&storage); }

  sockaddr_storage storage{};
};

}  // namespace

ListeningSocket::~ListeningSocket() {
  if (_file >= 0) close(_file);
}

int ListeningSocket::release() noexcept { return std::exchange(_file, -1); }

std::string ListeningSocket::address() const {
  const Bound bound(_file);
  const bool isSix = bound.storage.ss_family == AF_INET6;
  const in_port_t port = isSix ? reinterpret_cast<const sockaddr_in6*>(bound.get())->sin6_port
                               : reinterpret_cast<const sockaddr_in*>(bound.get())->sin_port;
  const std::string host = hostOf(bound.get());
  return (isSix ? '[' + host + ']' : host) + ':' + std::to_string(ntohs(port));
}

bool ListeningSocket::isLoopback() const {
  const Bound bound(_file);
  const std::string host = hostOf(bound.get());
  return host == "::1" || (bound.storage.ss_family == AF_INET && host.starts_with("127."));
}

std::vector<ListeningSocket> listenAt(const std::string& address) {
  const std::string fault = faultOfAddress(address);
  if (!fault.empty()) throw std::runtime_error(fault);
  const Resolved resolved = resolve(address);
  std::vector<ListeningSocket> sockets;
  for (const addrinfo* each = resolved.get(); each != nullptr; each = each->ai_next) {
    sockets.push_back(listenAtOne(*each, address));
  }
  return sockets;
}

std::string faultOfAddress(std::string_view address) {
  const Parts parts = partsOf(address);
  if (!parts.host.empty() && parts.host != "[]" && isPort(parts.port)) return {};
  return '\'' + std::string(address) + "' is not of the form ADDRESS:PORT, as in 127.0.0.1:5988 and [::1]:5988";
}

std::string hostOf(const sockaddr* address) {
  char text[INET6_ADDRSTRLEN] = "";
  const void* const host = address->sa_family == AF_INET6
                               ? static_cast<const void*>(&reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr)
                               : &reinterpret_cast<const sockaddr_in*>(address)->sin_addr;
  inet_ntop(address->sa_family, host, text, sizeof text);
  return text;
}
