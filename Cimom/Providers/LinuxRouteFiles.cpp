// The kernel's tables "route" (IPv4, numbers of its own byte order) and
// "ipv6_route" (digits of the addresses in their order, and the routes to this
// machine's own addresses and to groups of machines among them, which are left out).
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxRouteFiles.h"

#include <arpa/inet.h>
#include <net/route.h>

#include <array>
#include <bit>
#include <cerrno>
#include <charconv>
#include <sstream>
#include <string_view>
#include <utility>

#include "Cimom/Providers/LinuxValues.h"

namespace {

// Flags of IPv6 that the C library's headers do not name.
constexpr QORuint32 kLocal = 0x80000000;
constexpr QORuint32 kAnycast = 0x00100000;

bool readHex(std::string_view digits, QORuint32& number) {
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
  return error == std::errc() && end == digits.data() + digits.size();
}

// Nothing for digits that are no address.
std::string address4(std::string_view digits) {
  QORuint32 number = 0;
  std::array<char, INET_ADDRSTRLEN> text{};
  const bool isNumber = digits.size() == 8 && readHex(digits, number);
  return isNumber && inet_ntop(AF_INET, &number, text.data(), text.size()) != nullptr ? text.data() : "";
}
std::string address6(std::string_view digits) {
  std::array<unsigned char, 16> bytes{};
  if (digits.size() != bytes.size() * 2) return {};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    QORuint32 byte = 0;
    if (!readHex(digits.substr(i * 2, 2), byte)) return {};
    bytes[i] = static_cast<unsigned char>(byte);
  }
  std::array<char, INET6_ADDRSTRLEN> text{};
  return inet_ntop(AF_INET6, bytes.data(), text.data(), text.size()) == nullptr ? "" : text.data();
}

// The columns are interface, destination, gateway, flags, two counters, metric, mask, and some that are not read. False
// for the heading, and for a line that is no route.
bool readVersion4(const std::string& line, LinuxRouteEntry& route) {
  std::istringstream words(line);
  std::string destination;
  std::string gateway;
  std::string digits;
  std::string mask;
  std::string counter;
  words >> route.interface >> destination >> gateway >> digits >> counter >> counter >> route.metric >> mask;
  QORuint32 flags = 0;
  QORuint32 bits = 0;
  if (!words || !readHex(digits, flags) || !readHex(mask, bits)) return false;
  if (route.interface == "*") route.interface.clear();
  route.destination = address4(destination);
  route.prefixLength = static_cast<unsigned>(std::popcount(bits));
  route.table = LinuxRouteEntry::kMainTable;
  route.isRejected = (flags & RTF_REJECT) != 0;
  if ((flags & RTF_GATEWAY) != 0) route.gateway = address4(gateway);
  return !route.destination.empty();
}

// The columns are destination, its length, source, its length, gateway, metric, two counters, flags, interface; all
// numbers are in hexadecimal digits. False for a line that is no route.
bool readVersion6(const std::string& line, LinuxRouteEntry& route) {
  std::istringstream words(line);
  std::string destination;
  std::string length;
  std::string source;
  std::string gateway;
  std::string metric;
  std::string digits;
  words >> destination >> length >> source >> source >> gateway >> metric >> source >> source >> digits >>
      route.interface;
  QORuint32 prefixLength = 0;
  QORuint32 flags = 0;
  if (!words || !readHex(length, prefixLength) || !readHex(metric, route.metric) || !readHex(digits, flags)) {
    return false;
  }
  route.isVersion6 = true;
  route.destination = address6(destination);
  route.prefixLength = prefixLength;
  route.isRejected = (flags & RTF_REJECT) != 0;
  if ((flags & RTF_GATEWAY) != 0) route.gateway = address6(gateway);
  const bool isGroup = destination.starts_with("ff");
  // The kernel's own end of the table, behind all routes.
  const bool isNothing = prefixLength == 0 && route.isRejected && route.metric == ~QORuint32{0};
  return !route.destination.empty() && (flags & (kLocal | kAnycast)) == 0 && !isGroup && !isNothing;
}

}  // namespace

LinuxRouteEntries readRouteFiles(const std::string& folder) {
  LinuxRouteEntries routes;
  for (const bool isVersion6 : {false, true}) {
    const std::string path = folder + (isVersion6 ? "/ipv6_route" : "/route");
    const std::string content = readKernelTable(path);
    // A kernel without IPv6 has no such table.
    if (errno != 0 && (errno != ENOENT || !isVersion6)) warnUnreadable(path, errno);
    std::istringstream lines(content);
    for (std::string line; std::getline(lines, line);) {
      LinuxRouteEntry route;
      if (isVersion6 ? readVersion6(line, route) : readVersion4(line, route)) routes.push_back(std::move(route));
    }
  }
  return routes;
}
