// Whether an instance satisfies conditions of a filter, by a walk over their tree.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLTREEMATCH_H
#define QORQL_CQLTREEMATCH_H

#include "Cimom/QORQL/Filter/CQLScope.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "cimom/IQoriObject.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

// The steps of one walk, made for each instance. Each step gives false, Null
// or no value when anything about its node or the instance is not as it should
// be, also when something throws.
class CQLTreeMatch {
 public:
  using Value = QORSmrPtr<IQoriValue>;
  using Node = QORSmrPtr<QORQL_Evaluatable>;

  // BORROWS both. Of a null instance nothing can be read.
  CQLTreeMatch(const CQLScope& scope, const QORSmrPtr<IQoriObject>& instance) : _scope(scope), _instance(instance) {}

  bool satisfiesExpression(const Node& node) const;
  bool satisfiesTerm(const Node& node) const;
  bool satisfiesFactor(const Node& node) const;
  bool satisfiesComparison(const Node& node) const { return decide(node) == QoriTruth::True; }
  // Null where the comparison cannot be decided: by LIKE, IS NULL or a join
  // operator, or without one of its values.
  QoriTruth decide(const Node& comparison) const;

  // The value of a side of a comparison, of a product in it, and of a factor.
  Value sum(const Node& node) const;
  Value product(const Node& node) const;
  Value factor(const Node& node) const;
  // The value of a side that is the same for every instance.
  static Value constant(const CQLScope& scope, const Node& side);

  // The property whose class `comparison`, an ISA, tests: the property of the
  // instance itself that its left side is, or that a text without any property in it
  // names. Empty for everything else, such as a property reached through a path or a scope,
  // or with an index.
  static QORString isaProperty(const CQLScope& scope, const QORQL_Comparison& comparison);

 private:
  // As decide and factor, but THROW what the instance and its values throw.
  QoriTruth decideOperator(const QORQL_Comparison& comparison) const;
  QoriTruth decideIsa(const QORQL_Comparison& comparison) const;
  Value factorValue(const Node& node) const;
  Value nestedValue(const Node& node) const;

  const CQLScope& _scope;
  const QORSmrPtr<IQoriObject>& _instance;
};

#endif
