// Properties that a statement names and that no object of its class can have.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_UNKNOWNPROPERTIES_H
#define QORQL_TOOL_UNKNOWNPROPERTIES_H

#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "ParsedQuery.h"
#include "Warning.h"

// A class may be asked for any property that is written with its name: WHERE fails on the first row whose object lacks
// it, and so does the select list. A warning for each property that neither its class nor a class below it has.
// REQUIRES a parsed query.
std::vector<Warning> findUnknownProperties(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                           ParsedQuery& parsed);

#endif
