// The texts of the errors of parsing and name resolution, each once, with their codes.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MESSAGES_H
#define QORQL_MESSAGES_H

#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "cmpbase.h"

// "%s" stands for the one thing that a message names.
struct QORQL_ParseMessage {
  QORuint32 code;
  const char* text;
  QORQL_Fault::Kind kind = QORQL_Fault::kSyntax;
};

// Of the expression checks, which are runtime errors although the parser makes them.
struct QORQL_CheckMessage {
  QORQL_Exception::QORQL_ExceptionCode code;
  const char* text;
  QORQL_Fault::Kind kind = QORQL_Fault::kSyntax;
};

namespace QORQL_Messages {

// Token stream and nesting.
inline constexpr QORQL_ParseMessage kTokenMismatch{2, "Unexpected token '%s' found"};
inline constexpr QORQL_ParseMessage kNestedTooDeeply{2, "expression nested too deeply"};

// Statement and clauses.
inline constexpr QORQL_ParseMessage kUnexpectedToken{2, "unexpected token '%s' found"};
inline constexpr QORQL_ParseMessage kFromExpected{8, "'FROM' expected"};
inline constexpr QORQL_ParseMessage kFromEmpty{
    16, "The from clause should be followed by at least one or more table names."};
inline constexpr QORQL_ParseMessage kNestedQuery{
    2, "Unexpected token '('. Nested queries are not supported in the current version"};
inline constexpr QORQL_ParseMessage kFromAliasExpected{16, "Alias expected after 'AS' keyword in 'FROM' clause",
                                                       QORQL_Fault::kNameExpected};
inline constexpr QORQL_ParseMessage kClassNameExpected{
    2, "Unexpected token '%s' found in FROM clause. Expected class name"};
inline constexpr QORQL_ParseMessage kOrderWithoutBy{
    19, "Invalid ORDER BY clause.  ORDER specified without corresponding BY keyword."};
inline constexpr QORQL_ParseMessage kOrderByAggregates{
    15, "Cannot combine ORDER BY clause with strictly aggregate functions."};
inline constexpr QORQL_ParseMessage kDirectionExpected{
    2, "Unexpected token '%s' found.  Expected [ASC | DESC] following ORDER BY clause.",
    QORQL_Fault::kDirectionMissing};
inline constexpr QORQL_ParseMessage kFormatExpected{2, "'FORMAT' expected"};
inline constexpr QORQL_ParseMessage kFormatAsExpected{2, "'AS' expected"};
inline constexpr QORQL_ParseMessage kFormatNameExpected{2, "'QORIOBJECT', 'XML', 'HTML' or 'CSV' expected",
                                                        QORQL_Fault::kFormatUnknown};

// Select list.
inline constexpr QORQL_ParseMessage kSelectExpected{7, "'SELECT' expected"};
inline constexpr QORQL_ParseMessage kFirstNotNumeric{
    15, "The number of entries specified after the FIRST keyword is not a valid number."};
inline constexpr QORQL_ParseMessage kSelectListMissing{15, "The select list for the select statement is missing."};
inline constexpr QORQL_ParseMessage kFirstWithAggregates{
    15, "Strictly aggregate entries cannot be combined with the FIRST keyword."};
inline constexpr QORQL_ParseMessage kAggregateMismatch{
    15, "Combining Aggregate and NonAggregate expressions is not allowed.", QORQL_Fault::kColumnBesideAggregate};
inline constexpr QORQL_ParseMessage kAliasMissing{15, "Missing an alias for the column in SELECT clause",
                                                  QORQL_Fault::kColumnUnnamed};
inline constexpr QORQL_ParseMessage kSelectAliasExpected{15, "Alias expected after 'AS' keyword in 'SELECT' clause",
                                                         QORQL_Fault::kNameExpected};

// Factors.
inline constexpr QORQL_ParseMessage kFactorParenExpected{2, "')' expected", QORQL_Fault::kParenthesisOpen};
inline constexpr QORQL_ParseMessage kSelectArray{0, "SELECT clause cannot contain array!"};
inline constexpr QORQL_ParseMessage kArrayIndexInvalid{0, "Invalid array index list"};
inline constexpr QORQL_ParseMessage kSquareBracketExpected{0, "No closing square bracket"};
inline constexpr QORQL_ParseMessage kAnyEveryOfElement{
    0, "ANY|EVERY cannot be used with direct reference to array element."};
inline constexpr QORQL_ParseMessage kScopeIdentifierExpected{0, "Must be identifier after scope operator"};
inline constexpr QORQL_ParseMessage kDotIdentifierExpected{0, "Must be identifier after DOT"};

// Functions.
inline constexpr QORQL_ParseMessage kFunctionParenExpected{0, "')' expected"};
inline constexpr QORQL_ParseMessage kFunctionUnknown{17, "Invalid function defined", QORQL_Fault::kFunctionUnknown};
inline constexpr QORQL_ParseMessage kArgumentCount{
    17, "Incorrect number of arguments specified for the following method - '%s'"};
inline constexpr QORQL_ParseMessage kObjectPathArgument{
    17, "Invalid argument specified to OBJECTPATH function. Only classnames allowed."};

// Associations.
inline constexpr QORQL_ParseMessage kAssociationAndExpected{6, "'AND' expected for an association",
                                                            QORQL_Fault::kHalfAssociation};
inline constexpr QORQL_ParseMessage kAssociationInvalid{14, "Invalid syntax specified for an Association",
                                                        QORQL_Fault::kHalfAssociation};
inline constexpr QORQL_ParseMessage kAssociationJoin{14,
                                                     "Right and Full outer joins are not supported on associations"};
inline constexpr QORQL_ParseMessage kAssociationNull{18, "Encountered NULL expression factor when parsing association"};

// Comparisons.
inline constexpr QORQL_CheckMessage kIsInvalid{QORQL_Exception::QORQL_INVALID_DATA_TYPE,
                                               "Invalid syntax specified for 'IS' operator"};
inline constexpr QORQL_CheckMessage kIsaInvalid{QORQL_Exception::QORQL_INVALID_DATA_TYPE,
                                                "Invalid syntax specified for 'ISA' operator"};
inline constexpr QORQL_CheckMessage kAnyEveryTwice{QORQL_Exception::QORQL_UNIDENTIFIED_IDENTIFIER,
                                                   "ANY|EVERY cannot be on both sides of array-comp"};
inline constexpr QORQL_CheckMessage kAnyEveryArrays{
    QORQL_Exception::QORQL_INVALID_DATA_TYPE,
    "One side of array-comp MUST be non-complete array when ANY|EVERY is used on the other side."};
inline constexpr QORQL_CheckMessage kArrayWithScalar{
    QORQL_Exception::QORQL_INVALID_DATA_TYPE,
    "A comparison between an array property and non-array property is illegal if neither ANY or EVERY is used."};

// Name resolution.
inline constexpr QORQL_ParseMessage kPropertyAmbiguous{12, "property '%s' found in more than one class",
                                                       QORQL_Fault::kPropertyAmbiguous};
inline constexpr QORQL_ParseMessage kPropertyUnknown{12, "property '%s' not found in any class",
                                                     QORQL_Fault::kPropertyUnknown};
inline constexpr QORQL_CheckMessage kSymbolInvalid{QORQL_Exception::QORQL_UNDEFINED_SYMBOL,
                                                   "Invalid symbol specified in the select clause -'%s'",
                                                   QORQL_Fault::kFromNameUnknown};
inline constexpr QORQL_CheckMessage kSelectCastFailed{
    QORQL_Exception::QORQL_INTERNAL_ERROR, "Unexpected std::bad_cast exception while updating SELECT classes: %s",
    QORQL_Fault::kOther};
inline constexpr QORQL_CheckMessage kWhereCastFailed{
    QORQL_Exception::QORQL_INTERNAL_ERROR, "Unexpected std::bad_cast exception while updating WHERE classes: %s",
    QORQL_Fault::kOther};

}  // namespace QORQL_Messages

// Each THROWS the message, with the argument in place of its "%s", and as its fault the message's kind, the argument
// (unless the kind is kOther) and the byte of the text at which the word at fault begins. Line 0: found after the text
// was read.
[[noreturn]] void QORQL_raise(const QORQL_ParseMessage& message, QORuint32 line, QORuint32 offset,
                              const QORString& argument);
[[noreturn]] void QORQL_raise(const QORQL_CheckMessage& message, QORuint32 offset,
                              const QORString& argument = QORString());

#endif
