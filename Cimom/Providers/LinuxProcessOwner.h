// Which user a process runs as: association Linux_ProcessOwner.
// Tested by tests/unit/Providers/LinuxAssociationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPROCESSOWNER_H
#define QORQL_PROVIDERS_LINUXPROCESSOWNER_H

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per process whose effective user is in the user database.
// Stateless; several threads may enumerate at once.
class LinuxProcessOwner : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when processes or users cannot be read.
  void enumerate(const Request& request, const Emit& emit) override;
};

#endif
