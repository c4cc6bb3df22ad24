// Serves until a signal asks for the end. Another signal has everything read anew: the old object manager answers until
// the new one is there, and goes on where that fails.
// SPDX-License-Identifier: Apache-2.0
#include "ServeCommand.h"

#include <chrono>
#include <ctime>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "Cimom/Providers/IndicationSchema.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "IndicationSink.h"
#include "LiveEvents.h"
#include "OptionDeclarations.h"
#include "PatientErrors.h"
#include "ServeOptions.h"
#include "ServerLibrary.h"
#include "ServerSignals.h"
#include "Session.h"

namespace {

constexpr const char* kServeDescription =
    "Serves the classes and instances of this machine, of MOF files and of other servers over HTTP,\n"
    "to any client that speaks CIM-XML.";

constexpr const char* kServeFooter =
    "The first lines on standard output are the addresses at which it listens, once it does; a line\n"
    "of JSON for each request goes to standard error. Beyond this machine it listens only with TLS\n"
    "and users. Section [server] of the configuration has the same options as keys, and the limits.\n"
    "\n"
    "Limits: body (bytes of a request, 16M), connections (128), contexts (open enumerations of a\n"
    "client, 64), query (seconds, 300), memory (bytes of a query's rows and of what a client's\n"
    "enumerations and replies hold, 1G), idle (seconds without a request, 60), failures (wrong\n"
    "passwords from one address, 10), failure-wait (seconds it then waits, 60), drain (seconds that\n"
    "requests have to end when the server ends, 30).\n"
    "\n"
    "SIGTERM ends it when what was asked is answered, a second one at once. SIGHUP has it read\n"
    "configuration, MOF, users and certificates anew; what is faulty is told, and all stays as it was.\n"
    "\n"
    "Exit status: 0 done; 2 wrong usage; 3 an address cannot be had, or MOF, configuration, users,\n"
    "certificates or a provider fail.\n"
    "\n"
    "Examples:\n"
    "  qorql serve\n"
    "  qorql serve --listen 127.0.0.1:0 --no-live -m examples/storage.mof";

constexpr double kInterval = 5;
constexpr std::chrono::seconds kPatienceWithWriters{10};  // for what is being written

// The object manager of a session, which lives as long as anybody has it.
ServerModel::Manager managerOf(const std::shared_ptr<Session>& session) { return {session, &session->manager()}; }

std::chrono::milliseconds intervalOf(const ServeOptions& options) {
  const std::chrono::duration<double> seconds(options.interval.value_or(kInterval));
  return std::chrono::duration_cast<std::chrono::milliseconds>(seconds);
}

std::string monotonicMicroseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return std::to_string(static_cast<long long>(now.tv_sec) * 1000000 + now.tv_nsec / 1000);
}

// What is logged goes to standard error at once, since many threads log. No reply can say that it lacks the instances
// of a server that failed, so that it fails with it. The namespaces of all servers are there.
ServeOptions asServed(ServeOptions options) {
  options.session.servers.requiresAll = true;
  options.session.servers.mayLackNameSpaces = true;
  options.session.servers.isWatched = true;
  options.session.hidesRefusals = !options.session.logSeverity;
  if (!options.session.logSeverity) options.session.logSeverity = QoriTraceLog::kWarning;
  return options;
}

// Whether the query that this thread answers is to end; servers are asked on its behalf.
bool isThreadStopped() {
  QORQL_ExecutionMonitor* const monitor = QORQL_currentMonitor();
  return monitor != nullptr && monitor->isStopRequested();
}

// Only MOF files can have brought them where there is no service of indications.
void warnOfSubscriptions(const EmbeddedObjectManager& manager) {
  constexpr const char* kSpace = "root/interop";
  constexpr const char* kSubscription = "CIM_IndicationSubscription";
  CimClassDeclaration declaration;
  if (!manager.describeClass(kSpace, kSubscription, declaration)) return;
  const auto found = manager.ownInstances(kSpace, kSubscription, {});
  if (found.IsNull() || found->entries() == 0) return;
  std::cerr
      << "qorql: warning: the subscriptions that MOF files declare are not in force without --writable or --store\n";
}

class ServerRun {
 public:
  // THROWS as reportStartFailure() reports.
  explicit ServerRun(const ServeOptions& given)
      : _given(asServed(given)), _started(withConfiguration(_given)), _library(serverLibrary()) {
    const ServeOptions& options = _started;
    _drainSeconds = static_cast<unsigned>(limitOf(options, "drain"));
    _traits = {options.isWritable, !options.usersFile.empty()};
    if (options.isWritable || !options.storeFile.empty()) _events = makeEvents(options);
    const std::shared_ptr<Session> session = openSession(options);
    session->takeOver();
    _model = _library.makeModel(managerOf(session));
    if (_events != nullptr) _events->attach(managerOf(session));
    _server = _library.startHttp(httpOptionsOf(options), makeService(options));
    if (_events == nullptr) return;
    _live = std::make_unique<LiveEvents>(*_model, *_events, QORString(options.session.nameSpace), intervalOf(options));
  }

  void run() {
    // What subscriptions ask for is looked at first, so that changes are seen from now on.
    if (_events != nullptr) _events->waitForWatcher();
    for (const std::string& url : _server->urls()) std::cout << "listening on " << url << '\n';
    std::cout.flush();
    _library.tellSupervisor("READY=1");
    while (_signals.wait() != ServerSignals::Request::End) reload();
    _library.tellSupervisor("STOPPING=1");
    _server->drain(_drainSeconds, [this] { return _signals.isEndRequested(); });
  }

 private:
  // With the limits of a client, which hold for all that is asked of it.
  std::shared_ptr<HttpService> makeService(const ServeOptions& options) const {
    return _library.makeCimService({_model, _events, _started.isWritable, serverLimitsOf(options)});
  }

  std::shared_ptr<ServerEvents> makeEvents(const ServeOptions& options) const {
    EventOptions events;
    events.storeFile = options.storeFile;
    events.indications.origin = thisMachine();
    events.indications.makeTransport = listenerTransports(_trust);
    return _library.makeEvents(events);
  }

  // With the classes of indications where clients can subscribe to some.
  std::shared_ptr<Session> openSession(const ServeOptions& options) const {
    auto session = std::make_shared<Session>(options.session, Session::Life::UntilReplaced);
    session->open(_events == nullptr ? nullptr : indicationSchemaMof());
    if (session->servers() != nullptr) session->servers()->setStopRequest(&isThreadStopped);
    _library.prepare(session->manager(), _traits);
    if (_events == nullptr) {
      if (!options.session.isQuiet) warnOfSubscriptions(session->manager());
      return session;
    }
    declareIndications(session->manager(), QORString(options.session.nameSpace), options.session.isQuiet);
    _events->prepare(session->manager());
    return session;
  }

  void reload() noexcept {
    _library.tellSupervisor("RELOADING=1\nMONOTONIC_USEC=" + monotonicMicroseconds());
    try {
      readAnew();
      std::cerr << "qorql: configuration, MOF and users have been read anew\n";
    } catch (...) {
      reportStartFailure();
      std::cerr << "qorql: nothing was read anew: all stays as it was\n";
    }
    _library.tellSupervisor("READY=1");
  }

  void readAnew() {
    const ServeOptions options = withConfiguration(_given);
    const std::shared_ptr<Session> session = openSession(options);
    const std::shared_ptr<HttpService> service = makeService(options);
    // What can be refused comes first, and then what cannot. What is being answered goes on to ask the one before.
    const auto takeOverAll = [&] {
      std::unique_ptr<ServerEvents::Attachment> subscriptions;
      if (_events != nullptr) subscriptions = _events->read(managerOf(session));
      _server->reload(httpOptionsOf(options).limits, service);
      session->takeOver();
      if (subscriptions != nullptr) subscriptions->take();
    };
    if (!_model->replace(managerOf(session), takeOverAll, kPatienceWithWriters)) {
      throw std::runtime_error("what clients write does not come to its end");
    }
    _drainSeconds = static_cast<unsigned>(limitOf(options, "drain"));
    if (_live != nullptr) _live->setInterval(intervalOf(options));
    _trust->set(options.listeners);
    tellOfKept(options);
  }

  // Those of the settings that hold from the start to the end.
  void tellOfKept(const ServeOptions& options) const {
    for (const std::string& name : keptSettings(_started, options)) {
      std::cerr << "qorql: warning: " + name + " is another one now, which counts after a restart\n";
    }
  }

  const ServerSignals _signals;  // before every thread
  const ServeOptions _given;
  const ServeOptions _started;  // with the configuration as it was then
  const std::shared_ptr<CurrentTrust> _trust = std::make_shared<CurrentTrust>(_started.listeners);
  ServerModule& _library;
  const PatientErrors _errors{_library};
  ServerTraits _traits;  // as they were at the start
  unsigned _drainSeconds = 0;
  std::shared_ptr<ServerEvents> _events;  // null where clients can write nothing
  std::shared_ptr<ServerModel> _model;
  std::unique_ptr<HttpServer> _server;
  std::unique_ptr<LiveEvents> _live;
};

int run(const ServeOptions& options) {
  try {
    ServerRun(options).run();
    return kExitDone;
  } catch (...) {
    return reportStartFailure();
  }
}

}  // namespace

CommandAction declareServeCommand(CLI::App& app) {
  const auto options = std::make_shared<ServeOptions>();
  describeCommand(app, kServeDescription, kServeFooter);
  declareServeOptions(app, *options);
  declareSessionOptions(app, options->session);
  return [options] { return run(*options); };
}
