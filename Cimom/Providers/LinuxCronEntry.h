// What cron starts: class Linux_CronEntry.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXCRONENTRY_H
#define QORQL_PROVIDERS_LINUXCRONENTRY_H

#include <string>
#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per entry of the system's table, of the tables that packages bring
// and of the users' own, in this order. The users' own are for the superuser; a
// warning tells what the caller may not see. Several threads may enumerate at once.
class LinuxCronEntry : public InstanceProvider {
 public:
  static const char* const kClassName;

  // The system's table, the folder of those of packages, and the folder of the users' own.
  struct Sources {
    std::string system = "/etc/crontab";
    std::string packages = "/etc/cron.d";
    std::string users = "/var/spool/cron/crontabs";
  };

  LinuxCronEntry() = default;
  explicit LinuxCronEntry(Sources sources) : _sources(std::move(sources)) {}

  QORString getClassName() const override { return kClassName; }
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  const Sources _sources{};
};

#endif
