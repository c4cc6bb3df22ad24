// Routes: the kernel's tables "route" (IPv4, numbers of its own byte order) and
// "ipv6_route" (digits of the addresses in their order, and the routes to this
// machine's own addresses and to groups of machines among them, which are left out).
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxRoute.h"

#include <arpa/inet.h>
#include <net/route.h>

#include <array>
#include <bit>
#include <cerrno>
#include <charconv>
#include <limits>
#include <sstream>
#include <unordered_map>

#include "Cimom/Providers/LinuxProperty.h"

const char* const LinuxRoute::kClassName = "Linux_Route";

namespace {

// Flags of IPv6 that the C library's headers do not name.
constexpr QORuint32 kLocal = 0x80000000;
constexpr QORuint32 kAnycast = 0x00100000;

// The route that is being read.
struct Route {
  bool isVersion6 = false;
  std::string destination;
  unsigned prefixLength = 0;
  std::string gateway;  // empty: the other end of the interface is the destination
  QORuint32 flags = 0;
  QORuint32 metric = 0;
  std::string interface;
  std::string name{};
};

LinuxValue readName(Route& route) { return textValue(route.name); }
LinuxValue readDestination(Route& route) { return textValue(route.destination); }
LinuxValue readPrefixLength(Route& route) { return uint8Value(static_cast<QORuint8>(route.prefixLength)); }
LinuxValue readGateway(Route& route) { return textOrNull(route.gateway.c_str()); }
LinuxValue readInterface(Route& route) { return route.interface == "*" ? LinuxValue() : textValue(route.interface); }
LinuxValue readMetric(Route& route) { return uint32Value(route.metric); }
LinuxValue readIsDefault(Route& route) { return booleanValue(route.prefixLength == 0); }
LinuxValue readIsRejected(Route& route) { return booleanValue((route.flags & RTF_REJECT) != 0); }
// As the CIM schema counts them: IPv4 1, IPv6 2.
LinuxValue readAddressType(Route& route) { return uint16Value(route.isVersion6 ? 2 : 1); }
// The CIM schema has less room than the kernel.
LinuxValue readRouteMetric(Route& route) {
  const bool fits = route.metric <= std::numeric_limits<QORuint16>::max();
  return fits ? uint16Value(static_cast<QORuint16>(route.metric)) : LinuxValue();
}
LinuxValue readMask(Route& route) {
  if (route.isVersion6) return {};
  const QORuint32 mask = route.prefixLength == 0 ? 0 : htonl(~QORuint32{0} << (32 - route.prefixLength));
  std::array<char, INET_ADDRSTRLEN> text{};
  return textOrNull(inet_ntop(AF_INET, &mask, text.data(), text.size()));
}

constexpr LinuxProperty<Route> kProperties[] = {
    {"InstanceID", readName},         {"Caption", readName},
    {"ElementName", readName},        {"DestinationAddress", readDestination},
    {"DestinationMask", readMask},    {"PrefixLength", readPrefixLength},
    {"AddressType", readAddressType}, {"RouteMetric", readRouteMetric},
    {"Metric", readMetric},           {"Gateway", readGateway},
    {"InterfaceName", readInterface}, {"IsDefault", readIsDefault},
    {"IsRejected", readIsRejected},
};

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
bool readVersion4(const std::string& line, Route& route) {
  std::istringstream words(line);
  std::string destination;
  std::string gateway;
  std::string flags;
  std::string mask;
  std::string counter;
  words >> route.interface >> destination >> gateway >> flags >> counter >> counter >> route.metric >> mask;
  QORuint32 bits = 0;
  if (!words || !readHex(flags, route.flags) || !readHex(mask, bits)) return false;
  route.destination = address4(destination);
  route.prefixLength = static_cast<unsigned>(std::popcount(bits));
  if ((route.flags & RTF_GATEWAY) != 0) route.gateway = address4(gateway);
  return !route.destination.empty();
}

// The columns are destination, its length, source, its length, gateway, metric, two counters, flags, interface; all
// numbers are in hexadecimal digits. False for a line that is no route.
bool readVersion6(const std::string& line, Route& route) {
  std::istringstream words(line);
  std::string destination;
  std::string length;
  std::string source;
  std::string gateway;
  std::string metric;
  std::string flags;
  words >> destination >> length >> source >> source >> gateway >> metric >> source >> source >> flags >>
      route.interface;
  QORuint32 prefixLength = 0;
  if (!words || !readHex(length, prefixLength) || !readHex(metric, route.metric) || !readHex(flags, route.flags)) {
    return false;
  }
  route.isVersion6 = true;
  route.destination = address6(destination);
  route.prefixLength = prefixLength;
  if ((route.flags & RTF_GATEWAY) != 0) route.gateway = address6(gateway);
  const bool isGroup = destination.starts_with("ff");
  // The kernel's own end of the table, behind all routes.
  const bool isNothing = prefixLength == 0 && (route.flags & RTF_REJECT) != 0 && route.metric == ~QORuint32{0};
  return !route.destination.empty() && (route.flags & (kLocal | kAnycast)) == 0 && !isGroup && !isNothing;
}

// "0.0.0.0/0 via 10.0.0.1 dev eth0 metric 100".
std::string nameOf(const Route& route) {
  std::string name = route.destination + '/' + std::to_string(route.prefixLength);
  if (!route.gateway.empty()) name += " via " + route.gateway;
  return name + " dev " + route.interface + " metric " + std::to_string(route.metric);
}

}  // namespace

void LinuxRoute::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Route>>(request, kProperties);
  const QORString wanted = wantedKey(request, "InstanceID");
  std::unordered_map<std::string, int> occurrences;
  for (const bool isVersion6 : {false, true}) {
    const std::string path = _folder + (isVersion6 ? "/ipv6_route" : "/route");
    const std::string content = readKernelTable(path);
    // A kernel without IPv6 has no such table.
    if (errno != 0 && (errno != ENOENT || !isVersion6)) warnUnreadable(path, errno);
    std::istringstream lines(content);
    for (std::string line; std::getline(lines, line);) {
      Route route;
      if (!(isVersion6 ? readVersion6(line, route) : readVersion4(line, route))) continue;
      route.name = nameOf(route);
      if (const int count = ++occurrences[route.name]; count > 1) route.name += '#' + std::to_string(count);
      if (wanted.isNull() || wanted == route.name.c_str()) emitInstance(route, properties, emit);
    }
  }
}
