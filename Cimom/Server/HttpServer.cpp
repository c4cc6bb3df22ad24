// One daemon of libmicrohttpd for each address, a thread for each connection: a request
// may take as long as a query does, and an idle thread costs nothing.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/HttpServer.h"

#include <fcntl.h>
#include <microhttpd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "Cimom/Server/HttpAddress.h"
#include "Cimom/Server/HttpConnections.h"
#include "Cimom/Server/HttpExchange.h"
#include "Cimom/Server/TlsSecrets.h"

namespace {

using Clock = HttpConnections::Clock;

// Connections above the limit, which are told that there are too many of them.
constexpr unsigned kSpareConnections = 64;
constexpr unsigned kMostConnections = 1U << 20;  // of the library, whose bound cannot be moved later
constexpr std::chrono::milliseconds kHurryLook{100};
constexpr std::chrono::seconds kLastReplies{2};  // what was interrupted tells its client so
constexpr std::chrono::seconds kSpareTime{5};
constexpr std::size_t kConnectionMemory = std::size_t{128} << 10;  // heads of requests are shorter
constexpr const char* kPriorities = "NORMAL:-VERS-TLS1.0:-VERS-TLS1.1";
constexpr std::size_t kStack = std::size_t{8} << 20;

HttpConnections::Handle placeOf(MHD_Connection* connection) {
  const MHD_ConnectionInfo* const info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
  return *static_cast<HttpConnections::Handle*>(info->socket_context);
}

void noteConnection(void* given, MHD_Connection* connection, void** context, MHD_ConnectionNotificationCode code) {
  HttpShared& shared = *static_cast<HttpShared*>(given);
  if (code == MHD_CONNECTION_NOTIFY_CLOSED) {
    const std::unique_ptr<HttpConnections::Handle> place(static_cast<HttpConnections::Handle*>(*context));
    shared.connections.remove(*place);
    return;
  }
  const int socket = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
  const sockaddr* const client = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS)->client_addr;
  const std::shared_ptr<const HttpLimits> limits = shared.limitsNow();
  const bool isSpare = shared.connections.count() >= limits->connections;
  const std::chrono::seconds idle(limits->idleSeconds);
  const auto deadline = Clock::now() + (isSpare ? std::min(idle, kSpareTime) : idle);
  const HttpConnections::Handle place = shared.connections.add(socket, hostOf(client), deadline);
  place->listeners = shared.listeners;
  *context = new HttpConnections::Handle(place);
}

// Whether there is room for one more, which may only be told that there is none.
MHD_Result admit(void* given, const sockaddr* /*client*/, socklen_t /*size*/) {
  const HttpShared& shared = *static_cast<HttpShared*>(given);
  return shared.connections.count() < shared.limitsNow()->connections + kSpareConnections ? MHD_YES : MHD_NO;
}

MHD_Result takeRequest(void* given, MHD_Connection* connection, const char* path, const char* method,
                       const char* version, const char* bytes, std::size_t* count, void** exchange) {
  try {
    if (*exchange == nullptr) {
      auto made = std::make_unique<HttpExchange>(*static_cast<HttpShared*>(given), placeOf(connection), connection,
                                                 path, method, version);
      HttpExchange* const begun = made.release();
      *exchange = begun;
      return begun->begin();
    }
    HttpExchange& request = *static_cast<HttpExchange*>(*exchange);
    return *count == 0 ? request.answer() : request.take(bytes, std::exchange(*count, 0));
  } catch (const std::exception&) {
    return MHD_NO;  // no memory: the connection ends
  }
}

void endRequest(void* /*given*/, MHD_Connection* /*connection*/, void** exchange, MHD_RequestTerminationCode how) {
  const std::unique_ptr<HttpExchange> request(static_cast<HttpExchange*>(std::exchange(*exchange, nullptr)));
  if (request != nullptr) request->end(how);
}

// What the library says where a request was refused that the log tells of.
constexpr const char* kOwnRefusal = "Application reported internal error";

// Complaints of the library, while a daemon starts and later.
struct Complaints {
  explicit Complaints(const RequestLog& requests) : log(requests) {}

  const RequestLog& log;
  std::atomic<bool> isStarting = true;
  std::string last;
};

__attribute__((format(printf, 2, 0))) void takeComplaint(void* given, const char* format, va_list values) {
  Complaints& complaints = *static_cast<Complaints*>(given);
  char text[512];
  std::vsnprintf(text, sizeof text, format, values);
  std::string_view line(text);
  while (line.ends_with('\n')) line.remove_suffix(1);
  const std::size_t page = line.find(" ('<html>");  // that it sends
  const std::string told = page == std::string_view::npos ? std::string(line) : std::string(line.substr(0, page)) + ')';
  if (complaints.isStarting) {
    complaints.last = told;
  } else if (!line.starts_with(kOwnRefusal)) {
    complaints.log.complain(told);
  }
}

// What listens at one address. A daemon with another certificate takes its place beside the connections that it has.
class Listener {
 public:
  // THROWS std::runtime_error.
  Listener(HttpShared& shared, ListeningSocket socket, const TlsSecrets& secrets)
      : _complaints(shared.requestLog), _socket(std::move(socket)) {
    unsigned flags = MHD_USE_THREAD_PER_CONNECTION | MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_POLL | MHD_USE_ITC |
                     MHD_USE_ERROR_LOG;
    if (secrets.areThere()) flags |= MHD_USE_TLS;
    MHD_OptionItem tls[] = {{MHD_OPTION_HTTPS_MEM_CERT, 0, const_cast<char*>(secrets.certificate.c_str())},
                            {MHD_OPTION_HTTPS_MEM_KEY, 0, const_cast<char*>(secrets.key.c_str())},
                            {MHD_OPTION_HTTPS_PRIORITIES, 0, const_cast<char*>(kPriorities)},
                            {MHD_OPTION_END, 0, nullptr}};
    MHD_OptionItem none[] = {{MHD_OPTION_END, 0, nullptr}};
    // The library closes the socket that it gets where it does not start: it gets one of its own.
    const int file = fcntl(_socket.file(), F_DUPFD_CLOEXEC, 0);
    if (file < 0) throw std::runtime_error("there are too many open files");
    _daemon =
        MHD_start_daemon(flags, 0, &admit, &shared, &takeRequest, &shared, MHD_OPTION_EXTERNAL_LOGGER, &takeComplaint,
                         &_complaints, MHD_OPTION_LISTEN_SOCKET, file, MHD_OPTION_CONNECTION_LIMIT, kMostConnections,
                         MHD_OPTION_CONNECTION_MEMORY_LIMIT, kConnectionMemory, MHD_OPTION_THREAD_STACK_SIZE, kStack,
                         MHD_OPTION_NOTIFY_CONNECTION, &noteConnection, &shared, MHD_OPTION_NOTIFY_COMPLETED,
                         &endRequest, nullptr, MHD_OPTION_ARRAY, secrets.areThere() ? tls : none, MHD_OPTION_END);
    _complaints.isStarting = false;
    if (_daemon == nullptr) throw std::runtime_error("cannot serve at " + _socket.address() + ": " + _complaints.last);
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  // Ends its connections, and waits for them.
  ~Listener() {
    quiesce();
    MHD_stop_daemon(_daemon);
    if (_handedBack >= 0) close(_handedBack);
  }

  // Accepts nothing more. The socket stays until the daemon ends, whose threads may still look at it.
  void quiesce() {
    if (_handedBack < 0) _handedBack = MHD_quiesce_daemon(_daemon);
  }
  const ListeningSocket& socket() const noexcept { return _socket; }
  unsigned connections() const {
    return MHD_get_daemon_info(_daemon, MHD_DAEMON_INFO_CURRENT_CONNECTIONS)->num_connections;
  }

 private:
  Complaints _complaints;
  ListeningSocket _socket;
  MHD_Daemon* _daemon = nullptr;
  int _handedBack = -1;  // the library's socket
};

class Server : public HttpServer {
 public:
  Server(const HttpOptions& options, std::shared_ptr<HttpService> service)
      : _options(options), _shared(std::move(service), options.log, options.logsRequests) {
    _shared.limits = std::make_shared<const HttpLimits>(options.limits);
    if (!options.usersFile.empty()) _shared.users = std::make_unique<HttpUsers>(readUsers());
    const TlsSecrets secrets(options.certificate);
    std::vector<ListeningSocket> sockets;
    for (const std::string& address : options.addresses) {
      for (ListeningSocket& socket : listenAt(address)) sockets.push_back(std::move(socket));
    }
    for (const ListeningSocket& socket : sockets) {
      if (!socket.isLoopback() && !(secrets.areThere() && _shared.users != nullptr)) refuseToBeOpen(socket);
    }
    for (ListeningSocket& socket : sockets) {
      _urls.push_back((secrets.areThere() ? "https://" : "http://") + socket.address() + "/cimom");
      _listeners.push_back(std::make_unique<Listener>(_shared, std::move(socket), secrets));
    }
  }
  ~Server() override {
    _shared.isDraining = true;
    interrupt();
    _shared.connections.endAll();
  }

  const std::vector<std::string>& urls() const override { return _urls; }

  void reload(const HttpLimits& limits, std::shared_ptr<HttpService> service) override {
    auto fresh = std::make_shared<const HttpLimits>(limits);
    std::optional<UserFile> users;
    if (_shared.users != nullptr) users = readUsers();
    if (!_options.certificate.file.empty()) renewListeners(TlsSecrets(_options.certificate));
    if (users) _shared.users->replace(std::move(*users));
    std::atomic_store(&_shared.limits, std::move(fresh));
    std::atomic_store(&_shared.service, std::move(service));
  }

  void drain(unsigned seconds, const std::function<bool()>& isHurried) override {
    _shared.isDraining = true;
    for (const auto& listener : _listeners) {
      listener->quiesce();
      shutdown(listener->socket().file(), SHUT_RDWR);
    }
    _shared.connections.endIdle();
    waitUntilIdle(std::chrono::seconds(seconds), isHurried);
    interrupt();
    waitUntilIdle(kLastReplies, isHurried);
  }

 private:
  UserFile readUsers() const {
    UserFile users = UserFile::read(_options.usersFile);
    if (!users.warning().empty()) _shared.requestLog.complain(users.warning());
    return users;
  }
  // What is being answered is to end.
  void interrupt() { ++_shared.interruptions; }
  void waitUntilIdle(std::chrono::seconds patience, const std::function<bool()>& isHurried) {
    const Clock::time_point end = Clock::now() + patience;
    while (!_shared.connections.waitUntilIdle(std::min(end, Clock::now() + kHurryLook))) {
      if (Clock::now() >= end || isHurried()) return;
    }
  }
  [[noreturn]] static void refuseToBeOpen(const ListeningSocket& socket) {
    throw std::runtime_error(
        "who is beyond this machine is answered with TLS and after a password only: to listen at " + socket.address() +
        ", give --tls-cert, --tls-key and --users");
  }

  // The new ones listen at the same sockets.
  void renewListeners(const TlsSecrets& secrets) {
    std::vector<std::unique_ptr<Listener>> fresh;
    for (const auto& listener : _listeners) {
      ListeningSocket socket(fcntl(listener->socket().file(), F_DUPFD_CLOEXEC, 0));
      if (socket.file() < 0) throw std::runtime_error("there are too many open files");
      fresh.push_back(std::make_unique<Listener>(_shared, std::move(socket), secrets));
    }
    std::erase_if(_ending, [](const auto& listener) { return listener->connections() == 0; });
    for (auto& listener : _listeners) {
      listener->quiesce();
      _ending.push_back(std::move(listener));
    }
    _listeners = std::move(fresh);
    ++_shared.listeners;
  }

  const HttpOptions _options;
  HttpShared _shared;
  std::vector<std::unique_ptr<Listener>> _listeners;
  std::vector<std::unique_ptr<Listener>> _ending;  // that have connections from before
  std::vector<std::string> _urls;
};

}  // namespace

std::unique_ptr<HttpServer> startHttpServer(const HttpOptions& options, std::shared_ptr<HttpService> service) {
  return std::make_unique<Server>(options, std::move(service));
}
