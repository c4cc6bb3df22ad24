// What answers HTTP requests, without knowing how they come and leave.
// Tested by tests/unit/Server/ServerOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_HTTPSERVICE_H
#define QORQL_SERVER_HTTPSERVICE_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Cimom/Server/ServerReply.h"
#include "cmpbase.h"

// Why what is being answered is to end before it is done.
enum class StopReason { None, ClientGone, ShuttingDown };

// Who asks.
struct ServerClient {
  std::string address;  // "127.0.0.1", without the port
  std::string user;     // empty: nobody in particular, where no users are asked for
  // Asked once in a while, by the thread that answers; never null.
  std::function<StopReason()> stopReason = [] { return StopReason::None; };
};

// One request, with its whole body, which is bounded.
struct HttpRequest {
  std::string method;  // "POST"
  std::string path;    // "/cimom"
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  ServerClient client;

  // The value of the first header of the name, ignoring case; null when there is none.
  const std::string* header(std::string_view name) const;
};

// What the log tells of a request besides what HTTP knows.
struct ServerNote {
  std::string operation;  // "EnumerateInstances"
  std::string nameSpace;
  std::string subject;     // the class, the path or the query
  QORuint32 status = 0;    // the CIM status
  std::string statusText;  // what the client is told of it
};

struct HttpReply {
  unsigned status = 200;
  std::vector<std::pair<std::string, std::string>> headers;
  std::unique_ptr<ServerReply> body;  // never null
  ServerNote note;
};

// Any number of threads call at once.
class HttpService {
 public:
  virtual ~HttpService() = default;
  // What it throws is answered with 500 and logged.
  virtual HttpReply serve(const HttpRequest& request) = 0;
};

#endif
