// The object manager's trace log, as the engine writes to it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORLOG_H
#define QORQL_CMPBASE_QORLOG_H

#include "cmpbase/QORString.h"
#include "cmpbase/QORTypes.h"

// The numbers of the log interface. The engine uses severity 1 for errors and 4
// for the trace of client calls, always with verbosity 2.
class QoriTraceLog {
 public:
  enum Severity : QORuint32 { kFatal = 0, kError = 1, kWarning = 2, kInfo = 3, kTrace = 4 };
  enum Verbosity : QORuint32 { kTerse = 1, kNormal = 2, kVerbose = 3 };
};

// The log of the process. Stateless but for the channel's number.
class QORLog {
 public:
  // The object manager's own channel. The engine reads it at each call.
  static QORuint32 CIMOMLOG;

  // Writes one line. `who` names the component, `number` is 0 from the engine.
  // Never throws; any thread may call it.
  static void log(const QORString& who, const QORString& message, QoriTraceLog::Severity severity,
                  QoriTraceLog::Verbosity verbosity, QORuint32 number, QORuint32 channel) noexcept;
};

#endif
