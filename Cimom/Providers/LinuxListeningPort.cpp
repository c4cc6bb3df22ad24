// Ports on which programs listen.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxListeningPort.h"

#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxSocketView.h"

const char* const LinuxListeningPort::kClassName = "Linux_ListeningPort";

namespace {

using Port = LinuxSocketView;

LinuxValue readPortNumber(Port& port) { return uint32Value(port.socket.local.port); }

// The keys that tie a port to its system.
LinuxValue readClassName(Port&) { return textValue(LinuxListeningPort::kClassName); }
LinuxValue readSystemClassName(Port&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Port&) { return textValue(hostName()); }

constexpr LinuxProperty<Port> kProperties[] = {
    {"Name", readSocket<&LinuxSocketView::name>},
    {"Caption", readSocket<&LinuxSocketView::name>},
    {"ElementName", readSocket<&LinuxSocketView::name>},
    {"ProtocolIFType", readSocket<&LinuxSocketView::protocolType>},
    {"Protocol", readSocket<&LinuxSocketView::protocol>},
    {"LocalAddress", readSocket<&LinuxSocketView::localAddress>},
    {"PortNumber", readPortNumber},
    {"IsIPv6", readSocket<&LinuxSocketView::isVersion6>},
    {"UserNumber", readSocket<&LinuxSocketView::userNumber>},
    {"ProcessID", readSocket<&LinuxSocketView::process>},
    {"ProcessName", readSocket<&LinuxSocketView::processName>},
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

}  // namespace

void LinuxListeningPort::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Port>>(request, kProperties);
  const QORString wanted = wantedKey(request, "Name");
  const LinuxSocketEntries sockets = readSockets(LinuxSocketChoice::Waiting);
  LinuxSocketSurroundings around(sockets);
  for (const LinuxSocketEntry& socket : sockets) {
    Port port{socket, around};
    if (wanted.isNull() || wanted == socket.name.c_str()) emitInstance(port, properties, emit);
  }
}
