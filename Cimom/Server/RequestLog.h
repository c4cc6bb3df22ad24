// Tells of each request in a line.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_REQUESTLOG_H
#define QORQL_SERVER_REQUESTLOG_H

#include <chrono>
#include <cstdint>
#include <string>

#include "Cimom/Server/HttpService.h"
#include "Cimom/Server/LogFile.h"

struct RequestRecord {
  std::string client;
  std::string user;
  ServerNote note;
  unsigned http = 0;        // 0: there was no reply
  std::uint64_t bytes = 0;  // of the reply's body
  double milliseconds = 0;  // from the head of the request to the end of the reply
  bool isWhole = true;      // the reply left to its end
};

// Writes a JSON object a line, as LogFile does: it waits for nobody. Any thread may call.
class RequestLog {
 public:
  // BORROWS the file.
  RequestLog(int file, bool logsRequests);

  void tell(const RequestRecord& record) const noexcept;
  // Something that has gone wrong besides a request.
  void complain(const std::string& what) const noexcept;

 private:
  mutable LogFile _file;
  const bool _logsRequests;
};

// The line of a record, with its end, which is no longer than a log's longest.
std::string lineOf(const RequestRecord& record, std::chrono::system_clock::time_point when);

#endif
