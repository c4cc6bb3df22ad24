// The operators of expressions, shared by parser, evaluators, joins and matcher.
// Tested by tests/unit/QORQL/ComparisonTest.cpp.
#ifndef QORQL_OPERATOR_H
#define QORQL_OPERATOR_H

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

#endif
