// Calls to servers, as --stats and explanations tell them.
// SPDX-License-Identifier: Apache-2.0
#include "RemoteNotes.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <set>
#include <sstream>

#include "DisplayText.h"

namespace {

using Step = QORQL_ExplainedStep;

// The value of a class in any case; null when there is none.
template <class Value>
const Value* findClass(const std::map<std::string, Value>& map, const std::string& className) {
  for (const auto& [name, value] : map) {
    if (QORString::equalIgnoringCase(name, className)) return &value;
  }
  return nullptr;
}

std::string enumerated(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

std::vector<std::string> serversFor(const RemoteServers& source, const ServerPlan& plan, const std::string& className) {
  std::vector<std::string> names = source.serverNames();
  const std::set<std::string>* const only = findClass(plan.servers, className);
  if (only != nullptr) std::erase_if(names, [only](const std::string& name) { return !only->contains(name); });
  return names;
}

}  // namespace

void printCalls(std::ostream& out, const std::vector<RemoteCall>& calls) {
  for (const RemoteCall& call : calls) {
    std::ostringstream line;
    line << "qorql: call: " << printableText(call.server) << ' ' << call.operation;
    if (!call.subject.empty()) line << ' ' << printableText(call.subject);
    line << ": items=" << call.items << " sent=" << call.traffic.sent << " received=" << call.traffic.received
         << std::fixed << std::setprecision(3) << " time=" << call.milliseconds << "ms"
         << (call.hasFailed ? " failed" : "") << '\n';
    out << line.str();
  }
}

std::vector<std::string> remoteNotes(const RemoteServers& source, const ServerOptions& options, const ServerPlan& plan,
                                     const std::vector<QORQL_ExplainedStep>& steps) {
  std::vector<std::string> notes;
  std::set<std::string> told;
  const auto tell = [&](const std::string& className) {
    if (!told.insert(className).second) return;
    const std::vector<std::string> servers = serversFor(source, plan, className);
    if (servers.empty()) return notes.push_back("no server is asked for " + className);
    const std::string* const condition = options.pushesDown ? findClass(plan.conditions, className) : nullptr;
    const std::string how = condition != nullptr ? "ExecQuery of " + className + " WHERE " + *condition
                                                 : "OpenEnumerateInstances of " + className + " in batches of " +
                                                       std::to_string(options.batch);
    notes.push_back("asks " + enumerated(servers) + ": " + how);
  };
  for (const Step& step : steps) {
    if (step.kind == Step::kAssociate) tell(step.association);
    if (step.kind == Step::kFetch || step.kind == Step::kAssociate) tell(step.className);
  }
  return notes;
}
