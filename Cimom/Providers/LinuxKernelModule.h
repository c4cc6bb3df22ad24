// The modules that the kernel has loaded: class Linux_KernelModule.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXKERNELMODULE_H
#define QORQL_PROVIDERS_LINUXKERNELMODULE_H

#include <string>
#include <utility>

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per module, in the kernel's order. A kernel without modules has
// none, which a warning tells. Several threads may enumerate at once.
class LinuxKernelModule : public InstanceProvider {
 public:
  static const char* const kClassName;

  // The kernel's list of its modules.
  explicit LinuxKernelModule(std::string list = "/proc/modules") : _list(std::move(list)) {}

  QORString getClassName() const override { return kClassName; }
  void enumerate(const Request& request, const Emit& emit) override;

 private:
  const std::string _list;
};

#endif
