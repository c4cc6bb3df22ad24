// The timers of this machine: class Linux_Timer.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXTIMER_H
#define QORQL_PROVIDERS_LINUXTIMER_H

#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxUnits.h"

// One instance per timer that systemd has loaded. Where it does not run there is
// none, which a warning tells. Several threads may enumerate at once, each asks
// over a connection of its own.
class LinuxTimer : public InstanceProvider {
 public:
  static const char* const kClassName;

  explicit LinuxTimer(LinuxUnits::Connect connect = LinuxUnits::connectSystem) : _connect(std::move(connect)) {}

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when systemd runs and does not list its timers.
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  LinuxUnits::Connect _connect;
};

#endif
