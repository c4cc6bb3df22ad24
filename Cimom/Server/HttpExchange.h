// One request while it arrives, is answered and leaves.
// Tested by tests/server/http_test.py, tests/server/limits_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_HTTPEXCHANGE_H
#define QORQL_SERVER_HTTPEXCHANGE_H

#include <microhttpd.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "Cimom/Server/HttpConnections.h"
#include "Cimom/Server/HttpServer.h"
#include "Cimom/Server/HttpService.h"
#include "Cimom/Server/HttpUsers.h"
#include "Cimom/Server/RequestLog.h"

// What the exchanges of a server share.
struct HttpShared {
  explicit HttpShared(std::shared_ptr<HttpService> answers, int log, bool logsRequests)
      : service(std::move(answers)), requestLog(log, logsRequests) {}

  std::shared_ptr<const HttpLimits> limitsNow() const { return std::atomic_load(&limits); }
  std::shared_ptr<HttpService> serviceNow() const { return std::atomic_load(&service); }

  std::shared_ptr<HttpService> service;          // taken and replaced as a whole, as the limits
  std::unique_ptr<HttpUsers> users;              // null: nobody is asked who they are; not changed later
  std::shared_ptr<const HttpLimits> limits;      // taken and replaced as a whole
  std::atomic<bool> isDraining = false;          // no more requests are taken
  std::atomic<std::uint64_t> interruptions = 0;  // what began before the last one is to end
  std::atomic<unsigned> listeners = 0;           // how often others have taken their place
  HttpConnections connections;
  RequestLog requestLog;
};

// Belongs to the thread of its connection.
class HttpExchange {
 public:
  // The head of a request is there; the version is that of HTTP.
  HttpExchange(HttpShared& shared, HttpConnections::Handle place, MHD_Connection* connection, const char* path,
               const char* method, std::string_view version);
  HttpExchange(const HttpExchange&) = delete;
  HttpExchange& operator=(const HttpExchange&) = delete;

  // What may be done before there is a body: a refusal that leaves the body unread.
  MHD_Result begin();
  // A piece of the body; MHD_NO breaks the connection.
  MHD_Result take(const char* bytes, std::size_t count);
  // The whole request is there.
  MHD_Result answer();
  // The reply has left, or never will.
  void end(MHD_RequestTerminationCode how);

 private:
  struct Refusal {
    unsigned status = 0;  // 0: none
    const char* reason = "";
    bool endsConnection = false;
  };

  void readHeaders();
  Refusal faultOfHead();
  Refusal faultOfHeaders() const;
  Refusal faultOfLength();
  Refusal faultOfUser();
  MHD_Result abandon();
  MHD_Result refuse(const Refusal& refusal);
  void compress(HttpReply& reply) const;
  MHD_Result send(HttpReply reply);
  HttpReply serve();
  StopReason stopReason();
  bool isClientGone();

  HttpShared& _shared;
  const HttpConnections::Handle _place;
  MHD_Connection* const _connection;
  const std::shared_ptr<const HttpLimits> _limits;
  const std::shared_ptr<HttpService> _service;
  const HttpConnections::Clock::time_point _begin = HttpConnections::Clock::now();
  const std::uint64_t _interruptions;
  const bool _takesInterim;  // replies before the one that it waits for
  HttpRequest _request;
  bool _hasFoldedHeader = false;
  Refusal _refusal;             // that is told when the body has been read
  std::uint64_t _declared = 0;  // bytes of the body, where its head tells
  std::uint64_t _received = 0;
  RequestRecord _record;
  bool _wasCut = false;                             // the client still sends what nobody reads
  HttpConnections::Clock::time_point _nextProbe{};  // of a client that sends nothing more
};

#endif
