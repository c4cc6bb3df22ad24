// Look-ups in declarations.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/CimDeclarations.h"

#include "Cimom/Embedded/DeclarationHelpers.h"

const CimQualifier* CimPropertyDeclaration::findQualifier(const char* qualifier) const {
  return embedded::findQualifier(qualifiers, qualifier);
}

bool CimPropertyDeclaration::hasFlag(const char* qualifier) const { return embedded::hasFlag(qualifiers, qualifier); }
