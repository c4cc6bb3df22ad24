// Groups and their members.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxGroupMember.h"

#include <algorithm>

#include "Cimom/Providers/LinuxAccounts.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxReferences.h"

const char* const LinuxGroupMember::kClassName = "Linux_GroupMember";

void LinuxGroupMember::enumerate(const Request& request, const Emit& emit) {
  const LinuxReferences references(request.nameSpace);
  const LinuxPairs pairs(request, emit, "Collection", "Member");
  const std::vector<LinuxAccount> accounts = readAccounts();
  for (const LinuxAccountGroup& group : readAccountGroups()) {
    const LinuxValue collection = references.group(group.name);
    for (const LinuxAccount& account : accounts) {
      const bool isListed = std::find(group.members.begin(), group.members.end(), account.name) != group.members.end();
      if (isListed || account.group == group.number) pairs.emit(collection, references.user(account.name));
    }
  }
}
