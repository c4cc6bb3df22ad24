// The sockets of TCP and UDP of this machine: class Linux_Socket.
// Tested by tests/unit/Providers/LinuxSocketsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXSOCKET_H
#define QORQL_PROVIDERS_LINUXSOCKET_H

#include <string>
#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per socket in the kernel's tables, in their order, connections
// that have ended and are still remembered among them. Looks into the open files
// of the processes only when the request names the process. Several threads may
// enumerate at once.
class LinuxSocket : public InstanceProvider {
 public:
  static const char* const kClassName;

  // The folder that holds the tables.
  explicit LinuxSocket(std::string folder = "/proc/self/net") : _folder(std::move(folder)) {}

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when there is no table of sockets.
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  const std::string _folder;
};

#endif
