// Look-ups in declarations.
#include "Cimom/Embedded/CimDeclarations.h"

#include "Cimom/Embedded/DeclarationHelpers.h"

const CimQualifier* CimPropertyDeclaration::findQualifier(const char* qualifier) const {
  return embedded::findQualifier(qualifiers, qualifier);
}

bool CimPropertyDeclaration::hasFlag(const char* qualifier) const { return embedded::hasFlag(qualifiers, qualifier); }
