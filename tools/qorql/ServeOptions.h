// What the command line and the configuration say about a server.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SERVEOPTIONS_H
#define QORQL_TOOL_SERVEOPTIONS_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Cimom/Server/HttpServer.h"
#include "Cimom/Server/ServerLimits.h"
#include "ListenerTransport.h"
#include "SessionOptions.h"

struct ServeOptions {
  SessionOptions session;
  std::vector<std::string> addresses;
  HttpCertificate certificate;
  std::string usersFile;
  std::string storeFile;  // empty: what clients change ends with the server
  ListenerTrust listeners;
  std::optional<double> interval;  // seconds between two looks at live classes that subscriptions ask for
  bool isWritable = false;
  std::map<std::string, std::uint64_t> limits;  // those that are given, by their names
};

// BORROWS the options until the command line has been parsed.
void declareServeOptions(CLI::App& app, ServeOptions& options);

// What holds: what the command line says in place of what section [server] of the configuration says. THROWS
// std::runtime_error naming file and key.
ServeOptions withConfiguration(const ServeOptions& given);

// The keys of settings that hold from the start on and are others in the second one.
std::vector<std::string> keptSettings(const ServeOptions& started, const ServeOptions& now);

// A limit that was given, or its default.
std::uint64_t limitOf(const ServeOptions& options, const std::string& name);
HttpOptions httpOptionsOf(const ServeOptions& options);
ServerLimits serverLimitsOf(const ServeOptions& options);

#endif
