// Preparing one side of a filter's comparison.
#include "Cimom/QORQL/Filter/CQLOperand.h"

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;
using Node = QORSmrPtr<QORQL_Evaluatable>;

// Literals are constant, and so is a function, which has no value in a filter.
// ISA reads a property even where texts alone stand beside it.
class PropertyFinder : public QORQL_ExpressionVisitor {
 public:
  void visitFactor(const QORQL_Factor& factor) override { found = found || factor.getLiteral().IsNull(); }
  void visitComparison(const QORQL_Comparison& comparison) override {
    found = found || comparison.getOperator() == QORQL_OperatorISA;
  }
  bool found = false;
};

}  // namespace

bool CQLIsConstant(const Node& side) {
  PropertyFinder* const finder = new PropertyFinder();
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  if (!side.IsNull()) side->accept(visitor);
  return !finder->found;
}

const QORQL_Factor* CQLLoneFactor(const Node& side) {
  const Node* node = &side;
  while (const auto* sum = QORQL_nodeAs<QORQL_Arithmetic>(*node)) {
    const QORQL_Factor* const factor = sum->loneFactor();
    if (factor == nullptr || factor->getOperator() != QORQL_OperatorNONE) return nullptr;
    if (factor->getEvaluatable().IsNull()) return factor;
    const auto* inner = QORQL_nodeAs<QORQL_Comparison>(factor->getEvaluatable());
    if (inner == nullptr || inner->getOperator() != QORQL_OperatorNONE) return nullptr;
    node = &inner->getLHSArithmeticExpression();
  }
  return nullptr;
}

std::unique_ptr<CQLOperand> CQLOperand::make(const CQLQueryStatement& statement, const Node& side) {
  const QORQL_Factor* const factor = CQLLoneFactor(side);
  if (factor != nullptr && factor->getLiteral().IsNull()) {
    return std::make_unique<CQLOperand>(std::make_unique<CQLPropertyPath>(statement, *factor));
  }
  return CQLIsConstant(side) ? std::make_unique<CQLOperand>(statement.doMatchArithmetic(side, QORSmrPtr<IQoriObject>()))
                             : nullptr;
}

CQLOperand::CQLOperand(const Value& constant) : _constant(constant) {
  if (!_constant.IsNull()) _view = _constant->scalar();
}
