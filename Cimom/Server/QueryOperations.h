// Statements of the query language that clients send.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_QUERYOPERATIONS_H
#define QORQL_SERVER_QUERYOPERATIONS_H

#include <memory>

#include "Cimom/Server/EnumerationContexts.h"
#include "Cimom/Server/ServerLimits.h"
#include "Cimom/Server/ServerOperations.h"

// Adds ExecQuery and OpenQueryInstances.
void addQueryOperations(ServerOperations& operations, const std::shared_ptr<EnumerationContexts>& contexts,
                        const ServerLimits& limits);

#endif
