// The main processes of services: association Linux_ServiceProcess.
// Tested by tests/unit/Providers/LinuxServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXSERVICEPROCESS_H
#define QORQL_PROVIDERS_LINUXSERVICEPROCESS_H

#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxUnits.h"

// One instance per service that has a main process. Several threads may
// enumerate at once, each asks over a connection of its own.
class LinuxServiceProcess : public InstanceProvider {
 public:
  static const char* const kClassName;

  explicit LinuxServiceProcess(LinuxUnits::Connect connect = LinuxUnits::connectSystem)
      : _connect(std::move(connect)) {}

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when systemd runs and does not list its services.
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  LinuxUnits::Connect _connect;
};

#endif
