// Users, as the system's user database lists them.
#include "Cimom/Providers/LinuxUser.h"

#include "Cimom/Providers/LinuxAccounts.h"
#include "Cimom/Providers/LinuxProperty.h"

const char* const LinuxUser::kClassName = "Linux_User";

namespace {

using Account = const LinuxAccount;

LinuxValue readName(Account& account) { return textValue(account.name); }
LinuxValue readUserId(Account& account) { return textValue(std::to_string(account.number)); }
LinuxValue readUserNumber(Account& account) { return uint32Value(account.number); }
LinuxValue readGroupNumber(Account& account) { return uint32Value(account.group); }
LinuxValue readFullName(Account& account) {
  return textOrNull(account.information.substr(0, account.information.find(',')).c_str());
}
LinuxValue readHomeFolder(Account& account) { return textOrNull(account.homeFolder.c_str()); }
LinuxValue readShell(Account& account) { return textOrNull(account.shell.c_str()); }

// The keys that tie a user to its system.
LinuxValue readClassName(Account&) { return textValue(LinuxUser::kClassName); }
LinuxValue readSystemClassName(Account&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Account&) { return textValue(hostName()); }

constexpr LinuxProperty<Account> kProperties[] = {
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"UserID", readUserId},
    {"UserNumber", readUserNumber},
    {"GroupNumber", readGroupNumber},
    {"FullName", readFullName},
    {"HomeFolder", readHomeFolder},
    {"Shell", readShell},
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

}  // namespace

void LinuxUser::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Account>>(request, kProperties);
  const QORString wanted = wantedKey(request, "Name");
  for (Account& account : readAccounts()) {
    if (wanted.isNull() || wanted == account.name.c_str()) emitInstance(account, properties, emit);
  }
}
