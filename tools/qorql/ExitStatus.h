// How the program ends.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_EXITSTATUS_H
#define QORQL_TOOL_EXITSTATUS_H

enum ExitStatus {
  kExitDone = 0,
  kExitRefused = 1,  // a statement is refused or fails
  kExitUsage = 2,    // the command line is wrong
  kExitPlatform = 3  // MOF, configuration or a provider fails
};

#endif
