// Operations on values that evaluation on rows and bound expressions share.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_VALUES_H
#define QORQL_VALUES_H

#include <string_view>
#include <vector>

#include "Cimom/QORQL/QORQL_Operator.h"
#include "cimom/CQoriValue.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

// One of the ten numeric CIM type names, ignoring case.
bool QORQL_isNumericType(std::string_view typeName) noexcept;

// `left op right` for PLUS, MINUS, MUL and DIV; null when either is, or when the
// types do not qualify: two numbers, or for PLUS two strings. Errors of the
// value library (division by zero) pass through.
QORSmrPtr<IQoriValue> QORQL_combine(QORQL_Operator op, const QORSmrPtr<IQoriValue>& left,
                                    const QORSmrPtr<IQoriValue>& right);

// The operands of a chain, grouped to the right: v0 op0 (v1 op1 (v2 ...)). REQUIRES
// an operator after each value but the last. THROWS as combine; linear in the texts.
QORSmrPtr<IQoriValue> QORQL_combineChain(const std::vector<QORQL_Operator>& operators,
                                         const std::vector<QORSmrPtr<IQoriValue>>& values);

// The negation. THROWS QORQL_Exception (QORQL_INVALID_DATA_TYPE) for a uint64.
QORSmrPtr<IQoriValue> QORQL_negate(const QORSmrPtr<IQoriValue>& value);

// A truth as a value: null for Null, otherwise a new boolean.
QORSmrPtr<IQoriValue> QORQL_truthValue(QoriTruth truth);
// A value as a truth: Null for null, otherwise the value as a condition.
QoriTruth QORQL_truthOf(const QORSmrPtr<IQoriValue>& value);

// The relation that a comparison or join operator stands for. REQUIRES one of those.
QoriRelation QORQL_relationOf(QORQL_Operator op) noexcept;
// The relation that b has to a when a has the given one to b.
QoriRelation QORQL_mirrored(QoriRelation relation) noexcept;
// EQUAL to GREATEREQUAL and the join operators.
bool QORQL_isRelational(QORQL_Operator op) noexcept;

// What views tell of a relation; the first three as QoriTruth has them.
enum class QORQL_ViewTruth : QORuint8 {
  False = static_cast<QORuint8>(QoriTruth::False),
  True = static_cast<QORuint8>(QoriTruth::True),
  Null = static_cast<QORuint8>(QoriTruth::Null),
  Undecided  // the value library must decide, or fail
};

inline QORQL_ViewTruth QORQL_viewTruth(bool truth) noexcept {
  return truth ? QORQL_ViewTruth::True : QORQL_ViewTruth::False;
}

// The relation of two views: of numbers, strings and booleans, without any allocation.
inline QORQL_ViewTruth QORQL_relateViews(const QoriScalar& left, QoriRelation relation,
                                         const QoriScalar& right) noexcept {
  if (left.isNumber() && right.isNumber()) {
    return QORQL_viewTruth(qori::satisfies(qori::compareNumbers(left, right), relation));
  }
  if (left.isNull() || right.isNull()) return QORQL_ViewTruth::Null;
  if (left.kind == right.kind) {
    if (left.kind == QoriScalarKind::Text) {
      return QORQL_viewTruth(qori::satisfies(left.text->view() <=> right.text->view(), relation));
    }
    if (left.kind == QoriScalarKind::Boolean) {
      return QORQL_viewTruth(qori::satisfies(static_cast<int>(left.b) <=> static_cast<int>(right.b), relation));
    }
  }
  return QORQL_ViewTruth::Undecided;
}

#endif
