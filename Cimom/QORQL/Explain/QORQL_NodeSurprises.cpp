// Each node is looked at once; texts are made only for the few that are kept.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Explain/QORQL_NodeSurprises.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

using Type = QORQL_DeclaredType;

bool isOrder(QORQL_Operator op) { return op >= QORQL_OperatorLESS && op <= QORQL_OperatorGREATEREQUAL; }

template <class Kept, class Node>
void note(const Kept*& first, const Node& node) {
  if (first == nullptr) first = &node;
}

const IQoriValue* literalOf(const QORQL_Evaluatable* side) {
  const auto* const factor = QORQL_nodeAs<QORQL_Factor>(QORQL_peel(side));
  if (factor == nullptr) return nullptr;
  if (!factor->getEvaluatable().IsNull()) return literalOf(factor->getEvaluatable().Get());  // a negation
  return factor->getLiteral().Get();
}

// A text with what other languages take as a wildcard.
bool hasWildcard(const QORQL_Comparison& node) {
  const IQoriValue* const literal = literalOf(node.getRHSArithmeticExpression().Get());
  return literal != nullptr && literal->toString().view().find_first_of("%_*") != std::string_view::npos;
}

bool isCondition(const QORQL_Evaluatable* node) {
  const bool isValue = QORQL_nodeAs<QORQL_Factor>(node) != nullptr || QORQL_nodeAs<QORQL_Function>(node) != nullptr ||
                       QORQL_nodeAs<QORQL_Arithmetic>(node) != nullptr || QORQL_nodeAs<QORQL_Term>(node) != nullptr;
  return node != nullptr && !isValue;
}

// A chain is walked from its end: the next node may be the part of the same chain further left.
template <class Node>
void noteGrouping(const QORQL_Evaluatable*& grouped, const Node& node, const QORQL_Evaluatable* rest, bool isGrouped) {
  const bool isSameChain = grouped != nullptr && grouped == rest;
  if (isSameChain || (grouped == nullptr && isGrouped)) grouped = &node;
}

const char* mirroredSign(QORQL_Operator op) {
  constexpr const char* kSigns[] = {"", "=", "<>", ">", "<", ">=", "<="};
  return kSigns[op];
}

// What a whole number stands for that no type holds.
constexpr QORuint64 kGreatest = std::numeric_limits<QORuint64>::max();

bool isBeyondGreatest(std::string_view digits) {
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  const std::string greatest = std::to_string(kGreatest);
  return digits.size() > greatest.size() || (digits.size() == greatest.size() && digits > greatest);
}

// How to ask the elements of an array.
std::string askingText(const QORQL_Comparison& node, const std::string& array, const std::string& other, bool isLeft) {
  const QORQL_Operator op = node.getOperator();
  if (op == QORQL_OperatorNOTEQUAL) return "NOT EVERY " + array + " = " + other;
  return other + " " + (isLeft ? mirroredSign(op) : QORQL_operatorText(op)) + " ANY " + array;
}

}  // namespace

std::string QORQL_nearestReal32(const QoriScalar& number) {
  const double value = number.kind == QoriScalarKind::Unsigned ? static_cast<double>(number.u)
                       : number.kind == QoriScalarKind::Signed ? static_cast<double>(number.s)
                                                               : number.r;
  if (!(std::fabs(value) <= static_cast<double>(FLT_MAX))) return "none";
  QoriScalar held;
  held.kind = QoriScalarKind::Real;
  held.r = static_cast<double>(static_cast<float>(value));
  if (qori::compareNumbers(number, held) == std::partial_ordering::equivalent) return {};
  return std::string(CQoriValue(held.r, CQoriType::real64).toString().view());
}

void QORQL_NodeSurprises::visitComparison(const QORQL_Comparison& node) {
  const QORQL_Operator op = node.getOperator();
  if (op == QORQL_OperatorISA && _isa == nullptr && isOfUnknownClass(node)) _isa = &node;
  if (op == QORQL_OperatorLIKE && _like == nullptr && hasWildcard(node)) _like = &node;
  if (node.asksLeft() && isOrder(op)) note(_turned, node);
  if (node.isArrayComp() && op == QORQL_OperatorNOTEQUAL) note(_unequal, node);
  const QORQL_JoinType join = node.getJoinType();
  if (join == QORQL_JOIN_TYPE_LEFT_OUTER || join == QORQL_JOIN_TYPE_FULL_OUTER) note(_leftJoin, node);
  if (join != QORQL_JOIN_TYPE_INNER) note(_outerJoin, node);
  if (!QORQL_isRelational(op)) return;
  lookAtArrays(node);
  if (_real32 == nullptr && isReal32BesideOther(node)) _real32 = &node;
}

bool QORQL_NodeSurprises::isOfUnknownClass(const QORQL_Comparison& isa) const {
  const IQoriValue* const name = literalOf(isa.getRHSArithmeticExpression().Get());
  return name != nullptr && !_types.hasClass(name->toString());
}

void QORQL_NodeSurprises::lookAtArrays(const QORQL_Comparison& node) {
  if (_array != nullptr && _asked != nullptr) return;
  const Type left = _types.of(node.getLHSArithmeticExpression().Get());
  const Type right = _types.of(node.getRHSArithmeticExpression().Get());
  if (node.isArrayComp()) {
    const Type& asked = node.asksLeft() ? left : right;
    if (asked.kind != Type::kUnknown && !asked.isArray) note(_asked, node);
    return;
  }
  if (left.kind == Type::kUnknown || right.kind == Type::kUnknown) return;
  const bool isMixed = left.isArray != right.isArray;
  if (isMixed || (left.isArray && isOrder(node.getOperator()))) note(_array, node);
}

bool QORQL_NodeSurprises::isReal32BesideOther(const QORQL_Comparison& node) const {
  const QORQL_Evaluatable* const left = node.getLHSArithmeticExpression().Get();
  const QORQL_Evaluatable* const right = node.getRHSArithmeticExpression().Get();
  const auto isOther = [this](const QORQL_Evaluatable* real, const QORQL_Evaluatable* literal) {
    const IQoriValue* const value = literalOf(literal);
    return value != nullptr && value->scalar().isNumber() && _types.of(real).isReal32 &&
           !QORQL_nearestReal32(value->scalar()).empty();
  };
  return isOther(left, right) || isOther(right, left);
}

void QORQL_NodeSurprises::visitArithmetic(const QORQL_Arithmetic& node) {
  const auto* const rest = QORQL_nextLink(node);
  const bool isChain = rest != nullptr && rest->getOperator() != QORQL_OperatorNONE;
  noteGrouping(_grouped, node, rest, isChain && node.getOperator() == QORQL_OperatorMINUS);
}

// `a * b / c` divides first, which only whole numbers show.
void QORQL_NodeSurprises::visitTerm(const QORQL_Term& node) {
  const auto* const rest = QORQL_nextLink(node);
  const bool isChain = rest != nullptr && rest->getOperator() != QORQL_OperatorNONE;
  const bool dividesFirst = isChain && node.getOperator() == QORQL_OperatorMUL &&
                            rest->getOperator() == QORQL_OperatorDIV && _grouped == nullptr &&
                            _types.of(rest).kind != Type::kReal;
  noteGrouping(_grouped, node, rest, dividesFirst || (isChain && node.getOperator() == QORQL_OperatorDIV));
  const auto* const factor = node.getFactorCasted();
  const bool isNegation = factor != nullptr && factor->getOperator() == QORQL_OperatorMINUS;
  if (isNegation && _negated == nullptr && _types.of(factor).kind == Type::kUint64) _negated = factor;
}

void QORQL_NodeSurprises::visitFactor(const QORQL_Factor& node) {
  if (!node.getLiteral().IsNull()) {
    const QoriScalar scalar = node.getLiteral()->scalar();
    if (scalar.kind == QoriScalarKind::Signed && scalar.s < 0) note(_tooLow, node);
    if (scalar.kind == QoriScalarKind::Unsigned && scalar.u == kGreatest && isBeyondGreatest(digitsAt(node))) {
      note(_tooGreat, node);
    }
    return;
  }
  const bool hasScope = !node.getPropertyScope().IsNull() && !node.getClassName().IsNull();
  if (!hasScope || _scope != nullptr || !_types.isFromName(*node.getClassName())) return;
  const QORString className(_types.classNameOf(*node.getClassName()));
  if (!_types.isA(className, _types.classNameOf(*node.getPropertyScope()))) _scope = &node;
}

void QORQL_NodeSurprises::visitFunction(const QORQL_Function& node) {
  if (node.getFunctionID() != QORQL_FUNCTIONID_COUNT || node.getParameters()->isEmpty()) return;
  if (isCondition(QORQL_peel(node.getParameters()->first().Get()))) note(_counted, node);
}

void QORQL_NodeSurprises::visitAssociation(const QORQL_Association& node) {
  if (_association != nullptr) return;
  const QORSmrPtr<IQoriClass> model(_types.classOf(node.getAssociationName()));
  const IQoriQualifier* const flag = model.IsNull() ? nullptr : model->getQualifier("Association", true);
  const bool isAssociation = flag != nullptr && (flag->getValue().IsNull() || flag->getValue()->getBoolean());
  if (!isAssociation) _association = &node;
}

void QORQL_NodeSurprises::addConditions(std::vector<QORQL_Surprise>& found) const {
  if (_like != nullptr) {
    found.push_back(
        {"LIKE-1",
         "LIKE searches for plain text anywhere, case-sensitively and without wildcards: \"" + _texts.of(_like) + "\"",
         _like->getOffset()});
  }
  if (_isa != nullptr) {
    const std::string name(literalOf(_isa->getRHSArithmeticExpression().Get())->toString().view());
    found.push_back({"ISA-1", "\"" + _texts.of(_isa) + "\" is never true: there is no class " + name,
                     QORQL_startOf(*_isa->getRHSArithmeticExpression()), name});
  }
  if (_turned != nullptr) {
    found.push_back({"ARR-4",
                     "ANY and EVERY on the left turn a comparison around: \"" + _texts.of(_turned) +
                         "\" compares the right side with each element. Write the array on the right",
                     _turned->getOffset()});
  }
  if (_unequal != nullptr) {
    found.push_back(
        {"ARR-6", "\"" + _texts.of(_unequal) + "\" also keeps the rows for which it is false", _unequal->getOffset()});
  }
  if (_array != nullptr) found.push_back({"ARR-7", arrayText(), QORQL_startOf(arraySide())});
  if (_asked != nullptr) {
    found.push_back(
        {"ARR-5", "\"" + _texts.of(_asked) + "\" is null: ANY and EVERY need an array", QORQL_startOf(askedSide())});
  }
  if (_real32 != nullptr) found.push_back({"CMP-2", real32Text(), QORQL_startOf(real32Side())});
}

const QORQL_Evaluatable& QORQL_NodeSurprises::arraySide() const {
  const QORQL_Evaluatable& left = *_array->getLHSArithmeticExpression();
  return _types.of(&left).isArray ? left : *_array->getRHSArithmeticExpression();
}

const QORQL_Evaluatable& QORQL_NodeSurprises::askedSide() const {
  return _asked->asksLeft() ? *_asked->getLHSArithmeticExpression() : *_asked->getRHSArithmeticExpression();
}

const QORQL_Evaluatable& QORQL_NodeSurprises::real32Side() const {
  const QORQL_Evaluatable& left = *_real32->getLHSArithmeticExpression();
  return _types.of(&left).isReal32 ? left : *_real32->getRHSArithmeticExpression();
}

std::string_view QORQL_NodeSurprises::digitsAt(const QORQL_Factor& node) const noexcept {
  const std::string_view rest = _text.substr(std::min<std::size_t>(node.getOffset(), _text.size()));
  return rest.substr(0, rest.find_first_not_of("0123456789"));
}

// The name before the last one.
QORuint32 QORQL_NodeSurprises::scopePlace() const {
  const std::vector<QORuint32> places = QORQL_placesOfNames(_text, *_scope);
  return places.size() < 2 ? _scope->getOffset() : places[places.size() - 2];
}

std::string QORQL_NodeSurprises::arrayText() const {
  const QORQL_Evaluatable* const left = _array->getLHSArithmeticExpression().Get();
  const QORQL_Evaluatable* const right = _array->getRHSArithmeticExpression().Get();
  const bool isLeft = _types.of(left).isArray;
  const std::string start = "\"" + _texts.of(_array) + "\" is null: ";
  if (isLeft && _types.of(right).isArray) return start + "arrays have no order";
  const std::string array = _texts.of(QORQL_peel(isLeft ? left : right));  // without an ANY in parentheses
  std::string text = start + array + " is an array";
  if (_array->getJoinType() != QORQL_JOIN_TYPE_INNER) return text;
  return text + ". To ask its elements write " + askingText(*_array, array, _texts.of(isLeft ? right : left), isLeft);
}

std::string QORQL_NodeSurprises::real32Text() const {
  const QORQL_Evaluatable* const left = _real32->getLHSArithmeticExpression().Get();
  const QORQL_Evaluatable* const right = _real32->getRHSArithmeticExpression().Get();
  const bool isLeft = _types.of(left).isReal32;
  const IQoriValue* const literal = literalOf(isLeft ? right : left);
  return "\"" + _texts.of(_real32) + "\": a real32 is never exactly " + std::string(literal->toString().view()) +
         " (the nearest is " + QORQL_nearestReal32(literal->scalar()) + "). Ask for a range";
}

void QORQL_NodeSurprises::addArithmetic(std::vector<QORQL_Surprise>& found) const {
  if (_grouped != nullptr) {
    found.push_back({"ARITH-2", "Operators of one level group to the right: this is \"" + _texts.of(_grouped) + "\"",
                     _grouped->getOffset()});
  }
  if (_negated != nullptr) {
    const std::string text = _texts.of(_negated);
    found.push_back({"ARITH-6",
                     "\"" + text + "\" cannot be computed: a uint64 cannot be negated. Write 0 - " + text.substr(1),
                     _negated->getOffset()});
  }
  if (_tooLow != nullptr) {
    found.push_back({"LEX-6",
                     "After a minus " + _texts.of(_tooLow) + " fits no type: it stands for another number or null",
                     _tooLow->getOffset()});
  }
  if (_tooGreat != nullptr) {
    found.push_back({"LEX-6",
                     std::string(digitsAt(*_tooGreat)) + " is greater than any integer type holds: it stands for " +
                         std::to_string(kGreatest),
                     _tooGreat->getOffset()});
  }
}

void QORQL_NodeSurprises::addReferences(std::vector<QORQL_Surprise>& found) const {
  if (_counted != nullptr) {
    found.push_back({"AGG-2",
                     "\"" + _texts.of(_counted) +
                         "\" does not count where the condition is true: COUNT counts values that are not null, "
                         "and false is one. Write the condition in WHERE",
                     _counted->getOffset()});
  }
  if (_scope != nullptr) {
    found.push_back({"NAME-6",
                     "\"" + _texts.of(_scope) + "\" reads " + std::string(_scope->getPropertyName()->view()) + " of " +
                         _texts.nameOf(_types.classNameOf(*_scope->getClassName())) +
                         ": a scope is not checked in a query",
                     scopePlace()});
  }
  if (_association != nullptr) found.push_back(associationText());
}

QORQL_Surprise QORQL_NodeSurprises::associationText() const {
  const std::string name(_association->getAssociationName().view());
  const std::string start = "\"" + _texts.of(_association) + "\" ties nothing: ";
  const QORSmrPtr<IQoriClass> model(_types.classOf(_association->getAssociationName()));
  if (model.IsNull()) return {"ASSOC-6", start + "there is no class " + name, _association->getOffset(), name};
  return {"ASSOC-6",
          start + std::string(model->getClassName().view()) +
              " is not an association (two OBJECTPATHs that are compared are read as one, too)",
          _association->getOffset()};
}
