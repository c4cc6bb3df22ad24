// The base of every node of an expression.
#include "Cimom/QORQL/QORQL_Evaluatable.h"

QORQL_Evaluatable::~QORQL_Evaluatable() = default;

void QORQL_Evaluatable::accept(QORSmrPtr<QORQL_ExpressionVisitor>&) {}
