// Collecting the references of an expression.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLReferences.h"

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Text.h"

namespace {

class ReferenceCollector : public QORQL_ExpressionVisitor {
 public:
  void visitFactor(const QORQL_Factor& factor) override {
    if (factor.getClassName().IsNull()) return;
    references.push_back(
        {*factor.getClassName(), QORQL_textOrEmpty(factor.getPropertyName()), QORQL_textOrEmpty(factor.getChain())});
  }
  // A function comes right after its argument; a class in OBJECTPATH has a word
  // in the property's place.
  void visitFunction(const QORQL_Function& function) override {
    const bool isPathOfClass = function.getFunctionID() == QORQL_FUNCTIONID_OBJECTPATH && !references.empty() &&
                               references.back().propertyName == QORQL_ExecutionMessages::kNoProperty;
    if (isPathOfClass) references.pop_back();
  }

  std::vector<CQLReference> references;
};

class IsaCollector : public QORQL_ExpressionVisitor {
 public:
  void visitComparison(const QORQL_Comparison& comparison) override {
    if (comparison.getOperator() == QORQL_OperatorISA) tests.push_back(&comparison);
  }

  std::vector<const QORQL_Comparison*> tests;
};

// Literals are constant, and so is a function, which has no value in a filter.
// ISA reads a property even where both its sides are texts.
struct ReadsProperty {
  bool operator()(const QORQL_Factor& leaf) const { return leaf.getLiteral().IsNull(); }
  bool operator()(const QORQL_Comparison& comparison) const { return comparison.getOperator() == QORQL_OperatorISA; }
};

}  // namespace

std::vector<CQLReference> CQLReferencesOf(const QORSmrPtr<QORQL_Evaluatable>& expression) {
  ReferenceCollector* const collector = new ReferenceCollector();
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(collector);
  if (!expression.IsNull()) expression->accept(visitor);
  return collector->references;
}

std::vector<const QORQL_Comparison*> CQLIsaTestsOf(const QORSmrPtr<QORQL_Evaluatable>& expression) {
  IsaCollector* const collector = new IsaCollector();
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(collector);
  if (!expression.IsNull()) expression->accept(visitor);
  return collector->tests;
}

bool CQLIsConstant(const QORSmrPtr<QORQL_Evaluatable>& side) {
  return side.IsNull() || !QORQL_contains(*side, ReadsProperty());
}

QORString CQLFirstStep(const QORString& path) { return path.subStr(0, path.find(".")); }

QORString CQLBehindFirstStep(const QORString& path) {
  const std::size_t dot = path.find(".");
  return dot == QORString::npos ? QORString::emptyString() : path.subStr(dot + 1);
}
