// One socket as the instances of the classes of sockets show it.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxSocketView.h"

#include <string_view>

#include "Cimom/Providers/LinuxProcessFiles.h"

int LinuxSocketSurroundings::processOf(const LinuxSocketEntry& socket) {
  if (socket.inode == 0) return 0;
  if (!_hasHolders) {
    _holders = readSocketHolders(_sockets);
    _hasHolders = true;
  }
  const std::vector<int>& pids = _holders[socket.inode];
  return pids.empty() ? 0 : pids.front();
}

// As the CIM schema counts them: TCP 4111, UDP 4112.
LinuxValue LinuxSocketView::protocolType() const {
  return uint16Value(std::string_view(socket.protocol) == "tcp" ? 4111 : 4112);
}

LinuxValue LinuxSocketView::process() const {
  const int pid = around.processOf(socket);
  return pid == 0 ? LinuxValue() : uint32Value(static_cast<QORuint32>(pid));
}

LinuxValue LinuxSocketView::processName() const {
  const int pid = around.processOf(socket);
  return pid == 0 ? LinuxValue() : textOrNull(::processName(pid).c_str());
}
