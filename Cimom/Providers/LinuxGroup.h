// The groups that this machine knows: class Linux_Group.
// Tested by tests/unit/Providers/LinuxAccountsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXGROUP_H
#define QORQL_PROVIDERS_LINUXGROUP_H

#include "Cimom/Embedded/InstanceProvider.h"

// Whatever the system's group database lists, from files or from elsewhere.
// Several threads may enumerate at once; they wait for one another.
class LinuxGroup : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when the database cannot be read.
  void enumerate(const Request& request, const Emit& emit) override;
};

#endif
