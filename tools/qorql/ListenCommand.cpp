// Prints each indication before its sender is told that it has arrived.
// SPDX-License-Identifier: Apache-2.0
#include "ListenCommand.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <exception>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/CimXml/CimXmlInstance.h"
#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "JsonValue.h"
#include "OptionDeclarations.h"
#include "PatientErrors.h"
#include "ServerLibrary.h"
#include "ServerSignals.h"

namespace {

constexpr const char* kListenDescription = "Listens for the indications that WBEM servers send, and prints them.";

constexpr const char* kListenFooter =
    "Each is printed at once as a JSON object on a line of its own: its class, then the properties\n"
    "that have a value, in the order in which they came. SequenceContext and SequenceNumber tell\n"
    "whether one is missing or came twice. The sender is told that an indication has arrived when\n"
    "it has been printed. Where it listens, and what is refused, goes to standard error.\n"
    "Ends with Ctrl-C, with SIGTERM, and when the reader of its output goes away. What the reader\n"
    "does not take by then is named on standard error, and its sender keeps it.\n"
    "\n"
    "Exit status: 0 done; 2 wrong usage; 3 an address cannot be had.\n"
    "\n"
    "Examples:\n"
    "  qorql listen\n"
    "  qorql listen --listen 127.0.0.1:0 --count 1 -o mof";

constexpr const char* kListenerAddress = "127.0.0.1:5990";
constexpr unsigned kDrainSeconds = 5;
constexpr QORuint32 kNoRoom = 1;

enum class IndicationForm { Json, Mof };

struct ListenOptions {
  std::vector<std::string> addresses;
  HttpCertificate certificate;
  std::string usersFile;
  IndicationForm form = IndicationForm::Json;
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
  const QORSmrPtr<IQoriObject> object = serverLibrary().makeObject(indication);
  return std::string(EmbeddedObjectManager::instanceMof(*object).view());
}

// Standard output, of which the reader may take nothing for a while.
class PrintedOutput {
 public:
  // Waits for the reader. False when it has gone away; and, once the end is asked for, when it takes nothing for a
  // while.
  bool write(std::string_view text) {
    Clock::time_point taken = Clock::now();
    while (!text.empty()) {
      pollfd watched{STDOUT_FILENO, POLLOUT, 0};
      if (poll(&watched, 1, kLook) <= 0) {
        if (isOver(taken)) return false;
        continue;
      }
      // What a pipe that has room takes without waiting.
      const ssize_t count = ::write(STDOUT_FILENO, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
      if (count < 0 && errno != EINTR && errno != EAGAIN) return false;
      if (count > 0) taken = Clock::now();
      text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return true;
  }
  // From now on the reader is waited for only for a while; in the end not at all.
  void end() noexcept { _isEnding = true; }
  void giveUp() noexcept { _isGivenUp = true; }
  bool isEnding() const noexcept { return _isEnding; }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr int kLook = 100;  // milliseconds
  static constexpr std::chrono::seconds kPatience{2};

  bool isOver(Clock::time_point taken) const { return _isGivenUp || (_isEnding && Clock::now() - taken >= kPatience); }

  std::atomic<bool> _isEnding{false};
  std::atomic<bool> _isGivenUp{false};
};

// "CIM_AlertIndication, SequenceContext c, SequenceNumber 7"
std::string nameOf(const CimXmlInstance& indication) {
  std::string text(indication.className.view());
  for (const char* name : {"SequenceContext", "SequenceNumber"}) {
    for (const CimXmlProperty& property : indication.properties()) {
      if (property.value.IsNull() || !property.name.isEqualCaseInsensitive(name)) continue;
      text += std::string(", ") + name + ' ' + std::string(property.value->toString().view());
    }
  }
  return text;
}

// Many senders at once; one line at a time.
class ReceivedPrinter final : public IndicationTaker {
 public:
  explicit ReceivedPrinter(const ListenOptions& options) : _options(options) {}

  void take(const CimXmlInstance& indication, const ServerClient& /*sender*/) override {
    const std::string text = _options.form == IndicationForm::Json ? jsonOf(indication) : mofOf(indication);
    const std::lock_guard lock(_mutex);
    if (_isDone) refuse(indication, "the listener is about to end");
    const bool isPrinted = _output.write(text);
    _isDone = !isPrinted || ++_count == _options.count;
    if (_isDone && !_output.isEnding()) kill(getpid(), SIGTERM);
    if (!isPrinted) refuse(indication, "nobody reads what the listener prints");
  }
  void complain(const ServerClient& sender, const std::string& reason) override {
    warn("a request from " + sender.address + " was refused: " + printableText(reason));
  }
  PrintedOutput& output() noexcept { return _output; }

 private:
  // Its sender keeps it, and sends it again.
  [[noreturn]] void refuse(const CimXmlInstance& indication, const char* reason) {
    warn(printableText(nameOf(indication)) + " is not printed, or not as a whole, and refused: " + reason);
    std::rethrow_exception(serverLibrary().makeRefusal(kNoRoom, reason));
  }
  void warn(const std::string& text) {
    if (_options.isQuiet) return;
    const std::lock_guard lock(_errorsMutex);
    std::cerr << "qorql: warning: " + text + '\n';
  }

  const ListenOptions& _options;
  PrintedOutput _output;
  std::mutex _errorsMutex;
  std::mutex _mutex;  // who prints may wait
  QORuint64 _count = 0;
  bool _isDone = false;
};

HttpOptions httpOptions(const ListenOptions& options) {
  HttpOptions http;
  http.addresses = options.addresses;
  if (http.addresses.empty()) http.addresses.emplace_back(kListenerAddress);
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
  const PatientErrors errors(library);
  ReceivedPrinter printer(options);
  const std::unique_ptr<HttpServer> server =
      library.startHttp(httpOptions(options), library.makeListenService(printer));
  for (const std::string& url : server->urls()) std::cerr << "listening on " << url << '\n';
  while (signals.wait() != ServerSignals::Request::End) continue;
  printer.output().end();
  server->drain(kDrainSeconds, [&signals] { return signals.isEndRequested(); });
  printer.output().giveUp();
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
  declareValue(app, {.names = "-o,--output",
                     .type = "FORM",
                     .description = "How to print: json or mof (default: json)",
                     .take =
                         [options](const std::string& form) {
                           options->form = form == "mof" ? IndicationForm::Mof : IndicationForm::Json;
                         },
                     .check = checkForm});
  declareValue(app, {.names = "--count",
                     .type = "N",
                     .description = "End after N indications",
                     .take = [options](const std::string& given) { options->count = parseCount(given); },
                     .check = checkCount});
  declareFlag(app, "--quiet", options->isQuiet, "Say nothing of what is refused");
  return [options] { return run(*options); };
}
