// The visitor that finds the outermost function of an expression.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_FunctionFinder.h"

#include "Cimom/QORQL/QORQL_Function.h"

void QORQL_FunctionFinder::visitFunction(const QORQL_Function& function) { _fid = function.getFunctionID(); }
