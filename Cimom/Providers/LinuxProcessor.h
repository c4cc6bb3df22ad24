// The processors of this machine: class Linux_Processor.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPROCESSOR_H
#define QORQL_PROVIDERS_LINUXPROCESSOR_H

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per processor that the kernel uses, in ascending order of the
// numbers. Stateless; several threads may enumerate at once.
class LinuxProcessor : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when the processors cannot be listed.
  void enumerate(const Request& request, const Emit& emit) override;
};

#endif
