// Services and their main processes.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxServiceProcess.h"

#include "Cimom/Providers/LinuxProperty.h"
#include "Cimom/Providers/LinuxReferences.h"

const char* const LinuxServiceProcess::kClassName = "Linux_ServiceProcess";

void LinuxServiceProcess::enumerate(const Request& request, const Emit& emit) {
  const LinuxReferences references(request.nameSpace);
  const LinuxPairs pairs(request, emit, "Service", "Process");
  LinuxUnits units(_connect);
  for (const LinuxUnits::Unit& unit : units.services()) {
    const QORuint32 pid = units.mainProcess(unit);
    if (pid != 0) pairs.emit(references.service(unit.name), references.process(static_cast<int>(pid)));
  }
}
