// Ports on which programs listen.
#include "Cimom/Providers/LinuxListeningPort.h"

#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxSockets.h"

const char* const LinuxListeningPort::kClassName = "Linux_ListeningPort";

namespace {

// What the ports of one enumeration share; read when the first of them needs it.
struct Surroundings {
  const std::vector<LinuxSocket>& sockets;
  std::unordered_map<QORuint64, std::vector<int>> holders{};
  bool hasHolders = false;
};

// The port that is being read.
struct Port {
  const LinuxSocket& socket;
  Surroundings& around;
};

LinuxValue readName(Port& port) { return textValue(port.socket.name); }
LinuxValue readProtocol(Port& port) { return textValue(port.socket.protocol); }
LinuxValue readAddress(Port& port) { return textValue(port.socket.address); }
LinuxValue readPortNumber(Port& port) { return uint32Value(port.socket.port); }
LinuxValue readIsVersion6(Port& port) { return booleanValue(port.socket.isVersion6); }
LinuxValue readUserNumber(Port& port) { return uint32Value(port.socket.user); }
// As the CIM schema counts them: TCP 4111, UDP 4112.
LinuxValue readProtocolType(Port& port) {
  return uint16Value(std::string_view(port.socket.protocol) == "tcp" ? 4111 : 4112);
}
LinuxValue readProcess(Port& port) {
  if (!port.around.hasHolders) {
    port.around.holders = readSocketHolders(port.around.sockets);
    port.around.hasHolders = true;
  }
  const std::vector<int>& pids = port.around.holders[port.socket.inode];
  return pids.empty() ? LinuxValue() : uint32Value(static_cast<QORuint32>(pids.front()));
}

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
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

}  // namespace

void LinuxListeningPort::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Port>>(request, kProperties);
  const QORString wanted = wantedKey(request, "Name");
  const std::vector<LinuxSocket> sockets = readWaitingSockets();
  Surroundings around{sockets};
  for (const LinuxSocket& socket : sockets) {
    Port port{socket, around};
    if (wanted.isNull() || wanted == socket.name.c_str()) emitInstance(port, properties, emit);
  }
}
