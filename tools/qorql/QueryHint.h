// What may have been meant by a statement that is refused.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_QUERYHINT_H
#define QORQL_TOOL_QUERYHINT_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/Face/QORQL_Hint.h"
#include "Statements.h"

// A line for a person about the exception that is being handled: what the language has in the place of a word, the
// name that is wrong and the one that may have been meant, one of the commands where the
// statement is a single word. Empty when the error says all that is known.
// REQUIRES to be called inside a catch clause.
QORQL_Hint hintOfFailure(EmbeddedObjectManager& manager, const std::string& nameSpace, const Statement& statement,
                         const std::vector<std::string>& commands = {});

#endif
