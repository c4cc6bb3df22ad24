// On which device a file system is: association Linux_FileSystemDevice.
// Tested by tests/unit/Providers/LinuxAssociationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXFILESYSTEMDEVICE_H
#define QORQL_PROVIDERS_LINUXFILESYSTEMDEVICE_H

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per mounted file system that has a block device. Stateless;
// several threads may enumerate at once.
class LinuxFileSystemDevice : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when the table of mounts cannot be read.
  void enumerate(const Request& request, const Emit& emit) override;
};

#endif
