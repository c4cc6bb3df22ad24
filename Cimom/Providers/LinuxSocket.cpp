// Sockets of TCP and UDP.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxSocket.h"

#include <cerrno>
#include <optional>
#include <unordered_set>

#include "Cimom/Providers/LinuxNetworkPort.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxSocketView.h"

const char* const LinuxSocket::kClassName = "Linux_Socket";

namespace {

// The addresses of this machine, which the first that needs them reads; none where that fails, which is warned of once.
struct OwnAddresses {
  std::optional<std::unordered_set<std::string>> texts;
  bool isRead = false;
};

struct Socket : LinuxSocketView {
  OwnAddresses& ownAddresses;
};

// Null where they cannot be read.
const std::unordered_set<std::string>* ownAddressesOf(Socket& socket) {
  OwnAddresses& own = socket.ownAddresses;
  if (!own.isRead) {
    own = {LinuxNetworkPort::ownAddresses(), true};
    if (!own.texts) warnUnreadable("the addresses of this machine", errno);
  }
  return own.texts ? &*own.texts : nullptr;
}

LinuxValue readState(Socket& socket) { return textValue(socket.socket.stateName()); }
LinuxValue readLocalPort(Socket& socket) { return uint32Value(socket.socket.local.port); }
LinuxValue readRemoteAddress(Socket& socket) {
  return socket.socket.hasRemote() ? textValue(socket.socket.remote.address) : LinuxValue();
}
LinuxValue readRemotePort(Socket& socket) {
  return socket.socket.hasRemote() ? uint32Value(socket.socket.remote.port) : LinuxValue();
}

// The loopback has more addresses than its interface tells, and IPv6 shows those of IPv4 in its own form.
LinuxValue readIsRemote(Socket& socket) {
  if (!socket.socket.hasRemote()) return booleanValue(false);
  constexpr std::string_view kMapped = "::ffff:";
  std::string_view address = socket.socket.remote.address;
  if (address.starts_with(kMapped)) address.remove_prefix(kMapped.size());
  if (address.starts_with("127.") || address == "::1") return booleanValue(false);
  const std::unordered_set<std::string>* const own = ownAddressesOf(socket);
  return own == nullptr ? LinuxValue() : booleanValue(!own->contains(std::string(address)));
}

LinuxValue readClassName(Socket&) { return textValue(LinuxSocket::kClassName); }

constexpr LinuxProperty<Socket> kOwnSocketProperties[] = {
    {"State", readState},           {"LocalPort", readLocalPort}, {"RemoteAddress", readRemoteAddress},
    {"RemotePort", readRemotePort}, {"IsRemote", readIsRemote},   {"CreationClassName", readClassName},
};
constexpr auto kSocketProperties = withSocketProperties(kOwnSocketProperties);

}  // namespace

void LinuxSocket::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Socket>>(request, kSocketProperties);
  const QORString wanted = wantedKey(request, "Name");
  const LinuxSocketEntries sockets = readSockets(LinuxSocketChoice::All, _folder);
  LinuxSocketSurroundings around(sockets);
  OwnAddresses ownAddresses;
  for (const LinuxSocketEntry& entry : sockets) {
    Socket socket{{entry, around}, ownAddresses};
    if (wanted.isNull() || wanted == entry.name.c_str()) emitInstance(socket, properties, emit);
  }
}
