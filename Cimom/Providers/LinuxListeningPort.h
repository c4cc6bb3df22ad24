// The ports on which programs listen: class Linux_ListeningPort.
// Tested by tests/unit/Providers/LinuxSocketsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXLISTENINGPORT_H
#define QORQL_PROVIDERS_LINUXLISTENINGPORT_H

#include "Cimom/Embedded/InstanceProvider.h"

// TCP sockets that listen and UDP sockets that take packets from anywhere, of
// the network that the caller's process sees. The process of a port is looked
// for only when it is asked for: that reads the open files of every process.
// Stateless; several threads may enumerate at once.
class LinuxListeningPort : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when the kernel shows no sockets.
  void enumerate(const Request& request, const Emit& emit) override;
};

#endif
