// What a statement's conditions say about which servers to ask, and for which instances.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SERVERPLAN_H
#define QORQL_TOOL_SERVERPLAN_H

#include <map>
#include <set>
#include <string>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Remote/RemoteServers.h"

class QORQL_Query;

// For each class that FROM names once: what every row of it must satisfy whatever the other conditions say. Nothing
// where WHERE has OR or an outer join. All conditions are applied to the answers again.
struct ServerPlan {
  std::map<std::string, std::set<std::string>> servers;  // the names that __SERVER = '...' gives
  std::map<std::string, std::string> conditions;         // "Level > 3 AND Name = 'x'", as servers understand it

  // Of a parsed statement; `text` is the one that was parsed. The classes tell which conditions servers can be
  // given. THROWS as the object manager.
  ServerPlan(const QORQL_Query& query, const std::string& text, const EmbeddedObjectManager& manager,
             const std::string& nameSpace);

  // Until the next statement begins. The conditions are sent when the servers are to filter first.
  void applyTo(RemoteServers& source, bool pushesDown) const;
};

#endif
