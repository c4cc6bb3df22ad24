// One socket as the instances of the classes of sockets show it.
// Tested by tests/unit/Providers/LinuxSocketsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXSOCKETVIEW_H
#define QORQL_PROVIDERS_LINUXSOCKETVIEW_H

#include <unordered_map>
#include <vector>

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

#endif
