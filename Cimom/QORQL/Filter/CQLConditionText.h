// A filter's conditions and values as a person reads them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLCONDITIONTEXT_H
#define QORQL_CQLCONDITIONTEXT_H

#include <string>

#include "Cimom/QORQL/QORQL_Comparison.h"

class CQLScope;

// As it could be written in a filter, FROM names left out.
std::string CQLTextOfCondition(const CQLScope& scope, const QORQL_Comparison& comparison);
// NULL for null; text in single quotes; an array as {1, 2}.
std::string CQLTextOfValue(const QORSmrPtr<IQoriValue>& value);
// Why two values of a comparison are not compared at all, after a colon; empty
// when they are, and when one is null.
std::string CQLTextOfMismatch(const QORSmrPtr<IQoriValue>& left, const QORQL_Comparison& comparison,
                              const QORSmrPtr<IQoriValue>& right);

#endif
