// The network interfaces of this machine: class Linux_NetworkPort.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXNETWORKPORT_H
#define QORQL_PROVIDERS_LINUXNETWORKPORT_H

#include <optional>
#include <string>
#include <unordered_set>

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per interface, in ascending order of the names. Stateless;
// several threads may enumerate at once.
class LinuxNetworkPort : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when the interfaces cannot be listed.
  void enumerate(const Request& request, const Emit& emit) override;

  // The addresses of all interfaces; nothing, with errno set, when these cannot be listed.
  static std::optional<std::unordered_set<std::string>> ownAddresses();
};

#endif
