// Calls to servers, as --stats and explanations tell them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_REMOTENOTES_H
#define QORQL_TOOL_REMOTENOTES_H

#include <iosfwd>
#include <string>
#include <vector>

#include "Cimom/QORQL/Explain/QORQL_Explanation.h"
#include "ServerOptions.h"
#include "ServerPlan.h"

// A line for each call that was made.
void printCalls(std::ostream& out, const std::vector<RemoteCall>& calls);

// A sentence for each question that the steps will put to servers.
std::vector<std::string> remoteNotes(const RemoteServers& source, const ServerOptions& options, const ServerPlan& plan,
                                     const std::vector<QORQL_ExplainedStep>& steps);

#endif
