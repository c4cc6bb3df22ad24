// Listens for HTTP requests and has a service answer them.
// Tested by tests/server/http_test.py, tests/server/limits_test.py, tests/server/users_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_HTTPSERVER_H
#define QORQL_SERVER_HTTPSERVER_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Cimom/Server/HttpService.h"

struct HttpLimits {
  std::uint64_t bodyBytes = std::uint64_t{16} << 20;  // of one request
  unsigned connections = 128;                         // at once; a few more are told that there are too many
  unsigned idleSeconds = 60;  // without a whole head of a request, and for what is sent to be taken
  unsigned failures = 10;     // wrong passwords from one address, until it has to wait
  unsigned failureSeconds = 60;
};

// Of TLS, in PEM; both are empty for plain HTTP.
struct HttpCertificate {
  std::string file;
  std::string keyFile;
};

struct HttpOptions {
  std::vector<std::string> addresses;  // "127.0.0.1:5988", "[::1]:0", "localhost:5988"
  HttpCertificate certificate;
  std::string usersFile;  // empty: nobody is asked who they are
  HttpLimits limits;
  int log = 2;  // the file that a line is written to for each request
  bool logsRequests = true;
};

// Any thread may call.
class HttpServer {
 public:
  // Ends all connections at once, and waits until the service has answered.
  virtual ~HttpServer() = default;
  // Where it listens, in the order of the addresses: "http://127.0.0.1:5988/cimom".
  virtual const std::vector<std::string>& urls() const = 0;
  // Reads certificate and users anew and takes limits and service for the requests that come; those that are being
  // answered keep theirs. Connections go on: with another certificate, until their next reply. THROWS
  // std::runtime_error; then all is as it was.
  virtual void reload(const HttpLimits& limits, std::shared_ptr<HttpService> service) = 0;
  // Accepts nothing more and lets what was asked end within the time, then has what can be stopped tell its
  // client so, for a moment. Idle connections end at once. `isHurried` is asked several times a second; when it says
  // so, the wait is over.
  virtual void drain(unsigned seconds, const std::function<bool()>& isHurried) = 0;
};

// It accepts connections when this returns. THROWS std::runtime_error: an address cannot be had, the certificate or the
// users cannot be read, or an address is beyond this machine without TLS and users.
std::unique_ptr<HttpServer> startHttpServer(const HttpOptions& options, std::shared_ptr<HttpService> service);

#endif
