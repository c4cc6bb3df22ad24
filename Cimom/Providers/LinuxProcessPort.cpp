// Processes and the ports on which they listen.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxProcessPort.h"

#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxReferences.h"
#include "Cimom/Providers/LinuxSockets.h"

const char* const LinuxProcessPort::kClassName = "Linux_ProcessPort";

void LinuxProcessPort::enumerate(const Request& request, const Emit& emit) {
  const LinuxReferences references(request.nameSpace);
  const LinuxPairs pairs(request, emit, "Antecedent", "Dependent");
  const LinuxSocketEntries sockets = readSockets(LinuxSocketChoice::Waiting);
  const auto holders = readSocketHolders(sockets);
  for (const LinuxSocketEntry& socket : sockets) {
    const LinuxValue port = references.listeningPort(socket.name);
    for (const int pid : holders.at(socket.inode)) pairs.emit(references.process(pid), port);
  }
}
