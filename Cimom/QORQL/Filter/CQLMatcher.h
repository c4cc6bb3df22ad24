// A filter's WHERE clause prepared for matching.
// Tested by tests/unit/Filters/CQLQueryStatementTest.cpp, tests/unit/Filters/CQLConditionsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLMATCHER_H
#define QORQL_CQLMATCHER_H

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "Cimom/QORQL/Filter/CQLConditions.h"
#include "Cimom/QORQL/Filter/CQLScope.h"
#include "Cimom/QORQL/QORQL_Executable.h"

// Conditions that all must hold, asked in their order. Threads may share one.
class CQLMatcher {
 public:
  // BORROWS the scope, and the clause's tree; a null clause holds for every instance.
  CQLMatcher(const CQLScope& scope, const QORSmrPtr<QORQL_Executable>& whereClause);
  // Whether the instance matches, where few instructions decide it: the filter's own
  // namespace text, an instance of the layout that was last found to be of a FROM
  // class itself, and conditions with quick checks. Undecided everywhere else.
  CQLQuickCheck::Outcome matchesQuickly(const IQoriObject* instance, const QORString& nameSpace) const noexcept {
    using Outcome = CQLQuickCheck::Outcome;
    if (instance == nullptr || nameSpace.data() != _nameSpaceText) return Outcome::Undecided;
    const QoriCells found = instance->getCells();
    if (found.cells == nullptr) return Outcome::Undecided;
    const QORuint64 serial = found.layout->getSerial();
    if (serial != _fromSerial.load(std::memory_order_relaxed)) return Outcome::Undecided;
    for (const CQLQuickCheck& check : _quickChecks) {
      const Outcome outcome = check.checkKnown(found.cells, serial);
      if (outcome != Outcome::Holds) return outcome;
    }
    return Outcome::Holds;
  }
  // Whether the instance is of a FROM class or of a subclass of one.
  bool isOfFromClass(const IQoriObject& instance) const;
  bool matches(const QORSmrPtr<IQoriObject>& instance) const { return firstFailure(instance) == nullptr; }
  // As CQLCondition::explain, of the first condition that does not hold; empty when all do.
  std::string explainFailure(const QORSmrPtr<IQoriObject>& instance) const;
  // What an index may use: one for each condition; one Never alone when no
  // instance can match. BORROWS from this object.
  std::vector<CQLAccess> accesses() const;
  // The FROM classes.
  const std::vector<QORString>& classNames() const noexcept { return _classes; }
  // Why no instance can match, whatever it holds.
  CQLNeverReason neverBecause() const;

 private:
  static constexpr QORuint64 kNoSerial = ~QORuint64{0};

  // The first condition that does not hold; null when all do.
  const CQLCondition* firstFailure(const QORSmrPtr<IQoriObject>& instance) const;
  void addExpression(const QORSmrPtr<QORQL_Evaluatable>& node);
  void add(std::unique_ptr<CQLCondition> condition);

  std::vector<QORString> _classes;  // of FROM
  std::vector<std::unique_ptr<CQLCondition>> _conditions;
  std::vector<CQLQuickCheck> _quickChecks;  // of each condition
  const CQLScope& _scope;
  const char* _nameSpaceText = nullptr;  // of the filter's string; null when that is a null string
  mutable std::atomic<QORuint64> _fromSerial{kNoSerial};
};

#endif
