// Processes and the users that they run as.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxProcessOwner.h"

#include <unordered_map>

#include "Cimom/Providers/LinuxAccounts.h"
#include "Cimom/Providers/LinuxProcess.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxReferences.h"

const char* const LinuxProcessOwner::kClassName = "Linux_ProcessOwner";

void LinuxProcessOwner::enumerate(const Request& request, const Emit& emit) {
  const LinuxReferences references(request.nameSpace);
  const LinuxPairs pairs(request, emit, "Antecedent", "Dependent");
  std::unordered_map<uid_t, LinuxValue> users;
  for (const LinuxAccount& account : readAccounts()) {
    if (!users.contains(account.number)) users.emplace(account.number, references.user(account.name));
  }
  for (const LinuxProcess::Owner& owner : LinuxProcess::owners()) {
    const auto user = users.find(owner.user);
    if (user != users.end()) pairs.emit(user->second, references.process(owner.process));
  }
}
