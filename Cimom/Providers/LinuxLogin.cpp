// Logins: the records of utmp. The file is read here, since the C library goes
// over it with one position for the whole process.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxLogin.h"

#include <paths.h>
#include <utmpx.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <unordered_set>

#include "Cimom/Providers/LinuxProperty.h"

const char* const LinuxLogin::kClassName = "Linux_Login";

std::string LinuxLogin::systemList() { return _PATH_UTMP; }

namespace {

// The login that is being read.
struct Login {
  utmpx record{};
  std::string name{};
};

// A field that is filled up with zeros, if at all.
template <std::size_t N>
std::string fieldText(const char (&field)[N]) {
  return {field, strnlen(field, N)};
}

LinuxValue readName(Login& login) { return textValue(login.name); }
LinuxValue readUser(Login& login) { return textValue(fieldText(login.record.ut_user)); }
LinuxValue readTerminal(Login& login) { return textOrNull(fieldText(login.record.ut_line).c_str()); }
LinuxValue readHost(Login& login) { return textOrNull(fieldText(login.record.ut_host).c_str()); }
LinuxValue readTime(Login& login) { return dateTimeValue(login.record.ut_tv.tv_sec, login.record.ut_tv.tv_usec); }
LinuxValue readProcess(Login& login) { return uint32Value(static_cast<QORuint32>(login.record.ut_pid)); }

// The keys that tie it to its system.
LinuxValue readClassName(Login&) { return textValue(LinuxLogin::kClassName); }
LinuxValue readSystemClassName(Login&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Login&) { return textValue(hostName()); }

constexpr LinuxProperty<Login> kLoginProperties[] = {
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"UserName", readUser},
    {"Terminal", readTerminal},
    {"RemoteHost", readHost},
    {"LoginTime", readTime},
    {"ProcessID", readProcess},
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

// Records of those who left without a word stay in the list.
bool isLoggedIn(const utmpx& record) {
  const bool isUser = record.ut_type == USER_PROCESS && record.ut_user[0] != '\0' && record.ut_pid > 0;
  return isUser && (kill(record.ut_pid, 0) == 0 || errno != ESRCH);
}

}  // namespace

void LinuxLogin::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Login>>(request, kLoginProperties);
  const QORString wanted = wantedKey(request, "Name");
  const std::string content = readSmallFile(_list);
  if (errno != 0) warnUnreadable(_list, errno);
  std::unordered_set<std::string> names;
  for (std::size_t at = 0; at + sizeof(utmpx) <= content.size(); at += sizeof(utmpx)) {
    Login login;
    std::memcpy(&login.record, content.data() + at, sizeof(utmpx));
    if (!isLoggedIn(login.record)) continue;
    login.name = fieldText(login.record.ut_user) + '@' + fieldText(login.record.ut_line);
    if (!names.insert(login.name).second) login.name += '#' + std::to_string(login.record.ut_pid);
    if (wanted.isNull() || wanted == login.name.c_str()) emitInstance(login, properties, emit);
  }
}
