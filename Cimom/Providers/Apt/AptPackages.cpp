// Reads dpkg's list of packages through libapt-pkg.
// Tested by tests/unit/Providers/LinuxPackageTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <apt-pkg/error.h>
#include <apt-pkg/fileutl.h>
#include <apt-pkg/tagfile.h>

#include "Cimom/Providers/LinuxPackageReader.h"

namespace {

LinuxPackageRecord recordOf(const pkgTagSection& section) {
  LinuxPackageRecord record;
  record.name = section.FindS("Package");
  record.architecture = section.FindS("Architecture");
  // A name may be there for several architectures.
  record.id = "dpkg:" + record.name + ':' + record.architecture;
  record.version = section.FindS("Version");
  record.status = section.FindS("Status");
  record.section = section.FindS("Section");
  record.priority = section.FindS("Priority");
  record.source = section.FindS("Source");
  record.maintainer = section.FindS("Maintainer");
  record.size = section.FindS("Installed-Size");
  record.sizeUnit = 1024;
  const std::string description = section.FindS("Description");
  record.description = description.substr(0, description.find('\n'));
  return record;
}

// The oldest of the library's messages.
std::string complaint() {
  std::string message;
  _error->PopMessage(message);
  _error->Discard();
  return message.empty() ? "unknown reason" : message;
}

// The library's messages from its construction on, which are gone when it is: those of others stay as they are.
class OwnMessages {
 public:
  OwnMessages() { _error->PushToStack(); }
  OwnMessages(const OwnMessages&) = delete;
  OwnMessages& operator=(const OwnMessages&) = delete;
  ~OwnMessages() { _error->RevertToStack(); }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) void qorqlReadPackages(const char* list, const LinuxPackageTake& take,
                                                                         std::string& wrong);
void qorqlReadPackages(const char* list, const LinuxPackageTake& take, std::string& wrong) {
  const OwnMessages messages;
  FileFd file(list, FileFd::ReadOnly);
  pkgTagFile tags(&file);
  pkgTagSection section;
  while (!_error->PendingError() && tags.Step(section)) take(recordOf(section));
  if (_error->PendingError()) wrong = complaint();
}
