// Users, as the system's user database lists them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxUser.h"

#include <cerrno>
#include <map>
#include <optional>

#include "Cimom/Providers/LinuxAccounts.h"
#include "Cimom/Providers/LinuxProcess.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "cimom/CQoriProviderException.h"

const char* const LinuxUser::kClassName = "Linux_User";

namespace {

using Shares = std::map<uid_t, LinuxProcess::Share>;

// The user who is being read, and what the processes of all users take, which the first that needs it reads.
struct Account : LinuxAccount {
  std::optional<Shares>& shares;
};

LinuxValue readName(Account& account) { return textValue(account.name); }
LinuxValue readUserId(Account& account) { return textValue(std::to_string(account.number)); }
LinuxValue readUserNumber(Account& account) { return uint32Value(account.number); }
LinuxValue readGroupNumber(Account& account) { return uint32Value(account.group); }
LinuxValue readFullName(Account& account) {
  return textOrNull(account.information.substr(0, account.information.find(',')).c_str());
}
LinuxValue readHomeFolder(Account& account) { return textOrNull(account.homeFolder.c_str()); }
// Where the database names none, the user logs in with this one.
LinuxValue readShell(Account& account) { return textValue(account.shell.empty() ? "/bin/sh" : account.shell); }

// What the processes of the user take: zero processes and bytes for a user who has none. Null where the process table
// cannot be read.
const LinuxProcess::Share* shareOf(Account& account) {
  if (!account.shares) {
    try {
      account.shares = LinuxProcess::sharesOfUsers();
    } catch (const CQoriProviderException&) {
      warnUnreadable("/proc", ENOENT);
      account.shares.emplace();
    }
  }
  if (account.shares->empty()) return nullptr;
  return &(*account.shares)[account.number];
}
LinuxValue readProcessCount(Account& account) {
  const LinuxProcess::Share* const share = shareOf(account);
  return share == nullptr ? LinuxValue() : uint32Value(share->processes);
}
LinuxValue readWorkingSetSize(Account& account) {
  const LinuxProcess::Share* const share = shareOf(account);
  return share == nullptr ? LinuxValue() : uint64Value(share->memory);
}

// The keys that tie a user to its system.
LinuxValue readClassName(Account&) { return textValue(LinuxUser::kClassName); }
LinuxValue readSystemClassName(Account&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Account&) { return textValue(hostName()); }

constexpr LinuxProperty<Account> kUserProperties[] = {
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"UserID", readUserId},
    {"UserNumber", readUserNumber},
    {"GroupNumber", readGroupNumber},
    {"FullName", readFullName},
    {"HomeFolder", readHomeFolder},
    {"Shell", readShell},
    {"ProcessCount", readProcessCount},
    {"WorkingSetSize", readWorkingSetSize},
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

}  // namespace

void LinuxUser::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Account>>(request, kUserProperties);
  const QORString wanted = wantedKey(request, "Name");
  std::optional<Shares> shares;
  for (const LinuxAccount& found : readAccounts()) {
    Account account{found, shares};
    if (wanted.isNull() || wanted == account.name.c_str()) emitInstance(account, properties, emit);
  }
}
