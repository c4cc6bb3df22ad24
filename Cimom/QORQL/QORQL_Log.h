// The engine's way of writing to the object manager's log.
// Tested by tests/unit/QORQL/DataRowTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_LOG_H
#define QORQL_LOG_H

#include <new>

#include "Cimom/QORQL/QORQL_Exception.h"
#include "cmpbase.h"

inline void QORQL_logAs(const QORString& who, const QORString& message, QoriTraceLog::Severity severity) noexcept {
  QORLog::log(who, message, severity, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
}
// A line is lost when there is no memory for it.
inline void QORQL_logOwn(const QORString& message, QoriTraceLog::Severity severity) noexcept {
  try {
    QORQL_logAs("CQL", message, severity);
  } catch (const std::bad_alloc&) {
    return;
  }
}
inline void QORQL_logError(const QORString& message) noexcept { QORQL_logOwn(message, QoriTraceLog::kError); }
inline void QORQL_logTrace(const QORString& message) noexcept { QORQL_logOwn(message, QoriTraceLog::kTrace); }

// Logs the message, then THROWS it as a QORQL_Exception with QORQL_INTERNAL_ERROR.
[[noreturn]] inline void QORQL_logAndThrow(const QORString& message,
                                           QoriTraceLog::Severity severity = QoriTraceLog::kError,
                                           const QORQL_Fault& fault = {}) {
  QORQL_logOwn(message, severity);
  throw QORQL_Exception(QORQL_Exception::QORQL_INTERNAL_ERROR, message, fault);
}

#endif
