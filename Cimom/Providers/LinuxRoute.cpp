// What class Linux_Route says of each route, and the names by which they are told apart.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxRoute.h"

#include <arpa/inet.h>

#include <array>
#include <limits>
#include <system_error>
#include <unordered_map>

#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxRouteFiles.h"

const char* const LinuxRoute::kClassName = "Linux_Route";

namespace {

// The route that is being read.
struct Route {
  const LinuxRouteEntry& entry;
  const std::string& name;
};

LinuxValue readName(Route& route) { return textValue(route.name); }
LinuxValue readDestination(Route& route) { return textValue(route.entry.destination); }
LinuxValue readPrefixLength(Route& route) { return uint8Value(static_cast<QORuint8>(route.entry.prefixLength)); }
LinuxValue readGateway(Route& route) { return textOrNull(route.entry.gateway.c_str()); }
LinuxValue readInterface(Route& route) { return textOrNull(route.entry.interface.c_str()); }
LinuxValue readMetric(Route& route) { return uint32Value(route.entry.metric); }
LinuxValue readIsDefault(Route& route) { return booleanValue(route.entry.prefixLength == 0); }
LinuxValue readIsRejected(Route& route) { return booleanValue(route.entry.isRejected); }
LinuxValue numberOrNull(QORuint32 number) { return number == 0 ? LinuxValue() : uint32Value(number); }
LinuxValue readTable(Route& route) { return numberOrNull(route.entry.table); }
LinuxValue readWeight(Route& route) { return numberOrNull(route.entry.weight); }
// As the CIM schema counts them: IPv4 1, IPv6 2.
LinuxValue readAddressType(Route& route) { return uint16Value(route.entry.isVersion6 ? 2 : 1); }
// The CIM schema has less room than the kernel.
LinuxValue readRouteMetric(Route& route) {
  const bool fits = route.entry.metric <= std::numeric_limits<QORuint16>::max();
  return fits ? uint16Value(static_cast<QORuint16>(route.entry.metric)) : LinuxValue();
}
LinuxValue readMask(Route& route) {
  const unsigned length = route.entry.prefixLength;
  if (route.entry.isVersion6) return {};
  const QORuint32 mask = length == 0 || length > 32 ? 0 : htonl(~QORuint32{0} << (32 - length));
  std::array<char, INET_ADDRSTRLEN> text{};
  return textOrNull(inet_ntop(AF_INET, &mask, text.data(), text.size()));
}

constexpr LinuxProperty<Route> kRouteProperties[] = {
    {"InstanceID", readName},         {"Caption", readName},
    {"ElementName", readName},        {"DestinationAddress", readDestination},
    {"DestinationMask", readMask},    {"PrefixLength", readPrefixLength},
    {"AddressType", readAddressType}, {"RouteMetric", readRouteMetric},
    {"Metric", readMetric},           {"Gateway", readGateway},
    {"InterfaceName", readInterface}, {"IsDefault", readIsDefault},
    {"IsRejected", readIsRejected},   {"TableNumber", readTable},
    {"Weight", readWeight},
};

// "0.0.0.0/0 via 10.0.0.1 dev eth0 metric 100", and " table 7" where it is not the main one.
std::string nameOf(const LinuxRouteEntry& route) {
  std::string name = route.destination + '/' + std::to_string(route.prefixLength);
  if (!route.gateway.empty()) name += " via " + route.gateway;
  name += " dev " + (route.interface.empty() ? "*" : route.interface) + " metric " + std::to_string(route.metric);
  const bool isInOther = route.table != 0 && route.table != LinuxRouteEntry::kMainTable;
  return isInOther ? name + " table " + std::to_string(route.table) : name;
}

}  // namespace

LinuxRouteEntries LinuxRoute::routes() const {
  LinuxRouteEntries all;
  const int error = _ask(all);
  if (error == 0) return all;
  warn("The kernel does not list its routes: " + std::generic_category().message(error) + "; " + _folder +
       " has those of IPv4 of the main table alone, each with its first hop, and those of IPv6 without their tables");
  return readRouteFiles(_folder);
}

void LinuxRoute::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Route>>(request, kRouteProperties);
  const QORString wanted = wantedKey(request, "InstanceID");
  std::unordered_map<std::string, int> occurrences;
  for (const LinuxRouteEntry& entry : routes()) {
    std::string name = nameOf(entry);
    if (const int count = ++occurrences[name]; count > 1) name += '#' + std::to_string(count);
    Route route{entry, name};
    if (wanted.isNull() || wanted == name.c_str()) emitInstance(route, properties, emit);
  }
}
