// Declarations and instances as MOF text that loads again.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_MOFTEXT_H
#define QORQL_EMBEDDED_MOFTEXT_H

#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"
#include "Cimom/Embedded/NameMap.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

namespace embedded {

// Each ends with `;` and a line feed, one feature or property a line.

// `Qualifier Name : type = default, Scope(...), Flavor(...);`
QORString qualifierMofText(const CimQualifierDeclaration& declaration);
// The declarations of the qualifiers that the classes use, as far as there are any.
QORString qualifiersMofText(const std::vector<CimClassDeclaration>& classes,
                            const NameMap<CimQualifierDeclaration>& qualifiers);
// The class with its own features. Flavors stand where they differ from those
// that `qualifiers` (the namespace's declarations) give; a qualifier that is not
// among them shows the flavors that a reader would not take for granted.
QORString classMofText(const CimClassDeclaration& declaration, const NameMap<CimQualifierDeclaration>& qualifiers);
// `instance of C { ... };` with all properties. THROWS QoriBaseException (type
// "CIM_Value") when embedded objects nest deeper than a text can hold.
QORString instanceMofText(const IQoriObject& object);

}  // namespace embedded

#endif
