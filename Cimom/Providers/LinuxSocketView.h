// One socket as the instances of the classes of sockets show it.
// Tested by tests/unit/Providers/LinuxSocketsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXSOCKETVIEW_H
#define QORQL_PROVIDERS_LINUXSOCKETVIEW_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <unordered_map>
#include <vector>

#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxSockets.h"
#include "Cimom/Providers/LinuxValues.h"

// What the sockets of one enumeration share; read when the first of them needs it. BORROWS the sockets.
class LinuxSocketSurroundings {
 public:
  explicit LinuxSocketSurroundings(const LinuxSocketEntries& sockets) : _sockets(sockets) {}

  // The process that holds the socket, of several the first; 0 for none that can be seen.
  int processOf(const LinuxSocketEntry& socket);

 private:
  const LinuxSocketEntries& _sockets;
  std::unordered_map<QORuint64, std::vector<int>> _holders;
  bool _hasHolders = false;
};

// The socket that is being read. BORROWS both.
struct LinuxSocketView {
  const LinuxSocketEntry& socket;
  LinuxSocketSurroundings& around;

  // What both classes tell of a socket.
  LinuxValue name() const { return textValue(socket.name); }
  LinuxValue protocol() const { return textValue(socket.protocol); }
  LinuxValue localAddress() const { return textValue(socket.local.address); }
  LinuxValue isVersion6() const { return booleanValue(socket.isVersion6); }
  LinuxValue userNumber() const { return uint32Value(socket.user); }
  LinuxValue protocolType() const;
  LinuxValue process() const;
  LinuxValue processName() const;
};

// Reads a property, of the view itself or of what a class adds to it, as one of the operations tells it.
template <LinuxValue (LinuxSocketView::*Tell)() const, class Socket>
LinuxValue readSocket(Socket& socket) {
  const LinuxSocketView& view = socket;
  return (view.*Tell)();
}

// What a class of sockets tells by properties of its own, and behind it what all such classes tell.
template <class Socket, std::size_t N>
constexpr auto withSocketProperties(const LinuxProperty<Socket> (&own)[N]) {
  using View = LinuxSocketView;
  constexpr LinuxProperty<Socket> kShared[] = {
      {"Name", readSocket<&View::name>},
      {"Caption", readSocket<&View::name>},
      {"ElementName", readSocket<&View::name>},
      {"ProtocolIFType", readSocket<&View::protocolType>},
      {"Protocol", readSocket<&View::protocol>},
      {"LocalAddress", readSocket<&View::localAddress>},
      {"IsIPv6", readSocket<&View::isVersion6>},
      {"UserNumber", readSocket<&View::userNumber>},
      {"ProcessID", readSocket<&View::process>},
      {"ProcessName", readSocket<&View::processName>},
      {"SystemCreationClassName", [](Socket&) { return textValue(kLinuxComputerSystem); }},
      {"SystemName", [](Socket&) { return textValue(hostName()); }},
  };
  std::array<LinuxProperty<Socket>, N + std::size(kShared)> all{};
  std::copy(std::begin(kShared), std::end(kShared), std::copy(std::begin(own), std::end(own), all.begin()));
  return all;
}

#endif
