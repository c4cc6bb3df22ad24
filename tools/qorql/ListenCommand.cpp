// Prints each indication before its sender is told that it has arrived.
// SPDX-License-Identifier: Apache-2.0
#include "ListenCommand.h"

#include <unistd.h>

#include <csignal>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlObjects.h"
#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "JsonValue.h"
#include "OptionDeclarations.h"
#include "ServerLibrary.h"
#include "ServerSignals.h"

namespace {

constexpr const char* kListenDescription = "Listens for the indications that WBEM servers send, and prints them.";

constexpr const char* kListenFooter =
    "Each is printed at once as a JSON object on a line of its own: its class, then the properties\n"
    "that have a value, in the order in which they came. SequenceContext and SequenceNumber tell\n"
    "whether one is missing or came twice. The sender is told that an indication has arrived when\n"
    "it has been printed. Where it listens, and what is refused, goes to standard error.\n"
    "Ends with Ctrl-C, with SIGTERM, and when the reader of its output goes away.\n"
    "\n"
    "Exit status: 0 done; 2 wrong usage; 3 an address cannot be had.\n"
    "\n"
    "Examples:\n"
    "  qorql listen\n"
    "  qorql listen --listen 127.0.0.1:0 --count 1 -o mof";

constexpr const char* kDefaultAddress = "127.0.0.1:5990";
constexpr unsigned kDrainSeconds = 5;
constexpr QORuint32 kNoRoom = 1;

enum class Form { Json, Mof };

struct ListenOptions {
  std::vector<std::string> addresses;
  HttpCertificate certificate;
  std::string usersFile;
  Form form = Form::Json;
  QORuint64 count = 0;  // 0: without end
  bool isQuiet = false;
};

std::string jsonOf(const CimXmlInstance& indication) {
  std::string text = "{\"class\": " + jsonText(indication.className.view());
  for (const CimXmlProperty& property : indication.properties()) {
    if (property.value.IsNull()) continue;
    text += ", " + jsonText(property.name.view()) + ": ";
    appendJson(text, property.value.Get(), JsonObjects::WithClass);
  }
  return text + "}\n";
}

std::string mofOf(const CimXmlInstance& indication) {
  const QORSmrPtr<IQoriObject> object(CimXmlObjects(QORString::emptyString()).make(indication));
  return std::string(EmbeddedObjectManager::instanceMof(*object).view());
}

// Many senders at once; one line at a time.
class IndicationPrinter final : public IndicationTaker {
 public:
  explicit IndicationPrinter(const ListenOptions& options) : _options(options) {}

  void take(const CimXmlInstance& indication, const ServerClient& /*sender*/) override {
    const std::string text = _options.form == Form::Json ? jsonOf(indication) : mofOf(indication);
    const std::lock_guard lock(_mutex);
    if (_isDone) throw CimStatusException(kNoRoom, "the listener is about to end");
    std::cout << text << std::flush;
    _isDone = !std::cout || ++_count == _options.count;
    if (_isDone) kill(getpid(), SIGTERM);
    if (!std::cout) throw CimStatusException(kNoRoom, "nobody reads what the listener prints");
  }
  void complain(const ServerClient& sender, const std::string& reason) override {
    if (_options.isQuiet) return;
    const std::lock_guard lock(_mutex);
    std::cerr << "qorql: warning: a request from " + sender.address + " was refused: " + printableText(reason) + '\n';
  }

 private:
  const ListenOptions& _options;
  std::mutex _mutex;
  QORuint64 _count = 0;
  bool _isDone = false;
};

HttpOptions httpOptions(const ListenOptions& options) {
  HttpOptions http;
  http.addresses = options.addresses;
  if (http.addresses.empty()) http.addresses.emplace_back(kDefaultAddress);
  http.certificate = options.certificate;
  http.usersFile = options.usersFile;
  http.logsRequests = false;
  return http;
}

void listen(const ListenOptions& options) {
  const ServerSignals signals;
  // What is told there would write out what another thread prints.
  std::cerr.tie(nullptr);
  ServerModule& library = serverLibrary();
  IndicationPrinter printer(options);
  const std::unique_ptr<HttpServer> server =
      library.startHttp(httpOptions(options), library.makeListenService(printer));
  for (const std::string& url : server->urls()) std::cerr << "listening on " << url << '\n';
  while (signals.wait() != ServerSignals::Request::End) continue;
  server->drain(kDrainSeconds, [&signals] { return signals.isEndRequested(); });
}

int run(const ListenOptions& options) {
  try {
    listen(options);
    return kExitDone;
  } catch (...) {
    return reportStartFailure();
  }
}

std::string checkForm(const std::string& given) {
  return given == "json" || given == "mof" ? "" : "'" + given + "' is neither json nor mof";
}

}  // namespace

CommandAction declareListenCommand(CLI::App& app) {
  const auto options = std::make_shared<ListenOptions>();
  describeCommand(app, kListenDescription, kListenFooter);
  declareValue(app, {.names = "--listen",
                     .type = "ADDRESS:PORT",
                     .description = "Listen here (repeatable; default: 127.0.0.1:5990; port 0: any that is free)",
                     .take = keepIn(options->addresses),
                     .isRepeatable = true});
  declareValue(app, {.names = "--tls-cert",
                     .type = "FILE",
                     .description = "Certificate for TLS, in PEM",
                     .take = keepIn(options->certificate.file)});
  declareValue(app, {.names = "--tls-key",
                     .type = "FILE",
                     .description = "Key of the certificate, in PEM",
                     .take = keepIn(options->certificate.keyFile)});
  declareValue(app, {.names = "--users",
                     .type = "FILE",
                     .description = "Take indications from these users alone, see qorql passwd",
                     .take = keepIn(options->usersFile)});
  declareValue(app,
               {.names = "-o,--output",
                .type = "FORM",
                .description = "How to print: json or mof (default: json)",
                .take = [options](const std::string& form) { options->form = form == "mof" ? Form::Mof : Form::Json; },
                .check = checkForm});
  declareValue(app, {.names = "--count",
                     .type = "N",
                     .description = "End after N indications",
                     .take = [options](const std::string& given) { options->count = parseCount(given); },
                     .check = checkCount});
  declareFlag(app, "--quiet", options->isQuiet, "Say nothing of what is refused");
  return [options] { return run(*options); };
}
