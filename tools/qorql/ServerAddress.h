// What a person says about a server: its URL, its name, who asks.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SERVERADDRESS_H
#define QORQL_TOOL_SERVERADDRESS_H

#include <string>
#include <string_view>
#include <vector>

struct ServerAddress {
  std::string name;  // given, or made of host and port
  bool hasGivenName = false;
  std::string url;           // complete, without a user
  std::string user;          // empty: none
  std::string passwordFile;  // empty: none
  std::string caFile;        // empty: the system's certificates
  std::string nameSpace;     // empty: that of the statement
  bool isInsecure = false;
};

// "[NAME=]URL", or the name of a profile. THROWS std::runtime_error, whose message holds no password.
ServerAddress readServerAddress(std::string_view text);

// The servers of a file: one a line as above, # begins a comment. THROWS std::runtime_error naming file and line.
std::vector<ServerAddress> readServerFile(const std::string& path);

// The profiles of this user: $XDG_CONFIG_HOME/qorql/servers.ini or ~/.config/qorql/servers.ini. Empty where neither
// folder is known.
std::string profileFile();

#endif
