// The operators of expressions, shared by parser, evaluators, joins and matcher.
// Tested by tests/unit/QORQL/ComparisonTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_OPERATOR_H
#define QORQL_OPERATOR_H

#include <cstddef>
#include <iterator>

// The values are fixed; they do not follow the order of the tokens. The type can
// hold any int: the fetch of one class also takes a token's number as operator.
enum QORQL_Operator : int {
  QORQL_OperatorNONE = 0,
  QORQL_OperatorEQUAL = 1,
  QORQL_OperatorNOTEQUAL = 2,
  QORQL_OperatorLESS = 3,
  QORQL_OperatorGREATER = 4,
  QORQL_OperatorLESSEQUAL = 5,
  QORQL_OperatorGREATEREQUAL = 6,
  QORQL_OperatorTILDA = 7,
  QORQL_OperatorPLUS = 8,
  QORQL_OperatorMINUS = 9,
  QORQL_OperatorMUL = 10,
  QORQL_OperatorDIV = 11,
  QORQL_OperatorAND = 12,
  QORQL_OperatorOR = 13,
  QORQL_OperatorNOT = 14,
  QORQL_OperatorQUERYFUNCTION = 15,
  QORQL_OperatorLIKE = 16,
  QORQL_OperatorLEFTJOIN = 17,
  QORQL_OperatorRIGHTJOIN = 18,
  QORQL_OperatorFULLOUTERJOIN = 19,
  QORQL_OperatorISNULL = 20,
  QORQL_OperatorISNOTNULL = 21,
  QORQL_OperatorISA = 22
};

// The operators as they are written, by value.
struct QORQL_OperatorText {
  QORQL_Operator op;
  const char* text;
};
inline constexpr QORQL_OperatorText QORQL_kOperatorTexts[] = {
    {QORQL_OperatorNONE, ""},           {QORQL_OperatorEQUAL, "="},
    {QORQL_OperatorNOTEQUAL, "<>"},     {QORQL_OperatorLESS, "<"},
    {QORQL_OperatorGREATER, ">"},       {QORQL_OperatorLESSEQUAL, "<="},
    {QORQL_OperatorGREATEREQUAL, ">="}, {QORQL_OperatorTILDA, "~"},
    {QORQL_OperatorPLUS, "+"},          {QORQL_OperatorMINUS, "-"},
    {QORQL_OperatorMUL, "*"},           {QORQL_OperatorDIV, "/"},
    {QORQL_OperatorAND, "AND"},         {QORQL_OperatorOR, "OR"},
    {QORQL_OperatorNOT, "NOT"},         {QORQL_OperatorQUERYFUNCTION, ""},
    {QORQL_OperatorLIKE, "LIKE"},       {QORQL_OperatorLEFTJOIN, "*="},
    {QORQL_OperatorRIGHTJOIN, "=*"},    {QORQL_OperatorFULLOUTERJOIN, "*=*"},
    {QORQL_OperatorISNULL, "IS NULL"},  {QORQL_OperatorISNOTNULL, "IS NOT NULL"},
    {QORQL_OperatorISA, "ISA"}};

// Whether the texts above stand where their values say; asked by the assertion below alone.
constexpr bool QORQL_areOperatorTextsInOrder() noexcept {
  for (std::size_t i = 0; i < std::size(QORQL_kOperatorTexts); ++i) {
    if (static_cast<std::size_t>(QORQL_kOperatorTexts[i].op) != i) return false;
  }
  return std::size(QORQL_kOperatorTexts) == static_cast<std::size_t>(QORQL_OperatorISA) + 1;
}
static_assert(QORQL_areOperatorTextsInOrder(), "each operator's text stands at the place of its value");

// How an operator is written; empty for NONE and for what is written as a call.
constexpr const char* QORQL_operatorText(QORQL_Operator op) noexcept {
  const auto place = static_cast<std::size_t>(op);
  return place < std::size(QORQL_kOperatorTexts) ? QORQL_kOperatorTexts[place].text : "";
}

#endif
