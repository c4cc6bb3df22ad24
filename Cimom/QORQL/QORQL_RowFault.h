// What an error that a comparison raised on a row is about.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_ROWFAULT_H
#define QORQL_ROWFAULT_H

#include "Cimom/QORQL/QORQL_DataRow.h"
#include "cmpbase.h"

class QORQL_Comparison;
class QORQL_SymbolTable;

// THROWS the error that is being handled again, with the values, the object and the place that it is about, as far as
// they are known: message and type stay, and what values raise becomes a QORQL_ValueException. Evaluates the sides of
// the comparison once more, unless that asked the object manager. REQUIRES to be called inside a catch clause, with the
// row on which the comparison raised it.
[[noreturn]] void QORQL_throwWithFault(QORQL_Comparison& comparison, QORQL_SymbolTable& symbolTable,
                                       QORSmrPtr<QORQL_DataRow>& row);

#endif
