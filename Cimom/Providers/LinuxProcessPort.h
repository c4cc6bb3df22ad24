// On which ports a process listens: association Linux_ProcessPort.
// Tested by tests/unit/Providers/LinuxAssociationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPROCESSPORT_H
#define QORQL_PROVIDERS_LINUXPROCESSPORT_H

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per process and port; a socket that several processes share has
// several. Processes whose open files the caller may not see have none.
// Stateless; several threads may enumerate at once.
class LinuxProcessPort : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when the kernel shows no sockets.
  void enumerate(const Request& request, const Emit& emit) override;
};

#endif
