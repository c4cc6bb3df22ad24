// Handing log lines to the sink.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/LogChannel.h"

#include <utility>

namespace embedded {

void LogChannel::connect(EmbeddedObjectManager::LogSink sink, QORuint32 maximumSeverity) {
  Sink fresh = sink ? std::make_shared<const EmbeddedObjectManager::LogSink>(std::move(sink)) : nullptr;
  const std::lock_guard<std::mutex> lock(_mutex);
  _maximumSeverity = maximumSeverity;
  _isConnected = fresh != nullptr;
  _sink.swap(fresh);
}

void LogChannel::write(const QORString& who, const QORString& message, QORuint32 severity) const noexcept {
  if (!_isConnected || severity > _maximumSeverity) return;
  try {
    Sink sink;
    {
      const std::lock_guard<std::mutex> lock(_mutex);
      sink = _sink;
    }
    if (sink != nullptr) (*sink)(who, message, severity);
  } catch (...) {
    // A log line that fails must not fail the query.
    return;
  }
}

}  // namespace embedded
