// How messages reach listeners.
// Tested by tests/unit/Server/IndicationListenerTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_EXPORTTRANSPORT_H
#define QORQL_SERVER_EXPORTTRANSPORT_H

#include <atomic>
#include <functional>
#include <memory>
#include <string>

// The way to one listener. One thread and one message at a time.
class ExportTransport {
 public:
  virtual ~ExportTransport() = default;
  // Sends a message and returns the whole reply, which is bounded. THROWS std::runtime_error when there is none: it is
  // refused, silent for too long, or answers with another HTTP status than 200. Ends within moments once the flag that
  // it was made with is set.
  virtual std::string post(const std::string& message) = 0;
};

// Called by any thread. BORROWS `isStopped`.
using ExportTransportMaker =
    std::function<std::unique_ptr<ExportTransport>(const std::string& url, const std::atomic<bool>& isStopped)>;

#endif
