// Serves until a signal asks for the end.
// SPDX-License-Identifier: Apache-2.0
#include "ServeCommand.h"

#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "ErrorReport.h"
#include "ExitStatus.h"
#include "OptionDeclarations.h"
#include "ServerLibrary.h"
#include "ServerSignals.h"
#include "Session.h"
#include "SessionOptions.h"

namespace {

constexpr const char* kDescription =
    "Serves the classes and instances of this machine, of MOF files and of other servers over HTTP,\n"
    "to any client that speaks CIM-XML.";

constexpr const char* kFooter =
    "The first line on standard output is the address at which it listens, once it does; a line of\n"
    "JSON for each request goes to standard error.\n"
    "\n"
    "Exit status: 0 done; 2 wrong usage; 3 an address cannot be had, or MOF, configuration or a\n"
    "provider fails.\n"
    "\n"
    "Examples:\n"
    "  qorql serve\n"
    "  qorql serve --listen 127.0.0.1:0 --no-live -m examples/storage.mof";

constexpr const char* kDefaultAddress = "127.0.0.1:5988";
constexpr unsigned kDrainSeconds = 30;

struct ServeOptions {
  SessionOptions session;
  std::vector<std::string> addresses;
  bool isWritable = false;
};

HttpOptions httpOptions(const ServeOptions& options) {
  HttpOptions http;
  http.addresses = options.addresses;
  if (http.addresses.empty()) http.addresses.emplace_back(kDefaultAddress);
  http.logsRequests = !options.session.isQuiet;
  return http;
}

// The object manager of a session, which lives as long as anybody has it.
ServerModel::Manager managerOf(const std::shared_ptr<Session>& session) { return {session, &session->manager()}; }

void serve(const ServeOptions& options) {
  const ServerSignals signals;
  ServerModule& library = serverLibrary();
  const auto session = std::make_shared<Session>(options.session, Session::Life::UntilReplaced);
  session->open();
  session->takeOver();
  const std::shared_ptr<ServerModel> model = library.makeModel(managerOf(session));
  const std::unique_ptr<HttpServer> server =
      library.startHttp(httpOptions(options), library.makeCimService({model, options.isWritable}));
  for (const std::string& url : server->urls()) std::cout << "listening on " << url << '\n';
  std::cout.flush();
  while (signals.wait() != ServerSignals::Request::End) continue;
  server->drain(kDrainSeconds);
}

int run(const ServeOptions& options) {
  try {
    serve(options);
    return kExitDone;
  } catch (...) {
    return reportStartFailure();
  }
}

}  // namespace

CommandAction declareServeCommand(CLI::App& app) {
  const auto options = std::make_shared<ServeOptions>();
  describeCommand(app, kDescription, kFooter);
  declareValue(app, {.names = "--listen",
                     .type = "ADDRESS:PORT",
                     .description = "Listen here (repeatable; default: 127.0.0.1:5988; port 0: any that is free)",
                     .take = keepIn(options->addresses),
                     .isRepeatable = true});
  declareFlag(app, "--writable", options->isWritable, "Let clients create, modify and delete stored instances");
  declareSessionOptions(app, options->session);
  return [options] { return run(*options); };
}
