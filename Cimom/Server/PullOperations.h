// Enumerations that clients take in portions: what opens them, goes on with them and ends them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_PULLOPERATIONS_H
#define QORQL_SERVER_PULLOPERATIONS_H

#include <memory>

#include "Cimom/Server/EnumerationContexts.h"
#include "Cimom/Server/ServerLimits.h"
#include "Cimom/Server/ServerOperations.h"

// Adds the Open..., Pull... and Close... operations but OpenQueryInstances. Instances come in the order of the
// operations that give them all at once.
void addPullOperations(ServerOperations& operations, const std::shared_ptr<EnumerationContexts>& contexts,
                       const ServerLimits& limits);

#endif
