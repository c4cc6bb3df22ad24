// Loads the library that serves, when a server or a listener is started.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SERVERLIBRARY_H
#define QORQL_TOOL_SERVERLIBRARY_H

#include "Cimom/Server/ServerModule.h"

// THROWS std::runtime_error when it cannot be loaded.
ServerModule& serverLibrary();

#endif
