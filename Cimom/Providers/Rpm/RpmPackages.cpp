// Reads rpm's database of packages through librpm.
// Tested by tests/unit/Providers/LinuxRpmPackageTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <rpm/header.h>
#include <rpm/rpmdb.h>
#include <rpm/rpmlib.h>
#include <rpm/rpmlog.h>
#include <rpm/rpmmacro.h>
#include <rpm/rpmts.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <system_error>
#include <vector>

#include "Cimom/Providers/LinuxPackageReader.h"

namespace {

using Transaction = std::unique_ptr<rpmts_s, decltype(&rpmtsFree)>;
using Packages = std::unique_ptr<rpmdbMatchIterator_s, decltype(&rpmdbFreeIterator)>;

std::string takeText(char* text) {
  const std::unique_ptr<char, decltype(&free)> owner(text, &free);
  return text == nullptr ? std::string() : std::string(text);
}

std::string textOf(Header header, rpmTag tag) {
  return headerIsEntry(header, tag) != 0 ? takeText(headerGetAsString(header, tag)) : std::string();
}

// The name of a source package: bash of bash-5.2-1.src.rpm.
std::string sourceOf(Header header) {
  std::string name = textOf(header, RPMTAG_SOURCERPM);
  for (int part = 0; part < 2; ++part) name.erase(std::min(name.rfind('-'), name.size()));
  return name;
}

LinuxPackageRecord recordOf(Header header) {
  LinuxPackageRecord record;
  // Several versions of a package may be there at once.
  record.id = "rpm:" + takeText(headerGetAsString(header, RPMTAG_NEVRA));
  record.name = textOf(header, RPMTAG_NAME);
  record.architecture = textOf(header, RPMTAG_ARCH);
  record.version = takeText(headerGetAsString(header, RPMTAG_EVR));
  record.status = "installed";
  record.section = textOf(header, RPMTAG_GROUP);
  record.source = sourceOf(header);
  record.maintainer = textOf(header, RPMTAG_PACKAGER);
  if (record.maintainer.empty()) record.maintainer = textOf(header, RPMTAG_VENDOR);
  record.description = textOf(header, RPMTAG_SUMMARY);
  record.size = std::to_string(headerGetNumber(header, RPMTAG_LONGSIZE));
  return record;
}

// Keeps the first error that librpm tells while it lives, and keeps all its messages off the terminal.
class OwnMessages {
 public:
  OwnMessages() { rpmlogSetCallback(&OwnMessages::note, this); }
  OwnMessages(const OwnMessages&) = delete;
  OwnMessages& operator=(const OwnMessages&) = delete;
  ~OwnMessages() { rpmlogSetCallback(nullptr, nullptr); }

  const std::string& firstError() const { return _firstError; }

 private:
  static int note(rpmlogRec message, rpmlogCallbackData self) {
    std::string& first = static_cast<OwnMessages*>(self)->_firstError;
    if (first.empty() && rpmlogRecPriority(message) <= RPMLOG_ERR) first = rpmlogRecMessage(message);
    first.erase(first.find_last_not_of('\n') + 1);
    return 0;
  }

  std::string _firstError;
};

// While it lives rpm takes the folder for that of its database.
class DatabaseFolder {
 public:
  explicit DatabaseFolder(const char* folder) { rpmPushMacro(nullptr, kName, nullptr, folder, RMIL_CMDLINE); }
  DatabaseFolder(const DatabaseFolder&) = delete;
  DatabaseFolder& operator=(const DatabaseFolder&) = delete;
  ~DatabaseFolder() { rpmPopMacro(nullptr, kName); }

 private:
  static constexpr const char* kName = "_dbpath";
};

// Opening a database that is not there would make one. 0 where there is one; else why it cannot be read, as an errno.
int missingDatabase(const std::string& folder) {
  int reason = ENOENT;
  for (const char* const file : {"/rpmdb.sqlite", "/Packages.db", "/Packages"}) {
    if (access((folder + file).c_str(), R_OK) == 0) return 0;
    if (errno != ENOENT && errno != ENOTDIR) reason = errno;
  }
  return reason;
}

std::vector<LinuxPackageRecord> readAll() {
  std::vector<LinuxPackageRecord> records;
  const Transaction transaction(rpmtsCreate(), &rpmtsFree);
  // Who made a package is not asked here, only whether its entry is whole.
  rpmtsSetVSFlags(transaction.get(), RPMVSF_MASK_NOSIGNATURES);
  if (rpmtsOpenDB(transaction.get(), O_RDONLY) != 0) return records;
  const Packages packages(rpmtsInitIterator(transaction.get(), RPMDBI_PACKAGES, nullptr, 0), &rpmdbFreeIterator);
  while (const Header header = rpmdbNextIterator(packages.get())) records.push_back(recordOf(header));
  return records;
}

std::vector<LinuxPackageRecord> readDatabase(const std::string& folder, std::string& wrong) {
  const int missing = missingDatabase(folder);
  if (missing != 0 && missing != ENOENT) wrong = std::generic_category().message(missing);
  if (missing != 0) return {};
  const OwnMessages messages;
  std::vector<LinuxPackageRecord> records = readAll();
  wrong = messages.firstError();
  return records;
}

// All packages, or those that could be read and what is wrong with the others. librpm has one set of macros, messages
// and open databases for the process: one reads at a time.
std::vector<LinuxPackageRecord> readInTurn(const char* list, std::string& wrong) {
  static std::mutex turn;
  const std::lock_guard<std::mutex> lock(turn);
  static const bool isConfigured = rpmReadConfigFiles(nullptr, nullptr) == 0;
  if (!isConfigured) {
    wrong = "rpm's configuration cannot be read";
    return {};
  }
  const std::unique_ptr<DatabaseFolder> own = *list == '\0' ? nullptr : std::make_unique<DatabaseFolder>(list);
  const std::string folder = takeText(rpmGetPath("%{_dbpath}", nullptr));
  std::vector<LinuxPackageRecord> records = readDatabase(folder, wrong);
  if (!wrong.empty()) wrong = "rpm's database in " + folder + ": " + wrong;
  return records;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void qorqlReadPackages(const char* list, const LinuxPackageTake& take,
                                                                         std::string& wrong);
// Who takes the packages may take their time, and may throw: the database is closed by then.
void qorqlReadPackages(const char* list, const LinuxPackageTake& take, std::string& wrong) {
  for (const LinuxPackageRecord& record : readInTurn(list, wrong)) take(record);
}
