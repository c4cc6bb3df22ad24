// The manual page, made from what the commands declare, as the help is.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_MANUALPAGE_H
#define QORQL_TOOL_MANUALPAGE_H

// Prints it to standard output, for man.
void printManualPage();

#endif
