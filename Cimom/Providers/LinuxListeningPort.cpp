// Ports on which programs listen.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxListeningPort.h"

#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxSocketView.h"

const char* const LinuxListeningPort::kClassName = "Linux_ListeningPort";

namespace {

using Port = LinuxSocketView;

LinuxValue readName(Port& port) { return port.name(); }
LinuxValue readProtocol(Port& port) { return port.protocol(); }
LinuxValue readAddress(Port& port) { return port.localAddress(); }
LinuxValue readPortNumber(Port& port) { return uint32Value(port.socket.local.port); }
LinuxValue readIsVersion6(Port& port) { return port.isVersion6(); }
LinuxValue readUserNumber(Port& port) { return port.userNumber(); }
LinuxValue readProtocolType(Port& port) { return port.protocolType(); }
LinuxValue readProcess(Port& port) { return port.process(); }
LinuxValue readProcessName(Port& port) { return port.processName(); }

// The keys that tie a port to its system.
LinuxValue readClassName(Port&) { return textValue(LinuxListeningPort::kClassName); }
LinuxValue readSystemClassName(Port&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Port&) { return textValue(hostName()); }

constexpr LinuxProperty<Port> kProperties[] = {
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"ProtocolIFType", readProtocolType},
    {"Protocol", readProtocol},
    {"LocalAddress", readAddress},
    {"PortNumber", readPortNumber},
    {"IsIPv6", readIsVersion6},
    {"UserNumber", readUserNumber},
    {"ProcessID", readProcess},
    {"ProcessName", readProcessName},
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
