// The users and groups of the system's databases.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXACCOUNTS_H
#define QORQL_PROVIDERS_LINUXACCOUNTS_H

#include <sys/types.h>

#include <string>
#include <vector>

struct LinuxAccount {
  std::string name;
  uid_t number = 0;
  gid_t group = 0;
  std::string information;  // the full name and what else is kept with it, separated by commas
  std::string homeFolder;
  std::string shell;
};

struct LinuxAccountGroup {
  std::string name;
  gid_t number = 0;
  std::vector<std::string> members;  // without those whose primary group it is
};

// In the order of the databases; of several entries of one name the first, which
// is the one that programs find. Any thread may call; calls wait for one
// another. THROW CQoriProviderException when a database cannot be read.
std::vector<LinuxAccount> readAccounts();
std::vector<LinuxAccountGroup> readAccountGroups();

#endif
