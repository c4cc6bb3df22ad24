// The base of runnable clauses and statements.
#include "Cimom/QORQL/QORQL_Executable.h"

QORQL_Executable::~QORQL_Executable() = default;
