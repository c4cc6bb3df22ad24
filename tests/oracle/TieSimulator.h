// A second, plain execution of the statements of TieStatement.h, row by row,
// by which the engine is judged. It shares no code with the engine but the hash
// that orders the rows of outer joins.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_TIESIMULATOR_H
#define QORQL_TESTS_TIESIMULATOR_H

#include <string>

#include "TieStatement.h"

// The rows that are selected, a line each, null as "-"; or the message of a failure.
std::string simulate(const TieStatement& statement, const TieWorld& world);

#endif
