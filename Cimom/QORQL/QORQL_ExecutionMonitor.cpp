// The thread's monitor, and how the engine's parts speak to it.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"

#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_Log.h"

namespace {

constinit thread_local QORQL_ExecutionMonitor* theMonitor = nullptr;

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
