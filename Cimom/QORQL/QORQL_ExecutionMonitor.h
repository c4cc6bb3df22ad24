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

// While it lives, a query of the thread that made it is stopped, with a QORQL_StoppedException, when the rows of one
// of its tables would take more memory than this; an outer one is inactive meanwhile. What a row takes is estimated,
// objects that providers hand over are not counted. REQUIRES to be destroyed on its own thread, inner ones first.
class QORQL_RowBudget {
 public:
  // Attaches itself to this thread.
  explicit QORQL_RowBudget(QORuint64 bytes) noexcept;
  QORQL_RowBudget(const QORQL_RowBudget&) = delete;
  QORQL_RowBudget& operator=(const QORQL_RowBudget&) = delete;
  ~QORQL_RowBudget();

  // Whether it has stopped a query.
  bool isExceeded() const noexcept { return _greatest > _bytes; }
  // The bytes of the greatest table so far.
  QORuint64 greatest() const noexcept { return _greatest; }
  // A table takes so many bytes, or is about to. THROWS QORQL_StoppedException when that is too much.
  void take(QORuint64 bytes) {
    if (bytes > _greatest) grow(bytes);
  }

 private:
  void grow(QORuint64 bytes);

  const QORuint64 _bytes;
  QORuint64 _greatest = 0;
  QORQL_RowBudget* const _outer;
};

// For the engine's own parts and for readers of results.

// The thread's budget; null when none is attached.
QORQL_RowBudget* QORQL_currentRowBudget() noexcept;

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
  // Looks for what is attached to the thread.
  QORQL_StopCheck() noexcept : _monitor(QORQL_currentMonitor()), _budget(QORQL_currentRowBudget()) {}

  // THROWS QORQL_StoppedException.
  void count(QORuint64 work = 1) {
    if (_monitor == nullptr) return;
    _work += work;
    if (_work >= kInterval) ask();
  }
  // What the loop builds has, or is about to have, so many elements of so many bytes. THROWS QORQL_StoppedException
  // when that is beyond the thread's budget.
  void hold(QORuint64 count, QORuint64 bytesOfEach) {
    if (_budget != nullptr) takeOfBudget(count, bytesOfEach);
  }
  // About the bytes of a row that stands for itself, not as a tuple of places.
  static constexpr QORuint64 rowBytes(QORuint64 columns) noexcept { return 128 + 48 * columns; }

 private:
  static constexpr QORuint64 kInterval = 4096;

  void ask();
  void takeOfBudget(QORuint64 count, QORuint64 bytesOfEach);

  QORQL_ExecutionMonitor* _monitor;
  QORQL_RowBudget* _budget;
  QORuint64 _work = 0;
};

#endif
