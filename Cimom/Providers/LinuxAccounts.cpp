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

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxEntryReader.h"
#include "Cimom/Providers/LinuxValues.h"
#include "cimom/CQoriProviderException.h"

namespace {

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
  throw CQoriProviderException("Linux accounts", QORString(what) + " cannot be read", InstanceProvider::kUnreadable);
}

// A database of the C library and the functions that walk it.
template <class Entry>
struct Database {
  const char* what;
  const char* file;
  void (*open)();
  int (*read)(Entry*, char*, std::size_t, Entry**);
  void (*close)();
};

constexpr Database<passwd> kUsers{"The user database", "/etc/passwd", setpwent, getpwent_r, endpwent};
constexpr Database<group> kGroups{"The group database", "/etc/group", setgrent, getgrent_r, endgrent};

const char* nameOf(const passwd& entry) { return entry.pw_name; }
const char* nameOf(const group& entry) { return entry.gr_name; }

// Closes a database on every path.
struct Closing {
  void (*close)();
  ~Closing() { close(); }
};

// Hands over the entries, of several of one name the first.
template <class Entry, class Take>
void walk(const Database<Entry>& database, const Take& take) {
  const std::lock_guard<std::mutex> lock(databaseLock());
  std::unordered_set<std::string> names;
  database.open();
  const Closing closing{database.close};
  LinuxEntryReader<Entry> reader(database.read);
  while (const Entry* const entry = reader.next()) {
    if (names.insert(textOf(nameOf(*entry))).second) take(*entry);
  }
  checkEnd(database.what, database.file, reader.error(), names.empty());
}

}  // namespace

std::vector<LinuxAccount> readAccounts() {
  std::vector<LinuxAccount> accounts;
  walk(kUsers, [&](const passwd& entry) {
    accounts.push_back({textOf(entry.pw_name), entry.pw_uid, entry.pw_gid, textOf(entry.pw_gecos), textOf(entry.pw_dir),
                        textOf(entry.pw_shell)});
  });
  return accounts;
}

std::vector<LinuxAccountGroup> readAccountGroups() {
  std::vector<LinuxAccountGroup> groups;
  walk(kGroups, [&](const group& entry) {
    groups.push_back({textOf(entry.gr_name), entry.gr_gid, {}});
    for (char** member = entry.gr_mem; member != nullptr && *member != nullptr; ++member) {
      groups.back().members.emplace_back(*member);
    }
  });
  return groups;
}
