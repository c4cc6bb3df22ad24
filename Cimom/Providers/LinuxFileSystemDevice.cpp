// File systems and their block devices. The kernel gives the number of the
// device; a file system over several devices has a number of its own: then the
// device that was mounted counts.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxFileSystemDevice.h"

#include <sys/stat.h>

#include "Cimom/Providers/LinuxBlockDevice.h"
#include "Cimom/Providers/LinuxFileSystem.h"
#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxReferences.h"

const char* const LinuxFileSystemDevice::kClassName = "Linux_FileSystemDevice";

namespace {

std::string nodeOf(const LinuxFileSystem::MountPoint& mount) {
  std::string node = LinuxBlockDevice::nodeOf(mount.device);
  if (!node.empty() || mount.source.rfind("/dev/", 0) != 0) return node;
  struct stat file {};
  const bool isDevice = stat(mount.source.c_str(), &file) == 0 && S_ISBLK(file.st_mode);
  return isDevice ? LinuxBlockDevice::nodeOf(file.st_rdev) : node;
}

}  // namespace

void LinuxFileSystemDevice::enumerate(const Request& request, const Emit& emit) {
  const LinuxReferences references(request.nameSpace);
  const LinuxPairs pairs(request, emit, "Antecedent", "Dependent");
  for (const LinuxFileSystem::MountPoint& mount : LinuxFileSystem::mountPoints()) {
    const std::string node = nodeOf(mount);
    if (!node.empty()) pairs.emit(references.blockDevice(node), references.fileSystem(mount.target));
  }
}
