// The services of this machine: class Linux_Service.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXSERVICE_H
#define QORQL_PROVIDERS_LINUXSERVICE_H

#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxUnits.h"

// Those that systemd has loaded; none where it does not run. Several threads may
// enumerate at once, each asks over a connection of its own.
class LinuxService : public InstanceProvider {
 public:
  static const char* const kClassName;

  explicit LinuxService(LinuxUnits::Connect connect = LinuxUnits::connectSystem) : _connect(std::move(connect)) {}

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when systemd runs and does not list its services.
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  LinuxUnits::Connect _connect;
};

#endif
