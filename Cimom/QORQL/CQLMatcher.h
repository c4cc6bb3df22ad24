// A filter's WHERE clause prepared for matching.
#ifndef QORQL_CQLMATCHER_H
#define QORQL_CQLMATCHER_H

#include <memory>
#include <string>
#include <vector>

#include "Cimom/QORQL/CQLConditions.h"

// Conditions that all must hold, asked in their order. Threads may share one.
// BORROWS the statement.
class CQLMatcher {
 public:
  explicit CQLMatcher(const CQLQueryStatement& statement);
  ~CQLMatcher();
  // Whether the instance is of a FROM class or of a subclass of one.
  bool isOfFromClass(const IQoriObject& instance) const;
  bool matches(const QORSmrPtr<IQoriObject>& instance) const { return firstFailure(instance) == nullptr; }
  // The first condition that does not hold; null when all do.
  const CQLCondition* firstFailure(const QORSmrPtr<IQoriObject>& instance) const;
  // Why no instance can match, whatever it holds; empty when one may.
  std::string neverBecause() const;

 private:
  void addExpression(const CQLQueryStatement& statement, const QORSmrPtr<QORQL_Evaluatable>& node);

  void add(std::unique_ptr<CQLCondition> condition);

  std::vector<QORString> _classes;  // of FROM
  std::vector<std::unique_ptr<CQLCondition>> _conditions;
  std::vector<CQLQuickTest> _quickTests;  // of each condition
  const CQLQueryStatement& _statement;
};

#endif
