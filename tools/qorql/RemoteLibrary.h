// Loads the library that asks servers, when one is asked.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_REMOTELIBRARY_H
#define QORQL_TOOL_REMOTELIBRARY_H

#include "Cimom/Remote/RemoteModule.h"

// THROWS std::runtime_error when it cannot be loaded.
RemoteModule& remoteLibrary();

#endif
