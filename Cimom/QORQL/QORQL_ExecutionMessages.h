// The texts of execution errors and log lines, and names that the engine gives a meaning, each once.
// Tested by tests/unit/QORQL/HelperTest.cpp, tests/queries/errors.qtest.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EXECUTIONMESSAGES_H
#define QORQL_EXECUTIONMESSAGES_H

namespace QORQL_ExecutionMessages {

// Result table.
inline constexpr char kCellIndexTooGreat[] =
    "Error occured when adding a cell to a row. The index of column specified was greater than the maximum number of "
    "columns in the table";
inline constexpr char kRowInconsistent[] =
    "Error occured when adding a cell to a row. The row boundary was inconsistent with the table.";
inline constexpr char kColumnIndexTooGreat[] =
    "Error occured when adding a column to a row. The header index specified was greater than the boundary limit.";
inline constexpr char kCellOutsideTable[] =
    "Error occured when adding a cell to a row. The cell location specified was outside the table boundary.";
inline constexpr char kPropertyFailed[] = "An unknown exception occured when retrieving the property - '";
inline constexpr char kPropertyValueFailed[] = "An unknown exception occured when retrieving the property value of - '";
inline constexpr char kInstanceNameFailed[] = "An unknown exception occured when retrieving instance name for class '";

// Retrieval and associations.
inline constexpr char kFromSymbolUnknown[] = "Unable to locate the symbol for '";
inline constexpr char kSubquerySymbolUnknown[] = "unable to locate the symbol for '";
inline constexpr char kEnumerating[] = "Enumerateinstance call for '";
inline constexpr char kReturnedNull[] = "' returned NULL";
inline constexpr char kAddingObject[] = "Error occured when adding object to table - ";
inline constexpr char kTableIsNull[] = "table is null";
inline constexpr char kObjectIsNull[] = "qoriobject is null";

// Expressions.
inline constexpr char kNotAComparison[] = "Unable to evaluate the expression - comparison object was NULL";
inline constexpr char kMinusOnUint64[] = "Can't apply operator MINUS to an uint64 value";
inline constexpr char kInvalidFactorOperator[] = "Invalid operator in factor";
inline constexpr char kInvalidFactor[] = "Invalid factor";
inline constexpr char kInvalidLikeType[] = "Invalid data type specified for LIKE operator";
inline constexpr char kInvalidFunction[] = "Invalid function specified";
inline constexpr char kGetInstanceFailed[] = "GetInstance failed while evaluating row for function 'INSTANCEOF'";
inline constexpr char kFunctionWho[] = "QORQL_Function::evaluate()";

// A query that its monitor stops.
inline constexpr char kStopped[] = "The query was stopped.";

// Sorting, projection and output.
inline constexpr char kSortFailed[] = "Caught an exception while sorting the data.";
inline constexpr char kBuildingFailed[] = "Caught an exception occured while building the results table.";
inline constexpr char kStreamingFailed[] = "Caught an exception occured while streaming the data.";
inline constexpr char kAggregateNotNumeric[] = "Property data type must be numeric for function ";
inline constexpr char kAggregateNull[] = "Aggregate functions must contain a valid expression.";
inline constexpr char kAggregateResultNotNumeric[] =
    "Aggregate functions must contain an expression that results in a numeric value.";
inline constexpr char kResultNotFound[] = "Result not found";

// Names: the qualifier of a class whose provider filters at the source, and the property that stands in the argument of
// OBJECTPATH(X): the object itself, none of its properties.
inline constexpr char kProviderFiltered[] = "YRK_TRBS_ProviderFiltered";
inline constexpr char kNoProperty[] = "NONE";

}  // namespace QORQL_ExecutionMessages

#endif
