// How a filter compares two values.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLCOMPARISON_H
#define QORQL_CQLCOMPARISON_H

#include <string_view>

#include "Cimom/QORQL/CQLPrecisionCode.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Operator.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

// Stateless; any thread may call. What takes values THROWS what they throw.
class CQLComparison {
 public:
  using Value = QORSmrPtr<IQoriValue>;

  // Null where a value is missing, and where an array is compared but for the
  // equality of two. For other values that do not compare it is False.
  static QoriTruth decide(const Value& lhs, const Value& rhs, QORQL_Operator op);
  // In the written order, for ANY or EVERY element of one side. Null where a value
  // is missing, or the side is no array. An element that does not compare does not
  // satisfy; an empty array satisfies neither ANY nor EVERY.
  static QoriTruth decideElements(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                  QORQL_Comparison::QORQL_ARRAY_COMP arrayComp);
  // Two values of one type, or numbers with a real one among them. REQUIRES that neither is null.
  static bool compare(const Value& lhs, const Value& rhs, QORQL_Operator op);
  // Of one element type, or both of numbers.
  static bool areComparableArrays(const IQoriValue& lhs, const IQoriValue& rhs);
  // 1 and 0 for a text that says TRUE or FALSE, in any case, and so compares with booleans; -1 for any other. Inline,
  // since matching asks it.
  static int truthOf(std::string_view text) noexcept {
    if (QORString::equalIgnoringCase(text, "TRUE")) return 1;
    return QORString::equalIgnoringCase(text, "FALSE") ? 0 : -1;
  }
  // Whether both name a type of numbers.
  static bool areNumbers(const QORString& lhsType, const QORString& rhsType) noexcept;
  // THROWS a bare int 0 for a pair that the table does not hold.
  static CQLPrecisionCode precisionOf(const QORString& lhsType, const QORString& rhsType);
  // The value as one of another type of integers; null for any other type.
  static Value converted(const QORString& toType, const Value& value);
};

#endif
