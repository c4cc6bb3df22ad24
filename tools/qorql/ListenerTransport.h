// The way by which indications go to listeners over HTTP.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LISTENERTRANSPORT_H
#define QORQL_TOOL_LISTENERTRANSPORT_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "Cimom/Server/ExportTransport.h"

// How listeners are known whose URL is of https.
struct ListenerTrust {
  std::string caFile;  // PEM, in place of the system's certificates; empty: those
  bool isInsecure = false;
};

// The trust that holds now. Any thread may call.
class CurrentTrust {
 public:
  struct State {
    ListenerTrust trust;
    std::uint64_t version = 0;  // of what the files hold, too
  };

  explicit CurrentTrust(ListenerTrust trust) : _state{std::move(trust)} {}

  State get() const {
    const std::lock_guard lock(_mutex);
    return _state;
  }
  // Counts from the next message on.
  void set(const ListenerTrust& trust) {
    const std::lock_guard lock(_mutex);
    _state = {trust, _state.version + 1};
  }

 private:
  mutable std::mutex _mutex;
  State _state;
};

ExportTransportMaker listenerTransports(std::shared_ptr<const CurrentTrust> trust);

#endif
