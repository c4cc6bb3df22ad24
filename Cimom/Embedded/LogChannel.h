// Where log lines go.
// Tested by tests/unit/Embedded/ServicesTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_LOGCHANNEL_H
#define QORQL_EMBEDDED_LOGCHANNEL_H

#include <atomic>
#include <memory>
#include <mutex>

#include "Cimom/Embedded/EmbeddedObjectManager.h"

namespace embedded {

// Threads may share one; the sink is called on the thread that logs, several
// at once when several log.
class LogChannel {
 public:
  void connect(EmbeddedObjectManager::LogSink sink, QORuint32 maximumSeverity);
  // Drops lines beyond the level, and what the sink throws.
  void write(const QORString& who, const QORString& message, QORuint32 severity) const noexcept;

 private:
  using Sink = std::shared_ptr<const EmbeddedObjectManager::LogSink>;

  std::atomic<bool> _isConnected{false};
  std::atomic<QORuint32> _maximumSeverity{0};
  mutable std::mutex _mutex;  // guards _sink
  Sink _sink;
};

}  // namespace embedded

#endif
