// The conditions of a filter in three forms: a relation of property and literal
// or property and property, ISA, and everything else through the walk of the tree.
#include "Cimom/QORQL/CQLMatcher.h"

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using Value = QORSmrPtr<IQoriValue>;
using Node = QORSmrPtr<QORQL_Evaluatable>;

// The factor that a side of a comparison consists of; null when there is more to it.
const QORQL_Factor* loneFactor(const Node& side) {
  const auto* sum = dynamic_cast<const QORQL_Arithmetic*>(side.Get());
  if (sum == nullptr || sum->getOperator() != QORQL_OperatorNONE || sum->getTermCasted() == nullptr) return nullptr;
  const QORQL_Term& term = *sum->getTermCasted();
  const QORQL_Factor* const factor = term.getOperator() == QORQL_OperatorNONE ? term.getFactorCasted() : nullptr;
  return factor != nullptr && factor->getEvaluatable().IsNull() ? factor : nullptr;
}

std::string textOf(const Value& value) {
  if (value.IsNull()) return "NULL";
  const std::string text(value->toString().view());
  const bool isQuoted = !value->isArray() && value->getType()->getName() == "string";
  return isQuoted ? "'" + text + "'" : text;
}

const char* symbolOf(QORQL_Operator op) {
  static constexpr const char* kSymbols[] = {"", "=", "<>", "<", ">", "<=", ">="};
  return op <= QORQL_OperatorGREATEREQUAL ? kSymbols[op] : "?";
}

// A literal or a property path.
class Operand {
 public:
  Operand(const CQLQueryStatement& statement, const QORQL_Factor& factor)
      : _literal(factor.getLiteral()), _path(statement, factor) {
    if (!_literal.IsNull()) _view = _literal->scalar();
  }
  QoriScalar view(const IQoriObject& instance, Object& object, Value& holder) const {
    return _literal.IsNull() ? _path.view(instance, object, holder) : _view;
  }
  Value value(const IQoriObject& instance) const { return _literal.IsNull() ? _path.value(instance) : _literal; }
  std::string text() const { return _literal.IsNull() ? _path.text() : textOf(_literal); }

 private:
  Value _literal;
  QoriScalar _view;
  CQLPropertyPath _path;
};

// An unsigned number beside a signed one is taken as a signed one of 64 bits.
std::partial_ordering compareAsFilter(const QoriScalar& a, const QoriScalar& b) noexcept {
  const bool areIntegers = a.kind != QoriScalarKind::Real && b.kind != QoriScalarKind::Real;
  if (areIntegers && a.kind != b.kind) return a.s <=> b.s;
  return qori::compareNumbers(a, b);
}

class Relation final : public CQLCondition {
 public:
  Relation(const CQLQueryStatement& statement, const QORQL_Factor& left, QORQL_Operator op, const QORQL_Factor& right)
      : _left(statement, left), _right(statement, right), _operator(op), _relation(QORQL_relationOf(op)) {}

  bool holds(const Object& instance) const override {
    Object leftObject;
    Object rightObject;
    Value leftHolder;
    Value rightHolder;
    const QoriScalar left = _left.view(*instance, leftObject, leftHolder);
    if (left.isNull()) return false;
    const QoriScalar right = _right.view(*instance, rightObject, rightHolder);
    if (left.isNumber() && right.isNumber()) return qori::satisfies(compareAsFilter(left, right), _relation);
    if (left.kind == QoriScalarKind::Text && right.kind == QoriScalarKind::Text) {
      return qori::satisfies(left.text->view() <=> right.text->view(), _relation);
    }
    return !right.isNull() && holdsByValue(*instance);
  }
  std::string explain(const Object& instance) const override {
    return _left.text() + " " + symbolOf(_operator) + " " + _right.text() + " (" + textOf(_left.value(*instance)) +
           " " + symbolOf(_operator) + " " + textOf(_right.value(*instance)) + ")";
  }

 private:
  bool holdsByValue(const IQoriObject& instance) const {
    try {
      return CQLQueryStatement::doComparisonOperation(_left.value(instance), _right.value(instance), _operator);
    } catch (...) {
      return false;
    }
  }

  Operand _left;
  Operand _right;
  QORQL_Operator _operator;
  QoriRelation _relation;
};

// Everything else: the tree decides.
class TreeCondition final : public CQLCondition {
 public:
  TreeCondition(const CQLQueryStatement& statement, const Node& comparison)
      : _statement(statement), _comparison(comparison) {}
  bool holds(const Object& instance) const override { return _statement.isMatchComparison(_comparison, instance); }
  std::string explain(const Object& instance) const override {
    const auto& comparison = dynamic_cast<const QORQL_Comparison&>(*_comparison);
    if (comparison.getOperator() == QORQL_OperatorISA) return explainIsa(comparison, *instance);
    if (!QORQL_isRelational(comparison.getOperator())) return "a condition that no filter can match";
    const auto side = [&](const Node& node) { return textOf(valueOf(node, instance)); };
    return side(comparison.getLHSArithmeticExpression()) + " " + symbolOf(comparison.getOperator()) + " " +
           side(comparison.getRHSArithmeticExpression());
  }

 private:
  Value valueOf(const Node& node, const Object& instance) const {
    try {
      return _statement.doMatchArithmetic(node, instance);
    } catch (...) {
      return {};
    }
  }
  static std::string explainIsa(const QORQL_Comparison& comparison, const IQoriObject& instance) {
    const CQLIsaNames names(comparison);
    std::string found = "no object";
    const QORSmrPtr<IQoriProperty> property(instance.getProperty(names.propertyName, true));
    if (!property.IsNull() && !property->getValue().IsNull()) {
      const Object object(property->getValue()->getObject());
      if (!object.IsNull()) found = object->getClassName().view();
    }
    return std::string(names.propertyName.view()) + " ISA " + std::string(names.className.view()) + " (" + found +
           " ISA " + std::string(names.className.view()) + ")";
  }

  const CQLQueryStatement& _statement;
  Node _comparison;
};

std::unique_ptr<CQLCondition> makeCondition(const CQLQueryStatement& statement, const Node& node) {
  const auto* comparison = dynamic_cast<const QORQL_Comparison*>(node.Get());
  if (comparison != nullptr && !comparison->isArrayComp() && comparison->getOperator() >= QORQL_OperatorEQUAL &&
      comparison->getOperator() <= QORQL_OperatorGREATEREQUAL) {
    const QORQL_Factor* const left = loneFactor(comparison->getLHSArithmeticExpression());
    const QORQL_Factor* const right = loneFactor(comparison->getRHSArithmeticExpression());
    if (left != nullptr && right != nullptr) {
      return std::make_unique<Relation>(statement, *left, comparison->getOperator(), *right);
    }
  }
  return std::make_unique<TreeCondition>(statement, node);
}

}  // namespace

CQLIsaNames::CQLIsaNames(const QORQL_Comparison& comparison) {
  const QORQL_Factor* const left = loneFactor(comparison.getLHSArithmeticExpression());
  const QORQL_Factor* const right = loneFactor(comparison.getRHSArithmeticExpression());
  if (left == nullptr || right == nullptr || right->getLiteral().IsNull()) return;
  const bool isText = !left->getLiteral().IsNull() && left->getLiteral()->getType()->getName() == "string";
  if (isText) {
    propertyName = left->getLiteral()->toString();
  } else if (left->getLiteral().IsNull() && !left->getPropertyName().IsNull()) {
    propertyName = *left->getPropertyName();
  }
  className = right->getLiteral()->toString();
  areBothGiven = !propertyName.isEmpty();
}

CQLMatcher::CQLMatcher(const CQLQueryStatement& statement) {
  const auto& query = dynamic_cast<const QORQL_Query&>(*statement._query);
  if (query.getWhereClause().IsNull()) return;
  const auto* where = dynamic_cast<const QORQL_WhereClause*>(query.getWhereClause().Get());
  if (where == nullptr) {
    _hopeless = "no condition";
  } else {
    addConditions(statement, where->getExpression());
  }
}

CQLMatcher::~CQLMatcher() = default;

void CQLMatcher::addConditions(const CQLQueryStatement& statement, const Node& node) {
  const auto* expression = dynamic_cast<const QORQL_Expression*>(node.Get());
  if (expression == nullptr || expression->getOperator() != QORQL_OperatorNONE) {
    _hopeless = "a filter that uses OR never matches";
    return;
  }
  const auto* term = dynamic_cast<const QORQL_ExpressionTerm*>(expression->getExpressionTerm().Get());
  while (term != nullptr) {
    const auto* factor = dynamic_cast<const QORQL_ExpressionFactor*>(term->getExpressionFactor().Get());
    if (factor == nullptr || factor->getOperator() != QORQL_OperatorNONE) {
      _hopeless = factor == nullptr ? "an association never matches" : "a condition under NOT never matches";
      return;
    }
    _conditions.push_back(makeCondition(statement, factor->getComparison()));
    term = dynamic_cast<const QORQL_ExpressionTerm*>(term->getExpressionTerm().Get());
  }
}

bool CQLMatcher::matches(const Object& instance) const {
  return _hopeless.empty() && firstFailure(instance) == nullptr;
}

const CQLCondition* CQLMatcher::firstFailure(const Object& instance) const {
  for (const std::unique_ptr<CQLCondition>& condition : _conditions) {
    if (!condition->holds(instance)) return condition.get();
  }
  return nullptr;
}

bool CQLQueryStatement::explainMatch(const QORSmrPtr<IQoriObject>& instance, std::string& why) const {
  requireValidated("CQLQUERYSTATEMENT::isMatch");
  if (!isMatchFromClause(instance)) {
    why = "its class " + std::string(instance->getClassName().view()) + " is not in FROM";
    return false;
  }
  if (!_matcher->hopeless().empty()) {
    why = _matcher->hopeless();
    return false;
  }
  const CQLCondition* const failure = _matcher->firstFailure(instance);
  if (failure != nullptr) why = failure->explain(instance);
  return failure == nullptr;
}
