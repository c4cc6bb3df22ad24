// What the command line says about servers that are asked.
// SPDX-License-Identifier: Apache-2.0
#include "ServerOptions.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <set>
#include <stdexcept>
#include <utility>

#include "DisplayText.h"
#include "NetrcFile.h"
#include "OptionDeclarations.h"
#include "PasswordPrompt.h"
#include "RemoteLibrary.h"
#include "TextInput.h"

namespace {

constexpr QORuint64 kMostAtOnce = 100000;

// What is wrong, without the text itself, in which a password may stand.
template <class Read>
std::string faultOf(Read read) {
  try {
    read();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

std::string checkBatch(const std::string& given) {
  const QORuint64 count = parseCount(given);
  return count != 0 && count <= kMostAtOnce ? "" : "'" + given + "' is not a number from 1 to 100000";
}

// The first line; what an editor adds at its end does not count.
std::string passwordIn(const std::string& file) {
  std::string text = readTextFile(file);
  text.resize(std::min(text.find_first_of("\r\n"), text.size()));
  return text;
}

std::shared_ptr<RemoteCredentials> credentialsOf(const ServerAddress& address, const ServerOptions& options) {
  const std::string& file = address.passwordFile.empty() ? options.passwordFile : address.passwordFile;
  std::optional<std::string> password;
  if (!file.empty()) password = passwordIn(file);
  if (password && address.user.empty()) {
    throw std::runtime_error("there is a password for " + address.name +
                             ", but no user: put it into the URL, as in https://USER@HOST");
  }
  const std::string question =
      "Password of " + printableText(address.user) + " at " + printableText(address.name) + ": ";
  return std::make_shared<RemoteCredentials>(address.user, password, [question](const std::atomic<bool>& isStopped) {
    return askForPassword(question, isStopped);
  });
}

// `nameSpace`: that of the statements where a server's own stands for it; empty where it is asked of all servers.
RemoteServerOptions serverOf(const ServerAddress& address, const ServerOptions& options, const std::string& nameSpace) {
  RemoteServerOptions server;
  server.name = address.name;
  server.hasGivenName = address.hasGivenName || options.servers.size() > 1;
  if (!nameSpace.empty() && !address.nameSpace.empty() && !QORString::equalIgnoringCase(address.nameSpace, nameSpace)) {
    server.nameSpace = QORString(address.nameSpace);
    server.standsFor = QORString(nameSpace);
  }
  server.endpoint.url = address.url;
  server.endpoint.caFile = address.caFile.empty() ? options.caFile : address.caFile;
  server.endpoint.isInsecure = address.isInsecure || options.isInsecure;
  server.endpoint.credentials = credentialsOf(address, options);
  if (options.patience > 0) {
    server.limits.slowSeconds = std::max(1L, static_cast<long>(std::lround(std::min(options.patience, 1e6))));
    server.limits.connectSeconds = server.limits.slowSeconds;
  }
  server.batch = options.batch;
  return server;
}

// "127.0.0.1" of "http://127.0.0.1:5988/cimom".
std::string_view hostOf(std::string_view url) {
  constexpr std::string_view kMark = "://";
  url.remove_prefix(url.find(kMark) + kMark.size());
  url = url.substr(0, url.find('/'));
  return url.starts_with('[') ? url.substr(0, url.find(']') + 1) : url.substr(0, url.find(':'));
}

// Of an IPv6 address.
std::string_view withoutBrackets(std::string_view host) {
  return host.starts_with('[') && host.ends_with(']') ? host.substr(1, host.size() - 2) : host;
}

bool isThisMachine(std::string_view host) {
  return host == "[::1]" || host.starts_with("127.") || QORString::equalIgnoringCase(host, "localhost");
}

// A user whom the URL does not name may stand with a password in ~/.netrc.
void tellOfPlainText(const RemoteServerOptions& server) {
  const std::string_view host = hostOf(server.endpoint.url);
  if (!server.endpoint.url.starts_with("http:") || isThisMachine(host)) return;
  const bool hasUser = !server.endpoint.credentials->user().empty();
  if (!hasUser && !isInNetrc(withoutBrackets(host))) return;
  std::cerr << "qorql: warning: user and password" << (hasUser ? "" : " of ~/.netrc") << " go to "
            << printableText(server.name) << " over http:// as they are; whoever is between can read them\n";
}

void tellOfRisks(const RemoteServerOptions& server) {
  tellOfPlainText(server);
  if (!server.endpoint.isInsecure || !server.endpoint.url.starts_with("https:")) return;
  std::cerr << "qorql: warning: --insecure: the certificate of " << printableText(server.name)
            << " is not checked; whoever is between can read and change what is said, the password too\n";
}

void declareSecurity(CLI::App& app, ServerOptions& options) {
  declareValue(app, {.names = "--cacert",
                     .type = "FILE",
                     .description = "Trust the certificates of this file (PEM) in place of the system's",
                     .take = keepIn(options.caFile),
                     .check = checkFile});
  declareFlag(app, "--insecure", options.isInsecure, "Do not check the certificates of servers");
  declareValue(app, {.names = "--password-file",
                     .type = "FILE",
                     .description = "Read the password of the URL's user from the first line of a file",
                     .take = keepIn(options.passwordFile),
                     .check = checkFile});
}

}  // namespace

void declareServerOptions(CLI::App& app, ServerOptions& options,
                          std::function<void(const std::string&)> takeNamespace) {
  const auto add = [&options, takeNamespace](ServerAddress address) {
    if (options.servers.empty() && !address.nameSpace.empty()) takeNamespace(address.nameSpace);
    options.servers.push_back(std::move(address));
  };
  declareValue(app, {.names = "--server",
                     .type = "[NAME=]URL",
                     .description = "Ask a server, or that of a profile's name, in place of this machine (repeatable)",
                     .take = [add](const std::string& given) { add(readServerAddress(given)); },
                     .check = [](const std::string& given) { return faultOf([&] { readServerAddress(given); }); },
                     .isRepeatable = true});
  declareValue(app, {.names = "--servers",
                     .type = "FILE",
                     .description = "Ask the servers of a file, one a line as for --server",
                     .take =
                         [add](const std::string& given) {
                           for (ServerAddress& address : readServerFile(given)) add(std::move(address));
                         },
                     .check = [](const std::string& given) { return faultOf([&] { readServerFile(given); }); }});
  declareSecurity(app, options);
  declareFlag(app, "--require-all", options.requiresAll, "Fail when one of several servers fails");
  declareFlag(app, "--push-down", options.pushesDown, "Let servers filter first that understand queries");
  declareValue(app, {.names = "--call-timeout",
                     .type = "SECONDS",
                     .description = "Give up a call to a server that sends next to nothing for so long (default: 60)",
                     .take = [&options](const std::string& given) { options.patience = parseSeconds(given); },
                     .check = checkSeconds});
  declareValue(
      app, {.names = "--batch",
            .type = "COUNT",
            .description = "Instances of one reply of a server (default: 1000)",
            .take = [&options](const std::string& given) { options.batch = static_cast<QORuint32>(parseCount(given)); },
            .check = checkBatch});
}

std::shared_ptr<RemoteServers> makeRemoteServers(const ServerOptions& options, const std::string& nameSpace,
                                                 bool isNamespaceGiven) {
  RemoteSourceOptions source;
  source.requiresAll = options.requiresAll;
  source.mayLackNameSpaces = options.mayLackNameSpaces;
  source.isWatched = options.isWatched;
  std::set<std::string> names;
  for (const ServerAddress& address : options.servers) {
    if (!names.insert(address.name).second) {
      throw std::runtime_error("two servers have the name " + address.name + "; give them names, as in NAME=URL");
    }
    source.servers.push_back(serverOf(address, options, isNamespaceGiven ? "" : nameSpace));
    tellOfRisks(source.servers.back());
  }
  return remoteLibrary().makeServers(source);
}
