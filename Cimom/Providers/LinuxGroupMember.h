// Which users are in a group: association Linux_GroupMember.
// Tested by tests/unit/Providers/LinuxAssociationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXGROUPMEMBER_H
#define QORQL_PROVIDERS_LINUXGROUPMEMBER_H

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per group and member, the users whose primary group it is among
// them. Several threads may enumerate at once; they wait for one another.
class LinuxGroupMember : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when users or groups cannot be read.
  void enumerate(const Request& request, const Emit& emit) override;
};

#endif
