// Questions about declarations that the class repository asks in several places.
// Tested by tests/unit/Embedded/ClassRepositoryTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_DECLARATIONHELPERS_H
#define QORQL_EMBEDDED_DECLARATIONHELPERS_H

#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"

namespace embedded {

// BORROWS: the qualifier, ignoring case; null when absent.
const CimQualifier* findQualifier(const std::vector<CimQualifier>& qualifiers, std::string_view name) noexcept;
// A boolean qualifier that is present and not FALSE.
bool hasFlag(const std::vector<CimQualifier>& qualifiers, std::string_view name) noexcept;

// Whether a subclass has the qualifier without declaring it. For those of the
// metamodel this does not depend on whether and how a schema declares them.
bool reachesSubclasses(const CimQualifier& qualifier) noexcept;

// Of the same type and content; two null pointers are the same.
bool sameValue(const QORSmrPtr<IQoriValue>& a, const QORSmrPtr<IQoriValue>& b);

// Whether two declarations say the same: names ignore case, everything else counts.
bool sameDeclaration(const CimClassDeclaration& a, const CimClassDeclaration& b);
bool sameDeclaration(const CimQualifierDeclaration& a, const CimQualifierDeclaration& b);

bool sameType(const IQoriType& a, const IQoriType& b) noexcept;
// For messages: "uint32", "string[]".
QORString typeText(const IQoriType& type);

// The type that instances show: "object" for a string that is declared to hold
// an embedded object, otherwise the declared one.
QORSmrPtr<IQoriType> typeInInstances(const CimPropertyDeclaration& property);

}  // namespace embedded

#endif
