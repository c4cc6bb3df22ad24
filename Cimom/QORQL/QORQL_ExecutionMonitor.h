// How a caller watches the queries that run on its thread, and stops them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EXECUTIONMONITOR_H
#define QORQL_EXECUTIONMONITOR_H

#include <exception>

#include "Cimom/QORQL/QORQL_Exception.h"
#include "cmpbase.h"

class QORQL_Comparison;

// A caller derives from this, overrides what it is interested in and attaches
// it with a QORQL_MonitorScope. All operations are called on the thread that
// runs the query; none may throw. A monitor never changes what a query gives:
// it watches the query, or ends it.
class QORQL_ExecutionMonitor {
 public:
  // Steps nest: a condition may fetch a class.
  enum Step {
    kStepFetch = 0,      // an enumeration or an association call; the subject is the class asked for
    kStepCondition = 1,  // WHERE
    kStepSort = 2,       // ORDER BY
    kStepProject = 3     // the select list; twice in a query with ORDER BY
  };
  // How a condition was applied to the table.
  enum Method {
    kMethodFilter = 0,          // to rows that were there, one by one
    kMethodHashJoin = 1,        // two sets of rows joined through an index of keys
    kMethodKeyJoin = 2,         // two sets of rows joined by comparing computed keys pair by pair
    kMethodFilteredProduct = 3  // every pair of rows of two sets tested
  };

  virtual ~QORQL_ExecutionMonitor();

  // Asked at the beginning of each step and once in some thousand rows. After true
  // the query ends with a QORQL_StoppedException; its table is incomplete,
  // the parsed query and its symbols can be used again.
  virtual bool isStopRequested() noexcept;
  virtual void stepBegins(Step step, const QORString& subject) noexcept;
  virtual void stepEnds(Step step) noexcept;
  // In the order in which conditions are applied; also for operands of OR that decide nothing.
  virtual void conditionApplied(const QORQL_Comparison& comparison, Method method) noexcept;
  // An error while rows were built or written: the engine logs it, keeps the rows made so far and continues as
  // if they were all. The cause is what was thrown.
  virtual void resultEndsEarly(const std::exception_ptr& cause) noexcept;
};

// A query was stopped by a monitor. Code QORQL_INTERNAL_ERROR, "The query was stopped."
class QORQL_StoppedException : public QORQL_Exception {
 public:
  QORQL_StoppedException();
  QORQL_StoppedException(const QORQL_StoppedException&) = default;
  QORQL_StoppedException& operator=(const QORQL_StoppedException&) = default;
  ~QORQL_StoppedException() override;
};

// While it lives, the monitor watches the queries of the thread that made it;
// an outer scope is inactive meanwhile. BORROWS the monitor. REQUIRES to be destroyed
// on its own thread, inner scopes first.
class QORQL_MonitorScope {
 public:
  // Attaches the monitor to this thread.
  explicit QORQL_MonitorScope(QORQL_ExecutionMonitor& monitor) noexcept;
  QORQL_MonitorScope(const QORQL_MonitorScope&) = delete;
  QORQL_MonitorScope& operator=(const QORQL_MonitorScope&) = delete;
  ~QORQL_MonitorScope();

 private:
  QORQL_ExecutionMonitor* _outer;
};

// For the engine's own parts and for readers of results.

// The thread's monitor; null when none is attached.
QORQL_ExecutionMonitor* QORQL_currentMonitor() noexcept;

// Logs the message and tells the monitor what ended the result. REQUIRES to be called inside a catch clause.
void QORQL_reportEarlyEnd(const char* message);

// Tells the monitor of a step. THROWS QORQL_StoppedException at its beginning.
class QORQL_StepScope {
 public:
  // The step begins here, and ends with this object.
  QORQL_StepScope(QORQL_ExecutionMonitor::Step step, const QORString& subject);
  QORQL_StepScope(const QORQL_StepScope&) = delete;
  QORQL_StepScope& operator=(const QORQL_StepScope&) = delete;
  ~QORQL_StepScope();

 private:
  QORQL_ExecutionMonitor* _monitor;
  QORQL_ExecutionMonitor::Step _step;
};

// Counts the work of one loop and asks the monitor once in a while. Costs a test
// of a pointer where none is attached.
class QORQL_StopCheck {
 public:
  QORQL_StopCheck() noexcept : _monitor(QORQL_currentMonitor()) {}

  // THROWS QORQL_StoppedException.
  void count(QORuint64 work = 1) {
    if (_monitor == nullptr) return;
    _work += work;
    if (_work >= kInterval) ask();
  }

 private:
  static constexpr QORuint64 kInterval = 4096;

  void ask();

  QORQL_ExecutionMonitor* _monitor;
  QORuint64 _work = 0;
};

#endif
