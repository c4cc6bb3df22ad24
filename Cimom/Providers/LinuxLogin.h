// Who is logged in to this machine: class Linux_Login.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXLOGIN_H
#define QORQL_PROVIDERS_LINUXLOGIN_H

#include <string>
#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per login that the system's list of them shows and whose process
// is still there, in the order of the list. Where there is no list, which a
// warning tells, there is none. Several threads may enumerate at once.
class LinuxLogin : public InstanceProvider {
 public:
  static const char* const kClassName;

  // The list as login, sshd and their like write it (utmp).
  explicit LinuxLogin(std::string list = systemList()) : _list(std::move(list)) {}
  static std::string systemList();

  QORString getClassName() const override { return kClassName; }
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  const std::string _list;
};

#endif
