// The users and groups of the system's databases. The C library iterates over them
// with one position for the whole process, hence the lock.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxAccounts.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <unordered_set>

#include "Cimom/Providers/LinuxValues.h"
#include "cimom/CQoriProviderException.h"

namespace {

constexpr QORuint32 kCimErrFailed = 1;

std::mutex& databaseLock() {
  static std::mutex lock;
  return lock;
}

std::string textOf(const char* text) { return text == nullptr ? "" : text; }

// THROWS unless the databases were read to their end. One of several that are asked may be
// absent; where none has an entry, the file that every system has gives the reason.
void checkEnd(const char* what, const char* file, int error, bool isEmpty) {
  const bool isMissing = isEmpty && access(file, R_OK) != 0;
  if (isMissing) error = errno;
  if (!isMissing && (error == 0 || error == ENOENT)) return;
  logUnreadable(what, error);
  throw CQoriProviderException("Linux accounts", QORString(what) + " cannot be read", kCimErrFailed);
}

// Closes a database on every path.
struct Closing {
  void (*close)();
  ~Closing() { close(); }
};

}  // namespace

std::vector<LinuxAccount> readAccounts() {
  const std::lock_guard<std::mutex> lock(databaseLock());
  std::vector<LinuxAccount> accounts;
  std::unordered_set<std::string> names;
  setpwent();
  const Closing closing{endpwent};
  for (;;) {
    errno = 0;
    const passwd* const entry = getpwent();  // NOLINT(concurrency-mt-unsafe): databaseLock is held
    if (entry == nullptr) break;
    if (!names.insert(textOf(entry->pw_name)).second) continue;
    accounts.push_back({textOf(entry->pw_name), entry->pw_uid, entry->pw_gid, textOf(entry->pw_gecos),
                        textOf(entry->pw_dir), textOf(entry->pw_shell)});
  }
  checkEnd("The user database", "/etc/passwd", errno, accounts.empty());
  return accounts;
}

std::vector<LinuxAccountGroup> readAccountGroups() {
  const std::lock_guard<std::mutex> lock(databaseLock());
  std::vector<LinuxAccountGroup> groups;
  std::unordered_set<std::string> names;
  setgrent();
  const Closing closing{endgrent};
  for (;;) {
    errno = 0;
    const group* const entry = getgrent();  // NOLINT(concurrency-mt-unsafe): databaseLock is held
    if (entry == nullptr) break;
    if (!names.insert(textOf(entry->gr_name)).second) continue;
    groups.push_back({textOf(entry->gr_name), entry->gr_gid, {}});
    for (char** member = entry->gr_mem; member != nullptr && *member != nullptr; ++member) {
      groups.back().members.emplace_back(*member);
    }
  }
  checkEnd("The group database", "/etc/group", errno, groups.empty());
  return groups;
}
