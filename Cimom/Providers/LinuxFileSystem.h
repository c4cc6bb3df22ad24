// The mounted file systems of this machine: class Linux_FileSystem.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXFILESYSTEM_H
#define QORQL_PROVIDERS_LINUXFILESYSTEM_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per mount point, in the order of mounting; of several mounts on
// one point the last, which is the one that can be seen. Sizes are asked for
// only when the request names one, since asking an unreachable network server can
// block. Stateless; several threads may enumerate at once.
class LinuxFileSystem : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when the table of mounts cannot be read.
  void enumerate(const Request& request, const Emit& emit) override;

  struct MountPoint {
    std::string target;
    std::string source;
    dev_t device = 0;
  };
  // The mount points of the instances, in their order. THROWS as above.
  static std::vector<MountPoint> mountPoints();
};

#endif
