// Ports on which programs listen.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxListeningPort.h"

#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxSocketView.h"

const char* const LinuxListeningPort::kClassName = "Linux_ListeningPort";

namespace {

using Port = LinuxSocketView;

LinuxValue readPortNumber(Port& port) { return uint32Value(port.socket.local.port); }

LinuxValue readClassName(Port&) { return textValue(LinuxListeningPort::kClassName); }

constexpr LinuxProperty<Port> kOwnPortProperties[] = {
    {"PortNumber", readPortNumber},
    {"CreationClassName", readClassName},
};
constexpr auto kListeningPortProperties = withSocketProperties(kOwnPortProperties);

}  // namespace

void LinuxListeningPort::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Port>>(request, kListeningPortProperties);
  const QORString wanted = wantedKey(request, "Name");
  const LinuxSocketEntries sockets = readSockets(LinuxSocketChoice::Waiting);
  LinuxSocketSurroundings around(sockets);
  for (const LinuxSocketEntry& socket : sockets) {
    Port port{socket, around};
    if (wanted.isNull() || wanted == socket.name.c_str()) emitInstance(port, properties, emit);
  }
}
