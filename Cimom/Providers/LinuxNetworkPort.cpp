// Network interfaces: the kernel's files for each, addresses through getifaddrs.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxNetworkPort.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/CQoriValue.h"

const char* const LinuxNetworkPort::kClassName = "Linux_NetworkPort";

namespace {

struct ReleaseAddresses {
  void operator()(ifaddrs* addresses) const noexcept { freeifaddrs(addresses); }
};
using Addresses = std::unique_ptr<ifaddrs, ReleaseAddresses>;

// The interface that is being read.
struct NetworkPort {
  std::string name;
  const ifaddrs* addresses;  // of all interfaces
  unsigned flags = 0;
};

// The line in the kernel's file of that name for the interface; empty when there is none.
std::string kernelText(const NetworkPort& port, const char* file) {
  return readLine("/sys/class/net/" + port.name + "/" + file);
}

std::optional<QORuint64> kernelNumber(const NetworkPort& port, const char* file) {
  const QORString text(kernelText(port, file));
  // An interface that is down reports a speed of -1.
  if (!text.isNumeric() || text[0] == '-') return std::nullopt;
  return text.atoui64();
}

LinuxValue counter(const NetworkPort& port, const char* file) {
  const std::optional<QORuint64> number = kernelNumber(port, file);
  return number ? uint64Value(*number) : LinuxValue();
}

LinuxValue readName(NetworkPort& port) { return textValue(port.name); }
LinuxValue readHardwareAddress(NetworkPort& port) { return textOrNull(kernelText(port, "address").c_str()); }
LinuxValue readState(NetworkPort& port) { return textOrNull(kernelText(port, "operstate").c_str()); }
LinuxValue readIsUp(NetworkPort& port) { return booleanValue((port.flags & IFF_UP) != 0); }
LinuxValue readIsLoopback(NetworkPort& port) { return booleanValue((port.flags & IFF_LOOPBACK) != 0); }
LinuxValue readMtu(NetworkPort& port) { return counter(port, "mtu"); }
LinuxValue readBytesReceived(NetworkPort& port) { return counter(port, "statistics/rx_bytes"); }
LinuxValue readBytesTransmitted(NetworkPort& port) { return counter(port, "statistics/tx_bytes"); }
LinuxValue readPacketsReceived(NetworkPort& port) { return counter(port, "statistics/rx_packets"); }
LinuxValue readPacketsTransmitted(NetworkPort& port) { return counter(port, "statistics/tx_packets"); }
LinuxValue readErrors(NetworkPort& port) {
  const std::optional<QORuint64> received = kernelNumber(port, "statistics/rx_errors");
  const std::optional<QORuint64> transmitted = kernelNumber(port, "statistics/tx_errors");
  return received && transmitted ? uint64Value(*received + *transmitted) : LinuxValue();
}
// The kernel counts megabits.
LinuxValue readSpeed(NetworkPort& port) {
  const std::optional<QORuint64> megabits = kernelNumber(port, "speed");
  return megabits ? uint64Value(*megabits * 1000000) : LinuxValue();
}

std::string addressText(const sockaddr* address) {
  std::array<char, INET6_ADDRSTRLEN> text{};
  const void* source = nullptr;
  if (address->sa_family == AF_INET) source = &reinterpret_cast<const sockaddr_in*>(address)->sin_addr;
  if (address->sa_family == AF_INET6) source = &reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr;
  if (source == nullptr) return {};
  return inet_ntop(address->sa_family, source, text.data(), text.size()) == nullptr ? "" : text.data();
}
// How many leading bits of an address a mask keeps.
QORuint8 prefixLength(const sockaddr* mask) {
  const std::size_t length = mask->sa_family == AF_INET ? sizeof(in_addr) : sizeof(in6_addr);
  std::array<unsigned char, sizeof(in6_addr)> bytes{};
  const void* const source = mask->sa_family == AF_INET
                                 ? static_cast<const void*>(&reinterpret_cast<const sockaddr_in*>(mask)->sin_addr)
                                 : static_cast<const void*>(&reinterpret_cast<const sockaddr_in6*>(mask)->sin6_addr);
  std::memcpy(bytes.data(), source, length);
  int bits = 0;
  for (std::size_t i = 0; i < length; ++i) bits += std::popcount(bytes[i]);
  return static_cast<QORuint8>(bits);
}

// What `read` tells of each of the port's addresses, in one order.
template <class Read>
LinuxValue readOfAddresses(NetworkPort& port, const QORSmrPtr<IQoriType>& type, Read read) {
  QORSmrPtr<IQoriValue::List> elements = new IQoriValue::List();
  for (const ifaddrs* entry = port.addresses; entry != nullptr; entry = entry->ifa_next) {
    if (entry->ifa_addr == nullptr || port.name != entry->ifa_name) continue;
    const std::string text = addressText(entry->ifa_addr);
    if (!text.empty()) elements->append(read(*entry, text));
  }
  return new CQoriValue(elements, type);
}
LinuxValue readAddresses(NetworkPort& port) {
  return readOfAddresses(port, CQoriType::string,
                         [](const ifaddrs&, const std::string& text) { return textValue(text); });
}
LinuxValue readPrefixLengths(NetworkPort& port) {
  return readOfAddresses(port, CQoriType::uint8, [](const ifaddrs& entry, const std::string&) {
    return entry.ifa_netmask == nullptr ? LinuxValue() : uint8Value(prefixLength(entry.ifa_netmask));
  });
}

// The keys that tie an interface to its system in fuller schemas.
LinuxValue readClassName(NetworkPort&) { return textValue(LinuxNetworkPort::kClassName); }
LinuxValue readSystemClassName(NetworkPort&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(NetworkPort&) { return textValue(hostName()); }

constexpr LinuxProperty<NetworkPort> kNetworkPortProperties[] = {
    {"DeviceID", readName},
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"PermanentAddress", readHardwareAddress},
    {"NetworkAddresses", readAddresses},
    {"PrefixLengths", readPrefixLengths},
    {"Speed", readSpeed},
    {"ActiveMaximumTransmissionUnit", readMtu},
    {"State", readState},
    {"IsUp", readIsUp},
    {"IsLoopback", readIsLoopback},
    {"BytesReceived", readBytesReceived},
    {"BytesTransmitted", readBytesTransmitted},
    {"PacketsReceived", readPacketsReceived},
    {"PacketsTransmitted", readPacketsTransmitted},
    {"Errors", readErrors},
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

// Logs where the kernel's files are missing and properties read from them are asked for; the others come from
// getifaddrs.
void checkKernelFiles(const InstanceProvider::Request& request) {
  constexpr const char* kFolder = "/sys/class/net";
  constexpr const char* kRead[] = {"PermanentAddress",
                                   "Speed",
                                   "ActiveMaximumTransmissionUnit",
                                   "State",
                                   "BytesReceived",
                                   "BytesTransmitted",
                                   "PacketsReceived",
                                   "PacketsTransmitted",
                                   "Errors"};
  const bool needs =
      std::any_of(std::begin(kRead), std::end(kRead), [&](const char* name) { return request.needs(name); });
  if (needs && access(kFolder, R_OK) != 0) warnUnreadable(kFolder, errno);
}

// Nothing, with errno set, where they cannot be read; a null pointer where there is none.
std::optional<Addresses> readAllAddresses() {
  ifaddrs* addresses = nullptr;
  if (getifaddrs(&addresses) != 0) return std::nullopt;
  return Addresses(addresses);
}

[[noreturn]] void raisePortsUnreadable(int error) {
  logUnreadable("the network interfaces", error);
  throw CQoriProviderException(LinuxNetworkPort::kClassName, "The network interfaces cannot be listed",
                               InstanceProvider::kUnreadable);
}

}  // namespace

void LinuxNetworkPort::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<NetworkPort>>(request, kNetworkPortProperties);
  const QORString wanted = wantedKey(request, "DeviceID");
  const std::optional<Addresses> addresses = readAllAddresses();
  if (!addresses) raisePortsUnreadable(errno);
  checkKernelFiles(request);
  std::map<std::string, unsigned> flags;
  for (const ifaddrs* entry = addresses->get(); entry != nullptr; entry = entry->ifa_next) {
    flags.emplace(entry->ifa_name, entry->ifa_flags);
  }
  for (const auto& [name, portFlags] : flags) {
    NetworkPort port{name, addresses->get(), portFlags};
    if (wanted.isNull() || wanted == name.c_str()) emitInstance(port, properties, emit);
  }
}

std::optional<std::unordered_set<std::string>> LinuxNetworkPort::ownAddresses() {
  const std::optional<Addresses> addresses = readAllAddresses();
  if (!addresses) return std::nullopt;
  std::unordered_set<std::string> texts;
  for (const ifaddrs* entry = addresses->get(); entry != nullptr; entry = entry->ifa_next) {
    if (entry->ifa_addr != nullptr) texts.insert(addressText(entry->ifa_addr));
  }
  return texts;
}
