// The live processes of this machine: class Linux_Process.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPROCESS_H
#define QORQL_PROVIDERS_LINUXPROCESS_H

#include <sys/types.h>

#include <map>
#include <vector>

#include "Cimom/Embedded/InstanceProvider.h"

// One instance per process, in ascending order of the kernel's process table.
// Stateless; several threads may enumerate at once. Reads from the kernel only
// what the request names; one that names CPUPercent takes half a second, the
// window in which that is measured. libproc2 keeps some 256 KiB for each thread that has
// enumerated and never frees them, not even when the thread ends: a
// program with many short-lived threads should enumerate on a thread that stays.
class LinuxProcess : public InstanceProvider {
 public:
  static const char* const kClassName;

  QORString getClassName() const override { return kClassName; }
  // THROWS CQoriProviderException when there is no process table to read.
  void enumerate(const Request& request, const Emit& emit) override;

  struct Owner {
    int process = 0;
    uid_t user = 0;  // the effective one
  };
  // The processes that there are, in the order of the instances. THROWS as above.
  static std::vector<Owner> owners();

  struct Share {
    QORuint32 processes = 0;
    QORuint64 memory = 0;  // what is resident, in bytes; what processes share counts for each
  };
  // The kernel reports -101 and -100 (most urgent, the former with a deadline) to 39; CIM counts from 0.
  static QORuint32 priorityOf(int kernelPriority);

  // What the processes of each effective user take together. THROWS as above.
  static std::map<uid_t, Share> sharesOfUsers();
};

#endif
