// What the command line says about servers that are asked.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SERVEROPTIONS_H
#define QORQL_TOOL_SERVEROPTIONS_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Cimom/Remote/RemoteServers.h"
#include "ServerAddress.h"

namespace CLI {
class App;
}

struct ServerOptions {
  std::vector<ServerAddress> servers;  // empty: none are asked
  std::string caFile;                  // for those that name none
  std::string passwordFile;            // for those that name none
  bool isInsecure = false;
  bool requiresAll = false;
  bool mayLackNameSpaces = false;  // a server without the namespace has nothing there
  bool isWatched = false;          // those who ask for long do not wait for what is known
  bool pushesDown = false;
  double patience = 0;     // seconds that a call goes on in which next to nothing comes; 0: as many as there are
  QORuint32 batch = 1000;  // instances of a reply
};

// BORROWS the options until the command line has been parsed. `takeNamespace`
// is told of the namespace that a profile names.
void declareServerOptions(CLI::App& app, ServerOptions& options, std::function<void(const std::string&)> takeNamespace);

// What asks the servers; `nameSpace` is that of the statements, which is asked of all of them when it was given, else
// in place of the first one's own. Says on standard error where certificates are not
// checked. REQUIRES a server. THROWS std::runtime_error: a file of a password cannot be read, a name is given twice,
// the library that asks servers cannot be loaded.
std::shared_ptr<RemoteServers> makeRemoteServers(const ServerOptions& options, const std::string& nameSpace,
                                                 bool isNamespaceGiven);

#endif
