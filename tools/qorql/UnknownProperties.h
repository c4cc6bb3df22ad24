// Properties that a statement names and that no object of its class can have.
#ifndef QORQL_TOOL_UNKNOWNPROPERTIES_H
#define QORQL_TOOL_UNKNOWNPROPERTIES_H

#include <iosfwd>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "ParsedQuery.h"

// The language lets a class be asked for any property: it reads null, and in the
// select list the result stays empty. `qorql: warning: ...`, a line for each
// property that neither its class nor a class below it has. REQUIRES a parsed query.
void printUnknownProperties(std::ostream& out, EmbeddedObjectManager& manager, const QORString& nameSpace,
                            ParsedQuery& parsed);

#endif
