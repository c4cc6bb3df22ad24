// Operations that read and change instances.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_INSTANCEOPERATIONS_H
#define QORQL_SERVER_INSTANCEOPERATIONS_H

#include "Cimom/Server/InstanceWriter.h"
#include "Cimom/Server/ServerOperations.h"

// GetInstance, EnumerateInstances and EnumerateInstanceNames; CreateInstance, ModifyInstance and DeleteInstance through
// the writer. BORROWS it; null: all changes are refused with 2, since the server is read-only.
void addInstanceOperations(ServerOperations& operations, InstanceWriter* writer);

// THROWS CimStatusException, 2: what a read-only server answers to whoever wants to change something.
std::unique_ptr<ServerReply> refuseChange(const ServerCall& call);

#endif
