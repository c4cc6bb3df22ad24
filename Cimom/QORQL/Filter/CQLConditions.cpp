// The conditions of a filter: relations of properties and constants, ISA, what
// never holds, and everything else through the tree.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLConditions.h"

#include "Cimom/QORQL/Filter/CQLComparison.h"
#include "Cimom/QORQL/Filter/CQLConditionText.h"
#include "Cimom/QORQL/Filter/CQLIsa.h"
#include "Cimom/QORQL/Filter/CQLOperand.h"
#include "Cimom/QORQL/Filter/CQLReferences.h"
#include "Cimom/QORQL/Filter/CQLTreeMatch.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using Value = QORSmrPtr<IQoriValue>;
using Node = QORSmrPtr<QORQL_Evaluatable>;

// Why a condition never holds.
constexpr char kIsaOfNoProperty[] =
    "ISA asks a property of the instance itself, without path, scope and index: any other never matches";
constexpr char kNotComputed[] = "a condition on a value that cannot be computed never matches";
CQLNeverReason reasonOfOperator(const QORQL_Comparison& comparison) {
  const char* const sign = QORQL_operatorText(comparison.getOperator());
  return {std::string("a condition with ") + sign + " never matches", comparison.getOffset()};
}
CQLNeverReason reasonOfIsa(const QORQL_Comparison& isa) {
  return {kIsaOfNoProperty, QORQL_startOf(*isa.getLHSArithmeticExpression())};
}

std::string compared(const Value& left, const QORQL_Comparison& comparison, const Value& right) {
  return " (" + CQLTextOfValue(left) + " " + QORQL_operatorText(comparison.getOperator()) + " " +
         CQLTextOfValue(right) + ")" + CQLTextOfMismatch(left, comparison, right);
}

// An unsigned number beside a signed one is taken as a signed one of 64 bits.
std::partial_ordering compareAsFilter(const QoriScalar& a, const QoriScalar& b) noexcept {
  const bool areIntegers = a.kind != QoriScalarKind::Real && b.kind != QoriScalarKind::Real;
  if (areIntegers && a.kind != b.kind) return a.s <=> b.s;
  return qori::compareNumbers(a, b);
}

// A boolean, or text that says TRUE or FALSE in any case: 1 or 0; otherwise -1.
int truthOf(const QoriScalar& view) noexcept {
  if (view.kind == QoriScalarKind::Boolean) return view.b ? 1 : 0;
  return view.kind == QoriScalarKind::Text ? CQLComparison::truthOf(view.text->view()) : -1;
}

// Values that are no scalars: arrays as wholes, others of one type.
bool holdsForValues(const IQoriValue& left, QoriRelation relation, const IQoriValue& right) {
  const bool areOfOneType =
      !left.isArray() && !right.isArray() && left.getType()->getName() == right.getType()->getName();
  const bool areComparable = areOfOneType || CQLComparison::areComparableArrays(left, right);
  return areComparable && left.relate(relation, right) == QoriTruth::True;
}

// A comparison of two values in CQLComparison's way, on their views.
class ViewRelation {
 public:
  explicit ViewRelation(QORQL_Operator op) : _relation(QORQL_relationOf(op)) {}

  QoriRelation getRelation() const noexcept { return _relation; }

  bool holds(const QoriScalar& left, const QoriScalar& right) const {
    using Kind = QoriScalarKind;
    if (left.isNull() || right.isNull()) return false;
    if (left.isNumber() && right.isNumber()) return qori::satisfies(compareAsFilter(left, right), _relation);
    if (left.kind == Kind::Text && right.kind == Kind::Text) {
      return qori::satisfies(left.text->view() <=> right.text->view(), _relation);
    }
    if (left.kind == Kind::Boolean || right.kind == Kind::Boolean) {
      const int leftTruth = truthOf(left);
      const int rightTruth = truthOf(right);
      return leftTruth >= 0 && rightTruth >= 0 && qori::satisfies(leftTruth <=> rightTruth, _relation);
    }
    return left.kind == right.kind && holdsForOneKind(left, right);
  }

 private:
  // Neither numbers nor texts nor booleans.
  bool holdsForOneKind(const QoriScalar& left, const QoriScalar& right) const {
    using Kind = QoriScalarKind;
    if (left.kind == Kind::Char16) return qori::satisfies(left.c <=> right.c, _relation);
    try {
      if (left.kind == Kind::Complex) return holdsForValues(*left.value, _relation, *right.value);
      // Only values know the order of datetimes; these share the texts.
      const CQoriValue first(*left.text, CQoriType::datetime);
      return first.relate(_relation, CQoriValue(*right.text, CQoriType::datetime)) == QoriTruth::True;
    } catch (...) {
      return false;
    }
  }

  QoriRelation _relation;
};

// Properties and constants compared with each other. A constant without a value
// cannot be computed, such as 5 / 0.
class Relation : public CQLCondition {
 public:
  Relation(const CQLScope& scope, const QORQL_Comparison& comparison, std::unique_ptr<CQLOperand> left,
           std::unique_ptr<CQLOperand> right)
      : _comparison(comparison),
        _left(std::move(left)),
        _right(std::move(right)),
        _relation(comparison.getOperator()),
        _text(CQLTextOfCondition(scope, comparison)) {}

  bool holds(const Object& instance) const override {
    Object leftObject;
    Object rightObject;
    Value leftHolder;
    Value rightHolder;
    const QoriScalar left = _left->view(*instance, leftObject, leftHolder);
    if (left.isNull()) return false;
    const QoriScalar right = _right->view(*instance, rightObject, rightHolder);
    return holdsFor(left, right);
  }
  CQLQuickCheck quickCheck() const override {
    const QORString* const property = _left->ownProperty();
    if (property == nullptr || !_right->holdsConstant() || !CQLQuickCheck::canDecide(_right->constant())) return {};
    return {*property, _relation.getRelation(), _right->constant()};
  }
  // The relation with the constant on the right, whichever side it is written on.
  CQLAccess access() const override {
    const bool isRight = _right->holdsConstant();
    const CQLOperand& constant = isRight ? *_right : *_left;
    const CQLPropertyPath* const path = (isRight ? _left : _right)->path();
    if (path == nullptr || !constant.holdsConstant()) return {};
    CQLAccess access;
    access.kind = CQLAccess::Kind::Relation;
    access.relation = isRight ? _relation.getRelation() : QORQL_mirrored(_relation.getRelation());
    access.path = path;
    access.constant = constant.constant();
    return access;
  }
  CQLNeverReason neverBecause() const override {
    if (isNever(*_left)) return {kNotComputed, QORQL_startOf(*_comparison.getLHSArithmeticExpression())};
    if (isNever(*_right)) return {kNotComputed, QORQL_startOf(*_comparison.getRHSArithmeticExpression())};
    return {};
  }
  std::string explain(const Object& instance) const override {
    return _text + compared(_left->value(*instance), _comparison, _right->value(*instance));
  }

 protected:
  const ViewRelation& relation() const noexcept { return _relation; }

 private:
  static bool isNever(const CQLOperand& side) { return side.holdsConstant() && side.constant().isNull(); }

  virtual bool holdsFor(const QoriScalar& left, const QoriScalar& right) const { return _relation.holds(left, right); }

  const QORQL_Comparison& _comparison;  // the statement's
  std::unique_ptr<CQLOperand> _left;
  std::unique_ptr<CQLOperand> _right;
  ViewRelation _relation;
  std::string _text;
};

// The same for ANY and EVERY element of one side, in the written order. An
// empty array satisfies neither.
class ArrayRelation final : public Relation {
 public:
  ArrayRelation(const CQLScope& scope, const QORQL_Comparison& comparison, std::unique_ptr<CQLOperand> left,
                std::unique_ptr<CQLOperand> right)
      : Relation(scope, comparison, std::move(left), std::move(right)),
        _isLeft(comparison.asksLeft()),
        _isAny(comparison.asksAny()) {}

  CQLQuickCheck quickCheck() const override { return {}; }
  CQLAccess access() const override { return {}; }

 private:
  bool holdsFor(const QoriScalar& left, const QoriScalar& right) const override {
    const QoriScalar& array = _isLeft ? left : right;
    if (array.kind != QoriScalarKind::Complex || !array.value->isArray()) return false;
    const QORSmrPtr<IQoriValue::List> elements(array.value->getArray());
    QORValSlistIterator<Value> element(*elements);
    while (++element) {
      const QoriScalar view = element.key().IsNull() ? QoriScalar() : element.key()->scalar();
      const bool holds = _isLeft ? relation().holds(view, right) : relation().holds(left, view);
      if (holds == _isAny) return _isAny;
    }
    return !_isAny && !elements->isEmpty();
  }

  bool _isLeft;
  bool _isAny;
};

class IsaCondition final : public CQLCondition {
 public:
  IsaCondition(const CQLScope& scope, const QORQL_Comparison& comparison, const QORString& property,
               const QORString& className)
      : _isa(scope, property, className), _text(CQLTextOfCondition(scope, comparison)) {}
  bool holds(const Object& instance) const override { return _isa.test(*instance) == QoriTruth::True; }
  CQLAccess access() const override {
    CQLAccess access;
    access.kind = CQLAccess::Kind::Isa;
    access.isa = &_isa;
    return access;
  }
  std::string explain(const Object& instance) const override {
    return _text + " (" + _isa.foundText(*instance) + " ISA " + std::string(_isa.className().view()) + ")";
  }

 private:
  CQLIsa _isa;
  std::string _text;
};

class Never final : public CQLCondition {
 public:
  Never(std::string text, CQLNeverReason reason) : _text(std::move(text)), _reason(std::move(reason)) {}
  bool holds(const Object& /*instance*/) const override { return false; }
  std::string explain(const Object& /*instance*/) const override { return _text + " (" + _reason.text + ")"; }
  CQLNeverReason neverBecause() const override { return _reason; }

 private:
  std::string _text;
  CQLNeverReason _reason;
};

// The part of an expression that has no value for any instance.
class ValuelessFinder : public QORQL_ExpressionVisitor {
 public:
  explicit ValuelessFinder(const CQLScope& scope) : _scope(scope) {}
  void visitComparison(const QORQL_Comparison& comparison) override {
    const QORQL_Operator op = comparison.getOperator();
    if (op > QORQL_OperatorGREATEREQUAL && op != QORQL_OperatorISA) reason = reasonOfOperator(comparison);
    const bool isIsa = op == QORQL_OperatorISA;
    if (isIsa && CQLTreeMatch::isaProperty(_scope, comparison).isEmpty()) reason = reasonOfIsa(comparison);
  }
  void visitFunction(const QORQL_Function& function) override { reason = {kNotComputed, function.getOffset()}; }

  CQLNeverReason reason;

 private:
  const CQLScope& _scope;
};

class TreeCondition final : public CQLCondition {
 public:
  TreeCondition(const CQLScope& scope, const Node& comparison) : _scope(scope), _comparison(comparison) {}
  bool holds(const Object& instance) const override {
    return CQLTreeMatch(_scope, instance).satisfiesComparison(_comparison);
  }
  std::string explain(const Object& instance) const override {
    const auto& comparison = dynamic_cast<const QORQL_Comparison&>(*_comparison);
    const CQLTreeMatch tree(_scope, instance);
    const Value left(tree.sum(comparison.getLHSArithmeticExpression()));
    const Value right(tree.sum(comparison.getRHSArithmeticExpression()));
    return CQLTextOfCondition(_scope, comparison) + compared(left, comparison, right);
  }
  CQLNeverReason neverBecause() const override {
    ValuelessFinder* const finder = new ValuelessFinder(_scope);
    QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
    _comparison->accept(visitor);
    return finder->reason;
  }

 private:
  const CQLScope& _scope;
  Node _comparison;
};

std::unique_ptr<CQLCondition> makeRelation(const CQLScope& scope, const QORQL_Comparison& comparison,
                                           const Node& node) {
  std::unique_ptr<CQLOperand> left = CQLOperand::make(scope, comparison.getLHSArithmeticExpression());
  std::unique_ptr<CQLOperand> right = CQLOperand::make(scope, comparison.getRHSArithmeticExpression());
  if (left != nullptr && right != nullptr) {
    if (!comparison.isArrayComp()) {
      return std::make_unique<Relation>(scope, comparison, std::move(left), std::move(right));
    }
    return std::make_unique<ArrayRelation>(scope, comparison, std::move(left), std::move(right));
  }
  return std::make_unique<TreeCondition>(scope, node);
}

std::unique_ptr<CQLCondition> makeIsa(const CQLScope& scope, const QORQL_Comparison& comparison, const Node& node) {
  const QORString property(CQLTreeMatch::isaProperty(scope, comparison));
  if (property.isEmpty()) return CQLMakeNever(CQLTextOfCondition(scope, comparison), reasonOfIsa(comparison));
  const Node& right = comparison.getRHSArithmeticExpression();
  if (!CQLIsConstant(right)) return std::make_unique<TreeCondition>(scope, node);
  const Value className(CQLTreeMatch::constant(scope, right));
  if (!className.IsNull() && className->scalar().kind == QoriScalarKind::Text) {
    return std::make_unique<IsaCondition>(scope, comparison, property, className->toString());
  }
  return CQLMakeNever(CQLTextOfCondition(scope, comparison), {kNotComputed, QORQL_startOf(*right)});
}

std::unique_ptr<CQLCondition> makeComparison(const CQLScope& scope, const Node& node) {
  const Node* written = &node;
  while (const Node* const inner = QORQL_parenthesised(*written)) written = inner;
  const auto& comparison = dynamic_cast<const QORQL_Comparison&>(**written);
  const QORQL_Operator op = comparison.getOperator();
  if (op >= QORQL_OperatorEQUAL && op <= QORQL_OperatorGREATEREQUAL) {
    return makeRelation(scope, comparison, *written);
  }
  if (op == QORQL_OperatorISA) return makeIsa(scope, comparison, *written);
  CQLNeverReason reason = reasonOfOperator(comparison);
  if (op == QORQL_OperatorNONE) {
    reason = {"a condition without a comparison never matches", QORQL_startOf(comparison)};
  }
  return CQLMakeNever(CQLTextOfCondition(scope, comparison), std::move(reason));
}

}  // namespace

std::unique_ptr<CQLCondition> CQLMakeCondition(const CQLScope& scope, const Node& operand) {
  const auto* factor = dynamic_cast<const QORQL_ExpressionFactor*>(operand.Get());
  const QORQL_Comparison* const comparison =
      factor == nullptr ? nullptr : dynamic_cast<const QORQL_Comparison*>(factor->getComparison().Get());
  if (comparison == nullptr) {
    return CQLMakeNever("An association", {"a condition on an association never matches", QORQL_startOf(*operand)});
  }
  if (factor->getOperator() == QORQL_OperatorNONE) return makeComparison(scope, factor->getComparison());
  return CQLMakeNever("NOT " + CQLTextOfCondition(scope, *comparison),
                      {"a condition under NOT never matches", factor->getOffset()});
}

std::unique_ptr<CQLCondition> CQLMakeNever(std::string text, CQLNeverReason reason) {
  return std::make_unique<Never>(std::move(text), std::move(reason));
}
