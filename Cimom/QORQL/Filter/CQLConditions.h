// The conditions of a filter, prepared: paths, constants and class names found
// once, then applied to any number of instances.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLCONDITIONS_H
#define QORQL_CQLCONDITIONS_H

#include <memory>
#include <string>

#include "Cimom/QORQL/CQLQueryFault.h"
#include "Cimom/QORQL/Filter/CQLAccess.h"
#include "Cimom/QORQL/Filter/CQLQuickCheck.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "cimom/IQoriObject.h"

class CQLScope;

// Why a condition holds for no instance, and the byte of the text that this is about.
struct CQLNeverReason {
  std::string text{};  // empty: it may hold
  QORuint32 offset = CQLQueryFault::kNoOffset;
};

// One condition of a chain of ANDs. Threads may share one.
class CQLCondition {
 public:
  virtual ~CQLCondition() = default;
  virtual bool holds(const QORSmrPtr<IQoriObject>& instance) const = 0;
  // A check that gives what holds() gives, or decides nothing; valid while the condition lives.
  virtual CQLQuickCheck quickCheck() const { return {}; }
  // The condition and, in parentheses, the values that it compared on the
  // instance or why it never holds.
  virtual std::string explain(const QORSmrPtr<IQoriObject>& instance) const = 0;
  // What an index may use of it; valid while the condition lives.
  virtual CQLAccess access() const { return {}; }
  virtual CQLNeverReason neverBecause() const { return {}; }
};

// The condition of an operand of AND. BORROWS both.
std::unique_ptr<CQLCondition> CQLMakeCondition(const CQLScope& scope, const QORSmrPtr<QORQL_Evaluatable>& operand);
// One that never holds.
std::unique_ptr<CQLCondition> CQLMakeNever(std::string text, CQLNeverReason reason);

#endif
