// The base of runnable clauses and statements.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Executable.h"

QORQL_Executable::~QORQL_Executable() = default;
