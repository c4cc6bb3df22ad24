// One daemon of libmicrohttpd for each address, a thread for each connection: a request
// may take as long as a query does, and an idle thread costs nothing.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/HttpServer.h"

#include <microhttpd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "Cimom/Server/HttpAddress.h"
#include "Cimom/Server/HttpConnections.h"
#include "Cimom/Server/HttpExchange.h"

namespace {

using Clock = HttpConnections::Clock;

// Connections above the limit, which are told that there are too many of them.
constexpr unsigned kSpareConnections = 64;
constexpr std::chrono::seconds kSpareTime{5};
constexpr std::size_t kConnectionMemory = std::size_t{128} << 10;  // heads of requests are shorter
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
  *context = new HttpConnections::Handle(shared.connections.add(socket, hostOf(client), deadline));
}

MHD_Result takeRequest(void* given, MHD_Connection* connection, const char* path, const char* method,
                       const char* /*version*/, const char* bytes, std::size_t* count, void** exchange) {
  try {
    if (*exchange == nullptr) {
      auto made = std::make_unique<HttpExchange>(*static_cast<HttpShared*>(given), placeOf(connection), connection,
                                                 path, method);
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

class Server : public HttpServer {
 public:
  Server(const HttpOptions& options, std::shared_ptr<HttpService> service)
      : _shared(std::move(service), options.log, options.logsRequests) {
    _shared.limits = std::make_shared<const HttpLimits>(options.limits);
    std::vector<ListeningSocket> sockets;
    for (const std::string& address : options.addresses) {
      for (ListeningSocket& socket : listenAt(address)) sockets.push_back(std::move(socket));
    }
    for (const ListeningSocket& socket : sockets) {
      if (!socket.isLoopback()) refuseToBeOpen(socket);
    }
    for (ListeningSocket& socket : sockets) start(socket);
  }
  ~Server() override {
    interrupt();
    _shared.connections.endAll();
    for (MHD_Daemon* const daemon : _daemons) MHD_stop_daemon(daemon);
  }

  const std::vector<std::string>& urls() const override { return _urls; }

  void reload(const HttpLimits& limits) override {
    std::atomic_store(&_shared.limits, std::make_shared<const HttpLimits>(limits));
  }

  void interrupt() override { ++_shared.interruptions; }

  void drain(unsigned seconds) override {
    _shared.isDraining = true;
    for (MHD_Daemon* const daemon : _daemons) {
      const int socket = MHD_quiesce_daemon(daemon);
      if (socket >= 0) ListeningSocket closes(socket);
    }
    _shared.connections.endIdle();
    _shared.connections.waitUntilIdle(Clock::now() + std::chrono::seconds(seconds));
    interrupt();
  }

 private:
  [[noreturn]] static void refuseToBeOpen(const ListeningSocket& socket) {
    throw std::runtime_error(
        "who is beyond this machine is answered with TLS and after a password only: to listen at " + socket.address() +
        ", give --tls-cert, --tls-key and --users");
  }

  void start(ListeningSocket& socket) {
    const std::string url = "http://" + socket.address() + "/cimom";
    const unsigned connections = _shared.limitsNow()->connections + kSpareConnections;
    const unsigned flags = MHD_USE_THREAD_PER_CONNECTION | MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_POLL | MHD_USE_ITC;
    MHD_Daemon* const daemon = MHD_start_daemon(
        flags, 0, nullptr, nullptr, &takeRequest, &_shared,                                           //
        MHD_OPTION_LISTEN_SOCKET, socket.file(), MHD_OPTION_CONNECTION_LIMIT, connections,            //
        MHD_OPTION_CONNECTION_MEMORY_LIMIT, kConnectionMemory, MHD_OPTION_THREAD_STACK_SIZE, kStack,  //
        MHD_OPTION_NOTIFY_CONNECTION, &noteConnection, &_shared,                                      //
        MHD_OPTION_NOTIFY_COMPLETED, &endRequest, nullptr, MHD_OPTION_END);
    if (daemon == nullptr) throw std::runtime_error("cannot serve at " + socket.address());
    static_cast<void>(socket.release());
    _daemons.push_back(daemon);
    _urls.push_back(url);
  }

  HttpShared _shared;
  std::vector<MHD_Daemon*> _daemons;
  std::vector<std::string> _urls;
};

}  // namespace

std::unique_ptr<HttpServer> startHttpServer(const HttpOptions& options, std::shared_ptr<HttpService> service) {
  return std::make_unique<Server>(options, std::move(service));
}
