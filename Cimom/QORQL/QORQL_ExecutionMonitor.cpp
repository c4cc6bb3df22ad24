// The thread's monitor, and how the engine's parts speak to it.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"

#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_Log.h"

namespace {

constinit thread_local QORQL_ExecutionMonitor* theMonitor = nullptr;
constinit thread_local QORQL_RowBudget* theBudget = nullptr;

}  // namespace

QORQL_ExecutionMonitor::~QORQL_ExecutionMonitor() = default;
bool QORQL_ExecutionMonitor::isStopRequested() noexcept { return false; }
void QORQL_ExecutionMonitor::stepBegins(Step /*step*/, const QORString& /*subject*/) noexcept {}
void QORQL_ExecutionMonitor::stepEnds(Step /*step*/) noexcept {}
void QORQL_ExecutionMonitor::conditionApplied(const QORQL_Comparison& /*comparison*/, Method /*method*/) noexcept {}
void QORQL_ExecutionMonitor::resultEndsEarly(const std::exception_ptr& /*cause*/) noexcept {}

QORQL_StoppedException::QORQL_StoppedException()
    : QORQL_Exception(QORQL_INTERNAL_ERROR, QORQL_ExecutionMessages::kStopped) {}
QORQL_StoppedException::~QORQL_StoppedException() = default;

QORQL_MonitorScope::QORQL_MonitorScope(QORQL_ExecutionMonitor& monitor) noexcept : _outer(theMonitor) {
  theMonitor = &monitor;
}
QORQL_MonitorScope::~QORQL_MonitorScope() { theMonitor = _outer; }

QORQL_ExecutionMonitor* QORQL_currentMonitor() noexcept { return theMonitor; }

QORQL_RowBudget::QORQL_RowBudget(QORuint64 bytes) noexcept : _bytes(bytes), _outer(theBudget) { theBudget = this; }
QORQL_RowBudget::~QORQL_RowBudget() { theBudget = _outer; }

void QORQL_RowBudget::grow(QORuint64 bytes) {
  _greatest = bytes;
  if (isExceeded()) throw QORQL_StoppedException();
}

QORQL_RowBudget* QORQL_currentRowBudget() noexcept { return theBudget; }

void QORQL_reportEarlyEnd(const char* message) {
  if (theMonitor != nullptr) theMonitor->resultEndsEarly(std::current_exception());
  QORQL_logError(message);
}

QORQL_StepScope::QORQL_StepScope(QORQL_ExecutionMonitor::Step step, const QORString& subject)
    : _monitor(theMonitor), _step(step) {
  if (_monitor == nullptr) return;
  if (_monitor->isStopRequested()) throw QORQL_StoppedException();
  _monitor->stepBegins(step, subject);
}
QORQL_StepScope::~QORQL_StepScope() {
  if (_monitor != nullptr) _monitor->stepEnds(_step);
}

void QORQL_StopCheck::ask() {
  _work = 0;
  if (_monitor->isStopRequested()) throw QORQL_StoppedException();
}

void QORQL_StopCheck::takeOfBudget(QORuint64 count, QORuint64 bytesOfEach) {
  QORuint64 bytes = 0;
  if (__builtin_mul_overflow(count, bytesOfEach, &bytes)) bytes = ~QORuint64{0};
  _budget->take(bytes);
}
