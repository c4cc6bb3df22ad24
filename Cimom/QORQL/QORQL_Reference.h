// The reading of identifier references: x, C.x, C.*, Cls::x, a.b.Cls::x, x[2].
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REFERENCE_H
#define QORQL_REFERENCE_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"

class QORQL_Lexer;

// Entered on the first identifier. Records in the map the property that the
// reference asks of its class; the record "" takes those written without one.
// THROWS QORQL_ParseException.
QORSmrPtr<QORQL_Evaluatable> QORQL_parseReference(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                  QORQL_ProjectionMap& projMap);

#endif
