// Associations whose steps leave open in which role they have an object.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_ROLENOTES_H
#define QORQL_TOOL_ROLENOTES_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/Explain/QORQL_Explanation.h"

// A sentence for each association that can have the two objects in more than one way, with the conditions that ask for
// one: "l.Antecedent = OBJECTPATH(P) AND l.Dependent = OBJECTPATH(V)".
std::vector<std::string> roleNotes(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                   const std::vector<QORQL_ExplainedStep>& steps);

#endif
