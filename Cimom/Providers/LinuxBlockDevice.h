// The block devices of this machine: class Linux_BlockDevice.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXBLOCKDEVICE_H
#define QORQL_PROVIDERS_LINUXBLOCKDEVICE_H

#include <sys/types.h>

#include <string>
#include <string_view>

#include "Cimom/Embedded/InstanceProvider.h"

// Disks, their partitions and what is built of them, as the kernel lists them;
// what udev has found on them (labels, serial numbers) where it runs. Stateless;
// several threads may enumerate at once.
class LinuxBlockDevice : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when the devices cannot be listed.
  void enumerate(const Request& request, const Emit& emit) override;

  // The DeviceID of the device with that number; empty when there is none.
  static std::string nodeOf(dev_t number);
  // What a device is, from its name and kind in the kernel and what its device mapping calls itself.
  static std::string typeOf(std::string_view name, std::string_view kind, std::string_view mapping);
};

#endif
