// The running operating system: class Linux_OperatingSystem.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXOPERATINGSYSTEM_H
#define QORQL_PROVIDERS_LINUXOPERATINGSYSTEM_H

#include <string>

#include "Cimom/Embedded/InstanceProvider.h"

// Always one instance. Stateless; several threads may enumerate at once.
class LinuxOperatingSystem : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  void enumerate(const Request& request, const Emit& emit) override;

  // The distribution's name, the key of the instance.
  static QORString name();
  // The time zone that such a link as /etc/localtime names; "UTC" where there is none, empty where it names none.
  static std::string timeZoneOf(const std::string& link);
};

#endif
