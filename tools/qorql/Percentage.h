// Which columns are percentages, and how people read those.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_PERCENTAGE_H
#define QORQL_TOOL_PERCENTAGE_H

#include <string>
#include <string_view>

#include "Cimom/Embedded/CimDeclarations.h"
#include "cimom/IQoriValue.h"

// Whether the name of a column or property has "percent" in it, in any case; a percentile is none.
bool isPercentageName(std::string_view name);
// Whether the qualifier PUnit or Units says so.
bool hasPercentageUnit(const CimPropertyDeclaration& property);
// A real number with at most two digits after the point; every other value as it is.
std::string percentageText(const IQoriValue& value);

#endif
